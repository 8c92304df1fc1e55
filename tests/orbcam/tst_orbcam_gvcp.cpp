// Our own GigE Vision control protocol code against what the network may
// send: the acknowledge parsers with well-formed, truncated, oversized,
// wrong-status and foreign packets, and the exchanges with a peer of the
// test's own on loopback that answers with such packets.
#include "gvcp.h"

#include <QtTest>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

using namespace OrbCamImpl;

namespace {

void put(QByteArray &b, int at, uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        b[at + i] = static_cast<char>(value >> (8 * (bytes - 1 - i)));
}

QByteArray header(uint16_t status, uint16_t answer, uint16_t length, uint16_t request)
{
    QByteArray b(8, '\0');
    put(b, 0, status, 2);
    put(b, 2, answer, 2);
    put(b, 4, length, 2);
    put(b, 6, request, 2);
    return b;
}

// A DISCOVERY_ACK as a camera sends it.
QByteArray discoveryAnswer(uint16_t request, uint16_t status = 0)
{
    QByteArray b = header(status, 0x0003, 0xF8, request);
    b.append(QByteArray(0xF8, '\0'));
    put(b, 8 + 0x0A, 0x0011, 2);
    put(b, 8 + 0x0C, 0x22334455, 4);
    put(b, 8 + 0x24, 0xC0A8010B, 4);
    put(b, 8 + 0x34, 0xFFFFFF00, 4);
    put(b, 8 + 0x44, 0xC0A80101, 4);
    auto text = [&b](int at, const QByteArray &t) { b.replace(8 + at, t.size(), t); };
    text(0x48, "Vendor");
    text(0x68, "Model");
    text(0x88, "1.2.3");
    text(0xA8, "Info");
    text(0xD8, "SERIAL01");
    // A user name that fills its field, with no NUL after it.
    text(0xE8, "0123456789ABCDEF");
    return b;
}

QByteArray readMemAnswer(uint16_t request, uint32_t address, const QByteArray &data,
                         uint16_t status = 0)
{
    QByteArray b = header(status, 0x0085, status == 0 ? uint16_t(4 + data.size()) : 0, request);
    if (status == 0) {
        b.append(QByteArray(4, '\0'));
        put(b, 8, address, 4);
        b.append(data);
    }
    return b;
}

QByteArray readRegAnswer(uint16_t request, uint32_t value, uint16_t status = 0)
{
    QByteArray b = header(status, 0x0081, status == 0 ? 4 : 0, request);
    if (status == 0) {
        b.append(QByteArray(4, '\0'));
        put(b, 8, value, 4);
    }
    return b;
}

const uint8_t *bytes(const QByteArray &b)
{
    return reinterpret_cast<const uint8_t *>(b.constData());
}

// A GVCP peer on 127.0.0.1 at a port of its own: to each command it answers
// with what `answer` makes of the command and its request id (nothing, one
// packet or several).
class Peer {
public:
    using Answer = std::function<QList<QByteArray>(uint16_t request, const QByteArray &command)>;
    explicit Peer(Answer answer)
        : m_answer(std::move(answer))
    {
        m_socket = socket(AF_INET, SOCK_DGRAM, 0);
        sockaddr_in local {};
        local.sin_family = AF_INET;
        local.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(m_socket, reinterpret_cast<sockaddr *>(&local), sizeof local);
        socklen_t size = sizeof local;
        getsockname(m_socket, reinterpret_cast<sockaddr *>(&local), &size);
        m_port = ntohs(local.sin_port);
        m_thread = std::thread([this] { serve(); });
    }
    ~Peer()
    {
        m_stop = true;
        m_thread.join();
        close(m_socket);
    }
    uint16_t port() const { return m_port; }
    int commands() const { return m_commands; }

private:
    void serve()
    {
        while (!m_stop) {
            pollfd readable { m_socket, POLLIN, 0 };
            if (poll(&readable, 1, 20) <= 0)
                continue;
            char buffer[600];
            sockaddr_in from {};
            socklen_t fromSize = sizeof from;
            const ssize_t got = recvfrom(m_socket, buffer, sizeof buffer, 0,
                                         reinterpret_cast<sockaddr *>(&from), &fromSize);
            if (got < 8)
                continue;
            ++m_commands;
            const uint16_t request = static_cast<uint16_t>((static_cast<uint8_t>(buffer[6]) << 8)
                                                           | static_cast<uint8_t>(buffer[7]));
            for (const QByteArray &packet :
                 m_answer(request, QByteArray(buffer, static_cast<int>(got))))
                sendto(m_socket, packet.constData(), static_cast<size_t>(packet.size()), 0,
                       reinterpret_cast<sockaddr *>(&from), fromSize);
        }
    }

    Answer m_answer;
    int m_socket = -1;
    uint16_t m_port = 0;
    std::atomic<bool> m_stop { false };
    std::atomic<int> m_commands { 0 };
    std::thread m_thread;
};

} // namespace

class tst_OrbCamGvcp : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void commands();
    void discoveryAck_data();
    void discoveryAck();
    void readRegisterAck_data();
    void readRegisterAck();
    void forceIpAck_data();
    void forceIpAck();
    void readRegisterFromAPeer_data();
    void readRegisterFromAPeer();
    void readMemoryAck_data();
    void readMemoryAck();
    void readMemoryFromAPeer_data();
    void readMemoryFromAPeer();
};

// The commands, byte for byte.
void tst_OrbCamGvcp::commands()
{
    const auto discovery = discoveryCommand(0x1234);
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(discovery.data()), 8),
             QByteArray::fromHex("4211000200001234"));
    const auto read = readRegisterCommand(0x0A00, 7);
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(read.data()), 12),
             QByteArray::fromHex("42010080000400070000"
                                 "0A00"));
}

void tst_OrbCamGvcp::discoveryAck_data()
{
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<bool>("accepted");
    const QByteArray good = discoveryAnswer(9);
    QTest::newRow("well-formed") << good << true;
    QTest::newRow("more bytes than the length says") << good + QByteArray(100, 'x') << true;
    QTest::newRow("truncated payload") << good.left(8 + 200) << false;
    QTest::newRow("header only") << good.left(8) << false;
    QTest::newRow("shorter than a header") << good.left(5) << false;
    QTest::newRow("empty") << QByteArray() << false;
    QByteArray longer = good;
    put(longer, 4, 0x0200, 2);
    QTest::newRow("length beyond the packet") << longer << false;
    QByteArray shortLength = good;
    put(shortLength, 4, 0x0010, 2);
    QTest::newRow("length below a discovery answer") << shortLength << false;
    QTest::newRow("error status") << discoveryAnswer(9, 0x8001) << false;
    QTest::newRow("another request") << discoveryAnswer(10) << false;
    QByteArray other = good;
    put(other, 2, 0x0005, 2);
    QTest::newRow("another answer") << other << false;
    QTest::newRow("noise") << QByteArray(300, '\xff') << false;
}

void tst_OrbCamGvcp::discoveryAck()
{
    QFETCH(QByteArray, packet);
    QFETCH(bool, accepted);
    GvcpCamera camera;
    QCOMPARE(parseDiscoveryAck(bytes(packet), static_cast<size_t>(packet.size()), 9, &camera),
             accepted);
    if (!accepted)
        return;
    QCOMPARE(camera.mac, uint64_t(0x001122334455));
    QCOMPARE(camera.ip, 0xC0A8010Bu);
    QCOMPARE(camera.mask, 0xFFFFFF00u);
    QCOMPARE(camera.gateway, 0xC0A80101u);
    QCOMPARE(camera.vendor, std::string("Vendor"));
    QCOMPARE(camera.model, std::string("Model"));
    QCOMPARE(camera.version, std::string("1.2.3"));
    QCOMPARE(camera.manufacturerInfo, std::string("Info"));
    QCOMPARE(camera.serial, std::string("SERIAL01"));
    // A field without a NUL ends with the field, not in the next one.
    QCOMPARE(camera.userName, std::string("0123456789ABCDEF"));
}

void tst_OrbCamGvcp::readRegisterAck_data()
{
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<int>("result");
    QTest::addColumn<uint32_t>("value");
    QTest::newRow("value") << readRegAnswer(3, 0x2) << 0 << 0x2u;
    QTest::newRow("refused") << readRegAnswer(3, 0, 0x8006) << 0x8006 << 0u;
    QTest::newRow("truncated value") << readRegAnswer(3, 0x2).left(10) << -1 << 0u;
    QByteArray noValue = header(0, 0x0081, 0, 3);
    QTest::newRow("no value") << noValue << -1 << 0u;
    QTest::newRow("another request") << readRegAnswer(4, 0x2) << -1 << 0u;
    QTest::newRow("a discovery answer") << discoveryAnswer(3) << -1 << 0u;
    QTest::newRow("empty") << QByteArray() << -1 << 0u;
}

void tst_OrbCamGvcp::readRegisterAck()
{
    QFETCH(QByteArray, packet);
    QFETCH(int, result);
    QFETCH(uint32_t, value);
    uint32_t read = 0;
    QCOMPARE(parseReadRegisterAck(bytes(packet), static_cast<size_t>(packet.size()), 3, &read),
             result);
    QCOMPARE(read, value);
}

void tst_OrbCamGvcp::forceIpAck_data()
{
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<int>("status");
    QTest::newRow("done") << header(0, 0x0005, 0, 5) << 0;
    QTest::newRow("refused") << header(0x8002, 0x0005, 0, 5) << 0x8002;
    QTest::newRow("another request") << header(0, 0x0005, 0, 6) << -1;
    QTest::newRow("truncated") << header(0, 0x0005, 0, 5).left(7) << -1;
    QTest::newRow("another answer") << header(0, 0x0081, 0, 5) << -1;
}

void tst_OrbCamGvcp::forceIpAck()
{
    QFETCH(QByteArray, packet);
    QFETCH(int, status);
    QCOMPARE(forceIpAckStatus(bytes(packet), static_cast<size_t>(packet.size()), 5), status);
}

void tst_OrbCamGvcp::readRegisterFromAPeer_data()
{
    QTest::addColumn<QString>("peer");
    QTest::addColumn<int>("result");
    QTest::addColumn<uint32_t>("value");
    QTest::newRow("answers") << "answers" << int(OrbCamOk) << 0x2u;
    QTest::newRow("garbage, then the answer") << "garbage first" << int(OrbCamOk) << 0x2u;
    QTest::newRow("refuses") << "refuses" << int(OrbCamErrInvalidState) << 0u;
    QTest::newRow("answers another request only")
        << "other request" << int(OrbCamErrNoDevice) << 0u;
    QTest::newRow("truncated answers only") << "truncated" << int(OrbCamErrNoDevice) << 0u;
    QTest::newRow("silent") << "silent" << int(OrbCamErrNoDevice) << 0u;
}

// Whatever the peer sends, the exchange ends in time with the right verdict,
// and only a well-formed answer to our request counts.
void tst_OrbCamGvcp::readRegisterFromAPeer()
{
    QFETCH(QString, peer);
    QFETCH(int, result);
    QFETCH(uint32_t, value);
    Peer answering([peer](uint16_t request, const QByteArray &) -> QList<QByteArray> {
        if (peer == QLatin1String("answers"))
            return { readRegAnswer(request, 0x2) };
        if (peer == QLatin1String("garbage first"))
            return { QByteArray(1000, '\x42'), readRegAnswer(request, 0x2).left(9),
                     discoveryAnswer(request), readRegAnswer(request, 0x2) };
        if (peer == QLatin1String("refuses"))
            return { readRegAnswer(request, 0, 0x8006) };
        if (peer == QLatin1String("other request"))
            return { readRegAnswer(static_cast<uint16_t>(request + 1), 0x2) };
        if (peer == QLatin1String("truncated"))
            return { readRegAnswer(request, 0x2).left(10) };
        return {};
    });
    uint32_t read = 0;
    QElapsedTimer took;
    took.start();
    QCOMPARE(int(readRegister(INADDR_LOOPBACK, 0x0A00, &read, 300, answering.port())), result);
    QCOMPARE(read, value);
    QVERIFY(took.elapsed() < 2000);
    QVERIFY(answering.commands() >= 1);
}

void tst_OrbCamGvcp::readMemoryAck_data()
{
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<int>("result");
    QTest::addColumn<QByteArray>("data");
    const QByteArray four("\x01\x02\x03\x04", 4);
    QTest::newRow("bytes") << readMemAnswer(3, 0x100, four) << 0 << four;
    QTest::newRow("more bytes than asked") << readMemAnswer(3, 0x100, four + four) << 0 << four;
    QTest::newRow("refused") << readMemAnswer(3, 0x100, QByteArray(), 0x8003) << 0x8003
                             << QByteArray(4, '\0');
    QTest::newRow("too few bytes")
        << readMemAnswer(3, 0x100, four.left(2)) << -1 << QByteArray(4, '\0');
    QTest::newRow("truncated") << readMemAnswer(3, 0x100, four).left(14) << -1
                               << QByteArray(4, '\0');
    QTest::newRow("another address") << readMemAnswer(3, 0x104, four) << -1 << QByteArray(4, '\0');
    QTest::newRow("another request") << readMemAnswer(4, 0x100, four) << -1 << QByteArray(4, '\0');
    QTest::newRow("a register answer") << readRegAnswer(3, 0x01020304) << -1 << QByteArray(4, '\0');
}

void tst_OrbCamGvcp::readMemoryAck()
{
    QFETCH(QByteArray, packet);
    QFETCH(int, result);
    QFETCH(QByteArray, data);
    QByteArray read(4, '\0');
    QCOMPARE(parseReadMemoryAck(bytes(packet), static_cast<size_t>(packet.size()), 3, 0x100,
                                reinterpret_cast<uint8_t *>(read.data()), 4),
             result);
    QCOMPARE(read, data);
}

void tst_OrbCamGvcp::readMemoryFromAPeer_data()
{
    QTest::addColumn<QString>("peer");
    QTest::addColumn<uint>("address");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("result");
    QTest::newRow("one word") << "answers" << 0x100u << 4 << int(OrbCamOk);
    QTest::newRow("unaligned, odd length") << "answers" << 0x103u << 7 << int(OrbCamOk);
    QTest::newRow("several pieces") << "answers" << 0x2u << 1500 << int(OrbCamOk);
    QTest::newRow("garbage, then the answer") << "garbage first" << 0x10u << 16 << int(OrbCamOk);
    QTest::newRow("refuses") << "refuses" << 0x100u << 4 << int(OrbCamErrInvalidState);
    QTest::newRow("answers another address")
        << "other address" << 0x100u << 4 << int(OrbCamErrNoDevice);
    QTest::newRow("silent") << "silent" << 0x100u << 4 << int(OrbCamErrNoDevice);
}

// The camera's memory, however it is asked for, comes back byte for byte;
// a refusal says so, and anything else ends in time as no answer.
void tst_OrbCamGvcp::readMemoryFromAPeer()
{
    QFETCH(QString, peer);
    QFETCH(uint, address);
    QFETCH(int, length);
    QFETCH(int, result);
    QByteArray memory(2048, '\0');
    for (int i = 0; i < memory.size(); ++i)
        memory[i] = static_cast<char>(i * 7 + 3);
    Peer answering(
        [peer, memory](uint16_t request, const QByteArray &command) -> QList<QByteArray> {
            if (command.size() < 16 || static_cast<uint8_t>(command[3]) != 0x84)
                return {};
            auto get = [&command](int at, int size) {
                uint32_t v = 0;
                for (int i = 0; i < size; ++i)
                    v = (v << 8) | static_cast<uint8_t>(command[at + i]);
                return v;
            };
            const uint32_t at = get(8, 4);
            const int count = static_cast<int>(get(14, 2));
            if (at % 4 != 0 || count % 4 != 0 || count > 536)
                return { readMemAnswer(request, at, QByteArray(), 0x8002) };
            const QByteArray data = memory.mid(static_cast<int>(at), count);
            if (peer == QLatin1String("answers"))
                return { readMemAnswer(request, at, data) };
            if (peer == QLatin1String("garbage first"))
                return { QByteArray(1000, '\x42'), readMemAnswer(request, at, data).left(11),
                         readRegAnswer(request, 1), readMemAnswer(request, at, data) };
            if (peer == QLatin1String("refuses"))
                return { readMemAnswer(request, at, QByteArray(), 0x8003) };
            if (peer == QLatin1String("other address"))
                return { readMemAnswer(request, at + 4, data) };
            return {};
        });
    QByteArray read(length, '\0');
    uint16_t refusal = 0;
    QCOMPARE(int(readMemory(INADDR_LOOPBACK, address, read.data(), static_cast<size_t>(length), 300,
                            &refusal, nullptr, answering.port())),
             result);
    if (result == OrbCamOk)
        QCOMPARE(read, memory.mid(static_cast<int>(address), length));
    if (result == OrbCamErrInvalidState)
        QCOMPARE(refusal, uint16_t(0x8003));
    QVERIFY(answering.commands() >= 1);
}

QTEST_GUILESS_MAIN(tst_OrbCamGvcp)
#include "tst_orbcam_gvcp.moc"
