/// \file
/// QtOrbDoubleSlider: a framed floating-point slider moving in whole steps of
/// a floating-point increment from the minimum, the last partial step still
/// reaching the maximum; the labels show the bounds in fixed notation.
/// GUI thread only; usable as a promoted widget.
#ifndef ORBGUI_QTORBDOUBLESLIDER_H
#define ORBGUI_QTORBDOUBLESLIDER_H

#include <OrbGui/orbguiglobal.h>

#include <QFrame>
#include <QScopedPointer>

class QLabel;
class QSlider;

namespace OrbGui {

class QtOrbDoubleSliderPrivate;

class ORBGUI_EXPORT QtOrbDoubleSlider : public QFrame {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.1")
    Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged USER true)
    Q_PROPERTY(double minimum READ minimum WRITE setMinimum)
    Q_PROPERTY(double maximum READ maximum WRITE setMaximum)
    Q_PROPERTY(double singleStep READ singleStep WRITE setSingleStep)
    Q_PROPERTY(int decimals READ decimals WRITE setDecimals)

public:
    /// Defaults: range 0 to 100, step 1, 2 decimals, no snapping.
    explicit QtOrbDoubleSlider(QWidget *parent = nullptr);
    explicit QtOrbDoubleSlider(Qt::Orientation orientation, QWidget *parent = nullptr);
    ~QtOrbDoubleSlider() override;

    double value() const;
    double singleStep() const;
    /// A step of 0 or below is ignored.
    void setSingleStep(double step);
    bool validate() const;
    void setValidate(bool validate);
    double minimum() const;
    void setMinimum(double minimum);
    double maximum() const;
    void setMaximum(double maximum);
    int decimals() const;
    void setDecimals(int decimals);
    bool isMaxLabelVisiable() const;
    void setMaxLabelVisiable(bool visible);
    bool isMinLabelVisiable() const;
    void setMinLabelVisiable(bool visible);
    Qt::Orientation orientation() const;
    void setOrientation(Qt::Orientation orientation);
    bool hasTracking() const;
    void setTracking(bool tracking);
    /// The parts, owned by this widget; the inner slider counts steps from the
    /// minimum, so set values through this widget, not through slider().
    QLabel *maxLabel() const;
    QLabel *minLabel() const;
    QSlider *slider() const;

public Q_SLOTS:
    void setValue(double value);
    void setRange(double min, double max);

Q_SIGNALS:
    void focusOut();
    void valueChanged(double value);
    void sliderPressed();
    void sliderMoved(int position);
    void sliderReleased();
    void rangeChanged(double min, double max);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Q_DECLARE_PRIVATE(QtOrbDoubleSlider)
    Q_DISABLE_COPY(QtOrbDoubleSlider)
    QScopedPointer<QtOrbDoubleSliderPrivate> const d_ptr;
};

} // namespace OrbGui

#endif
