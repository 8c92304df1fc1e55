// Real GigE Vision and USB3 Vision cameras: Aravis finds them and carries
// their register reads and writes; the descriptions they serve are read by
// our own interpreter. Aravis is reached from this file only (its headers
// bring GLib's `signals` member, which a Qt build would take for a keyword).
#include "backend.h"
#include "gvcp.h"
#include "hostnet.h"
#include "interfacefeatures.h"
#include "opendevices.h"
#include "paramarray.h"

#include <arv.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <deque>
#include <future>
#include <map>
#include <optional>

using namespace GenApi;

namespace OrbCamImpl {

namespace {

// Aravis's discovery keeps its results in the interface objects it shares
// with every caller, and the next update frees the strings of the last one:
// discovery and opening run one at a time, and everything is copied at once.
std::mutex &aravisMutex()
{
    static std::mutex mutex;
    return mutex;
}

std::string copy(const char *text)
{
    return text ? std::string(text) : std::string();
}

// GigE Vision cameras are found by our own discovery, one host address at a
// time and each for as long as its caller allows (Aravis's own discovery
// asks every address one after the other, a second each, and cannot be cut
// short). A camera on the link answers within milliseconds; the privilege
// reads that follow wait at most this long.
constexpr uint32_t GvcpAnswerTimeoutMs = 500;
constexpr uint32_t GvcpShortestDiscoveryMs = 50;
constexpr uint32_t GvcpLongestDiscoveryMs = 5000;

// An open GigE Vision camera is asked every LivenessPeriodMs whether it still
// answers, waiting answerTimeout().ms for each answer; answerTimeout().misses
// answers missed in a row make it lost.
constexpr uint32_t LivenessPeriodMs = 500;

class AravisSystem;
class AravisInterface;

// Text handed out as a const char * that stays valid as long as the camera:
// a change keeps the old text (changes are rare: a user name set, a model
// name read anew), so a reader on another thread, the GUI's among them, sees
// the old text or the new one, never freed memory.
class StableText {
public:
    const char *get() const { return m_current.load(std::memory_order_acquire); }
    // One writer at a time (the system's state lock).
    void set(const std::string &text)
    {
        if (text == m_current.load(std::memory_order_relaxed))
            return;
        m_kept.push_back(text);
        m_current.store(m_kept.back().c_str(), std::memory_order_release);
    }

private:
    std::deque<std::string> m_kept;
    std::atomic<const char *> m_current { "" };
};

// One camera a discovery has reported; kept, like every DeviceInfo, as long
// as the system, and found again by its identifier.
class AravisCamera final : public OrbCam::DeviceInfo {
public:
    struct Seen {
        std::string id, physicalId, address, vendor, model, serial, protocol;
    };

    AravisCamera(AravisSystem &system, bool gigE, const Seen &seen)
        : m_system(system)
        , m_gigE(gigE)
        , m_aravisId(seen.id)
    {
        m_id.set((gigE ? "GEV/" : "U3V/") + seen.id);
        update(seen);
    }

    const char *GetID() const override { return m_id.get(); }
    const char *GetDisplayName() const override { return m_displayName.get(); }
    const char *GetVendor() const override { return m_vendor.get(); }
    const char *GetModel() const override { return m_model.get(); }
    const char *GetSerialNumber() const override { return m_serial.get(); }
    const char *GetVersion() const override { return m_version.get(); }
    const char *GetUserName() const override { return m_userName.get(); }
    uint32_t GetAccessStatus() const override;
    OrbCam::Interface *GetInterface() const override;
    uint32_t GetIndex() const override;
    OrbCamErr ForceIP(uint32_t address, uint32_t mask, uint32_t gateway) override;

    // With the system's state lock held.
    void update(const Seen &seen)
    {
        m_vendor.set(seen.vendor);
        m_model.set(seen.model);
        m_serial.set(seen.serial);
        m_displayName.set(seen.model.empty() ? seen.id : seen.model + " (" + seen.serial + ")");
        parseIPv4(seen.address, m_ip);
        parseMAC(seen.physicalId, m_mac);
    }
    // With the system's state lock held: what the camera said of itself in
    // our own discovery.
    void said(const GvcpCamera &camera)
    {
        m_said = camera;
        m_version.set(camera.version);
        m_userName.set(camera.userName);
    }
    const GvcpCamera &said() const { return m_said; }
    // The discovery's identifier; never changes.
    const std::string &aravisId() const { return m_aravisId; }
    bool gigE() const { return m_gigE; }
    // With the system's state lock held.
    uint32_t ip() const { return m_ip; }
    uint64_t mac() const { return m_mac; }
    // Takes the state lock.
    uint32_t currentIp() const;

    // Whether the last discovery saw it, and where.
    bool present = false;
    AravisInterface *owner = nullptr;
    bool inSubnet = true;
    // What another application's hold leaves us (read from the camera's
    // privilege register): AccessReadWrite when none.
    uint32_t held = OrbCam::AccessReadWrite;

private:
    AravisSystem &m_system;
    const bool m_gigE;
    const std::string m_aravisId;
    GvcpCamera m_said;
    StableText m_id, m_displayName, m_vendor, m_model, m_serial, m_version, m_userName;
    uint32_t m_ip = 0;
    uint64_t m_mac = 0;
};

class AravisInterface final : public InterfaceFeatures {
public:
    AravisInterface(AravisSystem &system, HostSide host, const HostInterface &network)
        : InterfaceFeatures(std::move(host))
        , m_system(system)
        , m_network(network)
    {
    }

    OrbCamErr UpdateDeviceList(bool *changed, uint32_t timeoutMs) override;
    OrbCam::DeviceInfoList *GetDeviceInfoList() override
    {
        std::lock_guard<std::recursive_mutex> lock(m_mutex);
        return new DeviceInfoVector(m_found, true);
    }

    bool gigE() const { return m_host.type == OrbCam::InterfaceGigEVision; }
    const HostInterface &network() const { return m_network; }
    bool contains(uint32_t ip) const
    {
        return (ip & m_network.mask) == (m_network.ip & m_network.mask);
    }
    // The discovery's result for this interface; *changed when it differs.
    void setFound(std::vector<OrbCam::DeviceInfo *> found, bool *changed)
    {
        std::lock_guard<std::recursive_mutex> lock(m_mutex);
        if (changed)
            *changed = found != m_found;
        m_found = std::move(found);
    }
    uint32_t indexOf(const OrbCam::DeviceInfo *camera) const
    {
        std::lock_guard<std::recursive_mutex> lock(m_mutex);
        auto it = std::find(m_found.begin(), m_found.end(), camera);
        return it == m_found.end() ? UINT32_MAX : static_cast<uint32_t>(it - m_found.begin());
    }

protected:
    const std::vector<OrbCam::DeviceInfo *> &found() const override { return m_found; }
    CameraNetwork networkOf(const OrbCam::DeviceInfo *info) const override
    {
        const auto *camera = static_cast<const AravisCamera *>(info);
        CameraNetwork network;
        std::lock_guard<std::mutex> lock(stateMutex());
        network.mac = camera->mac();
        network.ip = camera->ip();
        // Aravis's discovery does not pass the mask and gateway on; our own
        // does, where the camera answered it.
        network.mask = camera->said().mask;
        network.gateway = camera->said().gateway;
        return network;
    }

private:
    std::mutex &stateMutex() const;

    AravisSystem &m_system;
    HostInterface m_network;
    std::vector<OrbCam::DeviceInfo *> m_found;
};

class AravisDevice;
// On the event thread: whether an open camera still answers, and whether a
// lost one answers again (AravisDevice::check).
void checkDevice(EventTarget *device);

class AravisSystem final : public Backend {
public:
    AravisSystem();
    ~AravisSystem() override;

    OrbCam::InterfaceList *GetInterfaces(uint32_t typeMask) override
    {
        std::vector<OrbCam::Interface *> all;
        for (const auto &i : m_interfaces)
            all.push_back(i.get());
        return m_lists.select(all, typeMask);
    }
    std::unique_ptr<PendingOpen> prepareOpen(OrbCam::DeviceInfo *info, uint32_t access,
                                             OrbCamErr &err) override;
    bool closeDevice(OrbCam::Device *device) override;

    // Our own GigE Vision discovery out of one host address, for at most
    // timeoutMs (and as long again for the privilege reads); every GigE
    // Vision interface's list follows, *changed for the asking one's.
    void discoverGigE(AravisInterface *asking, bool *changed, uint32_t timeoutMs);
    // Aravis's USB3 Vision discovery (no network: it does not wait).
    void discoverUsb(AravisInterface *asking, bool *changed);
    // With the state lock held: the camera a discovery saw (found again by
    // its identifier, or new), marked present.
    AravisCamera *seenNow(bool gigE, const AravisCamera::Seen &seen);
    AravisCamera *cameraFor(OrbCam::DeviceInfo *info) const
    {
        std::lock_guard<std::mutex> lock(m_stateMutex);
        for (const auto &c : m_cameras)
            if (c.get() == info)
                return c.get();
        return nullptr;
    }
    std::mutex &stateMutex() const { return m_stateMutex; }
    // The cameras that devices of ours have open. Takes the devices' lock:
    // not to be called with the state lock held.
    std::vector<const OrbCam::DeviceInfo *> openHere();

    // The open devices; every half second without an event, each looks
    // whether its camera answers (AravisDevice::check).
    OpenDevices &openDevices() { return m_open; }

private:
    std::vector<std::unique_ptr<AravisInterface>> m_interfaces;
    InterfaceLists m_lists;
    mutable std::mutex m_stateMutex; // the cameras and their placement
    std::vector<std::unique_ptr<AravisCamera>> m_cameras;

    // Last: its thread ends before anything it could reach goes.
    OpenDevices m_open;
};

// ---------------------------------------------------------------------------
// The camera

uint32_t AravisCamera::GetAccessStatus() const
{
    std::lock_guard<std::mutex> lock(m_system.stateMutex());
    if (!present)
        return OrbCam::AccessNone;
    return inSubnet ? held : OrbCam::AccessIPSubnetMismatch;
}

uint32_t AravisCamera::currentIp() const
{
    std::lock_guard<std::mutex> lock(m_system.stateMutex());
    return m_ip;
}

OrbCam::Interface *AravisCamera::GetInterface() const
{
    std::lock_guard<std::mutex> lock(m_system.stateMutex());
    return owner;
}

uint32_t AravisCamera::GetIndex() const
{
    AravisInterface *where = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_system.stateMutex());
        where = owner;
    }
    return where ? where->indexOf(this) : UINT32_MAX;
}

OrbCamErr AravisCamera::ForceIP(uint32_t address, uint32_t mask, uint32_t gateway)
{
    if (!m_gigE)
        return OrbCamErrInvalidState;
    if (address == 0 || !validMask(mask))
        return OrbCamErrInvalidArgument;
    AravisInterface *where = nullptr;
    uint64_t mac = 0;
    {
        std::lock_guard<std::mutex> lock(m_system.stateMutex());
        if (!present || !owner)
            return OrbCamErrNoDevice;
        where = owner;
        mac = m_mac;
    }
    const OrbCamErr result = sendForceIp(where->network().index, where->network().ip, mac, address,
                                         mask, gateway, 1000);
    if (result == OrbCamOk) {
        std::lock_guard<std::mutex> lock(m_system.stateMutex());
        m_ip = address;
        inSubnet = where->contains(address);
    }
    return result;
}

// ---------------------------------------------------------------------------
// The interfaces and discovery

std::mutex &AravisInterface::stateMutex() const
{
    return m_system.stateMutex();
}

OrbCamErr AravisInterface::UpdateDeviceList(bool *changed, uint32_t timeoutMs)
{
    if (gigE())
        m_system.discoverGigE(this, changed, timeoutMs);
    else
        m_system.discoverUsb(this, changed);
    return OrbCamOk;
}

std::vector<std::unique_ptr<AravisInterface>> makeInterfaces(AravisSystem &system)
{
    std::vector<std::unique_ptr<AravisInterface>> result;
    for (const HostInterface &network : hostInterfaces()) {
        HostSide host;
        host.type = OrbCam::InterfaceGigEVision;
        const std::string address = ipv4Text(network.ip);
        host.id = "GEV/" + network.name;
        host.displayName = "GigE Vision on " + network.name + " (" + address + ")";
        host.description = "GigE Vision cameras reached through the network interface "
            + network.name + ", found by Aravis";
        host.ip = network.ip;
        host.mask = network.mask;
        host.mac = network.mac;
        // A second address on the same card is an interface of its own.
        for (const auto &existing : result)
            if (existing->host().id == host.id)
                host.id += "/" + address;
        result.push_back(std::make_unique<AravisInterface>(system, host, network));
    }
    HostSide usb;
    usb.type = OrbCam::InterfaceUSB3Vision;
    usb.id = "U3V";
    usb.displayName = "USB3 Vision";
    usb.description = "USB3 Vision cameras, found by Aravis";
    result.push_back(std::make_unique<AravisInterface>(system, usb, HostInterface()));
    return result;
}

AravisSystem::AravisSystem()
    : m_open(&checkDevice, std::chrono::milliseconds(LivenessPeriodMs))
{
    m_interfaces = makeInterfaces(*this);
}

AravisSystem::~AravisSystem() = default;

namespace {

// What another application's hold leaves us, read from the camera's control
// channel privilege register; 0 when the camera did not answer in time.
uint32_t privilegeOf(uint32_t ip, uint32_t timeoutMs)
{
    uint32_t value = 0;
    switch (readRegister(ip, GvcpCcpRegister, &value, timeoutMs)) {
    case OrbCamOk:
        return (value & 0x1) ? uint32_t(OrbCam::AccessNone)
            : (value & 0x2)  ? uint32_t(OrbCam::AccessReadOnly)
                             : uint32_t(OrbCam::AccessReadWrite);
    case OrbCamErrInvalidState:
        return uint32_t(OrbCam::AccessNone); // refused: held exclusively elsewhere
    default:
        return 0;
    }
}

std::string macText(uint64_t mac)
{
    char text[18];
    std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", unsigned(mac >> 40) & 0xFF,
                  unsigned(mac >> 32) & 0xFF, unsigned(mac >> 24) & 0xFF,
                  unsigned(mac >> 16) & 0xFF, unsigned(mac >> 8) & 0xFF, unsigned(mac) & 0xFF);
    return text;
}

// A camera's identity as it describes itself: its maker and serial number
// (its hardware address where it has no serial number, its IP address where
// it has neither).
AravisCamera::Seen seenFrom(const GvcpCamera &camera)
{
    AravisCamera::Seen seen;
    const std::string unique = !camera.serial.empty() ? camera.serial
        : camera.mac != 0                             ? macText(camera.mac)
                                                      : ipv4Text(camera.ip);
    seen.id = (camera.vendor.empty() ? std::string("GigEVision") : camera.vendor) + "-" + unique;
    seen.physicalId = macText(camera.mac);
    seen.address = ipv4Text(camera.ip);
    seen.vendor = camera.vendor;
    seen.model = camera.model;
    seen.serial = camera.serial;
    seen.protocol = "GigEVision";
    return seen;
}

} // namespace

AravisCamera *AravisSystem::seenNow(bool gigE, const AravisCamera::Seen &seen)
{
    for (const auto &camera : m_cameras)
        if (camera->gigE() == gigE && camera->aravisId() == seen.id) {
            camera->update(seen);
            camera->present = true;
            return camera.get();
        }
    m_cameras.push_back(std::make_unique<AravisCamera>(*this, gigE, seen));
    m_cameras.back()->present = true;
    return m_cameras.back().get();
}

void AravisSystem::discoverGigE(AravisInterface *asking, bool *changed, uint32_t timeoutMs)
{
    const uint32_t waitMs = std::clamp(timeoutMs, GvcpShortestDiscoveryMs, GvcpLongestDiscoveryMs);
    const HostInterface network = asking->network();
    std::vector<GvcpCamera> heard;
    discoverCameras(network.index, network.ip, waitMs, [&heard](const GvcpCamera &camera) {
        if (std::none_of(heard.begin(), heard.end(),
                         [&](const GvcpCamera &c) { return c.ip == camera.ip; }))
            heard.push_back(camera);
    });
    // A camera in another card's subnet belongs to that card (two addresses
    // on one link hear the same cameras); one in none to the card that
    // heard it, where it shows the mismatch.
    auto ownerOf = [this, asking](uint32_t ip) -> AravisInterface * {
        if (asking->contains(ip))
            return asking;
        for (const auto &i : m_interfaces)
            if (i->gigE() && i.get() != asking && i->contains(ip))
                return nullptr;
        return asking;
    };
    heard.erase(std::remove_if(heard.begin(), heard.end(),
                               [&](const GvcpCamera &c) { return ownerOf(c.ip) == nullptr; }),
                heard.end());

    // Each camera's privilege register, all at once.
    std::vector<std::future<uint32_t>> privileges;
    const uint32_t answerMs = std::min(waitMs, GvcpAnswerTimeoutMs);
    for (const GvcpCamera &camera : heard)
        privileges.push_back(std::async(std::launch::async, &privilegeOf, camera.ip, answerMs));
    std::vector<uint32_t> held;
    for (auto &privilege : privileges)
        held.push_back(privilege.get());

    const std::vector<const OrbCam::DeviceInfo *> ours = openHere();
    std::vector<OrbCam::DeviceInfo *> before;
    if (OrbCam::DeviceInfoList *list = asking->GetDeviceInfoList()) {
        for (OrbCam::DeviceInfo *info = list->First(); info; info = list->Next())
            before.push_back(info);
        list->Release();
    }
    std::map<AravisInterface *, std::vector<OrbCam::DeviceInfo *>> placed;
    {
        std::lock_guard<std::mutex> lock(m_stateMutex);
        for (const auto &camera : m_cameras)
            if (camera->gigE() && camera->owner == asking)
                camera->present = false;
        for (size_t n = 0; n < heard.size(); ++n) {
            AravisCamera *camera = seenNow(true, seenFrom(heard[n]));
            camera->said(heard[n]);
            if (held[n] != 0)
                camera->held = held[n];
            // Our own devices hold the camera too: that is no one else's hold.
            if (std::find(ours.begin(), ours.end(), camera) != ours.end())
                camera->held = OrbCam::AccessReadWrite;
            camera->owner = asking;
            camera->inSubnet = asking->contains(camera->ip());
        }
        // In the order the cameras were first seen, per card.
        for (const auto &camera : m_cameras)
            if (camera->gigE() && camera->present && camera->owner)
                placed[camera->owner].push_back(camera.get());
    }
    for (const auto &i : m_interfaces)
        if (i->gigE())
            i->setFound(placed[i.get()], nullptr);
    if (changed)
        *changed = placed[asking] != before;
}

void AravisSystem::discoverUsb(AravisInterface *asking, bool *changed)
{
    std::vector<AravisCamera::Seen> seen;
    {
        std::lock_guard<std::mutex> lock(aravisMutex());
        ArvInterface *aravis = arv_uv_interface_get_instance();
        arv_interface_update_device_list(aravis);
        const unsigned count = arv_interface_get_n_devices(aravis);
        for (unsigned i = 0; i < count; ++i)
            seen.push_back({ copy(arv_interface_get_device_id(aravis, i)),
                             copy(arv_interface_get_device_physical_id(aravis, i)),
                             copy(arv_interface_get_device_address(aravis, i)),
                             copy(arv_interface_get_device_vendor(aravis, i)),
                             copy(arv_interface_get_device_model(aravis, i)),
                             copy(arv_interface_get_device_serial_nbr(aravis, i)),
                             copy(arv_interface_get_device_protocol(aravis, i)) });
    }
    std::vector<OrbCam::DeviceInfo *> found;
    {
        std::lock_guard<std::mutex> lock(m_stateMutex);
        for (const auto &camera : m_cameras)
            if (!camera->gigE())
                camera->present = false;
        for (const AravisCamera::Seen &s : seen) {
            AravisCamera *camera = seenNow(false, s);
            camera->inSubnet = true;
            camera->owner = asking;
            found.push_back(camera);
        }
    }
    asking->setFound(found, changed);
}

// ---------------------------------------------------------------------------
// Devices

// The camera's registers through Aravis. The first read or write of a camera
// that stopped answering fails after Aravis's retries (about 2.5 s) and
// tells the device (noAnswer), which marks the camera lost; from then on
// every access fails at once until the camera is back. The Aravis device
// behind it is replaced when a lost camera returns.
class AravisPort final : public IPort {
public:
    // gigEAddress: the camera's address when it is a GigE Vision camera,
    // whose reads go out as our own READMEM requests (with our answer time,
    // not Aravis's 2.5 s); 0 for a USB3 Vision camera.
    AravisPort(ArvDevice *device, EAccessMode mode, const std::string &camera, uint32_t gigEAddress,
               std::function<void()> noAnswer)
        : m_device(device)
        , m_mode(mode)
        , m_camera(camera)
        , m_gigEAddress(gigEAddress)
        , m_noAnswer(std::move(noAnswer))
    {
    }
    EAccessMode GetAccessMode() const override { return m_lost ? NA : m_mode; }
    void Read(void *buffer, int64_t address, int64_t length) override
    {
        refuseWhileLost();
        refuseToWait();
        if (m_gigEAddress != 0 && length >= 0) {
            uint16_t refusal = 0;
            // A read under way when the camera is found lost (by the
            // liveness check) ends then, not at its own time-out.
            switch (readMemory(m_gigEAddress, static_cast<uint64_t>(address), buffer,
                               static_cast<size_t>(length), answerTimeout().ms, &refusal,
                               &m_lost)) {
            case OrbCamOk:
                return;
            case OrbCamErrNoDevice:
                if (m_noAnswer)
                    m_noAnswer();
                throw ACCESS_EXCEPTION("camera %s is not answering", m_camera.c_str());
            case OrbCamErrInvalidState:
                throw ACCESS_EXCEPTION(
                    "camera %s: reading %lld bytes at 0x%llx was refused (status 0x%04x)",
                    m_camera.c_str(), static_cast<long long>(length),
                    static_cast<unsigned long long>(address), unsigned(refusal));
            default:
                throw ACCESS_EXCEPTION("camera %s: reading at 0x%llx failed: no socket",
                                       m_camera.c_str(), static_cast<unsigned long long>(address));
            }
        }
        GError *error = nullptr;
        Held device(*this);
        if (length < 0 || length > UINT32_MAX
            || !arv_device_read_memory(device.get(), static_cast<guint64>(address),
                                       static_cast<guint32>(length), buffer, &error))
            fail("reading", address, length, error);
    }
    void Write(const void *buffer, int64_t address, int64_t length) override
    {
        if (m_mode != RW && m_mode != WO)
            throw ACCESS_EXCEPTION("the camera %s was opened read-only", m_camera.c_str());
        refuseWhileLost();
        refuseToWait();
        GError *error = nullptr;
        Held device(*this);
        if (length < 0 || length > UINT32_MAX
            || !arv_device_write_memory(device.get(), static_cast<guint64>(address),
                                        static_cast<guint32>(length), const_cast<void *>(buffer),
                                        &error))
            fail("writing", address, length, error);
    }
    void setLost(bool lost) { m_lost = lost; }
    // Whether the Aravis device behind still holds control of the camera.
    bool controls()
    {
        Held device(*this);
        return ARV_IS_GV_DEVICE(device.get())
            && arv_gv_device_is_controller(ARV_GV_DEVICE(device.get()));
    }
    // Takes `device` over and returns the one it replaces (the caller's).
    ArvDevice *replace(ArvDevice *device)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        std::swap(device, m_device);
        return device;
    }

private:
    // A reference for the length of one access: the device may be replaced
    // meanwhile.
    class Held {
    public:
        explicit Held(AravisPort &port)
        {
            std::lock_guard<std::mutex> lock(port.m_mutex);
            m_device = port.m_device;
            g_object_ref(m_device);
        }
        ~Held() { g_object_unref(m_device); }
        Held(const Held &) = delete;
        Held &operator=(const Held &) = delete;
        ArvDevice *get() const { return m_device; }

    private:
        ArvDevice *m_device;
    };

    void refuseWhileLost() const
    {
        if (m_lost)
            throw ACCESS_EXCEPTION("camera %s is not answering", m_camera.c_str());
    }
    // Every access crosses the network; a lost camera's refusal above costs
    // nothing and is given even to a thread that must not wait.
    void refuseToWait() const
    {
        if (NoWaitScope::IsActive())
            throw WOULD_WAIT_EXCEPTION("camera %s answers over the network", m_camera.c_str());
    }

    [[noreturn]] void fail(const char *what, int64_t address, int64_t length, GError *error)
    {
        const std::string why = error ? error->message : "invalid length";
        // A camera that refuses has answered; one that did not answer in
        // time is taken for gone until it answers again.
        const bool timedOut
            = error && g_error_matches(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_TIMEOUT);
        if (error)
            g_error_free(error);
        if (timedOut && m_noAnswer)
            m_noAnswer();
        throw ACCESS_EXCEPTION("camera %s: %s %lld bytes at 0x%llx failed: %s", m_camera.c_str(),
                               what, static_cast<long long>(length),
                               static_cast<unsigned long long>(address), why.c_str());
    }

    std::mutex m_mutex;
    ArvDevice *m_device;
    EAccessMode m_mode;
    std::string m_camera;
    uint32_t m_gigEAddress;
    std::function<void()> m_noAnswer;
    std::atomic<bool> m_lost { false };
};

// Opens the camera: a GigE Vision camera straight at its address, through
// the card it was found on (no discovery of Aravis's, which would wait a
// second per card); a USB3 Vision one by Aravis's identifier. Null with the
// reason in why.
ArvDevice *openAravis(const AravisCamera &camera, std::string &why)
{
    GError *error = nullptr;
    ArvDevice *device = nullptr;
    if (camera.gigE()) {
        const OrbCam::Interface *owner = camera.GetInterface();
        if (!owner) {
            why = "the camera was not found on any network card";
            return nullptr;
        }
        const uint32_t cardIp = static_cast<const AravisInterface *>(owner)->network().ip;
        GInetAddress *card = g_inet_address_new_from_string(ipv4Text(cardIp).c_str());
        GInetAddress *address
            = g_inet_address_new_from_string(ipv4Text(camera.currentIp()).c_str());
        if (card && address)
            device = arv_gv_device_new(card, address, &error);
        if (card)
            g_object_unref(card);
        if (address)
            g_object_unref(address);
    } else {
        std::lock_guard<std::mutex> lock(aravisMutex());
        device = arv_interface_open_device(arv_uv_interface_get_instance(),
                                           camera.aravisId().c_str(), &error);
    }
    if (!device) {
        why = error ? error->message : "unknown reason";
        if (error)
            g_error_free(error);
    }
    return device;
}

class AravisDevice final : public OrbCam::Device, public EventTarget {
public:
    AravisDevice(AravisSystem &system, AravisCamera &camera, ArvDevice *device, uint32_t access)
        : m_system(system)
        , m_camera(camera)
        , m_access(access)
        , m_port(device, access == OrbCam::AccessMonitor ? RO : RW, camera.GetID(),
                 addressOf(camera), [this] { markLost(); })
        , m_map(camera.GetID())
    {
        size_t size = 0;
        const char *xml = arv_device_get_genicam_xml(device, &size);
        if (!xml || size == 0) {
            g_object_unref(device);
            throw RUNTIME_EXCEPTION("camera %s serves no description", camera.GetID());
        }
        try {
            if (size >= 4 && std::memcmp(xml, "PK\x03\x04", 4) == 0)
                m_map._LoadXMLFromZIPData(xml, size);
            else
                m_map._LoadXMLFromString(gcstring(xml, size));
            m_map._Connect(&m_port, "Device");
        } catch (...) {
            g_object_unref(device);
            throw;
        }
        m_params = std::make_unique<ParamArray>(m_map._Ptr, [this] { return !m_lost.load(); });
        watch(device);
        m_system.openDevices().attach(this);
    }

    ~AravisDevice() override
    {
        m_params.reset(); // before the node map it listens to
        m_map._Destroy();
        ArvDevice *device = m_port.replace(nullptr);
        g_signal_handler_disconnect(device, m_lostHandler);
        // Stops Aravis's heartbeat thread, the one that reports a loss (a
        // report under way finishes first); then its queued events go.
        g_object_unref(device);
        m_system.openDevices().detach(this);
    }

    // On the system's event thread, twice a second. A GigE Vision camera is
    // asked for its privilege register (any answer, a refusal too, counts):
    // one that misses answerTimeout().misses answers in a row is lost (event
    // 1004), under two seconds after its last answer by default instead of
    // the several seconds Aravis's heartbeat takes. A lost camera that answers again is opened
    // anew (event 1003). A USB3 Vision camera's loss is Aravis's report; its
    // return is looked for with Aravis's USB discovery.
    void check()
    {
        if (!m_lost) {
            if (!m_camera.gigE())
                return;
            if (privilege()) {
                m_misses = 0;
                return;
            }
            if (++m_misses >= answerTimeout().misses)
                markLost();
            return;
        }
        if (m_camera.gigE()) {
            const std::optional<uint32_t> held = privilege();
            if (!held)
                return;
            // Silent for a while but never gone: our Aravis device still
            // controls it (or we only watch it), so it carries on as it was.
            const bool stillOurs
                = m_access != OrbCam::AccessControl || ((*held & 0x3) != 0 && m_port.controls());
            if (stillOurs) {
                revive();
                return;
            }
        } else {
            std::lock_guard<std::mutex> lock(aravisMutex());
            arv_interface_update_device_list(arv_uv_interface_get_instance());
        }
        std::string why;
        ArvDevice *device = openAravis(m_camera, why);
        if (!device)
            return;
        if (m_access == OrbCam::AccessMonitor && ARV_IS_GV_DEVICE(device))
            arv_gv_device_leave_control(ARV_GV_DEVICE(device), nullptr);
        ArvDevice *old = m_port.replace(device);
        g_signal_handler_disconnect(old, m_lostHandler);
        g_object_unref(old);
        watch(device);
        revive();
    }

    void revive()
    {
        m_misses = 0;
        m_port.setLost(false);
        m_lost = false;
        // Values cached while the camera was away are stale.
        m_map._InvalidateNodes();
        m_events.deliver(OrbCam::EventDeviceReturned);
    }

    OrbGenParam::Array *GetParams(OrbCamErr *err = nullptr) override
    {
        if (err)
            *err = OrbCamOk;
        return m_params.get();
    }
    OrbCam::DeviceInfo *GetInfo() const override { return &m_camera; }
    bool IsConnected() const override { return !m_lost; }
    OrbCamErr RegisterEventCallback(uint32_t event, OrbCam::EventCallback callback,
                                    void *context) override
    {
        return m_events.add(event, callback, context);
    }
    OrbCamErr UnregisterEventCallback(uint32_t event, OrbCam::EventCallback callback,
                                      void *context) override
    {
        return m_events.remove(event, callback, context);
    }

    AravisSystem &system() const { return m_system; }
    const void *eventSource() const override { return this; }
    void deliver(uint32_t event) override
    {
        // What was read before the loss is no longer the camera's: readers
        // are told (node callbacks) and read again, which now fails at once.
        if (event == OrbCam::EventDeviceLost)
            m_map._InvalidateNodes();
        m_events.deliver(event);
    }

private:
    // The handler runs on Aravis's thread; this lock, taken here and there,
    // orders everything the device did before against it (GLib's own lock
    // does too, but unseen by the race checker). One for all devices: it
    // must exist before Aravis's thread starts, and losses are rare.
    static std::mutex &watchMutex()
    {
        static std::mutex mutex;
        return mutex;
    }
    void watch(ArvDevice *device)
    {
        std::lock_guard<std::mutex> lock(watchMutex());
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wcast-function-type"
        m_lostHandler
            = g_signal_connect(device, "control-lost", G_CALLBACK(&AravisDevice::onLost), this);
#pragma GCC diagnostic pop
    }

    static uint32_t addressOf(const AravisCamera &camera)
    {
        return camera.gigE() ? camera.currentIp() : 0;
    }

    // On Aravis's heartbeat thread, some seconds after the camera stopped
    // answering.
    static void onLost(ArvDevice *, gpointer self)
    {
        static_cast<AravisDevice *>(self)->markLost();
    }

    // Any thread: the camera is gone until it answers again; told once.
    void markLost()
    {
        std::lock_guard<std::mutex> lock(watchMutex());
        if (m_lost.exchange(true))
            return;
        m_port.setLost(true);
        m_system.openDevices().post(this, OrbCam::EventDeviceLost);
    }

    // The camera's control channel privilege register, or nothing when it
    // did not answer in time (a refusal reads as held exclusively).
    std::optional<uint32_t> privilege() const
    {
        uint32_t value = 0;
        switch (readRegister(m_camera.currentIp(), GvcpCcpRegister, &value, answerTimeout().ms)) {
        case OrbCamOk:
            return value;
        case OrbCamErrInvalidState:
            return 0x1;
        default:
            return std::nullopt;
        }
    }

    AravisSystem &m_system;
    AravisCamera &m_camera;
    uint32_t m_access;
    AravisPort m_port;
    CNodeMapRef m_map;
    std::unique_ptr<ParamArray> m_params;
    DeviceEvents m_events;
    std::atomic<bool> m_lost { false };
    uint32_t m_misses = 0; // the event thread's
    gulong m_lostHandler = 0;
};

class AravisPendingOpen final : public PendingOpen {
public:
    AravisPendingOpen(AravisSystem &system, AravisCamera &camera, uint32_t access)
        : m_system(system)
        , m_camera(camera)
        , m_access(access)
    {
    }
    OrbCam::Device *open() override
    {
        std::string why;
        ArvDevice *device = openAravis(m_camera, why);
        if (!device)
            throw ACCESS_EXCEPTION("cannot open camera %s: %s", m_camera.GetID(), why.c_str());
        // Monitoring leaves the camera to whoever controls it.
        if (m_access == OrbCam::AccessMonitor && ARV_IS_GV_DEVICE(device))
            arv_gv_device_leave_control(ARV_GV_DEVICE(device), nullptr);
        return new AravisDevice(m_system, m_camera, device, m_access);
    }

private:
    AravisSystem &m_system;
    AravisCamera &m_camera;
    uint32_t m_access;
};

std::unique_ptr<PendingOpen> AravisSystem::prepareOpen(OrbCam::DeviceInfo *info, uint32_t access,
                                                       OrbCamErr &err)
{
    AravisCamera *camera = cameraFor(info);
    if (!camera) {
        err = OrbCamErrInvalidArgument;
        return nullptr;
    }
    const uint32_t status = camera->GetAccessStatus();
    if (status == OrbCam::AccessNone) {
        err = OrbCamErrNoDevice;
        return nullptr;
    }
    if (status != OrbCam::AccessReadWrite) {
        err = OrbCamErrInvalidState;
        return nullptr;
    }
    err = OrbCamOk;
    return std::make_unique<AravisPendingOpen>(*this, *camera, access);
}

bool AravisSystem::closeDevice(OrbCam::Device *device)
{
    auto *aravis = dynamic_cast<AravisDevice *>(device);
    if (!aravis || &aravis->system() != this)
        return false;
    delete aravis;
    return true;
}

std::vector<const OrbCam::DeviceInfo *> AravisSystem::openHere()
{
    std::vector<const OrbCam::DeviceInfo *> cameras;
    for (EventTarget *device : m_open.attached())
        cameras.push_back(static_cast<AravisDevice *>(device)->GetInfo());
    return cameras;
}

void checkDevice(EventTarget *device)
{
    static_cast<AravisDevice *>(device)->check();
}

} // namespace

std::unique_ptr<Backend> createAravisBackend()
{
    return std::make_unique<AravisSystem>();
}

bool aravisBuiltIn()
{
    return true;
}

} // namespace OrbCamImpl
