#include <OrbGui/orbcamconfigtriggerdialog.h>

#include "camconfigdialog_p.h"
#include "ui_orbcamconfigtriggerdialog.h"

namespace OrbGui {

namespace {
const QString software = QStringLiteral("Software");
}

class OrbCamConfigTriggerDialogPrivate : public CamConfigDialogPrivate {
public:
    void init(OrbCam::Device *device);
    void enablingRule();
    void softwareTriggerRule();

    Ui_OrbCamConfigTriggerDialog ui;
};

void OrbCamConfigTriggerDialogPrivate::init(OrbCam::Device *newDevice)
{
    rebind(newDevice);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("TriggerMode"), ui.chBoxTriggerEnable);
    QObject::connect(ui.chBoxTriggerEnable, &QCheckBox::stateChanged, ui.chBoxTriggerEnable,
                     [this] { enablingRule(); });
    mapper.mapEnumParam(param<OrbGenParam::Enum>("TriggerSource"), ui.cmBoxTriggerSource);
    QObject::connect(ui.cmBoxTriggerSource, QOverload<int>::of(&QComboBox::currentIndexChanged),
                     ui.cmBoxTriggerSource, [this] { softwareTriggerRule(); });
    mapper.mapEnumParam(param<OrbGenParam::Enum>("TriggerActivation"), ui.cmBoxTriggerEdge);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("TriggerDebounce"), ui.cmBoxTriggerDebounce);
    mapper.mapCommandParam(param<OrbGenParam::Command>("TriggerSoftware"),
                           ui.pushBtnSoftwareTrigger, nullptr);
    // The rules also after the camera changes a feature (the mapper then
    // enables controls by writability alone), and from the start: with the
    // trigger off, nothing of it is offered.
    mapper.afterRefresh = [this] { enablingRule(); };
    enablingRule();
}

void OrbCamConfigTriggerDialogPrivate::enablingRule()
{
    // On top of the mapper's enabling: a control whose feature is missing or
    // cannot be written stays disabled.
    const bool on = ui.chBoxTriggerEnable->isChecked();
    for (QWidget *box : { ui.cmBoxTriggerSource, ui.cmBoxTriggerEdge, ui.cmBoxTriggerDebounce })
        box->setEnabled(on && mapper.controlsWritable(box));
    softwareTriggerRule();
}

void OrbCamConfigTriggerDialogPrivate::softwareTriggerRule()
{
    ui.pushBtnSoftwareTrigger->setEnabled(ui.chBoxTriggerEnable->isChecked()
                                          && ui.cmBoxTriggerSource->currentText() == software
                                          && mapper.controlsWritable(ui.pushBtnSoftwareTrigger));
}

OrbCamConfigTriggerDialog::OrbCamConfigTriggerDialog(OrbCam::Device *device, QWidget *parent)
    : OrbCamConfigDialog(parent)
    , d_ptr(new OrbCamConfigTriggerDialogPrivate)
{
    Q_D(OrbCamConfigTriggerDialog);
    d->ui.setupUi(this);
    d->init(device);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

OrbCamConfigTriggerDialog::~OrbCamConfigTriggerDialog()
{
    d_func()->mapper.releaseAll();
}

void OrbCamConfigTriggerDialog::SetDevice(OrbCam::Device *device)
{
    d_func()->init(device);
}

void OrbCamConfigTriggerDialog::showEvent(QShowEvent *event)
{
    Q_D(OrbCamConfigTriggerDialog);
    d->mapper.refreshAll();
    d->enablingRule();
    QDialog::showEvent(event);
}

} // namespace OrbGui

void ShowTriggerDialog(OrbCam::Device *device, WId parent)
{
    OrbGui::showCamConfigDialog<OrbGui::OrbCamConfigTriggerDialog>(device, parent);
}
