// Any byte sequence given as a description either loads or throws a
// GenICam exception; a loaded map can be read without crashing.
#include <GenApi/GenApi.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace GenApi;
    CNodeMapRef map;
    try {
        map._LoadXMLFromString(std::string(reinterpret_cast<const char *>(data), size).c_str());
    } catch (const GenICam::GenericException &) {
        return 0;
    }
    const auto ports = ConnectMemoryPorts(map);
    NodeList_t nodes;
    map._GetNodes(nodes);
    for (INode *node : nodes) {
        try {
            CValuePtr value(node);
            if (value && IsReadable(node))
                value->FromString(value->ToString(), true);
        } catch (const GenICam::GenericException &) {
        }
    }
    map._Poll(1000);
    return 0;
}
