#include "yon/log/config_file.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "yon/base/environment.h"
#include "yon/log/dumper.h"
#include "yon/pml/pml_parser.h"

namespace yon {

namespace {

constexpr char const * variable = "ZUV_CLI_CFG_FILE";
constexpr char const * usualName = "p2p_config.pml";
constexpr ulong maxSize = 16u << 20;

/// The parser takes a text that ends early for what there is of it. Settings must be there as a whole.
bool isWhole(String const & text) {
    char const * rest = text.c_str();
    pml::pmlLexerLpctstr lexer(rest);
    String token;
    pml::pmlLexer::TokenFlag flag{};
    std::size_t depth = 0;
    bool began = false;
    while (lexer.getToken(token, flag)) {
        if (flag == pml::pmlLexer::TokenBegin) {
            began = true;
            ++depth;
        } else if (flag == pml::pmlLexer::TokenEnd && (depth == 0 || --depth == 0)) {
            return true;
        }
    }
    return !began && token.empty();
}

std::string endOf(std::string_view text) {
    std::size_t const line = text.rfind('\n');
    std::size_t const begin = line == text.npos ? 0 : line + 1;
    return std::to_string(1 + std::count(text.begin(), text.end(), '\n')) + ':' +
           std::to_string(text.size() - begin + 1);
}

/// "what at file:line:column" with the place in front.
std::string placeFirst(std::string const & message, std::string const & file) {
    std::size_t const place = message.rfind(" at " + file + ':');
    return place == message.npos ? file + ": " + message
                                 : message.substr(place + 4) + ": " + message.substr(0, place);
}

}  // namespace

ConfigFile::ConfigFile() : ConfigFile(getenv(variable)) {}

bool ConfigFile::empty() const { return config_.unit().empty(); }

void ConfigFile::load() {
    config_.clear();
    if (filename_.empty()) filename_ = usualName;
    String text;
    try {
        text = pml::File(filename_).load(maxSize);
    } catch (std::system_error const & e) {
        if (e.code() == std::errc::no_such_file_or_directory) return;
        throw std::invalid_argument(e.what());
    }
    pml::stream read;
    read.setAsInputStream();
    try {
        pml::ntvFromPml(read.unit(), pml::FileText{filename_, text});
    } catch (std::invalid_argument const & e) {
        throw std::invalid_argument(placeFirst(e.what(), filename_));
    }
    if (!isWhole(text)) throw std::invalid_argument(filename_ + ":" + endOf(text) + ": the text ends too early");
    config_ = read;
}

pml::stream ConfigFile::logSettings(istr id) const {
    pml::Unit const * const log = config_.child("log");
    pml::stream settings = log != nullptr ? pml::stream(*log) : pml::stream(pml::Unit());
    pml::Unit const * const loggers = settings.child("loggers");
    if (loggers == nullptr) return settings;
    pml::stream const own = pml::stream(*loggers);
    if (pml::Unit const * const section = own.child(id)) settings.combine(pml::stream(*section));
    return settings;
}

dumper & ConfigFile::dump(dumper & d) const {
    d.push("yon::ConfigFile", "@");
    d.field("config_", config_);
    d.pop();
    return d;
}

}  // namespace yon
