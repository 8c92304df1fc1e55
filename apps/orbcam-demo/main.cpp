// orbcam-demo: every door of libOrbCameraGuiApi, on the simulated camera
// system or on a GenICam description.
//
//   orbcam-demo tree [--xml FILE | --camera ID] [--config FILE] [--screenshot FILE]
#include <GenApi/GenApi.h>
#include <OrbCam/OrbCam.h>
#include <OrbCam/OrbCamSim.h>
#include <OrbGui/orbgenparamtreeview.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>
#include <QTreeView>

#include <cstdio>
#include <memory>
#include <vector>

namespace {

// Renders the window once it has settled, writes the PNG and quits.
void screenshotLater(QWidget *window, const QString &path)
{
    QTimer::singleShot(1500, window, [window, path] {
        const bool ok = window->grab().save(path);
        std::fprintf(ok ? stdout : stderr, ok ? "screenshot written to %s\n" : "cannot write %s\n",
                     qPrintable(path));
        QCoreApplication::exit(ok ? 0 : 1);
    });
}

OrbCam::DeviceInfo *findCamera(OrbCam::System *system, const QString &id)
{
    OrbCam::InterfaceList *interfaces = system->GetInterfaces(OrbCam::AllInterfaces);
    for (OrbCam::Interface *i = interfaces->First(); i; i = interfaces->Next()) {
        i->UpdateDeviceList(nullptr, 200);
        OrbCam::DeviceInfoList *infos = i->GetDeviceInfoList();
        for (OrbCam::DeviceInfo *d = infos->First(); d; d = infos->Next()) {
            if ((id.isEmpty() && d->GetAccessStatus() == OrbCam::AccessReadWrite)
                || id == QString::fromUtf8(d->GetID())) {
                infos->Release();
                return d;
            }
        }
        infos->Release();
    }
    return nullptr;
}

int tree(QApplication &app, const QCommandLineParser &options)
{
    const QString xml = options.value(QStringLiteral("xml"));
    const QString screenshot = options.value(QStringLiteral("screenshot"));

    // Either a description over zero-filled memory, or a simulated camera.
    GenApi::CNodeMapRef map;
    std::vector<std::unique_ptr<GenApi::CMemoryPort>> ports;
    OrbCam::System *system = nullptr;
    OrbCam::Device *device = nullptr;
    std::unique_ptr<OrbGui::OrbGenParamTreeView> view;
    QString title;
    if (!xml.isEmpty()) {
        try {
            map._LoadXMLFromFile(xml.toUtf8().constData());
        } catch (const GenICam::GenericException &e) {
            std::fprintf(stderr, "orbcam-demo: cannot load %s: %s\n", qPrintable(xml),
                         e.GetDescription());
            return 2;
        }
        GenApi::NodeList_t nodes;
        map._GetNodes(nodes);
        for (GenApi::INode *node : nodes) {
            if (node->GetPrincipalInterfaceType() == GenApi::intfIPort) {
                ports.push_back(std::make_unique<GenApi::CMemoryPort>());
                map._Connect(ports.back().get(), node->GetName());
            }
        }
        view = std::make_unique<OrbGui::OrbGenParamTreeView>(static_cast<GenApi::INodeMap *>(map));
        title = QStringLiteral("%1 (%2)").arg(QString::fromUtf8(map._GetModelName().c_str()), xml);
    } else {
        OrbCamErr err = OrbCamOk;
        system = OrbCam_GetSystem(&err);
        if (!system) {
            std::fprintf(stderr, "orbcam-demo: no camera system: %s\n", OrbCam_ErrorText(err));
            return 2;
        }
        OrbCam::DeviceInfo *info = findCamera(system, options.value(QStringLiteral("camera")));
        if (!info) {
            std::fprintf(stderr, "orbcam-demo: no such camera; orbcam-ls lists them\n");
            OrbCam_ReleaseSystem(system);
            return 2;
        }
        device = OrbCam_CreateDevice(info, OrbCam::AccessControl, 0, &err);
        if (!device) {
            std::fprintf(stderr, "orbcam-demo: cannot open %s: %s\n", info->GetID(),
                         OrbCam_ErrorText(err));
            OrbCam_ReleaseSystem(system);
            return 2;
        }
        view = std::make_unique<OrbGui::OrbGenParamTreeView>(device->GetParams());
        title = QStringLiteral("%1 - %2").arg(QString::fromUtf8(info->GetDisplayName()),
                                              QString::fromUtf8(info->GetID()));
    }
    view->setWindowTitle(title);
    view->setVisibility(OrbGui::Expert);
    view->resize(640, 720);
    view->treeView()->expandAll();
    // Polling makes live features (the temperature) move in the tree.
    view->setPollingTime(500);
    view->enablePolling(true);
    view->show();
    if (!screenshot.isEmpty())
        screenshotLater(view.get(), screenshot);
    const int result = app.exec();
    view.reset(); // before the node map and the device it shows
    if (device)
        OrbCam_ReleaseDevice(device);
    if (system)
        OrbCam_ReleaseSystem(system);
    return result;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("orbcam-demo"));
    QCommandLineParser options;
    options.setApplicationDescription(
        QStringLiteral("The windows of libOrbCameraGuiApi on simulated cameras."));
    options.addHelpOption();
    options.addPositionalArgument(QStringLiteral("door"),
                                  QStringLiteral("tree: the parameter tree view"));
    options.addOption({ QStringLiteral("xml"),
                        QStringLiteral("Show a GenICam description (plain or zip)."),
                        QStringLiteral("FILE") });
    options.addOption(
        { QStringLiteral("camera"),
          QStringLiteral("Show the camera with this identifier (default: the first one)."),
          QStringLiteral("ID") });
    options.addOption({ QStringLiteral("config"),
                        QStringLiteral("Use this simulated set-up (JSON)."),
                        QStringLiteral("FILE") });
    options.addOption({ QStringLiteral("screenshot"),
                        QStringLiteral("Write the settled window to this PNG file and exit."),
                        QStringLiteral("FILE") });
    options.process(app);

    if (options.isSet(QStringLiteral("config"))) {
        std::string why;
        if (OrbCamSim::ConfigureFromFile(options.value(QStringLiteral("config")).toStdString(),
                                         &why)
            != OrbCamOk) {
            std::fprintf(stderr, "orbcam-demo: %s\n", why.c_str());
            return 2;
        }
    }
    const QStringList doors = options.positionalArguments();
    const QString door = doors.isEmpty() ? QStringLiteral("tree") : doors.first();
    if (door == QLatin1String("tree"))
        return tree(app, options);
    std::fprintf(stderr, "orbcam-demo: unknown door '%s' (available: tree)\n", qPrintable(door));
    return 2;
}
