#include <dlfcn.h>

#include "dynamic_library.h"

void * loadModule(char const * file) { return ::dlopen(file, RTLD_NOW); }
ModuleFunction functionOf(void * module, char const * name) {
    return reinterpret_cast<ModuleFunction>(::dlsym(module, name));
}
void unloadModule(void * module) { ::dlclose(module); }
std::size_t freeThreadPlaces() { return 0; }
