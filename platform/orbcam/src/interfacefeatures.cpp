#include "interfacefeatures.h"

#include <OrbCam/OrbCamSim.h>

#include <algorithm>
#include <cstring>

using namespace GenApi;

namespace OrbCamImpl {

bool typeSelected(uint32_t type, uint32_t typeMask)
{
    const uint32_t bit = (type >= 1 && type <= 7) ? (1u << (type - 1)) : (1u << 7);
    return (typeMask & bit) != 0;
}

OrbCam::InterfaceList *InterfaceLists::select(const std::vector<OrbCam::Interface *> &interfaces,
                                              uint32_t typeMask)
{
    std::vector<OrbCam::Interface *> selected;
    for (OrbCam::Interface *i : interfaces)
        if (typeSelected(i->GetType(), typeMask))
            selected.push_back(i);
    std::lock_guard<std::mutex> lock(m_mutex);
    std::unique_ptr<InterfaceVector> &list = m_lists[std::this_thread::get_id()];
    if (!list)
        list = std::make_unique<InterfaceVector>(std::vector<OrbCam::Interface *>(), false);
    list->assign(std::move(selected));
    return list.get();
}

bool validMask(uint32_t mask)
{
    const uint32_t inverted = ~mask;
    return mask != 0 && (inverted & (inverted + 1)) == 0;
}

// ---------------------------------------------------------------------------
// InterfaceFeatures

namespace {
// The register layout of orbsim-interface.xml.
enum : int64_t {
    RegSelector = 0x0000,
    RegDeviceCount = 0x0004,
    RegInterfaceType = 0x0010,
    RegInterfaceMAC = 0x0020,
    RegInterfaceIP = 0x0028,
    RegInterfaceMask = 0x002C,
    RegInterfaceGateway = 0x0030,
    RegDeviceMAC = 0x0100,
    RegDeviceIP = 0x0108,
    RegDeviceMask = 0x010C,
    RegDeviceGateway = 0x0110,
    RegForceIP = 0x0114,
    RegForceMask = 0x0118,
    RegForceGateway = 0x011C,
    RegForceCommand = 0x0120,
    RegUSBVersion = 0x0124,
    RegAccessStatus = 0x0128,
    RegUpdateList = 0x0130,
    RegDeviceID = 0x0200,
    RegDeviceVendor = 0x0240,
    RegDeviceModel = 0x0280,
    RegDeviceSerial = 0x02C0,
    RegDeviceUserName = 0x0300,
    RegInterfaceID = 0x0340,
    TextLength = 64,
};

bool overlaps(int64_t address, int64_t length, int64_t reg, int64_t regLength)
{
    return length > 0 && address < reg + regLength && reg < address + length;
}
} // namespace

InterfaceFeatures::InterfaceFeatures(HostSide host)
    : m_host(std::move(host))
{
}

InterfaceFeatures::~InterfaceFeatures()
{
    m_params.reset(); // before the node map it listens to
    m_map.reset();
}

OrbGenParam::Array *InterfaceFeatures::GetParams(OrbCamErr *err)
{
    // Once made, the features are handed out without a lock: a caller may
    // hold the node map's lock (inside Lock()) when it asks.
    if (OrbGenParam::Array *ready = m_ready.load(std::memory_order_acquire)) {
        if (err)
            *err = OrbCamOk;
        return ready;
    }
    std::lock_guard<std::mutex> lock(m_paramsMutex);
    if (!m_params) {
        try {
            auto map = std::make_unique<CNodeMapRef>(m_host.id.c_str());
            map->_LoadXMLFromFile((OrbCamSim::CamerasDir() + "/orbsim-interface.xml").c_str());
            map->_Connect(this, "Device");
            m_params = std::make_unique<ParamArray>(map->_Ptr, nullptr);
            m_map = std::move(map);
            m_ready.store(m_params.get(), std::memory_order_release);
        } catch (const GenICam::GenericException &) {
            if (err)
                *err = OrbCamErrFileRead;
            return nullptr;
        }
    }
    if (err)
        *err = OrbCamOk;
    return m_params.get();
}

// The node map's lock first, then the interface's own: a feature read holds
// the map's lock when it reaches the interface's registers (Read), so that is
// the one order in which both are taken.
void InterfaceFeatures::Lock()
{
    if (GetParams())
        m_map->_Ptr->GetLock().Lock();
    m_mutex.lock();
}

void InterfaceFeatures::Unlock()
{
    m_mutex.unlock();
    if (m_map)
        m_map->_Ptr->GetLock().Unlock();
}

OrbCam::DeviceInfo *InterfaceFeatures::selected() const
{
    uint32_t index = 0;
    const_cast<CMemoryPort &>(m_memory).Read(&index, RegSelector, 4);
    const std::vector<OrbCam::DeviceInfo *> &cameras = found();
    return index < cameras.size() ? cameras[index] : nullptr;
}

void InterfaceFeatures::refresh()
{
    auto number = [&](int64_t address, uint64_t value, size_t length) {
        // The features read these registers little-endian.
        uint8_t bytes[8];
        for (size_t i = 0; i < length; ++i)
            bytes[i] = static_cast<uint8_t>(value >> (8 * i));
        m_memory.Write(bytes, address, static_cast<int64_t>(length));
    };
    auto text = [&](int64_t address, const std::string &value) {
        char bytes[TextLength] = {};
        std::memcpy(bytes, value.data(), std::min<size_t>(value.size(), TextLength - 1));
        m_memory.Write(bytes, address, TextLength);
    };
    number(RegDeviceCount, found().size(), 4);
    number(RegInterfaceType, m_host.type, 4);
    number(RegInterfaceMAC, m_host.mac, 8);
    number(RegInterfaceIP, m_host.ip, 4);
    number(RegInterfaceMask, m_host.mask, 4);
    number(RegInterfaceGateway, m_host.gateway, 4);
    text(RegInterfaceID, m_host.id);
    OrbCam::DeviceInfo *camera = selected();
    const CameraNetwork network = camera ? networkOf(camera) : CameraNetwork();
    number(RegDeviceMAC, network.mac, 8);
    number(RegDeviceIP, network.ip, 4);
    number(RegDeviceMask, network.mask, 4);
    number(RegDeviceGateway, network.gateway, 4);
    number(RegUSBVersion, network.usbVersion, 4);
    number(RegAccessStatus, camera ? camera->GetAccessStatus() : OrbCam::AccessNone, 4);
    text(RegDeviceID, camera ? camera->GetID() : "");
    text(RegDeviceVendor, camera ? camera->GetVendor() : "");
    text(RegDeviceModel, camera ? camera->GetModel() : "");
    text(RegDeviceSerial, camera ? camera->GetSerialNumber() : "");
    text(RegDeviceUserName, camera ? camera->GetUserName() : "");
}

void InterfaceFeatures::Read(void *buffer, int64_t address, int64_t length)
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    refresh();
    m_memory.Read(buffer, address, length);
}

void InterfaceFeatures::Write(const void *buffer, int64_t address, int64_t length)
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    m_memory.Write(buffer, address, length);
    auto number = [&](int64_t reg) {
        uint32_t value = 0;
        m_memory.Read(&value, reg, 4);
        return value;
    };
    auto put = [&](int64_t reg, uint32_t value) { m_memory.Write(&value, reg, 4); };
    if (overlaps(address, length, RegSelector, 4)) {
        // Propose the selected camera's own set-up for a forced address.
        if (OrbCam::DeviceInfo *camera = selected()) {
            const CameraNetwork network = networkOf(camera);
            put(RegForceIP, network.ip);
            put(RegForceMask, network.mask);
            put(RegForceGateway, network.gateway);
        }
    }
    if (overlaps(address, length, RegForceCommand, 4) && number(RegForceCommand) != 0) {
        put(RegForceCommand, 0);
        OrbCam::DeviceInfo *camera = selected();
        if (!camera)
            throw ACCESS_EXCEPTION("no camera is selected");
        const OrbCamErr result
            = camera->ForceIP(number(RegForceIP), number(RegForceMask), number(RegForceGateway));
        if (result != OrbCamOk)
            throw ACCESS_EXCEPTION("force IP failed: %s", OrbCam_ErrorText(result));
    }
    if (overlaps(address, length, RegUpdateList, 4) && number(RegUpdateList) != 0) {
        put(RegUpdateList, 0);
        UpdateDeviceList(nullptr, 0);
    }
}

// ---------------------------------------------------------------------------
// DeviceEvents

OrbCamErr DeviceEvents::add(uint32_t event, OrbCam::EventCallback callback, void *context)
{
    if (!callback)
        return OrbCamErrInvalidArgument;
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    for (const Callback &c : m_callbacks)
        if (c.event == event && c.function == callback && c.context == context)
            return OrbCamOk;
    m_callbacks.push_back({ event, callback, context });
    return OrbCamOk;
}

OrbCamErr DeviceEvents::remove(uint32_t event, OrbCam::EventCallback callback, void *context)
{
    // Taking the lock waits for a delivery in progress.
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    auto it = std::find_if(m_callbacks.begin(), m_callbacks.end(), [&](const Callback &c) {
        return c.event == event && c.function == callback && c.context == context;
    });
    if (it == m_callbacks.end())
        return OrbCamErrInvalidArgument;
    m_callbacks.erase(it);
    return OrbCamOk;
}

void DeviceEvents::deliver(uint32_t event)
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    const std::vector<Callback> callbacks = m_callbacks;
    for (const Callback &c : callbacks)
        if (c.event == event)
            c.function(&event, sizeof event, c.context);
}

} // namespace OrbCamImpl
