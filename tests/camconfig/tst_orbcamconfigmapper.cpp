// The feature mapper on a simulated camera: controls follow their features,
// user changes are written, failures are reported, and change events from
// other threads reach only live bindings.
#include "camconfig/orbcamconfigmapper.h"
#include "orbcam/orbcamtest.h"

#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval.h>
#include <OrbGui/qtorbspinboxval64.h>

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QTimer>
#include <QtTest>

#include <atomic>
#include <functional>
#include <thread>

using namespace OrbGui;
using OrbCamTest::DeviceRef;
using OrbCamTest::SystemRef;

namespace {

// The first colour camera, opened for control, with its parameters.
struct Camera {
    explicit Camera(uint32_t access = OrbCam::AccessControl)
        : device(sys.cameras("GEV0").front(), access)
        , id(device.device ? device.device->GetInfo()->GetID() : std::string())
    {
    }
    OrbGenParam::Array *params() const { return device.params(); }
    OrbGenParam::Int *integer(const char *name) const { return params()->GetInt(name); }
    OrbGenParam::Enum *enumeration(const char *name) const { return params()->GetEnum(name); }
    SystemRef sys;
    DeviceRef device;
    std::string id;
};

// Reads the text of the next modal message box and closes it.
struct MessageWatcher {
    MessageWatcher()
    {
        timer.setInterval(10);
        QObject::connect(&timer, &QTimer::timeout, [this] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                texts << box->text();
                box->accept();
            }
        });
        timer.start();
    }
    QTimer timer;
    QStringList texts;
};

// Shows device values in thousandths (a big number) or in millions (an
// increment that vanishes).
struct Scale final : IOrbCamConfigIntConverter {
    explicit Scale(long by, long over)
        : factor(by)
        , divisor(over)
    {
    }
    long ToControl(long value, OrbGenParam::Int *) override { return value * factor / divisor; }
    long ToDevice(long value, OrbGenParam::Int *) override { return value * divisor / factor; }
    long factor, divisor;
};

} // namespace

class tst_OrbCamConfigMapper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QCOMPARE(OrbCamSim::Reset(), OrbCamOk); }
    void nullParamDisables();
    void spinBoxFollowsTheFeature();
    void changesFromAnotherThread();
    void secondBindingReplacesTheFirst();
    void convertedLimits_data();
    void convertedLimits();
    void comboBox();
    void checkBox();
    void radioGroup();
    void secondRadioGroupReplacesTheFirst();
    void handPlacedControlsFollow_data();
    void handPlacedControlsFollow();
    void tabWidget();
    void booleanAndCommand();
    void failedWriteIsReported();
    void readOnlyIgnoresTheControls();
    void errorTexts_data();
    void errorTexts();
    void lateEventsNeverReachDeadBindings();
};

void tst_OrbCamConfigMapper::nullParamDisables()
{
    OrbCamConfigMapper mapper;
    QtOrbSpinBox box;
    QLabel unit;
    QVERIFY(!mapper.mapIntParam(nullptr, &box, { &unit }));
    QVERIFY(!box.isEnabled());
    QVERIFY(!unit.isEnabled());
    QComboBox combo;
    QVERIFY(!mapper.mapEnumParam(static_cast<OrbGenParam::Enum *>(nullptr), &combo));
    QVERIFY(!combo.isEnabled());
    QVERIFY(mapper.controls.isEmpty());
}

void tst_OrbCamConfigMapper::spinBoxFollowsTheFeature()
{
    Camera camera;
    OrbGenParam::Int *delay = camera.integer("Strobe1Delay");
    QVERIFY(delay);
    OrbCamConfigMapper mapper;
    QtOrbSpinBox box;
    QLabel unit;
    QVERIFY(mapper.mapIntParam(delay, &box, { &unit }));
    QVERIFY(box.isEnabled() && unit.isEnabled());
    QCOMPARE(qint64(box.minimum()), delay->GetMin());
    QCOMPARE(qint64(box.maximum()), delay->GetMax());
    QCOMPARE(qint64(box.value()), delay->GetValue());
    QVERIFY(box.validate());
    QVERIFY(!box.validateTyping());
    QCOMPARE(mapper.controls.value(QStringLiteral("Strobe1Delay")).size(), 2);
    // The user's change is written...
    box.setValue(250);
    QCOMPARE(delay->GetValue(), int64_t(250));
    // ...and a change made elsewhere shows.
    QCOMPARE(delay->SetValue(400), OrbCamOk);
    QTRY_COMPARE(box.value(), 400);
}

void tst_OrbCamConfigMapper::changesFromAnotherThread()
{
    Camera camera;
    OrbGenParam::Int *delay = camera.integer("Strobe1Delay");
    OrbCamConfigMapper mapper;
    QtOrbSpinBox box;
    QVERIFY(mapper.mapIntParam(delay, &box));
    std::thread writer([delay] { delay->SetValue(777); });
    writer.join();
    QTRY_COMPARE(box.value(), 777);
}

void tst_OrbCamConfigMapper::secondBindingReplacesTheFirst()
{
    Camera camera;
    OrbGenParam::Int *delay = camera.integer("Strobe1Delay");
    OrbCamConfigMapper mapper;
    QtOrbSpinBox first, second;
    QVERIFY(mapper.mapIntParam(delay, &first));
    QVERIFY(mapper.mapIntParam(delay, &second));
    QVERIFY(!first.isEnabled());
    QVERIFY(second.isEnabled());
    first.setValue(10); // disconnected: writes nothing
    QCOMPARE(delay->GetValue(), int64_t(0));
    QCOMPARE(delay->SetValue(300), OrbCamOk);
    QTRY_COMPARE(second.value(), 300);
    QTest::qWait(20);
    QCOMPARE(first.value(), 10);
}

void tst_OrbCamConfigMapper::convertedLimits_data()
{
    QTest::addColumn<long>("factor");
    QTest::addColumn<long>("divisor");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("step");
    // Strobe1Delay: 0 to 1000000, increment 1.
    QTest::newRow("unchanged") << 1L << 1L << 1000000 << 1;
    QTest::newRow("beyond 32 bits is cut") << 10000L << 1L << 2147483647 << 10000;
    QTest::newRow("an increment of 0 steps by 1") << 1L << 1000L << 1000 << 1;
}

void tst_OrbCamConfigMapper::convertedLimits()
{
    QFETCH(long, factor);
    QFETCH(long, divisor);
    QFETCH(int, maximum);
    QFETCH(int, step);
    Camera camera;
    OrbGenParam::Int *delay = camera.integer("Strobe1Delay");
    QCOMPARE(delay->SetValue(500000), OrbCamOk);
    Scale scale(factor, divisor);
    OrbCamConfigMapper mapper;
    QtOrbSliderSpinBox box;
    QVERIFY(mapper.mapIntParam(delay, &box, &scale));
    QCOMPARE(box.maximum(), maximum);
    QCOMPARE(box.singleStep(), step);
    QCOMPARE(qint64(box.value()), qMin<qint64>(qint64(500000) * factor / divisor, maximum));
    // Written back through the converter.
    box.setValue(int(qMin<qint64>(qint64(1000) * factor / divisor, maximum)));
    QCOMPARE(delay->GetValue(), int64_t(1000));
}

void tst_OrbCamConfigMapper::comboBox()
{
    Camera camera;
    OrbGenParam::Enum *source = camera.enumeration("TriggerSource");
    OrbCamConfigMapper mapper;
    QComboBox box;
    box.addItem(QStringLiteral("left over"));
    QVERIFY(mapper.mapEnumParam(source, &box));
    QStringList items;
    for (int i = 0; i < box.count(); ++i)
        items << box.itemText(i);
    QCOMPARE(
        items,
        QStringList({ QStringLiteral("Software"), QStringLiteral("Line1"), QStringLiteral("Line2"),
                      QStringLiteral("PulseGenerator"), QStringLiteral("Encoder") }));
    // An entry the camera does not offer cannot be picked.
    auto *model = qobject_cast<QStandardItemModel *>(box.model());
    QVERIFY(model->item(0)->isEnabled());
    QVERIFY(!model->item(4)->isEnabled());
    QCOMPARE(box.currentText(), QString::fromUtf8(source->GetValueName()));
    box.setCurrentText(QStringLiteral("Line2"));
    QCOMPARE(QString::fromUtf8(source->GetValueName()), QStringLiteral("Line2"));
    QCOMPARE(source->SetValueByName("PulseGenerator"), OrbCamOk);
    QTRY_COMPARE(box.currentText(), QStringLiteral("PulseGenerator"));
}

void tst_OrbCamConfigMapper::checkBox()
{
    Camera camera;
    OrbGenParam::Enum *mode = camera.enumeration("TriggerMode");
    OrbCamConfigMapper mapper;
    QCheckBox box;
    QVERIFY(mapper.mapEnumParam(mode, &box));
    QCOMPARE(box.isChecked(), mode->GetValue() != 0);
    box.click();
    QCOMPARE(mode->GetValue(), int64_t(box.isChecked() ? 1 : 0));
    box.click();
    QCOMPARE(mode->GetValue(), int64_t(box.isChecked() ? 1 : 0));
    QCOMPARE(mode->SetValue(1), OrbCamOk);
    QTRY_VERIFY(box.isChecked());
}

void tst_OrbCamConfigMapper::radioGroup()
{
    Camera camera;
    OrbGenParam::Enum *mode = camera.enumeration("PulseGenMode");
    OrbCamConfigMapper mapper;
    QWidget window;
    QButtonGroup group;
    QList<QRadioButton *> buttons;
    for (int i = 0; i < 3; ++i) {
        buttons << new QRadioButton(&window);
        group.addButton(buttons.last());
    }
    QVERIFY(mapper.mapEnumParam(mode, &group));
    QCOMPARE(buttons[0]->text(), QStringLiteral("Continuous"));
    QCOMPARE(buttons[1]->text(), QStringLiteral("Send"));
    QVERIFY(buttons[2]->isHidden()); // no third entry
    QCOMPARE(group.id(buttons[1]), 1);
    QVERIFY(buttons[int(mode->GetValue())]->isChecked());
    // Checking one button writes its entry; the button unchecked is quiet.
    OrbCamTest::CountingSink sink;
    mode->RegisterEventSink(&sink);
    buttons[1]->click();
    QCOMPARE(mode->GetValue(), int64_t(1));
    QCOMPARE(sink.calls.load(), 1);
    mode->UnregisterEventSink(&sink);
    QCOMPARE(mode->SetValue(0), OrbCamOk);
    QTRY_VERIFY(buttons[0]->isChecked());
}

// A second group bound to the same feature takes it over: the first one is
// disabled and writes nothing any more.
void tst_OrbCamConfigMapper::secondRadioGroupReplacesTheFirst()
{
    Camera camera;
    OrbGenParam::Enum *mode = camera.enumeration("PulseGenMode");
    QCOMPARE(mode->SetValue(0), OrbCamOk);
    OrbCamConfigMapper mapper;
    QWidget window;
    QButtonGroup first, second;
    QList<QRadioButton *> firsts, seconds;
    for (int i = 0; i < 2; ++i) {
        firsts << new QRadioButton(&window);
        first.addButton(firsts.last());
        seconds << new QRadioButton(&window);
        second.addButton(seconds.last());
    }
    QVERIFY(mapper.mapEnumParam(mode, &first));
    QVERIFY(mapper.mapEnumParam(mode, &second));
    QVERIFY(!firsts[0]->isEnabled() && !firsts[1]->isEnabled());
    QVERIFY(seconds[1]->isEnabled());
    firsts[1]->setEnabled(true);
    firsts[1]->click();
    QCOMPARE(mode->GetValue(), int64_t(0));
    seconds[1]->click();
    QCOMPARE(mode->GetValue(), int64_t(1));
    mapper.releaseAll();
}

void tst_OrbCamConfigMapper::handPlacedControlsFollow_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("line edit with a validator") << int(OrbCamConfigMapData::LineEdit);
    QTest::newRow("spin box") << int(OrbCamConfigMapData::SpinBox);
    QTest::newRow("slider") << int(OrbCamConfigMapData::Slider);
}

// Controls a dialog places into the table itself are refreshed by the
// feature's change events like the bound ones.
void tst_OrbCamConfigMapper::handPlacedControlsFollow()
{
    QFETCH(int, type);
    Camera camera;
    OrbGenParam::Int *delay = camera.integer("Strobe1Delay");
    QCOMPARE(delay->SetValue(10), OrbCamOk);
    QLineEdit edit;
    auto *validator = new QIntValidator(&edit);
    edit.setValidator(validator);
    QSpinBox spin;
    QSlider slider;
    QWidget *control = type == OrbCamConfigMapData::LineEdit ? static_cast<QWidget *>(&edit)
        : type == OrbCamConfigMapData::SpinBox               ? static_cast<QWidget *>(&spin)
                                                             : static_cast<QWidget *>(&slider);
    OrbCamConfigMapper mapper;
    mapper.controls.insert(QStringLiteral("Strobe1Delay"), { { type, control, nullptr } });
    delay->RegisterEventSink(&mapper);
    QCOMPARE(delay->SetValue(1234), OrbCamOk);
    const auto shown = [&]() -> qint64 {
        if (type == OrbCamConfigMapData::LineEdit)
            return edit.text().toLongLong();
        return type == OrbCamConfigMapData::SpinBox ? spin.value() : slider.value();
    };
    QTRY_COMPARE(shown(), qint64(1234));
    if (type == OrbCamConfigMapData::LineEdit)
        QCOMPARE(qint64(validator->top()), delay->GetMax());
    else
        QCOMPARE(qint64(type == OrbCamConfigMapData::SpinBox ? spin.maximum() : slider.maximum()),
                 delay->GetMax());
    delay->UnregisterEventSink(&mapper);
}

void tst_OrbCamConfigMapper::tabWidget()
{
    Camera camera;
    OrbGenParam::Enum *mode = camera.enumeration("PulseGenMode");
    OrbCamConfigMapper mapper;
    QTabWidget tabs;
    QPointer<QWidget> surplus = new QWidget;
    tabs.addTab(new QWidget, QStringLiteral("a"));
    tabs.addTab(new QWidget, QStringLiteral("b"));
    tabs.addTab(surplus, QStringLiteral("c"));
    QVERIFY(mapper.mapEnumParam(mode, &tabs));
    QCOMPARE(tabs.count(), 2);
    QCOMPARE(tabs.tabText(0), QStringLiteral("Continuous"));
    QCOMPARE(tabs.tabText(1), QStringLiteral("Send"));
    QCOMPARE(mapper.tabIndexes.value(QStringLiteral("PulseGenMode")).value(QStringLiteral("Send")),
             1);
    tabs.setCurrentIndex(1);
    QCOMPARE(QString::fromUtf8(mode->GetValueName()), QStringLiteral("Send"));
    QCOMPARE(mode->SetValueByName("Continuous"), OrbCamOk);
    QTRY_COMPARE(tabs.currentIndex(), 0);
}

void tst_OrbCamConfigMapper::booleanAndCommand()
{
    Camera camera;
    OrbGenParam::Boolean *enable = camera.params()->GetBoolean("PulseGenEnable");
    OrbGenParam::Command *fire = camera.params()->GetCommand("TriggerSoftware");
    QVERIFY(enable && fire);
    OrbCamConfigMapper mapper;
    QPushButton toggle;
    toggle.setCheckable(true);
    QVERIFY(mapper.mapBooleanParam(enable, &toggle));
    toggle.click();
    QCOMPARE(enable->GetValue(), toggle.isChecked());
    QCOMPARE(enable->SetValue(false), OrbCamOk);
    QTRY_VERIFY(!toggle.isChecked());

    QPushButton button;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setInterval(60000);
    QVERIFY(mapper.mapCommandParam(fire, &button, &timer));
    QVERIFY(button.isEnabled());
    button.click();
    QVERIFY(!button.isEnabled()); // until the dialog's timer says otherwise
    QVERIFY(timer.isActive());
}

void tst_OrbCamConfigMapper::failedWriteIsReported()
{
    Camera camera;
    OrbGenParam::Int *delay = camera.integer("Strobe1Delay");
    OrbCamConfigMapper mapper;
    QtOrbSpinBox box;
    QVERIFY(mapper.mapIntParam(delay, &box));
    QCOMPARE(OrbCamSim::FailFeature(camera.id, "Strobe1Delay", OrbCamSim::FailWrite), OrbCamOk);
    MessageWatcher messages;
    box.setValue(123);
    QCOMPARE(messages.texts,
             QStringList({ QStringLiteral("Error while working with 'Strobe1Delay' parameter!\r\n"
                                          "Description: GenICam: Access error") }));
    // The control keeps what the user set.
    QCOMPARE(box.value(), 123);
}

void tst_OrbCamConfigMapper::readOnlyIgnoresTheControls()
{
    Camera camera(OrbCam::AccessMonitor);
    OrbGenParam::Int *delay = camera.integer("Strobe1Delay");
    QVERIFY(delay);
    OrbCamConfigMapper mapper;
    QtOrbSpinBox box;
    QVERIFY(mapper.mapIntParam(delay, &box));
    QVERIFY(!box.isEnabled());
    MessageWatcher messages;
    box.setValue(55);
    QTest::qWait(30);
    QCOMPARE(delay->GetValue(), int64_t(0));
    QVERIFY(messages.texts.isEmpty());
}

void tst_OrbCamConfigMapper::errorTexts_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("unknown error") << -40001 << "Unknown error";
    QTest::newRow("no device") << -40006 << "No device";
    QTest::newRow("invalid state") << -40051 << "Invalid state";
    QTest::newRow("flash erase") << -40101 << "Flash erase error";
    QTest::newRow("out of range") << -40204 << "GenICam: Parameter is out of range";
    QTest::newRow("GenICam argument") << -40206 << "GenICam: Invalid argument";
    QTest::newRow("not in the table") << -40150 << "Unknown code";
}

void tst_OrbCamConfigMapper::errorTexts()
{
    QFETCH(int, code);
    QFETCH(QString, text);
    QCOMPARE(OrbCamConfigMapper::errorDescription(code), text);
    // Code 0 is success: no message at all.
    MessageWatcher messages;
    OrbCamConfigMapper::showErrorMessage(0, nullptr, nullptr);
    QTest::qWait(20);
    QVERIFY(messages.texts.isEmpty());
}

// Events keep coming from another thread while the GUI thread unbinds,
// rebinds and destroys the widgets and the mapper: nothing queued before
// reaches a binding or widget that is gone (AddressSanitizer would say).
void tst_OrbCamConfigMapper::lateEventsNeverReachDeadBindings()
{
    Camera camera;
    OrbGenParam::Int *delay = camera.integer("Strobe1Delay");
    std::atomic<bool> stop { false };
    std::thread writer([&] {
        int64_t v = 0;
        while (!stop)
            delay->SetValue(++v % 1000);
    });
    for (int round = 0; round < 20; ++round) {
        auto mapper = std::make_unique<OrbCamConfigMapper>();
        auto box = std::make_unique<QtOrbSpinBox>();
        auto other = std::make_unique<QtOrbSpinBox>();
        QVERIFY(mapper->mapIntParam(delay, box.get()));
        QTest::qWait(5);
        QVERIFY(mapper->mapIntParam(delay, other.get())); // rebinding
        QTest::qWait(5);
        mapper->unmapParam(delay, other.get());
        other.reset();
        QCoreApplication::processEvents();
        mapper->releaseAll();
        box.reset();
        mapper.reset();
        QCoreApplication::processEvents();
    }
    stop = true;
    writer.join();
    QCoreApplication::processEvents();
}

QTEST_MAIN(tst_OrbCamConfigMapper)
#include "tst_orbcamconfigmapper.moc"
