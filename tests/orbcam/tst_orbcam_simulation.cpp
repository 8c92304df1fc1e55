// The simulated cameras' behaviour: loss and return with events, failing
// features, the clock-driven temperature, the trigger counter, frame timing,
// and the smaller monochrome model.
#include "orbcamtest.h"

#include <GenApi/GenApi.h>

#include <thread>

using namespace OrbCamTest;

namespace {

struct EventLog {
    std::mutex mutex;
    std::vector<uint32_t> events;
    std::vector<std::thread::id> threads;
    static void record(const void *data, size_t size, void *context)
    {
        auto *log = static_cast<EventLog *>(context);
        std::lock_guard<std::mutex> lock(log->mutex);
        log->events.push_back(size == sizeof(uint32_t) ? *static_cast<const uint32_t *>(data) : 0);
        log->threads.push_back(std::this_thread::get_id());
    }
    size_t size()
    {
        std::lock_guard<std::mutex> lock(mutex);
        return events.size();
    }
};

} // namespace

class tst_OrbCamSimulation : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void lossAndReturn();
    void answerTimeoutSettings_data();
    void answerTimeoutSettings();
    void eventsStopAfterUnregistering();
    void removalIsALoss();
    void failingFeature_data();
    void failingFeature();
    void temperatureFollowsTheClock();
    void triggerCounter();
    void frameTimingFollowsTheSelectedFrame();
    void monochromeModel();
};

void tst_OrbCamSimulation::cleanup()
{
    QCOMPARE(OrbCamSim::Reset(), OrbCamOk);
}

void tst_OrbCamSimulation::lossAndReturn()
{
    SystemRef sys;
    DeviceRef device(sys.camera("GEV0/C2-1001"));
    EventLog log;
    QCOMPARE(device.device->RegisterEventCallback(OrbCam::EventDeviceLost, &EventLog::record, &log),
             OrbCamOk);
    QCOMPARE(
        device.device->RegisterEventCallback(OrbCam::EventDeviceReturned, &EventLog::record, &log),
        OrbCamOk);
    QCOMPARE(device.device->RegisterEventCallback(OrbCam::EventDeviceLost, nullptr, &log),
             OrbCamErrInvalidArgument);
    OrbGenParam::Int *black = device.params()->GetInt("Frame_BlackLevel");
    QCOMPARE(black->SetValue(21), OrbCamOk);

    QCOMPARE(OrbCamSim::LoseCamera("GEV0/C2-1001"), OrbCamOk);
    QTRY_COMPARE(log.size(), size_t(1));
    QCOMPARE(log.events[0], uint32_t(OrbCam::EventDeviceLost));
    QVERIFY(log.threads[0] != std::this_thread::get_id()); // from a thread of the API
    QVERIFY(!device.device->IsConnected());
    OrbCamErr err = OrbCamOk;
    black->GetValue(&err);
    QCOMPARE(err, OrbCamErrNoDevice);
    QCOMPARE(black->SetValue(22), OrbCamErrNoDevice);
    QVERIFY(!black->IsReadable());
    // GenApi users see the reason, too.
    GenApi::CIntegerPtr node(device.params()->GetNodeMap()->GetNode("Frame_BlackLevel"));
    try {
        node->GetValue(false, true);
        QFAIL("a lost camera answered");
    } catch (const GenICam::AccessException &e) {
        QVERIFY2(QString::fromUtf8(e.GetDescription())
                     .contains(QStringLiteral("camera GEV0/C2-1001 does not answer")),
                 e.GetDescription());
    }
    QVERIFY(sys.cameras("GEV0").size() == 1); // not discovered while lost
    QCOMPARE(OrbCamSim::LoseCamera("GEV0/C2-1001"), OrbCamOk); // already lost: no second event

    QCOMPARE(OrbCamSim::RegainCamera("GEV0/C2-1001"), OrbCamOk);
    QTRY_COMPARE(log.size(), size_t(2));
    QCOMPARE(log.events[1], uint32_t(OrbCam::EventDeviceReturned));
    QVERIFY(device.device->IsConnected());
    QCOMPARE(black->GetValue(), int64_t(21)); // the camera kept its state
    QCOMPARE(black->SetValue(22), OrbCamOk);
    QCOMPARE(log.size(), size_t(2));
}

void tst_OrbCamSimulation::eventsStopAfterUnregistering()
{
    SystemRef sys;
    DeviceRef device(sys.camera("U3V0/M1-2001"));
    EventLog log;
    device.device->RegisterEventCallback(OrbCam::EventDeviceLost, &EventLog::record, &log);
    QCOMPARE(
        device.device->UnregisterEventCallback(OrbCam::EventDeviceLost, &EventLog::record, &log),
        OrbCamOk);
    QCOMPARE(
        device.device->UnregisterEventCallback(OrbCam::EventDeviceLost, &EventLog::record, &log),
        OrbCamErrInvalidArgument);
    OrbCamSim::LoseCamera("U3V0/M1-2001");
    // A second device's callback proves the event was delivered.
    DeviceRef other(sys.camera("GEV0/C2-1001"));
    EventLog otherLog;
    other.device->RegisterEventCallback(OrbCam::EventDeviceLost, &EventLog::record, &otherLog);
    OrbCamSim::LoseCamera("GEV0/C2-1001");
    QTRY_COMPARE(otherLog.size(), size_t(1));
    QCOMPARE(log.size(), size_t(0));
}

void tst_OrbCamSimulation::removalIsALoss()
{
    SystemRef sys;
    DeviceRef device(sys.camera("GEV0/C2-1001"));
    EventLog log;
    device.device->RegisterEventCallback(OrbCam::EventDeviceLost, &EventLog::record, &log);
    QCOMPARE(OrbCamSim::RemoveCamera("GEV0/C2-1001"), OrbCamOk);
    QTRY_COMPARE(log.size(), size_t(1));
    QCOMPARE(OrbCamSim::RegainCamera("GEV0/C2-1001"), OrbCamErrNoDevice);
    OrbCamErr err = OrbCamOk;
    device.params()->GetInt("Width")->GetValue(&err);
    QCOMPARE(err, OrbCamErrNoDevice);
}

void tst_OrbCamSimulation::failingFeature_data()
{
    QTest::addColumn<uint>("mode");
    QTest::addColumn<bool>("readFails");
    QTest::addColumn<bool>("writeFails");
    QTest::newRow("read") << uint(OrbCamSim::FailRead) << true << false;
    QTest::newRow("write") << uint(OrbCamSim::FailWrite) << false << true;
    QTest::newRow("both") << uint(OrbCamSim::FailReadWrite) << true << true;
}

void tst_OrbCamSimulation::failingFeature()
{
    QFETCH(uint, mode);
    QFETCH(bool, readFails);
    QFETCH(bool, writeFails);
    SystemRef sys;
    DeviceRef device(sys.camera("GEV0/C2-1001"));
    OrbGenParam::Int *red = device.params()->GetInt("RedCoefficient");
    QCOMPARE(OrbCamSim::FailFeature("GEV0/C2-1001", "RedCoefficient", mode), OrbCamOk);
    device.params()->GetNodeMap()->InvalidateNodes();
    OrbCamErr err = OrbCamOk;
    red->GetValue(&err);
    QCOMPARE(err, readFails ? OrbCamErrGenICamAccess : OrbCamOk);
    QCOMPARE(red->SetValue(300) != OrbCamOk, writeFails);
    // Other features are untouched.
    QCOMPARE(device.params()->GetInt("GreenCoefficient")->SetValue(300), OrbCamOk);
    QCOMPARE(OrbCamSim::ClearFailures("GEV0/C2-1001"), OrbCamOk);
    QCOMPARE(red->SetValue(301), OrbCamOk);
    QCOMPARE(red->GetValue(), int64_t(301));
    QCOMPARE(OrbCamSim::FailFeature("GEV0/C2-1001", "NoSuchFeature"), OrbCamErrGenICamUnknownParam);
    QCOMPARE(OrbCamSim::FailFeature("GEV0/C2-1001", "RedCoefficient", 0), OrbCamErrInvalidArgument);
}

void tst_OrbCamSimulation::temperatureFollowsTheClock()
{
    SystemRef sys;
    DeviceRef device(sys.camera("GEV0/C2-1001"));
    GenApi::INodeMap *map = device.params()->GetNodeMap();
    QCOMPARE(map->GetNode("CurrentTemperatureReg")->GetPollingTime(), int64_t(1000));
    OrbGenParam::Int *temperature = device.params()->GetInt("CurrentTemperature");
    CountingSink sink;
    temperature->RegisterEventSink(&sink);
    OrbCamSim::SetClock(0);
    QCOMPARE(temperature->GetValue(), int64_t(42)); // the base temperature
    map->Poll(1000);
    QCOMPARE(sink.calls.load(), 0); // the clock stands still: no change
    OrbCamSim::AdvanceClock(225000); // a quarter of the drift period
    QCOMPARE(OrbCamSim::Clock(), int64_t(225000));
    map->Poll(1000);
    QCOMPARE(sink.calls.load(), 1);
    QCOMPARE(temperature->GetValue(), int64_t(45));
    temperature->UnregisterEventSink(&sink);
}

void tst_OrbCamSimulation::triggerCounter()
{
    SystemRef sys;
    DeviceRef device(sys.camera("GEV0/C2-1001"));
    OrbGenParam::Command *trigger = device.params()->GetCommand("TriggerSoftware");
    OrbGenParam::Int *counter = device.params()->GetInt("TriggerCounter");
    const int64_t before = counter->GetValue();
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(trigger->Execute(), OrbCamOk);
        QVERIFY(trigger->IsDone());
    }
    QCOMPARE(counter->GetValue(), before + 3);
    QCOMPARE(counter->SetValue(0), OrbCamErrGenICamAccess);
}

void tst_OrbCamSimulation::frameTimingFollowsTheSelectedFrame()
{
    SystemRef sys;
    DeviceRef device(sys.camera("GEV0/C2-1001"));
    OrbGenParam::Array *p = device.params();
    const int64_t clock = p->GetInt("PixelClock")->GetValue();
    QCOMPARE(clock, int64_t(120));
    auto exposure = [&] {
        return (p->GetInt("Frame_ExposureLines")->GetValue()
                    * p->GetInt("Frame_LineTime")->GetValue()
                + p->GetInt("Frame_ExposureClocks")->GetValue())
            / clock;
    };
    QCOMPARE(p->GetInt("CurrentExposureTime")->GetValue(), exposure());
    QCOMPARE(p->GetInt("CurrentExposureTime")->GetValue(), int64_t(600 * 2000 / 120));
    QCOMPARE(p->GetEnum("FrameAB_Selector")->SetValueByName("FrameB"), OrbCamOk);
    QCOMPARE(p->GetInt("CurrentExposureTime")->GetValue(), int64_t((80 * 1500 + 750) / 120));
    QCOMPARE(p->GetInt("Frame_WidthActual")->GetValue(), int64_t(640));
    QCOMPARE(p->GetInt("Width")->GetValue(), int64_t(640));
    // Readout of 400 + 20 lines is longer than the exposure here.
    QCOMPARE(p->GetInt("CurrentFrameTime")->GetValue(), int64_t(420 * 1500 / 120));
    QCOMPARE(p->GetBoolean("Frame_FixedFramePeriodEnable")->SetValue(true), OrbCamOk);
    QCOMPARE(p->GetInt("CurrentFrameTime")->GetValue(), int64_t(1250 * 1500 / 120));
    // Frame A kept its own set-up.
    QCOMPARE(p->GetEnum("FrameAB_Selector")->SetValueByName("FrameA"), OrbCamOk);
    QCOMPARE(p->GetInt("Frame_Width")->GetValue(), int64_t(1920));
    QVERIFY(!p->GetBoolean("Frame_FixedFramePeriodEnable")->GetValue());
    GenApi::CSelectorPtr selector(p->GetNodeMap()->GetNode("FrameAB_Selector"));
    GenApi::FeatureList_t selected;
    selector->GetSelectedFeatures(selected);
    QCOMPARE(selected.size(), size_t(27));
}

void tst_OrbCamSimulation::monochromeModel()
{
    SystemRef sys;
    DeviceRef device(sys.camera("U3V0/M1-2001"));
    OrbGenParam::Array *p = device.params();
    // The windows' missing-feature paths: no frame A/B, no colour.
    QVERIFY(!p->GetParam("FrameAB_Selector"));
    QVERIFY(!p->GetParam("FrameMode"));
    QVERIFY(!p->GetParam("RedCoefficient"));
    QVERIFY(!p->GetParam("BalanceWhiteAuto"));
    QCOMPARE(p->GetEnum("SensorType")->GetValueName(), "CMOSMono");
    QCOMPARE(p->GetString("DeviceSerialNumber")->GetValue(), std::string("M1-2001"));
    OrbGenParam::Float *gain = p->GetFloat("Gain");
    QVERIFY(gain);
    QCOMPARE(gain->GetValue(), 2.5);
    QCOMPARE(gain->GetMin(), 0.0);
    QCOMPARE(gain->GetMax(), 24.0);
    QCOMPARE(gain->GetInc(), 0.1);
    QCOMPARE(gain->SetValue(12.5), OrbCamOk);
    QCOMPARE(gain->GetValue(), 12.5);
    QCOMPARE(gain->SetValue(30), OrbCamErrGenICamOutOfRange);
    QCOMPARE(p->GetInt("Width")->GetValue(), int64_t(1280));
    QCOMPARE(p->GetInt("CurrentExposureTime")->GetValue(), int64_t(5000));
    QCOMPARE(p->GetInt("CurrentFrameTime")->GetValue(), int64_t(1024 * 8 + 100));
}

void tst_OrbCamSimulation::answerTimeoutSettings_data()
{
    QTest::addColumn<uint>("timeoutMs");
    QTest::addColumn<uint>("misses");
    QTest::addColumn<int>("result");
    QTest::newRow("default") << 400u << 2u << int(OrbCamOk);
    QTest::newRow("shortest") << 10u << 1u << int(OrbCamOk);
    QTest::newRow("longest") << 10000u << 100u << int(OrbCamOk);
    QTest::newRow("no time") << 0u << 2u << int(OrbCamErrInvalidArgument);
    QTest::newRow("too long") << 10001u << 2u << int(OrbCamErrInvalidArgument);
    QTest::newRow("no misses") << 400u << 0u << int(OrbCamErrInvalidArgument);
    QTest::newRow("too many misses") << 400u << 101u << int(OrbCamErrInvalidArgument);
}

// A refused setting leaves the one before.
void tst_OrbCamSimulation::answerTimeoutSettings()
{
    QFETCH(uint, timeoutMs);
    QFETCH(uint, misses);
    QFETCH(int, result);
    QCOMPARE(OrbCam_SetAnswerTimeout(250, 3), OrbCamOk);
    QCOMPARE(int(OrbCam_SetAnswerTimeout(timeoutMs, misses)), result);
    uint32_t ms = 0, count = 0;
    OrbCam_GetAnswerTimeout(&ms, &count);
    QCOMPARE(ms, result == OrbCamOk ? timeoutMs : 250u);
    QCOMPARE(count, result == OrbCamOk ? misses : 3u);
    QCOMPARE(OrbCam_SetAnswerTimeout(400, 2), OrbCamOk);
}

QTEST_GUILESS_MAIN(tst_OrbCamSimulation)
#include "tst_orbcam_simulation.moc"
