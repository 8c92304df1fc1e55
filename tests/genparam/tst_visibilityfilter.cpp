#include "modeltest.h"

#include "genparam/genparamtreevisibilityfilterproxymodel.h"

#include <OrbGui/orbguiglobal.h>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QFile>

using namespace OrbGui;
using namespace ModelTest;

namespace {

// Display names of every visible row, depth first, "/" between levels.
QStringList visibleRows(const QAbstractItemModel &model, const QModelIndex &parent = QModelIndex(),
                        const QString &path = QString())
{
    QStringList rows;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        const QString name = path + index.data().toString();
        rows << name;
        rows << visibleRows(model, index, name + QLatin1Char('/'));
    }
    return rows;
}

QStringList names(const char *commaSeparated)
{
    return QString::fromUtf8(commaSeparated).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

} // namespace

class tst_VisibilityFilter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void levels_data();
    void levels();
    void nameFilter_data();
    void nameFilter();
    void proxyPassesModelTests();
};

void tst_VisibilityFilter::levels_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<QStringList>("hidden");
    const QStringList always { QStringLiteral("Acquisition Control/Exposure Time"),
                               QStringLiteral("Empty"),
                               QStringLiteral("Acquisition Control/Unavailable") };
    const QStringList never { QStringLiteral("Acquisition Control/Secret"),
                              QStringLiteral("Acquisition Control/Missing") };
    QTest::newRow("Beginner") << int(Beginner) << always
                              << never
            + QStringList { QStringLiteral("Acquisition Control/Advanced Settings"),
                            QStringLiteral("Hidden") };
    QTest::newRow("Expert") << int(Expert)
                            << always
            + QStringList { QStringLiteral("Acquisition Control/Advanced Settings/Black Level") }
                            << never + QStringList { QStringLiteral("Hidden") };
    // A category whose only feature is Guru stays, empty, below Guru; the
    // category itself here is Guru.
    QTest::newRow("Guru") << int(Guru) << always + QStringList { QStringLiteral("Hidden/GuruOnly") }
                          << never;
}

void tst_VisibilityFilter::levels()
{
    QFETCH(int, level);
    QFETCH(QStringList, shown);
    QFETCH(QStringList, hidden);
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    GenParamTreeVisibilityFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.setFilterVisibility(level);
    const QStringList rows = visibleRows(proxy);
    for (const QString &row : shown)
        QVERIFY2(rows.contains(row), qPrintable(row));
    for (const QString &row : hidden)
        QVERIFY2(!rows.contains(row), qPrintable(row));
}

void tst_VisibilityFilter::nameFilter_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<bool>("wholeWords");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<QStringList>("features"); // visible leaves under Acquisition Control
    QTest::addColumn<QStringList>("categories"); // visible top-level categories
    const QStringList all = names("Exposure Time,Gain,Analog Gain,Binning,Rates,ReverseX,"
                                  "AcquisitionStart,Trigger Mode,User Name,PacketSize,"
                                  "Temperature,Unavailable,WriteOnly");
    const QStringList every = names("Acquisition Control,Network,Empty");
    const QStringList acquisition = names("Acquisition Control");
    QTest::newRow("default shows all") << "*" << false << false << all << every;
    QTest::newRow("empty pattern shows all") << "" << true << false << all << every;
    QTest::newRow("Gain* anywhere")
        << "Gain*" << false << false << names("Gain,Analog Gain") << acquisition;
    // Whole words: the whole name or one of its words.
    QTest::newRow("Gain* whole") << "Gain*" << true << false << names("Gain,Analog Gain")
                                 << acquisition;
    QTest::newRow("gain whole") << "gain" << true << false << names("Gain,Analog Gain")
                                << acquisition;
    QTest::newRow("part of a word is no whole word")
        << "gai" << true << false << QStringList() << QStringList();
    QTest::newRow("two words whole")
        << "analog gain" << true << false << names("Analog Gain") << acquisition;
    QTest::newRow("case-insensitive")
        << "gain" << false << false << names("Gain,Analog Gain") << acquisition;
    // Nothing matches: no category is left standing empty.
    QTest::newRow("case-sensitive") << "gain" << false << true << QStringList() << QStringList();
    QTest::newRow("display name, not node name")
        << "User*" << true << false << names("User Name") << acquisition;
    // The feature's own name finds it too: the description pane shows it,
    // and hosts know their features by it.
    QTest::newRow("node name finds it too")
        << "DeviceUserID" << false << false << names("User Name") << acquisition;
    QTest::newRow("node name, whole words")
        << "deviceuserid" << true << false << names("User Name") << acquisition;
    QTest::newRow("single character wildcard")
        << "Ra?es" << true << false << names("Rates") << acquisition;
    QTest::newRow("a match in another category")
        << "Gev*" << false << false << QStringList() << names("Network");
}

void tst_VisibilityFilter::nameFilter()
{
    QFETCH(QString, pattern);
    QFETCH(bool, wholeWords);
    QFETCH(bool, caseSensitive);
    QFETCH(QStringList, features);
    QFETCH(QStringList, categories);
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    GenParamTreeVisibilityFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.wholeWords = wholeWords;
    proxy.filterRegExp.setCaseSensitivity(caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive);
    proxy.setFilterText(pattern);
    QStringList topLevel;
    QStringList leaves;
    for (int top = 0; top < proxy.rowCount(); ++top) {
        const QModelIndex category = proxy.index(top, 0);
        topLevel << category.data().toString();
        if (category.data().toString() != QLatin1String("Acquisition Control"))
            continue;
        for (int row = 0; row < proxy.rowCount(category); ++row) {
            const QModelIndex index = proxy.index(row, 0, category);
            if (proxy.rowCount(index) == 0
                && !index.data().toString().contains(QStringLiteral("Settings")))
                leaves << index.data().toString();
        }
    }
    QCOMPARE(leaves, features);
    QCOMPARE(topLevel, categories);
}

void tst_VisibilityFilter::proxyPassesModelTests()
{
    // The proxy's own bookkeeping cannot represent a row shared by two
    // categories (the source reports its first category as parent), so the
    // model tests run on the description without its one shared feature;
    // levels() and nameFilter() cover the shared case.
    QFile file(dataDir() + QStringLiteral("/model.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray xml = file.readAll();
    const QByteArray shared("<pFeature>BlackLevel</pFeature>\n    <pFeature>Gain</pFeature>");
    QVERIFY(xml.contains(shared));
    xml.replace(shared, "<pFeature>BlackLevel</pFeature>");
    GenApi::CNodeMapRef map;
    map._LoadXMLFromString(xml.constData());
    GenApi::CMemoryPort port;
    map._Connect(&port);
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(map));
    GenParamTreeVisibilityFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    CheckedModelTester tester(&proxy, true);
    proxy.setFilterVisibility(Guru);
    proxy.setFilterText(QStringLiteral("*e*"));
    proxy.setFilterVisibility(Beginner);
    proxy.setFilterText(QString());
    GenApi::CIntegerPtr(map._GetNode("ExposureTime"))->SetValue(40);
    QCOMPARE(valueCell(proxy, QStringLiteral("ExposureTime")).data().toString(),
             QStringLiteral("40 \u03BCs"));
    QCOMPARE(tester.findings(), QStringList());
    QCOMPARE(wrongParents(proxy), QStringList());
}

QTEST_MAIN(tst_VisibilityFilter)
#include "tst_visibilityfilter.moc"
