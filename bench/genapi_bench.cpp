// Compares our GenICam interpreter with Aravis's on the same work: load a
// description from memory, walk every feature under Root reading its name,
// access mode and value as text (what genapi-dump prints), and destroy the
// map, over a device whose memory reads zeros. Runs alternate between the two
// in one process; the medians and their ratio are printed. Peak memory is
// measured for each side in a fresh process of its own.
//
//   genapi-bench [FILE] [--runs N]      (N >= 21, default 31)
//   genapi-bench FILE --peak-of ours|aravis|ours-loop [--runs N]
//                                        (one side alone, for the peak memory
//                                        figure or a profiler)
//
// Without FILE the largest description of the shared corpus is used; every
// corpus file is also loaded once to show that all of them load. Without
// Aravis (Debian: libaravis-dev libusb-1.0-0-dev) only our side is timed.
#include <GenApi/GenApi.h>

#ifdef ORB_HAVE_ARAVIS
#include <arv.h>
#endif

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <unordered_set>
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

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

std::string readFile(const fs::path &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

// A line of /proc/self/status in kilobytes ("VmRSS", "VmHWM").
long statusKb(const char *key)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    const std::string prefix = std::string(key) + ':';
    while (std::getline(status, line))
        if (line.compare(0, prefix.size(), prefix) == 0)
            return std::atol(line.c_str() + prefix.size());
    return -1;
}

// The peak resident memory one load and walk adds, measured in a fresh
// process (this program run with --peak-of SIDE FILE): a child forked from
// here would reuse memory this process already holds. -1 on failure.
long peakKbOf(const char *side, const fs::path &file)
{
    const std::string command = "/proc/" + std::to_string(getpid()) + "/exe --peak-of " + side
        + " '" + file.string() + "'";
    FILE *child = popen(command.c_str(), "r");
    if (!child)
        return -1;
    long grown = -1;
    if (std::fscanf(child, "%ld", &grown) != 1)
        grown = -1;
    pclose(child);
    return grown;
}

// What genapi-dump prints for one feature, as a byte count.
size_t describe(INode *node)
{
    size_t touched = node->GetName().size();
    try {
        const EAccessMode mode = node->GetAccessMode();
        touched += EAccessModeClass::ToString(mode).size();
        const EInterfaceType type = node->GetPrincipalInterfaceType();
        if (type == intfICategory || type == intfICommand || !IsReadable(mode))
            return touched;
        if (CValuePtr value = CValuePtr(node))
            touched += value->ToString().size();
    } catch (const GenICam::GenericException &e) {
        touched += std::strlen(e.GetDescription());
    }
    return touched;
}

// Load, walk everything under Root, destroy.
size_t ours(const std::string &xml)
{
    CNodeMapRef map;
    map._LoadXMLFromString(xml.c_str());
    const auto ports = ConnectMemoryPorts(map);
    size_t touched = 0;
    std::vector<INode *> pending { map._GetNode("Root") };
    std::unordered_set<INode *> seen;
    while (!pending.empty()) {
        INode *node = pending.back();
        pending.pop_back();
        if (!node || !seen.insert(node).second)
            continue;
        touched += describe(node);
        if (CCategoryPtr category = CCategoryPtr(node)) {
            FeatureList_t features;
            category->GetFeatures(features);
            for (auto it = features.rbegin(); it != features.rend(); ++it)
                pending.push_back((*it)->GetNode());
        }
    }
    return touched;
}

#ifdef ORB_HAVE_ARAVIS
// An Aravis device whose memory reads zeros and takes any write.
struct ZeroDevice {
    ArvDevice parent;
};
struct ZeroDeviceClass {
    ArvDeviceClass parent_class;
};
// GLib's type macro casts in C style.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
G_DEFINE_TYPE(ZeroDevice, zero_device, ARV_TYPE_DEVICE)
#pragma GCC diagnostic pop

gboolean zeroRead(ArvDevice *, guint64, guint32 size, void *buffer, GError **)
{
    std::memset(buffer, 0, size);
    return TRUE;
}
gboolean zeroWrite(ArvDevice *, guint64, guint32, void *, GError **)
{
    return TRUE;
}
gboolean zeroReadRegister(ArvDevice *, guint64, guint32 *value, GError **)
{
    *value = 0;
    return TRUE;
}
gboolean zeroWriteRegister(ArvDevice *, guint64, guint32, GError **)
{
    return TRUE;
}
void zero_device_init(ZeroDevice *) { }
void zero_device_class_init(ZeroDeviceClass *klass)
{
    ArvDeviceClass *device = ARV_DEVICE_CLASS(klass);
    device->read_memory = zeroRead;
    device->write_memory = zeroWrite;
    device->read_register = zeroReadRegister;
    device->write_register = zeroWriteRegister;
}

size_t aravis(ArvDevice *device, const std::string &xml)
{
    ArvGc *gc = arv_gc_new(device, xml.data(), xml.size());
    size_t touched = 0;
    std::vector<ArvGcNode *> pending { arv_gc_get_node(gc, "Root") };
    std::unordered_set<ArvGcNode *> seen;
    while (!pending.empty()) {
        ArvGcNode *node = pending.back();
        pending.pop_back();
        if (!node || !ARV_IS_GC_FEATURE_NODE(node) || !seen.insert(node).second)
            continue;
        ArvGcFeatureNode *feature = ARV_GC_FEATURE_NODE(node);
        const char *name = arv_gc_feature_node_get_name(feature);
        touched += name ? std::strlen(name) : 0;
        const ArvGcAccessMode mode = arv_gc_feature_node_get_actual_access_mode(feature);
        touched += static_cast<size_t>(mode);
        if (ARV_IS_GC_CATEGORY(node)) {
            std::vector<ArvGcNode *> children;
            for (const GSList *f = arv_gc_category_get_features(ARV_GC_CATEGORY(node)); f;
                 f = f->next)
                children.push_back(arv_gc_get_node(gc, static_cast<const char *>(f->data)));
            pending.insert(pending.end(), children.rbegin(), children.rend());
        } else if (!ARV_IS_GC_COMMAND(node)
                   && (mode == ARV_GC_ACCESS_MODE_RO || mode == ARV_GC_ACCESS_MODE_RW)) {
            GError *error = nullptr;
            const char *value = arv_gc_feature_node_get_value_as_string(feature, &error);
            if (error) {
                touched += std::strlen(error->message);
                g_clear_error(&error);
            } else if (value) {
                touched += std::strlen(value);
            }
        }
    }
    g_object_unref(gc);
    return touched;
}
#endif

} // namespace

int main(int argc, char **argv)
{
    fs::path file;
    int runs = 31;
    std::string peakOf;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--peak-of" && i + 1 < argc)
            peakOf = argv[++i];
        else if (arg == "--runs" && i + 1 < argc)
            runs = std::max(21, std::atoi(argv[++i]));
        else if (!arg.empty() && arg[0] == '-') {
            std::cerr << "usage: genapi-bench [FILE] [--runs N]\n";
            return 2;
        } else
            file = arg;
    }

    if (!peakOf.empty()) {
        const std::string xml = readFile(file);
        const long before = statusKb("VmRSS");
        size_t sink = 0;
#ifdef ORB_HAVE_ARAVIS
        if (peakOf == "aravis") {
            ArvDevice *device = ARV_DEVICE(g_object_new(zero_device_get_type(), nullptr));
            sink += aravis(device, xml);
            g_object_unref(device);
        }
#endif
        if (peakOf == "ours")
            sink += ours(xml);
        // For a profiler: many rounds of our side alone.
        if (peakOf == "ours-loop")
            for (int i = 0; i < runs; ++i)
                sink += ours(xml);
        std::printf("%ld\n", statusKb("VmHWM") - before);
        std::fprintf(stderr, "(checksum %zu)\n", sink);
        return 0;
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
            try {
                CNodeMapRef map;
                const double ms = millisecondsOf([&] { map._LoadXMLFromFile(p.c_str()); });
                std::printf("  %-40s %8.2f ms  %6llu nodes\n", p.filename().c_str(), ms,
                            static_cast<unsigned long long>(map._Ptr->GetNumNodes()));
            } catch (const GenICam::GenericException &e) {
                ++failures;
                std::printf("  %-40s FAILED: %s\n", p.filename().c_str(), e.GetDescription());
            }
        }
    }

    const std::string xml = readFile(file);
    try {
        ours(xml);
    } catch (const GenICam::GenericException &e) {
        std::cerr << "genapi-bench: cannot load " << file << ": " << e.GetDescription() << '\n';
        return 2;
    }
    std::printf("\n%s (%zu bytes): load, walk under Root reading every value, destroy;\n"
                "median of %d runs, alternating\n",
                file.filename().c_str(), xml.size(), runs);
    size_t sink = 0;
    std::vector<double> ourTimes;
#ifdef ORB_HAVE_ARAVIS
    ArvDevice *device = ARV_DEVICE(g_object_new(zero_device_get_type(), nullptr));
    std::vector<double> aravisTimes;
    for (int run = 0; run < runs; ++run) {
        // Alternate which side goes first, so that neither always runs on
        // the caches the other left.
        auto timeOurs = [&] { ourTimes.push_back(millisecondsOf([&] { sink += ours(xml); })); };
        auto timeAravis
            = [&] { aravisTimes.push_back(millisecondsOf([&] { sink += aravis(device, xml); })); };
        if (run % 2) {
            timeOurs();
            timeAravis();
        } else {
            timeAravis();
            timeOurs();
        }
    }
    const long ourPeak = peakKbOf("ours", file);
    const long aravisPeak = peakKbOf("aravis", file);
    g_object_unref(device);
    const double ourMedian = median(ourTimes);
    const double aravisMedian = median(aravisTimes);
    std::printf("  orbgenapi %8.2f ms   peak +%ld kB\n", ourMedian, ourPeak);
    std::printf("  aravis    %8.2f ms   peak +%ld kB\n", aravisMedian, aravisPeak);
    std::printf("  time ratio aravis / orbgenapi: %.1fx; peak memory ratio: %.2f\n",
                aravisMedian / ourMedian, double(aravisPeak) / double(ourPeak));
#else
    for (int run = 0; run < runs; ++run)
        ourTimes.push_back(millisecondsOf([&] { sink += ours(xml); }));
    std::printf("  orbgenapi %8.2f ms   peak +%ld kB\n", median(ourTimes), peakKbOf("ours", file));
    std::printf("  aravis    not installed (Debian: libaravis-dev libusb-1.0-0-dev)\n");
#endif
    std::fprintf(stderr, "(checksum %zu)\n", sink);
    return failures ? 1 : 0;
}
