#pragma once

#include "common/line_list.h"
#include "gfx/win/dib_surface.h"
#include "gfx/win/gdi_frame_painter.h"
#include "gfx/win/gdi_handles.h"
#include "type3/bands.h"
#include "type3/column_images.h"
#include "type3/frame.h"
#include "type3/layout.h"
#include "type3/settings.h"

#include <windows.h>

#include <ocidl.h>
#include <wrl/client.h>

#include <optional>
#include <vector>

namespace av::type3 {

/// The analyser's picture: the scale font, the layout with its column images, and the off-screen surface that every paint
/// goes through.
///
/// Strips, unlit columns, texts and border are drawn when a property, the layout or the frequency axis has changed, and
/// copied from the last time otherwise: they are most of the work of a frame. [control thread]
class AnalyserPicture {
 public:
  /// Makes the default font.
  AnalyserPicture() noexcept;

  /// Computes layout and column images of the control's own picture, `size` large. Takes notice of a font object whose
  /// properties a host has changed since the last time. Throws std::bad_alloc.
  void layout(const AnalyserSettings& settings, Size size);

  /// Makes the column images of the own picture anew. Throws std::bad_alloc.
  void rebuild(const AnalyserSettings& settings);

  /// Size of the own picture; empty before the first layout.
  Size size() const noexcept { return m_own.layout.size; }
  /// Whether the own picture's layout is what it should be. Where the system failed to measure texts it is made again.
  bool isLaidOut() const noexcept { return m_own.layout.size != Size{} && m_own.complete; }
  /// Height of its column area in pixels.
  int columnAreaHeightPx() const noexcept { return m_own.layout.areaHeightPx; }

  /// Draws the frame of this moment and copies it to `bounds` of `target` in one piece: the own picture or, where the size
  /// is another one, a picture of that size with a layout of its own, to which the columns are scaled.
  /// The columns are copied under their lock and drawn without it. Throws std::bad_alloc, with nothing drawn. Nothing is
  /// drawn either where GDI fails: the target keeps what it shows, and the next paint tries again.
  void paint(HDC target, const RECT& bounds, const AnalyserSettings& settings, const BandAxis& axis, LineList& columns);

  /// The scale font, counted for the caller.
  HRESULT font(IFontDisp** font) const;
  /// Takes another scale font and gives the old one back in its place. The drawing font is made when it is next needed.
  void exchangeFont(Microsoft::WRL::ComPtr<IFontDisp>& font) noexcept;

  /// Lets all drawing resources go: the control is at its end.
  void discard() noexcept;

 private:
  /// How a picture of one size is drawn.
  struct Arrangement {
    AnalyserLayout layout;
    ColumnImages images;
    bool complete = true;  ///< false: the system failed to measure texts, so that the layout does without
  };
  /// What the kept furniture shows.
  struct FurnitureKey {
    AnalyserSettings settings;
    BandAxis axis;

    friend bool operator==(const FurnitureKey&, const FurnitureKey&) = default;
  };

  void prepareFont();
  void arrange(Arrangement& arrangement, const AnalyserSettings& settings, Size size);
  bool paintFurniture(const Arrangement& arrangement, const AnalyserSettings& settings, const BandAxis& axis);
  bool drawFurniture(const ColumnImages& images);

  Microsoft::WRL::ComPtr<IFontDisp> m_font;
  LOGFONTW m_fontDescription{};  // what m_drawingFont was made from
  GdiObject m_drawingFont;       // made from m_font when it is first needed
  DibSurface m_surface;
  GdiFramePainter m_painter{m_surface};
  Arrangement m_own;
  Arrangement m_elsewhere;
  std::vector<LineInfo> m_columns;
  AnalyserFrame m_frame;

  std::optional<FurnitureKey> m_furniture;  // of the own picture; empty: its pixels are to be drawn again
  std::vector<Argb> m_furniturePixels;
};

}  // namespace av::type3
