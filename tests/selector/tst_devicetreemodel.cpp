// The device tree model on the simulated camera system: structure, lazy
// children, change detection and rebuilds, under the model tester.
#include "orbcam/orbcamtest.h"
#include "selector/devicetreemodel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

#include <atomic>
#include <thread>

using namespace OrbGui;
using OrbCamTest::SystemRef;

namespace {

// Every row, fetched as a view would, as "interface/camera" display texts.
QStringList rows(DeviceTreeModel &model)
{
    QStringList result;
    if (model.canFetchMore(QModelIndex()))
        model.fetchMore(QModelIndex());
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex iface = model.index(row, 0);
        result << iface.data().toString();
        if (model.canFetchMore(iface))
            model.fetchMore(iface);
        for (int child = 0; child < model.rowCount(iface); ++child)
            result << iface.data().toString() + QLatin1Char('/')
                    + model.index(child, 0, iface).data().toString();
    }
    return result;
}

} // namespace

class tst_DeviceTreeModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QCOMPARE(OrbCamSim::Reset(), OrbCamOk); }
    void structure();
    void rolesAndIdentifiers();
    void emptySystem();
    void changesAreFoundAndShown();
    void otherChanges_data();
    void otherChanges();
    void rescanShowsAtOnce();
    void pollingBesideTheGuiThread();
};

void tst_DeviceTreeModel::structure()
{
    SystemRef sys;
    DeviceTreeModel model(sys.system);
    // Nothing until fetched.
    QCOMPARE(model.rowCount(), 0);
    QVERIFY(model.hasChildren());
    QVERIFY(model.canFetchMore(QModelIndex()));
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(model.columnCount(), 1);
    QCOMPARE(model.headerData(0, Qt::Horizontal).toString(), QStringLiteral("Name"));
    QVERIFY(!model.headerData(0, Qt::Vertical).isValid());
    QCOMPARE(rows(model),
             QStringList({ QStringLiteral("GigE Vision interface eth1"),
                           QStringLiteral("GigE Vision interface eth1/OrbSim-C2000 (C2-1001)"),
                           QStringLiteral("GigE Vision interface eth1/OrbSim-C2000 (C2-1002)"),
                           QStringLiteral("USB3 Vision interface 0"),
                           QStringLiteral("USB3 Vision interface 0/OrbSim-M1300 (M1-2001)"),
                           QStringLiteral("CoaXPress interface 0") }));
    // An interface without cameras is a row without children.
    const QModelIndex cxp = model.index(2, 0);
    QVERIFY(!model.hasChildren(cxp));
    QVERIFY(!model.canFetchMore(cxp));
    QCOMPARE(model.flags(cxp), Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    QCOMPARE(model.flags(QModelIndex()), Qt::NoItemFlags);
    QCOMPARE(model.rowCount(model.index(0, 0)), 2);
}

void tst_DeviceTreeModel::rolesAndIdentifiers()
{
    SystemRef sys;
    DeviceTreeModel model(sys.system);
    rows(model);
    const QModelIndex gev = model.index(0, 0);
    const QModelIndex camera = model.index(1, 0, gev);
    auto *iface = gev.data(Qt::UserRole).value<OrbCam::Interface *>();
    auto *info = camera.data(Qt::UserRole).value<OrbCam::DeviceInfo *>();
    QVERIFY(iface);
    QVERIFY(info);
    QVERIFY(!gev.data(Qt::UserRole).value<OrbCam::DeviceInfo *>());
    QCOMPARE(QString::fromLatin1(iface->GetID()), QStringLiteral("GEV0"));
    QCOMPARE(model.getItemID(gev), QStringLiteral("GEV0"));
    QCOMPARE(model.getItemID(camera), QString::fromLatin1(info->GetID()));
    QCOMPARE(model.getItemID(QModelIndex()), QString());
    QCOMPARE(model.getItemIdx(QString::fromLatin1(info->GetID())), camera);
    QCOMPARE(model.getItemIdx(QStringLiteral("U3V0")), model.index(1, 0));
    QVERIFY(!model.getItemIdx(QStringLiteral("nowhere")).isValid());
    QCOMPARE(model.getFirstIdx(), gev);
    QCOMPARE(QMetaType::type("OrbCam::DeviceInfo*"), qMetaTypeId<OrbCam::DeviceInfo *>());
    QCOMPARE(QMetaType::type("OrbCam::Interface*"), qMetaTypeId<OrbCam::Interface *>());
}

void tst_DeviceTreeModel::emptySystem()
{
    QCOMPARE(OrbCamSim::Configure(R"({ "interfaces": [] })"), OrbCamOk);
    SystemRef sys;
    DeviceTreeModel model(sys.system);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVERIFY(!model.canFetchMore(QModelIndex()));
    QVERIFY(!model.hasChildren());
    QCOMPARE(model.rowCount(), 0);
    QVERIFY(!model.getFirstIdx().isValid());
    QVERIFY(!model.checkNew());
}

// A camera added or removed is a change, found by a fresh pass and shown by
// updateModel; nothing else is.
void tst_DeviceTreeModel::changesAreFoundAndShown()
{
    SystemRef sys;
    DeviceTreeModel model(sys.system);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QStringList before = rows(model);
    QVERIFY(!model.checkNew());
    std::string id;
    QCOMPARE(OrbCamSim::AddCamera("U3V0", "orbsim-m1300", "M1-3000", &id), OrbCamOk);
    QVERIFY(model.checkNew());
    QCOMPARE(rows(model), before); // not shown before updateModel
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    model.updateModel();
    QCOMPARE(resets.count(), 1);
    QVERIFY(rows(model).contains(QStringLiteral("USB3 Vision interface 0/OrbSim-M1300 (M1-3000)")));
    QVERIFY(model.getItemIdx(QString::fromStdString(id)).isValid());
    QVERIFY(!model.checkNew());
    QCOMPARE(OrbCamSim::RemoveCamera(id), OrbCamOk);
    QVERIFY(model.checkNew());
    model.updateModel();
    QCOMPARE(rows(model), before);
    QVERIFY(!model.getItemIdx(QString::fromStdString(id)).isValid());
}

void tst_DeviceTreeModel::otherChanges_data()
{
    QTest::addColumn<QString>("change");
    QTest::newRow("cameras in another order") << "order";
    QTest::newRow("a camera taken by another application") << "taken";
    QTest::newRow("a camera that cannot be opened at all") << "none";
}

// Not only a camera that comes or goes is a change: another order, or another
// access status of a camera listed, changes what the selector shows and
// offers.
void tst_DeviceTreeModel::otherChanges()
{
    QFETCH(QString, change);
    SystemRef sys;
    std::string second;
    QCOMPARE(OrbCamSim::AddCamera("GEV0", "orbsim-c2000", "C2-5000", &second), OrbCamOk);
    DeviceTreeModel model(sys.system);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QStringList before = rows(model);
    QVERIFY(!model.checkNew());
    if (change == QLatin1String("order"))
        QCOMPARE(OrbCamSim::MoveCamera(second, 0), OrbCamOk);
    else
        QCOMPARE(OrbCamSim::SetAccessStatus(second,
                                            change == QLatin1String("taken")
                                                ? OrbCam::AccessReadOnly
                                                : OrbCam::AccessNone),
                 OrbCamOk);
    QVERIFY(model.checkNew());
    model.updateModel();
    QVERIFY(!model.checkNew());
    const QModelIndex moved = model.getItemIdx(QString::fromStdString(second));
    QVERIFY(moved.isValid());
    if (change == QLatin1String("order")) {
        QCOMPARE(moved.row(), 0);
        QVERIFY(rows(model) != before);
    } else {
        auto *info = moved.data(Qt::UserRole).value<OrbCam::DeviceInfo *>();
        QVERIFY(info->GetAccessStatus() != OrbCam::AccessReadWrite);
    }
}

void tst_DeviceTreeModel::rescanShowsAtOnce()
{
    SystemRef sys;
    DeviceTreeModel model(sys.system);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    rows(model);
    QCOMPARE(OrbCamSim::AddCamera("GEV0", "orbsim-c2000", "C2-3000"), OrbCamOk);
    model.rescan();
    QVERIFY(
        rows(model).contains(QStringLiteral("GigE Vision interface eth1/OrbSim-C2000 (C2-3000)")));
    QVERIFY(!model.checkNew());
}

// checkNew on another thread while the GUI thread rebuilds and reads the
// tree: each side keeps to its own snapshot (run under ThreadSanitizer too).
void tst_DeviceTreeModel::pollingBesideTheGuiThread()
{
    SystemRef sys;
    DeviceTreeModel model(sys.system);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    std::atomic<bool> stop { false };
    std::atomic<int> changes { 0 };
    std::thread poller([&] {
        while (!stop)
            if (model.checkNew())
                ++changes;
    });
    std::string id;
    // At least 30 rounds, more while the poller has not been scheduled yet
    // (a loaded machine); always ending with the camera removed.
    for (int i = 0; i < 30 || (changes == 0 && i < 3000) || i % 2 == 1; ++i) {
        if (i % 2 == 0)
            OrbCamSim::AddCamera("U3V0", "orbsim-m1300", "M1-4000", &id);
        else
            OrbCamSim::RemoveCamera(id);
        model.updateModel();
        rows(model);
        model.rescan();
        rows(model);
    }
    stop = true;
    poller.join();
    QVERIFY(changes > 0);
}

QTEST_MAIN(tst_DeviceTreeModel)
#include "tst_devicetreemodel.moc"
