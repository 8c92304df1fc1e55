// The node map: owns the nodes, the lock, the dependency graph and the
// machinery that turns changes into callbacks.
#ifndef ORBGENAPI_NODEMAP_H
#define ORBGENAPI_NODEMAP_H

#include "nodes.h"

#include <GenApi/NoWait.h>
#include <GenApi/Synch.h>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace GenApi_3_0 {
namespace impl {

// A registered callback. Shared between the node's list and calls in
// flight, so that Deregister() can wait for a running call and prevent later
// ones.
struct CallbackEntry {
    CallbackHandleType handle = 0;
    CNodeCallback *callback = nullptr;
    ECallbackType type = cbPostInsideLock;
    bool alive = true;
    std::recursive_mutex mutex;
    ~CallbackEntry();
    void invoke(ECallbackType phase);
};

// Named nodes by name: open addressing over one array, the name's hash kept
// beside each node so that a probe rarely touches a node. Loading looks up
// every reference once, and a description has tens of thousands of them.
class NameTable {
public:
    void reserve(size_t count);
    // False, and nothing added, when a node of that name is there.
    bool insert(Node *node);
    Node *find(std::string_view name) const;

private:
    struct Slot {
        uint64_t hash = 0;
        Node *node = nullptr;
    };
    static uint64_t hashOf(std::string_view name);

    std::vector<Slot> m_slots; // size a power of two, at most 3/4 full
    size_t m_count = 0;
};

class NodeMap final : public INodeMap {
public:
    explicit NodeMap(std::string deviceName);
    ~NodeMap() override;

    // --- INodeMap ---
    void GetNodes(NodeList_t &Nodes) const override;
    INode *GetNode(const gcstring &Name) const override;
    void InvalidateNodes() const override;
    bool Connect(IPort *pPort, const gcstring &PortName) const override;
    bool Connect(IPort *pPort) const override;
    gcstring GetDeviceName() override;
    void Poll(int64_t ElapsedTime) override;
    CLock &GetLock() const override { return m_lock; }
    uint64_t GetNumNodes() const override { return m_named.size(); }
    bool ParseSwissKnife(const gcstring &Expression) const override;

    // --- loading ---
    Node *find(std::string_view name) const;
    // Takes the node over; named nodes can be found by GetNode(). Null, and
    // the node left with the caller, when a named node of that name is there
    // already.
    Node *add(std::unique_ptr<Node> &node, bool named);
    // Room for about this many nodes, so that loading does not rehash.
    void reserve(size_t nodes);
    void finishLoad();

    // The description's text, which nodes view (see Ref); taken over before
    // the loader parses it in place.
    std::string &source() { return m_source; }
    // A copy of text that lives as long as the map, for text a node keeps
    // that is not in the description (composed names, joined text).
    std::string_view keep(std::string_view text);
    // Set while loading, when every message that names a line is raised.
    const LineIndex *lineIndex = nullptr;
    // The line of a position in the description; 0 once loading is over.
    uint32_t lineAt(SourcePos pos) const;

    std::string vendorName, modelName, toolTip, standardNameSpace;
    std::string schemaVersion;
    // While loading: whether a recoverable schema violation refuses the
    // description (strict) or is recorded in loadWarnings.
    bool strictLoading = false;
    std::vector<std::string> loadWarnings;

    // --- locking ---
    // Holds the node map's lock; when the outermost guard ends, the lock is
    // released and the queued outside-lock callbacks run.
    class Guard {
    public:
        explicit Guard(const NodeMap &map);
        ~Guard();
        Guard(const Guard &) = delete;
        Guard &operator=(const Guard &) = delete;

    private:
        NodeMap &m_map;
    };

    // Collects the nodes a public write operation touched; the outermost
    // scope calls back everything that depends on them.
    class WriteScope {
    public:
        WriteScope(NodeMap &map, Node *origin);
        ~WriteScope();
        WriteScope(const WriteScope &) = delete;
        WriteScope &operator=(const WriteScope &) = delete;

    private:
        NodeMap &m_map;
    };
    void recordWrite(Node *terminal);

    // Bounds the depth of nested evaluation; a cycle of references in a
    // description ends here with an exception that names the node.
    class EvalGuard {
    public:
        EvalGuard(NodeMap &map, const Node &node);
        ~EvalGuard()
        {
            if (--m_map.m_evalDepth == 0)
                m_map.m_depthExceeded = false;
        }
        EvalGuard(const EvalGuard &) = delete;
        EvalGuard &operator=(const EvalGuard &) = delete;

    private:
        NodeMap &m_map;
    };

    // Invalidates and calls back the closure of the given nodes. The
    // written registers keep their freshly written cache.
    void notifyChanged(const std::vector<Node *> &roots, const std::vector<Node *> &written);
    void queueOutside(const std::shared_ptr<CallbackEntry> &entry);

    static constexpr int MaxEvalDepth = 100;
    // True from a reference cycle's error until the evaluation that met it
    // has unwound: code that tolerates evaluation errors must let this one
    // pass, or every level of the cycle tries again (twice, for limits).
    bool depthExceeded() const { return m_depthExceeded; }

private:
    void buildGraph(const std::vector<std::pair<uint32_t, uint32_t>> &reading);

    std::string m_deviceName;
    std::string m_source;
    // The store behind keep(); declared before m_nodes, so that the nodes
    // go first.
    std::vector<std::unique_ptr<char[]>> m_keptBlocks;
    char *m_keepNext = nullptr;
    size_t m_keepRoom = 0;
    mutable CLock m_lock;
    int m_lockDepth = 0;
    int m_evalDepth = 0;
    bool m_depthExceeded = false;
    int m_writeDepth = 0;
    std::vector<Node *> m_written;
    std::vector<Node *> m_writeOrigins;
    std::vector<std::shared_ptr<CallbackEntry>> m_pendingOutside;

    std::vector<std::unique_ptr<Node>> m_nodes; // every node, named or not
    std::vector<Node *> m_named; // in description order
    NameTable m_byName;
    std::vector<Node *> m_readingEdges; // behind every node's readingRefs
    std::vector<Node *> m_dependentEdges; // behind every node's dependents
    std::vector<Node *> m_polled;
    std::vector<Node *> m_polledTerminals; // the registers each polled node reads,
    std::vector<uint32_t> m_polledTerminalStart; // from here, by index in m_polled
    std::vector<char> m_visitMarks; // scratch for notifyChanged
};

// The callback handle registry behind GenApi::Deregister().
CallbackHandleType registerHandle(Node *node);
void unregisterHandle(CallbackHandleType handle);
Node *nodeForHandle(CallbackHandleType handle);

} // namespace impl
} // namespace GenApi_3_0

#endif
