#include "genapitest.h"

#include <QFile>
#include <QTemporaryDir>

using namespace GenApi;
using GenApiTest::description;

class tst_GenApiLoader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void acceptedInputs_data();
    void acceptedInputs();
    void loadErrors_data();
    void loadErrors();
    void recoverableViolations_data();
    void recoverableViolations();
    void lineNumbersCountSkippedLines();
    void lineNumbersFarIntoTheFile_data();
    void lineNumbersFarIntoTheFile();
    void unknownElementsAreSkipped();
    void zipWithDecoyEntries();
    void zipFileDetectedByContent();
    void brokenZipData_data();
    void brokenZipData();
    void missingFile();
    void secondLoadIsALogicError();
    void textTakenOverOutlivesTheCaller();
    void unloadedReferenceIsALogicError();
    void copiesShareTheNodeMap();
    void nodeMapIdentity();
};

void tst_GenApiLoader::acceptedInputs_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QString>("expected"); // value of the node "Value"

    const std::string plain = description("<Integer Name=\"Value\"><Value>42</Value></Integer>");
    QTest::newRow("plain") << QByteArray::fromStdString(plain) << QStringLiteral("42");
    QTest::newRow("byte-order mark")
        << QByteArray("\xEF\xBB\xBF") + QByteArray::fromStdString(plain) << QStringLiteral("42");
    QTest::newRow("stray line before the XML")
        << QByteArray("Vendor Inc.-Model - GEV Camera-123 (10.0.0.1)\n")
            + QByteArray::fromStdString(plain)
        << QStringLiteral("42");
    QTest::newRow("byte-order mark and stray line")
        << QByteArray("\xEF\xBB\xBFsome tool wrote this\r\n") + QByteArray::fromStdString(plain)
        << QStringLiteral("42");
    QByteArray crlf = QByteArray::fromStdString(plain);
    crlf.replace("\n", "\r\n");
    QTest::newRow("CRLF line ends") << crlf << QStringLiteral("42");
    QByteArray noDeclaration = QByteArray::fromStdString(plain);
    noDeclaration.remove(0, noDeclaration.indexOf('\n') + 1);
    QTest::newRow("no XML declaration") << noDeclaration << QStringLiteral("42");
    QTest::newRow("schema 1.0 namespace")
        << QByteArray::fromStdString(plain).replace("Version_1_1", "Version_1_0")
        << QStringLiteral("42");
    QTest::newRow("CDATA formula") << QByteArray::fromStdString(
        description("<IntSwissKnife Name=\"Value\"><Formula><![CDATA[(1 < 2) && (3 > 2) ? 42 : 0]]>"
                    "</Formula></IntSwissKnife>"))
                                   << QStringLiteral("42");
    QTest::newRow("comment inside a formula") << QByteArray::fromStdString(
        description("<IntSwissKnife Name=\"Value\"><Formula>((<!-- 1 + -->41 + 1))</Formula>"
                    "</IntSwissKnife>")) << QStringLiteral("42");
    QTest::newRow("loose hexadecimal length and access mode R") << QByteArray::fromStdString(
        description("<Integer Name=\"Value\"><pValue>Reg</pValue></Integer>"
                    "<IntReg Name=\"Reg\"><Address>0x10</Address><Length>0x04</Length>"
                    "<AccessMode>R</AccessMode><pPort>Device</pPort></IntReg>"))
                                                                << QStringLiteral("0");
    QTest::newRow("nested groups") << QByteArray::fromStdString(
        description("<Group Comment=\"a\"><Group Comment=\"b\">"
                    "<Integer Name=\"Value\"><Value>7</Value></Integer></Group></Group>"))
                                   << QStringLiteral("7");
    QTest::newRow("white space around names and values") << QByteArray::fromStdString(
        description("<Integer Name=\"Value\"><pValue>\n  Inner \n</pValue></Integer>"
                    "<Integer Name=\"Inner\"><Value>  -5\t</Value></Integer>"))
                                                         << QStringLiteral("-5");
}

void tst_GenApiLoader::acceptedInputs()
{
    QFETCH(QByteArray, xml);
    QFETCH(QString, expected);
    CNodeMapRef map;
    CMemoryPort port;
    try {
        map._LoadXMLFromString(xml.constData());
    } catch (const GenICam::GenericException &e) {
        QFAIL(e.GetDescription());
    }
    map._Connect(&port);
    CValuePtr value(map._GetNode("Value"));
    QVERIFY(value.IsValid());
    QCOMPARE(QString::fromUtf8(value->ToString().c_str()), expected);
}

void tst_GenApiLoader::loadErrors_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("fragment");

    QTest::newRow("empty") << QByteArray() << QStringLiteral("RuntimeException")
                           << QStringLiteral("malformed XML");
    QTest::newRow("not XML") << QByteArray("hello") << QStringLiteral("RuntimeException")
                             << QStringLiteral("malformed XML");
    QTest::newRow("truncated") << QByteArray(
        "<RegisterDescription>\n<Integer Name=\"A\">\n<Value>1</Val")
                               << QStringLiteral("RuntimeException") << QStringLiteral("line 3");
    QTest::newRow("mismatched tags")
        << QByteArray(
               "<RegisterDescription>\n\n<Integer Name=\"A\"></Float>\n</RegisterDescription>")
        << QStringLiteral("RuntimeException") << QStringLiteral("line 3");
    QTest::newRow("wrong root element")
        << QByteArray("<Description><Integer Name=\"A\"/></Description>")
        << QStringLiteral("RuntimeException") << QStringLiteral("not <RegisterDescription>");
    QTest::newRow("node without a name")
        << QByteArray::fromStdString(description("<Integer><Value>1</Value></Integer>"))
        << QStringLiteral("PropertyException") << QStringLiteral("<Integer> has no Name");
    QTest::newRow("node defined twice")
        << QByteArray::fromStdString(description("<Integer Name=\"A\"><Value>1</Value></Integer>\n"
                                                 "<Integer Name=\"A\"><Value>2</Value></Integer>"))
        << QStringLiteral("PropertyException")
        << QStringLiteral("line 4: node 'A' is defined twice (first at line 3)");
    QTest::newRow("malformed integer") << QByteArray::fromStdString(
        description("<Integer Name=\"A\"><Value>1</Value><Min>ten</Min></Integer>"))
                                       << QStringLiteral("PropertyException")
                                       << QStringLiteral("node 'A': <Min> 'ten' is not an integer");
    QTest::newRow("reference to a missing node")
        << QByteArray::fromStdString(
               description("\n<Integer Name=\"A\">\n<pValue>Nowhere</pValue></Integer>"))
        << QStringLiteral("PropertyException")
        << QStringLiteral("line 5: node 'A' refers to node 'Nowhere', which is not defined");
    QTest::newRow("formula that does not parse")
        << QByteArray::fromStdString(description(
               "<IntSwissKnife Name=\"K\">\n<Formula>1 + * 2</Formula></IntSwissKnife>"))
        << QStringLiteral("PropertyException")
        << QStringLiteral("line 4: node 'K': formula '1 + * 2': unexpected '*'");
    QTest::newRow("formula with an unknown variable")
        << QByteArray::fromStdString(
               description("<IntSwissKnife Name=\"K\"><Formula>X + 1</Formula></IntSwissKnife>"))
        << QStringLiteral("PropertyException") << QStringLiteral("unknown variable 'X'");
    QTest::newRow("swiss knife without formula")
        << QByteArray::fromStdString(description("<SwissKnife Name=\"K\"/>"))
        << QStringLiteral("PropertyException") << QStringLiteral("node 'K' has no Formula");
    QTest::newRow("converter without FormulaTo")
        << QByteArray::fromStdString(description(
               "<Integer Name=\"R\"><Value>1</Value></Integer>"
               "<Converter Name=\"C\"><FormulaFrom>TO</FormulaFrom><pValue>R</pValue></Converter>"))
        << QStringLiteral("PropertyException")
        << QStringLiteral("node 'C' needs both FormulaTo and FormulaFrom");
    QTest::newRow("pPort that is not a port") << QByteArray::fromStdString(description(
        "<Integer Name=\"P\"><Value>1</Value></Integer>"
        "<IntReg Name=\"A\"><Address>0</Address><Length>4</Length><pPort>P</pPort></IntReg>"))
                                              << QStringLiteral("PropertyException")
                                              << QStringLiteral("pPort 'P' is not a Port");
    QTest::newRow("zero increment")
        << QByteArray::fromStdString(
               description("<Integer Name=\"A\"><Value>1</Value><Inc>0</Inc></Integer>"))
        << QStringLiteral("PropertyException") << QStringLiteral("increment 0 must be positive");
}

void tst_GenApiLoader::loadErrors()
{
    QFETCH(QByteArray, xml);
    QFETCH(QString, type);
    QFETCH(QString, fragment);
    CNodeMapRef map;
    const QString what = GenApiTest::thrown([&] { map._LoadXMLFromString(xml.constData()); });
    QVERIFY2(what.startsWith(type + QLatin1Char(':')), qPrintable(what));
    QVERIFY2(what.contains(fragment), qPrintable(what));
    // A failed load leaves the reference empty and usable for another try.
    QVERIFY(map._Ptr == nullptr);
    map._LoadXMLFromString(description("<Integer Name=\"A\"><Value>1</Value></Integer>").c_str());
    QVERIFY(map._GetNode("A") != nullptr);
}

// Small schema violations that real cameras ship: by default the property
// keeps its default and the load reports a warning naming the node, the line
// and the problem; strict loading refuses the description with the same
// words.
void tst_GenApiLoader::recoverableViolations_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("problem");
    QTest::addColumn<QString>("check"); // what the default looks like afterwards

    const QString reg = QStringLiteral("<IntReg Name=\"A\"><Address>0</Address><Length>4</Length>"
                                       "<pPort>Device</pPort>%1</IntReg>");
    QTest::newRow("empty Streamable")
        << "<Integer Name=\"A\"><Streamable/><Value>1</Value></Integer>"
        << "<Streamable> '' is not Yes or No; the default No is used"
        << "not streamable";
    QTest::newRow("IsDeprecated neither Yes nor No")
        << "<Integer Name=\"A\"><IsDeprecated>Maybe</IsDeprecated><Value>1</Value></Integer>"
        << "<IsDeprecated> 'Maybe' is not Yes or No; the default No is used"
        << "not deprecated";
    QTest::newRow("unknown visibility")
        << "<Integer Name=\"A\"><Visibility>Wizard</Visibility><Value>1</Value></Integer>"
        << "<Visibility> 'Wizard' is not a visibility (Beginner, Expert, Guru or Invisible); "
           "the default Beginner is used"
        << "Beginner";
    QTest::newRow("unknown register access mode")
        << reg.arg(QStringLiteral("<AccessMode>XY</AccessMode>"))
        << "<AccessMode> 'XY' is not an access mode (RO, WO, RW, NA or NI); the default RO is "
           "used"
        << "RO";
    QTest::newRow("empty imposed access mode")
        << "<Integer Name=\"A\"><ImposedAccessMode></ImposedAccessMode><Value>1</Value></Integer>"
        << "<ImposedAccessMode> '' is not an access mode (RO, WO, RW, NA or NI); the default RW "
           "is used"
        << "RW";
    QTest::newRow("unknown representation")
        << "<Integer Name=\"A\"><Representation>Knob</Representation><Value>1</Value></Integer>"
        << "<Representation> 'Knob' is not a representation; the default of the node type is used"
        << "PureNumber";
    QTest::newRow("unknown display notation")
        << "<Float Name=\"A\"><DisplayNotation>Pretty</DisplayNotation><Value>1</Value></Float>"
        << "<DisplayNotation> 'Pretty' is not a display notation (Automatic, Fixed or "
           "Scientific); the default Automatic is used"
        << "Automatic";
    QTest::newRow("unknown caching mode")
        << reg.arg(QStringLiteral("<Cachable>Sometimes</Cachable>"))
        << "<Cachable> 'Sometimes' is not a caching mode (NoCache, WriteThrough or WriteAround); "
           "the default WriteThrough is used"
        << "WriteThrough";
    QTest::newRow("unknown byte order")
        << reg.arg(QStringLiteral("<Endianess>Middle</Endianess>"))
        << "<Endianess> 'Middle' is not BigEndian or LittleEndian; the default LittleEndian is "
           "used"
        << "loads";
    QTest::newRow("empty sign") << reg.arg(QStringLiteral(
        "<Sign/>")) << "<Sign> '' is not Signed or Unsigned; the default Unsigned is used"
                                << "loads";
    QTest::newRow("unknown slope")
        << "<Integer Name=\"R\"><Value>1</Value></Integer><Converter Name=\"A\">"
           "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>R</pValue>"
           "<Slope>Sideways</Slope></Converter>"
        << "<Slope> 'Sideways' is not a slope (Increasing, Decreasing, Varying or Automatic); "
           "the default Automatic is used"
        << "loads";
}

void tst_GenApiLoader::recoverableViolations()
{
    QFETCH(QString, body);
    QFETCH(QString, problem);
    QFETCH(QString, check);
    // The violation sits on line 3 of the description.
    const std::string xml = description(body.toStdString());

    CNodeMapRef map;
    map._LoadXMLFromString(xml.c_str());
    const gcstring_vector warnings = map._GetLoadWarnings();
    QCOMPARE(int(warnings.size()), 1);
    const QString warning = QString::fromUtf8(warnings[0].c_str());
    QVERIFY2(warning.startsWith(QStringLiteral("line 3: node 'A': ")), qPrintable(warning));
    QVERIFY2(warning.endsWith(problem), qPrintable(warning));

    CMemoryPort port;
    map._Connect(&port);
    INode *node = map._GetNode("A");
    QVERIFY(node);
    if (check == QLatin1String("not streamable"))
        QVERIFY(!node->IsStreamable());
    else if (check == QLatin1String("not deprecated"))
        QVERIFY(!node->IsDeprecated());
    else if (check == QLatin1String("Beginner"))
        QCOMPARE(node->GetVisibility(), Beginner);
    else if (check == QLatin1String("RO"))
        QCOMPARE(node->GetAccessMode(), RO);
    else if (check == QLatin1String("RW"))
        QCOMPARE(node->GetAccessMode(), RW);
    else if (check == QLatin1String("PureNumber"))
        QCOMPARE(CIntegerPtr(node)->GetRepresentation(), PureNumber);
    else if (check == QLatin1String("Automatic"))
        QCOMPARE(CFloatPtr(node)->GetDisplayNotation(), fnAutomatic);
    else if (check == QLatin1String("WriteThrough"))
        QCOMPARE(node->GetCachingMode(), WriteThrough);
    else
        QCOMPARE(check, QStringLiteral("loads"));

    // Strict loading refuses it with the problem as the reason.
    CNodeMapRef strict;
    strict._SetStrictLoading(true);
    const QString what = GenApiTest::thrown([&] { strict._LoadXMLFromString(xml.c_str()); });
    QVERIFY2(what.startsWith(QStringLiteral("PropertyException: line 3: node 'A': ")),
             qPrintable(what));
    const QString reason = problem.left(problem.indexOf(QStringLiteral("; the default")));
    QVERIFY2(what.contains(reason), qPrintable(what));
    QVERIFY(strict._Ptr == nullptr);
}

void tst_GenApiLoader::lineNumbersCountSkippedLines()
{
    // The stray line is line 1 of the file, so the bad property is on line 5.
    const std::string xml
        = "stray tool output\n" + description("<Integer Name=\"A\">\n<Min>x</Min></Integer>");
    CNodeMapRef map;
    VERIFY_THROWS(map._LoadXMLFromString(xml.c_str()), "PropertyException", "line 5:");
}

void tst_GenApiLoader::lineNumbersFarIntoTheFile_data()
{
    QTest::addColumn<int>("blankLines");
    QTest::addColumn<int>("padding"); // characters on each blank line
    QTest::newRow("many short lines") << 5000 << 0;
    QTest::newRow("long lines across blocks") << 300 << 3000;
    QTest::newRow("at a block's end") << 255 << 0;
    QTest::newRow("at a block's start") << 256 << 0;
}

// Line numbers stay exact wherever the error lies: the loader keeps a
// compact index of the text rather than one entry per newline.
void tst_GenApiLoader::lineNumbersFarIntoTheFile()
{
    QFETCH(int, blankLines);
    QFETCH(int, padding);
    std::string blanks;
    for (int i = 0; i < blankLines; ++i)
        blanks += std::string(static_cast<size_t>(padding), ' ') + "\n";
    const std::string xml = description(blanks + "<Integer Name=\"A\">\n<Min>x</Min></Integer>");
    // The XML declaration and the opening tag take two lines, the blank
    // lines follow, then the Integer's line, then the bad Min's.
    const QByteArray expected = "line " + QByteArray::number(blankLines + 4) + ":";
    CNodeMapRef map;
    VERIFY_THROWS(map._LoadXMLFromString(xml.c_str()), "PropertyException", expected.constData());
}

void tst_GenApiLoader::unknownElementsAreSkipped()
{
    CNodeMapRef map;
    map._LoadXMLFromString(
        description("<FancyFutureNode Name=\"F\"><Whatever/></FancyFutureNode>"
                    "<Integer Name=\"A\"><Value>3</Value><NewProperty>1</NewProperty>"
                    "<Extension><Vendor>x</Vendor></Extension></Integer>")
            .c_str());
    QVERIFY(map._GetNode("F") == nullptr);
    CIntegerPtr a(map._GetNode("A"));
    QCOMPARE(a->GetValue(), int64_t(3));
}

void tst_GenApiLoader::zipWithDecoyEntries()
{
    // This archive also holds __MACOSX/._issue_66_altered_zip.xml, a
    // resource fork that is not a description.
    const QString path = QStringLiteral(ORB_CORPUS_DIR "/stemmer_tlsimu-altered.zip");
    CNodeMapRef map;
    map._LoadXMLFromZIPFile(path.toUtf8().constData());
    QCOMPARE(QString::fromUtf8(map._GetModelName().c_str()), QStringLiteral("TLSimu"));
    QVERIFY(map._GetNode("Root") != nullptr);

    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray data = file.readAll();
    CNodeMapRef fromData;
    fromData._LoadXMLFromZIPData(data.constData(), static_cast<size_t>(data.size()));
    NodeList_t a, b;
    map._GetNodes(a);
    fromData._GetNodes(b);
    QCOMPARE(a.size(), b.size());
}

void tst_GenApiLoader::zipFileDetectedByContent()
{
    CNodeMapRef map;
    map._LoadXMLFromFile(ORB_CORPUS_DIR "/hikvision_virtual-camera.zip");
    QCOMPARE(QString::fromUtf8(map._GetVendorName().c_str()), QStringLiteral("HIKVISION"));
}

void tst_GenApiLoader::brokenZipData_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("type");
    QTest::newRow("empty") << QByteArray() << QStringLiteral("InvalidArgumentException");
    QTest::newRow("not a zip") << QByteArray("this is not a zip archive at all")
                               << QStringLiteral("RuntimeException");
    QFile file(QStringLiteral(ORB_CORPUS_DIR "/stemmer_tlsimu-altered.zip"));
    file.open(QIODevice::ReadOnly);
    QTest::newRow("truncated") << file.readAll().left(1000) << QStringLiteral("RuntimeException");
}

void tst_GenApiLoader::brokenZipData()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, type);
    CNodeMapRef map;
    const QString what = GenApiTest::thrown(
        [&] { map._LoadXMLFromZIPData(data.constData(), static_cast<size_t>(data.size())); });
    QVERIFY2(what.startsWith(type), qPrintable(what));
}

void tst_GenApiLoader::missingFile()
{
    CNodeMapRef map;
    VERIFY_THROWS(map._LoadXMLFromFile("/nonexistent/camera.xml"), "RuntimeException",
                  "cannot open '/nonexistent/camera.xml'");
}

void tst_GenApiLoader::secondLoadIsALogicError()
{
    CNodeMapRef map;
    const std::string xml = description("<Integer Name=\"A\"><Value>1</Value></Integer>");
    map._LoadXMLFromString(xml.c_str());
    VERIFY_THROWS(map._LoadXMLFromString(xml.c_str()), "LogicalErrorException", "already loaded");
}

// The node map keeps the text it was given and its nodes read their names,
// tool tips and formulas from it: everything must read back after the
// caller's copy is gone, entities decoded and comment-split text joined.
void tst_GenApiLoader::textTakenOverOutlivesTheCaller()
{
    CNodeMapRef map;
    {
        gcstring text(
            description("<Integer Name=\"LongEnoughNotToFitInAnySmallStringBuffer\">"
                        "<ToolTip>Gain &amp; offset, in  <!-- not this -->dB</ToolTip>"
                        "<DisplayName> Spaced &lt;name&gt; </DisplayName>"
                        "<Value>7</Value><Unit>dB</Unit></Integer>"
                        "<IntSwissKnife Name=\"Twice\"><pVariable Name=\"V\">"
                        "LongEnoughNotToFitInAnySmallStringBuffer</pVariable>"
                        "<Formula>V <!-- times --> * 2</Formula></IntSwissKnife>"
                        "<Enumeration Name=\"Mode\"><EnumEntry Name=\"Continuous\"><Value>0</Value>"
                        "</EnumEntry><Value>0</Value></Enumeration>"));
        map._LoadXMLFromString(std::move(text));
        QVERIFY(text.empty());
        // A second load refuses before it takes anything.
        gcstring again("<RegisterDescription/>");
        VERIFY_THROWS(map._LoadXMLFromString(std::move(again)), "LogicalErrorException",
                      "already loaded");
        QCOMPARE(QString::fromUtf8(again.c_str()), QStringLiteral("<RegisterDescription/>"));
    }
    CIntegerPtr value = map._GetNode("LongEnoughNotToFitInAnySmallStringBuffer");
    QVERIFY(value.IsValid());
    QCOMPARE(QString::fromUtf8(value->GetNode()->GetToolTip().c_str()),
             QStringLiteral("Gain & offset, in  dB"));
    QCOMPARE(QString::fromUtf8(value->GetNode()->GetDisplayName().c_str()),
             QStringLiteral("Spaced <name>"));
    QCOMPARE(QString::fromUtf8(value->GetUnit().c_str()), QStringLiteral("dB"));
    CIntegerPtr twice = map._GetNode("Twice");
    QCOMPARE(twice->GetValue(), int64_t(14));
    value->SetValue(21);
    QCOMPARE(twice->GetValue(), int64_t(42));
    CEnumerationPtr mode = map._GetNode("Mode");
    QCOMPARE(QString::fromUtf8(mode->ToString().c_str()), QStringLiteral("Continuous"));
    QVERIFY(map._GetNode("EnumEntry_Mode_Continuous") != nullptr);
}

void tst_GenApiLoader::unloadedReferenceIsALogicError()
{
    CNodeMapRef map;
    VERIFY_THROWS(map._GetNode("A"), "LogicalErrorException", "no description has been loaded");
    QVERIFY(static_cast<INodeMap *>(map) == nullptr);
}

void tst_GenApiLoader::copiesShareTheNodeMap()
{
    CIntegerPtr value;
    {
        CNodeMapRef first;
        first._LoadXMLFromString(
            description("<Integer Name=\"A\"><Value>1</Value></Integer>").c_str());
        CNodeMapRef second(first);
        QCOMPARE(second._Ptr, first._Ptr);
        first._Destroy();
        QVERIFY(first._Ptr == nullptr);
        value = second._GetNode("A");
        value->SetValue(5);
        QCOMPARE(value->GetValue(), int64_t(5));
    }
}

void tst_GenApiLoader::nodeMapIdentity()
{
    CNodeMapRef map("Cam0");
    map._LoadXMLFromString(
        description("<Integer Name=\"A\"><Value>1</Value></Integer>"
                    "<Enumeration Name=\"E\"><EnumEntry Name=\"X\"><Value>1</Value>"
                    "</EnumEntry><Value>1</Value></Enumeration>")
            .c_str());
    QCOMPARE(QString::fromUtf8(map._GetDeviceName().c_str()), QStringLiteral("Cam0"));
    QCOMPARE(QString::fromUtf8(map._GetVendorName().c_str()), QStringLiteral("TestVendor"));
    QCOMPARE(QString::fromUtf8(map._GetModelName().c_str()), QStringLiteral("TestModel"));
    // A, E, its entry and the port.
    QCOMPARE(map._Ptr->GetNumNodes(), uint64_t(4));
    QVERIFY(map._GetNode("EnumEntry_E_X") != nullptr);
    QCOMPARE(QString::fromUtf8(map._GetNode("A")->GetDeviceName().c_str()), QStringLiteral("Cam0"));
    QVERIFY(map._ParseSwissKnife("(1 + 2) * 3"));
    QVERIFY(!map._ParseSwissKnife("(1 + "));
}

QTEST_APPLESS_MAIN(tst_GenApiLoader)
#include "tst_genapi_loader.moc"
