/// \file
/// QtOrbSpinBox: a 64-bit spin box (QtOrbSpinBoxVal64) with an optional label
/// on the left or on top and a small button that pops up a QtOrbSlider beside
/// it. Holding an arrow scrolls the number and commits on release.
///
/// The pop-up slider opens beside the field, inside the screen, at least as
/// long as resizeSlider() asks and long enough that a pixel is a sensible
/// step (a range far longer than the slider moves on the logarithmic
/// scale). What it moves is announced once, when the mouse is released or
/// Enter is pressed, and the pop-up closes; Escape, a click elsewhere or a
/// loss of focus close it and take the value back without announcing
/// anything. GUI thread only; usable as a promoted widget.
#ifndef ORBGUI_QTORBSPINBOX_H
#define ORBGUI_QTORBSPINBOX_H

#include <OrbGui/orbguiglobal.h>

#include <QScopedPointer>
#include <QWidget>

class QLabel;
class QToolButton;

namespace OrbGui {

class QtOrbSlider;
class QtOrbSpinBoxVal64;
class QtOrbSpinBoxPrivate;

class ORBGUI_EXPORT QtOrbSpinBox : public QWidget {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.1")
    Q_CLASSINFO("date", "06/30/16")
    Q_PROPERTY(int value READ value WRITE setValue NOTIFY valueChanged USER true)
    Q_PROPERTY(int minimum READ minimum WRITE setMinimum)
    Q_PROPERTY(int maximum READ maximum WRITE setMaximum)
    Q_PROPERTY(int singleStep READ singleStep WRITE setSingleStep)
    Q_PROPERTY(bool validate READ validate WRITE setValidate)
    Q_PROPERTY(bool validateTyping READ validateTyping WRITE setValidateTyping)
    Q_PROPERTY(bool readOnly READ isReadOnly WRITE setReadOnly)
    Q_PROPERTY(bool sliderButtonVisible READ isSliderButtonVisible WRITE setSliderButtonVisible)
    Q_PROPERTY(QString leftLabelText READ leftLabelText WRITE setLeftLabelText)
    Q_PROPERTY(QString topLabelText READ topLabelText WRITE setTopLabelText)

public:
    explicit QtOrbSpinBox(QWidget *parent = nullptr);
    explicit QtOrbSpinBox(Qt::Orientation sliderOrientation, QWidget *parent = nullptr);
    ~QtOrbSpinBox() override;

    int value() const;
    int singleStep() const;
    void setSingleStep(int step);
    int minimum() const;
    void setMinimum(int minimum);
    int maximum() const;
    void setMaximum(int maximum);
    bool validate() const;
    void setValidate(bool validate);
    bool validateTyping() const;
    /// False: typed text is committed only on Enter (keyboard tracking off).
    void setValidateTyping(bool validate);
    bool isReadOnly() const;
    /// Read-only also hides the slider button.
    void setReadOnly(bool readOnly);
    QString leftLabelText() const;
    void setLeftLabelText(const QString &text);
    QString topLabelText() const;
    void setTopLabelText(const QString &text);
    bool isSliderButtonVisible() const;
    void setSliderButtonVisible(bool visible);
    void resizeSlider(int width, int height);
    void resizeSlider(const QSize &size);
    void setSliderOrientation(Qt::Orientation orientation);

    /// The parts, owned by this widget (the pop-up slider too), for hosts that
    /// style them; the labels are null until used.
    QLabel *leftLabel() const;
    QLabel *topLabel() const;
    QtOrbSpinBoxVal64 *spinBox() const;
    QToolButton *toolButton() const;
    QtOrbSlider *slider() const;

public Q_SLOTS:
    void setValue(int val);
    void setRange(int min, int max);

Q_SIGNALS:
    void valueChanged(int value);
    void valueChanged(const QString &text);
    void rangeChanged(int min, int max);

private:
    Q_DECLARE_PRIVATE(QtOrbSpinBox)
    Q_DISABLE_COPY(QtOrbSpinBox)
    QScopedPointer<QtOrbSpinBoxPrivate> const d_ptr;
};

} // namespace OrbGui

#endif
