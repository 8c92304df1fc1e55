// The configuration window and the feature dialogs on cameras of other
// vendors: real descriptions from the corpus, each a simulated camera over
// zero-filled memory with a few start values, read and written through the
// real OrbCam interfaces. What the window shows, which dialogs it offers,
// that opening writes nothing, and that the standard features' controls
// write what the user chose where the user chose it.
#include "dialogtest.h"

#include <OrbGui/orbcamconfig.h>
#include <OrbGui/orbcamconfigcolordialog.h>
#include <OrbGui/orbcamconfigoutputdialog.h>
#include <OrbGui/orbcamconfigpulsedialog.h>
#include <OrbGui/orbcamconfigstrobedialog.h>
#include <OrbGui/orbcamconfigtriggerdialog.h>

#include <QAction>
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include <functional>
#include <memory>

using namespace OrbGui;

namespace {

using Values = QVector<QPair<QString, QString>>;

QString corpus(const char *name)
{
    return QStringLiteral(ORB_CORPUS_DIR "/") + QString::fromLatin1(name);
}

// One simulated GigE Vision camera made from a description and start
// values; the set-up goes back to the default when the test ends.
class DescribedCamera {
public:
    DescribedCamera(const QString &description, const Values &values)
    {
        QJsonObject camera { { QStringLiteral("model"), description },
                             { QStringLiteral("serial"), QStringLiteral("T-1") } };
        if (!values.isEmpty()) {
            QJsonArray defaults;
            for (const auto &[name, value] : values)
                defaults.append(QJsonArray { name, value });
            const QString path = m_dir.filePath(QStringLiteral("values.json"));
            QFile file(path);
            if (!file.open(QIODevice::WriteOnly))
                qFatal("cannot write %s", qPrintable(path));
            file.write(
                QJsonDocument(QJsonObject { { QStringLiteral("defaults"), defaults } }).toJson());
            camera.insert(QStringLiteral("values"), path);
        }
        const QJsonObject gev { { QStringLiteral("id"), QStringLiteral("GEV0") },
                                { QStringLiteral("type"), QStringLiteral("GigEVision") },
                                { QStringLiteral("cameras"), QJsonArray { camera } } };
        const QByteArray setup
            = QJsonDocument(QJsonObject { { QStringLiteral("interfaces"), QJsonArray { gev } } })
                  .toJson(QJsonDocument::Compact);
        std::string why;
        m_configured = OrbCamSim::Configure(setup.toStdString(), &why) == OrbCamOk;
        if (!m_configured) {
            qWarning("set-up refused: %s", why.c_str());
            return;
        }
        m_camera = std::make_unique<Camera>();
    }
    ~DescribedCamera()
    {
        m_camera.reset();
        OrbCamSim::Reset();
    }
    bool ok() const { return m_configured && m_camera && m_camera->device.device; }
    OrbCam::Device *device() const { return m_camera->device.device; }
    OrbGenParam::Array *params() const { return m_camera->params(); }
    std::string value(const char *feature) const
    {
        GenApi::CValuePtr node = params()->GetNodeMap()->GetNode(feature);
        return node ? node->ToString().c_str() : std::string("(none)");
    }
    // As another application would, beside the dialog.
    bool set(const char *feature, const char *value) const
    {
        GenApi::CValuePtr node = params()->GetNodeMap()->GetNode(feature);
        if (!node) {
            qWarning("no feature %s", feature);
            return false;
        }
        try {
            node->FromString(value);
            return true;
        } catch (const GenICam::GenericException &e) {
            qWarning("%s=%s: %s", feature, value, e.GetDescription());
            return false;
        }
    }

private:
    QTemporaryDir m_dir;
    bool m_configured = false;
    std::unique_ptr<Camera> m_camera;
};

// What the corpus cameras need so that the features under test are
// implemented and have room: a capability register, limits.
const Values baslerValues { { QStringLiteral("WidthMax"), QStringLiteral("2048") },
                            { QStringLiteral("HeightMax"), QStringLiteral("1536") },
                            { QStringLiteral("Width"), QStringLiteral("1920") },
                            { QStringLiteral("Height"), QStringLiteral("1200") },
                            { QStringLiteral("ExposureTime"), QStringLiteral("5000") } };
const Values vieworksValues {
    { QStringLiteral("BalanceRatioImplReg"), QStringLiteral("1") },
    { QStringLiteral("BalanceRatioSelectorRedImplReg"), QStringLiteral("1") },
    { QStringLiteral("BalanceRatioSelectorGreenImplReg"), QStringLiteral("1") },
    { QStringLiteral("BalanceRatioSelectorBlueImplReg"), QStringLiteral("1") },
    { QStringLiteral("BalanceRatioMaxReg"), QStringLiteral("4.0") },
    { QStringLiteral("BalanceRatioSelector"), QStringLiteral("Red") },
    { QStringLiteral("BalanceRatio"), QStringLiteral("1.25") }
};

// Hikvision's virtual camera with two I/O lines and a trigger: each line
// has its own debouncer (selected by LineSelector), Line1's set to 50.
const Values hikvisionValues { { QStringLiteral("GPIOImplemented_Int"), QStringLiteral("1") },
                               { QStringLiteral("GPIOPin0PresInq_Bit"), QStringLiteral("1") },
                               { QStringLiteral("GPIOPin1PresInq_Bit"), QStringLiteral("1") },
                               { QStringLiteral("TriggerOnOffInq_Bit"), QStringLiteral("1") },
                               { QStringLiteral("TriggerSourceSwInq_Bit"), QStringLiteral("1") },
                               { QStringLiteral("TriggerSource0Inq_Bit"), QStringLiteral("1") },
                               { QStringLiteral("TriggerSource1Inq_Bit"), QStringLiteral("1") },
                               { QStringLiteral("LineDebouncerTimeMaxInq_Reg"),
                                 QStringLiteral("100000") },
                               { QStringLiteral("LineSelector"), QStringLiteral("Line1") },
                               { QStringLiteral("LineDebouncerTime"), QStringLiteral("50") },
                               { QStringLiteral("LineSelector"), QStringLiteral("Line0") },
                               { QStringLiteral("TriggerMode"), QStringLiteral("On") },
                               { QStringLiteral("TriggerSource"), QStringLiteral("Line0") } };

QString text(QWidget *window, const char *field)
{
    return child<QLineEdit>(window, field)->text();
}

} // namespace

class tst_StandardFeatures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QCOMPARE(OrbCamSim::Reset(), OrbCamOk); }
    void cleanup() { OrbCamSim::Reset(); }
    void panel_data();
    void panel();
    void offeredDialogs_data();
    void offeredDialogs();
    void openingWritesNothing_data();
    void openingWritesNothing();
    void triggerActsOnTheShownSelector();
    void debouncerOfTheSourceLine();
    void balanceRatioPerChannel();
    void linesAndTimers();
};

void tst_StandardFeatures::panel_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<Values>("values");
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("exposureFeature");
    QTest::addColumn<QString>("temperatureUnit");
    QTest::addColumn<QString>("fps");
    QTest::addColumn<QString>("frameTime");
    // The Basler's resulting frame rate divides by a register that is zero
    // here: the read fails, and the rate and frame time stay empty.
    QTest::newRow("Basler ace 2") << corpus("basler_ace2-a2a2600-20gmbas.xml") << baslerValues
                                  << QStringLiteral("1920x1200") << QStringLiteral("ExposureTime")
                                  << QStringLiteral("C") << QString() << QString();
    QTest::newRow("Baumer HXG20") << corpus("baumer_hxg20.xml") << Values() << QString()
                                  << QStringLiteral("ExposureTime") << QString() << QString()
                                  << QString();
    QTest::newRow("Vieworks VNP-604")
        << corpus("vieworks_vnp-604.xml") << Values() << QString() << QStringLiteral("ExposureTime")
        << QString() << QString() << QString();
    QTest::newRow("The Imaging Source DMK 33GX174")
        << corpus("theimagingsource_dmk-33gx174.xml") << Values() << QString()
        << QStringLiteral("ExposureTime") << QString() << QString() << QString();
    // ResultingFrameRate is the register's tenths: 25 frames per second.
    QTest::newRow("Hikvision, resulting frame rate")
        << corpus("hikvision_virtual-camera.zip")
        << Values { { QStringLiteral("ResultingFrameRate_Reg"), QStringLiteral("250") } }
        << QString() << QStringLiteral("ExposureTime") << QString() << QStringLiteral("25.00")
        << QStringLiteral("40000");
}

// Size, exposure and temperature from the standard names, as the camera
// reads them, with the description's units where it gives them.
void tst_StandardFeatures::panel()
{
    QFETCH(QString, description);
    QFETCH(Values, values);
    QFETCH(QString, size);
    QFETCH(QString, exposureFeature);
    QFETCH(QString, temperatureUnit);
    QFETCH(QString, fps);
    QFETCH(QString, frameTime);
    DescribedCamera camera(description, values);
    QVERIFY(camera.ok());
    OrbCamConfig window(camera.device());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    if (size.isEmpty())
        size = QStringLiteral("%1x%2").arg(QString::fromStdString(camera.value("Width")),
                                           QString::fromStdString(camera.value("Height")));
    QTRY_COMPARE(text(&window, "lineEditSizeFrameA"), size);
    OrbGenParam::Float *exposure = camera.params()->GetFloat(exposureFeature.toUtf8().constData());
    QVERIFY(exposure);
    QTRY_COMPARE(text(&window, "lineEditExpFrameA").toDouble(), exposure->GetValue());
    QTRY_COMPARE(text(&window, "lineEditFpsFrameA"), fps);
    QCOMPARE(text(&window, "lineEditFtmFrameA"), frameTime);
    auto *unit = dynamic_cast<GenApi::IFloat *>(exposure->GetNode());
    QCOMPARE(child<QLabel>(&window, "lblExposure")->text(),
             unit->GetUnit() == "us" ? QStringLiteral("\u03BCs")
                                     : QString::fromUtf8(unit->GetUnit().c_str()));
    if (OrbGenParam::Float *temperature = camera.params()->GetFloat("DeviceTemperature");
        temperature && temperature->IsAvailable()) {
        QTRY_COMPARE(text(&window, "lineEditTemperature").toDouble(),
                     std::round(temperature->GetValue() * 100) / 100);
        if (!temperatureUnit.isEmpty())
            QCOMPARE(child<QLabel>(&window, "lblTemperature")->text(), temperatureUnit);
        // What the camera's sensor selector names now, never another sensor.
        if (OrbGenParam::Enum *sensor = camera.params()->GetEnum("DeviceTemperatureSelector"))
            QCOMPARE(child<QLineEdit>(&window, "lineEditTemperature")->toolTip(),
                     QStringLiteral("Temperature of: %1")
                         .arg(QString::fromUtf8(sensor->GetValueName())));
    } else {
        QVERIFY(text(&window, "lineEditTemperature").isEmpty());
    }
}

void tst_StandardFeatures::offeredDialogs_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<Values>("values");
    QTest::addColumn<QStringList>("offered");
    const QString trigger = QStringLiteral("Trigger"), strobe = QStringLiteral("Strobe"),
                  output = QStringLiteral("DataOut"), color = QStringLiteral("Color");
    QTest::newRow("Basler ace 2, monochrome")
        << corpus("basler_ace2-a2a2600-20gmbas.xml") << baslerValues
        << QStringList { trigger, strobe, output };
    QTest::newRow("Vieworks VNP-604, colour") << corpus("vieworks_vnp-604.xml") << vieworksValues
                                              << QStringList { trigger, strobe, output, color };
    QTest::newRow("The Imaging Source, no lines") << corpus("theimagingsource_dmk-33gx174.xml")
                                                  << Values() << QStringList { trigger, output };
    QTest::newRow("JAI, no trigger")
        << corpus("jai_tmc-1405gev.xml") << Values() << QStringList { output };
}

// A dialog with nothing to show on the camera has neither its button nor
// its View action; the others have both.
void tst_StandardFeatures::offeredDialogs()
{
    QFETCH(QString, description);
    QFETCH(Values, values);
    QFETCH(QStringList, offered);
    DescribedCamera camera(description, values);
    QVERIFY(camera.ok());
    OrbCamConfig window(camera.device());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const std::pair<const char *, const char *> panes[]
        = { { "Trigger", "actionTrigger" }, { "Pulse", "actionPulse" },
            { "Strobe", "actionStrobe" },   { "DataOut", "actionData_Out" },
            { "Color", "actionColor" },     { "FrameAB", "actionFrame_A_B" } };
    for (const auto &[pane, action] : panes) {
        const bool shown = offered.contains(QLatin1String(pane));
        const QByteArray button = QByteArray("pushBtn") + pane;
        QVERIFY2(child<QWidget>(&window, button.constData())->isVisible() == shown, pane);
        QVERIFY2(child<QAction>(&window, action)->isVisible() == shown, action);
    }
}

void tst_StandardFeatures::openingWritesNothing_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<Values>("values");
    QTest::newRow("Basler ace 2") << corpus("basler_ace2-a2a2600-20gmbas.xml") << baslerValues;
    QTest::newRow("Baumer HXG20") << corpus("baumer_hxg20.xml") << Values();
    QTest::newRow("Vieworks VNP-604") << corpus("vieworks_vnp-604.xml") << vieworksValues;
    QTest::newRow("Allied Vision Alvium")
        << corpus("allied-vision_alvium-1800-u-811m.xml") << Values();
    QTest::newRow("FLIR Blackfly S") << corpus("flir_blackfly-s-bfs-u3-161s7m.xml") << Values();
    QTest::newRow("PixeLINK") << corpus("pixelink_pl-b771g.xml") << Values();
    QTest::newRow("Hikvision, zipped") << corpus("hikvision_virtual-camera.zip") << Values();
}

// Opening the window and every dialog, and showing them, writes nothing to
// the camera: not a selector either, whichever the camera has selected.
void tst_StandardFeatures::openingWritesNothing()
{
    QFETCH(QString, description);
    QFETCH(Values, values);
    DescribedCamera camera(description, values);
    QVERIFY(camera.ok());
    WriteJournal journal(camera.device());
    {
        OrbCamConfig window(camera.device());
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        for (QPushButton *button : window.findChildren<QPushButton *>())
            if (button->isVisible() && button->isCheckable())
                button->click();
        QTest::qWait(300);
        for (QDialog *dialog : window.findChildren<QDialog *>())
            if (dialog->isVisible())
                QVERIFY(QTest::qWaitForWindowExposed(dialog));
        QTest::qWait(1200); // a tick of the panel
    }
    const QSet<qint64> written = journal.take();
    QVERIFY2(written.isEmpty(),
             qPrintable(QStringLiteral("%1 registers written, the first at 0x%2")
                            .arg(written.size())
                            .arg(written.isEmpty() ? 0 : *written.begin(), 0, 16)));
}

// The trigger dialog shows the camera's trigger selector as it stands;
// mode, source and the software trigger act on the trigger it names, and
// choosing another one there is what moves the selector.
void tst_StandardFeatures::triggerActsOnTheShownSelector()
{
    DescribedCamera camera(corpus("theimagingsource_dmk-33gx174.xml"), Values());
    QVERIFY(camera.ok());
    QVERIFY(camera.set("TriggerSelector", "ExposureActive"));
    WriteJournal journal(camera.device());
    OrbCamConfigTriggerDialog dialog(camera.device());
    QVERIFY(show(&dialog));
    auto *selector = child<QComboBox>(&dialog, "cmBoxTriggerSelector");
    QVERIFY(selector->isVisible());
    // The camera's selection, not FrameStart: someone chose otherwise.
    QCOMPARE(selector->currentText(), QStringLiteral("ExposureActive"));
    QVERIFY(journal.take().isEmpty());

    pick(selector, QStringLiteral("FrameStart"));
    QCOMPARE(camera.value("TriggerSelector"), std::string("FrameStart"));
    auto *enable = child<QCheckBox>(&dialog, "chBoxTriggerEnable");
    QTRY_VERIFY(enable->isEnabled());
    if (enable->isChecked())
        enable->click();
    QCOMPARE(camera.value("TriggerMode"), std::string("Off"));
    enable->click();
    QCOMPARE(camera.value("TriggerMode"), std::string("On"));
    auto *source = child<QComboBox>(&dialog, "cmBoxTriggerSource");
    QTRY_VERIFY(source->isEnabled());
    pick(source, QStringLiteral("Software"));
    QCOMPARE(camera.value("TriggerSource"), std::string("Software"));
    auto *software = child<QPushButton>(&dialog, "pushBtnSoftwareTrigger");
    QTRY_VERIFY(software->isEnabled());
    const QSet<qint64> trigger = journal.writesOf(camera.params(), "TriggerSoftware");
    QVERIFY(!trigger.isEmpty());
    software->click();
    QCOMPARE(journal.take(), trigger);

    // The dialog follows the selector moved elsewhere.
    QVERIFY(camera.set("TriggerSelector", "ExposureActive"));
    QTRY_COMPARE(selector->currentText(), QStringLiteral("ExposureActive"));
}

// The debounce of the trigger is the debouncer of its source line. It is
// shown while the camera's line selector names that line (another line's
// time would stand under this source); a time entered selects the line
// first.
void tst_StandardFeatures::debouncerOfTheSourceLine()
{
    DescribedCamera camera(corpus("hikvision_virtual-camera.zip"), hikvisionValues);
    QVERIFY(camera.ok());
    OrbCamConfigTriggerDialog dialog(camera.device());
    QVERIFY(show(&dialog));
    auto *debounce = child<QDoubleSpinBox>(&dialog, "spBoxTriggerDebounceTime");
    QVERIFY(debounce->isVisible());
    QVERIFY(!child<QComboBox>(&dialog, "cmBoxTriggerDebounce")->isVisible());
    QVERIFY(debounce->isEnabled());
    QCOMPARE(debounce->value(), 0.0);
    QVERIFY(!debounce->cleanText().isEmpty());
    QVERIFY(debounce->toolTip().contains(QStringLiteral("Line0")));

    // Another application selects Line1: its 50 is not Line0's debounce.
    QVERIFY(camera.set("LineSelector", "Line1"));
    QTRY_VERIFY2(debounce->cleanText().isEmpty(), qPrintable(debounce->text()));
    QVERIFY(debounce->isEnabled());
    debounce->setFocus();
    QTest::keyClicks(debounce, QStringLiteral("25"));
    QTest::keyClick(debounce, Qt::Key_Enter);
    QCOMPARE(camera.value("LineSelector"), std::string("Line0"));
    QCOMPARE(camera.value("LineDebouncerTime"), std::string("25"));
    QTRY_COMPARE(debounce->value(), 25.0);
    QVERIFY(camera.set("LineSelector", "Line1"));
    QCOMPARE(camera.value("LineDebouncerTime"), std::string("50"));

    // A source that is no line has no debouncer.
    pick(child<QComboBox>(&dialog, "cmBoxTriggerSource"), QStringLiteral("Software"));
    QCOMPARE(camera.value("TriggerSource"), std::string("Software"));
    QTRY_VERIFY(!debounce->isEnabled());
    QVERIFY(debounce->cleanText().isEmpty());
}

// The colour dialog on a camera with the standard white balance: the
// channel the camera has selected, its ratio, and Unity meaning 1.0 for the
// channel chosen.
void tst_StandardFeatures::balanceRatioPerChannel()
{
    DescribedCamera camera(corpus("vieworks_vnp-604.xml"), vieworksValues);
    QVERIFY(camera.ok());
    OrbCamConfigColorDialog dialog(camera.device());
    QVERIFY(show(&dialog));
    auto *channel = child<QComboBox>(&dialog, "cmBoxBalanceRatioSelector");
    auto *ratio = child<QDoubleSpinBox>(&dialog, "spBoxBalanceRatio");
    QVERIFY(channel->isVisible() && ratio->isVisible());
    // The coefficients of the simulated models are not shown.
    QVERIFY(!child<QWidget>(&dialog, "spBoxRed")->isVisible());
    QCOMPARE(channel->currentText(), QStringLiteral("Red"));
    QCOMPARE(ratio->value(), 1.25);

    pick(channel, QStringLiteral("Blue"));
    QCOMPARE(camera.value("BalanceRatioSelector"), std::string("Blue"));
    child<QPushButton>(&dialog, "pushBtnBalanceRatioUnity")->click();
    QCOMPARE(camera.params()->GetFloat("BalanceRatio")->GetValue(), 1.0);
    ratio->setFocus();
    ratio->selectAll();
    QTest::keyClicks(ratio, QStringLiteral("2.5"));
    QTest::keyClick(ratio, Qt::Key_Enter);
    QCOMPARE(camera.params()->GetFloat("BalanceRatio")->GetValue(), 2.5);
    // Another application choosing the channel: the dialog follows, and
    // shows the ratio the camera reads for it (this camera keeps one
    // register for all three; the simulation has no per-channel memory).
    QVERIFY(camera.set("BalanceRatioSelector", "Red"));
    QTRY_COMPARE(channel->currentText(), QStringLiteral("Red"));
    QTRY_COMPARE(ratio->value(), camera.params()->GetFloat("BalanceRatio")->GetValue());
}

// The strobe dialog on a camera with standard lines and timers: each group
// acts on what its selector names.
void tst_StandardFeatures::linesAndTimers()
{
    DescribedCamera camera(corpus("basler_ace2-a2a2600-20gmbas.xml"), baslerValues);
    QVERIFY(camera.ok());
    OrbCamConfigStrobeDialog dialog(camera.device());
    QVERIFY(show(&dialog));
    QVERIFY(!child<QWidget>(&dialog, "groupBoxStrobe1")->isVisible());
    auto *line = child<QComboBox>(&dialog, "cmBoxLineSelector");
    QVERIFY(line->isVisible());
    QCOMPARE(line->currentText(), QString::fromStdString(camera.value("LineSelector")));
    const QString other = line->itemText(line->count() - 1);
    pick(line, other);
    QCOMPARE(QString::fromStdString(camera.value("LineSelector")), other);
    auto *inverter = child<QCheckBox>(&dialog, "chBoxLineInverter");
    QTRY_VERIFY(inverter->isEnabled());
    const bool was = inverter->isChecked();
    inverter->click();
    QCOMPARE(camera.value("LineInverter"), std::string(was ? "0" : "1"));

    auto *timer = child<QComboBox>(&dialog, "cmBoxTimerSelector");
    QCOMPARE(timer->currentText(), QString::fromStdString(camera.value("TimerSelector")));
    auto *delay = child<QDoubleSpinBox>(&dialog, "spBoxTimerDelay");
    QTRY_VERIFY(delay->isEnabled());
    QVERIFY(delay->suffix().endsWith(QStringLiteral("\u03BCs")));
    delay->setFocus();
    delay->selectAll();
    QTest::keyClicks(delay, QStringLiteral("120"));
    QTest::keyClick(delay, Qt::Key_Enter);
    QCOMPARE(camera.params()->GetFloat("TimerDelay")->GetValue(), 120.0);
}

QTEST_MAIN(tst_StandardFeatures)
#include "tst_standardfeatures.moc"
