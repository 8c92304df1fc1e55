#include "hostnet.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace OrbCamImpl {

namespace {

uint64_t hardwareAddress(int socket, const char *name)
{
    ifreq request {};
    std::strncpy(request.ifr_name, name, IFNAMSIZ - 1);
    if (ioctl(socket, SIOCGIFHWADDR, &request) != 0)
        return 0;
    uint64_t mac = 0;
    for (int i = 0; i < 6; ++i)
        mac = (mac << 8) | static_cast<uint8_t>(request.ifr_hwaddr.sa_data[i]);
    return mac;
}

uint32_t ipv4Of(const sockaddr *address)
{
    sockaddr_in in {};
    std::memcpy(&in, address, sizeof in);
    return ntohl(in.sin_addr.s_addr);
}

} // namespace

std::vector<HostInterface> hostInterfaces()
{
    std::vector<HostInterface> result;
    ifaddrs *all = nullptr;
    if (getifaddrs(&all) != 0)
        return result;
    const int probe = socket(AF_INET, SOCK_DGRAM, 0);
    for (const ifaddrs *a = all; a; a = a->ifa_next) {
        if (!a->ifa_addr || a->ifa_addr->sa_family != AF_INET || !(a->ifa_flags & IFF_UP))
            continue;
        HostInterface host;
        host.name = a->ifa_name;
        host.index = if_nametoindex(a->ifa_name);
        host.ip = ipv4Of(a->ifa_addr);
        host.mask = a->ifa_netmask ? ipv4Of(a->ifa_netmask) : 0xFFFFFFFFu;
        host.loopback = (a->ifa_flags & IFF_LOOPBACK) != 0;
        host.mac = probe >= 0 && !host.loopback ? hardwareAddress(probe, a->ifa_name) : 0;
        result.push_back(host);
    }
    if (probe >= 0)
        close(probe);
    freeifaddrs(all);
    return result;
}

bool parseIPv4(const std::string &text, uint32_t &address)
{
    in_addr in {};
    if (inet_pton(AF_INET, text.c_str(), &in) != 1)
        return false;
    address = ntohl(in.s_addr);
    return true;
}

std::string ipv4Text(uint32_t address)
{
    char text[16];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", address >> 24, (address >> 16) & 0xFF,
                  (address >> 8) & 0xFF, address & 0xFF);
    return text;
}

bool parseMAC(const std::string &text, uint64_t &mac)
{
    unsigned bytes[6];
    char separators[5];
    char rest;
    if (std::sscanf(text.c_str(), "%2x%c%2x%c%2x%c%2x%c%2x%c%2x%c", &bytes[0], &separators[0],
                    &bytes[1], &separators[1], &bytes[2], &separators[2], &bytes[3], &separators[3],
                    &bytes[4], &separators[4], &bytes[5], &rest)
        != 11)
        return false;
    for (char s : separators)
        if (s != ':' && s != '-')
            return false;
    mac = 0;
    for (unsigned b : bytes)
        mac = (mac << 8) | b;
    return true;
}

} // namespace OrbCamImpl
