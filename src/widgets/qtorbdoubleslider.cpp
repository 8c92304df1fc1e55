#include <OrbGui/qtorbdoubleslider.h>

#include "sliderframe_p.h"
#include "snapping.h"

#include <cmath>

namespace OrbGui {

class QtOrbDoubleSliderPrivate : public SliderFramePrivate {
    Q_DECLARE_PUBLIC(QtOrbDoubleSlider)

public:
    explicit QtOrbDoubleSliderPrivate(QtOrbDoubleSlider *q)
        : q_ptr(q)
    {
    }
    double snap(double v) const
    {
        return validate ? snapToGrid(v, minimum, maximum, singleStep) : v;
    }
    // The distance between two positions: the increment, unless the range
    // holds more increments than an int slider can count (a float feature
    // without an increment over a wide range), then the range is divided
    // into the most positions that fit. Halves keep a range wider than the
    // largest double finite.
    double positionStep() const
    {
        constexpr double mostPositions = 1e9;
        return qMax(singleStep, (maximum / 2 - minimum / 2) / (mostPositions / 2));
    }
    // How many position steps `value` lies above the minimum.
    double stepsTo(double value) const { return (value / 2 - minimum / 2) / (positionStep() / 2); }
    double atPosition(int position) const
    {
        const double half = position * (positionStep() / 2);
        return (minimum + half) + half;
    }
    double valueFromPosition(int position) const;
    int positionFromValue(double value) const;
    void rebuildPositions();
    // Moves the handle to the value's position and announces a new value.
    void showValue(double value);
    void positionChanged(int position) override;
    void updateLabels();

    QtOrbDoubleSlider *const q_ptr;
    int decimals = 2;
    double minimum = 0;
    double maximum = 100;
    double singleStep = 1;
    double lastValue = 0;
};

double QtOrbDoubleSliderPrivate::valueFromPosition(int position) const
{
    if (position <= slider->minimum())
        return minimum;
    if (position >= slider->maximum())
        return maximum;
    return qBound(minimum, snap(atPosition(position)), maximum);
}

int QtOrbDoubleSliderPrivate::positionFromValue(double value) const
{
    if (value <= minimum)
        return slider->minimum();
    if (value >= maximum)
        return slider->maximum();
    return static_cast<int>(stepsTo(snap(value)) + 0.5);
}

void QtOrbDoubleSliderPrivate::showValue(double value)
{
    Q_Q(QtOrbDoubleSlider);
    moveHandle(positionFromValue(value));
    if (value != lastValue) {
        lastValue = value;
        Q_EMIT q->valueChanged(value);
    }
}

void QtOrbDoubleSliderPrivate::positionChanged(int position)
{
    Q_Q(QtOrbDoubleSlider);
    const double v = valueFromPosition(position);
    if (v != lastValue) {
        lastValue = v;
        Q_EMIT q->valueChanged(v);
    }
}

void QtOrbDoubleSliderPrivate::rebuildPositions()
{
    int n = static_cast<int>(stepsTo(maximum) + 0.5);
    if (maximum > atPosition(n))
        ++n; // the last partial step still reaches the maximum
    setPositions(0, qMax(0, n));
}

void QtOrbDoubleSliderPrivate::updateLabels()
{
    labelMin->setText(QString::number(minimum, 'f', decimals));
    labelMax->setText(QString::number(maximum, 'f', decimals));
}

QtOrbDoubleSlider::QtOrbDoubleSlider(QWidget *parent)
    : QtOrbDoubleSlider(Qt::Vertical, parent)
{
}

QtOrbDoubleSlider::QtOrbDoubleSlider(Qt::Orientation orientation, QWidget *parent)
    : QFrame(parent)
    , d_ptr(new QtOrbDoubleSliderPrivate(this))
{
    Q_D(QtOrbDoubleSlider);
    d->initFrame(this, orientation);
    d->rebuildPositions();
    d->showValue(0);
    d->updateLabels();
}

QtOrbDoubleSlider::~QtOrbDoubleSlider()
{
    d_func()->detach();
}

void QtOrbDoubleSlider::setSingleStep(double step)
{
    Q_D(QtOrbDoubleSlider);
    if (!(step > 0) || step == d->singleStep)
        return;
    d->singleStep = step;
    d->rebuildPositions();
    d->showValue(d->lastValue);
}

void QtOrbDoubleSlider::setRange(double min, double max)
{
    Q_D(QtOrbDoubleSlider);
    max = qMax(min, max);
    if (min == d->minimum && max == d->maximum)
        return;
    d->minimum = min;
    d->maximum = max;
    d->updateLabels();
    d->rebuildPositions();
    Q_EMIT rangeChanged(min, max);
    // The value survives unless it left the range.
    d->showValue(qBound(min, d->lastValue, max));
}

void QtOrbDoubleSlider::setValue(double value)
{
    Q_D(QtOrbDoubleSlider);
    d->showValue(qBound(d->minimum, d->snap(value), d->maximum));
}

int QtOrbDoubleSlider::decimals() const
{
    return d_func()->decimals;
}

void QtOrbDoubleSlider::setDecimals(int decimals)
{
    Q_D(QtOrbDoubleSlider);
    d->decimals = qMax(0, decimals);
    d->updateLabels();
}

ORB_DEFINE_SLIDER_FRAME_MEMBERS(QtOrbDoubleSlider, double)

} // namespace OrbGui
