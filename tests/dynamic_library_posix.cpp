#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "dynamic_library.h"

DynamicLibrary::DynamicLibrary(char const * file) : handle_(::dlopen(file, RTLD_NOW)) {
    if (handle_ != nullptr) return;
    std::puts(::dlerror());
    std::exit(1);
}
DynamicLibrary::~DynamicLibrary() { ::dlclose(handle_); }
void * DynamicLibrary::function(char const * name) const { return ::dlsym(handle_, name); }
