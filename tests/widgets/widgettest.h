// Helpers shared by the value widget tests.
#ifndef ORBGUI_TESTS_WIDGETTEST_H
#define ORBGUI_TESTS_WIDGETTEST_H

#include <QLocale>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QtTest>

namespace WidgetTest {

// Every test of a widget that shows or reads numbers runs once per locale
// (global data rows): C, German (decimal comma, "." between groups, the
// separator that C reads as the decimal point) and French (decimal comma, a
// space between groups). Widgets take the default locale when made.
inline void addLocaleRows()
{
    QTest::addColumn<QLocale>("locale");
    QTest::newRow("C") << QLocale::c();
    QTest::newRow("de_DE") << QLocale(QLocale::German, QLocale::Germany);
    QTest::newRow("fr_FR") << QLocale(QLocale::French, QLocale::France);
}

inline void applyLocaleRow()
{
    QFETCH_GLOBAL(QLocale, locale);
    QLocale::setDefault(locale);
}

// The grid point for v, computed independently of the widgets in 128-bit
// arithmetic: minimum + k * step, rounding up when the remainder reaches half
// a step (the step halved as an integer), never beyond the maximum; values
// outside the range land on the nearer end.
__extension__ typedef __int128 Int128;

inline qlonglong gridPoint(qlonglong min, qlonglong max, qlonglong step, qlonglong v)
{
    if (v <= min)
        return min;
    if (v >= max)
        return max;
    const Int128 offset = static_cast<Int128>(v) - min;
    const Int128 remainder = offset % step;
    Int128 snapped = static_cast<Int128>(min) + offset - remainder;
    if (remainder != 0 && remainder >= step / 2)
        snapped += step;
    return snapped > max ? max : static_cast<qlonglong>(snapped);
}

// Values to try over [min, max]: both ends and their neighbours, the
// neighbourhood of zero, and `count` more spread evenly, each moved by a
// pseudo-random amount so that they do not all fall on the same remainder.
inline QVector<qlonglong> sampleValues(qlonglong min, qlonglong max, int count)
{
    QVector<qlonglong> values;
    auto add = [&](Int128 v) {
        if (v >= min && v <= max)
            values << static_cast<qlonglong>(v);
    };
    for (int d = -2; d <= 2; ++d) {
        add(Int128(min) + d);
        add(Int128(max) + d);
        add(d);
    }
    const Int128 span = Int128(max) - min;
    quint64 noise = 0x9E3779B97F4A7C15ULL;
    for (int i = 1; i < count; ++i) {
        noise ^= noise << 13;
        noise ^= noise >> 7;
        noise ^= noise << 17;
        const Int128 jitter = span > 1000 ? Int128(noise % 1000) : 0;
        add(Int128(min) + span * i / count + jitter);
    }
    return values;
}

// Where the handle of a slider is drawn, for driving it with the mouse.
inline QPoint handleCentre(QSlider *slider)
{
    QStyleOptionSlider option;
    option.initFrom(slider);
    option.orientation = slider->orientation();
    option.minimum = slider->minimum();
    option.maximum = slider->maximum();
    option.sliderPosition = slider->sliderPosition();
    option.sliderValue = slider->value();
    option.upsideDown = slider->orientation() == Qt::Vertical;
    return slider->style()
        ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, slider)
        .center();
}

} // namespace WidgetTest

#endif
