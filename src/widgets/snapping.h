// Snapping to the grid minimum + k * step shared by the value widgets: a
// remainder of half a step or more rounds up (the step halved as an integer
// for integers), the result never passes the maximum, and the minimum and
// the maximum themselves are never moved. A value outside the range lands on
// the nearer end rather than on a grid point inside it.
#ifndef ORBGUI_SNAPPING_H
#define ORBGUI_SNAPPING_H

#include <QtGlobal>

#include <cmath>

namespace OrbGui {

// Free of overflow over the whole 64-bit range. step must be positive.
inline qlonglong snapToGrid(qlonglong value, qlonglong minimum, qlonglong maximum, qlonglong step)
{
    if (value <= minimum || value >= maximum || step <= 0)
        return qBound(minimum, value, qMax(minimum, maximum));
    const quint64 ustep = static_cast<quint64>(step);
    const quint64 span = static_cast<quint64>(maximum) - static_cast<quint64>(minimum);
    quint64 d = static_cast<quint64>(value) - static_cast<quint64>(minimum);
    const quint64 r = d % ustep;
    if (r != 0 && r >= ustep / 2) {
        if (ustep - r > span - d) // beyond the maximum (and maybe beyond 64 bits)
            return maximum;
        d += ustep - r;
    } else {
        d -= r;
    }
    return static_cast<qlonglong>(static_cast<quint64>(minimum) + d);
}

// A range wider than the largest double (a float feature reporting the
// whole double range) is worked on in halves, so that no difference
// overflows to infinity.
inline double snapToGrid(double value, double minimum, double maximum, double step)
{
    if (value <= minimum || value >= maximum || !(step > 0))
        return qBound(minimum, value, qMax(minimum, maximum));
    const double scale = std::isfinite(maximum - minimum) ? 1.0 : 0.5;
    double d = value * scale - minimum * scale;
    const double s = step * scale;
    const double q = d / s;
    const double r = (q - std::trunc(q)) * s;
    if (r != 0)
        d = (s * 0.5 > r) ? d - r : d + (s - r);
    const double snapped = scale == 1.0 ? minimum + d : (minimum + d) + d;
    return qMin(maximum, snapped);
}

} // namespace OrbGui

#endif
