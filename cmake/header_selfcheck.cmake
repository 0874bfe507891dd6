# header_selfcheck: every header compiles alone, and twice in a row. The portable ones in the native build, as part of
# it; those that need Windows in the x64 build, on demand (each reads <windows.h> anew).
if(WIN32)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR}
       common/win/*.h gfx/win/*.h ole/*.h type1/win/*.h type2/win/*.h type3/win/*.h module/*.h runtime/*.h host/*.h demo/*.h
       player/win/*.h
       companion/*.h)
  set(all EXCLUDE_FROM_ALL)
else()
  file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR}
       simd/*.h dsp/*.h gfx/*.h common/*.h wave/*.h type1/*.h type2/*.h type3/*.h player/*.h)
  set(all)
endif()

set(sources)
foreach(header ${headers})
  set(source ${CMAKE_BINARY_DIR}/header_selfcheck/${header}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${header}\"\n#include \"${header}\"\n")
  list(APPEND sources ${source})
endforeach()

add_library(header_selfcheck OBJECT ${all} ${sources})
target_link_libraries(header_selfcheck PRIVATE av_options)
if(WIN32)
  target_link_libraries(header_selfcheck PRIVATE av_idl av_blocks_idl)
endif()
target_compile_options(header_selfcheck PRIVATE -O0 -Wno-unused-function -Wno-unused-variable)
