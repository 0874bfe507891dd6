# Flags of every target of our own.
add_library(av_options INTERFACE)
target_include_directories(av_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(av_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Wundef
  -Werror
  # Contracted multiply-adds would change result bits between builds.
  -ffp-contract=off
  -fvisibility=hidden)
if(AV_SANITIZE)
  target_compile_options(av_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(av_options INTERFACE -fsanitize=address,undefined)
endif()
if(AV_TRAP)
  # MinGW has no runtime that could report: undefined behaviour ends the program at once.
  # GCC 12 takes the checks' paths for overruns. Alignment is checked natively: Wine's marshaller asks objects for
  # interfaces by identifiers that lie at odd addresses of its messages.
  target_compile_options(av_options INTERFACE -fsanitize=undefined -fno-sanitize=alignment
                         -fsanitize-undefined-trap-on-error
                         -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread -Wno-maybe-uninitialized)
endif()
if(AV_FUZZ)
  # What assert() and the library's own assertions say is checked too.
  target_compile_options(av_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
                         -fno-omit-frame-pointer -UNDEBUG -D_GLIBCXX_ASSERTIONS)
  target_link_options(av_options INTERFACE -fsanitize=address,undefined)
endif()
if(AV_COVERAGE)
  # Unoptimised, so that each line and branch of the source is one of the program.
  target_compile_options(av_options INTERFACE --coverage -O0 -g)
  target_link_options(av_options INTERFACE --coverage)
endif()
if(WIN32)
  # Without the time of linking, so that one commit gives the same bytes whenever and wherever it is built.
  target_link_options(av_options INTERFACE -Wl,--no-insert-timestamp)
  # Windows 7 interfaces and wide functions throughout.
  target_compile_definitions(av_options INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN STRICT WINVER=0x0601 _WIN32_WINNT=0x0601 _WIN32_IE=0x0800)
endif()
