// The private part that QtOrbSlider and QtOrbDoubleSlider share, as Qt's
// spin boxes share theirs: the inner slider with the minimum and maximum
// labels and their layout for either orientation, the link from the inner
// slider's position to the public value, and the inner slider's events.
// Each slider keeps its own value type and mapping between values and
// positions.
#ifndef ORBGUI_SLIDERFRAME_P_H
#define ORBGUI_SLIDERFRAME_P_H

#include <QBoxLayout>
#include <QEvent>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QSlider>

namespace OrbGui {

class SliderFramePrivate {
public:
    enum KeyDirection { NoKey = 0, KeyUp = 1, KeyDown = 2 };

    SliderFramePrivate() = default;
    virtual ~SliderFramePrivate() = default;
    SliderFramePrivate(const SliderFramePrivate &) = delete;
    SliderFramePrivate &operator=(const SliderFramePrivate &) = delete;

    // Builds the labels and the inner slider as children of `q` and passes
    // the inner slider's press, move and release on as q's own signals.
    template <class Public> void initFrame(Public *q, Qt::Orientation o)
    {
        frame = q;
        orientation = o;
        labelMax = new QLabel(q);
        labelMax->setObjectName(QStringLiteral("labelMax"));
        labelMin = new QLabel(q);
        labelMin->setObjectName(QStringLiteral("labelMin"));
        slider = new QSlider(o, q);
        slider->setObjectName(QStringLiteral("slider"));
        slider->installEventFilter(q);
        layOut();
        QObject::connect(slider, &QSlider::sliderPressed, q, [this, q] {
            keyDirection = NoKey;
            Q_EMIT q->sliderPressed();
        });
        QObject::connect(slider, &QSlider::sliderMoved, q, &Public::sliderMoved);
        QObject::connect(slider, &QSlider::sliderReleased, q, &Public::sliderReleased);
    }

    // The public class's destructor calls this: the children outlive the
    // private part, and a position change while they die must not reach it.
    void detach()
    {
        QObject::disconnect(positionLink);
        slider->removeEventFilter(frame);
    }

    void setOrientation(Qt::Orientation o)
    {
        if (o == orientation)
            return;
        orientation = o;
        layOut();
    }

    // Changes the inner slider's positions without reporting the move that
    // QSlider makes to keep its value inside them; moveHandle() follows.
    void setPositions(int first, int last)
    {
        QObject::disconnect(positionLink);
        slider->setRange(first, last);
    }

    // Puts the handle at `position` without reporting it as a user's move.
    void moveHandle(int position)
    {
        QObject::disconnect(positionLink);
        slider->setValue(position);
        positionLink = QObject::connect(slider, &QSlider::valueChanged, frame,
                                        [this](int p) { positionChanged(p); });
    }

    // The inner slider's events: focus leaving it is announced (and eaten,
    // so a pop-up can close on it); a key press records its direction.
    template <class Public> bool filterSliderEvent(Public *q, QObject *watched, QEvent *event)
    {
        if (watched != slider)
            return false;
        if (event->type() == QEvent::FocusOut) {
            Q_EMIT q->focusOut();
            return true;
        }
        if (event->type() == QEvent::KeyPress) {
            switch (static_cast<QKeyEvent *>(event)->key()) {
            case Qt::Key_Left:
            case Qt::Key_Down:
            case Qt::Key_PageDown:
                keyDirection = KeyDown;
                break;
            case Qt::Key_Up:
            case Qt::Key_Right:
            case Qt::Key_PageUp:
                keyDirection = KeyUp;
                break;
            default:
                keyDirection = NoKey;
                break;
            }
        }
        return false;
    }

    QFrame *frame = nullptr;
    QLabel *labelMax = nullptr;
    QLabel *labelMin = nullptr;
    QSlider *slider = nullptr;
    Qt::Orientation orientation = Qt::Vertical;
    bool validate = false;
    KeyDirection keyDirection = NoKey;

protected:
    // A position reached by the user (mouse, keys, or QSlider's own API).
    virtual void positionChanged(int position) = 0;

private:
    // Vertical: maximum on top, slider, minimum below. Horizontal: the slider
    // with the labels below it, minimum left. Only the layouts are replaced.
    void layOut()
    {
        delete frame->layout();
        slider->setOrientation(orientation);
        auto *layoutV = new QVBoxLayout(frame);
        layoutV->setObjectName(QStringLiteral("layoutV"));
        layoutV->setContentsMargins(0, 0, 0, 0);
        layoutV->setSpacing(0);
        auto *layoutH = new QHBoxLayout;
        layoutH->setObjectName(QStringLiteral("layoutH"));
        layoutH->setContentsMargins(0, 0, 0, 0);
        if (orientation == Qt::Vertical) {
            layoutH->setSpacing(0);
            layoutV->addWidget(labelMax, 0, Qt::AlignHCenter | Qt::AlignBottom);
            layoutH->addWidget(slider);
            layoutV->addLayout(layoutH, 1);
            layoutV->addWidget(labelMin, 0, Qt::AlignHCenter | Qt::AlignBottom);
        } else {
            layoutH->setSpacing(6);
            layoutV->addWidget(slider);
            layoutH->addWidget(labelMin, 0, Qt::AlignLeft);
            layoutH->addStretch(1);
            layoutH->addWidget(labelMax, 0, Qt::AlignRight);
            layoutV->addLayout(layoutH);
        }
    }

    QMetaObject::Connection positionLink;
};

// The members that QtOrbSlider and QtOrbDoubleSlider publish alike, written
// once; Type is the value type.
// clang-format off
#define ORB_DEFINE_SLIDER_FRAME_MEMBERS(Class, Type)                                           \
    Type Class::value() const { return d_func()->lastValue; }                                  \
    Type Class::minimum() const { return d_func()->minimum; }                                  \
    Type Class::maximum() const { return d_func()->maximum; }                                  \
    Type Class::singleStep() const { return d_func()->singleStep; }                            \
    bool Class::validate() const { return d_func()->validate; }                                \
    void Class::setValidate(bool validate) { d_func()->validate = validate; }                  \
    void Class::setMinimum(Type minimum) { setRange(minimum, qMax(minimum, maximum())); }      \
    void Class::setMaximum(Type maximum) { setRange(qMin(minimum(), maximum), maximum); }      \
    bool Class::isMaxLabelVisiable() const { return !d_func()->labelMax->isHidden(); }         \
    void Class::setMaxLabelVisiable(bool visible) { d_func()->labelMax->setVisible(visible); } \
    bool Class::isMinLabelVisiable() const { return !d_func()->labelMin->isHidden(); }         \
    void Class::setMinLabelVisiable(bool visible) { d_func()->labelMin->setVisible(visible); } \
    Qt::Orientation Class::orientation() const { return d_func()->orientation; }               \
    void Class::setOrientation(Qt::Orientation o) { d_func()->setOrientation(o); }             \
    bool Class::hasTracking() const { return d_func()->slider->hasTracking(); }                \
    void Class::setTracking(bool tracking) { d_func()->slider->setTracking(tracking); }        \
    QLabel *Class::maxLabel() const { return d_func()->labelMax; }                             \
    QLabel *Class::minLabel() const { return d_func()->labelMin; }                             \
    QSlider *Class::slider() const { return d_func()->slider; }                                \
    bool Class::eventFilter(QObject *watched, QEvent *event) {                                 \
        return d_func()->filterSliderEvent(this, watched, event)                               \
            || QFrame::eventFilter(watched, event); }
// clang-format on

} // namespace OrbGui

#endif
