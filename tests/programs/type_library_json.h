#pragma once

#include <string>

namespace av::json {

/// `text` as a JSON string, in UTF-8.
std::string quoted(const std::wstring& text);

/// Eight hexadecimal digits behind 0x.
std::wstring hex(unsigned long number);

/// Every type of the type library at `path` as a JSON array: {"name", "kind", "guid", "help", "base", "members",
/// "parts"}. A member is {"name", "id", "kind", "slot", "hidden", "help", "parameters"}; of a dual interface those that
/// it adds to its base, as its virtual table has them. A parameter is {"name", "type", "way"}, where the way is "in",
/// "inout" or "result". A part is what a class implements: {"name", "source", "default"}. Throws std::runtime_error.
std::string typeLibrary(const wchar_t* path);

}  // namespace av::json
