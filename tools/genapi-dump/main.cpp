// genapi-dump: loads a GenICam description over zero-filled memory ports and
// prints its feature tree, optionally after writing some features.
#include <GenApi/GenApi.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <unordered_set>
#include <vector>

using namespace GenApi;

namespace {

const char usage[] = "usage: genapi-dump [--strict] FILE [--set NAME=VALUE]...\n"
                     "Loads a GenICam description (plain XML or zip) over zero-filled memory,\n"
                     "applies the writes in order and prints the feature tree under Root.\n"
                     "Small schema violations are warnings on stderr; --strict refuses them.\n";

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

// Two spaces per level down to maxIndent levels; deeper lines say their
// depth instead, so that a pathological nesting cannot make the output grow
// with the square of its depth.
void printLine(INode *node, size_t depth)
{
    constexpr size_t maxIndent = 64;
    std::cout << std::string(std::min(depth, maxIndent) * 2, ' ');
    if (depth > maxIndent)
        std::cout << "(depth " << depth << ") ";
    std::cout << describe(node) << '\n';
}

// Depth first with its own stack: categories may nest tens of thousands
// deep. A category already on the way down (one that contains itself) is
// skipped.
void printTree(INode *root)
{
    struct Frame {
        INode *node;
        FeatureList_t features;
        size_t next;
    };
    std::vector<Frame> stack;
    std::unordered_set<INode *> onPath;
    auto enter = [&](INode *node) {
        printLine(node, stack.size());
        CCategoryPtr category(node);
        if (!category)
            return;
        Frame frame { node, {}, 0 };
        category->GetFeatures(frame.features);
        onPath.insert(node);
        stack.push_back(std::move(frame));
    };
    enter(root);
    while (!stack.empty()) {
        Frame &top = stack.back();
        if (top.next >= top.features.size()) {
            onPath.erase(top.node);
            stack.pop_back();
            continue;
        }
        INode *child = top.features[top.next++]->GetNode();
        if (!onPath.count(child))
            enter(child); // may grow the stack: `top` is not used after this
    }
}

int run(int argc, char **argv)
{
    std::string file;
    std::vector<std::pair<std::string, std::string>> writes;
    bool strict = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            std::cout << usage;
            return 0;
        }
        if (arg == "--strict") {
            strict = true;
        } else if (arg == "--set") {
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
    map._SetStrictLoading(strict);
    try {
        map._LoadXMLFromFile(file.c_str());
    } catch (const GenICam::GenericException &e) {
        std::cerr << "genapi-dump: cannot load " << file << ": " << e.GetDescription() << '\n';
        return 2;
    }
    for (const gcstring &warning : map._GetLoadWarnings())
        std::cerr << "genapi-dump: warning: " << warning << '\n';

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

    if (INode *root = map._GetNode("Root")) {
        printTree(root);
    } else {
        NodeList_t nodes;
        map._GetNodes(nodes);
        for (INode *node : nodes)
            if (node->IsFeature() || node->GetPrincipalInterfaceType() != intfIPort)
                std::cout << describe(node) << '\n';
    }
    return 0;
}

} // namespace

// Whatever goes wrong (memory exhausted by a hostile description, say) ends
// in one line and exit status 2, never in an abort.
int main(int argc, char **argv)
{
    try {
        return run(argc, argv);
    } catch (const GenICam::GenericException &e) {
        std::cerr << "genapi-dump: " << e.GetDescription() << '\n';
    } catch (const std::bad_alloc &) {
        std::cerr << "genapi-dump: out of memory\n";
    } catch (const std::exception &e) {
        std::cerr << "genapi-dump: " << e.what() << '\n';
    }
    return 2;
}
