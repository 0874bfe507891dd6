#pragma once

#include "host/dll_test.h"
#include "host/recording_container.h"

#include <ocidl.h>

#include <cstdint>
#include <cstring>

namespace av::test {

/// A test of what is said between a control and its recording container. It ends with everything let go: no reference
/// left on either side, and a DLL that can be unloaded.
class TalkTest : public DllTest {
 protected:
  /// A new control of the class, which only the container holds.
  void give(RecordingContainer& container, REFCLSID classId) {
    ComPtr<IOleObject> control = create<IOleObject>(classId);
    ASSERT_TRUE(control);
    container.take(std::move(control));
  }

  /// As give(), sited, with an advise sink.
  void giveAndSite(RecordingContainer& container, REFCLSID classId) {
    ASSERT_NO_FATAL_FAILURE(give(container, classId));
    ASSERT_EQ(S_OK, container.site());
    ASSERT_EQ(S_OK, container.advise());
  }

  /// Loads the extent of the container's rectangle from a stream of twelve bytes.
  static void load(RecordingContainer& container) {
    const std::uint32_t words[] = {0x00000800, 5292, 2646};
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, &stream));
    ASSERT_EQ(S_OK, stream->Write(words, sizeof words, nullptr));
    ASSERT_EQ(S_OK, stream->Seek({}, STREAM_SEEK_SET, nullptr));
    ComPtr<IPersistStreamInit> persist;
    ASSERT_EQ(S_OK, container.control()->QueryInterface(IID_PPV_ARGS(&persist)));
    ASSERT_EQ(S_OK, persist->Load(stream.Get()));
  }

  static void initNew(RecordingContainer& container) {
    ComPtr<IPersistStreamInit> persist;
    ASSERT_EQ(S_OK, container.control()->QueryInterface(IID_PPV_ARGS(&persist)));
    ASSERT_EQ(S_OK, persist->InitNew());
  }
};

}  // namespace av::test
