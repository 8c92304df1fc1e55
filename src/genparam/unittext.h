// How a value and its unit are shown, in the tree, its editors and the
// text export alike: a space between them, and the unit as people write
// it (the descriptions write "us" for microseconds, shown as "µs").
#ifndef ORBGUI_UNITTEXT_H
#define ORBGUI_UNITTEXT_H

#include <QString>

namespace OrbGui {

inline QString shownUnit(const QString &unit)
{
    if (unit == QLatin1String("us"))
        return QString(QChar(0x03BC)) + QLatin1Char('s');
    return unit;
}

// The number followed by its unit, or the number alone when it has none.
inline QString withUnit(const QString &number, const QString &unit)
{
    return unit.isEmpty() ? number : number + QLatin1Char(' ') + shownUnit(unit);
}

} // namespace OrbGui

#endif
