#include <OrbGui/orbcamconfigtriggerdialog.h>

#include "camconfigdialog_p.h"
#include "ui_orbcamconfigtriggerdialog.h"

#include <QDoubleSpinBox>

namespace OrbGui {

namespace {
const QString software = QStringLiteral("Software");
}

class OrbCamConfigTriggerDialogPrivate : public CamConfigDialogPrivate {
public:
    explicit OrbCamConfigTriggerDialogPrivate(OrbCamConfigTriggerDialog *q)
        : q_ptr(q)
    {
    }
    void init(OrbCam::Device *device);
    void enablingRule();
    void softwareTriggerRule();
    void debouncerRule();
    bool selectDebouncedLine(OrbGenParam::Param *param);
    // The camera's line the trigger source names, when it has a debouncer:
    // empty for a source that is no line (Software, a timer).
    QString debouncedLine() const;

    // The standard debouncer: a time per input line, selected by the line.
    OrbGenParam::Enum *lineSelector = nullptr;
    OrbGenParam::Param *lineDebouncer = nullptr;

    OrbCamConfigTriggerDialog *const q_ptr;
    Ui_OrbCamConfigTriggerDialog ui;
};

void OrbCamConfigTriggerDialogPrivate::init(OrbCam::Device *newDevice)
{
    rebind(newDevice);
    // Mode, source, activation and the software trigger act on what the
    // selector names. Opening shows the camera's own selection and writes
    // nothing; the user's choice here is what moves it.
    const bool selected
        = mapper.mapEnumParam(param<OrbGenParam::Enum>("TriggerSelector"), ui.cmBoxTriggerSelector);
    ui.lblTriggerSelector->setVisible(selected);
    ui.cmBoxTriggerSelector->setVisible(selected);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("TriggerMode"), ui.chBoxTriggerEnable);
    QObject::connect(ui.chBoxTriggerEnable, &QCheckBox::stateChanged, ui.chBoxTriggerEnable,
                     [this] { enablingRule(); });
    mapper.mapEnumParam(param<OrbGenParam::Enum>("TriggerSource"), ui.cmBoxTriggerSource);
    QObject::connect(ui.cmBoxTriggerSource, QOverload<int>::of(&QComboBox::currentIndexChanged),
                     ui.cmBoxTriggerSource, [this] {
                         softwareTriggerRule();
                         debouncerRule();
                     });
    mapper.mapEnumParam(param<OrbGenParam::Enum>("TriggerActivation"), ui.cmBoxTriggerEdge);
    // The camera's own debounce choice first; else the standard line
    // debouncer of the source line, where the camera has one.
    const bool choice
        = mapper.mapEnumParam(param<OrbGenParam::Enum>("TriggerDebounce"), ui.cmBoxTriggerDebounce);
    lineSelector = choice ? nullptr : param<OrbGenParam::Enum>("LineSelector");
    lineDebouncer = lineSelector ? number("LineDebouncerTime") : nullptr;
    if (!lineDebouncer)
        lineSelector = nullptr;
    mapper.mapNumberParam(lineDebouncer, ui.spBoxTriggerDebounceTime);
    ui.cmBoxTriggerDebounce->setVisible(choice || !lineDebouncer);
    ui.spBoxTriggerDebounceTime->setVisible(lineDebouncer != nullptr);
    mapper.beforeWrite = [this](OrbGenParam::Param *param) { return selectDebouncedLine(param); };
    mapper.mapCommandParam(param<OrbGenParam::Command>("TriggerSoftware"),
                           ui.pushBtnSoftwareTrigger, nullptr);
    // The rules also after the camera changes a feature (the mapper then
    // enables controls by writability alone), and from the start: with the
    // trigger off, nothing of it is offered.
    mapper.afterRefresh = [this] { enablingRule(); };
    enablingRule();
    offerIf(q_ptr, params, !mapper.controls.isEmpty());
}

QString OrbCamConfigTriggerDialogPrivate::debouncedLine() const
{
    if (!lineSelector)
        return QString();
    const QByteArray source = ui.cmBoxTriggerSource->currentText().toUtf8();
    for (size_t i = 0; i < lineSelector->GetEntryCount(); ++i)
        if (OrbGenParam::EnumEntry *entry = lineSelector->GetEntry(i);
            entry && source == entry->GetName())
            return ui.cmBoxTriggerSource->currentText();
    return QString();
}

// The debouncer shows the source line's time only while the camera's line
// selector names that line: another line's number would stand under this
// source. Selecting the line is left to the user's entry (selectDebouncedLine).
void OrbCamConfigTriggerDialogPrivate::debouncerRule()
{
    if (!lineDebouncer)
        return;
    QDoubleSpinBox *box = ui.spBoxTriggerDebounceTime;
    const QString line = debouncedLine();
    OrbCamErr err = OrbCamOk;
    const char *selectedLine = lineSelector->GetValueName(&err);
    const bool current
        = !line.isEmpty() && err == OrbCamOk && line == QString::fromUtf8(selectedLine);
    if (current) {
        mapper.updateDoubleSpinBox(lineDebouncer, box);
        box->setToolTip(OrbCamConfigTriggerDialog::tr("Debouncer of %1").arg(line));
    } else {
        OrbCamConfigMapper::clearControl(box);
        box->setToolTip(line.isEmpty()
                            ? QString()
                            : OrbCamConfigTriggerDialog::tr(
                                  "Debouncer of %1: a time entered here selects %1 on the camera")
                                  .arg(line));
    }
}

bool OrbCamConfigTriggerDialogPrivate::selectDebouncedLine(OrbGenParam::Param *param)
{
    if (!lineDebouncer || param != lineDebouncer)
        return true;
    const QString line = debouncedLine();
    if (line.isEmpty())
        return false;
    OrbCamErr err = OrbCamOk;
    if (line == QString::fromUtf8(lineSelector->GetValueName(&err)) && err == OrbCamOk)
        return true;
    err = lineSelector->SetValueByName(line.toUtf8().constData());
    OrbCamConfigMapper::showErrorMessage(err, ui.spBoxTriggerDebounceTime, lineSelector);
    return err == OrbCamOk;
}

void OrbCamConfigTriggerDialogPrivate::enablingRule()
{
    // On top of the mapper's enabling: a control whose feature is missing or
    // cannot be written stays disabled.
    const bool on = ui.chBoxTriggerEnable->isChecked();
    for (QWidget *box : { ui.cmBoxTriggerSource, ui.cmBoxTriggerEdge, ui.cmBoxTriggerDebounce })
        box->setEnabled(on && mapper.controlsWritable(box));
    ui.spBoxTriggerDebounceTime->setEnabled(
        on && !debouncedLine().isEmpty() && mapper.controlsWritable(ui.spBoxTriggerDebounceTime));
    softwareTriggerRule();
    debouncerRule();
}

void OrbCamConfigTriggerDialogPrivate::softwareTriggerRule()
{
    ui.pushBtnSoftwareTrigger->setEnabled(ui.chBoxTriggerEnable->isChecked()
                                          && ui.cmBoxTriggerSource->currentText() == software
                                          && mapper.controlsWritable(ui.pushBtnSoftwareTrigger));
}

OrbCamConfigTriggerDialog::OrbCamConfigTriggerDialog(OrbCam::Device *device, QWidget *parent)
    : OrbCamConfigDialog(parent)
    , d_ptr(new OrbCamConfigTriggerDialogPrivate(this))
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
