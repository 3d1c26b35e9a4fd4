#include "yon/util/cmdline.h"

#include <algorithm>
#include <ostream>

#include "yon/base/throw.h"
#include "yon/log/dumper.h"
#include "yon/log/dumper_stl.h"
#include "yon/string/string_buffer.h"

namespace yon {

CmdLine & CmdLine::init(int argc, char ** argv) {
    cmd_.clear();
    args_.clear();
    for (int i = 0; i < argc && argv != nullptr && argv[i] != nullptr; ++i) {
        if (i == 0) {
            cmd_ = argv[i];
        } else {
            args_.emplace_back(argv[i]);
        }
    }
    return *this;
}

dumper & CmdLine::dump(dumper & d) const {
    d.push("yon::CmdLine", "");
    d.field("cmd_", cmd_).field("args_", args_);
    d.pop();
    return d;
}

std::ostream & CmdLine::dump(std::ostream & os) const {
    dumper d(os, false);
    dump(d);
    return os;
}

namespace {

/// Raises the complaint about one argument.
[[noreturn]] void refuse(istr argument, istr problem) {
    StringBuffer text;
    text.append(argument).append(": ").append(problem);
    YON_THROW(yon::ArgumentException, text.str());
}

constexpr char helpName[] = "help";

}  // namespace

CmdOptions & CmdOptions::add(istr name, istr word, istr help, bool takesValue, std::function<bool(istr)> take) {
    entries_.push_back({name, word, help, takesValue, std::move(take)});
    return *this;
}

CmdOptions & CmdOptions::flag(istr name, bool & value, istr help) {
    return add(name, "", help, false, [&value](istr) { return value = true; });
}

CmdOptions & CmdOptions::rest(std::vector<String> & arguments, istr word) {
    rest_ = &arguments;
    restWord_ = word;
    return *this;
}

CmdOptions::Entry const & CmdOptions::find(istr argument, istr name) const {
    auto const entry =
        std::find_if(entries_.begin(), entries_.end(), [&](Entry const & e) { return e.name == name; });
    if (entry == entries_.end()) refuse(argument, "unknown option, see --help");
    return *entry;
}

bool CmdOptions::parse(CmdLine const & line, std::ostream & help) const {
    auto const & args = line.args();
    bool onlyArguments = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        istr const argument = args[i];
        if (onlyArguments || argument.size() < 2 || argument[0] != '-') {
            if (rest_ == nullptr) refuse(argument, "argument not expected, see --help");
            rest_->emplace_back(argument);
            continue;
        }
        if (argument == "--") {
            onlyArguments = true;
            continue;
        }
        ulong const assign = argument.find('=');
        bool const assigned = assign != npos;
        bool const isLong = argument.size() > 2 && argument[1] == '-';
        istr const name = isLong ? argument.leftstr(assigned ? assign : argument.size()).substr(2) : istr();
        if (name == helpName) {
            help << usage();
            return false;
        }
        Entry const & entry = find(argument, name);
        if (!entry.takesValue) {
            if (assigned) refuse(argument, "the option takes no value");
            entry.take(istr());
            continue;
        }
        if (!assigned && i + 1 == args.size()) refuse(argument, "a value is missing");
        istr const value = assigned ? argument.substr(assign + 1) : istr(args[++i]);
        if (!entry.take(value)) {
            StringBuffer problem;
            problem.append("not a value for ").append(entry.word).append(": \"").append(value).append('"');
            refuse(argument, problem.str());
        }
    }
    return true;
}

String CmdOptions::usage() const {
    StringBuffer text;
    text.append("usage: ").append(program_);
    if (!entries_.empty()) text.append(" [OPTION...]");
    if (rest_ != nullptr) text.append(' ').append(restWord_).append("...");
    text.append('\n');
    auto const spelled = [](Entry const & e) {
        StringBuffer option;
        option.append("  --").append(e.name);
        if (e.takesValue) option.append(' ').append(e.word);
        return String(option.str());
    };
    auto const line = [&](istr option, istr help, std::size_t width) {
        text.append(option).append(' ', static_cast<ulong>(width - option.size()) + 2).append(help).append('\n');
    };
    Entry const helpEntry{helpName, "", "show this text", false, {}};
    std::size_t width = spelled(helpEntry).size();
    for (Entry const & e : entries_) width = std::max(width, spelled(e).size());
    for (Entry const & e : entries_) line(spelled(e), e.help, width);
    line(spelled(helpEntry), helpEntry.help, width);
    return text.str();
}

}  // namespace yon
