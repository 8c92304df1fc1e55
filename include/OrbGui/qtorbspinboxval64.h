/// \file
/// QtOrbSpinBoxVal64: a spin box for signed 64-bit integers, as GenICam
/// integer features need.
///
/// Beyond range and step it can snap values to the grid minimum + k * step
/// (validateStepping), show any integer base, commit typed text only on
/// Enter when keyboard tracking is off (a typed value is discarded on focus
/// out unless ignoreFocusOut is false), and let the arrows scroll freely while
/// committing once on release (buttonTracking off). Values outside the range
/// given to setValue are ignored. GUI thread only; usable as a promoted
/// widget in .ui files.
#ifndef ORBGUI_QTORBSPINBOXVAL64_H
#define ORBGUI_QTORBSPINBOXVAL64_H

#include <OrbGui/orbguiglobal.h>

#include <QAbstractSpinBox>
#include <QScopedPointer>

namespace OrbGui {

class QtOrbSpinBoxVal64Private;

class ORBGUI_EXPORT QtOrbSpinBoxVal64 : public QAbstractSpinBox {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.0")
    Q_CLASSINFO("date", "03/29/2018")
    Q_PROPERTY(QString suffix READ suffix WRITE setSuffix)
    Q_PROPERTY(QString prefix READ prefix WRITE setPrefix)
    Q_PROPERTY(QString cleanText READ cleanText)
    Q_PROPERTY(qlonglong minimum READ minimum WRITE setMinimum)
    Q_PROPERTY(qlonglong maximum READ maximum WRITE setMaximum)
    Q_PROPERTY(qlonglong singleStep READ singleStep WRITE setSingleStep)
    Q_PROPERTY(qlonglong value READ value WRITE setValue NOTIFY valueChanged USER true)
    Q_PROPERTY(int displayIntegerBase READ displayIntegerBase WRITE setDisplayIntegerBase)

public:
    explicit QtOrbSpinBoxVal64(QWidget *parent = nullptr);
    ~QtOrbSpinBoxVal64() override;

    qlonglong value() const;

    QString prefix() const;
    void setPrefix(const QString &prefix);
    void setPrefix(QString &&prefix);
    QString suffix() const;
    void setSuffix(const QString &suffix);
    void setSuffix(QString &&suffix);
    /// The value in decimal, whatever the display base.
    QString cleanText() const;

    qlonglong singleStep() const;
    /// A step of 0 must not be combined with validateStepping.
    void setSingleStep(qlonglong step);
    qlonglong minimum() const;
    /// Neither changes nor clamps the value.
    void setMinimum(qlonglong minimum);
    qlonglong maximum() const;
    void setMaximum(qlonglong maximum);
    void setRange(qlonglong minimum, qlonglong maximum);

    int displayIntegerBase() const;
    void setDisplayIntegerBase(int base);
    bool selectWhenStepping() const;
    void setSelectWhenStepping(bool select);
    bool ignoreFocusOut() const;
    void setIgnoreFocusOut(bool ignore);
    bool validateStepping() const;
    void setValidateStepping(bool validate);
    bool buttonTracking() const;
    void setButtonTracking(bool tracking);
    /// A number typed outside the range (or beyond 64 bits) is never
    /// refused keystroke by keystroke nor limited to the range: it stays as
    /// typed, the box is marked (red text, a tool tip with the range and the
    /// step, the property "outOfRange"), Enter commits nothing while it is
    /// outside, and Escape or leaving the field brings the value back. This
    /// switch is kept for hosts that set it and no longer changes that.
    bool clampTyped() const;
    void setClampTyped(bool clamp);

    /// Commits the typed text as Enter does (snapped when validateStepping is
    /// on) and returns true. Text that does not parse or lies outside the
    /// range is not committed: the text of the current value comes back and
    /// false is returned. For a host that must take what was typed before it
    /// closes the editor (an item delegate's setModelData, for instance).
    bool commitText();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    QValidator::State validate(QString &input, int &pos) const override;
    void fixup(QString &input) const override;
    void stepBy(int steps) override;

public Q_SLOTS:
    void setValue(qlonglong value);
    void selectAll();
    void clear() override;

Q_SIGNALS:
    void valueChanged(qlonglong value);
    void valueChanged(const QString &text);

protected:
    StepEnabled stepEnabled() const override;
    virtual QString textFromValue(qlonglong value) const;
    virtual qlonglong valueFromText(const QString &text) const;

private:
    Q_DECLARE_PRIVATE(QtOrbSpinBoxVal64)
    Q_DISABLE_COPY(QtOrbSpinBoxVal64)
    QScopedPointer<QtOrbSpinBoxVal64Private> const d_ptr;
};

} // namespace OrbGui

#endif
