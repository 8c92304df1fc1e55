// The demo program as a user runs it: its screenshots show the windows with
// real data.
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class tst_OrbCamDemo : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void screenshots_data();
    void screenshots();
    void badArguments_data();
    void badArguments();
};

void tst_OrbCamDemo::screenshots_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QSize>("atLeast");
    QTest::newRow("configuration window, first camera that opens")
        << QStringList { QStringLiteral("config") } << QSize(200, 150);
    QTest::newRow("configuration window, monochrome camera")
        << QStringList { QStringLiteral("config"), QStringLiteral("--camera"),
                         QStringLiteral("U3V0/M1-2001") }
        << QSize(200, 150);
    QTest::newRow("first simulated camera")
        << QStringList { QStringLiteral("tree") } << QSize(400, 400);
    QTest::newRow("monochrome camera")
        << QStringList { QStringLiteral("tree"), QStringLiteral("--camera"),
                         QStringLiteral("U3V0/M1-2001") }
        << QSize(400, 400);
    QTest::newRow("a real description")
        << QStringList { QStringLiteral("tree"), QStringLiteral("--xml"),
                         QStringLiteral(ORB_CORPUS_DIR "/basler_ace2-a2a2600-20gmbas.xml") }
        << QSize(400, 400);
    QTest::newRow("camera selector") << QStringList { QStringLiteral("select") } << QSize(400, 300);
    QTest::newRow("camera selector, polling")
        << QStringList { QStringLiteral("select"), QStringLiteral("--poll") } << QSize(400, 300);
    for (const char *which : { "trigger", "strobe", "pulse", "output", "color", "frameab" })
        QTest::newRow(qPrintable(QStringLiteral("%1 dialog").arg(QLatin1String(which))))
            << QStringList { QStringLiteral("dialog"), QString::fromLatin1(which) }
            << QSize(200, 80);
    QTest::newRow("value widgets on a camera")
        << QStringList { QStringLiteral("widgets") } << QSize(400, 250);
    // At twice the pixel density the window renders at twice the size.
    QTest::newRow("value widgets at high DPI")
        << QStringList { QStringLiteral("widgets"), QStringLiteral("--scale"), QStringLiteral("2") }
        << QSize(1000, 800);
}

void tst_OrbCamDemo::screenshots()
{
    QFETCH(QStringList, arguments);
    QFETCH(QSize, atLeast);
    QTemporaryDir dir;
    const QString shot = dir.filePath(QStringLiteral("tree.png"));
    QProcess demo;
    const int scale = arguments.indexOf(QStringLiteral("--scale"));
    if (scale >= 0) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), arguments.at(scale + 1));
        demo.setProcessEnvironment(environment);
        arguments.erase(arguments.begin() + scale, arguments.begin() + scale + 2);
    }
    demo.start(QStringLiteral(ORBCAM_DEMO), arguments << QStringLiteral("--screenshot") << shot);
    QVERIFY(demo.waitForFinished(60000));
    QCOMPARE(demo.exitCode(), 0);
    // The selector prints the chosen camera only: nothing when none was.
    if (arguments.first() == QLatin1String("select")) {
        const QByteArray printed = demo.readAllStandardOutput();
        QVERIFY2(!printed.contains("GEV0/") && !printed.contains("U3V0/"), printed.constData());
    }
    const QImage image(shot);
    QVERIFY(!image.isNull());
    QVERIFY(image.width() >= atLeast.width() && image.height() >= atLeast.height());
    // A window with a filled tree has many distinct colours (text, icons,
    // alternating rows), unlike a blank or failed render.
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3)
            colours.insert(image.pixel(x, y));
    QVERIFY2(colours.size() > 20, qPrintable(QString::number(colours.size())));
}

void tst_OrbCamDemo::badArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown camera")
        << QStringList { QStringLiteral("tree"), QStringLiteral("--camera"),
                         QStringLiteral("NOPE") }
        << "no camera NOPE; orbcam-ls lists them";
    QTest::newRow("configuration window, unknown camera")
        << QStringList { QStringLiteral("config"), QStringLiteral("--camera"),
                         QStringLiteral("NOPE") }
        << "no camera NOPE; orbcam-ls lists them";
    // The default set-up's second GigE Vision camera is outside its card's
    // subnet: listed, but not to be opened before it has another address.
    const QString outside = QStringLiteral("outside the subnet of its network card "
                                           "(192.168.1.10/255.255.255.0)");
    for (const char *door : { "config", "tree", "widgets" })
        QTest::addRow("%s, camera outside the card's subnet", door)
            << QStringList { QString::fromLatin1(door), QStringLiteral("--camera"),
                             QStringLiteral("GEV0/C2-1002") }
            << outside;
    QTest::newRow("dialog, camera outside the card's subnet")
        << QStringList { QStringLiteral("dialog"), QStringLiteral("trigger"),
                         QStringLiteral("--camera"), QStringLiteral("GEV0/C2-1002") }
        << outside;
    QTest::newRow("unreadable description")
        << QStringList { QStringLiteral("tree"), QStringLiteral("--xml"),
                         QStringLiteral("/nonexistent.xml") }
        << "cannot load";
    QTest::newRow("unknown door") << QStringList { QStringLiteral("kitchen") } << "unknown door";
    QTest::newRow("unknown visibility")
        << QStringList { QStringLiteral("tree"), QStringLiteral("--visibility"),
                         QStringLiteral("wizard") }
        << "unknown visibility 'wizard'";
    QTest::newRow("an option the door does not use")
        << QStringList { QStringLiteral("config"), QStringLiteral("--visibility"),
                         QStringLiteral("guru") }
        << "config does not take --visibility";
    const QString basler = QStringLiteral(ORB_CORPUS_DIR "/basler_ace2-a2a2600-20gmbas.xml");
    QTest::newRow("a description and a camera")
        << QStringList { QStringLiteral("config"), QStringLiteral("--xml"), basler,
                         QStringLiteral("--camera"), QStringLiteral("GEV0/C2-1001") }
        << "config shows --xml or --camera, not both";
    QTest::newRow("start values without a description")
        << QStringList { QStringLiteral("dialog"), QStringLiteral("trigger"),
                         QStringLiteral("--values"), QStringLiteral("/tmp/values.json") }
        << "--values goes with --xml";
    QTest::newRow("a description that is not there")
        << QStringList { QStringLiteral("config"), QStringLiteral("--xml"),
                         QStringLiteral("/nonexistent/camera.xml") }
        << "/nonexistent/camera.xml";
    QTest::newRow("start values that are not JSON")
        << QStringList { QStringLiteral("config"), QStringLiteral("--xml"), basler,
                         QStringLiteral("--values"), basler }
        << "malformed side file";
    QTest::newRow("a start value the description refuses")
        << QStringList { QStringLiteral("config"), QStringLiteral("--xml"), basler,
                         QStringLiteral("--values"),
                         QStringLiteral(ORB_TEST_DATA_DIR "/values-refused.json") }
        << "no feature NoSuchFeature";
    QTest::newRow("polling in the tree")
        << QStringList { QStringLiteral("tree"), QStringLiteral("--poll") }
        << "tree does not take --poll";
    QTest::newRow("a word too many")
        << QStringList { QStringLiteral("widgets"), QStringLiteral("extra") }
        << "widgets does not take 'extra'";
    QTest::newRow("widgets on an unknown camera")
        << QStringList { QStringLiteral("widgets"), QStringLiteral("--camera"),
                         QStringLiteral("BOGUS/ID") }
        << "no camera BOGUS/ID";
}

void tst_OrbCamDemo::badArguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    QProcess demo;
    demo.start(QStringLiteral(ORBCAM_DEMO), arguments);
    QVERIFY(demo.waitForFinished(60000));
    QCOMPARE(demo.exitCode(), 2);
    QVERIFY(QString::fromUtf8(demo.readAllStandardError()).contains(message));
}

QTEST_GUILESS_MAIN(tst_OrbCamDemo)
#include "tst_orbcam_demo.moc"
