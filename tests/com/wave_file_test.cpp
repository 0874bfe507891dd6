// AudioBlocks.WaveFile: files of every kind, good and damaged, as late-bound hosts read them.

#include "host/companion_test.h"
#include "support/wav_file.h"
#include "support/win/run_program.h"

#include <gmock/gmock.h>

namespace av::test {
namespace {

using namespace av::support;
using testing::EndsWith;
using testing::StartsWith;

/// A WAV file in the temporary folder.
class WavOnDisk {
 public:
  explicit WavOnDisk(const Bytes& bytes) : m_file(L".wav", asText(bytes)) {}
  const std::wstring& path() const { return m_file.path(); }

 private:
  TemporaryFile m_file;
};

class WaveFile : public CompanionTest {
 protected:
  HRESULT open(const std::wstring& path) {
    Value text(L"");
    SysReAllocStringLen(&V_BSTR(&text), path.data(), static_cast<UINT>(path.size()));
    return m_wave.call(L"Open", {text});
  }
  void SetUp() override {
    CompanionTest::SetUp();
    m_wave = make(CLSID_WaveFile);
  }
  void TearDown() override {
    m_wave.reset();
    CompanionTest::TearDown();
  }
  LateBound nextBlock(LONG frames) { return m_wave.object(L"NextBlock", {Value(VT_I4, frames)}); }
  /// Samples of a block's first channel.
  static std::vector<double> samplesOf(LateBound& block) {
    std::vector<double> samples;
    for (LONG frame = 0; frame < block.number(L"Frames"); ++frame)
      samples.push_back(block.number(L"Sample", {Value(VT_I4, frame), Value(VT_I4, 0)}));
    return samples;
  }

  LateBound m_wave;
};

TEST_F(WaveFile, TellsItsFormat) {
  const WavOnDisk file(wavFile({.channels = 2, .rate = 48000, .bits = 24}, Bytes(6 * 24000)));
  ASSERT_EQ(S_OK, open(file.path()));
  EXPECT_EQ(file.path(), m_wave.text(L"Path"));
  EXPECT_EQ(2, m_wave.number(L"Channels"));
  EXPECT_EQ(48000, m_wave.number(L"SampleRate"));
  EXPECT_EQ(24, m_wave.number(L"BitsPerSample"));
  EXPECT_EQ(0, m_wave.number(L"FloatingPoint"));
  EXPECT_EQ(24000, m_wave.number(L"Frames"));
  EXPECT_EQ(0.5, m_wave.number(L"Duration"));
  EXPECT_EQ(0, m_wave.number(L"Position"));
}

TEST_F(WaveFile, GivesBlockAfterBlockAndNothingAtTheEnd) {
  const WavOnDisk file(wavFile({.channels = 1, .bits = 16}, bytesOf<std::int16_t>({16384, -16384, 8192, 0, -32768})));
  ASSERT_EQ(S_OK, open(file.path()));
  LateBound block = nextBlock(2);
  EXPECT_EQ((std::vector<double>{0.5, -0.5}), samplesOf(block));
  EXPECT_EQ(16, block.number(L"BitsPerSample"));
  EXPECT_EQ(1, block.number(L"Channels"));
  EXPECT_EQ(44100, block.number(L"SampleRate"));
  EXPECT_EQ(2, m_wave.number(L"Position"));
  LateBound rest = nextBlock(100);
  EXPECT_EQ((std::vector<double>{0.25, 0, -1}), samplesOf(rest));
  EXPECT_FALSE(nextBlock(100));
  EXPECT_EQ(L"", m_wave.refusal);
  EXPECT_EQ((std::vector<double>{0.5, -0.5}), samplesOf(block)) << "blocks are copies";
}

TEST_F(WaveFile, GoesToAnyPosition) {
  const WavOnDisk file(wavFile({.channels = 1, .bits = 8}, {128, 192, 64, 0}));
  ASSERT_EQ(S_OK, open(file.path()));
  ASSERT_EQ(S_OK, m_wave.put(L"Position", LONG{3}));
  LateBound last = nextBlock(5);
  EXPECT_EQ((std::vector<double>{-1}), samplesOf(last));
  ASSERT_EQ(S_OK, m_wave.put(L"Position", Value(1.0)));
  LateBound second = nextBlock(1);
  EXPECT_EQ((std::vector<double>{0.5}), samplesOf(second));
  ASSERT_EQ(S_OK, m_wave.put(L"Position", LONG{4}));
  EXPECT_FALSE(nextBlock(1));
  for (const double wrong : {-1.0, 5.0, 0.5, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(DISP_E_EXCEPTION, m_wave.put(L"Position", Value(wrong)));
    EXPECT_EQ(E_INVALIDARG, m_wave.reason);
    EXPECT_EQ(L"WaveFile.Position: it must be a whole number, 0 to 4.", m_wave.refusal);
    EXPECT_EQ(4, m_wave.number(L"Position"));
  }
}

TEST_F(WaveFile, ReadsPcmOfEveryWidthAndExtensibleHeaders) {
  for (const std::uint16_t bits : std::initializer_list<std::uint16_t>{8, 16, 24, 32}) {
    const WavFormat format{.channels = 1, .bits = bits};
    Bytes half(bits / 8u, 0);
    half.back() = bits == 8 ? 192 : 0x40;
    for (const Bytes& header : {format.bytes(), extensible(format, 1)}) {
      const WavOnDisk file(riff({chunk("fmt ", header), chunk("data", half)}));
      ASSERT_EQ(S_OK, open(file.path())) << bits;
      LateBound block = nextBlock(9);
      EXPECT_EQ((std::vector<double>{0.5}), samplesOf(block));
      EXPECT_EQ(bits, block.number(L"BitsPerSample"));
      m_wave.call(L"Close");
    }
  }
}

TEST_F(WaveFile, MakesClippedIntegersOfFloatingPoint) {
  const double most = 2147483647.0 / 2147483648.0;
  const WavOnDisk single(wavFile({.tag = 3, .channels = 1, .bits = 32}, bytesOf<float>({0.5f, 3, -3})));
  const WavOnDisk doubled(wavFile({.tag = 3, .channels = 1, .bits = 64}, bytesOf<double>({0.5, 3, -3})));
  for (const WavOnDisk* file : {&single, &doubled}) {
    ASSERT_EQ(S_OK, open(file->path()));
    EXPECT_EQ(-1, m_wave.number(L"FloatingPoint"));
    EXPECT_EQ(file == &single ? 32 : 64, m_wave.number(L"BitsPerSample"));
    LateBound block = nextBlock(9);
    EXPECT_EQ((std::vector<double>{0.5, most, -1}), samplesOf(block));
    EXPECT_EQ(32, block.number(L"BitsPerSample"));
  }
  m_wave.call(L"Close");
}

TEST_F(WaveFile, ReadsWhatThereIsOfDamagedFiles) {
  const Bytes format = WavFormat{.channels = 1, .bits = 8}.bytes();
  Bytes unpadded = chunk("LIST", Bytes(3, 'x'));
  unpadded.pop_back();
  const Bytes files[] = {
      riff({chunk("fmt ", format), chunk("data", {1, 2, 3, 4}, 1000000)}),     // truncated
      riff({chunk("fmt ", format), chunk("data", {1, 2, 3, 4}, 0xFFFFFFFF)}),  // never finished
      riff({chunk("JUNK", Bytes(7)), chunk("fmt ", format), unpadded, chunk("data", {1, 2, 3, 4})}),
      riff({chunk("data", {1, 2, 3, 4}), chunk("fmt ", format)}, 5),
  };
  for (const Bytes& bytes : files) {
    const WavOnDisk file(bytes);
    ASSERT_EQ(S_OK, open(file.path()));
    EXPECT_EQ(4, m_wave.number(L"Frames"));
    LateBound block = nextBlock(100);
    EXPECT_EQ(4, block.number(L"Frames"));
    m_wave.call(L"Close");
  }
}

TEST_F(WaveFile, HasNoBlocksWhereThereAreNoSamples) {
  const WavOnDisk file(wavFile({}, {}));
  ASSERT_EQ(S_OK, open(file.path()));
  EXPECT_EQ(0, m_wave.number(L"Frames"));
  EXPECT_FALSE(nextBlock(1024));
  EXPECT_EQ(L"", m_wave.refusal);
  m_wave.call(L"Close");
}

TEST_F(WaveFile, SaysWhyAFileCannotBeOpened) {
  const auto refusalOf = [this](const std::wstring& path, HRESULT reason) {
    EXPECT_EQ(DISP_E_EXCEPTION, open(path));
    EXPECT_EQ(reason, m_wave.reason) << std::hex << m_wave.reason;
    EXPECT_EQ(L"AudioBlocks.WaveFile", m_wave.source);
    return m_wave.refusal;
  };
  EXPECT_EQ(L"WaveFile.Open: there is no such file: C:\\missing.wav",
            refusalOf(L"C:\\missing.wav", HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)));
  EXPECT_EQ(L"WaveFile.Open: there is no such folder: C:\\missing\\x.wav",
            refusalOf(L"C:\\missing\\x.wav", HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)));
  EXPECT_EQ(L"WaveFile.Open: the system denies access: C:\\windows",
            refusalOf(L"C:\\windows", HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED)));
  EXPECT_EQ(L"WaveFile.Open: the path is empty.", refusalOf(L"", E_INVALIDARG));
  EXPECT_EQ(L"WaveFile.Open: the path has a character of code 0.",
            refusalOf(std::wstring(L"C:\\x.wav\0.txt", 13), E_INVALIDARG));
  std::wstring longPath = L"C:\\missing";
  for (int part = 0; part < 30; ++part) longPath += L"\\" + std::wstring(99, L'a');
  EXPECT_EQ(L"WaveFile.Open: there is no such folder: C:\\missing\\" + std::wstring(99, L'a') + L"\\" +
                std::wstring(14, L'a') + L" ... " + std::wstring(25, L'a') + L"\\" + std::wstring(99, L'a'),
            refusalOf(longPath, HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)));
  const WavOnDisk text(Bytes(100, 'x'));
  EXPECT_EQ(L"WaveFile.Open: not a WAV file: " + text.path(),
            refusalOf(text.path(), HRESULT_FROM_WIN32(ERROR_BAD_FORMAT)));
  const WavOnDisk noFormat(riff({chunk("data", Bytes(40))}));
  EXPECT_EQ(L"WaveFile.Open: a WAV file without a format chunk: " + noFormat.path(),
            refusalOf(noFormat.path(), HRESULT_FROM_WIN32(ERROR_BAD_FORMAT)));
  EXPECT_EQ(L"", m_wave.text(L"Path"));
}

TEST_F(WaveFile, HasNothingToSayWhileNoFileIsOpen) {
  const WavOnDisk file(wavFile({}, Bytes(400)));
  ASSERT_EQ(S_OK, open(file.path()));
  EXPECT_NE(S_OK, open(L"C:\\missing.wav")) << "which closes the other one";
  for (const wchar_t* name :
       {L"Channels", L"SampleRate", L"BitsPerSample", L"FloatingPoint", L"Frames", L"Duration", L"Position"}) {
    EXPECT_TRUE(std::isnan(m_wave.number(name)));
    EXPECT_EQ(E_UNEXPECTED, m_wave.reason);
    EXPECT_EQ(L"WaveFile." + std::wstring(name) + L": no file is open.", m_wave.refusal);
  }
  EXPECT_FALSE(nextBlock(1));
  EXPECT_EQ(L"WaveFile.NextBlock: no file is open.", m_wave.refusal);
  EXPECT_NE(S_OK, m_wave.put(L"Position", LONG{0}));
  EXPECT_EQ(S_OK, m_wave.call(L"Close"));
}

TEST_F(WaveFile, RefusesBlocksOfImpossibleLengths) {
  const WavOnDisk file(wavFile({}, Bytes(400)));
  ASSERT_EQ(S_OK, open(file.path()));
  for (const LONG frames : {0, -1, 0x7FFFFFFF}) {
    EXPECT_FALSE(nextBlock(frames));
    EXPECT_EQ(E_INVALIDARG, m_wave.reason);
    EXPECT_EQ(L"WaveFile.NextBlock: a block of this file has 1 to 536870911 frames.", m_wave.refusal);
  }
  LateBound all = nextBlock(536870911);
  EXPECT_EQ(100, all.number(L"Frames")) << "memory is taken for what there is";
  m_wave.call(L"Close");
}

TEST_F(WaveFile, LetsGoOfTheFileWhenItIsClosedOrReleased) {
  const WavOnDisk file(wavFile({}, Bytes(400)));
  const auto isHeld = [&] {
    const HANDLE handle =
        CreateFileW(file.path().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return true;
    CloseHandle(handle);
    return false;
  };
  ASSERT_EQ(S_OK, open(file.path()));
  EXPECT_TRUE(isHeld());
  m_wave.call(L"Close");
  EXPECT_FALSE(isHeld());
  ASSERT_EQ(S_OK, open(file.path()));
  m_wave.reset();
  EXPECT_FALSE(isHeld());
}

/// Makes the file longer by a hole, and ends it with a byte. The disk holds two pages of it.
void extendTo(const std::wstring& path, LONGLONG bytes, BYTE last) {
  const HANDLE handle =
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, handle);
  LARGE_INTEGER end;
  end.QuadPart = bytes - 1;
  DWORD written = 0;
  EXPECT_TRUE(SetFilePointerEx(handle, end, nullptr, FILE_BEGIN) && WriteFile(handle, &last, 1, &written, nullptr));
  CloseHandle(handle);
}

TEST_F(WaveFile, ReadsFilesBeyondTwoAndFourGigabytes) {
  const Bytes format = chunk("fmt ", WavFormat{.channels = 1, .bits = 8}.bytes());
  for (const std::uint64_t frames : {std::uint64_t{3'000'000'000}, std::uint64_t{5'000'000'000}}) {
    const bool isLong = frames > 0xFFFFFFFF;
    Bytes sizes;
    append(sizes, frames + 80, 8);
    append(sizes, frames, 8);
    append(sizes, Bytes(12, 0));
    const std::int64_t stated = isLong ? 0xFFFFFFFF : static_cast<std::int64_t>(frames);
    Bytes head = riff({chunk("ds64", sizes), format, chunk("data", {}, stated)}, stated);
    if (isLong) std::memcpy(head.data(), "RF64", 4);
    const WavOnDisk file(head);
    ASSERT_NO_FATAL_FAILURE(extendTo(file.path(), static_cast<LONGLONG>(head.size() + frames), 192));
    ASSERT_EQ(S_OK, open(file.path()));
    EXPECT_EQ(static_cast<double>(frames), m_wave.number(L"Frames"));
    ASSERT_EQ(S_OK, m_wave.put(L"Position", Value(static_cast<double>(frames - 2))));
    LateBound block = nextBlock(10);
    EXPECT_EQ((std::vector<double>{-1, 0.5}), samplesOf(block));
    EXPECT_EQ(static_cast<double>(frames), m_wave.number(L"Position"));
    m_wave.call(L"Close");
  }
}

}  // namespace
}  // namespace av::test
