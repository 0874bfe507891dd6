// Verbs, closing, view notices and pictures for metafiles: what containers of an embedded object rely on.

#include "com/persistence_fixture.h"
#include "host/container.h"
#include "support/win/windowless_site.h"

#include <string>

namespace av::test {
namespace {

class EmbeddedObject : public ControlOfEachClass {};

TEST_P(EmbeddedObject, NamesItsVerbs) {
  ComPtr<IEnumOLEVERB> verbs;
  ASSERT_EQ(S_OK, m_object->EnumVerbs(&verbs));
  EXPECT_EQ(E_POINTER, m_object->EnumVerbs(nullptr));
  OLEVERB found[8] = {};
  ULONG count = 0;
  EXPECT_EQ(S_FALSE, verbs->Next(8, found, &count));
  ASSERT_EQ(5u, count);
  const LONG expected[] = {0, -1, -3, -4, -5};
  for (ULONG i = 0; i < count; ++i) {
    EXPECT_EQ(expected[i], found[i].lVerb);
    EXPECT_EQ(i == 0, (found[i].grfAttribs & OLEVERBATTRIB_ONCONTAINERMENU) != 0);
    EXPECT_TRUE(found[i].grfAttribs & OLEVERBATTRIB_NEVERDIRTIES);
    EXPECT_FALSE(std::wstring(found[i].lpszVerbName).empty());
    CoTaskMemFree(found[i].lpszVerbName);
  }
}

TEST_P(EmbeddedObject, EveryNamedVerbIsUnderstoodAndNoneMakesItDirty) {
  avhost::Container container;
  ASSERT_EQ(S_OK, container.open({.title = L"verbs", .clientSizePx = {200, 100}}));
  ASSERT_EQ(S_OK, container.host(m_object.Get()));
  ComPtr<IStream> stream;
  ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, &stream));
  ASSERT_EQ(S_OK, face<IPersistStreamInit>()->Save(stream.Get(), TRUE));
  for (const LONG verb : {0, -1, -3, -4, -5}) EXPECT_EQ(S_OK, container.doVerb(verb)) << verb;
  EXPECT_EQ(S_OK, container.doVerb(OLEIVERB_DISCARDUNDOSTATE));
  EXPECT_EQ(S_FALSE, face<IPersistStreamInit>()->IsDirty());
  EXPECT_EQ(0u, container.close());
}

/// A site that saves its control when it is asked to, as containers do.
class SavingSite final : public IOleClientSite {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IOleClientSite ? this : nullptr;
    if (*object) AddRef();
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP SaveObject() override {
    ++saves;
    if (!persist) return E_FAIL;
    ComPtr<IStream> stream;
    CreateStreamOnHGlobal(nullptr, TRUE, &stream);
    return persist->Save(stream.Get(), TRUE);
  }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP GetContainer(IOleContainer**) override { return E_NOINTERFACE; }
  STDMETHODIMP ShowObject() override { return S_OK; }
  STDMETHODIMP OnShowWindow(BOOL) override { return S_OK; }
  STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }

  IPersistStreamInit* persist = nullptr;
  int saves = 0;
  ULONG references = 1;
};

TEST_P(EmbeddedObject, ClosingSavesOnlyWhatIsDirtyAndOnlyIfAllowed) {
  SavingSite site;
  AdviseCounter sink;
  DWORD connection = 0;
  ASSERT_EQ(S_OK, m_object->SetClientSite(&site));
  ASSERT_EQ(S_OK, m_object->Advise(&sink, &connection));
  const auto persist = face<IPersistStreamInit>();
  EXPECT_EQ(S_OK, m_object->Close(OLECLOSE_SAVEIFDIRTY));
  EXPECT_EQ(0, site.saves) << "nothing has changed";
  setExtent(100, 100);
  EXPECT_EQ(S_OK, m_object->Close(OLECLOSE_NOSAVE));
  EXPECT_EQ(0, site.saves);
  EXPECT_EQ(S_OK, m_object->Close(OLECLOSE_SAVEIFDIRTY));
  EXPECT_EQ(1, site.saves);
  EXPECT_EQ(0, sink.saves) << "the site did not save it";
  EXPECT_EQ(S_OK, persist->IsDirty());
  site.persist = persist.Get();
  EXPECT_EQ(S_OK, m_object->Close(OLECLOSE_PROMPTSAVE));
  EXPECT_EQ(2, site.saves);
  EXPECT_EQ(1, sink.saves);
  EXPECT_EQ(S_FALSE, persist->IsDirty());
  EXPECT_EQ(S_OK, m_object->Close(OLECLOSE_SAVEIFDIRTY));
  EXPECT_EQ(2, site.saves);
  EXPECT_EQ(5, sink.closes);
  EXPECT_EQ(S_OK, m_object->Unadvise(connection));
  EXPECT_EQ(S_OK, m_object->SetClientSite(nullptr));
  EXPECT_EQ(1u, site.references);
  EXPECT_EQ(1u, sink.references);
}

TEST_P(EmbeddedObject, AdviseSinksThatNobodyDisconnectedAreReleasedWithTheControl) {
  AdviseCounter sink;
  DWORD connection = 0;
  ASSERT_EQ(S_OK, m_object->Advise(&sink, &connection));
  ASSERT_EQ(S_OK, face<IViewObject>()->SetAdvise(DVASPECT_CONTENT, 0, &sink));
  EXPECT_EQ(3u, sink.references);
  EXPECT_EQ(0u, m_object.Reset());
  EXPECT_EQ(1u, sink.references);
  EXPECT_EQ(0, sink.closes);
}

TEST_P(EmbeddedObject, ViewNoticesFollowTheirFlags) {
  AdviseCounter sink;
  const auto view = face<IViewObject>();
  ASSERT_EQ(S_OK, view->SetAdvise(DVASPECT_CONTENT, ADVF_PRIMEFIRST, &sink));
  EXPECT_EQ(1, sink.viewChanges);
  setExtent(100, 100);
  setExtent(100, 100);  // no change, no notice
  EXPECT_EQ(2, sink.viewChanges);
  ASSERT_EQ(S_OK, view->SetAdvise(DVASPECT_CONTENT, ADVF_ONLYONCE, &sink));
  setExtent(200, 100);
  setExtent(300, 100);
  EXPECT_EQ(3, sink.viewChanges);
  EXPECT_EQ(1u, sink.references) << "once was enough";
  ASSERT_EQ(S_OK, view->SetAdvise(DVASPECT_CONTENT, ADVF_ONLYONCE | ADVF_PRIMEFIRST, &sink));
  EXPECT_EQ(4, sink.viewChanges);
  EXPECT_EQ(1u, sink.references);
  ASSERT_EQ(S_OK, view->SetAdvise(DVASPECT_ICON, 0, &sink));
  setExtent(400, 100);
  EXPECT_EQ(4, sink.viewChanges) << "the content is another aspect";
  DWORD aspects = 0, flags = 7;
  ComPtr<IAdviseSink> kept;
  EXPECT_EQ(S_OK, view->GetAdvise(&aspects, &flags, &kept));
  EXPECT_EQ(DWORD{DVASPECT_ICON}, aspects);
  EXPECT_EQ(0u, flags);
  EXPECT_EQ(static_cast<IAdviseSink*>(&sink), kept.Get());
  EXPECT_EQ(S_OK, view->GetAdvise(nullptr, nullptr, nullptr));
  EXPECT_EQ(S_OK, view->SetAdvise(DVASPECT_CONTENT, 0, nullptr));
}

TEST_P(EmbeddedObject, ALoadedExtentChangesTheView) {
  AdviseCounter sink;
  const auto view = face<IViewObject>();
  ASSERT_EQ(S_OK, view->SetAdvise(DVASPECT_CONTENT, 0, &sink));
  ComPtr<IStream> stream;
  ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, &stream));
  const auto bytes = bytesOf({0x800, 300, 200});
  ASSERT_EQ(S_OK, stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr));
  ASSERT_EQ(S_OK, stream->Seek({}, STREAM_SEEK_SET, nullptr));
  ASSERT_EQ(S_OK, face<IPersistStreamInit>()->Load(stream.Get()));
  EXPECT_EQ(1, sink.viewChanges);
  EXPECT_EQ(S_OK, view->SetAdvise(DVASPECT_CONTENT, 0, nullptr));
}

TEST_P(EmbeddedObject, DrawsIntoMetafiles) {
  HDC metafile = CreateMetaFileW(nullptr);
  ASSERT_TRUE(metafile);
  const RECTL bounds{10, 20, 110, 70}, window{0, 0, 200, 100};
  const HRESULT drawn = face<IViewObject>()->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, metafile, &bounds,
                                                  &window, nullptr, 0);
  HMETAFILE picture = CloseMetaFile(metafile);
  EXPECT_EQ(S_OK, drawn);
  HDC screen = GetDC(nullptr);
  HDC memory = CreateCompatibleDC(screen);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, 120, 80);
  HGDIOBJ old = SelectObject(memory, bitmap);
  const RECT all{0, 0, 120, 80};
  FillRect(memory, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  EXPECT_TRUE(PlayMetaFile(memory, picture));
  EXPECT_EQ(RGB(0, 0, 0), GetPixel(memory, 12, 22));
  EXPECT_EQ(RGB(255, 255, 255), GetPixel(memory, 8, 18));
  EXPECT_EQ(RGB(255, 255, 255), GetPixel(memory, 112, 40));
  SelectObject(memory, old);
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  DeleteMetaFile(picture);
}

TEST_P(EmbeddedObject, AnotherSiteGivesTheWindowAnotherParent) {
  avhost::Container first, second;
  ASSERT_EQ(S_OK, first.open({.title = L"first", .clientSizePx = {200, 100}}));
  ASSERT_EQ(S_OK, second.open({.title = L"second", .clientSizePx = {300, 150}}));
  ASSERT_EQ(S_OK, first.host(m_object.Get()));
  const HWND old = first.controlWindow();
  ASSERT_EQ(S_OK, second.host(m_object.Get()));
  EXPECT_FALSE(IsWindow(old));
  EXPECT_FALSE(first.site()->isInPlaceActive());
  EXPECT_TRUE(second.site()->isInPlaceActive());
  EXPECT_EQ(second.window(), GetParent(second.controlWindow()));
  EXPECT_EQ(0u, second.close());
  EXPECT_EQ(0u, first.close());
}

/// The site of a window, which answers every ambient property with a failure.
TEST_P(EmbeddedObject, AmbientsThatFailOrChangeAreNoMatter) {
  avhost::Container container;
  ASSERT_EQ(S_OK, container.open({.title = L"ambients", .clientSizePx = {200, 100}}));
  WindowlessSite site(container.window());  // offers no IDispatch: every ambient fails
  ASSERT_EQ(S_OK, m_object->SetClientSite(&site));
  const auto control = face<IOleControl>();
  for (const DISPID ambient :
       {DISPID_UNKNOWN, DISPID_AMBIENT_BACKCOLOR, DISPID_AMBIENT_FONT, DISPID_AMBIENT_USERMODE, 77})
    EXPECT_EQ(S_OK, control->OnAmbientPropertyChange(ambient));
  EXPECT_EQ(S_OK, m_object->DoVerb(OLEIVERB_SHOW, nullptr, &site, 0, container.window(), &site.rect));
  EXPECT_EQ(S_OK, control->OnAmbientPropertyChange(DISPID_UNKNOWN));
  EXPECT_EQ(S_OK, m_object->Close(OLECLOSE_NOSAVE));
  EXPECT_EQ(S_OK, m_object->SetClientSite(nullptr));
  EXPECT_EQ(1u, site.references);
}

INSTANTIATE_TEST_SUITE_P(Type, EmbeddedObject, testing::Values(1, 2, 3));

}  // namespace
}  // namespace av::test
