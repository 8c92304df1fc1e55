// The Qt Designer plugin as Designer and QUiLoader use it: it offers every
// exported value widget, and a form that uses them (with properties set in
// Designer's property editor) builds into the real widgets.
#include <OrbGui/qtorbdoubleslider.h>
#include <OrbGui/qtorbdoublespinboxval.h>
#include <OrbGui/qtorbgainslider.h>
#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval.h>
#include <OrbGui/qtorbspinboxval64.h>

#include <QBuffer>
#include <QUiLoader>
#include <QtTest>

#include <memory>

class tst_DesignerPlugin : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void offersTheWidgets();
    void formWithEachWidget_data();
    void formWithEachWidget();

private:
    static std::unique_ptr<QUiLoader> loader()
    {
        auto l = std::make_unique<QUiLoader>();
        l->clearPluginPaths();
        l->addPluginPath(QStringLiteral(ORB_PLUGIN_DIR));
        return l;
    }
};

void tst_DesignerPlugin::offersTheWidgets()
{
    const QStringList available = loader()->availableWidgets();
    for (const char *name :
         { "OrbGui::QtOrbSpinBox", "OrbGui::QtOrbSliderSpinBox", "OrbGui::QtOrbSpinBoxVal64",
           "OrbGui::QtOrbGainSlider", "OrbGui::QtOrbDoubleSlider", "OrbGui::QtOrbSlider",
           "OrbGui::QtOrbSpinBoxVal", "OrbGui::QtOrbDoubleSpinBoxVal" })
        QVERIFY2(available.contains(QLatin1String(name)), name);
}

void tst_DesignerPlugin::formWithEachWidget_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("property"); // set in the form
    QTest::addColumn<QString>("propertyXml");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("spin box") << "OrbGui::QtOrbSpinBox"
                              << "maximum"
                              << "<number>250</number>" << QVariant(250);
    QTest::newRow("slider with spin box")
        << "OrbGui::QtOrbSliderSpinBox"
        << "leftLabelText"
        << "<string>Exposure</string>" << QVariant(QStringLiteral("Exposure"));
    QTest::newRow("64-bit spin box") << "OrbGui::QtOrbSpinBoxVal64"
                                     << "suffix"
                                     << "<string> us</string>" << QVariant(QStringLiteral(" us"));
    QTest::newRow("gain slider") << "OrbGui::QtOrbGainSlider"
                                 << "maximum"
                                 << "<double>24.000000000000000</double>" << QVariant(24.0);
    QTest::newRow("double slider") << "OrbGui::QtOrbDoubleSlider"
                                   << "decimals"
                                   << "<number>3</number>" << QVariant(3);
    QTest::newRow("slider") << "OrbGui::QtOrbSlider"
                            << "maximum"
                            << "<number>4095</number>" << QVariant(4095);
    QTest::newRow("validating spin box") << "OrbGui::QtOrbSpinBoxVal"
                                         << "validate"
                                         << "<bool>true</bool>" << QVariant(true);
    QTest::newRow("validating double spin box") << "OrbGui::QtOrbDoubleSpinBoxVal"
                                                << "validateTyping"
                                                << "<bool>true</bool>" << QVariant(true);
}

void tst_DesignerPlugin::formWithEachWidget()
{
    QFETCH(QString, className);
    QFETCH(QString, property);
    QFETCH(QString, propertyXml);
    QFETCH(QVariant, expected);
    const QString form = QStringLiteral("<ui version=\"4.0\"><class>Form</class>"
                                        "<widget class=\"QWidget\" name=\"Form\">"
                                        "<layout class=\"QVBoxLayout\" name=\"layout\"><item>"
                                        "<widget class=\"%1\" name=\"value\">"
                                        "<property name=\"%2\">%3</property></widget>"
                                        "</item></layout></widget></ui>")
                             .arg(className, property, propertyXml);
    QByteArray bytes = form.toUtf8();
    QBuffer buffer(&bytes);
    auto l = loader();
    std::unique_ptr<QWidget> widget(l->load(&buffer));
    QVERIFY2(widget, qPrintable(l->errorString()));
    auto *value = widget->findChild<QWidget *>(QStringLiteral("value"));
    QVERIFY(value);
    QCOMPARE(QString::fromLatin1(value->metaObject()->className()), className);
    QCOMPARE(value->property(property.toLatin1().constData()), expected);
}

QTEST_MAIN(tst_DesignerPlugin)
#include "tst_designerplugin.moc"
