#include "yon/pml/file.h"

#include <cerrno>
#include <fstream>
#include <memory>
#include <system_error>

#include "yon/platform/platform.h"

namespace yon::pml {

bool File::open(std::ifstream & in) const {
    in.open(filename_, std::ios::binary);
    return in.is_open();
}

bool File::open(std::ofstream & out) const {
    out.open(filename_, std::ios::binary | std::ios::trunc);
    return out.is_open();
}

String File::load(ulong limit) const {
    std::FILE * opened = nullptr;
    if (std::error_code const error = platform::openRegular(filename_, opened)) {
        std::string what = filename_;
        if (error == std::errc::operation_not_supported) what += " is no regular file";
        throw std::system_error(error, what);
    }
    struct Close {
        void operator()(std::FILE * file) const noexcept { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Close> const file(opened);
    // Read until the end shows: what a file says of its length need not be true.
    String text;
    std::string block(std::size_t{64} << 10, '\0');
    while (std::size_t const size = std::fread(block.data(), 1, block.size(), opened)) {
        if (size > limit - text.size()) {
            throw std::system_error(std::make_error_code(std::errc::file_too_large),
                                    filename_ + " is longer than " + std::to_string(limit) + " bytes");
        }
        text.append(block, 0, size);
    }
    if (std::ferror(opened) != 0) throw std::system_error(errno, std::generic_category(), filename_);
    return text;
}

}  // namespace yon::pml
