// The documents of the pml benchmark: trees made by the program, and their text in the format of each peer.
#pragma once

#include <string>
#include <vector>

/// A node of a document. A list holds either named or unnamed children.
struct Node {
    std::string name;
    std::string type;
    std::string text;
    std::vector<Node> children;
};

/// The texts of one logical tree. Formats without types carry the type in the name, "port:int", which costs their
/// reader less than a member of its own would.
struct Document {
    Document(std::string title, Node root);

    std::string title;
    Node root;
    std::size_t nodes;  ///< of the tree, with the root
    std::string pml;
    std::string xml;
    std::string json;
    std::string yaml;
    std::string info;    ///< Boost.PropertyTree
    std::string config;  ///< libconfig, where a colon cannot stand in a name: "port-int"
};

/// What formats without types know as the name.
inline std::string label(std::string const & name, std::string const & type, char separator = ':') {
    return type.empty() ? name : name + separator + type;
}

std::vector<Document> makeDocuments();
