#include <OrbGui/qtorbdoubleslider.h>
#include <OrbGui/qtorbdoublespinboxval.h>
#include <OrbGui/qtorbgainslider.h>
#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinboxval.h>

#include <QLabel>
#include <QSignalSpy>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QtTest>

#include "widgettest.h"

#include <cmath>
#include <limits>

using namespace OrbGui;
using namespace WidgetTest;

Q_DECLARE_METATYPE(QtOrbSlider::ScaleType)

namespace {

// Drags the handle by `dx` pixels in steps, as a hand would.
void drag(QSlider *slider, int dx)
{
    const QPoint start = handleCentre(slider);
    QTest::mousePress(slider, Qt::LeftButton, Qt::NoModifier, start);
    for (int i = 1; i <= 4; ++i) {
        QMouseEvent move(QEvent::MouseMove, start + QPoint(dx * i / 4, 0), Qt::LeftButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(slider, &move);
    }
    QTest::mouseRelease(slider, Qt::LeftButton, Qt::NoModifier, start + QPoint(dx, 0));
}

} // namespace

class TestSliders : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() { addLocaleRows(); }
    void init() { applyLocaleRow(); }
    void snapping_data();
    void snapping();
    void snappingSweep();
    void scaleSweep_data();
    void scaleSweep();
    void doubleSweep();
    void scalePositions_data();
    void scalePositions();
    void roundTripKeepsValue_data();
    void roundTripKeepsValue();
    void scaleChangeKeepsValue();
    void sameRangeIsQuiet();
    void labelsShowRange();
    void arrowKeysMoveAtLeastOneStep_data();
    void arrowKeysMoveAtLeastOneStep();
    void focusOutIsAnnounced();
    void orientationRebuildsLayout();
    void sliderSpinBoxKeepsChildrenInStep();
    void sliderSpinBoxAnnouncesDragOnce();
    void sliderSpinBoxLabels();
    void doubleSnapping_data();
    void doubleSnapping();
    void doublePositions_data();
    void doublePositions();
    void doubleSameRangeIsQuiet();
    void gainSliderDefaultsAndLinks();
    void gainSliderAnnouncesDragOnce();
    void extremeScaleSweep_data();
    void extremeScaleSweep();
    void gainSliderEnterInLocale();
    void doubleExtremeRanges_data();
    void doubleExtremeRanges();
};

void TestSliders::snapping_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("expected");

    QTest::newRow("below half rounds down") << 0 << 97 << 10 << 4 << 0;
    QTest::newRow("half rounds up") << 0 << 97 << 10 << 5 << 10;
    QTest::newRow("94 to 90") << 0 << 97 << 10 << 94 << 90;
    QTest::newRow("96 limited to maximum") << 0 << 97 << 10 << 96 << 97;
    QTest::newRow("maximum never snaps") << 0 << 97 << 10 << 97 << 97;
    QTest::newRow("minimum never snaps") << 3 << 97 << 10 << 3 << 3;
    QTest::newRow("grid anchored at minimum") << 3 << 97 << 10 << 17 << 13;
    QTest::newRow("negative range") << -50 << 50 << 20 << -21 << -30;
    QTest::newRow("negative range rounds up") << -50 << 50 << 20 << -40 << -30;
    QTest::newRow("above maximum clamps") << 0 << 97 << 10 << 500 << 97;
}

void TestSliders::snapping()
{
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(int, step);
    QFETCH(int, value);
    QFETCH(int, expected);

    for (auto scale : { QtOrbSlider::Linear, QtOrbSlider::Logarithmic, QtOrbSlider::SquareRoot }) {
        QtOrbSlider slider;
        slider.setRange(minimum, maximum);
        slider.setSingleStep(step);
        slider.setValidate(true);
        slider.setScaleType(scale);
        slider.setValue(value);
        // On the non-linear scales a position covers several values; the
        // value read back must still lie on the grid and near the request.
        if (scale == QtOrbSlider::Linear) {
            QCOMPARE(slider.value(), expected);
        } else {
            const int got = slider.value();
            QVERIFY2(got == minimum || got == maximum || (got - minimum) % step == 0,
                     qPrintable(QStringLiteral("%1 is off the grid").arg(got)));
            QVERIFY(got >= minimum && got <= maximum);
        }
    }

    QtOrbSliderSpinBox pair;
    pair.setRange(minimum, maximum);
    pair.setSingleStep(step);
    pair.setValidate(true);
    pair.setValue(value);
    QCOMPARE(pair.value(), expected);
    QCOMPARE(pair.slider()->value(), expected);
}

namespace {

// The snapping rule by brute force: the nearest grid point anchored at the
// minimum, a tie going up, never past the maximum; the ends stay.
int nearestOnGrid(int value, int minimum, int maximum, int step)
{
    if (value <= minimum)
        return minimum;
    if (value >= maximum)
        return maximum;
    int below = minimum;
    while (below + step <= value)
        below += step;
    const int above = below + step;
    const int distanceDown = value - below;
    // Integer halving: a remainder of step / 2 (rounded down) already goes up.
    const int pick = distanceDown == 0 ? below : (distanceDown >= step / 2 ? above : below);
    return qMin(pick, maximum);
}

void configure(QtOrbSlider &slider, QtOrbSlider::ScaleType scale, const QPair<int, int> &range,
               int step, bool validate)
{
    slider.setScaleType(scale);
    slider.setRange(range.first, range.second);
    slider.setSingleStep(step);
    slider.setValidate(validate);
}

// The value a freshly made slider reads at `position`.
int valueAt(QtOrbSlider::ScaleType scale, const QPair<int, int> &range, int step, bool validate,
            int position)
{
    QtOrbSlider slider;
    configure(slider, scale, range, step, validate);
    QSlider *inner = slider.slider();
    // Start from the other end so that reaching `position` is a move.
    inner->setValue(position == inner->minimum() ? inner->maximum() : inner->minimum());
    inner->setValue(position);
    return slider.value();
}

} // namespace

void TestSliders::snappingSweep()
{
    const QList<QPair<int, int>> ranges
        = { { 0, 97 }, { -50, 50 }, { 3, 1000 }, { -1000, -7 }, { 16, 4095 }, { 0, 1 } };
    int checked = 0;
    for (const auto &range : ranges) {
        for (int step : { 1, 2, 3, 5, 7, 10, 16, 64, 100 }) {
            QtOrbSlider slider;
            slider.setRange(range.first, range.second);
            slider.setSingleStep(step);
            slider.setValidate(true);
            QtOrbSpinBoxVal box;
            box.setRange(range.first, range.second);
            box.setSingleStep(step);
            box.setValidate(true);
            for (int value = range.first - 3; value <= range.second + 3;
                 value += qMax(1, step / 3)) {
                const int expected = nearestOnGrid(value, range.first, range.second, step);
                slider.setValue(value);
                box.setValue(value);
                QVERIFY2(
                    slider.value() == expected && box.value() == expected,
                    qPrintable(QStringLiteral(
                                   "range %1..%2 step %3 value %4: slider %5 box %6 expected %7")
                                   .arg(range.first)
                                   .arg(range.second)
                                   .arg(step)
                                   .arg(value)
                                   .arg(slider.value())
                                   .arg(box.value())
                                   .arg(expected)));
                ++checked;
            }
        }
    }
    QVERIFY(checked > 5000);
}

void TestSliders::scaleSweep_data()
{
    QTest::addColumn<QtOrbSlider::ScaleType>("scale");
    QTest::newRow("linear") << QtOrbSlider::Linear;
    QTest::newRow("logarithmic") << QtOrbSlider::Logarithmic;
    QTest::newRow("square root") << QtOrbSlider::SquareRoot;
}

// Over many ranges and increments: the handle's ends give the range's ends,
// values never fall as the handle rises, every position's value lies on the
// grid and comes back to the same position, and a value survives a change
// of scale.
void TestSliders::scaleSweep()
{
    QFETCH(QtOrbSlider::ScaleType, scale);
    const QList<QPair<int, int>> ranges
        = { { 0, 10 }, { 0, 1000 }, { -500, 500 }, { 10, 1000000 }, { 1, 65535 }, { 7, 8 } };
    for (const auto &range : ranges) {
        for (int step : { 1, 4, 25 }) {
            for (bool validate : { false, true }) {
                const QString where = QStringLiteral("range %1..%2 step %3 validate %4")
                                          .arg(range.first)
                                          .arg(range.second)
                                          .arg(step)
                                          .arg(validate);
                QtOrbSlider slider;
                configure(slider, scale, range, step, validate);
                QSlider *inner = slider.slider();
                inner->setValue(inner->maximum());
                QVERIFY2(slider.value() == range.second, qPrintable(where));
                inner->setValue(inner->minimum());
                QVERIFY2(slider.value() == range.first, qPrintable(where));

                QtOrbSlider probe;
                configure(probe, scale, range, step, validate);
                int previous = range.first;
                const int positions = inner->maximum() - inner->minimum();
                const int stride = qMax(1, positions / 400);
                for (int position = inner->minimum(); position <= inner->maximum();
                     position += stride) {
                    inner->setValue(position);
                    const int value = slider.value();
                    const QString at
                        = where + QStringLiteral(" position %1 value %2").arg(position).arg(value);
                    QVERIFY2(value >= previous, qPrintable(at));
                    QVERIFY2(!validate || value == range.first || value == range.second
                                 || (value - range.first) % step == 0,
                             qPrintable(at));
                    probe.setValue(value);
                    QVERIFY2(probe.value() == value, qPrintable(at));
                    // The handle placed for the value sits within one position of
                    // it: the neighbouring positions read values around it.
                    const int placed = probe.slider()->value();
                    const int below
                        = valueAt(scale, range, step, validate, qMax(inner->minimum(), placed - 1));
                    const int above
                        = valueAt(scale, range, step, validate, qMin(inner->maximum(), placed + 1));
                    QVERIFY2(below <= value && value <= above,
                             qPrintable(at
                                        + QStringLiteral(" placed at %1 between %2 and %3")
                                              .arg(placed)
                                              .arg(below)
                                              .arg(above)));
                    previous = value;
                }
                const int middle = probe.value();
                for (auto other :
                     { QtOrbSlider::Linear, QtOrbSlider::Logarithmic, QtOrbSlider::SquareRoot }) {
                    probe.setScaleType(other);
                    QVERIFY2(probe.value() == middle, qPrintable(where));
                }
            }
        }
    }
}

void TestSliders::doubleSweep()
{
    const QList<QPair<double, double>> ranges
        = { { 0.0, 1.0 }, { -6.0, 24.0 }, { 1.0, 16.0 }, { 0.0, 0.05 }, { -2.0, 2.0 } };
    for (const auto &range : ranges) {
        for (double step : { 0.001, 0.01, 0.3, 0.5, 1.0 }) {
            QtOrbDoubleSlider slider;
            slider.setSingleStep(step);
            slider.setRange(range.first, range.second);
            slider.setValidate(true);
            QSlider *inner = slider.slider();
            const QString where = QStringLiteral("range %1..%2 step %3")
                                      .arg(range.first)
                                      .arg(range.second)
                                      .arg(step);
            QCOMPARE(inner->minimum(), 0);
            // The last position reaches the maximum even after a partial step.
            QVERIFY2(range.first + step * (inner->maximum() - 1) < range.second + 1e-9,
                     qPrintable(where));
            QVERIFY2(range.first + step * inner->maximum() >= range.second - 1e-9,
                     qPrintable(where));
            double previous = range.first;
            for (int position = 0; position <= inner->maximum(); ++position) {
                inner->setValue(position);
                const double value = slider.value();
                QVERIFY2(value >= previous - 1e-12, qPrintable(where));
                QVERIFY2(value >= range.first && value <= range.second, qPrintable(where));
                previous = value;
                QtOrbDoubleSlider probe;
                probe.setSingleStep(step);
                probe.setRange(range.first, range.second);
                probe.setValidate(true);
                probe.setValue(value);
                QVERIFY2(probe.slider()->value() == position,
                         qPrintable(where + QStringLiteral(" position %1").arg(position)));
            }
            QCOMPARE(previous, range.second);
        }
    }
}

void TestSliders::scalePositions_data()
{
    QTest::addColumn<QtOrbSlider::ScaleType>("scale");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("firstPosition");
    QTest::addColumn<int>("lastPosition");

    QTest::newRow("linear") << QtOrbSlider::Linear << -5 << 20 << -5 << 20;
    QTest::newRow("log 0..1000") << QtOrbSlider::Logarithmic << 0 << 1000 << 100 << 300;
    QTest::newRow("log 100..1100") << QtOrbSlider::Logarithmic << 100 << 1100 << 100 << 300;
    QTest::newRow("log exposure") << QtOrbSlider::Logarithmic << 10 << 1000000 << 100 << 600;
    QTest::newRow("sqrt square") << QtOrbSlider::SquareRoot << 0 << 100 << 0 << 10;
    QTest::newRow("sqrt partial adds one") << QtOrbSlider::SquareRoot << 0 << 101 << 0 << 11;
}

void TestSliders::scalePositions()
{
    QFETCH(QtOrbSlider::ScaleType, scale);
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(int, firstPosition);
    QFETCH(int, lastPosition);

    QtOrbSlider slider;
    slider.setScaleType(scale);
    slider.setRange(minimum, maximum);
    QCOMPARE(slider.slider()->minimum(), firstPosition);
    QCOMPARE(slider.slider()->maximum(), lastPosition);

    // The ends of the slider give exactly the ends of the range.
    slider.slider()->setValue(lastPosition);
    QCOMPARE(slider.value(), maximum);
    slider.slider()->setValue(firstPosition);
    QCOMPARE(slider.value(), minimum);
}

void TestSliders::roundTripKeepsValue_data()
{
    QTest::addColumn<QtOrbSlider::ScaleType>("scale");
    QTest::newRow("linear") << QtOrbSlider::Linear;
    QTest::newRow("logarithmic") << QtOrbSlider::Logarithmic;
    QTest::newRow("square root") << QtOrbSlider::SquareRoot;
}

// Every position must map to a value whose position is that same position,
// otherwise the handle jumps when the value comes back from the camera.
void TestSliders::roundTripKeepsValue()
{
    QFETCH(QtOrbSlider::ScaleType, scale);

    QtOrbSlider slider;
    slider.setScaleType(scale);
    slider.setRange(0, 1000);
    QSlider *inner = slider.slider();
    int previous = -1;
    for (int position = inner->minimum(); position <= inner->maximum(); ++position) {
        inner->setValue(position);
        const int value = slider.value();
        QVERIFY2(value >= previous, "values must not fall as the handle moves up");
        previous = value;
        QtOrbSlider other;
        other.setScaleType(scale);
        other.setRange(0, 1000);
        other.setValue(value);
        QCOMPARE(other.value(), value);
    }
    QCOMPARE(previous, 1000);

    // The log example: position 200 is 10^2 - 10 = 90.
    if (scale == QtOrbSlider::Logarithmic) {
        inner->setValue(200);
        QCOMPARE(slider.value(), 90);
    }
}

void TestSliders::scaleChangeKeepsValue()
{
    QtOrbSlider slider;
    slider.setRange(0, 1000);
    slider.setValue(90);
    slider.setScaleType(QtOrbSlider::Logarithmic);
    QCOMPARE(slider.value(), 90);
    QCOMPARE(slider.slider()->value(), 200);
    slider.setLog10Coef(200.0);
    QCOMPARE(slider.value(), 90);
    QCOMPARE(slider.slider()->minimum(), 200);
    // A coefficient that cannot scale anything is refused, not divided by.
    slider.setLog10Coef(0.0);
    slider.setLog10Coef(-3.0);
    slider.setLog10Coef(1e12);
    QCOMPARE(slider.log10Coef(), 200.0);
    QCOMPARE(slider.value(), 90);
    // 90 lies between the square root positions 9 (81) and 10 (100): the
    // handle goes to the nearer one while the value itself is kept.
    QSignalSpy changes(&slider, &QtOrbSlider::valueChanged);
    slider.setScaleType(QtOrbSlider::SquareRoot);
    QCOMPARE(slider.slider()->value(), 9);
    QCOMPARE(slider.value(), 90);
    slider.setScaleType(QtOrbSlider::Linear);
    QCOMPARE(slider.value(), 90);
    QCOMPARE(changes.count(), 0);
    slider.setRange(100, 200);
    QCOMPARE(slider.value(), 100);
}

void TestSliders::sameRangeIsQuiet()
{
    QtOrbSlider slider;
    QSignalSpy ranges(&slider, &QtOrbSlider::rangeChanged);
    slider.setRange(0, 1000);
    slider.setRange(0, 1000);
    QCOMPARE(ranges.count(), 1);
    QCOMPARE(ranges.at(0).at(1).toInt(), 1000);

    QtOrbSliderSpinBox pair;
    QSignalSpy pairRanges(&pair, &QtOrbSliderSpinBox::rangeChanged);
    pair.setRange(5, 50);
    pair.setRange(5, 50);
    QCOMPARE(pairRanges.count(), 1);
    QCOMPARE(pair.spinBox()->minimum(), 5);
    QCOMPARE(pair.slider()->maximum(), 50);
}

void TestSliders::labelsShowRange()
{
    QtOrbSlider slider(Qt::Horizontal);
    slider.setRange(-20, 3000);
    QCOMPARE(slider.minLabel()->text(), QStringLiteral("-20"));
    QCOMPARE(slider.maxLabel()->text(), QStringLiteral("3000"));
    slider.show();
    slider.setMaxLabelVisiable(false);
    QVERIFY(!slider.isMaxLabelVisiable());
    QVERIFY(slider.isMinLabelVisiable());

    QtOrbDoubleSlider doubleSlider;
    doubleSlider.setDecimals(2);
    doubleSlider.setRange(0.5, 12.25);
    QCOMPARE(doubleSlider.minLabel()->text(), QStringLiteral("0.50"));
    QCOMPARE(doubleSlider.maxLabel()->text(), QStringLiteral("12.25"));
}

void TestSliders::arrowKeysMoveAtLeastOneStep_data()
{
    QTest::addColumn<QtOrbSlider::ScaleType>("scale");
    QTest::addColumn<int>("step");
    QTest::newRow("log, step 1") << QtOrbSlider::Logarithmic << 1;
    QTest::newRow("log, step 7") << QtOrbSlider::Logarithmic << 7;
    QTest::newRow("sqrt, step 1") << QtOrbSlider::SquareRoot << 1;
    QTest::newRow("linear, step 5") << QtOrbSlider::Linear << 5;
}

void TestSliders::arrowKeysMoveAtLeastOneStep()
{
    QFETCH(QtOrbSlider::ScaleType, scale);
    QFETCH(int, step);

    QtOrbSlider slider(Qt::Horizontal);
    slider.setScaleType(scale);
    slider.setRange(0, 100000);
    slider.setSingleStep(step);
    slider.setValidate(true);
    slider.setValue(0);
    slider.show();
    QVERIFY(QTest::qWaitForWindowExposed(&slider));
    QSignalSpy changes(&slider, &QtOrbSlider::valueChanged);

    // Near the low end of a log scale many positions share one value; each
    // key press must still change the value by a whole step or more.
    int before = slider.value();
    for (int i = 0; i < 20; ++i) {
        QTest::keyClick(slider.slider(), Qt::Key_Right);
        const int now = slider.value();
        QVERIFY2(now - before >= step, qPrintable(QStringLiteral("%1 -> %2").arg(before).arg(now)));
        before = now;
    }
    for (int i = 0; i < 5; ++i) {
        QTest::keyClick(slider.slider(), Qt::Key_Down);
        const int now = slider.value();
        QVERIFY2(before - now >= step, qPrintable(QStringLiteral("%1 -> %2").arg(before).arg(now)));
        before = now;
    }
    QCOMPARE(changes.count(), 25);
    QCOMPARE(changes.last().at(0).toInt(), slider.value());
}

void TestSliders::focusOutIsAnnounced()
{
    QWidget window;
    auto *slider = new QtOrbSlider(Qt::Horizontal, &window);
    auto *other = new QtOrbSpinBoxVal(&window);
    other->move(0, 80);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    slider->slider()->setFocus();
    QTRY_VERIFY(slider->slider()->hasFocus());
    QSignalSpy focusOut(slider, &QtOrbSlider::focusOut);
    other->setFocus();
    QTRY_COMPARE(focusOut.count(), 1);
}

void TestSliders::orientationRebuildsLayout()
{
    QtOrbSlider slider(Qt::Vertical);
    slider.setRange(0, 10);
    slider.resize(60, 200);
    slider.show();
    QVERIFY(QTest::qWaitForWindowExposed(&slider));
    QCOMPARE(slider.slider()->orientation(), Qt::Vertical);
    QVERIFY(slider.maxLabel()->geometry().top() < slider.minLabel()->geometry().top());

    slider.setOrientation(Qt::Horizontal);
    slider.resize(300, 60);
    QTRY_VERIFY(slider.minLabel()->geometry().left() < slider.maxLabel()->geometry().left());
    QCOMPARE(slider.orientation(), Qt::Horizontal);
    QCOMPARE(slider.slider()->orientation(), Qt::Horizontal);
    QVERIFY(slider.slider()->geometry().bottom() <= slider.minLabel()->geometry().top());
    // Rebuilding twice must not leave stray layouts or lose the labels.
    slider.setOrientation(Qt::Vertical);
    slider.setOrientation(Qt::Horizontal);
    QCOMPARE(slider.findChildren<QLabel *>().size(), 2);
}

void TestSliders::sliderSpinBoxKeepsChildrenInStep()
{
    QtOrbSliderSpinBox pair;
    QSignalSpy numbers(&pair, QOverload<int>::of(&QtOrbSliderSpinBox::valueChanged));
    QSignalSpy texts(&pair, QOverload<const QString &>::of(&QtOrbSliderSpinBox::valueChanged));
    pair.setRange(0, 1000);
    pair.spinBox()->setValue(250);
    QCOMPARE(pair.slider()->value(), 250);
    QCOMPARE(numbers.count(), 1);
    QCOMPARE(texts.last().at(0).toString(), QStringLiteral("250"));

    pair.slider()->setValue(300);
    QCOMPARE(pair.value(), 300);
    QCOMPARE(numbers.last().at(0).toInt(), 300);

    pair.setValue(5000);
    QCOMPARE(pair.value(), 1000);
    QCOMPARE(pair.slider()->value(), 1000);
    QCOMPARE(numbers.count(), 3);
}

void TestSliders::sliderSpinBoxAnnouncesDragOnce()
{
    QtOrbSliderSpinBox pair;
    pair.setRange(0, 100);
    pair.resize(400, 40);
    pair.show();
    QVERIFY(QTest::qWaitForWindowExposed(&pair));
    QSignalSpy numbers(&pair, QOverload<int>::of(&QtOrbSliderSpinBox::valueChanged));
    QSignalSpy texts(&pair, QOverload<const QString &>::of(&QtOrbSliderSpinBox::valueChanged));

    drag(pair.slider()->slider(), 150);
    QVERIFY(pair.value() > 0);
    QCOMPARE(numbers.count(), 1);
    QCOMPARE(texts.count(), 1);
    QCOMPARE(numbers.at(0).at(0).toInt(), pair.value());
    QCOMPARE(texts.at(0).at(0).toString(), QString::number(pair.value()));
    QCOMPARE(pair.slider()->value(), pair.value());

    // After the drag the spin box is linked again.
    pair.spinBox()->setValue(7);
    QCOMPARE(numbers.count(), 2);
    QCOMPARE(pair.slider()->value(), 7);

    // A release without a press (the slider released by code) must not
    // leave the links doubled, or every change would be announced twice.
    Q_EMIT pair.slider()->sliderReleased();
    numbers.clear();
    pair.spinBox()->setValue(9);
    QCOMPARE(numbers.count(), 1);
}

void TestSliders::sliderSpinBoxLabels()
{
    QtOrbSliderSpinBox pair;
    QVERIFY(!pair.leftLabel());
    QVERIFY(pair.leftLabelText().isEmpty());
    pair.setLeftLabelText(QStringLiteral("Exposure"));
    pair.setTopLabelText(QStringLiteral("Timing"));
    QCOMPARE(pair.leftLabel()->text(), QStringLiteral("Exposure"));
    QCOMPARE(pair.topLabelText(), QStringLiteral("Timing"));
    pair.setLeftLabelText(QStringLiteral("Gain"));
    QCOMPARE(pair.findChildren<QLabel *>(QStringLiteral("labelLeft")).size(), 1);
}

void TestSliders::doubleSnapping_data()
{
    QTest::addColumn<double>("step");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");
    QTest::newRow("0.74 down") << 0.5 << 0.74 << 0.5;
    QTest::newRow("0.75 half up") << 0.5 << 0.75 << 1.0;
    QTest::newRow("on grid") << 0.5 << 1.5 << 1.5;
    QTest::newRow("below half of 0.3") << 0.3 << 0.95 << 0.9;
    QTest::newRow("limited to maximum") << 0.6 << 0.95 << 1.0;
    QTest::newRow("maximum kept") << 0.3 << 1.0 << 1.0;
}

void TestSliders::doubleSnapping()
{
    QFETCH(double, step);
    QFETCH(double, value);
    QFETCH(double, expected);

    QtOrbDoubleSlider slider;
    slider.setRange(0.0, value > 1.0 ? 10.0 : 1.0);
    slider.setSingleStep(step);
    slider.setValidate(true);
    slider.setValue(value);
    QCOMPARE(slider.value(), expected);

    QtOrbGainSlider gain;
    gain.setRange(0.0, value > 1.0 ? 10.0 : 1.0);
    gain.setSingleStep(step);
    gain.setValidate(true);
    gain.setValue(value);
    QCOMPARE(gain.value(), expected);
    QCOMPARE(gain.slider()->value(), expected);
}

void TestSliders::doublePositions_data()
{
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");
    QTest::addColumn<double>("step");
    QTest::addColumn<int>("lastPosition");
    QTest::newRow("partial step adds one") << 0.0 << 1.0 << 0.3 << 4;
    QTest::newRow("whole steps") << 0.0 << 1.0 << 0.25 << 4;
    QTest::newRow("gain dB") << -6.0 << 24.0 << 0.1 << 300;
    // More increments than an int slider can count: the positions thin out
    // instead of overflowing.
    QTest::newRow("exposure in µs, tiny step") << 10.0 << 1e10 << 1e-3 << 1000000000;
}

void TestSliders::doublePositions()
{
    QFETCH(double, minimum);
    QFETCH(double, maximum);
    QFETCH(double, step);
    QFETCH(int, lastPosition);

    QtOrbDoubleSlider slider;
    slider.setSingleStep(step);
    slider.setRange(minimum, maximum);
    QCOMPARE(slider.slider()->minimum(), 0);
    QCOMPARE(slider.slider()->maximum(), lastPosition);
    slider.slider()->setValue(lastPosition);
    QCOMPARE(slider.value(), maximum);
    slider.slider()->setValue(0);
    QCOMPARE(slider.value(), minimum);
    slider.slider()->setValue(1);
    const double firstStep = slider.value() - minimum;
    QVERIFY(firstStep >= step * (1 - 1e-9));
    if (lastPosition < 1000000)
        QCOMPARE(slider.value(), minimum + step);
    else // thinned positions still cover the range evenly
        QVERIFY(qAbs(firstStep * lastPosition - (maximum - minimum)) <= firstStep);

    // Every position (a sample of them on a thinned scale) round-trips
    // through its value.
    const int stride = qMax(1, lastPosition / 1000);
    for (int position = 0; position <= lastPosition; position += stride) {
        slider.slider()->setValue(position);
        const double value = slider.value();
        QtOrbDoubleSlider other;
        other.setSingleStep(step);
        other.setRange(minimum, maximum);
        other.setValue(value);
        QCOMPARE(other.slider()->value(), position);
    }
}

void TestSliders::doubleSameRangeIsQuiet()
{
    QtOrbDoubleSlider slider;
    QSignalSpy ranges(&slider, &QtOrbDoubleSlider::rangeChanged);
    slider.setRange(0.0, 2.5);
    slider.setRange(0.0, 2.5);
    QCOMPARE(ranges.count(), 1);
    QCOMPARE(slider.maximum(), 2.5);

    QtOrbGainSlider gain;
    QSignalSpy gainRanges(&gain, &QtOrbGainSlider::rangeChanged);
    gain.setRange(1.0, 16.0);
    gain.setRange(1.0, 16.0);
    QCOMPARE(gainRanges.count(), 1);
    QCOMPARE(gain.spinBox()->maximum(), 16.0);
    QCOMPARE(gain.slider()->minimum(), 1.0);
}

void TestSliders::gainSliderDefaultsAndLinks()
{
    QtOrbGainSlider gain;
    QCOMPARE(gain.decimals(), 3);
    QCOMPARE(gain.slider()->decimals(), 3);
    QCOMPARE(gain.minimum(), 0.0);
    QCOMPARE(gain.maximum(), 100.0);
    QCOMPARE(gain.slider()->maximum(), 100.0);

    QSignalSpy numbers(&gain, QOverload<double>::of(&QtOrbGainSlider::valueChanged));
    QSignalSpy texts(&gain, QOverload<const QString &>::of(&QtOrbGainSlider::valueChanged));
    gain.spinBox()->setValue(12.5);
    QCOMPARE(gain.slider()->value(), 12.5);
    QCOMPARE(numbers.count(), 1);
    QCOMPARE(texts.last().at(0).toString(), QStringLiteral("12.5"));
    gain.setLeftLabelText(QStringLiteral("Gain"));
    QCOMPARE(gain.leftLabel()->text(), QStringLiteral("Gain"));
}

void TestSliders::gainSliderAnnouncesDragOnce()
{
    QtOrbGainSlider gain;
    gain.setSingleStep(0.5);
    gain.setRange(0.0, 20.0);
    gain.resize(400, 40);
    gain.show();
    QVERIFY(QTest::qWaitForWindowExposed(&gain));
    QSignalSpy numbers(&gain, QOverload<double>::of(&QtOrbGainSlider::valueChanged));

    drag(gain.slider()->slider(), 120);
    QVERIFY(gain.value() > 0.0);
    QCOMPARE(numbers.count(), 1);
    QCOMPARE(numbers.at(0).at(0).toDouble(), gain.value());
}

QTEST_MAIN(TestSliders)
#include "tst_sliders.moc"

void TestSliders::extremeScaleSweep_data()
{
    QTest::addColumn<QtOrbSlider::ScaleType>("scale");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("step");
    QTest::addColumn<bool>("validate");
    const QList<QPair<int, int>> ranges
        = { { INT_MIN, INT_MAX }, { 0, INT_MAX }, { INT_MIN, 0 }, { -5, INT_MAX } };
    for (auto scale : { QtOrbSlider::Logarithmic, QtOrbSlider::SquareRoot })
        for (const auto &range : ranges)
            for (int step : { 1, 1000 })
                for (bool validate : { false, true })
                    QTest::newRow(qPrintable(
                        QStringLiteral("%1 %2..%3 step %4%5")
                            .arg(scale == QtOrbSlider::Logarithmic ? QStringLiteral("log")
                                                                   : QStringLiteral("sqrt"))
                            .arg(range.first)
                            .arg(range.second)
                            .arg(step)
                            .arg(validate ? QStringLiteral(" snapped") : QString())))
                        << scale << range.first << range.second << step << validate;
}

// Spans beyond 2^31 on the non-linear scales: every position's value is the
// one computed here in 128-bit and floating-point arithmetic, values never
// fall as the handle rises, and the ends give the range's ends.
void TestSliders::extremeScaleSweep()
{
    QFETCH(QtOrbSlider::ScaleType, scale);
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(int, step);
    QFETCH(bool, validate);
    QtOrbSlider slider;
    slider.setScaleType(scale);
    slider.setRange(minimum, maximum);
    slider.setSingleStep(step);
    slider.setValidate(validate);
    QSlider *inner = slider.slider();
    const double coefficient = slider.log10Coef();
    qlonglong previous = minimum;
    const int stride = qMax(1, (inner->maximum() - inner->minimum()) / 8192);
    for (int position = inner->minimum(); position <= inner->maximum(); position
         = position < inner->maximum() ? qMin(inner->maximum(), position + stride) : position + 1) {
        inner->setValue(position);
        Int128 expected;
        if (position == inner->minimum()) {
            expected = minimum;
        } else if (position == inner->maximum()) {
            expected = maximum;
        } else {
            const Int128 offset = scale == QtOrbSlider::Logarithmic
                ? Int128(std::floor(std::pow(10.0, position / coefficient) + 0.5)) - 10
                : Int128(position) * position;
            expected = qBound<Int128>(minimum, Int128(minimum) + offset, maximum);
            if (validate)
                expected = gridPoint(minimum, maximum, step, qlonglong(expected));
        }
        QVERIFY2(slider.value() == qlonglong(expected) && slider.value() >= previous,
                 qPrintable(QStringLiteral("position %1: %2, expected %3, previous %4")
                                .arg(position)
                                .arg(slider.value())
                                .arg(qlonglong(expected))
                                .arg(previous)));
        previous = slider.value();
    }
    QCOMPARE(previous, qlonglong(maximum));
}

// The gain slider's spin box, typing validation off: Enter keeps the value
// shown in the user's locale ("1,500" in German is one and a half).
void TestSliders::gainSliderEnterInLocale()
{
    QtOrbGainSlider gain;
    gain.setRange(0.0, 24.0);
    gain.setSingleStep(0.5);
    gain.setValidateTyping(false);
    gain.setValue(1.5);
    gain.show();
    gain.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&gain));
    gain.spinBox()->setFocus();
    QSignalSpy changes(&gain, QOverload<double>::of(&QtOrbGainSlider::valueChanged));
    QTest::keyClick(gain.spinBox(), Qt::Key_Return);
    QCOMPARE(gain.value(), 1.5);
    QCOMPARE(gain.slider()->value(), 1.5);
    QCOMPARE(changes.count(), 0);
}

void TestSliders::doubleExtremeRanges_data()
{
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");
    QTest::addColumn<double>("step");
    const double big = std::numeric_limits<double>::max();
    QTest::newRow("whole double range") << -big << big << 1.0;
    QTest::newRow("whole range, no step") << -big << big << 1e-300;
    QTest::newRow("positive half") << 0.0 << big << 0.5;
    QTest::newRow("float register") << double(-std::numeric_limits<float>::max())
                                    << double(std::numeric_limits<float>::max()) << 0.001;
    QTest::newRow("tiny") << 0.0 << 1e-300 << 1e-310;
}

// Float features often report the whole double range: the slider must
// place every value within its positions, keep the ends exact and never
// compute a position that does not fit an int.
void TestSliders::doubleExtremeRanges()
{
    QFETCH(double, minimum);
    QFETCH(double, maximum);
    QFETCH(double, step);
    QtOrbGainSlider gain;
    gain.setDecimals(3);
    gain.setSingleStep(step);
    gain.setRange(minimum, maximum);
    QtOrbDoubleSlider *slider = gain.slider();
    QSlider *inner = slider->slider();
    QVERIFY(inner->maximum() >= inner->minimum());
    double previous = -std::numeric_limits<double>::infinity();
    for (int i = 0; i <= 64; ++i) {
        const int position
            = inner->minimum() + int((qint64(inner->maximum()) - inner->minimum()) * i / 64);
        inner->setValue(position);
        const double value = slider->value();
        QVERIFY(value >= minimum && value <= maximum);
        QVERIFY(value >= previous);
        previous = value;
    }
    QCOMPARE(previous, maximum);
    for (double value : { minimum, maximum, minimum / 2 + maximum / 2, 0.0 }) {
        if (value < minimum || value > maximum)
            continue;
        slider->setValue(value);
        QCOMPARE(slider->value(), value);
        QVERIFY(inner->value() >= inner->minimum() && inner->value() <= inner->maximum());
    }
}
