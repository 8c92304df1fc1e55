// Uses all three installed libraries through their public headers only:
// opens the first simulated camera, reads a feature through GenApi and puts
// it into a value widget. Exit status 0 when all of that worked.
#include <GenApi/GenApi.h>
#include <OrbCam/OrbCam.h>
#include <OrbGui/qtorbsliderspinbox.h>

#include <QApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    OrbCamErr err = OrbCamOk;
    OrbCam::System *system = OrbCam_GetSystem(&err);
    if (!system) {
        std::fprintf(stderr, "no system: %s\n", OrbCam_ErrorText(err));
        return 1;
    }
    int result = 1;
    OrbCam::InterfaceList *interfaces = system->GetInterfaces(OrbCam::AllInterfaces);
    for (OrbCam::Interface *i = interfaces->First(); i && result; i = interfaces->Next()) {
        i->UpdateDeviceList(nullptr, 200);
        OrbCam::DeviceInfoList *infos = i->GetDeviceInfoList();
        for (OrbCam::DeviceInfo *info = infos->First(); info && result; info = infos->Next()) {
            OrbCam::Device *device = OrbCam_CreateDevice(info, OrbCam::AccessControl, 0, &err);
            if (!device)
                continue;
            GenApi::CIntegerPtr width = device->GetParams()->GetNodeMap()->GetNode("Width");
            if (width) {
                OrbGui::QtOrbSliderSpinBox widget;
                widget.setRange(0, static_cast<int>(width->GetMax()));
                widget.setValue(static_cast<int>(width->GetValue()));
                std::printf("%s Width = %d\n", info->GetID(), widget.value());
                result = widget.value() > 0 ? 0 : 1;
            }
            OrbCam_ReleaseDevice(device);
        }
        infos->Release();
    }
    OrbCam_ReleaseSystem(system);
    return result;
}
