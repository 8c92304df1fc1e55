#include <OrbGui/qtorbslider.h>

#include "sliderframe.h"
#include "snapping.h"

#include <QBoxLayout>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QSlider>

#include <cmath>

namespace OrbGui {

class QtOrbSliderPrivate {
    Q_DECLARE_PUBLIC(QtOrbSlider)

public:
    explicit QtOrbSliderPrivate(QtOrbSlider *q)
        : q_ptr(q)
    {
    }

    void init(Qt::Orientation o);
    void buildLayout();
    int snap(int v) const
    {
        return validate ? static_cast<int>(snapToGrid(qlonglong(v), qlonglong(minimum),
                                                      qlonglong(maximum), qlonglong(singleStep)))
                        : v;
    }
    int valueFromPosition(int position) const;
    int positionFromValue(int value) const;
    // Rebuilds the scale for the current settings; the value survives.
    void rebuild(int value);
    // Moves the inner slider without reporting the move as a user change.
    void place(int value);
    void onPositionChanged(int position);
    void updateLabels();

    QtOrbSlider *const q_ptr;
    QLabel *labelMax = nullptr;
    QLabel *labelMin = nullptr;
    QSlider *slider = nullptr;
    Qt::Orientation orientation = Qt::Vertical;
    bool validate = false;
    int minimum = 0;
    int maximum = 100;
    int singleStep = 1;
    double log10Coef = 100.0;
    int log10Offset = 10;
    QtOrbSlider::ScaleType scaleType = QtOrbSlider::Linear;
    int lastPosition = 0;
    int lastValue = 0;
    int keyDirection = 0; // 0 none, 1 up, 2 down
    QMetaObject::Connection positionLink;
};

void QtOrbSliderPrivate::init(Qt::Orientation o)
{
    Q_Q(QtOrbSlider);
    orientation = o;
    labelMax = new QLabel(q);
    labelMax->setObjectName(QStringLiteral("labelMax"));
    labelMin = new QLabel(q);
    labelMin->setObjectName(QStringLiteral("labelMin"));
    slider = new QSlider(o, q);
    slider->setObjectName(QStringLiteral("slider"));
    slider->installEventFilter(q);
    buildLayout();
    QObject::connect(slider, &QSlider::sliderPressed, q, [this] {
        keyDirection = 0;
        Q_EMIT q_ptr->sliderPressed();
    });
    QObject::connect(slider, &QSlider::sliderMoved, q, &QtOrbSlider::sliderMoved);
    QObject::connect(slider, &QSlider::sliderReleased, q, &QtOrbSlider::sliderReleased);
    positionLink = QObject::connect(slider, &QSlider::valueChanged, q,
                                    [this](int p) { onPositionChanged(p); });
    rebuild(0);
    updateLabels();
}

void QtOrbSliderPrivate::buildLayout()
{
    layOutSliderFrame(q_ptr, slider, labelMin, labelMax, orientation);
}

int QtOrbSliderPrivate::valueFromPosition(int position) const
{
    int value = position;
    if (scaleType != QtOrbSlider::Linear) {
        if (position >= slider->maximum())
            return maximum;
        if (position <= slider->minimum())
            return minimum;
        if (scaleType == QtOrbSlider::Logarithmic)
            value = static_cast<int>(std::pow(10.0, position / log10Coef) + 0.5) - log10Offset
                + minimum;
        else
            value = position * position + minimum;
    } else if (value == minimum || value == maximum) {
        return value;
    }
    return qBound(minimum, snap(value), maximum);
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

void QtOrbSliderPrivate::place(int value)
{
    QObject::disconnect(positionLink);
    slider->setValue(positionFromValue(value));
    lastPosition = slider->value();
    positionLink = QObject::connect(slider, &QSlider::valueChanged, q_ptr,
                                    [this](int p) { onPositionChanged(p); });
}

void QtOrbSliderPrivate::rebuild(int value)
{
    const double span = static_cast<double>(maximum) - minimum;
    QObject::disconnect(positionLink);
    switch (scaleType) {
    case QtOrbSlider::Linear:
        slider->setRange(minimum, maximum);
        break;
    case QtOrbSlider::SquareRoot: {
        const int n = static_cast<int>(std::sqrt(span) + 0.5);
        slider->setRange(0, n + (span > double(n) * n ? 1 : 0));
        break;
    }
    case QtOrbSlider::Logarithmic: {
        const int top = static_cast<int>(std::log10(span + log10Offset) * log10Coef + 0.5);
        const int check = static_cast<int>(std::pow(10.0, top / log10Coef) + 0.5);
        slider->setRange(static_cast<int>(log10Coef), top + (span > check ? 1 : 0));
        break;
    }
    }
    Q_Q(QtOrbSlider);
    const int kept = qBound(minimum, value, maximum);
    place(kept); // reconnects the position handler
    if (kept != lastValue) {
        lastValue = kept;
        Q_EMIT q->valueChanged(kept);
    }
}

void QtOrbSliderPrivate::onPositionChanged(int position)
{
    Q_Q(QtOrbSlider);
    const int value = valueFromPosition(position);
    lastPosition = position;
    if (value != lastValue) {
        lastValue = value;
        Q_EMIT q->valueChanged(value);
        return;
    }
    if (keyDirection == 0)
        return;
    // On a non-linear scale a key can move the position without changing
    // the value: step the value itself, by one increment.
    const qlonglong stepped = qlonglong(value) + (keyDirection == 1 ? singleStep : -singleStep);
    const int next = qBound(
        minimum, snap(static_cast<int>(qBound<qlonglong>(INT_MIN, stepped, INT_MAX))), maximum);
    place(next);
    if (next != lastValue) {
        lastValue = next;
        Q_EMIT q->valueChanged(next);
    }
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
    d->init(orientation);
    setRange(0, 100);
}

QtOrbSlider::~QtOrbSlider()
{
    Q_D(QtOrbSlider);
    QObject::disconnect(d->positionLink);
    d->slider->removeEventFilter(this);
}

int QtOrbSlider::value() const
{
    return d_func()->lastValue;
}
int QtOrbSlider::singleStep() const
{
    return d_func()->singleStep;
}

void QtOrbSlider::setSingleStep(int step)
{
    Q_D(QtOrbSlider);
    step = qMax(1, step);
    if (step == d->singleStep)
        return;
    const int current = d->lastValue;
    d->singleStep = step;
    d->rebuild(current);
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
    const int current = d->lastValue;
    d->scaleType = type;
    d->rebuild(current);
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
    const int current = d->lastValue;
    d->log10Coef = coefficient;
    d->rebuild(current);
}

bool QtOrbSlider::validate() const
{
    return d_func()->validate;
}

void QtOrbSlider::setValidate(bool validate)
{
    Q_D(QtOrbSlider);
    d->validate = validate;
}

int QtOrbSlider::minimum() const
{
    return d_func()->minimum;
}
void QtOrbSlider::setMinimum(int minimum)
{
    setRange(minimum, qMax(minimum, maximum()));
}
int QtOrbSlider::maximum() const
{
    return d_func()->maximum;
}
void QtOrbSlider::setMaximum(int maximum)
{
    setRange(qMin(minimum(), maximum), maximum);
}

void QtOrbSlider::setRange(int min, int max)
{
    Q_D(QtOrbSlider);
    max = qMax(min, max);
    const bool changed = min != d->minimum || max != d->maximum;
    const int current = d->lastValue;
    d->minimum = min;
    d->maximum = max;
    d->updateLabels();
    // The range goes out before the kept value, so a partner widget has the
    // new bounds (and grid) when the value arrives.
    if (changed)
        Q_EMIT rangeChanged(min, max);
    d->rebuild(current);
}

void QtOrbSlider::setValue(int value)
{
    Q_D(QtOrbSlider);
    const int next = qBound(d->minimum, d->snap(value), d->maximum);
    d->place(next);
    if (next != d->lastValue) {
        d->lastValue = next;
        Q_EMIT valueChanged(next);
    }
}

bool QtOrbSlider::isMaxLabelVisiable() const
{
    return !d_func()->labelMax->isHidden();
}
void QtOrbSlider::setMaxLabelVisiable(bool visible)
{
    d_func()->labelMax->setVisible(visible);
}
bool QtOrbSlider::isMinLabelVisiable() const
{
    return !d_func()->labelMin->isHidden();
}
void QtOrbSlider::setMinLabelVisiable(bool visible)
{
    d_func()->labelMin->setVisible(visible);
}
Qt::Orientation QtOrbSlider::orientation() const
{
    return d_func()->orientation;
}

void QtOrbSlider::setOrientation(Qt::Orientation orientation)
{
    Q_D(QtOrbSlider);
    if (orientation == d->orientation)
        return;
    d->orientation = orientation;
    d->buildLayout();
}

bool QtOrbSlider::hasTracking() const
{
    return d_func()->slider->hasTracking();
}
void QtOrbSlider::setTracking(bool tracking)
{
    d_func()->slider->setTracking(tracking);
}
QLabel *QtOrbSlider::maxLabel() const
{
    return d_func()->labelMax;
}
QLabel *QtOrbSlider::minLabel() const
{
    return d_func()->labelMin;
}
QSlider *QtOrbSlider::slider() const
{
    return d_func()->slider;
}

bool QtOrbSlider::eventFilter(QObject *watched, QEvent *event)
{
    Q_D(QtOrbSlider);
    if (watched != d->slider)
        return QFrame::eventFilter(watched, event);
    if (event->type() == QEvent::FocusOut) {
        Q_EMIT focusOut();
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent *>(event)->key()) {
        case Qt::Key_Left:
        case Qt::Key_Down:
        case Qt::Key_PageDown:
            d->keyDirection = 2;
            break;
        case Qt::Key_Up:
        case Qt::Key_Right:
        case Qt::Key_PageUp:
            d->keyDirection = 1;
            break;
        default:
            d->keyDirection = 0;
            break;
        }
    }
    return false;
}

} // namespace OrbGui
