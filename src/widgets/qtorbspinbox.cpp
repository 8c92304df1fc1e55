#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval64.h>

#include "compoundvalue_p.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QSlider>
#include <QToolButton>

namespace OrbGui {

class QtOrbSpinBoxPrivate;

namespace {

// The pop-up's keys and mouse: a release of the mouse or Enter keeps the
// value reached (and announces it once), Escape and any other way of
// closing take it back.
class PopUpKeys : public QObject {
public:
    PopUpKeys(QtOrbSpinBoxPrivate *d, QObject *parent)
        : QObject(parent)
        , m_d(d)
    {
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QtOrbSpinBoxPrivate *const m_d;
};

} // namespace

class QtOrbSpinBoxPrivate : public CompoundValuePrivate {
    Q_DECLARE_PUBLIC(QtOrbSpinBox)

public:
    explicit QtOrbSpinBoxPrivate(QtOrbSpinBox *q)
        : q_ptr(q)
    {
    }
    void init(Qt::Orientation orientation);
    void popUp();
    void closePopUp(bool keep);
    QSize popUpSize();

    QtOrbSpinBox *const q_ptr;
    QHBoxLayout *layoutHH = nullptr;
    QtOrbSpinBoxVal64 *spinbox = nullptr;
    QToolButton *button = nullptr;
    QtOrbSlider *slider = nullptr;
    bool buttonWanted = true;
    // The size the host asked for (resizeSlider): at least this, and never
    // so short that a pixel jumps across much of the range.
    QSize requestedSize;
    qlonglong valueBeforePopUp = 0;
    // Deleted before this private part: the pop-up hides as it is deleted.
    QVector<QObject *> popUpFilters;

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

    QObject::connect(slider, &QtOrbSlider::focusOut, q, [this] { closePopUp(false); });
    QObject::connect(slider, &QtOrbSlider::rangeChanged, q, [this](int min, int max) {
        spinbox->setRange(min, max);
        Q_EMIT q_ptr->rangeChanged(min, max);
    });
    QObject::connect(slider, &QtOrbSlider::valueChanged, spinbox,
                     [this](int v) { spinbox->setValue(v); });
    followDrags(slider, spinbox);
    QObject::connect(button, &QToolButton::clicked, q, [this] { popUp(); });
    // After followDrags(): a drag ends the pop-up once it is released.
    QObject::connect(slider, &QtOrbSlider::sliderReleased, q, [this] { closePopUp(true); });
    popUpFilters = { new PopUpKeys(this, q), new PopUpKeys(this, q) };
    slider->slider()->installEventFilter(popUpFilters[0]);
    slider->installEventFilter(popUpFilters[1]);
    spinbox->setRange(0, 100);
    slider->setRange(0, 100);
    requestedSize = slider->size();
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

bool PopUpKeys::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape) {
            m_d->closePopUp(key != Qt::Key_Escape);
            return true;
        }
        break;
    }
    case QEvent::MouseButtonRelease:
        // After the slider has taken the release: the value is where the
        // handle came to rest.
        if (qobject_cast<QSlider *>(watched))
            QMetaObject::invokeMethod(
                parent(), [d = m_d] { d->closePopUp(true); }, Qt::QueuedConnection);
        break;
    case QEvent::Hide:
        if (!qobject_cast<QSlider *>(watched))
            m_d->closePopUp(false);
        break;
    default:
        break;
    }
    return false;
}

QSize QtOrbSpinBoxPrivate::popUpSize()
{
    const bool horizontal = slider->orientation() == Qt::Horizontal;
    const QSize hint = slider->sizeHint();
    const int requestedLength = horizontal ? requestedSize.width() : requestedSize.height();
    // One pixel a step where the range allows, within what a pop-up beside
    // a field may take; a longer range moves on the logarithmic scale.
    const double steps
        = (double(slider->maximum()) - slider->minimum()) / double(qMax(1, slider->singleStep()));
    const int length = qMax(requestedLength, qBound(200, static_cast<int>(steps) + 1, 320));
    if (steps > 10.0 * length && slider->scaleType() == QtOrbSlider::Linear)
        slider->setScaleType(QtOrbSlider::Logarithmic);
    return horizontal ? QSize(length, hint.height()) : QSize(hint.width(), length);
}

// Beside the field, inside the screen: a horizontal pop-up along the
// field's row right of the button (or left of the field where the screen
// ends), a vertical one above the button (or below where there is no room).
void QtOrbSpinBoxPrivate::popUp()
{
    Q_Q(QtOrbSpinBox);
    const QSize size = popUpSize();
    const QRect field(spinbox->mapToGlobal(QPoint(0, 0)),
                      QSize(spinbox->width() + button->width(), spinbox->height()));
    QRect screen = QRect(QPoint(0, 0), size);
    if (QScreen *on = q->screen())
        screen = on->availableGeometry();
    QPoint at;
    if (slider->orientation() == Qt::Horizontal) {
        at = QPoint(field.right() + 1, field.center().y() - size.height() / 2);
        if (at.x() + size.width() > screen.right() + 1)
            at.setX(field.left() - size.width());
    } else {
        at = QPoint(field.right() + 1 - size.width(), field.top() - size.height());
        if (at.y() < screen.top())
            at.setY(field.bottom() + 1);
    }
    at.setX(qBound(screen.left(), at.x(), qMax(screen.left(), screen.right() + 1 - size.width())));
    at.setY(qBound(screen.top(), at.y(), qMax(screen.top(), screen.bottom() + 1 - size.height())));
    valueBeforePopUp = spinbox->value();
    popUpOpen = true;
    unlink();
    slider->setGeometry(QRect(at, size));
    slider->show();
    slider->slider()->setFocus();
}

void QtOrbSpinBoxPrivate::closePopUp(bool keep)
{
    if (!popUpOpen)
        return;
    popUpOpen = false;
    slider->hide();
    if (!keep) {
        // Taken back while nothing is linked: no value goes out.
        spinbox->setValue(valueBeforePopUp);
        slider->setValue(static_cast<int>(valueBeforePopUp));
    }
    link();
    if (keep && spinbox->value() != valueBeforePopUp)
        announce();
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
    qDeleteAll(d->popUpFilters);
    d->popUpFilters.clear();
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
    resizeSlider(QSize(width, height));
}
void QtOrbSpinBox::resizeSlider(const QSize &size)
{
    Q_D(QtOrbSpinBox);
    d->requestedSize = size;
    d->slider->resize(size);
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
