#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace av::companion {

/// Writes a file, in the place of one that is there; one that could not be written as a whole is deleted. Throws a
/// Failure.
void writeFile(const std::wstring& path, std::span<const std::byte> bytes);

}  // namespace av::companion
