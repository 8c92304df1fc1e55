// GigE Vision's control protocol, the part this library speaks itself:
// FORCEIP_CMD, which gives a camera found by its hardware address a new IP
// set-up even when it sits outside the host's subnet. Internal.
//
// Layout, from the GigE Vision standard: every command starts with an
// 8-byte header, multi-byte fields most significant byte first:
//   0  0x42 (the command key)
//   1  flags (0x01: an acknowledge is required)
//   2  command (FORCEIP_CMD 0x0004)
//   4  payload length in bytes (56)
//   6  request id (not 0)
// and the FORCEIP payload places the MAC address and three IPv4 fields in
// the last four bytes of 16-byte slots (room for IPv6):
//   0  reserved (2)   2 MAC, high 16 bits   4 MAC, low 32 bits
//   8  reserved (12)  20 static IP
//   24 reserved (12)  36 static subnet mask
//   40 reserved (12)  52 static default gateway
// The acknowledge is an 8-byte header: status (0 for success), answer
// (FORCEIP_ACK 0x0005), length (0), and the request id it answers.
#ifndef ORBCAM_GVCP_H
#define ORBCAM_GVCP_H

#include <OrbCam/OrbCamErr.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace OrbCamImpl {

constexpr uint16_t GvcpPort = 3956;
constexpr uint16_t GvcpForceIpCommand = 0x0004;
constexpr uint16_t GvcpForceIpAck = 0x0005;
constexpr size_t GvcpForceIpSize = 8 + 56;

std::array<uint8_t, GvcpForceIpSize> forceIpCommand(uint64_t mac, uint32_t ip, uint32_t mask,
                                                    uint32_t gateway, uint16_t requestId);

// The status of a FORCEIP_ACK for requestId in `bytes`, or -1 when they are
// not one.
int forceIpAckStatus(const uint8_t *bytes, size_t size, uint16_t requestId);

// Broadcasts FORCEIP_CMD (to 255.255.255.255, port `port`) out of the host
// interface with kernel index `interfaceIndex` and address `fromIp`, and
// waits up to timeoutMs for the camera's acknowledge, sending the command
// again twice meanwhile. OrbCamOk when the camera acknowledged;
// OrbCamErrNoDevice when nothing answered; OrbCamErrInvalidState when the
// camera refused (a non-zero status); OrbCamErrUnknown when the packet could
// not be sent. Blocks the calling thread for at most timeoutMs.
OrbCamErr sendForceIp(unsigned interfaceIndex, uint32_t fromIp, uint64_t mac, uint32_t ip,
                      uint32_t mask, uint32_t gateway, uint32_t timeoutMs,
                      uint16_t port = GvcpPort);

} // namespace OrbCamImpl

#endif
