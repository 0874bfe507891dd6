// Controls that draw where the caller's device context says: its units, origins and transformations, and the resolution
// of the display.

#include "host/each_control_test.h"
#include "support/win/memory_picture.h"

#include <ocidl.h>
#include <olectl.h>

#include <cstdlib>
#include <functional>
#include <string>

namespace av::test {
namespace {

/// On displays of more than 96 DPI a program sees the real resolution only if it says that it knows about it. The suite
/// runs on displays of 96 and of 192 DPI.
class OnAnyDisplay : public EachControlTest {
 protected:
  void SetUp() override {
    SetProcessDPIAware();
    EachControlTest::SetUp();
  }

  static int pixelsPerInch() {
    HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi;
  }

  void draw(const MemoryPicture& picture, const RECTL& bounds) {
    EXPECT_EQ(S_OK, as<IViewObject>()->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, picture.context(), &bounds,
                                            nullptr, nullptr, 0));
  }

  /// What is drawn into `logical` units, once `prepare` has set them up, has to be what is drawn into `pixels`.
  void expectDrawnAt(const RECTL& pixels, const RECTL& logical, const std::function<void(HDC)>& prepare) {
    const MemoryPicture expected(240, 160), actual(240, 160), untouched(240, 160);
    draw(expected, pixels);
    ASSERT_NE(untouched.pixels(), expected.pixels());
    prepare(actual.context());
    const int mode = GetMapMode(actual.context());
    draw(actual, logical);
    EXPECT_EQ(expected.pixels(), actual.pixels());
    EXPECT_EQ(mode, GetMapMode(actual.context())) << "the context is the caller's";
  }
};

TEST_P(OnAnyDisplay, IsTheDisplayThatWasAskedFor) {
  const char* const asked = std::getenv("AV_DPI");
  EXPECT_EQ(asked ? std::string(asked) : "96", std::to_string(pixelsPerInch()));
}

TEST_P(OnAnyDisplay, TwoInchesAre5080Himetric) {
  const LONG inch = pixelsPerInch();
  SIZEL size{5080, 5080};
  EXPECT_TRUE(size == extent()) << "the size of a new control";
  ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = {2 * inch, inch}}));
  ASSERT_EQ(S_OK, m_container.host(m_control.Get()));
  size = {5080, 2540};
  EXPECT_TRUE(size == extent());
  RECT client{};
  GetClientRect(m_container.controlWindow(), &client);
  EXPECT_EQ(2 * inch, client.right);
  EXPECT_EQ(inch, client.bottom);
}

TEST_P(OnAnyDisplay, ThePictureFollowsOriginsOfWindowAndViewport) {
  expectDrawnAt({30, 20, 190, 120}, {50, 60, 210, 160}, [](HDC context) {
    SetWindowOrgEx(context, 25, 45, nullptr);
    SetViewportOrgEx(context, 5, 5, nullptr);
  });
}

TEST_P(OnAnyDisplay, ThePictureFollowsUnitsOfTheCallersOwn) {
  expectDrawnAt({30, 20, 190, 120}, {300, -100, 1900, -600}, [](HDC context) {
    SetMapMode(context, MM_ANISOTROPIC);
    SetWindowExtEx(context, 10, -5, nullptr);  // ten to the pixel across, five up
    SetViewportExtEx(context, 1, 1, nullptr);
  });
}

TEST_P(OnAnyDisplay, ThePictureFollowsATransformation) {
  expectDrawnAt({30, 20, 190, 120}, {10, 0, 90, 50}, [](HDC context) {
    SetGraphicsMode(context, GM_ADVANCED);
    const XFORM twiceAsLarge{2, 0, 0, 2, 10, 20};
    SetWorldTransform(context, &twiceAsLarge);
  });
}

TEST_P(OnAnyDisplay, AnInchOfHimetricIsAnInch) {
  const LONG inch = pixelsPerInch();
  // GDI takes these units from the size that the display says it has, not from its logical resolution.
  HDC screen = GetDC(nullptr);
  const LONG across = MulDiv(2540, GetDeviceCaps(screen, HORZRES), 100 * GetDeviceCaps(screen, HORZSIZE));
  const LONG down = MulDiv(1270, GetDeviceCaps(screen, VERTRES), 100 * GetDeviceCaps(screen, VERTSIZE));
  ReleaseDC(nullptr, screen);
  EXPECT_NEAR(inch, across, 2);
  expectDrawnAt({0, 0, across, down}, {0, 0, 2540, -1270}, [](HDC context) { SetMapMode(context, MM_HIMETRIC); });
}

INSTANTIATE_TEST_SUITE_P(, OnAnyDisplay, eachControl);

}  // namespace
}  // namespace av::test
