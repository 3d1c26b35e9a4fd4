// The heartbeat service: peers that tell each other, in datagrams, that they are alive.
//
//     heartbeat [--seconds N] [--summary]
//
// Settings come from the file that ZUV_CLI_CFG_FILE names, or p2p_config.pml. Exit status: 0 after an orderly end, 1
// for settings or a port that cannot be used, 2 for wrong options.
#include <ace/Init_ACE.h>

#include <iostream>

#include "service.h"

int main(int argc, char ** argv) {
    ACE::init();  // the sockets of Windows want it
    heartbeat::Service service(argc, argv);
    try {
        service.catchSignals();
        return service.start();
    } catch (yon::ArgumentException const & e) {
        std::cerr << "heartbeat: " << e.what() << '\n';
        return 2;
    } catch (std::exception const & e) {
        std::cerr << "heartbeat: " << e.what() << '\n';
        return 1;
    }
}
