#include <OrbGui/orbcamconfigframeabdialog.h>

#include "camconfigdialog_p.h"
#include "common/devicereader.h"
#include "ui_orbcamconfigframeabdialog.h"

#include <OrbGui/qtorbdoubleslider.h>
#include <OrbGui/qtorbdoublespinboxval.h>
#include <OrbGui/qtorbgainslider.h>
#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinbox.h>

#include <QButtonGroup>
#include <QMessageBox>
#include <QTimer>

#include <cmath>
#include <utility>

namespace OrbGui {

namespace {

const char lineTimeName[] = "Frame_LineTime";
const char exposureLinesName[] = "Frame_ExposureLines";
const char exposureClocksName[] = "Frame_ExposureClocks";
const char triggerModeName[] = "TriggerMode";
const char coarseGainName[] = "Frame_DigitalCourseGain";
const char selectorName[] = "FrameAB_Selector";
const char frameModeName[] = "FrameMode";
const char fineGainName[] = "Frame_DigitalFineGain";

// value * multiplier / divisor, rounded half up and truncated toward zero;
// 0 for a divisor of 0.
long scaled(long value, qint64 multiplier, qint64 divisor)
{
    if (divisor == 0)
        return 0;
    return static_cast<long>(
        std::trunc(double(value) * double(multiplier) / double(divisor) + 0.5));
}

// The digital gain is 2^coarse * (1 + fine / 64).
double digitalGain(qint64 coarse, qint64 fine)
{
    return std::ldexp(1.0 + double(fine) / 64.0, static_cast<int>(coarse));
}

// The split of a gain into its coarse power of two and fine 64ths of it.
void splitDigitalGain(double gain, qint64 *coarse, qint64 *fine)
{
    qint64 whole = static_cast<qint64>(gain);
    qint64 base = 1;
    *coarse = 0;
    if (whole > 1) {
        while (whole > 1) {
            whole >>= 1;
            ++*coarse;
        }
        base = qint64(1) << *coarse;
    }
    *fine = static_cast<qint64>((gain - double(base)) / double(base) * 64.0);
}

} // namespace

class OrbCamConfigFrameABDialogPrivate : public CamConfigDialogPrivate,
                                         public IOrbCamConfigIntConverter,
                                         public OrbGenParam::ParamEventSink {
public:
    explicit OrbCamConfigFrameABDialogPrivate(OrbCamConfigFrameABDialog *q)
        : q_ptr(q)
        , handOff(q)
    {
    }
    ~OrbCamConfigFrameABDialogPrivate() override { stopListening(); }

    // The fixed frame period: lines on the device, microseconds shown.
    long ToControl(long value, OrbGenParam::Int *) override
    {
        return scaled(value, lineTime, pixelClock);
    }
    long ToDevice(long value, OrbGenParam::Int *) override
    {
        return scaled(value, pixelClock, lineTime);
    }
    void OnParameterUpdate(OrbGenParam::Param *param) override;

    void prepare();
    void init(OrbCam::Device *device);
    void stopListening();
    void listen(OrbGenParam::Param *param);
    void parameterChanged(const QString &name);
    void frameModeRule(bool moveTab);
    void tabRule(int index);
    void updateExposureTime();
    void exposureSplit(int microseconds);
    void setUpDigitalGain();
    void showDigitalGain();
    void gainSplit(double gain);
    void showFrameSize();
    void readFrameSizeLater();
    void connectExposureTime();
    void readFrameValues();
    void followCamera();

    OrbCamConfigFrameABDialog *const q_ptr;
    Ui_OrbCamConfigFrameABDialog ui;
    bool triggerActive = false;
    qint64 pixelClock = 160;
    qint64 lineTime = 0;
    qint64 exposureLines = 0, exposureLinesMin = 0, exposureLinesMax = 0;
    qint64 exposureClocks = 0, exposureClocksMin = 0, exposureClocksMax = 0;
    qint64 coarseGain = 0, fineGain = 0;
    bool gainDragged = false;
    OrbGenParam::Int *widthActual = nullptr;
    OrbGenParam::Int *heightActual = nullptr;
    QTimer *refreshTimer = nullptr;
    QButtonGroup *shutter = nullptr, *adc = nullptr, *exposureControl = nullptr,
                 *decimation = nullptr, *analogGain = nullptr, *areaOfInterest = nullptr;
    QVector<OrbGenParam::Param *> listened;
    GuiHandOff handOff;
    // The current frame size is read once a second on the device's reader,
    // while the dialog is shown, never on the GUI thread.
    std::shared_ptr<DeviceReader> reader;
    bool sizeReading = false;
    uint64_t sizeGeneration = 0;
};

void OrbCamConfigFrameABDialogPrivate::prepare()
{
    OrbCamConfigFrameABDialog *q = q_ptr;
    ui.setupUi(q);
    const QString unit = QStringLiteral("%1s").arg(QChar(0x03BC));
    const QString bracket = QStringLiteral("[%1]:").arg(unit);
    ui.spBoxDualVideo->setLeftLabelText(
        OrbCamConfigFrameABDialog::tr("Dual Video\nLine Time [pclk]:"));
    ui.spBoxExpTime->setLeftLabelText(OrbCamConfigFrameABDialog::tr("Exposure Time ") + bracket);
    ui.spBoxFixedFramePeriodValue->setLeftLabelText(bracket);
    ui.spBoxFrameLineTime->setLeftLabelText(OrbCamConfigFrameABDialog::tr("Line Time [pclk]:"));
    ui.spBoxFrameOffsetX->setLeftLabelText(OrbCamConfigFrameABDialog::tr("OffsetX:"));
    ui.spBoxFrameOffsetY->setLeftLabelText(OrbCamConfigFrameABDialog::tr("OffsetY:"));
    ui.spBoxFrameWidth->setLeftLabelText(OrbCamConfigFrameABDialog::tr("Width: "));
    ui.spBoxFrameHeight->setLeftLabelText(OrbCamConfigFrameABDialog::tr("Height:"));
    ui.spBoxDigitalGain->setLeftLabelText(OrbCamConfigFrameABDialog::tr("Digital Gain:"));
    ui.spBoxBlackLevel->setLeftLabelText(OrbCamConfigFrameABDialog::tr("Black Level:"));
    ui.spBoxExpLines->setLeftLabelText(OrbCamConfigFrameABDialog::tr("Lines:"));
    ui.spBoxExpClocks->setLeftLabelText(OrbCamConfigFrameABDialog::tr("Clocks:"));
    ui.spBoxNumberOfFrameAs->setLeftLabelText(OrbCamConfigFrameABDialog::tr("Frames A:"));
    ui.spBoxNumberOfFrameBs->setLeftLabelText(OrbCamConfigFrameABDialog::tr("Frames B:"));
    // The gain is shown as the camera holds it (2^coarse * (1 + fine/64)
    // needs six decimals), neither box nor slider snapped to a grid of
    // their own. A dragged gain goes to the nearest the camera takes below
    // it, where the handle stands; a typed one it cannot take is confirmed
    // with the value that would be written.
    ui.spBoxDigitalGain->setDecimals(6);
    QObject::connect(ui.spBoxDigitalGain->slider(), &QtOrbDoubleSlider::sliderPressed, q,
                     [this] { gainDragged = true; });
    for (QLabel *label : { ui.lblWdrE1MicroSec, ui.lblWdrE2MicroSec, ui.lblWdrE3MicroSec })
        label->setText(unit);
    auto group = [q](std::initializer_list<QAbstractButton *> buttons) {
        auto *made = new QButtonGroup(q);
        for (QAbstractButton *button : buttons)
            made->addButton(button);
        return made;
    };
    shutter = group({ ui.radioBtnRollingShutter, ui.radioBtnGlobalShutter });
    adc = group({ ui.radioBtnAdcSelector10b, ui.radioBtnAdcSelector12b });
    exposureControl = group({ ui.radioBtnExpOff, ui.radioBtnExpTrigger, ui.radioBtnExpInternal });
    decimation = group(
        { ui.radioBtnSubsampleOff, ui.radioBtnSubsampleSubsampling, ui.radioBtnSubsampleAverage });
    analogGain
        = group({ ui.radioBtnAGain1x, ui.radioBtnAGain2x, ui.radioBtnAGain4x, ui.radioBtnAGain8x });
    areaOfInterest = group({ ui.radioBtnFullFrame, ui.radioBtnQFHDFrame, ui.radioBtnCustomFrame });
    for (QAbstractButton *button : areaOfInterest->buttons())
        button->hide();
}

void OrbCamConfigFrameABDialogPrivate::listen(OrbGenParam::Param *param)
{
    if (!param)
        return;
    param->UnregisterEventSink(this);
    param->RegisterEventSink(this);
    listened.push_back(param);
}

void OrbCamConfigFrameABDialogPrivate::stopListening()
{
    for (OrbGenParam::Param *param : qAsConst(listened))
        param->UnregisterEventSink(this);
    listened.clear();
    // A size read under way uses the parameters: it ends first.
    if (reader)
        reader->cancel(this);
    sizeReading = false;
    ++sizeGeneration;
    handOff.invalidate();
}

void OrbCamConfigFrameABDialogPrivate::init(OrbCam::Device *newDevice)
{
    OrbCamConfigFrameABDialog *q = q_ptr;
    stopListening();
    rebind(newDevice);
    reader = params ? DeviceReader::of(params->GetNodeMap()) : nullptr;
    QObject::disconnect(ui.spBoxDigitalGain, nullptr, nullptr, nullptr);
    QObject::disconnect(ui.spBoxExpTime, nullptr, nullptr, nullptr);
    if (!params) {
        q->setEnabled(false);
        widthActual = heightActual = nullptr;
        delete refreshTimer;
        refreshTimer = nullptr;
        return;
    }
    q->setEnabled(true);

    OrbCamErr err = OrbCamOk;
    auto *clock = param<OrbGenParam::Int>("PixelClock");
    pixelClock = clock ? clock->GetValue(&err) : 0;
    if (!clock || err != OrbCamOk)
        pixelClock = 160;
    readFrameValues();
    if (auto *trigger = param<OrbGenParam::Enum>(triggerModeName))
        triggerActive = trigger->GetValue() > 0;
    for (const char *name :
         { exposureLinesName, exposureClocksName, lineTimeName, "Frame_FixedFramePeriodValue" })
        listen(param<OrbGenParam::Int>(name));
    listen(param<OrbGenParam::Enum>(triggerModeName));
    // The frame shown and the frame mode may be changed elsewhere (the tree
    // view, the host): the dialog follows them as it follows its own.
    listen(param<OrbGenParam::Enum>(selectorName));
    listen(param<OrbGenParam::Enum>(frameModeName));

    mapper.mapEnumParam(param<OrbGenParam::Enum>(frameModeName), ui.cmBoxFrameMode);
    QObject::connect(ui.cmBoxFrameMode, &QComboBox::currentTextChanged, ui.cmBoxFrameMode,
                     [this] { frameModeRule(true); });
    const std::pair<const char *, QComboBox *> choices[]
        = { { "Frame_SubsamplingM", ui.cmBoxSubsamplingM },
            { "Frame_SubsamplingP", ui.cmBoxSubsamplingP },
            { "Frame_Averaging", ui.cmBoxAveraging },
            { "Frame_WdrP1", ui.cmBoxWdrP1 },
            { "Frame_WdrP2", ui.cmBoxWdrP2 },
            { "Frame_WdrP3", ui.cmBoxWdrP3 } };
    for (const auto &[name, box] : choices)
        mapper.mapEnumParam(param<OrbGenParam::Enum>(name), box);
    mapper.mapIntParam(param<OrbGenParam::Int>(exposureLinesName), ui.spBoxExpLines,
                       { ui.spBoxExpTime });
    mapper.mapIntParam(param<OrbGenParam::Int>(exposureClocksName), ui.spBoxExpClocks,
                       { ui.spBoxExpTime });
    const std::pair<const char *, QtOrbSpinBox *> numbers[]
        = { { "Frame_OffsetX", ui.spBoxFrameOffsetX }, { "Frame_OffsetY", ui.spBoxFrameOffsetY },
            { "Frame_Width", ui.spBoxFrameWidth },     { "Frame_Height", ui.spBoxFrameHeight },
            { "Frame_WdrE1", ui.spBoxWdrE1 },          { "Frame_WdrE2", ui.spBoxWdrE2 },
            { "Frame_WdrE3", ui.spBoxWdrE3 } };
    for (const auto &[name, box] : numbers)
        mapper.mapIntParam(param<OrbGenParam::Int>(name), box);
    const std::pair<const char *, QButtonGroup *> radios[]
        = { { "ShutterMode", shutter },
            { "SensorADCBitDepth", adc },
            { "Frame_ExposureControl", exposureControl },
            { "Frame_DecimationMode", decimation },
            { "Frame_AnalogGain", analogGain } };
    for (const auto &[name, group] : radios)
        mapper.mapEnumParam(param<OrbGenParam::Enum>(name), group);
    QObject::connect(exposureControl, &QButtonGroup::idToggled, exposureControl,
                     [this](int, bool checked) {
                         if (checked)
                             updateExposureTime();
                     });

    ui.spBoxExpTime->slider()->setScaleType(QtOrbSlider::Logarithmic);
    ui.spBoxExpTime->setValidate(false);
    ui.spBoxExpTime->setValidateTyping(false);
    connectExposureTime();
    ui.spBoxFixedFramePeriodValue->slider()->setScaleType(QtOrbSlider::Logarithmic);
    mapper.mapIntParam(param<OrbGenParam::Int>("Frame_FixedFramePeriodValue"),
                       ui.spBoxFixedFramePeriodValue, this);
    // Microseconds are no grid of the camera's: a period is converted to
    // lines, not snapped to a rounded step of microseconds.
    ui.spBoxFixedFramePeriodValue->setValidate(false);
    mapper.mapIntParam(param<OrbGenParam::Int>("Frame_BlackLevel"), ui.spBoxBlackLevel, nullptr);
    mapper.mapEnumParam(param<OrbGenParam::Enum>(selectorName), ui.tabFrames);
    QObject::connect(ui.tabFrames, &QTabWidget::currentChanged, ui.tabFrames,
                     [this](int index) { tabRule(index); });
    mapper.mapBooleanParam(param<OrbGenParam::Boolean>("Frame_FixedFramePeriodEnable"),
                           ui.chBoxFixedFramePeriodEnable);
    QObject::connect(ui.chBoxFixedFramePeriodEnable, &QCheckBox::clicked,
                     ui.chBoxFixedFramePeriodEnable, [this] {
                         if (ui.spBoxFixedFramePeriodValue->isEnabled())
                             mapper.updateSliderSpinBox(
                                 param<OrbGenParam::Int>("Frame_FixedFramePeriodValue"),
                                 ui.spBoxFixedFramePeriodValue, this);
                         updateExposureTime();
                     });
    mapper.mapBooleanParam(param<OrbGenParam::Boolean>("Frame_WdrEnable"), ui.chBoxWdrEnable);

    widthActual = param<OrbGenParam::Int>("Frame_WidthActual");
    heightActual = param<OrbGenParam::Int>("Frame_HeightActual");
    delete refreshTimer;
    refreshTimer = new QTimer(q);
    refreshTimer->setInterval(1000);
    QObject::connect(refreshTimer, &QTimer::timeout, q, [this] {
        if (q_ptr->isVisible())
            readFrameSizeLater();
    });
    refreshTimer->start();
    showFrameSize();

    setUpDigitalGain();

    for (QWidget *box :
         { static_cast<QWidget *>(ui.spBoxDualVideo), static_cast<QWidget *>(ui.spBoxFrameLineTime),
           static_cast<QWidget *>(ui.spBoxNumberOfFrameAs),
           static_cast<QWidget *>(ui.spBoxNumberOfFrameBs) }) {
        box->setEnabled(false);
        OrbCamConfigMapper::clearControl(box);
    }
    // Opening the dialog writes nothing: the tab shown is the frame the
    // camera has selected, not one the frame mode would select.
    frameModeRule(false);
    tabRule(ui.tabFrames->currentIndex());
    updateExposureTime();
}

// The values of the selected frame that the dialog's own rules compute
// with.
void OrbCamConfigFrameABDialogPrivate::readFrameValues()
{
    if (auto *lines = param<OrbGenParam::Int>(exposureLinesName)) {
        exposureLines = lines->GetValue();
        exposureLinesMin = lines->GetMin();
        exposureLinesMax = lines->GetMax();
    }
    if (auto *clocks = param<OrbGenParam::Int>(exposureClocksName)) {
        exposureClocks = clocks->GetValue();
        exposureClocksMin = clocks->GetMin();
        exposureClocksMax = clocks->GetMax();
    }
    if (auto *time = param<OrbGenParam::Int>(lineTimeName))
        lineTime = time->GetValue();
    if (auto *coarse = param<OrbGenParam::Int>(coarseGainName))
        coarseGain = coarse->GetValue();
    if (auto *fine = param<OrbGenParam::Int>(fineGainName))
        fineGain = fine->GetValue();
}

// Another frame selected, or another frame mode, whoever chose it: every
// frame control shows the frame now selected, on the page of its tab.
// Nothing is written: the tab follows the camera's selector, not the mode.
void OrbCamConfigFrameABDialogPrivate::followCamera()
{
    readFrameValues();
    mapper.refreshAll();
    tabRule(ui.tabFrames->currentIndex());
    showFrameSize();
    showDigitalGain();
}

namespace {

QString frameSizeText(OrbGenParam::Int *width, OrbGenParam::Int *height)
{
    QString size;
    if (width)
        size += QString::number(width->GetValue());
    size += QStringLiteral("x");
    if (height)
        size += QString::number(height->GetValue());
    return size;
}

} // namespace

void OrbCamConfigFrameABDialogPrivate::showFrameSize()
{
    ui.lineEditFrameCurrentSize->setText(frameSizeText(widthActual, heightActual));
}

void OrbCamConfigFrameABDialogPrivate::readFrameSizeLater()
{
    if (!reader || sizeReading)
        return;
    sizeReading = true;
    reader->post(this,
                 [this, width = widthActual, height = heightActual, generation = sizeGeneration] {
                     const QString size = frameSizeText(width, height);
                     handOff.post([this, size, generation] {
                         if (generation != sizeGeneration)
                             return;
                         sizeReading = false;
                         ui.lineEditFrameCurrentSize->setText(size);
                     });
                 });
}

// The line time and the frame counts follow the frame mode between their
// controls; in a single-frame mode the other frame's tab is closed. With
// moveTab, the mode's frame also becomes the current tab (which selects it
// on the camera): only when the user chose the mode.
void OrbCamConfigFrameABDialogPrivate::frameModeRule(bool moveTab)
{
    const QString mode = ui.cmBoxFrameMode->currentText();
    auto *lineTimeParam = param<OrbGenParam::Int>(lineTimeName);
    auto *framesA = param<OrbGenParam::Int>("NumberOfFrameAs");
    auto *framesB = param<OrbGenParam::Int>("NumberOfFrameBs");
    if (mode == QLatin1String("FrameA") || mode == QLatin1String("FrameB")) {
        const bool a = mode == QLatin1String("FrameA");
        if (moveTab)
            ui.tabFrames->setCurrentIndex(a ? 0 : 1);
        // Closing the current tab would move to the other one, and so select
        // that frame on the camera: without the user's choice it stays open.
        const int current = ui.tabFrames->currentIndex();
        ui.tabFrames->setTabEnabled(0, a || current == 0);
        ui.tabFrames->setTabEnabled(1, !a || current == 1);
        if (!ui.spBoxFrameLineTime->isEnabled())
            mapper.mapIntParam(lineTimeParam, ui.spBoxFrameLineTime, nullptr);
        if (ui.spBoxNumberOfFrameAs->isEnabled()) {
            mapper.unmapParam(framesA, ui.spBoxNumberOfFrameAs);
            mapper.unmapParam(framesB, ui.spBoxNumberOfFrameBs);
        }
    } else {
        ui.tabFrames->setTabEnabled(0, true);
        ui.tabFrames->setTabEnabled(1, true);
        if (!ui.spBoxDualVideo->isEnabled())
            mapper.mapIntParam(lineTimeParam, ui.spBoxDualVideo, nullptr);
        if (!ui.spBoxNumberOfFrameAs->isEnabled()) {
            mapper.mapIntParam(framesA, ui.spBoxNumberOfFrameAs);
            mapper.mapIntParam(framesB, ui.spBoxNumberOfFrameBs);
        }
    }
}

// The frame controls exist once and stand on the current tab's page.
void OrbCamConfigFrameABDialogPrivate::tabRule(int index)
{
    QBoxLayout *page = index == 1 ? ui.verticalLayoutFrameB : ui.verticalLayoutFrameA;
    if (ui.frameControls->parentWidget() != page->parentWidget())
        page->addWidget(ui.frameControls);
    frameModeRule(false);
}

void OrbCamConfigFrameABDialogPrivate::connectExposureTime()
{
    QObject::connect(ui.spBoxExpTime, QOverload<int>::of(&QtOrbSliderSpinBox::valueChanged),
                     ui.spBoxExpTime, [this](int microseconds) { exposureSplit(microseconds); });
}

void OrbCamConfigFrameABDialogPrivate::updateExposureTime()
{
    if (!ui.spBoxExpTime->isEnabled())
        return;
    const auto perClock
        = [this](qint64 clocks) { return pixelClock == 0 ? 0 : clocks / pixelClock; };
    const qint64 longest = ui.chBoxFixedFramePeriodEnable->isChecked()
        ? ui.spBoxFixedFramePeriodValue->value()
        : perClock(exposureClocksMax + exposureLinesMax * lineTime);
    const qint64 value = perClock(exposureClocks + exposureLines * lineTime);
    // The box shows the camera's exposure even where it lies beyond the
    // longest one the period allows: a limit restricts what the user
    // enters, never what the camera is shown to hold.
    const qint64 maximum = qMax(longest, value);
    // The range starts at the shortest exposure the camera takes (rounded
    // up), not at 0: a shorter time would split into fewer lines than the
    // camera accepts, the write would be refused, and the box would show a
    // time the camera does not have.
    const qint64 shortest = exposureClocksMin + exposureLinesMin * lineTime;
    const qint64 minimum = pixelClock == 0 ? 0 : (shortest + pixelClock - 1) / pixelClock;
    const auto narrow = [](qint64 v) { return static_cast<int>(qBound<qint64>(0, v, INT_MAX)); };
    // Showing the camera's exposure is no change of it.
    QObject::disconnect(ui.spBoxExpTime, nullptr, nullptr, nullptr);
    ui.spBoxExpTime->setRange(narrow(qMin(minimum, maximum)), narrow(maximum));
    ui.spBoxExpTime->setValue(narrow(value));
    connectExposureTime();
}

void OrbCamConfigFrameABDialogPrivate::exposureSplit(int microseconds)
{
    const qint64 total = qint64(microseconds) * pixelClock;
    const qint64 lines = lineTime == 0 ? 0 : total / lineTime;
    const qint64 clocks = total - lines * lineTime;
    exposureLines = lines;
    exposureClocks = clocks;
    ui.spBoxExpLines->setValue(static_cast<int>(lines));
    ui.spBoxExpClocks->setValue(static_cast<int>(clocks));
}

void OrbCamConfigFrameABDialogPrivate::setUpDigitalGain()
{
    qint64 coarseMin = 0, coarseMax = 0, fineMin = 0, fineMax = 0;
    if (auto *coarse = param<OrbGenParam::Int>(coarseGainName)) {
        coarseGain = coarse->GetValue();
        coarseMin = coarse->GetMin();
        coarseMax = coarse->GetMax();
        listen(coarse);
    }
    if (auto *fine = param<OrbGenParam::Int>(fineGainName)) {
        fineGain = fine->GetValue();
        fineMin = fine->GetMin();
        fineMax = fine->GetMax();
        listen(fine);
    } else {
        fineGain = 0;
    }
    QtOrbGainSlider *gain = ui.spBoxDigitalGain;
    gain->setEnabled(param<OrbGenParam::Int>(coarseGainName) != nullptr
                     || param<OrbGenParam::Int>(fineGainName) != nullptr);
    gain->setValidate(false);
    gain->setValidateTyping(false);
    gain->setRange(digitalGain(coarseMin, fineMin), digitalGain(coarseMax, fineMax));
    gain->setSingleStep(0.125);
    showDigitalGain();
}

void OrbCamConfigFrameABDialogPrivate::showDigitalGain()
{
    QtOrbGainSlider *gain = ui.spBoxDigitalGain;
    QObject::disconnect(gain, nullptr, nullptr, nullptr);
    {
        // The slider stands on its grid; it must not pull the box, which
        // shows the camera's exact gain, onto it.
        const QSignalBlocker quietSlider(gain->slider());
        gain->setValue(digitalGain(coarseGain, fineGain));
    }
    QObject::connect(gain, QOverload<double>::of(&QtOrbGainSlider::valueChanged), gain,
                     [this](double value) { gainSplit(value); });
}

void OrbCamConfigFrameABDialogPrivate::gainSplit(double gain)
{
    auto *coarse = param<OrbGenParam::Int>(coarseGainName);
    auto *fine = param<OrbGenParam::Int>(fineGainName);
    const auto writable = [](OrbGenParam::Int *part) {
        return !part || (part->IsAvailable() && part->IsWritable());
    };
    // As the mapper does: a gain that cannot be written now is no failure
    // of the user's; the box goes back to what the camera holds.
    if ((!coarse && !fine) || !writable(coarse) || !writable(fine)) {
        gainDragged = false;
        readFrameValues();
        showDigitalGain();
        return;
    }
    qint64 newCoarse = 0, newFine = 0;
    splitDigitalGain(gain, &newCoarse, &newFine);
    const double written = digitalGain(newCoarse, newFine);
    const bool dragged = std::exchange(gainDragged, false);
    if (!dragged && std::fabs(written - gain) > 1e-9) {
        QtOrbGainSlider *box = ui.spBoxDigitalGain;
        const QString text
            = OrbCamConfigFrameABDialog::tr("The camera cannot take a digital gain of %1 exactly.\n"
                                            "Write %2 instead?")
                  .arg(QLocale::c().toString(gain, 'f', box->decimals()),
                       QLocale::c().toString(written, 'f', box->decimals()));
        QMessageBox ask(QMessageBox::Question, OrbCamConfigFrameABDialog::tr("Digital Gain"), text,
                        QMessageBox::Yes | QMessageBox::No, q_ptr);
        ask.setObjectName(QStringLiteral("gainQuestion"));
        ask.setDefaultButton(QMessageBox::No);
        if (ask.exec() != QMessageBox::Yes) {
            showDigitalGain();
            return;
        }
    }
    coarseGain = newCoarse;
    fineGain = newFine;
    if (coarse)
        OrbCamConfigMapper::showErrorMessage(coarse->SetValue(coarseGain), ui.spBoxDigitalGain,
                                             coarse);
    if (fine)
        OrbCamConfigMapper::showErrorMessage(fine->SetValue(fineGain), ui.spBoxDigitalGain, fine);
    showDigitalGain();
}

void OrbCamConfigFrameABDialogPrivate::OnParameterUpdate(OrbGenParam::Param *param)
{
    if (!param)
        return;
    const QString name = QString::fromUtf8(param->GetName());
    handOff.post([this, name] { parameterChanged(name); });
}

void OrbCamConfigFrameABDialogPrivate::parameterChanged(const QString &name)
{
    if (!device || !params)
        return;
    if (name == QLatin1String(selectorName) || name == QLatin1String(frameModeName)) {
        followCamera();
        updateExposureTime();
        return;
    }
    const QByteArray key = name.toUtf8();
    if (auto *integer = params->GetInt(key.constData()); integer && integer->IsAvailable()) {
        if (name == QLatin1String(lineTimeName)) {
            lineTime = integer->GetValue();
            if (ui.spBoxFixedFramePeriodValue->isEnabled())
                mapper.updateSliderSpinBox(param<OrbGenParam::Int>("Frame_FixedFramePeriodValue"),
                                           ui.spBoxFixedFramePeriodValue, this);
        } else if (name == QLatin1String(exposureLinesName)) {
            exposureLines = integer->GetValue();
            exposureLinesMin = integer->GetMin();
            exposureLinesMax = integer->GetMax();
        } else if (name == QLatin1String(exposureClocksName)) {
            exposureClocks = integer->GetValue();
            exposureClocksMin = integer->GetMin();
            exposureClocksMax = integer->GetMax();
        } else if (name == QLatin1String(coarseGainName) || name == QLatin1String(fineGainName)) {
            (name == QLatin1String(coarseGainName) ? coarseGain : fineGain) = integer->GetValue();
            showDigitalGain();
        }
    } else if (auto *enumeration = params->GetEnum(key.constData()); enumeration
               && enumeration->IsAvailable() && name == QLatin1String(triggerModeName)) {
        triggerActive = enumeration->GetValue() > 0;
    }
    updateExposureTime();
}

OrbCamConfigFrameABDialog::OrbCamConfigFrameABDialog(OrbCam::Device *device, QWidget *parent)
    : OrbCamConfigDialog(parent)
    , d_ptr(new OrbCamConfigFrameABDialogPrivate(this))
{
    Q_D(OrbCamConfigFrameABDialog);
    d->prepare();
    d->init(device);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

OrbCamConfigFrameABDialog::~OrbCamConfigFrameABDialog()
{
    Q_D(OrbCamConfigFrameABDialog);
    d->stopListening();
    d->mapper.releaseAll();
}

void OrbCamConfigFrameABDialog::SetDevice(OrbCam::Device *device)
{
    d_func()->init(device);
}

void OrbCamConfigFrameABDialog::showEvent(QShowEvent *event)
{
    for (QtOrbSpinBox *box : findChildren<QtOrbSpinBox *>())
        OrbCamConfigMapper::resizeVerticalSlider(box);
    d_func()->mapper.refreshAll();
    QDialog::showEvent(event);
}

} // namespace OrbGui

void ShowFrameABDialog(OrbCam::Device *device, WId parent)
{
    OrbGui::showCamConfigDialog<OrbGui::OrbCamConfigFrameABDialog>(device, parent);
}
