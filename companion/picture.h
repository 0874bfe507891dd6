#pragma once

#include <windows.h>

#include <oleidl.h>

#include <cstddef>
#include <vector>

namespace av::companion {

/// Draws an object's content into a picture of that size and encodes it as a PNG file, which states `dpi` as its
/// resolution. Throws a Failure and std::bad_alloc.
std::vector<std::byte> drawPng(IViewObject& view, SIZE sizePx, int dpi);

/// Makes an object lay its picture out for that size, as its container's drawing does, and shows it nowhere.
void drawNowhere(IViewObject& view, SIZE sizePx) noexcept;

}  // namespace av::companion
