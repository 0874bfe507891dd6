#pragma once

#include "host/container.h"
#include "host/late_bound_test.h"

namespace av::test {

// Not LineColor and ScaleFont, which are more than a number.
inline const NumberRow numberRows[] = {
    {L"VisualizationType", 5, VT_I4, 1, 2},
    {L"VisualizationSmooth", 6, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
    {L"BackColor", 10, VT_UI4, 0, 0x00123456},
    {L"GridColor", 11, VT_UI4, 0x00A9A9A9, 0x000000FF},
    {L"ScaleColor", 12, VT_UI4, static_cast<LONG>(GetSysColor(COLOR_BTNFACE)), 0x0000FFFF},
    {L"TextColor", 13, VT_UI4, 0, 0x0000FF00},
    {L"BorderColor", 14, VT_UI4, 0, 0x00FF0000},
    {L"ScaleXVisible", 20, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
    {L"ScaleYVisible", 21, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
    {L"ScaleYMin", 23, VT_I4, 0, 10},
    {L"ScaleYMax", 24, VT_I4, 100, 50},
    {L"GridVisible", 25, VT_BOOL, VARIANT_TRUE, VARIANT_FALSE},
    {L"DynamicRange", 30, VT_I4, 90, 60},
    {L"BorderType", 31, VT_I4, 0, 2},
    {L"FFTWindowSize", 40, VT_I4, 1024, 256},
    {L"FFTWindowType", 41, VT_I4, 0, 3},
    {L"FFTViewType", 42, VT_I4, 1, 2},
};

inline constexpr DISPID lineColorId = 15;
inline constexpr DISPID scaleFontId = 22;

/// A test with a view of its own, not hosted yet.
class ViewTest : public LateBoundTest {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    m_view = createView();
    ASSERT_TRUE(m_view);
  }

  void TearDown() override {
    EXPECT_EQ(0u, m_container.close());
    EXPECT_EQ(0u, m_view ? m_view.Reset() : 0u);
    DllTest::TearDown();
  }

  /// In-place active, with a window of that client size, painted once.
  void activate(SIZE clientSizePx) {
    ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = clientSizePx, .positionPx = {0, 0}}));
    ASSERT_EQ(S_OK, m_container.host(m_view.Get()));
    UpdateWindow(m_container.controlWindow());
  }

  IDispatch* dispatch() override { return m_view.Get(); }

  OLE_COLOR lineColor(LONG channel) {
    OLE_COLOR colour = 0xFFFFFFFF;
    EXPECT_EQ(S_OK, m_view->get_LineColor(channel, &colour));
    return colour;
  }

  avhost::Container m_container;
  ComPtr<IAudioVisualization4Type1> m_view;
};

}  // namespace av::test
