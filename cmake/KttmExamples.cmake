# Each folder examples/<name> with sources is one program. A folder with a CMakeLists.txt of its own says itself what it
# needs; the others are linked with kttm alone.
file(GLOB folders CONFIGURE_DEPENDS LIST_DIRECTORIES ON "${PROJECT_SOURCE_DIR}/examples/*")
foreach(folder IN LISTS folders)
  get_filename_component(name "${folder}" NAME)
  file(GLOB sources CONFIGURE_DEPENDS "${folder}/*.cpp")
  if(EXISTS "${folder}/CMakeLists.txt")
    add_subdirectory("${folder}")
  elseif(sources)
    add_executable(${name} ${sources})
    kttm_use_flags(${name} FAST_BUILD)
    target_link_libraries(${name} PRIVATE kttm::kttm)
  endif()
endforeach()

# The examples that need no more than the library run as tests.
if(KTTM_TESTS)
  add_test(NAME examples.first COMMAND first)
  set_tests_properties(examples.first PROPERTIES PASS_REGULAR_EXPRESSION "^12,-7: 4 bytes, compared: 1")
  add_test(NAME examples.columns COMMAND columns "${PROJECT_SOURCE_DIR}/examples/data/countries.csv"
                                                 "${PROJECT_SOURCE_DIR}/examples/data/cities.csv")
endif()
