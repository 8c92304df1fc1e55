// A Qt application that embeds the parameter tree view in its own main
// window and lets the user pick the camera with the camera selector.
//
//   example-qt-host [--first] [--quit-after MS]
//
// --first opens the first camera that can be opened instead of asking;
// --quit-after ends the program after that many milliseconds (for tests).
#include <OrbCam/OrbCam.h>
#include <OrbGui/orbcameraselectordialog.h>
#include <OrbGui/orbgenparamtreeview.h>

#include <QApplication>
#include <QMainWindow>
#include <QMessageBox>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>

namespace {

class HostWindow : public QMainWindow {
public:
    explicit HostWindow(OrbCam::System *system)
        : m_system(system)
        , m_tree(new OrbGui::OrbGenParamTreeView(this))
    {
        setWindowTitle(QStringLiteral("Example host"));
        // The view is a dialog class; inside another window it is a plain
        // child widget.
        m_tree->setWindowFlags(Qt::Widget);
        setCentralWidget(m_tree);
        QToolBar *tools = addToolBar(QStringLiteral("Camera"));
        tools->addAction(QStringLiteral("Select camera…"), this, [this] { selectCamera(); });
        statusBar()->showMessage(QStringLiteral("No camera"));
        resize(640, 720);
    }
    ~HostWindow() override { closeCamera(); }

    void selectCamera()
    {
        OrbGui::OrbCameraSelectorDialog selector(m_system, this);
        if (selector.exec() == QDialog::Accepted && selector.selectedCamera())
            openCamera(selector.selectedCamera());
    }

    bool openFirstCamera()
    {
        OrbCam::InterfaceList *interfaces = m_system->GetInterfaces(OrbCam::AllInterfaces);
        for (OrbCam::Interface *i = interfaces->First(); i; i = interfaces->Next()) {
            i->UpdateDeviceList(nullptr, 200);
            OrbCam::DeviceInfoList *infos = i->GetDeviceInfoList();
            for (OrbCam::DeviceInfo *info = infos->First(); info; info = infos->Next()) {
                if (openCamera(info)) {
                    infos->Release();
                    return true;
                }
            }
            infos->Release();
        }
        return false;
    }

private:
    bool openCamera(OrbCam::DeviceInfo *info)
    {
        OrbCamErr err = OrbCamOk;
        OrbCam::Device *device = OrbCam_CreateDevice(info, OrbCam::AccessControl, 0, &err);
        if (!device || !device->GetParams()) {
            if (device)
                OrbCam_ReleaseDevice(device);
            statusBar()->showMessage(QStringLiteral("Cannot open %1: %2")
                                         .arg(QString::fromUtf8(info->GetID()),
                                              QString::fromUtf8(OrbCam_ErrorText(err))));
            return false;
        }
        m_tree->clearParams(); // before the old device goes
        closeCamera();
        m_device = device;
        m_tree->setParams(device->GetParams());
        m_tree->setPollingTime(500);
        m_tree->enablePolling(true);
        statusBar()->showMessage(QString::fromUtf8(info->GetID()));
        return true;
    }

    void closeCamera()
    {
        if (!m_device)
            return;
        m_tree->enablePolling(false);
        m_tree->clearParams();
        OrbCam_ReleaseDevice(m_device);
        m_device = nullptr;
    }

    OrbCam::System *m_system;
    OrbGui::OrbGenParamTreeView *m_tree;
    OrbCam::Device *m_device = nullptr;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    OrbCamErr err = OrbCamOk;
    OrbCam::System *system = OrbCam_GetSystem(&err);
    if (!system) {
        QMessageBox::critical(
            nullptr, QStringLiteral("Example host"),
            QStringLiteral("No camera system: %1").arg(QString::fromUtf8(OrbCam_ErrorText(err))));
        return 1;
    }
    int status = 0;
    {
        HostWindow window(system);
        window.show();
        if (args.contains(QStringLiteral("--first"))) {
            if (!window.openFirstCamera())
                status = 1;
        } else {
            QTimer::singleShot(0, &window, [&window] { window.selectCamera(); });
        }
        const int quitAfter = args.indexOf(QStringLiteral("--quit-after"));
        if (quitAfter >= 0 && quitAfter + 1 < args.size())
            QTimer::singleShot(args[quitAfter + 1].toInt(), &app, &QCoreApplication::quit);
        if (status == 0)
            status = app.exec();
    }
    OrbCam_ReleaseSystem(system);
    return status;
}
