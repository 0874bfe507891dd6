// Blocks and calls that cross apartments: which buffer objects reach a control, and which are dropped.

#include "host/audio_buffers.h"
#include "host/container.h"
#include "host/dll_test.h"
#include "host/manifest_test.h"
#include "host/message_pump.h"
#include "host/window_picture.h"
#include "support/win/scripted_audio_data.h"

#include <atomic>
#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <thread>
#include <vector>

namespace av::test {
namespace {

using support::AudioDataScript;
using support::ScriptedAudioData;

constexpr WAVEFORMATEX mono16{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};

/// One interface on its way to another apartment of the process.
class Parcel {
 public:
  template <class Interface>
  explicit Parcel(const ComPtr<Interface>& object) : Parcel(__uuidof(Interface), object.Get()) {}
  Parcel(REFIID iid, IUnknown* object) {
    EXPECT_EQ(S_OK, CoMarshalInterThreadInterfaceInStream(iid, object, &m_stream));
  }

  /// Once, in the apartment of arrival.
  template <class Interface>
  ComPtr<Interface> open() {
    ComPtr<Interface> object;
    EXPECT_EQ(S_OK, CoGetInterfaceAndReleaseStream(m_stream.Detach(), __uuidof(Interface),
                                                   reinterpret_cast<void**>(object.GetAddressOf())));
    return object;
  }

 private:
  ComPtr<IStream> m_stream;
};

/// `DynamicRange` is 60 in every test until a block arrives: any accepted block of 16 bits makes it 90.
class Apartments : public ManifestTest, public testing::WithParamInterface<DWORD> {
 protected:
  void SetUp() override {
    ManifestTest::SetUp();
    for (int i = 0; i < 1024; ++i)
      m_samples.push_back(
          static_cast<std::int16_t>(std::lround(30000 * std::sin(2 * std::numbers::pi * 8 * i / 1024))));
    m_view = create<IAudioVisualization4Type1>(CLSID_CAudioVisualization4Type1);
    ASSERT_TRUE(m_view);
    ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(VARIANT_FALSE));
    ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = {300, 200}}));
    ASSERT_EQ(S_OK, m_container.host(m_view.Get()));
    UpdateWindow(m_container.controlWindow());
    // What the block looks like when it never leaves the control's apartment. The labels stay those of 60 dB: a block
    // makes no layout.
    ASSERT_EQ(S_OK, m_view->put_DynamicRange(60));
    ASSERT_EQ(S_OK, m_view->SendAudioData(block().get()));
    m_expected = pictureOf(m_container.controlWindow());
    reset();
    m_before = pictureOf(m_container.controlWindow());
    ASSERT_NE(m_expected, m_before);
  }

  void TearDown() override {
    EXPECT_EQ(0u, m_container.close());
    EXPECT_EQ(0u, m_view ? m_view.Reset() : 0u);
    ManifestTest::TearDown();
  }

  /// As if nothing but silence had come, and no block since `DynamicRange` was put.
  void reset() {
    const std::vector<std::int16_t> silence(1024);
    ASSERT_EQ(S_OK, m_view->SendAudioData(avhost::audioFrames(mono16, silence.data(), 2048).get()));
    ASSERT_EQ(S_OK, m_view->put_DynamicRange(60));
  }

  template <class Interface>
  void sendKitBlockThroughProxy(HRESULT (*send)(Interface*, IUnknown*));

  avhost::Block block() const { return avhost::audioFrames(mono16, m_samples.data(), 2048); }

  LONG dynamicRange() const {
    LONG value = 0;
    EXPECT_EQ(S_OK, m_view->get_DynamicRange(&value));
    return value;
  }

  void expectTheBlockHasArrived() {
    EXPECT_EQ(90, dynamicRange());
    EXPECT_EQ(m_expected, pictureOf(m_container.controlWindow()));
  }
  void expectNothingHasArrived() {
    EXPECT_EQ(60, dynamicRange());
    EXPECT_EQ(m_before, pictureOf(m_container.controlWindow()));
  }

  /// Runs `work` on a thread in an apartment of the given kind, with the manifest active, to its end, while this thread
  /// dispatches messages: calls of the control arrive as such.
  void elsewhere(DWORD apartment, const std::function<void()>& work) {
    std::atomic<bool> done = false;
    std::thread thread([&] {
      EXPECT_EQ(S_OK, CoInitializeEx(nullptr, apartment));
      {
        const avhost::ActivationContext::Active manifest(m_manifest);
        EXPECT_EQ(S_OK, manifest.result());
        work();
      }
      CoUninitialize();
      done = true;
    });
    EXPECT_TRUE(avhost::pumpUntil(30000, [&] { return done.load(); }));
    thread.join();
  }

  std::vector<std::int16_t> m_samples;
  WindowPicture m_expected, m_before;
  avhost::Container m_container;
  ComPtr<IAudioVisualization4Type1> m_view;
};

TEST_P(Apartments, AKitBlockThatWasMadeElsewhereIsReadAsIfItWereMadeHere) {
  std::unique_ptr<Parcel> parcel;
  elsewhere(GetParam(), [&] { parcel = std::make_unique<Parcel>(IID_IUnknown, block().get()); });
  // Its apartment is gone by now, its memory is not.
  const auto arrived = parcel->open<IUnknown>();
  ASSERT_TRUE(arrived);
  EXPECT_EQ(S_OK, m_view->SendAudioData(arrived.Get()));
  expectTheBlockHasArrived();
  EXPECT_EQ(0u, otherReferences(arrived.Get())) << "the control has kept the block";
}

TEST_P(Apartments, AnAudioThreadPushesKitBlocksIntoTheRawPointer) {
  elsewhere(GetParam(), [&] { EXPECT_EQ(S_OK, m_view->SendAudioData(block().get())); });
  expectTheBlockHasArrived();
}

/// A kit block, marshalled as Windows does it within a process: with the in-process context. Wine 8 calls the context of
/// every call through a proxy "local" (another process of this machine), for which the free-threaded marshaler steps
/// aside. `context()` is what the system did say.
class InProcessBlock final : public IMarshal {
 public:
  explicit InProcessBlock(IUnknown* block) : m_block(block) {
    EXPECT_EQ(S_OK, block->QueryInterface(IID_PPV_ARGS(&m_marshal)));
  }
  virtual ~InProcessBlock() = default;
  DWORD context() const { return m_context; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IMarshal) return E_NOINTERFACE;
    AddRef();
    *object = static_cast<IMarshal*>(this);
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetUnmarshalClass(REFIID iid, void*, DWORD, void* data, DWORD flags, CLSID* classId) override {
    return m_marshal->GetUnmarshalClass(iid, m_block, MSHCTX_INPROC, data, flags, classId);
  }
  STDMETHODIMP GetMarshalSizeMax(REFIID iid, void*, DWORD, void* data, DWORD flags, DWORD* bytes) override {
    return m_marshal->GetMarshalSizeMax(iid, m_block, MSHCTX_INPROC, data, flags, bytes);
  }
  STDMETHODIMP MarshalInterface(IStream* stream, REFIID iid, void*, DWORD context, void* data, DWORD flags) override {
    m_context = context;
    return m_marshal->MarshalInterface(stream, iid, m_block, MSHCTX_INPROC, data, flags);
  }
  STDMETHODIMP UnmarshalInterface(IStream*, REFIID, void**) override { return E_UNEXPECTED; }
  STDMETHODIMP ReleaseMarshalData(IStream* stream) override { return m_marshal->ReleaseMarshalData(stream); }
  STDMETHODIMP DisconnectObject(DWORD) override { return S_OK; }

 private:
  IUnknown* m_block;
  ComPtr<IMarshal> m_marshal;
  DWORD m_context = ~DWORD{0};
};

/// The two ways to call a control through its proxy.
HRESULT sendByVtable(IAudioVisualization4Type1* proxy, IUnknown* sent) { return proxy->SendAudioData(sent); }
HRESULT sendByName(IDispatch* proxy, IUnknown* sent) {
  LPOLESTR name = const_cast<LPOLESTR>(L"sendaudiodata");
  DISPID id = 0;
  const HRESULT found = proxy->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_NEUTRAL, &id);
  if (FAILED(found)) return found;
  VARIANT argument;
  V_VT(&argument) = VT_UNKNOWN;
  V_UNKNOWN(&argument) = sent;
  DISPPARAMS arguments{&argument, nullptr, 1, 0};
  return proxy->Invoke(id, IID_NULL, LOCALE_NEUTRAL, DISPATCH_METHOD, &arguments, nullptr, nullptr, nullptr);
}

template <class Interface>
void Apartments::sendKitBlockThroughProxy(HRESULT (*send)(Interface*, IUnknown*)) {
  ComPtr<Interface> face;
  ASSERT_EQ(S_OK, m_view.As(&face));
  DWORD context = ~DWORD{0};
  Parcel first(face), second(face);
  elsewhere(GetParam(), [&] {
    const auto proxy = first.open<Interface>();
    ASSERT_TRUE(proxy);
    ASSERT_NE(face.Get(), proxy.Get());
    const avhost::Block sent = block();
    {
      InProcessBlock marshalled(sent.get());
      EXPECT_EQ(S_OK, send(proxy.Get(), &marshalled));
      context = marshalled.context();
    }
    EXPECT_EQ(0u, otherReferences(sent.get())) << "the control has kept the block";
  });
  expectTheBlockHasArrived();

  reset();
  elsewhere(GetParam(), [&] {
    const auto proxy = second.open<Interface>();
    ASSERT_TRUE(proxy);
    EXPECT_EQ(S_OK, send(proxy.Get(), block().get()));
  });
  if (context == MSHCTX_INPROC) expectTheBlockHasArrived();
  else expectNothingHasArrived();  // Wine 8
}

TEST_P(Apartments, AKitBlockReachesTheControlThroughItsProxyWhereTheSystemKnowsItStaysInTheProcess) {
  sendKitBlockThroughProxy<IAudioVisualization4Type1>(sendByVtable);
}

TEST_P(Apartments, AKitBlockReachesTheControlThroughItsLateBoundProxyWhereTheSystemKnowsItStaysInTheProcess) {
  sendKitBlockThroughProxy<IDispatch>(sendByName);
}

/// A host object as hosts write them, without the free-threaded marshaler. `samples` outlives the script.
AudioDataScript plainHostObject(std::vector<std::int16_t>& samples, WAVEFORMATEX& format) {
  AudioDataScript script;
  script.offersFrameData = true;
  script.frameData.buffers = {reinterpret_cast<BYTE*>(samples.data())};
  script.frameData.dataSizes = {static_cast<LONG>(samples.size() * 2)};
  script.frameData.bufferSizes = script.frameData.dataSizes;
  script.frameData.formats = {reinterpret_cast<BYTE*>(&format)};
  script.frameData.formatSizes = {sizeof format};
  return script;
}

bool anythingWasRead(const ScriptedAudioData& object) {
  for (const std::string& call : object.calls())
    if (call.find("Get") != std::string::npos) return true;
  return false;
}

TEST_P(Apartments, APlainHostObjectOfTheControlsApartmentIsRead) {
  WAVEFORMATEX format = mono16;
  ScriptedAudioData object(plainHostObject(m_samples, format));
  EXPECT_EQ(S_OK, m_view->SendAudioData(&object));
  EXPECT_TRUE(anythingWasRead(object));
  EXPECT_EQ(0, object.references());
  expectTheBlockHasArrived();
}

TEST_P(Apartments, APlainHostObjectThatComesThroughAProxyIsDroppedWithSuccess) {
  WAVEFORMATEX format = mono16;
  ScriptedAudioData object(plainHostObject(m_samples, format));
  Parcel parcel(m_view);
  elsewhere(GetParam(), [&] {
    const auto proxy = parcel.open<IAudioVisualization4Type1>();
    ASSERT_TRUE(proxy);
    EXPECT_EQ(S_OK, proxy->SendAudioData(&object));
    EXPECT_EQ(S_OK, CoDisconnectObject(&object, 0));
  });
  EXPECT_FALSE(anythingWasRead(object));
  EXPECT_EQ(0, object.references());
  expectNothingHasArrived();
}

TEST_P(Apartments, AnAudioThreadMayPushAPlainHostObjectIntoTheRawPointer) {
  // No proxy stands between: control and object are called on the one thread that both are known to.
  WAVEFORMATEX format = mono16;
  ScriptedAudioData object(plainHostObject(m_samples, format));
  elsewhere(GetParam(), [&] { EXPECT_EQ(S_OK, m_view->SendAudioData(&object)); });
  EXPECT_EQ(0, object.references());
  expectTheBlockHasArrived();
}

INSTANTIATE_TEST_SUITE_P(, Apartments, testing::Values(COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED),
                         [](const auto& kind) {
                           return kind.param == COINIT_APARTMENTTHREADED ? "SingleThreaded" : "MultiThreaded";
                         });

}  // namespace
}  // namespace av::test
