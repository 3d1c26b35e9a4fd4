#include <windows.h>

#include "dynamic_library.h"

void * loadModule(char const * file) { return ::LoadLibraryA(file); }
ModuleFunction functionOf(void * module, char const * name) {
    return reinterpret_cast<ModuleFunction>(
        reinterpret_cast<void *>(::GetProcAddress(static_cast<HMODULE>(module), name)));
}
void unloadModule(void * module) { ::FreeLibrary(static_cast<HMODULE>(module)); }
