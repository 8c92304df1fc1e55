/// \file
/// QtOrbDoubleSpinBoxVal: the floating-point counterpart of QtOrbSpinBoxVal.
/// GUI thread only; usable as a promoted widget.
#ifndef ORBGUI_QTORBDOUBLESPINBOXVAL_H
#define ORBGUI_QTORBDOUBLESPINBOXVAL_H

#include <OrbGui/orbguiglobal.h>

#include <QDoubleSpinBox>

namespace OrbGui {

class ORBGUI_EXPORT QtOrbDoubleSpinBoxVal : public QDoubleSpinBox {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.1")
    Q_CLASSINFO("date", "08/01/16")
    Q_PROPERTY(bool validate READ validate WRITE setValidate)
    Q_PROPERTY(bool validateTyping READ validateTyping WRITE setValidateTyping)

public:
    explicit QtOrbDoubleSpinBoxVal(QWidget *parent = nullptr);
    ~QtOrbDoubleSpinBoxVal() override;

    bool validate() const { return m_validate; }
    void setValidate(bool validate) { m_validate = validate; }
    bool validateTyping() const { return m_validateTyping; }
    void setValidateTyping(bool validate) { m_validateTyping = validate; }
    void setLineEditText(const QString &text);
    double doValidation(double value) const;

    void stepBy(int steps) override;
    QValidator::State validate(QString &text, int &pos) const override;

public Q_SLOTS:
    void setValue(double val);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool m_validate = false;
    bool m_validateTyping = true;
};

} // namespace OrbGui

#endif
