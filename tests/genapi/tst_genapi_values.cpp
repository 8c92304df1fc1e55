// Values, ranges, access modes and representations of the node types.
#include "genapitest.h"

#include <limits>

using namespace GenApi;
using GenApiTest::Device;
using GenApiTest::intReg;

Q_DECLARE_METATYPE(GenApi::EAccessMode)

class tst_GenApiValues : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void integerRegisters_data();
    void integerRegisters();
    void maskedRegisters_data();
    void maskedRegisters();
    void maskedWriteKeepsOtherBits();
    void registerRangeFromLength_data();
    void registerRangeFromLength();
    void integerVerify_data();
    void integerVerify();
    void unverifiedWriteSkipsRange();
    void representations_data();
    void representations();
    void badIntegerText();
    void floatRegisterRange_data();
    void floatRegisterRange();
    void indexedRegisterAddress_data();
    void indexedRegisterAddress();
    void floatRegisters_data();
    void floatRegisters();
    void floatDisplay_data();
    void floatDisplay();
    void floatVerify();
    void converters();
    void converterLimitsFollowSlope();
    void booleans();
    void booleanWithUnexpectedValue();
    void commands();
    void enumerations();
    void enumerationErrors();
    void strings();
    void rawRegisters();
    void typedRegistersAreRegistersToo();
    void accessModes_data();
    void accessModes();
    void writeToReadOnly();
    void indexedValues();
    void registerArrayByIndex();
    void registerWithoutPort();
    void structRegisterEntries();
    void malformedRegisters_data();
    void malformedRegisters();
    void valueCopies();
    void memoryPort();
    void selectors();
    void smartPointers();
    void gcstrings();
};

void tst_GenApiValues::integerRegisters_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("endianess");
    QTest::addColumn<QString>("sign");
    QTest::addColumn<QByteArray>("memory");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("4 LE unsigned")
        << 4 << "LittleEndian"
        << "Unsigned" << QByteArray("\x01\x02\x03\x04", 4) << qint64(0x04030201);
    QTest::newRow("4 BE unsigned")
        << 4 << "BigEndian"
        << "Unsigned" << QByteArray("\x01\x02\x03\x04", 4) << qint64(0x01020304);
    QTest::newRow("2 BE signed negative") << 2 << "BigEndian"
                                          << "Signed" << QByteArray("\xFF\xFE", 2) << qint64(-2);
    QTest::newRow("2 LE signed positive") << 2 << "LittleEndian"
                                          << "Signed" << QByteArray("\xFF\x7F", 2) << qint64(32767);
    QTest::newRow("1 unsigned") << 1 << "LittleEndian"
                                << "Unsigned" << QByteArray("\xFF", 1) << qint64(255);
    QTest::newRow("8 LE signed -1") << 8 << "LittleEndian"
                                    << "Signed" << QByteArray(8, '\xFF') << qint64(-1);
    QTest::newRow("3 BE unsigned")
        << 3 << "BigEndian"
        << "Unsigned" << QByteArray("\xAB\xCD\xEF", 3) << qint64(0xABCDEF);
}

void tst_GenApiValues::integerRegisters()
{
    QFETCH(int, length);
    QFETCH(QString, endianess);
    QFETCH(QString, sign);
    QFETCH(QByteArray, memory);
    QFETCH(qint64, expected);
    Device device("<IntReg Name=\"R\"><Address>0x100</Address><Length>" + std::to_string(length)
                  + "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>"
                  + sign.toStdString() + "</Sign><Endianess>" + endianess.toStdString()
                  + "</Endianess></IntReg>");
    device.port.Write(memory.constData(), 0x100, memory.size());
    CIntegerPtr r(device.node("R"));
    QCOMPARE(r->GetValue(), int64_t(expected));
    // Writing the value back produces the same bytes.
    device.port.Clear();
    r->SetValue(expected);
    QByteArray back(memory.size(), '\0');
    device.port.Read(back.data(), 0x100, back.size());
    QCOMPARE(back, memory);
}

void tst_GenApiValues::maskedRegisters_data()
{
    QTest::addColumn<QString>("endianess");
    QTest::addColumn<QString>("bits"); // the LSB/MSB or Bit elements
    QTest::addColumn<QString>("sign");
    QTest::addColumn<quint32>("word"); // the register as a number
    QTest::addColumn<qint64>("expected");
    QTest::newRow("BE low byte") << "BigEndian"
                                 << "<LSB>31</LSB><MSB>24</MSB>"
                                 << "Unsigned" << quint32(0x123456AB) << qint64(0xAB);
    QTest::newRow("BE top bit") << "BigEndian"
                                << "<Bit>0</Bit>"
                                << "Unsigned" << quint32(0x80000000) << qint64(1);
    QTest::newRow("BE bit 31 is the LSB") << "BigEndian"
                                          << "<Bit>31</Bit>"
                                          << "Unsigned" << quint32(0x00000001) << qint64(1);
    QTest::newRow("LE nibble") << "LittleEndian"
                               << "<LSB>4</LSB><MSB>7</MSB>"
                               << "Unsigned" << quint32(0x000000A5) << qint64(0xA);
    QTest::newRow("LE signed field") << "LittleEndian"
                                     << "<LSB>8</LSB><MSB>15</MSB>"
                                     << "Signed" << quint32(0x0000FE00) << qint64(-2);
    QTest::newRow("LE swapped LSB/MSB") << "LittleEndian"
                                        << "<LSB>7</LSB><MSB>4</MSB>"
                                        << "Unsigned" << quint32(0x000000A5) << qint64(0xA);
}

void tst_GenApiValues::maskedRegisters()
{
    QFETCH(QString, endianess);
    QFETCH(QString, bits);
    QFETCH(QString, sign);
    QFETCH(quint32, word);
    QFETCH(qint64, expected);
    Device device("<MaskedIntReg Name=\"M\"><Address>0x20</Address><Length>4</Length>"
                  "<AccessMode>RW</AccessMode><pPort>Device</pPort>"
                  + bits.toStdString() + "<Sign>" + sign.toStdString() + "</Sign><Endianess>"
                  + endianess.toStdString() + "</Endianess></MaskedIntReg>");
    uint8_t bytes[4];
    for (int i = 0; i < 4; ++i) {
        const int shift = endianess == QLatin1String("BigEndian") ? (3 - i) * 8 : i * 8;
        bytes[i] = static_cast<uint8_t>(word >> shift);
    }
    device.port.Write(bytes, 0x20, 4);
    CIntegerPtr m(device.node("M"));
    QCOMPARE(m->GetValue(), int64_t(expected));
    // Write the same value back: the register must not change.
    m->SetValue(expected);
    uint8_t after[4];
    device.port.Read(after, 0x20, 4);
    QCOMPARE(QByteArray(reinterpret_cast<char *>(after), 4),
             QByteArray(reinterpret_cast<char *>(bytes), 4));
}

void tst_GenApiValues::maskedWriteKeepsOtherBits()
{
    Device device("<MaskedIntReg "
                  "Name=\"Low\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                  "<pPort>Device</pPort><LSB>0</LSB><MSB>7</MSB></MaskedIntReg>"
                  "<MaskedIntReg "
                  "Name=\"High\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                  "<pPort>Device</pPort><LSB>24</LSB><MSB>31</MSB></MaskedIntReg>");
    device.setWord(0, 0x11223344);
    CIntegerPtr low(device.node("Low"));
    CIntegerPtr high(device.node("High"));
    low->SetValue(0xAA);
    QCOMPARE(device.word(0), uint32_t(0x112233AA));
    high->SetValue(0x55);
    QCOMPARE(device.word(0), uint32_t(0x552233AA));
    QCOMPARE(high->GetMax(), int64_t(255));
    VERIFY_THROWS(high->SetValue(256), "OutOfRangeException",
                  "Node 'High': value 256 is out of range [0, 255]");
    VERIFY_THROWS(high->SetValue(256, false), "OutOfRangeException", "does not fit the register");
    QCOMPARE(device.word(0), uint32_t(0x552233AA));
}

void tst_GenApiValues::registerRangeFromLength_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("sign");
    QTest::addColumn<qint64>("min");
    QTest::addColumn<qint64>("max");
    QTest::newRow("1 unsigned") << 1 << "Unsigned" << qint64(0) << qint64(255);
    QTest::newRow("1 signed") << 1 << "Signed" << qint64(-128) << qint64(127);
    QTest::newRow("4 unsigned") << 4 << "Unsigned" << qint64(0) << qint64(0xFFFFFFFF);
    QTest::newRow("8 unsigned") << 8 << "Unsigned" << qint64(0)
                                << std::numeric_limits<qint64>::max();
    QTest::newRow("8 signed") << 8 << "Signed" << std::numeric_limits<qint64>::min()
                              << std::numeric_limits<qint64>::max();
}

void tst_GenApiValues::registerRangeFromLength()
{
    QFETCH(int, length);
    QFETCH(QString, sign);
    QFETCH(qint64, min);
    QFETCH(qint64, max);
    Device device("<IntReg Name=\"R\"><Address>0</Address><Length>" + std::to_string(length)
                  + "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>"
                  + sign.toStdString()
                  + "</Sign></IntReg>"
                    "<Integer Name=\"I\"><pValue>R</pValue></Integer>");
    CIntegerPtr r(device.node("R"));
    QCOMPARE(r->GetMin(), int64_t(min));
    QCOMPARE(r->GetMax(), int64_t(max));
    // An Integer without limits of its own takes the register's.
    CIntegerPtr i(device.node("I"));
    QCOMPARE(i->GetMin(), int64_t(min));
    QCOMPARE(i->GetMax(), int64_t(max));
}

void tst_GenApiValues::integerVerify_data()
{
    QTest::addColumn<QString>("limits");
    QTest::addColumn<qint64>("value");
    QTest::addColumn<QString>("error"); // empty: accepted
    const QString fixed = QStringLiteral("<Min>10</Min><Max>100</Max><Inc>5</Inc>");
    QTest::newRow("minimum") << fixed << qint64(10) << QString();
    QTest::newRow("on the grid") << fixed << qint64(95) << QString();
    QTest::newRow("maximum off the grid") << fixed << qint64(100) << QString();
    QTest::newRow("off the grid")
        << fixed << qint64(12)
        << QStringLiteral(
               "Node 'I': value 12 is not the minimum 10 plus a multiple of the increment 5");
    QTest::newRow("below") << fixed << qint64(5)
                           << QStringLiteral("Node 'I': value 5 is out of range [10, 100]");
    QTest::newRow("above") << fixed << qint64(105)
                           << QStringLiteral("value 105 is out of range [10, 100]");
    const QString list = QStringLiteral("<ValidValueSet>1;2;4;8</ValidValueSet>");
    QTest::newRow("in the list") << list << qint64(4) << QString();
    QTest::newRow("not in the list")
        << list << qint64(3) << QStringLiteral("value 3 is not one of the valid values");
    const QString pointed = QStringLiteral("<pMin>Lo</pMin><pMax>Hi</pMax><pInc>Step</pInc>");
    QTest::newRow("limits from nodes") << pointed << qint64(-4) << QString();
    QTest::newRow("limits from nodes, off the grid")
        << pointed << qint64(-3) << QStringLiteral("increment 2");
    QTest::newRow("limits from nodes, above")
        << pointed << qint64(8) << QStringLiteral("out of range [-6, 6]");
}

void tst_GenApiValues::integerVerify()
{
    QFETCH(QString, limits);
    QFETCH(qint64, value);
    QFETCH(QString, error);
    Device device("<Integer Name=\"I\"><Value>10</Value>" + limits.toStdString()
                  + "</Integer>"
                    "<Integer Name=\"Lo\"><Value>-6</Value></Integer>"
                    "<Integer Name=\"Hi\"><Value>6</Value></Integer>"
                    "<Integer Name=\"Step\"><Value>2</Value></Integer>");
    CIntegerPtr i(device.node("I"));
    const int64_t before = i->GetValue();
    const QString what = GenApiTest::thrown([&] { i->SetValue(value); });
    if (error.isEmpty()) {
        QVERIFY2(what.isEmpty(), qPrintable(what));
        QCOMPARE(i->GetValue(), int64_t(value));
    } else {
        QVERIFY2(what.startsWith(QStringLiteral("OutOfRangeException: ")), qPrintable(what));
        QVERIFY2(what.contains(error), qPrintable(what));
        QCOMPARE(i->GetValue(), before);
    }
}

void tst_GenApiValues::unverifiedWriteSkipsRange()
{
    Device device("<Integer Name=\"I\"><Value>10</Value><Min>10</Min><Max>20</Max></Integer>");
    CIntegerPtr i(device.node("I"));
    i->SetValue(50, false);
    QCOMPARE(i->GetValue(), int64_t(50));
    VERIFY_THROWS(i->GetValue(true), "OutOfRangeException", "out of range [10, 20]");
}

void tst_GenApiValues::representations_data()
{
    QTest::addColumn<QString>("representation");
    QTest::addColumn<qint64>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("hex") << "HexNumber" << qint64(255) << "0xFF";
    QTest::newRow("ipv4") << "IPV4Address" << qint64(0xC0A8010A) << "192.168.1.10";
    QTest::newRow("ipv4 zero") << "IPV4Address" << qint64(0) << "0.0.0.0";
    QTest::newRow("mac") << "MACAddress" << qint64(0x001A2B3C4D5E) << "00:1A:2B:3C:4D:5E";
    QTest::newRow("pure") << "PureNumber" << qint64(-5) << "-5";
    QTest::newRow("linear") << "Linear" << qint64(1234567890123) << "1234567890123";
}

void tst_GenApiValues::representations()
{
    QFETCH(QString, representation);
    QFETCH(qint64, value);
    QFETCH(QString, text);
    Device device("<Integer Name=\"I\"><Value>0</Value><Representation>"
                  + representation.toStdString() + "</Representation></Integer>");
    CIntegerPtr i(device.node("I"));
    i->SetValue(value);
    QCOMPARE(QString::fromUtf8(i->ToString().c_str()), text);
    i->SetValue(0);
    i->FromString(text.toUtf8().constData());
    QCOMPARE(i->GetValue(), int64_t(value));
    QCOMPARE(QString::fromUtf8(ERepresentationClass::ToString(i->GetRepresentation()).c_str()),
             representation);
}

void tst_GenApiValues::badIntegerText()
{
    Device device("<Integer Name=\"I\"><Value>3</Value></Integer>");
    CIntegerPtr i(device.node("I"));
    VERIFY_THROWS(i->FromString("three"), "InvalidArgumentException",
                  "Node 'I': 'three' is not an integer");
    VERIFY_THROWS(i->FromString("1.5"), "InvalidArgumentException", "is not an integer");
    VERIFY_THROWS(i->FromString("99999999999999999999"), "InvalidArgumentException",
                  "is not an integer");
    i->FromString(" 12.0 ");
    QCOMPARE(i->GetValue(), int64_t(12));
}

// A read-write FloatReg "F" at 0x40.
static std::string floatReg(int length, const QString &endianess)
{
    return "<FloatReg Name=\"F\"><Address>0x40</Address><Length>" + std::to_string(length)
        + "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>"
        + endianess.toStdString() + "</Endianess></FloatReg>";
}

void tst_GenApiValues::floatRegisters_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("endianess");
    QTest::addColumn<double>("value");
    QTest::newRow("4 LE") << 4 << "LittleEndian" << 1.5;
    QTest::newRow("4 BE") << 4 << "BigEndian" << -1024.25;
    QTest::newRow("8 LE") << 8 << "LittleEndian" << 3.141592653589793;
    QTest::newRow("8 BE") << 8 << "BigEndian" << 1e-300;
}

void tst_GenApiValues::floatRegisters()
{
    QFETCH(int, length);
    QFETCH(QString, endianess);
    QFETCH(double, value);
    Device device(floatReg(length, endianess));
    CFloatPtr f(device.node("F"));
    f->SetValue(value);
    QCOMPARE(f->GetValue(), value);
    // The bytes in memory are the IEEE encoding in the declared byte order.
    QByteArray bytes(length, '\0');
    device.port.Read(bytes.data(), 0x40, length);
    if (endianess == QLatin1String("BigEndian"))
        std::reverse(bytes.begin(), bytes.end());
    if (length == 4) {
        float stored;
        memcpy(&stored, bytes.constData(), 4);
        QCOMPARE(double(stored), value);
    } else {
        double stored;
        memcpy(&stored, bytes.constData(), 8);
        QCOMPARE(stored, value);
    }
}

// Every value inside the range a float register reports can be written.
void tst_GenApiValues::floatRegisterRange_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("endianess");
    QTest::addColumn<double>("limit");
    QTest::newRow("4 bytes LE") << 4 << "LittleEndian" << double(std::numeric_limits<float>::max());
    QTest::newRow("4 bytes BE") << 4 << "BigEndian" << double(std::numeric_limits<float>::max());
    QTest::newRow("8 bytes") << 8 << "LittleEndian" << std::numeric_limits<double>::max();
}

void tst_GenApiValues::floatRegisterRange()
{
    QFETCH(int, length);
    QFETCH(QString, endianess);
    QFETCH(double, limit);
    Device device(floatReg(length, endianess));
    CFloatPtr f(device.node("F"));
    QCOMPARE(f->GetMax(), limit);
    QCOMPARE(f->GetMin(), -limit);
    f->SetValue(f->GetMax());
    QCOMPARE(f->GetValue(), limit);
    f->SetValue(f->GetMin());
    QCOMPARE(f->GetValue(), -limit);
}

// Each pIndex adds its index times its offset; without an offset the index
// counts whole registers.
void tst_GenApiValues::indexedRegisterAddress_data()
{
    QTest::addColumn<QString>("indices");
    QTest::addColumn<qint64>("address");
    const std::string i1 = "<Integer Name=\"I1\"><Value>5</Value></Integer>";
    const std::string i2 = "<Integer Name=\"I2\"><Value>3</Value></Integer>";
    const std::string i3 = "<Integer Name=\"I3\"><Value>2</Value></Integer>";
    QTest::newRow("one index with an offset")
        << QString::fromStdString("<pIndex Offset=\"1000\">I1</pIndex>|" + i1) << qint64(5120);
    QTest::newRow("two indices with offsets")
        << QString::fromStdString("<pIndex Offset=\"1000\">I1</pIndex>"
                                  "<pIndex Offset=\"10000\">I2</pIndex>|"
                                  + i1 + i2)
        << qint64(35120);
    QTest::newRow("three, the last without an offset")
        << QString::fromStdString("<pIndex Offset=\"1000\">I1</pIndex>"
                                  "<pIndex Offset=\"10000\">I2</pIndex><pIndex>I3</pIndex>|"
                                  + i1 + i2 + i3)
        << qint64(35128);
    QTest::newRow("an offset from a node")
        << QString::fromStdString("<pIndex pOffset=\"Step\">I2</pIndex>|" + i2
                                  + "<Integer Name=\"Step\"><Value>0x20</Value></Integer>")
        << qint64(216);
}

void tst_GenApiValues::indexedRegisterAddress()
{
    QFETCH(QString, indices);
    QFETCH(qint64, address);
    const QStringList parts = indices.split(QLatin1Char('|'));
    Device device("<Register Name=\"R\"><Address>100</Address><Address>20</Address>"
                  + parts[0].toStdString()
                  + "<Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>"
                  + parts[1].toStdString());
    CRegisterPtr r(device.node("R"));
    QCOMPARE(r->GetAddress(), int64_t(address));
    const uint8_t bytes[4] = { 1, 2, 3, 4 };
    r->Set(bytes, 4);
    QCOMPARE(device.word(address), uint32_t(0x04030201));
}

void tst_GenApiValues::floatDisplay_data()
{
    QTest::addColumn<QString>("properties");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("fixed 2")
        << "<DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>2</DisplayPrecision>" << 6.5
        << "6.50";
    QTest::newRow("scientific 3")
        << "<DisplayNotation>Scientific</DisplayNotation><DisplayPrecision>3</DisplayPrecision>"
        << 12345.0 << "1.234e+04";
    QTest::newRow("automatic") << "" << 0.1 << "0.1";
    QTest::newRow("automatic large") << "" << 1234567.0 << "1.23457e+06";
    QTest::newRow("fixed 0")
        << "<DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>0</DisplayPrecision>" << 2.5
        << "2";
}

void tst_GenApiValues::floatDisplay()
{
    QFETCH(QString, properties);
    QFETCH(double, value);
    QFETCH(QString, text);
    Device device("<Float Name=\"F\"><Value>0</Value>" + properties.toStdString() + "</Float>");
    CFloatPtr f(device.node("F"));
    f->SetValue(value);
    QCOMPARE(QString::fromUtf8(f->ToString().c_str()), text);
}

void tst_GenApiValues::floatVerify()
{
    Device device("<Float Name=\"F\"><Value>1</Value><Min>0.5</Min><Max>10</Max><Inc>0.5</Inc>"
                  "<Unit>ms</Unit></Float>");
    CFloatPtr f(device.node("F"));
    QVERIFY(f->HasInc());
    QCOMPARE(f->GetIncMode(), fixedIncrement);
    QCOMPARE(f->GetInc(), 0.5);
    QCOMPARE(QString::fromUtf8(f->GetUnit().c_str()), QStringLiteral("ms"));
    f->SetValue(2.5);
    QCOMPARE(f->GetValue(), 2.5);
    VERIFY_THROWS(f->SetValue(10.5), "OutOfRangeException",
                  "Node 'F': value 10.5 is out of range [0.5, 10]");
    VERIFY_THROWS(f->SetValue(0.7), "OutOfRangeException", "increment 0.5");
    VERIFY_THROWS(f->FromString("fast"), "InvalidArgumentException", "'fast' is not a number");
    f->FromString("7");
    QCOMPARE(f->GetValue(), 7.0);
    f->ImposeMax(5);
    QCOMPARE(f->GetMax(), 5.0);
    VERIFY_THROWS(f->SetValue(6), "OutOfRangeException", "out of range [0.5, 5]");
}

void tst_GenApiValues::converters()
{
    // Exposure in microseconds over a register counting tenths.
    Device device(
        intReg("Raw", 0x10)
        + "<Converter Name=\"Exposure\"><FormulaTo>ROUND(FROM * 10)</FormulaTo>"
          "<FormulaFrom>TO / 10</FormulaFrom><pValue>Raw</pValue><Unit>us</Unit></Converter>"
          "<IntConverter Name=\"Halves\"><pVariable Name=\"K\">K</pVariable>"
          "<FormulaTo>FROM * K</FormulaTo><FormulaFrom>TO / K</FormulaFrom><pValue>Raw</pValue>"
          "</IntConverter><Integer Name=\"K\"><Value>2</Value></Integer>");
    CFloatPtr exposure(device.node("Exposure"));
    exposure->SetValue(1234.5);
    QCOMPARE(device.word(0x10), uint32_t(12345));
    QCOMPARE(exposure->GetValue(), 1234.5);
    QCOMPARE(exposure->GetMin(), 0.0);
    QCOMPARE(exposure->GetMax(), 429496729.5);
    QCOMPARE(exposure->GetAccessMode(), RW);

    CIntegerPtr halves(device.node("Halves"));
    QCOMPARE(halves->GetValue(), int64_t(6172));
    halves->SetValue(100);
    QCOMPARE(device.word(0x10), uint32_t(200));
    QCOMPARE(halves->GetMax(), int64_t(0xFFFFFFFF / 2));
}

void tst_GenApiValues::converterLimitsFollowSlope()
{
    Device device(
        "<Integer Name=\"Raw\"><Value>10</Value><Min>0</Min><Max>100</Max></Integer>"
        "<Converter Name=\"Down\"><FormulaTo>100 - FROM</FormulaTo><FormulaFrom>100 - "
        "TO</FormulaFrom>"
        "<pValue>Raw</pValue><Slope>Decreasing</Slope></Converter>"
        "<Converter Name=\"Auto\"><FormulaTo>-FROM</FormulaTo><FormulaFrom>-TO</FormulaFrom>"
        "<pValue>Raw</pValue></Converter>"
        "<Converter Name=\"Undefined\"><FormulaTo>1 / FROM</FormulaTo><FormulaFrom>1 / "
        "TO</FormulaFrom>"
        "<pValue>Raw</pValue></Converter>");
    CFloatPtr down(device.node("Down"));
    QCOMPARE(down->GetMin(), 0.0);
    QCOMPARE(down->GetMax(), 100.0);
    QCOMPARE(down->GetValue(), 90.0);
    CFloatPtr automatic(device.node("Auto"));
    QCOMPARE(automatic->GetMin(), -100.0);
    QCOMPARE(automatic->GetMax(), 0.0);
    // 1/TO is undefined at the raw minimum 0: the widest range, not an error.
    CFloatPtr undefined(device.node("Undefined"));
    QCOMPARE(undefined->GetValue(), 0.1);
    QCOMPARE(undefined->GetMax(), std::numeric_limits<double>::max());
}

void tst_GenApiValues::booleans()
{
    Device device(intReg("Reg", 0)
                  + "<Boolean Name=\"B\"><pValue>Reg</pValue><OnValue>5</OnValue>"
                    "<OffValue>2</OffValue></Boolean>"
                    "<Boolean Name=\"Plain\"><Value>true</Value></Boolean>");
    device.setWord(0, 2);
    CBooleanPtr b(device.node("B"));
    QCOMPARE(b->GetValue(), false);
    b->SetValue(true);
    QCOMPARE(device.word(0), uint32_t(5));
    QCOMPARE(QString::fromUtf8(b->ToString().c_str()), QStringLiteral("1"));
    b->FromString("false");
    QCOMPARE(device.word(0), uint32_t(2));
    VERIFY_THROWS(b->FromString("maybe"), "InvalidArgumentException", "'maybe' is not a boolean");

    CBooleanPtr plain(device.node("Plain"));
    QCOMPARE(plain->GetValue(), true);
    *plain = false;
    QCOMPARE((*plain)(), false);
}

void tst_GenApiValues::booleanWithUnexpectedValue()
{
    Device device(intReg("Reg", 0) + "<Boolean Name=\"B\"><pValue>Reg</pValue></Boolean>");
    device.setWord(0, 7);
    CBooleanPtr b(device.node("B"));
    VERIFY_THROWS(b->GetValue(), "RuntimeException",
                  "Node 'B': value 7 is neither the OnValue 1 nor the OffValue 0");
}

void tst_GenApiValues::commands()
{
    Device device(
        intReg("Reg", 0x80, 4, "<Cachable>NoCache</Cachable>")
        + "<Command Name=\"Go\"><pValue>Reg</pValue><CommandValue>3</CommandValue></Command>"
          "<Command "
          "Name=\"Blocked\"><pValue>Reg</pValue><ImposedAccessMode>RO</ImposedAccessMode></"
          "Command>");
    CCommandPtr go(device.node("Go"));
    QVERIFY(go->IsDone());
    go->Execute();
    QCOMPARE(device.word(0x80), uint32_t(3));
    // The device has not cleared the command value yet.
    QVERIFY(!go->IsDone());
    device.setWord(0x80, 0);
    QVERIFY(go->IsDone());
    go->FromString("Execute");
    QCOMPARE(device.word(0x80), uint32_t(3));
    VERIFY_THROWS(go->FromString("later"), "InvalidArgumentException", "does not execute");

    CCommandPtr blocked(device.node("Blocked"));
    VERIFY_THROWS(blocked->Execute(), "AccessException",
                  "Node 'Blocked' is not writable (access mode RO)");
}

void tst_GenApiValues::enumerations()
{
    Device device(
        intReg("Reg", 0)
        + "<Enumeration Name=\"Mode\"><EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry>"
          "<EnumEntry Name=\"On\"><Value>1</Value><DisplayName>Switched "
          "on</DisplayName></EnumEntry>"
          "<EnumEntry Name=\"Auto\"><Value>2</Value><pIsAvailable>AutoOk</pIsAvailable></EnumEntry>"
          "<EnumEntry "
          "Name=\"Gone\"><Value>3</Value><pIsImplemented>Zero</pIsImplemented></EnumEntry>"
          "<pValue>Reg</pValue></Enumeration>"
          "<Integer Name=\"AutoOk\"><Value>0</Value></Integer>"
          "<Integer Name=\"Zero\"><Value>0</Value></Integer>");
    CEnumerationPtr mode(device.node("Mode"));
    QCOMPARE(QString::fromUtf8(mode->ToString().c_str()), QStringLiteral("Off"));
    *mode = "On";
    QCOMPARE(device.word(0), uint32_t(1));
    QCOMPARE(mode->GetIntValue(), int64_t(1));
    QCOMPARE(QString::fromUtf8(mode->GetCurrentEntry()->GetSymbolic().c_str()),
             QStringLiteral("On"));
    QCOMPARE(QString::fromUtf8(mode->GetCurrentEntry()->GetNode()->GetDisplayName().c_str()),
             QStringLiteral("Switched on"));
    mode->SetIntValue(0);
    QCOMPARE(QString::fromUtf8(mode->ToString().c_str()), QStringLiteral("Off"));
    mode->FromString("1"); // by number as text
    QCOMPARE(mode->GetIntValue(), int64_t(1));

    StringList_t symbolics;
    mode->GetSymbolics(symbolics);
    QCOMPARE(symbolics.size(), size_t(2)); // Auto is not available, Gone not implemented
    NodeList_t entries;
    mode->GetEntries(entries);
    QCOMPARE(entries.size(), size_t(4));
    QCOMPARE(mode->GetEntryByName("Gone")->GetNode()->GetAccessMode(), NI);
    QCOMPARE(mode->GetEntryByName("Auto")->GetNode()->GetAccessMode(), NA);
    QVERIFY(mode->GetEntryByName("Nope") == nullptr);
    QVERIFY(mode->GetEntry(9) == nullptr);

    CIntegerPtr(device.node("AutoOk"))->SetValue(1);
    mode->GetSymbolics(symbolics);
    QCOMPARE(symbolics.size(), size_t(3));
    *mode = "Auto";
    QCOMPARE(mode->GetIntValue(), int64_t(2));
}

void tst_GenApiValues::enumerationErrors()
{
    Device device(
        intReg("Reg", 0)
        + "<Enumeration Name=\"Mode\"><EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry>"
          "<EnumEntry Name=\"On\"><Value>1</Value></EnumEntry>"
          "<EnumEntry Name=\"Auto\"><Value>2</Value><pIsAvailable>Zero</pIsAvailable></EnumEntry>"
          "<pValue>Reg</pValue></Enumeration><Integer Name=\"Zero\"><Value>0</Value></Integer>");
    CEnumerationPtr mode(device.node("Mode"));
    VERIFY_THROWS(mode->FromString("Sometimes"), "InvalidArgumentException",
                  "Node 'Mode': 'Sometimes' is not an entry (available: Off, On)");
    VERIFY_THROWS(mode->FromString("Auto"), "AccessException", "entry 'Auto' is not available");
    VERIFY_THROWS(mode->SetIntValue(7), "OutOfRangeException",
                  "value 7 is not the value of any entry");
    device.setWord(0, 5);
    VERIFY_THROWS(mode->ToString(), "RuntimeException", "the current value 5 matches no entry");
    QVERIFY(mode->GetCurrentEntry() == nullptr);
    QCOMPARE(mode->GetIntValue(), int64_t(5));
    VERIFY_THROWS(mode->GetIntValue(true), "OutOfRangeException", "matches no entry");
}

void tst_GenApiValues::strings()
{
    Device device("<StringReg Name=\"Reg\"><Address>0x200</Address><Length>8</Length>"
                  "<AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>"
                  "<String Name=\"Plain\"><Value>hello</Value></String>"
                  "<String Name=\"Alias\"><pValue>Reg</pValue></String>");
    CStringPtr reg(device.node("Reg"));
    QCOMPARE(reg->GetMaxLength(), int64_t(8));
    reg->SetValue("camera");
    QCOMPARE(QString::fromUtf8(reg->GetValue().c_str()), QStringLiteral("camera"));
    char memory[8];
    device.port.Read(memory, 0x200, 8);
    QCOMPARE(QByteArray(memory, 8), QByteArray("camera\0\0", 8));
    reg->SetValue("12345678"); // exactly fills the register, no terminator
    QCOMPARE(QString::fromUtf8(reg->GetValue().c_str()), QStringLiteral("12345678"));
    VERIFY_THROWS(reg->SetValue("123456789"), "OutOfRangeException", "Node 'Reg': text of 9 bytes");
    CStringPtr alias(device.node("Alias"));
    QCOMPARE(QString::fromUtf8(alias->GetValue().c_str()), QStringLiteral("12345678"));
    CStringPtr plain(device.node("Plain"));
    *plain = "world";
    QCOMPARE(QString::fromUtf8((*plain)().c_str()), QStringLiteral("world"));
}

void tst_GenApiValues::rawRegisters()
{
    Device device("<Register Name=\"Blob\"><Address>0x300</Address><Length>4</Length>"
                  "<AccessMode>RW</AccessMode><pPort>Device</pPort></Register>");
    CRegisterPtr blob(device.node("Blob"));
    QCOMPARE(blob->GetLength(), int64_t(4));
    QCOMPARE(blob->GetAddress(), int64_t(0x300));
    const uint8_t data[4] = { 0xDE, 0xAD, 0xBE, 0xEF };
    blob->Set(data, 4);
    uint8_t back[4] = {};
    blob->Get(back, 4);
    QCOMPARE(memcmp(back, data, 4), 0);
    QCOMPARE(QString::fromUtf8(blob->ToString().c_str()), QStringLiteral("0xDEADBEEF"));
    blob->FromString("0x01020304");
    QCOMPARE(device.word(0x300), uint32_t(0x04030201));
    VERIFY_THROWS(blob->Get(back, 3), "InvalidArgumentException",
                  "buffer of the register's 4 bytes");
    VERIFY_THROWS(blob->FromString("0x0102"), "InvalidArgumentException",
                  "is not 4 hexadecimal bytes");
}

void tst_GenApiValues::typedRegistersAreRegistersToo()
{
    Device device(intReg("I", 0x600)
                  + "<FloatReg Name=\"F\"><Address>0x608</Address><Length>8</Length>"
                    "<AccessMode>RW</AccessMode><pPort>Device</pPort></FloatReg>"
                    "<StringReg Name=\"S\"><Address>0x610</Address><Length>16</Length>"
                    "<AccessMode>RO</AccessMode><pPort>Device</pPort></StringReg>"
                    "<String Name=\"Plain\"><Value>x</Value></String>");
    CRegisterPtr i(device.node("I"));
    QVERIFY(i.IsValid());
    QCOMPARE(i->GetAddress(), int64_t(0x600));
    QCOMPARE(i->GetLength(), int64_t(4));
    const uint8_t bytes[4] = { 1, 0, 0, 0 };
    i->Set(bytes, 4);
    QCOMPARE(CIntegerPtr(device.node("I"))->GetValue(), int64_t(1));
    QCOMPARE(device.node("I")->GetPrincipalInterfaceType(), intfIInteger);
    QCOMPARE(CRegisterPtr(device.node("F"))->GetLength(), int64_t(8));
    CRegisterPtr s(device.node("S"));
    QCOMPARE(s->GetAddress(), int64_t(0x610));
    uint8_t buffer[16];
    VERIFY_THROWS(s->Set(buffer, 16), "AccessException", "Node 'S' is not writable");
    QVERIFY(!CRegisterPtr(device.node("Plain")).IsValid());
}

void tst_GenApiValues::accessModes_data()
{
    QTest::addColumn<QString>("feature");
    QTest::addColumn<GenApi::EAccessMode>("expected");
    const QString reg = QStringLiteral("<pValue>Reg</pValue>");
    QTest::newRow("register RW") << reg << RW;
    QTest::newRow("read-only register") << QStringLiteral("<pValue>RoReg</pValue>") << RO;
    QTest::newRow("write-only register") << QStringLiteral("<pValue>WoReg</pValue>") << WO;
    QTest::newRow("imposed RO") << reg + QStringLiteral("<ImposedAccessMode>RO</ImposedAccessMode>")
                                << RO;
    QTest::newRow("imposed WO on RO")
        << QStringLiteral("<pValue>RoReg</pValue><ImposedAccessMode>WO</ImposedAccessMode>") << NA;
    QTest::newRow("not implemented")
        << reg + QStringLiteral("<pIsImplemented>Zero</pIsImplemented>") << NI;
    QTest::newRow("not available")
        << reg + QStringLiteral("<pIsAvailable>Zero</pIsAvailable>") << NA;
    QTest::newRow("available") << reg + QStringLiteral("<pIsAvailable>One</pIsAvailable>") << RW;
    QTest::newRow("locked") << reg + QStringLiteral("<pIsLocked>One</pIsLocked>") << RO;
    QTest::newRow("locked write-only")
        << QStringLiteral("<pValue>WoReg</pValue><pIsLocked>One</pIsLocked>") << NA;
    QTest::newRow("not implemented beats locked")
        << reg + QStringLiteral("<pIsImplemented>Zero</pIsImplemented><pIsLocked>One</pIsLocked>")
        << NI;
    QTest::newRow("unreadable availability")
        << reg + QStringLiteral("<pIsAvailable>WoReg</pIsAvailable>") << NA;
    QTest::newRow("memory value") << QStringLiteral("<Value>1</Value>") << RW;
}

void tst_GenApiValues::accessModes()
{
    QFETCH(QString, feature);
    QFETCH(GenApi::EAccessMode, expected);
    Device device(intReg("Reg", 0)
                  + "<IntReg "
                    "Name=\"RoReg\"><Address>4</Address><Length>4</Length><AccessMode>RO</"
                    "AccessMode><pPort>Device</pPort></IntReg>"
                    "<IntReg "
                    "Name=\"WoReg\"><Address>8</Address><Length>4</Length><AccessMode>WO</"
                    "AccessMode><pPort>Device</pPort></IntReg>"
                    "<Integer Name=\"Zero\"><Value>0</Value></Integer><Integer "
                    "Name=\"One\"><Value>1</Value></Integer>"
                    "<Integer Name=\"F\">"
                  + feature.toStdString() + "</Integer>");
    QCOMPARE(device.node("F")->GetAccessMode(), expected);
    QCOMPARE(IsReadable(device.node("F")), expected == RO || expected == RW);
    QCOMPARE(IsWritable(device.node("F")), expected == WO || expected == RW);
    QCOMPARE(IsAvailable(device.node("F")), expected != NA && expected != NI);
    QCOMPARE(IsImplemented(device.node("F")), expected != NI);
}

void tst_GenApiValues::writeToReadOnly()
{
    Device device(
        "<IntReg Name=\"Ro\"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>"
        "<pPort>Device</pPort></IntReg><Integer Name=\"Na\"><Value>1</Value>"
        "<pIsAvailable>Zero</pIsAvailable></Integer><Integer "
        "Name=\"Zero\"><Value>0</Value></Integer>");
    CIntegerPtr ro(device.node("Ro"));
    VERIFY_THROWS(ro->SetValue(1), "AccessException", "Node 'Ro' is not writable (access mode RO)");
    VERIFY_THROWS(ro->SetValue(1, false), "AccessException", "is not writable");
    QCOMPARE(device.word(0), uint32_t(0));
    CIntegerPtr na(device.node("Na"));
    VERIFY_THROWS(na->GetValue(), "AccessException", "Node 'Na' is not readable (access mode NA)");
}

void tst_GenApiValues::indexedValues()
{
    Device device("<Integer Name=\"Sel\"><Value>0</Value></Integer>"
                  "<Integer Name=\"Other\"><Value>77</Value></Integer>"
                  "<Integer Name=\"Gain\"><pIndex>Sel</pIndex>"
                  "<ValueIndexed Index=\"0\">10</ValueIndexed>"
                  "<pValueIndexed Index=\"1\">Other</pValueIndexed>"
                  "<ValueDefault>5</ValueDefault></Integer>");
    CIntegerPtr sel(device.node("Sel"));
    CIntegerPtr gain(device.node("Gain"));
    QCOMPARE(gain->GetValue(), int64_t(10));
    gain->SetValue(11);
    sel->SetValue(1);
    QCOMPARE(gain->GetValue(), int64_t(77));
    gain->SetValue(78);
    QCOMPARE(CIntegerPtr(device.node("Other"))->GetValue(), int64_t(78));
    sel->SetValue(9);
    QCOMPARE(gain->GetValue(), int64_t(5));
    sel->SetValue(0);
    QCOMPARE(gain->GetValue(), int64_t(11));
}

void tst_GenApiValues::registerArrayByIndex()
{
    // One register per selector value, four bytes apart, plus a base
    // address computed by a formula written inside the register.
    Device device("<Integer Name=\"Sel\"><Value>0</Value><Min>0</Min><Max>3</Max></Integer>"
                  "<Integer Name=\"Base\"><Value>0x1000</Value></Integer>"
                  "<IntReg Name=\"Line\"><pAddress>Base</pAddress>"
                  "<IntSwissKnife><pVariable Name=\"X\">Base</pVariable><Formula>X / 0x1000 * "
                  "0x10</Formula></IntSwissKnife>"
                  "<pIndex Offset=\"4\">Sel</pIndex><Length>4</Length><AccessMode>RW</AccessMode>"
                  "<pPort>Device</pPort></IntReg>");
    CIntegerPtr sel(device.node("Sel"));
    CIntegerPtr line(device.node("Line"));
    for (int i = 0; i < 4; ++i) {
        sel->SetValue(i);
        line->SetValue(100 + i);
    }
    for (int i = 0; i < 4; ++i)
        QCOMPARE(device.word(0x1010 + 4 * i), uint32_t(100 + i));
    sel->SetValue(2);
    QCOMPARE(line->GetValue(), int64_t(102));
}

void tst_GenApiValues::registerWithoutPort()
{
    Device device(
        "<IntReg "
        "Name=\"Lost\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode></IntReg>"
        "<IntReg "
        "Name=\"Elsewhere\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
        "<pPort>Other</pPort></IntReg><Port Name=\"Other\"/>");
    QCOMPARE(device.node("Lost")->GetAccessMode(), NA);
    // A port nobody connected is not available either.
    QCOMPARE(device.node("Elsewhere")->GetAccessMode(), NA);
    CMemoryPort other;
    QVERIFY(device.map._Connect(&other, "Other"));
    QVERIFY(!device.map._Connect(&other, "NoSuchPort"));
    QCOMPARE(device.node("Elsewhere")->GetAccessMode(), RW);
}

void tst_GenApiValues::structRegisterEntries()
{
    // Each entry becomes a bit field over the shared register; an entry may
    // override the register's properties.
    Device device(
        "<StructReg Comment=\"Control\"><Address>0x500</Address><Length>4</Length>"
        "<AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>BigEndian</Endianess>"
        "<StructEntry Name=\"Enable\"><Bit>0</Bit></StructEntry>"
        "<StructEntry Name=\"Level\"><LSB>31</LSB><MSB>24</MSB><Sign>Signed</Sign></StructEntry>"
        "<StructEntry Name=\"Version\"><LSB>15</LSB><MSB>8</MSB><AccessMode>RO</AccessMode>"
        "<Visibility>Guru</Visibility></StructEntry></StructReg>");
    CIntegerPtr enable(device.node("Enable"));
    CIntegerPtr level(device.node("Level"));
    CIntegerPtr version(device.node("Version"));
    QCOMPARE(QString::fromUtf8(device.node("Enable")->GetName().c_str()), QStringLiteral("Enable"));
    enable->SetValue(1);
    level->SetValue(-1);
    uint8_t bytes[4];
    device.port.Read(bytes, 0x500, 4);
    QCOMPARE(QByteArray(reinterpret_cast<char *>(bytes), 4), QByteArray("\x80\x00\x00\xFF", 4));
    QCOMPARE(level->GetMin(), int64_t(-128));
    QCOMPARE(version->GetNode()->GetAccessMode(), RO);
    QCOMPARE(version->GetNode()->GetVisibility(), Guru);
    QCOMPARE(enable->GetNode()->GetAccessMode(), RW);
    VERIFY_THROWS(version->SetValue(1), "AccessException", "Node 'Version' is not writable");
}

void tst_GenApiValues::malformedRegisters_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("fragment");
    QTest::newRow("integer register longer than 8 bytes")
        << "<IntReg "
           "Name=\"R\"><Address>0</Address><Length>16</Length><AccessMode>RW</"
           "AccessMode><pPort>Device</pPort></IntReg>"
        << "RuntimeException"
        << "Node 'R': register length 16 is longer than the 8 bytes an integer can hold";
    QTest::newRow("float register of 3 bytes")
        << "<FloatReg "
           "Name=\"R\"><Address>0</Address><Length>3</Length><AccessMode>RW</"
           "AccessMode><pPort>Device</pPort></FloatReg>"
        << "RuntimeException"
        << "must be 4 or 8 bytes long, not 3";
    QTest::newRow("zero length")
        << "<IntReg "
           "Name=\"R\"><Address>0</Address><Length>0</Length><AccessMode>RW</"
           "AccessMode><pPort>Device</pPort></IntReg>"
        << "RuntimeException"
        << "register length 0 is not valid";
    QTest::newRow("no length") << "<IntReg "
                                  "Name=\"R\"><Address>0</Address><AccessMode>RW</"
                                  "AccessMode><pPort>Device</pPort></IntReg>"
                               << "RuntimeException"
                               << "register has no Length";
    QTest::newRow("length from a node gone wrong")
        << "<Integer Name=\"L\"><Value>-4</Value></Integer><StringReg "
           "Name=\"R\"><Address>0</Address>"
           "<pLength>L</pLength><AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>"
        << "RuntimeException"
        << "register length -4 is not valid";
    QTest::newRow("bit beyond the register")
        << "<MaskedIntReg "
           "Name=\"R\"><Address>0</Address><Length>2</Length><AccessMode>RW</AccessMode>"
           "<pPort>Device</pPort><Bit>20</Bit></MaskedIntReg>"
        << "RuntimeException"
        << "bit 20 lies outside the register's 16 bits";
    QTest::newRow("address beyond the port")
        << "<IntReg "
           "Name=\"R\"><Address>-8</Address><Length>4</Length><AccessMode>RW</"
           "AccessMode><pPort>Device</pPort></IntReg>"
        << "AccessException"
        << "Node 'R': reading 4 bytes at 0xFFFFFFFFFFFFFFF8 failed";
}

void tst_GenApiValues::malformedRegisters()
{
    QFETCH(QString, xml);
    QFETCH(QString, type);
    QFETCH(QString, fragment);
    Device device(xml.toStdString());
    CValuePtr r(device.node("R"));
    const QString what = GenApiTest::thrown([&] { r->ToString(); });
    QVERIFY2(what.startsWith(type + QLatin1Char(':')), qPrintable(what));
    QVERIFY2(what.contains(fragment), qPrintable(what));
}

void tst_GenApiValues::valueCopies()
{
    Device device(
        intReg("A", 0) + intReg("B", 4)
        + "<Integer Name=\"Both\"><pValue>A</pValue><pValueCopy>B</pValueCopy></Integer>");
    CIntegerPtr(device.node("Both"))->SetValue(12);
    QCOMPARE(device.word(0), uint32_t(12));
    QCOMPARE(device.word(4), uint32_t(12));
}

void tst_GenApiValues::memoryPort()
{
    CMemoryPort port(10000);
    QCOMPARE(port.Size(), int64_t(10000));
    // A write across a page boundary reads back whole.
    const char text[] = "across the page";
    port.Write(text, 4090, sizeof text);
    char back[sizeof text] = {};
    port.Read(back, 4090, sizeof back);
    QCOMPARE(QByteArray(back), QByteArray(text));
    uint32_t untouched = 0xFFFFFFFF;
    port.Read(&untouched, 8000, 4);
    QCOMPARE(untouched, uint32_t(0));
    VERIFY_THROWS(port.Read(back, 9999, 2), "OutOfRangeException",
                  "2 bytes at 0x270F lie outside the port's 10000 bytes");
    VERIFY_THROWS(port.Write(text, -1, 1), "OutOfRangeException", "outside the port");
    VERIFY_THROWS(port.Read(nullptr, 0, 4), "InvalidArgumentException", "NULL");
    port.SetAccessMode(RO);
    VERIFY_THROWS(port.Write(text, 0, 1), "AccessException", "not writable");
    port.Read(back, 0, 1);
    QCOMPARE(port.ReadCount(), uint64_t(3));
    QCOMPARE(port.WriteCount(), uint64_t(1));
    port.Clear();
    port.Read(back, 4090, sizeof back);
    QCOMPARE(back[0], '\0');
}

void tst_GenApiValues::selectors()
{
    Device device("<Enumeration Name=\"Sel\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry>"
                  "<Value>0</Value><pSelected>X</pSelected><pSelected>Y</pSelected></Enumeration>"
                  "<Integer Name=\"X\"><Value>1</Value></Integer><Integer "
                  "Name=\"Y\"><Value>1</Value></Integer>");
    CSelectorPtr sel(device.node("Sel"));
    QVERIFY(sel->IsSelector());
    FeatureList_t features;
    sel->GetSelectedFeatures(features);
    QCOMPARE(features.size(), size_t(2));
    QCOMPARE(QString::fromUtf8(features[1]->GetNode()->GetName().c_str()), QStringLiteral("Y"));
    CSelectorPtr x(device.node("X"));
    QVERIFY(!x->IsSelector());
    x->GetSelectingFeatures(features);
    QCOMPARE(features.size(), size_t(1));
    QCOMPARE(QString::fromUtf8(features[0]->GetNode()->GetName().c_str()), QStringLiteral("Sel"));
}

void tst_GenApiValues::smartPointers()
{
    Device device("<Integer Name=\"I\"><Value>1</Value></Integer>");
    CFloatPtr wrongType(device.node("I"));
    QVERIFY(!wrongType.IsValid());
    QVERIFY(!wrongType);
    VERIFY_THROWS(wrongType->GetValue(), "LogicalErrorException", "NULL pointer dereferenced");
    CIntegerPtr missing(device.map._GetNode("Missing"));
    VERIFY_THROWS(**missing, "LogicalErrorException", "NULL pointer dereferenced");
    CIntegerPtr right(device.node("I"));
    QVERIFY(right.IsValid());
    CValuePtr asValue(right);
    QCOMPARE(static_cast<IValue *>(asValue), static_cast<IValue *>(static_cast<IInteger *>(right)));
    CNodePtr node(device.node("I"));
    QCOMPARE(node->GetPrincipalInterfaceType(), intfIInteger);
}

void tst_GenApiValues::gcstrings()
{
    GenICam::gcstring a("camera");
    GenICam::gcstring b = a + "-" + GenICam::gcstring("one");
    QCOMPARE(QString::fromUtf8(b.c_str()), QStringLiteral("camera-one"));
    QVERIFY(b == "camera-one");
    QVERIFY("camera-one" == b);
    QVERIFY(a != b);
    QVERIFY(a < b);
    QCOMPARE(b.find('-'), size_t(6));
    QCOMPARE(QString::fromUtf8(b.substr(7).c_str()), QStringLiteral("one"));
    QVERIFY(GenICam::gcstring(static_cast<const char *>(nullptr)).empty());
    const char *asC = a;
    QCOMPARE(qstrcmp(asC, "camera"), 0);
    GenICam::gcstring_vector list;
    list.push_back("x");
    list.push_back("y");
    QCOMPARE(list.size(), size_t(2));
    QCOMPARE(QString::fromUtf8(list[1].c_str()), QStringLiteral("y"));

    const GenICam::OutOfRangeException e("too big", "file.cpp", 12);
    QCOMPARE(QString::fromUtf8(e.GetDescription()), QStringLiteral("too big"));
    QCOMPARE(e.GetSourceLine(), 12u);
    QVERIFY(QString::fromUtf8(e.what()).contains(QStringLiteral("too big")));
    QVERIFY(QString::fromUtf8(e.what()).contains(QStringLiteral("file.cpp")));
}

QTEST_APPLESS_MAIN(tst_GenApiValues)
#include "tst_genapi_values.moc"
