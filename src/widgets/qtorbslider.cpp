#include <OrbGui/qtorbslider.h>

#include "sliderframe_p.h"
#include "snapping.h"

#include <cmath>

namespace OrbGui {

class QtOrbSliderPrivate : public SliderFramePrivate {
    Q_DECLARE_PUBLIC(QtOrbSlider)

public:
    explicit QtOrbSliderPrivate(QtOrbSlider *q)
        : q_ptr(q)
    {
    }

    int snap(int v) const
    {
        return validate ? static_cast<int>(snapToGrid(qlonglong(v), qlonglong(minimum),
                                                      qlonglong(maximum), qlonglong(singleStep)))
                        : v;
    }
    // Limits a value computed in a wider type to the range.
    int bounded(double v) const
    {
        return v <= minimum ? minimum : v >= maximum ? maximum : static_cast<int>(v);
    }
    int valueFromPosition(int position) const;
    int positionFromValue(int value) const;
    // Rebuilds the scale for the current settings; the value survives.
    void rebuild(int value);
    // Moves the handle to the value's position and announces a new value.
    void showValue(int value);
    void positionChanged(int position) override;
    void updateLabels();

    QtOrbSlider *const q_ptr;
    int minimum = 0;
    int maximum = 100;
    int singleStep = 1;
    double log10Coef = 100.0;
    int log10Offset = 10;
    QtOrbSlider::ScaleType scaleType = QtOrbSlider::Linear;
    int lastPosition = 0;
    int lastValue = 0;
};

// Non-linear scales compute in double: over spans beyond 2^31 a square or a
// power of ten does not fit an int before it is brought back into the range.
int QtOrbSliderPrivate::valueFromPosition(int position) const
{
    if (scaleType == QtOrbSlider::Linear) {
        if (position == minimum || position == maximum)
            return position;
        return qBound(minimum, snap(position), maximum);
    }
    if (position >= slider->maximum())
        return maximum;
    if (position <= slider->minimum())
        return minimum;
    double offset;
    if (scaleType == QtOrbSlider::Logarithmic)
        offset = std::floor(std::pow(10.0, position / log10Coef) + 0.5) - log10Offset;
    else
        offset = double(position) * position;
    return qBound(minimum, snap(bounded(offset + minimum)), maximum);
}

int QtOrbSliderPrivate::positionFromValue(int value) const
{
    if (scaleType == QtOrbSlider::Linear)
        return snap(value);
    if (value >= maximum)
        return slider->maximum();
    if (value <= minimum)
        return slider->minimum();
    const double offset = static_cast<double>(snap(value)) - minimum;
    if (scaleType == QtOrbSlider::Logarithmic)
        return static_cast<int>(std::log10(offset + log10Offset) * log10Coef + 0.5);
    return static_cast<int>(std::sqrt(offset) + 0.5);
}

void QtOrbSliderPrivate::rebuild(int value)
{
    const double span = static_cast<double>(maximum) - minimum;
    switch (scaleType) {
    case QtOrbSlider::Linear:
        setPositions(minimum, maximum);
        break;
    case QtOrbSlider::SquareRoot: {
        const int n = static_cast<int>(std::sqrt(span) + 0.5);
        setPositions(0, n + (span > double(n) * n ? 1 : 0));
        break;
    }
    case QtOrbSlider::Logarithmic: {
        const int top = static_cast<int>(std::log10(span + log10Offset) * log10Coef + 0.5);
        const double check = std::floor(std::pow(10.0, top / log10Coef) + 0.5);
        setPositions(static_cast<int>(log10Coef), top + (span > check ? 1 : 0));
        break;
    }
    }
    showValue(qBound(minimum, value, maximum));
}

void QtOrbSliderPrivate::showValue(int value)
{
    Q_Q(QtOrbSlider);
    moveHandle(positionFromValue(value));
    lastPosition = slider->value();
    if (value != lastValue) {
        lastValue = value;
        Q_EMIT q->valueChanged(value);
    }
}

void QtOrbSliderPrivate::positionChanged(int position)
{
    Q_Q(QtOrbSlider);
    const int value = valueFromPosition(position);
    lastPosition = position;
    if (value != lastValue) {
        lastValue = value;
        Q_EMIT q->valueChanged(value);
        return;
    }
    if (keyDirection == NoKey)
        return;
    // On a non-linear scale a key can move the position without changing
    // the value: step the value itself, by one increment.
    const double stepped = double(value) + (keyDirection == KeyUp ? singleStep : -singleStep);
    showValue(qBound(minimum, snap(bounded(stepped)), maximum));
}

void QtOrbSliderPrivate::updateLabels()
{
    labelMin->setText(QString::number(minimum));
    labelMax->setText(QString::number(maximum));
}

QtOrbSlider::QtOrbSlider(QWidget *parent)
    : QtOrbSlider(Qt::Vertical, parent)
{
}

QtOrbSlider::QtOrbSlider(Qt::Orientation orientation, QWidget *parent)
    : QFrame(parent)
    , d_ptr(new QtOrbSliderPrivate(this))
{
    Q_D(QtOrbSlider);
    d->initFrame(this, orientation);
    d->rebuild(0);
    d->updateLabels();
}

QtOrbSlider::~QtOrbSlider()
{
    d_func()->detach();
}

void QtOrbSlider::setSingleStep(int step)
{
    Q_D(QtOrbSlider);
    step = qMax(1, step);
    if (step == d->singleStep)
        return;
    d->singleStep = step;
    d->rebuild(d->lastValue);
}

QtOrbSlider::ScaleType QtOrbSlider::scaleType() const
{
    return d_func()->scaleType;
}

void QtOrbSlider::setScaleType(ScaleType type)
{
    Q_D(QtOrbSlider);
    if (type == d->scaleType)
        return;
    d->scaleType = type;
    d->rebuild(d->lastValue);
}

double QtOrbSlider::log10Coef() const
{
    return d_func()->log10Coef;
}

void QtOrbSlider::setLog10Coef(double coefficient)
{
    Q_D(QtOrbSlider);
    if (!(coefficient > 0) || coefficient > 1e6 || coefficient == d->log10Coef)
        return;
    d->log10Coef = coefficient;
    d->rebuild(d->lastValue);
}

void QtOrbSlider::setRange(int min, int max)
{
    Q_D(QtOrbSlider);
    max = qMax(min, max);
    const bool changed = min != d->minimum || max != d->maximum;
    d->minimum = min;
    d->maximum = max;
    d->updateLabels();
    // The range goes out before the kept value, so a partner widget has the
    // new bounds (and grid) when the value arrives.
    if (changed)
        Q_EMIT rangeChanged(min, max);
    d->rebuild(d->lastValue);
}

void QtOrbSlider::setValue(int value)
{
    Q_D(QtOrbSlider);
    d->showValue(qBound(d->minimum, d->snap(value), d->maximum));
}

ORB_DEFINE_SLIDER_FRAME_MEMBERS(QtOrbSlider, int)

} // namespace OrbGui
