#include "common/win/audio_call.h"

#include "common/win/audio_input.h"
#include "common/win/mutex.h"
#include "support/win/error_info.h"
#include "support/win/scripted_audio_data.h"

#include <wrl/client.h>

#include <gtest/gtest.h>

#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using av::HostErrorExit;
using Microsoft::WRL::ComPtr;

constexpr HRESULT hostFailure = MAKE_HRESULT(1, FACILITY_ITF, 0x321);

[[noreturn]] void fail(IErrorInfo* info = nullptr) { throw _com_error(hostFailure, info, true); }

// --- the virtual table ---

TEST(GuardSendAudioData, AnswersOkWhenTheBlockIsDone) {
  int runs = 0;
  EXPECT_EQ(S_OK, av::guardSendAudioData([&] { ++runs; }));
  EXPECT_EQ(S_OK, av::guardSendAudioData([&] { ++runs; }, HostErrorExit::result));
  EXPECT_EQ(2, runs);
}

TEST(GuardSendAudioData, LetsTheExceptionPassIn64BitCodeOnly) {
  EXPECT_EQ(sizeof(void*) == 8, av::vtableHostErrorExit == HostErrorExit::exception);
}

TEST(GuardSendAudioData, PassesTheExceptionWithItsErrorInformation) {
  const auto info = av::support::makeErrorInfo(L"no such buffer", L"Host");
  bool caught = false;
  try {
    av::guardSendAudioData([&] { fail(info.Get()); }, HostErrorExit::exception);
  } catch (const _com_error& error) {
    caught = true;
    EXPECT_EQ(hostFailure, error.Error());
    EXPECT_STREQ(L"no such buffer", error.Description());
  }
  EXPECT_TRUE(caught);
}

TEST(GuardSendAudioData, TurnsTheExceptionIntoItsResultAndSetsTheErrorInformation) {
  const auto info = av::support::makeErrorInfo(L"no such buffer", L"Host");
  EXPECT_EQ(hostFailure, av::guardSendAudioData([&] { fail(info.Get()); }, HostErrorExit::result));
  EXPECT_EQ(info.Get(), av::support::takeErrorInfo().Get());
}

TEST(GuardSendAudioData, AFailureWithoutErrorInformationClearsWhatAnOlderCallLeft) {
  SetErrorInfo(0, av::support::makeErrorInfo(L"older", L"Host").Get());
  EXPECT_EQ(hostFailure, av::guardSendAudioData([] { fail(); }, HostErrorExit::result));
  EXPECT_EQ(nullptr, av::support::takeErrorInfo());
}

TEST(GuardSendAudioData, DropsTheBlockThatMemoryHasNoRoomFor) {
  for (const auto exit : {HostErrorExit::exception, HostErrorExit::result}) {
    EXPECT_EQ(S_OK, av::guardSendAudioData([] { throw std::bad_alloc(); }, exit));
    EXPECT_EQ(S_OK, av::guardSendAudioData([] { throw std::length_error("vector"); }, exit));
  }
}

TEST(GuardSendAudioData, ReturnsMutexAndReferencesEitherWay) {
  av::support::AudioDataScript script;
  script.offersFrameData = script.offersPackedData = true;
  script.failingCall = 0;
  script.failure = hostFailure;
  for (const auto exit : {HostErrorExit::exception, HostErrorExit::result}) {
    av::Mutex mutex;
    av::support::ScriptedAudioData data(script);
    const auto push = [&] {
      const std::lock_guard guard(mutex);
      const av::AudioInput input(&data);
      ADD_FAILURE() << "the failing call was not noticed";
    };
    HRESULT result = S_OK;
    try {
      result = av::guardSendAudioData(push, exit);
    } catch (const _com_error& error) {
      EXPECT_EQ(HostErrorExit::exception, exit);
      result = error.Error();
    }
    EXPECT_EQ(hostFailure, result);
    EXPECT_EQ(0, data.references());
    EXPECT_FALSE(ReleaseMutex(mutex.handle()));  // this thread does not own it any more
  }
}

// --- IDispatch::Invoke ---

/// An object that can be passed to a method and counts its references.
class Passenger final : public IDispatch {
 public:
  virtual ~Passenger() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch);
    *object = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
  ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }

  int references = 0;
};

struct Sent {
  int count = 0;
  IUnknown* last = nullptr;
};

DISPPARAMS parametersOf(std::vector<VARIANT>& arguments) {
  return {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
}

HRESULT invoke(std::vector<VARIANT> arguments, Sent& sent, UINT* argumentError = nullptr) {
  DISPPARAMS parameters = parametersOf(arguments);
  return av::invokeSendAudioData(DISPATCH_METHOD, &parameters, nullptr, nullptr, argumentError, [&](IUnknown* data) {
    ++sent.count;
    sent.last = data;
    return S_OK;
  });
}

VARIANT variant(VARTYPE type) {
  VARIANT result;
  VariantInit(&result);
  V_VT(&result) = type;
  return result;
}

VARIANT reference(VARTYPE type, void* target) {
  VARIANT result = variant(static_cast<VARTYPE>(type | VT_BYREF));
  V_BYREF(&result) = target;
  return result;
}

VARIANT object(VARTYPE type, Passenger* passenger) {
  VARIANT result = variant(type);
  if (type == VT_UNKNOWN) {
    V_UNKNOWN(&result) = passenger;
  } else {
    V_DISPATCH(&result) = passenger;
  }
  return result;
}

TEST(InvokeSendAudioData, PassesObjectsInEveryForm) {
  Passenger passenger;
  IUnknown* unknown = &passenger;
  IDispatch* dispatch = &passenger;
  VARIANT inner = object(VT_DISPATCH, &passenger);
  for (const VARIANT& argument :
       {object(VT_UNKNOWN, &passenger), object(VT_DISPATCH, &passenger), reference(VT_UNKNOWN, &unknown),
        reference(VT_DISPATCH, &dispatch), reference(VT_VARIANT, &inner)}) {
    Sent sent;
    EXPECT_EQ(S_OK, invoke({argument}, sent));
    EXPECT_EQ(1, sent.count) << V_VT(&argument);
    EXPECT_EQ(unknown, sent.last) << V_VT(&argument);
    EXPECT_EQ(0, passenger.references) << V_VT(&argument);
  }
}

TEST(InvokeSendAudioData, PassesNothingAsNull) {
  IUnknown* noUnknown = nullptr;
  IDispatch* noDispatch = nullptr;
  for (const VARIANT& argument : {object(VT_UNKNOWN, nullptr), object(VT_DISPATCH, nullptr),
                                  reference(VT_UNKNOWN, &noUnknown), reference(VT_DISPATCH, &noDispatch)}) {
    Sent sent;
    EXPECT_EQ(S_OK, invoke({argument}, sent));
    EXPECT_EQ(1, sent.count) << V_VT(&argument);
    EXPECT_EQ(nullptr, sent.last) << V_VT(&argument);
  }
}

TEST(InvokeSendAudioData, RefusesWhatIsNoObject) {
  VARIANT number = variant(VT_I4);
  for (const VARIANT& argument : {variant(VT_EMPTY), variant(VT_NULL), variant(VT_I4), variant(VT_R8), variant(VT_BOOL),
                                  variant(VT_BSTR), variant(VT_ERROR), reference(VT_VARIANT, &number)}) {
    Sent sent;
    UINT argumentError = 99;
    EXPECT_EQ(DISP_E_TYPEMISMATCH, invoke({argument}, sent, &argumentError)) << V_VT(&argument);
    EXPECT_EQ(0u, argumentError);
    EXPECT_EQ(0, sent.count);
  }
}

TEST(InvokeSendAudioData, RefusesReferencesToNothing) {
  for (const VARTYPE type : {VT_UNKNOWN, VT_DISPATCH, VT_VARIANT, VT_I4}) {
    Sent sent;
    EXPECT_EQ(DISP_E_TYPEMISMATCH, invoke({reference(type, nullptr)}, sent));
    EXPECT_EQ(0, sent.count);
  }
}

TEST(InvokeSendAudioData, CountsItsArguments) {
  Sent sent;
  UINT argumentError = 99;
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, invoke({}, sent, &argumentError));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT,
            invoke({object(VT_UNKNOWN, nullptr), object(VT_UNKNOWN, nullptr)}, sent, &argumentError));
  EXPECT_EQ(99u, argumentError);  // no single argument is to blame
  VARIANT omitted = variant(VT_ERROR);
  V_ERROR(&omitted) = DISP_E_PARAMNOTFOUND;
  EXPECT_EQ(DISP_E_PARAMNOTOPTIONAL, invoke({omitted}, sent));
  EXPECT_EQ(0, sent.count);
}

TEST(InvokeSendAudioData, TakesItsArgumentByName) {
  std::vector<VARIANT> arguments = {object(VT_UNKNOWN, nullptr)};
  for (const auto& [name, expected] : {std::pair<DISPID, HRESULT>{0, S_OK}, {1, DISP_E_PARAMNOTFOUND}}) {
    DISPID named = name;
    DISPPARAMS parameters = {arguments.data(), &named, 1, 1};
    EXPECT_EQ(expected, av::invokeSendAudioData(DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr,
                                                [](IUnknown*) { return S_OK; }));
  }
}

TEST(InvokeSendAudioData, RefusesMalformedParameters) {
  const auto never = [](IUnknown*) -> HRESULT {
    ADD_FAILURE();
    return S_OK;
  };
  VARIANT argument = object(VT_UNKNOWN, nullptr);
  DISPPARAMS noArguments = {nullptr, nullptr, 1, 0};
  DISPPARAMS noNames = {&argument, nullptr, 1, 1};
  DISPPARAMS tooManyNames = {&argument, nullptr, 1, 2};
  EXPECT_EQ(E_INVALIDARG, av::invokeSendAudioData(DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr, never));
  EXPECT_EQ(E_INVALIDARG, av::invokeSendAudioData(DISPATCH_METHOD, &noArguments, nullptr, nullptr, nullptr, never));
  EXPECT_EQ(E_INVALIDARG, av::invokeSendAudioData(DISPATCH_METHOD, &noNames, nullptr, nullptr, nullptr, never));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT,
            av::invokeSendAudioData(DISPATCH_METHOD, &tooManyNames, nullptr, nullptr, nullptr, never));
}

TEST(InvokeSendAudioData, IsAMethodAndNoProperty) {
  std::vector<VARIANT> arguments = {object(VT_UNKNOWN, nullptr)};
  DISPPARAMS parameters = parametersOf(arguments);
  const auto ok = [](IUnknown*) { return S_OK; };
  for (const WORD flags : {WORD{DISPATCH_PROPERTYGET}, WORD{DISPATCH_PROPERTYPUT}, WORD{DISPATCH_PROPERTYPUTREF}}) {
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, av::invokeSendAudioData(flags, &parameters, nullptr, nullptr, nullptr, ok));
  }
  // Late-bound Basic asks for a method or a property, whichever there is.
  EXPECT_EQ(S_OK, av::invokeSendAudioData(DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters, nullptr, nullptr,
                                          nullptr, ok));
}

TEST(InvokeSendAudioData, EmptiesTheResult) {
  std::vector<VARIANT> arguments = {object(VT_UNKNOWN, nullptr)};
  DISPPARAMS parameters = parametersOf(arguments);
  VARIANT result = variant(VT_I4);
  EXPECT_EQ(S_OK, av::invokeSendAudioData(DISPATCH_METHOD, &parameters, &result, nullptr, nullptr,
                                          [](IUnknown*) { return S_OK; }));
  EXPECT_EQ(VT_EMPTY, V_VT(&result));
}

class InvokeFailure : public testing::Test {
 protected:
  template <class Send>
  HRESULT invokeWith(Send&& send, EXCEPINFO* target) {
    return av::invokeSendAudioData(DISPATCH_METHOD, &parameters, nullptr, target, nullptr, send);
  }
  void TearDown() override {
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrHelpFile);
  }

  std::vector<VARIANT> arguments = {object(VT_UNKNOWN, nullptr)};
  DISPPARAMS parameters = parametersOf(arguments);
  EXCEPINFO exception{};
};

TEST_F(InvokeFailure, AComErrorFillsTheExceptionFromItsErrorInformation) {
  const auto info = av::support::makeErrorInfo(L"the disk is gone", L"Host.Buffer");
  EXPECT_EQ(DISP_E_EXCEPTION, invokeWith([&](IUnknown*) -> HRESULT { fail(info.Get()); }, &exception));
  EXPECT_EQ(hostFailure, exception.scode);
  EXPECT_EQ(0, exception.wCode);
  EXPECT_STREQ(L"the disk is gone", exception.bstrDescription);
  EXPECT_STREQ(L"Host.Buffer", exception.bstrSource);
  EXPECT_STREQ(L"host.chm", exception.bstrHelpFile);
  EXPECT_EQ(4711u, exception.dwHelpContext);
  EXPECT_EQ(nullptr, exception.pfnDeferredFillIn);
}

TEST_F(InvokeFailure, AFailingResultFillsItFromTheThread) {
  const auto info = av::support::makeErrorInfo(L"the disk is gone", L"Host.Buffer");
  EXPECT_EQ(
      DISP_E_EXCEPTION,
      invokeWith([&](IUnknown*) { return av::guardSendAudioData([&] { fail(info.Get()); }, HostErrorExit::result); },
                 &exception));
  EXPECT_EQ(hostFailure, exception.scode);
  EXPECT_STREQ(L"the disk is gone", exception.bstrDescription);
  EXPECT_EQ(nullptr, av::support::takeErrorInfo());
}

TEST_F(InvokeFailure, WithoutErrorInformationTheSystemsWordsDescribeIt) {
  EXPECT_EQ(DISP_E_EXCEPTION, invokeWith([](IUnknown*) -> HRESULT { throw _com_error(E_OUTOFMEMORY); }, &exception));
  EXPECT_EQ(E_OUTOFMEMORY, exception.scode);
  ASSERT_NE(nullptr, exception.bstrDescription);
  EXPECT_NE(0u, SysStringLen(exception.bstrDescription));
  EXPECT_EQ(nullptr, exception.bstrSource);
}

TEST_F(InvokeFailure, NeedsNoExceptionInfo) {
  EXPECT_EQ(DISP_E_EXCEPTION, invokeWith([](IUnknown*) -> HRESULT { fail(); }, nullptr));
}

TEST_F(InvokeFailure, NothingThrownComesThrough) {
  EXPECT_EQ(S_OK, invokeWith([](IUnknown*) -> HRESULT { throw std::bad_alloc(); }, &exception));
  EXPECT_EQ(S_OK, invokeWith([](IUnknown*) -> HRESULT { throw 42; }, &exception));
  EXPECT_EQ(0, exception.scode);
}

// --- the same arguments through the system's own dispatch of the same method ---

class Method {
 public:
  virtual HRESULT STDMETHODCALLTYPE SendAudioData(IUnknown* data) {
    ++sent.count;
    sent.last = data;
    return S_OK;
  }
  Sent sent;

 protected:
  ~Method() = default;
};
class MethodObject final : public Method {};

TEST(InvokeSendAudioData, AgreesWithTheSystemsDispatchOfTheSameMethod) {
  PARAMDATA parameter = {const_cast<OLECHAR*>(L"AudioData"), VT_UNKNOWN};
  METHODDATA method = {const_cast<OLECHAR*>(L"SendAudioData"),
                       &parameter,
                       av::dispidSendAudioData,
                       0,
                       CC_STDCALL,
                       1,
                       DISPATCH_METHOD,
                       VT_ERROR};
  INTERFACEDATA interfaceData = {&method, 1};
  ComPtr<ITypeInfo> classInfo;
  ASSERT_EQ(S_OK, CreateDispTypeInfo(&interfaceData, LOCALE_SYSTEM_DEFAULT, classInfo.GetAddressOf()));
  HREFTYPE interfaceReference = 0;
  ASSERT_EQ(S_OK, classInfo->GetRefTypeOfImplType(0, &interfaceReference));
  ComPtr<ITypeInfo> types;
  ASSERT_EQ(S_OK, classInfo->GetRefTypeInfo(interfaceReference, types.GetAddressOf()));

  Passenger passenger;
  IUnknown* unknown = &passenger;
  IDispatch* dispatch = &passenger;
  IUnknown* noUnknown = nullptr;
  VARIANT inner = object(VT_DISPATCH, &passenger);
  VARIANT number = variant(VT_I4);
  for (const VARIANT& argument :
       {object(VT_UNKNOWN, &passenger), object(VT_DISPATCH, &passenger), object(VT_UNKNOWN, nullptr),
        object(VT_DISPATCH, nullptr), reference(VT_UNKNOWN, &unknown), reference(VT_DISPATCH, &dispatch),
        reference(VT_UNKNOWN, &noUnknown), reference(VT_VARIANT, &inner), reference(VT_VARIANT, &number),
        variant(VT_EMPTY), variant(VT_NULL), variant(VT_I4), variant(VT_R8), variant(VT_BOOL), variant(VT_BSTR)}) {
    std::vector<VARIANT> arguments = {argument};
    DISPPARAMS parameters = parametersOf(arguments);
    MethodObject system;
    UINT unreliable = 0;  // not every system sets it
    const HRESULT expected = DispInvoke(&system, types.Get(), av::dispidSendAudioData, DISPATCH_METHOD, &parameters,
                                        nullptr, nullptr, &unreliable);
    Sent sent;
    UINT ourError = 99;
    EXPECT_EQ(expected, invoke({argument}, sent, &ourError)) << V_VT(&argument);
    EXPECT_EQ(system.sent.count, sent.count) << V_VT(&argument);
    EXPECT_EQ(system.sent.last, sent.last) << V_VT(&argument);
    EXPECT_EQ(FAILED(expected) ? 0u : 99u, ourError) << V_VT(&argument);
  }
}

}  // namespace
