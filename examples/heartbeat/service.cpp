#include "service.h"

#include <filesystem>
#include <fstream>
#include <iostream>

namespace heartbeat {

namespace {

constexpr char tableHead[] = "node     peer     state     sent answered     lost    min ms   mean ms    max ms";

/// When the file was changed, as a number to compare; 0 when it is not there.
yon::longlong changed(yon::String const & file) {
    std::error_code none;
    auto const time = std::filesystem::last_write_time(file.c_str(), none);
    return none ? 0 : static_cast<yon::longlong>(time.time_since_epoch().count());
}

/// Writes the state to a file, on a thread that is started and forgotten.
class StateWriter : public yon::SimpleThread {
public:
    explicit StateWriter(yon::String const & file) : SimpleThread(nullptr, "heartbeat.state"), file_(file) {}

private:
    void run() override {
        std::ofstream out(file_.c_str(), std::ios::binary);
        yon::dumper d(out, false);
        yon::dumpState(d);
    }

    yon::String const file_;
};

}  // namespace

/// Owns the threads: they tell it when they end by themselves, which they should not.
struct Service::Parts : yon::ThreadOwner {
    Parts(Service & s, Settings const & all)
        : service(s),
          settings(all),
          socket(all.listen),
          peers(s.log_),
          sender(YON_NEW(Sender)(this, socket, peers, s.log_, all.id)),
          receiver(YON_NEW(Receiver)(this, socket, peers, s.log_, all.id)),
          report(&s, &Service::writeState) {}

    void onThreadExit(yon::Thread * thread) override {
        yon::String const name = static_cast<yon::SimpleThread *>(thread)->name();
        YON_LOG_ERROR(service.log_, "thread " << name << " has ended by itself");
        service.stop(1);
    }

    Service & service;
    Settings settings;
    Socket socket;
    Peers peers;
    yon::Handle<Sender> sender;
    yon::Handle<Receiver> receiver;
    yon::AsyncThreadManager jobs{"heartbeat"};
    yon::Timer_T<Service> report;
};

Service::Service(int argc, char ** argv) : UowMain(argc, argv), log_(yon::logger_factory::instance("heartbeat")) {}

Service::~Service() = default;

bool Service::readOptions() {
    yon::CmdOptions options("heartbeat");
    options.option("seconds", seconds_, "N", "stop after that time; otherwise on \"quit\" or a signal")
        .flag("summary", summary_, "end with a table of the peers");
    return options.parse(cmdline(), std::cout);
}

void Service::on_init() {
    if (!readOptions()) return stop();
    yon::ConfigFile file;
    Settings const settings = Settings::load(file);
    fileTime_ = changed(file.filename());
    yon::TimerManager::instance()->start();
    yon::console::open();
    parts_ = std::make_unique<Parts>(*this, settings);
    configure(settings);
    parts_->receiver->start();
    parts_->sender->start();
    YON_LOG_INFO(log_, "node " << settings.id << " listens on port " << settings.listen.port);
}

void Service::configure(Settings const & settings) {
    parts_->settings = settings;
    parts_->peers.configure(settings.peers);
    parts_->sender->interval(settings.interval);
    parts_->receiver->timeout(settings.timeout);
    parts_->report.killTimerAndWait();
    if (!settings.stateFile.empty() && settings.report != 0) parts_->report.setTimer(0, settings.report, 0);
}

void Service::on_loop() {
    if (seconds_ != 0 && running_.elapsed() >= yon::Time::seconds(seconds_)) return stop();
    if (sinceLook_.elapsed() >= yon::Time::seconds(1)) reloadWhenChanged();
    yon::String line;
    if (yon::console::readline(line, "heartbeat> ")) run(line);
}

void Service::on_fini() {
    if (parts_ == nullptr) return;
    parts_->sender->stop();
    parts_->receiver->stop();
    parts_->sender->goodbye();  // when nothing is answered any more
    parts_->report.killTimerAndWait();
    parts_->jobs.close();
    if (summary_) printPeers();
    if (parts_->receiver->refused() != 0) {
        YON_LOG_WARNING(log_, parts_->receiver->refused() << " datagrams were no heartbeats of peers");
    }
    YON_LOG_INFO(log_, "node " << parts_->settings.id << " ends");
    parts_.reset();
    yon::console::close();
    yon::TimerManager::instance()->stop();
}

void Service::on_reload() {
    yon::ConfigFile file;
    fileTime_ = changed(file.filename());
    Settings const settings = Settings::load(file);
    configure(settings);
    YON_LOG_INFO(log_, "configuration read again, " << settings.peers.size() << " peers");
}

void Service::reloadWhenChanged() {
    sinceLook_.start();
    yon::ConfigFile const file;
    if (changed(file.filename()) == fileTime_) return;
    yon::logger_factory::reload();
    on_reload();
}

void Service::run(yon::String const & command) {
    if (command == "state") {
        yon::dumper d;
        yon::dumpState(d);
        yon::console::println(d.str());
    } else if (command == "peers") {
        printPeers();
    } else if (command == "reload") {
        yon::logger_factory::reload();
        on_reload();
    } else if (command == "quit") {
        stop();
    } else if (!command.empty()) {
        yon::console::println("commands: state, peers, reload, quit");
    }
}

void Service::writeState(void *) {
    yon::Handle<yon::SimpleThread> const writer = YON_NEW(StateWriter)(parts_->settings.stateFile);
    parts_->jobs.put(writer);
    writer->start();
}

void Service::printPeers() const {
    yon::console::println(tableHead);
    for (auto const & peer : parts_->peers.all()) yon::console::println(peer->summary(parts_->settings.id));
}

}  // namespace heartbeat
