#include "gvcp.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>

namespace OrbCamImpl {

namespace {

void put16(uint8_t *at, uint16_t value)
{
    at[0] = static_cast<uint8_t>(value >> 8);
    at[1] = static_cast<uint8_t>(value);
}

void put32(uint8_t *at, uint32_t value)
{
    put16(at, static_cast<uint16_t>(value >> 16));
    put16(at + 2, static_cast<uint16_t>(value));
}

uint16_t get16(const uint8_t *at)
{
    return static_cast<uint16_t>((at[0] << 8) | at[1]);
}

uint16_t nextRequestId()
{
    static std::atomic<uint16_t> next { 1 };
    uint16_t id = next.fetch_add(1);
    return id == 0 ? next.fetch_add(1) : id;
}

struct Socket {
    int fd = -1;
    ~Socket()
    {
        if (fd >= 0)
            close(fd);
    }
};

} // namespace

std::array<uint8_t, GvcpForceIpSize> forceIpCommand(uint64_t mac, uint32_t ip, uint32_t mask,
                                                    uint32_t gateway, uint16_t requestId)
{
    std::array<uint8_t, GvcpForceIpSize> packet {};
    packet[0] = 0x42;
    packet[1] = 0x01; // acknowledge required
    put16(&packet[2], GvcpForceIpCommand);
    put16(&packet[4], GvcpForceIpSize - 8);
    put16(&packet[6], requestId);
    uint8_t *payload = &packet[8];
    put16(payload + 2, static_cast<uint16_t>(mac >> 32));
    put32(payload + 4, static_cast<uint32_t>(mac));
    put32(payload + 20, ip);
    put32(payload + 36, mask);
    put32(payload + 52, gateway);
    return packet;
}

int forceIpAckStatus(const uint8_t *bytes, size_t size, uint16_t requestId)
{
    if (size < 8 || get16(bytes + 2) != GvcpForceIpAck || get16(bytes + 6) != requestId)
        return -1;
    return get16(bytes);
}

OrbCamErr sendForceIp(unsigned interfaceIndex, uint32_t fromIp, uint64_t mac, uint32_t ip,
                      uint32_t mask, uint32_t gateway, uint32_t timeoutMs, uint16_t port)
{
    Socket s;
    s.fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (s.fd < 0)
        return OrbCamErrUnknown;
    const int on = 1;
    sockaddr_in local {};
    local.sin_family = AF_INET;
    local.sin_addr.s_addr = htonl(fromIp);
    if (setsockopt(s.fd, SOL_SOCKET, SO_BROADCAST, &on, sizeof on) != 0
        || bind(s.fd, reinterpret_cast<const sockaddr *>(&local), sizeof local) != 0)
        return OrbCamErrUnknown;

    const uint16_t requestId = nextRequestId();
    const auto packet = forceIpCommand(mac, ip, mask, gateway, requestId);
    sockaddr_in to {};
    to.sin_family = AF_INET;
    to.sin_port = htons(port);
    to.sin_addr.s_addr = htonl(INADDR_BROADCAST);
    // The limited broadcast leaves through the camera's interface, chosen
    // by index: the routing table would pick the default route's.
    auto send = [&]() {
        iovec data { const_cast<uint8_t *>(packet.data()), packet.size() };
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(in_pktinfo))] = {};
        msghdr message {};
        message.msg_name = &to;
        message.msg_namelen = sizeof to;
        message.msg_iov = &data;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        cmsghdr *header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = IPPROTO_IP;
        header->cmsg_type = IP_PKTINFO;
        header->cmsg_len = CMSG_LEN(sizeof(in_pktinfo));
        in_pktinfo info {};
        info.ipi_ifindex = static_cast<int>(interfaceIndex);
        info.ipi_spec_dst.s_addr = htonl(fromIp);
        std::memcpy(CMSG_DATA(header), &info, sizeof info);
        return sendmsg(s.fd, &message, 0) == static_cast<ssize_t>(packet.size());
    };

    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    const auto resendEvery = std::chrono::milliseconds(timeoutMs / 3 + 1);
    auto nextSend = Clock::now();
    for (;;) {
        const auto now = Clock::now();
        if (now >= deadline)
            return OrbCamErrNoDevice;
        if (now >= nextSend) {
            if (!send())
                return OrbCamErrUnknown;
            nextSend = now + resendEvery;
        }
        const auto wait = std::min(deadline, nextSend) - now;
        pollfd readable { s.fd, POLLIN, 0 };
        const int waitMs = static_cast<int>(
            std::chrono::duration_cast<std::chrono::milliseconds>(wait).count() + 1);
        if (poll(&readable, 1, waitMs) <= 0)
            continue;
        uint8_t answer[64];
        const ssize_t got = recv(s.fd, answer, sizeof answer, 0);
        if (got < 0)
            continue;
        const int status = forceIpAckStatus(answer, static_cast<size_t>(got), requestId);
        if (status == 0)
            return OrbCamOk;
        if (status > 0)
            return OrbCamErrInvalidState;
    }
}

} // namespace OrbCamImpl
