// Loads a module that logs, and unloads it, as often as it is told: module, library, log file, count.
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "dynamic_library.h"

int main(int argc, char ** argv) {
    if (argc != 5) return 2;
    for (int left = std::atoi(argv[4]); left > 0; --left) {
        // What the library keeps for a thread goes with the thread.
        std::thread([argv] {
            DynamicLibrary module(argv[1]);
            auto const log = reinterpret_cast<void (*)(char const *)>(module.function("logFromModule"));
            std::thread(log, argv[3]).join();
        }).join();
        if (DynamicLibrary::isLoaded(argv[2])) std::printf("%s is still there\n", argv[2]);
    }
    return 0;
}
