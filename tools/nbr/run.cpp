#include <CLI/CLI.hpp>
#include <algorithm>

#include "nbr_commands.h"
#include "program.h"

namespace nbrtool {

namespace {

constexpr char const * about = "Shows, checks and converts files of nbr values. FILE - is standard input.";

constexpr char const * statuses =
    "Status: 0, or 1 for bad input, or 2 for bad usage. Errors are printed as\n"
    "\"file:offset: message\".";

constexpr char const * dumpDetails =
    "Each line has the offset, the tag (- for none), the size, and what the bytes may mean: the\n"
    "format itself only tells text from other data.\n\n";

constexpr char const * pmlDetails =
    "The node nbr holds the values, one unnamed node each; the elements of a complex value are\n"
    "named by their tags, with .2, .3 and so on behind a tag that came before. Types:\n"
    "  none, text           text                  short, int, longlong  numbers\n"
    "  base64               other bytes           null, empty, complex  items without data\n"
    "from-pml knows bool, byte, ushort, uint, long, ulong, ulonglong, time (microseconds), float\n"
    "and double, too. Sizes that took more bytes than they need come back in the fewest.\n\n";

class CommandLine {
public:
    explicit CommandLine(Console & console) : console_(console), app_(about, "nbr") {
        app_.allow_windows_style_options(false);
        app_.require_subcommand(1);
        app_.set_version_flag("--version", "nbr " YON_TOOL_VERSION);
        app_.footer(statuses);
        addDump();
        addCheck();
        addConversion("to-pml", "Prints values as pml.", toPml);
        addConversion("from-pml", "Writes the values of a pml document to standard output.", fromPml);
    }

    int run(std::vector<std::string> arguments) {
        try {
            pmltool::protectFileNames(arguments);
            std::reverse(arguments.begin(), arguments.end());
            app_.parse(std::move(arguments));
            return status_;
        } catch (CLI::CallForHelp const &) {
            console_.out << help();
            return pmltool::ok;
        } catch (CLI::CallForVersion const & version) {
            console_.out << version.what() << '\n';
            return pmltool::ok;
        } catch (CLI::ParseError const & error) {
            return complain(error.what());
        } catch (BadUsage const & error) {
            return complain(error.what());
        }
    }

private:
    CLI::App * add(char const * name, char const * text, std::string const & details = {}) {
        CLI::App * const command = app_.add_subcommand(name, text);
        command->footer(details + statuses);
        return command;
    }

    static void addFiles(CLI::App * command, std::vector<std::string> & files) {
        command->add_option("FILE", files, "The files, or - for standard input")->required()->type_name("");
    }

    void addDump() {
        CLI::App * const command = add("dump", "Prints values as an indented tree.", dumpDetails);
        command->add_flag("--hex", dump_.hex, "The bytes of each item, too");
        addFiles(command, dump_.files);
        command->callback([this] { status_ = dump(dump_, console_); });
    }

    void addCheck() {
        CLI::App * const command = add("check", "Reports the first defect of each file.");
        addFiles(command, checked_);
        command->callback([this] { status_ = check(checked_, console_); });
    }

    void addConversion(char const * name, char const * text, int (*convert)(std::string const &, Console &)) {
        CLI::App * const command = add(name, text, pmlDetails);
        command->add_option("FILE", file_, "The file, or - for standard input")->required()->type_name("");
        command->callback([this, convert] { status_ = convert(file_, console_); });
    }

    int complain(char const * what) {
        console_.err << "nbr: " << what << "\n\n" << help();
        return pmltool::usage;
    }

    /// Of the command, where one is named.
    std::string help() const {
        auto const chosen = app_.get_subcommands();
        return chosen.empty() ? app_.help() : chosen.front()->help(app_.get_name());
    }

    Console & console_;
    CLI::App app_;
    int status_ = pmltool::ok;
    DumpArguments dump_;
    std::vector<std::string> checked_;
    std::string file_;
};

}  // namespace

int run(std::vector<std::string> arguments, Console & console) {
    return pmltool::guarded("nbr", console, [&] { return CommandLine(console).run(std::move(arguments)); });
}

}  // namespace nbrtool
