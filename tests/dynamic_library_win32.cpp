#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "dynamic_library.h"

DynamicLibrary::DynamicLibrary(char const * file) : handle_(::LoadLibraryA(file)) {
    if (handle_ != nullptr) return;
    std::printf("error %lu\n", ::GetLastError());
    std::exit(1);
}
DynamicLibrary::~DynamicLibrary() { ::FreeLibrary(static_cast<HMODULE>(handle_)); }
void * DynamicLibrary::function(char const * name) const {
    return reinterpret_cast<void *>(::GetProcAddress(static_cast<HMODULE>(handle_), name));
}
