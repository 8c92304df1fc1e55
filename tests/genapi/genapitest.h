// Helpers for the interpreter's tests: descriptions written inline and a
// node map over zero-filled memory.
#ifndef GENAPITEST_H
#define GENAPITEST_H

#include <GenApi/GenApi.h>

#include <QString>
#include <QtTest>

#include <functional>
#include <memory>
#include <string>

namespace GenApiTest {

// A complete description around the given node elements, with a port
// named "Device".
inline std::string description(const std::string &body)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<RegisterDescription ModelName=\"TestModel\" VendorName=\"TestVendor\" "
           "StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
           "SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
           "SubMinorVersion=\"0\" ProductGuid=\"0\" VersionGuid=\"0\" "
           "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n"
        + body + "\n<Port Name=\"Device\"/>\n</RegisterDescription>\n";
}

// An IntReg on the Device port.
inline std::string intReg(const std::string &name, int address, int length = 4,
                          const std::string &extra = std::string())
{
    return "<IntReg Name=\"" + name + "\"><Address>" + std::to_string(address)
        + "</Address><Length>" + std::to_string(length)
        + "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
          "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess>"
        + extra + "</IntReg>";
}

inline std::string xmlEscape(const std::string &text)
{
    std::string out;
    for (char c : text) {
        switch (c) {
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '&':
            out += "&amp;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

// A loaded description whose Device port is zero-filled memory.
struct Device {
    explicit Device(const std::string &body, bool connect = true)
    {
        map._LoadXMLFromString(description(body).c_str());
        if (connect)
            map._Connect(&port, "Device");
    }
    GenApi::INode *node(const char *name) const
    {
        GenApi::INode *n = map._GetNode(name);
        if (!n)
            qFatal("test description has no node %s", name);
        return n;
    }
    uint32_t word(int64_t address)
    {
        uint32_t value = 0;
        port.Read(&value, address, 4);
        return value;
    }
    void setWord(int64_t address, uint32_t value) { port.Write(&value, address, 4); }

    GenApi::CNodeMapRef map;
    GenApi::CMemoryPort port;
};

// The exception thrown by f, as "Type: description", or "" when none.
inline QString thrown(const std::function<void()> &f)
{
    try {
        f();
    } catch (const GenICam::GenericException &e) {
        return QString::fromUtf8(e.GetExceptionType()) + QStringLiteral(": ")
            + QString::fromUtf8(e.GetDescription());
    }
    return QString();
}

} // namespace GenApiTest

#define VERIFY_THROWS(expression, type, fragment)                                                  \
    do {                                                                                           \
        const QString _what = GenApiTest::thrown([&] { (void)(expression); });                     \
        QVERIFY2(_what.startsWith(QStringLiteral(type ":")),                                       \
                 qPrintable(QStringLiteral("expected " type ", got '%1'").arg(_what)));            \
        QVERIFY2(_what.contains(QString::fromUtf8(fragment)),                                      \
                 qPrintable(QStringLiteral("'%1' does not mention '%2'")                           \
                                .arg(_what, QString::fromUtf8(fragment))));                        \
    } while (false)

#endif
