// Discovery: interfaces, cameras, identity, interface features, hot-plug,
// force IP and discovery on a background thread.
#include "orbcamtest.h"

#include <atomic>
#include <thread>

using namespace OrbCamTest;

class tst_OrbCamDiscovery : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void defaultSystem();
    void typeMaskSelectsInterfaces_data();
    void typeMaskSelectsInterfaces();
    void systemIsShared();
    void identity_data();
    void identity();
    void interfaceFeaturesDescribeTheSelectedCamera();
    void hotPlugChangesTheList();
    void removedCameraKeepsItsInfo();
    void forceIP_data();
    void forceIP();
    void forceIPThroughInterfaceFeatures();
    void createDeviceErrors();
    void discoveryWhileReading();
    void customSetUp();
    void badSetUps_data();
    void badSetUps();
    void interfacesWalkedFromManyThreads();
    void selectionHeldAgainstDiscovery();
    void accessStatusSetBySimulation_data();
    void accessStatusSetBySimulation();
};

void tst_OrbCamDiscovery::cleanup()
{
    // Every test leaves the default set-up behind.
    QCOMPARE(OrbCamSim::Reset(), OrbCamOk);
}

void tst_OrbCamDiscovery::defaultSystem()
{
    SystemRef sys;
    OrbCam::InterfaceList *list = sys.system->GetInterfaces(OrbCam::AllInterfaces);
    QCOMPARE(list->Size(), size_t(3));
    QStringList seen;
    for (OrbCam::Interface *i = list->First(); i; i = list->Next())
        seen << QStringLiteral("%1:%2").arg(QString::fromUtf8(i->GetID())).arg(i->GetType());
    QCOMPARE(seen,
             QStringList(
                 { QStringLiteral("GEV0:2"), QStringLiteral("U3V0:1"), QStringLiteral("CXP0:4") }));
    QVERIFY(list->Next() == nullptr);
    list->Release(); // the system's own list: a no-op
    QCOMPARE(sys.cameras("GEV0").size(), size_t(2));
    QCOMPARE(sys.cameras("U3V0").size(), size_t(1));
    QCOMPARE(sys.cameras("CXP0").size(), size_t(0));
}

void tst_OrbCamDiscovery::typeMaskSelectsInterfaces_data()
{
    QTest::addColumn<uint>("mask");
    QTest::addColumn<QString>("ids");
    QTest::newRow("all") << 255u << "GEV0 U3V0 CXP0";
    QTest::newRow("GigE Vision") << 2u << "GEV0";
    QTest::newRow("USB3 and CoaXPress") << (1u | 8u) << "U3V0 CXP0";
    QTest::newRow("none") << 0u << "";
}

void tst_OrbCamDiscovery::typeMaskSelectsInterfaces()
{
    QFETCH(uint, mask);
    QFETCH(QString, ids);
    SystemRef sys;
    OrbCam::InterfaceList *list = sys.system->GetInterfaces(mask);
    QStringList seen;
    for (OrbCam::Interface *i = list->First(); i; i = list->Next())
        seen << QString::fromUtf8(i->GetID());
    QCOMPARE(seen.join(QLatin1Char(' ')), ids);
}

void tst_OrbCamDiscovery::systemIsShared()
{
    OrbCam::System *a = OrbCam_GetSystem();
    OrbCam::System *b = OrbCam_GetSystem();
    QCOMPARE(a, b);
    // Configuration is refused while the system is in use.
    std::string why;
    QCOMPARE(OrbCamSim::Reset(), OrbCamErrInvalidState);
    OrbCam_ReleaseSystem(b);
    QCOMPARE(OrbCamSim::Configure(R"({"interfaces":[]})", &why), OrbCamErrInvalidState);
    QCOMPARE(QString::fromStdString(why), QStringLiteral("the system is in use"));
    OrbCam_ReleaseSystem(a);
    QCOMPARE(OrbCamSim::Reset(), OrbCamOk);
    OrbCam_ReleaseSystem(nullptr); // harmless
}

void tst_OrbCamDiscovery::identity_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("display");
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("user");
    QTest::addColumn<uint>("access");
    QTest::addColumn<uint>("index");
    QTest::newRow("GigE in subnet") << "GEV0/C2-1001"
                                    << "OrbSim-C2000 (C2-1001)"
                                    << "OrbSim-C2000"
                                    << "1.4.2"
                                    << "Line 1" << uint(OrbCam::AccessReadWrite) << 0u;
    QTest::newRow("GigE outside subnet") << "GEV0/C2-1002"
                                         << "OrbSim-C2000 (C2-1002)"
                                         << "OrbSim-C2000"
                                         << "1.4.2"
                                         << "Spare" << uint(OrbCam::AccessIPSubnetMismatch) << 1u;
    QTest::newRow("USB3") << "U3V0/M1-2001"
                          << "OrbSim-M1300 (M1-2001)"
                          << "OrbSim-M1300"
                          << "2.0.5"
                          << "Inspection" << uint(OrbCam::AccessReadWrite) << 0u;
}

void tst_OrbCamDiscovery::identity()
{
    QFETCH(QString, id);
    QFETCH(QString, display);
    QFETCH(QString, model);
    QFETCH(QString, version);
    QFETCH(QString, user);
    QFETCH(uint, access);
    QFETCH(uint, index);
    SystemRef sys;
    OrbCam::DeviceInfo *info = sys.camera(id.toUtf8().constData());
    QVERIFY(info);
    QCOMPARE(QString::fromUtf8(info->GetDisplayName()), display);
    QCOMPARE(QString::fromUtf8(info->GetVendor()), QStringLiteral("Orb Imaging"));
    QCOMPARE(QString::fromUtf8(info->GetModel()), model);
    QCOMPARE(QString::fromUtf8(info->GetSerialNumber()), id.section(QLatin1Char('/'), 1));
    QCOMPARE(QString::fromUtf8(info->GetVersion()), version);
    QCOMPARE(QString::fromUtf8(info->GetUserName()), user);
    QCOMPARE(info->GetAccessStatus(), access);
    QCOMPARE(info->GetIndex(), index);
    QCOMPARE(QString::fromUtf8(info->GetInterface()->GetID()), id.section(QLatin1Char('/'), 0, 0));
    // The same camera is the same object on every discovery.
    QCOMPARE(sys.camera(id.toUtf8().constData()), info);
}

void tst_OrbCamDiscovery::interfaceFeaturesDescribeTheSelectedCamera()
{
    SystemRef sys;
    OrbCam::Interface *gev = sys.interface("GEV0");
    sys.cameras("GEV0");
    OrbGenParam::Array *params = gev->GetParams();
    QVERIFY(params);
    QCOMPARE(params->GetInt("GevInterfaceSubnetIPAddress")->GetValue(), int64_t(0xC0A8010A));
    QCOMPARE(params->GetInt("GevInterfaceSubnetMask")->GetValue(), int64_t(0xFFFFFF00));
    QCOMPARE(params->GetInt("GevInterfaceMACAddress")->GetValue(), int64_t(0x001B213A4F10));
    QCOMPARE(params->GetInt("DeviceCount")->GetValue(), int64_t(2));
    QCOMPARE(params->GetInt("DeviceSelector")->GetMax(), int64_t(1));
    QCOMPARE(params->GetInt("DeviceSelector")->SetValue(1), OrbCamOk);
    QCOMPARE(params->GetInt("GevDeviceIPAddress")->GetValue(), int64_t(0x0A000007));
    QCOMPARE(params->GetInt("GevDeviceSubnetMask")->GetValue(), int64_t(0xFF000000));
    QCOMPARE(params->GetString("DeviceID")->GetValue(), std::string("GEV0/C2-1002"));
    QCOMPARE(params->GetEnum("DeviceAccessStatus")->GetValueName(), "IPSubnetMismatch");
    QCOMPARE(params->GetInt("DeviceSelector")->SetValue(2), OrbCamErrGenICamOutOfRange);
    QCOMPARE(params->GetInt("DeviceSelector")->SetValue(0), OrbCamOk);
    QCOMPARE(params->GetInt("GevDeviceGateway")->GetValue(), int64_t(0xC0A80101));
    // The proposed gateway for a forced address is the camera's own.
    QCOMPARE(params->GetInt("GevDeviceForceGateway")->GetValue(), int64_t(0xC0A80101));
    QVERIFY(!params->GetInt("DeviceUSBVersionDetected")->IsAvailable());
    QCOMPARE(params->GetEnum("InterfaceType")->GetValueName(), "GigEVision");

    OrbGenParam::Array *usb = sys.interface("U3V0")->GetParams();
    sys.cameras("U3V0");
    QCOMPARE(usb->GetInt("DeviceSelector")->SetValue(0), OrbCamOk);
    QCOMPARE(usb->GetInt("DeviceUSBVersionDetected")->GetValue(), int64_t(0x0320));
    QVERIFY(!usb->GetInt("GevDeviceIPAddress")->IsAvailable());
    OrbCamErr err = OrbCamOk;
    usb->GetInt("GevDeviceIPAddress")->GetValue(&err);
    QCOMPARE(err, OrbCamErrGenICamAccess);
}

void tst_OrbCamDiscovery::hotPlugChangesTheList()
{
    SystemRef sys;
    bool changed = false;
    sys.cameras("CXP0", &changed);
    QVERIFY(!changed);
    std::string id;
    QCOMPARE(OrbCamSim::AddCamera("CXP0", "orbsim-m1300", "X-1", &id), OrbCamOk);
    QCOMPARE(id, std::string("CXP0/X-1"));
    std::vector<OrbCam::DeviceInfo *> found = sys.cameras("CXP0", &changed);
    QVERIFY(changed);
    QCOMPARE(found.size(), size_t(1));
    sys.cameras("CXP0", &changed);
    QVERIFY(!changed); // reported once
    QCOMPARE(OrbCamSim::RemoveCamera(id), OrbCamOk);
    QVERIFY(sys.cameras("CXP0", &changed).empty());
    QVERIFY(changed);
    QCOMPARE(OrbCamSim::AddCamera("NOPE", "orbsim-m1300", "X-2"), OrbCamErrInvalidArgument);
    QCOMPARE(OrbCamSim::AddCamera("CXP0", "no-such-model", "X-3"), OrbCamErrWrongConfiguration);
    QCOMPARE(OrbCamSim::RemoveCamera("CXP0/none"), OrbCamErrNoDevice);
}

void tst_OrbCamDiscovery::removedCameraKeepsItsInfo()
{
    SystemRef sys;
    OrbCam::DeviceInfo *info = sys.camera("U3V0/M1-2001");
    QVERIFY(info);
    QCOMPARE(OrbCamSim::RemoveCamera("U3V0/M1-2001"), OrbCamOk);
    QVERIFY(sys.cameras("U3V0").empty());
    // The pointer the application holds stays valid and tells the truth.
    QCOMPARE(QString::fromUtf8(info->GetSerialNumber()), QStringLiteral("M1-2001"));
    QCOMPARE(info->GetAccessStatus(), uint32_t(OrbCam::AccessNone));
    DeviceRef device(info);
    QVERIFY(!device.device);
    QCOMPARE(device.err, OrbCamErrNoDevice);
}

void tst_OrbCamDiscovery::forceIP_data()
{
    QTest::addColumn<QString>("camera");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("mask");
    QTest::addColumn<int>("result");
    QTest::addColumn<uint>("access");
    QTest::newRow("into the subnet")
        << "GEV0/C2-1002"
        << "192.168.1.77"
        << "255.255.255.0" << int(OrbCamOk) << uint(OrbCam::AccessReadWrite);
    QTest::newRow("out of the subnet")
        << "GEV0/C2-1001"
        << "10.1.1.1"
        << "255.255.255.0" << int(OrbCamOk) << uint(OrbCam::AccessIPSubnetMismatch);
    QTest::newRow("address zero") << "GEV0/C2-1002"
                                  << "0.0.0.0"
                                  << "255.255.255.0" << int(OrbCamErrInvalidArgument)
                                  << uint(OrbCam::AccessIPSubnetMismatch);
    QTest::newRow("holes in the mask")
        << "GEV0/C2-1002"
        << "192.168.1.77"
        << "255.0.255.0" << int(OrbCamErrInvalidArgument) << uint(OrbCam::AccessIPSubnetMismatch);
    QTest::newRow("not a network camera")
        << "U3V0/M1-2001"
        << "192.168.1.77"
        << "255.255.255.0" << int(OrbCamErrInvalidState) << uint(OrbCam::AccessReadWrite);
}

void tst_OrbCamDiscovery::forceIP()
{
    QFETCH(QString, camera);
    QFETCH(QString, address);
    QFETCH(QString, mask);
    QFETCH(int, result);
    QFETCH(uint, access);
    auto ip = [](const QString &text) {
        const QStringList parts = text.split(QLatin1Char('.'));
        return (parts[0].toUInt() << 24) | (parts[1].toUInt() << 16) | (parts[2].toUInt() << 8)
            | parts[3].toUInt();
    };
    SystemRef sys;
    OrbCam::DeviceInfo *info = sys.camera(camera.toUtf8().constData());
    QVERIFY(info);
    QCOMPARE(info->ForceIP(ip(address), ip(mask), ip(QStringLiteral("192.168.1.1"))),
             OrbCamErr(result));
    QCOMPARE(info->GetAccessStatus(), access);
    if (result != OrbCamOk)
        return;
    // The camera itself reports its new address.
    if (access == OrbCam::AccessReadWrite) {
        DeviceRef device(info);
        QVERIFY(device.device);
        QCOMPARE(device.params()->GetInt("GevCurrentIPAddress")->GetValue(), int64_t(ip(address)));
    }
}

void tst_OrbCamDiscovery::forceIPThroughInterfaceFeatures()
{
    SystemRef sys;
    OrbCam::DeviceInfo *spare = sys.camera("GEV0/C2-1002");
    OrbGenParam::Array *params = spare->GetInterface()->GetParams();
    QCOMPARE(params->GetInt("DeviceSelector")->SetValue(spare->GetIndex()), OrbCamOk);
    QCOMPARE(params->GetInt("GevDeviceForceIPAddress")->SetValue(0xC0A80133), OrbCamOk);
    QCOMPARE(params->GetInt("GevDeviceForceSubnetMask")->SetValue(0xFFFFFF00), OrbCamOk);
    QCOMPARE(params->GetCommand("GevDeviceForceIP")->Execute(), OrbCamOk);
    QCOMPARE(spare->GetAccessStatus(), uint32_t(OrbCam::AccessReadWrite));
    QCOMPARE(params->GetInt("GevDeviceIPAddress")->GetValue(), int64_t(0xC0A80133));
    // A malformed mask is refused by the camera and reported.
    QCOMPARE(params->GetInt("GevDeviceForceSubnetMask")->SetValue(0xFF00FF00), OrbCamOk);
    QCOMPARE(params->GetCommand("GevDeviceForceIP")->Execute(), OrbCamErrGenICamAccess);
    QCOMPARE(params->GetInt("GevDeviceSubnetMask")->GetValue(), int64_t(0xFFFFFF00));
}

void tst_OrbCamDiscovery::createDeviceErrors()
{
    SystemRef sys;
    OrbCamErr err = OrbCamOk;
    QVERIFY(!OrbCam_CreateDevice(nullptr, OrbCam::AccessControl, 0, &err));
    QCOMPARE(err, OrbCamErrInvalidArgument);
    OrbCam::DeviceInfo *good = sys.camera("GEV0/C2-1001");
    QVERIFY(!OrbCam_CreateDevice(good, 7, 0, &err));
    QCOMPARE(err, OrbCamErrInvalidArgument);
    QVERIFY(!OrbCam_CreateDevice(good, OrbCam::AccessControl, 1, &err));
    QCOMPARE(err, OrbCamErrInvalidArgument);
    QVERIFY(!OrbCam_CreateDevice(sys.camera("GEV0/C2-1002"), OrbCam::AccessControl, 0, &err));
    QCOMPARE(err, OrbCamErrInvalidState);
    DeviceRef device(good);
    QCOMPARE(device.err, OrbCamOk);
    QCOMPARE(device.device->GetInfo(), good);
    QVERIFY(device.device->IsConnected());
    OrbCam_ReleaseDevice(nullptr); // harmless
}

void tst_OrbCamDiscovery::discoveryWhileReading()
{
    SystemRef sys;
    DeviceRef device(sys.camera("GEV0/C2-1001"));
    QVERIFY(device.device);
    std::atomic<bool> done { false };
    std::atomic<int> passes { 0 };
    std::atomic<bool> inconsistent { false };
    // Discovery and hot-plug on one thread, parameter traffic on this one.
    std::thread discovery([&] {
        for (int i = 0; i < 20; ++i) {
            std::string id;
            OrbCamSim::AddCamera("CXP0", "orbsim-m1300", "T-" + std::to_string(i), &id);
            const size_t seen = sys.cameras("CXP0").size() + sys.cameras("GEV0").size();
            if (seen < 3)
                inconsistent = true;
            OrbCamSim::RemoveCamera(id);
            ++passes;
        }
        done = true;
    });
    OrbGenParam::Int *lines = device.params()->GetInt("Frame_ExposureLines");
    OrbGenParam::Int *exposure = device.params()->GetInt("CurrentExposureTime");
    int writes = 0, failures = 0;
    // No QCOMPARE while the other thread runs: a failure must still join it.
    while (!done || writes < 50) {
        ++writes;
        OrbCamErr err = lines->SetValue(1 + writes % 1000);
        exposure->GetValue(err == OrbCamOk ? &err : nullptr);
        failures += err != OrbCamOk;
    }
    discovery.join();
    QCOMPARE(failures, 0);
    QCOMPARE(passes.load(), 20);
    QVERIFY(!inconsistent);
}

void tst_OrbCamDiscovery::customSetUp()
{
    const std::string json = R"({ "interfaces": [
        { "id": "LAN", "type": "GigEVision", "ip": "10.5.0.1", "mask": "255.255.0.0",
          "cameras": [ { "model": "orbsim-c2000", "serial": "A1", "ip": "10.5.3.4", "mask": "255.255.0.0" },
                       { "model": "orbsim-m1300" } ] },
        { "id": "Other", "type": 77 } ] })";
    std::string why;
    QCOMPARE(OrbCamSim::Configure(json, &why), OrbCamOk);
    SystemRef sys;
    std::vector<OrbCam::DeviceInfo *> cameras = sys.cameras("LAN");
    QCOMPARE(cameras.size(), size_t(2));
    QCOMPARE(QString::fromUtf8(cameras[0]->GetID()), QStringLiteral("LAN/A1"));
    QCOMPARE(cameras[0]->GetAccessStatus(), uint32_t(OrbCam::AccessReadWrite));
    QCOMPARE(QString::fromUtf8(cameras[1]->GetSerialNumber()), QStringLiteral("LAN-2")); // made up
    QCOMPARE(sys.interface("Other")->GetType(), 77u);
    QCOMPARE(sys.system->GetInterfaces(128)->Size(), size_t(1)); // custom transports
}

void tst_OrbCamDiscovery::badSetUps_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<QString>("fragment");
    QTest::newRow("not JSON") << "{ interfaces"
                              << "malformed JSON";
    QTest::newRow("no interfaces") << "{}"
                                   << "wrong set-up";
    QTest::newRow("unknown type") << R"({"interfaces":[{"id":"A","type":"Carrier pigeon"}]})"
                                  << "unknown interface type 'Carrier pigeon'";
    QTest::newRow("same id twice")
        << R"({"interfaces":[{"id":"A","type":"USB3Vision"},{"id":"A","type":"USB3Vision"}]})"
        << "used twice";
    QTest::newRow("bad address")
        << R"({"interfaces":[{"id":"A","type":"GigEVision","ip":"300.1.1.1"}]})"
        << "'300.1.1.1' is not an IPv4 address";
    QTest::newRow("unknown model")
        << R"({"interfaces":[{"id":"A","type":"USB3Vision","cameras":[{"model":"nope"}]}]})"
        << "cannot open";
}

void tst_OrbCamDiscovery::badSetUps()
{
    QFETCH(QString, json);
    QFETCH(QString, fragment);
    std::string why;
    QCOMPARE(OrbCamSim::Configure(json.toStdString(), &why), OrbCamErrWrongConfiguration);
    QVERIFY2(QString::fromStdString(why).contains(fragment), why.c_str());
    // The previous set-up is still in force.
    SystemRef sys;
    QCOMPARE(sys.cameras("GEV0").size(), size_t(2));
}

QTEST_GUILESS_MAIN(tst_OrbCamDiscovery)
#include "tst_orbcam_discovery.moc"

// Every thread walks its own list: walks at once never disturb each other.
void tst_OrbCamDiscovery::interfacesWalkedFromManyThreads()
{
    SystemRef sys;
    std::atomic<int> wrong { 0 };
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&sys, &wrong] {
            for (int walk = 0; walk < 5000; ++walk) {
                OrbCam::InterfaceList *list = sys.system->GetInterfaces(OrbCam::AllInterfaces);
                size_t seen = 0;
                for (OrbCam::Interface *i = list->First(); i; i = list->Next())
                    ++seen;
                if (seen != 3 || list->Size() != 3)
                    ++wrong;
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
}

// A camera selected with DeviceSelector under the interface's lock is the
// camera whose features are read, while discovery on another thread keeps
// renumbering the cameras.
void tst_OrbCamDiscovery::selectionHeldAgainstDiscovery()
{
    SystemRef sys;
    const auto cameras = sys.cameras("GEV0");
    QCOMPARE(cameras.size(), size_t(2));
    OrbCam::DeviceInfo *first = cameras[0];
    OrbCam::DeviceInfo *second = cameras[1];
    OrbCam::Interface *gev = sys.interface("GEV0");
    OrbGenParam::Array *params = gev->GetParams();
    QVERIFY(params);
    QCOMPARE(params->GetInt("DeviceSelector")->SetValue(1), OrbCamOk);
    const int64_t secondMac = params->GetInt("GevDeviceMACAddress")->GetValue();

    std::atomic<bool> stop { false };
    std::thread discovery([&] {
        const std::string id = first->GetID();
        while (!stop) {
            // The first camera comes and goes: the second moves between
            // places 1 and 0.
            OrbCamSim::LoseCamera(id);
            gev->UpdateDeviceList(nullptr, 0);
            OrbCamSim::RegainCamera(id);
            gev->UpdateDeviceList(nullptr, 0);
        }
    });
    int wrong = 0;
    int read = 0;
    for (int i = 0; i < 2000; ++i) {
        gev->Lock();
        const uint32_t place = second->GetIndex();
        if (params->GetInt("DeviceSelector")->SetValue(place) == OrbCamOk) {
            OrbCamErr err = OrbCamOk;
            const int64_t mac = params->GetInt("GevDeviceMACAddress")->GetValue(&err);
            if (err == OrbCamOk) {
                ++read;
                if (mac != secondMac)
                    ++wrong;
            }
        }
        gev->Unlock();
    }
    stop = true;
    discovery.join();
    QVERIFY(read > 100);
    QCOMPARE(wrong, 0);
}

void tst_OrbCamDiscovery::accessStatusSetBySimulation_data()
{
    QTest::addColumn<uint32_t>("status");
    QTest::addColumn<QString>("shown"); // DeviceAccessStatus on the interface
    QTest::addColumn<bool>("control");
    QTest::addColumn<bool>("monitor");
    QTest::newRow("read-only: held by another application")
        << uint32_t(OrbCam::AccessReadOnly) << "ReadOnly" << false << true;
    QTest::newRow("no access") << uint32_t(OrbCam::AccessNone) << "NoAccess" << false << false;
    QTest::newRow("back to computed") << uint32_t(0) << "ReadWrite" << true << true;
}

void tst_OrbCamDiscovery::accessStatusSetBySimulation()
{
    QFETCH(uint32_t, status);
    QFETCH(QString, shown);
    QFETCH(bool, control);
    QFETCH(bool, monitor);
    SystemRef sys;
    const auto cameras = sys.cameras("GEV0");
    OrbCam::DeviceInfo *camera = cameras.front();
    QCOMPARE(OrbCamSim::SetAccessStatus(camera->GetID(), OrbCam::AccessReadOnly), OrbCamOk);
    QCOMPARE(OrbCamSim::SetAccessStatus(camera->GetID(), status), OrbCamOk);
    QCOMPARE(camera->GetAccessStatus(), status ? status : uint32_t(OrbCam::AccessReadWrite));
    // Still listed.
    QCOMPARE(sys.cameras("GEV0").size(), size_t(2));
    OrbGenParam::Array *params = sys.interface("GEV0")->GetParams();
    QCOMPARE(params->GetInt("DeviceSelector")->SetValue(camera->GetIndex()), OrbCamOk);
    QCOMPARE(QString::fromUtf8(params->GetEnum("DeviceAccessStatus")->GetValueName()), shown);
    {
        DeviceRef device(camera, OrbCam::AccessControl);
        QCOMPARE(device.device != nullptr, control);
        if (!control)
            QCOMPARE(device.err, OrbCamErrInvalidState);
    }
    {
        DeviceRef device(camera, OrbCam::AccessMonitor);
        QCOMPARE(device.device != nullptr, monitor);
    }
    QCOMPARE(OrbCamSim::SetAccessStatus(camera->GetID(), 7), OrbCamErrInvalidArgument);
    QCOMPARE(OrbCamSim::SetAccessStatus("GEV0/nobody", 2), OrbCamErrNoDevice);
}
