#include <OrbGui/orbcamconfigpulsedialog.h>

#include "camconfigdialog_p.h"
#include "ui_orbcamconfigpulsedialog.h"

#include <OrbGui/qtorbspinbox.h>

#include <QButtonGroup>

#include <cmath>

namespace OrbGui {

class OrbCamConfigPulseDialogPrivate : public CamConfigDialogPrivate {
public:
    void prepare(OrbCamConfigPulseDialog *q);
    void init(OrbCam::Device *device);
    void derivedValues();
    void buttonState();

    OrbCamConfigPulseDialog *q_ptr = nullptr;
    Ui_OrbCamConfigPulseDialog ui;
    QButtonGroup *modes = nullptr;
    // The form's shortcut: setText() replaces a button's shortcut by the
    // text's mnemonic, so it is given back after every change of text.
    QKeySequence startStop;
    bool prepared = false;
};

void OrbCamConfigPulseDialogPrivate::prepare(OrbCamConfigPulseDialog *q)
{
    q_ptr = q;
    ui.setupUi(q);
    const QString micro = QStringLiteral(" [%1s]:").arg(QChar(0x03BC));
    for (QLabel *label : { ui.lblWidth, ui.lblDelay, ui.lblPeriod })
        label->setText(label->text() + micro);
    startStop = ui.pushBtnPulseEnable->shortcut();
    modes = new QButtonGroup(q);
    modes->setObjectName(QStringLiteral("modeGroup"));
    modes->addButton(ui.radioBtnContinious);
    modes->addButton(ui.radioBtnSend);
    const int widest = QFontMetrics(ui.lineEditFreq->font())
                           .horizontalAdvance(QStringLiteral("1000000000.00000000"));
    ui.lineEditDelay->setMaximumWidth(widest);
    ui.lineEditFreq->setMaximumWidth(widest);
    prepared = true;
}

void OrbCamConfigPulseDialogPrivate::init(OrbCam::Device *newDevice)
{
    rebind(newDevice);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("PulseGenGranularity"), ui.cmBoxGranularity);
    for (const auto &[name, box] : { std::make_pair("PulseGenPeriod", ui.spBoxPeriod),
                                     std::make_pair("PulseGenWidth", ui.spBoxWidth) }) {
        mapper.mapIntParam(param<OrbGenParam::Int>(name), box);
        QObject::connect(box, QOverload<int>::of(&QtOrbSpinBox::valueChanged), box,
                         [this] { derivedValues(); });
    }
    mapper.mapIntParam(param<OrbGenParam::Int>("PulseGenNumPulses"), ui.spBoxNumPulses);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("PulseGenMode"), modes);
    mapper.mapBooleanParam(param<OrbGenParam::Boolean>("PulseGenEnable"), ui.pushBtnPulseEnable);
    offerIf(q_ptr, params, !mapper.controls.isEmpty());
    QObject::connect(ui.pushBtnPulseEnable, &QPushButton::clicked, ui.pushBtnPulseEnable,
                     [this] { buttonState(); });
    // The camera's own changes arrive with the controls' signals blocked:
    // the derived values and the button follow them too.
    mapper.afterRefresh = [this] {
        derivedValues();
        buttonState();
    };
    derivedValues();
    buttonState();
}

void OrbCamConfigPulseDialogPrivate::derivedValues()
{
    // Nothing derived from a feature the camera lacks: a number computed
    // from a box that shows nothing would look live.
    if (!mapper.isBound(ui.spBoxPeriod)) {
        ui.lineEditDelay->clear();
        ui.lineEditFreq->clear();
        return;
    }
    const int period = ui.spBoxPeriod->value();
    const int width = ui.spBoxWidth->value();
    if (mapper.isBound(ui.spBoxWidth))
        ui.lineEditDelay->setText(QString::number(qint64(period) - width));
    else
        ui.lineEditDelay->clear();
    const double frequency = std::fabs(double(period)) < 0.0000001 ? 0.0 : 1000000.0 / period;
    ui.lineEditFreq->setText(QString::number(frequency, 'f', 6));
}

void OrbCamConfigPulseDialogPrivate::buttonState()
{
    const bool running = ui.pushBtnPulseEnable->isChecked();
    ui.pushBtnPulseEnable->setText(running ? OrbCamConfigPulseDialog::tr("Stop")
                                           : OrbCamConfigPulseDialog::tr("Start"));
    ui.pushBtnPulseEnable->setShortcut(startStop);
    ui.lblPulseEnable->setPixmap(QPixmap(running ? QStringLiteral(":/icons/greenball.ico")
                                                 : QStringLiteral(":/icons/redball.ico")));
}

OrbCamConfigPulseDialog::OrbCamConfigPulseDialog(OrbCam::Device *device, QWidget *parent)
    : OrbCamConfigDialog(parent)
    , d_ptr(new OrbCamConfigPulseDialogPrivate)
{
    Q_D(OrbCamConfigPulseDialog);
    d->prepare(this);
    d->init(device);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

OrbCamConfigPulseDialog::~OrbCamConfigPulseDialog()
{
    d_func()->mapper.releaseAll();
}

void OrbCamConfigPulseDialog::SetDevice(OrbCam::Device *device)
{
    d_func()->init(device);
}

void OrbCamConfigPulseDialog::showEvent(QShowEvent *event)
{
    Q_D(OrbCamConfigPulseDialog);
    for (QtOrbSpinBox *box : { d->ui.spBoxPeriod, d->ui.spBoxWidth, d->ui.spBoxNumPulses })
        OrbCamConfigMapper::resizeVerticalSlider(box);
    d->mapper.refreshAll();
    QDialog::showEvent(event);
}

} // namespace OrbGui

void ShowPulseDialog(OrbCam::Device *device, WId parent)
{
    OrbGui::showCamConfigDialog<OrbGui::OrbCamConfigPulseDialog>(device, parent);
}
