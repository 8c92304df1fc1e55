#include "int64validator.h"

namespace OrbGui {

Int64Validator::Int64Validator(QObject *parent)
    : QValidator(parent)
{
}

Int64Validator::Int64Validator(qlonglong bottom, qlonglong top, QObject *parent)
    : QValidator(parent)
    , m_bottom(bottom)
    , m_top(top)
{
}

Int64Validator::~Int64Validator() = default;

QValidator::State Int64Validator::validate(QString &input, int &) const
{
    if (input.isEmpty())
        return Intermediate;
    if (input == QLatin1String("-"))
        return m_bottom < 0 ? Intermediate : Invalid;
    bool ok = false;
    const qlonglong value = input.toLongLong(&ok, m_base);
    if (!ok)
        return Invalid;
    if (m_bottom >= 0) {
        if (value < 0 || value > m_top)
            return Invalid;
        return value < m_bottom ? Intermediate : Acceptable;
    }
    if (m_top < 0) {
        // A positive entry short of the magnitude of the bottom may still
        // become valid by a leading minus sign. The magnitude is taken in
        // unsigned arithmetic: the smallest 64-bit value has no positive
        // counterpart.
        if (value > m_top)
            return (value < 0
                    || static_cast<quint64>(value) <= quint64(0) - static_cast<quint64>(m_bottom))
                ? Intermediate
                : Invalid;
        return value < m_bottom ? Invalid : Acceptable;
    }
    if (value > m_top || value < m_bottom)
        return Invalid;
    return Acceptable;
}

void Int64Validator::setBottom(qlonglong bottom)
{
    setRange(bottom, m_top);
}
void Int64Validator::setTop(qlonglong top)
{
    setRange(m_bottom, top);
}

void Int64Validator::setRange(qlonglong bottom, qlonglong top)
{
    const bool bottomChanges = bottom != m_bottom;
    const bool topChanges = top != m_top;
    m_bottom = bottom;
    m_top = top;
    if (bottomChanges)
        Q_EMIT bottomChanged(m_bottom);
    if (topChanges)
        Q_EMIT topChanged(m_top);
}

} // namespace OrbGui
