// SelectCamera and its plain forms, in a process that starts without a
// QApplication: the first call makes one. The user's part is played from the
// event loop of the modal dialog, by a routine Qt runs when the application
// object is made.
#include "orbcam/orbcamtest.h"
#include "selector/devicetreemodel.h"

#include <OrbGui/orbcameraselectorapi.h>
#include <OrbGui/orbcameraselectordialog.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QProcess>
#include <QPushButton>
#include <QTimer>
#include <QTreeView>
#include <QWindow>
#include <QtTest>

#include <functional>

using OrbCamTest::SystemRef;

namespace {

// What the "user" does in the next selector that opens.
std::function<void(OrbGui::OrbCameraSelectorDialog *)> g_user;
QString g_seenTitle;
QWindow *g_seenTransientParent = nullptr;

void playTheUser()
{
    auto *timer = new QTimer;
    timer->setInterval(20);
    QObject::connect(timer, &QTimer::timeout, [] {
        auto *dialog
            = qobject_cast<OrbGui::OrbCameraSelectorDialog *>(QApplication::activeModalWidget());
        if (!dialog || !g_user)
            return;
        g_seenTitle = dialog->windowTitle();
        g_seenTransientParent
            = dialog->windowHandle() ? dialog->windowHandle()->transientParent() : nullptr;
        auto user = std::move(g_user);
        g_user = nullptr;
        user(dialog);
    });
    timer->start();
}
Q_COREAPP_STARTUP_FUNCTION(playTheUser)

void choose(OrbGui::OrbCameraSelectorDialog *dialog, const QString &id)
{
    auto *tree = dialog->findChild<QTreeView *>(QStringLiteral("cameraTreeView"));
    tree->setCurrentIndex(static_cast<OrbGui::DeviceTreeModel *>(tree->model())->getItemIdx(id));
    dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
}

QString windowTree(WId window)
{
    QProcess xwininfo;
    xwininfo.start(QStringLiteral("xwininfo"),
                   { QStringLiteral("-tree"), QStringLiteral("-id"),
                     QStringLiteral("0x") + QString::number(window, 16) });
    xwininfo.waitForFinished(10000);
    return QString::fromLocal8Bit(xwininfo.readAllStandardOutput());
}

} // namespace

class tst_SelectCamera : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void choosesWithoutAnApplication();
    void cancelGivesNull();
    void foreignParentStaysPut();
};

void tst_SelectCamera::choosesWithoutAnApplication()
{
    QVERIFY(!QCoreApplication::instance());
    SystemRef sys;
    const QString id = QString::fromLatin1(sys.cameras("U3V0").front()->GetID());
    g_user = [id](OrbGui::OrbCameraSelectorDialog *dialog) { choose(dialog, id); };
    OrbCam::DeviceInfo *chosen = SelectCameraA(sys.system, "Pick a camera \xC3\xBC", 0, false);
    QVERIFY(qobject_cast<QApplication *>(QCoreApplication::instance()));
    QVERIFY(chosen);
    QCOMPARE(QString::fromLatin1(chosen->GetID()), id);
    QCOMPARE(g_seenTitle, QStringLiteral("Pick a camera ") + QChar(0xFC));
}

void tst_SelectCamera::cancelGivesNull()
{
    SystemRef sys;
    g_user = [](OrbGui::OrbCameraSelectorDialog *dialog) { dialog->reject(); };
    QVERIFY(!SelectCameraW(sys.system, L"Wide \u00e9", 0, true));
    QCOMPARE(g_seenTitle, QStringLiteral("Wide ") + QChar(0xE9));
    // OK without a camera current gives null too.
    g_user = [](OrbGui::OrbCameraSelectorDialog *dialog) { dialog->accept(); };
    QVERIFY(!OrbGui::SelectCamera(sys.system, QString(), 0, false));
}

// Under a host's native window (a native child of the host's top-level
// window): the host's windows stay exactly where they are, the selector
// stays above the host's window.
void tst_SelectCamera::foreignParentStaysPut()
{
    QWidget top;
    top.resize(600, 500);
    auto *canvas = new QWidget(&top);
    canvas->setGeometry(30, 30, 400, 300);
    canvas->setAttribute(Qt::WA_NativeWindow);
    top.show();
    QVERIFY(QTest::qWaitForWindowExposed(&top));
    const QString before = windowTree(top.winId());
    QVERIFY(before.contains(QStringLiteral("0x") + QString::number(canvas->winId(), 16)));
    SystemRef sys;
    const QString id = QString::fromLatin1(sys.cameras("GEV0").front()->GetID());
    QString during;
    g_user = [&](OrbGui::OrbCameraSelectorDialog *dialog) {
        during = windowTree(top.winId());
        choose(dialog, id);
    };
    OrbCam::DeviceInfo *chosen = SelectCameraA(sys.system, "Over the host",
                                               static_cast<unsigned long>(canvas->winId()), false);
    QVERIFY(chosen);
    QCOMPARE(QString::fromLatin1(chosen->GetID()), id);
    QVERIFY(g_seenTransientParent);
    QCOMPARE(during, before);
    QCOMPARE(windowTree(top.winId()), before);
}

QTEST_APPLESS_MAIN(tst_SelectCamera)
#include "tst_selectcamera.moc"
