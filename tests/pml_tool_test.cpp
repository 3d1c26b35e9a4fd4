// The command-line tool pml: its parts, its commands, and the program itself.
#include <gtest/gtest.h>

#include <random>

#include "commands.h"
#include "examine.h"
#include "file_testing.h"
#include "number_rules.h"
#include "replace_file.h"
#include "tool_testing.h"
#include "walk.h"
#include "yon/pml/pml_writer.h"

namespace {

namespace fs = std::filesystem;
using pmltool::Token;
using yon::pml::Unit;

/// Runs the tool within this program.
Result pml(Words const & arguments, std::string const & input = "") {
    return runTool(&pmltool::run, arguments, input);
}

class PmlTool : public testing::Test {
protected:
    WorkingDirectory const directory_{"pml-tool"};
    static auto filesHere() { return std::distance(fs::directory_iterator("."), fs::directory_iterator()); }
};

std::string const exampleFile = std::string(YON_SOURCE_DIR) + "/examples/config/p2p_config.pml";

constexpr char const * layouts[] = {"compact", "simple", "mixed", "formatted"};

Words const awkwardTexts = {"",    "x",   " ",   " x ",      "it's",     "\"", "'",         "\\",
                            "\\'", "a:b", "(",   ")",        "(* no *)", "*",  "x\ny\t",    "\r\n",
                            "[0]", "''",  "a b", "\xC3\xA0", "\xA0",     "-5", "'x' \"y\"", "\\n"};

TEST_F(PmlTool, CheckReportsEachFindingAtItsPlace) {
    std::string const dup = ": error: duplicated unit: ";
    std::pair<std::string, std::string> const rows[] = {
        {"\xEF\xBB\xBF(* one *) a(x(1) y:t(2) (3) z) (* two *)\r\n", ""},
        {"", "1:1: warning: there is no node\n"},
        {"a", "1:1: error: the input ends behind this name\n"},
        {"a(\nb(1", "1:2: error: this list is never closed\n2:2: error: this value is never closed\n"},
        {"a(1)\n (* (* *)", "2:2: error: this comment is never closed\n"},
        {"a(b(1)'x\n", "1:7: error: this quote is never closed\n"},
        {"a:int", "1:3: error: get type token\n"},
        {"a:int)", "1:3: error: not found value begin tag, token\n"},
        {"r(url(http://h:80/x) t(12:30) c(3))",
         "1:12: error: not found value begin tag, token; text with a \":\" needs quotes\n"
         "1:27: error: not found value begin tag, token; text with a \":\" needs quotes\n"},
        {"a(1) (**) b(2)", "1:11: error: text behind the end of the node is not read\n"},
        {" )", "1:2: error: \")\" without a \"(\"\n"},
        {"r(x(a(1) b) y(2))",
         "1:10: error: this name has no value: the \")\" behind it closes two lists\n"
         "1:13: error: text behind the end of the node is not read\n"},
        {"a(x(1)x(2)\nx(3))",
         "1:7" + dup + "\"x\" stands at line 1, column 3\n2:1" + dup + "\"x\" stands at line 1, column 3\n"},
        {"a([1](1)(2))", "1:9" + dup + "\"[1]\" stands at line 1, column 3\n"},
        {"a((* no *)' x')", "1:11: warning: this text begins or ends with a blank, and keeps it only in quotes\n"},
        {"'a':\"b\"(1)",
         "1:1: warning: the quotes are a part of this name\n1:5: warning: the quotes are a part of this type\n"},
        {"n(it's (b)\nisn't)",
         "1:5: warning: this quote inside unquoted text hides everything up to the one at line 2, column 4\n"},
        {"a('x' y)", "1:7: warning: text outside the quotes: the quotes become a part of it\n"},
        {"a('x' \"y\")", "1:7: warning: the quotes around this piece become a part of the text\n"},
        {"a('x'(**)'y')", "1:10: warning: the quotes around this piece become a part of the text\n"},
        {"a( *b(1))",
         "1:4: warning: a name that begins with \"*\" opens a comment when it is written right behind a \"(\"\n"},
        {"a:short('32768')", "1:9: warning: short \"32768\" is out of range: -32768 to 32767\n"},
        {std::string("a(\0)", 4),
         "1:3: warning: a NUL byte: a program that reads the document as a C string ends here\n"},
    };
    for (auto const & [input, findings] : rows) {
        std::string expected;
        std::istringstream lines(findings);
        for (std::string line; std::getline(lines, line);) expected += "<stdin>:" + line + '\n';
        Result const result = pml({"check", "-"}, input);
        EXPECT_EQ(result.err, expected) << input;
        EXPECT_EQ(result.status, findings.find("error") != findings.npos) << input;
        EXPECT_EQ(pml({"check", "--strict", "-"}, input).status, !findings.empty()) << input;
    }
}

TEST(PmlToolNumbers, AreComparedWithTheirTypeWords) {
    struct {
        char const *type, *text, *fault;
    } const rows[] = {
        {"", "1.5.8", ""},
        {"Int32_t", " -2147483648 ", ""},
        {"long", "-2147483649", "is out of range: -2147483648 to 2147483647"},
        {"int", "12abc", "is no decimal number"},
        {"bit", "true", "is no 0 or 1"},
        {"bool", "2", "is out of range: 0 to 1"},
        {"Unsigned Short", "65536", "is out of range: 0 to 65535"},
        {"long long", "-9223372036854775808", ""},
        {"uint64_t", "99999999999999999999999", "is out of range: 0 to 18446744073709551615"},
        {"Double", "3.14159265", "has 9 significant digits, of which 6 are kept"},
        {"float", "1e39", "is out of range"},
        {"double", "1,5", "is no number"},
    };
    for (auto const & [type, text, fault] : rows) {
        EXPECT_EQ(pmltool::numberFault(type, text), fault) << type << ' ' << text;
    }
}

/// The tree that a walk sees, in a form in which trees are easily compared.
class Outline final : public pmltool::Visitor {
public:
    void name(Token const & token) override { text_ += '\n' + token.text + '\1'; }
    void type(Token const & token) override { text_ += token.text; }
    void text(Token const & token) override { text_ += '\2' + token.value(); }
    void listBegin() override { text_ += '{'; }
    void listEnd(Token const &) override { text_ += '}'; }
    std::string const & outline() const { return text_; }

private:
    std::string text_;
};

std::string outlineOf(Unit const & node) {
    std::string text = '\n' + node.name() + '\1' + node.type();
    if (node.listValue() == nullptr) return text += node.value() == nullptr ? "" : '\2' + node.stringValue()->data();
    text += '{';
    for (Unit const * child : *node.listValue()) text += outlineOf(*child);
    return text += '}';
}

TEST(PmlToolWalk, SeesWhatTheParserReadsAndReportsItsErrors) {
    std::mt19937 random(7);
    constexpr char const * pieces[] = {"(",  "(", ")", ")",  ":", "'", "\"",  "\\",  "(*",
                                       "*)", "*", " ", "\n", "a", "b", "[1]", "x(1)"};
    constexpr char const * paths[] = {"/", "a", "b", "a/b", "[0]", "[1]", "[0]/x", "x", "c"};
    std::size_t parsedWhole = 0;
    for (int round = 0; round < 20000; ++round) {
        pmltool::Source source{"f", "", false};
        for (auto n = random() % 16; n != 0; --n) source.text += pieces[random() % std::size(pieces)];
        pmltool::Report const report = pmltool::examine(source);
        Unit root;
        try {
            pmltool::parse(source, root);
        } catch (pmltool::BadInput const & error) {
            std::ostringstream all;
            pmltool::print(report, source, all, false);
            std::string expected = error.what();
            expected.insert(expected.find(": "), ": error");
            EXPECT_NE(all.str().find(expected), std::string::npos) << source.text << '\n' << expected;
            continue;
        }
        Outline seen;
        pmltool::walk(source.text, seen);
        std::string const read = outlineOf(root);
        EXPECT_EQ(seen.outline(), seen.outline().empty() ? "" : read) << source.text;
        std::string const path = paths[random() % std::size(paths)];
        std::string const value = awkwardTexts[random() % awkwardTexts.size()];
        Result const edited = pml({"set", "--force", "-", path, "--", value}, source.text);
        if (edited.status == 0) {
            EXPECT_EQ(pml({"get", "-", path}, edited.out).out, value + '\n') << source.text;
        }
        if (report.hasErrors || report.comments != 0) continue;
        ++parsedWhole;
        for (char const * layout : layouts) {
            Result const once = pml({"fmt", "--mode", layout, "-"}, source.text);
            if (once.status != 0) continue;
            EXPECT_EQ(pml({"fmt", "--mode", layout, "-"}, once.out).out, once.out) << source.text;
        }
    }
    EXPECT_GT(parsedWhole, 1000u);
}

TEST_F(PmlTool, CommandsPrintWhatIsAskedFor) {
    writeFile("a.pml", "r(n:int(5) t('it\\'s\n(x)') l(:e(a(1)b(2)) :e()) (' u '))");
    writeFile("b.pml", "r((' u ')t('it\\'s\n(x)') n:int(6) l(:e(a(1)b(3)))z(1))");
    struct {
        char const *arguments, *out;
        char const * err = "";
        int status = 0;
    } const rows[] = {
        {"get a.pml /n", "5\n"},
        {"get a.pml t", "it's\n(x)\n"},
        {"get a.pml l[0]/b", "2\n"},
        {"get a.pml /l/[1]", "\n"},
        {"get a.pml [3]", " u \n"},
        {"get a.pml /l", "l(\n    :e(\n        a(1)\n        b(2)\n    )\n    :e()\n)\n"},
        {"get a.pml /l[2]", "", "a.pml: /l[2]: no such node\n", 1},
        {"ls a.pml",
         "/              (4 children)\n/n        int  5\n/t             'it\\'s\\n(x)'\n/l             (2 children)\n"
         "/l/[0]    e    (2 children)\n/l/[0]/a       1\n/l/[0]/b       2\n/l/[1]    e\n/[3]            u\n"},
        {"ls a.pml /l/[0]/a", "/l/[0]/a  1\n"},
        {"diff a.pml b.pml",
         "- /[3]  u \n+ /[0]  u \n+ /z 1\n- /n:int 5\n+ /n:int 6\n- /l/[1]:e \n- /l/[0]/b 2\n+ /l/[0]/b 3\n", "", 1},
        {"diff a.pml a.pml", ""},
        {"fmt --mode compact a.pml", "r(n:int(5)t('it\\'s\n(x)')l(:e(a(1)b(2)):e())(' u '))\n"},
        {"fmt --mode mixed a.pml",
         "r(n:int(5)t('it\\'s\n(x)')l(\n        :e(    a(1)    b(2))\n        :e()\n)(' u '))\n"},
        {"check a.pml none.pml b.pml", "",
         "a.pml:2:29: warning: this text begins or ends with a blank, and keeps it only in quotes\n"
         "none.pml: No such file or directory\n"
         "b.pml:1:4: warning: this text begins or ends with a blank, and keeps it only in quotes\n",
         1},
        {"check [none]", "", "./[none]: No such file or directory\n", 1},
    };
    for (auto const & row : rows) {
        SCOPED_TRACE(row.arguments);
        Result const result = pml(wordsOf(row.arguments));
        EXPECT_EQ(result.out, row.out);
        EXPECT_EQ(result.err, row.err);
        EXPECT_EQ(result.status, row.status);
    }
    for (char const * wrong : {"", "bogus", "get a.pml", "get a.pml /n x", "fmt --bogus a.pml",
                               "fmt --mode bogus a.pml", "fmt --in-place -", "diff - -"}) {
        Result const result = pml(wordsOf(wrong));
        EXPECT_TRUE(result.status == 2 && result.out.empty()) << wrong;
        EXPECT_NE(result.err.find("Usage: pml"), std::string::npos) << wrong;
    }
    for (std::string const command : {"fmt", "check", "get", "set", "ls", "diff"}) {
        Result const result = pml({command, "--help"});
        EXPECT_TRUE(result.status == 0 && result.out.find("Usage: pml " + command) != std::string::npos);
    }
}

TEST_F(PmlTool, FormatLosesNothingUnasked) {
    struct {
        char const *input, *options;
        std::string error;
    } const rows[] = {
        {"a(1)(* c *)", "", "f:1:5: comments would be lost; --drop-comments allows it\n"},
        {"a(1)(* c *)", "--drop-comments", ""},
        {"a(1) b", "", "f:1:6: error: text behind the end of the node is not read\n"},
        {"a(x(1)x(2))", "", "f:1:7: duplicated unit\n"},
        {"r(l('a\\'b'(1)))", "--drop-comments", "f: /l would read back differently; see pml check\n"},
        {"r( *l(1))", "--mode compact", "f: / would read back differently; see pml check\n"},
    };
    for (auto const & [input, options, error] : rows) {
        writeFile("f", input);
        Result const result = pml(wordsOf(std::string("fmt --in-place f ") + options));
        EXPECT_EQ(result.err, error) << input;
        EXPECT_EQ(result.status, error.empty() ? 0 : 1) << input;
        EXPECT_EQ(contentOf("f"), error.empty() ? "a(1)\n" : input) << input;
    }
    for (char const * layout : layouts) {
        Result const once = pml({"fmt", "--mode", layout, exampleFile});
        EXPECT_EQ(once.err, exampleFile + ":1:1: warning: comments are left out\n");
        Result const again = pml({"fmt", "--mode", layout, "-"}, once.out);
        EXPECT_EQ(again.out, once.out);
        EXPECT_EQ(pml({"diff", exampleFile, "-"}, again.out).out, "");
    }
    EXPECT_EQ(pml({"check", "--strict", exampleFile}).err, "");
}

TEST_F(PmlTool, SetChangesOneNodeAndNothingElse) {
    std::string const document =
        "\xEF\xBB\xBF(* 1 *) r:t ( (* 2 *)\r\n\ta( x (* 3 *) )\r\n\tl(1(2) (* 4 *)) b() m(x(**)y)\r\n)(* 5 *) ";
    struct {
        char const *path, *value, *option;
        std::string before;
        std::string after;  ///< or the error
    } const rows[] = {
        {"/a", "it's", "", "a( x ", "a( 'it\\'s' "},
        {"a", "", "", "a( x ", "a(  "},
        {"b", " ", "", "b()", "b(' ')"},
        {"l/n", "3", "", "(* 4 *)", "(* 4 *)n(3)"},
        {"b/n/o", "3", "", "b()", "b(n(o(3)))"},
        {"n", "3", "", "m(x(**)y)", "m(x(**)y) n(3)"},
        {"l", "-5", "--force", "l(1(2) (* 4 *))", "l(-5)"},
        {"l", "5", "", "", "f: l: holds a list; --force puts a text in its place\n"},
        {"m", "5", "", "", "f: m: comments stand inside the text\n"},
        {"a/n", "5", "", "", "f: a/n: \"a\" holds a text and can have no nodes\n"},
        {"l[1]", "5", "", "", "f: l[1]: no such node\n"},
        {"n", "5", "--existing", "", "f: n: no such node\n"},
        {"n:o", "5", "", "", "f: n:o: cannot be set without changing other nodes; see pml check\n"},
    };
    for (auto const & row : rows) {
        writeFile("f", document);
        Words arguments{"set", "f", row.path, row.value};
        if (*row.option != '\0') arguments.push_back(row.option);
        Result const result = pml(arguments);
        std::string expected = document;
        if (!row.before.empty()) expected.replace(document.find(row.before), row.before.size(), row.after);
        EXPECT_EQ(contentOf("f"), expected) << row.path;
        EXPECT_EQ(result.err, row.before.empty() ? row.after : "") << row.path;
        EXPECT_EQ(result.status, row.before.empty()) << row.path;
    }
    for (std::string const & text : awkwardTexts) {
        std::string edited = pml({"set", "-", "/a/b", "--", text}, "r(x(1) (* c *)\n y(2))").out;
        EXPECT_EQ(pml({"get", "-", "/a/b"}, edited).out, text + '\n');
        for (char const * layout : layouts) {
            edited = pml({"fmt", "--drop-comments", "--mode", layout, "-"}, edited).out;
            EXPECT_EQ(pml({"get", "-", "/a/b"}, edited).out, text + '\n') << edited;
        }
        edited = pml({"set", "-", "/a/b", "5"}, edited).out;
        EXPECT_EQ(pml({"fmt", "--mode", "compact", "-"}, edited).out, "r(x(1)y(2)a(b(5)))\n");
    }
}

TEST_F(PmlTool, FilesAreReplacedInOneStep) {
    writeFile("f", "a(1)");
    fs::permissions("f", fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    fs::perms const permissions = fs::status("f").permissions();
    std::error_code linked;
    fs::create_symlink("f", "link", linked);  // which not every system can
    std::size_t const files = filesHere();
    EXPECT_EQ(pml({"set", linked ? "f" : "link", "/", "2"}).err, "");
    EXPECT_EQ(contentOf("f"), "a(2)");
    EXPECT_EQ(fs::status("f").permissions(), permissions);
    EXPECT_TRUE(linked || fs::is_symlink("link"));
    EXPECT_EQ(filesHere(), files);

    // Nothing is left where the replacement fails.
    fs::create_directory("d");
    EXPECT_THROW(pmltool::replaceFile("d", "", "x"), pmltool::BadInput);
    EXPECT_EQ(filesHere(), files + 1);
    // What an interrupted program left is not touched.
    for (int n = 0; n < 100; ++n) writeFile("f.new" + std::to_string(n), "old");
    EXPECT_EQ(pml({"set", "f", "/", "3"}).err, "f: File exists\n");
    fs::remove("f.new7");
    EXPECT_EQ(pml({"set", "f", "/", "3"}).err, "");
    EXPECT_EQ(contentOf("f"), "a(3)");
    EXPECT_FALSE(fs::exists("f.new7"));
    EXPECT_EQ(contentOf("f.new8"), "old");
}

TEST_F(PmlTool, DepthAndWidthAreLimitedByMemoryOnly) {
    constexpr int many = 100000;
    std::string chain, fork, ends, list;
    for (int n = 0; n < many; ++n) {
        chain += "a(";
        fork += "a(b(1)a(";
        ends += ")";
        list += "n" + std::to_string(n) + "(1)(2)";
    }
    for (std::string const & document : {chain + "x" + ends, fork + "x" + ends + ends, "r(" + list + ")"}) {
        writeFile("f", document);
        EXPECT_EQ(pml({"check", "f"}).err, "");
        EXPECT_EQ(pml({"diff", "f", "f"}).out, "");
        EXPECT_EQ(pml({"get", "f", "/"}).status, 0);
        EXPECT_EQ(pml({"fmt", "--mode", "compact", "f"}).out, document + '\n');
        EXPECT_LT(pml({"ls", "f"}).out.size(), many * 1000u);
        EXPECT_EQ(pml({"set", "f", "/new", "1"}).err, "");
    }
    writeFile("f", fork + "x" + ends + ends);
    EXPECT_EQ(pml({"fmt", "f"}).err, "f: nested too deep for this layout; --mode compact does without indentation\n");
    std::string const unclosed = pml({"check", "-"}, chain).err;
    EXPECT_EQ(std::count(unclosed.begin(), unclosed.end(), '\n'), 10);
}

TEST_F(PmlTool, RunsAsAProgram) {
    std::string const program = programPath(YON_PML_PROGRAM);
    writeFile("f", "a(x(1)\r\n y('2\r\n'))\r\n");
    writeFile("bad", "a(x:1)");
    struct {
        char const * arguments;
        int status;
        std::string out, err;
    } const rows[] = {
        {"--version", 0, "pml 1.5.8\n", ""},
        {"fmt --mode simple - < f", 0, "a(\n    x(1)\n    y('2\r\n')\n)\n", ""},
        {"get f y", 0, "2\r\n\n", ""},
        {"set f x 5", 0, "", ""},
        {"get f x", 0, "5\n", ""},
        {"check bad", 1, "", "bad:1:5: error: not found value begin tag, token; text with a \":\" needs quotes\n"},
        {"get bad x", 1, "", "bad:1:5: not found value begin tag, token\n"},
        {"ls", 2, "", pml({"ls"}).err},
    };
    for (auto const & row : rows) {
        EXPECT_EQ(statusOf(program + ' ' + row.arguments + " > out 2> err"), row.status) << row.arguments;
        EXPECT_EQ(contentOf("out"), row.out) << row.arguments;
        EXPECT_EQ(contentOf("err"), row.err) << row.arguments;
    }
    EXPECT_EQ(contentOf("f"), "a(x(5)\r\n y('2\r\n'))\r\n");
}

}  // namespace
