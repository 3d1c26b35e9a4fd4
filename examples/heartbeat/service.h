// The service: settings, threads, timers, the prompt, and the orderly end.
#pragma once

#include <memory>

#include "transport.h"

namespace heartbeat {

/// The program as a unit of work. `on_init` starts everything, `on_loop` polls the prompt, `on_fini` stops it all.
class Service : public yon::UowMain {
public:
    Service(int argc, char ** argv);
    ~Service() override;

    void on_init() override;
    void on_loop() override;
    void on_fini() override;
    void on_reload() override;
    /// The commands of the prompt: "state", "peers", "reload", "help" and "quit".
    void run(yon::String const & command) override;

private:
    /// Between reading the options and the end of the service.
    struct Parts;

    bool readOptions();
    void configure(Settings const & settings);
    void reloadWhenChanged();
    void writeState(void *);
    void printPeers() const;

    yon::logger & log_;
    yon::longlong seconds_ = 0;  ///< how long to run, 0 for ever
    bool summary_ = false;
    yon::TimeCounter running_;
    yon::TimeCounter sinceLook_;
    yon::longlong fileTime_ = 0;
    std::unique_ptr<Parts> parts_;
};

}  // namespace heartbeat
