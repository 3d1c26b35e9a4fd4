#include "yon/string/printf.h"

#include <charconv>
#include <cmath>
#include <cstdint>

#include "yon/base/throw.h"
#include "yon/string/unicode.h"

namespace yon::detail {

namespace {

struct Spec {
    bool left = false;
    bool plus = false;
    bool blank = false;
    bool alternate = false;
    bool zero = false;
    int width = 0;
    int precision = -1;  ///< negative: none
    char letter = '\0';

    bool isUpper() const noexcept { return letter >= 'A' && letter <= 'Z'; }
    char lower() const noexcept { return static_cast<char>(letter | 0x20); }
    istr sign(bool negative) const noexcept { return negative ? "-" : plus ? "+" : blank ? " " : ""; }
};

constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

void makeUpper(char * p, char const * end) noexcept {
    for (; p != end; ++p) *p = static_cast<char>(*p >= 'a' && *p <= 'z' ? *p - 0x20 : *p);
}

istr view(char const * begin, char const * end) noexcept { return {begin, static_cast<ulong>(end - begin)}; }

char * toChars(char * begin, char * end, double value, std::chars_format format, int precision) {
    return std::to_chars(begin, end, value, format, precision).ptr;
}

/// Puts in the point that the flag '#' asks for in every number.
char * withPoint(char * begin, char * end) noexcept {
    if (std::find(begin, end, '.') != end) return end;
    char * const at = std::find_if(begin, end, [](char c) { return c == 'e' || c == 'p'; });
    std::copy_backward(at, end, end + 1);
    *at = '.';
    return end + 1;
}

/// "%#g": trailing zeros stay, so the form has to be picked here.
char * writeGeneralWithZeros(char * begin, char * end, double value, int digits) {
    char * const stop = toChars(begin, end, value, std::chars_format::scientific, digits - 1);
    int exponent = 0;
    char const * const e = std::find(begin, stop, 'e') + 1;
    std::from_chars(e + (*e == '+'), stop, exponent);
    if (exponent < -4 || exponent >= digits) return stop;
    return toChars(begin, end, value, std::chars_format::fixed, digits - 1 - exponent);
}

/// Writes a number that is not negative, without the "0x" of the hexadecimal form.
char * writeReal(Spec const & spec, char * begin, char * end, double value) {
    int const precision = spec.precision < 0 ? 6 : spec.precision;
    bool const alternate = spec.alternate && std::isfinite(value);
    char * stop = nullptr;
    switch (spec.lower()) {
        case 'f':
            stop = toChars(begin, end, value, std::chars_format::fixed, precision);
            break;
        case 'e':
            stop = toChars(begin, end, value, std::chars_format::scientific, precision);
            break;
        case 'g':
            stop = alternate ? writeGeneralWithZeros(begin, end, value, precision == 0 ? 1 : precision)
                             : toChars(begin, end, value, std::chars_format::general, precision);
            break;
        default:
            stop = spec.precision < 0 ? std::to_chars(begin, end, value, std::chars_format::hex).ptr
                                      : toChars(begin, end, value, std::chars_format::hex, precision);
    }
    return alternate ? withPoint(begin, stop) : stop;
}

class Formatter {
public:
    Formatter(std::string & out, istr format, PrintfArg const * args, std::size_t count)
        : out_(out), format_(format), p_(format.begin()), args_(args), count_(count) {}

    void run() {
        out_.reserve(out_.size() + format_.size() + 12 * count_);
        while (copyPlain()) {
            Spec const spec = parse();
            if (spec.letter == '%') {
                out_ += '%';
            } else {
                print(spec, take());
            }
        }
        if (next_ != count_) fail(quoted(format_) += " has no conversion for argument " + std::to_string(next_ + 1));
    }

private:
    /// Copies up to the next percent sign; false when there is none.
    bool copyPlain() {
        char const * const end = format_.end();
        char const * const percent = std::find(p_, end, '%');
        out_.append(p_, percent);
        begin_ = p_ = percent;
        return percent != end;
    }

    Spec parse() {
        Spec spec;
        do ++p_;
        while (takeFlag(spec));
        spec.width = takeNumber();
        if (spec.width < 0) {
            spec.left = true;
            spec.width = -spec.width;
        }
        if (next() == '.') {
            ++p_;
            spec.precision = takeNumber();
        }
        skipLengthModifier();
        spec.letter = next();
        if (p_ != format_.end()) ++p_;
        if (!CharIn(spec.letter, "diuoxXcspeEfFgGaA%") || spec.letter == '\0')
            fail(conversion() += " is no conversion");
        return spec;
    }

    char next() const noexcept { return p_ == format_.end() ? '\0' : *p_; }

    bool takeFlag(Spec & spec) const noexcept {
        switch (next()) {
            case '-':
                return spec.left = true;
            case '+':
                return spec.plus = true;
            case ' ':
                return spec.blank = true;
            case '#':
                return spec.alternate = true;
            case '0':
                return spec.zero = true;
            default:
                return false;
        }
    }

    /// A width or a precision; 0 when none is written.
    int takeNumber() {
        static constexpr int greatest = 1 << 30;
        longlong n = 0;
        if (next() == '*') {
            ++p_;
            PrintfArg const & arg = take();
            if (!arg.isInteger()) mismatch();
            n = static_cast<longlong>(arg.integer());
            if (n < 0 && !arg.isNegative()) n = greatest;
        } else if (isDigit(next())) {
            auto const [end, error] = std::from_chars(p_, format_.end(), n);
            p_ = end;
            if (error != std::errc()) n = greatest;
        }
        if (n <= -greatest || n >= greatest) fail(conversion() += ": this width or precision is too large");
        return static_cast<int>(n);
    }

    void skipLengthModifier() noexcept {
        if (view(p_, format_.end()).beginWith("I64")) p_ += 3;
        while (next() != '\0' && CharIn(next(), "hlLqjzt")) ++p_;
    }

    PrintfArg const & take() {
        if (next_ == count_) fail(conversion() += " has no argument");
        return args_[next_++];
    }

    void print(Spec const & spec, PrintfArg const & arg) {
        using Kind = PrintfArg::Kind;
        switch (spec.letter) {
            case 's':
                return printText(spec, arg);
            case 'p':
                if (arg.kind() != Kind::pointer) mismatch();
                return printPointer(spec, arg.pointer());
            case 'c':
                if (!arg.isInteger()) mismatch();
                return printCharacter(spec, static_cast<char>(arg.integer()));
            case 'd':
            case 'i':
            case 'u':
            case 'o':
            case 'x':
            case 'X':
                if (!arg.isInteger()) mismatch();
                return printInteger(spec, arg);
            default:
                if (arg.kind() != Kind::real) mismatch();
                return printReal(spec, arg.real());
        }
    }

    void printCharacter(Spec const & spec, char c) { put(spec, "", view(&c, &c + 1)); }

    void printText(Spec const & spec, PrintfArg const & arg) {
        String converted;
        istr text;
        if (arg.kind() == PrintfArg::Kind::text) {
            text = arg.text();
        } else if (arg.kind() == PrintfArg::Kind::wideText) {
            text = converted = wstringToAnsi(arg.wideText());
        } else {
            mismatch();
        }
        put(spec, "", spec.precision < 0 ? text : text.leftstr(static_cast<ulong>(spec.precision)));
    }

    void printPointer(Spec const & spec, void const * p) {
        char room[24];
        char * const end = std::to_chars(room, std::end(room), reinterpret_cast<std::uintptr_t>(p), 16).ptr;
        put(spec, "0x", view(room, end));
    }

    void printInteger(Spec const & spec, PrintfArg const & arg) {
        bool const isSigned = spec.letter == 'd' || spec.letter == 'i';
        bool const negative = isSigned && arg.isNegative();
        ulonglong const value = negative ? 0 - arg.integer() : isSigned ? arg.integer() : arg.ownBits();
        int const base = spec.lower() == 'x' ? 16 : spec.letter == 'o' ? 8 : 10;
        char room[24];
        char * end = std::to_chars(room, std::end(room), value, base).ptr;
        if (value == 0 && spec.precision == 0) end = room;
        if (spec.isUpper()) makeUpper(room, end);
        istr const digits = view(room, end);
        int zeros = std::max(0, spec.precision - static_cast<int>(digits.size()));
        if (base == 8 && spec.alternate && zeros == 0 && !digits.beginWith("0")) zeros = 1;
        istr prefix = isSigned ? spec.sign(negative) : "";
        if (base == 16 && spec.alternate && value != 0) prefix = spec.isUpper() ? "0X" : "0x";
        put(spec, prefix, digits, static_cast<std::size_t>(zeros), spec.zero && spec.precision < 0);
    }

    void printReal(Spec const & spec, double value) {
        // The greatest number has 309 digits before the point.
        static constexpr std::size_t most = 400;
        char room[most + 100];
        char * begin = room;
        std::size_t size = sizeof room;
        std::string large;
        if (spec.precision > 100) {
            large.resize(size = most + static_cast<std::size_t>(spec.precision));
            begin = large.data();
        }
        char * const end = writeReal(spec, begin, begin + size, std::fabs(value));
        String prefix = spec.sign(std::signbit(value));
        if (spec.lower() == 'a' && std::isfinite(value)) prefix += "0x";
        if (spec.isUpper()) {
            makeUpper(begin, end);
            makeUpper(prefix.data(), prefix.data() + prefix.size());
        }
        put(spec, prefix, view(begin, end), 0, spec.zero && std::isfinite(value));
    }

    /// Writes prefix, zeros and body in a field of the width, filled with blanks, or with zeros before the body.
    void put(Spec const & spec, istr prefix, istr body, std::size_t zeros = 0, bool fillWithZeros = false) {
        std::size_t const size = prefix.size() + zeros + body.size();
        std::size_t const width = static_cast<std::size_t>(spec.width);
        std::size_t blanks = width > size ? width - size : 0;
        if (fillWithZeros && !spec.left) zeros += std::exchange(blanks, 0);
        if (!spec.left) out_.append(blanks, ' ');
        out_.append(prefix).append(zeros, '0').append(body);
        if (spec.left) out_.append(blanks, ' ');
    }

    static String quoted(istr s) { return ((String("\"") += s) += "\""); }
    /// What has been read of the conversion.
    String conversion() const { return quoted(view(begin_, p_)); }

    [[noreturn]] void mismatch() const {
        static constexpr char const * kinds[] = {"an integer", "an integer", "a real number",
                                                 "text",       "wide text",  "a pointer"};
        auto const kind = static_cast<std::size_t>(args_[next_ - 1].kind());
        fail(conversion() += " does not take argument " + std::to_string(next_) + ", which is " + kinds[kind]);
    }
    [[noreturn]] static void fail(istr text) {
        YON_THROW_AT(YON_LOCATION(__FILE__, __LINE__, "yon::Printf::Printf"), InvalidDataException, text);
    }

    std::string & out_;
    istr format_;
    char const * p_;
    char const * begin_ = nullptr;
    PrintfArg const * args_;
    std::size_t count_;
    std::size_t next_ = 0;
};

}  // namespace

void appendPrintf(std::string & out, istr format, PrintfArg const * args, std::size_t count) {
    Formatter(out, format, args, count).run();
}

}  // namespace yon::detail
