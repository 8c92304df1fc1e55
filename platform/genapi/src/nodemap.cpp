#include "nodemap.h"

#include "formula.h"
#include "loader.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <stdexcept>
#include <unordered_map>

namespace GenApi_3_0 {

namespace {
thread_local int noWaitDepth = 0;
} // namespace

NoWaitScope::NoWaitScope(bool active)
    : m_active(active)
{
    if (m_active)
        ++noWaitDepth;
}

NoWaitScope::~NoWaitScope()
{
    if (m_active)
        --noWaitDepth;
}

bool NoWaitScope::IsActive()
{
    return noWaitDepth > 0;
}

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
    if (NoWaitScope::IsActive()) {
        // Held by another thread means held across a port access, which
        // may wait for a camera.
        if (!m_map.m_lock.TryLock())
            throw WOULD_WAIT_EXCEPTION("the node map is in use by another thread");
    } else {
        m_map.m_lock.Lock();
    }
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
                                std::string(node.name()).c_str(), MaxEvalDepth);
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

uint64_t NameTable::hashOf(std::string_view name)
{
    // FNV-1a: names are short, and this needs no setup per call.
    uint64_t hash = 14695981039346656037ull;
    for (char c : name)
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ull;
    return hash;
}

void NameTable::reserve(size_t count)
{
    size_t size = 16;
    while (size * 3 / 4 < count)
        size *= 2;
    if (size <= m_slots.size())
        return;
    std::vector<Slot> old(size);
    old.swap(m_slots);
    for (const Slot &slot : old) {
        if (!slot.node)
            continue;
        size_t i = slot.hash & (m_slots.size() - 1);
        while (m_slots[i].node)
            i = (i + 1) & (m_slots.size() - 1);
        m_slots[i] = slot;
    }
}

bool NameTable::insert(Node *node)
{
    if ((m_count + 1) * 4 > m_slots.size() * 3)
        reserve(std::max<size_t>(16, m_count * 2));
    const uint64_t hash = hashOf(node->name());
    size_t i = hash & (m_slots.size() - 1);
    for (; m_slots[i].node; i = (i + 1) & (m_slots.size() - 1))
        if (m_slots[i].hash == hash && m_slots[i].node->name() == node->name())
            return false;
    m_slots[i] = { hash, node };
    ++m_count;
    return true;
}

Node *NameTable::find(std::string_view name) const
{
    if (m_slots.empty())
        return nullptr;
    const uint64_t hash = hashOf(name);
    for (size_t i = hash & (m_slots.size() - 1); m_slots[i].node;
         i = (i + 1) & (m_slots.size() - 1))
        if (m_slots[i].hash == hash && m_slots[i].node->name() == name)
            return m_slots[i].node;
    return nullptr;
}

Node *NodeMap::find(std::string_view name) const
{
    return m_byName.find(name);
}

Node *NodeMap::add(std::unique_ptr<Node> &node, bool named)
{
    Node *raw = node.get();
    if (named) {
        if (!m_byName.insert(raw))
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

std::string_view NodeMap::keep(std::string_view text)
{
    const size_t need = text.size() + 1;
    if (need > m_keepRoom) {
        const size_t size = std::max<size_t>(need, 16 * 1024);
        m_keptBlocks.push_back(std::unique_ptr<char[]>(new char[size]));
        m_keepNext = m_keptBlocks.back().get();
        m_keepRoom = size;
    }
    char *kept = m_keepNext;
    std::copy(text.begin(), text.end(), kept);
    kept[text.size()] = '\0';
    m_keepNext += need;
    m_keepRoom -= need;
    return { kept, text.size() };
}

uint32_t NodeMap::lineAt(SourcePos pos) const
{
    return lineIndex && pos.offset ? lineIndex->lineAt(pos.offset) : 0;
}

void NodeMap::finishLoad()
{
    // Each node's reading references, resolved, sorted and unique, as a run
    // of one array (offset and length by node id until the array is full).
    std::vector<std::pair<uint32_t, uint32_t>> reading(m_nodes.size());
    std::vector<Ref *> refs, other;
    for (auto &node : m_nodes) {
        refs.clear();
        other.clear();
        node->collectRefs(refs, other);
        const size_t first = m_readingEdges.size();
        for (Ref *r : refs) {
            if (!r->node)
                node->resolve(*r, true);
            if (r->node && r->node != node.get())
                m_readingEdges.push_back(r->node);
        }
        const auto begin = m_readingEdges.begin() + static_cast<ptrdiff_t>(first);
        std::sort(begin, m_readingEdges.end());
        m_readingEdges.erase(std::unique(begin, m_readingEdges.end()), m_readingEdges.end());
        if (Enumeration *e = node->asEnumeration())
            m_readingEdges.insert(m_readingEdges.end(), e->entries.begin(), e->entries.end());
        reading[node->id()] = { static_cast<uint32_t>(first),
                                static_cast<uint32_t>(m_readingEdges.size() - first) };
        // Links that do not feed a value: a dangling one is dropped.
        for (Ref *r : other)
            if (!r->node)
                node->resolve(*r, false);
    }
    for (auto &node : m_nodes)
        node->finishLoad();
    buildGraph(reading);
}

void NodeMap::buildGraph(const std::vector<std::pair<uint32_t, uint32_t>> &reading)
{
    m_readingEdges.shrink_to_fit();
    for (auto &node : m_nodes) {
        const auto [first, count] = reading[node->id()];
        node->readingRefs = NodeSpan(m_readingEdges.data() + first, count);
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
    std::vector<std::pair<size_t, size_t>> sharing; // runs of located, 2 to 64 long
    for (size_t first = 0; first < located.size();) {
        size_t end = first + 1;
        while (end < located.size() && located[end].first == located[first].first)
            ++end;
        if (end - first >= 2 && end - first <= 64)
            sharing.push_back({ first, end });
        first = end;
    }

    // Every edge that makes a node a dependent of another: a reading
    // reference, an invalidator, a register sharing its location.
    auto forEachDependency = [&](auto &&edge) {
        for (auto &node : m_nodes) {
            Node *n = node.get();
            for (Node *child : n->readingRefs)
                edge(child, n);
            for (const Ref &r : n->invalidators)
                if (r.node && r.node != n)
                    edge(r.node, n);
        }
        for (const auto &[first, end] : sharing)
            for (size_t a = first; a < end; ++a)
                for (size_t b = first; b < end; ++b)
                    if (a != b)
                        edge(located[a].second, located[b].second);
    };
    std::vector<uint32_t> start(m_nodes.size() + 1, 0);
    forEachDependency([&](Node *of, Node *) { ++start[of->id() + 1]; });
    for (size_t i = 1; i < start.size(); ++i)
        start[i] += start[i - 1];
    m_dependentEdges.assign(start.back(), nullptr);
    std::vector<uint32_t> filled(start.begin(), start.end() - 1);
    forEachDependency(
        [&](Node *of, Node *dependent) { m_dependentEdges[filled[of->id()]++] = dependent; });
    for (auto &node : m_nodes) {
        const auto begin = m_dependentEdges.begin() + start[node->id()];
        const auto end = m_dependentEdges.begin() + start[node->id() + 1];
        std::sort(begin, end);
        node->dependents = NodeSpan(m_dependentEdges.data() + start[node->id()],
                                    static_cast<size_t>(std::unique(begin, end) - begin));
    }

    for (auto &node : m_nodes) {
        Node *n = node.get();
        for (const Ref &r : n->selected)
            if (r.node)
                r.node->selecting.push_back(n);
        if (n->pollingTime > 0)
            m_polled.push_back(n);
    }
    // What each polled node reads, found once: a poll may cover tens of
    // thousands of registers.
    m_polledTerminalStart.assign(1, 0);
    for (Node *n : m_polled) {
        n->collectTerminals(m_polledTerminals);
        m_polledTerminalStart.push_back(static_cast<uint32_t>(m_polledTerminals.size()));
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
    Node *node = find(PortName.str());
    Port *port = node ? node->asPort() : nullptr;
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
    for (size_t i = 0; i < m_polled.size(); ++i) {
        Node *n = m_polled[i];
        n->pollElapsed += ElapsedTime;
        if (n->pollElapsed < n->pollingTime)
            continue;
        n->pollElapsed = 0;
        bool any = false;
        for (uint32_t k = m_polledTerminalStart[i]; k < m_polledTerminalStart[i + 1]; ++k) {
            Node *t = m_polledTerminals[k];
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
