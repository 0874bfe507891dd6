// What the portable core computes from given whole numbers has the same bits in every build: natively, under
// sanitizers, and in the 64-bit and the 32-bit library. The program result_values prints the digests.

#include "results/result_kinds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string_view>

namespace av::test {
namespace {

struct Expected {
  std::string_view name;
  std::uint64_t digest;
};

// Where the results are meant to be other ones, the digests change: in all builds to the same ones.
constexpr Expected ofArithmetic[] = {
    {"decoded channels", 0x2E81648CED60BA25},
    {"means of the channels", 0x58FCBC2D63DD45B1},
    {"correlations", 0xBDD1FACB00020832},
    {"smoothing steps", 0x122395F51D38754D},
    {"windows without cosines", 0xD74FEA6427D6F397},
    {"levels of given transforms", 0xD8E4250008274E8F},
    {"views of given signals, linear axis", 0x7F2EB97CCC57C7BC},
    {"meters of given lines", 0x7C1E80829D3F3C6C},
    {"the meter's bands, linear", 0x6B23382B008D06FF},
    {"analysers of given spectra, linear axis", 0xA2D3F88DB21E980A},
    {"the view's samples", 0x77B7CF40251F1E4D},
    {"the view's pictures of samples", 0x09B5F88609F200F2},
};

#ifdef _WIN32
// With MinGW-w64's maths library, which both libraries contain.
constexpr Expected ofTheMathsLibrary[] = {
    {"dynamic ranges, from the depth", 0x7C9011F456F32192},
    {"rounded window sizes, of every put to 20000", 0x695C81DEEE157D35},
    {"the meter's analysis lengths, of every block to 48000 frames", 0x22216DD2A4D93031},
    {"raised cosines (the view and the meter)", 0x77A8CA48BE33563B},
    {"cosine sums and Bohman (the analyser)", 0x2034911A96530615},
    {"Kaiser (the analyser)", 0xAE9AD8D9160C1674},
    {"the view's transforms", 0xFED53BD392B48848},
    {"the meter's transforms", 0xC558F533CA2A78A6},
    {"power spectra through windows without cosines", 0xD26524C9C1F85FDE},
    {"power spectra through the others", 0x17900A6254371EF8},
    {"views of given signals, octave axis", 0x131746B78B3F85E2},
    {"what the pointer reads on the octave axis", 0x994527B7BA51469B},
    {"the meter's bands of given levels, logarithmic", 0xDE8F68F959A11343},
    {"analysers of given spectra, logarithmic axis", 0x87ECF78D30E70542},
    {"the view's levels", 0x6880D3EFADE22D39},
    {"the view's pictures of spectra", 0x4137265CB8800560},
    {"the meter's levels", 0xEB9E7538FDFA929E},
    {"the meter's pictures", 0xEDBE2EE10071664D},
    {"the analyser's bands", 0x7DE7C15EEE26A74D},
    {"the analyser's pictures", 0x1A708A7AF898A605},
    {"what screen readers say", 0x16C7FC07BCB6AE09},
};
#endif

class SameResults : public testing::TestWithParam<Expected> {};

std::ostream& operator<<(std::ostream& out, const Expected& expected) { return out << expected.name; }

TEST_P(SameResults, InEveryBuild) {
  const auto kinds = resultKinds();
  const auto kind =
      std::ranges::find(kinds, GetParam().name, [](const ResultKind& one) { return std::string_view(one.name); });
  ASSERT_NE(kinds.end(), kind) << GetParam().name;
  EXPECT_EQ(GetParam().digest, digestOf(kind->values())) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(OfArithmetic, SameResults, testing::ValuesIn(ofArithmetic));
#ifdef _WIN32
INSTANTIATE_TEST_SUITE_P(OfTheMathsLibrary, SameResults, testing::ValuesIn(ofTheMathsLibrary));
#endif

TEST(SameResultsOf, EveryKindAreExpected) {
  for (const ResultKind& kind : resultKinds()) {
    const auto isThis = [&](const Expected& one) { return one.name == kind.name; };
    if (kind.madeWith == MadeWith::arithmetic) {
      EXPECT_TRUE(std::ranges::any_of(ofArithmetic, isThis)) << kind.name;
    }
#ifdef _WIN32
    if (kind.madeWith == MadeWith::mathsLibrary) {
      EXPECT_TRUE(std::ranges::any_of(ofTheMathsLibrary, isThis)) << kind.name;
    }
#endif
  }
}

}  // namespace
}  // namespace av::test
