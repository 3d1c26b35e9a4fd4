#include <CLI/CLI.hpp>
#include <algorithm>

#include "commands.h"
#include "number_rules.h"
#include "program.h"

namespace pmltool {

namespace {

constexpr char const * about =
    "Formats, checks, queries, edits and compares pml documents. FILE - is standard input.\n"
    "PATH names a node: steps joined by \"/\", each a name, or \"[n]\" for the n-th node of a\n"
    "list, counted from 0; \"/\" is the root.";

constexpr char const * statuses =
    "Status: 0, or 1 for bad input (check: errors, with --strict also warnings; diff: the\n"
    "documents differ; get, set and ls: no such node), or 2 for bad usage. Errors are printed\n"
    "as \"file:line:column: message\".";

constexpr char const * formatDetails =
    "compact puts everything on one line; simple and formatted put each node on a line of its\n"
    "own; mixed breaks only lists of unnamed nodes with types into lines. Comments are not a\n"
    "part of the tree that is printed. A file is not rewritten when anything would be lost.\n\n";

constexpr char const * setDetails =
    "Everything else in the file stays as it stands, comments included. Nodes that are missing\n"
    "on the way to PATH are added. With FILE -, the result goes to standard output.\n\n";

constexpr char const * diffDetails =
    "A node of A that B has not, or has otherwise, is printed behind a \"-\", one of B behind a\n"
    "\"+\". Nodes with names belong together wherever in their lists they stand.\n\n";

constexpr char const * checkDetails =
    "Findings are printed as \"file:line:column: error: message\", or \"warning\".\n"
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
            if (!arguments.empty() && (arguments[0] == "fmt" || arguments[0] == "check")) protectFileNames(arguments);
            std::reverse(arguments.begin(), arguments.end());
            app_.parse(std::move(arguments));
            return status_;
        } catch (CLI::CallForHelp const &) {
            console_.out << help();
            return ok;
        } catch (CLI::CallForVersion const & version) {
            console_.out << version.what() << '\n';
            return ok;
        } catch (CLI::ParseError const & error) {
            return complain(error.what());
        } catch (BadUsage const & error) {
            return complain(error.what());
        }
    }

private:
    CLI::App * add(char const * name, std::string const & text, std::string const & details = {}) {
        CLI::App * const command = app_.add_subcommand(name, text);
        command->footer(details + statuses);
        return command;
    }

    template <class Arguments>
    void then(CLI::App * command, int (*function)(Arguments const &, Console &), Arguments const & arguments) {
        command->callback([this, function, &arguments] { status_ = function(arguments, console_); });
    }

    void addFormat() {
        CLI::App * const command =
            add("fmt", "Prints documents in a layout, or rewrites the files in it.", formatDetails);
        command
            ->add_option_function<std::string>(
                "--mode", [this](std::string const & name) { format_.mode = modeOf(name); },
                "compact, simple, mixed or formatted (the default)")
            ->type_name("MODE");
        command->add_flag("--paths", format_.showPaths, "In formatted layout, the path of each node as a comment");
        command->add_flag("--in-place", format_.inPlace, "Replace each file, in one step");
        command->add_flag("--drop-comments", format_.dropComments, "Allow comments to be lost");
        addFiles(command, format_.files);
        then(command, format, format_);
    }

    static yon::pml::ShowMode modeOf(std::string const & name) {
        using yon::pml::ShowMode;
        constexpr std::pair<char const *, ShowMode> modes[] = {{"compact", ShowMode::COMPACT},
                                                               {"simple", ShowMode::SIMPLE},
                                                               {"mixed", ShowMode::MIXED},
                                                               {"formatted", ShowMode::FORMATTED}};
        for (auto const & [known, mode] : modes) {
            if (name == known) return mode;
        }
        throw CLI::ValidationError("--mode", "\"" + name + "\" is not compact, simple, mixed or formatted");
    }

    void addCheck() {
        CLI::App * const command = add("check", "Reports what is wrong or suspicious in documents.",
                                       checkDetails + std::string(numberRules) + '\n');
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
        CLI::App * const command = add("set", "Gives a node a text.", setDetails);
        addNode(command, set_.file, set_.path);
        addText(command, "VALUE", set_.value, "The text; put -- before one that begins with \"-\"");
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
        CLI::App * const command = add("diff", "Compares two documents node by node.", diffDetails);
        addText(command, "A", diff_.left, "The one document");
        addText(command, "B", diff_.right, "The other document");
        then(command, diff, diff_);
    }

    static void addFiles(CLI::App * command, std::vector<std::string> & files) {
        command->add_option("FILE", files, "The documents, or - for standard input")->required()->type_name("");
    }

    static CLI::Option * addText(CLI::App * command, char const * name, std::string & text, char const * what) {
        return command->add_option(name, text, what)->required()->type_name("");
    }

    static void addNode(CLI::App * command, std::string & file, std::string & path, bool pathIsRequired = true) {
        addText(command, "FILE", file, "The document, or - for standard input");
        addText(command, "PATH", path, "The node, as in /peers[0]/address")->required(pathIsRequired);
    }

    int complain(char const * what) {
        console_.err << "pml: " << what << "\n\n" << help();
        return usage;
    }

    /// Of the command, where one is named.
    std::string help() const {
        auto const chosen = app_.get_subcommands();
        return chosen.empty() ? app_.help() : chosen.front()->help(app_.get_name());
    }

    Console & console_;
    CLI::App app_;
    int status_ = ok;
    FormatArguments format_;
    CheckArguments check_;
    NodeArguments get_;
    SetArguments set_;
    NodeArguments list_;
    DiffArguments diff_;
};

}  // namespace

int run(std::vector<std::string> arguments, Console & console) {
    return guarded("pml", console, [&] { return CommandLine(console).run(std::move(arguments)); });
}

}  // namespace pmltool
