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
# Like the CMake files, it finds the rest from where it stands.
file(RELATIVE_PATH pkgconfig_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/zuvyon.pc.in ${PROJECT_BINARY_DIR}/zuvyon.pc @ONLY)

# Two sets: users of the shared library need nothing else, users of the archive need what it was built with.
install(TARGETS zuvyon EXPORT zuvyonShared
  RUNTIME COMPONENT runtime LIBRARY COMPONENT runtime NAMELINK_COMPONENT development ARCHIVE COMPONENT development)
install(TARGETS zuvyon_static EXPORT zuvyonStatic ARCHIVE COMPONENT development)
foreach(set Shared Static)
  export(EXPORT zuvyon${set} NAMESPACE zuvyon:: FILE ${package_build_dir}/zuvyon${set}.cmake)
  install(EXPORT zuvyon${set} NAMESPACE zuvyon:: DESTINATION ${package_dir} COMPONENT development)
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/yon DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
  FILES_MATCHING PATTERN *.h)
install(FILES ${package_build_dir}/zuvyonConfig.cmake ${package_build_dir}/zuvyonConfigVersion.cmake
  ${package_build_dir}/FindACE.cmake ${package_build_dir}/FindGcrypt.cmake DESTINATION ${package_dir} COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/zuvyon.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR}
  COMPONENT runtime)

# Packages: three for Debian, one archive for Windows.
set(CPACK_PACKAGE_VENDOR "the zuvyon maintainers")
set(CPACK_PACKAGE_CONTACT "the zuvyon maintainers <maintainers@zuvyon.invalid>")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_SYSTEM_NAME win32)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_COMPONENTS_ALL runtime development tools)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "")
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libzuvyon)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
  set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "C++ toolkit library, the shared library")
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzuvyon-dev)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libzuvyon (= ${PROJECT_VERSION}), libace-dev, libgcrypt20-dev")
  set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "C++ toolkit library, headers and archive")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME zuvyon-tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
  set(CPACK_COMPONENT_TOOLS_DESCRIPTION "C++ toolkit library, command-line programs")
endif()
include(CPack)
