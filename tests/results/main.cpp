// Lists the digests of what the portable core computes, kind by kind, and writes the values into a file:
//   result_values [FILE]
// In the file each kind is a line "NAME<tab>UNIT<tab>COUNT" and the values, as doubles.

#include "results/result_kinds.h"

#include <cstdio>
#include <memory>

int main(int argc, char** argv) {
  using namespace av::test;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(argc > 1 ? std::fopen(argv[1], "wb") : nullptr,
                                                             std::fclose);
  if (argc > 1 && !file) {
    std::fprintf(stderr, "result_values: %s cannot be written\n", argv[1]);
    return 1;
  }
  for (const ResultKind& kind : resultKinds()) {
    const std::vector<double> values = kind.values();
    const auto digest = static_cast<unsigned long long>(digestOf(values));
    std::printf("%016llx %8u  %s%s\n", digest, static_cast<unsigned>(values.size()), kind.name,
                kind.madeWith == MadeWith::arithmetic ? "" : " (maths library)");
    if (!file) continue;
    std::fprintf(file.get(), "%s\t%s\t%u\n", kind.name, kind.unit, static_cast<unsigned>(values.size()));
    std::fwrite(values.data(), sizeof(double), values.size(), file.get());
  }
  return 0;
}
