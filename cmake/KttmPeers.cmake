# Libraries of others that examples and benchmarks may use, when the machine has them. Only native 64-bit builds look:
# a cross or 32-bit build would find libraries of the wrong architecture.

set(KTTM_NATIVE64 OFF)
if(CMAKE_SIZEOF_VOID_P EQUAL 8 AND NOT CMAKE_CROSSCOMPILING)
  set(KTTM_NATIVE64 ON)
endif()

# kttm_plain_peer(name header library): an imported target kttm_peer::<name> for a library without a CMake package;
# the library may be "" where the header is all.
function(kttm_plain_peer name header library)
  find_path(KTTM_${name}_INCLUDE ${header})
  if(library)
    find_library(KTTM_${name}_LIBRARY ${library})
  endif()
  if(KTTM_${name}_INCLUDE AND (NOT library OR KTTM_${name}_LIBRARY))
    add_library(kttm_peer::${name} INTERFACE IMPORTED GLOBAL)
    target_include_directories(kttm_peer::${name} INTERFACE "${KTTM_${name}_INCLUDE}")
    if(library)
      target_link_libraries(kttm_peer::${name} INTERFACE "${KTTM_${name}_LIBRARY}")
    endif()
  endif()
  mark_as_advanced(KTTM_${name}_INCLUDE KTTM_${name}_LIBRARY)
endfunction()

if(KTTM_NATIVE64)
  kttm_plain_peer(lmdb lmdb.h lmdb)
endif()
if(KTTM_NATIVE64 AND KTTM_BENCH)
  kttm_plain_peer(xxhash xxhash.h "")
  kttm_plain_peer(date date/date.h "")
  kttm_plain_peer(simdutf simdutf.h simdutf)
  kttm_plain_peer(sqlite sqlite3.h sqlite3)
  find_package(ICU COMPONENTS i18n uc)
  find_package(fmt CONFIG)
endif()
