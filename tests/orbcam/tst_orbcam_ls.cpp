#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class tst_OrbCamLs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsTheDefaultSystem();
    void json();
    void configFile_data();
    void configFile();
    void backendOption_data();
    void backendOption();

private:
    static QPair<int, QString> run(const QStringList &arguments, QString *err = nullptr)
    {
        QProcess process;
        process.start(QStringLiteral(ORBCAM_LS), arguments);
        if (!process.waitForFinished(60000))
            return { -1, QString() };
        if (err)
            *err = QString::fromUtf8(process.readAllStandardError());
        return { process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()) };
    }
};

void tst_OrbCamLs::listsTheDefaultSystem()
{
    const auto [code, out] = run({});
    QCOMPARE(code, 0);
    const QStringList lines = out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 7);
    QCOMPARE(lines[0],
             QStringLiteral("GEV0  GigE Vision  \"eth1 (Intel I210)\"  192.168.1.10/255.255.255.0  "
                            "MAC 00:1B:21:3A:4F:10"));
    QVERIFY2(lines[1].startsWith(QStringLiteral(
                 "  [0] GEV0/C2-1001  Orb Imaging OrbSim-C2000  serial C2-1001  version 1.4.2  "
                 "user \"Line 1\"  ReadWrite  192.168.1.20/255.255.255.0 gw 192.168.1.1  MAC ")),
             qPrintable(lines[1]));
    QVERIFY(lines[2].contains(QStringLiteral("IP Subnet Mismatch  10.0.0.7/255.0.0.0")));
    QVERIFY(lines[4].endsWith(QStringLiteral("ReadWrite  USB 0x0320")));
    QCOMPARE(lines[6], QStringLiteral("  (no cameras)"));
}

void tst_OrbCamLs::json()
{
    const auto [code, out] = run({ QStringLiteral("--json") });
    QCOMPARE(code, 0);
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(out.toUtf8(), &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    const QJsonArray interfaces = doc.array();
    QCOMPARE(interfaces.size(), 3);
    const QJsonObject camera
        = interfaces[0].toObject()[QStringLiteral("cameras")].toArray()[1].toObject();
    QCOMPARE(camera[QStringLiteral("accessStatus")].toString(),
             QStringLiteral("IP Subnet Mismatch"));
    QCOMPARE(camera[QStringLiteral("gateway")].toString(), QStringLiteral("0.0.0.0"));
    QCOMPARE(camera[QStringLiteral("index")].toInt(), 1);
}

void tst_OrbCamLs::configFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("fragment");
    QTest::newRow("valid") << QByteArray(
        R"({"interfaces":[{"id":"USB7","type":"USB3Vision","cameras":[{"model":"orbsim-m1300","serial":"Q1"}]}]})")
                           << 0 << QStringLiteral("  [0] USB7/Q1  Orb Imaging OrbSim-M1300");
    QTest::newRow("malformed") << QByteArray("{") << 2 << QStringLiteral("malformed JSON");
    QTest::newRow("missing file") << QByteArray() << 2 << QStringLiteral("cannot open");
}

void tst_OrbCamLs::configFile()
{
    QFETCH(QByteArray, content);
    QFETCH(int, code);
    QFETCH(QString, fragment);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("setup.json"));
    if (!content.isEmpty()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QString err;
    const auto [exitCode, out] = run({ QStringLiteral("--config"), path }, &err);
    QCOMPARE(exitCode, code);
    QVERIFY2((code == 0 ? out : err).contains(fragment), qPrintable(out + err));
}

// Real cameras are not asked for here (that test makes its own network);
// the option itself is checked: the simulated default, and refusals.
void tst_OrbCamLs::backendOption_data()
{
    QTest::addColumn<QString>("backend");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("fragment");
    QTest::newRow("sim") << QStringLiteral("sim") << 0 << QStringLiteral("GEV0  GigE Vision");
    QTest::newRow("unknown") << QStringLiteral("firewire") << 2
                             << QStringLiteral("unknown backend 'firewire'");
    QTest::newRow("empty") << QString() << 2 << QStringLiteral("unknown backend ''");
}

void tst_OrbCamLs::backendOption()
{
    QFETCH(QString, backend);
    QFETCH(int, code);
    QFETCH(QString, fragment);
    QString err;
    const auto [exitCode, out] = run({ QStringLiteral("--backend"), backend }, &err);
    QCOMPARE(exitCode, code);
    QVERIFY2((code == 0 ? out : err).contains(fragment), qPrintable(out + err));
}

QTEST_GUILESS_MAIN(tst_OrbCamLs)
#include "tst_orbcam_ls.moc"
