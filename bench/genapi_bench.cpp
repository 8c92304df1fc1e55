// Loads and walks GenICam descriptions with our interpreter and, where it is
// installed, with Aravis's, and prints the times in milliseconds.
//
//   genapi-bench [FILE] [--runs N]
//
// Without FILE the largest description of the shared corpus is used; every
// corpus file is also loaded once to show that all of them load.
#include <GenApi/GenApi.h>

#ifdef ORB_HAVE_ARAVIS
#include <arv.h>
#endif

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace GenApi;
namespace fs = std::filesystem;

namespace {

double millisecondsOf(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

// The fastest of several runs: the least disturbed by the rest of the machine.
double best(int runs, const std::function<void()> &work)
{
    double fastest = 1e300;
    for (int i = 0; i < runs; ++i)
        fastest = std::min(fastest, millisecondsOf(work));
    return fastest;
}

std::string readFile(const fs::path &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

// Reads every feature once: metadata, access mode and the value as text.
size_t walk(CNodeMapRef &map)
{
    NodeList_t nodes;
    map._GetNodes(nodes);
    size_t touched = 0;
    for (INode *node : nodes) {
        touched += node->GetDisplayName().size() + node->GetToolTip().size()
            + node->GetDescription().size();
        CValuePtr value(node);
        if (!value)
            continue;
        try {
            if (IsReadable(node) && node->GetPrincipalInterfaceType() != intfICommand)
                touched += value->ToString().size();
        } catch (const GenICam::GenericException &) {
            ++touched; // zero-filled memory makes some values invalid
        }
    }
    return touched;
}

#ifdef ORB_HAVE_ARAVIS
size_t walkAravis(ArvGc *gc, ArvGcNode *node, int depth)
{
    if (!node || depth > 32)
        return 0;
    size_t touched = 0;
    if (ARV_IS_GC_FEATURE_NODE(node)) {
        ArvGcFeatureNode *feature = ARV_GC_FEATURE_NODE(node);
        for (const char *text : { arv_gc_feature_node_get_display_name(feature),
                                  arv_gc_feature_node_get_tooltip(feature),
                                  arv_gc_feature_node_get_description(feature) })
            touched += text ? std::char_traits<char>::length(text) : 0;
        touched += static_cast<size_t>(arv_gc_feature_node_get_visibility(feature));
    }
    if (ARV_IS_GC_CATEGORY(node)) {
        for (const GSList *f = arv_gc_category_get_features(ARV_GC_CATEGORY(node)); f; f = f->next)
            touched += walkAravis(gc, arv_gc_get_node(gc, static_cast<const char *>(f->data)),
                                  depth + 1);
    }
    return touched;
}
#endif

} // namespace

int main(int argc, char **argv)
{
    fs::path file;
    int runs = 10;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--runs" && i + 1 < argc)
            runs = std::max(1, std::atoi(argv[++i]));
        else
            file = arg;
    }

    const fs::path corpus = ORB_CORPUS_DIR;
    std::vector<fs::path> corpusFiles;
    if (fs::is_directory(corpus)) {
        for (const auto &entry : fs::directory_iterator(corpus)) {
            const std::string ext = entry.path().extension().string();
            if (ext == ".xml" || ext == ".zip")
                corpusFiles.push_back(entry.path());
        }
        std::sort(corpusFiles.begin(), corpusFiles.end());
    }
    if (file.empty()) {
        for (const fs::path &p : corpusFiles)
            if (p.extension() == ".xml" && (file.empty() || fs::file_size(p) > fs::file_size(file)))
                file = p;
    }
    if (file.empty()) {
        std::cerr << "genapi-bench: no description given and no corpus at " << corpus << '\n';
        return 2;
    }

    int failures = 0;
    if (!corpusFiles.empty()) {
        std::printf("corpus: load once each\n");
        for (const fs::path &p : corpusFiles) {
            double ms = 0;
            try {
                CNodeMapRef map;
                ms = millisecondsOf([&] { map._LoadXMLFromFile(p.c_str()); });
                std::printf("  %-40s %8.2f ms  %6llu nodes\n", p.filename().c_str(), ms,
                            static_cast<unsigned long long>(map._Ptr->GetNumNodes()));
            } catch (const GenICam::GenericException &e) {
                ++failures;
                std::printf("  %-40s FAILED: %s\n", p.filename().c_str(), e.GetDescription());
            }
        }
    }

    const std::string xml = readFile(file);
    std::printf("\n%s (%zu bytes), best of %d runs\n", file.filename().c_str(), xml.size(), runs);

    const double ourLoad = best(runs, [&] {
        CNodeMapRef map;
        map._LoadXMLFromString(xml.c_str());
    });
    CNodeMapRef map;
    map._LoadXMLFromString(xml.c_str());
    const auto ports = ConnectMemoryPorts(map);
    size_t sink = 0;
    const double ourWalk = best(runs, [&] {
        map._InvalidateNodes();
        sink += walk(map);
    });
    std::printf("  orbgenapi  load %8.2f ms   walk (read every feature) %8.2f ms\n", ourLoad,
                ourWalk);

#ifdef ORB_HAVE_ARAVIS
    const double aravisLoad = best(runs, [&] {
        ArvGc *gc = arv_gc_new(nullptr, xml.data(), xml.size());
        g_object_unref(gc);
    });
    ArvGc *gc = arv_gc_new(nullptr, xml.data(), xml.size());
    const double aravisWalk
        = best(runs, [&] { sink += walkAravis(gc, arv_gc_get_node(gc, "Root"), 0); });
    g_object_unref(gc);
    std::printf("  aravis     load %8.2f ms   walk (metadata only)      %8.2f ms\n", aravisLoad,
                aravisWalk);
    std::printf("  load ratio aravis / orbgenapi: %.1fx\n", aravisLoad / ourLoad);
#else
    std::printf("  aravis     not installed (Debian: libaravis-dev libusb-1.0-0-dev)\n");
#endif
    std::fprintf(stderr, "(checksum %zu)\n", sink);
    return failures ? 1 : 0;
}
