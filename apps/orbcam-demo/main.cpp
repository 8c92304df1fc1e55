// orbcam-demo: every door of libOrbCameraGuiApi, on the simulated camera
// system or on a GenICam description.
//
// Doors (each also takes --backend sim|aravis|all, --config FILE and
// --screenshot FILE):
//   orbcam-demo config [--camera ID | --xml FILE [--values FILE]]
//   orbcam-demo tree [--xml FILE | --camera ID] [--visibility LEVEL] [--set NAME=VALUE]...
//                    [--select NAME] [--menu]
//   orbcam-demo select [--poll]
//   orbcam-demo dialog trigger|strobe|pulse|output|color|frameab
//                      [--camera ID | --xml FILE [--values FILE]]
//   orbcam-demo widgets [--camera ID | --xml FILE [--values FILE]]
#include "gallery.h"

#include <GenApi/GenApi.h>
#include <OrbCam/OrbCam.h>
#include <OrbCam/OrbCamSim.h>
#include <OrbGui/orbguitranslations.h>
#include <OrbGui/orbcameraselectordialog.h>
#include <OrbGui/orbcamconfig.h>
#include <OrbGui/orbcamconfigcolordialog.h>
#include <OrbGui/orbcamconfigframeabdialog.h>
#include <OrbGui/orbcamconfigoutputdialog.h>
#include <OrbGui/orbcamconfigpulsedialog.h>
#include <OrbGui/orbcamconfigstrobedialog.h>
#include <OrbGui/orbcamconfigtriggerdialog.h>
#include <OrbGui/orbgenparamtreeview.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QScreen>
#include <QPixmap>
#include <QTimer>
#include <QTreeView>

#include <cstdio>
#include <memory>
#include <vector>

namespace {

// A simulated set-up of one GigE Vision camera made from a description file.
std::string cameraOfDescription(const QString &xml, const QString &values)
{
    QJsonObject camera { { QStringLiteral("model"), QFileInfo(xml).absoluteFilePath() },
                         { QStringLiteral("serial"), QStringLiteral("XML-0001") } };
    if (!values.isEmpty())
        camera.insert(QStringLiteral("values"), QFileInfo(values).absoluteFilePath());
    const QJsonObject gev { { QStringLiteral("id"), QStringLiteral("GEV0") },
                            { QStringLiteral("type"), QStringLiteral("GigEVision") },
                            { QStringLiteral("cameras"), QJsonArray { camera } } };
    const QJsonObject setup { { QStringLiteral("interfaces"), QJsonArray { gev } } };
    return QJsonDocument(setup).toJson(QJsonDocument::Compact).toStdString();
}

// Renders the window once it has settled, writes the PNG and quits.
void screenshotLater(QWidget *window, const QString &path)
{
    QTimer::singleShot(1500, window, [window, path] {
        // An open menu is a window of its own: then the screen is taken
        // where the two lie.
        QPixmap picture = window->grab();
        if (QWidget *popup = QApplication::activePopupWidget()) {
            const QRect area = window->frameGeometry().united(popup->frameGeometry());
            picture = QGuiApplication::primaryScreen()->grabWindow(0, area.x(), area.y(),
                                                                   area.width(), area.height());
        }
        const bool ok = picture.save(path);
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

QString ipText(int64_t address)
{
    return QStringLiteral("%1.%2.%3.%4")
        .arg((address >> 24) & 0xFF)
        .arg((address >> 16) & 0xFF)
        .arg((address >> 8) & 0xFF)
        .arg(address & 0xFF);
}

// Why a camera that is listed cannot be opened, in words that say what to
// do about it.
QString whyNotOpened(OrbCam::DeviceInfo *info, OrbCamErr err)
{
    const QString id = QString::fromUtf8(info->GetID());
    switch (info->GetAccessStatus()) {
    case OrbCam::AccessIPSubnetMismatch: {
        int64_t camera = 0, card = 0, mask = 0;
        OrbCam::Interface *iface = info->GetInterface();
        iface->Lock();
        if (OrbGenParam::Array *params = iface->GetParams()) {
            auto read = [params](const char *name, int64_t *value) {
                OrbGenParam::Int *p = params->GetInt(name);
                OrbCamErr e = OrbCamOk;
                if (p)
                    *value = p->GetValue(&e);
                return p && e == OrbCamOk;
            };
            OrbGenParam::Int *selector = params->GetInt("DeviceSelector");
            if (selector && selector->SetValue(info->GetIndex()) == OrbCamOk)
                read("GevDeviceIPAddress", &camera);
            read("GevInterfaceSubnetIPAddress", &card);
            read("GevInterfaceSubnetMask", &mask);
        }
        iface->Unlock();
        return QStringLiteral("camera %1 has the address %2, outside the subnet of its network "
                              "card (%3/%4), and cannot be opened until it has an address in "
                              "that subnet: give it one with Set IP Address in the camera "
                              "selector (orbcam-demo select, or orbcam-demo config without "
                              "--camera)")
            .arg(id, ipText(camera), ipText(card), ipText(mask));
    }
    case OrbCam::AccessReadOnly:
    case OrbCam::AccessNone:
        return QStringLiteral("camera %1 is in use by another application; close it there, or "
                              "choose another camera (orbcam-ls lists them)")
            .arg(id);
    default:
        return QStringLiteral("cannot open camera %1: %2")
            .arg(id, QString::fromUtf8(OrbCam_ErrorText(err)));
    }
}

// The simulated system and, when it can be opened, the camera the options
// name (or the first one); both are released at the end of the scope. When
// there is no camera, `why` says why.
struct OpenCamera {
    explicit OpenCamera(const QCommandLineParser &options)
    {
        system = OrbCam_GetSystem(&err);
        if (!system) {
            why = QStringLiteral("no camera system: %1")
                      .arg(QString::fromUtf8(OrbCam_ErrorText(err)));
            return;
        }
        const QString id = options.value(QStringLiteral("camera"));
        OrbCam::DeviceInfo *info = findCamera(system, id);
        if (!info) {
            why = id.isEmpty() ? QStringLiteral("no camera that can be opened")
                               : QStringLiteral("no camera %1; orbcam-ls lists them").arg(id);
            return;
        }
        device = OrbCam_CreateDevice(info, OrbCam::AccessControl, 0, &err);
        if (!device)
            why = whyNotOpened(info, err);
    }
    // Says why there is no camera (one line on stderr) and returns false.
    bool complain() const
    {
        std::fprintf(stderr, "orbcam-demo: %s\n", qPrintable(why));
        return false;
    }
    ~OpenCamera()
    {
        if (device)
            OrbCam_ReleaseDevice(device);
        if (system)
            OrbCam_ReleaseSystem(system);
    }
    OpenCamera(const OpenCamera &) = delete;
    OpenCamera &operator=(const OpenCamera &) = delete;

    OrbCamErr err = OrbCamOk;
    OrbCam::System *system = nullptr;
    OrbCam::Device *device = nullptr;
    QString why;
};

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
        ports = GenApi::ConnectMemoryPorts(map);
        view = std::make_unique<OrbGui::OrbGenParamTreeView>(static_cast<GenApi::INodeMap *>(map));
        title = QStringLiteral("%1 (%2)").arg(QString::fromUtf8(map._GetModelName().c_str()), xml);
    } else {
        OrbCamErr err = OrbCamOk;
        system = OrbCam_GetSystem(&err);
        if (!system) {
            std::fprintf(stderr, "orbcam-demo: no camera system: %s\n", OrbCam_ErrorText(err));
            return 2;
        }
        const QString id = options.value(QStringLiteral("camera"));
        OrbCam::DeviceInfo *info = findCamera(system, id);
        if (!info) {
            std::fprintf(stderr, "orbcam-demo: no camera %s; orbcam-ls lists them\n",
                         qPrintable(id));
            OrbCam_ReleaseSystem(system);
            return 2;
        }
        device = OrbCam_CreateDevice(info, OrbCam::AccessControl, 0, &err);
        if (!device) {
            std::fprintf(stderr, "orbcam-demo: %s\n", qPrintable(whyNotOpened(info, err)));
            OrbCam_ReleaseSystem(system);
            return 2;
        }
        view = std::make_unique<OrbGui::OrbGenParamTreeView>(device->GetParams());
        title = QStringLiteral("%1 - %2").arg(QString::fromUtf8(info->GetDisplayName()),
                                              QString::fromUtf8(info->GetID()));
    }
    view->setWindowTitle(title);
    const QString level = options.value(QStringLiteral("visibility")).toLower();
    view->setVisibility(level == QLatin1String("beginner")   ? OrbGui::Beginner
                            : level == QLatin1String("guru") ? OrbGui::Guru
                                                             : OrbGui::Expert);
    view->resize(640, 720);
    view->treeView()->expandAll();
    // Rows by their shown name, for the options that act as a user would.
    QTreeView *tree = view->treeView();
    auto rowNamed = [tree](const QString &name) {
        const QModelIndexList found
            = tree->model()->match(tree->model()->index(0, 0), Qt::DisplayRole, name, 1,
                                   Qt::MatchExactly | Qt::MatchRecursive);
        return found.isEmpty() ? QModelIndex() : found.first();
    };
    for (const QString &assignment : options.values(QStringLiteral("set"))) {
        const QString name = assignment.section(QLatin1Char('='), 0, 0);
        const QModelIndex row = rowNamed(name);
        if (!row.isValid()
            || !tree->model()->setData(row.sibling(row.row(), 1),
                                       assignment.section(QLatin1Char('='), 1))) {
            std::fprintf(stderr, "orbcam-demo: cannot set %s\n", qPrintable(assignment));
            return 2;
        }
    }
    if (options.isSet(QStringLiteral("select"))) {
        const QModelIndex row = rowNamed(options.value(QStringLiteral("select")));
        if (!row.isValid()) {
            std::fprintf(stderr, "orbcam-demo: no row named %s\n",
                         qPrintable(options.value(QStringLiteral("select"))));
            return 2;
        }
        tree->scrollTo(row);
        tree->setCurrentIndex(row);
    }
    if (options.isSet(QStringLiteral("menu")))
        QTimer::singleShot(700, tree, [tree] {
            emit tree->customContextMenuRequested(tree->visualRect(tree->currentIndex()).center());
        });
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

int widgets(QApplication &app, const QCommandLineParser &options)
{
    const OpenCamera camera(options);
    if (!camera.system)
        return camera.complain(), 2;
    OrbCam::Device *device = camera.device;
    // A camera asked for by name is one the user wants bound: without it
    // the door says why and ends, rather than show widgets bound to nothing.
    if (!device && options.isSet(QStringLiteral("camera")))
        return camera.complain(), 2;
    if (!device)
        std::fprintf(stderr, "orbcam-demo: %s; the widgets run on their own\n",
                     qPrintable(camera.why));
    GenApi::INodeMap *map = device ? device->GetParams()->GetNodeMap() : nullptr;
    int result = 0;
    {
        const std::unique_ptr<QWidget> window = makeValueWidgets(map);
        window->show();
        if (!options.value(QStringLiteral("screenshot")).isEmpty())
            screenshotLater(window.get(), options.value(QStringLiteral("screenshot")));
        result = app.exec();
    }
    return result;
}

// A feature dialog on a simulated camera.
int dialog(QApplication &app, const QCommandLineParser &options)
{
    const QStringList doors = options.positionalArguments();
    const QString which = doors.size() > 1 ? doors.at(1) : QString();
    const QStringList kinds { QStringLiteral("trigger"), QStringLiteral("strobe"),
                              QStringLiteral("pulse"),   QStringLiteral("output"),
                              QStringLiteral("color"),   QStringLiteral("frameab") };
    if (!kinds.contains(which)) {
        std::fprintf(stderr, "orbcam-demo: dialog needs one of: %s\n",
                     qPrintable(kinds.join(QStringLiteral(", "))));
        return 2;
    }
    const OpenCamera camera(options);
    if (!camera.device) {
        camera.complain();
        return 2;
    }
    OrbCam::Device *device = camera.device;
    int result = 0;
    {
        std::unique_ptr<QDialog> window;
        if (which == QLatin1String("trigger"))
            window = std::make_unique<OrbGui::OrbCamConfigTriggerDialog>(device);
        else if (which == QLatin1String("strobe"))
            window = std::make_unique<OrbGui::OrbCamConfigStrobeDialog>(device);
        else if (which == QLatin1String("pulse"))
            window = std::make_unique<OrbGui::OrbCamConfigPulseDialog>(device);
        else if (which == QLatin1String("output"))
            window = std::make_unique<OrbGui::OrbCamConfigOutputDialog>(device);
        else if (which == QLatin1String("color"))
            window = std::make_unique<OrbGui::OrbCamConfigColorDialog>(device);
        else
            window = std::make_unique<OrbGui::OrbCamConfigFrameABDialog>(device);
        window->show();
        if (!options.value(QStringLiteral("screenshot")).isEmpty())
            screenshotLater(window.get(), options.value(QStringLiteral("screenshot")));
        result = app.exec();
    }
    return result;
}

// The configuration window. Without a camera it asks in the selector, as a
// host application's user would see it; a screenshot cannot wait for a
// choice, so then it takes the first camera that can be opened.
int config(QApplication &app, const QCommandLineParser &options)
{
    const QString screenshot = options.value(QStringLiteral("screenshot"));
    std::unique_ptr<OpenCamera> camera;
    if (options.isSet(QStringLiteral("camera")) || !screenshot.isEmpty()) {
        camera = std::make_unique<OpenCamera>(options);
        if (!camera->device) {
            camera->complain();
            return 2;
        }
    }
    int result = 0;
    {
        OrbGui::OrbCamConfig window(camera ? camera->device : nullptr);
        window.show();
        if (!screenshot.isEmpty())
            screenshotLater(&window, screenshot);
        result = app.exec();
    }
    return result;
}

// The camera selector on the simulated system; prints the chosen camera's
// identifier (nothing on cancel).
int select(const QCommandLineParser &options)
{
    OrbCamErr err = OrbCamOk;
    OrbCam::System *system = OrbCam_GetSystem(&err);
    if (!system) {
        std::fprintf(stderr, "orbcam-demo: no camera system: %s\n", OrbCam_ErrorText(err));
        return 2;
    }
    {
        OrbGui::OrbCameraSelectorDialog dialog(system, nullptr,
                                               options.isSet(QStringLiteral("poll")));
        if (!options.value(QStringLiteral("screenshot")).isEmpty())
            screenshotLater(&dialog, options.value(QStringLiteral("screenshot")));
        if (dialog.exec() == QDialog::Accepted)
            if (OrbCam::DeviceInfo *chosen = dialog.selectedCamera())
                std::printf("%s\n", chosen->GetID());
    }
    OrbCam_ReleaseSystem(system);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("orbcam-demo"));
    // The library's windows in the user's language (LANG), where there is a
    // translation.
    OrbGui::installTranslations();
    QCommandLineParser options;
    options.setApplicationDescription(
        QStringLiteral("The windows of libOrbCameraGuiApi on simulated cameras."));
    options.addHelpOption();
    options.addPositionalArgument(
        QStringLiteral("door"),
        QStringLiteral("config: the camera configuration window; "
                       "tree: the parameter tree view; "
                       "widgets: the value widgets on a camera; "
                       "select: the camera selector; "
                       "dialog trigger|strobe|pulse|output|color|frameab: a feature dialog"));
    options.addOption({ QStringLiteral("xml"),
                        QStringLiteral("tree: show a GenICam description (plain or zip); "
                                       "config, dialog, widgets: on a simulated camera made "
                                       "from it."),
                        QStringLiteral("FILE") });
    options.addOption({ QStringLiteral("values"),
                        QStringLiteral("With --xml: the simulated camera's start values (a "
                                       "JSON side file as the simulated models have)."),
                        QStringLiteral("FILE") });
    options.addOption(
        { QStringLiteral("camera"),
          QStringLiteral("Show the camera with this identifier (default: the first one)."),
          QStringLiteral("ID") });
    options.addOption({ QStringLiteral("config"),
                        QStringLiteral("Use this simulated set-up (JSON)."),
                        QStringLiteral("FILE") });
    options.addOption(
        { QStringLiteral("backend"),
          QStringLiteral("sim: the simulated cameras (default); aravis: real GigE Vision and "
                         "USB3 Vision cameras; all: both."),
          QStringLiteral("BACKEND") });
    options.addOption({ QStringLiteral("set"),
                        QStringLiteral("tree: write VALUE to the row shown as NAME, as a user "
                                       "would (the row then shows as changed)."),
                        QStringLiteral("NAME=VALUE") });
    options.addOption({ QStringLiteral("visibility"),
                        QStringLiteral("tree: the visibility level (beginner, expert or guru; "
                                       "default expert)."),
                        QStringLiteral("LEVEL") });
    options.addOption({ QStringLiteral("select"),
                        QStringLiteral("tree: select the row shown as NAME."),
                        QStringLiteral("NAME") });
    options.addOption({ QStringLiteral("menu"),
                        QStringLiteral("tree: open the context menu on the selected row.") });
    options.addOption(
        { QStringLiteral("poll"),
          QStringLiteral("select: keep looking for cameras (about once a second).") });
    options.addOption({ QStringLiteral("screenshot"),
                        QStringLiteral("Write the settled window to this PNG file and exit."),
                        QStringLiteral("FILE") });
    options.process(app);

    if (options.isSet(QStringLiteral("backend"))) {
        const QString name = options.value(QStringLiteral("backend"));
        const uint32_t backends = name == QLatin1String("sim") ? uint32_t(OrbCam::BackendSimulated)
            : name == QLatin1String("aravis")                  ? uint32_t(OrbCam::BackendAravis)
            : name == QLatin1String("all")
            ? uint32_t(OrbCam::BackendSimulated | OrbCam::BackendAravis)
            : 0u;
        if (backends == 0) {
            std::fprintf(stderr, "orbcam-demo: unknown backend '%s' (sim, aravis or all)\n",
                         qPrintable(name));
            return 2;
        }
        if (OrbCam_SetBackends(backends) != OrbCamOk) {
            std::fprintf(stderr,
                         "orbcam-demo: this build cannot reach real cameras (built "
                         "without Aravis)\n");
            return 2;
        }
    }
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
    // An option the door does not use, or a value it does not know, is
    // said at once: silently ignored, it would show something else than
    // what was asked for.
    const QMap<QString, QStringList> doorOptions {
        { QStringLiteral("config"),
          { QStringLiteral("camera"), QStringLiteral("xml"), QStringLiteral("values") } },
        { QStringLiteral("tree"),
          { QStringLiteral("xml"), QStringLiteral("camera"), QStringLiteral("set"),
            QStringLiteral("visibility"), QStringLiteral("select"), QStringLiteral("menu") } },
        { QStringLiteral("select"), { QStringLiteral("poll") } },
        { QStringLiteral("dialog"),
          { QStringLiteral("camera"), QStringLiteral("xml"), QStringLiteral("values") } },
        { QStringLiteral("widgets"),
          { QStringLiteral("camera"), QStringLiteral("xml"), QStringLiteral("values") } },
    };
    if (doorOptions.contains(door)) {
        const QStringList everywhere { QStringLiteral("backend"), QStringLiteral("config"),
                                       QStringLiteral("screenshot"), QStringLiteral("help") };
        for (const QString &name : options.optionNames())
            if (!everywhere.contains(name) && !doorOptions.value(door).contains(name)) {
                std::fprintf(stderr, "orbcam-demo: %s does not take --%s\n", qPrintable(door),
                             qPrintable(name));
                return 2;
            }
        if (doors.size() > (door == QLatin1String("dialog") ? 2 : 1)) {
            std::fprintf(stderr, "orbcam-demo: %s does not take '%s'\n", qPrintable(door),
                         qPrintable(doors.last()));
            return 2;
        }
        if (options.isSet(QStringLiteral("xml")) && options.isSet(QStringLiteral("camera"))) {
            std::fprintf(stderr, "orbcam-demo: %s shows --xml or --camera, not both\n",
                         qPrintable(door));
            return 2;
        }
        if (options.isSet(QStringLiteral("values")) && !options.isSet(QStringLiteral("xml"))) {
            std::fprintf(stderr, "orbcam-demo: --values goes with --xml\n");
            return 2;
        }
        if (door != QLatin1String("tree") && options.isSet(QStringLiteral("xml"))) {
            if (options.isSet(QStringLiteral("config"))) {
                std::fprintf(stderr, "orbcam-demo: --xml makes the set-up; not with --config\n");
                return 2;
            }
            std::string why;
            if (OrbCamSim::Configure(cameraOfDescription(options.value(QStringLiteral("xml")),
                                                         options.value(QStringLiteral("values"))),
                                     &why)
                != OrbCamOk) {
                std::fprintf(stderr, "orbcam-demo: %s\n", why.c_str());
                return 2;
            }
        }
        const QString level = options.value(QStringLiteral("visibility")).toLower();
        if (options.isSet(QStringLiteral("visibility")) && level != QLatin1String("beginner")
            && level != QLatin1String("expert") && level != QLatin1String("guru")) {
            std::fprintf(stderr,
                         "orbcam-demo: unknown visibility '%s' (beginner, expert or guru)\n",
                         qPrintable(options.value(QStringLiteral("visibility"))));
            return 2;
        }
    }
    // Whatever escapes a door ends in one line and exit status 2.
    try {
        if (door == QLatin1String("config"))
            return config(app, options);
        if (door == QLatin1String("tree"))
            return tree(app, options);
        if (door == QLatin1String("dialog"))
            return dialog(app, options);
        if (door == QLatin1String("select"))
            return select(options);
        if (door == QLatin1String("widgets"))
            return widgets(app, options);
    } catch (const GenICam::GenericException &e) {
        std::fprintf(stderr, "orbcam-demo: %s\n", e.GetDescription());
        return 2;
    } catch (const std::exception &e) {
        std::fprintf(stderr, "orbcam-demo: %s\n", e.what());
        return 2;
    }
    std::fprintf(
        stderr,
        "orbcam-demo: unknown door '%s' (available: config, tree, widgets, select, dialog)\n",
        qPrintable(door));
    return 2;
}
