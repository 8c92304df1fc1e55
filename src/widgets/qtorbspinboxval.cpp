#include <OrbGui/qtorbdoublespinboxval.h>
#include <OrbGui/qtorbspinboxval.h>

#include "snapping.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace OrbGui {

namespace {

// With typing validation off, typed text waits for Enter: what would be
// Acceptable is only Intermediate until then.
QValidator::State demote(QValidator::State state, bool validateTyping)
{
    return (!validateTyping && state == QValidator::Acceptable) ? QValidator::Intermediate : state;
}

bool isEnter(const QKeyEvent *event)
{
    return event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
}

} // namespace

QtOrbSpinBoxVal::QtOrbSpinBoxVal(QWidget *parent)
    : QSpinBox(parent)
{
}
QtOrbSpinBoxVal::~QtOrbSpinBoxVal() = default;

void QtOrbSpinBoxVal::setLineEditText(const QString &text)
{
    lineEdit()->setText(text);
}

int QtOrbSpinBoxVal::doValidation(int value) const
{
    return static_cast<int>(snapToGrid(qlonglong(value), qlonglong(minimum()), qlonglong(maximum()),
                                       qlonglong(singleStep())));
}

void QtOrbSpinBoxVal::setValue(int val)
{
    QSpinBox::setValue(m_validate ? doValidation(val) : val);
}

void QtOrbSpinBoxVal::stepBy(int steps)
{
    setValue(static_cast<int>(
        qBound<qlonglong>(INT_MIN, qlonglong(value()) + qlonglong(steps) * singleStep(), INT_MAX)));
}

QValidator::State QtOrbSpinBoxVal::validate(QString &text, int &pos) const
{
    return demote(QSpinBox::validate(text, pos), m_validateTyping);
}

void QtOrbSpinBoxVal::keyPressEvent(QKeyEvent *event)
{
    if (!m_validateTyping && isEnter(event)) {
        QString number = cleanText();
        bool ok = false;
        const int typed = number.toInt(&ok, 10);
        if (ok) {
            setValue(typed);
            event->accept();
            return;
        }
    }
    QSpinBox::keyPressEvent(event);
}

QtOrbDoubleSpinBoxVal::QtOrbDoubleSpinBoxVal(QWidget *parent)
    : QDoubleSpinBox(parent)
{
}
QtOrbDoubleSpinBoxVal::~QtOrbDoubleSpinBoxVal() = default;

void QtOrbDoubleSpinBoxVal::setLineEditText(const QString &text)
{
    lineEdit()->setText(text);
}

double QtOrbDoubleSpinBoxVal::doValidation(double value) const
{
    return snapToGrid(value, minimum(), maximum(), singleStep());
}

void QtOrbDoubleSpinBoxVal::setValue(double val)
{
    QDoubleSpinBox::setValue(m_validate ? doValidation(val) : val);
}

void QtOrbDoubleSpinBoxVal::stepBy(int steps)
{
    setValue(value() + steps * singleStep());
}

QValidator::State QtOrbDoubleSpinBoxVal::validate(QString &text, int &pos) const
{
    return demote(QDoubleSpinBox::validate(text, pos), m_validateTyping);
}

void QtOrbDoubleSpinBoxVal::keyPressEvent(QKeyEvent *event)
{
    if (!m_validateTyping && isEnter(event) && singleStep() != 0) {
        // The locale-independent decimal form; a locale's decimal comma is
        // accepted too, as the user sees it.
        QString number = cleanText();
        number.replace(locale().decimalPoint(), QLatin1Char('.'));
        number.remove(locale().groupSeparator());
        bool ok = false;
        const double typed = QLocale::c().toDouble(number, &ok);
        if (ok) {
            setValue(typed);
            event->accept();
            return;
        }
    }
    QDoubleSpinBox::keyPressEvent(event);
}

} // namespace OrbGui
