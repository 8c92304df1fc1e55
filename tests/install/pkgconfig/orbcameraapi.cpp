// Built with `pkg-config --cflags --libs orbcameraapi` only: lists the
// simulated cameras.
#include <OrbCam/OrbCam.h>

#include <cstdio>

int main()
{
    OrbCamErr err = OrbCamOk;
    OrbCam::System *system = OrbCam_GetSystem(&err);
    if (!system)
        return 1;
    int cameras = 0;
    OrbCam::InterfaceList *interfaces = system->GetInterfaces(OrbCam::AllInterfaces);
    for (OrbCam::Interface *i = interfaces->First(); i; i = interfaces->Next()) {
        i->UpdateDeviceList(nullptr, 100);
        OrbCam::DeviceInfoList *infos = i->GetDeviceInfoList();
        cameras += static_cast<int>(infos->Size());
        infos->Release();
    }
    OrbCam_ReleaseSystem(system);
    std::printf("%d cameras\n", cameras);
    return cameras > 0 ? 0 : 1;
}
