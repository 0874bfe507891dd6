#include "player/win/trace.h"

#include "player/win/text.h"

namespace avplayer {

namespace {
bool enabled = false;
}

void enableTrace() { enabled = true; }

void trace(const std::wstring& line) {
  if (!enabled) return;
  const std::string text = narrow(line) + "\n";
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

}  // namespace avplayer
