# Installation, and find_package(zuvyon) from an installed prefix as well as from the build tree: the package files
# stand at the same place in both, so that either is named by CMAKE_PREFIX_PATH.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zuvyon)
set(package_build_dir ${PROJECT_BINARY_DIR}/lib/cmake/zuvyon)

configure_file(${PROJECT_SOURCE_DIR}/cmake/zuvyonConfig.cmake ${package_build_dir}/zuvyonConfig.cmake COPYONLY)
foreach(finder FindACE FindGcrypt)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${finder}.cmake ${package_build_dir}/${finder}.cmake COPYONLY)
endforeach()
write_basic_package_version_file(${package_build_dir}/zuvyonConfigVersion.cmake COMPATIBILITY SameMajorVersion)
configure_file(${PROJECT_SOURCE_DIR}/cmake/zuvyon.pc.in ${PROJECT_BINARY_DIR}/zuvyon.pc @ONLY)

# Two sets: users of the shared library need nothing else, users of the archive need what it was built with.
install(TARGETS zuvyon EXPORT zuvyonShared)
install(TARGETS zuvyon_static EXPORT zuvyonStatic)
foreach(set Shared Static)
  export(EXPORT zuvyon${set} NAMESPACE zuvyon:: FILE ${package_build_dir}/zuvyon${set}.cmake)
  install(EXPORT zuvyon${set} NAMESPACE zuvyon:: DESTINATION ${package_dir})
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/yon DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN *.h)
install(FILES ${package_build_dir}/zuvyonConfig.cmake ${package_build_dir}/zuvyonConfigVersion.cmake
  ${package_build_dir}/FindACE.cmake ${package_build_dir}/FindGcrypt.cmake DESTINATION ${package_dir})
install(FILES ${PROJECT_BINARY_DIR}/zuvyon.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
