// Loads a module that logs, and unloads it, as often as it is told: module, log file, count.
#include <cstdlib>
#include <thread>

#include "dynamic_library.h"

int main(int argc, char ** argv) {
    if (argc != 4) return 2;
    for (int left = std::atoi(argv[3]); left > 0; --left) {
        DynamicLibrary module(argv[1]);
        auto const log = reinterpret_cast<void (*)(char const *)>(module.function("logFromModule"));
        log(argv[2]);
        std::thread(log, argv[2]).join();
    }
    return 0;
}
