/// \file
/// QtOrbSlider: a framed integer slider with its minimum and maximum shown
/// beside it, a linear, logarithmic or square-root scale, and optional
/// snapping to the increment. The inner QSlider's positions are scale
/// positions; value() and valueChanged() speak values. A value survives a
/// change of scale, range or increment. Arrow keys always move the value by
/// at least one increment. GUI thread only; usable as a promoted widget.
#ifndef ORBGUI_QTORBSLIDER_H
#define ORBGUI_QTORBSLIDER_H

#include <OrbGui/orbguiglobal.h>

#include <QFrame>
#include <QScopedPointer>

class QLabel;
class QSlider;

namespace OrbGui {

class QtOrbSliderPrivate;

class ORBGUI_EXPORT QtOrbSlider : public QFrame {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.1")
    Q_PROPERTY(int value READ value WRITE setValue NOTIFY valueChanged USER true)
    Q_PROPERTY(int minimum READ minimum WRITE setMinimum)
    Q_PROPERTY(int maximum READ maximum WRITE setMaximum)
    Q_PROPERTY(int singleStep READ singleStep WRITE setSingleStep)
    Q_PROPERTY(bool validate READ validate WRITE setValidate)
    Q_PROPERTY(ScaleType scaleType READ scaleType WRITE setScaleType)
    Q_PROPERTY(double log10Coef READ log10Coef WRITE setLog10Coef)
    Q_PROPERTY(Qt::Orientation orientation READ orientation WRITE setOrientation)

public:
    enum ScaleType { Linear = 0, Logarithmic = 1, SquareRoot = 2 };
    Q_ENUM(ScaleType)

    explicit QtOrbSlider(QWidget *parent = nullptr);
    explicit QtOrbSlider(Qt::Orientation orientation, QWidget *parent = nullptr);
    ~QtOrbSlider() override;

    /// The value last set or reached by the handle. A value set by code is
    /// kept exactly (snapped when validate is on, clamped to the range) even
    /// where a non-linear scale can only place the handle near it, so a spin
    /// box beside the slider is never rewritten to a neighbouring position.
    int value() const;
    int singleStep() const;
    /// A step below 1 counts as 1.
    void setSingleStep(int step);
    ScaleType scaleType() const;
    void setScaleType(ScaleType type);
    double log10Coef() const;
    /// Positions per decade on the logarithmic scale; values of 0 or below
    /// (an empty scale) and above 1000000 (more positions than an int slider
    /// counts) are ignored.
    void setLog10Coef(double coefficient);
    bool validate() const;
    void setValidate(bool validate);
    int minimum() const;
    void setMinimum(int minimum);
    int maximum() const;
    void setMaximum(int maximum);
    bool isMaxLabelVisiable() const;
    void setMaxLabelVisiable(bool visible);
    bool isMinLabelVisiable() const;
    void setMinLabelVisiable(bool visible);
    Qt::Orientation orientation() const;
    void setOrientation(Qt::Orientation orientation);
    bool hasTracking() const;
    void setTracking(bool tracking);
    /// The parts, owned by this widget; the inner slider's positions are scale
    /// positions, so set values through this widget, not through slider().
    QLabel *maxLabel() const;
    QLabel *minLabel() const;
    QSlider *slider() const;

public Q_SLOTS:
    void setValue(int value);
    void setRange(int min, int max);

Q_SIGNALS:
    void focusOut();
    void valueChanged(int value);
    void sliderPressed();
    void sliderMoved(int position);
    void sliderReleased();
    void rangeChanged(int min, int max);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Q_DECLARE_PRIVATE(QtOrbSlider)
    Q_DISABLE_COPY(QtOrbSlider)
    QScopedPointer<QtOrbSliderPrivate> const d_ptr;
};

} // namespace OrbGui

#endif
