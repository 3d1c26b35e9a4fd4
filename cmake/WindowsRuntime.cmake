# The compiler's run-time DLLs and those of libgcrypt: copied beside the programs in the build tree, and installed
# with the library.
set(yon_runtime_dlls)
foreach(dll libgcc_s_dw2-1.dll libstdc++-6.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll} OUTPUT_VARIABLE path
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT EXISTS ${path})
    message(FATAL_ERROR "${CMAKE_CXX_COMPILER} has no ${dll}; the variant with POSIX threads is needed")
  endif()
  list(APPEND yon_runtime_dlls ${path})
endforeach()
find_package(Gcrypt REQUIRED)
list(APPEND yon_runtime_dlls ${Gcrypt_RUNTIME_DLLS})
file(COPY ${yon_runtime_dlls} DESTINATION ${PROJECT_BINARY_DIR}/bin)
install(FILES ${yon_runtime_dlls} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
# The licences of what stands beside the library, or within it.
foreach(package gcc-mingw-w64-base mingw-w64-i686-dev libace-dev libgcrypt-mingw-w64-dev
    libgpg-error-mingw-w64-dev)
  install(FILES /usr/share/doc/${package}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR}/licences RENAME ${package}
    COMPONENT runtime OPTIONAL)
endforeach()
