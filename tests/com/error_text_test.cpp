// What a caller through the virtual table learns of a refusal: the thread's error information.

#include "host/dll_test.h"

#include <oaidl.h>
#include <ocidl.h>
#include <oleauto.h>

#include <string>

namespace av::test {
namespace {

/// The thread's error information, taken off it.
struct ErrorText {
  std::wstring source, description;
  GUID interfaceId = GUID_NULL;
};

std::wstring take(BSTR text) {
  std::wstring copy = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
  SysFreeString(text);
  return copy;
}

ErrorText takeErrorText() {
  ErrorText text;
  ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, &info) != S_OK) return text;
  BSTR source = nullptr, description = nullptr;
  EXPECT_EQ(S_OK, info->GetSource(&source));
  EXPECT_EQ(S_OK, info->GetDescription(&description));
  EXPECT_EQ(S_OK, info->GetGUID(&text.interfaceId));
  text.source = take(source);
  text.description = take(description);
  return text;
}

/// A dispatch object that passes for a font until it is asked for one.
class NoFont final : public IDispatch {
 public:
  virtual ~NoFont() = default;
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }
};

class ErrorTexts : public DllTest {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    m_view = createView();
    ASSERT_TRUE(m_view);
    SetErrorInfo(0, nullptr);
  }
  void TearDown() override {
    m_view.Reset();
    DllTest::TearDown();
  }

  static void expectText(const wchar_t* description) {
    const ErrorText text = takeErrorText();
    EXPECT_EQ(description, text.description);
    EXPECT_EQ(L"QELAudioVisualization4.CAudioVisualization4Type1", text.source);
    EXPECT_EQ(IID_IAudioVisualization4Type1, text.interfaceId);
    EXPECT_EQ(L"", takeErrorText().description) << "one refusal, one text";
  }

  ComPtr<IAudioVisualization4Type1> m_view;
};

// Callers look for a text only where it is declared, by the interface that they called.
TEST_F(ErrorTexts, AreDeclaredForTheDualInterfacesOnly) {
  ComPtr<ISupportErrorInfo> support;
  ASSERT_EQ(S_OK, m_view.As(&support));
  EXPECT_EQ(S_OK, support->InterfaceSupportsErrorInfo(IID_IAudioVisualization4Type1));
  EXPECT_EQ(S_OK, support->InterfaceSupportsErrorInfo(IID_IAudioVisualizationTemplate));
  for (const IID& iid : {IID_IUnknown, IID_IDispatch, IID_IOleObject, IID_IViewObject, IID_IPersistStreamInit,
                         IID_IAudioVisualization4Type2, GUID_NULL})
    EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(iid));
}

TEST_F(ErrorTexts, SayWhichChannelsThereAre) {
  OLE_COLOR colour = 1;
  for (const LONG channel : {LONG{-1}, LONG{19}, LONG{99}}) {
    EXPECT_EQ(E_INVALIDARG, m_view->get_LineColor(channel, &colour));
    expectText(L"LineColor: the channel must be 0 to 18.");
    EXPECT_EQ(E_INVALIDARG, m_view->put_LineColor(channel, 5));
    expectText(L"LineColor: the channel must be 0 to 18.");
  }
  EXPECT_EQ(1u, colour);
  EXPECT_EQ(S_OK, m_view->get_LineColor(18, &colour));
  EXPECT_EQ(L"", takeErrorText().description);
}

TEST_F(ErrorTexts, SayThatAnObjectIsNoFont) {
  NoFont noFont;
  // What a caller does who casts what it was given.
  EXPECT_EQ(E_INVALIDARG, m_view->putref_ScaleFont(reinterpret_cast<IFontDisp*>(static_cast<IDispatch*>(&noFont))));
  expectText(L"ScaleFont: the object is no font.");
}

TEST_F(ErrorTexts, ReachLateBoundCallersInTheExceptionRecord) {
  VARIANT arguments[2];
  V_VT(&arguments[1]) = VT_I4;
  V_I4(&arguments[1]) = 99;
  V_VT(&arguments[0]) = VT_I4;
  V_I4(&arguments[0]) = 5;
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{arguments, &put, 2, 1};
  EXCEPINFO exception{};
  EXPECT_EQ(DISP_E_EXCEPTION, m_view->Invoke(15, IID_NULL, LOCALE_NEUTRAL, DISPATCH_PROPERTYPUT, &parameters, nullptr,
                                             &exception, nullptr));
  EXPECT_EQ(E_INVALIDARG, exception.scode);
  EXPECT_EQ(L"LineColor: the channel must be 0 to 18.", take(exception.bstrDescription));
  EXPECT_EQ(L"QELAudioVisualization4.CAudioVisualization4Type1", take(exception.bstrSource));
  take(exception.bstrHelpFile);
}

}  // namespace
}  // namespace av::test
