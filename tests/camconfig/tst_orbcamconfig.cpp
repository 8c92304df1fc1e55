// The camera configuration window on the simulated camera system: what its
// panel and About box show, connecting through the selector, the camera's
// loss and return with a dialog open, and who releases which device.
#include "dialogtest.h"
#include "modaltest.h"
#include "selector/devicetreemodel.h"

#include <OrbGui/orbcameraselectordialog.h>
#include <OrbGui/orbcamconfig.h>
#include <OrbGui/orbcamconfigstrobedialog.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinboxval.h>

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>

#include <functional>

using namespace OrbGui;

namespace {

const char *const fieldNames[]
    = { "lineEditSizeFrameA", "lineEditSizeFrameB", "lineEditFpsFrameA",
        "lineEditFpsFrameB",  "lineEditFtmFrameA",  "lineEditFtmFrameB",
        "lineEditExpFrameA",  "lineEditExpFrameB",  "lineEditTemperature" };

QStringList fields(QWidget *window)
{
    QStringList texts;
    for (const char *name : fieldNames)
        texts << child<QLineEdit>(window, name)->text();
    return texts;
}

bool allEmpty(QWidget *window)
{
    for (const QString &text : fields(window))
        if (!text.isEmpty())
            return false;
    return true;
}

QString statusText(QWidget *window)
{
    return child<QLabel>(window, "statusText")->text();
}

bool showsIcon(QWidget *window, const char *resource)
{
    const QPixmap shown = child<QLabel>(window, "statusIcon")->pixmap(Qt::ReturnByValue);
    return !shown.isNull() && shown.toImage() == QPixmap(QString::fromLatin1(resource)).toImage();
}

void choose(QWidget *modal, const QString &id)
{
    auto *tree = modal->findChild<QTreeView *>(QStringLiteral("cameraTreeView"));
    QTRY_VERIFY(static_cast<DeviceTreeModel *>(tree->model())->getItemIdx(id).isValid());
    tree->setCurrentIndex(static_cast<DeviceTreeModel *>(tree->model())->getItemIdx(id));
    modal->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
}

// Whether any part of the program still holds the simulated system: the
// simulation control API answers "invalid state" once the last reference
// (every open device holds one) has gone.
bool systemAlive()
{
    return OrbCamSim::LoseCamera("no such camera") != OrbCamErrInvalidState;
}

bool showWindow(QMainWindow *window)
{
    window->show();
    window->activateWindow();
    return QTest::qWaitForWindowActive(window);
}

} // namespace

class tst_OrbCamConfig : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QCOMPARE(OrbCamSim::Reset(), OrbCamOk); }
    void panel_data();
    void panel();
    void zeroFrameTime();
    void viewActions();
    void connectThroughSelector_data();
    void connectThroughSelector();
    void cameraHeldElsewhere();
    void hostDeviceStaysTheHosts();
    void lossAndReturnWithDialogOpen();
    void setDeviceMovesDialogs();
    void readFailureShowsNothing();
    void slowCameraLeavesTheWindowAnswering();
    void showFunctionReturns();
};

void tst_OrbCamConfig::panel_data()
{
    QTest::addColumn<QByteArray>("iface");
    QTest::addColumn<bool>("frameAB");
    QTest::addColumn<QString>("manufacturerInfo");
    QTest::addColumn<QStringList>("offered");
    const QStringList all { QStringLiteral("Trigger"), QStringLiteral("Pulse"),
                            QStringLiteral("Strobe"), QStringLiteral("DataOut"),
                            QStringLiteral("Color") };
    QTest::newRow("colour camera with frame A/B") << QByteArray("GEV0") << true << QString() << all;
    // The monochrome model has no FrameAB_Selector and no manufacturer
    // information, no pulse generator, no strobes and no colour.
    QTest::newRow("monochrome camera")
        << QByteArray("U3V0") << false << QStringLiteral("N/A")
        << QStringList { QStringLiteral("Trigger"), QStringLiteral("DataOut") };
}

// What the camera says, as the panel, the status bar and the About box show
// it; frame B only where the camera has one.
void tst_OrbCamConfig::panel()
{
    QFETCH(QByteArray, iface);
    QFETCH(bool, frameAB);
    QFETCH(QString, manufacturerInfo);
    QFETCH(QStringList, offered);
    Camera camera(iface.constData());
    OrbGenParam::Array *params = camera.params();
    OrbCamConfig window(camera.device.device);
    QVERIFY(showWindow(&window));

    // The panel is read on the device's reader: it fills in a moment later.
    QTRY_COMPARE(child<QLineEdit>(&window, "lineEditSizeFrameA")->text(),
                 QStringLiteral("%1x%2")
                     .arg(params->GetInt("Width")->GetValue())
                     .arg(params->GetInt("Height")->GetValue()));
    const int64_t frameTime = params->GetInt("CurrentFrameTime")->GetValue();
    QTRY_COMPARE(child<QLineEdit>(&window, "lineEditFtmFrameA")->text(),
                 QString::number(frameTime));
    const QString fps = child<QLineEdit>(&window, "lineEditFpsFrameA")->text();
    QVERIFY2(QRegularExpression(QStringLiteral("^\\d+\\.\\d\\d$")).match(fps).hasMatch(),
             qPrintable(fps));
    QCOMPARE(fps, QString::number(1e6 / double(frameTime), 'f', 2));
    QTRY_COMPARE(child<QLineEdit>(&window, "lineEditExpFrameA")->text(),
                 QString::number(params->GetInt("CurrentExposureTime")->GetValue()));
    QTRY_VERIFY(!child<QLineEdit>(&window, "lineEditTemperature")->text().isEmpty());

    for (const char *name : { "lblFrameB", "lineEditSizeFrameB", "lineEditFpsFrameB",
                              "lineEditFtmFrameB", "lineEditExpFrameB", "pushBtnFrameAB" })
        QVERIFY2(child<QWidget>(&window, name)->isVisible() == frameAB, name);
    // A dialog with nothing to show on the camera is not offered, in the
    // View menu either.
    const std::pair<const char *, const char *> panes[] = { { "Trigger", "actionTrigger" },
                                                            { "Pulse", "actionPulse" },
                                                            { "Strobe", "actionStrobe" },
                                                            { "DataOut", "actionData_Out" },
                                                            { "Color", "actionColor" } };
    for (const auto &[pane, action] : panes) {
        const bool shown = offered.contains(QLatin1String(pane));
        const QByteArray button = QByteArray("pushBtn") + pane;
        QVERIFY2(child<QWidget>(&window, button.constData())->isVisible() == shown, pane);
        QVERIFY2(child<QAction>(&window, action)->isVisible() == shown, action);
    }
    QCOMPARE(child<QAction>(&window, "actionFrame_A_B")->isVisible(), frameAB);

    const QString model = QString::fromStdString(params->GetString("DeviceModelName")->GetValue());
    QCOMPARE(statusText(&window), model);
    QVERIFY(showsIcon(&window, ":/icons/connected.ico"));

    child<QAction>(&window, "actionAbout")->trigger();
    auto *about = window.findChild<QDialog *>(QStringLiteral("OrbCamConfigAboutDialog"));
    QVERIFY(about);
    QTRY_VERIFY(about->isVisible());
    QCOMPARE(child<QLabel>(about, "lblDeviceModelName")->text(), model);
    QCOMPARE(child<QLabel>(about, "lblDeviceSerialNumber")->text(),
             QString::fromStdString(params->GetString("DeviceSerialNumber")->GetValue()));
    const QString info = child<QLabel>(about, "lblDeviceManufacturerInfo")->text();
    if (manufacturerInfo.isEmpty())
        QVERIFY(!info.isEmpty() && info != QLatin1String("N/A"));
    else
        QCOMPARE(info, manufacturerInfo);
    about->close();
}

// A camera whose description computes a frame time of 0 shows a rate of
// 0.00 rather than infinity or garbage.
void tst_OrbCamConfig::zeroFrameTime()
{
    QTemporaryDir dir;
    const QString original = QString::fromStdString(OrbCamSim::CamerasDir());
    for (const QString &name : QDir(original).entryList(QDir::Files))
        QVERIFY(QFile::copy(original + QLatin1Char('/') + name, dir.filePath(name)));
    const QString path = dir.filePath(QStringLiteral("orbsim-m1300.xml"));
    QFile description(path);
    QVERIFY(description.open(QIODevice::ReadOnly));
    QByteArray xml = description.readAll();
    description.close();
    const QByteArray formula = "<Formula>(E &gt; H * 8 ? E : H * 8) + 100</Formula>";
    QVERIFY(xml.contains(formula));
    xml.replace(formula, "<Formula>E * 0</Formula>");
    QVERIFY(description.open(QIODevice::WriteOnly | QIODevice::Truncate));
    description.write(xml);
    description.close();
    OrbCamSim::SetCamerasDir(dir.path().toStdString());
    {
        Camera camera("U3V0");
        OrbCamConfig window(camera.device.device);
        QVERIFY(showWindow(&window));
        QTRY_COMPARE(child<QLineEdit>(&window, "lineEditFtmFrameA")->text(), QStringLiteral("0"));
        QTRY_COMPARE(child<QLineEdit>(&window, "lineEditFpsFrameA")->text(),
                     QStringLiteral("0.00"));
    }
    OrbCamSim::SetCamerasDir(original.toStdString());
}

// The View menu hides a dialog's button and closes the dialog; the button
// opens and closes its dialog, and closing the dialog releases the button.
void tst_OrbCamConfig::viewActions()
{
    Camera camera;
    OrbCamConfig window(camera.device.device);
    QVERIFY(showWindow(&window));
    auto *button = child<QPushButton>(&window, "pushBtnStrobe");
    auto *dialog = window.findChild<OrbCamConfigStrobeDialog *>();
    QVERIFY(dialog);
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_VERIFY(dialog->isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_VERIFY(!dialog->isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_VERIFY(dialog->isVisible());
    dialog->close();
    QVERIFY(!button->isChecked());
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_VERIFY(dialog->isVisible());
    child<QAction>(&window, "actionStrobe")->trigger();
    QVERIFY(!button->isVisible());
    QTRY_VERIFY(!dialog->isVisible());
    child<QAction>(&window, "actionStrobe")->trigger();
    QVERIFY(button->isVisible());
    QVERIFY(!button->isChecked());
}

void tst_OrbCamConfig::connectThroughSelector_data()
{
    QTest::addColumn<QByteArray>("iface");
    QTest::addColumn<bool>("closeInsteadOfDisconnect");
    QTest::newRow("colour camera, then Disconnect") << QByteArray("GEV0") << false;
    QTest::newRow("monochrome camera, then the window goes") << QByteArray("U3V0") << true;
}

// Without a device the window asks in the selector; the camera it opens is
// its own, released (with the system it took) on Disconnect or when the
// window goes. The test holds no reference of its own while the window
// runs, so the system outliving the window would mean a device kept.
void tst_OrbCamConfig::connectThroughSelector()
{
    QFETCH(QByteArray, iface);
    QFETCH(bool, closeInsteadOfDisconnect);
    QString id, model;
    {
        Camera probe(iface.constData());
        id = QString::fromLatin1(probe.device.device->GetInfo()->GetID());
        model = QString::fromStdString(probe.params()->GetString("DeviceModelName")->GetValue());
    }
    QVERIFY(!systemAlive());
    QString title;
    onNextModal([&title, id](QWidget *modal) {
        title = modal->windowTitle();
        choose(modal, id);
    });
    auto window = std::make_unique<OrbCamConfig>(nullptr);
    QCOMPARE(title, QStringLiteral("Select a device"));
    QVERIFY(showWindow(window.get()));
    QCOMPARE(statusText(window.get()), model);
    QVERIFY(!child<QLineEdit>(window.get(), "lineEditSizeFrameA")->text().isEmpty());
    QVERIFY(systemAlive());
    if (closeInsteadOfDisconnect) {
        window.reset();
    } else {
        child<QAction>(window.get(), "actionDisconnect")->trigger();
        QCOMPARE(statusText(window.get()), QStringLiteral("Disconnected"));
        QVERIFY(showsIcon(window.get(), ":/icons/disconnected.ico"));
        QVERIFY(allEmpty(window.get()));
    }
    QVERIFY(!systemAlive());
    if (window) {
        // Connect again: the selector comes back; a cancel leaves the window
        // disconnected and working.
        onNextModal([](QWidget *modal) { static_cast<QDialog *>(modal)->reject(); });
        child<QAction>(window.get(), "actionConnect")->trigger();
        QCOMPARE(statusText(window.get()), QStringLiteral("Disconnected"));
        QVERIFY(!systemAlive());
    }
}

// The chosen camera is held for control by another application: the user
// is told why nothing was connected, and the window holds nothing.
void tst_OrbCamConfig::cameraHeldElsewhere()
{
    QString id;
    {
        Camera probe("U3V0");
        id = QString::fromLatin1(probe.device.device->GetInfo()->GetID());
    }
    SystemRef sys;
    QCOMPARE(OrbCamSim::SetAccessStatus(id.toStdString(), OrbCam::AccessReadOnly), OrbCamOk);
    QString message;
    onNextModal([&message, id](QWidget *modal) {
        choose(modal, id);
        onNextModal([&message](QWidget *box) {
            message = box->findChild<QLabel *>(QStringLiteral("qt_msgbox_label"))->text();
            static_cast<QDialog *>(box)->accept();
        });
    });
    OrbCamConfig window(nullptr);
    QVERIFY2(message.startsWith(QStringLiteral("Cannot open ") + id), qPrintable(message));
    QCOMPARE(statusText(&window), QStringLiteral("Disconnected"));
    QVERIFY(allEmpty(&window));
}

// A device the host hands in is the host's: neither Disconnect nor the
// window's end releases it (AddressSanitizer would see the host's next use).
void tst_OrbCamConfig::hostDeviceStaysTheHosts()
{
    Camera camera;
    {
        OrbCamConfig window(camera.device.device);
        QVERIFY(showWindow(&window));
        child<QAction>(&window, "actionDisconnect")->trigger();
        QCOMPARE(statusText(&window), QStringLiteral("Disconnected"));
        QVERIFY(allEmpty(&window));
    }
    {
        OrbCamConfig window(camera.device.device);
        QVERIFY(showWindow(&window));
    }
    OrbCamErr err = OrbCamErrUnknown;
    QVERIFY(camera.device.device->GetParams(&err));
    QCOMPARE(err, OrbCamOk);
    QVERIFY(camera.params()->GetInt("Width")->GetValue() > 0);
}

// The camera goes while its strobe dialog is open and the user is half-way
// through typing a value: within a second the nine fields are empty, the
// status bar says so, and nothing typed reaches the camera. When it comes
// back the window and the open dialog follow it again.
void tst_OrbCamConfig::lossAndReturnWithDialogOpen()
{
    Camera camera;
    const std::string id = camera.device.device->GetInfo()->GetID();
    OrbGenParam::Int *delayFeature = camera.params()->GetInt("Strobe1Delay");
    const int64_t before = delayFeature->GetValue();
    OrbCamConfig window(camera.device.device);
    QVERIFY(showWindow(&window));
    QTest::mouseClick(child<QPushButton>(&window, "pushBtnStrobe"), Qt::LeftButton);
    auto *dialog = window.findChild<OrbCamConfigStrobeDialog *>();
    QTRY_VERIFY(dialog->isVisible());
    auto *delay = child<QtOrbSliderSpinBox>(dialog, "spBoxStrobe1Delay");
    QCOMPARE(qint64(delay->value()), before);
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    QLineEdit *typing = delay->spinBox()->findChild<QLineEdit *>();
    typing->setFocus();
    typing->selectAll();
    QTest::keyClicks(typing, QStringLiteral("77"));

    QCOMPARE(OrbCamSim::LoseCamera(id), OrbCamOk);
    QTRY_VERIFY_WITH_TIMEOUT(allEmpty(&window), 1500);
    QCOMPARE(statusText(&window), QStringLiteral("Disconnected"));
    QVERIFY(showsIcon(&window, ":/icons/disconnected.ico"));
    QTRY_VERIFY(!delay->isEnabled());
    QVERIFY(dialog->isVisible());

    QCOMPARE(OrbCamSim::RegainCamera(id), OrbCamOk);
    QTRY_VERIFY_WITH_TIMEOUT(!child<QLineEdit>(&window, "lineEditSizeFrameA")->text().isEmpty(),
                             1500);
    QCOMPARE(statusText(&window),
             QString::fromStdString(camera.params()->GetString("DeviceModelName")->GetValue()));
    QVERIFY(showsIcon(&window, ":/icons/connected.ico"));
    QCOMPARE(delayFeature->GetValue(), before);
    QTRY_VERIFY(delay->isEnabled());
    QCOMPARE(qint64(delay->value()), before);
    QCOMPARE(delayFeature->SetValue(before + 3), OrbCamOk);
    QTRY_COMPARE(qint64(delay->value()), before + 3);
    // The panel keeps ticking on the returned camera.
    QCOMPARE(camera.params()->GetInt("Height")->SetValue(480), OrbCamOk);
    QTRY_VERIFY_WITH_TIMEOUT(
        child<QLineEdit>(&window, "lineEditSizeFrameA")->text().endsWith(QLatin1String("x480")),
        2500);
}

// SetDevice hands every dialog the new device, open or not.
void tst_OrbCamConfig::setDeviceMovesDialogs()
{
    Camera colour;
    Camera mono("U3V0");
    OrbCamConfig window(colour.device.device);
    QVERIFY(showWindow(&window));
    QTest::mouseClick(child<QPushButton>(&window, "pushBtnFrameAB"), Qt::LeftButton);
    window.SetDevice(mono.device.device);
    QCOMPARE(statusText(&window),
             QString::fromStdString(mono.params()->GetString("DeviceModelName")->GetValue()));
    QVERIFY(!child<QWidget>(&window, "pushBtnFrameAB")->isVisible());
    QVERIFY(!child<QWidget>(&window, "lineEditSizeFrameB")->isVisible());
    auto *strobe = window.findChild<OrbCamConfigStrobeDialog *>();
    QTest::mouseClick(child<QPushButton>(&window, "pushBtnStrobe"), Qt::LeftButton);
    QTRY_VERIFY(strobe->isVisible());
    // The monochrome camera has no strobe: its controls stay disabled.
    QVERIFY(!child<QWidget>(strobe, "spBoxStrobe1Delay")->isEnabled());
    window.SetDevice(colour.device.device);
    QTRY_VERIFY(child<QWidget>(strobe, "spBoxStrobe1Delay")->isEnabled());
    QVERIFY(child<QWidget>(&window, "pushBtnFrameAB")->isVisible());
}

// A register that cannot be read empties its field instead of showing 0;
// the others keep ticking.
void tst_OrbCamConfig::readFailureShowsNothing()
{
    Camera camera("U3V0");
    const std::string id = camera.device.device->GetInfo()->GetID();
    OrbCamConfig window(camera.device.device);
    QVERIFY(showWindow(&window));
    QTRY_VERIFY(!child<QLineEdit>(&window, "lineEditTemperature")->text().isEmpty());
    QCOMPARE(OrbCamSim::FailFeature(id, "CurrentTemperature", OrbCamSim::FailRead), OrbCamOk);
    QTRY_VERIFY_WITH_TIMEOUT(child<QLineEdit>(&window, "lineEditTemperature")->text().isEmpty(),
                             2500);
    QVERIFY(!child<QLineEdit>(&window, "lineEditSizeFrameA")->text().isEmpty());
    QCOMPARE(statusText(&window),
             QString::fromStdString(camera.params()->GetString("DeviceModelName")->GetValue()));
}

// A camera that answers slowly (a network's round trip on every register)
// keeps the device's reader waiting, never the window: the GUI thread runs
// its timers while the panel is read, and the panel fills in when the reads
// are done.
void tst_OrbCamConfig::slowCameraLeavesTheWindowAnswering()
{
    Camera camera("U3V0");
    const std::string id = camera.device.device->GetInfo()->GetID();
    {
        OrbCamConfig window(camera.device.device);
        QVERIFY(showWindow(&window));
        QTRY_VERIFY(!child<QLineEdit>(&window, "lineEditTemperature")->text().isEmpty());
        child<QLineEdit>(&window, "lineEditTemperature")->clear();
        QCOMPARE(OrbCamSim::SetAnswerTime(id, 600), OrbCamOk);
        // The longest the GUI thread went without running its timer while
        // the window's once-a-second refresh read the camera's temperature
        // (never cached) and what else its cache did not hold, at 600 ms
        // each.
        QElapsedTimer clock;
        clock.start();
        qint64 last = 0, longest = 0;
        QTimer ticker;
        connect(&ticker, &QTimer::timeout, [&] {
            longest = qMax(longest, clock.elapsed() - last);
            last = clock.elapsed();
        });
        ticker.start(10);
        QTRY_VERIFY_WITH_TIMEOUT(
            !child<QLineEdit>(&window, "lineEditTemperature")->text().isEmpty(), 5000);
        QTest::qWait(1200); // another refresh
        QVERIFY2(longest < 300, qPrintable(QString::number(longest)));
    }
    QCOMPARE(OrbCamSim::SetAnswerTime(id, 0), OrbCamOk);
}

// The plain entry point shows the window and takes it down again before it
// returns: the host runs the event loop, and no window of ours is left.
void tst_OrbCamConfig::showFunctionReturns()
{
    Camera camera;
    const int windows = QApplication::topLevelWidgets().size();
    ShowCamConfigDialog(camera.device.device, 0);
    QCoreApplication::processEvents();
    QCOMPARE(QApplication::topLevelWidgets().size(), windows);
    QVERIFY(camera.params()->GetInt("Width")->GetValue() > 0);
}

QTEST_MAIN(tst_OrbCamConfig)
#include "tst_orbcamconfig.moc"
