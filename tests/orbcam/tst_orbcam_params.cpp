// The parameter model: kinds, values, error codes and listeners, on the
// simulated colour camera.
#include "orbcamtest.h"

#include <GenApi/GenApi.h>

#include <thread>

using namespace OrbCamTest;

class tst_OrbCamParams : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void kindsByName_data();
    void kindsByName();
    void integers();
    void writeErrors_data();
    void writeErrors();
    void enumerations();
    void booleansCommandsStrings();
    void nodeMapIsTheArrays();
    void listenerCalledOncePerChange();
    void listenerHearsDependentFeatures();
    void listenerNeverCalledAfterUnregistering();
    void listenerRunsOnTheWritingThread();
    void monitorAccessIsReadOnly();

private:
    std::unique_ptr<SystemRef> m_sys;
    std::unique_ptr<DeviceRef> m_device;
    OrbGenParam::Array *params() const { return m_device->params(); }
};

void tst_OrbCamParams::init()
{
    m_sys = std::make_unique<SystemRef>();
    m_device = std::make_unique<DeviceRef>(m_sys->camera("GEV0/C2-1001"));
    QVERIFY(m_device->device);
}

void tst_OrbCamParams::cleanup()
{
    m_device.reset();
    m_sys.reset();
}

void tst_OrbCamParams::kindsByName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("kind");
    QTest::newRow("integer") << "Frame_ExposureLines"
                             << "Int";
    QTest::newRow("enumeration") << "TriggerMode"
                                 << "Enum";
    QTest::newRow("boolean") << "ReverseX"
                             << "Boolean";
    QTest::newRow("command") << "TriggerSoftware"
                             << "Command";
    QTest::newRow("string") << "DeviceUserID"
                            << "String";
    QTest::newRow("category is no parameter") << "TriggerControl"
                                              << "";
    QTest::newRow("port is no parameter") << "Device"
                                          << "";
    QTest::newRow("missing") << "NoSuchFeature"
                             << "";
}

void tst_OrbCamParams::kindsByName()
{
    QFETCH(QString, name);
    QFETCH(QString, kind);
    const QByteArray n = name.toUtf8();
    OrbGenParam::Array *a = params();
    QCOMPARE(a->GetInt(n) != nullptr, kind == QLatin1String("Int"));
    QCOMPARE(a->GetEnum(n) != nullptr, kind == QLatin1String("Enum"));
    QCOMPARE(a->GetBoolean(n) != nullptr, kind == QLatin1String("Boolean"));
    QCOMPARE(a->GetCommand(n) != nullptr, kind == QLatin1String("Command"));
    QCOMPARE(a->GetString(n) != nullptr, kind == QLatin1String("String"));
    QCOMPARE(a->GetFloat(n) != nullptr, false);
    QCOMPARE(a->GetParam(n) != nullptr, !kind.isEmpty());
    if (!kind.isEmpty()) {
        QCOMPARE(a->GetParam(n), a->GetParam(n)); // one object per name
        QCOMPARE(QString::fromUtf8(a->GetParam(n)->GetName()), name);
        QCOMPARE(QString::fromUtf8(a->GetParam(n)->GetNode()->GetName().c_str()), name);
    }
    QVERIFY(!a->GetParam(nullptr));
}

void tst_OrbCamParams::integers()
{
    OrbGenParam::Int *width = params()->GetInt("Frame_Width");
    OrbCamErr err = OrbCamErrUnknown;
    QCOMPARE(width->GetValue(&err), int64_t(1920));
    QCOMPARE(err, OrbCamOk);
    QCOMPARE(width->GetMin(), int64_t(64));
    QCOMPARE(width->GetMax(), int64_t(1920));
    QCOMPARE(width->GetInc(), int64_t(16));
    QVERIFY(width->IsAvailable() && width->IsReadable() && width->IsWritable());
    QCOMPARE(width->SetValue(1280), OrbCamOk);
    QCOMPARE(params()->GetInt("Width")->GetValue(), int64_t(1280));
    // The offset's maximum follows the width.
    QCOMPARE(params()->GetInt("Frame_OffsetX")->GetMax(), int64_t(640));
}

void tst_OrbCamParams::writeErrors_data()
{
    QTest::addColumn<QString>("feature");
    QTest::addColumn<qint64>("value");
    QTest::addColumn<int>("code");
    QTest::newRow("in range") << "Frame_BlackLevel" << qint64(20) << int(OrbCamOk);
    QTest::newRow("above the maximum")
        << "Frame_BlackLevel" << qint64(256) << int(OrbCamErrGenICamOutOfRange);
    QTest::newRow("off the increment")
        << "Frame_Width" << qint64(1000) << int(OrbCamErrGenICamOutOfRange);
    QTest::newRow("read-only") << "RgsID" << qint64(1) << int(OrbCamErrGenICamAccess);
    QTest::newRow("computed") << "CurrentExposureTime" << qint64(1) << int(OrbCamErrGenICamAccess);
}

void tst_OrbCamParams::writeErrors()
{
    QFETCH(QString, feature);
    QFETCH(qint64, value);
    QFETCH(int, code);
    OrbGenParam::Int *p = params()->GetInt(feature.toUtf8().constData());
    QVERIFY(p);
    const int64_t before = p->GetValue();
    QCOMPARE(p->SetValue(value), OrbCamErr(code));
    QCOMPARE(p->GetValue(), code == OrbCamOk ? int64_t(value) : before);
}

void tst_OrbCamParams::enumerations()
{
    OrbGenParam::Enum *source = params()->GetEnum("TriggerSource");
    QCOMPARE(source->GetEntryCount(), size_t(5));
    QCOMPARE(QString::fromUtf8(source->GetEntry(1)->GetName()), QStringLiteral("Line1"));
    QCOMPARE(source->GetEntry(1)->GetValue(), int64_t(1));
    QVERIFY(source->GetEntry(1)->IsAvailable());
    QVERIFY(!source->GetEntry(4)->IsAvailable()); // "Encoder" is not fitted
    QVERIFY(!source->GetEntry(5));
    QCOMPARE(QString::fromUtf8(source->GetValueName()), QStringLiteral("Software"));
    QCOMPARE(source->SetValueByName("Line2"), OrbCamOk);
    QCOMPARE(source->GetValue(), int64_t(2));
    QCOMPARE(source->SetValue(3), OrbCamOk);
    QCOMPARE(QString::fromUtf8(source->GetValueName()), QStringLiteral("PulseGenerator"));
    QCOMPARE(source->SetValueByName("Encoder"), OrbCamErrGenICamAccess);
    QCOMPARE(source->SetValueByName("Pigeon"), OrbCamErrGenICamArgument);
    QCOMPARE(source->SetValue(99), OrbCamErrGenICamOutOfRange);
    QCOMPARE(source->SetValueByName(nullptr), OrbCamErrInvalidArgument);
    QCOMPARE(QString::fromUtf8(source->GetValueName()), QStringLiteral("PulseGenerator"));
    // An entry whose availability depends on another feature.
    OrbGenParam::Enum *format = params()->GetEnum("PixelFormat");
    QCOMPARE(format->SetValueByName("RGB8"), OrbCamOk);
    QCOMPARE(params()->GetBoolean("Frame_WdrEnable")->SetValue(true), OrbCamOk);
    QCOMPARE(format->SetValueByName("BayerRG12"), OrbCamOk);
    QCOMPARE(format->SetValueByName("RGB8"), OrbCamErrGenICamAccess);
}

void tst_OrbCamParams::booleansCommandsStrings()
{
    OrbGenParam::Boolean *reverse = params()->GetBoolean("ReverseX");
    QCOMPARE(reverse->GetValue(), false);
    QCOMPARE(reverse->SetValue(true), OrbCamOk);
    QCOMPARE(reverse->GetValue(), true);
    QCOMPARE(params()->GetBoolean("ReverseY")->GetValue(), false); // shares the register

    OrbGenParam::Command *trigger = params()->GetCommand("TriggerSoftware");
    QCOMPARE(trigger->Execute(), OrbCamOk);
    QVERIFY(trigger->IsDone());

    OrbGenParam::String *user = params()->GetString("DeviceUserID");
    QCOMPARE(user->GetValue(), std::string("Line 1"));
    QCOMPARE(user->SetValue("Station \xC3\xBC"), OrbCamOk); // UTF-8 passes unchanged
    QCOMPARE(user->GetValue(), std::string("Station \xC3\xBC"));
    QCOMPARE(user->SetValue("a name far too long for the register"), OrbCamErrGenICamOutOfRange);
    QCOMPARE(user->SetValue(nullptr), OrbCamErrInvalidArgument);
    QCOMPARE(params()->GetString("DeviceSerialNumber")->GetValue(), std::string("C2-1001"));
    QCOMPARE(params()->GetString("DeviceSerialNumber")->SetValue("X"), OrbCamErrGenICamAccess);
}

void tst_OrbCamParams::nodeMapIsTheArrays()
{
    GenApi::INodeMap *map = params()->GetNodeMap();
    QVERIFY(map);
    QVERIFY(!params()->GetNodeMap(1));
    GenApi::CIntegerPtr black(map->GetNode("Frame_BlackLevel"));
    black->SetValue(33);
    QCOMPARE(params()->GetInt("Frame_BlackLevel")->GetValue(), int64_t(33));
}

void tst_OrbCamParams::listenerCalledOncePerChange()
{
    CountingSink sink;
    OrbGenParam::Int *black = params()->GetInt("Frame_BlackLevel");
    QCOMPARE(black->RegisterEventSink(&sink), OrbCamOk);
    QCOMPARE(black->RegisterEventSink(&sink), OrbCamOk); // twice is once
    QCOMPARE(black->SetValue(40), OrbCamOk);
    QCOMPARE(sink.calls.load(), 1);
    QCOMPARE(sink.last.load(), static_cast<OrbGenParam::Param *>(black));
    QCOMPARE(black->SetValue(400), OrbCamErrGenICamOutOfRange); // no change, no call
    QCOMPARE(sink.calls.load(), 1);
    QCOMPARE(black->UnregisterEventSink(&sink), OrbCamOk);
    QCOMPARE(black->UnregisterEventSink(&sink), OrbCamErrInvalidArgument);
    QCOMPARE(black->RegisterEventSink(nullptr), OrbCamErrInvalidArgument);
}

void tst_OrbCamParams::listenerHearsDependentFeatures()
{
    CountingSink exposure, frameTime, widthActual, unrelated;
    params()->GetInt("CurrentExposureTime")->RegisterEventSink(&exposure);
    params()->GetInt("CurrentFrameTime")->RegisterEventSink(&frameTime);
    params()->GetInt("Frame_WidthActual")->RegisterEventSink(&widthActual);
    params()->GetInt("RedCoefficient")->RegisterEventSink(&unrelated);
    QCOMPARE(params()->GetInt("Frame_ExposureLines")->SetValue(1000), OrbCamOk);
    QCOMPARE(exposure.calls.load(), 1);
    QCOMPARE(frameTime.calls.load(), 1);
    QCOMPARE(widthActual.calls.load(), 0);
    QCOMPARE(params()->GetEnum("Frame_DecimationMode")->SetValueByName("Subsampling"), OrbCamOk);
    QCOMPARE(params()->GetEnum("Frame_SubsamplingM")->SetValueByName("Skip2"), OrbCamOk);
    QCOMPARE(widthActual.calls.load(), 2);
    QCOMPARE(params()->GetInt("Frame_WidthActual")->GetValue(), int64_t(960));
    // Switching frames changes every Frame_ feature and what follows them.
    QCOMPARE(params()->GetEnum("FrameAB_Selector")->SetValueByName("FrameB"), OrbCamOk);
    QCOMPARE(exposure.calls.load(), 2);
    QCOMPARE(widthActual.calls.load(), 3);
    QCOMPARE(params()->GetInt("Frame_WidthActual")->GetValue(), int64_t(640));
    QCOMPARE(unrelated.calls.load(), 0);
    params()->GetInt("CurrentExposureTime")->UnregisterEventSink(&exposure);
    params()->GetInt("CurrentFrameTime")->UnregisterEventSink(&frameTime);
    params()->GetInt("Frame_WidthActual")->UnregisterEventSink(&widthActual);
    params()->GetInt("RedCoefficient")->UnregisterEventSink(&unrelated);
}

void tst_OrbCamParams::listenerNeverCalledAfterUnregistering()
{
    CountingSink sink;
    OrbGenParam::Int *red = params()->GetInt("RedCoefficient");
    red->RegisterEventSink(&sink);
    std::atomic<bool> stop { false };
    std::thread writer([&] {
        for (int i = 0; !stop && i < 2000; ++i)
            red->SetValue(i % 4000);
    });
    QTest::qWait(20);
    red->UnregisterEventSink(&sink);
    const int afterUnregister = sink.calls.load();
    QTest::qWait(20);
    stop = true;
    writer.join();
    QVERIFY(afterUnregister > 0);
    QCOMPARE(sink.calls.load(), afterUnregister);
}

void tst_OrbCamParams::listenerRunsOnTheWritingThread()
{
    struct ThreadSink : OrbGenParam::ParamEventSink {
        std::thread::id thread;
        void OnParameterUpdate(OrbGenParam::Param *) override
        {
            thread = std::this_thread::get_id();
        }
    } sink;
    OrbGenParam::Int *green = params()->GetInt("GreenCoefficient");
    green->RegisterEventSink(&sink);
    std::thread::id writerId;
    std::thread writer([&] {
        writerId = std::this_thread::get_id();
        green->SetValue(300);
    });
    writer.join();
    QCOMPARE(sink.thread, writerId);
    green->UnregisterEventSink(&sink);
}

void tst_OrbCamParams::monitorAccessIsReadOnly()
{
    DeviceRef monitor(m_sys->camera("GEV0/C2-1001"), OrbCam::AccessMonitor);
    QVERIFY(monitor.device);
    OrbGenParam::Int *black = monitor.params()->GetInt("Frame_BlackLevel");
    QVERIFY(black->IsReadable());
    QVERIFY(!black->IsWritable());
    QCOMPARE(black->SetValue(5), OrbCamErrGenICamAccess);
    QCOMPARE(monitor.params()->GetCommand("TriggerSoftware")->Execute(), OrbCamErrGenICamAccess);
}

QTEST_GUILESS_MAIN(tst_OrbCamParams)
#include "tst_orbcam_params.moc"
