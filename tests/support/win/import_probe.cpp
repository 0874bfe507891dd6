#include "support/win/import_probe.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace av::test {
namespace {

constexpr std::size_t stubBytes = 32;

/// The module's imported functions by name, with the places of the addresses that it calls.
std::vector<std::pair<std::string, void**>> importTable(HMODULE module) {
  auto* const base = reinterpret_cast<unsigned char*>(module);
  const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  std::vector<std::pair<std::string, void**>> table;
  if (directory.Size == 0) return table;
  for (auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
       library->FirstThunk != 0; ++library) {
    const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
    auto** slot = reinterpret_cast<void**>(base + library->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++slot) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
      const auto* const entry = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
      table.emplace_back(reinterpret_cast<const char*>(entry->Name), slot);
    }
  }
  return table;
}

void setSlot(void** slot, void* function) {
  DWORD protection = 0;
  VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
  *slot = function;
  VirtualProtect(slot, sizeof *slot, protection, &protection);
}

/// Code that counts one call and goes on to the function, whatever its arguments are: it touches no register that carries
/// one, and no stack.
void writeStub(unsigned char* at, const volatile LONG* calls, const void* function) {
  const auto put = [&at](std::initializer_list<unsigned char> code) { at = std::copy(code.begin(), code.end(), at); };
  const auto putAddress = [&at](auto address) {
    std::memcpy(at, &address, sizeof address);
    at += sizeof address;
  };
#if defined(_WIN64)
  put({0x48, 0xB8}), putAddress(calls);     // mov rax, calls
  put({0xF0, 0xFF, 0x00});                  // lock inc dword ptr [rax]
  put({0x48, 0xB8}), putAddress(function);  // mov rax, function
  put({0xFF, 0xE0});                        // jmp rax
#else
  put({0xF0, 0xFF, 0x05}), putAddress(calls);  // lock inc dword ptr [calls]
  put({0x68}), putAddress(function);           // push function
  put({0xC3});                                 // ret
#endif
}

}  // namespace

std::vector<std::string> importedFunctions(HMODULE module) {
  std::vector<std::string> names;
  for (const auto& [name, slot] : importTable(module)) names.push_back(name);
  return names;
}

void* importedFunction(HMODULE module, const std::string& function) {
  for (const auto& [name, slot] : importTable(module))
    if (name == function) return *slot;
  return nullptr;
}

ImportProbe::ImportProbe(HMODULE module, const std::vector<std::string>& functions)
    : m_stubs(static_cast<unsigned char*>(
          VirtualAlloc(nullptr, functions.size() * stubBytes + 1, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE))),
      m_counts(functions.size()) {
  if (!m_stubs) return;
  for (const auto& [name, slot] : importTable(module)) {
    const auto found = std::ranges::find(functions, name);
    if (found == functions.end() || m_watches.contains(name)) continue;
    const auto index = static_cast<std::size_t>(found - functions.begin());
    unsigned char* const stub = m_stubs + index * stubBytes;
    writeStub(stub, &m_counts[index], *slot);
    m_watches[name] = {slot, *slot, &m_counts[index]};
    setSlot(slot, stub);
  }
}

ImportProbe::~ImportProbe() {
  for (const auto& [name, watch] : m_watches) setSlot(watch.slot, watch.function);
  if (m_stubs) VirtualFree(m_stubs, 0, MEM_RELEASE);
}

long ImportProbe::calls(const std::string& function) const {
  const auto found = m_watches.find(function);
  return found == m_watches.end() ? 0 : *found->second.calls;
}

long ImportProbe::calls() const {
  long sum = 0;
  for (const auto& [name, watch] : m_watches) sum += *watch.calls;
  return sum;
}

ImportReplacement::ImportReplacement(HMODULE module, const std::string& function, void* replacement) {
  for (const auto& [name, slot] : importTable(module)) {
    if (name != function) continue;
    m_slot = slot;
    m_original = *slot;
    setSlot(slot, replacement);
    return;
  }
}

ImportReplacement::~ImportReplacement() {
  if (m_slot) setSlot(m_slot, m_original);
}

}  // namespace av::test
