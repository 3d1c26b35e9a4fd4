// Loading of modules, for tests.
#pragma once

#include <cstddef>

using ModuleFunction = void (*)(char const *);

/// Null when there is none.
void * loadModule(char const * file);
ModuleFunction functionOf(void * module, char const * name);
void unloadModule(void * module);

/// How many places are left for values of each thread, of which a process has few; 0 where modules cannot lose any.
std::size_t freeThreadPlaces();
