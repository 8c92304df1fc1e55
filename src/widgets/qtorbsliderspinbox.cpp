#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinboxval.h>

#include "captionlabel.h"

#include <QBoxLayout>
#include <QLabel>

namespace OrbGui {

class QtOrbSliderSpinBoxPrivate {
    Q_DECLARE_PUBLIC(QtOrbSliderSpinBox)

public:
    explicit QtOrbSliderSpinBoxPrivate(QtOrbSliderSpinBox *q)
        : q_ptr(q)
    {
    }
    void init();
    void link();
    void unlink();
    void released();

    QtOrbSliderSpinBox *const q_ptr;
    QVBoxLayout *layoutV = nullptr;
    QHBoxLayout *layoutH = nullptr;
    QtOrbSlider *slider = nullptr;
    QtOrbSpinBoxVal *spinbox = nullptr;
    QLabel *labelLeft = nullptr;
    QLabel *labelUpper = nullptr;
    // The spin box's links that a drag suspends.
    QMetaObject::Connection toSlider, toNumber, toText;
};

void QtOrbSliderSpinBoxPrivate::init()
{
    Q_Q(QtOrbSliderSpinBox);
    layoutV = new QVBoxLayout(q);
    layoutV->setObjectName(QStringLiteral("layoutV"));
    layoutV->setContentsMargins(0, 0, 0, 0);
    layoutV->setSpacing(6);
    layoutH = new QHBoxLayout;
    layoutH->setObjectName(QStringLiteral("layoutH"));
    layoutH->setContentsMargins(0, 0, 0, 0);
    layoutH->setSpacing(6);
    slider = new QtOrbSlider(Qt::Horizontal, q);
    slider->setObjectName(QStringLiteral("slider"));
    spinbox = new QtOrbSpinBoxVal(q);
    spinbox->setObjectName(QStringLiteral("spinbox"));
    layoutH->addWidget(slider, 1);
    layoutH->addWidget(spinbox, 0);
    layoutV->addLayout(layoutH);
    slider->setRange(0, 100);
    spinbox->setRange(0, 100);

    QObject::connect(slider, &QtOrbSlider::valueChanged, spinbox, &QtOrbSpinBoxVal::setValue);
    QObject::connect(slider, &QtOrbSlider::rangeChanged, q, &QtOrbSliderSpinBox::rangeChanged);
    QObject::connect(slider, &QtOrbSlider::sliderPressed, q, [this] { unlink(); });
    QObject::connect(slider, &QtOrbSlider::sliderReleased, q, [this] { released(); });
    link();
}

void QtOrbSliderSpinBoxPrivate::link()
{
    Q_Q(QtOrbSliderSpinBox);
    unlink(); // a release without a press must not link twice
    toSlider = QObject::connect(spinbox, QOverload<int>::of(&QSpinBox::valueChanged), slider,
                                &QtOrbSlider::setValue);
    toNumber = QObject::connect(spinbox, QOverload<int>::of(&QSpinBox::valueChanged), q,
                                QOverload<int>::of(&QtOrbSliderSpinBox::valueChanged));
    toText = QObject::connect(spinbox, QOverload<int>::of(&QSpinBox::valueChanged), q,
                              [q](int v) { Q_EMIT q->valueChanged(QString::number(v)); });
}

void QtOrbSliderSpinBoxPrivate::unlink()
{
    QObject::disconnect(toSlider);
    QObject::disconnect(toNumber);
    QObject::disconnect(toText);
}

void QtOrbSliderSpinBoxPrivate::released()
{
    Q_Q(QtOrbSliderSpinBox);
    link();
    if (slider->value() == spinbox->value()) {
        Q_EMIT q->valueChanged(spinbox->value());
        Q_EMIT q->valueChanged(QString::number(spinbox->value()));
    } else {
        spinbox->setValue(slider->value());
    }
}

QtOrbSliderSpinBox::QtOrbSliderSpinBox(QWidget *parent)
    : QFrame(parent)
    , d_ptr(new QtOrbSliderSpinBoxPrivate(this))
{
    Q_D(QtOrbSliderSpinBox);
    d->init();
}

QtOrbSliderSpinBox::~QtOrbSliderSpinBox() = default;

int QtOrbSliderSpinBox::value() const
{
    return d_func()->spinbox->value();
}
int QtOrbSliderSpinBox::minimum() const
{
    return d_func()->spinbox->minimum();
}
int QtOrbSliderSpinBox::maximum() const
{
    return d_func()->spinbox->maximum();
}
int QtOrbSliderSpinBox::singleStep() const
{
    return d_func()->spinbox->singleStep();
}
bool QtOrbSliderSpinBox::validate() const
{
    return d_func()->spinbox->validate();
}
bool QtOrbSliderSpinBox::validateTyping() const
{
    return d_func()->spinbox->validateTyping();
}

void QtOrbSliderSpinBox::setValue(int value)
{
    Q_D(QtOrbSliderSpinBox);
    d->spinbox->setValue(value);
    d->slider->setValue(d->spinbox->value());
}

void QtOrbSliderSpinBox::setMinimum(int minimum)
{
    setRange(minimum, qMax(minimum, maximum()));
}
void QtOrbSliderSpinBox::setMaximum(int maximum)
{
    setRange(qMin(minimum(), maximum), maximum);
}

void QtOrbSliderSpinBox::setRange(int min, int max)
{
    Q_D(QtOrbSliderSpinBox);
    d->slider->setRange(min, max);
    d->spinbox->setRange(min, max);
}

void QtOrbSliderSpinBox::setSingleStep(int step)
{
    Q_D(QtOrbSliderSpinBox);
    d->spinbox->setSingleStep(step);
    d->slider->setSingleStep(step);
}

void QtOrbSliderSpinBox::setValidate(bool validate)
{
    Q_D(QtOrbSliderSpinBox);
    d->spinbox->setValidate(validate);
    d->slider->setValidate(validate);
}

void QtOrbSliderSpinBox::setValidateTyping(bool validate)
{
    d_func()->spinbox->setValidateTyping(validate);
}

QString QtOrbSliderSpinBox::leftLabelText() const
{
    return d_func()->labelLeft ? d_func()->labelLeft->text() : QString();
}
void QtOrbSliderSpinBox::setLeftLabelText(const QString &text)
{
    Q_D(QtOrbSliderSpinBox);
    captionLabel(d->labelLeft, this, d->layoutH, "labelLeft")->setText(text);
}
QString QtOrbSliderSpinBox::topLabelText() const
{
    return d_func()->labelUpper ? d_func()->labelUpper->text() : QString();
}
void QtOrbSliderSpinBox::setTopLabelText(const QString &text)
{
    Q_D(QtOrbSliderSpinBox);
    captionLabel(d->labelUpper, this, d->layoutV, "labelUpper")->setText(text);
}
QLabel *QtOrbSliderSpinBox::leftLabel() const
{
    return d_func()->labelLeft;
}
QLabel *QtOrbSliderSpinBox::topLabel() const
{
    return d_func()->labelUpper;
}
QtOrbSpinBoxVal *QtOrbSliderSpinBox::spinBox() const
{
    return d_func()->spinbox;
}
QtOrbSlider *QtOrbSliderSpinBox::slider() const
{
    return d_func()->slider;
}

} // namespace OrbGui
