# Compiler settings of the project's own targets: kttm_use_flags(target). Dependencies that are built along keep their own.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()

find_program(KTTM_CCACHE ccache)
if(KTTM_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${KTTM_CCACHE}")
endif()

# kttm_use_flags(target [FAST_BUILD]): FAST_BUILD for what only has to be built soon, such as tests and command lines.
function(kttm_use_flags target)
  set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  # Contracted multiply-adds would give other doubles on hosts (or in clones) that have the instruction.
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wconversion -Wshadow -ffp-contract=off
                                           $<$<BOOL:${KTTM_WERROR}>:-Werror>)
  if(KTTM_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic)
    target_link_options(${target} PRIVATE --coverage)
  endif()
  if(FAST_BUILD IN_LIST ARGN AND CMAKE_CXX_FLAGS_RELEASE MATCHES "-O3")
    target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O1>)
  endif()
  if(FAST_BUILD IN_LIST ARGN AND KTTM_SANITIZE)
    target_compile_options(${target} PRIVATE -O0 -g1)
  endif()
  if(KTTM_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${KTTM_SANITIZE} -fno-sanitize-recover=all
                                             -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${KTTM_SANITIZE})
  endif()
endfunction()
