#include <OrbGui/qtorbspinboxval64.h>

#include "int64validator.h"
#include "outofrange_p.h"
#include "snapping.h"

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyle>
#include <QStyleOptionSpinBox>

#include <limits>

namespace OrbGui {

class QtOrbSpinBoxVal64Private {
    Q_DECLARE_PUBLIC(QtOrbSpinBoxVal64)

public:
    // Watches the spin box's own events: presses and releases of the arrows
    // and stepping keys, Enter, and focus changes. It never consumes one.
    class EventAnalyzer : public QObject {
    public:
        explicit EventAnalyzer(QtOrbSpinBoxVal64Private *owner)
            : d(owner)
        {
        }
        bool eventFilter(QObject *watched, QEvent *event) override;

    private:
        QtOrbSpinBoxVal64Private *d;
    };

    explicit QtOrbSpinBoxVal64Private(QtOrbSpinBoxVal64 *q)
        : q_ptr(q)
        , analyzer(this)
    {
    }

    void init();
    QString numberPart(const QString &text) const;
    QString fullText(qlonglong v) const { return prefix + q_ptr->textFromValue(v) + suffix; }
    qlonglong snapped(qlonglong v) const;
    void commit(qlonglong v);
    bool commitTypedText(bool discard, bool keepOutside = false);
    // Whether `number` is written as a number (a sign, digits of the base),
    // whatever its size.
    bool looksLikeNumber(const QString &number) const;
    void followTyping();
    // value + steps * singleStep, or false when that leaves the 64-bit range.
    bool stepped(qlonglong from, int steps, qlonglong *result) const;
    void startStepping(bool discardTyped);
    void stopStepping();
    void selectNumber();
    void invalidateSizeHints();
    void onCursorPositionChanged(int oldPos, int newPos);
    void onTextEdited();

    QtOrbSpinBoxVal64 *const q_ptr;
    QString prefix;
    QString suffix;
    qlonglong minimum = 0;
    qlonglong maximum = 99;
    qlonglong singleStep = 1;
    qlonglong value = 0;
    qlonglong pendingValue = 0;
    int displayIntegerBase = 10;
    bool selectWhenStepping = true;
    bool validateStepping = false;
    bool ignoreFocusOut = true;
    bool steppingActive = false;
    bool textDirty = false;
    bool buttonTracking = true;
    bool clampTyped = false;
    Int64Validator validator;
    mutable QSize cachedSizeHint;
    mutable QSize cachedMinimumSizeHint;
    EventAnalyzer analyzer;
};

void QtOrbSpinBoxVal64Private::init()
{
    Q_Q(QtOrbSpinBoxVal64);
    validator.setBase(displayIntegerBase);
    validator.setRange(minimum, maximum);
    q->lineEdit()->setText(fullText(value));
    QObject::connect(q->lineEdit(), &QLineEdit::cursorPositionChanged, q,
                     [this](int oldPos, int newPos) { onCursorPositionChanged(oldPos, newPos); });
    QObject::connect(q->lineEdit(), &QLineEdit::textEdited, q, [this] { onTextEdited(); });
    q->installEventFilter(&analyzer);
}

QString QtOrbSpinBoxVal64Private::numberPart(const QString &text) const
{
    // By length only: the user cannot edit inside the prefix or suffix.
    const int length = text.size() - prefix.size() - suffix.size();
    return length > 0 ? text.mid(prefix.size(), length) : QString();
}

qlonglong QtOrbSpinBoxVal64Private::snapped(qlonglong v) const
{
    return validateStepping ? snapToGrid(v, minimum, maximum, singleStep) : v;
}

void QtOrbSpinBoxVal64Private::commit(qlonglong v)
{
    Q_Q(QtOrbSpinBoxVal64);
    if (v < minimum || v > maximum)
        return;
    v = snapped(v);
    const QString text = fullText(v);
    q->lineEdit()->setText(text);
    if (v != value) {
        value = pendingValue = v;
        Q_EMIT q->valueChanged(v);
        Q_EMIT q->valueChanged(text);
    }
    pendingValue = value;
}

bool QtOrbSpinBoxVal64Private::looksLikeNumber(const QString &number) const
{
    int digits = 0;
    for (int i = 0; i < number.size(); ++i) {
        const QChar c = number.at(i);
        if (i == 0 && c == QLatin1Char('-'))
            continue;
        bool ok = false;
        QString(c).toInt(&ok, displayIntegerBase);
        if (!ok)
            return false;
        ++digits;
    }
    return digits > 0;
}

// Enter (keepOutside) leaves a number outside the range as typed, marked,
// and writes nothing; leaving the field or discarding brings the value back.
bool QtOrbSpinBoxVal64Private::commitTypedText(bool discard, bool keepOutside)
{
    Q_Q(QtOrbSpinBoxVal64);
    textDirty = false;
    QString number = numberPart(q->lineEdit()->text());
    if (displayIntegerBase == 10)
        number.remove(q->locale().groupSeparator());
    bool ok = false;
    const qlonglong v = number.toLongLong(&ok, displayIntegerBase);
    if (ok && !discard && v >= minimum && v <= maximum) {
        commit(v);
        followTyping();
        return true;
    }
    if (!discard && keepOutside && (ok || looksLikeNumber(number))) {
        textDirty = true;
        followTyping();
        return false;
    }
    q->lineEdit()->setText(fullText(value));
    followTyping();
    return false;
}

void QtOrbSpinBoxVal64Private::followTyping()
{
    Q_Q(QtOrbSpinBoxVal64);
    QString number = numberPart(q->lineEdit()->text());
    if (displayIntegerBase == 10)
        number.remove(q->locale().groupSeparator());
    bool ok = false;
    const qlonglong v = number.toLongLong(&ok, displayIntegerBase);
    const bool outside = ok ? (v < minimum || v > maximum) : looksLikeNumber(number);
    markOutOfRange(q, q->lineEdit(), outside, QString::number(minimum, displayIntegerBase),
                   QString::number(maximum, displayIntegerBase),
                   validateStepping && singleStep > 1 ? QString::number(singleStep) : QString());
}

bool QtOrbSpinBoxVal64Private::stepped(qlonglong from, int steps, qlonglong *result) const
{
    // Wide enough for any int times any 64-bit step: steps * singleStep may
    // leave 64 bits while the sum lands inside them.
    __extension__ typedef __int128 Wide;
    const Wide n = Wide(from) + Wide(steps) * singleStep;
    if (n < std::numeric_limits<qlonglong>::min() || n > std::numeric_limits<qlonglong>::max())
        return false;
    *result = static_cast<qlonglong>(n);
    return true;
}

void QtOrbSpinBoxVal64Private::startStepping(bool discardTyped)
{
    Q_Q(QtOrbSpinBoxVal64);
    if (!q->keyboardTracking() && textDirty)
        commitTypedText(discardTyped);
    steppingActive = true;
}

void QtOrbSpinBoxVal64Private::stopStepping()
{
    steppingActive = false;
    if (!buttonTracking)
        commit(pendingValue);
}

void QtOrbSpinBoxVal64Private::selectNumber()
{
    Q_Q(QtOrbSpinBoxVal64);
    const int start = prefix.size();
    const int end = q->lineEdit()->text().size() - suffix.size();
    if (end >= start)
        q->lineEdit()->setSelection(end, start - end); // cursor ends at the number's start
}

void QtOrbSpinBoxVal64Private::invalidateSizeHints()
{
    Q_Q(QtOrbSpinBoxVal64);
    cachedSizeHint = QSize();
    cachedMinimumSizeHint = QSize();
    q->updateGeometry();
}

void QtOrbSpinBoxVal64Private::onCursorPositionChanged(int oldPos, int newPos)
{
    Q_Q(QtOrbSpinBoxVal64);
    QLineEdit *edit = q->lineEdit();
    if (edit->hasSelectedText())
        return; // selecting the number moves the cursor on purpose
    const int numberEnd = edit->text().size() - suffix.size();
    if (newPos < prefix.size())
        edit->setCursorPosition(oldPos < prefix.size() ? prefix.size() : oldPos);
    else if (newPos > numberEnd)
        edit->setCursorPosition(numberEnd);
}

void QtOrbSpinBoxVal64Private::onTextEdited()
{
    Q_Q(QtOrbSpinBoxVal64);
    textDirty = true;
    followTyping();
    if (q->keyboardTracking())
        commitTypedText(false);
}

bool QtOrbSpinBoxVal64Private::EventAnalyzer::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != d->q_ptr || event->type() >= 24)
        return false;
    auto isSteppingKey = [](const QKeyEvent *key) {
        return !key->isAutoRepeat()
            && (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down
                || key->key() == Qt::Key_PageUp || key->key() == Qt::Key_PageDown);
    };
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        d->startStepping(d->ignoreFocusOut);
        break;
    case QEvent::MouseButtonRelease:
        d->stopStepping();
        break;
    case QEvent::KeyPress: {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (isSteppingKey(key))
            d->startStepping(d->ignoreFocusOut);
        else if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
            d->commitTypedText(false, true);
        else if (key->key() == Qt::Key_Escape && d->q_ptr->property("outOfRange").toBool())
            d->commitTypedText(true);
        break;
    }
    case QEvent::KeyRelease:
        if (isSteppingKey(static_cast<QKeyEvent *>(event)))
            d->stopStepping();
        break;
    case QEvent::FocusIn:
        if (d->selectWhenStepping)
            d->selectNumber();
        break;
    case QEvent::FocusOut:
        if (!d->q_ptr->keyboardTracking() && d->textDirty)
            d->commitTypedText(d->ignoreFocusOut);
        break;
    default:
        break;
    }
    return false;
}

QtOrbSpinBoxVal64::QtOrbSpinBoxVal64(QWidget *parent)
    : QAbstractSpinBox(parent)
    , d_ptr(new QtOrbSpinBoxVal64Private(this))
{
    Q_D(QtOrbSpinBoxVal64);
    d->init();
}

QtOrbSpinBoxVal64::~QtOrbSpinBoxVal64()
{
    // The filter lives in the private part, which dies first.
    removeEventFilter(&d_ptr->analyzer);
}

qlonglong QtOrbSpinBoxVal64::value() const
{
    return d_func()->value;
}
QString QtOrbSpinBoxVal64::prefix() const
{
    return d_func()->prefix;
}
QString QtOrbSpinBoxVal64::suffix() const
{
    return d_func()->suffix;
}

void QtOrbSpinBoxVal64::setPrefix(const QString &prefix)
{
    setPrefix(QString(prefix));
}

void QtOrbSpinBoxVal64::setPrefix(QString &&prefix)
{
    Q_D(QtOrbSpinBoxVal64);
    d->prefix = std::move(prefix);
    lineEdit()->setText(d->fullText(d->value));
    d->invalidateSizeHints();
}

void QtOrbSpinBoxVal64::setSuffix(const QString &suffix)
{
    setSuffix(QString(suffix));
}

void QtOrbSpinBoxVal64::setSuffix(QString &&suffix)
{
    Q_D(QtOrbSpinBoxVal64);
    d->suffix = std::move(suffix);
    lineEdit()->setText(d->fullText(d->value));
    d->invalidateSizeHints();
}

QString QtOrbSpinBoxVal64::cleanText() const
{
    return QString::number(d_func()->value);
}
qlonglong QtOrbSpinBoxVal64::singleStep() const
{
    return d_func()->singleStep;
}
void QtOrbSpinBoxVal64::setSingleStep(qlonglong step)
{
    d_func()->singleStep = step;
}
qlonglong QtOrbSpinBoxVal64::minimum() const
{
    return d_func()->minimum;
}
qlonglong QtOrbSpinBoxVal64::maximum() const
{
    return d_func()->maximum;
}

void QtOrbSpinBoxVal64::setMinimum(qlonglong minimum)
{
    Q_D(QtOrbSpinBoxVal64);
    d->minimum = minimum;
    if (d->maximum < minimum)
        d->maximum = minimum;
    d->validator.setRange(d->minimum, d->maximum);
    d->invalidateSizeHints();
}

void QtOrbSpinBoxVal64::setMaximum(qlonglong maximum)
{
    Q_D(QtOrbSpinBoxVal64);
    d->maximum = maximum;
    if (d->minimum >= maximum)
        d->minimum = maximum;
    d->validator.setRange(d->minimum, d->maximum);
    d->invalidateSizeHints();
}

void QtOrbSpinBoxVal64::setRange(qlonglong minimum, qlonglong maximum)
{
    Q_D(QtOrbSpinBoxVal64);
    d->minimum = minimum;
    d->maximum = qMax(minimum, maximum);
    // The validator gets the bounds as given, even when they are reversed.
    d->validator.setRange(minimum, maximum);
    d->invalidateSizeHints();
}

int QtOrbSpinBoxVal64::displayIntegerBase() const
{
    return d_func()->displayIntegerBase;
}

void QtOrbSpinBoxVal64::setDisplayIntegerBase(int base)
{
    Q_D(QtOrbSpinBoxVal64);
    d->displayIntegerBase = base;
    d->validator.setBase(base);
    d->invalidateSizeHints();
}

bool QtOrbSpinBoxVal64::selectWhenStepping() const
{
    return d_func()->selectWhenStepping;
}
void QtOrbSpinBoxVal64::setSelectWhenStepping(bool select)
{
    d_func()->selectWhenStepping = select;
}
bool QtOrbSpinBoxVal64::ignoreFocusOut() const
{
    return d_func()->ignoreFocusOut;
}
void QtOrbSpinBoxVal64::setIgnoreFocusOut(bool ignore)
{
    d_func()->ignoreFocusOut = ignore;
}
bool QtOrbSpinBoxVal64::validateStepping() const
{
    return d_func()->validateStepping;
}
void QtOrbSpinBoxVal64::setValidateStepping(bool validate)
{
    d_func()->validateStepping = validate;
}
bool QtOrbSpinBoxVal64::buttonTracking() const
{
    return d_func()->buttonTracking;
}
void QtOrbSpinBoxVal64::setButtonTracking(bool tracking)
{
    d_func()->buttonTracking = tracking;
}

void QtOrbSpinBoxVal64::setValue(qlonglong value)
{
    d_func()->commit(value);
}

bool QtOrbSpinBoxVal64::clampTyped() const
{
    return d_func()->clampTyped;
}
void QtOrbSpinBoxVal64::setClampTyped(bool clamp)
{
    d_func()->clampTyped = clamp;
}

bool QtOrbSpinBoxVal64::commitText()
{
    return d_func()->commitTypedText(false);
}

void QtOrbSpinBoxVal64::selectAll()
{
    d_func()->selectNumber();
}

void QtOrbSpinBoxVal64::clear()
{
    Q_D(QtOrbSpinBoxVal64);
    lineEdit()->setText(d->prefix + d->suffix);
    lineEdit()->setCursorPosition(d->prefix.size());
}

QValidator::State QtOrbSpinBoxVal64::validate(QString &input, int &pos) const
{
    Q_D(const QtOrbSpinBoxVal64);
    QString number = d->numberPart(input);
    const QValidator::State state = d->validator.validate(number, pos);
    // A number outside the range (or beyond 64 bits) stays as typed: refusing
    // the keystroke would change it into another number (70000 into 7000).
    if (state == QValidator::Invalid
        && (number == QLatin1String("-") || d->looksLikeNumber(number)))
        return QValidator::Intermediate;
    return state;
}

void QtOrbSpinBoxVal64::fixup(QString &) const { }

void QtOrbSpinBoxVal64::stepBy(int steps)
{
    Q_D(QtOrbSpinBoxVal64);
    const bool pending = d->steppingActive && !d->buttonTracking;
    qlonglong n = 0;
    // A step that leaves the range (or the 64-bit range) is dropped, or
    // wraps to the other end; the number never wraps around 64 bits.
    const bool representable = d->stepped(pending ? d->pendingValue : d->value, steps, &n);
    if (!representable || n < d->minimum || n > d->maximum) {
        if (!wrapping() || d->minimum > d->maximum)
            return;
        const bool below = representable ? n < d->minimum : steps < 0;
        n = below ? d->maximum : d->minimum;
    }
    if (pending) {
        // Scrolling with the button held: shown, committed on release.
        d->pendingValue = n;
        lineEdit()->setText(d->fullText(n));
    } else {
        n = d->snapped(n);
        const QString text = d->fullText(n);
        lineEdit()->setText(text);
        if (n != d->value) {
            d->value = d->pendingValue = n;
            Q_EMIT valueChanged(n);
            Q_EMIT valueChanged(text);
        }
    }
    if (d->selectWhenStepping)
        d->selectNumber();
    update();
}

QAbstractSpinBox::StepEnabled QtOrbSpinBoxVal64::stepEnabled() const
{
    Q_D(const QtOrbSpinBoxVal64);
    if (isReadOnly())
        return StepNone;
    if (wrapping())
        return StepUpEnabled | StepDownEnabled;
    StepEnabled enabled = StepNone;
    if (d->pendingValue > d->minimum)
        enabled |= StepDownEnabled;
    if (d->pendingValue < d->maximum)
        enabled |= StepUpEnabled;
    return enabled;
}

QString QtOrbSpinBoxVal64::textFromValue(qlonglong value) const
{
    Q_D(const QtOrbSpinBoxVal64);
    if (d->displayIntegerBase == 10) {
        QString text = locale().toString(value);
        if (!isGroupSeparatorShown()
            && (value > 999 || value < -999 || value == std::numeric_limits<qlonglong>::min()))
            text.remove(locale().groupSeparator());
        return text;
    }
    // The magnitude of the smallest value does not fit a qlonglong.
    const quint64 magnitude
        = value < 0 ? quint64(0) - static_cast<quint64>(value) : static_cast<quint64>(value);
    return (value < 0 ? QStringLiteral("-") : QString())
        + QString::number(magnitude, d->displayIntegerBase);
}

qlonglong QtOrbSpinBoxVal64::valueFromText(const QString &text) const
{
    Q_D(const QtOrbSpinBoxVal64);
    QString number = d->numberPart(text);
    int pos = 0;
    if (d->validator.validate(number, pos) != QValidator::Acceptable)
        return d->minimum;
    return number.toLongLong(nullptr, d->displayIntegerBase);
}

QSize QtOrbSpinBoxVal64::sizeHint() const
{
    Q_D(const QtOrbSpinBoxVal64);
    if (d->cachedSizeHint.isEmpty()) {
        ensurePolished();
        const QFontMetrics fm(fontMetrics());
        int w = 0;
        for (qlonglong v : { d->minimum, d->maximum }) {
            const QString s = d->prefix + textFromValue(v).left(20) + d->suffix + QLatin1Char(' ');
            w = qMax(w, fm.horizontalAdvance(s));
        }
        if (!specialValueText().isEmpty())
            w = qMax(w, fm.horizontalAdvance(specialValueText()));
        w += 2; // room for the cursor
        const int h = lineEdit()->sizeHint().height();
        QStyleOptionSpinBox option;
        initStyleOption(&option);
        d->cachedSizeHint = style()
                                ->sizeFromContents(QStyle::CT_SpinBox, &option, QSize(w, h), this)
                                .expandedTo(QApplication::globalStrut());
    }
    return d->cachedSizeHint;
}

QSize QtOrbSpinBoxVal64::minimumSizeHint() const
{
    Q_D(const QtOrbSpinBoxVal64);
    if (d->cachedMinimumSizeHint.isEmpty()) {
        // As wide as the size hint: a number must never be cut.
        d->cachedMinimumSizeHint = sizeHint();
    }
    return d->cachedMinimumSizeHint;
}

} // namespace OrbGui
