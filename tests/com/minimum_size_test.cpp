// The view asks its container for at least 80 x 50 pixels; the other controls take any size.

#include "com/persistence_fixture.h"
#include "host/container.h"
#include "host/recording_container.h"

namespace av::test {
namespace {

class Resizing : public ControlOfEachClass {
 protected:
  void SetUp() override {
    ControlOfEachClass::SetUp();
    ASSERT_EQ(S_OK, m_container.open({.title = L"size", .clientSizePx = {320, 200}}));
    ASSERT_EQ(S_OK, m_container.host(m_object.Get()));
  }
  void TearDown() override {
    EXPECT_EQ(0u, m_container.close());
    ControlOfEachClass::TearDown();
  }

  void give(const RECT& rect) {
    const auto inPlace = face<IOleInPlaceObject>();
    const RECT clip{0, 0, 320, 200};
    ASSERT_EQ(S_OK, inPlace->SetObjectRects(&rect, &clip));
  }

  void expectPlace(const RECT& expected) {
    RECT place{};
    GetWindowRect(m_container.controlWindow(), &place);
    MapWindowPoints(nullptr, m_container.window(), reinterpret_cast<POINT*>(&place), 2);
    EXPECT_EQ(expected.left, place.left);
    EXPECT_EQ(expected.top, place.top);
    EXPECT_EQ(expected.right, place.right);
    EXPECT_EQ(expected.bottom, place.bottom);
  }

  avhost::Container m_container;
};

class ViewSize : public Resizing {};

TEST_P(ViewSize, SixtyByFortyEndsAtEightyByFifty) {
  give({10, 20, 70, 60});
  expectPlace({10, 20, 90, 70});
  EXPECT_EQ(90, m_container.site()->controlRect().right) << "the container knows";
}

TEST_P(ViewSize, AHundredByFortyEndsAtAHundredByFifty) {
  give({0, 0, 100, 40});
  expectPlace({0, 0, 100, 50});
}

TEST_P(ViewSize, SixtyByAHundredEndsAtEightyByAHundred) {
  give({5, 6, 65, 106});
  expectPlace({5, 6, 85, 106});
}

TEST_P(ViewSize, OnePixelMissingIsTooSmallOnEitherSide) {
  give({0, 0, 79, 50});
  expectPlace({0, 0, 80, 50});
  give({0, 0, 80, 49});
  expectPlace({0, 0, 80, 50});
  give({0, 0, 0, 0});
  expectPlace({0, 0, 80, 50});
}

/// A host that moves the window itself is asked for room at the window's new place.
TEST_P(ViewSize, GrowsFromWhereItsWindowWasMovedTo) {
  give({10, 20, 210, 120});
  ASSERT_TRUE(MoveWindow(m_container.controlWindow(), 33, 44, 200, 100, TRUE));
  ASSERT_TRUE(SetWindowPos(m_container.controlWindow(), nullptr, 0, 0, 60, 40, SWP_NOMOVE | SWP_NOZORDER));
  expectPlace({33, 44, 113, 94});
  ASSERT_TRUE(MoveWindow(m_container.controlWindow(), -7, -8, 30, 200, TRUE));  // both at once
  expectPlace({-7, -8, 73, 192});
}

TEST_P(ViewSize, TheMessagesOwnSizeIsWhatCounts) {
  give({10, 20, 210, 120});
  SendMessageW(m_container.controlWindow(), WM_SIZE, SIZE_RESTORED, MAKELPARAM(100, 40));
  expectPlace({10, 20, 110, 70});
}

TEST_P(ViewSize, EightyByFiftyIsLargeEnough) {
  give({3, 4, 83, 54});
  expectPlace({3, 4, 83, 54});
  EXPECT_EQ(320, m_container.site()->controlRect().right) << "the container was not asked";
}

INSTANTIATE_TEST_SUITE_P(Type, ViewSize, testing::Values(1));

class AnySize : public Resizing {};

TEST_P(AnySize, IsTaken) {
  give({10, 20, 70, 60});
  expectPlace({10, 20, 70, 60});
}

INSTANTIATE_TEST_SUITE_P(Type, AnySize, testing::Values(2, 3));

class ViewFromTheStart : public ControlOfEachClass {};

TEST_P(ViewFromTheStart, ASmallPlaceGrowsOnActivation) {
  avhost::Container container;
  ASSERT_EQ(S_OK, container.open({.title = L"small", .clientSizePx = {300, 30}}));
  ASSERT_EQ(S_OK, container.host(m_object.Get()));
  RECT client{};
  GetClientRect(container.controlWindow(), &client);
  EXPECT_EQ(300, client.right);
  EXPECT_EQ(50, client.bottom);
  EXPECT_EQ(0u, container.close());
}

TEST_P(ViewFromTheStart, AnInactiveOneAsksNobody) {
  RecordingContainer container({.controlSize = {60, 40}});
  ComPtr<IOleObject> control = m_object;
  container.take(std::move(control));
  ASSERT_EQ(S_OK, container.site());
  EXPECT_EQ(E_UNEXPECTED, container.resize({30, 20})) << "it has no place yet";
  ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(1, container.log.count("IOleInPlaceSite::OnPosRectChange"));
  ASSERT_EQ(S_OK, container.inPlaceDeactivate());
  EXPECT_EQ(E_UNEXPECTED, container.resize({30, 20}));
  EXPECT_EQ(1, container.log.count("IOleInPlaceSite::OnPosRectChange"));
  ASSERT_EQ(S_OK, container.unsite());
  container.releaseControl();
  EXPECT_TRUE(isLeftAlone(container));
}

INSTANTIATE_TEST_SUITE_P(Type, ViewFromTheStart, testing::Values(1));

}  // namespace
}  // namespace av::test
