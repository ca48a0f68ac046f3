# cmake --install: headers, libraries, tool, the CMake package (find_package(kttm)), the pkg-config files, one a library,
# and the pages that the headers point to.
include(CMakePackageConfigHelpers)

set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
set_target_properties(kttm ktin ktbs PROPERTIES INSTALL_RPATH "$ORIGIN")

install(TARGETS kttm ktin ktbs EXPORT kttmTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(library kttm ktin ktbs)
  get_target_property(headers ${library} KTTM_HEADER_DIR)
  install(DIRECTORY "${headers}/" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
endforeach()

set(package "${CMAKE_INSTALL_LIBDIR}/cmake/kttm")
install(EXPORT kttmTargets NAMESPACE kttm:: DESTINATION ${package})
configure_package_config_file(cmake/kttmConfig.cmake.in kttmConfig.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(kttmConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/kttmConfig.cmake" "${PROJECT_BINARY_DIR}/kttmConfigVersion.cmake"
        DESTINATION ${package})

file(RELATIVE_PATH KTTM_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" KTTM_PC_TO_PREFIX "${KTTM_PC_TO_PREFIX}")
function(kttm_install_pkg_config library description requires)
  configure_file(cmake/library.pc.in ${library}.pc @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${library}.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
kttm_install_pkg_config(ktbs "Base services of an object database" "")
kttm_install_pkg_config(ktin "Code sets, languages and collation of an object database" "")
kttm_install_pkg_config(kttm "${PROJECT_DESCRIPTION}" "ktin ktbs")

install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs FILES_MATCHING PATTERN "*.md")
