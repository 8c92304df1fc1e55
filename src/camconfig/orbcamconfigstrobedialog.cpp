#include <OrbGui/orbcamconfigstrobedialog.h>

#include "camconfigdialog_p.h"
#include "ui_orbcamconfigstrobedialog.h"

#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>

namespace OrbGui {

class OrbCamConfigStrobeDialogPrivate : public CamConfigDialogPrivate {
public:
    explicit OrbCamConfigStrobeDialogPrivate(OrbCamConfigStrobeDialog *q)
        : q_ptr(q)
    {
    }
    void init(OrbCam::Device *device);
    void pictureRule();

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
