/// \file
/// QtOrbGainSlider: a QtOrbDoubleSlider and a QtOrbDoubleSpinBoxVal side by
/// side, for gain and other real-valued features; a dragged value is
/// announced once, on release. Starts with 3 decimals and the range 0 to 100.
/// GUI thread only; usable as a promoted widget.
#ifndef ORBGUI_QTORBGAINSLIDER_H
#define ORBGUI_QTORBGAINSLIDER_H

#include <OrbGui/orbguiglobal.h>

#include <QFrame>
#include <QScopedPointer>

class QLabel;

namespace OrbGui {

class QtOrbDoubleSlider;
class QtOrbDoubleSpinBoxVal;
class QtOrbGainSliderPrivate;

class ORBGUI_EXPORT QtOrbGainSlider : public QFrame {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.1")
    Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged USER true)
    Q_PROPERTY(double minimum READ minimum WRITE setMinimum)
    Q_PROPERTY(double maximum READ maximum WRITE setMaximum)
    Q_PROPERTY(double singleStep READ singleStep WRITE setSingleStep)
    Q_PROPERTY(bool validate READ validate WRITE setValidate)
    Q_PROPERTY(bool validateTyping READ validateTyping WRITE setValidateTyping)
    Q_PROPERTY(QString leftLabelText READ leftLabelText WRITE setLeftLabelText)
    Q_PROPERTY(QString topLabelText READ topLabelText WRITE setTopLabelText)
    Q_PROPERTY(int decimals READ decimals WRITE setDecimals)

public:
    explicit QtOrbGainSlider(QWidget *parent = nullptr);
    ~QtOrbGainSlider() override;

    double value() const;
    double singleStep() const;
    void setSingleStep(double step);
    bool validate() const;
    void setValidate(bool validate);
    bool validateTyping() const;
    void setValidateTyping(bool validate);
    double minimum() const;
    void setMinimum(double minimum);
    double maximum() const;
    void setMaximum(double maximum);
    int decimals() const;
    void setDecimals(int decimals);
    QString leftLabelText() const;
    void setLeftLabelText(const QString &text);
    QString topLabelText() const;
    void setTopLabelText(const QString &text);
    /// The parts, owned by this widget, for hosts that style them; the labels
    /// are made on first use and null before.
    QLabel *leftLabel() const;
    QLabel *topLabel() const;
    QtOrbDoubleSpinBoxVal *spinBox() const;
    QtOrbDoubleSlider *slider() const;

public Q_SLOTS:
    void setValue(double value);
    void setRange(double min, double max);

Q_SIGNALS:
    void valueChanged(double value);
    void valueChanged(const QString &text);
    void rangeChanged(double min, double max);

private:
    Q_DECLARE_PRIVATE(QtOrbGainSlider)
    Q_DISABLE_COPY(QtOrbGainSlider)
    QScopedPointer<QtOrbGainSliderPrivate> const d_ptr;
};

} // namespace OrbGui

#endif
