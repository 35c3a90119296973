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

set(FLOWTIDE_KERNEL_SETS baseline)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
  list(APPEND FLOWTIDE_KERNEL_SETS avx2)
  target_compile_definitions(flowtide_options INTERFACE FLOWTIDE_HAS_AVX2_KERNELS)
endif()

# flowtide_layer(name SOURCES ... LINKS ...): one static library per folder with the layers below that it may use.
function(flowtide_layer name)
  cmake_parse_arguments(LAYER "" "" "SOURCES;LINKS" ${ARGN})
  add_library(flowtide_${name} STATIC ${LAYER_SOURCES})
  target_link_libraries(flowtide_${name} PUBLIC ${LAYER_LINKS} PRIVATE flowtide_options)
  target_include_directories(flowtide_${name} PUBLIC ${PROJECT_SOURCE_DIR})
endfunction()

# flowtide_kernels(name SOURCES ... OPTIONS ...): inner loops of a layer, compiled with these options once for each set
# of instructions, into the namespace that FLOWTIDE_KERNEL_SET names.
function(flowtide_kernels name)
  cmake_parse_arguments(KERNELS "" "" "SOURCES;OPTIONS" ${ARGN})
  foreach(set IN LISTS FLOWTIDE_KERNEL_SETS)
    set(target flowtide_${name}_kernels_${set})
    add_library(${target} OBJECT ${KERNELS_SOURCES})
    target_link_libraries(${target} PRIVATE flowtide_options)
    target_compile_definitions(${target} PRIVATE FLOWTIDE_KERNEL_SET=${set})
    target_compile_options(${target} PRIVATE ${KERNELS_OPTIONS})
    if(set STREQUAL avx2)
      target_compile_options(${target} PRIVATE -mavx2)
    endif()
    if(FLOWTIDE_SANITIZE)
      # Their small functions have to be inlined, and not a fuzzer's hook called in each loop, or a picture takes a minute.
      target_compile_options(${target} PRIVATE -O2)
      if(FLOWTIDE_BUILD_FUZZ)
        target_compile_options(${target} PRIVATE -fno-sanitize-coverage=trace-cmp)
      endif()
    endif()
    target_sources(flowtide_${name} PRIVATE $<TARGET_OBJECTS:${target}>)
  endforeach()
endfunction()
