#include "gvcp.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
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

uint32_t get32(const uint8_t *at)
{
    return (uint32_t(get16(at)) << 16) | get16(at + 2);
}

// A fixed-size text field: up to its first NUL, without what cannot be
// shown (a camera may fill a field with anything).
std::string text(const uint8_t *at, size_t size)
{
    std::string result;
    for (size_t i = 0; i < size && at[i] != 0; ++i)
        result += (at[i] >= 0x20 && at[i] < 0x7F) ? static_cast<char>(at[i]) : '?';
    return result;
}

// The 8-byte header of an acknowledge that answers `answer` to requestId,
// with its payload length; false for anything else.
bool ackHeader(const uint8_t *bytes, size_t size, uint16_t answer, uint16_t requestId,
               uint16_t *status, size_t *payload)
{
    if (!bytes || size < 8 || get16(bytes + 2) != answer || get16(bytes + 6) != requestId)
        return false;
    *status = get16(bytes);
    *payload = get16(bytes + 4);
    // A length beyond the bytes that came is a truncated packet.
    return *payload <= size - 8;
}

// Every command's 8-byte header.
void commandHeader(uint8_t *packet, uint8_t flags, uint16_t command, size_t length,
                   uint16_t requestId)
{
    packet[0] = 0x42;
    packet[1] = flags;
    put16(packet + 2, command);
    put16(packet + 4, static_cast<uint16_t>(length));
    put16(packet + 6, requestId);
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
    commandHeader(packet.data(), 0x01 /* acknowledge required */, GvcpForceIpCommand,
                  GvcpForceIpSize - 8, requestId);
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
    if (!bytes || size < 8 || get16(bytes + 2) != GvcpForceIpAck || get16(bytes + 6) != requestId)
        return -1;
    return get16(bytes);
}

std::array<uint8_t, 8> discoveryCommand(uint16_t requestId)
{
    std::array<uint8_t, 8> packet {};
    // Acknowledge required, and it may come as a broadcast.
    commandHeader(packet.data(), 0x11, GvcpDiscoveryCommand, 0, requestId);
    return packet;
}

bool parseDiscoveryAck(const uint8_t *bytes, size_t size, uint16_t requestId, GvcpCamera *camera)
{
    uint16_t status = 0;
    size_t payload = 0;
    if (!ackHeader(bytes, size, GvcpDiscoveryAck, requestId, &status, &payload) || status != 0
        || payload < GvcpDiscoveryAckPayload)
        return false;
    const uint8_t *p = bytes + 8;
    GvcpCamera c;
    c.mac = (uint64_t(get16(p + 0x0A)) << 32) | get32(p + 0x0C);
    c.ip = get32(p + 0x24);
    c.mask = get32(p + 0x34);
    c.gateway = get32(p + 0x44);
    c.vendor = text(p + 0x48, 32);
    c.model = text(p + 0x68, 32);
    c.version = text(p + 0x88, 32);
    c.manufacturerInfo = text(p + 0xA8, 48);
    c.serial = text(p + 0xD8, 16);
    c.userName = text(p + 0xE8, 16);
    *camera = std::move(c);
    return true;
}

std::array<uint8_t, 12> readRegisterCommand(uint32_t address, uint16_t requestId)
{
    std::array<uint8_t, 12> packet {};
    commandHeader(packet.data(), 0x01, GvcpReadRegCommand, 4, requestId);
    put32(&packet[8], address);
    return packet;
}

int parseReadRegisterAck(const uint8_t *bytes, size_t size, uint16_t requestId, uint32_t *value)
{
    uint16_t status = 0;
    size_t payload = 0;
    if (!ackHeader(bytes, size, GvcpReadRegAck, requestId, &status, &payload))
        return -1;
    if (status != 0)
        return status;
    if (payload < 4)
        return -1;
    *value = get32(bytes + 8);
    return 0;
}

std::array<uint8_t, 16> readMemoryCommand(uint32_t address, uint16_t count, uint16_t requestId)
{
    std::array<uint8_t, 16> packet {};
    commandHeader(packet.data(), 0x01, GvcpReadMemCommand, 8, requestId);
    put32(&packet[8], address);
    put16(&packet[14], count);
    return packet;
}

int parseReadMemoryAck(const uint8_t *bytes, size_t size, uint16_t requestId, uint32_t address,
                       uint8_t *data, size_t count)
{
    uint16_t status = 0;
    size_t payload = 0;
    if (!ackHeader(bytes, size, GvcpReadMemAck, requestId, &status, &payload))
        return -1;
    if (status != 0)
        return status;
    if (payload < 4 + count || get32(bytes + 8) != address)
        return -1;
    std::memcpy(data, bytes + 12, count);
    return 0;
}

namespace {

// Sends `packet` to `toIp` (the limited broadcast leaves through the host
// interface `interfaceIndex`, chosen by index: the routing table would pick
// the default route's; 0 lets the routing table choose), again every third
// of the time, and hands every answer to `answered` until it returns true
// or timeoutMs has passed. OrbCamErrUnknown when nothing could be sent.
template <size_t N, class Answered>
OrbCamErr exchange(const std::array<uint8_t, N> &packet, unsigned interfaceIndex, uint32_t fromIp,
                   uint32_t toIp, uint16_t port, uint32_t timeoutMs, Answered answered,
                   const std::atomic<bool> *stop = nullptr)
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
    sockaddr_in to {};
    to.sin_family = AF_INET;
    to.sin_port = htons(port);
    to.sin_addr.s_addr = htonl(toIp);
    auto send = [&]() {
        iovec data { const_cast<uint8_t *>(packet.data()), packet.size() };
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(in_pktinfo))] = {};
        msghdr message {};
        message.msg_name = &to;
        message.msg_namelen = sizeof to;
        message.msg_iov = &data;
        message.msg_iovlen = 1;
        if (interfaceIndex == 0)
            return sendmsg(s.fd, &message, 0) == static_cast<ssize_t>(packet.size());
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
        if (now >= deadline || (stop && *stop))
            return OrbCamOk;
        if (now >= nextSend) {
            if (!send())
                return OrbCamErrUnknown;
            nextSend = now + resendEvery;
        }
        // Short slices with a stop to watch: another thread may end it.
        const auto wait = std::min(
            { deadline - now, nextSend - now,
              stop ? Clock::duration(std::chrono::milliseconds(20)) : Clock::duration::max() });
        pollfd readable { s.fd, POLLIN, 0 };
        const int waitMs = static_cast<int>(
            std::chrono::duration_cast<std::chrono::milliseconds>(wait).count() + 1);
        if (poll(&readable, 1, waitMs) <= 0)
            continue;
        // Larger than any answer: a longer datagram is cut and found short.
        uint8_t answer[1024];
        const ssize_t got = recv(s.fd, answer, sizeof answer, 0);
        if (got >= 0 && answered(answer, static_cast<size_t>(got)))
            return OrbCamOk;
    }
}

} // namespace

OrbCamErr readMemory(uint32_t cameraIp, uint64_t address, void *buffer, size_t length,
                     uint32_t timeoutMs, uint16_t *refusal, const std::atomic<bool> *stop,
                     uint16_t port)
{
    if (length == 0)
        return OrbCamOk;
    const uint64_t first = address & ~uint64_t(3);
    const uint64_t end = (address + length + 3) & ~uint64_t(3);
    if (end > uint64_t(UINT32_MAX) + 1)
        return OrbCamErrInvalidState;
    auto *out = static_cast<uint8_t *>(buffer);
    uint8_t piece[GvcpReadMemLargest];
    for (uint64_t at = first; at < end; at += GvcpReadMemLargest) {
        const auto count = static_cast<uint16_t>(std::min<uint64_t>(GvcpReadMemLargest, end - at));
        const uint16_t requestId = nextRequestId();
        int status = -1;
        const OrbCamErr sent = exchange(
            readMemoryCommand(static_cast<uint32_t>(at), count, requestId), 0, INADDR_ANY, cameraIp,
            port, timeoutMs,
            [&](const uint8_t *answer, size_t size) {
                status = parseReadMemoryAck(answer, size, requestId, static_cast<uint32_t>(at),
                                            piece, count);
                return status >= 0;
            },
            stop);
        if (sent != OrbCamOk)
            return sent;
        if (status < 0)
            return OrbCamErrNoDevice;
        if (status > 0) {
            if (refusal)
                *refusal = static_cast<uint16_t>(status);
            return OrbCamErrInvalidState;
        }
        // The part of this piece that was asked for.
        const uint64_t from = std::max(at, address);
        const uint64_t to = std::min<uint64_t>(at + count, address + length);
        std::memcpy(out + (from - address), piece + (from - at), static_cast<size_t>(to - from));
    }
    return OrbCamOk;
}

OrbCamErr sendForceIp(unsigned interfaceIndex, uint32_t fromIp, uint64_t mac, uint32_t ip,
                      uint32_t mask, uint32_t gateway, uint32_t timeoutMs, uint16_t port)
{
    const uint16_t requestId = nextRequestId();
    int status = -1;
    const OrbCamErr sent
        = exchange(forceIpCommand(mac, ip, mask, gateway, requestId), interfaceIndex, fromIp,
                   INADDR_BROADCAST, port, timeoutMs, [&](const uint8_t *answer, size_t size) {
                       status = forceIpAckStatus(answer, size, requestId);
                       return status >= 0;
                   });
    if (sent != OrbCamOk)
        return sent;
    return status < 0 ? OrbCamErrNoDevice : status == 0 ? OrbCamOk : OrbCamErrInvalidState;
}

void discoverCameras(unsigned interfaceIndex, uint32_t fromIp, uint32_t timeoutMs,
                     const std::function<void(const GvcpCamera &)> &found,
                     const std::atomic<bool> *stop, uint16_t port)
{
    const uint16_t requestId = nextRequestId();
    // A camera by MAC and address: a MAC of 0 is no identity.
    std::vector<std::pair<uint64_t, uint32_t>> seen;
    exchange(
        discoveryCommand(requestId), interfaceIndex, fromIp, INADDR_BROADCAST, port, timeoutMs,
        [&](const uint8_t *answer, size_t size) {
            GvcpCamera camera;
            if (parseDiscoveryAck(answer, size, requestId, &camera)
                && std::find(seen.begin(), seen.end(), std::make_pair(camera.mac, camera.ip))
                    == seen.end()) {
                seen.emplace_back(camera.mac, camera.ip);
                found(camera);
            }
            return false; // every camera that answers in time
        },
        stop);
}

OrbCamErr readRegister(uint32_t cameraIp, uint32_t address, uint32_t *value, uint32_t timeoutMs,
                       uint16_t port)
{
    const uint16_t requestId = nextRequestId();
    int status = -1;
    const OrbCamErr sent
        = exchange(readRegisterCommand(address, requestId), 0, INADDR_ANY, cameraIp, port,
                   timeoutMs, [&](const uint8_t *answer, size_t size) {
                       status = parseReadRegisterAck(answer, size, requestId, value);
                       return status >= 0;
                   });
    if (sent != OrbCamOk)
        return sent;
    return status < 0 ? OrbCamErrNoDevice : status == 0 ? OrbCamOk : OrbCamErrInvalidState;
}

} // namespace OrbCamImpl
