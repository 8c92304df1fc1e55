#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval64.h>

#include "captionlabel.h"

#include <QBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QToolButton>

namespace OrbGui {

class QtOrbSpinBoxPrivate {
    Q_DECLARE_PUBLIC(QtOrbSpinBox)

public:
    explicit QtOrbSpinBoxPrivate(QtOrbSpinBox *q)
        : q_ptr(q)
    {
    }
    void init(Qt::Orientation orientation);
    void link();
    void unlink();
    void popUp();

    QtOrbSpinBox *const q_ptr;
    QVBoxLayout *layoutV = nullptr;
    QHBoxLayout *layoutH = nullptr;
    QHBoxLayout *layoutHH = nullptr;
    QtOrbSpinBoxVal64 *spinbox = nullptr;
    QToolButton *button = nullptr;
    QtOrbSlider *slider = nullptr;
    QLabel *labelLeft = nullptr;
    QLabel *labelUpper = nullptr;
    bool buttonWanted = true;
    QMetaObject::Connection toSlider, toNumber;
};

void QtOrbSpinBoxPrivate::init(Qt::Orientation orientation)
{
    Q_Q(QtOrbSpinBox);
    spinbox = new QtOrbSpinBoxVal64(q);
    spinbox->setObjectName(QStringLiteral("spinbox"));
    spinbox->setAccelerated(true);
    spinbox->setButtonTracking(false);
    button = new QToolButton(q);
    button->setObjectName(QStringLiteral("button"));
    button->setText(orientation == Qt::Horizontal ? QStringLiteral(">") : QStringLiteral("^"));
    // A pop-up window of its own: no parent widget, so it is deleted here.
    slider = new QtOrbSlider(orientation, q);
    slider->setObjectName(QStringLiteral("slider"));
    slider->setWindowFlags(Qt::Popup);
    slider->resize(orientation == Qt::Horizontal ? QSize(100, 20) : QSize(20, 100));

    layoutV = new QVBoxLayout(q);
    layoutV->setObjectName(QStringLiteral("layoutV"));
    layoutV->setContentsMargins(0, 0, 0, 0);
    layoutH = new QHBoxLayout;
    layoutH->setObjectName(QStringLiteral("layoutH"));
    layoutH->setSpacing(6);
    layoutH->setContentsMargins(0, 0, 0, 0);
    layoutHH = new QHBoxLayout;
    layoutHH->setObjectName(QStringLiteral("layoutHH"));
    layoutHH->setSpacing(0);
    layoutHH->setContentsMargins(0, 0, 0, 0);
    layoutHH->addWidget(spinbox, 1);
    layoutHH->addWidget(button);
    layoutH->addLayout(layoutHH);
    layoutV->addLayout(layoutH);

    QObject::connect(slider, &QtOrbSlider::focusOut, slider, &QWidget::hide);
    QObject::connect(slider, &QtOrbSlider::rangeChanged, q, [this](int min, int max) {
        spinbox->setRange(min, max);
        Q_EMIT q_ptr->rangeChanged(min, max);
    });
    QObject::connect(slider, &QtOrbSlider::valueChanged, spinbox,
                     [this](int v) { spinbox->setValue(v); });
    link();
    QObject::connect(spinbox, QOverload<const QString &>::of(&QtOrbSpinBoxVal64::valueChanged), q,
                     QOverload<const QString &>::of(&QtOrbSpinBox::valueChanged));
    QObject::connect(slider, &QtOrbSlider::sliderPressed, q, [this] { unlink(); });
    QObject::connect(slider, &QtOrbSlider::sliderReleased, q, [this] {
        link();
        if (slider->value() == spinbox->value()) {
            // Announce the final value once, through the box's own signals.
            Q_EMIT spinbox->valueChanged(spinbox->value());
            Q_EMIT spinbox->valueChanged(spinbox->text());
        } else {
            spinbox->setValue(slider->value());
        }
    });
    QObject::connect(button, &QToolButton::clicked, q, [this] { popUp(); });
    spinbox->setRange(0, 100);
    slider->setRange(0, 100);
}

void QtOrbSpinBoxPrivate::link()
{
    Q_Q(QtOrbSpinBox);
    unlink(); // a release without a press must not link twice
    toSlider
        = QObject::connect(spinbox, QOverload<qlonglong>::of(&QtOrbSpinBoxVal64::valueChanged),
                           slider, [this](qlonglong v) { slider->setValue(static_cast<int>(v)); });
    toNumber
        = QObject::connect(spinbox, QOverload<qlonglong>::of(&QtOrbSpinBoxVal64::valueChanged), q,
                           [q](qlonglong v) { Q_EMIT q->valueChanged(static_cast<int>(v)); });
}

void QtOrbSpinBoxPrivate::unlink()
{
    QObject::disconnect(toSlider);
    QObject::disconnect(toNumber);
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

QString QtOrbSpinBox::leftLabelText() const
{
    return d_func()->labelLeft ? d_func()->labelLeft->text() : QString();
}
void QtOrbSpinBox::setLeftLabelText(const QString &text)
{
    Q_D(QtOrbSpinBox);
    captionLabel(d->labelLeft, this, d->layoutH, "labelLeft")->setText(text);
}
QString QtOrbSpinBox::topLabelText() const
{
    return d_func()->labelUpper ? d_func()->labelUpper->text() : QString();
}
void QtOrbSpinBox::setTopLabelText(const QString &text)
{
    Q_D(QtOrbSpinBox);
    captionLabel(d->labelUpper, this, d->layoutV, "labelUpper")->setText(text);
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

QLabel *QtOrbSpinBox::leftLabel() const
{
    return d_func()->labelLeft;
}
QLabel *QtOrbSpinBox::topLabel() const
{
    return d_func()->labelUpper;
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

} // namespace OrbGui
