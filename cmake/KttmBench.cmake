# kttm_bench calls the shared libraries as a user does. Each peer that the machine has gives a definition KT_HAVE_<PEER>;
# rows against a missing peer are left out.
find_package(benchmark REQUIRED)

# How costs grow with the run; needs no peers.
file(GLOB scaling_sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/bench/scaling/*.cpp")
add_executable(kttm_scaling ${scaling_sources})
kttm_use_flags(kttm_scaling)
target_link_libraries(kttm_scaling PRIVATE kttm::kttm)

file(GLOB bench_sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/bench/*.cpp")
add_executable(kttm_bench ${bench_sources})
kttm_use_flags(kttm_bench)
target_include_directories(kttm_bench PRIVATE "${PROJECT_SOURCE_DIR}/bench")
target_compile_definitions(kttm_bench PRIVATE KTTM_BENCH_DATA="${PROJECT_SOURCE_DIR}/examples/data")
target_link_libraries(kttm_bench PRIVATE kttm::kttm benchmark::benchmark)
foreach(peer "ICU;ICU::i18n;ICU::uc" "FMT;fmt::fmt" "XXHASH;kttm_peer::xxhash" "SIMDUTF;kttm_peer::simdutf"
             "LMDB;kttm_peer::lmdb" "DATE;kttm_peer::date")
  list(POP_FRONT peer name)
  list(GET peer 0 target)
  if(TARGET ${target})
    target_link_libraries(kttm_bench PRIVATE ${peer})
    target_compile_definitions(kttm_bench PRIVATE KT_HAVE_${name}=1)
  else()
    message(STATUS "bench: no ${name}, its rows are left out")
  endif()
endforeach()
