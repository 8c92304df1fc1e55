#include <OrbGui/orbcamconfig.h>

#include "camconfigdialog_p.h"
#include "common/devicereader.h"
#include "genparam/unittext.h"
#include "ui_orbcamconfig.h"
#include "ui_orbcamconfigabout.h"

#include <OrbCam/OrbCam.h>
#include <OrbGui/orbcameraselectordialog.h>
#include <OrbGui/orbcamconfigcolordialog.h>
#include <OrbGui/orbcamconfigframeabdialog.h>
#include <OrbGui/orbcamconfigoutputdialog.h>
#include <OrbGui/orbcamconfigpulsedialog.h>
#include <OrbGui/orbcamconfigstrobedialog.h>
#include <OrbGui/orbcamconfigtriggerdialog.h>

#include <QDate>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QStatusBar>
#include <QTimer>

#include <atomic>
#include <optional>

namespace OrbGui {

namespace {

const QString frameA = QStringLiteral("FrameA");
const QString frameB = QStringLiteral("FrameB");
const char selectorName[] = "FrameAB_Selector";
const char modeName[] = "FrameMode";

enum ConnectionEvent { NoEvent = 0, Lost = 1, Returned = 2 };

} // namespace

class OrbCamConfigPrivate : public OrbGenParam::ParamEventSink {
    Q_DECLARE_PUBLIC(OrbCamConfig)

public:
    struct Pane {
        QPushButton *button;
        QAction *action;
        OrbCamConfigDialog *dialog;
    };

    explicit OrbCamConfigPrivate(OrbCamConfig *q)
        : q_ptr(q)
        , handOff(q)
    {
    }
    ~OrbCamConfigPrivate() override = default;

    void OnParameterUpdate(OrbGenParam::Param *param) override;
    static void onDeviceEvent(const void *data, size_t size, void *context);

    void initialise(OrbCam::Device *newDevice);
    void firstTime();
    void fetchParameters();
    void readFrameState();
    // `wait`: for a panel read under way, which uses the parameters (the
    // device may be released next); a lost camera's device stays, and its
    // read is left to end on its own.
    void forgetParameters(bool wait = true);
    void tick();
    void refreshFrames();
    void applyPanel(const struct PanelReading &reading);
    void clearPanel();
    void updateStatusBar();
    void finalAdjustment();
    void showPanes();
    void refreshAbout();
    void dialogsTo(OrbCam::Device *forDialogs);
    void registerEvents();
    void unregisterEvents();
    void letGo();
    void disconnectDevice();
    void connectDevice();
    OrbCam::Device *chooseDevice();
    OrbCam::Device *selectAndOpen(OrbCam::System *from);
    void markColumn(bool b, bool current);
    QVector<Pane> panes() const;
    template <class P> P *param(const char *name) const;
    QVector<QLineEdit *> panelFields() const;

    OrbCamConfig *const q_ptr;
    OrbCam::Device *device = nullptr;
    OrbCam::System *system = nullptr;
    OrbGenParam::Array *params = nullptr;
    Ui_OrbCamConfigMainWindow ui;
    QDialog *about = nullptr;
    Ui_OrbCamConfigAboutDialog aboutUi;
    bool initialised = false;
    bool frameABSupport = false;
    bool ownsDevice = false;
    std::atomic<int> connectionEvent { NoEvent };
    OrbGenParam::Enum *selector = nullptr;
    OrbGenParam::Enum *mode = nullptr;
    OrbCamConfigFrameABDialog *frameABDialog = nullptr;
    OrbCamConfigTriggerDialog *triggerDialog = nullptr;
    OrbCamConfigPulseDialog *pulseDialog = nullptr;
    OrbCamConfigStrobeDialog *strobeDialog = nullptr;
    OrbCamConfigOutputDialog *outputDialog = nullptr;
    OrbCamConfigColorDialog *colorDialog = nullptr;
    QLabel *statusText = nullptr;
    QLabel *statusIcon = nullptr;
    QPixmap connectedIcon, disconnectedIcon;
    QTimer *timer = nullptr;
    OrbCamConfigMapper mapper;
    GuiHandOff handOff;
    // The panel's reads run on the device's reader, never on the GUI thread;
    // one at a time, and a refresh asked for meanwhile follows it.
    std::shared_ptr<DeviceReader> reader;
    bool panelReading = false;
    bool panelAgain = false;
    uint64_t panelGeneration = 0;
};

template <class P> P *OrbCamConfigPrivate::param(const char *name) const
{
    if (!params)
        return nullptr;
    if constexpr (std::is_same_v<P, OrbGenParam::Int>)
        return params->GetInt(name);
    else if constexpr (std::is_same_v<P, OrbGenParam::Enum>)
        return params->GetEnum(name);
    else
        return params->GetString(name);
}

QVector<OrbCamConfigPrivate::Pane> OrbCamConfigPrivate::panes() const
{
    return { { ui.pushBtnFrameAB, ui.actionFrame_A_B, frameABDialog },
             { ui.pushBtnTrigger, ui.actionTrigger, triggerDialog },
             { ui.pushBtnPulse, ui.actionPulse, pulseDialog },
             { ui.pushBtnStrobe, ui.actionStrobe, strobeDialog },
             { ui.pushBtnDataOut, ui.actionData_Out, outputDialog },
             { ui.pushBtnColor, ui.actionColor, colorDialog } };
}

QVector<QLineEdit *> OrbCamConfigPrivate::panelFields() const
{
    return { ui.lineEditSizeFrameA, ui.lineEditSizeFrameB, ui.lineEditFpsFrameA,
             ui.lineEditFpsFrameB,  ui.lineEditFtmFrameA,  ui.lineEditFtmFrameB,
             ui.lineEditExpFrameA,  ui.lineEditExpFrameB,  ui.lineEditTemperature };
}

// The camera API's own thread: the one integer, nothing else.
void OrbCamConfigPrivate::onDeviceEvent(const void *data, size_t size, void *context)
{
    if (!data || size < sizeof(uint32_t))
        return;
    const uint32_t event = *static_cast<const uint32_t *>(data);
    auto *d = static_cast<OrbCamConfigPrivate *>(context);
    if (event == OrbCam::EventDeviceLost)
        d->connectionEvent = Lost;
    else if (event == OrbCam::EventDeviceReturned)
        d->connectionEvent = Returned;
}

void OrbCamConfigPrivate::firstTime()
{
    Q_Q(OrbCamConfig);
    ui.setupUi(q);
    about = new QDialog(q);
    aboutUi.setupUi(about);
    connectedIcon = QPixmap(QStringLiteral(":/icons/connected.ico"));
    disconnectedIcon = QPixmap(QStringLiteral(":/icons/disconnected.ico"));
    frameABDialog = new OrbCamConfigFrameABDialog(nullptr, q);
    triggerDialog = new OrbCamConfigTriggerDialog(nullptr, q);
    pulseDialog = new OrbCamConfigPulseDialog(nullptr, q);
    strobeDialog = new OrbCamConfigStrobeDialog(nullptr, q);
    outputDialog = new OrbCamConfigOutputDialog(nullptr, q);
    colorDialog = new OrbCamConfigColorDialog(nullptr, q);
    ui.lblFrameTime->setText(QStringLiteral("%1s").arg(QChar(0x03BC)));
    ui.lblExposure->setText(QStringLiteral("%1s").arg(QChar(0x03BC)));
    ui.lblTemperature->setText(QStringLiteral("%1C").arg(QChar(0x00B0)));
    aboutUi.lblAppName->setText(QStringLiteral("OrbCameraConfiguration"));
    aboutUi.lblAppVersion->setText(QStringLiteral("1.4.0 (build 2230) "));
    aboutUi.lblCopyright->setText(
        OrbCamConfig::tr("Copyright %1 Orb Imaging").arg(QDate::currentDate().year()));
    QObject::connect(ui.actionQuit, &QAction::triggered, q, &QWidget::close);
    QObject::connect(ui.actionConnect, &QAction::triggered, q, [this] { connectDevice(); });
    QObject::connect(ui.actionDisconnect, &QAction::triggered, q, [this] { disconnectDevice(); });
    QObject::connect(ui.actionAbout, &QAction::triggered, q, [this] {
        refreshAbout();
        about->show();
    });
    statusText = new QLabel(q);
    statusText->setObjectName(QStringLiteral("statusText"));
    statusIcon = new QLabel(q);
    statusIcon->setObjectName(QStringLiteral("statusIcon"));
    q->statusBar()->addWidget(statusText);
    q->statusBar()->addPermanentWidget(statusIcon);
    for (const Pane &pane : panes()) {
        QPushButton *button = pane.button;
        OrbCamConfigDialog *dialog = pane.dialog;
        // The buttons show icons only: the name says which dialog opens.
        button->setToolTip(dialog->windowTitle());
        QObject::connect(button, &QPushButton::toggled, dialog, [dialog](bool on) {
            if (on)
                dialog->show();
            else
                dialog->close();
        });
        QObject::connect(dialog, &OrbCamConfigDialog::closing, button, [button] {
            const QSignalBlocker quiet(button);
            button->setChecked(false);
        });
        QObject::connect(pane.action, &QAction::toggled, button, [button, dialog](bool on) {
            button->setVisible(on);
            if (!on) {
                button->setChecked(false);
                dialog->close();
            }
        });
    }
    timer = new QTimer(q);
    QObject::connect(timer, &QTimer::timeout, q, [this] { tick(); });
}

// Runs the camera selector on `from` and opens the camera chosen; null when
// the user cancelled, chose nothing, or the camera cannot be opened (said in
// a message).
OrbCam::Device *OrbCamConfigPrivate::selectAndOpen(OrbCam::System *from)
{
    Q_Q(OrbCamConfig);
    OrbCameraSelectorDialog selectorDialog(from, q, false);
    selectorDialog.setWindowTitle(OrbCamConfig::tr("Select a device"));
    if (selectorDialog.exec() != QDialog::Accepted)
        return nullptr;
    OrbCam::DeviceInfo *info = selectorDialog.selectedCamera();
    if (!info)
        return nullptr;
    OrbCamErr err = OrbCamOk;
    OrbCam::Device *opened = OrbCam_CreateDevice(info, OrbCam::AccessControl, 0, &err);
    if (!opened)
        QMessageBox::warning(
            q, OrbCamConfig::tr("Connect"),
            OrbCamConfig::tr("Cannot open %1: %2")
                .arg(QString::fromUtf8(info->GetID()), QString::fromUtf8(OrbCam_ErrorText(err))));
    return opened;
}

OrbCam::Device *OrbCamConfigPrivate::chooseDevice()
{
    OrbCam::System *from = OrbCam_GetSystem();
    if (!from)
        return nullptr;
    OrbCam::Device *opened = selectAndOpen(from);
    // Nothing chosen: the window holds nothing of the camera system.
    if (!opened) {
        OrbCam_ReleaseSystem(from);
        return nullptr;
    }
    system = from;
    ownsDevice = true;
    return opened;
}

void OrbCamConfigPrivate::initialise(OrbCam::Device *newDevice)
{
    Q_Q(OrbCamConfig);
    if (!initialised) {
        firstTime();
        initialised = true;
        if (!newDevice)
            newDevice = chooseDevice();
    }
    device = newDevice;
    params = nullptr;
    reader = nullptr;
    if (device) {
        OrbCamErr err = OrbCamOk;
        params = device->GetParams(&err);
        if (params && err == OrbCamOk)
            reader = DeviceReader::of(params->GetNodeMap());
        // The connection event state is not reset here: on a return the
        // tick has taken its event already, and a loss reported since must
        // not be dropped. It is reset when the window lets the device go.
        if (params && err == OrbCamOk) {
            fetchParameters();
        } else {
            params = nullptr;
        }
    }
    updateStatusBar();
    q->setEnabled(true);
    mapper.releaseAll();
    timer->start(1000);
    finalAdjustment();
    refreshAbout();
    if (device)
        registerEvents();
}

void OrbCamConfigPrivate::registerEvents()
{
    for (uint32_t event :
         { uint32_t(OrbCam::EventDeviceLost), uint32_t(OrbCam::EventDeviceReturned) }) {
        device->UnregisterEventCallback(event, &OrbCamConfigPrivate::onDeviceEvent, this);
        device->RegisterEventCallback(event, &OrbCamConfigPrivate::onDeviceEvent, this);
    }
}

void OrbCamConfigPrivate::unregisterEvents()
{
    if (!device)
        return;
    for (uint32_t event :
         { uint32_t(OrbCam::EventDeviceLost), uint32_t(OrbCam::EventDeviceReturned) })
        device->UnregisterEventCallback(event, &OrbCamConfigPrivate::onDeviceEvent, this);
}

void OrbCamConfigPrivate::fetchParameters()
{
    for (OrbGenParam::Enum **watched : { &selector, &mode }) {
        if (*watched)
            (*watched)->UnregisterEventSink(this);
    }
    selector = param<OrbGenParam::Enum>(selectorName);
    mode = param<OrbGenParam::Enum>(modeName);
    for (OrbGenParam::Enum *watched : { selector, mode })
        if (watched)
            watched->RegisterEventSink(this);
    readFrameState();
}

// What the camera has; its selector's and mode's values come with the
// panel's reading.
void OrbCamConfigPrivate::readFrameState()
{
    frameABSupport = selector != nullptr;
}

void OrbCamConfigPrivate::forgetParameters(bool wait)
{
    for (OrbGenParam::Enum *watched : { selector, mode })
        if (watched)
            watched->UnregisterEventSink(this);
    // What a read under way brings back goes nowhere.
    ++panelGeneration;
    if (reader && wait)
        reader->cancel(this);
    panelReading = panelAgain = false;
    handOff.invalidate();
    selector = mode = nullptr;
    params = nullptr;
}

void OrbCamConfigPrivate::OnParameterUpdate(OrbGenParam::Param *)
{
    handOff.post([this] {
        if (params)
            refreshFrames();
    });
}

// What the panel shows, read on the reader's thread. No value: the camera
// lacks the feature, and its field is left as it is. An empty text: the
// read failed (a camera not answering among others), and the field shows
// nothing rather than a made-up or stale number.
struct PanelReading {
    bool b = false; // the selector names frame B
    std::optional<QString> temperature, width, height, exposure, frameTime, fps;
    double time = 0; // the frame time in microseconds
    // The description's units of the standard features read instead of
    // the window's own (empty: the window's label stays).
    QString temperatureUnit, exposureUnit;
    QString temperatureSource; // what the camera's temperature selector names
};

namespace {

// Floating-point readings with at most two decimals, none when whole.
QString numberText(double value)
{
    QString text = QString::number(value, 'f', 2);
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text;
}

// The first of `names` the camera has (implemented and available now), an
// integer or a floating-point feature, as text; nothing when it has none of
// them; an empty text when the read fails. *unit receives the feature's
// unit as shown.
std::optional<QString> numberOf(OrbGenParam::Array *params,
                                std::initializer_list<const char *> names, double *value = nullptr,
                                QString *unit = nullptr)
{
    for (const char *name : names) {
        OrbCamErr err = OrbCamOk;
        if (OrbGenParam::Int *feature = params->GetInt(name); feature && feature->IsAvailable()) {
            const int64_t read = feature->GetValue(&err);
            if (unit)
                if (auto *node = dynamic_cast<GenApi::IInteger *>(feature->GetNode()))
                    *unit = shownUnit(QString::fromUtf8(node->GetUnit().c_str()));
            if (err != OrbCamOk)
                return QString();
            if (value)
                *value = static_cast<double>(read);
            return QString::number(read);
        }
        if (OrbGenParam::Float *feature = params->GetFloat(name);
            feature && feature->IsAvailable()) {
            const double read = feature->GetValue(&err);
            if (unit)
                if (auto *node = dynamic_cast<GenApi::IFloat *>(feature->GetNode()))
                    *unit = shownUnit(QString::fromUtf8(node->GetUnit().c_str()));
            if (err != OrbCamOk)
                return QString();
            if (value)
                *value = read;
            return numberText(read);
        }
    }
    return std::nullopt;
}

// The selector is read afresh with the values, once: the panel must not put
// one frame's readings under the other's heading because an event about the
// selector is still on its way.
PanelReading readPanel(OrbGenParam::Array *params, OrbGenParam::Enum *selector)
{
    PanelReading r;
    if (selector) {
        OrbCamErr err = OrbCamOk;
        const char *name = selector->GetValueName(&err);
        r.b = err == OrbCamOk && name && QString::fromUtf8(name) != frameA;
    }
    r.width = numberOf(params, { "Width" });
    r.height = numberOf(params, { "Height" });
    // The window's own features first; then the standard names, which a
    // camera of any vendor may have, with the units its description gives.
    r.temperature = numberOf(params, { "CurrentTemperature" });
    if (!r.temperature) {
        // What the camera's selector names now: choosing a sensor to read
        // would be a write nobody asked for.
        r.temperature = numberOf(params, { "DeviceTemperature" }, nullptr, &r.temperatureUnit);
        if (OrbGenParam::Enum *sensor = params->GetEnum("DeviceTemperatureSelector");
            r.temperature && sensor) {
            OrbCamErr err = OrbCamOk;
            const char *name = sensor->GetValueName(&err);
            if (err == OrbCamOk && name)
                r.temperatureSource = QString::fromUtf8(name);
        }
    }
    r.exposure = numberOf(params, { "CurrentExposureTime" });
    if (!r.exposure)
        r.exposure
            = numberOf(params, { "ExposureTime", "ExposureTimeAbs" }, nullptr, &r.exposureUnit);
    r.frameTime = numberOf(params, { "CurrentFrameTime" }, &r.time);
    if (r.frameTime) {
        r.fps = r.frameTime->isEmpty()
            ? QString()
            : QString::number(r.time == 0 ? 0.0 : 1000000.0 / r.time, 'f', 2);
    } else {
        // A resulting frame rate (the one the camera achieves, not the one
        // asked for), in frames per second; the frame time follows from it.
        double rate = 0;
        r.fps = numberOf(
            params,
            { "AcquisitionResultingFrameRate", "ResultingFrameRate", "ResultingFrameRateAbs" },
            &rate);
        if (r.fps && !r.fps->isEmpty()) {
            r.fps = QString::number(rate, 'f', 2);
            r.frameTime = rate > 0 ? QString::number(1000000.0 / rate, 'f', 0) : QString();
        } else if (r.fps) {
            r.frameTime = QString();
        }
    }
    return r;
}

} // namespace

namespace {

void showIn(QLineEdit *field, const std::optional<QString> &text)
{
    if (text)
        field->setText(*text);
}

} // namespace

// A column whose frame is not selected on the camera cannot be read without
// changing the selector behind the user's back: it keeps its last reading,
// greyed and said to be not current.
void OrbCamConfigPrivate::markColumn(bool b, bool current)
{
    const QString why = current ? QString()
                                : OrbCamConfig::tr("Not current: the camera has frame %1 selected")
                                      .arg(b ? QStringLiteral("A") : QStringLiteral("B"));
    for (QLineEdit *field : b
             ? QVector<QLineEdit *> { ui.lineEditSizeFrameB, ui.lineEditFpsFrameB,
                                      ui.lineEditFtmFrameB, ui.lineEditExpFrameB }
             : QVector<QLineEdit *> { ui.lineEditSizeFrameA, ui.lineEditFpsFrameA,
                                      ui.lineEditFtmFrameA, ui.lineEditExpFrameA }) {
        field->setEnabled(current);
        field->setToolTip(why);
    }
}

// Asks the reader for the panel's values; what it reads comes back through
// the hand-off. A refresh asked for while a read is out follows it, once.
void OrbCamConfigPrivate::refreshFrames()
{
    if (!params || !reader)
        return;
    if (panelReading) {
        panelAgain = true;
        return;
    }
    panelReading = true;
    OrbGenParam::Array *from = params;
    OrbGenParam::Enum *frameSelector = selector;
    reader->post(this, [this, from, frameSelector, generation = panelGeneration] {
        const PanelReading reading = readPanel(from, frameSelector);
        handOff.post([this, reading, generation] {
            if (generation != panelGeneration)
                return;
            panelReading = false;
            if (!params)
                return;
            applyPanel(reading);
            if (std::exchange(panelAgain, false))
                refreshFrames();
        });
    });
}

// The selected frame's values go into its own column only; the other column
// is marked as not current. The window leaves the rule that reads whatever
// the selector names into a column chosen by the frame mode: that put frame
// A's numbers under frame B's heading. A column never shows another frame's
// values.
void OrbCamConfigPrivate::applyPanel(const PanelReading &r)
{
    const bool b = frameABSupport && r.b;
    markColumn(b, true);
    if (frameABSupport)
        markColumn(!b, false);
    showIn(ui.lineEditTemperature, r.temperature);
    if (r.width || r.height)
        showIn(b ? ui.lineEditSizeFrameB : ui.lineEditSizeFrameA,
               r.width.value_or(QString()) + QStringLiteral("x") + r.height.value_or(QString()));
    showIn(b ? ui.lineEditExpFrameB : ui.lineEditExpFrameA, r.exposure);
    showIn(b ? ui.lineEditFtmFrameB : ui.lineEditFtmFrameA, r.frameTime);
    showIn(b ? ui.lineEditFpsFrameB : ui.lineEditFpsFrameA, r.fps);
    if (!r.exposureUnit.isEmpty())
        ui.lblExposure->setText(r.exposureUnit);
    if (!r.temperatureUnit.isEmpty())
        ui.lblTemperature->setText(r.temperatureUnit);
    ui.lineEditTemperature->setToolTip(
        r.temperatureSource.isEmpty()
            ? QString()
            : OrbCamConfig::tr("Temperature of: %1").arg(r.temperatureSource));
}

void OrbCamConfigPrivate::clearPanel()
{
    for (QLineEdit *field : panelFields()) {
        field->clear();
        field->setEnabled(true);
        field->setToolTip(QString());
    }
}

void OrbCamConfigPrivate::tick()
{
    switch (connectionEvent.exchange(NoEvent)) {
    case Lost:
        forgetParameters(false);
        dialogsTo(nullptr);
        clearPanel();
        updateStatusBar();
        return;
    case Returned: {
        OrbCam::Device *same = device;
        dialogsTo(same);
        initialise(same);
        return;
    }
    default:
        break;
    }
    if (!params)
        return;
    // Each column reads only while its frame is selected; the other one is
    // marked as not current.
    refreshFrames();
}

void OrbCamConfigPrivate::updateStatusBar()
{
    if (params) {
        auto *model = param<OrbGenParam::String>("DeviceModelName");
        statusText->setText(model ? QString::fromUtf8(model->GetValue().c_str())
                                  : OrbCamConfig::tr("Unknown"));
        statusIcon->setPixmap(connectedIcon);
    } else {
        statusText->setText(OrbCamConfig::tr("Disconnected"));
        statusIcon->setPixmap(disconnectedIcon);
    }
}

void OrbCamConfigPrivate::finalAdjustment()
{
    ui.pushBtnFrameAB->setVisible(frameABSupport && ui.actionFrame_A_B->isChecked());
    const int limit = frameABSupport
        ? ui.lineEditExpFrameA->fontMetrics().horizontalAdvance(QStringLiteral("xxxxxxxxxxxx"))
        : QWIDGETSIZE_MAX;
    for (QLineEdit *field : panelFields())
        if (field != ui.lineEditTemperature)
            field->setMaximumWidth(limit);
    for (QWidget *columnB :
         { static_cast<QWidget *>(ui.lblFrameB), static_cast<QWidget *>(ui.lineEditSizeFrameB),
           static_cast<QWidget *>(ui.lineEditFpsFrameB),
           static_cast<QWidget *>(ui.lineEditFtmFrameB),
           static_cast<QWidget *>(ui.lineEditExpFrameB) })
        columnB->setVisible(frameABSupport);
    refreshFrames();
    showPanes();
}

// A dialog with nothing to show on this camera is not offered at all.
void OrbCamConfigPrivate::showPanes()
{
    for (const Pane &pane : panes()) {
        const bool offered
            = pane.button == ui.pushBtnFrameAB ? frameABSupport : isOffered(pane.dialog);
        pane.action->setVisible(offered);
        const bool visible = offered && pane.action->isChecked();
        pane.button->setVisible(visible);
        if (!visible) {
            const QSignalBlocker quiet(pane.button);
            pane.button->setChecked(false);
            pane.dialog->close();
        }
    }
}

void OrbCamConfigPrivate::refreshAbout()
{
    const QString missing = QStringLiteral("N/A");
    const std::pair<QLabel *, const char *> texts[]
        = { { aboutUi.lblDeviceManufacturerName, "DeviceVendorName" },
            { aboutUi.lblDeviceModelName, "DeviceModelName" },
            { aboutUi.lblDeviceFamilyName, "DeviceFamilyName" },
            { aboutUi.lblDeviceVersion, "DeviceVersion" },
            { aboutUi.lblFirmwareVersion, "DeviceFirmwareVersion" },
            { aboutUi.lblDeviceManufacturerInfo, "DeviceManufacturerInfo" },
            { aboutUi.lblDeviceSerialNumber, "DeviceSerialNumber" },
            { aboutUi.lblDeviceUserDefinedName, "DeviceUserID" } };
    for (const auto &[label, name] : texts) {
        auto *text = param<OrbGenParam::String>(name);
        label->setText(text ? QString::fromUtf8(text->GetValue().c_str()) : missing);
    }
    auto *sensor = param<OrbGenParam::Enum>("SensorType");
    aboutUi.lblSensorType->setText(sensor ? QString::fromUtf8(sensor->GetValueName()) : missing);
    const std::pair<QLabel *, const char *> numbers[]
        = { { aboutUi.lblRgsID, "RgsID" },           { aboutUi.lblFpgaID, "FpgaID" },
            { aboutUi.lblEpcsID, "EpcsID" },         { aboutUi.lblFirmwareImage, "FirmwareImage" },
            { aboutUi.lblCustomerID, "CustomerID" }, { aboutUi.lblFamilyID, "FamilyID" },
            { aboutUi.lblXmlVersion, "XmlVersion" } };
    for (const auto &[label, name] : numbers) {
        auto *number = param<OrbGenParam::Int>(name);
        label->setText(number ? QString::number(number->GetValue()) : missing);
    }
}

void OrbCamConfigPrivate::dialogsTo(OrbCam::Device *forDialogs)
{
    for (const Pane &pane : panes())
        pane.dialog->SetDevice(forDialogs);
    showPanes();
    refreshAbout();
}

// The dialogs let go of the device before the window does; a device (and
// system) the window opened itself is released.
void OrbCamConfigPrivate::letGo()
{
    unregisterEvents();
    // No callback of this device comes any more: an event it left belongs to
    // the connection that ends here. (The same device again keeps its
    // pending event: a loss not yet acted on must still be.)
    connectionEvent = NoEvent;
    forgetParameters();
    dialogsTo(nullptr);
    if (ownsDevice && device)
        OrbCam_ReleaseDevice(device);
    device = nullptr;
    ownsDevice = false;
    if (system) {
        OrbCam_ReleaseSystem(system);
        system = nullptr;
    }
}

void OrbCamConfigPrivate::disconnectDevice()
{
    letGo();
    initialise(nullptr);
    clearPanel();
}

// The selector runs first, while the window stays connected: only a camera
// chosen and opened replaces the one the window has, and Cancel leaves
// everything as it was.
void OrbCamConfigPrivate::connectDevice()
{
    OrbCam::System *from = OrbCam_GetSystem();
    if (!from)
        return;
    OrbCam::Device *opened = selectAndOpen(from);
    if (!opened) {
        OrbCam_ReleaseSystem(from);
        return;
    }
    disconnectDevice();
    system = from;
    initialise(opened);
    dialogsTo(opened);
    ownsDevice = true;
}

OrbCamConfig::OrbCamConfig(OrbCam::Device *device, QWidget *parent, Qt::WindowFlags flags)
    : QMainWindow(parent, flags)
    , d_ptr(new OrbCamConfigPrivate(this))
{
    Q_D(OrbCamConfig);
    d->initialise(device);
    if (d->device)
        d->dialogsTo(d->device);
}

OrbCamConfig::~OrbCamConfig()
{
    Q_D(OrbCamConfig);
    d->timer->stop();
    d->letGo();
}

void OrbCamConfig::SetDevice(OrbCam::Device *device)
{
    Q_D(OrbCamConfig);
    // A device the window opened itself is released here, not merely
    // disowned: the host never had it, so nobody else could.
    if (device != d->device) {
        d->letGo();
    } else {
        d->unregisterEvents();
        d->forgetParameters();
    }
    d->initialise(device);
    d->dialogsTo(device);
}

void OrbCamConfig::showEvent(QShowEvent *event)
{
    d_func()->refreshFrames();
    QMainWindow::showEvent(event);
}

} // namespace OrbGui

void ShowCamConfigDialog(OrbCam::Device *device, WId parent)
{
    OrbGui::ensureApplication();
    QWidget *parentWidget = parent ? QWidget::find(parent) : nullptr;
    OrbGui::OrbCamConfig window(device, parentWidget);
    window.show();
}
