// `ConfigFile`: the file with the settings of the loggers.
#pragma once

#include "yon/pml/pml_stream.h"

namespace yon {

class dumper;

/// The configuration file of the process as a pml tree. One thread at a time.
class YON_API ConfigFile {
public:
    /// Takes the name from the environment variable "ZUV_CLI_CFG_FILE".
    ConfigFile();
    explicit ConfigFile(istr name) : filename_(name) {}

    /// Nothing has been read.
    bool empty() const;
    /// Reads the file, "p2p_config.pml" when the name is empty: a regular file of at most 16 MiB. A file that is not
    /// there leaves it empty. Raises `std::invalid_argument` with "file:line:column: message" for a broken one.
    void load();

    String const & filename() const noexcept { return filename_; }
    /// The whole tree.
    pml::stream & mps() noexcept { return config_; }
    /// The settings of one logger: the child "log", and over it "log/loggers/<id>".
    pml::stream logSettings(istr id) const;

    dumper & dump(dumper & d) const;

private:
    String filename_;
    pml::stream config_;
};

}  // namespace yon
