// The binary encodings: streams of items, nbr values, triple DES.
#include <iostream>
#include <memory>

#include "yon/log/dumper.h"
#include "yon/log/hexdump.h"
#include "yon/nbr/input_stream.h"
#include "yon/nbr/output_stream.h"
#include "yon/nbr/verify.h"
#include "yon/util/binary_in_stream.h"
#include "yon/util/binary_out_stream.h"
#include "yon/util/c3des.h"

using yon::istr;
using yon::String;

namespace {

bool streams() {
    yon::BinaryOutStream out;
    out.write(128).write("abc").write(true);
    std::cout << yon::write_hex(out.str()) << '\n';

    int number = 0;
    String text;
    bool flag = false;
    yon::BinaryInStream in(out.str());
    in.read(number).read(text).read(flag);
    return number == 128 && text == "abc" && flag && in.eof();
}

bool strictness() {
    yon::BinaryOutStream out;
    out.write(70000);
    short narrow = 0;
    yon::BinaryInStream in(out.str());
    in.read(narrow);  // the low two bytes
    bool raised = false;
    try {
        in.str(out.str()).readStrict(narrow);
    } catch (yon::BinaryDecodeException const & e) {
        raised = true;
        std::cout << e.msg() << '\n';
    }
    return raised && narrow == 4464;
}

enum Field : unsigned char { name = 1, port = 2, peers = 3 };

yon::Bytes settings() {
    yon::nbr::OutputStream out;
    out.beginComplex();
    out.tag(name) << "alpha";
    out.tag(port) << 7400;
    out.tag(peers).beginComplex();
    out << "beta"
        << "gamma";
    out.endComplex();
    out.endComplex();
    return out.str();
}

bool tree() {
    yon::nbr::InputStream const in(settings());  // keeps the bytes
    yon::nbr::ComplexValue const * const root = in.get()->complexValue();
    String host;
    int number = 0;
    bool const found = root->read(name, host) && root->read(port, number);
    for (auto const & peer : *root->get(peers)->complexValue()) {
        String text;
        peer.value->simpleValue()->read(text);
        std::cout << text << '\n';
    }
    yon::dumper d;
    root->get(peers)->dump(d);
    std::cout << d.str() << '\n';
    return found && host == "alpha" && number == 7400;
}

bool defects() {
    yon::Bytes const bytes = settings();
    auto const defect = yon::nbr::verify(istr(bytes, bytes.size() - 3));
    if (defect) std::cout << "offset " << defect->offset << ": " << defect->what << '\n';
    return defect && !yon::nbr::verify(bytes);
}

bool tripleDes() {
    yon::C3DES const cipher("sixteen byte key", yon::C3DES::Mode::CBC, "8 random");
    yon::Bytes const secret = cipher.encrypt("attack at dawn");
    std::cout << yon::write_hex(secret) << '\n';
    return istr(cipher.decrypt(secret)) == "attack at dawn";
}

}  // namespace

int main() { return streams() && strictness() && tree() && defects() && tripleDes() ? 0 : 1; }
