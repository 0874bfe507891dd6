#include "player/win/snapshot.h"

#include "player/win/picture.h"

#include <shlobj.h>
#include <wrl/client.h>

namespace avplayer {

namespace {

namespace fs = std::filesystem;

/// The control draws itself into the rectangle: what covers its window does not matter.
bool drawControl(HostedControl& control, HDC context, const RECT& rect) {
  Microsoft::WRL::ComPtr<IViewObject> view;
  if (FAILED(control.control().QueryInterface(IID_IViewObject, reinterpret_cast<void**>(view.GetAddressOf()))))
    return false;
  const RECTL bounds = {rect.left, rect.top, rect.right, rect.bottom};
  return SUCCEEDED(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, context, &bounds, nullptr, nullptr, 0));
}

SIZE sizeOf(HostedControl& control) {
  RECT client = {};
  GetClientRect(control.container().window(), &client);
  return {client.right, client.bottom};
}

}  // namespace

bool saveSnapshot(HostedControl& control, const fs::path& file) {
  const SIZE size = sizeOf(control);
  const Picture picture(size.cx, size.cy);
  return drawControl(control, picture.context(), {0, 0, size.cx, size.cy}) && picture.savePng(file);
}

bool saveStage(Stage& stage, Controls& controls, const fs::path& file) {
  RECT client = {};
  GetClientRect(stage.hwnd(), &client);
  const Picture picture(client.right, client.bottom);
  stage.drawGround(picture.context(), client);
  bool good = true;
  for (HostedControl& control : controls) {
    const SIZE size = sizeOf(control);
    POINT corner = {};
    MapWindowPoints(control.container().window(), stage.hwnd(), &corner, 1);
    good =
        drawControl(control, picture.context(), {corner.x, corner.y, corner.x + size.cx, corner.y + size.cy}) && good;
  }
  return good && picture.savePng(file);
}

bool saveWindow(HWND window, const fs::path& file) {
  RECT whole = {}, client = {};
  GetWindowRect(window, &whole);
  GetClientRect(window, &client);
  MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&client), 2);
  // The menu lies above the client area, and the title above the menu.
  MENUBARINFO menu = {};
  menu.cbSize = sizeof menu;
  const bool hasMenu = GetMenuBarInfo(window, OBJID_MENU, 0, &menu) && menu.rcBar.bottom > menu.rcBar.top;
  const LONG top = hasMenu ? menu.rcBar.top : client.top;
  const int width = client.right - client.left, height = client.bottom - top;
  const Picture picture(width, height);
  HDC source = GetWindowDC(window);
  const BOOL copied =
      BitBlt(picture.context(), 0, 0, width, height, source, client.left - whole.left, top - whole.top, SRCCOPY);
  ReleaseDC(window, source);
  return copied && picture.savePng(file);
}

fs::path newSnapshotFile(const fs::path& folder, const std::wstring& name) {
  fs::path place = folder;
  wchar_t pictures[MAX_PATH] = {};
  if (place.empty() && SUCCEEDED(SHGetFolderPathW(nullptr, CSIDL_MYPICTURES | CSIDL_FLAG_CREATE, nullptr, 0, pictures)))
    place = pictures;
  SYSTEMTIME now;
  GetLocalTime(&now);
  wchar_t time[32];
  wsprintfW(time, L"%04d-%02d-%02d %02d.%02d.%02d", now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute,
            now.wSecond);
  const std::wstring stem = L"QELAudioVisualization4 " + name + L" " + time;
  fs::path file = place / (stem + L".png");
  std::error_code error;
  for (int number = 2; fs::exists(file, error); ++number)
    file = place / (stem + L" (" + std::to_wstring(number) + L").png");
  return file;
}

}  // namespace avplayer
