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

# Hosts may compile these as C++11, as their heads say.
if(WIN32)
  set(cpp11Sources)
  foreach(header audio_buffers samples view_events view_event_handlers)
    list(APPEND cpp11Sources ${CMAKE_BINARY_DIR}/header_selfcheck/host/${header}.h.cpp)
  endforeach()
  add_library(header_selfcheck_cpp11 OBJECT EXCLUDE_FROM_ALL ${cpp11Sources})
  target_link_libraries(header_selfcheck_cpp11 PRIVATE av_options)
  target_compile_options(header_selfcheck_cpp11 PRIVATE -O0)
  set_target_properties(header_selfcheck_cpp11 PROPERTIES CXX_STANDARD 11)
  add_dependencies(header_selfcheck header_selfcheck_cpp11)
endif()
