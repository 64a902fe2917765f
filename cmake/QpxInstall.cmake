# cmake --install: library, headers, CMake package, pkg-config file, tool.
include(CMakePackageConfigHelpers)

# The installed tree may be moved: the library finds the memory services beside it, the tool finds the
# library, and the pkg-config file its prefix. A host's own libkesbase goes before by LD_LIBRARY_PATH.
file(RELATIVE_PATH lib_from_bin ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH prefix_from_pc ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
set_target_properties(qpxengine PROPERTIES INSTALL_RPATH "$ORIGIN")
if(QPX_BUILD_TOOL)
  set_target_properties(qpx PROPERTIES INSTALL_RPATH "$ORIGIN/${lib_from_bin}")
endif()

install(TARGETS qpxengine kesbase EXPORT qpxengineTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/qpx DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(FILES ${QPX_ASSETS_HEADER} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qpx)
install(FILES include/kesbase.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(QPX_BUILD_TOOL)
  install(TARGETS qpx RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qpxengine)
install(EXPORT qpxengineTargets NAMESPACE qpx:: DESTINATION ${package_dir})
configure_package_config_file(cmake/qpxengineConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/qpxengineConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/qpxengineConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qpxengineConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/qpxengineConfigVersion.cmake DESTINATION ${package_dir})

configure_file(cmake/qpxengine.pc.in ${CMAKE_CURRENT_BINARY_DIR}/qpxengine.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qpxengine.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
