#pragma once

#include "host/window_picture.h"

#include <optional>
#include <string>

namespace av::test {

/// The picture in a PNG file, without its alpha; none when there is no such file or GDI+ cannot read it.
std::optional<WindowPicture> readPng(const std::string& path);

/// Writes `picture` as a PNG file without alpha; false when that fails.
bool writePng(const WindowPicture& picture, const std::string& path);

}  // namespace av::test
