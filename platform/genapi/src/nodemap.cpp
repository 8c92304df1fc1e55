#include "nodemap.h"

#include "formula.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <stdexcept>
#include <unordered_map>

namespace GenApi_3_0 {
namespace impl {

// ---------------------------------------------------------------------------
// Callback handles

namespace {

struct HandleRegistry {
    std::mutex mutex;
    std::unordered_map<CallbackHandleType, Node *> nodes;
    CallbackHandleType next = 1;
};

HandleRegistry &handles()
{
    static HandleRegistry registry;
    return registry;
}

} // namespace

CallbackHandleType registerHandle(Node *node)
{
    HandleRegistry &r = handles();
    std::lock_guard<std::mutex> lock(r.mutex);
    const CallbackHandleType handle = r.next++;
    r.nodes.emplace(handle, node);
    return handle;
}

void unregisterHandle(CallbackHandleType handle)
{
    HandleRegistry &r = handles();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.nodes.erase(handle);
}

Node *nodeForHandle(CallbackHandleType handle)
{
    HandleRegistry &r = handles();
    std::lock_guard<std::mutex> lock(r.mutex);
    auto it = r.nodes.find(handle);
    return it == r.nodes.end() ? nullptr : it->second;
}

CallbackEntry::~CallbackEntry()
{
    if (callback)
        callback->Destroy();
}

void CallbackEntry::invoke(ECallbackType phase)
{
    std::lock_guard<std::recursive_mutex> lock(mutex);
    if (!alive)
        return;
    try {
        (*callback)(phase);
    } catch (const GenericException &) {
        // One misbehaving client must not keep the others from hearing of
        // the change, nor leave the node map half-notified.
    } catch (const std::exception &) {
    }
}

// ---------------------------------------------------------------------------
// NodeMap

NodeMap::NodeMap(std::string deviceName)
    : m_deviceName(std::move(deviceName))
{
}

NodeMap::~NodeMap()
{
    // Callbacks go first: a client's Deregister() after this is a no-op.
    for (auto &node : m_nodes)
        node->dropAllCallbacks();
}

NodeMap::Guard::Guard(const NodeMap &map)
    : m_map(const_cast<NodeMap &>(map))
{
    m_map.m_lock.Lock();
    ++m_map.m_lockDepth;
}

NodeMap::Guard::~Guard()
{
    if (--m_map.m_lockDepth > 0 || m_map.m_pendingOutside.empty()) {
        m_map.m_lock.Unlock();
        return;
    }
    std::vector<std::shared_ptr<CallbackEntry>> pending;
    pending.swap(m_map.m_pendingOutside);
    m_map.m_lock.Unlock();
    for (const auto &entry : pending)
        entry->invoke(cbPostOutsideLock);
}

NodeMap::WriteScope::WriteScope(NodeMap &map, Node *origin)
    : m_map(map)
{
    if (m_map.m_writeDepth++ == 0) {
        m_map.m_written.clear();
        m_map.m_writeOrigins.clear();
    }
    m_map.m_writeOrigins.push_back(origin);
}

NodeMap::WriteScope::~WriteScope()
{
    if (--m_map.m_writeDepth > 0)
        return;
    // Also after a failed write: whatever reached the device is reported.
    std::vector<Node *> written;
    written.swap(m_map.m_written);
    std::vector<Node *> roots;
    roots.swap(m_map.m_writeOrigins);
    if (written.empty())
        return;
    roots.insert(roots.end(), written.begin(), written.end());
    m_map.notifyChanged(roots, written);
}

void NodeMap::recordWrite(Node *terminal)
{
    if (std::find(m_written.begin(), m_written.end(), terminal) == m_written.end())
        m_written.push_back(terminal);
}

NodeMap::EvalGuard::EvalGuard(NodeMap &map, const Node &node)
    : m_map(map)
{
    if (++m_map.m_evalDepth > MaxEvalDepth) {
        --m_map.m_evalDepth;
        m_map.m_depthExceeded = true;
        throw RUNTIME_EXCEPTION("Node '%s': references nest deeper than %d levels; the "
                                "description probably has a cycle of references",
                                node.name().c_str(), MaxEvalDepth);
    }
}

void NodeMap::queueOutside(const std::shared_ptr<CallbackEntry> &entry)
{
    if (std::find(m_pendingOutside.begin(), m_pendingOutside.end(), entry)
        == m_pendingOutside.end())
        m_pendingOutside.push_back(entry);
}

void NodeMap::notifyChanged(const std::vector<Node *> &roots, const std::vector<Node *> &written)
{
    // The closure over "depends on" edges: every node whose value, range or
    // access may have changed. Each is invalidated and called back once.
    // Marks, by node id: reached, and written (whose cache holds what was
    // just written or polled and stays). A poll may report every register
    // of the map, so membership must not cost a search.
    constexpr char reached = 1, wasWritten = 2;
    m_visitMarks.assign(m_nodes.size(), 0);
    for (Node *n : written)
        m_visitMarks[n->id()] |= wasWritten;
    std::vector<Node *> closure;
    for (Node *n : roots) {
        if (!(m_visitMarks[n->id()] & reached)) {
            m_visitMarks[n->id()] |= reached;
            closure.push_back(n);
        }
    }
    for (size_t i = 0; i < closure.size(); ++i) {
        for (Node *d : closure[i]->dependents) {
            if (!(m_visitMarks[d->id()] & reached)) {
                m_visitMarks[d->id()] |= reached;
                closure.push_back(d);
            }
        }
    }
    for (Node *n : closure) {
        if (n->isRegister() && !(m_visitMarks[n->id()] & wasWritten))
            n->invalidateCache();
    }
    for (Node *n : closure)
        n->fireCallbacks(cbPostInsideLock);
    for (Node *n : closure)
        n->fireCallbacks(cbPostOutsideLock);
}

Node *NodeMap::find(std::string_view name) const
{
    auto it = m_byName.find(name);
    return it == m_byName.end() ? nullptr : it->second;
}

Node *NodeMap::add(std::unique_ptr<Node> &node, bool named)
{
    Node *raw = node.get();
    if (named) {
        if (!m_byName.emplace(raw->name(), raw).second)
            return nullptr;
        m_named.push_back(raw);
    }
    raw->setId(static_cast<uint32_t>(m_nodes.size()));
    m_nodes.push_back(std::move(node));
    return raw;
}

void NodeMap::reserve(size_t nodes)
{
    m_nodes.reserve(nodes);
    m_byName.reserve(nodes);
    m_named.reserve(nodes);
}

void NodeMap::finishLoad()
{
    std::vector<Ref *> reading, other;
    for (auto &node : m_nodes) {
        reading.clear();
        other.clear();
        node->collectRefs(reading, other);
        for (Ref *r : reading) {
            if (!r->node)
                node->resolve(*r, true);
            if (r->node && r->node != node.get())
                node->readingRefs.push_back(r->node);
        }
        // Links that do not feed a value: a dangling one is dropped.
        for (Ref *r : other)
            if (!r->node)
                node->resolve(*r, false);
    }
    for (auto &node : m_nodes)
        node->finishLoad();
    buildGraph();
}

void NodeMap::buildGraph()
{
    for (auto &node : m_nodes) {
        Node *n = node.get();
        std::sort(n->readingRefs.begin(), n->readingRefs.end());
        n->readingRefs.erase(std::unique(n->readingRefs.begin(), n->readingRefs.end()),
                             n->readingRefs.end());
        for (Node *child : n->readingRefs)
            child->dependents.push_back(n);
        for (const Ref &r : n->invalidators)
            if (r.node && r.node != n)
                r.node->dependents.push_back(n);
        for (const Ref &r : n->selected)
            if (r.node)
                r.node->selecting.push_back(n);
        if (Enumeration *e = n->asEnumeration()) {
            for (EnumEntry *entry : e->entries) {
                entry->dependents.push_back(e);
                e->readingRefs.push_back(entry);
            }
        }
        if (n->pollingTime > 0)
            m_polled.push_back(n);
    }

    // Registers at one fixed location are views of the same device memory
    // (the fields of a StructReg, several MaskedIntRegs): a write through
    // one changes the others.
    using Location = std::tuple<const Node *, int64_t, int64_t>; // port, address, length
    std::vector<std::pair<Location, Node *>> located;
    for (auto &node : m_nodes) {
        RegisterCore *core = node->registerCore();
        const Node *port = nullptr;
        int64_t address = 0, length = 0;
        if (core && core->staticLocation(port, address, length))
            located.push_back({ { port, address, length }, node.get() });
    }
    std::sort(located.begin(), located.end());
    for (size_t first = 0; first < located.size();) {
        size_t end = first + 1;
        while (end < located.size() && located[end].first == located[first].first)
            ++end;
        if (end - first >= 2 && end - first <= 64)
            for (size_t a = first; a < end; ++a)
                for (size_t b = first; b < end; ++b)
                    if (a != b)
                        located[a].second->dependents.push_back(located[b].second);
        first = end;
    }
    for (auto &node : m_nodes) {
        auto &d = node->dependents;
        std::sort(d.begin(), d.end());
        d.erase(std::unique(d.begin(), d.end()), d.end());
    }
}

void NodeMap::GetNodes(NodeList_t &Nodes) const
{
    Nodes.assign(m_named.begin(), m_named.end());
}

INode *NodeMap::GetNode(const gcstring &Name) const
{
    return find(Name.str());
}

void NodeMap::InvalidateNodes() const
{
    Guard guard(*this);
    auto *self = const_cast<NodeMap *>(this);
    for (auto &node : self->m_nodes)
        node->invalidateCache();
    for (auto &node : self->m_nodes) {
        if (node->hasCallbacks()) {
            node->fireCallbacks(cbPostInsideLock);
            node->fireCallbacks(cbPostOutsideLock);
        }
    }
}

bool NodeMap::Connect(IPort *pPort, const gcstring &PortName) const
{
    Guard guard(*this);
    auto *port = dynamic_cast<Port *>(find(PortName.str()));
    if (!port)
        return false;
    port->connect(pPort);
    std::vector<Node *> roots;
    for (Node *d : port->dependents)
        roots.push_back(d);
    roots.push_back(port);
    const_cast<NodeMap *>(this)->notifyChanged(roots, {});
    return true;
}

bool NodeMap::Connect(IPort *pPort) const
{
    return Connect(pPort, "Device");
}

gcstring NodeMap::GetDeviceName()
{
    return m_deviceName;
}

void NodeMap::Poll(int64_t ElapsedTime)
{
    Guard guard(*this);
    std::vector<Node *> changed;
    std::vector<Node *> terminals;
    for (Node *n : m_polled) {
        n->pollElapsed += ElapsedTime;
        if (n->pollElapsed < n->pollingTime)
            continue;
        n->pollElapsed = 0;
        terminals.clear();
        n->collectTerminals(terminals);
        bool any = false;
        for (Node *t : terminals) {
            if (t->pollRegister()) {
                changed.push_back(t);
                any = true;
            }
        }
        if (any)
            changed.push_back(n);
    }
    if (!changed.empty())
        notifyChanged(changed, changed);
}

bool NodeMap::ParseSwissKnife(const gcstring &Expression) const
{
    try {
        Formula::parse(Expression.str(), {});
        return true;
    } catch (const std::invalid_argument &) {
        return false;
    }
}

} // namespace impl
} // namespace GenApi_3_0
