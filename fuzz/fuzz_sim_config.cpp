// Any text as the simulated camera system's JSON set-up: Configure either
// refuses it with a reason or yields a system whose interfaces and cameras
// can be listed, opened and read.
#include <OrbCam/OrbCam.h>
#include <OrbCam/OrbCamSim.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#ifndef ORB_CAMERAS_DIR
#error "ORB_CAMERAS_DIR must name the simulated camera models"
#endif

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    OrbCamSim::SetCamerasDir(ORB_CAMERAS_DIR);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string json(reinterpret_cast<const char *>(data), size);
    std::string why;
    if (OrbCamSim::Configure(json, &why) != OrbCamOk) {
        if (why.empty()) {
            fprintf(stderr, "a refused set-up gives no reason\n");
            abort();
        }
        return 0;
    }
    OrbCamErr err = OrbCamOk;
    OrbCam::System *system = OrbCam_GetSystem(&err);
    if (!system) {
        fprintf(stderr, "an accepted set-up gives no system: %s\n", OrbCam_ErrorText(err));
        abort();
    }
    OrbCam::InterfaceList *interfaces = system->GetInterfaces(OrbCam::AllInterfaces);
    for (OrbCam::Interface *i = interfaces->First(); i; i = interfaces->Next()) {
        i->UpdateDeviceList(nullptr, 0);
        OrbCam::DeviceInfoList *infos = i->GetDeviceInfoList();
        for (OrbCam::DeviceInfo *info = infos->First(); info; info = infos->Next()) {
            (void)info->GetUserName();
            OrbCam::Device *device = OrbCam_CreateDevice(info, OrbCam::AccessControl, 0, &err);
            if (!device)
                continue;
            if (OrbGenParam::Array *params = device->GetParams())
                if (OrbGenParam::String *name = params->GetString("DeviceUserID"))
                    (void)name->GetValue();
            OrbCam_ReleaseDevice(device);
        }
        infos->Release();
    }
    OrbCam_ReleaseSystem(system);
    OrbCamSim::Reset();
    return 0;
}
