# fuzz/<name>.cpp defines LLVMFuzzerTestOneInput. KTTM_FUZZ makes fuzzers of them; every other build makes
# fuzz_<name> a replay of the files in fuzz/corpus/<name>, which ctest runs.
file(GLOB harnesses CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/fuzz/*.cpp")
list(REMOVE_ITEM harnesses "${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp")
if(NOT KTTM_FUZZ)
  add_library(fuzz_replay OBJECT "${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp")
  kttm_use_flags(fuzz_replay FAST_BUILD)
endif()
foreach(harness IN LISTS harnesses)
  get_filename_component(name "${harness}" NAME_WE)
  add_executable(fuzz_${name} "${harness}")
  kttm_use_flags(fuzz_${name})
  kttm_link_inside(fuzz_${name})
  target_include_directories(fuzz_${name} PRIVATE "${PROJECT_SOURCE_DIR}/fuzz" "${PROJECT_SOURCE_DIR}/tests")
  if(KTTM_FUZZ)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  else()
    target_link_libraries(fuzz_${name} PRIVATE fuzz_replay)
    add_test(NAME fuzz_${name}.corpus_replay COMMAND fuzz_${name} "${PROJECT_SOURCE_DIR}/fuzz/corpus/${name}")
    set_tests_properties(fuzz_${name}.corpus_replay PROPERTIES TIMEOUT 600)
  endif()
endforeach()

# Harnesses of an example's sources are linked with those sources.
foreach(harness predicate_text portable_stream)
  target_include_directories(fuzz_${harness} PRIVATE "${PROJECT_SOURCE_DIR}/examples/atlas")
endforeach()
target_sources(fuzz_predicate_text PRIVATE "${PROJECT_SOURCE_DIR}/examples/atlas/predicate.cpp")
target_sources(fuzz_portable_stream PRIVATE ${KTTM_ATLAS_PORTABLE_SOURCES})

# Writes the first inputs of the harnesses over all rows: build it, then run `fuzz_make_seeds fuzz/corpus`.
add_executable(fuzz_make_seeds EXCLUDE_FROM_ALL "${PROJECT_SOURCE_DIR}/fuzz/seeds/make_seeds.cpp"
                                                "${PROJECT_SOURCE_DIR}/tests/laws/samples.cpp")
kttm_use_flags(fuzz_make_seeds FAST_BUILD)
kttm_link_inside(fuzz_make_seeds)
target_include_directories(fuzz_make_seeds PRIVATE "${PROJECT_SOURCE_DIR}/tests")
