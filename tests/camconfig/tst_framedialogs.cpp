// The output, color and frame A/B dialogs on both simulated camera models
// (the monochrome one lacks their features), driven with real input.
#include "dialogtest.h"

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

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

#include <cmath>

using namespace OrbGui;

namespace {

int64_t valueOf(const Camera &camera, const char *name)
{
    return camera.params()->GetInt(name)->GetValue();
}

// Types a number into a spin box and presses Enter, as a user does.
void typeInto(QAbstractSpinBox *box, const QString &text)
{
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, text);
    QTest::keyClick(box, Qt::Key_Return);
}

} // namespace

class tst_FrameDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QCOMPARE(OrbCamSim::Reset(), OrbCamOk); }
    void outputBindsTwelveControls();
    void outputWithoutDeviceOrFeatures();
    void colorUnityWritesItsOwnCoefficient();
    void colorStatisticsFollow();
    void colorWithoutCoefficients();
    void frameGainExamples_data();
    void frameGainExamples();
    void frameGainSweep();
    void frameGainInEveryLocale_data();
    void frameGainInEveryLocale();
    void frameExposureSplit_data();
    void frameExposureSplit();
    void frameFixedPeriodConverter();
    void frameModeMovesTheLineTime();
    void frameOpeningWritesNothing();
    void frameSizeRefreshes();
    void frameWithoutFeatures();
    void withoutParameterArray();
};

void tst_FrameDialogs::outputBindsTwelveControls()
{
    Camera camera;
    OrbCamConfigOutputDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Data Output"));
    QVERIFY(!child<QGroupBox>(&dialog, "grBoxCameraLink")->isVisible());
    QCOMPARE(child<QtOrbSpinBox>(&dialog, "spBoxDpcDynThres")->leftLabelText(),
             QStringLiteral("Dyn.Thres.:"));
    for (const char *name :
         { "cmBoxTaps", "cmBoxDepth", "cmBoxPixelFormat", "chBoxEnableLut", "cmBoxLut", "cmBoxDpc",
           "spBoxDpcDynThres", "cmBoxHpc", "spBoxHpcDynThres", "chBoxHorMirror", "chBoxVerMirror",
           "cmBoxTestMode" })
        QVERIFY2(child<QWidget>(&dialog, name)->isEnabled(), name);
    auto *mirror = child<QCheckBox>(&dialog, "chBoxHorMirror");
    const bool before = camera.params()->GetBoolean("ReverseX")->GetValue();
    QTest::mouseClick(mirror, Qt::LeftButton);
    QCOMPARE(camera.params()->GetBoolean("ReverseX")->GetValue(), !before);
    auto *pattern = child<QComboBox>(&dialog, "cmBoxTestMode");
    const QString other = pattern->itemText(pattern->currentIndex() == 1 ? 0 : 1);
    pick(pattern, other);
    QCOMPARE(QString::fromUtf8(camera.params()->GetEnum("TestPattern")->GetValueName()), other);
}

void tst_FrameDialogs::outputWithoutDeviceOrFeatures()
{
    Camera mono("U3V0"); // outlives the dialog, as a device must
    OrbCamConfigOutputDialog none(nullptr);
    QVERIFY(!none.isEnabled());
    none.SetDevice(mono.device.device);
    QVERIFY(none.isEnabled());
    QVERIFY(child<QWidget>(&none, "cmBoxPixelFormat")->isEnabled());
    QVERIFY(child<QWidget>(&none, "chBoxVerMirror")->isEnabled());
    QVERIFY(!child<QWidget>(&none, "cmBoxLut")->isEnabled());
    QVERIFY(!child<QWidget>(&none, "spBoxHpcDynThres")->isEnabled());
    none.show();
    QVERIFY(!child<QGroupBox>(&none, "grBoxCameraLink")->isVisible());
}

void tst_FrameDialogs::colorUnityWritesItsOwnCoefficient()
{
    Camera camera;
    for (const char *name : { "RedCoefficient", "GreenCoefficient", "BlueCoefficient" })
        QCOMPARE(camera.params()->GetInt(name)->SetValue(300), OrbCamOk);
    OrbCamConfigColorDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Color"));
    QTest::mouseClick(child<QPushButton>(&dialog, "pushBtnGreenUnity"), Qt::LeftButton);
    QCOMPARE(valueOf(camera, "GreenCoefficient"), int64_t(256));
    QCOMPARE(valueOf(camera, "RedCoefficient"), int64_t(300));
    QCOMPARE(valueOf(camera, "BlueCoefficient"), int64_t(300));
    QTRY_COMPARE(child<QLabel>(&dialog, "lblGreenCoef")->text(), QStringLiteral("256"));
}

void tst_FrameDialogs::colorStatisticsFollow()
{
    Camera camera;
    OrbCamConfigColorDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *red = child<QLabel>(&dialog, "lblRedCoef");
    QCOMPARE(red->text(), QString::number(valueOf(camera, "RedCoefficient")));
    QCOMPARE(red->minimumWidth(), red->maximumWidth());
    QCOMPARE(camera.params()->GetInt("RedCoefficient")->SetValue(1000), OrbCamOk);
    QTRY_COMPARE(red->text(), QStringLiteral("1000"));
    QTRY_COMPARE(child<QtOrbSpinBox>(&dialog, "spBoxRed")->value(), 1000);
    // Typed into its box, a coefficient goes to the camera.
    typeInto(child<QtOrbSpinBox>(&dialog, "spBoxBlue")->spinBox(), QStringLiteral("512"));
    QCOMPARE(valueOf(camera, "BlueCoefficient"), int64_t(512));
    QTRY_COMPARE(child<QLabel>(&dialog, "lblBlueCoef")->text(), QStringLiteral("512"));
}

void tst_FrameDialogs::colorWithoutCoefficients()
{
    Camera mono("U3V0");
    OrbCamConfigColorDialog dialog(mono.device.device);
    for (const char *name : { "spBoxRed", "lblRed", "pushBtnRedUnity", "spBoxBlue", "lblBlue",
                              "pushBtnBlueUnity", "cmBoxWhiteBalance" })
        QVERIFY2(!child<QWidget>(&dialog, name)->isEnabled(), name);
    OrbCamConfigColorDialog none(nullptr);
    QVERIFY(!child<QWidget>(&none, "spBoxGreen")->isEnabled());
    QVERIFY(!child<QWidget>(&none, "cmBoxTrackingSpeed")->isEnabled());
}

void tst_FrameDialogs::frameGainExamples_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<qint64>("coarse");
    QTest::addColumn<qint64>("fine");
    QTest::newRow("1.0") << "1" << qint64(0) << qint64(0);
    QTest::newRow("3.0") << "3" << qint64(1) << qint64(32);
    QTest::newRow("2.125") << "2.125" << qint64(1) << qint64(4);
    QTest::newRow("15.875") << "15.875" << qint64(3) << qint64(63);
}

// Typed into the digital gain box, a gain is split into its coarse power of
// two and fine 64ths and both go to the camera.
void tst_FrameDialogs::frameGainExamples()
{
    QFETCH(QString, typed);
    QFETCH(qint64, coarse);
    QFETCH(qint64, fine);
    Camera camera;
    QCOMPARE(camera.params()->GetInt("Frame_DigitalCourseGain")->SetValue(2), OrbCamOk);
    QCOMPARE(camera.params()->GetInt("Frame_DigitalFineGain")->SetValue(10), OrbCamOk);
    OrbCamConfigFrameABDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *gain = child<QtOrbGainSlider>(&dialog, "spBoxDigitalGain");
    QCOMPARE(gain->value(), 4.0 * (1 + 10 / 64.0));
    QCOMPARE(gain->minimum(), 1.0);
    QCOMPARE(gain->maximum(), 15.875);
    typeInto(gain->spinBox(), typed);
    QCOMPARE(valueOf(camera, "Frame_DigitalCourseGain"), coarse);
    QCOMPARE(valueOf(camera, "Frame_DigitalFineGain"), fine);
}

// Every gain on the 1/8 grid of the range: the coarse and fine values
// written give back exactly that gain (2^coarse * (1 + fine / 64)), with the
// fine part below one power of two.
void tst_FrameDialogs::frameGainSweep()
{
    Camera camera;
    OrbCamConfigFrameABDialog dialog(camera.device.device);
    auto *gain = child<QtOrbGainSlider>(&dialog, "spBoxDigitalGain");
    int checked = 0;
    for (double g = 1.0; g <= 15.875; g += 0.125) {
        gain->setValue(g);
        const int64_t coarse = valueOf(camera, "Frame_DigitalCourseGain");
        const int64_t fine = valueOf(camera, "Frame_DigitalFineGain");
        QVERIFY2(fine >= 0 && fine < 64, qPrintable(QString::number(g)));
        QVERIFY2(std::ldexp(1.0 + fine / 64.0, int(coarse)) == g,
                 qPrintable(QStringLiteral("%1: coarse %2 fine %3").arg(g).arg(coarse).arg(fine)));
        ++checked;
    }
    QCOMPARE(checked, 120);
}

void tst_FrameDialogs::frameGainInEveryLocale_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::newRow("C") << QLocale::c();
    QTest::newRow("de_DE") << QLocale(QLocale::German, QLocale::Germany);
    QTest::newRow("it_IT") << QLocale(QLocale::Italian, QLocale::Italy);
    QTest::newRow("fr_FR") << QLocale(QLocale::French, QLocale::France);
}

// The digital gain as a user of any locale writes it: Enter on the number
// shown changes nothing, a gain typed with the locale's decimal separator
// is that gain (never multiplied by a thousand).
void tst_FrameDialogs::frameGainInEveryLocale()
{
    QFETCH(QLocale, locale);
    QLocale::setDefault(locale);
    Camera camera;
    QCOMPARE(camera.params()->GetInt("Frame_DigitalCourseGain")->SetValue(1), OrbCamOk);
    QCOMPARE(camera.params()->GetInt("Frame_DigitalFineGain")->SetValue(32), OrbCamOk);
    OrbCamConfigFrameABDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *gain = child<QtOrbGainSlider>(&dialog, "spBoxDigitalGain");
    QCOMPARE(gain->value(), 3.0);
    gain->spinBox()->setFocus();
    QTest::keyClick(gain->spinBox(), Qt::Key_Return);
    QCOMPARE(gain->value(), 3.0);
    QCOMPARE(valueOf(camera, "Frame_DigitalCourseGain"), int64_t(1));
    QCOMPARE(valueOf(camera, "Frame_DigitalFineGain"), int64_t(32));
    typeInto(gain->spinBox(), QStringLiteral("2") + locale.decimalPoint() + QStringLiteral("125"));
    QCOMPARE(gain->value(), 2.125);
    QCOMPARE(valueOf(camera, "Frame_DigitalCourseGain"), int64_t(1));
    QCOMPARE(valueOf(camera, "Frame_DigitalFineGain"), int64_t(4));
    QLocale::setDefault(QLocale::c());
}

void tst_FrameDialogs::frameExposureSplit_data()
{
    QTest::addColumn<int>("lineTime");
    QTest::addColumn<int>("microseconds");
    for (int lineTime : { 1000, 1500, 777, 8191 })
        for (int t : { 10, 1, 99, 1234, 50000 })
            QTest::newRow(qPrintable(QStringLiteral("line time %1, %2 us").arg(lineTime).arg(t)))
                << lineTime << t;
}

// The exposure time in microseconds is split into whole lines and the
// remaining pixel clocks (the camera counts 120 pixel clocks per
// microsecond), and the time shown is what the camera then has.
void tst_FrameDialogs::frameExposureSplit()
{
    QFETCH(int, lineTime);
    QFETCH(int, microseconds);
    Camera camera;
    QCOMPARE(camera.params()->GetInt("Frame_LineTime")->SetValue(lineTime), OrbCamOk);
    const int64_t pixelClock = valueOf(camera, "PixelClock");
    OrbCamConfigFrameABDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *time = child<QtOrbSliderSpinBox>(&dialog, "spBoxExpTime");
    const int64_t linesBefore = valueOf(camera, "Frame_ExposureLines");
    typeInto(time->spinBox(), QString::number(microseconds));
    // A time shorter than one line (the camera's least exposure) is outside
    // the range: it stays as typed, marked, and nothing is written.
    if (microseconds * pixelClock < lineTime) {
        QVERIFY(time->spinBox()->property("outOfRange").toBool());
        QCOMPARE(time->spinBox()->text(), QString::number(microseconds));
        QCOMPARE(valueOf(camera, "Frame_ExposureLines"), linesBefore);
        return;
    }
    const int64_t taken = microseconds;
    // Independently: whole lines first, the rest in clocks.
    const int64_t clocksTotal = taken * pixelClock;
    int64_t lines = 0;
    while ((lines + 1) * lineTime <= clocksTotal)
        ++lines;
    QCOMPARE(valueOf(camera, "Frame_ExposureLines"), lines);
    QCOMPARE(valueOf(camera, "Frame_ExposureClocks"), clocksTotal - lines * lineTime);
    QTRY_COMPARE(time->value(), int(taken));
}

// The fixed frame period shows lines as microseconds: value * line time /
// pixel clock, rounded; and writes microseconds back as lines.
void tst_FrameDialogs::frameFixedPeriodConverter()
{
    Camera camera;
    QCOMPARE(camera.params()->GetInt("Frame_LineTime")->SetValue(1500), OrbCamOk);
    QCOMPARE(camera.params()->GetInt("Frame_FixedFramePeriodValue")->SetValue(1250), OrbCamOk);
    const int64_t pixelClock = valueOf(camera, "PixelClock");
    OrbCamConfigFrameABDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *period = child<QtOrbSliderSpinBox>(&dialog, "spBoxFixedFramePeriodValue");
    QCOMPARE(period->value(), int(std::trunc(1250.0 * 1500 / pixelClock + 0.5)));
    typeInto(period->spinBox(), QStringLiteral("20000"));
    QCOMPARE(valueOf(camera, "Frame_FixedFramePeriodValue"),
             int64_t(std::trunc(20000.0 * pixelClock / 1500 + 0.5)));
}

void tst_FrameDialogs::frameModeMovesTheLineTime()
{
    Camera camera;
    QCOMPARE(camera.params()->GetEnum("FrameMode")->SetValueByName("FrameA"), OrbCamOk);
    OrbCamConfigFrameABDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *mode = child<QComboBox>(&dialog, "cmBoxFrameMode");
    auto *single = child<QtOrbSliderSpinBox>(&dialog, "spBoxFrameLineTime");
    auto *dual = child<QtOrbSliderSpinBox>(&dialog, "spBoxDualVideo");
    auto *framesA = child<QtOrbSpinBox>(&dialog, "spBoxNumberOfFrameAs");
    auto *tabs = child<QTabWidget>(&dialog, "tabFrames");
    QVERIFY(single->isEnabled());
    QVERIFY(!dual->isEnabled());
    QVERIFY(!framesA->isEnabled());
    pick(mode, QStringLiteral("FrameAB"));
    QVERIFY(dual->isEnabled());
    QVERIFY(!single->isEnabled());
    QVERIFY(framesA->isEnabled());
    QVERIFY(tabs->isTabEnabled(0) && tabs->isTabEnabled(1));
    // The line time now follows the dual video box.
    typeInto(dual->spinBox(), QStringLiteral("2222"));
    QCOMPARE(valueOf(camera, "Frame_LineTime"), int64_t(2222));
    pick(mode, QStringLiteral("FrameB"));
    QVERIFY(single->isEnabled());
    QVERIFY(!dual->isEnabled());
    QVERIFY(!framesA->isEnabled());
    QCOMPARE(tabs->currentIndex(), 1);
    QVERIFY(!tabs->isTabEnabled(0));
    QCOMPARE(QString::fromUtf8(camera.params()->GetEnum("FrameAB_Selector")->GetValueName()),
             QStringLiteral("FrameB"));
    // The frame controls stand on the current tab.
    QCOMPARE(child<QWidget>(&dialog, "frameControls")->parentWidget(), tabs->widget(1));
}

// Opening the dialog selects no frame and writes nothing, even when the
// camera's selected frame is not the one its frame mode names.
void tst_FrameDialogs::frameOpeningWritesNothing()
{
    Camera camera;
    QCOMPARE(camera.params()->GetEnum("FrameMode")->SetValueByName("FrameA"), OrbCamOk);
    QCOMPARE(camera.params()->GetEnum("FrameAB_Selector")->SetValueByName("FrameB"), OrbCamOk);
    OrbCamTest::CountingSink sink;
    OrbGenParam::Enum *selector = camera.params()->GetEnum("FrameAB_Selector");
    selector->RegisterEventSink(&sink);
    {
        OrbCamConfigFrameABDialog dialog(camera.device.device);
        QVERIFY(show(&dialog));
        QTest::qWait(50);
        QCOMPARE(child<QTabWidget>(&dialog, "tabFrames")->currentIndex(), 1);
    }
    selector->UnregisterEventSink(&sink);
    QCOMPARE(sink.calls.load(), 0);
    QCOMPARE(QString::fromUtf8(selector->GetValueName()), QStringLiteral("FrameB"));
}

void tst_FrameDialogs::frameSizeRefreshes()
{
    Camera camera;
    OrbCamConfigFrameABDialog dialog(camera.device.device);
    QVERIFY(show(&dialog));
    auto *size = child<QLineEdit>(&dialog, "lineEditFrameCurrentSize");
    const QString expected = QStringLiteral("%1x%2")
                                 .arg(valueOf(camera, "Frame_WidthActual"))
                                 .arg(valueOf(camera, "Frame_HeightActual"));
    QCOMPARE(size->text(), expected);
    QCOMPARE(camera.params()->GetInt("Frame_Width")->SetValue(1280), OrbCamOk);
    QTRY_COMPARE_WITH_TIMEOUT(size->text(),
                              QStringLiteral("%1x%2")
                                  .arg(valueOf(camera, "Frame_WidthActual"))
                                  .arg(valueOf(camera, "Frame_HeightActual")),
                              2500);
    QVERIFY(size->text().startsWith(QStringLiteral("1280x")));
}

void tst_FrameDialogs::frameWithoutFeatures()
{
    Camera mono("U3V0"); // outlives the dialog, as a device must
    OrbCamConfigFrameABDialog none(nullptr);
    QVERIFY(!none.isEnabled());
    none.SetDevice(mono.device.device);
    QVERIFY(none.isEnabled());
    QCOMPARE(child<QLineEdit>(&none, "lineEditFrameCurrentSize")->text(), QStringLiteral("x"));
    for (const char *name : { "spBoxExpLines", "spBoxFrameWidth", "cmBoxFrameMode",
                              "spBoxDigitalGain", "chBoxWdrEnable", "radioBtnGlobalShutter" })
        QVERIFY2(!child<QWidget>(&none, name)->isEnabled(), name);
    none.SetDevice(nullptr);
    QVERIFY(!none.isEnabled());
}

// A device that cannot give its parameter array: every dialog degrades
// (the whole dialog disabled, or every control of it), nothing crashes.
void tst_FrameDialogs::withoutParameterArray()
{
    Camera camera;
    QCOMPARE(OrbCamSim::WithholdParams(camera.device.device->GetInfo()->GetID(), true), OrbCamOk);
    QVERIFY(!camera.device.device->GetParams());
    OrbCamConfigOutputDialog output(camera.device.device);
    QVERIFY(!output.isEnabled());
    OrbCamConfigFrameABDialog frames(camera.device.device);
    QVERIFY(!frames.isEnabled());
    OrbCamConfigStrobeDialog strobe(camera.device.device);
    QVERIFY(!strobe.isEnabled());
    OrbCamConfigColorDialog color(camera.device.device);
    for (const char *name : { "spBoxRed", "cmBoxWhiteBalance", "pushBtnBlueUnity" })
        QVERIFY2(!child<QWidget>(&color, name)->isEnabled(), name);
    OrbCamConfigTriggerDialog trigger(camera.device.device);
    QVERIFY(!child<QWidget>(&trigger, "chBoxTriggerEnable")->isEnabled());
    OrbCamConfigPulseDialog pulse(camera.device.device);
    QVERIFY(!child<QWidget>(&pulse, "spBoxPeriod")->isEnabled());
    QCOMPARE(OrbCamSim::WithholdParams(camera.device.device->GetInfo()->GetID(), false), OrbCamOk);
    output.SetDevice(camera.device.device);
    QVERIFY(output.isEnabled());
    color.SetDevice(camera.device.device);
    QVERIFY(child<QWidget>(&color, "spBoxRed")->isEnabled());
}

QTEST_MAIN(tst_FrameDialogs)
#include "tst_framedialogs.moc"
