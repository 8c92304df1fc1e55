#include <OrbGui/qtorbdoublespinboxval.h>
#include <OrbGui/qtorbgainslider.h>
#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval.h>
#include <OrbGui/qtorbspinboxval64.h>

#include <QAbstractSpinBox>
#include <QLabel>
#include <QScreen>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtTest>

#include <functional>

#include "widgettest.h"

using namespace OrbGui;
using namespace WidgetTest;

class TestSpinBoxes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() { addLocaleRows(); }
    void init() { applyLocaleRow(); }
    void intSnapping_data();
    void intSnapping();
    void doubleSnapping_data();
    void doubleSnapping();
    void steppingSnaps();
    void typingWaitsForEnter_data();
    void typingWaitsForEnter();
    void typingCommitsWhileTypingByDefault();
    void lineEditTextLeavesValue();
    void compoundForwardsToChildren();
    void compoundSliderFollowsValue();
    void compoundReadOnlyHidesButton();
    void compoundPopupBesideButton_data();
    void compoundPopupBesideButton();
    void typingOutsideTheRange_data();
    void typingOutsideTheRange();
    void compoundPopupKeys_data();
    void compoundPopupKeys();
    void compoundPopupClosesOnFocusOut();
    void compoundPopupDragAnnouncesOnce();
    void compoundLabels();
    void enterKeepsTheShownNumber_data();
    void enterKeepsTheShownNumber();
    void fullIntRangeSnapping();
};

void TestSpinBoxes::intSnapping_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("expected");
    QTest::newRow("14 down") << 0 << 100 << 10 << 14 << 10;
    QTest::newRow("15 half up") << 0 << 100 << 10 << 15 << 20;
    QTest::newRow("99 up") << 0 << 100 << 10 << 99 << 100;
    QTest::newRow("limited to maximum") << 0 << 97 << 10 << 96 << 97;
    QTest::newRow("maximum unchanged") << 0 << 97 << 10 << 97 << 97;
    QTest::newRow("anchored at minimum") << 2 << 100 << 4 << 7 << 6;
    // Half of 5 is 2 in integers, so 2 already rounds up.
    QTest::newRow("odd step, 1 down") << 0 << 100 << 5 << 1 << 0;
    QTest::newRow("odd step, 2 up") << 0 << 100 << 5 << 2 << 5;
    QTest::newRow("clamped below") << 10 << 100 << 10 << -40 << 10;
}

void TestSpinBoxes::intSnapping()
{
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(int, step);
    QFETCH(int, value);
    QFETCH(int, expected);

    QtOrbSpinBoxVal box;
    box.setRange(minimum, maximum);
    box.setSingleStep(step);
    box.setValue(value);
    // Without validate the value is only clamped.
    QCOMPARE(box.value(), qBound(minimum, value, maximum));
    box.setValidate(true);
    box.setValue(value);
    QCOMPARE(box.value(), expected);
}

void TestSpinBoxes::doubleSnapping_data()
{
    QTest::addColumn<double>("step");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");
    QTest::newRow("0.3 down") << 0.25 << 0.3 << 0.25;
    QTest::newRow("0.4 up") << 0.25 << 0.4 << 0.5;
    QTest::newRow("half rounds up") << 0.25 << 0.125 << 0.25;
    QTest::newRow("limited to maximum") << 0.6 << 0.95 << 1.0;
    QTest::newRow("on the grid") << 0.25 << 0.75 << 0.75;
}

void TestSpinBoxes::doubleSnapping()
{
    QFETCH(double, step);
    QFETCH(double, value);
    QFETCH(double, expected);

    QtOrbDoubleSpinBoxVal box;
    box.setDecimals(4);
    box.setRange(0.0, 1.0);
    box.setSingleStep(step);
    box.setValidate(true);
    box.setValue(value);
    QCOMPARE(box.value(), expected);
}

void TestSpinBoxes::steppingSnaps()
{
    QtOrbSpinBoxVal box;
    box.setRange(0, 100);
    box.setSingleStep(10);
    box.setValue(3);
    box.setValidate(true);
    box.stepBy(1); // 13 snaps to 10
    QCOMPARE(box.value(), 10);
    box.stepBy(3);
    QCOMPARE(box.value(), 40);

    QtOrbDoubleSpinBoxVal doubleBox;
    doubleBox.setRange(0.0, 2.0);
    doubleBox.setSingleStep(0.5);
    doubleBox.setValue(0.2);
    doubleBox.setValidate(true);
    doubleBox.stepBy(1); // 0.7 snaps to 0.5
    QCOMPARE(doubleBox.value(), 0.5);
    doubleBox.stepBy(-2);
    QCOMPARE(doubleBox.value(), 0.0);
}

void TestSpinBoxes::typingWaitsForEnter_data()
{
    QTest::addColumn<bool>("isDouble");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("expected");
    QTest::newRow("int") << false << QStringLiteral("42") << 40.0;
    QTest::newRow("double") << true << QStringLiteral("0.74") << 0.5;
}

void TestSpinBoxes::typingWaitsForEnter()
{
    QFETCH(bool, isDouble);
    QFETCH(QString, typed);
    QFETCH(double, expected);

    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    QAbstractSpinBox *box = nullptr;
    if (isDouble) {
        auto *d = new QtOrbDoubleSpinBoxVal;
        d->setRange(0.0, 10.0);
        d->setSingleStep(0.5);
        d->setValidate(true);
        d->setValidateTyping(false);
        box = d;
    } else {
        auto *i = new QtOrbSpinBoxVal;
        i->setRange(0, 100);
        i->setSingleStep(10);
        i->setValidate(true);
        i->setValidateTyping(false);
        box = i;
    }
    layout->addWidget(box);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    box->setFocus();
    const auto value = [&] {
        return isDouble ? static_cast<QtOrbDoubleSpinBoxVal *>(box)->value()
                        : double(static_cast<QtOrbSpinBoxVal *>(box)->value());
    };

    // Typed as the user's locale writes it.
    typed.replace(QLatin1Char('.'), QLocale().decimalPoint());
    box->selectAll();
    QTest::keyClicks(box, typed);
    QCOMPARE(value(), 0.0);
    QCOMPARE(box->findChild<QLineEdit *>()->text(), typed);
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(value(), expected);

    // Text that does not parse is left to the spin box, which keeps the value.
    box->selectAll();
    QTest::keyClick(box, Qt::Key_Minus);
    QTest::keyClick(box, Qt::Key_Enter);
    QCOMPARE(value(), expected);
}

void TestSpinBoxes::typingCommitsWhileTypingByDefault()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *box = new QtOrbSpinBoxVal;
    box->setRange(0, 100);
    layout->addWidget(box);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    box->setFocus();
    QSignalSpy changes(box, QOverload<int>::of(&QSpinBox::valueChanged));
    box->selectAll();
    QTest::keyClicks(box, QStringLiteral("57"));
    QCOMPARE(box->value(), 57);
    QCOMPARE(changes.count(), 2); // "5", then "57"
}

void TestSpinBoxes::lineEditTextLeavesValue()
{
    QtOrbSpinBoxVal box;
    box.setRange(0, 100);
    box.setValue(12);
    box.setLineEditText(QStringLiteral("n/a"));
    QCOMPARE(box.value(), 12);
    QCOMPARE(box.findChild<QLineEdit *>()->text(), QStringLiteral("n/a"));

    QtOrbDoubleSpinBoxVal doubleBox;
    doubleBox.setValue(1.5);
    doubleBox.setLineEditText(QStringLiteral("busy"));
    QCOMPARE(doubleBox.value(), 1.5);
    QCOMPARE(doubleBox.findChild<QLineEdit *>()->text(), QStringLiteral("busy"));
}

void TestSpinBoxes::compoundForwardsToChildren()
{
    QtOrbSpinBox box;
    QCOMPARE(box.minimum(), 0);
    QCOMPARE(box.maximum(), 100);
    QSignalSpy ranges(&box, &QtOrbSpinBox::rangeChanged);
    QSignalSpy numbers(&box, QOverload<int>::of(&QtOrbSpinBox::valueChanged));
    QSignalSpy texts(&box, QOverload<const QString &>::of(&QtOrbSpinBox::valueChanged));

    box.setRange(-10, 500);
    QCOMPARE(ranges.count(), 1);
    QCOMPARE(box.spinBox()->minimum(), -10);
    QCOMPARE(box.slider()->maximum(), 500);
    box.setRange(-10, 500);
    QCOMPARE(ranges.count(), 1);

    box.setSingleStep(20);
    QCOMPARE(box.slider()->singleStep(), 20);
    box.setValidate(true);
    QVERIFY(box.validate());
    QVERIFY(box.slider()->validate());
    // The snapping slider pulls the box onto the grid (-10, 10, 30, ...).
    box.setValue(35);
    QCOMPARE(box.value(), 30);
    QCOMPARE(box.slider()->value(), 30);
    QCOMPARE(numbers.last().at(0).toInt(), 30);
    QCOMPARE(texts.last().at(0).toString(), QStringLiteral("30"));
    // Out of range is ignored, as by the 64-bit box itself.
    box.setValue(900);
    QCOMPARE(box.value(), 30);

    // A range narrowed through the slider reaches the box, and the value
    // follows the slider into it.
    box.slider()->setRange(0, 20);
    QCOMPARE(box.maximum(), 20);
    QCOMPARE(ranges.count(), 2);
    QCOMPARE(box.value(), 20);
}

void TestSpinBoxes::compoundSliderFollowsValue()
{
    QtOrbSpinBox box(Qt::Horizontal);
    box.setRange(0, 1000);
    box.setValue(250);
    QCOMPARE(box.slider()->value(), 250);
    box.slider()->setValue(600);
    QCOMPARE(box.value(), 600);
    QCOMPARE(box.toolButton()->text(), QStringLiteral(">"));
    box.setSliderOrientation(Qt::Vertical);
    QCOMPARE(box.toolButton()->text(), QStringLiteral("^"));
    QCOMPARE(box.slider()->orientation(), Qt::Vertical);
}

void TestSpinBoxes::compoundReadOnlyHidesButton()
{
    QtOrbSpinBox box;
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    QVERIFY(box.toolButton()->isVisible());
    box.setReadOnly(true);
    QVERIFY(box.isReadOnly());
    QVERIFY(box.spinBox()->isReadOnly());
    QVERIFY(!box.toolButton()->isVisible());
    box.setReadOnly(false);
    QVERIFY(box.toolButton()->isVisible());

    // Read-only must not bring back a button the host asked to hide.
    box.setSliderButtonVisible(false);
    box.setReadOnly(true);
    box.setReadOnly(false);
    QVERIFY(!box.toolButton()->isVisible());
    QVERIFY(!box.isSliderButtonVisible());
}

void TestSpinBoxes::compoundPopupBesideButton_data()
{
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::addColumn<QPoint>("windowAt");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("shortest");
    QTest::addColumn<bool>("logarithmic");
    // The screen is 1280 x 1024 (Xvfb in the tests).
    QTest::newRow("horizontal, short range")
        << Qt::Horizontal << QPoint(200, 300) << 100 << 200 << false;
    QTest::newRow("horizontal, a pixel a step")
        << Qt::Horizontal << QPoint(200, 300) << 250 << 251 << false;
    QTest::newRow("horizontal, long range on a log scale")
        << Qt::Horizontal << QPoint(200, 300) << 65535 << 320 << true;
    QTest::newRow("horizontal, at the right edge")
        << Qt::Horizontal << QPoint(1100, 300) << 100 << 200 << false;
    QTest::newRow("vertical") << Qt::Vertical << QPoint(200, 500) << 100 << 200 << false;
    QTest::newRow("vertical, at the top edge")
        << Qt::Vertical << QPoint(200, 0) << 100 << 200 << false;
}

// The pop-up opens beside its field, wholly on the screen, long enough to be
// of use, with its groove and its range showing: it never covers the rows
// above and below a horizontal field.
void TestSpinBoxes::compoundPopupBesideButton()
{
    QFETCH(Qt::Orientation, orientation);
    QFETCH(QPoint, windowAt);
    QFETCH(int, maximum);
    QFETCH(int, shortest);
    QFETCH(bool, logarithmic);

    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *box = new QtOrbSpinBox(orientation);
    box->setRange(0, maximum);
    // What a dialog asks for a box 97 by 49 pixels: too short to be of use.
    box->resizeSlider(97, 49);
    layout->addWidget(box);
    window.move(windowAt);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));

    QtOrbSlider *slider = box->slider();
    QVERIFY(!slider->isVisible());
    QTest::mouseClick(box->toolButton(), Qt::LeftButton);
    QTRY_VERIFY(slider->isVisible());
    QTRY_VERIFY(slider->slider()->hasFocus());
    const QRect popUp = slider->frameGeometry();
    const QRect screen = box->screen()->availableGeometry();
    QVERIFY2(screen.contains(popUp), "the pop-up leaves the screen");
    const QRect field(
        box->spinBox()->mapToGlobal(QPoint(0, 0)),
        QSize(box->spinBox()->width() + box->toolButton()->width(), box->spinBox()->height()));
    QVERIFY2(!popUp.intersects(field), "the pop-up covers its own field");
    const int length = orientation == Qt::Horizontal ? popUp.width() : popUp.height();
    QVERIFY2(length >= shortest, qPrintable(QString::number(length)));
    if (orientation == Qt::Horizontal) {
        // Along the field's row: nothing above or below it is covered.
        QVERIFY(popUp.top() >= field.top() - popUp.height());
        QVERIFY(qAbs(popUp.center().y() - field.center().y()) <= 1);
    }
    // The groove is longer than the handle, and the range is shown.
    QStyleOptionSlider option;
    option.initFrom(slider->slider());
    option.orientation = orientation;
    option.minimum = slider->slider()->minimum();
    option.maximum = slider->slider()->maximum();
    const QRect handle = slider->slider()->style()->subControlRect(
        QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, slider->slider());
    const int grooveLength
        = orientation == Qt::Horizontal ? slider->slider()->width() : slider->slider()->height();
    const int handleLength = orientation == Qt::Horizontal ? handle.width() : handle.height();
    QVERIFY2(grooveLength > 4 * handleLength, qPrintable(QString::number(grooveLength)));
    QVERIFY(slider->minLabel()->isVisible() && slider->maxLabel()->isVisible());
    QCOMPARE(slider->scaleType() == QtOrbSlider::Logarithmic, logarithmic);
}

void TestSpinBoxes::typingOutsideTheRange_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("written"); // empty: nothing
    for (const char *kind : { "QtOrbSpinBox", "QtOrbSpinBoxVal", "QtOrbDoubleSpinBoxVal" }) {
        QTest::addRow("%s, above the maximum", kind) << kind << "5000" << QString();
        QTest::addRow("%s, below the minimum", kind) << kind << "-5" << QString();
        QTest::addRow("%s, too many digits", kind) << kind << "99999999999999999999" << QString();
        QTest::addRow("%s, off the increment", kind) << kind << "634"
                                                     << "630";
        QTest::addRow("%s, in the range", kind) << kind << "640"
                                                << "640";
    }
}

// What the user types stays as typed, key by key; Enter writes nothing
// while it is outside the range (the box is marked and says the range), or
// exactly the value the box then shows; Escape writes nothing and brings
// the value back.
void TestSpinBoxes::typingOutsideTheRange()
{
    QFETCH(QString, kind);
    QFETCH(QString, typed);
    QFETCH(QString, written);
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    QAbstractSpinBox *box = nullptr;
    QWidget *marked = nullptr;
    QStringList announced;
    std::function<QString()> shown;
    if (kind == QLatin1String("QtOrbSpinBox")) {
        auto *compound = new QtOrbSpinBox;
        compound->setRange(0, 1000);
        compound->setSingleStep(10);
        compound->setValue(100);
        compound->setValidate(true);
        compound->setValidateTyping(false);
        connect(compound, QOverload<int>::of(&QtOrbSpinBox::valueChanged),
                [&](int v) { announced << QString::number(v); });
        layout->addWidget(compound);
        box = compound->spinBox();
        marked = box;
        shown = [compound] { return QString::number(compound->value()); };
    } else if (kind == QLatin1String("QtOrbSpinBoxVal")) {
        auto *spin = new QtOrbSpinBoxVal;
        spin->setRange(0, 1000);
        spin->setSingleStep(10);
        spin->setValue(100);
        spin->setValidate(true);
        spin->setValidateTyping(false);
        connect(spin, QOverload<int>::of(&QSpinBox::valueChanged),
                [&](int v) { announced << QString::number(v); });
        layout->addWidget(spin);
        box = spin;
        marked = spin;
        shown = [spin] { return QString::number(spin->value()); };
    } else {
        auto *spin = new QtOrbDoubleSpinBoxVal;
        spin->setDecimals(0);
        spin->setRange(0, 1000);
        spin->setSingleStep(10);
        spin->setValue(100);
        spin->setValidate(true);
        spin->setValidateTyping(false);
        connect(spin, QOverload<double>::of(&QDoubleSpinBox::valueChanged),
                [&](double v) { announced << QString::number(v); });
        layout->addWidget(spin);
        box = spin;
        marked = spin;
        shown = [spin] { return QString::number(spin->value()); };
    }
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    box->setFocus();
    box->selectAll();
    QTest::keyClick(box, Qt::Key_Delete);
    for (int i = 0; i < typed.size(); ++i) {
        QTest::keyClick(box, typed.at(i).toLatin1());
        QCOMPARE(box->text(), typed.left(i + 1));
    }
    QTest::keyClick(box, Qt::Key_Return);
    if (written.isEmpty()) {
        QVERIFY(announced.isEmpty());
        QCOMPARE(box->text(), typed);
        QVERIFY(marked->property("outOfRange").toBool());
        // The range as the box writes its numbers (the 64-bit box without
        // group separators).
        QVERIFY2(marked->toolTip().contains(QStringLiteral("1000"))
                     || marked->toolTip().contains(box->locale().toString(1000)),
                 qPrintable(marked->toolTip()));
        QTest::keyClick(box, Qt::Key_Escape);
        QVERIFY(announced.isEmpty());
        QCOMPARE(box->text(), QStringLiteral("100"));
        QVERIFY(!marked->property("outOfRange").toBool());
    } else {
        QCOMPARE(announced, QStringList { written });
        QCOMPARE(shown(), written);
        QCOMPARE(box->text(), written);
        QVERIFY(!marked->property("outOfRange").toBool());
    }
}

// Keys move the number but announce nothing until Enter; Escape takes the
// value back and announces nothing.
void TestSpinBoxes::compoundPopupKeys_data()
{
    QTest::addColumn<int>("closingKey");
    QTest::addColumn<int>("expected");
    QTest::addColumn<int>("announced");
    QTest::newRow("Enter keeps") << int(Qt::Key_Return) << 12 << 1;
    QTest::newRow("Escape takes back") << int(Qt::Key_Escape) << 10 << 0;
}

void TestSpinBoxes::compoundPopupKeys()
{
    QFETCH(int, closingKey);
    QFETCH(int, expected);
    QFETCH(int, announced);
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *box = new QtOrbSpinBox(Qt::Horizontal);
    box->setValue(10);
    layout->addWidget(box);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QSignalSpy numbers(box, QOverload<int>::of(&QtOrbSpinBox::valueChanged));
    QTest::mouseClick(box->toolButton(), Qt::LeftButton);
    QTRY_VERIFY(box->slider()->slider()->hasFocus());
    QTest::keyClick(box->slider()->slider(), Qt::Key_Up);
    QTest::keyClick(box->slider()->slider(), Qt::Key_Up);
    QCOMPARE(box->value(), 12);
    QCOMPARE(numbers.count(), 0);
    QTest::keyClick(box->slider()->slider(), Qt::Key(closingKey));
    QTRY_VERIFY(!box->slider()->isVisible());
    QCOMPARE(box->value(), expected);
    QCOMPARE(box->slider()->value(), expected);
    QCOMPARE(numbers.count(), announced);
}

void TestSpinBoxes::compoundPopupClosesOnFocusOut()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *box = new QtOrbSpinBox(Qt::Horizontal);
    layout->addWidget(box);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));

    QTest::mouseClick(box->toolButton(), Qt::LeftButton);
    QTRY_VERIFY(box->slider()->isVisible());
    QSignalSpy numbers(box, QOverload<int>::of(&QtOrbSpinBox::valueChanged));
    QTest::keyClick(box->slider()->slider(), Qt::Key_Up);
    box->slider()->slider()->clearFocus();
    QTRY_VERIFY(!box->slider()->isVisible());
    // Leaving is no choice: the value goes back, nothing is announced.
    QCOMPARE(box->value(), 0);
    QCOMPARE(numbers.count(), 0);
}

void TestSpinBoxes::compoundPopupDragAnnouncesOnce()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *box = new QtOrbSpinBox(Qt::Horizontal);
    box->resizeSlider(300, 30);
    layout->addWidget(box);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTest::mouseClick(box->toolButton(), Qt::LeftButton);
    QSlider *inner = box->slider()->slider();
    QTRY_VERIFY(inner->isVisible());
    QVERIFY(QTest::qWaitForWindowExposed(box->slider()));

    QSignalSpy numbers(box, QOverload<int>::of(&QtOrbSpinBox::valueChanged));
    QSignalSpy texts(box, QOverload<const QString &>::of(&QtOrbSpinBox::valueChanged));
    const QPoint start = handleCentre(inner);
    QTest::mousePress(inner, Qt::LeftButton, Qt::NoModifier, start);
    for (int dx = 20; dx <= 100; dx += 20) {
        QMouseEvent move(QEvent::MouseMove, start + QPoint(dx, 0), Qt::LeftButton, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(inner, &move);
        // The number follows the handle while it is held...
        QCOMPARE(box->value(), box->slider()->value());
    }
    // ...but the widget announces nothing until the release, in neither form.
    QCOMPARE(numbers.count(), 0);
    QCOMPARE(texts.count(), 0);
    QTest::mouseRelease(inner, Qt::LeftButton, Qt::NoModifier, start + QPoint(100, 0));
    QVERIFY(box->value() > 0);
    // The release ends the pop-up.
    QTRY_VERIFY(!box->slider()->isVisible());
    QCOMPARE(numbers.count(), 1);
    QCOMPARE(numbers.at(0).at(0).toInt(), box->value());
    QCOMPARE(texts.count(), 1);
    QCOMPARE(texts.at(0).at(0).toString(), box->spinBox()->text());
}

void TestSpinBoxes::compoundLabels()
{
    QtOrbSpinBox box;
    QVERIFY(!box.leftLabel());
    QVERIFY(!box.topLabel());
    box.setLeftLabelText(QStringLiteral("Width"));
    box.setTopLabelText(QStringLiteral("Image"));
    box.setLeftLabelText(QStringLiteral("Height"));
    QCOMPARE(box.leftLabelText(), QStringLiteral("Height"));
    QCOMPARE(box.topLabel()->text(), QStringLiteral("Image"));
    QCOMPARE(box.findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly).size(), 2);
}

QTEST_MAIN(TestSpinBoxes)
#include "tst_spinboxes.moc"

void TestSpinBoxes::enterKeepsTheShownNumber_data()
{
    QTest::addColumn<QString>("widget");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("typed"); // empty: Enter on the number as shown
    QTest::addColumn<double>("expected");
    QTest::newRow("double, as shown") << "double" << 2.5 << QString() << 2.5;
    QTest::newRow("double, typed") << "double" << 2.5 << "1.25" << 1.25;
    QTest::newRow("double, whole") << "double" << 2.5 << "7" << 7.0;
    QTest::newRow("gain, as shown") << "gain" << 1.5 << QString() << 1.5;
    QTest::newRow("gain, typed") << "gain" << 1.5 << "12.125" << 12.125;
    QTest::newRow("int, groups shown") << "int" << 4321.0 << QString() << 4321.0;
    QTest::newRow("int, typed") << "int" << 4321.0 << "1234" << 1234.0;
}

// With typing validation off, Enter commits the number the user sees or
// typed, in the user's locale: a decimal comma must not be taken for a
// group separator (2,500 is two and a half, not 2500).
void TestSpinBoxes::enterKeepsTheShownNumber()
{
    QFETCH(QString, widget);
    QFETCH(double, value);
    QFETCH(QString, typed);
    QFETCH(double, expected);

    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    QAbstractSpinBox *box = nullptr;
    std::function<double()> current;
    if (widget == QLatin1String("gain")) {
        auto *gain = new QtOrbGainSlider;
        gain->setRange(0.0, 24.0);
        gain->setSingleStep(0.001);
        gain->setValidateTyping(false);
        gain->setValue(value);
        layout->addWidget(gain);
        box = gain->spinBox();
        current = [gain] { return gain->value(); };
    } else if (widget == QLatin1String("double")) {
        auto *d = new QtOrbDoubleSpinBoxVal;
        d->setDecimals(3);
        d->setRange(0.0, 10.0);
        d->setValidateTyping(false);
        d->setValue(value);
        box = d;
        current = [d] { return d->value(); };
    } else {
        auto *i = new QtOrbSpinBoxVal;
        i->setRange(0, 100000);
        i->setGroupSeparatorShown(true);
        i->setValidateTyping(false);
        i->setValue(int(value));
        box = i;
        current = [i] { return double(i->value()); };
    }
    if (!box->parentWidget())
        layout->addWidget(box);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    box->setFocus();
    QCOMPARE(current(), value);
    if (!typed.isEmpty()) {
        box->selectAll();
        QTest::keyClicks(box, typed.replace(QLatin1Char('.'), QLocale().decimalPoint()));
    }
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(current(), expected);
}

// Over the whole int range: the box and the linear slider snap every value
// where 128-bit arithmetic says.
void TestSpinBoxes::fullIntRangeSnapping()
{
    const QList<QPair<int, int>> ranges
        = { { INT_MIN, INT_MAX }, { INT_MIN, -1 }, { 0, INT_MAX }, { INT_MIN + 1, INT_MAX - 1 } };
    for (const auto &range : ranges) {
        for (int step : { 1, 3, 1000, 65537, 1 << 30, INT_MAX }) {
            QtOrbSpinBoxVal box;
            QtOrbSlider slider;
            QtOrbSliderSpinBox pair;
            QtOrbSpinBox compound;
            box.setRange(range.first, range.second);
            box.setSingleStep(step);
            box.setValidate(true);
            slider.setRange(range.first, range.second);
            slider.setSingleStep(step);
            slider.setValidate(true);
            pair.setRange(range.first, range.second);
            pair.setSingleStep(step);
            pair.setValidate(true);
            compound.setRange(range.first, range.second);
            compound.setSingleStep(step);
            compound.setValidate(true);
            for (qlonglong v : sampleValues(range.first, range.second, 300)) {
                const int expected = int(gridPoint(range.first, range.second, step, v));
                box.setValue(int(v));
                slider.setValue(int(v));
                pair.setValue(int(v));
                compound.setValue(int(v));
                QVERIFY2(box.value() == expected && slider.value() == expected
                             && pair.value() == expected && pair.slider()->value() == expected
                             && compound.value() == expected
                             && compound.slider()->value() == expected,
                         qPrintable(QStringLiteral("%1..%2 step %3 value %4: box %5 slider %6 "
                                                   "pair %7 compound %8, expected %9")
                                        .arg(range.first)
                                        .arg(range.second)
                                        .arg(step)
                                        .arg(v)
                                        .arg(box.value())
                                        .arg(slider.value())
                                        .arg(pair.value())
                                        .arg(compound.value())
                                        .arg(expected)));
                // Stepping snaps too, and never goes past the ends.
                box.stepBy(1);
                const qlonglong next = qMin<qlonglong>(qlonglong(expected) + step, range.second);
                QCOMPARE(box.value(), int(gridPoint(range.first, range.second, step, next)));
            }
        }
    }
}
