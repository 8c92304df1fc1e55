// The trigger, strobe and pulse generator dialogs on both simulated camera
// models (the monochrome one lacks features), driven with real input.
#include "dialogtest.h"
#include "modaltest.h"
#include "widgets/widgettest.h"

#include <OrbGui/orbcamconfigpulsedialog.h>
#include <OrbGui/orbcamconfigstrobedialog.h>
#include <OrbGui/orbcamconfigtriggerdialog.h>
#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval.h>

#include <QAbstractItemView>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QSlider>
#include <QTimer>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QtTest>

using namespace OrbGui;

class tst_FeatureDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }
    void cleanup() { QCOMPARE(OrbCamSim::Reset(), OrbCamOk); }
    void triggerForm();
    void triggerRules();
    void triggerFollowsTheCamera();
    void softwareTriggerFires();
    void triggerWithoutFeaturesOrDevice();
    void strobeForm();
    void strobePictures_data();
    void strobePictures();
    void strobeWritesTimes();
    void strobeWithoutDeviceOrFeatures();
    void pulseForm();
    void pulseDerivedValues();
    void pulseStartAndStop();
    void pulseModeRadios();
    void cameraLostWhileDragging();
    void closingIsAnnounced();
    void showFunctionsReturn();
};

void tst_FeatureDialogs::triggerForm()
{
    Camera camera;
    OrbCamConfigTriggerDialog dialog(camera.device.device);
    QCOMPARE(dialog.objectName(), QStringLiteral("OrbCamConfigTriggerDialog"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Trigger Control"));
    QVERIFY(!dialog.windowIcon().isNull());
    QCOMPARE(dialog.layout()->sizeConstraint(), QLayout::SetFixedSize);
    QCOMPARE(child<QCheckBox>(&dialog, "chBoxTriggerEnable")->text(), QStringLiteral("Enable"));
    QCOMPARE(child<QLabel>(&dialog, "label")->text(), QStringLiteral("Trigger Source:"));
    QCOMPARE(child<QLabel>(&dialog, "label_2")->text(), QStringLiteral("Edge:"));
    QCOMPARE(child<QLabel>(&dialog, "label_3")->text(), QStringLiteral("Debounce:"));
    QCOMPARE(child<QPushButton>(&dialog, "pushBtnSoftwareTrigger")->text(),
             QStringLiteral("Software\nTrigger"));
    auto *source = child<QComboBox>(&dialog, "cmBoxTriggerSource");
    QCOMPARE(source->itemText(0), QStringLiteral("Software"));
}

void tst_FeatureDialogs::triggerRules()
{
    Camera camera;
    OrbGenParam::Enum *mode = camera.params()->GetEnum("TriggerMode");
    QCOMPARE(mode->SetValue(0), OrbCamOk);
    OrbCamConfigTriggerDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *enable = child<QCheckBox>(&dialog, "chBoxTriggerEnable");
    auto *source = child<QComboBox>(&dialog, "cmBoxTriggerSource");
    auto *edge = child<QComboBox>(&dialog, "cmBoxTriggerEdge");
    auto *debounce = child<QComboBox>(&dialog, "cmBoxTriggerDebounce");
    auto *fire = child<QPushButton>(&dialog, "pushBtnSoftwareTrigger");
    // Trigger off: nothing of it is offered.
    QVERIFY(enable->isEnabled() && !enable->isChecked());
    QVERIFY(!source->isEnabled() && !edge->isEnabled() && !debounce->isEnabled());
    QVERIFY(!fire->isEnabled());
    QTest::mouseClick(enable, Qt::LeftButton);
    QCOMPARE(mode->GetValue(), int64_t(1));
    QVERIFY(source->isEnabled() && edge->isEnabled() && debounce->isEnabled());
    pick(source, QStringLiteral("Software"));
    QVERIFY(fire->isEnabled());
    pick(source, QStringLiteral("Line1"));
    QCOMPARE(QString::fromUtf8(camera.params()->GetEnum("TriggerSource")->GetValueName()),
             QStringLiteral("Line1"));
    QVERIFY(!fire->isEnabled());
    pick(edge, QStringLiteral("FallingEdge"));
    QCOMPARE(QString::fromUtf8(camera.params()->GetEnum("TriggerActivation")->GetValueName()),
             QStringLiteral("FallingEdge"));
    QTest::mouseClick(enable, Qt::LeftButton);
    QCOMPARE(mode->GetValue(), int64_t(0));
    QVERIFY(!source->isEnabled() && !fire->isEnabled());
}

// A change made elsewhere (another window, the camera itself) shows at once,
// and the dialog's rules hold after it.
void tst_FeatureDialogs::triggerFollowsTheCamera()
{
    Camera camera;
    OrbCamConfigTriggerDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *enable = child<QCheckBox>(&dialog, "chBoxTriggerEnable");
    auto *source = child<QComboBox>(&dialog, "cmBoxTriggerSource");
    auto *fire = child<QPushButton>(&dialog, "pushBtnSoftwareTrigger");
    QCOMPARE(camera.params()->GetEnum("TriggerSource")->SetValueByName("Software"), OrbCamOk);
    QCOMPARE(camera.params()->GetEnum("TriggerMode")->SetValue(1), OrbCamOk);
    QTRY_VERIFY(enable->isChecked());
    QTRY_VERIFY(source->isEnabled());
    QCOMPARE(source->currentText(), QStringLiteral("Software"));
    QVERIFY(fire->isEnabled());
    QCOMPARE(camera.params()->GetEnum("TriggerMode")->SetValue(0), OrbCamOk);
    QTRY_VERIFY(!enable->isChecked());
    QTRY_VERIFY(!source->isEnabled());
    QVERIFY(!fire->isEnabled());
}

void tst_FeatureDialogs::softwareTriggerFires()
{
    Camera camera;
    QCOMPARE(camera.params()->GetEnum("TriggerMode")->SetValue(1), OrbCamOk);
    QCOMPARE(camera.params()->GetEnum("TriggerSource")->SetValueByName("Software"), OrbCamOk);
    OrbGenParam::Int *counter = camera.params()->GetInt("TriggerCounter");
    QVERIFY(counter);
    const int64_t before = counter->GetValue();
    OrbCamConfigTriggerDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *fire = child<QPushButton>(&dialog, "pushBtnSoftwareTrigger");
    QVERIFY(fire->isEnabled());
    QTest::mouseClick(fire, Qt::LeftButton);
    QTest::mouseClick(fire, Qt::LeftButton);
    QCOMPARE(counter->GetValue(), before + 2);
}

void tst_FeatureDialogs::triggerWithoutFeaturesOrDevice()
{
    // The monochrome model has no debounce.
    Camera mono("U3V0");
    QCOMPARE(mono.params()->GetEnum("TriggerMode")->SetValue(1), OrbCamOk);
    OrbCamConfigTriggerDialog dialog(mono.device.device);
    auto *source = child<QComboBox>(&dialog, "cmBoxTriggerSource");
    auto *debounce = child<QComboBox>(&dialog, "cmBoxTriggerDebounce");
    QVERIFY(child<QCheckBox>(&dialog, "chBoxTriggerEnable")->isChecked());
    QVERIFY(source->isEnabled());
    QVERIFY(!debounce->isEnabled());
    // No device: all five controls disabled; a device again brings them back.
    dialog.SetDevice(nullptr);
    for (const char *name : { "chBoxTriggerEnable", "cmBoxTriggerSource", "cmBoxTriggerEdge",
                              "cmBoxTriggerDebounce", "pushBtnSoftwareTrigger" })
        QVERIFY2(!child<QWidget>(&dialog, name)->isEnabled(), name);
    dialog.SetDevice(mono.device.device);
    QVERIFY(child<QCheckBox>(&dialog, "chBoxTriggerEnable")->isEnabled());
    QVERIFY(source->isEnabled());
    OrbCamConfigTriggerDialog none(nullptr);
    QVERIFY(!child<QCheckBox>(&none, "chBoxTriggerEnable")->isEnabled());
}

void tst_FeatureDialogs::strobeForm()
{
    Camera camera;
    OrbCamConfigStrobeDialog dialog(camera.device.device);
    QCOMPARE(dialog.objectName(), QStringLiteral("OrbCamConfigStrobeDialog"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Strobe Control"));
    QCOMPARE(dialog.layout()->sizeConstraint(), QLayout::SetFixedSize);
    const QChar mu(0x03BC);
    auto *delay = child<QtOrbSliderSpinBox>(&dialog, "spBoxStrobe1Delay");
    QCOMPARE(delay->leftLabelText(), QStringLiteral("Delay [") + mu + QStringLiteral("s]:"));
    QCOMPARE(child<QtOrbSliderSpinBox>(&dialog, "spBoxStrobe2Width")->leftLabelText(),
             QStringLiteral("Width [") + mu + QStringLiteral("s]:"));
    QCOMPARE(delay->slider()->scaleType(), QtOrbSlider::Logarithmic);
    QCOMPARE(qint64(delay->maximum()), camera.params()->GetInt("Strobe1Delay")->GetMax());
    for (const char *name : { "cmBoxStrobe1Mode", "cmBoxStrobe2Ref", "cmBoxOut1Polarity",
                              "cmBoxOut2Selector", "spBoxStrobe2Delay" })
        QVERIFY2(child<QWidget>(&dialog, name)->isEnabled(), name);
}

void tst_FeatureDialogs::strobePictures_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QString>("picture");
    const QString exposure = QStringLiteral("ExposureStart");
    const QString readout = QStringLiteral("ReadoutStart");
    QTest::newRow("both on exposure") << exposure << exposure << ":/images/strobeBothExp.bmp";
    QTest::newRow("first on exposure")
        << exposure << readout << ":/images/strobe1Exp_strobe2Read.bmp";
    QTest::newRow("second on exposure")
        << readout << exposure << ":/images/strobe1Read_strobe2Exp.bmp";
    QTest::newRow("both on readout") << readout << readout << ":/images/strobeBothRead.bmp";
}

// Choosing a reference switches the timing picture at once.
void tst_FeatureDialogs::strobePictures()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(QString, picture);
    Camera camera;
    OrbCamConfigStrobeDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    pick(child<QComboBox>(&dialog, "cmBoxStrobe1Ref"), first);
    pick(child<QComboBox>(&dialog, "cmBoxStrobe2Ref"), second);
    auto *image = child<QLabel>(&dialog, "lblStrobeImage");
    QCOMPARE(image->pixmap(Qt::ReturnByValue).toImage(), QPixmap(picture).toImage());
    QCOMPARE(QString::fromUtf8(camera.params()->GetEnum("Strobe2Reference")->GetValueName()),
             second);
}

void tst_FeatureDialogs::strobeWritesTimes()
{
    Camera camera;
    OrbCamConfigStrobeDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *width = child<QtOrbSliderSpinBox>(&dialog, "spBoxStrobe1Width");
    QSpinBox *box = width->spinBox();
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, QStringLiteral("250"));
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(camera.params()->GetInt("Strobe1Width")->GetValue(), int64_t(250));
    QCOMPARE(camera.params()->GetInt("Strobe1Width")->SetValue(900), OrbCamOk);
    QTRY_COMPARE(width->value(), 900);
}

void tst_FeatureDialogs::strobeWithoutDeviceOrFeatures()
{
    OrbCamConfigStrobeDialog none(nullptr);
    QVERIFY(!none.isEnabled());
    Camera mono("U3V0");
    OrbCamConfigStrobeDialog dialog(mono.device.device);
    QVERIFY(dialog.isEnabled());
    for (const char *name : { "cmBoxStrobe1Mode", "cmBoxStrobe2Ref", "cmBoxOut1Polarity",
                              "spBoxStrobe1Delay", "spBoxStrobe2Width" })
        QVERIFY2(!child<QWidget>(&dialog, name)->isEnabled(), name);
    Camera colour;
    dialog.SetDevice(colour.device.device);
    QVERIFY(child<QWidget>(&dialog, "spBoxStrobe1Delay")->isEnabled());
    dialog.SetDevice(nullptr);
    QVERIFY(!dialog.isEnabled());
}

void tst_FeatureDialogs::pulseForm()
{
    Camera camera;
    OrbCamConfigPulseDialog dialog(camera.device.device);
    QCOMPARE(dialog.objectName(), QStringLiteral("OrbCamConfigPulseDialog"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Pulse Control"));
    QCOMPARE(dialog.layout()->sizeConstraint(), QLayout::SetFixedSize);
    const QString micro = QStringLiteral(" [%1s]:").arg(QChar(0x03BC));
    QCOMPARE(child<QLabel>(&dialog, "lblPeriod")->text(), QStringLiteral("Period") + micro);
    QCOMPARE(child<QLabel>(&dialog, "lblWidth")->text(), QStringLiteral("Width") + micro);
    QCOMPARE(child<QLabel>(&dialog, "lblDelay")->text(), QStringLiteral("Delay") + micro);
    QCOMPARE(child<QLabel>(&dialog, "lblFreq")->text(), QStringLiteral("Freq. [Hz]:"));
    QCOMPARE(child<QPushButton>(&dialog, "pushBtnPulseEnable")->shortcut(),
             QKeySequence(QStringLiteral("Ctrl+Shift+S, Ctrl+Shift+S")));
    auto *granularity = child<QComboBox>(&dialog, "cmBoxGranularity");
    QCOMPARE(granularity->itemText(0), QStringLiteral("Granularity1us"));
}

void tst_FeatureDialogs::pulseDerivedValues()
{
    Camera camera;
    QCOMPARE(camera.params()->GetInt("PulseGenPeriod")->SetValue(1000), OrbCamOk);
    QCOMPARE(camera.params()->GetInt("PulseGenWidth")->SetValue(400), OrbCamOk);
    OrbCamConfigPulseDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *delay = child<QLineEdit>(&dialog, "lineEditDelay");
    auto *frequency = child<QLineEdit>(&dialog, "lineEditFreq");
    QCOMPARE(delay->text(), QStringLiteral("600"));
    QCOMPARE(frequency->text(), QStringLiteral("1000.000000"));
    // A change made elsewhere moves the derived values too.
    QCOMPARE(camera.params()->GetInt("PulseGenPeriod")->SetValue(2000), OrbCamOk);
    QTRY_COMPARE(delay->text(), QStringLiteral("1600"));
    QCOMPARE(frequency->text(), QStringLiteral("500.000000"));
    // Without a camera nothing is derived: the boxes show nothing either.
    OrbCamConfigPulseDialog none(nullptr);
    QCOMPARE(child<QLineEdit>(&none, "lineEditFreq")->text(), QString());
    QCOMPARE(child<QLineEdit>(&none, "lineEditDelay")->text(), QString());
}

void tst_FeatureDialogs::pulseStartAndStop()
{
    Camera camera;
    OrbGenParam::Boolean *enable = camera.params()->GetBoolean("PulseGenEnable");
    QCOMPARE(enable->SetValue(false), OrbCamOk);
    OrbCamConfigPulseDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *button = child<QPushButton>(&dialog, "pushBtnPulseEnable");
    auto *ball = child<QLabel>(&dialog, "lblPulseEnable");
    const QImage red = QPixmap(QStringLiteral(":/icons/redball.ico")).toImage();
    const QImage green = QPixmap(QStringLiteral(":/icons/greenball.ico")).toImage();
    QCOMPARE(button->text(), QStringLiteral("Start"));
    QCOMPARE(ball->pixmap(Qt::ReturnByValue).toImage(), red);
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(enable->GetValue());
    QCOMPARE(button->text(), QStringLiteral("Stop"));
    QCOMPARE(ball->pixmap(Qt::ReturnByValue).toImage(), green);
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(!enable->GetValue());
    QCOMPARE(button->text(), QStringLiteral("Start"));
    QCOMPARE(ball->pixmap(Qt::ReturnByValue).toImage(), red);
}

void tst_FeatureDialogs::pulseModeRadios()
{
    Camera camera;
    OrbGenParam::Enum *mode = camera.params()->GetEnum("PulseGenMode");
    QCOMPARE(mode->SetValue(0), OrbCamOk);
    OrbCamConfigPulseDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *continuous = child<QRadioButton>(&dialog, "radioBtnContinious");
    auto *send = child<QRadioButton>(&dialog, "radioBtnSend");
    QVERIFY(continuous->isChecked());
    QTest::mouseClick(send, Qt::LeftButton);
    QCOMPARE(mode->GetValue(), int64_t(1));
    QCOMPARE(mode->SetValue(0), OrbCamOk);
    QTRY_VERIFY(continuous->isChecked());
    auto *pulses = child<QtOrbSpinBox>(&dialog, "spBoxNumPulses");
    QCOMPARE(qint64(pulses->value()), camera.params()->GetInt("PulseGenNumPulses")->GetValue());
}

// The camera goes while the user drags a slider: when the drag ends (a drag
// writes once, on release) nothing can be written, no message storm comes
// (no message: the camera is not there), and the control does not keep a
// value the camera does not have: it is disabled. Once the camera is back
// the dialog follows it again.
void tst_FeatureDialogs::cameraLostWhileDragging()
{
    Camera camera;
    const std::string id = camera.device.device->GetInfo()->GetID();
    OrbCamConfigStrobeDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *delay = child<QtOrbSliderSpinBox>(&dialog, "spBoxStrobe1Delay");
    QSlider *inner = delay->slider()->slider();
    MessageBoxCounter messages;
    QCOMPARE(OrbCamSim::LoseCamera(id), OrbCamOk);
    const QPoint start = WidgetTest::handleCentre(inner);
    QTest::mousePress(inner, Qt::LeftButton, Qt::NoModifier, start);
    for (int dx = 10; dx <= 60; dx += 10) {
        QMouseEvent move(QEvent::MouseMove, start + QPoint(dx, 0), Qt::LeftButton, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(inner, &move);
    }
    QTest::mouseRelease(inner, Qt::LeftButton, Qt::NoModifier, start + QPoint(60, 0));
    QTRY_VERIFY(!delay->isEnabled());
    QTest::qWait(50);
    QCOMPARE(messages.count, 0);
    QCOMPARE(OrbCamSim::RegainCamera(id), OrbCamOk);
    QCOMPARE(camera.params()->GetInt("Strobe1Delay")->SetValue(4321), OrbCamOk);
    QTRY_COMPARE(delay->value(), 4321);
    QVERIFY(delay->isEnabled());
}

void tst_FeatureDialogs::closingIsAnnounced()
{
    Camera camera;
    OrbCamConfigTriggerDialog trigger(camera.device.device);
    OrbCamConfigStrobeDialog strobe(camera.device.device);
    OrbCamConfigPulseDialog pulse(camera.device.device);
    QSignalSpy triggerClosing(&trigger, &OrbCamConfigTriggerDialog::closing);
    QSignalSpy strobeClosing(&strobe, &OrbCamConfigStrobeDialog::closing);
    QSignalSpy pulseClosing(&pulse, &OrbCamConfigPulseDialog::closing);
    for (QDialog *dialog : { static_cast<QDialog *>(&trigger), static_cast<QDialog *>(&strobe),
                             static_cast<QDialog *>(&pulse) }) {
        dialog->show();
        dialog->close();
    }
    QCOMPARE(triggerClosing.count(), 1);
    QCOMPARE(strobeClosing.count(), 1);
    QCOMPARE(pulseClosing.count(), 1);
}

void tst_FeatureDialogs::showFunctionsReturn()
{
    Camera camera;
    const int windows = QApplication::topLevelWidgets().size();
    ShowTriggerDialog(camera.device.device, 0);
    ShowStrobeDialog(camera.device.device, 0);
    ShowPulseDialog(camera.device.device, 0);
    QCoreApplication::processEvents();
    QCOMPARE(QApplication::topLevelWidgets().size(), windows);
}

QTEST_MAIN(tst_FeatureDialogs)
#include "tst_featuredialogs.moc"
