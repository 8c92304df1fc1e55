// The plain entry points, in a process that starts without a QApplication.
#include "orbcam/orbcamtest.h"

#include <GenApi/GenApi.h>
#include <OrbCam/OrbCam.h>
#include <OrbGui/orbgenparamtreeview.h>
#include <OrbGui/orbgenparamtreeviewapi.h>

#include <QApplication>
#include <QPointer>
#include <QProcess>
#include <QTreeView>
#include <QWindow>
#include <QtTest>

namespace {

QDialog *asDialog(OrbGui::IOrbGenParamTreeView *view)
{
    return dynamic_cast<QDialog *>(view);
}

} // namespace

class tst_FlatApi : public QObject {
    Q_OBJECT

public:
    tst_FlatApi()
    {
        map._LoadXMLFromFile(ORB_TEST_DATA_DIR "/genparam/model.xml");
        map._Connect(&port);
    }

private Q_SLOTS:
    void createsTheApplicationOnce();
    void titles();
    void foreignParentWindow();
    void arrayForms();
    void destroyNullIsHarmless();

private:
    GenApi::CNodeMapRef map;
    GenApi::CMemoryPort port;
};

void tst_FlatApi::createsTheApplicationOnce()
{
    // This test runs first: the process has no application object yet.
    QVERIFY(!QCoreApplication::instance());
    OrbGui::IOrbGenParamTreeView *first = CreateGenParamTreeViewForNodemapA(map, nullptr, 0);
    QCoreApplication *app = QCoreApplication::instance();
    QVERIFY(qobject_cast<QApplication *>(app));
    QVERIFY(first);
    QDialog *dialog = asDialog(first);
    QVERIFY(dialog->isVisible());
    QVERIFY(!dialog->isModal());
    QVERIFY(!dialog->parentWidget());
    QVERIFY(dialog->windowTitle().isEmpty());
    QVERIFY(static_cast<OrbGui::OrbGenParamTreeView *>(dialog)->treeView()->model()->rowCount()
            > 0);
    OrbGui::IOrbGenParamTreeView *second = CreateGenParamTreeViewForNodemapA(map, "Second", 0);
    QCOMPARE(QCoreApplication::instance(), app);
    QPointer<QDialog> watch(asDialog(second));
    DestroyGenParamTreeView(second);
    QVERIFY(watch.isNull());
    DestroyGenParamTreeView(first);
}

void tst_FlatApi::titles()
{
    OrbGui::IOrbGenParamTreeView *a = CreateGenParamTreeViewForNodemapA(map, "Kamera \xC3\xBC", 0);
    QCOMPARE(asDialog(a)->windowTitle(), QStringLiteral("Kamera ") + QChar(0xFC));
    OrbGui::IOrbGenParamTreeView *w
        = CreateGenParamTreeViewForNodemapW(map, L"Wide \u00e9\U0001F4F7", 0);
    QCOMPARE(asDialog(w)->windowTitle(),
             QStringLiteral("Wide ") + QChar(0xE9) + QString::fromUcs4(U"\U0001F4F7"));
    OrbGui::IOrbGenParamTreeView *none = CreateGenParamTreeViewForNodemapW(map, nullptr, 0);
    QVERIFY(asDialog(none)->windowTitle().isEmpty());
    for (OrbGui::IOrbGenParamTreeView *view : { a, w, none })
        DestroyGenParamTreeView(view);
}

// The X window tree below a window as xwininfo prints it: ids, names and
// geometry of every child, so any re-parenting, move or resize shows.
QString windowTree(WId window)
{
    QProcess xwininfo;
    xwininfo.start(QStringLiteral("xwininfo"),
                   { QStringLiteral("-tree"), QStringLiteral("-id"),
                     QStringLiteral("0x") + QString::number(window, 16) });
    if (!xwininfo.waitForFinished(10000) || xwininfo.exitCode() != 0)
        return QStringLiteral("xwininfo failed: ")
            + QString::fromLocal8Bit(xwininfo.readAllStandardError());
    return QString::fromLocal8Bit(xwininfo.readAllStandardOutput());
}

QString transientFor(WId window)
{
    QProcess xprop;
    xprop.start(QStringLiteral("xprop"),
                { QStringLiteral("-id"), QStringLiteral("0x") + QString::number(window, 16),
                  QStringLiteral("WM_TRANSIENT_FOR") });
    xprop.waitForFinished(10000);
    return QString::fromLocal8Bit(xprop.readAllStandardOutput());
}

void tst_FlatApi::foreignParentWindow()
{
    // The host: a top-level window with a native child window (a canvas of
    // another toolkit would be the same), whose X11 id is all the entry
    // points get.
    QWidget top;
    top.resize(600, 500);
    auto *canvas = new QWidget(&top);
    canvas->setGeometry(40, 30, 400, 300);
    canvas->setAttribute(Qt::WA_NativeWindow);
    top.show();
    QVERIFY(QTest::qWaitForWindowExposed(&top));
    const WId canvasId = canvas->winId();
    const QString before = windowTree(top.winId());
    QVERIFY2(before.contains(QStringLiteral("0x") + QString::number(canvasId, 16)),
             qPrintable(before));

    OrbGui::IOrbGenParamTreeView *view = CreateGenParamTreeViewForNodemapA(
        map, "Over the host", static_cast<unsigned long>(canvasId));
    QDialog *dialog = asDialog(view);
    QVERIFY(dialog->isWindow());
    QVERIFY(!dialog->parentWidget());
    QVERIFY(QTest::qWaitForWindowExposed(dialog));
    // The host's windows are exactly where they were...
    QCOMPARE(windowTree(top.winId()), before);
    QVERIFY(canvas->isVisible());
    // ...and the view stays above the host's window, centred on it.
    QVERIFY(dialog->windowHandle()->transientParent());
    QCOMPARE(dialog->windowHandle()->transientParent()->winId(), canvasId);
    QVERIFY2(transientFor(dialog->winId())
                 .contains(QStringLiteral("0x") + QString::number(canvasId, 16)),
             qPrintable(transientFor(dialog->winId())));
    const QPoint hostCentre = canvas->mapToGlobal(canvas->rect().center());
    QTRY_VERIFY2((dialog->geometry().center() - hostCentre).manhattanLength() <= 4,
                 qPrintable(QStringLiteral("view centre %1,%2, host centre %3,%4")
                                .arg(dialog->geometry().center().x())
                                .arg(dialog->geometry().center().y())
                                .arg(hostCentre.x())
                                .arg(hostCentre.y())));

    DestroyGenParamTreeView(view);
    QCoreApplication::processEvents();
    QCOMPARE(windowTree(top.winId()), before);
}

void tst_FlatApi::arrayForms()
{
    OrbCamTest::SystemRef sim;
    const auto cameras = sim.cameras("U3V0");
    QVERIFY(!cameras.empty());
    OrbCamTest::DeviceRef camera(cameras.front());
    QVERIFY(camera.device);
    OrbGui::IOrbGenParamTreeView *a
        = CreateGenParamTreeViewForArrayA(camera.device->GetParams(), "Array", 0);
    OrbGui::IOrbGenParamTreeView *w
        = CreateGenParamTreeViewForArrayW(camera.device->GetParams(), L"Array", 0);
    QCOMPARE(asDialog(a)->windowTitle(), QStringLiteral("Array"));
    QVERIFY(static_cast<OrbGui::OrbGenParamTreeView *>(asDialog(w))->treeView()->model()->rowCount()
            > 0);
    a->setVisibility(OrbGui::Guru);
    QCOMPARE(a->visibility(), OrbGui::Guru);
    DestroyGenParamTreeView(a);
    DestroyGenParamTreeView(w);
}

void tst_FlatApi::destroyNullIsHarmless()
{
    OrbGui::IOrbGenParamTreeView *view = CreateGenParamTreeViewForNodemapA(map, "Kept", 0);
    const int windows = QApplication::topLevelWidgets().size();
    DestroyGenParamTreeView(nullptr);
    QCOMPARE(QApplication::topLevelWidgets().size(), windows);
    QVERIFY(asDialog(view)->isVisible());
    DestroyGenParamTreeView(view);
}

QTEST_APPLESS_MAIN(tst_FlatApi)
#include "tst_flatapi.moc"
