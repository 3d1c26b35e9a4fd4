#include <windows.h>

#include <vector>

#include "dynamic_library.h"

void * loadModule(char const * file) { return ::LoadLibraryA(file); }
ModuleFunction functionOf(void * module, char const * name) {
    return reinterpret_cast<ModuleFunction>(
        reinterpret_cast<void *>(::GetProcAddress(static_cast<HMODULE>(module), name)));
}
void unloadModule(void * module) { ::FreeLibrary(static_cast<HMODULE>(module)); }
std::size_t freeThreadPlaces() {
    std::vector<DWORD> places;
    for (DWORD p; (p = ::TlsAlloc()) != TLS_OUT_OF_INDEXES;) places.push_back(p);
    for (DWORD const p : places) ::TlsFree(p);
    return places.size();
}
