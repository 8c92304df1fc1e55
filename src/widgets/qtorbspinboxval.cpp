#include <OrbGui/qtorbdoublespinboxval.h>
#include <OrbGui/qtorbspinboxval.h>

#include "outofrange_p.h"
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

// The number typed, without the box's prefix and suffix.
template <class Box> QString typedNumber(const Box *box, const QString &text)
{
    QString number = text;
    if (number.startsWith(box->prefix()))
        number.remove(0, box->prefix().size());
    if (!box->suffix().isEmpty() && number.endsWith(box->suffix()))
        number.chop(box->suffix().size());
    return number.trimmed();
}

// A number outside the range is kept as typed: the base class would call it
// Invalid and refuse the keystroke (70000 became 7000).
// Read as a real number: an integer too long for an int is still a number.
template <class Box>
QValidator::State keepOutside(const Box *box, const QString &text, QValidator::State state)
{
    const QString number = typedNumber(box, text);
    double typed = 0;
    if (state == QValidator::Invalid
        && (number == QLatin1String("-") || readTyped(number, box->locale(), &typed)))
        return QValidator::Intermediate;
    return state;
}

template <class Box> QString stepText(const Box *box)
{
    return box->property("validate").toBool() ? box->locale().toString(box->singleStep())
                                              : QString();
}

// Marks the box while the typed number lies outside its range.
template <class Box> void followTyping(Box *box, QLineEdit *edit)
{
    double typed = 0;
    const bool outside = readTyped(typedNumber(box, edit->text()), box->locale(), &typed)
        && (typed < box->minimum() || typed > box->maximum());
    markOutOfRange(box, edit, outside, box->locale().toString(box->minimum()),
                   box->locale().toString(box->maximum()), stepText(box));
}

// With typing validation off, Enter commits the typed number (snapped by the
// box's setValue); a number outside the range is not committed and stays.
// False when the key is not for us or the text is no number.
template <class T, class Box> bool commitOnEnter(Box *box, QKeyEvent *event)
{
    double typed = 0;
    if (box->validateTyping() || !isEnter(event)
        || !readTyped(typedNumber(box, box->text()), box->locale(), &typed))
        return false;
    event->accept();
    if (typed < box->minimum() || typed > box->maximum())
        return true;
    T exact {};
    if (readTyped(box->cleanText(), box->locale(), &exact))
        box->setValue(exact);
    return true;
}

QString valueText(const QSpinBox *box)
{
    return box->displayIntegerBase() == 10
        ? box->locale().toString(box->value())
        : QString::number(box->value(), box->displayIntegerBase());
}

QString valueText(const QDoubleSpinBox *box)
{
    return box->locale().toString(box->value(), 'f', box->decimals());
}

// Escape takes a number outside the range back to the box's value; the key
// goes on (a dialog closes on it as ever).
template <class Box> void escapeOutside(Box *box, QLineEdit *edit, QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && box->property("outOfRange").toBool()) {
        edit->setText(box->prefix() + valueText(box) + box->suffix());
        markOutOfRange(box, edit, false, QString(), QString(), QString());
    }
}

} // namespace

QtOrbSpinBoxVal::QtOrbSpinBoxVal(QWidget *parent)
    : QSpinBox(parent)
{
    connect(lineEdit(), &QLineEdit::textChanged, this, [this] { followTyping(this, lineEdit()); });
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
    return demote(keepOutside(this, text, QSpinBox::validate(text, pos)), m_validateTyping);
}

void QtOrbSpinBoxVal::keyPressEvent(QKeyEvent *event)
{
    escapeOutside(this, lineEdit(), event);
    if (!commitOnEnter<int>(this, event))
        QSpinBox::keyPressEvent(event);
}

QtOrbDoubleSpinBoxVal::QtOrbDoubleSpinBoxVal(QWidget *parent)
    : QDoubleSpinBox(parent)
{
    connect(lineEdit(), &QLineEdit::textChanged, this, [this] { followTyping(this, lineEdit()); });
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
    return demote(keepOutside(this, text, QDoubleSpinBox::validate(text, pos)), m_validateTyping);
}

void QtOrbDoubleSpinBoxVal::keyPressEvent(QKeyEvent *event)
{
    escapeOutside(this, lineEdit(), event);
    if (singleStep() == 0 || !commitOnEnter<double>(this, event))
        QDoubleSpinBox::keyPressEvent(event);
}

} // namespace OrbGui
