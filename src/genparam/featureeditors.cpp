#include "featureeditors.h"

#include "widgets/outofrange_p.h"
#include "widgets/snapping.h"

#include <QLineEdit>
#include <QStringList>

#include <cmath>

namespace OrbGui {

FeatureDoubleSpinBox::FeatureDoubleSpinBox(QWidget *parent)
    : QDoubleSpinBox(parent)
{
    connect(lineEdit(), &QLineEdit::textChanged, this, &FeatureDoubleSpinBox::followTyping);
}

void FeatureDoubleSpinBox::followTyping()
{
    double typed = 0;
    const bool outside
        = readNumber(lineEdit()->text(), &typed) && (typed < minimum() || typed > maximum());
    markOutOfRange(this, lineEdit(), outside, textFromValue(minimum()), textFromValue(maximum()),
                   m_increment > 0 ? textFromValue(m_increment) : QString());
}

bool FeatureDoubleSpinBox::showCommitted()
{
    double typed = 0;
    if (!readNumber(lineEdit()->text(), &typed) || typed < minimum() || typed > maximum())
        return false;
    const double snapped
        = m_increment > 0 ? snapToGrid(typed, minimum(), maximum(), m_increment) : typed;
    double committed = 0;
    if (!readNumber(textFromValue(snapped), &committed) || committed == typed)
        return false;
    setValue(committed);
    return true;
}

double FeatureDoubleSpinBox::usefulStep(double minimum, double maximum, int decimals)
{
    const double smallest = std::pow(10.0, -qBound(0, decimals, 15));
    const double span = maximum - minimum;
    if (!std::isfinite(span) || span / 1000 <= smallest)
        return smallest;
    return std::pow(10.0, std::floor(std::log10(span / 1000)));
}

bool FeatureDoubleSpinBox::readNumber(const QString &text, double *value) const
{
    QString number = text;
    if (!prefix().isEmpty() && number.startsWith(prefix()))
        number.remove(0, prefix().size());
    if (!suffix().isEmpty() && number.endsWith(suffix()))
        number.chop(suffix().size());
    bool ok = false;
    *value = locale().toDouble(number.trimmed(), &ok);
    return ok && std::isfinite(*value);
}

QValidator::State FeatureDoubleSpinBox::validate(QString &text, int &pos) const
{
    const QValidator::State state = QDoubleSpinBox::validate(text, pos);
    double value = 0;
    if (state == QValidator::Invalid && readNumber(text, &value))
        return QValidator::Intermediate; // kept as typed; marked when outside
    return state;
}

void FeatureDoubleSpinBox::fixup(QString &text) const
{
    // A typed number is never limited to the range: the user sees it refused.
    double value = 0;
    if (!readNumber(text, &value))
        QDoubleSpinBox::fixup(text);
}

double FeatureDoubleSpinBox::valueFromText(const QString &text) const
{
    const double value = QDoubleSpinBox::valueFromText(text);
    return m_increment > 0 ? snapToGrid(value, minimum(), maximum(), m_increment) : value;
}

QValidator::State AddressEditValidator::validate(QString &input, int &pos) const
{
    if (input.trimmed().isEmpty())
        return Intermediate;
    const State state = IP4Validator::validate(input, pos);
    if (state != Invalid)
        return state;
    // Invalid only because of a number too large or a part too many: kept,
    // and refused with the reason on Enter.
    for (const QChar c : input)
        if (!c.isDigit() && c != QLatin1Char('.') && c != QLatin1Char(' '))
            return Invalid;
    return Intermediate;
}

QString AddressEditValidator::refusal(const QString &text)
{
    AddressEditValidator validator;
    QString copy = text;
    int pos = 0;
    if (validator.validate(copy, pos) == Acceptable)
        return QString();
    return tr("An IPv4 address is four numbers from 0 to 255 separated by points, "
              "for example 192.168.1.10.");
}

} // namespace OrbGui
