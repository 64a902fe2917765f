# What every target of the project is compiled with, and how a test is declared.

add_library(qpx_options INTERFACE)
target_compile_features(qpx_options INTERFACE cxx_std_20 c_std_11)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(QPX_CCACHE ccache)
if(QPX_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Without this sloppiness ccache keeps nothing that is compiled with a precompiled header.
  set(launcher env CCACHE_SLOPPINESS=pch_defines,time_macros ${QPX_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
endif()

# Every result is the same bytes on every target, so no product and sum may fuse into one rounding.
target_compile_options(qpx_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Werror -ffp-contract=off
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Wold-style-cast>
  # GCC 12 sees an overlap in every `"text" + string` that it inlines (its bug 105651).
  $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)

# Every vector target multiplies what the kernels take to compile and to test.
if(QPX_SIMD_LEFT_OUT)
  list(JOIN QPX_SIMD_LEFT_OUT "|" left_out)
  target_compile_definitions(qpx_options INTERFACE "QPX_SIMD_LEFT_OUT=(${left_out})")
endif()

# For the tool and the tests, which are the greater part of a build and spend their time in the library.
# What is given here comes behind the options of qpx_options.
add_library(qpx_light_code INTERFACE)
add_library(qpx_light_options INTERFACE)
target_link_libraries(qpx_light_options INTERFACE qpx_options qpx_light_code)
add_library(qpx_test_code INTERFACE)
# At that level GCC 12 takes strings for as long as their short form holds (see its bug 105651).
target_compile_options(qpx_test_code INTERFACE $<$<CONFIG:Release>:-O1>
  $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-array-bounds -Wno-stringop-overflow>)
add_library(qpx_test_options INTERFACE)
target_link_libraries(qpx_test_options INTERFACE qpx_light_options qpx_test_code)

if(QPX_SANITIZE)
  # The vptr check reads type information, which the library is built without.
  target_compile_options(qpx_options INTERFACE -fsanitize=${QPX_SANITIZE} -fno-sanitize=vptr
    -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(qpx_options INTERFACE -fsanitize=${QPX_SANITIZE})
  # Half of the code of a test would be checks of every reference for null and alignment; what a null
  # or a wild pointer does, the address sanitizer sees.
  target_compile_options(qpx_light_code INTERFACE -Og -fno-sanitize=null,alignment,object-size,pointer-overflow)
else()
  add_link_options(-Wl,--no-undefined)
endif()

# qpx_add_test(NAME SOURCES file... [PUBLIC] [FAILING_MEMORY] [THREADS] [SHARDS n] [LIBRARIES target...])
#   PUBLIC          links the shared library, as a host does, instead of its objects
#   FAILING_MEMORY  the five memory services come from tests/support/failing_memory.cpp
#   THREADS         starts threads: labelled so, which is what the thread sanitizer's build runs
#   SHARDS          runs the executable's cases as n tests of ctest, which go side by side and begin
#                   before the other tests: for what takes long
# Every test is labelled with its folder too: `ctest -L simd`.
function(qpx_add_test name)
  cmake_parse_arguments(TEST "PUBLIC;FAILING_MEMORY;THREADS" "SHARDS" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_precompile_headers(${name} REUSE_FROM qpx_test_support)
  target_link_libraries(${name} PRIVATE
    qpx_test_options GTest::gtest GTest::gtest_main ${TEST_LIBRARIES} qpx_test_support)
  if(TEST_PUBLIC)
    target_link_libraries(${name} PRIVATE qpxengine)
  else()
    target_link_libraries(${name} PRIVATE qpx_internal)
  endif()
  if(TEST_FAILING_MEMORY)
    target_link_libraries(${name} PRIVATE qpx_failing_memory)
  else()
    target_link_libraries(${name} PRIVATE kesbase)
  endif()
  cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME labels)
  if(TEST_THREADS)
    list(APPEND labels threads)
    set_property(GLOBAL APPEND PROPERTY QPX_THREAD_TESTS ${name})
  endif()
  if(NOT TEST_SHARDS)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 900 LABELS "${labels}")
    return()
  endif()
  foreach(number RANGE 1 ${TEST_SHARDS})
    math(EXPR index "${number} - 1")
    add_test(NAME ${name}_${number} COMMAND ${name})
    set_tests_properties(${name}_${number} PROPERTIES TIMEOUT 900 COST 100 LABELS "${labels}"
      ENVIRONMENT "GTEST_TOTAL_SHARDS=${TEST_SHARDS};GTEST_SHARD_INDEX=${index}")
  endforeach()
endfunction()

# qpx_add_fuzzer(NAME SOURCES file... [LIBRARIES target...])
#   An executable of libFuzzer over the shared library; scripts/test.sh runs every one named fuzz_*.
function(qpx_add_fuzzer name)
  cmake_parse_arguments(FUZZ "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${FUZZ_SOURCES})
  target_link_libraries(${name} PRIVATE qpx_options qpxengine kesbase ${FUZZ_LIBRARIES} -fsanitize=fuzzer)
endfunction()
