// orbcam-ls: lists the interfaces and cameras the camera access API sees,
// with identity, access status and network set-up.
#include <OrbCam/OrbCam.h>
#include <OrbCam/OrbCamSim.h>

#include <nlohmann/json.hpp>

#include <cstdio>
#include <iostream>
#include <string>

namespace {

const char usage[]
    = "usage: orbcam-ls [--backend sim|aravis|all] [--config FILE] [--json]\n"
      "Lists interfaces and cameras of the camera system.\n"
      "--backend B    sim: the simulated cameras (default); aravis: real GigE Vision and\n"
      "               USB3 Vision cameras (discovery takes about a second per interface);\n"
      "               all: both\n"
      "--config FILE  use the simulated set-up described in FILE (JSON)\n"
      "--json         print JSON instead of text\n";

std::string ipText(int64_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", unsigned((value >> 24) & 0xFF),
                  unsigned((value >> 16) & 0xFF), unsigned((value >> 8) & 0xFF),
                  unsigned(value & 0xFF));
    return text;
}

std::string macText(int64_t value)
{
    char text[18];
    std::snprintf(text, sizeof text, "%02X:%02X:%02X:%02X:%02X:%02X",
                  unsigned((value >> 40) & 0xFF), unsigned((value >> 32) & 0xFF),
                  unsigned((value >> 24) & 0xFF), unsigned((value >> 16) & 0xFF),
                  unsigned((value >> 8) & 0xFF), unsigned(value & 0xFF));
    return text;
}

const char *typeText(uint32_t type)
{
    switch (type) {
    case OrbCam::InterfaceUSB3Vision:
        return "USB3 Vision";
    case OrbCam::InterfaceGigEVision:
        return "GigE Vision";
    case OrbCam::InterfaceCameraLink:
        return "CameraLink";
    case OrbCam::InterfaceCoaXPress:
        return "CoaXPress";
    case OrbCam::InterfaceHDSDI:
        return "HD-SDI";
    default:
        return "Custom";
    }
}

const char *accessText(uint32_t status)
{
    switch (status) {
    case OrbCam::AccessReadWrite:
        return "ReadWrite";
    case OrbCam::AccessReadOnly:
        return "ReadOnly";
    case OrbCam::AccessNone:
        return "NO ACCESS";
    case OrbCam::AccessIPSubnetMismatch:
        return "IP Subnet Mismatch";
    default:
        return "Unknown";
    }
}

int64_t intParam(OrbGenParam::Array *params, const char *name)
{
    OrbGenParam::Int *p = params ? params->GetInt(name) : nullptr;
    return p ? p->GetValue() : 0;
}

int run(int argc, char **argv)
{
    bool asJson = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--json") {
            asJson = true;
        } else if (arg == "--backend" && i + 1 < argc) {
            const std::string name = argv[++i];
            const uint32_t backends = name == "sim" ? uint32_t(OrbCam::BackendSimulated)
                : name == "aravis"                  ? uint32_t(OrbCam::BackendAravis)
                : name == "all" ? uint32_t(OrbCam::BackendSimulated | OrbCam::BackendAravis)
                                : 0u;
            if (backends == 0) {
                std::cerr << "orbcam-ls: unknown backend '" << name << "'\n" << usage;
                return 2;
            }
            if (OrbCam_SetBackends(backends) != OrbCamOk) {
                std::cerr << "orbcam-ls: this build cannot reach real cameras (built without "
                             "Aravis)\n";
                return 2;
            }
        } else if (arg == "--config" && i + 1 < argc) {
            std::string why;
            if (OrbCamSim::ConfigureFromFile(argv[++i], &why) != OrbCamOk) {
                std::cerr << "orbcam-ls: cannot use " << argv[i] << ": " << why << '\n';
                return 2;
            }
        } else if (arg == "--help" || arg == "-h") {
            std::cout << usage;
            return 0;
        } else {
            std::cerr << "orbcam-ls: unexpected argument '" << arg << "'\n" << usage;
            return 2;
        }
    }

    OrbCamErr err = OrbCamOk;
    OrbCam::System *system = OrbCam_GetSystem(&err);
    if (!system) {
        std::cerr << "orbcam-ls: no camera system: " << OrbCam_ErrorText(err) << '\n';
        return 1;
    }

    nlohmann::json out = nlohmann::json::array();
    OrbCam::InterfaceList *interfaces = system->GetInterfaces(OrbCam::AllInterfaces);
    for (OrbCam::Interface *i = interfaces->First(); i; i = interfaces->Next()) {
        i->UpdateDeviceList(nullptr, 1000);
        OrbGenParam::Array *params = i->GetParams();
        const bool gige = i->GetType() == OrbCam::InterfaceGigEVision;
        nlohmann::json ij = { { "id", i->GetID() },
                              { "displayName", i->GetDisplayName() },
                              { "description", i->GetDescription() },
                              { "type", typeText(i->GetType()) } };
        if (gige) {
            ij["mac"] = macText(intParam(params, "GevInterfaceMACAddress"));
            ij["ip"] = ipText(intParam(params, "GevInterfaceSubnetIPAddress"));
            ij["mask"] = ipText(intParam(params, "GevInterfaceSubnetMask"));
        }
        if (!asJson) {
            std::cout << i->GetID() << "  " << typeText(i->GetType()) << "  \""
                      << i->GetDisplayName() << '"';
            if (gige)
                std::cout << "  " << ij["ip"].get<std::string>() << '/'
                          << ij["mask"].get<std::string>() << "  MAC "
                          << ij["mac"].get<std::string>();
            std::cout << '\n';
        }
        ij["cameras"] = nlohmann::json::array();
        OrbCam::DeviceInfoList *infos = i->GetDeviceInfoList();
        if (infos->Size() == 0 && !asJson)
            std::cout << "  (no cameras)\n";
        for (OrbCam::DeviceInfo *d = infos->First(); d; d = infos->Next()) {
            nlohmann::json dj = { { "id", d->GetID() },
                                  { "index", d->GetIndex() },
                                  { "displayName", d->GetDisplayName() },
                                  { "vendor", d->GetVendor() },
                                  { "model", d->GetModel() },
                                  { "serialNumber", d->GetSerialNumber() },
                                  { "version", d->GetVersion() },
                                  { "userName", d->GetUserName() },
                                  { "accessStatus", accessText(d->GetAccessStatus()) } };
            if (OrbGenParam::Int *selector = params ? params->GetInt("DeviceSelector") : nullptr)
                selector->SetValue(d->GetIndex());
            if (gige) {
                dj["mac"] = macText(intParam(params, "GevDeviceMACAddress"));
                dj["ip"] = ipText(intParam(params, "GevDeviceIPAddress"));
                dj["mask"] = ipText(intParam(params, "GevDeviceSubnetMask"));
                dj["gateway"] = ipText(intParam(params, "GevDeviceGateway"));
            } else if (i->GetType() == OrbCam::InterfaceUSB3Vision) {
                char version[8];
                std::snprintf(
                    version, sizeof version, "0x%04llX",
                    static_cast<unsigned long long>(intParam(params, "DeviceUSBVersionDetected")));
                dj["usbVersion"] = version;
            }
            if (!asJson) {
                std::cout << "  [" << d->GetIndex() << "] " << d->GetID() << "  " << d->GetVendor()
                          << ' ' << d->GetModel() << "  serial " << d->GetSerialNumber()
                          << "  version " << d->GetVersion() << "  user \"" << d->GetUserName()
                          << "\"  " << accessText(d->GetAccessStatus());
                if (gige)
                    std::cout << "  " << dj["ip"].get<std::string>() << '/'
                              << dj["mask"].get<std::string>() << " gw "
                              << dj["gateway"].get<std::string>() << "  MAC "
                              << dj["mac"].get<std::string>();
                else if (dj.contains("usbVersion"))
                    std::cout << "  USB " << dj["usbVersion"].get<std::string>();
                std::cout << '\n';
            }
            ij["cameras"].push_back(dj);
        }
        infos->Release();
        out.push_back(ij);
    }
    OrbCam_ReleaseSystem(system);
    // Names come from the cameras' registers and need not be valid UTF-8;
    // they are printed with the bad bytes replaced rather than refused.
    if (asJson)
        std::cout << out.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    return 0;
}

} // namespace

// Whatever goes wrong ends in one line on stderr and exit status 2, never in
// an abort.
int main(int argc, char **argv)
{
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc &) {
        std::cerr << "orbcam-ls: out of memory\n";
    } catch (const std::exception &e) {
        std::cerr << "orbcam-ls: " << e.what() << '\n';
    }
    return 2;
}
