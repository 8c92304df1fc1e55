// The value widgets as a host uses them: promoted in a Designer form, built
// by uic, with the form's properties applied through the widgets' setters.
#include "ui_promoted.h"

#include <OrbGui/qtorbdoubleslider.h>
#include <OrbGui/qtorbgainslider.h>
#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval.h>

#include <QLabel>
#include <QSlider>
#include <QtTest>

#include "widgettest.h"

using namespace OrbGui;
using namespace WidgetTest;

class TestPromoted : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() { addLocaleRows(); }
    void init() { applyLocaleRow(); }
    void formBuildsAndApplies();
    void propertiesByName_data();
    void propertiesByName();
};

void TestPromoted::formBuildsAndApplies()
{
    QWidget form;
    Ui::PromotedForm ui;
    ui.setupUi(&form);
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));

    QCOMPARE(ui.exposure->minimum(), 10);
    QCOMPARE(ui.exposure->maximum(), 100000);
    QCOMPARE(ui.exposure->slider()->maximum(), 100000);
    QCOMPARE(ui.width->leftLabel()->text(), QStringLiteral("Width"));
    QCOMPARE(ui.gain->maximum(), 24.0);
    QCOMPARE(ui.gain->slider()->maximum(), 24.0);
    QCOMPARE(ui.slider->scaleType(), QtOrbSlider::Logarithmic);
    QCOMPARE(ui.slider->slider()->orientation(), Qt::Horizontal);
    QVERIFY(ui.spinVal->validate());
    // Every widget got a sensible size from the layout.
    for (QWidget *w : { static_cast<QWidget *>(ui.exposure), static_cast<QWidget *>(ui.width),
                        static_cast<QWidget *>(ui.gain), static_cast<QWidget *>(ui.slider),
                        static_cast<QWidget *>(ui.doubleSlider) }) {
        QVERIFY2(w->height() >= w->minimumSizeHint().height(), qPrintable(w->objectName()));
        QVERIFY2(w->width() > 0, qPrintable(w->objectName()));
    }
}

void TestPromoted::propertiesByName_data()
{
    QTest::addColumn<QString>("widget");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("slider spin box value") << "exposure" << QByteArray("value") << QVariant(500);
    QTest::newRow("slider spin box step") << "exposure" << QByteArray("singleStep") << QVariant(10);
    QTest::newRow("slider spin box label")
        << "exposure" << QByteArray("topLabelText") << QVariant(QStringLiteral("Exposure"));
    QTest::newRow("spin box read-only") << "width" << QByteArray("readOnly") << QVariant(true);
    QTest::newRow("spin box button")
        << "width" << QByteArray("sliderButtonVisible") << QVariant(false);
    QTest::newRow("gain value") << "gain" << QByteArray("value") << QVariant(3.5);
    QTest::newRow("gain decimals") << "gain" << QByteArray("decimals") << QVariant(1);
    QTest::newRow("slider log coefficient")
        << "slider" << QByteArray("log10Coef") << QVariant(50.0);
    QTest::newRow("double slider step")
        << "doubleSlider" << QByteArray("singleStep") << QVariant(0.25);
}

// Designer's property editor and stylesheets reach the widgets by name.
void TestPromoted::propertiesByName()
{
    QFETCH(QString, widget);
    QFETCH(QByteArray, property);
    QFETCH(QVariant, value);

    QWidget form;
    Ui::PromotedForm ui;
    ui.setupUi(&form);
    QObject *target = form.findChild<QObject *>(widget);
    QVERIFY(target);
    QVERIFY2(target->setProperty(property.constData(), value), property.constData());
    QCOMPARE(target->property(property.constData()), value);
}

QTEST_MAIN(TestPromoted)
#include "tst_promoted.moc"
