// The simulated camera system: the embedded default backend. Internal.
#ifndef ORBCAM_SIM_H
#define ORBCAM_SIM_H

#include "backend.h"
#include "interfacefeatures.h"
#include "opendevices.h"
#include "paramarray.h"

#include <OrbCam/OrbCam.h>

#include <GenApi/GenApi.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace OrbCamImpl {

int64_t simClock();

struct CameraConfig {
    std::string model;
    std::string values; // a side file of the model's format, instead of its own
    std::string serial;
    std::string userName;
    uint32_t ip = 0, mask = 0xFFFFFF00u, gateway = 0;
    uint64_t mac = 0;
};

struct InterfaceConfig {
    std::string id;
    uint32_t type = OrbCam::InterfaceGigEVision;
    std::string displayName, description;
    uint32_t ip = 0, mask = 0xFFFFFF00u, gateway = 0;
    uint64_t mac = 0;
    std::vector<CameraConfig> cameras;
};

struct SystemConfig {
    std::vector<InterfaceConfig> interfaces;
};

// Parses a set-up; throws std::runtime_error with the reason.
SystemConfig parseConfig(const std::string &json);
const std::string &defaultConfigJson();

// What a camera model does besides storing values, from the model's JSON
// side file.
struct ModelInfo {
    std::string xml; // the description: XML text, or a zip file's bytes
    bool zipped = false;
    std::string version = "1.0.0";
    bool bigEndian = true;
    std::vector<std::pair<std::string, std::string>> defaults;
    std::vector<std::string> selfClearing;
    std::string triggerCommand, triggerCounter;
    std::string temperature;
    double temperatureBase = 40, temperatureAmplitude = 1, temperaturePeriod = 600,
           temperatureScale = 10;
    std::string serialFeature, userNameFeature, ipFeature, maskFeature, gatewayFeature, macFeature;
    // The identity and network features are the standard names, tried: the
    // model is a description file without a side file naming them.
    bool guessedNames = false;
};
// `model`: a model of the cameras folder, or the path of any description
// (".xml" or ".zip"), which then has no side file unless `values` names one.
// Throws std::runtime_error when the model or its side file cannot be read.
std::shared_ptr<const ModelInfo> loadModel(const std::string &model,
                                           const std::string &values = std::string());
// Loads the model's description into `map`; GenICam exceptions propagate.
void loadDescription(GenApi::CNodeMapRef &map, const ModelInfo &model);

// OrbCamSim::SetDiscoveryTime's value.
std::atomic<uint32_t> &discoveryTime();

struct Range {
    int64_t address = 0, length = 0;
    bool overlaps(int64_t a, int64_t l) const
    {
        return length > 0 && a < address + length && address < a + l;
    }
};

class SimSystem;
class SimInterface;

class SimCamera final : public OrbCam::DeviceInfo, public GenApi::IPort {
public:
    SimCamera(SimInterface &owner, std::string id, const CameraConfig &config);
    ~SimCamera() override;

    // DeviceInfo
    const char *GetID() const override { return m_id.c_str(); }
    const char *GetDisplayName() const override { return m_displayName.c_str(); }
    const char *GetVendor() const override { return m_vendor.c_str(); }
    const char *GetModel() const override { return m_modelName.c_str(); }
    const char *GetSerialNumber() const override { return m_serial.c_str(); }
    const char *GetVersion() const override { return m_model->version.c_str(); }
    const char *GetUserName() const override { return m_userName.c_str(); }
    uint32_t GetAccessStatus() const override;
    OrbCam::Interface *GetInterface() const override;
    uint32_t GetIndex() const override;
    OrbCamErr ForceIP(uint32_t address, uint32_t mask, uint32_t gateway) override;

    // IPort: the camera's register space.
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    void Read(void *buffer, int64_t address, int64_t length) override;
    void Write(const void *buffer, int64_t address, int64_t length) override;

    bool reachable() const { return present && !lost; }
    // Throws while the camera is lost, without the answer time.
    void refuseWhileLost() const;
    const ModelInfo &model() const { return *m_model; }
    uint32_t ip() const;
    uint32_t mask() const;
    uint32_t gateway() const;
    uint64_t mac() const { return m_mac; }
    uint32_t usbVersion() const { return 0x0320; }
    OrbCamErr failFeature(const std::string &feature, uint32_t mode);
    std::vector<Range> takeWrites();
    void clearFailures();

    std::atomic<bool> present { true };
    std::atomic<bool> lost { false };
    // A status forced by the simulation control (0: computed).
    std::atomic<uint32_t> forcedStatus { 0 };
    // Devices of the camera answer GetParams with no array.
    std::atomic<bool> paramsWithheld { false };
    // How long every register access takes (OrbCamSim::SetAnswerTime).
    std::atomic<uint32_t> answerTime { 0 };

private:
    Range resolve(GenApi::CNodeMapRef &map, const std::string &feature) const;
    void writeNumber(const Range &range, uint64_t value);
    // Sets a read-only integer feature by writing the bits of its register
    // that carry it, found by setting one bit at a time: a field of a
    // register (a capability bit, a masked field) keeps its neighbours.
    void forceInteger(const std::string &feature, int64_t value);
    uint64_t readNumber(const Range &range);
    void writeNetwork();

    SimInterface &m_owner;
    std::string m_id, m_serial, m_userName, m_displayName, m_vendor, m_modelName;
    std::shared_ptr<const ModelInfo> m_model;
    uint64_t m_mac;

    mutable std::recursive_mutex m_mutex;
    GenApi::CMemoryPort m_memory;
    uint32_t m_ip, m_mask, m_gateway;
    std::vector<Range> m_selfClearing;
    Range m_trigger, m_counter, m_temperature, m_ipReg, m_maskReg, m_gatewayReg;
    struct Failure {
        Range range;
        uint32_t mode;
        std::string feature;
    };
    std::vector<Failure> m_failures;
    std::vector<Range> m_writes;
    std::unique_ptr<GenApi::CNodeMapRef> m_setupMap; // for resolving feature names
};

class SimInterface final : public InterfaceFeatures {
public:
    SimInterface(SimSystem &system, const InterfaceConfig &config);

    OrbCamErr UpdateDeviceList(bool *changed, uint32_t timeoutMs) override;
    OrbCam::DeviceInfoList *GetDeviceInfoList() override;

    SimSystem &system() const { return m_system; }
    uint32_t ip() const { return m_host.ip; }
    uint32_t mask() const { return m_host.mask; }
    uint32_t indexOf(const SimCamera *camera) const;
    SimCamera *addCamera(const CameraConfig &config);
    void moveCamera(const SimCamera *camera, size_t position);
    size_t cameraCount() const;
    SimCamera *find(const std::string &id) const;
    std::shared_ptr<SimCamera> share(const SimCamera *camera) const;

protected:
    const std::vector<OrbCam::DeviceInfo *> &found() const override { return m_found; }
    CameraNetwork networkOf(const OrbCam::DeviceInfo *camera) const override;

private:
    SimSystem &m_system;
    std::vector<std::shared_ptr<SimCamera>> m_cameras; // every camera ever, in order
    std::vector<OrbCam::DeviceInfo *> m_found; // the last discovery
    int m_nextSerial = 1;
};

class SimDevice;

class SimSystem final : public Backend {
public:
    explicit SimSystem(const SystemConfig &config);
    ~SimSystem() override;

    OrbCam::InterfaceList *GetInterfaces(uint32_t typeMask) override;
    std::unique_ptr<PendingOpen> prepareOpen(OrbCam::DeviceInfo *info, uint32_t access,
                                             OrbCamErr &err) override;
    bool closeDevice(OrbCam::Device *device) override;

    SimCamera *findCamera(const std::string &id) const;
    SimInterface *findInterface(const std::string &id) const;
    OpenDevices &openDevices() { return m_open; }
    // Delivers the event to every open device of the camera, on the event thread.
    void post(SimCamera *camera, uint32_t event) { m_open.post(camera, event); }

private:
    std::vector<std::unique_ptr<SimInterface>> m_interfaces;
    InterfaceLists m_lists;
    // Last: its thread ends before anything it could reach goes.
    OpenDevices m_open;
};

class SimDevice final : public OrbCam::Device, public EventTarget {
public:
    SimDevice(SimSystem &system, std::shared_ptr<SimCamera> camera, uint32_t access);
    ~SimDevice() override;

    OrbGenParam::Array *GetParams(OrbCamErr *err = nullptr) override;
    OrbCam::DeviceInfo *GetInfo() const override { return m_camera.get(); }
    bool IsConnected() const override { return m_camera->reachable(); }
    OrbCamErr RegisterEventCallback(uint32_t event, OrbCam::EventCallback callback,
                                    void *context) override;
    OrbCamErr UnregisterEventCallback(uint32_t event, OrbCam::EventCallback callback,
                                      void *context) override;

    SimCamera *camera() const { return m_camera.get(); }
    SimSystem &system() const { return m_system; }
    const void *eventSource() const override { return m_camera.get(); }
    void deliver(uint32_t event) override;

private:
    // The camera's port as this device may use it.
    class Port final : public GenApi::IPort {
    public:
        Port(SimCamera &camera, GenApi::EAccessMode mode)
            : m_camera(camera)
            , m_mode(mode)
        {
        }
        GenApi::EAccessMode GetAccessMode() const override { return m_mode; }
        void Read(void *b, int64_t a, int64_t l) override { m_camera.Read(b, a, l); }
        void Write(const void *b, int64_t a, int64_t l) override;

    private:
        SimCamera &m_camera;
        GenApi::EAccessMode m_mode;
    };

    SimSystem &m_system;
    std::shared_ptr<SimCamera> m_camera;
    Port m_port;
    GenApi::CNodeMapRef m_map;
    std::unique_ptr<ParamArray> m_params;
    DeviceEvents m_events;
};

} // namespace OrbCamImpl

#endif
