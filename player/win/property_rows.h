#pragma once

#include "player/win/hosted_control.h"
#include "player/win/theme.h"
#include "player/win/window.h"

#include <functional>
#include <string>
#include <vector>

namespace avplayer {

/// What a row tells when it gets the keyboard or has put a value.
struct RowMessage {
  std::wstring title;
  std::wstring text;
  bool bad = false;
};

/// The scrolling list with a row for every property of one control: its name and a field that suits its kind.
class PropertyRows final : public Window {
 public:
  /// Called when a row has something to say.
  std::function<void(const RowMessage&)> onMessageText;
  /// Called after every put, with the setting and its answer.
  std::function<void(const Setting&, std::string_view, const Answer&)> onPut;

  bool create(HWND parent);
  ~PropertyRows() override = default;

  /// Makes the rows anew. `control` outlives them.
  void build(HostedControl& control, const Theme& theme);
  /// Shows only the properties with `text` in their names; all for an empty text.
  void filter(const std::wstring& text);
  /// Reads all values again; the field that is being edited keeps its text.
  void refresh();
  /// Enter: puts the field with the keyboard. Escape: brings its value back. False: the key was for somebody else.
  bool onKey(WPARAM key);
  void focusFirst();

 private:
  enum class Field { check, list, number, text, colour, font, fixed };
  struct Row {
    const Setting* setting = nullptr;  ///< null: a heading
    Field field = Field::fixed;
    HWND label = nullptr;
    HWND main = nullptr;   ///< the field itself
    HWND extra = nullptr;  ///< a number's arrows, a colour's swatch
    std::string shown;     ///< the value as it was last read
    bool visible = true;
  };

  LRESULT onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  void addHeading(const wchar_t* text);
  void addRow(const Setting& setting);
  void makeField(Row& row);
  void arrange();
  void placeRow(Row& row, const RowLayout& layout) const;
  static bool hasFrame(const Row& row);
  Box frameOf(const Row& row, const RowLayout& layout) const;
  void scrollTo(int position);
  void onScrollBar(WORD request);
  void showRow(const Row& row);
  void paint();

  Row* rowOf(HWND window);
  void onCommand(HWND window, WORD notice);
  void step(Row& row, int direction);
  void commit(Row& row);
  void put(Row& row, const std::string& text);
  void tell(const Row& row);
  void showValue(Row& row, bool force);
  void chooseColour(Row& row);
  void chooseFont(Row& row);
  void drawField(const DRAWITEMSTRUCT& item);
  std::string fieldText(const Row& row) const;

  HostedControl* m_control = nullptr;
  const Theme* m_theme = nullptr;
  std::vector<Row> m_rows;
  std::vector<RowLayout> m_layouts;  ///< of the visible rows, in their order
  int m_scroll = 0;
  int m_height = 0;  ///< of the whole list
  bool m_updating = false;
};

}  // namespace avplayer
