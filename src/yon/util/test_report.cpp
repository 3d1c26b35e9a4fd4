#include "yon/util/test_report.h"

#include <algorithm>

#include "yon/base/environment.h"
#include "yon/base/throw.h"
#include "yon/log/console.h"
#include "yon/string/string_buffer.h"

namespace yon::test {

namespace {

constexpr char closing[] = "</testsuite></testsuites>\n";

void appendEscaped(StringBuffer & out, istr text) {
    for (char const c : std::string_view(text)) {
        switch (c) {
            case '<':
                out.append("&lt;");
                break;
            case '&':
                out.append("&amp;");
                break;
            case '"':
                out.append("&quot;");
                break;
            case '\n':
                out.append("&#10;");
                break;
            default:
                // What XML has no way to write.
                out.append(static_cast<unsigned char>(c) < ' ' ? '?' : c);
        }
    }
}

void appendAttribute(StringBuffer & out, istr name, istr value) {
    out.append(' ').append(name).append("=\"");
    appendEscaped(out, value);
    out.append('"');
}

StringBuffer opening(Case const & c) {
    StringBuffer entry;
    entry.append("<testcase");
    appendAttribute(entry, "classname", c.menu);
    appendAttribute(entry, "name", c.name);
    return entry;
}

String seconds(Time t) {
    StringBuffer text;
    text.append(static_cast<double>(t.toMicroSeconds()) / 1e6);
    return text.str();
}

}  // namespace

JUnitReport::JUnitReport(String const & filename) {
    if (filename.empty()) return;
    file_.reset(std::fopen(filename.c_str(), "wb"));
    if (!file_) YON_THROW(yon::InvalidDataException, filename + ": " + getLastErrorMsg());
    std::fputs("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites><testsuite name=\"zuvyon\">\n", file_.get());
    entry_ = std::ftell(file_.get());
    put("", true);
}

void JUnitReport::begins(Case const & c) {
    StringBuffer entry = opening(c);
    entry.append("><error message=\"did not end: a crash, or too slow\"/></testcase>\n");
    put(entry.str(), false);
}

void JUnitReport::ended(Result const & result) {
    StringBuffer entry = opening(*result.which);
    appendAttribute(entry, "time", seconds(result.duration));
    entry.append('>');
    for (String const & failure : result.failures) {
        entry.append("<failure");
        appendAttribute(entry, "message", failure);
        entry.append("/>");
    }
    entry.append("</testcase>\n");
    put(entry.str(), true);
}

void JUnitReport::put(String const & entry, bool goesOn) {
    if (!file_) return;
    String text = entry + closing;
    // Blanks cover what is left of a longer text.
    std::size_t const covered = std::max(text.size(), tail_);
    text.resize(covered, '\n');
    std::fseek(file_.get(), entry_, SEEK_SET);
    std::fwrite(text.data(), 1, text.size(), file_.get());
    std::fflush(file_.get());
    std::size_t const done = goesOn ? entry.size() : 0;
    entry_ += static_cast<long>(done);
    tail_ = covered - done;
}

void Report::begins(Case const & c) {
    console::println("RUN    " + c.path());
    console::flush();
    junit_.begins(c);
}

void Report::ended(Result const & result) {
    bool const ok = result.failures.empty();
    if (ok) {
        ++passed_;
    } else {
        failed_.push_back(result.which->path());
    }
    console::println((ok ? "OK     " : "FAILED ") + result.which->path() + " (" + seconds(result.duration) + " s)");
    console::flush();
    junit_.ended(result);
}

void Report::summary() const {
    for (String const & path : failed_) console::println("FAILED " + path);
    StringBuffer totals;
    totals.append(passed_).append(" passed, ").append(failed()).append(" failed");
    console::println(totals.str());
    console::flush();
}

}  // namespace yon::test
