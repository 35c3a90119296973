# The compile rules that every target of ours shares, and the one way to declare a layer.

add_library(flowtide_options INTERFACE)
target_compile_options(flowtide_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
# GCC 12 sees overlapping copies in plain string concatenation.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(flowtide_options INTERFACE -Wno-restrict)
endif()
# Fused multiply-adds would make the curve and the time map differ from machine to machine.
target_compile_options(flowtide_options INTERFACE -ffp-contract=off)
target_include_directories(flowtide_options INTERFACE ${PROJECT_SOURCE_DIR})
if(FLOWTIDE_SANITIZE)
  target_compile_options(flowtide_options INTERFACE -fsanitize=${FLOWTIDE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(flowtide_options INTERFACE -fsanitize=${FLOWTIDE_SANITIZE})
  target_compile_definitions(flowtide_options INTERFACE _GLIBCXX_ASSERTIONS)
  # The instrumentation hides from GCC that values are set, in its own headers too.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(flowtide_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
# The fuzzers are led by what they reach in the libraries.
if(FLOWTIDE_BUILD_FUZZ)
  target_compile_options(flowtide_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# flowtide_layer(name SOURCES ... LINKS ...): one static library per folder with the layers below that it may use.
function(flowtide_layer name)
  cmake_parse_arguments(LAYER "" "" "SOURCES;LINKS" ${ARGN})
  add_library(flowtide_${name} STATIC ${LAYER_SOURCES})
  target_link_libraries(flowtide_${name} PUBLIC ${LAYER_LINKS} PRIVATE flowtide_options)
  target_include_directories(flowtide_${name} PUBLIC ${PROJECT_SOURCE_DIR})
endfunction()
