// The camera selector and the IP address dialog on the simulated camera
// system, driven with real input on the X server.
#include "modaltest.h"
#include "orbcam/orbcamtest.h"
#include "selector/devicetreemodel.h"
#include "selector/setipdialog.h"

#include <OrbGui/orbcameraselectordialog.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <QTreeView>
#include <QtTest>

#include <chrono>
#include <functional>

using namespace OrbGui;
using OrbCamTest::SystemRef;

namespace {

struct Selector {
    explicit Selector(OrbCam::System *system, bool poll = false)
        : dialog(system, nullptr, poll)
    {
        dialog.show();
        dialog.activateWindow();
    }
    bool ready() { return QTest::qWaitForWindowActive(&dialog); }
    QTreeView *tree() const
    {
        return dialog.findChild<QTreeView *>(QStringLiteral("cameraTreeView"));
    }
    QModelIndex find(const QString &id) const
    {
        return static_cast<DeviceTreeModel *>(tree()->model())->getItemIdx(id);
    }
    void choose(const QString &id)
    {
        const QModelIndex index = find(id);
        tree()->scrollTo(index);
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, Qt::NoModifier,
                          tree()->visualRect(index).center());
    }
    QString currentId() const
    {
        return static_cast<DeviceTreeModel *>(tree()->model())->getItemID(tree()->currentIndex());
    }
    // A pane's rows as "label=value".
    QStringList pane(const char *name) const
    {
        QStringList rows;
        QAbstractItemModel *model
            = dialog.findChild<QTreeView *>(QString::fromLatin1(name))->model();
        for (int row = 0; model && row < model->rowCount(); ++row)
            rows << model->index(row, 0).data().toString() + QLatin1Char('=')
                    + model->index(row, 1).data().toString();
        return rows;
    }
    QPushButton *ok() const
    {
        return dialog.findChild<QDialogButtonBox *>(QStringLiteral("buttonBox"))
            ->button(QDialogButtonBox::Ok);
    }
    template <class T> T *child(const char *name) const
    {
        return dialog.findChild<T *>(QString::fromLatin1(name));
    }
    OrbCameraSelectorDialog dialog;
};

QString cameraId(SystemRef &sys, const char *iface, size_t place)
{
    const auto cameras = sys.cameras(iface);
    return place < cameras.size() ? QString::fromLatin1(cameras[place]->GetID()) : QString();
}

} // namespace

class tst_CameraSelector : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }
    void cleanup() { QCOMPARE(OrbCamSim::Reset(), OrbCamOk); }
    void form();
    void panes_data();
    void panes();
    void okRules_data();
    void okRules();
    void activationAccepts();
    void rescanKeepsTheSelection();
    void pollingFollowsTheSystem();
    void pollingOffAnswersAtOnce();
    void searchRunsBesideTheGui();
    void closingDuringASearchLeavesNoThread();
    void closingWhilePolling();
    void proposal_data();
    void proposal();
    void forceIpMakesTheCameraReachable();
    void forceIpWarning_data();
    void forceIpWarning();
    void forceIpFailure();
    void contextMenuOffersSetIp();
    void ipVerdicts_data();
    void ipVerdicts();
    void ipDialogFields();
    void ipRefusals_data();
    void ipRefusals();
    void forceIpWhileTheTreeIsRebuilt();
    void pollingFollowsAccessStatus();
};

void tst_CameraSelector::form()
{
    SystemRef sys;
    Selector s(sys.system);
    QVERIFY(s.ready());
    QCOMPARE(s.dialog.objectName(), QStringLiteral("OrbCameraSelectorDialog"));
    QCOMPARE(s.dialog.windowTitle(), QStringLiteral("Select camera"));
    QCOMPARE(s.child<QLabel>("label")->text(), QStringLiteral("&Interface info"));
    QCOMPARE(s.child<QLabel>("label_2")->text(), QStringLiteral("&Device info"));
    QCOMPARE(s.child<QPushButton>("setIpBtn")->text(), QStringLiteral("Set IP Address"));
    QCOMPARE(s.child<QCheckBox>("chPoll")->text(), QStringLiteral("Polling"));
    auto *rescan = s.child<QPushButton>("rescanBtn");
    QCOMPARE(rescan->text(), QStringLiteral("&Rescan"));
    QVERIFY(rescan->isEnabled());
    QVERIFY(!s.dialog.isPollChecked());
    // Fully expanded, the first interface current.
    QCOMPARE(s.currentId(), QStringLiteral("GEV0"));
    QVERIFY(s.tree()->isExpanded(s.find(QStringLiteral("GEV0"))));
    QVERIFY(!s.ok()->isEnabled());
    QVERIFY(!s.dialog.selectedCamera());
    s.dialog.setSelectedCamera(sys.cameras("GEV0").front()); // deliberately nothing
    QVERIFY(!s.dialog.selectedCamera());
}

void tst_CameraSelector::panes_data()
{
    QTest::addColumn<QString>("iface");
    QTest::addColumn<int>("place"); // -1: the interface itself
    QTest::addColumn<QStringList>("interfaceRows");
    QTest::addColumn<QStringList>("deviceRows");
    const QStringList gev { QStringLiteral("Description=GigE Vision interface eth1"),
                            QStringLiteral("Type=GigE Vision"),
                            QStringLiteral("MAC Address=00:1B:21:3A:4F:10"),
                            QStringLiteral("IP Address=192.168.1.10"),
                            QStringLiteral("Netmask=255.255.255.0") };
    QTest::newRow("GigE Vision interface") << "GEV0" << -1 << gev << QStringList();
    QTest::newRow("camera outside the subnet")
        << "GEV0" << 1 << gev
        << QStringList { QStringLiteral("Display name=OrbSim-C2000 (C2-1002)"),
                         QStringLiteral("Vendor=Orb Imaging"),
                         QStringLiteral("Model=OrbSim-C2000"),
                         QStringLiteral("Serial number=C2-1002"),
                         QStringLiteral("Version=1.4.2"),
                         QStringLiteral("User name="),
                         QStringLiteral("Access status=IP Subnet Mismatch"),
                         QStringLiteral("MAC Address=00:0C:DF:00:10:02"),
                         QStringLiteral("IP Address=10.0.0.7"),
                         QStringLiteral("Netmask=255.0.0.0"),
                         QStringLiteral("Gateway=0.0.0.0") };
    const QStringList usb { QStringLiteral("Description=USB3 Vision interface 0"),
                            QStringLiteral("Type=USB3 Vision") };
    QTest::newRow("USB3 Vision camera")
        << "U3V0" << 0 << usb
        << QStringList { QStringLiteral("Display name=OrbSim-M1300 (M1-2001)"),
                         QStringLiteral("Vendor=Orb Imaging"),
                         QStringLiteral("Model=OrbSim-M1300"),
                         QStringLiteral("Serial number=M1-2001"),
                         QStringLiteral("Version=2.0.5"),
                         QStringLiteral("User name="),
                         QStringLiteral("Access status=ReadWrite"),
                         QStringLiteral("USB Version=0x0320") };
    QTest::newRow("CoaXPress interface")
        << "CXP0" << -1
        << QStringList { QStringLiteral("Description=CoaXPress interface 0"),
                         QStringLiteral("Type=CoaXPress") }
        << QStringList();
}

void tst_CameraSelector::panes()
{
    QFETCH(QString, iface);
    QFETCH(int, place);
    QFETCH(QStringList, interfaceRows);
    QFETCH(QStringList, deviceRows);
    SystemRef sys;
    Selector s(sys.system);
    QVERIFY(s.ready());
    const QString id
        = place < 0 ? iface : cameraId(sys, iface.toLatin1().constData(), size_t(place));
    s.choose(id);
    QCOMPARE(s.currentId(), id);
    QCOMPARE(s.pane("interfaceInfoTreeView"), interfaceRows);
    const QStringList device = s.pane("deviceInfoTreeView");
    QCOMPARE(device.size(), deviceRows.size());
    for (int i = 0; i < deviceRows.size(); ++i) {
        // The simulation makes up MAC addresses and user names: the labels
        // and the values it fixes are compared.
        const QString label = deviceRows[i].section(QLatin1Char('='), 0, 0);
        QCOMPARE(device[i].section(QLatin1Char('='), 0, 0), label);
        if (label != QLatin1String("MAC Address") && label != QLatin1String("User name")
            && label != QLatin1String("Gateway"))
            QCOMPARE(device[i], deviceRows[i]);
    }
}

void tst_CameraSelector::okRules_data()
{
    QTest::addColumn<QString>("iface");
    QTest::addColumn<int>("place");
    QTest::addColumn<uint32_t>("status"); // forced by the simulation, 0: none
    QTest::addColumn<bool>("ok");
    QTest::addColumn<bool>("setIp");
    QTest::newRow("interface") << "GEV0" << -1 << 0u << false << false;
    QTest::newRow("GigE camera in the subnet") << "GEV0" << 0 << 0u << true << true;
    QTest::newRow("GigE camera outside the subnet") << "GEV0" << 1 << 0u << false << true;
    QTest::newRow("held read-only elsewhere") << "GEV0" << 0 << 2u << true << true;
    QTest::newRow("no access") << "GEV0" << 0 << 3u << false << true;
    QTest::newRow("USB3 camera") << "U3V0" << 0 << 0u << true << false;
    QTest::newRow("USB3 camera without access") << "U3V0" << 0 << 3u << false << false;
}

void tst_CameraSelector::okRules()
{
    QFETCH(QString, iface);
    QFETCH(int, place);
    QFETCH(uint32_t, status);
    QFETCH(bool, ok);
    QFETCH(bool, setIp);
    SystemRef sys;
    const QString id
        = place < 0 ? iface : cameraId(sys, iface.toLatin1().constData(), size_t(place));
    if (status)
        QCOMPARE(OrbCamSim::SetAccessStatus(id.toStdString(), status), OrbCamOk);
    Selector s(sys.system);
    QVERIFY(s.ready());
    s.choose(id);
    QCOMPARE(s.ok()->isEnabled(), ok);
    QCOMPARE(s.child<QPushButton>("setIpBtn")->isEnabled(), setIp);
    QCOMPARE(s.dialog.selectedCamera() != nullptr, place >= 0);
}

void tst_CameraSelector::activationAccepts()
{
    SystemRef sys;
    const QString id = cameraId(sys, "U3V0", 0);
    Selector s(sys.system);
    QVERIFY(s.ready());
    s.choose(id);
    QTest::keyClick(s.tree(), Qt::Key_Return);
    QTRY_COMPARE(s.dialog.result(), int(QDialog::Accepted));
    QCOMPARE(QString::fromLatin1(s.dialog.selectedCamera()->GetID()), id);
}

void tst_CameraSelector::rescanKeepsTheSelection()
{
    SystemRef sys;
    const QString id = cameraId(sys, "GEV0", 1);
    Selector s(sys.system);
    QVERIFY(s.ready());
    s.choose(id);
    QCOMPARE(OrbCamSim::AddCamera("GEV0", "orbsim-c2000", "C2-5000"), OrbCamOk);
    QTest::mouseClick(s.child<QPushButton>("rescanBtn"), Qt::LeftButton);
    QTRY_VERIFY(s.find(QStringLiteral("GEV0/C2-5000")).isValid());
    QCOMPARE(s.currentId(), id);
    QVERIFY(s.pane("deviceInfoTreeView").contains(QStringLiteral("Serial number=C2-1002")));
    // A camera that went away: back to the first interface.
    QCOMPARE(OrbCamSim::RemoveCamera(id.toStdString()), OrbCamOk);
    QTest::mouseClick(s.child<QPushButton>("rescanBtn"), Qt::LeftButton);
    QTRY_COMPARE(s.currentId(), QStringLiteral("GEV0"));
}

void tst_CameraSelector::pollingFollowsTheSystem()
{
    SystemRef sys;
    const QString kept = cameraId(sys, "U3V0", 0);
    Selector s(sys.system, true);
    QVERIFY(s.ready());
    QVERIFY(s.dialog.isPollChecked());
    QVERIFY(s.child<QCheckBox>("chPoll")->isChecked());
    QVERIFY(!s.child<QPushButton>("rescanBtn")->isEnabled());
    s.choose(kept);
    std::string added;
    QCOMPARE(OrbCamSim::AddCamera("GEV0", "orbsim-c2000", "C2-6000", &added), OrbCamOk);
    QTRY_VERIFY_WITH_TIMEOUT(s.find(QString::fromStdString(added)).isValid(), 3000);
    QCOMPARE(s.currentId(), kept);
    QCOMPARE(OrbCamSim::RemoveCamera(kept.toStdString()), OrbCamOk);
    QTRY_VERIFY_WITH_TIMEOUT(!s.find(kept).isValid(), 3000);
    QCOMPARE(s.currentId(), QStringLiteral("GEV0"));
    // Polling off: the rescan button comes back once the thread has ended.
    s.child<QCheckBox>("chPoll")->click();
    QVERIFY(!s.dialog.isPollChecked());
    QVERIFY(s.child<QPushButton>("rescanBtn")->isEnabled());
}

// Turning polling off answers at once (a pass under way ends on the search
// thread), and no pass starts after it.
void tst_CameraSelector::pollingOffAnswersAtOnce()
{
    SystemRef sys;
    Selector s(sys.system, true);
    QVERIFY(s.ready());
    QTest::qWait(50); // a pass is under way or just done
    const auto started = std::chrono::steady_clock::now();
    s.child<QCheckBox>("chPoll")->click();
    // The wait between passes is cut short: well under the second.
    QVERIFY(std::chrono::steady_clock::now() - started < std::chrono::milliseconds(900));
    QCOMPARE(OrbCamSim::AddCamera("GEV0", "orbsim-c2000", "C2-7000"), OrbCamOk);
    QTest::qWait(1500);
    QVERIFY(!s.find(QStringLiteral("GEV0/C2-7000")).isValid());
}

namespace {

int threadCount()
{
    return QDir(QStringLiteral("/proc/self/task"))
        .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
        .size();
}

} // namespace

// Discovery waits for the network: the selector opens at once, says it is
// searching, keeps answering meanwhile, and fills in when the interfaces
// have answered; Rescan likewise.
void tst_CameraSelector::searchRunsBesideTheGui()
{
    SystemRef sys;
    OrbCamSim::SetDiscoveryTime(400);
    int ticks = 0;
    QTimer ticker;
    connect(&ticker, &QTimer::timeout, [&ticks] { ++ticks; });
    ticker.start(10);
    Selector s(sys.system);
    auto *searching = s.child<QLabel>("searchingLabel");
    QVERIFY(searching);
    QTRY_VERIFY(searching->isVisible());
    QCOMPARE(searching->text(), QStringLiteral("Searching for cameras\u2026"));
    const int ticksWhenShown = ticks;
    QTRY_VERIFY(!searching->isVisible());
    // The GUI thread ran its timers while the interfaces were asked.
    QVERIFY2(ticks - ticksWhenShown >= 5, qPrintable(QString::number(ticks - ticksWhenShown)));
    QVERIFY(!cameraId(sys, "GEV0", 0).isEmpty());
    QVERIFY(s.find(cameraId(sys, "GEV0", 0)).isValid());

    std::string added;
    QCOMPARE(OrbCamSim::AddCamera("U3V0", "orbsim-m1300", "M1-900", &added), OrbCamOk);
    QTest::mouseClick(s.child<QPushButton>("rescanBtn"), Qt::LeftButton);
    QTRY_VERIFY(searching->isVisible());
    QVERIFY(!s.find(QString::fromStdString(added)).isValid()); // not yet: still asking
    QTRY_VERIFY(s.find(QString::fromStdString(added)).isValid());
    QTRY_VERIFY(!searching->isVisible());
}

// Cancel during a search returns at once; the search ends on its own thread
// and no thread of ours is left once it has.
void tst_CameraSelector::closingDuringASearchLeavesNoThread()
{
    SystemRef sys;
    OrbCamSim::SetDiscoveryTime(400);
    const int before = threadCount();
    {
        Selector s(sys.system);
        QTRY_VERIFY(s.child<QLabel>("searchingLabel")->isVisible());
        QVERIFY(threadCount() > before);
        QTest::keyClick(&s.dialog, Qt::Key_Escape);
        QCOMPARE(s.dialog.result(), int(QDialog::Rejected));
    }
    QTRY_COMPARE_WITH_TIMEOUT(threadCount(), before, 3000);
}

void tst_CameraSelector::closingWhilePolling()
{
    SystemRef sys;
    for (int i = 0; i < 5; ++i) {
        auto started = std::chrono::steady_clock::now();
        {
            OrbCameraSelectorDialog dialog(sys.system, nullptr, true);
            dialog.show();
            QTest::qWait(i * 20);
            OrbCamSim::AddCamera("U3V0", "orbsim-m1300", "M1-800" + std::to_string(i));
        }
        QVERIFY(std::chrono::steady_clock::now() - started < std::chrono::seconds(2));
    }
    QCoreApplication::processEvents(); // queued news of a dead dialog goes nowhere
}

void tst_CameraSelector::proposal_data()
{
    QTest::addColumn<QString>("card");
    QTest::addColumn<QString>("proposed");
    QTest::newRow("low byte 10") << "192.168.1.10"
                                 << "192.168.1.11";
    QTest::newRow("low byte 128") << "192.168.1.128"
                                  << "192.168.1.129";
    QTest::newRow("low byte 129") << "192.168.1.129"
                                  << "192.168.1.128";
    QTest::newRow("low byte 254") << "192.168.1.254"
                                  << "192.168.1.253";
}

// The first proposal: the card's address, its lowest byte one up below
// 129 and one down from 129 on; the card's mask; the camera's gateway.
void tst_CameraSelector::proposal()
{
    QFETCH(QString, card);
    QFETCH(QString, proposed);
    const QString setUp = QStringLiteral(R"({ "interfaces": [ { "id": "GEV0",
        "type": "GigEVision", "ip": "%1", "mask": "255.255.255.0", "mac": "00:0C:29:00:00:01",
        "cameras": [ { "model": "orbsim-c2000", "serial": "C2-1", "ip": "10.1.2.3",
                       "mask": "255.0.0.0", "gateway": "10.0.0.1" } ] } ] })")
                              .arg(card);
    std::string why;
    QCOMPARE(OrbCamSim::Configure(setUp.toStdString(), &why), OrbCamOk);
    SystemRef sys;
    Selector s(sys.system);
    QVERIFY(s.ready());
    s.choose(cameraId(sys, "GEV0", 0));
    QStringList fields;
    onNextModal([&fields](QWidget *modal) {
        for (const char *name :
             { "nicMacLineEdit", "nicIpLineEdit", "nicSubnetMaskLineEdit", "macAddressLineEdit",
               "ipAddressLineEdit", "subnetMaskLineEdit", "defaultGatewayLineEdit" })
            fields << modal->findChild<QLineEdit *>(QString::fromLatin1(name))->text();
        fields << modal->findChild<QLabel *>(QStringLiteral("ipStatusLabel"))->text();
        static_cast<QDialog *>(modal)->reject();
    });
    QTest::mouseClick(s.child<QPushButton>("setIpBtn"), Qt::LeftButton);
    QCOMPARE(fields.size(), 8);
    QCOMPARE(fields[0], QStringLiteral("00:0C:29:00:00:01"));
    QCOMPARE(fields[1], card);
    QCOMPARE(fields[2], QStringLiteral("255.255.255.0"));
    QCOMPARE(fields[4], proposed);
    QCOMPARE(fields[5], QStringLiteral("255.255.255.0"));
    QCOMPARE(fields[6], QStringLiteral("10.0.0.1"));
    QCOMPARE(fields[7], QStringLiteral("IP Configuration OK"));
    // Cancelled: nothing written.
    QVERIFY(s.pane("deviceInfoTreeView").contains(QStringLiteral("IP Address=10.1.2.3")));
}

// The camera outside the card's subnet gets the proposed address and can
// then be chosen.
void tst_CameraSelector::forceIpMakesTheCameraReachable()
{
    SystemRef sys;
    const QString id = cameraId(sys, "GEV0", 1);
    Selector s(sys.system);
    QVERIFY(s.ready());
    s.choose(id);
    QVERIFY(!s.ok()->isEnabled());
    onNextModal([](QWidget *modal) { static_cast<QDialog *>(modal)->accept(); });
    QTest::mouseClick(s.child<QPushButton>("setIpBtn"), Qt::LeftButton);
    QVERIFY(s.pane("deviceInfoTreeView").contains(QStringLiteral("IP Address=192.168.1.11")));
    QVERIFY(s.pane("deviceInfoTreeView").contains(QStringLiteral("Access status=ReadWrite")));
    QVERIFY(s.ok()->isEnabled());
    QCOMPARE(sys.camera(id.toLatin1().constData())->GetAccessStatus(),
             uint32_t(OrbCam::AccessReadWrite));
}

void tst_CameraSelector::forceIpWarning_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("mask");
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("shown"); // the camera's address afterwards
    QTest::newRow("other subnet, OK skips")
        << "10.9.9.9"
        << "255.255.255.0" << int(QMessageBox::Ok) << "10.0.0.7";
    QTest::newRow("other subnet, Ignore writes")
        << "10.9.9.9"
        << "255.255.255.0" << int(QMessageBox::Ignore) << "10.9.9.9";
    QTest::newRow("other mask, OK skips") << "192.168.1.50"
                                          << "255.255.0.0" << int(QMessageBox::Ok) << "10.0.0.7";
}

void tst_CameraSelector::forceIpWarning()
{
    QFETCH(QString, address);
    QFETCH(QString, mask);
    QFETCH(int, answer);
    QFETCH(QString, shown);
    SystemRef sys;
    Selector s(sys.system);
    QVERIFY(s.ready());
    s.choose(cameraId(sys, "GEV0", 1));
    QString warning;
    onNextModal([&](QWidget *modal) {
        auto *ip = modal->findChild<QLineEdit *>(QStringLiteral("ipAddressLineEdit"));
        ip->setText(address);
        modal->findChild<QLineEdit *>(QStringLiteral("subnetMaskLineEdit"))->setText(mask);
        onNextModal([&](QWidget *box) {
            auto *message = qobject_cast<QMessageBox *>(box);
            QVERIFY(message);
            warning = message->windowTitle() + QLatin1Char('|') + message->text();
            QCOMPARE(message->icon(), QMessageBox::Critical);
            message->button(QMessageBox::StandardButton(answer))->click();
        });
        static_cast<QDialog *>(modal)->accept();
    });
    QTest::mouseClick(s.child<QPushButton>("setIpBtn"), Qt::LeftButton);
    QCOMPARE(warning,
             QStringLiteral("IP Configuration Warning|Specified IP Configuraion is not correct, "
                            "camera may become undiscoverable\nPress OK to skip the IP "
                            "Configuration, or press Ignore to confirm"));
    QVERIFY2(s.pane("deviceInfoTreeView").contains(QStringLiteral("IP Address=") + shown),
             qPrintable(s.pane("deviceInfoTreeView").join(QLatin1Char(','))));
}

void tst_CameraSelector::forceIpFailure()
{
    SystemRef sys;
    Selector s(sys.system);
    QVERIFY(s.ready());
    const QString id = cameraId(sys, "GEV0", 1);
    s.choose(id);
    QString failure;
    onNextModal([&](QWidget *modal) {
        modal->findChild<QLineEdit *>(QStringLiteral("ipAddressLineEdit"))
            ->setText(QStringLiteral("192.168.1.77"));
        // The camera stops answering before OK: the write is refused.
        QCOMPARE(OrbCamSim::LoseCamera(id.toStdString()), OrbCamOk);
        onNextModal([&](QWidget *last) {
            auto *message = qobject_cast<QMessageBox *>(last);
            failure = message->windowTitle() + QLatin1Char('|') + message->text();
            message->accept();
        });
        static_cast<QDialog *>(modal)->accept();
    });
    QTest::mouseClick(s.child<QPushButton>("setIpBtn"), Qt::LeftButton);
    QCOMPARE(failure, QStringLiteral("Set IP Address|Can't set IP address"));
    QCOMPARE(OrbCamSim::RegainCamera(id.toStdString()), OrbCamOk);
    QVERIFY(s.pane("deviceInfoTreeView").contains(QStringLiteral("IP Address=10.0.0.7")));
}

void tst_CameraSelector::contextMenuOffersSetIp()
{
    SystemRef sys;
    Selector s(sys.system);
    QVERIFY(s.ready());
    auto *action = s.dialog.findChild<QAction *>(QStringLiteral("setIpAction"));
    QVERIFY(action);
    QCOMPARE(action->text(), QStringLiteral("Set IP Address"));
    s.choose(cameraId(sys, "U3V0", 0));
    QVERIFY(!action->isEnabled());
    s.choose(cameraId(sys, "GEV0", 0));
    QVERIFY(action->isEnabled());
    auto *menu = s.dialog.findChild<QMenu *>(QStringLiteral("cameraMenu"));
    const QRect at = s.tree()->visualRect(s.tree()->currentIndex());
    QContextMenuEvent event(QContextMenuEvent::Mouse, at.center(),
                            s.tree()->viewport()->mapToGlobal(at.center()));
    QApplication::sendEvent(s.tree()->viewport(), &event);
    QTRY_VERIFY(menu->isVisible());
    QCOMPARE(menu->actions(), QList<QAction *>({ action }));
    menu->hide();
}

void tst_CameraSelector::ipVerdicts_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("mask");
    QTest::addColumn<bool>("ipOk");
    QTest::addColumn<bool>("maskOk");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("style");
    const QString green = QStringLiteral("color: rgb(0, 192, 0);");
    const QString red = QStringLiteral("color: rgb(255, 0, 0);");
    const QString mask = QStringLiteral("255.255.255.0");
    QTest::newRow("fits") << "192.168.1.20" << mask << true << true << "IP Configuration OK"
                          << green;
    QTest::newRow("the card's own address")
        << "192.168.1.10" << mask << false << true << "Incorrect IP address!" << red;
    QTest::newRow("first number 0") << "0.168.1.20" << QStringLiteral("0.0.0.0") << false << false
                                    << "Subnet mask mismatch!" << red;
    QTest::newRow("first number 0, same mask")
        << "0.0.0.5" << mask << false << true << "Subnet IP mismatch!" << red;
    QTest::newRow("another subnet")
        << "192.168.2.20" << mask << false << true << "Subnet IP mismatch!" << red;
    QTest::newRow("another mask") << "192.168.1.20" << QStringLiteral("255.255.0.0") << false
                                  << false << "Subnet mask mismatch!" << red;
    QTest::newRow("another mask, same subnet")
        << "192.168.1.20" << QStringLiteral("255.255.255.128") << true << false
        << "Subnet mask mismatch!" << red;
}

void tst_CameraSelector::ipVerdicts()
{
    QFETCH(QString, address);
    QFETCH(QString, mask);
    QFETCH(bool, ipOk);
    QFETCH(bool, maskOk);
    QFETCH(QString, text);
    QFETCH(QString, style);
    SetIpDialog dialog;
    dialog.setNicIPAddress(0xC0A8010A);
    dialog.setNicNetmask(0xFFFFFF00);
    dialog.findChild<QLineEdit *>(QStringLiteral("subnetMaskLineEdit"))->setText(mask);
    dialog.findChild<QLineEdit *>(QStringLiteral("ipAddressLineEdit"))->setText(address);
    QCOMPARE(dialog.ipOk, ipOk);
    QCOMPARE(dialog.maskOk, maskOk);
    auto *status = dialog.findChild<QLabel *>(QStringLiteral("ipStatusLabel"));
    QCOMPARE(status->text(), text);
    QCOMPARE(status->styleSheet(), style);
}

void tst_CameraSelector::ipDialogFields()
{
    SetIpDialog dialog;
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Set IP Address"));
    dialog.setMACAddress(0x0011223344AAull);
    QCOMPARE(dialog.findChild<QLineEdit *>(QStringLiteral("macAddressLineEdit"))->text(),
             QStringLiteral("00:11:22:33:44:AA"));
    dialog.setIPAddress(0xC0A80105);
    dialog.setNetmask(0xFFFFFF00);
    dialog.setGateway(0xC0A80101);
    QCOMPARE(dialog.ipAddress(), 0xC0A80105u);
    QCOMPARE(dialog.Netmask(), 0xFFFFFF00u);
    QCOMPARE(dialog.Gateway(), 0xC0A80101u);
    // Shown: the lowest byte of the address is selected for typing.
    dialog.show();
    dialog.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    auto *ip = dialog.findChild<QLineEdit *>(QStringLiteral("ipAddressLineEdit"));
    QVERIFY(ip->hasFocus());
    QCOMPARE(ip->selectedText(), QStringLiteral("5"));
    QTest::keyClicks(ip, QStringLiteral("77"));
    QCOMPARE(dialog.ipAddress(), 0xC0A8014Du);
    // What is no address stays as typed, and is refused.
    QTest::keyClicks(ip, QStringLiteral("9x"));
    QCOMPARE(ip->text(), QStringLiteral("192.168.1.779x"));
    QVERIFY(!dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->isEnabled());
    QTest::keyClick(ip, Qt::Key_Backspace);
    QTest::keyClick(ip, Qt::Key_Backspace);
    // Enter in a field is no OK: the address is written only when OK is
    // pressed; a focused OK takes Enter.
    QSignalSpy accepted(&dialog, &QDialog::accepted);
    for (const char *field :
         { "ipAddressLineEdit", "subnetMaskLineEdit", "defaultGatewayLineEdit" }) {
        auto *edit = dialog.findChild<QLineEdit *>(QString::fromLatin1(field));
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_Return);
        QTest::keyClick(edit, Qt::Key_Enter, Qt::KeypadModifier);
        QVERIFY2(dialog.isVisible(), field);
    }
    QCOMPARE(accepted.count(), 0);
    auto *ok = dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    QVERIFY(ok->isEnabled());
    ok->setFocus();
    QTest::keyClick(ok, Qt::Key_Return);
    QCOMPARE(accepted.count(), 1);
}

void tst_CameraSelector::ipRefusals_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QString>("gateway");
    QTest::addColumn<bool>("okEnabled");
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("reason");
    const QString mask = QStringLiteral("255.255.255.0");
    const QString none = QStringLiteral("0.0.0.0");
    const QString good = QStringLiteral("IP Configuration OK");
    const QString wrong = QStringLiteral("Incorrect IP address!");
    const QString outside = QStringLiteral("Subnet IP mismatch!");
    // The card is 192.168.1.10/24; another camera on it has 192.168.1.20.
    QTest::newRow("free address") << "192.168.1.77" << mask << none << true << good << QString();
    QTest::newRow("gateway in the subnet")
        << "192.168.1.77" << mask << "192.168.1.1" << true << good << QString();
    QTest::newRow("outside the subnet: asked, not refused")
        << "10.0.0.8" << mask << none << true << outside << QString();
    QTest::newRow("another camera's address")
        << "192.168.1.20" << mask << none << false << wrong << "already used by";
    QTest::newRow("the card's own address")
        << "192.168.1.10" << mask << none << false << wrong << "own address";
    QTest::newRow("broadcast of the subnet")
        << "192.168.1.255" << mask << none << false << wrong << "broadcast address";
    QTest::newRow("network of the subnet")
        << "192.168.1.0" << mask << none << false << wrong << "network address";
    QTest::newRow("this network") << "0.1.2.3" << mask << none << false << outside
                                  << "this network";
    QTest::newRow("loopback") << "127.0.0.1" << mask << none << false << outside << "loopback";
    QTest::newRow("multicast") << "224.0.0.5" << mask << none << false << outside << "multicast";
    QTest::newRow("reserved") << "250.1.1.1" << mask << none << false << outside << "reserved";
    QTest::newRow("limited broadcast")
        << "255.255.255.255" << mask << none << false << outside << "every network";
    QTest::newRow("mask with a hole")
        << "192.168.1.77"
        << "255.0.255.0" << none << false << QString() << "not a subnet mask";
    QTest::newRow("gateway outside the subnet")
        << "192.168.1.77" << mask << "10.0.0.1" << false << good << "outside";
    QTest::newRow("gateway is the camera")
        << "192.168.1.77" << mask << "192.168.1.77" << false << good << "own address";
    QTest::newRow("incomplete") << "192.168.1." << mask << none << false
                                << "\"192.168.1.\" is not an IP address" << QString();
    QTest::newRow("a number too big")
        << "999.1.1.1" << mask << none << false << "is not an IP address" << QString();
    QTest::newRow("letters") << "abc.def" << mask << none << false << "is not an IP address"
                             << QString();
    QTest::newRow("empty") << "" << mask << none << false << "Enter the camera's IP address."
                           << QString();
}

// What would break the network is refused with its reason and OK waits;
// what was typed stays as typed.
void tst_CameraSelector::ipRefusals()
{
    QFETCH(QString, address);
    QFETCH(QString, mask);
    QFETCH(QString, gateway);
    QFETCH(bool, okEnabled);
    QFETCH(QString, status);
    QFETCH(QString, reason);
    SetIpDialog dialog;
    dialog.setNicIPAddress(0xC0A8010A);
    dialog.setNicNetmask(0xFFFFFF00);
    dialog.setTakenAddresses({ { 0xC0A80114u, QStringLiteral("Line 1 (GEV0/C2-1001)") } });
    dialog.setNetmask(0xFFFFFF00);
    dialog.show();
    dialog.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    const std::pair<const char *, QString> fields[] = { { "subnetMaskLineEdit", mask },
                                                        { "defaultGatewayLineEdit", gateway },
                                                        { "ipAddressLineEdit", address } };
    for (const auto &[name, text] : fields) {
        auto *edit = dialog.findChild<QLineEdit *>(QString::fromLatin1(name));
        edit->setFocus();
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, text);
        QCOMPARE(edit->text(), text);
    }
    QPushButton *ok = dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    QCOMPARE(ok->isEnabled(), okEnabled);
    const QString shown = dialog.findChild<QLabel *>(QStringLiteral("ipStatusLabel"))->text();
    if (!status.isEmpty())
        QVERIFY2(shown.contains(status), qPrintable(shown));
    auto *why = dialog.findChild<QLabel *>(QStringLiteral("ipReasonLabel"));
    if (reason.isEmpty())
        QVERIFY2(why->isHidden() || why->text().isEmpty() || !okEnabled, qPrintable(why->text()));
    else
        QVERIFY2(why->isVisible() && why->text().contains(reason), qPrintable(why->text()));
    QSignalSpy accepted(&dialog, &QDialog::accepted);
    dialog.accept();
    QCOMPARE(accepted.count(), okEnabled ? 1 : 0);
}

// The tree is rebuilt by polling while the IP dialog is open (another
// camera comes): OK still writes the address to the camera chosen, and
// nothing refers to the rows that were rebuilt.
void tst_CameraSelector::forceIpWhileTheTreeIsRebuilt()
{
    SystemRef sys;
    const QString id = cameraId(sys, "GEV0", 1);
    Selector s(sys.system, true);
    QVERIFY(s.ready());
    s.choose(id);
    onNextModal([](QWidget *modal) {
        modal->findChild<QLineEdit *>(QStringLiteral("ipAddressLineEdit"))
            ->setText(QStringLiteral("192.168.1.77"));
        std::string added;
        QCOMPARE(OrbCamSim::AddCamera("U3V0", "orbsim-m1300", "M1-9999", &added), OrbCamOk);
        QVERIFY(OrbCamSim::RemoveCamera(added) == OrbCamOk);
        QCOMPARE(OrbCamSim::AddCamera("U3V0", "orbsim-m1300", "M1-9998", &added), OrbCamOk);
        // Two polling passes at least.
        QTest::qWait(2500);
        static_cast<QDialog *>(modal)->accept();
    });
    QTest::mouseClick(s.child<QPushButton>("setIpBtn"), Qt::LeftButton);
    QTRY_COMPARE(sys.camera(id.toLatin1().constData())->GetAccessStatus(),
                 uint32_t(OrbCam::AccessReadWrite));
    QCOMPARE(s.currentId(), id);
    QTRY_VERIFY(s.pane("deviceInfoTreeView").contains(QStringLiteral("IP Address=192.168.1.77")));
}

// A camera listed as free is taken by another application while the
// selector polls: OK is withdrawn and the pane says why, and it comes back
// when the camera is free again.
void tst_CameraSelector::pollingFollowsAccessStatus()
{
    SystemRef sys;
    const QString id = cameraId(sys, "GEV0", 0);
    Selector s(sys.system, true);
    QVERIFY(s.ready());
    s.choose(id);
    QVERIFY(s.ok()->isEnabled());
    QCOMPARE(OrbCamSim::SetAccessStatus(id.toStdString(), OrbCam::AccessNone), OrbCamOk);
    QTRY_VERIFY_WITH_TIMEOUT(!s.ok()->isEnabled(), 3000);
    QCOMPARE(s.currentId(), id);
    QVERIFY(s.pane("deviceInfoTreeView").contains(QStringLiteral("Access status=NO ACCESS")));
    QCOMPARE(OrbCamSim::SetAccessStatus(id.toStdString(), 0), OrbCamOk);
    QTRY_VERIFY_WITH_TIMEOUT(s.ok()->isEnabled(), 3000);
}

QTEST_MAIN(tst_CameraSelector)
#include "tst_cameraselector.moc"
