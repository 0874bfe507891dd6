// What the picture interface answers when it is asked wrongly, or for what a control has not.

#include "host/each_control_test.h"

#include <ocidl.h>

#include <cstdint>

namespace av::test {
namespace {

class ViewObjectAnswers : public EachControlTest {
 protected:
  /// Draws into a memory bitmap of 40 × 30 pixels.
  HRESULT draw(DWORD aspect, const RECTL* bounds, bool withTarget = true) {
    const auto view = as<IViewObjectEx>();
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, 40, 30);
    ReleaseDC(nullptr, screen);
    HGDIOBJ old = SelectObject(memory, bitmap);
    const HRESULT result =
        view->Draw(aspect, -1, nullptr, nullptr, nullptr, withTarget ? memory : nullptr, bounds, nullptr, nullptr, 0);
    EXPECT_EQ(GM_COMPATIBLE, GetGraphicsMode(memory));
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    return result;
  }
};

TEST_P(ViewObjectAnswers, DrawingNeedsATargetARectangleAndTheContentAspect) {
  const RECTL bounds{0, 0, 40, 30};
  EXPECT_EQ(S_OK, draw(DVASPECT_CONTENT, &bounds));
  EXPECT_EQ(E_INVALIDARG, draw(DVASPECT_CONTENT, nullptr));
  EXPECT_EQ(E_INVALIDARG, draw(DVASPECT_CONTENT, &bounds, false));
  for (const DWORD aspect : {DWORD{DVASPECT_ICON}, DWORD{DVASPECT_THUMBNAIL}, DWORD{DVASPECT_DOCPRINT}, DWORD{0}})
    EXPECT_EQ(DV_E_DVASPECT, draw(aspect, &bounds));
}

TEST_P(ViewObjectAnswers, EmptyTinyAndUpsideDownRectanglesAreDrawnAsFarAsTheyGo) {
  const RECTL rects[] = {{5, 5, 5, 5}, {5, 5, 6, 6}, {0, 0, 40, 0}, {40, 30, 0, 0}, {-100, -100, -50, -50}};
  for (const RECTL& rect : rects) EXPECT_EQ(S_OK, draw(DVASPECT_CONTENT, &rect));
}

TEST_P(ViewObjectAnswers, PartsDevicesAndWindowsAreNotLookedAt) {
  HDC screen = GetDC(nullptr);
  HDC memory = CreateCompatibleDC(screen);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, 40, 30);
  ReleaseDC(nullptr, screen);
  HGDIOBJ old = SelectObject(memory, bitmap);
  const auto view = as<IViewObjectEx>();
  const RECTL bounds{0, 0, 40, 30};
  void* const wild = reinterpret_cast<void*>(std::uintptr_t{0xDEAD0});
  EXPECT_EQ(S_OK, view->Draw(DVASPECT_CONTENT, 77, wild, static_cast<DVTARGETDEVICE*>(wild), static_cast<HDC>(wild),
                             memory, &bounds, static_cast<RECTL*>(wild), nullptr, 77));
  EXPECT_EQ(RGB(0, 0, 0), GetPixel(memory, 2, 2));
  SIZEL size{};
  EXPECT_EQ(S_OK, view->GetExtent(DVASPECT_CONTENT, 77, static_cast<DVTARGETDEVICE*>(wild), &size));
  EXPECT_TRUE(extent() == size);
  SelectObject(memory, old);
  DeleteObject(bitmap);
  DeleteDC(memory);
}

TEST_P(ViewObjectAnswers, NullOutPointersAreRefused) {
  const auto view = as<IViewObjectEx>();
  const RECT bounds{0, 0, 10, 10};
  EXPECT_EQ(E_POINTER, view->GetColorSet(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, nullptr));
  EXPECT_EQ(E_POINTER, view->GetExtent(DVASPECT_CONTENT, -1, nullptr, nullptr));
  EXPECT_EQ(E_POINTER, view->GetViewStatus(nullptr));
  EXPECT_EQ(E_POINTER, view->QueryHitPoint(DVASPECT_CONTENT, &bounds, POINT{}, 0, nullptr));
  EXPECT_EQ(E_POINTER, view->QueryHitRect(DVASPECT_CONTENT, &bounds, &bounds, 0, nullptr));
  DWORD hit = 77;
  EXPECT_EQ(E_POINTER, view->QueryHitPoint(DVASPECT_CONTENT, nullptr, POINT{}, 0, &hit));
  EXPECT_EQ(E_POINTER, view->QueryHitRect(DVASPECT_CONTENT, &bounds, nullptr, 0, &hit));
  EXPECT_EQ(E_POINTER, view->QueryHitRect(DVASPECT_CONTENT, nullptr, &bounds, 0, &hit));
}

TEST_P(ViewObjectAnswers, OtherAspectsAreNoneOfItsOwn) {
  const auto view = as<IViewObjectEx>();
  const RECT bounds{0, 0, 10, 10};
  DWORD hit = 0;
  SIZEL size{7, 7};
  EXPECT_EQ(DV_E_DVASPECT, view->QueryHitPoint(DVASPECT_ICON, &bounds, POINT{}, 0, &hit));
  EXPECT_EQ(DV_E_DVASPECT, view->QueryHitRect(DVASPECT_ICON, &bounds, &bounds, 0, &hit));
  EXPECT_EQ(DV_E_DVASPECT, view->GetExtent(DVASPECT_ICON, -1, nullptr, &size));
  EXPECT_EQ(0, size.cx);
}

TEST_P(ViewObjectAnswers, AdviceMayBeAskedForWithAnyPointerLeftOut) {
  const auto view = as<IViewObjectEx>();
  EXPECT_EQ(S_OK, view->SetAdvise(DVASPECT_CONTENT, ADVF_PRIMEFIRST, nullptr));
  EXPECT_EQ(S_OK, view->GetAdvise(nullptr, nullptr, nullptr));
  ComPtr<IAdviseSink> sink;
  DWORD aspects = 0;
  EXPECT_EQ(S_OK, view->GetAdvise(&aspects, nullptr, &sink));
  EXPECT_FALSE(sink);
  EXPECT_EQ(DWORD{DVASPECT_CONTENT}, aspects);
}

TEST_P(ViewObjectAnswers, WhatAControlHasNotIsNotImplemented) {
  const auto view = as<IViewObjectEx>();
  DWORD token = 0;
  EXPECT_EQ(E_NOTIMPL, view->Freeze(DVASPECT_CONTENT, -1, nullptr, &token));
  EXPECT_EQ(E_NOTIMPL, view->Unfreeze(1));
  RECTL bounds{1, 2, 3, 4};
  EXPECT_EQ(E_NOTIMPL, view->GetRect(DVASPECT_CONTENT, &bounds));
  EXPECT_EQ(0, bounds.right);
  EXPECT_EQ(E_NOTIMPL, view->GetNaturalExtent(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, nullptr));
  LOGPALETTE* colours = reinterpret_cast<LOGPALETTE*>(this);
  EXPECT_EQ(S_FALSE, view->GetColorSet(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, &colours));
  EXPECT_EQ(nullptr, colours);
}

INSTANTIATE_TEST_SUITE_P(, ViewObjectAnswers, eachControl);

}  // namespace
}  // namespace av::test
