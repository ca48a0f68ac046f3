# kttm_tests is linked with the objects of the libraries, so that tests reach what the shared libraries hide.

# A packaged GoogleTest fits native 64-bit builds; every other build makes its own from the distribution's sources.
if(KTTM_NATIVE64)
  find_package(GTest QUIET)
endif()
if(NOT TARGET GTest::gtest_main)
  set(KTTM_GTEST_SOURCE /usr/src/googletest CACHE PATH "Sources of GoogleTest")
  set(INSTALL_GTEST OFF)
  set(BUILD_GMOCK OFF)
  set(gtest_disable_pthreads ${WIN32})
  add_subdirectory("${KTTM_GTEST_SOURCE}" "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
  if(NOT TARGET GTest::gtest_main)
    add_library(GTest::gtest_main ALIAS gtest_main)
  endif()
endif()

# Under an emulator starting a process is dear: there each shard runs its part of all tests in one process.
function(kttm_register_tests target)
  if(KTTM_TEST_SHARDS EQUAL 0)
    include(GoogleTest)
    gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 TEST_FILTER -All/* PROPERTIES TIMEOUT 300)
    return()
  endif()
  math(EXPR last "${KTTM_TEST_SHARDS} - 1")
  foreach(shard RANGE ${last})
    add_test(NAME ${target}.shard_${shard} COMMAND ${target} --gtest_brief=1)
    set_tests_properties(${target}.shard_${shard} PROPERTIES
      ENVIRONMENT "GTEST_TOTAL_SHARDS=${KTTM_TEST_SHARDS};GTEST_SHARD_INDEX=${shard}" TIMEOUT 1200)
  endforeach()
endfunction()

# The rows and their sample values, which several test programs go through.
add_library(kttm_samples OBJECT "${PROJECT_SOURCE_DIR}/tests/laws/samples.cpp"
                                "${PROJECT_SOURCE_DIR}/tests/laws/values.cpp")
kttm_use_flags(kttm_samples FAST_BUILD)
target_include_directories(kttm_samples PUBLIC "${PROJECT_SOURCE_DIR}/tests"
                           PRIVATE $<TARGET_PROPERTY:kttm_objects,INTERFACE_INCLUDE_DIRECTORIES>)

file(GLOB test_sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/*.cpp" "${PROJECT_SOURCE_DIR}/tests/laws/laws.cpp")
# The portable files of the example atlas are read on every host, also where LMDB and so the example itself is missing.
list(APPEND test_sources "${PROJECT_SOURCE_DIR}/tests/atlas/portable_test.cpp")
set(KTTM_ATLAS_PORTABLE_SOURCES portable record reading schema text value)
list(TRANSFORM KTTM_ATLAS_PORTABLE_SOURCES REPLACE "(.+)" "${PROJECT_SOURCE_DIR}/examples/atlas/\\1.cpp")
list(APPEND test_sources ${KTTM_ATLAS_PORTABLE_SOURCES})
add_executable(kttm_tests ${test_sources})
kttm_use_flags(kttm_tests FAST_BUILD)
kttm_link_inside(kttm_tests)
target_compile_definitions(kttm_tests PRIVATE KT_TESTS_DIR="${PROJECT_SOURCE_DIR}/tests")
target_link_libraries(kttm_tests PRIVATE kttm_samples GTest::gtest_main)
kttm_register_tests(kttm_tests)
# The laws: thousands of cases that take less time than a process.
if(KTTM_TEST_SHARDS EQUAL 0)
  add_test(NAME laws COMMAND kttm_tests --gtest_filter=All/* --gtest_brief=1)
  set_tests_properties(laws PROPERTIES TIMEOUT 300)
endif()

# What is read or built once a process, and what replaces the process's allocator, needs a program of its own:
# tests/own_process/<name>.cpp is one.
find_package(Threads REQUIRED)
file(GLOB own_process_sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/own_process/*.cpp")
foreach(source IN LISTS own_process_sources)
  get_filename_component(name "${source}" NAME_WE)
  add_executable(${name} "${source}")
  kttm_use_flags(${name} FAST_BUILD)
  kttm_link_inside(${name})
  target_link_libraries(${name} PRIVATE kttm_samples Threads::Threads GTest::gtest_main)
  if(name MATCHES "^allocation_failure")
    target_sources(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests/failing_allocations/failing_allocations.cpp")
    target_link_options(${name} PRIVATE LINKER:--wrap=malloc,--wrap=calloc,--wrap=realloc,--wrap=free)
  endif()
  kttm_register_tests(${name})
endforeach()

# Looks at sources only: once, natively, is enough.
find_package(Python3 COMPONENTS Interpreter)
if(Python3_FOUND AND KTTM_NATIVE64)
  set(layers "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/tests/layers/check_layers.py")
  add_test(NAME layers.includes_point_down_only COMMAND ${layers} "${PROJECT_SOURCE_DIR}")
  add_test(NAME layers.the_check_finds_violations COMMAND ${layers} --self-test)
  # Generated sources are what their generators write, where the data that they read is installed.
  foreach(generator ktin/tools/generate_tables src/values/tools/generate_character_names)
    get_filename_component(name ${generator} NAME)
    add_test(NAME generated.${name}
             COMMAND "${Python3_EXECUTABLE}" -B "${PROJECT_SOURCE_DIR}/${generator}.py" --check)
    set_tests_properties(generated.${name} PROPERTIES SKIP_RETURN_CODE 77)
  endforeach()
endif()

if(KTTM_NATIVE64)
  add_test(NAME libraries.inner_names_stay_inside
           COMMAND sh "${PROJECT_SOURCE_DIR}/tests/libraries/inner_names_stay_inside.sh"
                   $<TARGET_FILE:ktbs> $<TARGET_FILE:ktin> $<TARGET_FILE:kttm>)
endif()

# What loading costs is measured where nothing but the libraries counts: not under a sanitizer or an emulator.
if(KTTM_NATIVE64 AND NOT KTTM_SANITIZE AND NOT KTTM_COVERAGE AND CMAKE_SYSTEM_NAME STREQUAL Linux)
  add_executable(startup_cost "${PROJECT_SOURCE_DIR}/tests/startup/startup_cost.cpp")
  kttm_use_flags(startup_cost FAST_BUILD)
  target_link_libraries(startup_cost PRIVATE ${CMAKE_DL_LIBS})
  add_test(NAME libraries.start_small COMMAND startup_cost $<TARGET_FILE:kttm>)
endif()

find_program(KTTM_BASH bash)

# Sanitizers and counters add exports of their own.
if(Python3_FOUND AND NOT WIN32 AND NOT KTTM_SANITIZE AND NOT KTTM_COVERAGE)
  add_test(NAME libraries.export_what_the_lists_say
           COMMAND "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/tests/libraries/check_exports.py"
                   $<TARGET_FILE:ktbs> $<TARGET_FILE:ktin> $<TARGET_FILE:kttm>)
endif()

# Uses the installed libraries from outside; once is enough, in the build that is installed.
if(KTTM_NATIVE64 AND KTTM_BASH AND NOT KTTM_SANITIZE AND TARGET kttm_tool)
  add_test(NAME consumer.uses_the_installed_libraries
           COMMAND "${KTTM_BASH}" "${PROJECT_SOURCE_DIR}/tests/consumer/run.sh" "${CMAKE_COMMAND}"
                   "${CMAKE_CXX_COMPILER}" "${PROJECT_BINARY_DIR}" "${PROJECT_BINARY_DIR}/consumer")
  set_tests_properties(consumer.uses_the_installed_libraries PROPERTIES TIMEOUT 300)
endif()

# The tool as a user starts it, through the emulator where there is one.
if(TARGET kttm_tool AND KTTM_BASH)
  add_test(NAME tool.cases_and_help_examples
           COMMAND "${KTTM_BASH}" "${PROJECT_SOURCE_DIR}/tests/tool/run_cases.sh"
                   ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:kttm_tool>)
endif()

if(KTTM_NATIVE64 AND TARGET kttm_tool AND Python3_FOUND)
  add_test(NAME tool.functions_and_reasons_are_those_of_the_sources
           COMMAND "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/tests/tool/check_functions.py" $<TARGET_FILE:kttm_tool>
                   "${PROJECT_SOURCE_DIR}")
endif()

# Sizes in memory are those of 64 bits.
if(KTTM_NATIVE64 AND TARGET kttm_tool AND KTTM_BASH)
  set(check_page "${KTTM_BASH}" "${PROJECT_SOURCE_DIR}/tests/tool/check_page.sh" $<TARGET_FILE:kttm_tool>)
  add_test(NAME tool.docs_list_the_types_as_they_are COMMAND ${check_page} "${PROJECT_SOURCE_DIR}/docs/types.md" 1)
  add_test(NAME tool.docs_show_what_types_offer COMMAND ${check_page} "${PROJECT_SOURCE_DIR}/docs/operations.md" 2)
  add_test(NAME tool.readme_shows_what_it_prints_and_the_first_example
           COMMAND ${check_page} "${PROJECT_SOURCE_DIR}/README.md" 5 "${PROJECT_SOURCE_DIR}/examples/first/first.cpp")
endif()
