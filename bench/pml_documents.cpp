#include "pml_documents.h"

#include <random>
#include <utility>

namespace {

using Random = std::mt19937;

std::size_t countOf(Node const & node) {
    std::size_t count = 1;
    for (Node const & child : node.children) count += countOf(child);
    return count;
}

std::string indent(int depth) { return std::string(static_cast<std::size_t>(depth) * 4, ' '); }

bool isNamedList(Node const & node) { return !node.children.empty() && !node.children.front().name.empty(); }

/// The text in quotes, with a backslash before each of the characters in `escaped`.
std::string quoted(std::string const & text, char quote, char const * escaped) {
    std::string out(1, quote);
    for (char c : text) {
        if (std::string(escaped).find(c) != std::string::npos) out += '\\';
        out += c;
    }
    return out + quote;
}

bool isWord(std::string const & text) {
    return !text.empty() && text.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789._-") == std::string::npos;
}

void writePml(std::string & out, Node const & node, int depth) {
    out += indent(depth) + label(node.name, node.type) + "(";
    if (node.children.empty()) {
        bool const plain = node.text.find_first_of("():*\\'\"") == std::string::npos;
        out += plain ? node.text : quoted(node.text, '\'', "\\'");
    } else {
        out += "\n";
        for (Node const & child : node.children) writePml(out, child, depth + 1);
        out += indent(depth);
    }
    out += ")\n";
}

void writeXml(std::string & out, Node const & node, int depth) {
    std::string const name = node.name.empty() ? "_" : node.name;
    out += indent(depth) + "<" + name + (node.type.empty() ? ">" : " type=\"" + node.type + "\">");
    if (node.children.empty()) {
        for (char c : node.text) {
            switch (c) {
                case '<':
                    out += "&lt;";
                    break;
                case '>':
                    out += "&gt;";
                    break;
                case '&':
                    out += "&amp;";
                    break;
                default:
                    out += c;
            }
        }
    } else {
        out += "\n";
        for (Node const & child : node.children) writeXml(out, child, depth + 1);
        out += indent(depth);
    }
    out += "</" + name + ">\n";
}

void writeJson(std::string & out, Node const & node, int depth) {
    if (node.children.empty()) {
        out += quoted(node.text, '"', "\\\"");
        return;
    }
    bool const named = isNamedList(node);
    out += named ? "{" : "[";
    for (Node const & child : node.children) {
        out += (&child == &node.children.front() ? "\n" : ",\n") + indent(depth + 1);
        if (named) out += "\"" + label(child.name, child.type) + "\": ";
        writeJson(out, child, depth + 1);
    }
    out += "\n" + indent(depth) + (named ? "}" : "]");
}

void writeYaml(std::string & out, Node const & node, int depth) {
    if (node.children.empty()) {
        out += (isWord(node.text) ? node.text : quoted(node.text, '"', "\\\"")) + "\n";
        return;
    }
    if (depth > 0) out += "\n";
    for (Node const & child : node.children) {
        out += indent(depth) + (isNamedList(node) ? label(child.name, child.type) + ": " : "- ");
        writeYaml(out, child, depth + 1);
    }
}

void writeInfo(std::string & out, Node const & node, int depth) {
    if (depth >= 0) {
        out += indent(depth) + (node.name.empty() ? "\"\"" : label(node.name, node.type)) + " ";
        if (node.children.empty()) out += (isWord(node.text) ? node.text : quoted(node.text, '"', "\\\""));
        out += node.children.empty() ? "\n" : "{\n";
    }
    for (Node const & child : node.children) writeInfo(out, child, depth + 1);
    if (depth >= 0 && !node.children.empty()) out += indent(depth) + "}\n";
}

void writeConfig(std::string & out, Node const & node, int depth) {
    if (depth >= 0) {
        out += indent(depth);
        if (!node.name.empty()) out += label(node.name, node.type, '-') + " = ";
        if (node.children.empty()) {
            out += quoted(node.text, '"', "\\\"");
            return;
        }
        out += isNamedList(node) ? "{\n" : "(\n";
    }
    for (Node const & child : node.children) {
        writeConfig(out, child, depth + 1);
        bool const last = &child == &node.children.back();
        out += isNamedList(node) ? ";\n" : last ? "\n" : ",\n";
    }
    if (depth >= 0) out += indent(depth) + (isNamedList(node) ? "}" : ")");
}

template <class Writer>
std::string textOf(Node const & root, Writer write, int depth) {
    std::string out;
    write(out, root, depth);
    return out;
}

std::string randomWord(Random & random, std::size_t least, std::size_t most) {
    std::string word(least + random() % (most - least + 1), ' ');
    for (char & c : word) c = static_cast<char>('a' + random() % 26);
    return word;
}

/// A short value, and the type that goes with it.
Node randomLeaf(Random & random, std::string name) {
    switch (random() % 8) {
        case 0:
            return {name, "int", std::to_string(random() % 100000), {}};
        case 1:
            return {name, "bool", random() % 2 ? "1" : "0", {}};
        case 2:
            return {name, "double", std::to_string(random() % 1000) + "." + std::to_string(random() % 100), {}};
        case 3:
            return {name, "string", randomWord(random, 3, 12), {}};
        case 4:
            return {name, "", "10.0.0." + std::to_string(random() % 256) + ":80", {}};
        default:
            return {name, "", randomWord(random, 2, 10), {}};
    }
}

std::string numbered(std::string word, std::size_t i) { return word + std::to_string(i); }

Node settings() {
    Random random(1);
    Node root{"service", "", "", {}};
    for (char const * section : {"logger", "network", "timers", "users"}) {
        Node list{section, "", "", {}};
        for (std::size_t i = 0; i < 14; ++i) list.children.push_back(randomLeaf(random, randomWord(random, 4, 12)));
        Node lines{"lines", "", "", {}};
        for (std::size_t i = 0; i < 4; ++i) lines.children.push_back({"", "", randomWord(random, 3, 8), {}});
        list.children.push_back(std::move(lines));
        root.children.push_back(std::move(list));
    }
    return root;
}

/// Groups of sections of short leaves, with unnamed lists between them.
Node mixed(std::size_t nodes) {
    Random random(2);
    Node root{"root", "", "", {}};
    for (std::size_t made = 1; made < nodes;) {
        Node group{numbered("group", root.children.size()), "", "", {}};
        for (std::size_t s = 0; s < 10; ++s) {
            Node section{numbered("section", s), s % 3 ? "" : "part", "", {}};
            for (std::size_t i = 0; i < 12; ++i) {
                std::string name = numbered(randomWord(random, 1, 5), i);
                if (random() % 6 != 0) {
                    section.children.push_back(randomLeaf(random, std::move(name)));
                    continue;
                }
                bool const named = random() % 2;
                Node list{std::move(name), "", "", {}};
                for (std::size_t k = 0; k < 5; ++k) {
                    std::string const entry = named ? numbered("item", k) : "";
                    list.children.push_back(named ? randomLeaf(random, entry)
                                                  : Node{"", "", randomWord(random, 2, 8), {}});
                }
                section.children.push_back(std::move(list));
            }
            group.children.push_back(std::move(section));
        }
        made += countOf(group);
        root.children.push_back(std::move(group));
    }
    return root;
}

Node namedList(std::size_t count) {
    Random random(3);
    Node root{"table", "", "", {}};
    for (std::size_t i = 0; i < count; ++i) {
        root.children.push_back({numbered(randomWord(random, 2, 8), i), "", std::to_string(random() % 10000), {}});
    }
    return root;
}

/// Texts of about 10 KB that hold something to escape for every format now and then.
Node longTexts(std::size_t count) {
    Random random(4);
    char const * const specials[] = {"it's", "\"so\"", "a\\b", "x < y", "this & that", "(see: below)"};
    Node root{"texts", "", "", {}};
    for (std::size_t i = 0; i < count; ++i) {
        std::string text;
        while (text.size() < 10000) {
            text += randomWord(random, 2, 9) + ' ';
            if (random() % 100 == 0) text += std::string(specials[random() % 6]) + ' ';
        }
        text += "(end)";
        root.children.push_back({numbered("text", i), "", std::move(text), {}});
    }
    return root;
}

}  // namespace

Document::Document(std::string t, Node tree) : title(std::move(t)), root(std::move(tree)), nodes(countOf(root)) {
    pml = textOf(root, writePml, 0);
    xml = textOf(root, writeXml, 0);
    json = textOf(root, writeJson, 0);
    yaml = textOf(root, writeYaml, 0);
    info = textOf(root, writeInfo, -1);
    config = textOf(root, writeConfig, -1);
}

std::vector<Document> makeDocuments() {
    std::vector<Document> documents;
    documents.emplace_back("settings", settings());
    documents.emplace_back("40000 nodes", mixed(40000));
    documents.emplace_back("20000 names", namedList(20000));
    documents.emplace_back("long texts", longTexts(100));
    return documents;
}
