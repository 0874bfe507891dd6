#pragma once

#include "host/call_log.h"

#include <windows.h>

#include <oleidl.h>
#include <wrl/client.h>

namespace av::test {

/// The frame window of a recording container, or its document window: one class, since a frame is a window with menus.
class RecordingWindow final : public IOleInPlaceFrame {
 public:
  /// `prefix` begins every call that is written down: "frame" or "document".
  RecordingWindow(CallLog& log, const std::string& prefix, bool isFrame)
      : party(log, prefix),
        m_prefix(prefix + " " + (isFrame ? "IOleInPlaceFrame::" : "IOleInPlaceUIWindow::")),
        m_isFrame(isFrame) {}

  CountedParty party;
  HWND window = nullptr;

  IOleInPlaceActiveObject* activeObject() const { return m_activeObject.Get(); }
  /// A container that gives up its control keeps no active object of it, also none that is still to come.
  void letGo(bool gone) {
    m_gone = gone;
    m_activeObject.Reset();
  }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IOleWindow && iid != IID_IOleInPlaceUIWindow &&
        !(m_isFrame && iid == IID_IOleInPlaceFrame))
      return E_NOINTERFACE;
    *object = static_cast<IOleInPlaceFrame*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return party.addRef(); }
  STDMETHODIMP_(ULONG) Release() override { return party.release(); }

  STDMETHODIMP GetWindow(HWND* handle) override {
    const HRESULT result = note("GetWindow");
    if (handle) *handle = SUCCEEDED(result) ? window : nullptr;
    return result;
  }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return note("ContextSensitiveHelp"); }
  STDMETHODIMP GetBorder(RECT*) override { return note("GetBorder", "", INPLACE_E_NOTOOLSPACE); }
  STDMETHODIMP RequestBorderSpace(const BORDERWIDTHS*) override {
    return note("RequestBorderSpace", "", INPLACE_E_NOTOOLSPACE);
  }
  STDMETHODIMP SetBorderSpace(const BORDERWIDTHS* widths) override {
    return note("SetBorderSpace", widths ? text(*widths) : "null");
  }
  STDMETHODIMP SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR) override {
    const HRESULT result = note("SetActiveObject", object ? "object" : "null");
    if (SUCCEEDED(result) && !m_gone) m_activeObject = object;
    return result;
  }
  STDMETHODIMP InsertMenus(HMENU, OLEMENUGROUPWIDTHS*) override { return note("InsertMenus", "", E_NOTIMPL); }
  STDMETHODIMP SetMenu(HMENU menu, HOLEMENU, HWND) override { return note("SetMenu", menu ? "menu" : "null"); }
  STDMETHODIMP RemoveMenus(HMENU) override { return note("RemoveMenus"); }
  STDMETHODIMP SetStatusText(LPCOLESTR) override { return note("SetStatusText"); }
  STDMETHODIMP EnableModeless(BOOL enable) override { return note("EnableModeless", enable ? "1" : "0"); }
  STDMETHODIMP TranslateAccelerator(MSG*, WORD) override { return note("TranslateAccelerator", "", S_FALSE); }

 private:
  HRESULT note(const char* method, const std::string& arguments = {}, HRESULT usual = S_OK) {
    return party.note(m_prefix + method, arguments, usual);
  }

  const std::string m_prefix;
  const bool m_isFrame;
  Microsoft::WRL::ComPtr<IOleInPlaceActiveObject> m_activeObject;
  bool m_gone = false;
};

/// The view-change and close sink of a recording container.
class RecordingSink final : public IAdviseSink {
 public:
  explicit RecordingSink(CallLog& log) : party(log, "sink") {}

  CountedParty party;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IAdviseSink) return E_NOINTERFACE;
    *object = static_cast<IAdviseSink*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return party.addRef(); }
  STDMETHODIMP_(ULONG) Release() override { return party.release(); }

  STDMETHODIMP_(void) OnDataChange(FORMATETC*, STGMEDIUM*) override { party.note("IAdviseSink::OnDataChange"); }
  STDMETHODIMP_(void) OnViewChange(DWORD aspect, LONG index) override {
    party.note("IAdviseSink::OnViewChange", std::to_string(aspect) + "," + std::to_string(index));
  }
  STDMETHODIMP_(void) OnRename(IMoniker*) override { party.note("IAdviseSink::OnRename"); }
  STDMETHODIMP_(void) OnSave() override { party.note("IAdviseSink::OnSave"); }
  STDMETHODIMP_(void) OnClose() override { party.note("IAdviseSink::OnClose"); }
};

/// The container behind the site, with nothing to list.
class RecordingOleContainer final : public IOleContainer {
 public:
  explicit RecordingOleContainer(CallLog& log) : party(log, "container") {}

  CountedParty party;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IOleContainer && iid != IID_IParseDisplayName) return E_NOINTERFACE;
    *object = static_cast<IOleContainer*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return party.addRef(); }
  STDMETHODIMP_(ULONG) Release() override { return party.release(); }

  STDMETHODIMP ParseDisplayName(IBindCtx*, LPOLESTR, ULONG*, IMoniker**) override {
    return party.note("IOleContainer::ParseDisplayName", "", E_NOTIMPL);
  }
  STDMETHODIMP EnumObjects(DWORD, IEnumUnknown**) override {
    return party.note("IOleContainer::EnumObjects", "", E_NOTIMPL);
  }
  STDMETHODIMP LockContainer(BOOL lock) override {
    return party.note("IOleContainer::LockContainer", lock ? "1" : "0");
  }
};

}  // namespace av::test
