// GigE Vision's control protocol, the part this library speaks itself:
// FORCEIP_CMD, which gives a camera found by its hardware address a new IP
// set-up even when it sits outside the host's subnet; DISCOVERY_CMD, whose
// acknowledge carries what Aravis's discovery does not pass on (the
// camera's mask, gateway, version and user-defined name); READREG_CMD, to
// read the control channel privilege register without taking control.
// Every acknowledge comes from the network, where anything may answer: the
// parsers take any bytes and accept only a well-formed answer to the
// request they wait for. Internal.
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
//
// DISCOVERY_CMD (0x0002) has no payload; its flags add 0x10 (the answer may
// be broadcast). DISCOVERY_ACK (0x0003) has a payload of 248 bytes, the
// first 248 bytes of the camera's bootstrap registers:
//   0x00 version (major 2, minor 2)   0x04 device mode
//   0x0A MAC, high 16 bits            0x0C MAC, low 32 bits
//   0x10 IP options supported         0x14 IP options current
//   0x24 current IP (in the last four bytes of a 16-byte slot)
//   0x34 current subnet mask          0x44 current default gateway
//   0x48 manufacturer name (32)       0x68 model name (32)
//   0x88 device version (32)          0xA8 manufacturer information (48)
//   0xD8 serial number (16)           0xE8 user-defined name (16)
// The strings end at their first NUL or fill their field.
//
// READMEM_CMD (0x0084) carries a 4-byte address, 2 reserved bytes and a
// 2-byte count (a multiple of 4, at most 536); READMEM_ACK (0x0085) the
// address and then the bytes read.
//
// READREG_CMD (0x0080) carries 4-byte register addresses; READREG_ACK
// (0x0081) the 4-byte values, as many as were asked (fewer when the status
// is not 0). The control channel privilege register (CCP, 0x0A00) has
// exclusive access in its lowest bit (0x1) and control access in the next
// (0x2): either is set while an application controls the camera.
#ifndef ORBCAM_GVCP_H
#define ORBCAM_GVCP_H

#include <OrbCam/OrbCamErr.h>

#include <array>
#include <atomic>
#include <functional>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace OrbCamImpl {

constexpr uint16_t GvcpPort = 3956;
constexpr uint16_t GvcpForceIpCommand = 0x0004;
constexpr uint16_t GvcpForceIpAck = 0x0005;
constexpr size_t GvcpForceIpSize = 8 + 56;
constexpr uint16_t GvcpDiscoveryCommand = 0x0002;
constexpr uint16_t GvcpDiscoveryAck = 0x0003;
constexpr size_t GvcpDiscoveryAckPayload = 248;
constexpr uint16_t GvcpReadRegCommand = 0x0080;
constexpr uint16_t GvcpReadRegAck = 0x0081;
constexpr uint32_t GvcpCcpRegister = 0x0A00;
constexpr uint16_t GvcpReadMemCommand = 0x0084;
constexpr uint16_t GvcpReadMemAck = 0x0085;
// The most READMEM asks for at once: what fits an acknowledge of 576 bytes.
constexpr uint16_t GvcpReadMemLargest = 512;

// What a camera says of itself in its DISCOVERY_ACK.
struct GvcpCamera {
    uint64_t mac = 0;
    uint32_t ip = 0, mask = 0, gateway = 0;
    std::string vendor, model, version, manufacturerInfo, serial, userName;
};

std::array<uint8_t, GvcpForceIpSize> forceIpCommand(uint64_t mac, uint32_t ip, uint32_t mask,
                                                    uint32_t gateway, uint16_t requestId);

// The status of a FORCEIP_ACK for requestId in `bytes`, or -1 when they are
// not one.
int forceIpAckStatus(const uint8_t *bytes, size_t size, uint16_t requestId);

std::array<uint8_t, 8> discoveryCommand(uint16_t requestId);
// The camera a DISCOVERY_ACK for requestId describes; false for anything
// else (another request, an error status, a short or malformed packet).
bool parseDiscoveryAck(const uint8_t *bytes, size_t size, uint16_t requestId, GvcpCamera *camera);

std::array<uint8_t, 12> readRegisterCommand(uint32_t address, uint16_t requestId);
// The register value a READREG_ACK for requestId carries: 0 with *value
// set; the camera's non-zero status when it refused; -1 when the bytes are
// no such answer.
int parseReadRegisterAck(const uint8_t *bytes, size_t size, uint16_t requestId, uint32_t *value);

std::array<uint8_t, 16> readMemoryCommand(uint32_t address, uint16_t count, uint16_t requestId);
// The bytes a READMEM_ACK for requestId carries for `address`: 0 with count
// bytes copied to data; the camera's non-zero status when it refused; -1
// when the bytes are no such answer (another request or address, too few
// bytes).
int parseReadMemoryAck(const uint8_t *bytes, size_t size, uint16_t requestId, uint32_t address,
                       uint8_t *data, size_t count);

// Broadcasts DISCOVERY_CMD out of the host interface (index, address) and
// hands each camera that answers to `found`, once (by MAC and address), until timeoutMs
// has passed or *stop is set (by `found` or by another thread's discovery:
// every camera expected has answered). Blocks for at most timeoutMs.
void discoverCameras(unsigned interfaceIndex, uint32_t fromIp, uint32_t timeoutMs,
                     const std::function<void(const GvcpCamera &)> &found,
                     const std::atomic<bool> *stop = nullptr, uint16_t port = GvcpPort);

// Reads one register of the camera at cameraIp without taking control.
// OrbCamOk with *value; OrbCamErrNoDevice when nothing answered in time;
// OrbCamErrInvalidState when the camera refused; OrbCamErrUnknown when the
// packet could not be sent. Blocks for at most timeoutMs.
OrbCamErr readRegister(uint32_t cameraIp, uint32_t address, uint32_t *value, uint32_t timeoutMs,
                       uint16_t port = GvcpPort);

// Reads `length` bytes of the camera's memory at `address` without taking
// control (any alignment: whole 4-byte words are asked for, in pieces of at
// most GvcpReadMemLargest), each piece asked again twice within timeoutMs.
// OrbCamOk with the bytes in buffer; OrbCamErrNoDevice when a piece got no
// answer in time; OrbCamErrInvalidState when the camera refused, its status
// in *refusal (may be null); OrbCamErrUnknown when nothing could be sent.
// Once *stop is set (by another thread) the read ends at once, as with no
// answer.
OrbCamErr readMemory(uint32_t cameraIp, uint64_t address, void *buffer, size_t length,
                     uint32_t timeoutMs, uint16_t *refusal = nullptr,
                     const std::atomic<bool> *stop = nullptr, uint16_t port = GvcpPort);

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
