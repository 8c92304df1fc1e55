#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class tst_GenApiDump : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void dumpsTheTree();
    void appliesWritesInOrder();
    void failedWriteIsReportedNotFatal();
    void deepNesting();
    void cannotLoad_data();
    void cannotLoad();
    void schemaViolationIsAWarning();

private:
    struct Result {
        int exitCode;
        QString out;
        QString err;
    };
    static Result run(const QStringList &arguments)
    {
        QProcess process;
        process.start(QStringLiteral(GENAPI_DUMP), arguments);
        if (!process.waitForFinished(60000))
            return { -1, QString(), QStringLiteral("timed out") };
        return { process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2,
                 QString::fromUtf8(process.readAllStandardOutput()),
                 QString::fromUtf8(process.readAllStandardError()) };
    }
    static QString camera() { return QStringLiteral(ORB_TEST_DATA_DIR "/genapi/dump-camera.xml"); }
};

void tst_GenApiDump::dumpsTheTree()
{
    const Result r = run({ camera() });
    QCOMPARE(r.exitCode, 0);
    QVERIFY(r.err.isEmpty());
    const QStringList lines = r.out.split(QLatin1Char('\n'));
    QCOMPARE(lines.first(), QStringLiteral("Root  ICategory  RO"));
    QVERIFY(lines.contains(QStringLiteral("  ImageFormatControl  ICategory  RO")));
    QVERIFY(lines.contains(QStringLiteral("    DeviceVendorName  IString  RO  = Orb Imaging")));
    QVERIFY(lines.contains(QStringLiteral("    GevCurrentIPAddress  IInteger  RW  = 0.0.0.0")));
    // Not available while the trigger mode is off: no value is printed.
    QVERIFY(lines.contains(QStringLiteral("    TriggerSoftware  ICommand  NA")));
}

void tst_GenApiDump::appliesWritesInOrder()
{
    const Result r
        = run({ camera(), QStringLiteral("--set"), QStringLiteral("Width=640"),
                QStringLiteral("--set"), QStringLiteral("Width=1280"), QStringLiteral("--set"),
                QStringLiteral("GevMACAddress=00:1a:2b:3c:4d:5e"), QStringLiteral("--set"),
                QStringLiteral("TriggerMode=On") });
    QCOMPARE(r.exitCode, 0);
    QVERIFY2(r.err.isEmpty(), qPrintable(r.err));
    QVERIFY(r.out.contains(QStringLiteral("    Width  IInteger  RW  = 1280\n")));
    QVERIFY(r.out.contains(QStringLiteral("GevMACAddress  IInteger  RW  = 00:1A:2B:3C:4D:5E\n")));
    QVERIFY(r.out.contains(QStringLiteral("    TriggerSoftware  ICommand  WO\n")));
}

void tst_GenApiDump::failedWriteIsReportedNotFatal()
{
    const Result r = run({ camera(), QStringLiteral("--set"), QStringLiteral("Width=17"),
                           QStringLiteral("--set"), QStringLiteral("NoSuchFeature=1") });
    QCOMPARE(r.exitCode, 0);
    QVERIFY2(r.err.contains(
                 QStringLiteral("--set Width=17: Node 'Width': value 17 is not the minimum 16")),
             qPrintable(r.err));
    QVERIFY(r.err.contains(QStringLiteral("--set NoSuchFeature: no such feature")));
    QVERIFY(r.out.contains(QStringLiteral("    Width  IInteger  RW  = 0\n")));
}

// Categories nested 60,000 deep: the dump runs to the bottom, and its
// indentation stops growing, so the output stays linear in the depth.
void tst_GenApiDump::deepNesting()
{
    const int depth = 60000;
    QByteArray xml = "<RegisterDescription><Category Name=\"Root\"><pFeature>C0</pFeature>"
                     "</Category>";
    for (int i = 0; i < depth; ++i)
        xml += "<Category Name=\"C" + QByteArray::number(i) + "\"><pFeature>"
            + (i + 1 < depth ? "C" + QByteArray::number(i + 1) : QByteArray("X"))
            + "</pFeature></Category>";
    xml += "<Integer Name=\"X\"><Value>7</Value></Integer></RegisterDescription>";
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("deep.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(xml);
    file.close();
    const Result r = run({ file.fileName() });
    QCOMPARE(r.exitCode, 0);
    const QStringList lines = r.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), depth + 2);
    QCOMPARE(lines.at(3), QStringLiteral("      C2  ICategory  RO"));
    QCOMPARE(lines.last().trimmed(), QStringLiteral("(depth 60001) X  IInteger  RW  = 7"));
    QVERIFY(r.out.size() < 200 * lines.size());
}

void tst_GenApiDump::cannotLoad_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("fragment");
    QTest::newRow("missing file") << QByteArray() << QStringLiteral("cannot open");
    QTest::newRow("malformed XML")
        << QByteArray("<RegisterDescription><Integer") << QStringLiteral("malformed XML");
    QTest::newRow("broken zip") << QByteArray("PK\x03\x04garbage") << QStringLiteral("zip");
}

void tst_GenApiDump::cannotLoad()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, fragment);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("camera.xml"));
    if (!content.isEmpty()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    const Result r = run({ path });
    QCOMPARE(r.exitCode, 2);
    QVERIFY(r.out.isEmpty());
    QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
    QVERIFY2(r.err.startsWith(QStringLiteral("genapi-dump: cannot load ")), qPrintable(r.err));
    QVERIFY2(r.err.contains(fragment), qPrintable(r.err));
}

// A camera whose description has an empty <Streamable/> still gets its
// tree; the warning goes to stderr and --strict refuses it instead.
void tst_GenApiDump::schemaViolationIsAWarning()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("camera.xml"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<RegisterDescription>\n<Category Name=\"Root\"><pFeature>Gain</pFeature>"
               "</Category>\n<Integer Name=\"Gain\"><Streamable/><Value>3</Value></Integer>\n"
               "</RegisterDescription>\n");
    file.close();

    const Result lenient = run({ path });
    QCOMPARE(lenient.exitCode, 0);
    QCOMPARE(lenient.out, QStringLiteral("Root  ICategory  RO\n  Gain  IInteger  RW  = 3\n"));
    QCOMPARE(lenient.err,
             QStringLiteral("genapi-dump: warning: line 3: node 'Gain': <Streamable> '' is not "
                            "Yes or No; the default No is used\n"));

    const Result strict = run({ QStringLiteral("--strict"), path });
    QCOMPARE(strict.exitCode, 2);
    QVERIFY(strict.out.isEmpty());
    QVERIFY2(strict.err.startsWith(QStringLiteral("genapi-dump: cannot load ")),
             qPrintable(strict.err));
    QVERIFY2(strict.err.contains(QStringLiteral("<Streamable> '' is not Yes or No")),
             qPrintable(strict.err));
}

QTEST_GUILESS_MAIN(tst_GenApiDump)
#include "tst_genapi_dump.moc"
