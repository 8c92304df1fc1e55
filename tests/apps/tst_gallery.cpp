// The demo's value widgets on a simulated camera, used as a user uses them:
// typing reaches the camera on Enter only, a snapping field takes every
// keystroke, and the window keeps its width.
#include "camconfig/dialogtest.h"
#include "gallery.h"

#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval.h>
#include <OrbGui/qtorbspinboxval64.h>

#include <QLabel>
#include <QLineEdit>

using DialogTest::Camera;
using DialogTest::WriteJournal;

class tst_Gallery : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void typingWritesOnEnterOnly_data();
    void typingWritesOnEnterOnly();
    void widthStaysWhenAnErrorShows();
};

namespace {

QLineEdit *fieldOf(QWidget *widget)
{
    if (auto *pair = qobject_cast<OrbGui::QtOrbSliderSpinBox *>(widget))
        return pair->spinBox()->findChild<QLineEdit *>();
    if (auto *compound = qobject_cast<OrbGui::QtOrbSpinBox *>(widget))
        return compound->spinBox()->findChild<QLineEdit *>();
    return widget->findChild<QLineEdit *>();
}

} // namespace

void tst_Gallery::typingWritesOnEnterOnly_data()
{
    QTest::addColumn<QString>("widget");
    QTest::addColumn<QByteArray>("feature");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<qint64>("written");
    QTest::newRow("exposure") << QStringLiteral("exposure") << QByteArray("Frame_ExposureLines")
                              << QStringLiteral("500") << qint64(500);
    QTest::newRow("black level") << QStringLiteral("blackLevel") << QByteArray("Frame_BlackLevel")
                                 << QStringLiteral("30") << qint64(30);
    QTest::newRow("width, 64-bit box") << QStringLiteral("width") << QByteArray("Frame_Width")
                                       << QStringLiteral("800") << qint64(800);
    // Offset X moves in steps of 16: the 6 of 640 must not be snapped to 0.
    QTest::newRow("offset on the grid") << QStringLiteral("offsetX") << QByteArray("Frame_OffsetX")
                                        << QStringLiteral("640") << qint64(640);
    QTest::newRow("offset off the grid, snapped on Enter")
        << QStringLiteral("offsetX") << QByteArray("Frame_OffsetX") << QStringLiteral("650")
        << qint64(656);
}

void tst_Gallery::typingWritesOnEnterOnly()
{
    QFETCH(QString, widget);
    QFETCH(QByteArray, feature);
    QFETCH(QString, typed);
    QFETCH(qint64, written);
    Camera camera;
    GenApi::INodeMap *map = camera.params()->GetNodeMap();
    GenApi::CIntegerPtr width = map->GetNode("Frame_Width");
    width->SetValue(1024); // leaves room for the offset
    GenApi::CIntegerPtr value = map->GetNode(feature.constData());
    QVERIFY(value);
    const std::unique_ptr<QWidget> window = makeValueWidgets(map);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    QWidget *control = window->findChild<QWidget *>(widget);
    QVERIFY(control);
    QLineEdit *field = fieldOf(control);
    QVERIFY(field);
    field->setFocus();
    field->selectAll();
    WriteJournal journal(camera.device.device);
    const qint64 before = value->GetValue();
    QString shown;
    for (const QChar key : typed) {
        QTest::keyClick(field, key.toLatin1());
        shown += key;
        QCOMPARE(field->text(), shown);
        QCOMPARE(value->GetValue(), before);
    }
    QVERIFY(journal.take().isEmpty());
    QTest::keyClick(field, Qt::Key_Return);
    QTRY_COMPARE(value->GetValue(), written);
    QCOMPARE(field->text(), QString::number(written));
    // One write of the feature: what was committed, nothing per keystroke.
    QCOMPARE(journal.take().size(), 1);
}

void tst_Gallery::widthStaysWhenAnErrorShows()
{
    Camera camera;
    const std::unique_ptr<QWidget> window = makeValueWidgets(camera.params()->GetNodeMap());
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    const int width = window->width();
    auto *status = window->findChild<QLabel *>(QStringLiteral("status"));
    QVERIFY(status);
    status->setText(QStringLiteral("The camera refused the value: ")
                    + QString(200, QLatin1Char('x')));
    QApplication::processEvents();
    QTest::qWait(50);
    QCOMPARE(window->width(), width);
    QVERIFY(window->minimumSizeHint().width() <= width);
}

QTEST_MAIN(tst_Gallery)
#include "tst_gallery.moc"
