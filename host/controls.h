#pragma once

// The way to the controls in one call: COM for the thread, and the library wherever it is. For hosts; C++14 and
// the Windows headers only.
//
//   avhost::Controls controls;
//   if (FAILED(controls.open())) ...
//   Microsoft::WRL::ComPtr<IAudioVisualization4Type2> meter;
//   controls.create(__uuidof(CAudioVisualization4Type2), meter.GetAddressOf());

#include "host/create.h"

#include <windows.h>

#include <objbase.h>

namespace avhost {

/// Makes the calling thread a single-threaded apartment and creates controls in it. Outlives the controls that it
/// creates, and is used and destroyed on one thread. [control thread]
///
/// Whichever way is taken, the controls tick: the library finds the proxy of its timer by a manifest of its own, so that
/// neither a registration nor an active context is needed for it. What ticks do need is a thread that pumps messages
/// (the view and the analyser also their activation, the meter its first block). The context of the manifest stays open
/// in here for what a host does itself, see activationContext().
class Controls {
 public:
  /// How the library was found.
  enum class Way {
    none,
    manifest,     ///< QELAudioVisualization4.manifest, with the DLL beside it
    library,      ///< the DLL by its path
    registration  ///< the registry, or the program's own manifest
  };

  Controls() = default;
  Controls(const Controls&) = delete;
  Controls& operator=(const Controls&) = delete;

  /// Finds the library: by its manifest in `folder` (null: that of the running program), then by the DLL there, then by
  /// its registration. A way counts when a control could be made by it. Fails with the loader's error when the DLL is
  /// there and cannot be loaded (ERROR_BAD_EXE_FORMAT: the other architecture's), otherwise as the registration did
  /// (REGDB_E_CLASSNOTREG: there is no library); with RPC_E_CHANGED_MODE when the thread is in the multi-threaded
  /// apartment, where controls cannot live; with E_UNEXPECTED when it is open already.
  HRESULT open(const wchar_t* folder = nullptr) noexcept {
    const HRESULT possible = begin();
    if (FAILED(possible)) return possible;
    wchar_t path[1024];
    if (SUCCEEDED(filePath(folder, L"QELAudioVisualization4.manifest", path)) && SUCCEEDED(openManifest(path)))
      return S_OK;
    HRESULT loaded = filePath(folder, L"QELAudioVisualization4.dll", path);
    if (SUCCEEDED(loaded)) loaded = openLibrary(path);
    if (SUCCEEDED(loaded)) return loaded;
    const HRESULT registered = openRegistered();
    return FAILED(registered) && loaded != HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND) ? loaded : registered;
  }

  /// Through the manifest file at `path`, which lies beside the DLL.
  HRESULT openManifest(const wchar_t* path) noexcept {
    const HRESULT result = begin();
    return FAILED(result) ? result : finish(Way::manifest, m_manifest.openFile(path));
  }

  /// Through the DLL at `path` alone.
  HRESULT openLibrary(const wchar_t* path) noexcept {
    const HRESULT result = begin();
    return FAILED(result) ? result : finish(Way::library, m_library.load(path));
  }

  /// Through what regsvr32 wrote, or the manifest that the program itself carries.
  HRESULT openRegistered() noexcept {
    const HRESULT result = begin();
    return FAILED(result) ? result : finish(Way::registration, S_OK);
  }

  Way way() const noexcept { return m_way; }

  /// Creates a control in this thread's apartment; `*object` is null on failure, E_UNEXPECTED before open().
  template <class Interface>
  HRESULT create(REFCLSID classId, Interface** object) const noexcept {
    if (!object) return E_POINTER;
    *object = nullptr;
    switch (m_way) {
      case Way::manifest: return m_manifest.create(classId, object);
      case Way::library: return m_library.create(classId, object);
      case Way::registration: return createRegistered(classId, object);
      default: return E_UNEXPECTED;
    }
  }

  /// Open after the way of the manifest, for hosts that marshal a control's interface to another apartment themselves:
  /// ActivationContext::Active makes it the thread's while they do. By the library's path alone that is not possible for
  /// the dual interfaces.
  const ActivationContext& activationContext() const noexcept { return m_manifest; }

 private:
  HRESULT begin() noexcept {
    if (m_way != Way::none) return E_UNEXPECTED;
    return FAILED(m_apartment.result()) ? m_apartment.result() : S_OK;
  }

  /// Takes the way if a control can be made by it, otherwise leaves nothing of it.
  HRESULT finish(Way way, HRESULT result) noexcept {
    if (SUCCEEDED(result)) {
      m_way = way;
      // The view stands for all three: one DLL holds them.
      static constexpr CLSID viewClass = {0x62D89C1C, 0x1C5B, 0x467C, {0x94, 0x4F, 0xF8, 0x22, 0xCB, 0x0D, 0x62, 0x78}};
      IUnknown* view = nullptr;
      result = create(viewClass, &view);
      if (view) view->Release();
    }
    if (FAILED(result)) {
      m_way = Way::none;
      m_manifest.close();
      m_library.unload();
    }
    return result;
  }

  Apartment m_apartment;  // first: the last to go
  ActivationContext m_manifest;
  ControlLibrary m_library;
  Way m_way = Way::none;
};

}  // namespace avhost
