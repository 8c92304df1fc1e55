#include "sim.h"

#include <OrbCam/OrbCamSim.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

using namespace GenApi;
using json = nlohmann::json;

namespace OrbCamImpl {

// ---------------------------------------------------------------------------
// Clock

std::atomic<bool> g_manualClock { false };
std::atomic<int64_t> g_manualTime { 0 };

namespace {

int64_t realMilliseconds()
{
    static const auto start = std::chrono::steady_clock::now();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now()
                                                                 - start)
        .count();
}

std::string readText(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("cannot open " + path);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

uint32_t parseIPv4(const std::string &text)
{
    unsigned a, b, c, d;
    char rest;
    if (std::sscanf(text.c_str(), "%u.%u.%u.%u%c", &a, &b, &c, &d, &rest) != 4 || a > 255 || b > 255
        || c > 255 || d > 255)
        throw std::runtime_error("'" + text + "' is not an IPv4 address");
    return (a << 24) | (b << 16) | (c << 8) | d;
}

uint64_t parseMAC(const std::string &text)
{
    unsigned bytes[6];
    char rest;
    if (std::sscanf(text.c_str(), "%x:%x:%x:%x:%x:%x%c", &bytes[0], &bytes[1], &bytes[2], &bytes[3],
                    &bytes[4], &bytes[5], &rest)
        != 6)
        throw std::runtime_error("'" + text + "' is not a MAC address");
    uint64_t mac = 0;
    for (unsigned b : bytes) {
        if (b > 255)
            throw std::runtime_error("'" + text + "' is not a MAC address");
        mac = (mac << 8) | b;
    }
    return mac;
}

uint32_t parseInterfaceType(const json &value)
{
    if (value.is_number_unsigned())
        return value.get<uint32_t>();
    const std::string name = value.get<std::string>();
    static const std::map<std::string, uint32_t> types = {
        { "USB3Vision", OrbCam::InterfaceUSB3Vision },
        { "GigEVision", OrbCam::InterfaceGigEVision },
        { "CameraLink", OrbCam::InterfaceCameraLink },
        { "CoaXPress", OrbCam::InterfaceCoaXPress },
        { "HDSDI", OrbCam::InterfaceHDSDI },
        { "Custom", 1000 },
    };
    auto it = types.find(name);
    if (it == types.end())
        throw std::runtime_error("unknown interface type '" + name + "'");
    return it->second;
}

// A stable, locally administered MAC address made from a name.
uint64_t macFor(const std::string &name)
{
    uint64_t hash = 1469598103934665603ull;
    for (char c : name)
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ull;
    return 0x020000000000ull | (hash & 0xFFFFFFFFFFull);
}

std::vector<uint8_t> encode(uint64_t value, size_t length, bool bigEndian)
{
    std::vector<uint8_t> bytes(length);
    for (size_t i = 0; i < length; ++i) {
        bytes[bigEndian ? length - 1 - i : i] = static_cast<uint8_t>(value & 0xFF);
        value >>= 8;
    }
    return bytes;
}

uint64_t decode(const std::vector<uint8_t> &bytes, bool bigEndian)
{
    uint64_t value = 0;
    for (size_t i = 0; i < bytes.size(); ++i)
        value = (value << 8) | bytes[bigEndian ? i : bytes.size() - 1 - i];
    return value;
}

} // namespace

int64_t simClock()
{
    return g_manualClock ? g_manualTime.load() : realMilliseconds();
}

// ---------------------------------------------------------------------------
// Configuration

const std::string &defaultConfigJson()
{
    static const std::string json = R"json({
  "interfaces": [
    { "id": "GEV0", "type": "GigEVision", "displayName": "eth1 (Intel I210)",
      "description": "GigE Vision interface eth1",
      "ip": "192.168.1.10", "mask": "255.255.255.0", "mac": "00:1B:21:3A:4F:10",
      "cameras": [
        { "model": "orbsim-c2000", "serial": "C2-1001", "userName": "Line 1",
          "ip": "192.168.1.20", "mask": "255.255.255.0", "gateway": "192.168.1.1" },
        { "model": "orbsim-c2000", "serial": "C2-1002", "userName": "Spare",
          "ip": "10.0.0.7", "mask": "255.0.0.0" } ] },
    { "id": "U3V0", "type": "USB3Vision", "displayName": "USB3 host controller 0",
      "description": "USB3 Vision interface 0",
      "cameras": [ { "model": "orbsim-m1300", "serial": "M1-2001", "userName": "Inspection" } ] },
    { "id": "CXP0", "type": "CoaXPress", "displayName": "CoaXPress frame grabber 0",
      "description": "CoaXPress interface 0", "cameras": [] } ] })json";
    return json;
}

SystemConfig parseConfig(const std::string &text)
{
    json document;
    try {
        document = json::parse(text);
    } catch (const json::parse_error &e) {
        throw std::runtime_error(std::string("malformed JSON: ") + e.what());
    }
    SystemConfig config;
    try {
        for (const json &i : document.at("interfaces")) {
            InterfaceConfig ic;
            ic.id = i.at("id").get<std::string>();
            if (ic.id.empty())
                throw std::runtime_error("an interface has an empty id");
            for (const InterfaceConfig &other : config.interfaces)
                if (other.id == ic.id)
                    throw std::runtime_error("interface id '" + ic.id + "' is used twice");
            ic.type = parseInterfaceType(i.at("type"));
            ic.displayName = i.value("displayName", ic.id);
            ic.description = i.value("description", ic.displayName);
            ic.ip = parseIPv4(i.value("ip", "0.0.0.0"));
            ic.mask = parseIPv4(i.value("mask", "255.255.255.0"));
            ic.gateway = parseIPv4(i.value("gateway", "0.0.0.0"));
            ic.mac = i.contains("mac") ? parseMAC(i.at("mac").get<std::string>()) : macFor(ic.id);
            for (const json &c : i.value("cameras", json::array())) {
                CameraConfig cc;
                cc.model = c.at("model").get<std::string>();
                cc.values = c.value("values", std::string());
                cc.serial = c.value("serial", std::string());
                cc.userName = c.value("userName", std::string());
                cc.ip = parseIPv4(c.value("ip", "0.0.0.0"));
                cc.mask = parseIPv4(c.value("mask", "255.255.255.0"));
                cc.gateway = parseIPv4(c.value("gateway", "0.0.0.0"));
                cc.mac = c.contains("mac") ? parseMAC(c.at("mac").get<std::string>()) : 0;
                ic.cameras.push_back(cc);
            }
            config.interfaces.push_back(ic);
        }
    } catch (const json::exception &e) {
        throw std::runtime_error(std::string("wrong set-up: ") + e.what());
    }
    return config;
}

namespace {

bool endsWith(const std::string &text, const char *suffix)
{
    const size_t n = std::strlen(suffix);
    return text.size() >= n
        && std::equal(text.end() - static_cast<std::ptrdiff_t>(n), text.end(), suffix,
                      [](char a, char b) { return std::tolower(a) == b; });
}

} // namespace

void loadDescription(GenApi::CNodeMapRef &map, const ModelInfo &model)
{
    if (model.zipped)
        map._LoadXMLFromZIPData(model.xml.data(), model.xml.size());
    else
        map._LoadXMLFromString(model.xml.c_str());
}

std::shared_ptr<const ModelInfo> loadModel(const std::string &model, const std::string &values)
{
    static std::mutex mutex;
    static std::map<std::string, std::shared_ptr<const ModelInfo>> cache;
    const std::string dir = OrbCamSim::CamerasDir();
    std::lock_guard<std::mutex> lock(mutex);
    // Any description a user has (a file of their own camera's) is a model
    // as well, with start values of its own or none.
    const bool file = model.find('/') != std::string::npos
        && (endsWith(model, ".xml") || endsWith(model, ".zip"));
    const std::string key = (file ? model : dir + "/" + model) + "\n" + values;
    auto it = cache.find(key);
    if (it != cache.end())
        return it->second;
    if (model.empty() || (!file && model.find('/') != std::string::npos))
        throw std::runtime_error("'" + model + "' is not a camera model name");

    auto info = std::make_shared<ModelInfo>();
    const std::string base = file ? model : dir + "/" + model;
    info->xml = readText(file ? model : base + ".xml");
    info->zipped = file && endsWith(model, ".zip");
    const std::string sidePath = !values.empty() ? values : (file ? std::string() : base + ".json");
    json side;
    try {
        side = sidePath.empty() ? json::object() : json::parse(readText(sidePath));
        info->version = side.value("version", info->version);
        info->bigEndian = side.value("bigEndian", true);
        // An array of [feature, value] pairs: the order matters (a selector
        // before the features it selects).
        for (const json &pair : side.value("defaults", json::array()))
            info->defaults.emplace_back(pair.at(0).get<std::string>(),
                                        pair.at(1).get<std::string>());
        info->selfClearing = side.value("selfClearing", std::vector<std::string>());
        const json trigger = side.value("triggerCounter", json::object());
        info->triggerCommand = trigger.value("command", std::string());
        info->triggerCounter = trigger.value("counter", std::string());
        const json temperature = side.value("temperature", json::object());
        info->temperature = temperature.value("register", std::string());
        info->temperatureBase = temperature.value("base", 40.0);
        info->temperatureAmplitude = temperature.value("amplitude", 1.0);
        info->temperaturePeriod = temperature.value("periodSeconds", 600.0);
        info->temperatureScale = temperature.value("scale", 10.0);
        const json identity = side.value("identity", json::object());
        info->serialFeature = identity.value("serial", std::string());
        info->userNameFeature = identity.value("userName", std::string());
        const json network = side.value("network", json::object());
        info->ipFeature = network.value("ip", std::string());
        info->maskFeature = network.value("mask", std::string());
        info->gatewayFeature = network.value("gateway", std::string());
        info->macFeature = network.value("mac", std::string());
        if (file && !side.contains("identity") && !side.contains("network")) {
            info->guessedNames = true;
            info->serialFeature = "DeviceSerialNumber";
            info->userNameFeature = "DeviceUserID";
            info->ipFeature = "GevCurrentIPAddress";
            info->maskFeature = "GevCurrentSubnetMask";
            info->gatewayFeature = "GevCurrentDefaultGateway";
            info->macFeature = "GevMACAddress";
        }
    } catch (const json::exception &e) {
        throw std::runtime_error("model " + model + ": malformed side file: " + e.what());
    }
    cache.emplace(key, info);
    return info;
}

// ---------------------------------------------------------------------------
// SimCamera

SimCamera::SimCamera(SimInterface &owner, std::string id, const CameraConfig &config)
    : m_owner(owner)
    , m_id(std::move(id))
    , m_serial(config.serial)
    , m_userName(config.userName)
    , m_model(loadModel(config.model, config.values))
    , m_mac(config.mac ? config.mac : macFor(m_id))
    , m_ip(config.ip)
    , m_mask(config.mask)
    , m_gateway(config.gateway)
{
    // A node map of our own over the raw memory: it names the registers
    // behind the features and applies the model's start values.
    m_setupMap = std::make_unique<CNodeMapRef>();
    try {
        loadDescription(*m_setupMap, *m_model);
    } catch (const GenICam::GenericException &e) {
        throw std::runtime_error("model " + config.model + ": " + e.GetDescription());
    }
    m_setupMap->_Connect(&m_memory, "Device");
    m_vendor = m_setupMap->_GetVendorName().str();
    m_modelName = m_setupMap->_GetModelName().str();
    m_displayName = m_modelName + " (" + m_serial + ")";

    for (const auto &[feature, value] : m_model->defaults) {
        CValuePtr node(m_setupMap->_GetNode(feature.c_str()));
        if (!node)
            throw std::runtime_error("model " + config.model + ": no feature " + feature);
        try {
            // A read-only number (a sensor's size, a capability, a limit)
            // is what the camera says: its register is written as the
            // camera would, an integer field or a floating-point register.
            if (!IsWritable(node) && CIntegerPtr(node)) {
                forceInteger(feature, std::stoll(value, nullptr, 0));
            } else if (!IsWritable(node) && CFloatPtr(node) && CRegisterPtr(node)) {
                const Range range = resolve(*m_setupMap, feature);
                uint64_t raw = 0;
                if (range.length == 4) {
                    const float f = std::stof(value);
                    uint32_t bits = 0;
                    std::memcpy(&bits, &f, sizeof bits);
                    raw = bits;
                } else if (range.length == 8) {
                    const double d = std::stod(value);
                    std::memcpy(&raw, &d, sizeof raw);
                } else {
                    throw std::runtime_error("model " + config.model + ": default " + feature
                                             + ": a floating-point register of "
                                             + std::to_string(range.length) + " bytes");
                }
                writeNumber(range, raw);
                m_setupMap->_InvalidateNodes();
            } else {
                node->FromString(value.c_str(), false);
            }
        } catch (const std::logic_error &) {
            throw std::runtime_error("model " + config.model + ": default " + feature + "=" + value
                                     + ": not a number");
        } catch (const GenICam::GenericException &e) {
            throw std::runtime_error("model " + config.model + ": default " + feature + "=" + value
                                     + ": " + e.GetDescription());
        }
    }
    for (const std::string &feature : m_model->selfClearing)
        m_selfClearing.push_back(resolve(*m_setupMap, feature));
    m_trigger = resolve(*m_setupMap, m_model->triggerCommand);
    m_counter = resolve(*m_setupMap, m_model->triggerCounter);
    m_temperature = resolve(*m_setupMap, m_model->temperature);
    m_ipReg = resolve(*m_setupMap, m_model->ipFeature);
    m_maskReg = resolve(*m_setupMap, m_model->maskFeature);
    m_gatewayReg = resolve(*m_setupMap, m_model->gatewayFeature);

    auto writeText = [&](const std::string &feature, const std::string &text) {
        const Range r = resolve(*m_setupMap, feature);
        if (r.length <= 0)
            return;
        std::vector<uint8_t> bytes(static_cast<size_t>(r.length), 0);
        std::memcpy(bytes.data(), text.data(), std::min(text.size(), bytes.size()));
        m_memory.Write(bytes.data(), r.address, r.length);
    };
    writeText(m_model->serialFeature, m_serial);
    writeText(m_model->userNameFeature, m_userName);
    writeNumber(resolve(*m_setupMap, m_model->macFeature), m_mac);
    writeNetwork();
}

SimCamera::~SimCamera() = default;

Range SimCamera::resolve(CNodeMapRef &map, const std::string &feature) const
{
    if (feature.empty())
        return Range {};
    INode *node = map._GetNode(feature.c_str());
    // A description's own file has no side file to name its features: the
    // standard names are tried, and one it lacks is left out.
    if (!node && m_model->guessedNames)
        return Range {};
    if (!node)
        throw std::runtime_error("model " + m_modelName + ": no feature " + feature);
    // The register the feature's value lives in: the feature itself or its
    // first terminal register.
    CRegisterPtr reg(node);
    if (!reg) {
        NodeList_t terminals;
        node->GetChildren(terminals, ctTerminalNodes);
        for (INode *t : terminals) {
            reg = t;
            if (reg)
                break;
        }
    }
    if (!reg && m_model->guessedNames)
        return Range {};
    if (!reg)
        throw std::runtime_error("model " + m_modelName + ": feature " + feature
                                 + " has no register");
    return Range { reg->GetAddress(), reg->GetLength() };
}

void SimCamera::writeNumber(const Range &range, uint64_t value)
{
    if (range.length <= 0)
        return;
    const std::vector<uint8_t> bytes
        = encode(value, static_cast<size_t>(range.length), m_model->bigEndian);
    m_memory.Write(bytes.data(), range.address, range.length);
}

void SimCamera::forceInteger(const std::string &feature, int64_t value)
{
    const Range range = resolve(*m_setupMap, feature);
    CIntegerPtr node(m_setupMap->_GetNode(feature.c_str()));
    if (range.length <= 0 || range.length > 8 || !node)
        throw std::runtime_error("model " + m_modelName + ": default " + feature
                                 + ": read-only and not in a register");
    const size_t length = static_cast<size_t>(range.length);
    std::vector<uint8_t> original(length);
    m_memory.Read(original.data(), range.address, range.length);
    auto valueWith = [&](const std::vector<uint8_t> &bytes) {
        m_memory.Write(bytes.data(), range.address, range.length);
        m_setupMap->_InvalidateNodes();
        return node->GetValue();
    };
    const std::vector<uint8_t> zeros(length, 0);
    const int64_t base = valueWith(zeros);
    // The weight each bit of the register gives the feature's value.
    std::vector<std::pair<int64_t, size_t>> weights;
    for (size_t bit = 0; bit < length * 8; ++bit) {
        std::vector<uint8_t> probe = zeros;
        probe[bit / 8] = static_cast<uint8_t>(1u << (bit % 8));
        if (const int64_t weight = valueWith(probe) - base; weight > 0)
            weights.emplace_back(weight, bit);
    }
    std::sort(weights.rbegin(), weights.rend());
    std::vector<uint8_t> result = original;
    for (const auto &[weight, bit] : weights)
        result[bit / 8] = static_cast<uint8_t>(result[bit / 8] & ~(1u << (bit % 8)));
    int64_t rest = value - base;
    for (const auto &[weight, bit] : weights)
        if (rest >= weight) {
            result[bit / 8] = static_cast<uint8_t>(result[bit / 8] | (1u << (bit % 8)));
            rest -= weight;
        }
    if (rest != 0) {
        valueWith(original);
        throw std::runtime_error("model " + m_modelName + ": default " + feature + "="
                                 + std::to_string(value) + ": out of the register's range");
    }
    valueWith(result);
}

uint64_t SimCamera::readNumber(const Range &range)
{
    if (range.length <= 0)
        return 0;
    std::vector<uint8_t> bytes(static_cast<size_t>(range.length));
    m_memory.Read(bytes.data(), range.address, range.length);
    return decode(bytes, m_model->bigEndian);
}

void SimCamera::writeNetwork()
{
    writeNumber(m_ipReg, m_ip);
    writeNumber(m_maskReg, m_mask);
    writeNumber(m_gatewayReg, m_gateway);
}

uint32_t SimCamera::ip() const
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    return m_ip;
}
uint32_t SimCamera::mask() const
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    return m_mask;
}
uint32_t SimCamera::gateway() const
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    return m_gateway;
}

uint32_t SimCamera::GetAccessStatus() const
{
    if (!reachable())
        return OrbCam::AccessNone;
    if (const uint32_t forced = forcedStatus.load())
        return forced;
    if (m_owner.GetType() == OrbCam::InterfaceGigEVision
        && (ip() & m_owner.mask()) != (m_owner.ip() & m_owner.mask()))
        return OrbCam::AccessIPSubnetMismatch;
    return OrbCam::AccessReadWrite;
}

OrbCam::Interface *SimCamera::GetInterface() const
{
    return &m_owner;
}
uint32_t SimCamera::GetIndex() const
{
    return m_owner.indexOf(this);
}

OrbCamErr SimCamera::ForceIP(uint32_t address, uint32_t mask, uint32_t gateway)
{
    if (m_owner.GetType() != OrbCam::InterfaceGigEVision)
        return OrbCamErrInvalidState;
    if (!reachable())
        return OrbCamErrNoDevice;
    if (address == 0 || !validMask(mask))
        return OrbCamErrInvalidArgument;
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    m_ip = address;
    m_mask = mask;
    m_gateway = gateway;
    writeNetwork();
    return OrbCamOk;
}

namespace {

// A network's round trip, taken before the camera is touched; a thread that
// must not wait is refused, as a real camera's port refuses it.
void answerAfter(const std::atomic<uint32_t> &milliseconds)
{
    if (const uint32_t wait = milliseconds.load()) {
        if (GenApi::NoWaitScope::IsActive())
            throw WOULD_WAIT_EXCEPTION("the camera answers after %u ms", unsigned(wait));
        std::this_thread::sleep_for(std::chrono::milliseconds(wait));
    }
}

} // namespace

// A camera known to be lost is refused at once, as the real backend refuses
// it once it has noticed.
void SimCamera::refuseWhileLost() const
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    if (!reachable())
        throw ACCESS_EXCEPTION("camera %s does not answer", m_id.c_str());
}

void SimCamera::Read(void *buffer, int64_t address, int64_t length)
{
    refuseWhileLost();
    answerAfter(answerTime);
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    if (!reachable())
        throw ACCESS_EXCEPTION("camera %s does not answer", m_id.c_str());
    for (const Failure &f : m_failures)
        if ((f.mode & OrbCamSim::FailRead) && f.range.overlaps(address, length))
            throw ACCESS_EXCEPTION("simulated read failure of feature '%s'", f.feature.c_str());
    if (m_temperature.overlaps(address, length)) {
        const double t = static_cast<double>(simClock()) / 1000.0;
        const double celsius = m_model->temperatureBase
            + m_model->temperatureAmplitude * std::sin(2 * M_PI * t / m_model->temperaturePeriod);
        writeNumber(m_temperature,
                    static_cast<uint64_t>(std::llround(celsius * m_model->temperatureScale)));
    }
    m_memory.Read(buffer, address, length);
}

void SimCamera::Write(const void *buffer, int64_t address, int64_t length)
{
    refuseWhileLost();
    answerAfter(answerTime);
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    if (!reachable())
        throw ACCESS_EXCEPTION("camera %s does not answer", m_id.c_str());
    for (const Failure &f : m_failures)
        if ((f.mode & OrbCamSim::FailWrite) && f.range.overlaps(address, length))
            throw ACCESS_EXCEPTION("simulated write failure of feature '%s'", f.feature.c_str());
    m_memory.Write(buffer, address, length);
    // Kept for TakeWrites, bounded: a camera nobody asks keeps its newest.
    if (m_writes.size() >= 4096)
        m_writes.erase(m_writes.begin(), m_writes.begin() + 2048);
    m_writes.push_back(Range { address, length });
    if (m_trigger.overlaps(address, length))
        writeNumber(m_counter, readNumber(m_counter) + 1);
    // Commands finish at once: the device clears the command value.
    for (const Range &r : m_selfClearing)
        if (r.overlaps(address, length))
            writeNumber(r, 0);
}

std::vector<Range> SimCamera::takeWrites()
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    return std::exchange(m_writes, {});
}

OrbCamErr SimCamera::failFeature(const std::string &feature, uint32_t mode)
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    INode *node = m_setupMap->_GetNode(feature.c_str());
    if (!node)
        return OrbCamErrGenICamUnknownParam;
    NodeList_t terminals;
    node->GetChildren(terminals, ctTerminalNodes);
    bool any = false;
    for (INode *t : terminals) {
        CRegisterPtr reg(t);
        if (!reg)
            continue;
        m_failures.push_back({ Range { reg->GetAddress(), reg->GetLength() }, mode, feature });
        any = true;
    }
    return any ? OrbCamOk : OrbCamErrInvalidArgument;
}

void SimCamera::clearFailures()
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    m_failures.clear();
}

// ---------------------------------------------------------------------------
// SimInterface

namespace {
HostSide hostOf(const InterfaceConfig &config)
{
    HostSide host;
    host.id = config.id;
    host.displayName = config.displayName;
    host.description = config.description;
    host.type = config.type;
    host.ip = config.ip;
    host.mask = config.mask;
    host.gateway = config.gateway;
    host.mac = config.mac;
    return host;
}
} // namespace

SimInterface::SimInterface(SimSystem &system, const InterfaceConfig &config)
    : InterfaceFeatures(hostOf(config))
    , m_system(system)
{
    for (const CameraConfig &camera : config.cameras)
        addCamera(camera);
}

CameraNetwork SimInterface::networkOf(const OrbCam::DeviceInfo *info) const
{
    const auto *camera = static_cast<const SimCamera *>(info);
    CameraNetwork network;
    network.mac = camera->mac();
    network.ip = camera->ip();
    network.mask = camera->mask();
    network.gateway = camera->gateway();
    network.usbVersion = camera->usbVersion();
    return network;
}

SimCamera *SimInterface::addCamera(const CameraConfig &config)
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    CameraConfig c = config;
    if (c.serial.empty())
        c.serial = m_host.id + "-" + std::to_string(m_nextSerial);
    ++m_nextSerial;
    std::string id = m_host.id + "/" + c.serial;
    if (find(id))
        throw std::runtime_error("camera " + id + " exists already");
    m_cameras.push_back(std::make_shared<SimCamera>(*this, id, c));
    return m_cameras.back().get();
}

void SimInterface::moveCamera(const SimCamera *camera, size_t position)
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    const auto it = std::find_if(m_cameras.begin(), m_cameras.end(),
                                 [camera](const auto &c) { return c.get() == camera; });
    if (it == m_cameras.end())
        return;
    std::shared_ptr<SimCamera> moved = *it;
    m_cameras.erase(it);
    m_cameras.insert(m_cameras.begin()
                         + static_cast<std::ptrdiff_t>(std::min(position, m_cameras.size())),
                     std::move(moved));
}

size_t SimInterface::cameraCount() const
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    return m_cameras.size();
}

SimCamera *SimInterface::find(const std::string &id) const
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    for (const auto &camera : m_cameras)
        if (id == camera->GetID())
            return camera.get();
    return nullptr;
}

std::shared_ptr<SimCamera> SimInterface::share(const SimCamera *camera) const
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    for (const auto &c : m_cameras)
        if (c.get() == camera)
            return c;
    return nullptr;
}

uint32_t SimInterface::indexOf(const SimCamera *camera) const
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    auto it = std::find(m_found.begin(), m_found.end(), camera);
    return it == m_found.end() ? UINT32_MAX : static_cast<uint32_t>(it - m_found.begin());
}

std::atomic<uint32_t> &discoveryTime()
{
    static std::atomic<uint32_t> milliseconds { 0 };
    return milliseconds;
}

OrbCamErr SimInterface::UpdateDeviceList(bool *changed, uint32_t timeoutMs)
{
    // The wait of a network's discovery, holding nothing.
    if (const uint32_t wait = std::min(discoveryTime().load(), timeoutMs))
        std::this_thread::sleep_for(std::chrono::milliseconds(wait));
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    std::vector<OrbCam::DeviceInfo *> found;
    for (const auto &camera : m_cameras)
        if (camera->reachable())
            found.push_back(camera.get());
    if (changed)
        *changed = found != m_found;
    m_found = std::move(found);
    return OrbCamOk;
}

OrbCam::DeviceInfoList *SimInterface::GetDeviceInfoList()
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    return new DeviceInfoVector(m_found, true);
}

// ---------------------------------------------------------------------------
// SimSystem

SimSystem::SimSystem(const SystemConfig &config)
{
    for (const InterfaceConfig &ic : config.interfaces)
        m_interfaces.push_back(std::make_unique<SimInterface>(*this, ic));
}

namespace {

class SimPendingOpen final : public PendingOpen {
public:
    SimPendingOpen(SimSystem &system, std::shared_ptr<SimCamera> camera, uint32_t access)
        : m_system(system)
        , m_camera(std::move(camera))
        , m_access(access)
    {
    }
    OrbCam::Device *open() override { return new SimDevice(m_system, m_camera, m_access); }

private:
    SimSystem &m_system;
    std::shared_ptr<SimCamera> m_camera;
    uint32_t m_access;
};

} // namespace

std::unique_ptr<PendingOpen> SimSystem::prepareOpen(OrbCam::DeviceInfo *info, uint32_t access,
                                                    OrbCamErr &err)
{
    auto *sim = dynamic_cast<SimCamera *>(info);
    if (!sim || findCamera(sim->GetID()) != sim) {
        err = OrbCamErrInvalidArgument;
        return nullptr;
    }
    std::shared_ptr<SimCamera> camera
        = static_cast<SimInterface *>(sim->GetInterface())->share(sim);
    if (!camera->reachable()) {
        err = OrbCamErrNoDevice;
        return nullptr;
    }
    // Held for control by another application: monitoring only.
    const uint32_t status = camera->GetAccessStatus();
    if (status != OrbCam::AccessReadWrite
        && !(status == OrbCam::AccessReadOnly && access == OrbCam::AccessMonitor)) {
        err = OrbCamErrInvalidState;
        return nullptr;
    }
    err = OrbCamOk;
    return std::make_unique<SimPendingOpen>(*this, std::move(camera), access);
}

bool SimSystem::closeDevice(OrbCam::Device *device)
{
    auto *sim = dynamic_cast<SimDevice *>(device);
    if (!sim || &sim->system() != this)
        return false;
    delete sim;
    return true;
}

std::unique_ptr<Backend> createSimBackend(const std::string &setup)
{
    return std::make_unique<SimSystem>(parseConfig(setup.empty() ? defaultConfigJson() : setup));
}

SimSystem::~SimSystem() = default;

OrbCam::InterfaceList *SimSystem::GetInterfaces(uint32_t typeMask)
{
    std::vector<OrbCam::Interface *> all;
    for (const auto &i : m_interfaces)
        all.push_back(i.get());
    return m_lists.select(all, typeMask);
}

SimCamera *SimSystem::findCamera(const std::string &id) const
{
    for (const auto &i : m_interfaces)
        if (SimCamera *camera = i->find(id))
            return camera;
    return nullptr;
}

SimInterface *SimSystem::findInterface(const std::string &id) const
{
    for (const auto &i : m_interfaces)
        if (id == i->GetID())
            return i.get();
    return nullptr;
}

// ---------------------------------------------------------------------------
// SimDevice

SimDevice::SimDevice(SimSystem &system, std::shared_ptr<SimCamera> camera, uint32_t access)
    : m_system(system)
    , m_camera(std::move(camera))
    , m_port(*m_camera, access == OrbCam::AccessMonitor ? RO : RW)
    , m_map(m_camera->GetID())
{
    loadDescription(m_map, m_camera->model());
    m_map._Connect(&m_port, "Device");
    SimCamera *cam = m_camera.get();
    m_params = std::make_unique<ParamArray>(m_map._Ptr, [cam] { return cam->reachable(); });
    m_system.openDevices().attach(this);
}

SimDevice::~SimDevice()
{
    m_system.openDevices().detach(this);
    m_params.reset(); // before the node map it listens to
}

void SimDevice::Port::Write(const void *b, int64_t a, int64_t l)
{
    if (m_mode != RW && m_mode != WO)
        throw ACCESS_EXCEPTION("the camera was opened read-only");
    m_camera.Write(b, a, l);
}

OrbGenParam::Array *SimDevice::GetParams(OrbCamErr *err)
{
    if (m_camera->paramsWithheld) {
        if (err)
            *err = OrbCamErrFileRead;
        return nullptr;
    }
    if (err)
        *err = OrbCamOk;
    return m_params.get();
}

OrbCamErr SimDevice::RegisterEventCallback(uint32_t event, OrbCam::EventCallback callback,
                                           void *context)
{
    return m_events.add(event, callback, context);
}

OrbCamErr SimDevice::UnregisterEventCallback(uint32_t event, OrbCam::EventCallback callback,
                                             void *context)
{
    return m_events.remove(event, callback, context);
}

void SimDevice::deliver(uint32_t event)
{
    // Values cached before a loss, or while the camera was away, are stale.
    if (event == OrbCam::EventDeviceReturned || event == OrbCam::EventDeviceLost)
        m_map._InvalidateNodes();
    m_events.deliver(event);
}

} // namespace OrbCamImpl

namespace OrbCamSim {

void SetClock(int64_t milliseconds)
{
    OrbCamImpl::g_manualTime = milliseconds;
    OrbCamImpl::g_manualClock = true;
}

void AdvanceClock(int64_t milliseconds)
{
    if (!OrbCamImpl::g_manualClock)
        SetClock(OrbCamImpl::simClock());
    OrbCamImpl::g_manualTime += milliseconds;
}

int64_t Clock()
{
    return OrbCamImpl::simClock();
}

} // namespace OrbCamSim
