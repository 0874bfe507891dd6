#include "host/any_control_test.h"

namespace av::test {
namespace {

constexpr WAVEFORMATEX mono16{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};

/// The type behind the aliases and pointers of a type library.
VARTYPE bareType(const TYPEDESC& type) {
  if (type.vt == VT_PTR) return VT_DISPATCH;
  return type.vt == VT_USERDEFINED ? VARTYPE{VT_UI4} : type.vt;
}

std::wstring nameOf(ITypeInfo& info, DISPID id) {
  BSTR text = nullptr;
  UINT count = 0;
  info.GetNames(id, &text, 1, &count);
  std::wstring name = text ? text : L"";
  SysFreeString(text);
  return name;
}

}  // namespace

std::vector<PutProperty> putProperties(IDispatch& control) {
  std::vector<PutProperty> properties;
  ComPtr<ITypeInfo> info;
  TYPEATTR* attributes = nullptr;
  if (FAILED(control.GetTypeInfo(0, LOCALE_NEUTRAL, &info)) || FAILED(info->GetTypeAttr(&attributes)))
    return properties;
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    if (FAILED(info->GetFuncDesc(i, &function))) continue;
    if ((function->invkind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF)) != 0 && function->cParams > 0) {
      const VARTYPE type = bareType(function->lprgelemdescParam[function->cParams - 1].tdesc);
      properties.push_back({nameOf(*info.Get(), function->memid), function->memid, type, function->cParams > 1,
                            (function->invkind & INVOKE_PROPERTYPUTREF) != 0});
    }
    info->ReleaseFuncDesc(function);
  }
  info->ReleaseTypeAttr(attributes);
  return properties;
}

HRESULT putValue(IDispatch& control, const PutProperty& property, VARIANT value) {
  VARIANTARG arguments[2] = {value, {}};  // from the last to the first
  V_VT(&arguments[1]) = VT_I4;
  V_I4(&arguments[1]) = 1;
  DISPID named = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{arguments, &named, property.indexed ? 2u : 1u, 1};
  EXCEPINFO exception{};
  const HRESULT result = control.Invoke(property.id, IID_NULL, LOCALE_NEUTRAL,
                                        property.byReference ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT,
                                        &parameters, nullptr, &exception, nullptr);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return result;
}

const CLSID& AnyControlTest::classId() const {
  static const CLSID classes[] = {CLSID_CAudioVisualization4Type1, CLSID_CAudioVisualization4Type2,
                                  CLSID_CAudioVisualization4Type3};
  return classes[GetParam() - 1];
}

void AnyControlTest::SetUp() {
  EachControlTest::SetUp();
  if (HasFatalFailure()) return;
  m_audio = as<IAudioVisualizationTemplate>();
  ASSERT_TRUE(m_audio);
}

void AnyControlTest::TearDown() {
  m_audio.Reset();
  EachControlTest::TearDown();
}

void AnyControlTest::activate(SIZE clientSizePx) {
  put(isView() ? L"VisualizationSmooth" : L"TickVisible", 0);
  if (isAnalyser()) put(L"AutoRepaint", 0);
  ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = clientSizePx, .positionPx = {0, 0}}));
  ASSERT_EQ(S_OK, m_container.host(m_control.Get()));
  UpdateWindow(window());
}

void AnyControlTest::put(const wchar_t* property, LONG value) {
  std::wstring name = property;
  LPOLESTR names = name.data();
  PutProperty target;
  ASSERT_EQ(S_OK, m_audio->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_NEUTRAL, &target.id)) << "no such property";
  VARIANT number;
  VariantInit(&number);
  V_VT(&number) = VT_I4;
  V_I4(&number) = value;
  ASSERT_EQ(S_OK, putValue(*m_audio.Get(), target, number)) << std::string(name.begin(), name.end()) << " " << value;
}

HRESULT AnyControlTest::send(const std::vector<std::int16_t>& samples) {
  return m_audio->SendAudioData(
      avhost::audioFrames(mono16, samples.data(), static_cast<LONG>(samples.size() * sizeof samples[0])).get());
}

HRESULT AnyControlTest::sendNoise(int amplitude) {
  std::vector<std::int16_t> samples(2048);
  std::uint32_t state = 4711;
  for (std::int16_t& sample : samples) {
    state = state * 1664525 + 1013904223;
    sample = static_cast<std::int16_t>(static_cast<int>(state >> 16) * amplitude / 32768 - amplitude);
  }
  return send(samples);
}

WindowPicture AnyControlTest::shown() {
  EXPECT_EQ(S_OK, m_audio->_OnTimer());
  EXPECT_EQ(S_OK, m_audio->Repaint());
  return pictureOf(window());
}

HRESULT AnyControlTest::drawOn(HDC target, const RECTL& bounds) {
  ComPtr<IViewObject> view;
  const HRESULT result = m_control.As(&view);
  return FAILED(result)
             ? result
             : view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, target, &bounds, nullptr, nullptr, 0);
}

WindowPicture AnyControlTest::drawn(SIZE size) {
  return pictureDrawnBy(size, [&](HDC target) { EXPECT_EQ(S_OK, drawOn(target, {0, 0, size.cx, size.cy})); });
}

AnyControlTest::Look AnyControlTest::looks() const {
  if (isView()) return {L"VisualizationType", {1, 2, 3, 4, 5, 6, 7}};
  if (isMeter()) return {L"LineType", {0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13}};
  return {L"ViewType", {0, 1, 2, 3}};
}

}  // namespace av::test
