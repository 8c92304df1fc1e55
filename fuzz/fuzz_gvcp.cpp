// The GigE Vision acknowledge parsers on any bytes, as anything on the
// network may answer: no crash, no read past the packet, and a packet taken
// as a discovery answer yields printable texts within their fields.
#include "gvcp.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace OrbCamImpl;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // The request id the parsers wait for comes from the packet itself half
    // of the time, so that well-formed answers are reached.
    const uint16_t request = size >= 8 && (data[0] & 1) ? uint16_t((data[6] << 8) | data[7]) : 1;
    GvcpCamera camera;
    if (parseDiscoveryAck(data, size, request, &camera)) {
        for (const std::string *text :
             { &camera.vendor, &camera.model, &camera.version, &camera.manufacturerInfo,
               &camera.serial, &camera.userName })
            for (char c : *text)
                if (c < 0x20 || c > 0x7E)
                    std::abort();
        if (camera.vendor.size() > 32 || camera.manufacturerInfo.size() > 48
            || camera.userName.size() > 16)
            std::abort();
    }
    uint32_t value = 0;
    const int status = parseReadRegisterAck(data, size, request, &value);
    if (status < -1 || status > 0xFFFF)
        std::abort();
    uint8_t memory[16];
    const int readMem = parseReadMemoryAck(data, size, request, 0x100, memory, sizeof memory);
    if (readMem < -1 || readMem > 0xFFFF)
        std::abort();
    const int forced = forceIpAckStatus(data, size, request);
    if (forced < -1 || forced > 0xFFFF)
        std::abort();
    return 0;
}
