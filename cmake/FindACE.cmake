# Finds ACE and defines ACE::ACE. Natively it is the system's library. For Windows it is the static archive that
# scripts/setup builds once for each version and compiler and keeps in the user's cache, or the one under ACE_ROOT.
set(ace_prefixes ${ACE_ROOT} $ENV{ACE_ROOT})
set(ace_search)
if(CMAKE_CROSSCOMPILING)
  set(ace_cache $ENV{XDG_CACHE_HOME})
  if(NOT ace_cache)
    set(ace_cache $ENV{HOME}/.cache)
  endif()
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -dumpmachine OUTPUT_VARIABLE ace_machine
    OUTPUT_STRIP_TRAILING_WHITESPACE)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -dumpversion OUTPUT_VARIABLE ace_compiler
    OUTPUT_STRIP_TRAILING_WHITESPACE)
  file(GLOB ace_cached ${ace_cache}/zuvyon/ace-*-${ace_machine}-${ace_compiler})
  list(SORT ace_cached COMPARE NATURAL ORDER DESCENDING)
  list(APPEND ace_prefixes ${ace_cached})
  set(ace_search NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)  # never the headers of this machine
endif()

find_path(ACE_INCLUDE_DIR ace/ACE.h HINTS ${ace_prefixes} PATH_SUFFIXES include ${ace_search})
find_library(ACE_LIBRARY ACE HINTS ${ace_prefixes} PATH_SUFFIXES lib ${ace_search})
mark_as_advanced(ACE_INCLUDE_DIR ACE_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(ACE REQUIRED_VARS ACE_LIBRARY ACE_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "scripts/setup installs it")

if(ACE_FOUND AND NOT TARGET ACE::ACE)
  add_library(ACE::ACE UNKNOWN IMPORTED)
  set_target_properties(ACE::ACE PROPERTIES
    IMPORTED_LOCATION ${ACE_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${ACE_INCLUDE_DIR})
  if(WIN32)
    set_target_properties(ACE::ACE PROPERTIES
      INTERFACE_COMPILE_DEFINITIONS "ACE_AS_STATIC_LIBS;ACE_DOESNT_DEFINE_MAIN"
      INTERFACE_LINK_LIBRARIES "ws2_32;mswsock;iphlpapi;netapi32")
  endif()
endif()
