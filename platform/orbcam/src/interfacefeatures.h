// What every backend's interfaces share: the interface's own features
// (orbsim-interface.xml: the host side, DeviceSelector and the selected
// camera's identity and network set-up, force IP) over a register space the
// interface computes, and the per-thread lists the API hands out. Internal.
#ifndef ORBCAM_INTERFACEFEATURES_H
#define ORBCAM_INTERFACEFEATURES_H

#include "paramarray.h"

#include <OrbCam/OrbCam.h>

#include <GenApi/GenApi.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace OrbCamImpl {

// ---------------------------------------------------------------------------
// Lists

template <class Item, class Base> class VectorList final : public Base {
public:
    VectorList(std::vector<Item *> items, bool owned)
        : m_items(std::move(items))
        , m_owned(owned)
    {
    }
    size_t Size() const override { return m_items.size(); }
    Item *First() override
    {
        m_next = 0;
        return Next();
    }
    Item *Next() override { return m_next < m_items.size() ? m_items[m_next++] : nullptr; }
    void Release() override
    {
        if (m_owned)
            delete this;
    }
    void assign(std::vector<Item *> items)
    {
        m_items = std::move(items);
        m_next = 0;
    }

private:
    std::vector<Item *> m_items;
    size_t m_next = 0;
    bool m_owned;
};

using InterfaceVector = VectorList<OrbCam::Interface, OrbCam::InterfaceList>;
using DeviceInfoVector = VectorList<OrbCam::DeviceInfo, OrbCam::DeviceInfoList>;

// System::GetInterfaces for a backend: each calling thread gets a list (and
// a cursor) of its own. Thread-safe.
class InterfaceLists {
public:
    OrbCam::InterfaceList *select(const std::vector<OrbCam::Interface *> &interfaces,
                                  uint32_t typeMask);

private:
    std::mutex m_mutex;
    std::map<std::thread::id, std::unique_ptr<InterfaceVector>> m_lists;
};

// Whether an interface type is selected by a System::GetInterfaces mask.
bool typeSelected(uint32_t type, uint32_t typeMask);

// A camera's network set-up as the interface's features show it.
struct CameraNetwork {
    uint64_t mac = 0;
    uint32_t ip = 0, mask = 0, gateway = 0;
    uint32_t usbVersion = 0;
};

// The host side of an interface.
struct HostSide {
    std::string id, displayName, description;
    uint32_t type = OrbCam::InterfaceGigEVision;
    uint64_t mac = 0;
    uint32_t ip = 0, mask = 0, gateway = 0;
};

class InterfaceFeatures : public OrbCam::Interface, public GenApi::IPort {
public:
    explicit InterfaceFeatures(HostSide host);
    ~InterfaceFeatures() override;

    const char *GetID() const override { return m_host.id.c_str(); }
    const char *GetDisplayName() const override { return m_host.displayName.c_str(); }
    const char *GetDescription() const override { return m_host.description.c_str(); }
    uint32_t GetType() const override { return m_host.type; }
    OrbGenParam::Array *GetParams(OrbCamErr *err = nullptr) override;
    void Lock() override;
    void Unlock() override;

    // IPort: the interface's own register space (its features).
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    void Read(void *buffer, int64_t address, int64_t length) override;
    void Write(const void *buffer, int64_t address, int64_t length) override;

    const HostSide &host() const { return m_host; }

protected:
    // With m_mutex held: the cameras of the last discovery, in order, and
    // what the features show of one of them.
    virtual const std::vector<OrbCam::DeviceInfo *> &found() const = 0;
    virtual CameraNetwork networkOf(const OrbCam::DeviceInfo *camera) const = 0;

    // Guards the discovery state of the derived interface; taken after the
    // features' node map lock, never before it (see Lock()).
    mutable std::recursive_mutex m_mutex;
    HostSide m_host;

private:
    void refresh();
    OrbCam::DeviceInfo *selected() const;

    GenApi::CMemoryPort m_memory;
    // The features are made on first use, under a lock of their own: the
    // node map's lock must never be taken while m_mutex is held.
    std::mutex m_paramsMutex;
    std::unique_ptr<GenApi::CNodeMapRef> m_map;
    std::unique_ptr<ParamArray> m_params;
    std::atomic<OrbGenParam::Array *> m_ready { nullptr };
};

// The event callbacks of one device: registration from any thread, delivery
// from the backend's event thread. Unregistering waits for a delivery in
// progress.
class DeviceEvents {
public:
    OrbCamErr add(uint32_t event, OrbCam::EventCallback callback, void *context);
    OrbCamErr remove(uint32_t event, OrbCam::EventCallback callback, void *context);
    void deliver(uint32_t event);

private:
    struct Callback {
        uint32_t event;
        OrbCam::EventCallback function;
        void *context;
    };
    std::recursive_mutex m_mutex;
    std::vector<Callback> m_callbacks;
};

// A subnet mask is a run of ones followed by zeros.
bool validMask(uint32_t mask);

} // namespace OrbCamImpl

#endif
