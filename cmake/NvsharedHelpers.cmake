# Small helpers so that adding a source, a test, a benchmark or a fuzzer is
# one line in the folder's CMakeLists.txt.

# Warnings for project code. Third-party headers come in as SYSTEM and stay
# quiet.
function(nvshared_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  # GCC 12 at -O2 and above reports -Wrestrict inside the standard library's
  # own string code (GCC bug 105329), a false positive fixed in GCC 13.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND
     CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(NVSHARED_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# nvshared_sources(file...): adds library sources, relative to the calling
# folder, to the object library behind libnvshared.so.
function(nvshared_sources)
  foreach(src IN LISTS ARGN)
    target_sources(nvshared_objects PRIVATE
      "${CMAKE_CURRENT_SOURCE_DIR}/${src}")
  endforeach()
endfunction()

# nvshared_add_test(NAME name LABEL label SOURCES file...)
# One GoogleTest executable, linked against the static build of the library
# (so tests reach internals) and the test-only helpers, labelled LABEL.
# Test cases whose name holds "Concurrency" are registered apart, with the
# label LABEL-concurrency: `ctest -L concurrency` (a regular expression) picks
# them all for the ThreadSanitizer build, and `ctest -L LABEL` still finds
# them.
function(nvshared_add_test)
  cmake_parse_arguments(ARG "" "NAME;LABEL" "SOURCES;LABELS" ${ARGN})
  if(NOT ARG_LABEL AND ARG_LABELS)
    list(GET ARG_LABELS 0 ARG_LABEL)
  endif()
  if(NOT NVSHARED_BUILD_TESTS)
    return()
  endif()
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE
    nvshared_static nvshared_testing GTest::gmock)
  nvshared_warnings(${ARG_NAME})
  include(GoogleTest)
  gtest_discover_tests(${ARG_NAME}
    TEST_FILTER "-*Concurrency*"
    PROPERTIES LABELS "${ARG_LABEL}"
    DISCOVERY_TIMEOUT 60)
  # Once the folder has added all its sources, a binary with concurrency
  # cases joins `concurrency_tests`, all the ThreadSanitizer build compiles.
  # (EVAL fixes the name now: a deferred call reads variables when it runs.)
  cmake_language(EVAL CODE "cmake_language(DEFER DIRECTORY \"${PROJECT_SOURCE_DIR}\" CALL _nvshared_join_concurrency_tests \"${ARG_NAME}\")")
  gtest_discover_tests(${ARG_NAME}
    TEST_FILTER "*Concurrency*"
    TEST_SUFFIX ".mt"
    PROPERTIES LABELS "${ARG_LABEL}-concurrency"
    DISCOVERY_TIMEOUT 60)
endfunction()

function(_nvshared_join_concurrency_tests target)
  if(NOT TARGET concurrency_tests)
    add_custom_target(concurrency_tests)
  endif()
  get_target_property(sources ${target} SOURCES)
  get_target_property(dir ${target} SOURCE_DIR)
  foreach(src IN LISTS sources)
    if(NOT IS_ABSOLUTE "${src}")
      set(src "${dir}/${src}")
    endif()
    file(STRINGS "${src}" hits REGEX "Concurrency")
    if(hits)
      add_dependencies(concurrency_tests ${target})
      return()
    endif()
  endforeach()
endfunction()

# nvshared_add_benchmark(NAME name SOURCES file... [LIBS lib...])
function(nvshared_add_benchmark)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;LIBS" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE
    nvshared_static benchmark::benchmark ${ARG_LIBS})
  nvshared_warnings(${ARG_NAME})
endfunction()

# nvshared_add_fuzzer(NAME name SOURCES file... CORPUS dir)
# With NVSHARED_FUZZ (clang) this is a libFuzzer binary. Otherwise the same
# entry point is linked with a replay main, and CTest runs every seed of the
# corpus through it as an ordinary test labelled "fuzz".
function(nvshared_add_fuzzer)
  cmake_parse_arguments(ARG "" "NAME;CORPUS" "SOURCES" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE nvshared_static)
  nvshared_warnings(${ARG_NAME})
  if(NVSHARED_FUZZ)
    target_compile_options(${ARG_NAME} PRIVATE -fsanitize=fuzzer)
    target_link_options(${ARG_NAME} PRIVATE -fsanitize=fuzzer)
  else()
    target_sources(${ARG_NAME} PRIVATE
      "${PROJECT_SOURCE_DIR}/fuzz/replay_main.cc")
  endif()
  if(NVSHARED_BUILD_TESTS)
    add_test(NAME ${ARG_NAME}.corpus
      COMMAND ${ARG_NAME} "${CMAKE_CURRENT_SOURCE_DIR}/${ARG_CORPUS}")
    set_tests_properties(${ARG_NAME}.corpus PROPERTIES LABELS fuzz)
  endif()
endfunction()
