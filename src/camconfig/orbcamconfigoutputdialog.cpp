#include <OrbGui/orbcamconfigoutputdialog.h>

#include "camconfigdialog_p.h"
#include "ui_orbcamconfigoutputdialog.h"

#include <OrbGui/qtorbspinbox.h>

namespace OrbGui {

class OrbCamConfigOutputDialogPrivate : public CamConfigDialogPrivate {
public:
    explicit OrbCamConfigOutputDialogPrivate(OrbCamConfigOutputDialog *q)
        : q_ptr(q)
    {
    }
    void init(OrbCam::Device *device);

    OrbCamConfigOutputDialog *const q_ptr;
    Ui_OrbCamConfigOutputDialog ui;
};

void OrbCamConfigOutputDialogPrivate::init(OrbCam::Device *newDevice)
{
    q_ptr->setEnabled(rebind(newDevice) != nullptr);
    if (!params)
        return;
    const std::pair<const char *, QComboBox *> choices[]
        = { { "PixelFormat", ui.cmBoxPixelFormat }, { "SensorADCBitDepth11", ui.cmBoxTaps },
            { "SensorADCBitDepth", ui.cmBoxDepth }, { "TestPattern", ui.cmBoxTestMode },
            { "LUTSelector", ui.cmBoxLut },         { "DefectPixelCorrection", ui.cmBoxDpc },
            { "HotPixelCorrection", ui.cmBoxHpc } };
    for (const auto &[name, box] : choices)
        mapper.mapEnumParam(param<OrbGenParam::Enum>(name), box);
    // The test image under its older standard name.
    if (!mapper.isBound(ui.cmBoxTestMode))
        mapper.mapEnumParam(param<OrbGenParam::Enum>("TestImageSelector"), ui.cmBoxTestMode);
    mapper.mapIntParam(param<OrbGenParam::Int>("DefectPixelThreshold"), ui.spBoxDpcDynThres);
    mapper.mapIntParam(param<OrbGenParam::Int>("HotPixelThreshold"), ui.spBoxHpcDynThres);
    const std::pair<const char *, QCheckBox *> switches[] = { { "LUTEnable", ui.chBoxEnableLut },
                                                              { "ReverseX", ui.chBoxHorMirror },
                                                              { "ReverseY", ui.chBoxVerMirror } };
    for (const auto &[name, box] : switches)
        mapper.mapBooleanParam(param<OrbGenParam::Boolean>(name), box);
    offerIf(q_ptr, params, !mapper.controls.isEmpty());
}

OrbCamConfigOutputDialog::OrbCamConfigOutputDialog(OrbCam::Device *device, QWidget *parent)
    : OrbCamConfigDialog(parent)
    , d_ptr(new OrbCamConfigOutputDialogPrivate(this))
{
    Q_D(OrbCamConfigOutputDialog);
    d->ui.setupUi(this);
    for (QtOrbSpinBox *threshold : { d->ui.spBoxDpcDynThres, d->ui.spBoxHpcDynThres })
        threshold->setLeftLabelText(tr("Dyn.Thres.:"));
    // Bound all the same, but never shown: these cameras have no Camera
    // Link output.
    d->ui.grBoxCameraLink->hide();
    d->init(device);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

OrbCamConfigOutputDialog::~OrbCamConfigOutputDialog()
{
    d_func()->mapper.releaseAll();
}

void OrbCamConfigOutputDialog::SetDevice(OrbCam::Device *device)
{
    d_func()->init(device);
}

void OrbCamConfigOutputDialog::showEvent(QShowEvent *event)
{
    Q_D(OrbCamConfigOutputDialog);
    OrbCamConfigMapper::resizeVerticalSlider(d->ui.spBoxDpcDynThres);
    OrbCamConfigMapper::resizeVerticalSlider(d->ui.spBoxHpcDynThres);
    d->mapper.refreshAll();
    QDialog::showEvent(event);
}

} // namespace OrbGui

void ShowOutputDialog(OrbCam::Device *device, WId parent)
{
    OrbGui::showCamConfigDialog<OrbGui::OrbCamConfigOutputDialog>(device, parent);
}
