// Helpers for the camera access API tests: a fresh simulated system per
// test and short ways to reach cameras and parameters.
#ifndef ORBCAMTEST_H
#define ORBCAMTEST_H

#include <OrbCam/OrbCam.h>
#include <OrbCam/OrbCamSim.h>

#include <QtTest>

#include <string>
#include <vector>

namespace OrbCamTest {

// Holds one reference to the system for the test's life.
struct SystemRef {
    SystemRef()
    {
        OrbCamErr err = OrbCamErrUnknown;
        system = OrbCam_GetSystem(&err);
        if (!system || err != OrbCamOk)
            qFatal("no camera system: %s", OrbCam_ErrorText(err));
    }
    ~SystemRef() { OrbCam_ReleaseSystem(system); }
    SystemRef(const SystemRef &) = delete;
    SystemRef &operator=(const SystemRef &) = delete;

    OrbCam::Interface *interface(const char *id) const
    {
        OrbCam::InterfaceList *list = system->GetInterfaces(OrbCam::AllInterfaces);
        for (OrbCam::Interface *i = list->First(); i; i = list->Next())
            if (std::string(i->GetID()) == id)
                return i;
        return nullptr;
    }
    // The cameras found on an interface after a fresh discovery.
    std::vector<OrbCam::DeviceInfo *> cameras(const char *interfaceId,
                                              bool *changed = nullptr) const
    {
        std::vector<OrbCam::DeviceInfo *> result;
        OrbCam::Interface *i = interface(interfaceId);
        if (!i)
            return result;
        i->UpdateDeviceList(changed, 200);
        OrbCam::DeviceInfoList *list = i->GetDeviceInfoList();
        for (OrbCam::DeviceInfo *d = list->First(); d; d = list->Next())
            result.push_back(d);
        list->Release();
        return result;
    }
    OrbCam::DeviceInfo *camera(const char *id) const
    {
        for (const char *i : { "GEV0", "U3V0", "CXP0" })
            for (OrbCam::DeviceInfo *d : cameras(i))
                if (std::string(d->GetID()) == id)
                    return d;
        return nullptr;
    }

    OrbCam::System *system = nullptr;
};

// An open camera, released at the end of the scope.
struct DeviceRef {
    explicit DeviceRef(OrbCam::DeviceInfo *info, uint32_t access = OrbCam::AccessControl)
    {
        device = OrbCam_CreateDevice(info, access, 0, &err);
    }
    ~DeviceRef() { OrbCam_ReleaseDevice(device); }
    DeviceRef(const DeviceRef &) = delete;
    DeviceRef &operator=(const DeviceRef &) = delete;
    OrbGenParam::Array *params() const { return device ? device->GetParams() : nullptr; }

    OrbCam::Device *device = nullptr;
    OrbCamErr err = OrbCamErrUnknown;
};

// Counts parameter updates, from any thread.
struct CountingSink : OrbGenParam::ParamEventSink {
    std::atomic<int> calls { 0 };
    std::atomic<OrbGenParam::Param *> last { nullptr };
    void OnParameterUpdate(OrbGenParam::Param *param) override
    {
        last = param;
        ++calls;
    }
};

} // namespace OrbCamTest

#endif
