#include "replace_file.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "source.h"
#include "yon/platform/platform.h"

namespace pmltool {

namespace {

namespace platform = yon::platform;

/// A new file beside the target, which goes away again unless it takes the target's place.
class Temporary {
public:
    explicit Temporary(std::string const & target) : target_(target) {
        constexpr int mostLeftovers = 100;
        for (int n = 0; n < mostLeftovers; ++n) {
            std::string const name = target + ".new" + std::to_string(n);
            error_ = platform::createLike(name, target, file_);
            if (!error_) name_ = name;
            if (error_ != std::errc::file_exists) return;
        }
    }
    Temporary(Temporary const &) = delete;
    Temporary & operator=(Temporary const &) = delete;
    ~Temporary() {
        if (name_.empty()) return;
        close();
        std::remove(name_.c_str());
    }

    void write(std::string_view text) {
        if (!error_ && std::fwrite(text.data(), 1, text.size(), file_) != text.size()) failed();
    }

    std::error_code replaceTarget() {
        if (!error_) error_ = platform::flushToDisk(file_);
        close();
        if (!error_) error_ = platform::replaceFile(name_, target_);
        if (!error_) name_.clear();
        return error_;
    }

private:
    void failed() { error_ = {errno, std::generic_category()}; }

    void close() {
        if (file_ != nullptr && std::fclose(file_) != 0 && !error_) failed();
        file_ = nullptr;
    }

    std::string const & target_;
    std::string name_;
    std::FILE * file_ = nullptr;
    std::error_code error_;
};

}  // namespace

void replaceFile(std::string const & file, std::string_view head, std::string_view content) {
    std::string const target = platform::linkTarget(file);
    Temporary temporary(target);
    temporary.write(head);
    temporary.write(content);
    if (auto const error = temporary.replaceTarget()) throw BadInput(file + ": " + error.message());
}

}  // namespace pmltool
