/// \file
/// QtOrbSliderSpinBox: a QtOrbSlider and a QtOrbSpinBoxVal side by side, kept
/// in step. A value dragged with the slider is announced once, on release.
/// GUI thread only; usable as a promoted widget.
#ifndef ORBGUI_QTORBSLIDERSPINBOX_H
#define ORBGUI_QTORBSLIDERSPINBOX_H

#include <OrbGui/orbguiglobal.h>

#include <QFrame>
#include <QScopedPointer>

class QLabel;

namespace OrbGui {

class QtOrbSlider;
class QtOrbSpinBoxVal;
class QtOrbSliderSpinBoxPrivate;

class ORBGUI_EXPORT QtOrbSliderSpinBox : public QFrame {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.1")
    Q_PROPERTY(int value READ value WRITE setValue NOTIFY valueChanged USER true)
    Q_PROPERTY(int minimum READ minimum WRITE setMinimum)
    Q_PROPERTY(int maximum READ maximum WRITE setMaximum)
    Q_PROPERTY(int singleStep READ singleStep WRITE setSingleStep)
    Q_PROPERTY(bool validate READ validate WRITE setValidate)
    Q_PROPERTY(bool validateTyping READ validateTyping WRITE setValidateTyping)
    Q_PROPERTY(QString leftLabelText READ leftLabelText WRITE setLeftLabelText)
    Q_PROPERTY(QString topLabelText READ topLabelText WRITE setTopLabelText)

public:
    explicit QtOrbSliderSpinBox(QWidget *parent = nullptr);
    ~QtOrbSliderSpinBox() override;

    int value() const;
    int minimum() const;
    void setMinimum(int minimum);
    int maximum() const;
    void setMaximum(int maximum);
    int singleStep() const;
    void setSingleStep(int step);
    bool validate() const;
    void setValidate(bool validate);
    bool validateTyping() const;
    void setValidateTyping(bool validate);
    QString leftLabelText() const;
    void setLeftLabelText(const QString &text);
    QString topLabelText() const;
    void setTopLabelText(const QString &text);
    /// The parts, owned by this widget, for hosts that style them; the labels
    /// are made on first use and null before.
    QLabel *leftLabel() const;
    QLabel *topLabel() const;
    QtOrbSpinBoxVal *spinBox() const;
    QtOrbSlider *slider() const;

public Q_SLOTS:
    void setValue(int value);
    void setRange(int min, int max);

Q_SIGNALS:
    void valueChanged(int value);
    void valueChanged(const QString &text);
    void rangeChanged(int min, int max);

private:
    Q_DECLARE_PRIVATE(QtOrbSliderSpinBox)
    Q_DISABLE_COPY(QtOrbSliderSpinBox)
    QScopedPointer<QtOrbSliderSpinBoxPrivate> const d_ptr;
};

} // namespace OrbGui

#endif
