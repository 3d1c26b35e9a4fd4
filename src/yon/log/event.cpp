#include "yon/log/logger.h"
#include "yon/log/message_stream.h"
#include "yon/log/record_buffer.h"
#include "yon/pml/pml_writer.h"

namespace yon::detail {

namespace {

bool isControl(char c) noexcept { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }

/// Names cannot be quoted: what would not be read back as a part of the name becomes "_".
String nameText(istr name) {
    String text = name;
    for (char & c : text) {
        if (isControl(c) || istr(" ()[]:*/\\'\"").find(istr(&c, 1)) != npos) c = '_';
    }
    return text.empty() ? String("_") : text;
}

/// A value on one line: line feeds and carriage returns become "\n" and "\r".
String valueText(istr value) {
    String text;
    for (char const c : value) {
        if (c == '\n' || c == '\r') {
            text += c == '\n' ? "\\n" : "\\r";
        } else {
            text += c;
        }
    }
    return text;
}

String eventLine(istr name, std::initializer_list<EventText> keysAndValues) {
    pml::Unit event(nameText(name));
    for (auto p = keysAndValues.begin(); p != keysAndValues.end(); p += 2) {
        event.updateChild(nameText(p[0].text()), valueText(p[1].text()));
    }
    String line;
    pml::ntvToCompactPml(event, line, pml::ShowPattern::usual | pml::ShowPattern::QUOTE_BLANKS);
    return line += '\n';
}

}  // namespace

void writeEventRecord(logger & log, istr name, std::initializer_list<EventText> keysAndValues) noexcept {
    try {
        RecordBuffer buffer;
        log.writeAndPrint(buffer.text().append(eventLine(name, keysAndValues)));
    } catch (...) {
    }
}

}  // namespace yon::detail
