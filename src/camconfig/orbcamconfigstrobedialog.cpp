#include <OrbGui/orbcamconfigstrobedialog.h>

#include "camconfigdialog_p.h"
#include "ui_orbcamconfigstrobedialog.h"

#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>

#include <QDoubleSpinBox>

#include <array>

namespace OrbGui {

class OrbCamConfigStrobeDialogPrivate : public CamConfigDialogPrivate {
public:
    explicit OrbCamConfigStrobeDialogPrivate(OrbCamConfigStrobeDialog *q)
        : q_ptr(q)
    {
    }
    void init(OrbCam::Device *device);
    void pictureRule();
    // The standard names: the camera's lines, and the timers that give a
    // pulse its delay and width. Returns whether anything was bound.
    bool bindLinesAndTimers();
    void showStandard(bool standard);

    OrbCamConfigStrobeDialog *const q_ptr;
    Ui_OrbCamConfigStrobeDialog ui;
};

void OrbCamConfigStrobeDialogPrivate::init(OrbCam::Device *newDevice)
{
    const QChar mu(0x03BC);
    for (QtOrbSliderSpinBox *delay : { ui.spBoxStrobe1Delay, ui.spBoxStrobe2Delay })
        delay->setLeftLabelText(OrbCamConfigStrobeDialog::tr("Delay [%1s]:").arg(mu));
    for (QtOrbSliderSpinBox *width : { ui.spBoxStrobe1Width, ui.spBoxStrobe2Width })
        width->setLeftLabelText(OrbCamConfigStrobeDialog::tr("Width [%1s]:").arg(mu));
    q_ptr->setEnabled(rebind(newDevice) != nullptr);
    // The camera's own strobe features come first; a camera without them
    // that has the standard lines gets those instead.
    bool own = false;
    for (const char *name : { "Strobe1Mode", "Strobe2Mode", "OUT1Selector", "OUT2Selector" })
        own = own || param<OrbGenParam::Enum>(name);
    const bool standard = params && !own && bindLinesAndTimers();
    showStandard(standard);
    offerIf(q_ptr, params, own || standard);
    if (standard)
        return;

    mapper.mapEnumParam(param<OrbGenParam::Enum>("Strobe1Mode"), ui.cmBoxStrobe1Mode);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("Strobe2Mode"), ui.cmBoxStrobe2Mode);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("Strobe1Reference"), ui.cmBoxStrobe1Ref);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("Strobe2Reference"), ui.cmBoxStrobe2Ref);
    for (QComboBox *reference : { ui.cmBoxStrobe1Ref, ui.cmBoxStrobe2Ref })
        QObject::connect(reference, &QComboBox::currentTextChanged, reference,
                         [this] { pictureRule(); });
    mapper.mapEnumParam(param<OrbGenParam::Enum>("OUT1Polarity"), ui.cmBoxOut1Polarity);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("OUT2Polarity"), ui.cmBoxOut2Polarity);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("OUT1Selector"), ui.cmBoxOut1Selector);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("OUT2Selector"), ui.cmBoxOut2Selector);
    pictureRule();

    const std::pair<const char *, QtOrbSliderSpinBox *> timings[]
        = { { "Strobe1Delay", ui.spBoxStrobe1Delay },
            { "Strobe2Delay", ui.spBoxStrobe2Delay },
            { "Strobe1Width", ui.spBoxStrobe1Width },
            { "Strobe2Width", ui.spBoxStrobe2Width } };
    for (const auto &[name, box] : timings) {
        box->slider()->setScaleType(QtOrbSlider::Logarithmic);
        mapper.mapIntParam(param<OrbGenParam::Int>(name), box, nullptr);
    }
    // The camera's own changes of a reference arrive with the combo box's
    // signals blocked: the picture follows them too.
    mapper.afterRefresh = [this] { pictureRule(); };
}

bool OrbCamConfigStrobeDialogPrivate::bindLinesAndTimers()
{
    // Each group acts on what its selector names: opening shows the
    // camera's own selection and writes nothing.
    bool any = false;
    const std::pair<const char *, QComboBox *> choices[]
        = { { "LineSelector", ui.cmBoxLineSelector },
            { "LineMode", ui.cmBoxLineMode },
            { "LineSource", ui.cmBoxLineSource },
            { "TimerSelector", ui.cmBoxTimerSelector },
            { "TimerTriggerSource", ui.cmBoxTimerTriggerSource } };
    for (const auto &[name, box] : choices)
        any = mapper.mapEnumParam(param<OrbGenParam::Enum>(name), box) || any;
    any = mapper.mapBooleanParam(param<OrbGenParam::Boolean>("LineInverter"), ui.chBoxLineInverter)
        || any;
    // Older cameras name the timer's times with "Abs" (floating point).
    const std::pair<std::array<const char *, 2>, QDoubleSpinBox *> times[]
        = { { { "TimerDelay", "TimerDelayAbs" }, ui.spBoxTimerDelay },
            { { "TimerDuration", "TimerDurationAbs" }, ui.spBoxTimerDuration } };
    for (const auto &[names, box] : times) {
        OrbGenParam::Param *time = nullptr;
        for (const char *name : names)
            if (!time)
                time = number(name);
        any = mapper.mapNumberParam(time, box) || any;
    }
    return any;
}

void OrbCamConfigStrobeDialogPrivate::showStandard(bool standard)
{
    for (QWidget *own :
         { static_cast<QWidget *>(ui.groupBoxStrobe1), static_cast<QWidget *>(ui.groupBoxStrobe2),
           static_cast<QWidget *>(ui.groupBoxOutput), static_cast<QWidget *>(ui.lblStrobeImage) })
        own->setVisible(!standard);
    // A group whose selector the camera lacks has nothing to act on.
    ui.groupBoxLine->setVisible(standard && mapper.isBound(ui.cmBoxLineSelector));
    ui.groupBoxTimer->setVisible(standard && mapper.isBound(ui.cmBoxTimerSelector));
}

// With a reference box that is not bound (a camera without the feature),
// its current text still decides; an empty one counts as not ExposureStart.
void OrbCamConfigStrobeDialogPrivate::pictureRule()
{
    const QString exposure = QStringLiteral("ExposureStart");
    const bool first = ui.cmBoxStrobe1Ref->currentText() == exposure;
    const bool second = ui.cmBoxStrobe2Ref->currentText() == exposure;
    QString picture;
    if (first && second)
        picture = QStringLiteral(":/images/strobeBothExp.bmp");
    else if (first)
        picture = QStringLiteral(":/images/strobe1Exp_strobe2Read.bmp");
    else if (second)
        picture = QStringLiteral(":/images/strobe1Read_strobe2Exp.bmp");
    else
        picture = QStringLiteral(":/images/strobeBothRead.bmp");
    if (ui.lblStrobeImage->property("picture").toString() != picture) {
        ui.lblStrobeImage->setPixmap(QPixmap(picture));
        ui.lblStrobeImage->setProperty("picture", picture);
    }
}

OrbCamConfigStrobeDialog::OrbCamConfigStrobeDialog(OrbCam::Device *device, QWidget *parent)
    : OrbCamConfigDialog(parent)
    , d_ptr(new OrbCamConfigStrobeDialogPrivate(this))
{
    Q_D(OrbCamConfigStrobeDialog);
    d->ui.setupUi(this);
    d->init(device);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

OrbCamConfigStrobeDialog::~OrbCamConfigStrobeDialog()
{
    d_func()->mapper.releaseAll();
}

void OrbCamConfigStrobeDialog::SetDevice(OrbCam::Device *device)
{
    d_func()->init(device);
}

void OrbCamConfigStrobeDialog::showEvent(QShowEvent *event)
{
    Q_D(OrbCamConfigStrobeDialog);
    d->mapper.refreshAll();
    QDialog::showEvent(event);
}

} // namespace OrbGui

void ShowStrobeDialog(OrbCam::Device *device, WId parent)
{
    OrbGui::showCamConfigDialog<OrbGui::OrbCamConfigStrobeDialog>(device, parent);
}
