#include "nodes.h"

#include "nodemap.h"
#include "text.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>

namespace GenApi_3_0 {
namespace impl {

namespace {

// Registers longer than this are a description error, not a request to
// allocate gigabytes.
constexpr int64_t MaxRegisterLength = 1 << 24;

uint64_t decode(const std::vector<uint8_t> &bytes, EEndianess endianess)
{
    uint64_t value = 0;
    const size_t n = bytes.size();
    for (size_t i = 0; i < n; ++i) {
        const size_t at = endianess == BigEndian ? i : n - 1 - i;
        value = (value << 8) | bytes[at];
    }
    return value;
}

std::vector<uint8_t> encode(uint64_t value, size_t length, EEndianess endianess)
{
    std::vector<uint8_t> bytes(length);
    for (size_t i = 0; i < length; ++i) {
        const size_t at = endianess == BigEndian ? length - 1 - i : i;
        bytes[at] = static_cast<uint8_t>(value & 0xFF);
        value >>= 8;
    }
    return bytes;
}

std::string hex(int64_t value)
{
    return formatInt(value, HexNumber);
}

} // namespace

// ---------------------------------------------------------------------------
// RegisterCore

bool RegisterCore::applyProperty(const Property &p)
{
    const std::string_view n = p.name;
    if (n == "Address") {
        m_constAddress = static_cast<int64_t>(static_cast<uint64_t>(m_constAddress)
                                              + static_cast<uint64_t>(propertyInt(m_owner, p)));
        m_hasConstAddress = true;
    } else if (n == "pAddress")
        m_pAddress.push_back(propertyRef(p));
    else if (n == "pIndex") {
        // Each pIndex adds its index times its offset to the address.
        Index index;
        index.index = propertyRef(p);
        if (pugi::xml_attribute offset = p.element.attribute("Offset")) {
            auto value = parseInt(offset.value());
            if (!value)
                throwBadProperty(m_owner, p, "an index with a numeric Offset attribute");
            index.offset = *value;
        } else if (pugi::xml_attribute pOffset = p.element.attribute("pOffset")) {
            index.pOffset.name = trim(pOffset.value());
            index.pOffset.pos = p.pos();
        }
        m_indices.push_back(std::move(index));
    } else if (n == "Length") {
        m_length = propertyInt(m_owner, p);
        m_hasLength = true;
    } else if (n == "pLength")
        m_pLength = propertyRef(p);
    else if (n == "AccessMode")
        m_accessMode = propertyAccessMode(m_owner, p, RO);
    else if (n == "pPort")
        m_pPort = propertyRef(p);
    else if (n == "Cachable") {
        if (!parseEnum(p.text, m_caching)) {
            m_caching = WriteThrough;
            keepDefault(m_owner, p, "a caching mode (NoCache, WriteThrough or WriteAround)",
                        "WriteThrough");
        }
    } else if (n == "Endianess") {
        if (equalsIgnoreCase(p.text, "BigEndian"))
            m_endianess = BigEndian;
        else if (equalsIgnoreCase(p.text, "LittleEndian"))
            m_endianess = LittleEndian;
        else
            keepDefault(m_owner, p, "BigEndian or LittleEndian", "LittleEndian");
    } else
        return false;
    return true;
}

void RegisterCore::addAddressNode(Node *node)
{
    Ref ref;
    ref.name = node->name();
    ref.node = node;
    m_pAddress.push_back(ref);
}

void RegisterCore::collectRefs(std::vector<Ref *> &reading)
{
    reading.push_back(&m_pPort);
    for (Ref &r : m_pAddress)
        reading.push_back(&r);
    for (Index &index : m_indices) {
        reading.push_back(&index.index);
        reading.push_back(&index.pOffset);
    }
    reading.push_back(&m_pLength);
}

void RegisterCore::finishLoad()
{
    // A register without pPort or Length loads, so that the rest of the
    // description stays usable; reading it reports what is missing.
    if (m_pPort.node && !m_pPort.node->asPort())
        throw PROPERTY_EXCEPTION("line %u: node '%s': pPort '%s' is not a Port", m_owner.line(),
                                 std::string(m_owner.name()).c_str(),
                                 std::string(m_pPort.name).c_str());
}

bool RegisterCore::staticLocation(const Node *&port, int64_t &address, int64_t &len) const
{
    if (!m_pAddress.empty() || !m_indices.empty() || m_pLength.isSet() || !m_hasConstAddress
        || !m_pPort.node)
        return false;
    port = m_pPort.node;
    address = m_constAddress;
    len = m_length;
    return true;
}

int64_t RegisterCore::address()
{
    uint64_t sum = static_cast<uint64_t>(m_constAddress);
    for (Ref &r : m_pAddress)
        sum += static_cast<uint64_t>(r.node->getInt(false));
    for (Index &index : m_indices) {
        if (!index.index.node)
            continue;
        // Without Offset or pOffset the index counts whole registers: an
        // indexed register is an array of registers of its own length, and
        // a step of one byte would make neighbouring entries overlap. The
        // standard leaves the default open, and the open implementations
        // differ (one byte, or the register's length).
        const int64_t offset = index.pOffset.node ? index.pOffset.node->getInt(false)
            : index.offset                        ? *index.offset
                                                  : length();
        sum += static_cast<uint64_t>(index.index.node->getInt(false))
            * static_cast<uint64_t>(offset);
    }
    return static_cast<int64_t>(sum);
}

int64_t RegisterCore::length()
{
    if (!m_hasLength && !m_pLength.node)
        m_owner.throwRuntime("register has no Length");
    const int64_t len = m_pLength.node ? m_pLength.node->getInt(false) : m_length;
    if (len <= 0 || len > MaxRegisterLength)
        m_owner.throwRuntime("register length " + std::to_string(len) + " is not valid");
    return len;
}

EAccessMode RegisterCore::access()
{
    if (!m_pPort.node)
        return NA;
    return Combine(m_accessMode, m_pPort.node->access());
}

IPort *RegisterCore::port()
{
    if (!m_pPort.isSet())
        m_owner.throwAccess("register has no pPort");
    auto *portNode = static_cast<Port *>(m_pPort.node);
    if (!portNode || !portNode->connected())
        m_owner.throwAccess("port '" + std::string(m_pPort.name) + "' is not connected");
    return portNode->connected();
}

const std::vector<uint8_t> &RegisterCore::read(bool ignoreCache)
{
    if (!ignoreCache && m_cacheValid && m_caching != NoCache)
        return m_cache;
    const EAccessMode mode = access();
    if (!IsReadable(mode))
        m_owner.throwAccess("register cannot be read (access mode "
                            + EAccessModeClass::ToString(mode).str() + ")");
    const int64_t len = length();
    const int64_t addr = address();
    IPort *target = port();
    // Into a buffer of its own: a failed read leaves the last bytes read.
    m_readBuffer.resize(static_cast<size_t>(len));
    auto where = [&] { return std::to_string(len) + " bytes at " + hex(addr); };
    try {
        target->Read(m_readBuffer.data(), addr, len);
    } catch (const WouldWaitException &) {
        throw; // nothing happened: the caller reads elsewhere
    } catch (const TimeoutException &e) {
        throw TIMEOUT_EXCEPTION("%s: reading %s timed out: %s", m_owner.label().c_str(),
                                where().c_str(), e.GetDescription());
    } catch (const GenericException &e) {
        m_owner.throwAccess("reading " + where() + " failed: " + e.GetDescription());
    } catch (const std::exception &e) {
        m_owner.throwAccess("reading " + where() + " failed: " + e.what());
    }
    m_lastRead.swap(m_readBuffer);
    m_hasLastRead = true;
    if (m_caching != NoCache) {
        m_cache = m_lastRead;
        m_cacheValid = true;
    }
    return m_lastRead;
}

void RegisterCore::write(const std::vector<uint8_t> &bytes)
{
    const EAccessMode mode = access();
    if (!IsWritable(mode))
        m_owner.throwAccess("register cannot be written (access mode "
                            + EAccessModeClass::ToString(mode).str() + ")");
    const int64_t addr = address();
    IPort *target = port();
    auto where = [&] { return std::to_string(bytes.size()) + " bytes at " + hex(addr); };
    m_cacheValid = false;
    try {
        target->Write(bytes.data(), addr, static_cast<int64_t>(bytes.size()));
    } catch (const WouldWaitException &) {
        throw; // nothing happened: the caller reads elsewhere
    } catch (const TimeoutException &e) {
        throw TIMEOUT_EXCEPTION("%s: writing %s timed out: %s", m_owner.label().c_str(),
                                where().c_str(), e.GetDescription());
    } catch (const GenericException &e) {
        m_owner.throwAccess("writing " + where() + " failed: " + e.GetDescription());
    } catch (const std::exception &e) {
        m_owner.throwAccess("writing " + where() + " failed: " + e.what());
    }
    if (m_caching == WriteThrough) {
        m_cache = bytes;
        m_cacheValid = true;
    }
    m_owner.map().recordWrite(&m_owner);
}

bool RegisterCore::poll()
{
    // Compared with what the previous poll saw, not with the last read:
    // other readers (a view repainting) must not hide a change from the
    // callbacks of everybody else. The first poll compares with the last
    // read, if there was one.
    const bool hadValue = m_hasPolled || m_hasLastRead;
    if (!m_hasPolled && m_hasLastRead)
        m_lastPolled = m_lastRead;
    const bool failedBefore = m_lastPollFailed;
    m_cacheValid = false;
    try {
        read(true);
    } catch (const WouldWaitException &) {
        throw; // not polled: no news either way
    } catch (const GenericException &) {
        // The failure itself is news once; the reader sees the exception.
        m_lastPollFailed = true;
        return !failedBefore;
    }
    m_lastPollFailed = false;
    const bool changed = hadValue && m_lastPolled != m_lastRead;
    m_lastPolled = m_lastRead;
    m_hasPolled = true;
    return failedBefore || changed;
}

// ---------------------------------------------------------------------------
// IntReg

IntReg::IntReg(NodeMap &map, std::string_view name, const char *typeName, bool masked)
    : IntegerBase(map, name, typeName)
    , m_core(*this)
    , m_masked(masked)
{
}

bool IntReg::applyProperty(const Property &p)
{
    if (m_core.applyProperty(p))
        return true;
    const std::string_view n = p.name;
    if (n == "Sign") {
        if (equalsIgnoreCase(p.text, "Signed"))
            m_signed = true;
        else if (equalsIgnoreCase(p.text, "Unsigned"))
            m_signed = false;
        else
            keepDefault(*this, p, "Signed or Unsigned", "Unsigned");
    } else if (n == "LSB")
        m_lsb = static_cast<int>(propertyInt(*this, p));
    else if (n == "MSB")
        m_msb = static_cast<int>(propertyInt(*this, p));
    else if (n == "Bit")
        m_lsb = m_msb = static_cast<int>(propertyInt(*this, p));
    else
        return IntegerBase::applyProperty(p);
    return true;
}

void IntReg::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    IntegerBase::collectRefs(reading, other);
    m_core.collectRefs(reading);
}

void IntReg::finishLoad()
{
    m_core.finishLoad();
    m_cachingMode = m_core.caching();
    if (m_masked && (m_lsb < 0 || m_msb < 0))
        throw PROPERTY_EXCEPTION("line %u: node '%s' has no LSB/MSB or Bit", line(),
                                 std::string(m_name).c_str());
}

void IntReg::field(int64_t registerBits, int &shift, int &width) const
{
    const int low = std::min(m_lsb, m_msb);
    const int high = std::max(m_lsb, m_msb);
    if (high >= registerBits)
        throwRuntime("bit " + std::to_string(high) + " lies outside the register's "
                     + std::to_string(registerBits) + " bits");
    width = high - low + 1;
    // Big-endian registers number bit 0 as the most significant bit.
    shift = m_core.endianess() == BigEndian ? static_cast<int>(registerBits) - 1 - high : low;
}

int IntReg::valueBits()
{
    const int64_t len = m_core.length();
    if (len > 8)
        throwRuntime("register length " + std::to_string(len)
                     + " is longer than the 8 bytes an integer can hold");
    if (!m_masked)
        return static_cast<int>(len * 8);
    int shift = 0, width = 0;
    field(len * 8, shift, width);
    return width;
}

int64_t IntReg::rawMin()
{
    const int bits = valueBits();
    if (!m_signed)
        return 0;
    return bits >= 64 ? INT64_MIN : -(int64_t(1) << (bits - 1));
}

int64_t IntReg::rawMax()
{
    const int bits = valueBits();
    if (m_signed)
        return bits >= 64 ? INT64_MAX : (int64_t(1) << (bits - 1)) - 1;
    return bits >= 63 ? INT64_MAX : (int64_t(1) << bits) - 1;
}

int64_t IntReg::doGetInt(bool ignoreCache)
{
    const int bits = valueBits(); // validates length and bit range first
    const std::vector<uint8_t> &bytes = m_core.read(ignoreCache);
    uint64_t raw = decode(bytes, m_core.endianess());
    if (m_masked) {
        int shift = 0, width = 0;
        field(static_cast<int64_t>(bytes.size()) * 8, shift, width);
        raw >>= shift;
        if (width < 64)
            raw &= (uint64_t(1) << width) - 1;
    }
    if (m_signed && bits < 64 && (raw >> (bits - 1)) & 1)
        raw |= ~((uint64_t(1) << bits) - 1);
    return static_cast<int64_t>(raw);
}

void IntReg::doPutInt(int64_t value)
{
    const int64_t low = rawMin();
    const int64_t high = rawMax();
    if (value < low || value > high)
        throwRange("value " + std::to_string(value) + " does not fit the register (range ["
                   + std::to_string(low) + ", " + std::to_string(high) + "])");
    const size_t len = static_cast<size_t>(m_core.length());
    uint64_t raw = static_cast<uint64_t>(value);
    if (m_masked) {
        int shift = 0, width = 0;
        field(static_cast<int64_t>(len) * 8, shift, width);
        const uint64_t mask = (width < 64 ? (uint64_t(1) << width) - 1 : ~uint64_t(0)) << shift;
        // Read-modify-write keeps the register's other fields; a register
        // that cannot be read back gets zeros there.
        uint64_t current = 0;
        if (IsReadable(m_core.access()))
            current = decode(m_core.read(false), m_core.endianess());
        raw = (current & ~mask) | ((raw << shift) & mask);
    }
    m_core.write(encode(raw, len, m_core.endianess()));
}

// ---------------------------------------------------------------------------
// FloatReg

bool FloatReg::applyProperty(const Property &p)
{
    if (m_core.applyProperty(p))
        return true;
    if (p.name == "Sign")
        return true; // meaningless for IEEE numbers, but some vendors write it
    return FloatBase::applyProperty(p);
}

void FloatReg::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    FloatBase::collectRefs(reading, other);
    m_core.collectRefs(reading);
}

void FloatReg::finishLoad()
{
    m_core.finishLoad();
    m_cachingMode = m_core.caching();
}

double FloatReg::doGetFloat(bool ignoreCache)
{
    const std::vector<uint8_t> &bytes = m_core.read(ignoreCache);
    const uint64_t raw = decode(bytes, m_core.endianess());
    if (bytes.size() == 4) {
        const uint32_t bits32 = static_cast<uint32_t>(raw);
        float f;
        std::memcpy(&f, &bits32, sizeof f);
        return f;
    }
    if (bytes.size() == 8) {
        double d;
        std::memcpy(&d, &raw, sizeof d);
        return d;
    }
    throwRuntime("a floating-point register must be 4 or 8 bytes long, not "
                 + std::to_string(bytes.size()));
}

// A 4-byte register holds IEEE single precision: its range is what a float
// can hold, so that every value inside the reported range can be written.
double FloatReg::rawMin()
{
    return m_core.length() == 4 ? -double(FLT_MAX) : FloatBase::rawMin();
}

double FloatReg::rawMax()
{
    return m_core.length() == 4 ? double(FLT_MAX) : FloatBase::rawMax();
}

void FloatReg::doPutFloat(double value)
{
    const int64_t len = m_core.length();
    uint64_t raw = 0;
    if (len == 4) {
        if (std::fabs(value) > FLT_MAX && std::isfinite(value))
            throwRange("value " + formatDoubleExact(value) + " does not fit a 4-byte float");
        const float f = static_cast<float>(value);
        uint32_t bits32;
        std::memcpy(&bits32, &f, sizeof bits32);
        raw = bits32;
    } else if (len == 8) {
        std::memcpy(&raw, &value, sizeof raw);
    } else {
        throwRuntime("a floating-point register must be 4 or 8 bytes long, not "
                     + std::to_string(len));
    }
    m_core.write(encode(raw, static_cast<size_t>(len), m_core.endianess()));
}

// ---------------------------------------------------------------------------
// Register

bool Register::applyProperty(const Property &p)
{
    if (m_core.applyProperty(p))
        return true;
    return ValueNode::applyProperty(p);
}

void Register::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    ValueNode::collectRefs(reading, other);
    m_core.collectRefs(reading);
}

void Register::finishLoad()
{
    m_core.finishLoad();
    m_cachingMode = m_core.caching();
}

void registerSet(Node &node, RegisterCore &core, const uint8_t *buffer, int64_t length)
{
    NodeMap::Guard guard(node.map());
    NodeMap::WriteScope scope(node.map(), &node);
    node.requireWritable();
    const int64_t len = core.length();
    if (!buffer || length != len)
        throw INVALID_ARGUMENT_EXCEPTION("%s: Set needs a buffer of the register's %lld bytes",
                                         node.label().c_str(), static_cast<long long>(len));
    core.write(std::vector<uint8_t>(buffer, buffer + length));
}

void registerGet(Node &node, RegisterCore &core, uint8_t *buffer, int64_t length, bool ignoreCache)
{
    NodeMap::Guard guard(node.map());
    node.requireReadable();
    const int64_t len = core.length();
    if (!buffer || length != len)
        throw INVALID_ARGUMENT_EXCEPTION("%s: Get needs a buffer of the register's %lld bytes",
                                         node.label().c_str(), static_cast<long long>(len));
    const std::vector<uint8_t> &bytes = core.read(ignoreCache);
    std::memcpy(buffer, bytes.data(), bytes.size());
}

int64_t registerLength(Node &node, RegisterCore &core)
{
    NodeMap::Guard guard(node.map());
    return core.length();
}

int64_t registerAddress(Node &node, RegisterCore &core)
{
    NodeMap::Guard guard(node.map());
    return core.address();
}

#define ORB_FORWARD_IREGISTER(Class)                                                               \
    void Class::Set(const uint8_t *pBuffer, int64_t Length, bool)                                  \
    {                                                                                              \
        registerSet(*this, core(), pBuffer, Length);                                               \
    }                                                                                              \
    void Class::Get(uint8_t *pBuffer, int64_t Length, bool, bool IgnoreCache)                      \
    {                                                                                              \
        registerGet(*this, core(), pBuffer, Length, IgnoreCache);                                  \
    }                                                                                              \
    int64_t Class::GetLength()                                                                     \
    {                                                                                              \
        return registerLength(*this, core());                                                      \
    }                                                                                              \
    int64_t Class::GetAddress()                                                                    \
    {                                                                                              \
        return registerAddress(*this, core());                                                     \
    }

ORB_FORWARD_IREGISTER(Register)
ORB_FORWARD_IREGISTER(IntReg)
ORB_FORWARD_IREGISTER(FloatReg)
ORB_FORWARD_IREGISTER(StringReg)

std::string Register::toText(bool, bool ignoreCache)
{
    requireReadable();
    static const char digits[] = "0123456789ABCDEF";
    const std::vector<uint8_t> &bytes = m_core.read(ignoreCache);
    std::string text(2 + 2 * bytes.size(), '0');
    text[1] = 'x';
    for (size_t i = 0; i < bytes.size(); ++i) {
        text[2 + 2 * i] = digits[bytes[i] >> 4];
        text[3 + 2 * i] = digits[bytes[i] & 0xF];
    }
    return text;
}

void Register::fromText(const std::string &text, bool)
{
    std::string_view digits = trim(text);
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X'))
        digits.remove_prefix(2);
    const int64_t len = m_core.length();
    if (static_cast<int64_t>(digits.size()) != len * 2)
        throw INVALID_ARGUMENT_EXCEPTION("%s: '%s' is not %lld hexadecimal bytes", label().c_str(),
                                         text.c_str(), static_cast<long long>(len));
    std::vector<uint8_t> bytes(static_cast<size_t>(len));
    for (size_t i = 0; i < bytes.size(); ++i) {
        auto value = parseInt("0x" + std::string(digits.substr(i * 2, 2)));
        if (!value)
            throw INVALID_ARGUMENT_EXCEPTION("%s: '%s' is not hexadecimal", label().c_str(),
                                             text.c_str());
        bytes[i] = static_cast<uint8_t>(*value);
    }
    requireWritable();
    m_core.write(bytes);
}

} // namespace impl
} // namespace GenApi_3_0
