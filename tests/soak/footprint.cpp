#include "tests/soak/footprint.h"

#include "support/win/resource_probes.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace av::soak {
namespace {

// Wine keeps a block of this size whenever it has read a type library to marshal by, whoever marshals.
constexpr std::size_t bytesOfTheMarshaller = 2056;

/// Sizes of all blocks in use. Room for them is made before, since the heap must not change while it is walked.
std::vector<std::size_t> blockSizes() {
  std::vector<std::size_t> sizes;
  sizes.reserve(test::HeapUse::now().blocks + 1000);
  HANDLE heaps[64];
  const DWORD heapCount = std::min<DWORD>(GetProcessHeaps(ARRAYSIZE(heaps), heaps), ARRAYSIZE(heaps));
  for (DWORD i = 0; i < heapCount; ++i) {
    HeapLock(heaps[i]);
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heaps[i], &entry) && sizes.size() < sizes.capacity())
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) sizes.push_back(entry.cbData);
    HeapUnlock(heaps[i]);
  }
  std::sort(sizes.begin(), sizes.end());
  return sizes;
}

template <class Key>
int sum(const std::map<Key, int>& counts) {
  return std::accumulate(counts.begin(), counts.end(), 0,
                         [](int total, const auto& entry) { return total + entry.second; });
}

/// How often each value comes oftener in `last` than in `first`; negative where it comes less often.
template <class Value>
std::map<Value, int> difference(const std::vector<Value>& first, const std::vector<Value>& last) {
  std::map<Value, int> counts;
  for (const Value& value : last) ++counts[value];
  for (const Value& value : first) --counts[value];
  std::erase_if(counts, [](const auto& entry) { return entry.second == 0; });
  return counts;
}

std::vector<KernelType> kernelTypes() {
  std::vector<KernelType> types;
  const std::map<std::wstring, int> counts = test::openKernelHandlesByType();
  types.reserve(1000);
  for (const auto& [name, count] : counts) {
    if (name == L"Key") continue;
    KernelType type{};
    std::copy_n(name.begin(), std::min(name.size(), type.size() - 1), type.begin());
    types.insert(types.end(), static_cast<std::size_t>(count), type);
  }
  return types;
}

}  // namespace

Footprint Footprint::now() {
  Footprint footprint;
  footprint.kernelHandles = kernelTypes();
  footprint.spareGdiObjects = test::spareGdiObjects();
  footprint.heapBlocks = blockSizes();
  return footprint;
}

std::size_t Footprint::heapBytes() const {
  return std::accumulate(heapBlocks.begin(), heapBlocks.end(), std::size_t{0});
}

Growth Growth::between(const Footprint& first, const Footprint& last) {
  Growth growth;
  for (const auto& [type, more] : difference(first.kernelHandles, last.kernelHandles))
    if (more > 0) growth.kernelHandles[type.data()] = more;
  growth.gdiObjects = std::max(0, first.spareGdiObjects - last.spareGdiObjects);
  growth.heapBlocks = difference(first.heapBlocks, last.heapBlocks);
  const auto marshaller = growth.heapBlocks.extract(bytesOfTheMarshaller);
  growth.ofTheSystem = marshaller ? marshaller.mapped() : 0;
  return growth;
}

int Growth::handles() const { return sum(kernelHandles) + gdiObjects; }

int Growth::blocks() const { return sum(heapBlocks); }

std::size_t committedBytes() {
  std::size_t bytes = 0;
  MEMORY_BASIC_INFORMATION region{};
  for (const char* address = nullptr; VirtualQuery(address, &region, sizeof region) == sizeof region;) {
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
    const char* const next = static_cast<const char*>(region.BaseAddress) + region.RegionSize;
    if (next <= address) break;
    address = next;
  }
  return bytes;
}

}  // namespace av::soak
