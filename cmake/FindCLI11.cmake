# Finds CLI11, which is headers only, and defines CLI11::CLI11. Its headers serve Windows as well as this machine, but the
# directory around them does not: the compiler sees them through a link in the build tree.
find_path(CLI11_INCLUDE_DIR CLI/CLI.hpp NO_CMAKE_FIND_ROOT_PATH)
mark_as_advanced(CLI11_INCLUDE_DIR)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(CLI11 REQUIRED_VARS CLI11_INCLUDE_DIR REASON_FAILURE_MESSAGE "scripts/setup installs it")

if(CLI11_FOUND AND NOT TARGET CLI11::CLI11)
  set(cli11_link ${CMAKE_BINARY_DIR}/cli11)
  file(MAKE_DIRECTORY ${cli11_link})
  file(CREATE_LINK ${CLI11_INCLUDE_DIR}/CLI ${cli11_link}/CLI SYMBOLIC)
  add_library(CLI11::CLI11 INTERFACE IMPORTED)
  target_include_directories(CLI11::CLI11 SYSTEM INTERFACE ${cli11_link})
endif()
