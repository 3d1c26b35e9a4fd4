#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <new>
#include <system_error>

#include "commands.h"
#include "number_rules.h"

namespace pmltool {

namespace {

constexpr char const * about =
    "Formats, checks, queries, edits and compares pml documents. FILE - is standard input.\n"
    "PATH names a node: steps joined by \"/\", each a name, or \"[n]\" for the n-th node of a\n"
    "list, counted from 0; \"/\" is the root.";

constexpr char const * statuses =
    "Status: 0, or 1 for bad input (diff: the documents differ; get and ls: no such node), or\n"
    "2 for bad usage. Errors are printed as \"file:line:column: message\".";

constexpr char const * checkAbout =
    "Reports what is wrong or suspicious in documents, all of it, as\n"
    "\"file:line:column: error|warning: message\".";

constexpr char const * checkDetails =
    "Errors: what the parser refuses, duplicate names in a list, text behind the end of the\n"
    "node, and values, lists, comments and quotes that are never closed.\n"
    "Warnings: text that needs its quotes to keep the blanks at its edges, quotes in names and\n"
    "types, quotes inside unquoted text (an apostrophe hides everything up to the next one),\n"
    "and numbers that do not fit their type word.\n\n";

class CommandLine {
public:
    explicit CommandLine(Console & console) : console_(console), app_(about, "pml") {
        app_.allow_windows_style_options(false);  // paths begin with "/"
        app_.require_subcommand(1);
        app_.set_version_flag("--version", "pml " YON_TOOL_VERSION);
        app_.footer(statuses);
        addFormat();
        addCheck();
        addGet();
        addSet();
        addList();
        addDiff();
    }

    int run(std::vector<std::string> arguments) {
        try {
            std::reverse(arguments.begin(), arguments.end());
            app_.parse(std::move(arguments));
            return command_();
        } catch (CLI::Success const & wish) {
            return app_.exit(wish, console_.out, console_.err);
        } catch (CLI::ParseError const & error) {
            return complain(error.what());
        } catch (BadUsage const & error) {
            return complain(error.what());
        }
    }

private:
    CLI::App * add(char const * name, std::string const & text) {
        CLI::App * const command = app_.add_subcommand(name, text);
        command->footer(statuses);
        return command;
    }

    template <class Arguments>
    void then(CLI::App * command, int (*function)(Arguments const &, Console &), Arguments const & arguments) {
        command->callback([this, function, &arguments] { command_ = [&, function] { return function(arguments, console_); }; });
    }

    void addFormat() {
        using yon::pml::ShowMode;
        CLI::App * const command = add("fmt", "Prints documents in a layout, or rewrites the files in it.");
        static std::map<std::string, int> const modes{{"compact", ShowMode::COMPACT},
                                                      {"simple", ShowMode::SIMPLE},
                                                      {"mixed", ShowMode::MIXED},
                                                      {"formatted", ShowMode::FORMATTED}};
        command->add_option("--mode", mode_, "compact, simple, mixed or formatted (which is the default)")
            ->type_name("MODE")
            ->transform(CLI::CheckedTransformer(modes).description(""));
        command->add_flag("--paths", format_.showPaths, "Put the path of each node before it (formatted only)");
        command->add_flag("--in-place", format_.inPlace, "Replace each file, in one step");
        command->add_flag("--drop-comments", format_.dropComments, "Leave comments out, which only set can keep");
        addFiles(command, format_.files);
        then(command, format, format_);
    }

    void addCheck() {
        CLI::App * const command = add("check", checkAbout);
        command->footer(std::string(checkDetails) + numberRules + "\nStatus: 0, or 1 for errors (with --strict also for "
                                                                  "warnings), or 2 for bad usage.");
        command->add_flag("--strict", check_.strict, "Status 1 for warnings, too");
        addFiles(command, check_.files);
        then(command, check, check_);
    }

    void addGet() {
        CLI::App * const command = add("get", "Prints the text of a node, or a node with a list as pml.");
        addNode(command, get_.file, get_.path);
        then(command, get, get_);
    }

    void addSet() {
        CLI::App * const command = add("set",
                                       "Gives a node a text and leaves everything else in the file as it stands, comments "
                                       "included.\nNodes that are missing on the way are added. With FILE -, the result goes "
                                       "to standard output.");
        addNode(command, set_.file, set_.path);
        command->add_option("VALUE", set_.value, "The text; put -- before one that begins with \"-\"")->required();
        command->add_flag("--existing", set_.existing, "Add no nodes");
        command->add_flag("--force", set_.force, "Replace lists, too");
        then(command, set, set_);
    }

    void addList() {
        CLI::App * const command =
            add("ls", "Lists a node and all below it: path, type, and text or number of children.");
        list_.path = "/";
        addNode(command, list_.file, list_.path, false);
        then(command, list, list_);
    }

    void addDiff() {
        CLI::App * const command = add("diff",
                                       "Compares two documents node by node: \"-\" goes before what only A has, \"+\" before "
                                       "what only B has.\nNodes with names belong together wherever in their lists they "
                                       "stand.");
        command->add_option("A", diff_.left, "The one document")->required();
        command->add_option("B", diff_.right, "The other document")->required();
        then(command, diff, diff_);
    }

    static void addFiles(CLI::App * command, std::vector<std::string> & files) {
        command->add_option("FILE", files, "The documents")->required()->type_name("");
    }

    static void addNode(CLI::App * command, std::string & file, std::string & path, bool pathIsRequired = true) {
        command->add_option("FILE", file, "The document")->required();
        command->add_option("PATH", path, "The node")->required(pathIsRequired);
    }

    int complain(char const * what) {
        auto const chosen = app_.get_subcommands();
        console_.err << "pml: " << what << "\n\n" << (chosen.empty() ? app_.help() : chosen.front()->help());
        return usage;
    }

    Console & console_;
    CLI::App app_;
    std::function<int()> command_;
    FormatArguments format_;
    int mode_ = yon::pml::ShowMode::FORMATTED;
    CheckArguments check_;
    NodeArguments get_;
    SetArguments set_;
    NodeArguments list_;
    DiffArguments diff_;
};

/// Says why the output failed, unless nobody reads it any more.
int outputFailed(Console & console, int error) {
    if (error != EPIPE) console.err << "pml: standard output: " << std::generic_category().message(error) << '\n';
    return bad;
}

}  // namespace

int run(std::vector<std::string> arguments, Console & console) {
    console.out.exceptions(std::ios::badbit | std::ios::failbit);
    try {
        int const status = CommandLine(console).run(std::move(arguments));
        errno = 0;
        console.out.flush();
        return status;
    } catch (BadInput const & error) {
        console.err << error.what() << '\n';
    } catch (std::bad_alloc const &) {
        console.err << "pml: out of memory\n";
    } catch (std::ios::failure const &) {
        return outputFailed(console, errno);
    }
    return bad;
}

}  // namespace pmltool
