// The library's windows in German once the application installs the German
// translation, as the demo does for LANG=de_DE; English without one.
#include "orbcam/orbcamtest.h"

#include <OrbGui/orbcamconfig.h>
#include <OrbGui/orbgenparamtreeview.h>
#include <OrbGui/orbguitranslations.h>

#include <QComboBox>
#include <QMainWindow>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QtTest>

namespace {

QStringList menuTitles(const QMainWindow &window)
{
    QStringList titles;
    for (QAction *action : window.menuBar()->actions())
        titles << action->text();
    return titles;
}

} // namespace

class tst_Translations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void englishNeedsNothing();
    void germanWindows();
};

void tst_Translations::englishNeedsNothing()
{
    QVERIFY(!OrbGui::installTranslations(QLocale(QLocale::English, QLocale::UnitedStates)));
    OrbCamTest::SystemRef sim;
    OrbCamTest::DeviceRef camera(sim.cameras("U3V0").front());
    QVERIFY(camera.device);
    const OrbGui::OrbCamConfig window(camera.device);
    QCOMPARE(
        menuTitles(window),
        QStringList({ QStringLiteral("Menu"), QStringLiteral("View"), QStringLiteral("Help") }));
}

void tst_Translations::germanWindows()
{
    QVERIFY(OrbGui::installTranslations(QLocale(QLocale::German, QLocale::Germany)));
    // A second call adds nothing.
    QVERIFY(OrbGui::installTranslations(QLocale(QLocale::German, QLocale::Germany)));

    // The configuration window, the demo's main door.
    OrbCamTest::SystemRef sim;
    OrbCamTest::DeviceRef camera(sim.cameras("U3V0").front());
    QVERIFY(camera.device);
    const OrbGui::OrbCamConfig window(camera.device);
    QCOMPARE(menuTitles(window),
             QStringList(
                 { QStringLiteral("Menü"), QStringLiteral("Ansicht"), QStringLiteral("Hilfe") }));
    auto *frameA = window.findChild<QLabel *>(QStringLiteral("lblFrameA"));
    QVERIFY(frameA);
    QCOMPARE(frameA->text(), QStringLiteral("Bild A"));

    // The parameter tree view.
    OrbGui::OrbGenParamTreeView view;
    auto *levels = view.findChild<QComboBox *>(QStringLiteral("cbVisibility"));
    QVERIFY(levels);
    QStringList items;
    for (int i = 0; i < levels->count(); ++i)
        items << levels->itemText(i);
    QCOMPARE(items,
             QStringList(
                 { QStringLiteral("Einfach"), QStringLiteral("Experte"), QStringLiteral("Guru") }));
}

QTEST_MAIN(tst_Translations)
#include "tst_translations.moc"
