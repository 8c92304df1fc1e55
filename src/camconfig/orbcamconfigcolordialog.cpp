#include <OrbGui/orbcamconfigcolordialog.h>

#include "camconfigdialog_p.h"
#include "ui_orbcamconfigcolordialog.h"

#include <OrbGui/qtorbspinbox.h>

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
    for (const Coefficient &c : coefficients())
        mapper.mapIntParam(param<OrbGenParam::Int>(c.feature), c.box, { c.caption, c.unity });
    mapper.mapEnumParam(param<OrbGenParam::Enum>("BalanceWhiteAuto"), ui.cmBoxWhiteBalance);
    mapper.mapEnumParam(param<OrbGenParam::Enum>("AutoTrackingSpeed"), ui.cmBoxTrackingSpeed);
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
