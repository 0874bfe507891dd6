#pragma once

#include "host/container.h"
#include "host/dll_test.h"

#include <string>

namespace av::test {

/// A test that runs on each of the three classes; instantiate with `INSTANTIATE_TEST_SUITE_P(, Suite, eachControl)`.
class EachControlTest : public DllTest, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    static const CLSID classes[] = {CLSID_CAudioVisualization4Type1, CLSID_CAudioVisualization4Type2,
                                    CLSID_CAudioVisualization4Type3};
    m_control = create<IOleObject>(classes[GetParam() - 1]);
    ASSERT_TRUE(m_control);
  }

  void TearDown() override {
    EXPECT_EQ(0u, m_container.close());
    EXPECT_EQ(0u, m_control ? m_control.Reset() : 0u);
    DllTest::TearDown();
  }

  template <class Interface>
  ComPtr<Interface> as() {
    ComPtr<Interface> face;
    EXPECT_EQ(S_OK, m_control.As(&face));
    return face;
  }

  SIZEL extent() {
    SIZEL size{};
    EXPECT_EQ(S_OK, m_control->GetExtent(DVASPECT_CONTENT, &size));
    return size;
  }

  ComPtr<IOleObject> m_control;
  avhost::Container m_container;
};

inline const auto eachControl = testing::Values(1, 2, 3);

inline bool operator==(const SIZEL& a, const SIZEL& b) { return a.cx == b.cx && a.cy == b.cy; }

}  // namespace av::test
