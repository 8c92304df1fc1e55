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

int readNumber(const QLocale &locale, const QString &text, bool *ok, int)
{
    return locale.toInt(text, ok);
}
double readNumber(const QLocale &locale, const QString &text, bool *ok, double)
{
    return locale.toDouble(text, ok);
}

// Typed text read as the user sees it: first in the widget's locale without
// group separators, so that "2,500" in a locale whose decimal separator is a
// comma is 2.5 and never 2500; then in the locale-independent form ("2.5");
// last in the locale with its group separators ("1.234,5").
template <class T> bool readTyped(const QString &text, const QLocale &locale, T *value)
{
    QLocale strict(locale);
    strict.setNumberOptions(locale.numberOptions() | QLocale::RejectGroupSeparator);
    for (const QLocale &reading : { strict, QLocale::c(), locale }) {
        bool ok = false;
        const T v = readNumber(reading, text, &ok, T());
        if (ok) {
            *value = v;
            return true;
        }
    }
    return false;
}

// With typing validation off, Enter commits the typed number (snapped by the
// box's setValue); false when the key is not for us or the text is no number.
template <class T, class Box> bool commitOnEnter(Box *box, QKeyEvent *event)
{
    T typed {};
    if (box->validateTyping() || !isEnter(event)
        || !readTyped(box->cleanText(), box->locale(), &typed))
        return false;
    box->setValue(typed);
    event->accept();
    return true;
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
    if (!commitOnEnter<int>(this, event))
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
    if (singleStep() == 0 || !commitOnEnter<double>(this, event))
        QDoubleSpinBox::keyPressEvent(event);
}

} // namespace OrbGui
