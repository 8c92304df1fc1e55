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
#include <cstring>
#include <future>
#include <map>

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

// How long our own discovery and privilege reads wait for the cameras'
// answers: a camera on the link answers within milliseconds, and the
// discovery ends as soon as every camera Aravis found has answered.
constexpr uint32_t GvcpDiscoveryTimeoutMs = 1000;
constexpr uint32_t GvcpAnswerTimeoutMs = 500;

class AravisSystem;
class AravisInterface;

// One camera Aravis has reported; kept, like every DeviceInfo, as long as the
// system, and found again by its Aravis identifier.
class AravisCamera final : public OrbCam::DeviceInfo {
public:
    struct Seen {
        std::string id, physicalId, address, vendor, model, serial, protocol;
    };

    AravisCamera(AravisSystem &system, bool gigE, const Seen &seen)
        : m_system(system)
        , m_gigE(gigE)
    {
        update(seen);
    }

    const char *GetID() const override { return m_id.c_str(); }
    const char *GetDisplayName() const override { return m_displayName.c_str(); }
    const char *GetVendor() const override { return m_seen.vendor.c_str(); }
    const char *GetModel() const override { return m_seen.model.c_str(); }
    const char *GetSerialNumber() const override { return m_seen.serial.c_str(); }
    const char *GetVersion() const override { return m_said.version.c_str(); }
    const char *GetUserName() const override { return m_said.userName.c_str(); }
    uint32_t GetAccessStatus() const override;
    OrbCam::Interface *GetInterface() const override;
    uint32_t GetIndex() const override;
    OrbCamErr ForceIP(uint32_t address, uint32_t mask, uint32_t gateway) override;

    // With the system's state lock held.
    void update(const Seen &seen)
    {
        m_seen = seen;
        m_id = (m_gigE ? "GEV/" : "U3V/") + seen.id;
        m_displayName = seen.model.empty() ? seen.id : seen.model + " (" + seen.serial + ")";
        parseIPv4(seen.address, m_ip);
        parseMAC(seen.physicalId, m_mac);
    }
    // With the system's state lock held: what the camera said of itself in
    // our own discovery.
    void said(const GvcpCamera &camera) { m_said = camera; }
    const GvcpCamera &said() const { return m_said; }
    const std::string &aravisId() const { return m_seen.id; }
    bool gigE() const { return m_gigE; }
    uint32_t ip() const { return m_ip; }
    uint64_t mac() const { return m_mac; }

    // Whether the last discovery saw it, and where.
    bool present = false;
    AravisInterface *owner = nullptr;
    bool inSubnet = true;
    // What another application's hold leaves us (read from the camera's
    // privilege register): AccessReadWrite when none.
    uint32_t held = OrbCam::AccessReadWrite;

private:
    AravisSystem &m_system;
    bool m_gigE;
    Seen m_seen;
    GvcpCamera m_said;
    std::string m_id, m_displayName;
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
// On the event thread: whether a lost camera answers again (AravisDevice).
void tryReturn(EventTarget *device);

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

    // Runs Aravis's discovery for GigE Vision or USB3 Vision and hands each
    // interface of that kind what it found.
    void discover(bool gigE, AravisInterface *asking, bool *changed);
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

    // The open devices; every two seconds without an event, each looks
    // whether its lost camera answers again.
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

OrbCamErr AravisInterface::UpdateDeviceList(bool *changed, uint32_t)
{
    m_system.discover(gigE(), this, changed);
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
    : m_open(&tryReturn, std::chrono::seconds(2))
{
    m_interfaces = makeInterfaces(*this);
}

AravisSystem::~AravisSystem() = default;

void AravisSystem::discover(bool gigE, AravisInterface *asking, bool *changed)
{
    std::vector<AravisCamera::Seen> seen;
    {
        std::lock_guard<std::mutex> lock(aravisMutex());
        ArvInterface *aravis
            = gigE ? arv_gv_interface_get_instance() : arv_uv_interface_get_instance();
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

    // What Aravis does not tell: each camera's own answer to a discovery of
    // ours (mask, gateway, version, user name) and its privilege register
    // (another application holding it), asked on every card at once.
    // Cameras are told apart by their address: a camera's MAC may be 0
    // (Aravis's own fake ones have none), and answers of one camera come
    // once per host address that asks.
    std::vector<GvcpCamera> said;
    std::map<uint32_t, uint32_t> held; // by address
    if (gigE && !seen.empty()) {
        // Until every camera Aravis found has answered, or the time is up.
        std::mutex saidMutex;
        std::vector<uint32_t> waiting;
        for (const AravisCamera::Seen &s : seen) {
            uint32_t ip = 0;
            if (parseIPv4(s.address, ip))
                waiting.push_back(ip);
        }
        std::atomic<bool> allAnswered { waiting.empty() };
        const std::function<void(const GvcpCamera &)> found = [&](const GvcpCamera &camera) {
            std::lock_guard<std::mutex> lock(saidMutex);
            if (std::none_of(said.begin(), said.end(),
                             [&](const GvcpCamera &c) { return c.ip == camera.ip; }))
                said.push_back(camera);
            waiting.erase(std::remove(waiting.begin(), waiting.end(), camera.ip), waiting.end());
            if (waiting.empty())
                allAnswered = true;
        };
        std::vector<std::future<void>> asked;
        for (const auto &i : m_interfaces)
            if (i->gigE())
                asked.push_back(
                    std::async(std::launch::async, [&found, &allAnswered, network = i->network()] {
                        discoverCameras(network.index, network.ip, GvcpDiscoveryTimeoutMs, found,
                                        &allAnswered);
                    }));
        for (auto &answer : asked)
            answer.get();
        std::vector<std::pair<uint32_t, std::future<uint32_t>>> privileges;
        for (const GvcpCamera &camera : said)
            privileges.emplace_back(
                camera.ip, std::async(std::launch::async, [ip = camera.ip] {
                    uint32_t value = 0;
                    switch (readRegister(ip, GvcpCcpRegister, &value, GvcpAnswerTimeoutMs)) {
                    case OrbCamOk:
                        return (value & 0x1) ? uint32_t(OrbCam::AccessNone)
                            : (value & 0x2)  ? uint32_t(OrbCam::AccessReadOnly)
                                             : uint32_t(OrbCam::AccessReadWrite);
                    case OrbCamErrInvalidState:
                        // Refused: held exclusively elsewhere.
                        return uint32_t(OrbCam::AccessNone);
                    default:
                        return uint32_t(0); // no answer: unknown
                    }
                }));
        for (auto &[ip, privilege] : privileges)
            if (const uint32_t status = privilege.get())
                held[ip] = status;
    }

    const std::vector<const OrbCam::DeviceInfo *> ours = openHere();
    std::map<AravisInterface *, std::vector<OrbCam::DeviceInfo *>> placed;
    {
        std::lock_guard<std::mutex> lock(m_stateMutex);
        for (const auto &camera : m_cameras)
            if (camera->gigE() == gigE)
                camera->present = false;
        for (const AravisCamera::Seen &s : seen) {
            AravisCamera *camera = nullptr;
            for (const auto &c : m_cameras)
                if (c->gigE() == gigE && c->aravisId() == s.id)
                    camera = c.get();
            if (!camera) {
                m_cameras.push_back(std::make_unique<AravisCamera>(*this, gigE, s));
                camera = m_cameras.back().get();
            } else {
                camera->update(s);
            }
            camera->present = true;
            for (const GvcpCamera &answer : said)
                if (answer.ip == camera->ip())
                    camera->said(answer);
            const auto privilege = held.find(camera->ip());
            if (privilege != held.end())
                camera->held = privilege->second;
            // Our own devices hold the camera too: that is no one else's hold.
            if (std::find(ours.begin(), ours.end(), camera) != ours.end())
                camera->held = OrbCam::AccessReadWrite;
            // A GigE Vision camera belongs to the card whose subnet holds
            // its address; one outside every subnet to the first card that
            // is not a loopback, where it shows the mismatch.
            AravisInterface *owner = nullptr;
            AravisInterface *fallback = nullptr;
            for (const auto &i : m_interfaces) {
                if (i->gigE() != gigE)
                    continue;
                if (!gigE || i->contains(camera->ip())) {
                    owner = i.get();
                    break;
                }
                if (!fallback || (fallback->network().loopback && !i->network().loopback))
                    fallback = i.get();
            }
            camera->inSubnet = owner != nullptr;
            camera->owner = owner ? owner : fallback;
            if (camera->owner)
                placed[camera->owner].push_back(camera);
        }
    }
    for (const auto &i : m_interfaces)
        if (i->gigE() == gigE)
            i->setFound(placed[i.get()], i.get() == asking ? changed : nullptr);
}

// ---------------------------------------------------------------------------
// Devices

// The camera's registers through Aravis. A read or write of a camera that
// stopped answering fails after Aravis's retries (about 2.5 s). The Aravis
// device behind it is replaced when a lost camera returns.
class AravisPort final : public IPort {
public:
    AravisPort(ArvDevice *device, EAccessMode mode, const std::string &camera)
        : m_device(device)
        , m_mode(mode)
        , m_camera(camera)
    {
    }
    EAccessMode GetAccessMode() const override { return m_lost ? NA : m_mode; }
    void Read(void *buffer, int64_t address, int64_t length) override
    {
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
        GError *error = nullptr;
        Held device(*this);
        if (length < 0 || length > UINT32_MAX
            || !arv_device_write_memory(device.get(), static_cast<guint64>(address),
                                        static_cast<guint32>(length), const_cast<void *>(buffer),
                                        &error))
            fail("writing", address, length, error);
    }
    void setLost(bool lost) { m_lost = lost; }
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

    [[noreturn]] void fail(const char *what, int64_t address, int64_t length, GError *error)
    {
        const std::string why = error ? error->message : "invalid length";
        if (error)
            g_error_free(error);
        throw ACCESS_EXCEPTION("camera %s: %s %lld bytes at 0x%llx failed: %s", m_camera.c_str(),
                               what, static_cast<long long>(length),
                               static_cast<unsigned long long>(address), why.c_str());
    }

    std::mutex m_mutex;
    ArvDevice *m_device;
    EAccessMode m_mode;
    std::string m_camera;
    std::atomic<bool> m_lost { false };
};

// Opens the camera with this Aravis identifier; null with the reason in why.
ArvDevice *openAravis(bool gigE, const std::string &id, std::string &why)
{
    GError *error = nullptr;
    ArvDevice *device = nullptr;
    {
        std::lock_guard<std::mutex> lock(aravisMutex());
        ArvInterface *aravis
            = gigE ? arv_gv_interface_get_instance() : arv_uv_interface_get_instance();
        device = arv_interface_open_device(aravis, id.c_str(), &error);
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
        , m_port(device, access == OrbCam::AccessMonitor ? RO : RW, camera.GetID())
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

    // On the system's event thread, while the camera is lost: opens it
    // again if it answers and tells the callbacks (event 1003). Blocks for
    // a discovery (about a second).
    void tryReturn()
    {
        if (!m_lost)
            return;
        {
            std::lock_guard<std::mutex> lock(aravisMutex());
            arv_interface_update_device_list(m_camera.gigE() ? arv_gv_interface_get_instance()
                                                             : arv_uv_interface_get_instance());
        }
        std::string why;
        ArvDevice *device = openAravis(m_camera.gigE(), m_camera.aravisId(), why);
        if (!device)
            return;
        if (m_access == OrbCam::AccessMonitor && ARV_IS_GV_DEVICE(device))
            arv_gv_device_leave_control(ARV_GV_DEVICE(device), nullptr);
        ArvDevice *old = m_port.replace(device);
        g_signal_handler_disconnect(old, m_lostHandler);
        g_object_unref(old);
        watch(device);
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
    void deliver(uint32_t event) override { m_events.deliver(event); }

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

    // On Aravis's heartbeat thread, some seconds after the camera stopped
    // answering.
    static void onLost(ArvDevice *, gpointer self)
    {
        auto *device = static_cast<AravisDevice *>(self);
        std::lock_guard<std::mutex> lock(watchMutex());
        if (device->m_lost.exchange(true))
            return;
        device->m_port.setLost(true);
        device->m_system.openDevices().post(device, OrbCam::EventDeviceLost);
    }

    AravisSystem &m_system;
    AravisCamera &m_camera;
    uint32_t m_access;
    AravisPort m_port;
    CNodeMapRef m_map;
    std::unique_ptr<ParamArray> m_params;
    DeviceEvents m_events;
    std::atomic<bool> m_lost { false };
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
        ArvDevice *device = openAravis(m_camera.gigE(), m_camera.aravisId(), why);
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

void tryReturn(EventTarget *device)
{
    static_cast<AravisDevice *>(device)->tryReturn();
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
