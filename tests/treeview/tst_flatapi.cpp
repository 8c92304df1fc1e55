// The plain entry points, in a process that starts without a QApplication.
#include "orbcam/orbcamtest.h"

#include <GenApi/GenApi.h>
#include <OrbCam/OrbCam.h>
#include <OrbGui/orbgenparamtreeview.h>
#include <OrbGui/orbgenparamtreeviewapi.h>

#include <QApplication>
#include <QPointer>
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

void tst_FlatApi::foreignParentWindow()
{
    // A real native window of another toolkit would do the same: all the
    // entry points get is its X11 window id.
    QWindow host;
    host.resize(400, 300);
    host.show();
    QVERIFY(QTest::qWaitForWindowExposed(&host));
    OrbGui::IOrbGenParamTreeView *view = CreateGenParamTreeViewForNodemapA(
        map, "Embedded", static_cast<unsigned long>(host.winId()));
    QDialog *dialog = asDialog(view);
    QWidget *container = dialog->parentWidget();
    QVERIFY(container);
    QCOMPARE(QString::fromLatin1(container->metaObject()->className()),
             QStringLiteral("QWindowContainer"));
    QVERIFY(dialog->isVisible());
    QPointer<QWidget> watch(container);
    DestroyGenParamTreeView(view);
    QTRY_VERIFY(watch.isNull()); // the container goes with the view
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
    DestroyGenParamTreeView(nullptr);
}

QTEST_APPLESS_MAIN(tst_FlatApi)
#include "tst_flatapi.moc"
