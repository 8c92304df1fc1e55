#include <OrbGui/qtorbdoubleslider.h>

#include "sliderframe.h"
#include "snapping.h"

#include <QBoxLayout>
#include <QEvent>
#include <QLabel>
#include <QSlider>

#include <cmath>

namespace OrbGui {

class QtOrbDoubleSliderPrivate {
    Q_DECLARE_PUBLIC(QtOrbDoubleSlider)

public:
    explicit QtOrbDoubleSliderPrivate(QtOrbDoubleSlider *q)
        : q_ptr(q)
    {
    }
    void init(Qt::Orientation o);
    void buildLayout();
    double snap(double v) const
    {
        return validate ? snapToGrid(v, minimum, maximum, singleStep) : v;
    }
    // The distance between two positions: the increment, unless the range
    // holds more increments than an int slider can count (a float feature
    // without an increment over a wide range), then the range is divided
    // into the most positions that fit.
    double positionStep() const
    {
        constexpr double mostPositions = 1e9;
        return qMax(singleStep, (maximum - minimum) / mostPositions);
    }
    double valueFromPosition(int position) const;
    int positionFromValue(double value) const;
    void rebuild(double value);
    void rebuildPositions();
    void keep(double value);
    void place(double value);
    void updateLabels();

    QtOrbDoubleSlider *const q_ptr;
    QLabel *labelMax = nullptr;
    QLabel *labelMin = nullptr;
    QSlider *slider = nullptr;
    Qt::Orientation orientation = Qt::Vertical;
    bool validate = false;
    int decimals = 2;
    double minimum = 0;
    double maximum = 100;
    double singleStep = 1;
    double lastValue = 0;
    QMetaObject::Connection positionLink;
};

void QtOrbDoubleSliderPrivate::init(Qt::Orientation o)
{
    Q_Q(QtOrbDoubleSlider);
    orientation = o;
    labelMax = new QLabel(q);
    labelMax->setObjectName(QStringLiteral("labelMax"));
    labelMin = new QLabel(q);
    labelMin->setObjectName(QStringLiteral("labelMin"));
    slider = new QSlider(o, q);
    slider->setObjectName(QStringLiteral("slider"));
    slider->installEventFilter(q);
    buildLayout();
    QObject::connect(slider, &QSlider::sliderPressed, q, &QtOrbDoubleSlider::sliderPressed);
    QObject::connect(slider, &QSlider::sliderMoved, q, &QtOrbDoubleSlider::sliderMoved);
    QObject::connect(slider, &QSlider::sliderReleased, q, &QtOrbDoubleSlider::sliderReleased);
    rebuild(0);
    updateLabels();
}

void QtOrbDoubleSliderPrivate::buildLayout()
{
    layOutSliderFrame(q_ptr, slider, labelMin, labelMax, orientation);
}

double QtOrbDoubleSliderPrivate::valueFromPosition(int position) const
{
    if (position <= slider->minimum())
        return minimum;
    if (position >= slider->maximum())
        return maximum;
    return qBound(minimum, snap(position * positionStep() + minimum), maximum);
}

int QtOrbDoubleSliderPrivate::positionFromValue(double value) const
{
    if (value <= minimum)
        return slider->minimum();
    if (value >= maximum)
        return slider->maximum();
    return static_cast<int>((snap(value) - minimum) / positionStep() + 0.5);
}

void QtOrbDoubleSliderPrivate::place(double value)
{
    QObject::disconnect(positionLink);
    slider->setValue(positionFromValue(value));
    positionLink = QObject::connect(slider, &QSlider::valueChanged, q_ptr, [this](int position) {
        const double v = valueFromPosition(position);
        if (v != lastValue) {
            lastValue = v;
            Q_EMIT q_ptr->valueChanged(v);
        }
    });
}

void QtOrbDoubleSliderPrivate::rebuildPositions()
{
    QObject::disconnect(positionLink);
    const double step = positionStep();
    int n = static_cast<int>((maximum - minimum) / step + 0.5);
    if (maximum > minimum + step * n)
        ++n; // the last partial step still reaches the maximum
    slider->setRange(0, qMax(0, n));
}

// Puts the value back after the positions changed; it survives unless it
// left the range.
void QtOrbDoubleSliderPrivate::keep(double value)
{
    Q_Q(QtOrbDoubleSlider);
    const double kept = qBound(minimum, value, maximum);
    place(kept);
    if (kept != lastValue) {
        lastValue = kept;
        Q_EMIT q->valueChanged(kept);
    }
}

void QtOrbDoubleSliderPrivate::rebuild(double value)
{
    rebuildPositions();
    keep(value);
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
    d->init(orientation);
}

QtOrbDoubleSlider::~QtOrbDoubleSlider()
{
    Q_D(QtOrbDoubleSlider);
    QObject::disconnect(d->positionLink);
    d->slider->removeEventFilter(this);
}

double QtOrbDoubleSlider::value() const
{
    return d_func()->lastValue;
}
double QtOrbDoubleSlider::singleStep() const
{
    return d_func()->singleStep;
}

void QtOrbDoubleSlider::setSingleStep(double step)
{
    Q_D(QtOrbDoubleSlider);
    if (!(step > 0) || step == d->singleStep)
        return;
    const double current = d->lastValue;
    d->singleStep = step;
    d->rebuild(current);
}

bool QtOrbDoubleSlider::validate() const
{
    return d_func()->validate;
}
void QtOrbDoubleSlider::setValidate(bool validate)
{
    d_func()->validate = validate;
}
double QtOrbDoubleSlider::minimum() const
{
    return d_func()->minimum;
}
void QtOrbDoubleSlider::setMinimum(double minimum)
{
    setRange(minimum, qMax(minimum, maximum()));
}
double QtOrbDoubleSlider::maximum() const
{
    return d_func()->maximum;
}
void QtOrbDoubleSlider::setMaximum(double maximum)
{
    setRange(qMin(minimum(), maximum), maximum);
}

void QtOrbDoubleSlider::setRange(double min, double max)
{
    Q_D(QtOrbDoubleSlider);
    max = qMax(min, max);
    if (min == d->minimum && max == d->maximum)
        return;
    const double current = d->lastValue;
    d->minimum = min;
    d->maximum = max;
    d->updateLabels();
    d->rebuildPositions();
    Q_EMIT rangeChanged(min, max);
    d->keep(current);
}

void QtOrbDoubleSlider::setValue(double value)
{
    Q_D(QtOrbDoubleSlider);
    const double next = qBound(d->minimum, d->snap(value), d->maximum);
    d->place(next);
    if (next != d->lastValue) {
        d->lastValue = next;
        Q_EMIT valueChanged(next);
    }
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

bool QtOrbDoubleSlider::isMaxLabelVisiable() const
{
    return !d_func()->labelMax->isHidden();
}
void QtOrbDoubleSlider::setMaxLabelVisiable(bool visible)
{
    d_func()->labelMax->setVisible(visible);
}
bool QtOrbDoubleSlider::isMinLabelVisiable() const
{
    return !d_func()->labelMin->isHidden();
}
void QtOrbDoubleSlider::setMinLabelVisiable(bool visible)
{
    d_func()->labelMin->setVisible(visible);
}
Qt::Orientation QtOrbDoubleSlider::orientation() const
{
    return d_func()->orientation;
}

void QtOrbDoubleSlider::setOrientation(Qt::Orientation orientation)
{
    Q_D(QtOrbDoubleSlider);
    if (orientation == d->orientation)
        return;
    d->orientation = orientation;
    d->buildLayout();
}

bool QtOrbDoubleSlider::hasTracking() const
{
    return d_func()->slider->hasTracking();
}
void QtOrbDoubleSlider::setTracking(bool tracking)
{
    d_func()->slider->setTracking(tracking);
}
QLabel *QtOrbDoubleSlider::maxLabel() const
{
    return d_func()->labelMax;
}
QLabel *QtOrbDoubleSlider::minLabel() const
{
    return d_func()->labelMin;
}
QSlider *QtOrbDoubleSlider::slider() const
{
    return d_func()->slider;
}

bool QtOrbDoubleSlider::eventFilter(QObject *watched, QEvent *event)
{
    Q_D(QtOrbDoubleSlider);
    if (watched == d->slider && event->type() == QEvent::FocusOut) {
        Q_EMIT focusOut();
        return true;
    }
    return QFrame::eventFilter(watched, event);
}

} // namespace OrbGui
