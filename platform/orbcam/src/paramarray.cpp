#include "paramarray.h"

#include <algorithm>
#include <vector>

using namespace GenApi;

namespace OrbCamImpl {

// What every parameter kind shares: identity, access, listeners and the
// translation of GenICam exceptions into codes.
template <class Base> class ParamCommon : public Base, public ParamArray::Owned {
public:
    ParamCommon(ParamArray &array, INode *node)
        : m_array(array)
        , m_node(node)
        , m_name(node->GetName().str())
    {
    }
    ~ParamCommon() override
    {
        if (m_callback)
            Deregister(m_callback);
    }

    const char *GetName() const override { return m_name.c_str(); }
    bool IsAvailable() const override
    {
        return mode([](EAccessMode m) { return GenApi::IsAvailable(m); });
    }
    bool IsReadable() const override
    {
        return mode([](EAccessMode m) { return GenApi::IsReadable(m); });
    }
    bool IsWritable() const override
    {
        return mode([](EAccessMode m) { return GenApi::IsWritable(m); });
    }
    INode *GetNode() const override { return m_node; }

    OrbCamErr RegisterEventSink(OrbGenParam::ParamEventSink *sink) override
    {
        if (!sink)
            return OrbCamErrInvalidArgument;
        std::lock_guard<std::recursive_mutex> lock(m_sinkMutex);
        if (std::find(m_sinks.begin(), m_sinks.end(), sink) != m_sinks.end())
            return OrbCamOk;
        if (!m_callback) {
            try {
                m_callback
                    = Register(m_node, *this, &ParamCommon::onNodeChanged, cbPostOutsideLock);
            } catch (const GenICam::GenericException &e) {
                return errorFor(e);
            }
        }
        m_sinks.push_back(sink);
        return OrbCamOk;
    }

    OrbCamErr UnregisterEventSink(OrbGenParam::ParamEventSink *sink) override
    {
        // Holding the dispatch lock makes a call in progress finish first.
        std::lock_guard<std::recursive_mutex> lock(m_sinkMutex);
        auto it = std::find(m_sinks.begin(), m_sinks.end(), sink);
        if (it == m_sinks.end())
            return OrbCamErrInvalidArgument;
        m_sinks.erase(it);
        return OrbCamOk;
    }

protected:
    // Runs f, turning a lost camera and GenICam exceptions into codes.
    template <class T, class F> T guarded(OrbCamErr *err, T fallback, F &&f) const
    {
        OrbCamErr code = OrbCamOk;
        T result = fallback;
        if (!m_array.alive()) {
            code = OrbCamErrNoDevice;
        } else {
            try {
                result = f();
            } catch (const GenICam::GenericException &e) {
                code = m_array.alive() ? errorFor(e) : OrbCamErrNoDevice;
                result = fallback;
            }
        }
        if (err)
            *err = code;
        return result;
    }
    template <class F> OrbCamErr run(F &&f)
    {
        OrbCamErr code = OrbCamOk;
        guarded<int>(&code, 0, [&] {
            f();
            return 0;
        });
        return code;
    }

    ParamArray &m_array;
    INode *m_node;

private:
    template <class F> bool mode(F &&test) const
    {
        return guarded<bool>(nullptr, false, [&] { return test(m_node->GetAccessMode()); });
    }

    void onNodeChanged(INode *)
    {
        std::lock_guard<std::recursive_mutex> lock(m_sinkMutex);
        const std::vector<OrbGenParam::ParamEventSink *> sinks = m_sinks;
        for (OrbGenParam::ParamEventSink *sink : sinks) {
            if (std::find(m_sinks.begin(), m_sinks.end(), sink) != m_sinks.end())
                sink->OnParameterUpdate(this);
        }
    }

    std::string m_name;
    std::recursive_mutex m_sinkMutex;
    std::vector<OrbGenParam::ParamEventSink *> m_sinks;
    CallbackHandleType m_callback = 0;
};

namespace {

class IntParam final : public ParamCommon<OrbGenParam::Int> {
public:
    using ParamCommon::ParamCommon;
    int64_t GetValue(OrbCamErr *err) const override
    {
        return guarded<int64_t>(err, 0, [&] { return CIntegerPtr(m_node)->GetValue(); });
    }
    int64_t GetMin(OrbCamErr *err) const override
    {
        return guarded<int64_t>(err, 0, [&] { return CIntegerPtr(m_node)->GetMin(); });
    }
    int64_t GetMax(OrbCamErr *err) const override
    {
        return guarded<int64_t>(err, 0, [&] { return CIntegerPtr(m_node)->GetMax(); });
    }
    int64_t GetInc(OrbCamErr *err) const override
    {
        return guarded<int64_t>(err, 0, [&] { return CIntegerPtr(m_node)->GetInc(); });
    }
    OrbCamErr SetValue(int64_t value) override
    {
        return run([&] { CIntegerPtr(m_node)->SetValue(value); });
    }
};

class FloatParam final : public ParamCommon<OrbGenParam::Float> {
public:
    using ParamCommon::ParamCommon;
    double GetValue(OrbCamErr *err) const override
    {
        return guarded<double>(err, 0, [&] { return CFloatPtr(m_node)->GetValue(); });
    }
    double GetMin(OrbCamErr *err) const override
    {
        return guarded<double>(err, 0, [&] { return CFloatPtr(m_node)->GetMin(); });
    }
    double GetMax(OrbCamErr *err) const override
    {
        return guarded<double>(err, 0, [&] { return CFloatPtr(m_node)->GetMax(); });
    }
    double GetInc(OrbCamErr *err) const override
    {
        return guarded<double>(err, 0, [&] { return CFloatPtr(m_node)->GetInc(); });
    }
    OrbCamErr SetValue(double value) override
    {
        return run([&] { CFloatPtr(m_node)->SetValue(value); });
    }
};

class EnumEntryImpl final : public OrbGenParam::EnumEntry {
public:
    explicit EnumEntryImpl(IEnumEntry *entry)
        : m_entry(entry)
        , m_value(entry->GetValue())
        , m_name(entry->GetSymbolic().str())
    {
    }
    int64_t GetValue() const override { return m_value; }
    const char *GetName() const override { return m_name.c_str(); }
    bool IsAvailable() const override
    {
        try {
            return GenApi::IsAvailable(m_entry->GetNode());
        } catch (const GenICam::GenericException &) {
            return false; // what cannot be established is not offered
        }
    }

private:
    IEnumEntry *m_entry;
    int64_t m_value;
    std::string m_name;
};

class EnumParam final : public ParamCommon<OrbGenParam::Enum> {
public:
    EnumParam(ParamArray &array, INode *node)
        : ParamCommon(array, node)
    {
        NodeList_t entries;
        CEnumerationPtr(node)->GetEntries(entries);
        for (INode *entry : entries)
            if (auto *e = dynamic_cast<IEnumEntry *>(entry))
                m_entries.push_back(std::make_unique<EnumEntryImpl>(e));
    }
    size_t GetEntryCount() const override { return m_entries.size(); }
    OrbGenParam::EnumEntry *GetEntry(size_t index) const override
    {
        return index < m_entries.size() ? m_entries[index].get() : nullptr;
    }
    int64_t GetValue(OrbCamErr *err) const override
    {
        return guarded<int64_t>(err, 0, [&] { return CEnumerationPtr(m_node)->GetIntValue(); });
    }
    const char *GetValueName(OrbCamErr *err) const override
    {
        OrbCamErr code = OrbCamOk;
        const int64_t value = GetValue(&code);
        if (code == OrbCamOk) {
            for (const auto &e : m_entries)
                if (e->GetValue() == value) {
                    if (err)
                        *err = OrbCamOk;
                    return e->GetName();
                }
            code = OrbCamErrGenICamOutOfRange;
        }
        if (err)
            *err = code;
        return "";
    }
    OrbCamErr SetValue(int64_t value) override
    {
        return run([&] { CEnumerationPtr(m_node)->SetIntValue(value); });
    }
    OrbCamErr SetValueByName(const char *name) override
    {
        if (!name)
            return OrbCamErrInvalidArgument;
        return run([&] { CEnumerationPtr(m_node)->FromString(name); });
    }

private:
    std::vector<std::unique_ptr<EnumEntryImpl>> m_entries;
};

class BooleanParam final : public ParamCommon<OrbGenParam::Boolean> {
public:
    using ParamCommon::ParamCommon;
    bool GetValue(OrbCamErr *err) const override
    {
        return guarded<bool>(err, false, [&] { return CBooleanPtr(m_node)->GetValue(); });
    }
    OrbCamErr SetValue(bool value) override
    {
        return run([&] { CBooleanPtr(m_node)->SetValue(value); });
    }
};

class CommandParam final : public ParamCommon<OrbGenParam::Command> {
public:
    using ParamCommon::ParamCommon;
    OrbCamErr Execute() override
    {
        return run([&] { CCommandPtr(m_node)->Execute(); });
    }
    bool IsDone(OrbCamErr *err) const override
    {
        return guarded<bool>(err, false, [&] { return CCommandPtr(m_node)->IsDone(); });
    }
};

class StringParam final : public ParamCommon<OrbGenParam::String> {
public:
    using ParamCommon::ParamCommon;
    std::string GetValue(OrbCamErr *err) const override
    {
        return guarded<std::string>(err, std::string(),
                                    [&] { return CStringPtr(m_node)->GetValue().str(); });
    }
    OrbCamErr SetValue(const char *utf8) override
    {
        if (!utf8)
            return OrbCamErrInvalidArgument;
        return run([&] { CStringPtr(m_node)->SetValue(utf8); });
    }
};

} // namespace

ParamArray::ParamArray(INodeMap *map, std::function<bool()> alive)
    : m_map(map)
    , m_alive(std::move(alive))
{
}

ParamArray::~ParamArray() = default;

INodeMap *ParamArray::GetNodeMap(int index)
{
    return index == 0 ? m_map : nullptr;
}

OrbGenParam::Param *ParamArray::GetParam(const char *name)
{
    if (!name || !m_map)
        return nullptr;
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_params.find(name);
    if (it != m_params.end())
        return it->second.second;
    INode *node = m_map->GetNode(name);
    if (!node)
        return nullptr;
    std::unique_ptr<Owned> owned;
    OrbGenParam::Param *param = nullptr;
    auto make = [&](auto created) {
        param = created.get();
        owned = std::move(created);
    };
    switch (node->GetPrincipalInterfaceType()) {
    case intfIInteger:
        make(std::make_unique<IntParam>(*this, node));
        break;
    case intfIFloat:
        make(std::make_unique<FloatParam>(*this, node));
        break;
    case intfIEnumeration:
        make(std::make_unique<EnumParam>(*this, node));
        break;
    case intfIBoolean:
        make(std::make_unique<BooleanParam>(*this, node));
        break;
    case intfICommand:
        make(std::make_unique<CommandParam>(*this, node));
        break;
    case intfIString:
        make(std::make_unique<StringParam>(*this, node));
        break;
    default:
        return nullptr; // categories, registers and ports are not parameters
    }
    m_params.emplace(name, std::make_pair(std::move(owned), param));
    return param;
}

OrbGenParam::Int *ParamArray::GetInt(const char *name)
{
    return dynamic_cast<OrbGenParam::Int *>(GetParam(name));
}
OrbGenParam::Float *ParamArray::GetFloat(const char *name)
{
    return dynamic_cast<OrbGenParam::Float *>(GetParam(name));
}
OrbGenParam::Enum *ParamArray::GetEnum(const char *name)
{
    return dynamic_cast<OrbGenParam::Enum *>(GetParam(name));
}
OrbGenParam::Boolean *ParamArray::GetBoolean(const char *name)
{
    return dynamic_cast<OrbGenParam::Boolean *>(GetParam(name));
}
OrbGenParam::Command *ParamArray::GetCommand(const char *name)
{
    return dynamic_cast<OrbGenParam::Command *>(GetParam(name));
}
OrbGenParam::String *ParamArray::GetString(const char *name)
{
    return dynamic_cast<OrbGenParam::String *>(GetParam(name));
}

} // namespace OrbCamImpl
