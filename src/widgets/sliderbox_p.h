// The private part that QtOrbSliderSpinBox and QtOrbGainSlider share: a
// slider (stretching) and a spin box side by side, kept in step, the spin
// box's value being the widget's value. Only the value type differs.
#ifndef ORBGUI_SLIDERBOX_P_H
#define ORBGUI_SLIDERBOX_P_H

#include "compoundvalue_p.h"

#include <QString>

namespace OrbGui {

inline QString valueText(int value)
{
    return QString::number(value);
}
inline QString valueText(double value)
{
    return QString::number(value, 'g', 6);
}

template <class Public, class Slider, class Box, class Value>
class SliderBoxPrivate : public CompoundValuePrivate {
public:
    explicit SliderBoxPrivate(Public *q)
        : q_ptr(q)
    {
    }

    void initPair(Value minimum, Value maximum)
    {
        initRows(q_ptr);
        slider = new Slider(Qt::Horizontal, q_ptr);
        slider->setObjectName(QStringLiteral("slider"));
        spinbox = new Box(q_ptr);
        spinbox->setObjectName(QStringLiteral("spinbox"));
        layoutH->addWidget(slider, 1);
        layoutH->addWidget(spinbox, 0);
        spinbox->setRange(minimum, maximum);
        slider->setRange(minimum, maximum);
        // The spin boxes announce no range change, so the range goes through
        // setRange to both children and the slider's announcement is passed on.
        QObject::connect(slider, &Slider::rangeChanged, q_ptr, &Public::rangeChanged);
        QObject::connect(slider, &Slider::valueChanged, spinbox, &Box::setValue);
        followDrags(slider, spinbox);
    }

    // The spin box first: it may round the bounds (decimals), and the slider
    // then takes the bounds the spin box holds, so the two never disagree.
    void setRange(Value min, Value max)
    {
        spinbox->setRange(min, max);
        slider->setRange(spinbox->minimum(), spinbox->maximum());
    }
    void setValue(Value value)
    {
        spinbox->setValue(value);
        slider->setValue(spinbox->value());
    }
    void setSingleStep(Value step)
    {
        spinbox->setSingleStep(step);
        slider->setSingleStep(step);
    }
    void setValidate(bool validate)
    {
        spinbox->setValidate(validate);
        slider->setValidate(validate);
    }

    Public *const q_ptr;
    Slider *slider = nullptr;
    Box *spinbox = nullptr;

protected:
    QVector<QMetaObject::Connection> makeLinks() override
    {
        const auto changed = QOverload<Value>::of(&Box::valueChanged);
        Public *q = q_ptr;
        return { QObject::connect(spinbox, changed, slider, &Slider::setValue),
                 QObject::connect(spinbox, changed, q, QOverload<Value>::of(&Public::valueChanged)),
                 QObject::connect(spinbox, changed, q,
                                  [q](Value v) { Q_EMIT q->valueChanged(valueText(v)); }) };
    }
    void announce() override
    {
        const Value v = spinbox->value();
        Q_EMIT q_ptr->valueChanged(v);
        Q_EMIT q_ptr->valueChanged(valueText(v));
    }
};

// The members that QtOrbSliderSpinBox and QtOrbGainSlider publish alike,
// written once; Type is the value type.
// clang-format off
#define ORB_DEFINE_SLIDER_BOX_MEMBERS(Class, Type, Slider, Box)                           \
    ORB_DEFINE_CAPTION_MEMBERS(Class)                                                     \
    Class::~Class() { d_func()->unlink(); }                                               \
    Type Class::value() const { return d_func()->spinbox->value(); }                      \
    Type Class::minimum() const { return d_func()->spinbox->minimum(); }                  \
    Type Class::maximum() const { return d_func()->spinbox->maximum(); }                  \
    Type Class::singleStep() const { return d_func()->spinbox->singleStep(); }            \
    bool Class::validate() const { return d_func()->spinbox->validate(); }                \
    bool Class::validateTyping() const { return d_func()->spinbox->validateTyping(); }    \
    void Class::setValue(Type value) { d_func()->setValue(value); }                       \
    void Class::setMinimum(Type minimum) { setRange(minimum, qMax(minimum, maximum())); } \
    void Class::setMaximum(Type maximum) { setRange(qMin(minimum(), maximum), maximum); } \
    void Class::setRange(Type min, Type max) { d_func()->setRange(min, max); }            \
    void Class::setSingleStep(Type step) { d_func()->setSingleStep(step); }               \
    void Class::setValidate(bool validate) { d_func()->setValidate(validate); }           \
    void Class::setValidateTyping(bool on) { d_func()->spinbox->setValidateTyping(on); }  \
    Box *Class::spinBox() const { return d_func()->spinbox; }                             \
    Slider *Class::slider() const { return d_func()->slider; }
// clang-format on

} // namespace OrbGui

#endif
