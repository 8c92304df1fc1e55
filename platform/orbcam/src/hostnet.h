// The host's IPv4 network interfaces, read from the system: GigE Vision
// interfaces show their address, mask and hardware address. Internal.
#ifndef ORBCAM_HOSTNET_H
#define ORBCAM_HOSTNET_H

#include <cstdint>
#include <string>
#include <vector>

namespace OrbCamImpl {

struct HostInterface {
    std::string name; // "eth0", "lo"
    unsigned index = 0; // the kernel's interface index
    uint32_t ip = 0, mask = 0; // most significant byte first
    uint64_t mac = 0; // 0 where there is none (loopback)
    bool loopback = false;
};

// Every interface that is up and has an IPv4 address, one entry per
// address, in the system's order. Empty when they cannot be read.
std::vector<HostInterface> hostInterfaces();

// "192.168.1.10" -> 0xC0A8010A; false for anything else.
bool parseIPv4(const std::string &text, uint32_t &address);
// 0xC0A8010A -> "192.168.1.10".
std::string ipv4Text(uint32_t address);
// "00:11:22:33:44:55" (or with '-') -> 0x001122334455; false otherwise.
bool parseMAC(const std::string &text, uint64_t &mac);

} // namespace OrbCamImpl

#endif
