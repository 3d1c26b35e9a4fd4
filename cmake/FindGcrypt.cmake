# Finds libgcrypt, linked dynamically, and defines Gcrypt::Gcrypt. For Windows Gcrypt_RUNTIME_DLLS are its DLL and the
# one that this needs.
find_path(Gcrypt_INCLUDE_DIR gcrypt.h)
find_library(Gcrypt_LIBRARY NAMES libgcrypt.dll.a gcrypt)
mark_as_advanced(Gcrypt_INCLUDE_DIR Gcrypt_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Gcrypt REQUIRED_VARS Gcrypt_LIBRARY Gcrypt_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "scripts/setup installs it")

if(Gcrypt_FOUND AND WIN32)
  set(Gcrypt_RUNTIME_DLLS)
  get_filename_component(gcrypt_prefix ${Gcrypt_LIBRARY} DIRECTORY)
  foreach(gcrypt_dll libgcrypt-20.dll libgpg-error-0.dll)
    find_file(Gcrypt_DLL_${gcrypt_dll} ${gcrypt_dll} HINTS ${gcrypt_prefix}/../bin REQUIRED
      NO_CMAKE_FIND_ROOT_PATH)
    mark_as_advanced(Gcrypt_DLL_${gcrypt_dll})
    list(APPEND Gcrypt_RUNTIME_DLLS ${Gcrypt_DLL_${gcrypt_dll}})
  endforeach()
endif()

if(Gcrypt_FOUND AND NOT TARGET Gcrypt::Gcrypt)
  add_library(Gcrypt::Gcrypt UNKNOWN IMPORTED)
  set_target_properties(Gcrypt::Gcrypt PROPERTIES
    IMPORTED_LOCATION ${Gcrypt_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${Gcrypt_INCLUDE_DIR})
endif()
