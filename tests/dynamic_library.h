// Loading of modules, for tests.
#pragma once

using ModuleFunction = void (*)(char const *);

/// Null when there is none.
void * loadModule(char const * file);
ModuleFunction functionOf(void * module, char const * name);
void unloadModule(void * module);
