// A tour of the dumps. docs/dump.md quotes the functions below.
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "yon/yon.h"

using yon::istr;
using yon::String;

namespace app {

class Point {
public:
    Point(int x, int y) : x_(x), y_(y) {}
    yon::dumper & dump(yon::dumper & d) const {
        d.push("app::Point", "@");
        d.field("x_", x_).field("y_", y_);
        d.pop();
        return d;
    }

private:
    int x_;
    int y_;
};

class Shape {
public:
    yon::dumper & dump(yon::dumper & d) const {
        d.push("app::Shape", "@");
        d.field("name_", name_).field("closed_", closed_).field("points_", points_).field("style_", style_);
        d.field("parent_", parent_).field("timeout_", timeout_);
        d.pop();
        return d;
    }

private:
    String name_ = "line\tone";
    bool closed_ = false;
    std::vector<Point> points_{{1, 2}, {3, 4}};
    std::map<String, int> style_{{"width", 2}};
    std::unique_ptr<Shape> parent_;
    std::chrono::milliseconds timeout_{1500};
};

}  // namespace app

namespace {

bool bothLayouts() {
    app::Point const point(1, 2);
    yon::dumper lines;
    lines << point;
    yon::dumper compact(true);
    compact << point;
    std::cout << lines.str() << '\n' << compact.str() << '\n';
    return lines.str() == "@app::Point {\n    x_ = 1\n    y_ = 2\n}" && compact.str() == "{1, 2}";
}

bool members() {
    app::Shape const shape;
    yon::dumper(std::cout, false) << shape << yon::nl;
    yon::dumper compact(true);
    compact << shape;
    std::cout << compact.str() << '\n';
    return compact.str() == "{\"line\\x{09}one\", false, {{1, 2}, {3, 4}}, {width : 2}, <null>, 1500ms}";
}

bool hexadecimal() {
    istr const packet("\x01\x02 zuvyon packet \xFF", 18);
    std::cout << yon::write_hex(packet) << '\n';
    std::cout << yon::dump_hex<yon::show_printable>(packet) << '\n';
    yon::dumper compact(true);
    compact << yon::hexdata(packet, 4);
    std::cout << compact.str() << '\n';
    return compact.str() == "01 02 20 7A";
}

}  // namespace

int main() { return bothLayouts() && members() && hexadecimal() ? 0 : 1; }
