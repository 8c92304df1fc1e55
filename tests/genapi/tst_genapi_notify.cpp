// Callbacks, caching, invalidation, polling, failing ports, cycles and
// threads.
#include "genapitest.h"

#include <atomic>
#include <functional>
#include <future>
#include <stdexcept>
#include <thread>

using namespace GenApi;
using GenApiTest::Device;
using GenApiTest::intReg;

namespace {

// Counts callbacks per node name.
struct Recorder {
    QMap<QString, int> calls;
    void onChange(INode *node) { ++calls[QString::fromUtf8(node->GetName().c_str())]; }
};

// A port that fails on demand: the one fault the memory port cannot make.
class FaultyPort : public CMemoryPort {
public:
    enum Fault { NoFault, Generic, Timeout, Std };
    Fault fault = NoFault;
    void Read(void *buffer, int64_t address, int64_t length) override
    {
        raise();
        CMemoryPort::Read(buffer, address, length);
    }
    void Write(const void *buffer, int64_t address, int64_t length) override
    {
        raise();
        CMemoryPort::Write(buffer, address, length);
    }

private:
    void raise()
    {
        switch (fault) {
        case Generic:
            throw ACCESS_EXCEPTION("the camera is gone");
        case Timeout:
            throw TIMEOUT_EXCEPTION("no answer in 200 ms");
        case Std:
            throw std::runtime_error("socket closed");
        case NoFault:
            break;
        }
    }
};

const std::string widthDevice = intReg("WidthReg", 0) + intReg("OffsetReg", 4)
    + "<Integer Name=\"Width\"><pValue>WidthReg</pValue><pMax>WidthMax</pMax></Integer>"
      "<IntSwissKnife Name=\"WidthMax\"><pVariable Name=\"O\">OffsetReg</pVariable>"
      "<Formula>1000 - O</Formula></IntSwissKnife>"
      "<IntSwissKnife Name=\"Area\"><pVariable Name=\"W\">Width</pVariable>"
      "<Formula>W * 2</Formula></IntSwissKnife>"
      "<Integer Name=\"Unrelated\"><Value>1</Value></Integer>";

} // namespace

class tst_GenApiNotify : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writeCallsBackDependentsOnce();
    void functionCallbacksAndLinkQueries();
    void callbackSeesTheNewValue();
    void insideAndOutsideLock();
    void deregisterStopsCallbacks();
    void deregisterFromInsideACallback();
    void deregisterAfterNodeMapIsGone();
    void throwingCallbackDoesNotStopOthers();
    void cachingModes_data();
    void cachingModes();
    void invalidatorDropsCache();
    void registersAtOneAddressStayInStep();
    void invalidateNode();
    void pollingReportsChangesOnly();
    void pollingReportsFailureOnce();
    void portFailures_data();
    void portFailures();
    void cycleOfReferences_data();
    void cycleOfReferences();
    void cyclicConverterLimits_data();
    void cyclicConverterLimits();
    void longChainWorks();
    void concurrentAccess();
};

void tst_GenApiNotify::writeCallsBackDependentsOnce()
{
    Device device(widthDevice);
    Recorder rec;
    for (const char *name : { "Width", "WidthReg", "Area", "WidthMax", "Unrelated" })
        Register(device.node(name), rec, &Recorder::onChange);
    CIntegerPtr(device.node("Width"))->SetValue(640);
    QCOMPARE(rec.calls.value(QStringLiteral("Width")), 1);
    QCOMPARE(rec.calls.value(QStringLiteral("WidthReg")), 1);
    QCOMPARE(rec.calls.value(QStringLiteral("Area")), 1);
    QCOMPARE(rec.calls.value(QStringLiteral("WidthMax")), 0);
    QCOMPARE(rec.calls.value(QStringLiteral("Unrelated")), 0);

    // A change of the offset changes Width's maximum: Width is called back.
    rec.calls.clear();
    CIntegerPtr(device.node("OffsetReg"))->SetValue(10);
    QCOMPARE(rec.calls.value(QStringLiteral("WidthMax")), 1);
    QCOMPARE(rec.calls.value(QStringLiteral("Width")), 1);
    QCOMPARE(rec.calls.value(QStringLiteral("Area")), 1);
    QCOMPARE(CIntegerPtr(device.node("Width"))->GetMax(), int64_t(990));

    // A failed write calls nobody.
    rec.calls.clear();
    QVERIFY(
        !GenApiTest::thrown([&] { CIntegerPtr(device.node("Width"))->SetValue(5000); }).isEmpty());
    QVERIFY(rec.calls.isEmpty());
}

namespace {
std::atomic<int> functionCalls { 0 };
void countCall(INode *)
{
    ++functionCalls;
}
} // namespace

void tst_GenApiNotify::functionCallbacksAndLinkQueries()
{
    Device device(widthDevice);
    functionCalls = 0;
    const CallbackHandleType handle = Register(device.node("Area"), &countCall);
    QVERIFY(handle != 0);
    CIntegerPtr(device.node("WidthReg"))->SetValue(3);
    QCOMPARE(functionCalls.load(), 1);

    NodeList_t children, parents;
    device.node("Width")->GetChildren(children);
    QCOMPARE(children.size(), size_t(2)); // WidthReg and WidthMax
    device.node("Width")->GetParents(parents);
    QCOMPARE(parents.size(), size_t(1));
    QCOMPARE(QString::fromUtf8(parents[0]->GetName().c_str()), QStringLiteral("Area"));
    device.node("Area")->GetChildren(children, ctTerminalNodes);
    QCOMPARE(children.size(), size_t(2)); // both registers
}

void tst_GenApiNotify::callbackSeesTheNewValue()
{
    Device device(widthDevice);
    int64_t seen = -1;
    INode *area = device.node("Area");
    Register(area, [&seen](INode *node) { seen = CIntegerPtr(node)->GetValue(); });
    CIntegerPtr(device.node("Width"))->SetValue(21);
    QCOMPARE(seen, int64_t(42));
}

void tst_GenApiNotify::insideAndOutsideLock()
{
    Device device(widthDevice);
    CLock &lock = device.map._Ptr->GetLock();
    // Whether another thread can take the lock tells where a callback runs.
    auto lockedElsewhere = [&lock] {
        return std::async(std::launch::async,
                          [&lock] {
                              if (!lock.TryLock())
                                  return true;
                              lock.Unlock();
                              return false;
                          })
            .get();
    };
    int insideLocked = -1, outsideLocked = -1;
    Register(
        device.node("Width"), [&](INode *) { insideLocked = lockedElsewhere(); }, cbPostInsideLock);
    Register(
        device.node("Width"), [&](INode *) { outsideLocked = lockedElsewhere(); },
        cbPostOutsideLock);
    CIntegerPtr(device.node("Width"))->SetValue(8);
    QCOMPARE(insideLocked, 1);
    QCOMPARE(outsideLocked, 0);
}

void tst_GenApiNotify::deregisterStopsCallbacks()
{
    Device device(widthDevice);
    Recorder rec;
    INode *width = device.node("Width");
    const CallbackHandleType h = Register(width, rec, &Recorder::onChange, cbPostOutsideLock);
    CIntegerPtr w(width);
    w->SetValue(1);
    Deregister(h);
    w->SetValue(2);
    QCOMPARE(rec.calls.value(QStringLiteral("Width")), 1);
    Deregister(h); // twice is harmless
    QVERIFY(!width->DeregisterCallback(h));
    QVERIFY(!width->DeregisterCallback(123456789));
}

void tst_GenApiNotify::deregisterFromInsideACallback()
{
    Device device(widthDevice);
    int calls = 0;
    CallbackHandleType h = 0;
    h = Register(device.node("Width"), [&](INode *) {
        ++calls;
        Deregister(h);
    });
    CIntegerPtr w(device.node("Width"));
    w->SetValue(1);
    w->SetValue(2);
    QCOMPARE(calls, 1);
}

void tst_GenApiNotify::deregisterAfterNodeMapIsGone()
{
    CallbackHandleType h = 0;
    {
        Device device(widthDevice);
        h = Register(device.node("Width"), [](INode *) {});
    }
    Deregister(h); // the node map is gone: nothing to do, no crash
}

void tst_GenApiNotify::throwingCallbackDoesNotStopOthers()
{
    Device device(widthDevice);
    int calls = 0;
    Register(device.node("Width"), [](INode *) { throw std::runtime_error("client bug"); });
    Register(device.node("Area"), [&](INode *) { ++calls; });
    CIntegerPtr(device.node("Width"))->SetValue(4);
    QCOMPARE(calls, 1);
    QCOMPARE(CIntegerPtr(device.node("Width"))->GetValue(), int64_t(4));
}

void tst_GenApiNotify::cachingModes_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<int>("readsAfterWrite"); // port reads for three GetValue after a write
    QTest::newRow("WriteThrough") << "WriteThrough" << 0;
    QTest::newRow("WriteAround") << "WriteAround" << 1;
    QTest::newRow("NoCache") << "NoCache" << 3;
}

void tst_GenApiNotify::cachingModes()
{
    QFETCH(QString, mode);
    QFETCH(int, readsAfterWrite);
    Device device(intReg("R", 0, 4, "<Cachable>" + mode.toStdString() + "</Cachable>"));
    CIntegerPtr r(device.node("R"));
    r->SetValue(9);
    const uint64_t before = device.port.ReadCount();
    for (int i = 0; i < 3; ++i)
        QCOMPARE(r->GetValue(), int64_t(9));
    QCOMPARE(int(device.port.ReadCount() - before), readsAfterWrite);
    // IgnoreCache always goes to the device.
    r->GetValue(false, true);
    QCOMPARE(int(device.port.ReadCount() - before), readsAfterWrite + 1);
    QCOMPARE(r->IsValueCacheValid(), mode != QLatin1String("NoCache"));
}

void tst_GenApiNotify::invalidatorDropsCache()
{
    Device device(intReg("Trigger", 0)
                  + intReg("Status", 4, 4, "<pInvalidator>Trigger</pInvalidator>"));
    Recorder rec;
    Register(device.node("Status"), rec, &Recorder::onChange);
    CIntegerPtr status(device.node("Status"));
    QCOMPARE(status->GetValue(), int64_t(0));
    device.setWord(4, 77); // the device changes the status behind our back
    QCOMPARE(status->GetValue(), int64_t(0)); // still cached
    CIntegerPtr(device.node("Trigger"))->SetValue(1);
    QCOMPARE(rec.calls.value(QStringLiteral("Status")), 1);
    QCOMPARE(status->GetValue(), int64_t(77));
}

void tst_GenApiNotify::registersAtOneAddressStayInStep()
{
    Device device(
        "<MaskedIntReg Name=\"A\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
        "<pPort>Device</pPort><LSB>0</LSB><MSB>7</MSB></MaskedIntReg>"
        "<MaskedIntReg Name=\"B\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
        "<pPort>Device</pPort><LSB>8</LSB><MSB>15</MSB></MaskedIntReg>"
        "<Integer Name=\"Bview\"><pValue>B</pValue></Integer>");
    Recorder rec;
    Register(device.node("Bview"), rec, &Recorder::onChange);
    CIntegerPtr a(device.node("A"));
    CIntegerPtr b(device.node("B"));
    QCOMPARE(b->GetValue(), int64_t(0)); // now cached
    a->SetValue(0x11);
    b->SetValue(0x22);
    QCOMPARE(a->GetValue(), int64_t(0x11));
    QCOMPARE(device.word(0), uint32_t(0x2211));
    QCOMPARE(rec.calls.value(QStringLiteral("Bview")), 2);
}

void tst_GenApiNotify::invalidateNode()
{
    Device device(widthDevice);
    Recorder rec;
    Register(device.node("Area"), rec, &Recorder::onChange);
    CIntegerPtr width(device.node("Width"));
    QCOMPARE(width->GetValue(), int64_t(0));
    device.setWord(0, 50);
    QCOMPARE(width->GetValue(), int64_t(0));
    width->GetNode()->InvalidateNode();
    QCOMPARE(width->GetValue(), int64_t(50));
    QCOMPARE(rec.calls.value(QStringLiteral("Area")), 1);
    device.setWord(0, 60);
    device.map._InvalidateNodes();
    QCOMPARE(width->GetValue(), int64_t(60));
}

void tst_GenApiNotify::pollingReportsChangesOnly()
{
    Device device(intReg("Temp", 0, 4, "<Cachable>NoCache</Cachable><PollingTime>100</PollingTime>")
                  + "<Integer Name=\"Temperature\"><pValue>Temp</pValue></Integer>");
    QCOMPARE(device.node("Temp")->GetPollingTime(), int64_t(100));
    Recorder rec;
    Register(device.node("Temperature"), rec, &Recorder::onChange);
    CIntegerPtr temperature(device.node("Temperature"));
    QCOMPARE(temperature->GetValue(), int64_t(0));

    device.setWord(0, 31);
    device.map._Poll(50); // not due yet
    QCOMPARE(rec.calls.value(QStringLiteral("Temperature")), 0);
    device.map._Poll(50);
    QCOMPARE(rec.calls.value(QStringLiteral("Temperature")), 1);
    QCOMPARE(temperature->GetValue(), int64_t(31));
    device.map._Poll(100); // due, but unchanged
    QCOMPARE(rec.calls.value(QStringLiteral("Temperature")), 1);
    device.setWord(0, 32);
    device.map._Poll(250);
    QCOMPARE(rec.calls.value(QStringLiteral("Temperature")), 2);
    // A reader that sees the new value first does not hide the change from
    // the callbacks.
    device.setWord(0, 33);
    QCOMPARE(temperature->GetValue(), int64_t(33));
    device.map._Poll(100);
    QCOMPARE(rec.calls.value(QStringLiteral("Temperature")), 3);
}

void tst_GenApiNotify::pollingReportsFailureOnce()
{
    CNodeMapRef map;
    map._LoadXMLFromString(
        GenApiTest::description(intReg("Temp", 0, 4, "<PollingTime>10</PollingTime>")).c_str());
    FaultyPort port;
    map._Connect(&port);
    Recorder rec;
    Register(map._GetNode("Temp"), rec, &Recorder::onChange);
    CIntegerPtr temp(map._GetNode("Temp"));
    QCOMPARE(temp->GetValue(), int64_t(0));
    port.fault = FaultyPort::Generic;
    map._Poll(10);
    map._Poll(10);
    QCOMPARE(rec.calls.value(QStringLiteral("Temp")), 1); // the failure is news once
    VERIFY_THROWS(temp->GetValue(), "AccessException", "the camera is gone");
    port.fault = FaultyPort::NoFault;
    map._Poll(10);
    QCOMPARE(rec.calls.value(QStringLiteral("Temp")), 2); // and so is the recovery
    QCOMPARE(temp->GetValue(), int64_t(0));
}

void tst_GenApiNotify::portFailures_data()
{
    QTest::addColumn<int>("fault");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("fragment");
    QTest::newRow("GenICam exception") << int(FaultyPort::Generic) << "AccessException"
                                       << "the camera is gone";
    QTest::newRow("time-out keeps its type") << int(FaultyPort::Timeout) << "TimeoutException"
                                             << "no answer in 200 ms";
    QTest::newRow("standard exception") << int(FaultyPort::Std) << "AccessException"
                                        << "socket closed";
}

void tst_GenApiNotify::portFailures()
{
    QFETCH(int, fault);
    QFETCH(QString, type);
    QFETCH(QString, fragment);
    CNodeMapRef map;
    map._LoadXMLFromString(
        GenApiTest::description(intReg("Reg", 0x40)
                                + "<Integer Name=\"Gain\"><pValue>Reg</pValue></Integer>")
            .c_str());
    FaultyPort port;
    map._Connect(&port);
    port.fault = static_cast<FaultyPort::Fault>(fault);
    CIntegerPtr gain(map._GetNode("Gain"));
    for (auto action : { std::function<void()>([&] { gain->GetValue(); }),
                         std::function<void()>([&] { gain->SetValue(1); }) }) {
        const QString what = GenApiTest::thrown(action);
        QVERIFY2(what.startsWith(type + QLatin1Char(':')), qPrintable(what));
        QVERIFY2(what.contains(QStringLiteral("Node 'Reg'")), qPrintable(what));
        QVERIFY2(what.contains(QStringLiteral("at 0x40")), qPrintable(what));
        QVERIFY2(what.contains(fragment), qPrintable(what));
    }
    // Once the port works again, so does the feature.
    port.fault = FaultyPort::NoFault;
    gain->SetValue(3);
    QCOMPARE(gain->GetValue(), int64_t(3));
}

void tst_GenApiNotify::cycleOfReferences_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("feature");
    QTest::newRow("two integers") << "<Integer Name=\"A\"><pValue>B</pValue></Integer>"
                                     "<Integer Name=\"B\"><pValue>A</pValue></Integer>"
                                  << "A";
    QTest::newRow("formula reads itself")
        << "<IntSwissKnife Name=\"A\"><pVariable Name=\"X\">A</pVariable>"
           "<Formula>X + 1</Formula></IntSwissKnife>"
        << "A";
    QTest::newRow("access through availability")
        << "<Integer Name=\"A\"><pValue>B</pValue></Integer>"
           "<Integer Name=\"B\"><Value>1</Value><pIsAvailable>C</pIsAvailable></Integer>"
           "<Integer Name=\"C\"><pValue>A</pValue></Integer>"
        << "A";
    QTest::newRow("converter through its own variable")
        << "<Converter Name=\"A\"><pVariable Name=\"V\">A</pVariable><FormulaTo>FROM</FormulaTo>"
           "<FormulaFrom>TO + V</FormulaFrom><pValue>R</pValue></Converter>"
           "<Integer Name=\"R\"><Value>1</Value></Integer>"
        << "A";
    QTest::newRow("expression refers to itself")
        << "<IntSwissKnife Name=\"A\"><Expression Name=\"E\">E + "
           "1</Expression><Formula>E</Formula></IntSwissKnife>"
        << "A";
}

void tst_GenApiNotify::cyclicConverterLimits_data()
{
    QTest::addColumn<QString>("body");
    QTest::newRow("IntConverter of itself")
        << "<IntConverter Name=\"A\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>"
           "<pValue>A</pValue></IntConverter>";
    QTest::newRow("Converter of itself")
        << "<Converter Name=\"A\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>"
           "<pValue>A</pValue></Converter>";
    QTest::newRow("two IntConverters of each other")
        << "<IntConverter Name=\"A\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>"
           "<pValue>B</pValue></IntConverter>"
           "<IntConverter Name=\"B\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>"
           "<pValue>A</pValue></IntConverter>";
}

// The limits of a converter in a cycle fail with the cycle as fast as its
// value does; they once tolerated the error at every level and tried both
// limits again, doubling the work per level of the cycle (2^100 steps).
void tst_GenApiNotify::cyclicConverterLimits()
{
    QFETCH(QString, body);
    Device device(body.toStdString());
    INode *node = device.node("A");
    const std::function<void()> accessors[] = {
        [node] {
            if (CIntegerPtr(node).IsValid())
                CIntegerPtr(node)->GetMin();
            else
                CFloatPtr(node)->GetMin();
        },
        [node] {
            if (CIntegerPtr(node).IsValid())
                CIntegerPtr(node)->GetMax();
            else
                CFloatPtr(node)->GetMax();
        },
        [node] { CValuePtr(node)->ToString(); },
    };
    for (const auto &accessor : accessors) {
        const QString what = GenApiTest::thrown(accessor);
        QVERIFY2(what.contains(QStringLiteral("cycle")), qPrintable(what));
    }
}

void tst_GenApiNotify::cycleOfReferences()
{
    QFETCH(QString, body);
    QFETCH(QString, feature);
    Device device(body.toStdString());
    CValuePtr value(device.node(feature.toUtf8().constData()));
    const QString what = GenApiTest::thrown([&] {
        value->GetNode()->GetAccessMode();
        value->ToString();
        if (CIntegerPtr(value).IsValid())
            CIntegerPtr(value)->GetMax();
    });
    QVERIFY2(what.startsWith(QStringLiteral("RuntimeException:")), qPrintable(what));
    QVERIFY2(what.contains(QStringLiteral("cycle"))
                 || what.contains(QStringLiteral("refers to itself")),
             qPrintable(what));
    // The node map still works afterwards.
    QVERIFY(device.map._GetNode("A") != nullptr);
    QVERIFY(!GenApiTest::thrown([&] { value->GetNode()->GetDisplayName(); }).size());
}

void tst_GenApiNotify::longChainWorks()
{
    // A realistic chain (each Integer reads the next) stays far below the limit.
    std::string body;
    const int length = 30;
    for (int i = 0; i < length; ++i)
        body += "<Integer Name=\"N" + std::to_string(i) + "\"><pValue>N" + std::to_string(i + 1)
            + "</pValue></Integer>";
    body += "<Integer Name=\"N" + std::to_string(length) + "\"><Value>7</Value></Integer>";
    Device device(body);
    CIntegerPtr first(device.node("N0"));
    QCOMPARE(first->GetValue(), int64_t(7));
    first->SetValue(8);
    QCOMPARE(CIntegerPtr(device.node("N30"))->GetValue(), int64_t(8));
}

void tst_GenApiNotify::concurrentAccess()
{
    Device device(widthDevice + intReg("Temp", 0x20, 4, "<PollingTime>1</PollingTime>"));
    std::atomic<int> callbacks { 0 };
    Register(
        device.node("Area"), [&](INode *) { ++callbacks; }, cbPostOutsideLock);
    std::atomic<bool> failed { false };
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&, t] {
            CIntegerPtr width(device.node("Width"));
            CIntegerPtr area(device.node("Area"));
            for (int i = 0; i < 300; ++i) {
                width->SetValue(t * 100 + i % 100);
                const int64_t a = area->GetValue();
                if (a % 2 != 0 || a < 0 || a > 2000)
                    failed = true;
            }
        });
    }
    threads.emplace_back([&] {
        for (int i = 0; i < 300; ++i) {
            device.map._Poll(1);
            device.setWord(0x20, uint32_t(i));
        }
    });
    for (auto &t : threads)
        t.join();
    QVERIFY(!failed);
    QCOMPARE(callbacks.load(), 900);
}

QTEST_APPLESS_MAIN(tst_GenApiNotify)
#include "tst_genapi_notify.moc"
