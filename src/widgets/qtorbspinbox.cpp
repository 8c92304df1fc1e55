#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval64.h>

#include "compoundvalue_p.h"

#include <QBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QToolButton>

namespace OrbGui {

class QtOrbSpinBoxPrivate : public CompoundValuePrivate {
    Q_DECLARE_PUBLIC(QtOrbSpinBox)

public:
    explicit QtOrbSpinBoxPrivate(QtOrbSpinBox *q)
        : q_ptr(q)
    {
    }
    void init(Qt::Orientation orientation);
    void popUp();

    QtOrbSpinBox *const q_ptr;
    QHBoxLayout *layoutHH = nullptr;
    QtOrbSpinBoxVal64 *spinbox = nullptr;
    QToolButton *button = nullptr;
    QtOrbSlider *slider = nullptr;
    bool buttonWanted = true;

protected:
    QVector<QMetaObject::Connection> makeLinks() override;
    void announce() override;
};

void QtOrbSpinBoxPrivate::init(Qt::Orientation orientation)
{
    Q_Q(QtOrbSpinBox);
    initRows(q);
    spinbox = new QtOrbSpinBoxVal64(q);
    spinbox->setObjectName(QStringLiteral("spinbox"));
    spinbox->setAccelerated(true);
    spinbox->setButtonTracking(false);
    button = new QToolButton(q);
    button->setObjectName(QStringLiteral("button"));
    button->setText(orientation == Qt::Horizontal ? QStringLiteral(">") : QStringLiteral("^"));
    // A pop-up window of its own, still a child of q, so it is deleted with it.
    slider = new QtOrbSlider(orientation, q);
    slider->setObjectName(QStringLiteral("slider"));
    slider->setWindowFlags(Qt::Popup);
    slider->resize(orientation == Qt::Horizontal ? QSize(100, 20) : QSize(20, 100));

    layoutHH = new QHBoxLayout;
    layoutHH->setObjectName(QStringLiteral("layoutHH"));
    layoutHH->setSpacing(0);
    layoutHH->setContentsMargins(0, 0, 0, 0);
    layoutHH->addWidget(spinbox, 1);
    layoutHH->addWidget(button);
    layoutH->addLayout(layoutHH);

    QObject::connect(slider, &QtOrbSlider::focusOut, slider, &QWidget::hide);
    QObject::connect(slider, &QtOrbSlider::rangeChanged, q, [this](int min, int max) {
        spinbox->setRange(min, max);
        Q_EMIT q_ptr->rangeChanged(min, max);
    });
    QObject::connect(slider, &QtOrbSlider::valueChanged, spinbox,
                     [this](int v) { spinbox->setValue(v); });
    followDrags(slider, spinbox);
    QObject::connect(button, &QToolButton::clicked, q, [this] { popUp(); });
    spinbox->setRange(0, 100);
    slider->setRange(0, 100);
}

// Both of the box's value signals are cut during a drag, the text one too.
QVector<QMetaObject::Connection> QtOrbSpinBoxPrivate::makeLinks()
{
    Q_Q(QtOrbSpinBox);
    const auto number = QOverload<qlonglong>::of(&QtOrbSpinBoxVal64::valueChanged);
    const auto text = QOverload<const QString &>::of(&QtOrbSpinBoxVal64::valueChanged);
    return { QObject::connect(spinbox, number, slider,
                              [this](qlonglong v) { slider->setValue(static_cast<int>(v)); }),
             QObject::connect(spinbox, number, q,
                              [q](qlonglong v) { Q_EMIT q->valueChanged(static_cast<int>(v)); }),
             QObject::connect(spinbox, text, q,
                              QOverload<const QString &>::of(&QtOrbSpinBox::valueChanged)) };
}

// The final value goes out once, through the box's own signals.
void QtOrbSpinBoxPrivate::announce()
{
    Q_EMIT spinbox->valueChanged(spinbox->value());
    Q_EMIT spinbox->valueChanged(spinbox->text());
}

void QtOrbSpinBoxPrivate::popUp()
{
    QPoint at = button->mapToGlobal(QPoint(0, 0));
    if (slider->orientation() == Qt::Vertical)
        at.ry() -= slider->height();
    else
        at.rx() += button->width();
    slider->move(at);
    slider->show();
    slider->slider()->setFocus();
}

QtOrbSpinBox::QtOrbSpinBox(QWidget *parent)
    : QtOrbSpinBox(Qt::Vertical, parent)
{
}

QtOrbSpinBox::QtOrbSpinBox(Qt::Orientation sliderOrientation, QWidget *parent)
    : QWidget(parent)
    , d_ptr(new QtOrbSpinBoxPrivate(this))
{
    Q_D(QtOrbSpinBox);
    d->init(sliderOrientation);
}

QtOrbSpinBox::~QtOrbSpinBox()
{
    Q_D(QtOrbSpinBox);
    d->unlink();
}

int QtOrbSpinBox::value() const
{
    return static_cast<int>(d_func()->spinbox->value());
}
int QtOrbSpinBox::singleStep() const
{
    return static_cast<int>(d_func()->spinbox->singleStep());
}

void QtOrbSpinBox::setSingleStep(int step)
{
    Q_D(QtOrbSpinBox);
    if (step == singleStep())
        return;
    d->spinbox->setSingleStep(step);
    d->slider->setSingleStep(step);
}

int QtOrbSpinBox::minimum() const
{
    return static_cast<int>(d_func()->spinbox->minimum());
}
int QtOrbSpinBox::maximum() const
{
    return static_cast<int>(d_func()->spinbox->maximum());
}
void QtOrbSpinBox::setMinimum(int minimum)
{
    setRange(minimum, qMax(minimum, maximum()));
}
void QtOrbSpinBox::setMaximum(int maximum)
{
    setRange(qMin(minimum(), maximum), maximum);
}

void QtOrbSpinBox::setRange(int min, int max)
{
    Q_D(QtOrbSpinBox);
    d->spinbox->setRange(min, max);
    d->slider->setRange(min, max); // announces rangeChanged when it changes
}

void QtOrbSpinBox::setValue(int val)
{
    d_func()->spinbox->setValue(val);
}
bool QtOrbSpinBox::validate() const
{
    return d_func()->spinbox->validateStepping();
}

void QtOrbSpinBox::setValidate(bool validate)
{
    Q_D(QtOrbSpinBox);
    d->slider->setValidate(validate);
    d->spinbox->setValidateStepping(validate);
}

bool QtOrbSpinBox::validateTyping() const
{
    return d_func()->spinbox->keyboardTracking();
}
void QtOrbSpinBox::setValidateTyping(bool validate)
{
    d_func()->spinbox->setKeyboardTracking(validate);
}
bool QtOrbSpinBox::isReadOnly() const
{
    return d_func()->spinbox->isReadOnly();
}

void QtOrbSpinBox::setReadOnly(bool readOnly)
{
    Q_D(QtOrbSpinBox);
    d->spinbox->setReadOnly(readOnly);
    d->button->setVisible(!readOnly && d->buttonWanted);
}

bool QtOrbSpinBox::isSliderButtonVisible() const
{
    return d_func()->buttonWanted;
}

void QtOrbSpinBox::setSliderButtonVisible(bool visible)
{
    Q_D(QtOrbSpinBox);
    d->buttonWanted = visible;
    d->button->setVisible(visible && !isReadOnly());
}

void QtOrbSpinBox::resizeSlider(int width, int height)
{
    d_func()->slider->resize(width, height);
}
void QtOrbSpinBox::resizeSlider(const QSize &size)
{
    d_func()->slider->resize(size);
}

void QtOrbSpinBox::setSliderOrientation(Qt::Orientation orientation)
{
    Q_D(QtOrbSpinBox);
    d->slider->setOrientation(orientation);
    d->button->setText(orientation == Qt::Horizontal ? QStringLiteral(">") : QStringLiteral("^"));
}

QtOrbSpinBoxVal64 *QtOrbSpinBox::spinBox() const
{
    return d_func()->spinbox;
}
QToolButton *QtOrbSpinBox::toolButton() const
{
    return d_func()->button;
}
QtOrbSlider *QtOrbSpinBox::slider() const
{
    return d_func()->slider;
}

ORB_DEFINE_CAPTION_MEMBERS(QtOrbSpinBox)

} // namespace OrbGui
