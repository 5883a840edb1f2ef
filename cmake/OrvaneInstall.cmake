# What `cmake --install` and `cpack -G DEB` put in place: liborvane.so, the system folders'
# headers under include/orvane/<folder>/ (with the generated GL tables), the CMake package
# (find_package(Orvane) gives Orvane::orvane), orvane.pc and the orvane tool.
include(CMakePackageConfigHelpers)

set(ORVANE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Orvane)

install(TARGETS orvane_shared EXPORT OrvaneTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(folder IN LISTS ORVANE_SYSTEM_FOLDERS)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/${folder}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvane/${folder}
      FILES_MATCHING PATTERN "*.h")
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/opengl/generated/opengl/GlApi.h
    ${PROJECT_BINARY_DIR}/opengl/generated/opengl/GlUnits.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvane/opengl)

install(EXPORT OrvaneTargets NAMESPACE Orvane:: DESTINATION ${ORVANE_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OrvaneConfig.cmake.in
    ${PROJECT_BINARY_DIR}/OrvaneConfig.cmake INSTALL_DESTINATION ${ORVANE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OrvaneConfig.cmake ${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake
    DESTINATION ${ORVANE_CMAKE_DIR})

# orvane.pc finds its prefix from where it lies, so the tree can be installed under any prefix.
file(RELATIVE_PATH ORVANE_PC_TO_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${PROJECT_SOURCE_DIR}/cmake/orvane.pc.in ${PROJECT_BINARY_DIR}/orvane.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orvane.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TARGET orvane_tool)
  # The installed tool finds the library beside it, in the prefix's library directory.
  file(RELATIVE_PATH lib_from_bin /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(orvane_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${lib_from_bin}")
  install(TARGETS orvane_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(CPACK_PACKAGE_NAME orvane)
set(CPACK_PACKAGE_VENDOR "Orvane")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "CAD surfaces to meshes, drawn with OpenGL: runtime library, headers and tool")
set(CPACK_PACKAGE_CONTACT "Orvane developers <orvane@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libpugixml-dev, libgl1, libglu1-mesa, libegl1")
include(CPack)
