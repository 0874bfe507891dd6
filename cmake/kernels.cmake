# Files for one kind of processor, whose functions are called only where simd/usable.cpp has found one. They instantiate
# templates for their own number of lanes and call no function that another file could have compiled for less.
set(avx2 -mavx2 -mfma)
set(avx512 -mavx512f)
if(WIN32)
  # GCC aligns the stack of 64-bit Windows programs to 16 bytes only, yet spills vectors of 32 and 64 bytes with moves
  # that fault at such addresses. The assembler makes them moves that do not; they cost the same.
  list(APPEND avx2 -Wa,-muse-unaligned-vector-move)
  list(APPEND avx512 -Wa,-muse-unaligned-vector-move)
endif()
file(GLOB kernels CONFIGURE_DEPENDS */*_avx2.cpp)
set_source_files_properties(${kernels} PROPERTIES COMPILE_OPTIONS "${avx2}")
file(GLOB kernels CONFIGURE_DEPENDS */*_avx512.cpp)
set_source_files_properties(${kernels} PROPERTIES COMPILE_OPTIONS "${avx512}")
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # The power spectrum has long chains of operations on all registers. Ordered before registers are given out they are up
  # to a tenth faster; which tuning is best was tried out, and only the order of instructions depends on it.
  set(ordered -fschedule-insns -fsched-pressure)
  set_source_files_properties(dsp/fft_sse2.cpp PROPERTIES COMPILE_OPTIONS "${ordered};-mtune=haswell")
  list(APPEND ordered -fira-loop-pressure -mtune=skylake)
  set_source_files_properties(dsp/fft_avx2.cpp PROPERTIES COMPILE_OPTIONS "${avx2};${ordered}")
  set_source_files_properties(dsp/fft_avx512.cpp PROPERTIES COMPILE_OPTIONS "${avx512};${ordered}")
  # Levels are chains of operations that wait for each other, a few side by side: these belong in turn, not one after the
  # other, or the processor's own schedulers are full of waiting ones. 32 bits have too few registers for that.
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set_property(SOURCE dsp/levels_avx2.cpp dsp/levels_avx512.cpp APPEND PROPERTY COMPILE_OPTIONS -fschedule-insns)
  endif()
endif()
