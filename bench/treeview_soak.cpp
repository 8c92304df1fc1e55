// Soak run of the parameter tree view: a simulated camera's tree, expanded at
// Guru level, polled every 10 ms while the simulation loses and regains the
// camera every few seconds and a script edits values through the model as
// the view's editors do. Prints resident memory after the warm-up, at the
// end and at its peak, the edits and losses done, and the errors the view
// still lists once the camera is back and a few polls have run (there must
// be none). Exit status 1 when errors are left or the view stopped.
//
//   treeview-soak [--seconds N] [--lose-every MS] [--away MS] [--edit-every MS]
//
// Not a test: run it on a virtual X server (scripts/run-soak.sh does).
#include "genparam/genparamtreemodel.h"

#include <OrbCam/OrbCam.h>
#include <OrbCam/OrbCamSim.h>
#include <OrbGui/orbgenparamtreeview.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QSortFilterProxyModel>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

// A line of /proc/self/status in kilobytes ("VmRSS", "VmHWM").
long statusKb(const char *key)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray prefix = QByteArray(key) + ':';
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith(prefix))
            return line.mid(prefix.size()).trimmed().split(' ').value(0).toLong();
    return -1;
}

QModelIndex findValueCell(const QAbstractItemModel &model, const QString &name)
{
    std::vector<QModelIndex> pending { QModelIndex() };
    while (!pending.empty()) {
        const QModelIndex parent = pending.back();
        pending.pop_back();
        for (int row = 0; row < model.rowCount(parent); ++row) {
            const QModelIndex index = model.index(row, 0, parent);
            auto *value = index.data(OrbGui::ValuePointerRole).value<GenApi::IValue *>();
            if (value && QString::fromUtf8(value->GetNode()->GetName().c_str()) == name)
                return index.sibling(row, 1);
            pending.push_back(index);
        }
    }
    return QModelIndex();
}

struct Edit {
    QPersistentModelIndex cell;
    QVariant first, second;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    int seconds = 600, loseEvery = 3000, away = 1000, editEvery = 50;
    const QStringList args = app.arguments();
    for (int i = 1; i + 1 < args.size(); i += 2) {
        const int value = args[i + 1].toInt();
        if (args[i] == QLatin1String("--seconds"))
            seconds = value;
        else if (args[i] == QLatin1String("--lose-every"))
            loseEvery = value;
        else if (args[i] == QLatin1String("--away"))
            away = value;
        else if (args[i] == QLatin1String("--edit-every"))
            editEvery = value;
        else {
            std::fprintf(stderr, "treeview-soak: unknown option %s\n", qPrintable(args[i]));
            return 2;
        }
    }
    if (seconds < 10 || loseEvery <= away || away <= 0 || editEvery <= 0) {
        std::fprintf(stderr, "treeview-soak: need --seconds >= 10 and --lose-every > --away > 0\n");
        return 2;
    }

    OrbCamErr err = OrbCamOk;
    OrbCam::System *system = OrbCam_GetSystem(&err);
    if (!system) {
        std::fprintf(stderr, "treeview-soak: no camera system: %s\n", OrbCam_ErrorText(err));
        return 2;
    }
    OrbCam::Device *device = nullptr;
    std::string id;
    OrbCam::InterfaceList *interfaces = system->GetInterfaces(OrbCam::AllInterfaces);
    for (OrbCam::Interface *i = interfaces->First(); i && !device; i = interfaces->Next()) {
        i->UpdateDeviceList(nullptr, 200);
        OrbCam::DeviceInfoList *infos = i->GetDeviceInfoList();
        for (OrbCam::DeviceInfo *info = infos->First(); info && !device; info = infos->Next()) {
            device = OrbCam_CreateDevice(info, OrbCam::AccessControl, 0);
            if (device)
                id = info->GetID();
        }
        infos->Release();
    }
    if (!device) {
        std::fprintf(stderr, "treeview-soak: no simulated camera could be opened\n");
        return 2;
    }

    auto *view = new OrbGui::OrbGenParamTreeView(device->GetParams());
    view->resize(700, 900);
    view->show();
    view->setVisibility(OrbGui::Guru);
    view->treeView()->expandAll();
    view->setPollingTime(10);
    view->enablePolling(true);
    auto *proxy = qobject_cast<QSortFilterProxyModel *>(view->treeView()->model());
    auto *model = proxy ? qobject_cast<OrbGui::GenParamTreeModel *>(proxy->sourceModel()) : nullptr;
    if (!model) {
        std::fprintf(stderr, "treeview-soak: the view has no parameter model\n");
        return 2;
    }

    // Two legal values per feature, read from the camera, so that the script
    // runs on any model.
    std::vector<Edit> edits;
    for (const char *name :
         { "Width", "Frame_BlackLevel", "ReverseX", "TestPattern", "DeviceUserID" }) {
        const QModelIndex cell = findValueCell(*model, QString::fromLatin1(name));
        auto *value = cell.data(OrbGui::ValuePointerRole).value<GenApi::IValue *>();
        if (!value) {
            std::fprintf(stderr, "treeview-soak: no feature %s to edit\n", name);
            continue;
        }
        if (auto *integer = dynamic_cast<GenApi::IInteger *>(value))
            edits.push_back(
                { cell, qlonglong(integer->GetMin()),
                  qlonglong(integer->GetMin() + std::max<int64_t>(integer->GetInc(), 1)) });
        else if (auto *number = dynamic_cast<GenApi::IFloat *>(value))
            edits.push_back({ cell, number->GetMin(), (number->GetMin() + number->GetMax()) / 2 });
        else if (dynamic_cast<GenApi::IBoolean *>(value))
            edits.push_back({ cell, true, false });
        else if (auto *enumeration = dynamic_cast<GenApi::IEnumeration *>(value)) {
            GenApi::NodeList_t entries;
            enumeration->GetEntries(entries);
            if (entries.size() >= 2)
                edits.push_back(
                    { cell, qlonglong(dynamic_cast<GenApi::IEnumEntry *>(entries[0])->GetValue()),
                      qlonglong(dynamic_cast<GenApi::IEnumEntry *>(entries[1])->GetValue()) });
        } else
            edits.push_back({ cell, QStringLiteral("soak A"), QStringLiteral("soak B") });
    }

    long editsDone = 0, editsRefused = 0, losses = 0, peakErrors = 0;
    QTimer editTimer;
    QObject::connect(&editTimer, &QTimer::timeout, [&] {
        if (edits.empty())
            return;
        const Edit &edit = edits[static_cast<size_t>(editsDone) % edits.size()];
        const QVariant &value = (editsDone / long(edits.size())) % 2 ? edit.second : edit.first;
        if (!model->setData(edit.cell, value, Qt::EditRole))
            ++editsRefused;
        ++editsDone;
        peakErrors = qMax(peakErrors, long(model->errors().count()));
    });
    QTimer loseTimer;
    QObject::connect(&loseTimer, &QTimer::timeout, [&] {
        OrbCamSim::LoseCamera(id);
        ++losses;
        QTimer::singleShot(away, [&] { OrbCamSim::RegainCamera(id); });
    });

    // Dispatch stalls show as gaps between the view's polls.
    QElapsedTimer clock;
    clock.start();
    qint64 lastTick = 0, longestGap = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        longestGap = qMax(longestGap, now - lastTick);
        lastTick = now;
    });
    tick.start(10);

    long startRss = -1;
    QTimer::singleShot(5000, [&] {
        startRss = statusKb("VmRSS");
        editTimer.start(editEvery);
        loseTimer.start(loseEvery);
    });
    QTimer::singleShot(5000 + seconds * 1000, [&] {
        editTimer.stop();
        loseTimer.stop();
        // After the last loss's regain, a few hundred polls.
        QTimer::singleShot(away + 2000, &app, &QCoreApplication::quit);
    });
    app.exec();

    const long endRss = statusKb("VmRSS");
    const long peakRss = statusKb("VmHWM");
    const int left = model->errors().count();
    std::printf("soak: %d s, polling every 10 ms, camera lost every %d ms for %d ms\n", seconds,
                loseEvery, away);
    std::printf("edits: %ld (%ld refused while the camera was away), losses: %ld\n", editsDone,
                editsRefused, losses);
    std::printf("memory: %ld kB after warm-up, %ld kB at the end (%+ld kB), peak %ld kB\n",
                startRss, endRss, endRss - startRss, peakRss);
    std::printf("errors listed: at most %ld during losses, %d left after recovery\n", peakErrors,
                left);
    std::printf("longest gap between 10 ms timer ticks: %lld ms\n",
                static_cast<long long>(longestGap));
    delete view;
    OrbCam_ReleaseDevice(device);
    OrbCam_ReleaseSystem(system);
    return left == 0 ? 0 : 1;
}
