#ifndef ORBGUI_INT64VALIDATOR_H
#define ORBGUI_INT64VALIDATOR_H

#include <QValidator>

#include <limits>

namespace OrbGui {

// Validates signed 64-bit integers written in a given base (10 by default)
// against a range. Used by QtOrbSpinBoxVal64.
class Int64Validator : public QValidator {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.0")
    Q_CLASSINFO("date", "03/28/2018")
    Q_PROPERTY(qlonglong bottom READ bottom WRITE setBottom NOTIFY bottomChanged)
    Q_PROPERTY(qlonglong top READ top WRITE setTop NOTIFY topChanged)

public:
    explicit Int64Validator(QObject *parent = nullptr);
    Int64Validator(qlonglong bottom, qlonglong top, QObject *parent = nullptr);
    ~Int64Validator() override;

    State validate(QString &input, int &pos) const override;

    qlonglong bottom() const { return m_bottom; }
    qlonglong top() const { return m_top; }
    int base() const { return m_base; }
    void setBottom(qlonglong bottom);
    void setTop(qlonglong top);
    void setRange(qlonglong bottom, qlonglong top);
    void setBase(int base) { m_base = base; }

Q_SIGNALS:
    void bottomChanged(qlonglong bottom);
    void topChanged(qlonglong top);

private:
    qlonglong m_bottom = std::numeric_limits<qlonglong>::min();
    qlonglong m_top = std::numeric_limits<qlonglong>::max();
    int m_base = 10;
};

} // namespace OrbGui

#endif
