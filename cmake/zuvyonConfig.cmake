# find_package(zuvyon) defines zuvyon::zuvyon, the shared library. find_package(zuvyon COMPONENTS static) defines
# zuvyon::static, the archive, too; that one needs ACE and libgcrypt (see FindACE.cmake and
# FindGcrypt.cmake beside this file).
include(${CMAKE_CURRENT_LIST_DIR}/zuvyonShared.cmake)
set(zuvyon_shared_FOUND TRUE)

if(static IN_LIST zuvyon_FIND_COMPONENTS)
  list(PREPEND CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR})
  find_package(ACE QUIET)
  find_package(Gcrypt QUIET)
  list(POP_FRONT CMAKE_MODULE_PATH)
  if(ACE_FOUND AND Gcrypt_FOUND)
    include(${CMAKE_CURRENT_LIST_DIR}/zuvyonStatic.cmake)
    set(zuvyon_static_FOUND TRUE)
  endif()
endif()

foreach(component IN LISTS zuvyon_FIND_COMPONENTS)
  if(zuvyon_FIND_REQUIRED_${component} AND NOT zuvyon_${component}_FOUND)
    set(zuvyon_FOUND FALSE)
    set(zuvyon_NOT_FOUND_MESSAGE "component ${component} is unknown, or ACE or libgcrypt, which it needs, was not found")
  endif()
endforeach()
