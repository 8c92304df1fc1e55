// How long our windows keep the GUI thread from running while a real
// camera answers, after it stops answering and after it comes back: inside
// a network namespace of its own, with Aravis's fake GigE Vision camera,
// through the Aravis backend. A 10 ms timer on the GUI thread records the
// gaps between its ticks; per phase the longest gap and the gaps over 16 ms
// (one frame at 60 Hz) and over 50 ms are printed. Not a test: the figures
// go into the README.
#include "orbcam/fakecamera.h"

#include <GenApi/GenApi.h>
#include <OrbCam/OrbCam.h>
#include <OrbGui/orbcameraselectordialog.h>
#include <OrbGui/orbcamconfig.h>
#include <OrbGui/orbgenparamtreeview.h>

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QElapsedTimer>
#include <QPushButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QTreeView>

#include <cstdio>
#include <functional>
#include <memory>

namespace {

// Runs the event loop for `milliseconds` after `start` and prints the gaps
// the GUI thread's timer saw, `start` included.
void phase(const char *name, int milliseconds, const std::function<void()> &start = {})
{
    QElapsedTimer clock;
    clock.start();
    qint64 last = 0, longest = 0;
    int over16 = 0, over50 = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        const qint64 gap = now - last;
        longest = std::max(longest, gap);
        over16 += gap > 16 + 10 ? 1 : 0; // beyond the timer's own 10 ms
        over50 += gap > 50 ? 1 : 0;
        last = now;
    });
    ticker.start(10);
    QTimer::singleShot(0, [&] {
        const qint64 before = clock.elapsed();
        if (start)
            start();
        const qint64 took = clock.elapsed() - before;
        longest = std::max(longest, took);
        over16 += took > 16 ? 1 : 0;
        over50 += took > 50 ? 1 : 0;
    });
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
    std::printf("%-44s %8lld %8d %8d\n", name, static_cast<long long>(longest), over16, over50);
    std::fflush(stdout);
}

struct Fake {
    explicit Fake(const QString &model)
        : m_model(model)
    {
    }
    // Launches the camera; `settle` waits until its sockets are bound
    // (not inside a measured phase: that wait would be the bench's own).
    bool start(bool settle = true)
    {
        process = std::make_unique<QProcess>();
        process->start(QString::fromLatin1(FakeCamera::Program),
                       { QStringLiteral("-i"), QStringLiteral("127.0.0.2"), QStringLiteral("-s"),
                         QStringLiteral("BENCH"), QStringLiteral("-g"), m_model });
        if (!settle)
            return true;
        if (!process->waitForStarted(3000))
            return false;
        QThread::msleep(300);
        return process->state() == QProcess::Running;
    }
    void stop() { process->kill(); }
    QString m_model;
    std::unique_ptr<QProcess> process;
};

OrbCam::DeviceInfo *findCamera(OrbCam::System *system)
{
    OrbCam::InterfaceList *list = system->GetInterfaces(OrbCam::AllInterfaces);
    for (OrbCam::Interface *i = list->First(); i; i = list->Next()) {
        i->UpdateDeviceList(nullptr, 500);
        OrbCam::DeviceInfoList *infos = i->GetDeviceInfoList();
        OrbCam::DeviceInfo *found = nullptr;
        for (OrbCam::DeviceInfo *d = infos->First(); d && !found; d = infos->Next())
            if (qstrcmp(d->GetSerialNumber(), "BENCH") == 0)
                found = d;
        infos->Release();
        if (found)
            return found;
    }
    return nullptr;
}

// The camera stops answering (its process killed, as a pulled cable) and
// comes back, while `window` shows it.
void lossAndReturn(const char *window, Fake &fake)
{
    phase((std::string(window) + ": camera answers").c_str(), 3000);
    phase((std::string(window) + ": camera stopped").c_str(), 8000, [&fake] { fake.stop(); });
    phase((std::string(window) + ": camera back").c_str(), 5000, [&fake] { fake.start(false); });
}

} // namespace

int main(int argc, char **argv)
{
    // The namespace before any thread exists (Qt's included).
    QString why;
    if (!FakeCamera::enterNamespace({ QStringLiteral("127.0.0.2") }, why)) {
        std::fprintf(stderr, "network-bench: %s\n", qPrintable(why));
        return 2;
    }
    QApplication app(argc, argv);
    if (QStandardPaths::findExecutable(QString::fromLatin1(FakeCamera::Program)).isEmpty()) {
        std::fprintf(stderr, "network-bench: %s is not installed (aravis-tools)\n",
                     FakeCamera::Program);
        return 2;
    }
    if (OrbCam_SetBackends(OrbCam::BackendAravis) != OrbCamOk) {
        std::fprintf(stderr, "network-bench: this build has no Aravis backend\n");
        return 2;
    }
    QTemporaryDir dir;
    const QString model = dir.filePath(QStringLiteral("camera.xml"));
    {
        QFile out(model);
        const std::string xml = FakeCamera::fakeCameraModel();
        if (xml.empty() || !out.open(QIODevice::WriteOnly)) {
            std::fprintf(stderr, "network-bench: cannot write the camera's description\n");
            return 2;
        }
        out.write(xml.data(), static_cast<qint64>(xml.size()));
    }
    Fake fake(model);
    if (!fake.start()) {
        std::fprintf(stderr, "network-bench: the fake camera does not start\n");
        return 2;
    }
    OrbCam::System *system = OrbCam_GetSystem();
    {
        // Qt's own first-window costs (fonts, the X connection's set-up)
        // are not the selector's.
        QDialog warmUp;
        warmUp.show();
        QEventLoop settle;
        QTimer::singleShot(300, &settle, &QEventLoop::quit);
        settle.exec();
    }
    std::printf("GUI-thread gaps (ms)                          longest   >16 ms   >50 ms\n");
    {
        std::unique_ptr<OrbGui::OrbCameraSelectorDialog> selector;
        phase("selector: open", 1500, [&] {
            selector = std::make_unique<OrbGui::OrbCameraSelectorDialog>(system, nullptr, false);
            selector->show();
        });
        phase("selector: Rescan", 1500,
              [&] { selector->findChild<QPushButton *>(QStringLiteral("rescanBtn"))->click(); });
        phase("selector: polling", 3000, [&] {
            selector->findChild<QCheckBox *>(QStringLiteral("chPoll"))->setChecked(true);
        });
        phase("selector: closed while polling", 500, [&] { selector.reset(); });
    }
    OrbCam::DeviceInfo *info = findCamera(system);
    OrbCam::Device *device = info ? OrbCam_CreateDevice(info, OrbCam::AccessControl, 0) : nullptr;
    if (!device) {
        std::fprintf(stderr, "network-bench: cannot open the fake camera\n");
        return 2;
    }
    {
        auto view = std::make_unique<OrbGui::OrbGenParamTreeView>(device->GetParams());
        phase("tree view (Guru, expanded, polling): open", 1500, [&] {
            view->setVisibility(OrbGui::Guru);
            view->resize(600, 900);
            view->show();
            view->treeView()->expandAll();
            view->setPollingTime(500);
            view->enablePolling(true);
        });
        lossAndReturn("tree view", fake);
        phase("tree view: closed", 500, [&] { view.reset(); });
    }
    {
        std::unique_ptr<OrbGui::OrbCamConfig> window;
        phase("configuration window: open", 1500, [&] {
            window = std::make_unique<OrbGui::OrbCamConfig>(device);
            window->show();
        });
        lossAndReturn("configuration window", fake);
        phase("configuration window: closed", 500, [&] { window.reset(); });
    }
    OrbCam_ReleaseDevice(device);
    OrbCam_ReleaseSystem(system);
    fake.stop();
    return 0;
}
