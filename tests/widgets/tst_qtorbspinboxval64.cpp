#include <OrbGui/qtorbspinboxval64.h>

#include "widgettest.h"

#include <QApplication>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStyle>
#include <QStyleOptionSpinBox>
#include <QVBoxLayout>
#include <QtTest>

#include <limits>

using namespace OrbGui;
using namespace WidgetTest;

namespace {

// A window with the spin box and a second field to move the focus to.
struct Window {
    Window()
    {
        auto *layout = new QVBoxLayout(&window);
        spin = new QtOrbSpinBoxVal64;
        other = new QLineEdit;
        layout->addWidget(spin);
        layout->addWidget(other);
        window.show();
        window.activateWindow();
        spin->setFocus();
    }
    bool ready() { return QTest::qWaitForWindowActive(&window); }
    // Replaces the number by typing, as a user would after selecting it.
    void type(const QString &text)
    {
        spin->setFocus();
        spin->selectAll();
        QTest::keyClicks(spin, text);
    }
    QPoint upButton() const
    {
        QStyleOptionSpinBox option;
        option.initFrom(spin);
        option.subControls = QStyle::SC_SpinBoxUp;
        option.buttonSymbols = spin->buttonSymbols();
        option.stepEnabled = QAbstractSpinBox::StepUpEnabled | QAbstractSpinBox::StepDownEnabled;
        return spin->style()
            ->subControlRect(QStyle::CC_SpinBox, &option, QStyle::SC_SpinBoxUp, spin)
            .center();
    }
    QWidget window;
    QtOrbSpinBoxVal64 *spin;
    QLineEdit *other;
};

} // namespace

class tst_QtOrbSpinBoxVal64 : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void defaults();
    void typedValuesSnap_data();
    void typedValuesSnap();
    void snappingSweep_data();
    void snappingSweep();
    void outOfRangeIsIgnored();
    void rangeSetters();
    void bases_data();
    void bases();
    void groupSeparators();
    void arrowsDoNotClamp();
    void heldArrowCommitsOnRelease();
    void heldButtonCommitsOnRelease();
    void typedTextAndFocus_data();
    void typedTextAndFocus();
    void keyboardTrackingCommitsEachKey();
    void prefixAndSuffix();
    void fullRange();
    void stepEnabled_data();
    void stepEnabled();
    void heldArrowNeverWraps_data();
    void heldArrowNeverWraps();
    void commitText_data();
    void commitText();
};

void tst_QtOrbSpinBoxVal64::initTestCase_data()
{
    addLocaleRows();
}

void tst_QtOrbSpinBoxVal64::init()
{
    applyLocaleRow();
}

void tst_QtOrbSpinBoxVal64::defaults()
{
    QtOrbSpinBoxVal64 spin;
    QCOMPARE(spin.minimum(), 0LL);
    QCOMPARE(spin.maximum(), 99LL);
    QCOMPARE(spin.singleStep(), 1LL);
    QCOMPARE(spin.value(), 0LL);
    QCOMPARE(spin.displayIntegerBase(), 10);
    QVERIFY(spin.selectWhenStepping());
    QVERIFY(!spin.validateStepping());
    QVERIFY(spin.ignoreFocusOut());
    QVERIFY(spin.buttonTracking());
    QCOMPARE(spin.text(), QStringLiteral("0"));
    const QMetaObject *meta = spin.metaObject();
    QCOMPARE(QString::fromLatin1(meta->classInfo(meta->indexOfClassInfo("version")).value()),
             QStringLiteral("1.0.0"));
    QCOMPARE(QString::fromLatin1(meta->classInfo(meta->indexOfClassInfo("date")).value()),
             QStringLiteral("03/29/2018"));
}

void tst_QtOrbSpinBoxVal64::typedValuesSnap_data()
{
    QTest::addColumn<qlonglong>("min");
    QTest::addColumn<qlonglong>("max");
    QTest::addColumn<qlonglong>("step");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<qlonglong>("committed");
    QTest::newRow("down to the grid") << 0LL << 100LL << 10LL << "14" << 10LL;
    QTest::newRow("half rounds up") << 0LL << 100LL << 10LL << "15" << 20LL;
    QTest::newRow("maximum reachable") << 0LL << 100LL << 10LL << "99" << 100LL;
    QTest::newRow("minimum kept") << 0LL << 100LL << 10LL << "0" << 0LL;
    QTest::newRow("maximum kept") << 0LL << 100LL << 10LL << "100" << 100LL;
    QTest::newRow("grid from the minimum") << 5LL << 95LL << 10LL << "12" << 15LL;
    QTest::newRow("maximum off the grid") << 5LL << 97LL << 10LL << "93" << 95LL;
    QTest::newRow("negative range") << -100LL << -10LL << 25LL << "-60" << -50LL;
}

void tst_QtOrbSpinBoxVal64::typedValuesSnap()
{
    QFETCH(qlonglong, min);
    QFETCH(qlonglong, max);
    QFETCH(qlonglong, step);
    QFETCH(QString, typed);
    QFETCH(qlonglong, committed);
    Window w;
    QVERIFY(w.ready());
    w.spin->setKeyboardTracking(false);
    w.spin->setRange(min, max);
    w.spin->setSingleStep(step);
    w.spin->setValidateStepping(true);
    w.spin->setValue(min == 0 ? 50 : min);
    QSignalSpy spy(w.spin, QOverload<qlonglong>::of(&QtOrbSpinBoxVal64::valueChanged));
    w.type(typed);
    QTest::keyClick(w.spin, Qt::Key_Return);
    QCOMPARE(w.spin->value(), committed);
    QCOMPARE(w.spin->text(), QString::number(committed));
    QCOMPARE(spy.count(), committed == (min == 0 ? 50 : min) ? 0 : 1);
}

void tst_QtOrbSpinBoxVal64::snappingSweep_data()
{
    QTest::addColumn<qlonglong>("min");
    QTest::addColumn<qlonglong>("max");
    QTest::addColumn<qlonglong>("step");
    const qlonglong mins[] = { 0, 1, 5, -100, -7, 1000000007, -(qlonglong(1) << 40) };
    const qlonglong steps[] = { 2, 3, 4, 7, 10, 16, 1000 };
    for (qlonglong min : mins)
        for (qlonglong step : steps)
            for (qlonglong span : { step * 3 + 1, step * 10, step * 7 + step / 2 })
                QTest::newRow(qPrintable(
                    QStringLiteral("min %1 step %2 span %3").arg(min).arg(step).arg(span)))
                    << min << min + span << step;
    // The whole 64-bit range, at sampled values.
    const qlonglong lowest = std::numeric_limits<qlonglong>::min();
    const qlonglong highest = std::numeric_limits<qlonglong>::max();
    const QList<QPair<qlonglong, qlonglong>> ranges = { { lowest, highest },
                                                        { lowest, -1 },
                                                        { 0, highest },
                                                        { lowest + 1, highest - 1 },
                                                        { -(qlonglong(1) << 62), highest } };
    const qlonglong wideSteps[]
        = { 1, 3, 1000, (qlonglong(1) << 32) + 1, (qlonglong(1) << 62) + 3, highest };
    for (const auto &range : ranges)
        for (qlonglong step : wideSteps)
            QTest::newRow(qPrintable(
                QStringLiteral("%1..%2 step %3").arg(range.first).arg(range.second).arg(step)))
                << range.first << range.second << step;
}

// Through the real commit paths (setValue and the arrows): committed values
// land where 128-bit arithmetic says, every value of the small ranges and
// sampled values of the whole 64-bit range, and a step that leaves the
// range is dropped.
void tst_QtOrbSpinBoxVal64::snappingSweep()
{
    QFETCH(qlonglong, min);
    QFETCH(qlonglong, max);
    QFETCH(qlonglong, step);
    QtOrbSpinBoxVal64 spin;
    spin.setRange(min, max);
    spin.setSingleStep(step);
    spin.setValidateStepping(true);
    QVector<qlonglong> values;
    if (Int128(max) - min <= 100000) {
        for (qlonglong v = min; v <= max; ++v)
            values << v;
    } else {
        values = sampleValues(min, max, 400);
    }
    // Stepping goes through the line edit, which is slow: a few hundred
    // starting points per range are enough.
    const int stepEvery = qMax(1, values.size() / 300);
    for (int i = 0; i < values.size(); ++i) {
        const qlonglong v = values.at(i);
        spin.setValue(v);
        const qlonglong at = gridPoint(min, max, step, v);
        QCOMPARE(spin.value(), at);
        QCOMPARE(spin.text(), QLocale().toString(at).remove(QLocale().groupSeparator()));
        if (i % stepEvery != 0)
            continue;
        for (int steps : { 1, -1, 3 }) {
            spin.setValue(at);
            const Int128 next = Int128(at) + Int128(steps) * step;
            const qlonglong expected = (next < min || next > max)
                ? at
                : gridPoint(min, max, step, static_cast<qlonglong>(next));
            spin.stepBy(steps);
            QVERIFY2(spin.value() == expected,
                     qPrintable(QStringLiteral("from %1 by %2: %3, expected %4")
                                    .arg(at)
                                    .arg(steps)
                                    .arg(spin.value())
                                    .arg(expected)));
        }
    }
}

void tst_QtOrbSpinBoxVal64::outOfRangeIsIgnored()
{
    QtOrbSpinBoxVal64 spin;
    spin.setValue(42);
    QSignalSpy spy(&spin, QOverload<qlonglong>::of(&QtOrbSpinBoxVal64::valueChanged));
    spin.setValue(150);
    spin.setValue(-1);
    QCOMPARE(spin.value(), 42LL);
    QCOMPARE(spin.text(), QStringLiteral("42"));
    QCOMPARE(spy.count(), 0);
}

void tst_QtOrbSpinBoxVal64::rangeSetters()
{
    QtOrbSpinBoxVal64 spin;
    spin.setValue(50);
    spin.setRange(10, 5);
    QCOMPARE(spin.minimum(), 10LL);
    QCOMPARE(spin.maximum(), 10LL);
    QCOMPARE(spin.value(), 50LL); // a value outside a new range stays
    // The validator was given the bounds as they came (10, 5): 7 lies
    // above its top; it stays as typed (Intermediate), never Acceptable.
    QString text = QStringLiteral("7");
    int pos = 0;
    QCOMPARE(spin.validate(text, pos), QValidator::Intermediate);
    spin.setMinimum(20);
    QCOMPARE(spin.maximum(), 20LL);
    spin.setMaximum(15);
    QCOMPARE(spin.minimum(), 15LL);
}

void tst_QtOrbSpinBoxVal64::bases_data()
{
    QTest::addColumn<int>("base");
    QTest::addColumn<qlonglong>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("hex negative") << 16 << -255LL << "[-ff]";
    QTest::newRow("hex positive") << 16 << 4096LL << "[1000]";
    QTest::newRow("binary") << 2 << 5LL << "[101]";
    QTest::newRow("octal") << 8 << 64LL << "[100]";
}

void tst_QtOrbSpinBoxVal64::bases()
{
    QFETCH(int, base);
    QFETCH(qlonglong, value);
    QFETCH(QString, text);
    QtOrbSpinBoxVal64 spin;
    spin.setPrefix(QStringLiteral("["));
    spin.setSuffix(QStringLiteral("]"));
    spin.setRange(-100000, 100000);
    spin.setDisplayIntegerBase(base);
    QSignalSpy textSpy(&spin, QOverload<const QString &>::of(&QtOrbSpinBoxVal64::valueChanged));
    spin.setValue(value);
    QCOMPARE(spin.text(), text);
    QCOMPARE(spin.cleanText(), QString::number(value));
    QCOMPARE(textSpy.count(), 1);
    QCOMPARE(textSpy.at(0).at(0).toString(), text);
}

void tst_QtOrbSpinBoxVal64::groupSeparators()
{
    QtOrbSpinBoxVal64 spin;
    spin.setLocale(QLocale(QLocale::German));
    spin.setRange(-100000000, 100000000);
    spin.setValue(1234567);
    QCOMPARE(spin.text(), QStringLiteral("1234567"));
    spin.setValue(999);
    QCOMPARE(spin.text(), QStringLiteral("999"));
    spin.setGroupSeparatorShown(true);
    spin.setValue(-1234567);
    QCOMPARE(spin.text(), QStringLiteral("-1.234.567"));
}

void tst_QtOrbSpinBoxVal64::arrowsDoNotClamp()
{
    Window w;
    QVERIFY(w.ready());
    w.spin->setRange(0, 99);
    w.spin->setSingleStep(10);
    w.spin->setValue(95);
    QTest::keyClick(w.spin, Qt::Key_Up);
    QCOMPARE(w.spin->value(), 95LL);
    QTest::keyClick(w.spin, Qt::Key_Down);
    QCOMPARE(w.spin->value(), 85LL);
    w.spin->setWrapping(true);
    w.spin->setValue(95);
    QTest::keyClick(w.spin, Qt::Key_Up);
    QCOMPARE(w.spin->value(), 0LL);
}

void tst_QtOrbSpinBoxVal64::heldArrowCommitsOnRelease()
{
    Window w;
    QVERIFY(w.ready());
    w.spin->setButtonTracking(false);
    QSignalSpy spy(w.spin, QOverload<qlonglong>::of(&QtOrbSpinBoxVal64::valueChanged));
    for (int i = 0; i < 3; ++i)
        QTest::keyPress(w.spin, Qt::Key_Up);
    QCOMPARE(w.spin->text(), QStringLiteral("3"));
    QCOMPARE(w.spin->value(), 0LL);
    QCOMPARE(spy.count(), 0);
    QTest::keyRelease(w.spin, Qt::Key_Up);
    QCOMPARE(w.spin->value(), 3LL);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toLongLong(), 3LL);
}

void tst_QtOrbSpinBoxVal64::heldButtonCommitsOnRelease()
{
    Window w;
    QVERIFY(w.ready());
    w.spin->setButtonTracking(false);
    w.spin->setRange(0, 1000);
    QSignalSpy spy(w.spin, QOverload<qlonglong>::of(&QtOrbSpinBoxVal64::valueChanged));
    const QPoint up = w.upButton();
    QTest::mousePress(w.spin, Qt::LeftButton, Qt::NoModifier, up);
    // Holding the button repeats the step; nothing is committed meanwhile.
    QTRY_VERIFY_WITH_TIMEOUT(w.spin->text().toLongLong() >= 3, 5000);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(w.spin->value(), 0LL);
    QTest::mouseRelease(w.spin, Qt::LeftButton, Qt::NoModifier, up);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(w.spin->value(), w.spin->text().toLongLong());
    QVERIFY(w.spin->value() >= 3);
}

void tst_QtOrbSpinBoxVal64::typedTextAndFocus_data()
{
    QTest::addColumn<bool>("ignoreFocusOut");
    QTest::addColumn<bool>("pressEnter");
    QTest::addColumn<qlonglong>("committed");
    QTest::newRow("focus out discards") << true << false << 7LL;
    QTest::newRow("Enter commits") << true << true << 42LL;
    QTest::newRow("focus out commits when not ignored") << false << false << 42LL;
}

void tst_QtOrbSpinBoxVal64::typedTextAndFocus()
{
    QFETCH(bool, ignoreFocusOut);
    QFETCH(bool, pressEnter);
    QFETCH(qlonglong, committed);
    Window w;
    QVERIFY(w.ready());
    w.spin->setKeyboardTracking(false);
    w.spin->setIgnoreFocusOut(ignoreFocusOut);
    w.spin->setValue(7);
    QSignalSpy numbers(w.spin, QOverload<qlonglong>::of(&QtOrbSpinBoxVal64::valueChanged));
    QSignalSpy texts(w.spin, QOverload<const QString &>::of(&QtOrbSpinBoxVal64::valueChanged));
    w.type(QStringLiteral("42"));
    QCOMPARE(numbers.count(), 0); // nothing before Enter or leaving
    if (pressEnter)
        QTest::keyClick(w.spin, Qt::Key_Return);
    else
        QTest::mouseClick(w.other, Qt::LeftButton);
    QTRY_VERIFY(!w.spin->hasFocus() || pressEnter);
    QCOMPARE(w.spin->value(), committed);
    QCOMPARE(w.spin->text(), QString::number(committed));
    QCOMPARE(numbers.count(), committed == 7 ? 0 : 1);
    QCOMPARE(texts.count(), numbers.count());
}

void tst_QtOrbSpinBoxVal64::keyboardTrackingCommitsEachKey()
{
    Window w;
    QVERIFY(w.ready());
    w.spin->setKeyboardTracking(true);
    QSignalSpy spy(w.spin, QOverload<qlonglong>::of(&QtOrbSpinBoxVal64::valueChanged));
    w.type(QStringLiteral("42"));
    QCOMPARE(w.spin->value(), 42LL);
    QCOMPARE(spy.count(), 2); // 4, then 42
    // Keys the validator refuses never reach the text.
    QTest::keyClicks(w.spin, QStringLiteral("x9"));
    QCOMPARE(w.spin->value(), 42LL);
}

void tst_QtOrbSpinBoxVal64::prefixAndSuffix()
{
    Window w;
    QVERIFY(w.ready());
    w.spin->setPrefix(QStringLiteral("$ "));
    w.spin->setSuffix(QStringLiteral(" us"));
    w.spin->setValue(12);
    QCOMPARE(w.spin->text(), QStringLiteral("$ 12 us"));
    QLineEdit *edit = w.spin->findChild<QLineEdit *>();
    QVERIFY(edit);
    edit->deselect();
    edit->setCursorPosition(3);
    QTest::keyClick(w.spin, Qt::Key_Home);
    QCOMPARE(edit->cursorPosition(), 3); // a move into the prefix is undone
    QTest::keyClick(w.spin, Qt::Key_End);
    QCOMPARE(edit->cursorPosition(), 4); // never inside the suffix
    w.spin->clear();
    QCOMPARE(w.spin->text(), QStringLiteral("$  us"));
    QCOMPARE(w.spin->value(), 12LL);
    QVERIFY(w.spin->sizeHint().width()
            > w.spin->fontMetrics().horizontalAdvance(QStringLiteral("$ 99 us")));
}

void tst_QtOrbSpinBoxVal64::fullRange()
{
    QtOrbSpinBoxVal64 spin;
    const qlonglong min = std::numeric_limits<qlonglong>::min();
    const qlonglong max = std::numeric_limits<qlonglong>::max();
    spin.setRange(min, max);
    spin.setSingleStep(1000);
    spin.setValidateStepping(true);
    spin.setValue(max);
    QCOMPARE(spin.value(), max);
    spin.setValue(min);
    QCOMPARE(spin.value(), min);
    spin.setValue(max - 1); // snaps to the maximum rather than past it
    QCOMPARE(spin.value(), max);
    spin.stepBy(1); // beyond the range: dropped
    QCOMPARE(spin.value(), max);
    spin.setDisplayIntegerBase(16);
    spin.setValue(min);
    QCOMPARE(spin.text(), QStringLiteral("-8000000000000000"));
}

void tst_QtOrbSpinBoxVal64::stepEnabled_data()
{
    QTest::addColumn<qlonglong>("value");
    QTest::addColumn<bool>("wrapping");
    QTest::addColumn<bool>("readOnly");
    QTest::addColumn<int>("enabled");
    QTest::newRow("middle") << 50LL << false << false
                            << int(QAbstractSpinBox::StepUpEnabled
                                   | QAbstractSpinBox::StepDownEnabled);
    QTest::newRow("minimum") << 0LL << false << false << int(QAbstractSpinBox::StepUpEnabled);
    QTest::newRow("maximum") << 99LL << false << false << int(QAbstractSpinBox::StepDownEnabled);
    QTest::newRow("near the maximum: up stays enabled")
        << 95LL << false << false
        << int(QAbstractSpinBox::StepUpEnabled | QAbstractSpinBox::StepDownEnabled);
    QTest::newRow("wrapping") << 99LL << true << false
                              << int(QAbstractSpinBox::StepUpEnabled
                                     | QAbstractSpinBox::StepDownEnabled);
    QTest::newRow("read-only") << 50LL << false << true << int(QAbstractSpinBox::StepNone);
}

void tst_QtOrbSpinBoxVal64::stepEnabled()
{
    QFETCH(qlonglong, value);
    QFETCH(bool, wrapping);
    QFETCH(bool, readOnly);
    QFETCH(int, enabled);
    struct Spin : QtOrbSpinBoxVal64 {
        using QtOrbSpinBoxVal64::stepEnabled;
    } spin;
    spin.setSingleStep(10);
    spin.setValue(value);
    spin.setWrapping(wrapping);
    spin.setReadOnly(readOnly);
    QCOMPARE(int(spin.stepEnabled()), enabled);
}

QTEST_MAIN(tst_QtOrbSpinBoxVal64)
#include "tst_qtorbspinboxval64.moc"

void tst_QtOrbSpinBoxVal64::heldArrowNeverWraps_data()
{
    QTest::addColumn<bool>("wrapping");
    QTest::addColumn<qlonglong>("start");
    QTest::addColumn<int>("key");
    QTest::addColumn<qlonglong>("shown");
    const qlonglong lowest = std::numeric_limits<qlonglong>::min();
    const qlonglong highest = std::numeric_limits<qlonglong>::max();
    QTest::newRow("up past the top") << false << highest - 5 << int(Qt::Key_Up) << highest - 5;
    QTest::newRow("down past the bottom") << false << lowest + 5 << int(Qt::Key_Down) << lowest + 5;
    QTest::newRow("up past the top, wrapping") << true << highest - 5 << int(Qt::Key_Up) << lowest;
    QTest::newRow("down past the bottom, wrapping")
        << true << lowest + 5 << int(Qt::Key_Down) << highest;
}

// Holding an arrow with button tracking off scrolls a pending value that is
// committed on release: it must never go round the 64-bit range (to a large
// number of the other sign) unless the box wraps.
void tst_QtOrbSpinBoxVal64::heldArrowNeverWraps()
{
    QFETCH(bool, wrapping);
    QFETCH(qlonglong, start);
    QFETCH(int, key);
    QFETCH(qlonglong, shown);
    Window w;
    QVERIFY(w.ready());
    w.spin->setRange(std::numeric_limits<qlonglong>::min(), std::numeric_limits<qlonglong>::max());
    w.spin->setSingleStep(10);
    w.spin->setButtonTracking(false);
    w.spin->setWrapping(wrapping);
    w.spin->setValue(start);
    QSignalSpy spy(w.spin, QOverload<qlonglong>::of(&QtOrbSpinBoxVal64::valueChanged));
    QTest::keyPress(w.spin, Qt::Key(key));
    QCOMPARE(w.spin->text(), w.spin->locale().toString(shown).remove(QLocale().groupSeparator()));
    QCOMPARE(w.spin->value(), start);
    QTest::keyRelease(w.spin, Qt::Key(key));
    QCOMPARE(w.spin->value(), shown);
    QCOMPARE(spy.count(), shown == start ? 0 : 1);
}

void tst_QtOrbSpinBoxVal64::commitText_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("committed");
    QTest::addColumn<qlonglong>("value");
    QTest::newRow("on the grid") << "40" << true << 40LL;
    QTest::newRow("snapped down") << "44" << true << 40LL;
    QTest::newRow("snapped up") << "45" << true << 50LL;
    QTest::newRow("above the range") << "500" << false << 10LL;
    QTest::newRow("no number") << "4x" << false << 10LL;
    QTest::newRow("empty") << "" << false << 10LL;
}

// What a delegate calls before it reads the value: the typed text is
// committed as Enter would, or refused with the current value shown again.
void tst_QtOrbSpinBoxVal64::commitText()
{
    QFETCH(QString, typed);
    QFETCH(bool, committed);
    QFETCH(qlonglong, value);
    QtOrbSpinBoxVal64 spin;
    spin.setKeyboardTracking(false);
    spin.setRange(0, 100);
    spin.setSingleStep(10);
    spin.setValidateStepping(true);
    spin.setValue(10);
    // The line edit as the user left it, unchecked by the validator.
    spin.findChild<QLineEdit *>()->setText(typed);
    QCOMPARE(spin.commitText(), committed);
    QCOMPARE(spin.value(), value);
    QCOMPARE(spin.text(), QString::number(value));
}
