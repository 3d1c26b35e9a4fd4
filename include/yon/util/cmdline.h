// `CmdLine`: the command line of a program. `CmdOptions`: reads its options into variables.
#pragma once

#include <charconv>
#include <concepts>
#include <functional>
#include <iosfwd>
#include <vector>

#include "yon/base/exception.h"
#include "yon/base/istr.h"
#include "yon/base/string.h"

namespace yon {

class dumper;

/// The command and its arguments, as the system gave them. A value.
class YON_API CmdLine {
public:
    CmdLine() = default;
    CmdLine(int argc, char ** argv) { init(argc, argv); }

    /// Takes `argv[0]` as the command and the rest as arguments. Ends early at a null.
    CmdLine & init(int argc, char ** argv);

    String const & cmd() const noexcept { return cmd_; }
    String & cmd() noexcept { return cmd_; }
    std::vector<String> const & args() const noexcept { return args_; }
    std::vector<String> & args() noexcept { return args_; }

    /// Heading "yon::CmdLine", fields "cmd_" and "args_".
    dumper & dump(dumper & d) const;
    std::ostream & dump(std::ostream & os) const;

private:
    String cmd_;
    std::vector<String> args_;
};

/// An argument that a program does not understand; the message names it and says what is wrong.
struct YON_API ArgumentException : public ExceptionBase {
    using ExceptionBase::ExceptionBase;
};

/// Reads options into the program's variables:
///
///     CmdOptions options("peer");
///     options.option("seconds", seconds, "N", "how long to run")
///            .flag("verbose", verbose, "say more")
///            .rest(files, "FILE");
///     if (!options.parse(app().cmdline(), std::cout)) return;  // --help was asked for
///
/// "--name value", "--name=value" and the flag "--name" may stand in any order; after "--" everything is an argument.
/// Variables keep their values when their option is not given; of several the last one counts, and a vector collects
/// all. The variables must outlive `parse`. One thread at a time.
class YON_API CmdOptions {
public:
    /// The program's name for the usage text.
    explicit CmdOptions(istr program) : program_(program) {}

    /// An option without a value.
    CmdOptions & flag(istr name, bool & value, istr help);
    /// An option with a value: text, a number, or a vector of these. `word` stands for the value in the usage.
    template <class T>
    CmdOptions & option(istr name, T & value, istr word, istr help) {
        return add(name, word, help, true, [&value](istr text) { return read(text, value); });
    }
    /// Takes the arguments that belong to no option. Without it they are refused.
    CmdOptions & rest(std::vector<String> & arguments, istr word);

    /// Reads the arguments. False when "--help" was among them: the usage is written to `help` then, and nothing else
    /// counts. Raises `ArgumentException` naming an unknown option, a missing or unreadable value, a flag with a
    /// value, or an argument too many.
    bool parse(CmdLine const & line, std::ostream & help) const;
    /// What the options are, a line each.
    String usage() const;

private:
    struct Entry {
        String name;
        String word;
        String help;
        bool takesValue;
        std::function<bool(istr)> take;
    };

    CmdOptions & add(istr name, istr word, istr help, bool takesValue, std::function<bool(istr)> take);
    Entry const & find(istr argument, istr name) const;

    static bool read(istr text, String & value) {
        value = text;
        return true;
    }
    static bool read(istr text, std::string & value) {
        value = std::string(text);
        return true;
    }
    template <class T>
    requires((std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char>) ||
             std::floating_point<T>) static bool read(istr text, T & value) {
        T number{};
        char const * const end = text.data() + text.size();
        auto const [stop, error] = std::from_chars(text.data(), end, number);
        if (error != std::errc() || stop != end || text.empty()) return false;
        value = number;
        return true;
    }
    template <class T>
    static bool read(istr text, std::vector<T> & values) {
        T value{};
        if (!read(text, value)) return false;
        values.push_back(value);
        return true;
    }

    String program_;
    std::vector<Entry> entries_;
    std::vector<String> * rest_ = nullptr;
    String restWord_;
};

}  // namespace yon
