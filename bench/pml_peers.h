// The library and its peers behind one face: parse, print, find, and show what the tree holds.
//
// Each contestant is a struct with a `name`, the `text` of a document in its format, a movable owner `Tree`, and
// `parse`, `print`, `show`, and where the peer has it `printIndented` and `find` by path text. `show` writes the tree
// as "label(text)" and "label(children)", so that the trees of all contestants can be compared.
#pragma once

#include <rapidjson/document.h>
#include <rapidjson/pointer.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <yaml-cpp/yaml.h>
#include <boost/property_tree/info_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <cstdio>
#include <cstdlib>
#include <libconfig.h++>
#include <memory>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>
#include <sstream>
#include <string>

#include "pml_documents.h"
#include "yon/pml/pml_writer.h"

struct Zuvyon {
    static constexpr char const * name = "zuvyon";
    using Tree = std::unique_ptr<yon::pml::Unit>;

    static std::string const & text(Document const & d) { return d.pml; }
    static Tree parse(std::string const & text) { return Tree(yon::pml::newNTV(yon::istr(text))); }
    static yon::String print(Tree const & tree, yon::pml::ShowMode mode = yon::pml::ShowMode::COMPACT) {
        yon::String out;
        yon::pml::ntvToPml(*tree, out, mode);
        return out;
    }
    static yon::String printIndented(Tree const & tree) { return print(tree, yon::pml::ShowMode::FORMATTED); }
    static void show(std::string & out, Tree const & tree) { showChildren(out, *tree); }

    static std::string step(Node const & node) { return "/" + node.name; }
    static void const * find(Tree const & tree, std::string const & path) { return tree->find(path); }

private:
    static void showChildren(std::string & out, yon::pml::Unit const & unit) {
        yon::pml::ntv::ListValue * list = nullptr;
        if (!unit.getValue(list)) {
            out += std::string(unit.getStringValue());
            return;
        }
        for (yon::pml::Unit const * child : *list) {
            out += label(child->name(), child->type()) + "(";
            showChildren(out, *child);
            out += ")";
        }
    }
};

struct Pugixml {
    static constexpr char const * name = "pugixml";
    using Tree = std::unique_ptr<pugi::xml_document>;

    static std::string const & text(Document const & d) { return d.xml; }
    static Tree parse(std::string const & text) {
        auto tree = std::make_unique<pugi::xml_document>();
        if (!tree->load_buffer(text.data(), text.size())) std::abort();
        return tree;
    }
    static std::string print(Tree const & tree, unsigned flags = pugi::format_raw | pugi::format_no_declaration) {
        struct Writer : pugi::xml_writer {
            std::string out;
            void write(void const * data, std::size_t size) override {
                out.append(static_cast<char const *>(data), size);
            }
        } writer;
        tree->save(writer, "    ", flags);
        return std::move(writer.out);
    }
    static std::string printIndented(Tree const & tree) { return print(tree, pugi::format_default); }
    static void show(std::string & out, Tree const & tree) { showChildren(out, tree->first_child()); }

    static std::string step(Node const & node) { return "/" + node.name; }
    static void const * find(Tree const & tree, std::string const & path) {
        return tree->document_element().first_element_by_path(path.c_str() + 1).internal_object();
    }

private:
    static void showChildren(std::string & out, pugi::xml_node const & node) {
        if (node.first_child().type() == pugi::node_pcdata) out += node.child_value();
        for (pugi::xml_node const & child : node.children()) {
            if (child.type() != pugi::node_element) continue;
            std::string const name = child.name();
            out += label(name == "_" ? "" : name, child.attribute("type").value()) + "(";
            showChildren(out, child);
            out += ")";
        }
    }
};

template <class Allocator>
struct Rapidjson {
    using Json = rapidjson::GenericDocument<rapidjson::UTF8<>, Allocator>;
    using Value = typename Json::ValueType;
    using Tree = std::unique_ptr<Json>;

    static std::string const & text(Document const & d) { return d.json; }
    static Tree parse(std::string const & text) {
        auto tree = std::make_unique<Json>();
        if (tree->Parse(text.c_str()).HasParseError()) std::abort();
        return tree;
    }
    static rapidjson::StringBuffer print(Tree const & tree) { return printWith<rapidjson::Writer>(tree); }
    static rapidjson::StringBuffer printIndented(Tree const & tree) {
        return printWith<rapidjson::PrettyWriter>(tree);
    }
    static void show(std::string & out, Tree const & tree) { showValue(out, *tree); }

    static std::string step(Node const & node) { return "/" + label(node.name, node.type); }
    static void const * find(Tree const & tree, std::string const & path) {
        return rapidjson::GenericPointer<Value>(path.data(), path.size()).Get(*tree);
    }

private:
    template <template <class, class, class, class, unsigned> class Writer>
    static rapidjson::StringBuffer printWith(Tree const & tree) {
        rapidjson::StringBuffer out;
        Writer<rapidjson::StringBuffer, rapidjson::UTF8<>, rapidjson::UTF8<>, rapidjson::CrtAllocator,
               rapidjson::kWriteDefaultFlags>
            writer(out);
        tree->Accept(writer);
        return out;
    }
    static void showValue(std::string & out, Value const & value) {
        if (value.IsString()) {
            out += value.GetString();
        } else if (value.IsArray()) {
            for (Value const & element : value.GetArray()) showNamed(out, "", element);
        } else {
            for (auto const & member : value.GetObject()) showNamed(out, member.name.GetString(), member.value);
        }
    }
    static void showNamed(std::string & out, char const * name, Value const & value) {
        (out += name) += "(";
        showValue(out, value);
        out += ")";
    }
};

/// Nodes from a pool that goes as a whole.
struct RapidjsonPool : Rapidjson<rapidjson::MemoryPoolAllocator<>> {
    static constexpr char const * name = "rapidjson-pool";
};

/// Single allocations, so that a tree that is edited gives memory back.
struct RapidjsonSingle : Rapidjson<rapidjson::CrtAllocator> {
    static constexpr char const * name = "rapidjson-single";
};

struct Nlohmann {
    static constexpr char const * name = "nlohmann";
    using Json = nlohmann::json;
    using Tree = std::unique_ptr<Json>;
    static constexpr bool sorts = true;

    static std::string const & text(Document const & d) { return d.json; }
    static Tree parse(std::string const & text) { return std::make_unique<Json>(Json::parse(text)); }
    static std::string print(Tree const & tree) { return tree->dump(); }
    static std::string printIndented(Tree const & tree) { return tree->dump(4); }
    static void show(std::string & out, Tree const & tree) { showValue(out, *tree); }

    static std::string step(Node const & node) { return "/" + label(node.name, node.type); }
    static void const * find(Tree const & tree, std::string const & path) {
        return &tree->at(Json::json_pointer(path));
    }

private:
    static void showValue(std::string & out, Json const & value) {
        if (value.is_string()) {
            out += value.get_ref<std::string const &>();
            return;
        }
        for (auto const & member : value.items()) {
            (out += value.is_object() ? member.key() : "") += "(";
            showValue(out, member.value());
            out += ")";
        }
    }
};

struct Libconfig {
    static constexpr char const * name = "libconfig";
    using Tree = std::unique_ptr<libconfig::Config>;

    static std::string const & text(Document const & d) { return d.config; }
    static Tree parse(std::string const & text) {
        auto tree = std::make_unique<libconfig::Config>();
        tree->readString(text);
        return tree;
    }
    static std::string print(Tree const & tree) {
        char * data = nullptr;
        std::size_t size = 0;
        std::FILE * const file = open_memstream(&data, &size);
        tree->write(file);
        std::fclose(file);
        std::unique_ptr<char, decltype(&std::free)> const owner(data, &std::free);
        return {data, size};
    }
    static void show(std::string & out, Tree const & tree) { showChildren(out, tree->getRoot()); }

    static std::string step(Node const & node) { return "/" + label(node.name, node.type, '-'); }
    static void const * find(Tree const & tree, std::string const & path) { return &tree->lookup(path.c_str() + 1); }

private:
    static void showChildren(std::string & out, libconfig::Setting & setting) {
        if (!setting.isAggregate()) {
            out += setting.c_str();
            return;
        }
        for (int i = 0; i < setting.getLength(); ++i) {
            libconfig::Setting & child = setting[i];
            std::string key = child.getName() != nullptr ? child.getName() : "";
            if (auto const dash = key.find('-'); dash != std::string::npos) key[dash] = ':';
            out += key + "(";
            showChildren(out, child);
            out += ")";
        }
    }
};

struct Yaml {
    static constexpr char const * name = "yaml-cpp";
    using Tree = std::unique_ptr<YAML::Node>;

    static std::string const & text(Document const & d) { return d.yaml; }
    static Tree parse(std::string const & text) { return std::make_unique<YAML::Node>(YAML::Load(text)); }
    static std::string print(Tree const & tree) {
        YAML::Emitter out;
        out << *tree;
        return out.c_str();
    }
    static void show(std::string & out, Tree const & tree) { showValue(out, *tree); }

private:
    static void showValue(std::string & out, YAML::Node const & value) {
        if (value.IsScalar()) {
            out += value.Scalar();
        } else if (value.IsSequence()) {
            for (auto const & element : value) showNamed(out, "", element);
        } else {
            for (auto const & member : value) showNamed(out, member.first.Scalar(), member.second);
        }
    }
    static void showNamed(std::string & out, std::string const & name, YAML::Node const & value) {
        (out += name) += "(";
        showValue(out, value);
        out += ")";
    }
};

struct PropertyTree {
    static constexpr char const * name = "ptree";
    using Ptree = boost::property_tree::ptree;
    using Tree = std::unique_ptr<Ptree>;

    static std::string const & text(Document const & d) { return d.info; }
    static Tree parse(std::string const & text) {
        auto tree = std::make_unique<Ptree>();
        std::istringstream in(text);
        boost::property_tree::read_info(in, *tree);
        return tree;
    }
    static std::string print(Tree const & tree) {
        std::ostringstream out;
        boost::property_tree::write_info(out, *tree);
        return std::move(out).str();
    }
    static void show(std::string & out, Tree const & tree) { showChildren(out, *tree); }

    static std::string step(Node const & node) { return "." + label(node.name, node.type); }
    static void const * find(Tree const & tree, std::string const & path) {
        return &tree->get_child(path.c_str() + 1);
    }

private:
    static void showChildren(std::string & out, Ptree const & tree) {
        out += tree.data();
        for (auto const & [key, child] : tree) {
            (out += key) += "(";
            showChildren(out, child);
            out += ")";
        }
    }
};
