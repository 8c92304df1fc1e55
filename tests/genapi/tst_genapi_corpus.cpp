// Every real camera description of the shared corpus loads and every
// readable feature can be read (and written back) over zero-filled memory.
#include "genapitest.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <memory>

using namespace GenApi;

class tst_GenApiCorpus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void corpus_data();
    void corpus();
};

void tst_GenApiCorpus::corpus_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("vendor");
    QTest::addColumn<QString>("model");
    // SOURCES.tsv names each file's vendor and model; the loader must agree.
    QFile sources(QStringLiteral(ORB_CORPUS_DIR "/SOURCES.tsv"));
    QVERIFY2(sources.open(QIODevice::ReadOnly), "the shared corpus is missing");
    const QStringList header
        = QString::fromUtf8(sources.readLine()).trimmed().split(QLatin1Char('\t'));
    const int fileColumn = header.indexOf(QStringLiteral("file"));
    const int vendorColumn = header.indexOf(QStringLiteral("VendorName"));
    const int modelColumn = header.indexOf(QStringLiteral("ModelName"));
    QVERIFY(fileColumn >= 0 && vendorColumn >= 0 && modelColumn >= 0);
    int rows = 0;
    while (!sources.atEnd()) {
        const QStringList cells
            = QString::fromUtf8(sources.readLine()).trimmed().split(QLatin1Char('\t'));
        if (cells.size() <= modelColumn)
            continue;
        QTest::newRow(qPrintable(cells[fileColumn]))
            << cells[fileColumn] << cells[vendorColumn] << cells[modelColumn];
        ++rows;
    }
    const QStringList files = QDir(QStringLiteral(ORB_CORPUS_DIR))
                                  .entryList({ QStringLiteral("*.xml"), QStringLiteral("*.zip") });
    QCOMPARE(rows, files.size());
}

void tst_GenApiCorpus::corpus()
{
    QFETCH(QString, file);
    QFETCH(QString, vendor);
    QFETCH(QString, model);

    CNodeMapRef map;
    try {
        map._LoadXMLFromFile(
            QDir(QStringLiteral(ORB_CORPUS_DIR)).filePath(file).toUtf8().constData());
    } catch (const GenICam::GenericException &e) {
        QFAIL(e.GetDescription());
    }
    QCOMPARE(QString::fromUtf8(map._GetVendorName().c_str()), vendor);
    QCOMPARE(QString::fromUtf8(map._GetModelName().c_str()), model);

    NodeList_t nodes;
    map._GetNodes(nodes);
    const auto ports = ConnectMemoryPorts(map);
    // Every port node of a real description takes a port.
    QCOMPARE(ports.size(), size_t(std::count_if(nodes.begin(), nodes.end(), [](INode *node) {
                 return node->GetPrincipalInterfaceType() == intfIPort;
             })));
    QVERIFY(!ports.empty());

    int read = 0, failed = 0, written = 0;
    for (INode *node : nodes) {
        // Metadata never throws.
        node->GetDisplayName();
        node->GetDescription();
        node->GetVisibility();
        CValuePtr value(node);
        if (!value)
            continue;
        try {
            if (!IsReadable(node))
                continue;
            const GenICam::gcstring text = value->ToString();
            ++read;
            if (IsWritable(node) && node->GetPrincipalInterfaceType() != intfICommand) {
                value->FromString(text, false);
                ++written;
            }
        } catch (const GenICam::GenericException &e) {
            // Zero-filled memory gives some features no valid value (an
            // enumeration without entry 0, a division by a zero register);
            // the error must then say which node it is about.
            ++failed;
            QVERIFY2(QString::fromUtf8(e.GetDescription()).contains(QStringLiteral("Node '")),
                     e.GetDescription());
        }
    }
    qInfo("%s: %zu nodes, %d read, %d failed, %d written back", qPrintable(file), nodes.size(),
          read, failed, written);
    QVERIFY(read > failed);
    QVERIFY(written > 0);
    CCategoryPtr root(map._GetNode("Root"));
    QVERIFY(root.IsValid());
    FeatureList_t features;
    root->GetFeatures(features);
    QVERIFY(!features.empty());
}

QTEST_APPLESS_MAIN(tst_GenApiCorpus)
#include "tst_genapi_corpus.moc"
