// Loads a module that logs, and unloads it, as often as it is told: module, log file, count.
#include <cstdlib>
#include <thread>

#include "dynamic_library.h"

int main(int argc, char ** argv) {
    std::size_t const places = freeThreadPlaces();
    for (int left = argc == 4 ? std::atoi(argv[3]) : 0; left > 0; --left) {
        void * const module = loadModule(argv[1]);
        if (module == nullptr) return 1;
        ModuleFunction const log = functionOf(module, "logFromModule");
        log(argv[2]);
        std::thread(log, argv[2]).join();
        unloadModule(module);
    }
    return freeThreadPlaces() + 10 > places ? 0 : 2;
}
