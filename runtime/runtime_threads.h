#pragma once

namespace av {

/// Gives back what the C++ runtime inside the DLL keeps of the process: the thread-local slot and the memory of
/// exceptions. After this nothing may be thrown. [loader lock], when the DLL is unloaded and the process goes on
void releaseRuntimeThreads() noexcept;

}  // namespace av
