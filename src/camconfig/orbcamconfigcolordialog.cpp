#include <OrbGui/orbcamconfigcolordialog.h>

#include "camconfigdialog_p.h"
#include "ui_orbcamconfigcolordialog.h"

#include <OrbGui/qtorbspinbox.h>

#include <QDoubleSpinBox>

namespace OrbGui {

namespace {
// The coefficient that stands for a gain of one.
constexpr int unity = 256;
} // namespace

class OrbCamConfigColorDialogPrivate : public CamConfigDialogPrivate {
public:
    struct Coefficient {
        const char *feature;
        QtOrbSpinBox *box;
        QLabel *caption;
        QPushButton *unity;
        QLabel *statistic;
    };

    explicit OrbCamConfigColorDialogPrivate(OrbCamConfigColorDialog *q)
        : q_ptr(q)
    {
    }
    void prepare();
    void init(OrbCam::Device *device);
    void showStatistics();
    // The standard white balance: one ratio per channel, the channel chosen
    // by a selector. Returns whether the camera has it (and not the
    // coefficients, which come first).
    bool bindBalanceRatio();
    void showRows(bool standard);
    bool unityRatio = false, ratioSelected = false;
    QVector<Coefficient> coefficients() const
    {
        return { { "RedCoefficient", ui.spBoxRed, ui.lblRed, ui.pushBtnRedUnity, ui.lblRedCoef },
                 { "GreenCoefficient", ui.spBoxGreen, ui.lblGreen, ui.pushBtnGreenUnity,
                   ui.lblGreenCoef },
                 { "BlueCoefficient", ui.spBoxBlue, ui.lblBlue, ui.pushBtnBlueUnity,
                   ui.lblBlueCoef } };
    }

    OrbCamConfigColorDialog *const q_ptr;
    Ui_OrbCamConfigColorDialog ui;
};

void OrbCamConfigColorDialogPrivate::prepare()
{
    ui.setupUi(q_ptr);
    for (const Coefficient &c : coefficients()) {
        // Narrow, as wide as their text: three of them stand in a column.
        c.unity->setMaximumWidth(c.unity->fontMetrics().horizontalAdvance(c.unity->text()) + 16);
        // Made once: every binding would add another.
        QtOrbSpinBox *box = c.box;
        QObject::connect(c.unity, &QPushButton::clicked, box, [box] { box->setValue(unity); });
    }
    QDoubleSpinBox *ratio = ui.spBoxBalanceRatio;
    QObject::connect(ui.pushBtnBalanceRatioUnity, &QPushButton::clicked, ratio,
                     [ratio] { ratio->setValue(1.0); });
}

void OrbCamConfigColorDialogPrivate::showRows(bool standard)
{
    for (const Coefficient &c : coefficients())
        for (QWidget *w : { static_cast<QWidget *>(c.box), static_cast<QWidget *>(c.caption),
                            static_cast<QWidget *>(c.unity) })
            w->setVisible(!standard);
    ui.grBoxStatistics->setVisible(!standard);
    for (QWidget *w :
         { static_cast<QWidget *>(ui.lblBalanceRatioSelector),
           static_cast<QWidget *>(ui.cmBoxBalanceRatioSelector),
           static_cast<QWidget *>(ui.lblBalanceRatio), static_cast<QWidget *>(ui.spBoxBalanceRatio),
           static_cast<QWidget *>(ui.pushBtnBalanceRatioUnity) })
        w->setVisible(standard);
    ui.pushBtnBalanceRatioUnity->setVisible(standard && unityRatio);
    ui.lblBalanceRatioSelector->setVisible(standard && ratioSelected);
    ui.cmBoxBalanceRatioSelector->setVisible(standard && ratioSelected);
}

bool OrbCamConfigColorDialogPrivate::bindBalanceRatio()
{
    for (const Coefficient &c : coefficients())
        if (param<OrbGenParam::Int>(c.feature))
            return false;
    OrbGenParam::Param *ratio = number("BalanceRatio");
    if (!ratio)
        return false;
    // Opening shows the channel the camera has selected and writes nothing;
    // the user's choice of channel is what moves the selector.
    ratioSelected = mapper.mapEnumParam(param<OrbGenParam::Enum>("BalanceRatioSelector"),
                                        ui.cmBoxBalanceRatioSelector);
    mapper.mapNumberParam(ratio, ui.spBoxBalanceRatio, { ui.pushBtnBalanceRatioUnity });
    // A floating-point ratio of 1.0 is a gain of one; an integer one has a
    // scale of the vendor's that the description does not give.
    unityRatio = dynamic_cast<OrbGenParam::Float *>(ratio) != nullptr;
    return true;
}

void OrbCamConfigColorDialogPrivate::init(OrbCam::Device *newDevice)
{
    if (!rebind(newDevice)) {
        for (QWidget *control : { static_cast<QWidget *>(ui.cmBoxWhiteBalance),
                                  static_cast<QWidget *>(ui.cmBoxTrackingSpeed),
                                  static_cast<QWidget *>(ui.grBoxManualWBCoefs) })
            control->setEnabled(false);
        showStatistics();
        return;
    }
    ui.grBoxManualWBCoefs->setEnabled(true);
    const bool standard = bindBalanceRatio();
    if (!standard)
        for (const Coefficient &c : coefficients())
            mapper.mapIntParam(param<OrbGenParam::Int>(c.feature), c.box, { c.caption, c.unity });
    showRows(standard);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("BalanceWhiteAuto"), ui.cmBoxWhiteBalance);
    const bool tracking
        = mapper.mapEnumParam(param<OrbGenParam::Enum>("AutoTrackingSpeed"), ui.cmBoxTrackingSpeed);
    // The standard names have no tracking speed: a camera without one is
    // not shown a control it can never use.
    ui.lblTrackingSpeed->setVisible(tracking || !standard);
    ui.cmBoxTrackingSpeed->setVisible(tracking || !standard);
    offerIf(q_ptr, true, !mapper.controls.isEmpty());
    for (const Coefficient &c : coefficients()) {
        // As wide as the largest number: the layout does not move with it.
        const int width
            = c.statistic->fontMetrics().horizontalAdvance(QString::number(c.box->maximum()));
        c.statistic->setMinimumWidth(width);
        c.statistic->setMaximumWidth(width);
    }
    // The statistics follow the coefficients whoever changes them.
    mapper.afterRefresh = [this] { showStatistics(); };
    showStatistics();
}

void OrbCamConfigColorDialogPrivate::showStatistics()
{
    for (const Coefficient &c : coefficients()) {
        OrbGenParam::Int *coefficient = param<OrbGenParam::Int>(c.feature);
        // No coefficient, no number: the form's placeholder is none of the
        // camera's.
        if (!coefficient)
            c.statistic->clear();
        else if (coefficient->IsReadable())
            c.statistic->setText(QString::number(coefficient->GetValue()));
    }
}

OrbCamConfigColorDialog::OrbCamConfigColorDialog(OrbCam::Device *device, QWidget *parent)
    : OrbCamConfigDialog(parent)
    , d_ptr(new OrbCamConfigColorDialogPrivate(this))
{
    Q_D(OrbCamConfigColorDialog);
    d->prepare();
    d->init(device);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

OrbCamConfigColorDialog::~OrbCamConfigColorDialog()
{
    d_func()->mapper.releaseAll();
}

void OrbCamConfigColorDialog::SetDevice(OrbCam::Device *device)
{
    d_func()->init(device);
}

void OrbCamConfigColorDialog::showEvent(QShowEvent *event)
{
    Q_D(OrbCamConfigColorDialog);
    for (const auto &c : d->coefficients())
        OrbCamConfigMapper::resizeVerticalSlider(c.box);
    d->mapper.refreshAll();
    QDialog::showEvent(event);
}

} // namespace OrbGui

void ShowColorDialog(OrbCam::Device *device, WId parent)
{
    OrbGui::showCamConfigDialog<OrbGui::OrbCamConfigColorDialog>(device, parent);
}
