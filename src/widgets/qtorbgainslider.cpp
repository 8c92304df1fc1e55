#include <OrbGui/qtorbdoubleslider.h>
#include <OrbGui/qtorbdoublespinboxval.h>
#include <OrbGui/qtorbgainslider.h>

#include "captionlabel.h"

#include <QBoxLayout>
#include <QLabel>

namespace OrbGui {

class QtOrbGainSliderPrivate {
    Q_DECLARE_PUBLIC(QtOrbGainSlider)

public:
    explicit QtOrbGainSliderPrivate(QtOrbGainSlider *q)
        : q_ptr(q)
    {
    }
    void init();
    void link();
    void unlink();

    QtOrbGainSlider *const q_ptr;
    QVBoxLayout *layoutV = nullptr;
    QHBoxLayout *layoutH = nullptr;
    QtOrbDoubleSlider *slider = nullptr;
    QtOrbDoubleSpinBoxVal *spinbox = nullptr;
    QLabel *labelLeft = nullptr;
    QLabel *labelUpper = nullptr;
    QMetaObject::Connection toNumber, toText;
};

void QtOrbGainSliderPrivate::init()
{
    Q_Q(QtOrbGainSlider);
    layoutV = new QVBoxLayout(q);
    layoutV->setObjectName(QStringLiteral("layoutV"));
    layoutV->setContentsMargins(0, 0, 0, 0);
    layoutV->setSpacing(6);
    layoutH = new QHBoxLayout;
    layoutH->setObjectName(QStringLiteral("layoutH"));
    layoutH->setContentsMargins(0, 0, 0, 0);
    layoutH->setSpacing(6);
    slider = new QtOrbDoubleSlider(Qt::Horizontal, q);
    slider->setObjectName(QStringLiteral("slider"));
    spinbox = new QtOrbDoubleSpinBoxVal(q);
    spinbox->setObjectName(QStringLiteral("spinbox"));
    layoutH->addWidget(slider, 1);
    layoutH->addWidget(spinbox, 0);
    layoutV->addLayout(layoutH);
    slider->setDecimals(3);
    spinbox->setDecimals(3);
    slider->setRange(0.0, 100.0);
    spinbox->setRange(0.0, 100.0);

    // QDoubleSpinBox announces no range change, so the range goes through
    // setRange to both children and the slider's announcement is passed on.
    QObject::connect(slider, &QtOrbDoubleSlider::rangeChanged, q, &QtOrbGainSlider::rangeChanged);
    QObject::connect(slider, &QtOrbDoubleSlider::valueChanged, spinbox,
                     &QtOrbDoubleSpinBoxVal::setValue);
    QObject::connect(spinbox, QOverload<double>::of(&QDoubleSpinBox::valueChanged), slider,
                     &QtOrbDoubleSlider::setValue);
    QObject::connect(slider, &QtOrbDoubleSlider::sliderPressed, q, [this] { unlink(); });
    QObject::connect(slider, &QtOrbDoubleSlider::sliderReleased, q, [this] {
        link();
        if (slider->value() == spinbox->value()) {
            Q_EMIT q_ptr->valueChanged(spinbox->value());
            Q_EMIT q_ptr->valueChanged(QString::number(spinbox->value(), 'g', 6));
        } else {
            spinbox->setValue(slider->value());
        }
    });
    link();
}

void QtOrbGainSliderPrivate::link()
{
    Q_Q(QtOrbGainSlider);
    unlink(); // a release without a press must not link twice
    toNumber = QObject::connect(spinbox, QOverload<double>::of(&QDoubleSpinBox::valueChanged), q,
                                QOverload<double>::of(&QtOrbGainSlider::valueChanged));
    toText
        = QObject::connect(spinbox, QOverload<double>::of(&QDoubleSpinBox::valueChanged), q,
                           [q](double v) { Q_EMIT q->valueChanged(QString::number(v, 'g', 6)); });
}

void QtOrbGainSliderPrivate::unlink()
{
    QObject::disconnect(toNumber);
    QObject::disconnect(toText);
}

QtOrbGainSlider::QtOrbGainSlider(QWidget *parent)
    : QFrame(parent)
    , d_ptr(new QtOrbGainSliderPrivate(this))
{
    Q_D(QtOrbGainSlider);
    d->init();
}

QtOrbGainSlider::~QtOrbGainSlider() = default;

double QtOrbGainSlider::value() const
{
    return d_func()->spinbox->value();
}
double QtOrbGainSlider::singleStep() const
{
    return d_func()->spinbox->singleStep();
}

void QtOrbGainSlider::setSingleStep(double step)
{
    Q_D(QtOrbGainSlider);
    d->spinbox->setSingleStep(step);
    d->slider->setSingleStep(step);
}

bool QtOrbGainSlider::validate() const
{
    return d_func()->spinbox->validate();
}

void QtOrbGainSlider::setValidate(bool validate)
{
    Q_D(QtOrbGainSlider);
    d->spinbox->setValidate(validate);
    d->slider->setValidate(validate);
}

bool QtOrbGainSlider::validateTyping() const
{
    return d_func()->spinbox->validateTyping();
}
void QtOrbGainSlider::setValidateTyping(bool validate)
{
    d_func()->spinbox->setValidateTyping(validate);
}
double QtOrbGainSlider::minimum() const
{
    return d_func()->spinbox->minimum();
}
double QtOrbGainSlider::maximum() const
{
    return d_func()->spinbox->maximum();
}
void QtOrbGainSlider::setMinimum(double minimum)
{
    setRange(minimum, qMax(minimum, maximum()));
}
void QtOrbGainSlider::setMaximum(double maximum)
{
    setRange(qMin(minimum(), maximum), maximum);
}

void QtOrbGainSlider::setRange(double min, double max)
{
    Q_D(QtOrbGainSlider);
    d->spinbox->setRange(min, max);
    d->slider->setRange(d->spinbox->minimum(), d->spinbox->maximum());
}

void QtOrbGainSlider::setValue(double value)
{
    Q_D(QtOrbGainSlider);
    d->spinbox->setValue(value);
    d->slider->setValue(d->spinbox->value());
}

int QtOrbGainSlider::decimals() const
{
    return d_func()->spinbox->decimals();
}

void QtOrbGainSlider::setDecimals(int decimals)
{
    Q_D(QtOrbGainSlider);
    d->spinbox->setDecimals(decimals);
    d->slider->setDecimals(decimals);
}

QString QtOrbGainSlider::leftLabelText() const
{
    return d_func()->labelLeft ? d_func()->labelLeft->text() : QString();
}
void QtOrbGainSlider::setLeftLabelText(const QString &text)
{
    Q_D(QtOrbGainSlider);
    captionLabel(d->labelLeft, this, d->layoutH, "labelLeft")->setText(text);
}
QString QtOrbGainSlider::topLabelText() const
{
    return d_func()->labelUpper ? d_func()->labelUpper->text() : QString();
}
void QtOrbGainSlider::setTopLabelText(const QString &text)
{
    Q_D(QtOrbGainSlider);
    captionLabel(d->labelUpper, this, d->layoutV, "labelUpper")->setText(text);
}
QLabel *QtOrbGainSlider::leftLabel() const
{
    return d_func()->labelLeft;
}
QLabel *QtOrbGainSlider::topLabel() const
{
    return d_func()->labelUpper;
}
QtOrbDoubleSpinBoxVal *QtOrbGainSlider::spinBox() const
{
    return d_func()->spinbox;
}
QtOrbDoubleSlider *QtOrbGainSlider::slider() const
{
    return d_func()->slider;
}

} // namespace OrbGui
