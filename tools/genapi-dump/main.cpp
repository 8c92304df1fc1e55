// genapi-dump: loads a GenICam description over zero-filled memory ports and
// prints its feature tree, optionally after writing some features.
#include <GenApi/GenApi.h>

#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

using namespace GenApi;

namespace {

const char usage[] = "usage: genapi-dump FILE [--set NAME=VALUE]...\n"
                     "Loads a GenICam description (plain XML or zip) over zero-filled memory,\n"
                     "applies the writes in order and prints the feature tree under Root.\n";

std::string describe(INode *node)
{
    std::string line = node->GetName().str();
    line += "  ";
    line += EInterfaceTypeClass::ToString(node->GetPrincipalInterfaceType()).str();
    EAccessMode mode;
    try {
        mode = node->GetAccessMode();
    } catch (const GenICam::GenericException &e) {
        return line + "  ?  error: " + e.GetDescription();
    }
    line += "  " + EAccessModeClass::ToString(mode).str();
    const EInterfaceType type = node->GetPrincipalInterfaceType();
    if (type == intfICategory || type == intfICommand || !IsReadable(mode))
        return line;
    CValuePtr value(node);
    if (!value)
        return line;
    try {
        line += "  = " + value->ToString().str();
    } catch (const GenICam::GenericException &e) {
        line += "  error: ";
        line += e.GetDescription();
    }
    return line;
}

void printTree(INode *node, int depth, std::vector<INode *> &path)
{
    std::cout << std::string(static_cast<size_t>(depth) * 2, ' ') << describe(node) << '\n';
    CCategoryPtr category(node);
    if (!category)
        return;
    path.push_back(node);
    FeatureList_t features;
    category->GetFeatures(features);
    for (IValue *feature : features) {
        INode *child = feature->GetNode();
        bool onPath = false;
        for (INode *n : path)
            onPath = onPath || n == child;
        if (onPath)
            continue; // a category that contains itself
        printTree(child, depth + 1, path);
    }
    path.pop_back();
}

} // namespace

int main(int argc, char **argv)
{
    std::string file;
    std::vector<std::pair<std::string, std::string>> writes;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            std::cout << usage;
            return 0;
        }
        if (arg == "--set") {
            if (i + 1 >= argc) {
                std::cerr << "genapi-dump: --set needs NAME=VALUE\n" << usage;
                return 2;
            }
            const std::string assignment = argv[++i];
            const size_t eq = assignment.find('=');
            if (eq == std::string::npos || eq == 0) {
                std::cerr << "genapi-dump: --set needs NAME=VALUE, not '" << assignment << "'\n";
                return 2;
            }
            writes.emplace_back(assignment.substr(0, eq), assignment.substr(eq + 1));
        } else if (file.empty() && (arg.empty() || arg[0] != '-')) {
            file = arg;
        } else {
            std::cerr << "genapi-dump: unexpected argument '" << arg << "'\n" << usage;
            return 2;
        }
    }
    if (file.empty()) {
        std::cerr << usage;
        return 2;
    }

    CNodeMapRef map;
    try {
        map._LoadXMLFromFile(file.c_str());
    } catch (const GenICam::GenericException &e) {
        std::cerr << "genapi-dump: cannot load " << file << ": " << e.GetDescription() << '\n';
        return 2;
    }

    // Every port gets its own zero-filled memory, so that features behind
    // transport-layer or chunk ports can be read as well.
    const auto ports = ConnectMemoryPorts(map);

    for (const auto &[name, value] : writes) {
        CValuePtr target(map._GetNode(name.c_str()));
        if (!target) {
            std::cerr << "genapi-dump: --set " << name << ": no such feature\n";
            continue;
        }
        try {
            target->FromString(value.c_str());
        } catch (const GenICam::GenericException &e) {
            std::cerr << "genapi-dump: --set " << name << "=" << value << ": " << e.GetDescription()
                      << '\n';
        }
    }

    std::vector<INode *> path;
    if (INode *root = map._GetNode("Root")) {
        printTree(root, 0, path);
    } else {
        NodeList_t nodes;
        map._GetNodes(nodes);
        for (INode *node : nodes)
            if (node->IsFeature() || node->GetPrincipalInterfaceType() != intfIPort)
                std::cout << describe(node) << '\n';
    }
    return 0;
}
