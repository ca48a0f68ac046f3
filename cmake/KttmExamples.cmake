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
    kttm_use_flags(${name})
    target_link_libraries(${name} PRIVATE kttm::kttm)
  endif()
endforeach()
