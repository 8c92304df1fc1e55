// The six feature dialogs and the configuration window used as a new user
// uses them, with the keyboard and the mouse, on the simulated cameras:
// after every step the camera's register writes are compared with what the
// user acted on, and nothing else may have been written.
#include "dialogtest.h"
#include "modaltest.h"

#include <OrbGui/orbcamconfig.h>
#include <OrbGui/orbcamconfigcolordialog.h>
#include <OrbGui/orbcamconfigframeabdialog.h>
#include <OrbGui/orbcamconfigoutputdialog.h>
#include <OrbGui/orbcamconfigpulsedialog.h>
#include <OrbGui/orbcamconfigstrobedialog.h>
#include <OrbGui/orbcamconfigtriggerdialog.h>
#include <OrbGui/qtorbdoublespinboxval.h>
#include <OrbGui/qtorbgainslider.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval.h>
#include <OrbGui/qtorbspinboxval64.h>

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QThread>
#include <QTreeView>
#include <QtTest>

#include <atomic>
#include <functional>
#include <memory>

using namespace OrbGui;

namespace {

using Features = QByteArrayList;

std::unique_ptr<OrbCamConfigDialog> makeDialog(const QString &name, OrbCam::Device *device)
{
    if (name == QLatin1String("trigger"))
        return std::make_unique<OrbCamConfigTriggerDialog>(device);
    if (name == QLatin1String("strobe"))
        return std::make_unique<OrbCamConfigStrobeDialog>(device);
    if (name == QLatin1String("pulse"))
        return std::make_unique<OrbCamConfigPulseDialog>(device);
    if (name == QLatin1String("output"))
        return std::make_unique<OrbCamConfigOutputDialog>(device);
    if (name == QLatin1String("color"))
        return std::make_unique<OrbCamConfigColorDialog>(device);
    return std::make_unique<OrbCamConfigFrameABDialog>(device);
}

QSet<qint64> writesOf(WriteJournal &journal, OrbGenParam::Array *params, const Features &features)
{
    QSet<qint64> all;
    for (const QByteArray &feature : features)
        all += journal.writesOf(params, feature.constData());
    return all;
}

QString describe(const QSet<qint64> &addresses)
{
    QList<qint64> sorted = addresses.values();
    std::sort(sorted.begin(), sorted.end());
    QStringList hex;
    for (qint64 a : sorted)
        hex << QStringLiteral("0x%1").arg(a, 0, 16);
    return QLatin1Char('{') + hex.join(QStringLiteral(", ")) + QLatin1Char('}');
}

#define COMPARE_WRITES(actual, expected)                                                           \
    do {                                                                                           \
        const QSet<qint64> got = (actual);                                                         \
        const QSet<qint64> want = (expected);                                                      \
        QVERIFY2(                                                                                  \
            got == want,                                                                           \
            qPrintable(                                                                            \
                QStringLiteral("written %1, expected %2").arg(describe(got), describe(want))));    \
    } while (false)

// Where a press of Enter or a typed number lands: the line edit inside a
// spin box of ours, or the control itself.
QWidget *typingTarget(QWidget *control)
{
    if (auto *box = qobject_cast<QtOrbSpinBox *>(control))
        return box->spinBox();
    if (auto *box = qobject_cast<QtOrbSliderSpinBox *>(control))
        return box->spinBox();
    if (auto *box = qobject_cast<QtOrbGainSlider *>(control))
        return box->spinBox();
    return control;
}

// Tabs until the focus is on `control` (or inside it); false when the tab
// chain never reaches it.
bool tabTo(QWidget *window, QWidget *control)
{
    for (int i = 0; i < 200; ++i) {
        QWidget *focus = QApplication::focusWidget();
        if (focus && (focus == control || control->isAncestorOf(focus)))
            return true;
        QTest::keyClick(focus ? focus : window, Qt::Key_Tab);
    }
    return false;
}

// Every widget the Tab key stops at.
int tabStops(QWidget *window)
{
    int stops = 0;
    for (QWidget *w : window->findChildren<QWidget *>())
        if (w->isVisible() && w->isEnabled() && (w->focusPolicy() & Qt::TabFocus))
            ++stops;
    return stops;
}

// A number the box can take other than the one it shows.
QString anotherNumber(QWidget *control)
{
    auto pick = [](qint64 value, qint64 max, qint64 step) {
        step = qMax<qint64>(step, 1);
        return QString::number(value + step <= max ? value + step : value - step);
    };
    if (auto *box = qobject_cast<QtOrbSpinBox *>(control))
        return pick(box->value(), box->maximum(), box->singleStep());
    if (auto *box = qobject_cast<QtOrbSliderSpinBox *>(control))
        return pick(box->value(), box->maximum(), box->singleStep());
    if (auto *box = qobject_cast<QtOrbGainSlider *>(control))
        return QString::number(box->value() + 0.125 <= box->maximum() ? box->value() + 0.125
                                                                      : box->value() - 0.125);
    return QString();
}

void typeNumber(QWidget *control, const QString &number)
{
    QWidget *target = typingTarget(control);
    QTest::keyClick(target, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(target, number);
}

// Gives every camera feature the dialogs could write by mistake a value
// that such a write would change, and makes every button that acts
// available.
void armMistakes(OrbGenParam::Array *params)
{
    QCOMPARE(params->GetEnum("TriggerMode")->SetValue(1), OrbCamOk);
    QCOMPARE(params->GetEnum("TriggerSource")->SetValueByName("Software"), OrbCamOk);
    QCOMPARE(params->GetInt("RedCoefficient")->SetValue(300), OrbCamOk);
    QCOMPARE(params->GetInt("GreenCoefficient")->SetValue(310), OrbCamOk);
    QCOMPARE(params->GetInt("BlueCoefficient")->SetValue(320), OrbCamOk);
    QCOMPARE(params->GetBoolean("PulseGenEnable")->SetValue(false), OrbCamOk);
}

struct Act {
    enum Kind { Type, Space };
    Kind kind;
    const char *control;
    Features features;
};

} // namespace

Q_DECLARE_METATYPE(QVector<Act>)

class tst_DialogsInUse : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }
    void cleanup()
    {
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QCOMPARE(OrbCamSim::Reset(), OrbCamOk);
    }
    void keyboardWalk_data();
    void keyboardWalk();
    void windowKeyboardWalk();
    void everyControlWrites_data();
    void everyControlWrites();
    void closingEveryWay_data();
    void closingEveryWay();
    void showFunctionsReturn();
    void pulseShortcutKeepsWorking();
    void controlsWithoutFeatureAreEmpty();
    void connectCancelKeepsTheCamera();
    void noLossIsDropped();
    void panelColumnsKeepTheirFrame_data();
    void panelColumnsKeepTheirFrame();
    void frameModes_data();
    void frameModes();
    void frameFollowsAnOutsideSelector();
    void frameShowsTheCamerasTimes();
    void frameGainAsTheCameraHoldsIt();
    void frameGainNotWritable();
};

void tst_DialogsInUse::keyboardWalk_data()
{
    QTest::addColumn<QString>("dialog");
    QTest::addColumn<QVector<Act>>("acts");
    QTest::newRow("trigger") << "trigger"
                             << QVector<Act> {
                                    { Act::Space, "pushBtnSoftwareTrigger", { "TriggerSoftware" } }
                                };
    QTest::newRow("strobe") << "strobe"
                            << QVector<Act> {
                                   { Act::Type, "spBoxStrobe1Delay", { "Strobe1Delay" } },
                                   { Act::Type, "spBoxStrobe2Width", { "Strobe2Width" } },
                               };
    QTest::newRow("pulse") << "pulse"
                           << QVector<Act> {
                                  { Act::Type, "spBoxWidth", { "PulseGenWidth" } },
                                  { Act::Type, "spBoxPeriod", { "PulseGenPeriod" } },
                                  { Act::Type, "spBoxNumPulses", { "PulseGenNumPulses" } },
                                  { Act::Space, "pushBtnPulseEnable", { "PulseGenEnable" } },
                              };
    QTest::newRow("output") << "output"
                            << QVector<Act> {
                                   { Act::Type, "spBoxDpcDynThres", { "DefectPixelThreshold" } },
                                   { Act::Type, "spBoxHpcDynThres", { "HotPixelThreshold" } },
                                   { Act::Space, "chBoxHorMirror", { "ReverseX" } },
                               };
    QTest::newRow("color") << "color"
                           << QVector<Act> {
                                  { Act::Type, "spBoxBlue", { "BlueCoefficient" } },
                                  { Act::Type, "spBoxRed", { "RedCoefficient" } },
                                  { Act::Space, "pushBtnGreenUnity", { "GreenCoefficient" } },
                              };
    QTest::newRow("frame A/B") << "frameab"
                               << QVector<Act> {
                                      { Act::Type, "spBoxExpLines", { "Frame_ExposureLines" } },
                                      { Act::Type, "spBoxFrameWidth", { "Frame_Width" } },
                                      { Act::Type, "spBoxBlackLevel", { "Frame_BlackLevel" } },
                                      { Act::Space, "chBoxWdrEnable", { "Frame_WdrEnable" } },
                                  };
}

// Tab through every control pressing Enter in each, then the user's own
// acts one by one, then Escape: each step writes exactly what the user
// acted on. Enter in a field never presses a button of the dialog.
void tst_DialogsInUse::keyboardWalk()
{
    QFETCH(QString, dialog);
    QFETCH(QVector<Act>, acts);
    Camera camera;
    OrbGenParam::Array *params = camera.params();
    armMistakes(params);
    std::unique_ptr<OrbCamConfigDialog> window = makeDialog(dialog, camera.device.device);
    QSignalSpy closing(window.get(), &OrbCamConfigDialog::closing);
    WriteJournal journal(camera.device.device);
    QVERIFY(show(window.get()));
    COMPARE_WRITES(journal.take(), QSet<qint64>());

    const int stops = tabStops(window.get());
    QVERIFY(stops > 0);
    for (int i = 0; i <= stops; ++i) {
        QWidget *focus = QApplication::focusWidget();
        QVERIFY(focus);
        QTest::keyClick(focus, Qt::Key_Tab);
        focus = QApplication::focusWidget();
        // Enter on a focused button is the user pressing it; everywhere
        // else it must do nothing the user did not ask for.
        if (!qobject_cast<QAbstractButton *>(focus))
            QTest::keyClick(focus, Qt::Key_Return);
        QVERIFY2(journal.take().isEmpty(),
                 qPrintable(QStringLiteral("Tab, Enter wrote at %1").arg(focus->objectName())));
        QVERIFY(window->isVisible());
    }

    for (const Act &act : acts) {
        auto *control = child<QWidget>(window.get(), act.control);
        QVERIFY(control);
        QVERIFY2(control->isEnabled(), act.control);
        QVERIFY2(tabTo(window.get(), control), act.control);
        const QSet<qint64> expected = writesOf(journal, params, act.features);
        QVERIFY(!expected.isEmpty());
        if (act.kind == Act::Type) {
            typeNumber(control, anotherNumber(control));
            QTest::keyClick(typingTarget(control), Qt::Key_Return);
        } else {
            QTest::keyClick(control, Qt::Key_Space);
        }
        COMPARE_WRITES(journal.take(), expected);
        QVERIFY(window->isVisible());
        // A number typed and left with Escape is never written.
        if (act.kind == Act::Type) {
            typeNumber(control, anotherNumber(control));
            COMPARE_WRITES(journal.take(), QSet<qint64>());
        }
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    QTRY_VERIFY(!window->isVisible());
    COMPARE_WRITES(journal.take(), QSet<qint64>());
    QCOMPARE(closing.count(), 1);
}

// The window: Tab and Enter everywhere write nothing; Space on a dialog's
// button opens it, Escape in the dialog closes it and unchecks the button,
// and the next press opens it again.
void tst_DialogsInUse::windowKeyboardWalk()
{
    Camera camera;
    armMistakes(camera.params());
    OrbCamConfig window(camera.device.device);
    WriteJournal journal(camera.device.device);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const int stops = tabStops(&window);
    for (int i = 0; i <= stops; ++i) {
        QWidget *focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : &window, Qt::Key_Tab);
        focus = QApplication::focusWidget();
        if (focus && !qobject_cast<QAbstractButton *>(focus))
            QTest::keyClick(focus, Qt::Key_Return);
        COMPARE_WRITES(journal.take(), QSet<qint64>());
    }
    const std::pair<const char *, const char *> panes[]
        = { { "pushBtnTrigger", "OrbCamConfigTriggerDialog" },
            { "pushBtnPulse", "OrbCamConfigPulseDialog" },
            { "pushBtnColor", "OrbCamConfigColorDialog" },
            { "pushBtnFrameAB", "OrbCamConfigFrameABDialog" } };
    for (const auto &[buttonName, dialogName] : panes) {
        auto *button = child<QPushButton>(&window, buttonName);
        auto *dialog = child<QDialog>(&window, dialogName);
        // Icons only: the tool tip names the dialog.
        QCOMPARE(button->toolTip(), dialog->windowTitle());
        for (int round = 0; round < 2; ++round) {
            QVERIFY(tabTo(&window, button));
            QTest::keyClick(button, Qt::Key_Space);
            QTRY_VERIFY(dialog->isVisible());
            QVERIFY(button->isChecked());
            dialog->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(dialog));
            QTest::keyClick(dialog->focusWidget() ? dialog->focusWidget() : dialog, Qt::Key_Escape);
            QTRY_VERIFY(!dialog->isVisible());
            QVERIFY2(!button->isChecked(), buttonName);
            window.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&window));
        }
        COMPARE_WRITES(journal.take(), QSet<qint64>());
    }
}

void tst_DialogsInUse::everyControlWrites_data()
{
    QTest::addColumn<QString>("dialog");
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("feature");
    const auto row = [](const char *dialog, const char *control, const char *feature) {
        QTest::addRow("%s %s", dialog, control) << dialog << control << feature;
    };
    row("output", "cmBoxPixelFormat", "PixelFormat");
    row("output", "chBoxEnableLut", "LUTEnable");
    row("output", "cmBoxLut", "LUTSelector");
    row("output", "cmBoxDpc", "DefectPixelCorrection");
    row("output", "spBoxDpcDynThres", "DefectPixelThreshold");
    row("output", "cmBoxHpc", "HotPixelCorrection");
    row("output", "spBoxHpcDynThres", "HotPixelThreshold");
    row("output", "chBoxVerMirror", "ReverseY");
    row("output", "cmBoxTestMode", "TestPattern");
    row("color", "cmBoxWhiteBalance", "BalanceWhiteAuto");
    row("color", "cmBoxTrackingSpeed", "AutoTrackingSpeed");
    row("color", "spBoxGreen", "GreenCoefficient");
    row("trigger", "cmBoxTriggerDebounce", "TriggerDebounce");
    row("trigger", "cmBoxTriggerEdge", "TriggerActivation");
    row("pulse", "cmBoxGranularity", "PulseGenGranularity");
    row("pulse", "spBoxPeriod", "PulseGenPeriod");
    row("pulse", "spBoxWidth", "PulseGenWidth");
    row("pulse", "spBoxNumPulses", "PulseGenNumPulses");
    row("strobe", "cmBoxOut2Selector", "OUT2Selector");
    row("strobe", "cmBoxStrobe2Mode", "Strobe2Mode");
}

// Each bound control, used with the mouse, writes its own feature and no
// other, and the camera then holds what the control shows.
void tst_DialogsInUse::everyControlWrites()
{
    QFETCH(QString, dialog);
    QFETCH(QString, control);
    QFETCH(QString, feature);
    Camera camera;
    OrbGenParam::Array *params = camera.params();
    armMistakes(params);
    std::unique_ptr<OrbCamConfigDialog> window = makeDialog(dialog, camera.device.device);
    WriteJournal journal(camera.device.device);
    QVERIFY(show(window.get()));
    auto *widget = child<QWidget>(window.get(), control.toLatin1().constData());
    QVERIFY(widget && widget->isEnabled());
    const QSet<qint64> expected = writesOf(journal, params, Features { feature.toLatin1() });
    const QByteArray name = feature.toLatin1();
    if (auto *box = qobject_cast<QComboBox *>(widget)) {
        const auto *model = qobject_cast<QStandardItemModel *>(box->model());
        QString other;
        for (int i = 0; i < box->count() && other.isEmpty(); ++i)
            if (i != box->currentIndex() && (!model || model->item(i)->isEnabled()))
                other = box->itemText(i);
        QVERIFY2(!other.isEmpty(), "no other entry to choose");
        pick(box, other);
        QCOMPARE(QString::fromUtf8(params->GetEnum(name.constData())->GetValueName()), other);
    } else if (auto *button = qobject_cast<QAbstractButton *>(widget)) {
        const bool was = button->isChecked();
        // On its box: a check box stretched by its layout takes no click
        // beyond its text.
        QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier,
                          QPoint(qMin(8, button->width() / 2), button->height() / 2));
        QCOMPARE(params->GetBoolean(name.constData())->GetValue(), !was);
    } else {
        const QString number = anotherNumber(widget);
        QWidget *target = typingTarget(widget);
        QTest::mouseClick(target, Qt::LeftButton);
        typeNumber(widget, number);
        QTest::keyClick(target, Qt::Key_Return);
        QCOMPARE(QString::number(params->GetInt(name.constData())->GetValue()), number);
    }
    COMPARE_WRITES(journal.take(), expected);
}

void tst_DialogsInUse::closingEveryWay_data()
{
    QTest::addColumn<QString>("dialog");
    QTest::addColumn<QString>("way");
    for (const char *dialog : { "trigger", "strobe", "pulse", "output", "color", "frameab" })
        for (const char *way : { "close", "Escape", "hide" })
            QTest::addRow("%s by %s", dialog, way) << dialog << way;
}

// However a dialog goes, it says so once, and the window's button follows.
void tst_DialogsInUse::closingEveryWay()
{
    QFETCH(QString, dialog);
    QFETCH(QString, way);
    Camera camera;
    std::unique_ptr<OrbCamConfigDialog> window = makeDialog(dialog, camera.device.device);
    QSignalSpy closing(window.get(), &OrbCamConfigDialog::closing);
    for (int round = 0; round < 2; ++round) {
        QVERIFY(show(window.get()));
        if (way == QLatin1String("close"))
            window->close();
        else if (way == QLatin1String("hide"))
            window->hide();
        else
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!window->isVisible());
        QCOMPARE(closing.count(), round + 1);
    }
}

void tst_DialogsInUse::showFunctionsReturn()
{
    Camera camera;
    const int windows = QApplication::topLevelWidgets().size();
    for (auto *show : { &ShowTriggerDialog, &ShowStrobeDialog, &ShowPulseDialog, &ShowOutputDialog,
                        &ShowColorDialog, &ShowFrameABDialog })
        show(camera.device.device, 0);
    QCoreApplication::processEvents();
    QCOMPARE(QApplication::topLevelWidgets().size(), windows);
}

// Ctrl+Shift+S starts and stops the pulse generator, not only once: the
// button's change of text must not take the shortcut away.
void tst_DialogsInUse::pulseShortcutKeepsWorking()
{
    Camera camera;
    OrbGenParam::Boolean *enable = camera.params()->GetBoolean("PulseGenEnable");
    QCOMPARE(enable->SetValue(false), OrbCamOk);
    OrbCamConfigPulseDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *button = child<QPushButton>(&dialog, "pushBtnPulseEnable");
    const QKeySequence shortcut = button->shortcut();
    QVERIFY(!shortcut.isEmpty());
    for (bool expected : { true, false, true }) {
        // The sequence is the chord pressed twice.
        QTest::keyClick(&dialog, Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        QTest::keyClick(&dialog, Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        QTRY_COMPARE(enable->GetValue(), expected);
        QCOMPARE(button->shortcut(), shortcut);
    }
}

// A control whose feature the camera lacks is disabled and shows nothing,
// and nothing derived from it shows a number either.
void tst_DialogsInUse::controlsWithoutFeatureAreEmpty()
{
    // The monochrome model has no pulse generator.
    Camera mono("U3V0");
    QVERIFY(!mono.params()->GetInt("PulseGenPeriod"));
    OrbCamConfigPulseDialog pulse(mono.device.device);
    for (const char *name : { "spBoxPeriod", "spBoxWidth", "spBoxNumPulses" }) {
        auto *box = child<QtOrbSpinBox>(&pulse, name);
        QVERIFY2(!box->isEnabled(), name);
        QVERIFY2(box->spinBox()->text().isEmpty(), name);
    }
    QCOMPARE(child<QLineEdit>(&pulse, "lineEditDelay")->text(), QString());
    QCOMPARE(child<QLineEdit>(&pulse, "lineEditFreq")->text(), QString());
    QCOMPARE(child<QComboBox>(&pulse, "cmBoxGranularity")->count(), 0);

    OrbCamConfigColorDialog colour(nullptr);
    for (const char *name : { "lblRedCoef", "lblGreenCoef", "lblBlueCoef" })
        QVERIFY2(child<QLabel>(&colour, name)->text().isEmpty(), name);

    // A camera first, then none: the earlier camera's values go too.
    Camera camera;
    OrbCamConfigFrameABDialog frames(camera.device.device);
    auto *width = child<QtOrbSpinBox>(&frames, "spBoxFrameWidth");
    QVERIFY(!width->spinBox()->text().isEmpty());
    frames.SetDevice(nullptr);
    QVERIFY(width->spinBox()->text().isEmpty());
    QVERIFY(child<QComboBox>(&frames, "cmBoxFrameMode")->currentText().isEmpty());
}

// Connect while connected asks first; Cancel leaves the window on its
// camera.
void tst_DialogsInUse::connectCancelKeepsTheCamera()
{
    Camera camera;
    OrbCamConfig window(camera.device.device);
    window.show();
    const QString model = child<QLabel>(&window, "statusText")->text();
    QVERIFY(model != QLatin1String("Disconnected"));
    bool asked = false;
    onNextModal([&asked](QWidget *modal) {
        asked = true;
        modal->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Cancel)->click();
    });
    child<QAction>(&window, "actionConnect")->trigger();
    QVERIFY(asked);
    QCOMPARE(child<QLabel>(&window, "statusText")->text(), model);
    QVERIFY(child<QPushButton>(&window, "pushBtnTrigger")->isEnabled());
    QTRY_VERIFY(!child<QLineEdit>(&window, "lineEditSizeFrameA")->text().isEmpty());
    // The dialogs still work on the camera.
    auto *trigger = child<QDialog>(&window, "OrbCamConfigTriggerDialog");
    QVERIFY(child<QCheckBox>(trigger, "chBoxTriggerEnable")->isEnabled());
}

namespace {
std::atomic<int> lossesSeen { 0 };
void countLoss(const void *, size_t, void *)
{
    ++lossesSeen;
}
} // namespace

// A loss reported while the window initialises again with the same camera
// (SetDevice with it, or the camera's return) is acted on, not dropped.
void tst_DialogsInUse::noLossIsDropped()
{
    Camera camera;
    const std::string id = camera.device.device->GetInfo()->GetID();
    OrbCamConfig window(camera.device.device);
    window.show();
    auto *status = child<QLabel>(&window, "statusText");
    QVERIFY(status->text() != QLatin1String("Disconnected"));
    // Registered after the window's callback: once it has been called, so
    // has the window's.
    lossesSeen = 0;
    QCOMPARE(
        camera.device.device->RegisterEventCallback(OrbCam::EventDeviceLost, &countLoss, nullptr),
        OrbCamOk);
    QCOMPARE(OrbCamSim::LoseCamera(id), OrbCamOk);
    // Without running the event loop: the window's tick must not take the
    // loss before the set-up below.
    QDeadlineTimer deadline(5000);
    while (lossesSeen.load() == 0 && !deadline.hasExpired())
        QThread::yieldCurrentThread();
    QCOMPARE(lossesSeen.load(), 1);
    window.SetDevice(camera.device.device);
    QTRY_COMPARE_WITH_TIMEOUT(status->text(), QStringLiteral("Disconnected"), 3000);
    QCOMPARE(child<QLineEdit>(&window, "lineEditSizeFrameA")->text(), QString());
    camera.device.device->UnregisterEventCallback(OrbCam::EventDeviceLost, &countLoss, nullptr);
    QCOMPARE(OrbCamSim::RegainCamera(id), OrbCamOk);
    QTRY_COMPARE_WITH_TIMEOUT(status->text() != QLatin1String("Disconnected"), true, 3000);
}

void tst_DialogsInUse::panelColumnsKeepTheirFrame_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("selected");
    for (const char *mode : { "FrameA", "FrameB", "FrameAB" })
        for (const char *selected : { "FrameA", "FrameB" })
            QTest::addRow("mode %s, %s selected", mode, selected) << mode << selected;
}

// Frame A's size under "Frame A", frame B's under "Frame B", in every frame
// mode and whichever frame is selected; the frame not selected keeps its
// last reading, marked as not current; nothing is written to read them.
void tst_DialogsInUse::panelColumnsKeepTheirFrame()
{
    QFETCH(QString, mode);
    QFETCH(QString, selected);
    Camera camera;
    OrbGenParam::Array *params = camera.params();
    OrbGenParam::Enum *selector = params->GetEnum("FrameAB_Selector");
    QCOMPARE(selector->SetValueByName("FrameA"), OrbCamOk);
    QCOMPARE(params->GetInt("Frame_Width")->SetValue(640), OrbCamOk);
    const QString sizeOfA = QStringLiteral("640x%1").arg(params->GetInt("Height")->GetValue());
    QCOMPARE(selector->SetValueByName("FrameB"), OrbCamOk);
    QCOMPARE(params->GetInt("Frame_Width")->SetValue(1024), OrbCamOk);
    const QString sizeOfB = QStringLiteral("1024x%1").arg(params->GetInt("Height")->GetValue());
    QVERIFY(sizeOfA != sizeOfB);
    QCOMPARE(params->GetEnum("FrameMode")->SetValueByName(mode.toLatin1().constData()), OrbCamOk);
    QCOMPARE(selector->SetValueByName(selected.toLatin1().constData()), OrbCamOk);
    const bool bSelected = selected == QLatin1String("FrameB");

    OrbCamConfig window(camera.device.device);
    WriteJournal journal(camera.device.device);
    window.show();
    auto *sizeA = child<QLineEdit>(&window, "lineEditSizeFrameA");
    auto *sizeB = child<QLineEdit>(&window, "lineEditSizeFrameB");
    QLineEdit *current = bSelected ? sizeB : sizeA;
    QLineEdit *other = bSelected ? sizeA : sizeB;
    const QString currentSize = bSelected ? sizeOfB : sizeOfA;
    QTRY_COMPARE(current->text(), currentSize);
    QVERIFY(current->isEnabled());
    QVERIFY(other->text().isEmpty() || !other->isEnabled());
    QVERIFY(other->text() != currentSize);

    // The other frame selected from outside: each column keeps its own
    // frame's numbers.
    QCOMPARE(selector->SetValueByName(bSelected ? "FrameA" : "FrameB"), OrbCamOk);
    journal.take();
    const QString otherSize = bSelected ? sizeOfA : sizeOfB;
    QTRY_COMPARE(other->text(), otherSize);
    QVERIFY(other->isEnabled());
    QTRY_VERIFY(!current->isEnabled());
    QCOMPARE(current->text(), currentSize);
    QVERIFY(!current->toolTip().isEmpty());
    QTest::qWait(1100);
    QCOMPARE(sizeA->text(), sizeOfA);
    QCOMPARE(sizeB->text(), sizeOfB);
    COMPARE_WRITES(journal.take(), QSet<qint64>());
}

void tst_DialogsInUse::frameModes_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<bool>("alternating");
    QTest::newRow("frame A only") << "FrameA" << false;
    QTest::newRow("frame B only") << "FrameB" << false;
    QTest::newRow("both alternating") << "FrameAB" << true;
}

// Every frame mode, set on the camera before the dialog opens and again
// from outside while it is open: the line time in its box, the frame
// counts bound only when frames alternate (empty otherwise), the tabs of
// the frames the mode takes enabled. Nothing is written by either.
void tst_DialogsInUse::frameModes()
{
    QFETCH(QString, mode);
    QFETCH(bool, alternating);
    Camera camera;
    OrbGenParam::Array *params = camera.params();
    const QByteArray name = mode.toLatin1();
    for (bool open : { false, true }) {
        std::unique_ptr<OrbCamConfigFrameABDialog> dialog;
        if (open) {
            QCOMPARE(params->GetEnum("FrameMode")->SetValueByName("FrameA"), OrbCamOk);
            dialog = std::make_unique<OrbCamConfigFrameABDialog>(camera.device.device);
            QVERIFY(show(dialog.get()));
        }
        QCOMPARE(params->GetEnum("FrameMode")->SetValueByName(name.constData()), OrbCamOk);
        if (!open) {
            dialog = std::make_unique<OrbCamConfigFrameABDialog>(camera.device.device);
            QVERIFY(show(dialog.get()));
        }
        WriteJournal journal(camera.device.device);
        auto *modeBox = child<QComboBox>(dialog.get(), "cmBoxFrameMode");
        QTRY_COMPARE(modeBox->currentText(), mode);
        auto *dual = child<QtOrbSliderSpinBox>(dialog.get(), "spBoxDualVideo");
        auto *single = child<QtOrbSliderSpinBox>(dialog.get(), "spBoxFrameLineTime");
        auto *countA = child<QtOrbSpinBox>(dialog.get(), "spBoxNumberOfFrameAs");
        auto *countB = child<QtOrbSpinBox>(dialog.get(), "spBoxNumberOfFrameBs");
        QTRY_COMPARE(dual->isEnabled(), alternating);
        QCOMPARE(single->isEnabled(), !alternating);
        QCOMPARE(countA->isEnabled(), alternating);
        QCOMPARE(countB->isEnabled(), alternating);
        QCOMPARE(countA->spinBox()->text().isEmpty(), !alternating);
        QCOMPARE((alternating ? single : dual)->spinBox()->text(), QString());
        QCOMPARE(countA->leftLabelText(), QStringLiteral("Frames A:"));
        auto *tabs = child<QTabWidget>(dialog.get(), "tabFrames");
        if (mode != QLatin1String("FrameB"))
            QVERIFY(tabs->isTabEnabled(0));
        if (mode != QLatin1String("FrameA"))
            QVERIFY(tabs->isTabEnabled(1));
        COMPARE_WRITES(journal.take(), QSet<qint64>());
    }
}

// The frame selected from outside (the tree view, the host): the tab, and
// with it the frame controls and their values, follow it.
void tst_DialogsInUse::frameFollowsAnOutsideSelector()
{
    Camera camera;
    OrbGenParam::Array *params = camera.params();
    OrbGenParam::Enum *selector = params->GetEnum("FrameAB_Selector");
    QCOMPARE(params->GetEnum("FrameMode")->SetValueByName("FrameAB"), OrbCamOk);
    QCOMPARE(selector->SetValueByName("FrameB"), OrbCamOk);
    QCOMPARE(params->GetInt("Frame_Width")->SetValue(1024), OrbCamOk);
    QCOMPARE(selector->SetValueByName("FrameA"), OrbCamOk);
    QCOMPARE(params->GetInt("Frame_Width")->SetValue(640), OrbCamOk);
    OrbCamConfigFrameABDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *tabs = child<QTabWidget>(&dialog, "tabFrames");
    auto *controls = child<QWidget>(&dialog, "frameControls");
    auto *width = child<QtOrbSpinBox>(&dialog, "spBoxFrameWidth");
    QCOMPARE(tabs->currentIndex(), 0);
    QCOMPARE(width->value(), 640);
    WriteJournal journal(camera.device.device);
    QCOMPARE(selector->SetValueByName("FrameB"), OrbCamOk);
    journal.take();
    QTRY_COMPARE(tabs->currentIndex(), 1);
    QTRY_COMPARE(controls->parentWidget(), tabs->widget(1));
    QTRY_COMPARE(width->value(), 1024);
    QTRY_VERIFY(controls->isVisible());
    QCOMPARE(selector->SetValueByName("FrameA"), OrbCamOk);
    journal.take();
    QTRY_COMPARE(controls->parentWidget(), tabs->widget(0));
    QTRY_COMPARE(width->value(), 640);
    COMPARE_WRITES(journal.take(), QSet<qint64>());
}

// With the fixed frame period shorter than the exposure, the exposure box
// still shows the camera's exposure, and the period its own value.
void tst_DialogsInUse::frameShowsTheCamerasTimes()
{
    Camera camera;
    OrbGenParam::Array *params = camera.params();
    const int64_t lineTime = params->GetInt("Frame_LineTime")->GetValue();
    const int64_t clock = params->GetInt("PixelClock")->GetValue();
    QVERIFY(lineTime > 0 && clock > 0);
    QCOMPARE(params->GetInt("Frame_ExposureClocks")->SetValue(0), OrbCamOk);
    QCOMPARE(params->GetInt("Frame_ExposureLines")->SetValue(600), OrbCamOk);
    OrbGenParam::Int *period = params->GetInt("Frame_FixedFramePeriodValue");
    QCOMPARE(period->SetValue(100), OrbCamOk);
    QCOMPARE(params->GetBoolean("Frame_FixedFramePeriodEnable")->SetValue(true), OrbCamOk);
    OrbCamConfigFrameABDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    const int exposure = static_cast<int>(600 * lineTime / clock);
    const int periodShown
        = static_cast<int>(std::trunc(double(period->GetValue()) * lineTime / clock + 0.5));
    QVERIFY(periodShown < exposure);
    QCOMPARE(child<QtOrbSliderSpinBox>(&dialog, "spBoxExpTime")->value(), exposure);
    QCOMPARE(child<QtOrbSliderSpinBox>(&dialog, "spBoxFixedFramePeriodValue")->value(),
             periodShown);
    // After the camera comes back the numbers are the same.
    dialog.SetDevice(nullptr);
    dialog.SetDevice(camera.device.device);
    QCOMPARE(child<QtOrbSliderSpinBox>(&dialog, "spBoxFixedFramePeriodValue")->value(),
             periodShown);
}

// The digital gain as the camera holds it (coarse 1, fine 1 is 2.03125); a
// typed gain the camera cannot take is confirmed with the value that would
// be written, and refusing writes nothing.
void tst_DialogsInUse::frameGainAsTheCameraHoldsIt()
{
    Camera camera;
    OrbGenParam::Array *params = camera.params();
    OrbGenParam::Int *coarse = params->GetInt("Frame_DigitalCourseGain");
    OrbGenParam::Int *fine = params->GetInt("Frame_DigitalFineGain");
    QCOMPARE(coarse->SetValue(1), OrbCamOk);
    QCOMPARE(fine->SetValue(1), OrbCamOk);
    OrbCamConfigFrameABDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *gain = child<QtOrbGainSlider>(&dialog, "spBoxDigitalGain");
    QCOMPARE(gain->value(), 2.03125);
    QCOMPARE(gain->spinBox()->text(), QStringLiteral("2.031250"));
    WriteJournal journal(camera.device.device);
    for (bool accept : { false, true }) {
        QString question;
        onNextModal([&question, accept](QWidget *modal) {
            auto *box = qobject_cast<QMessageBox *>(modal);
            question = box ? box->text() : QString();
            if (box)
                box->button(accept ? QMessageBox::Yes : QMessageBox::No)->click();
        });
        QTest::mouseClick(gain->spinBox(), Qt::LeftButton);
        typeNumber(gain, QStringLiteral("2.1"));
        QTest::keyClick(gain->spinBox(), Qt::Key_Return);
        QTRY_VERIFY(!question.isEmpty());
        QVERIFY2(question.contains(QLatin1String("2.093750")), qPrintable(question));
        if (!accept) {
            COMPARE_WRITES(journal.take(), QSet<qint64>());
            QCOMPARE(fine->GetValue(), int64_t(1));
            QCOMPARE(gain->value(), 2.03125);
        }
    }
    QCOMPARE(coarse->GetValue(), int64_t(1));
    QCOMPARE(fine->GetValue(), int64_t(3));
    QCOMPARE(gain->value(), 2.09375);
}

// A gain that cannot be written now (the camera is gone) gives no error
// boxes: the box goes back to what it showed.
void tst_DialogsInUse::frameGainNotWritable()
{
    Camera camera;
    const std::string id = camera.device.device->GetInfo()->GetID();
    OrbCamConfigFrameABDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *gain = child<QtOrbGainSlider>(&dialog, "spBoxDigitalGain");
    const double before = gain->value();
    MessageBoxCounter messages;
    QCOMPARE(OrbCamSim::LoseCamera(id), OrbCamOk);
    gain->setValue(before + 1.0);
    QTest::qWait(100);
    QCOMPARE(messages.count, 0);
    QCOMPARE(OrbCamSim::RegainCamera(id), OrbCamOk);
}

QTEST_MAIN(tst_DialogsInUse)
#include "tst_dialogsinuse.moc"
