/// \file
/// QtOrbSpinBoxVal: an integer spin box that can snap values to the grid
/// minimum + k * step (validate) and commit typed text only on Enter
/// (validateTyping off). GUI thread only; usable as a promoted widget.
#ifndef ORBGUI_QTORBSPINBOXVAL_H
#define ORBGUI_QTORBSPINBOXVAL_H

#include <OrbGui/orbguiglobal.h>

#include <QSpinBox>

namespace OrbGui {

class ORBGUI_EXPORT QtOrbSpinBoxVal : public QSpinBox {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.1")
    Q_CLASSINFO("date", "07/20/16")
    Q_PROPERTY(bool validate READ validate WRITE setValidate)
    Q_PROPERTY(bool validateTyping READ validateTyping WRITE setValidateTyping)

public:
    explicit QtOrbSpinBoxVal(QWidget *parent = nullptr);
    ~QtOrbSpinBoxVal() override;

    /// Snap every value to the step grid (false by default).
    bool validate() const { return m_validate; }
    void setValidate(bool validate) { m_validate = validate; }
    /// True (default): typed text is committed as QSpinBox does; false:
    /// only on Enter.
    bool validateTyping() const { return m_validateTyping; }
    void setValidateTyping(bool validate) { m_validateTyping = validate; }
    /// Writes the text into the line edit without touching the value.
    void setLineEditText(const QString &text);
    int doValidation(int value) const;

    void stepBy(int steps) override;
    QValidator::State validate(QString &text, int &pos) const override;

public Q_SLOTS:
    void setValue(int val);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool m_validate = false;
    bool m_validateTyping = true;
};

} // namespace OrbGui

#endif
