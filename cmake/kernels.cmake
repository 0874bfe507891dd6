# Files for one kind of processor, whose functions are called only where simd/usable.cpp has found one. They instantiate
# templates for their own number of lanes and call no function that another file could have compiled for less.
set(avx2 -mavx2 -mno-fma)
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
