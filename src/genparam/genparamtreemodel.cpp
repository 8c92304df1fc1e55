#include "genparamtreemodel.h"
#include "unittext.h"

#include "accessreasons.h"

#include <OrbCam/OrbGenParam.h>
#include <OrbGui/qtorbspinboxval64.h>

#include "common/devicereader.h"
#include "common/guihandoff.h"
#include "featureeditors.h"
#include "widgets/ip4validator.h"

#include <QBrush>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPalette>
#include <QPushButton>
#include <QSet>
#include <QTimer>
#include <QVector>

#include <algorithm>
#include <atomic>
#include <optional>
#include <cmath>
#include <functional>
#include <limits>
#include <list>
#include <unordered_map>
#include <unordered_set>
#include <map>
#include <vector>

using namespace GenApi;

namespace OrbGui {

namespace {

// The role list of the dataChanged that setData emits.
const QVector<int> s_roles { Qt::EditRole };

// After a command, the shown values are read again at once and once more
// after this long, within the second a user waits for a reaction.
constexpr int kRereadAfterCommandMs = 300;

QString fromGc(const GenICam::gcstring &text)
{
    return QString::fromUtf8(text.c_str());
}

QString messageOf(const GenICam::GenericException &e)
{
    const char *description = e.GetDescription();
    return description ? QString::fromUtf8(description) : QStringLiteral("Unknown Error");
}

// The value as text for remembering it; nothing when it cannot be read
// (write-only, or the read fails).
std::optional<QString> currentText(IValue *value)
{
    try {
        if (IsReadable(value->GetNode()->GetAccessMode()))
            return QString::fromUtf8(value->ToString().c_str());
    } catch (const WouldWaitException &) {
        throw;
    } catch (const GenICam::GenericException &) {
    }
    return std::nullopt;
}

// Which of a selected feature's slots the value belongs to: its selectors'
// current values (empty for a feature no selector selects).
QString selectorSlot(IValue *value)
{
    QStringList slot;
    try {
        if (auto *selected = dynamic_cast<ISelector *>(value)) {
            FeatureList_t selecting;
            selected->GetSelectingFeatures(selecting);
            for (IValue *selector : selecting)
                slot << QString::fromUtf8(selector->ToString().c_str());
        }
    } catch (const WouldWaitException &) {
        throw;
    } catch (const GenICam::GenericException &) {
        slot << QStringLiteral("?");
    }
    return slot.join(QLatin1Char('\n'));
}

const QSet<QByteArray> &ipAddrRep()
{
    static const QSet<QByteArray> names {
        "GevCurrentIPAddress",
        "GevCurrentSubnetMask",
        "GevCurrentDefaultGateway",
        "GevPersistentIPAddress",
        "GevPersistentSubnetMask",
        "GevPersistentDefaultGateway",
        "GevPrimaryApplicationIPAddress",
        "GevMCDA",
        "GevSCDA",
    };
    return names;
}

const QByteArray &nameMAC()
{
    static const QByteArray name("GevMACAddress");
    return name;
}

ERepresentation FixIntegerRepresentation(IInteger *integer, const GenICam::gcstring &name)
{
    const QByteArray n(name.c_str());
    if (n == nameMAC())
        return MACAddress;
    if (ipAddrRep().contains(n))
        return IPV4Address;
    return integer->GetRepresentation();
}

QString ipText(int64_t value)
{
    return IP4Validator::getIpStr(static_cast<quint32>(value));
}

QString macText(int64_t value)
{
    const quint64 v = static_cast<quint64>(value);
    QStringList bytes;
    for (int shift = 40; shift >= 0; shift -= 8)
        bytes << QStringLiteral("%1").arg((v >> shift) & 0xFF, 2, 16, QLatin1Char('0'));
    return bytes.join(QLatin1Char(':'));
}

// A float limit or increment as a reader expects it: in fixed notation with
// the feature's display precision ("20", not the "2e+01" of 'g' with one
// digit), falling back to 'g' for magnitudes fixed notation cannot show.
QString floatText(double value, int precision)
{
    const double magnitude = std::fabs(value);
    if (std::isfinite(value) && magnitude < 1e15
        && (value == 0 || magnitude >= std::pow(10.0, -precision)))
        return QString::number(value, 'f', precision);
    return QString::number(value, 'g', qMax(precision, 6));
}

// What an editor shows while it is open: the values the feature takes.
QString rangeHint(const QString &minimum, const QString &maximum, const QString &increment)
{
    return increment.isEmpty()
        ? GenParamTreeModel::tr("Min: %1, Max: %2").arg(minimum, maximum)
        : GenParamTreeModel::tr("Min: %1, Max: %2, Increment: %3").arg(minimum, maximum, increment);
}

// DisplayPrecision comes from the description unchecked, and a billion
// decimals take gigabytes to format. A double carries at most 17
// significant digits: more decimals than that show nothing of it.
int shownDecimals(const IFloat *f)
{
    return static_cast<int>(std::clamp<int64_t>(f->GetDisplayPrecision(), 0,
                                                std::numeric_limits<double>::max_digits10));
}

// A long string is shown cut, with an ellipsis: laying out megabytes of
// text in a cell takes seconds and hundreds of megabytes. The editor (the
// edit role) still gets the whole value.
QString shownString(const GenICam::gcstring &value)
{
    constexpr int maxShown = 256;
    if (value.size() <= size_t(maxShown))
        return QString::fromUtf8(value.c_str(), int(value.size()));
    // No character takes more than four bytes: the cut falls after the
    // characters kept.
    return QString::fromUtf8(value.c_str(), maxShown * 4).left(maxShown) + QChar(0x2026);
}

QBrush redBrush()
{
    return QBrush(QColor(255, 0, 0, 255));
}

} // namespace

bool GenParamErrorController::ClearError(const QString &name, int id)
{
    auto it = m_errors.find(name);
    if (it == m_errors.end() || !it->contains(id))
        return false;
    it->remove(id);
    if (it->isEmpty())
        m_errors.erase(it);
    return true;
}

QString GenParamErrorController::firstError(const QString &name) const
{
    auto it = m_errors.constFind(name);
    return (it == m_errors.constEnd() || it->isEmpty()) ? QString() : it->first();
}

struct IndexFeature;
using ItemEntry = std::pair<IValue *const, IndexFeature>;

// One row of the tree. Stored as the value of an `items` entry, whose
// address is the internal pointer of every index of the row.
struct IndexFeature {
    ItemEntry *parent = nullptr;
    ItemEntry **children = nullptr;
    qint32 row = 0;
    qint32 childCount = 0;
    bool category = false;
    // Position in the tree read top to bottom, all expanded.
    quint32 order = 0;
    // Counts the row's change callbacks: a value read off the GUI thread is
    // current only if none came since it was asked for.
    quint32 changes = 0;
};

// A row's value as read off the GUI thread (setReadsOffThread).
struct ShownValue {
    EAccessMode mode = NI;
    bool modeKnown = false;
    QVariant display;
    QVariant edit;
    std::optional<QString> text; // currentText()
    QString slot; // selectorSlot()
    QString error; // the read failed
    // Read since the row last changed: shown without asking the node map.
    bool fresh = false;

    bool sameAs(const ShownValue &o) const
    {
        return mode == o.mode && modeKnown == o.modeKnown && display == o.display && edit == o.edit
            && text == o.text && error == o.error;
    }
};

class GenParamTreeModelPrivate {
    Q_DECLARE_PUBLIC(GenParamTreeModel)

public:
    GenParamTreeModelPrivate(GenParamTreeModel *q, INodeMap *map)
        : q_ptr(q)
        , nodeMap(map)
        , handOff(q)
    {
    }

    void Init(GenParamTreeModel *q);
    void RegisterCallbackForChildren(ICategory *category, ItemEntry *parentItem);
    void numberInTreeOrder();
    void DeRegisterCallbacks();
    void NodeCallback(ItemEntry *entry);
    void ValueChanged(ItemEntry *entry);
    void announceChanges();
    void announce(ItemEntry *entry);
    void rereadAll();

    // Off-thread reads.
    ShownValue readShown(IValue *value) const;
    QVariant fromShown(const ItemEntry *entry, int role) const;
    void readLater(ItemEntry *entry) const;
    void flushReads();
    void takeReads(const std::vector<std::pair<ItemEntry *, ShownValue>> &results, quint32 epoch,
                   const std::vector<quint32> &changes);
    void allOld();
    void behindReader(std::function<void()> job);

    QVariant DisplayRoleImp(IValue *value) const;
    QVariant EditRoleImp(IValue *value) const;
    QVariant WhatsThis(IValue *value) const;
    QString WhyNot(INode *node) const;
    QVariant ControlDataRoleImp(IValue *value) const;
    ERepresentation IntRepresentation(IInteger *integer) const;
    static QString CacheModeToStr(ECachingMode mode);

    GenParamTreeModel *q_ptr;
    INodeMap *nodeMap;
    bool ipRepresentationTrusted = false;
    const GenICam::gcstring probeNodeName { "GevCurrentIPAddress" };
    std::vector<CallbackHandleType> callbackHandles;
    std::map<IValue *, IndexFeature> items;
    std::list<std::vector<ItemEntry *>> childLists;
    ItemEntry **rootChildren = nullptr;
    qint32 rootChildCount = 0;
    GuiHandOff handOff;
    // Changed rows not yet announced; a queued announceChanges() is pending
    // while this is not empty.
    std::vector<ItemEntry *> pendingChanges;
    // The user's writes: the value before each, newest last; and each
    // written row's value before the session's first write to it.
    struct Write {
        ItemEntry *entry;
        QString before;
    };
    std::vector<Write> writes;
    // Per selector slot (selectorSlot()): changing frame A's width marks
    // frame A's, not frame B's.
    std::map<const ItemEntry *, std::map<QString, QString>> original;

    bool readsOffThread = false;
    std::shared_ptr<DeviceReader> reader; // made on the first read it takes
    // What the reader read, by row; kept while the row is shown again.
    mutable std::unordered_map<const ItemEntry *, ShownValue> shown;
    // Rows asked for and not yet read back, oldest first.
    mutable std::vector<ItemEntry *> toRead;
    mutable std::unordered_set<const ItemEntry *> asked;
    mutable bool flushQueued = false;
    bool reading = false; // a job is with the reader
    // Set while the rows go, so that the job under way stops after the row
    // it reads.
    std::atomic<bool> leaving { false };
    // Counts the ticks and commands after which every value counts as old.
    quint32 epoch = 0;
};

void GenParamTreeModelPrivate::Init(GenParamTreeModel *q)
{
    qRegisterMetaType<QVector<int>>("QVector<int>");
    qRegisterMetaType<ControlData>("ControlData");
    qRegisterMetaType<VariantData>("VariantData");
    qRegisterMetaType<IValue *>("GenApi::IValue*");
    q_ptr = q;
    ipRepresentationTrusted = false;
    items.clear();
    childLists.clear();
    if (INode *root = nodeMap->GetNode("Root"))
        RegisterCallbackForChildren(dynamic_cast<ICategory *>(root), nullptr);
    if (!childLists.empty()) {
        rootChildren = childLists.front().data();
        rootChildCount = static_cast<qint32>(childLists.front().size());
    }
    numberInTreeOrder();
}

// Changes are announced in this order: a view finds each announced row by
// searching outward from the last one it found.
void GenParamTreeModelPrivate::numberInTreeOrder()
{
    quint32 next = 0;
    std::vector<std::pair<ItemEntry **, ItemEntry **>> stack;
    if (rootChildren)
        stack.push_back({ rootChildren, rootChildren + rootChildCount });
    while (!stack.empty()) {
        auto &[at, end] = stack.back();
        if (at == end) {
            stack.pop_back();
            continue;
        }
        ItemEntry *entry = *at++;
        entry->second.order = next++;
        if (entry->second.children)
            stack.push_back(
                { entry->second.children, entry->second.children + entry->second.childCount });
    }
}

// Iterative, and every category is expanded once: a description may nest
// categories a hundred thousand deep or list them in a cycle, and neither
// may cost the stack or the tree its shape. A feature listed again under
// another category keeps its first parent and row; a category listed again
// is left out there, so that it shows once. Categories deeper than
// maxCategoryDepth are shown without their contents: Qt's proxy models and
// views recurse once per level, and no real camera comes near the limit.
void GenParamTreeModelPrivate::RegisterCallbackForChildren(ICategory *root, ItemEntry *rootItem)
{
    if (!root)
        return;
    std::unordered_set<ICategory *> expanded { root };
    constexpr int maxCategoryDepth = 1000;
    struct Pending {
        ICategory *category;
        ItemEntry *parentItem;
        int depth;
    };
    std::vector<Pending> pending { { root, rootItem, 0 } };
    while (!pending.empty()) {
        const auto [category, parentItem, depth] = pending.back();
        pending.pop_back();
        FeatureList_t features;
        category->GetFeatures(features);
        std::vector<ItemEntry *> &children = childLists.emplace_back();
        children.reserve(features.size());
        for (IValue *feature : features) {
            INode *node = feature->GetNode();
            auto *subCategory = dynamic_cast<ICategory *>(node);
            if (subCategory && !expanded.insert(subCategory).second)
                continue;
            if (node->GetName() == probeNodeName) {
                auto *integer = dynamic_cast<IInteger *>(node);
                if (integer && integer->GetRepresentation() == IPV4Address)
                    ipRepresentationTrusted = true;
            }
            auto inserted = items.emplace(
                feature,
                IndexFeature { parentItem, nullptr, static_cast<qint32>(children.size()), 0 });
            ItemEntry *entry = &*inserted.first;
            if (inserted.second)
                callbackHandles.push_back(Register(
                    node, [this, entry](INode *) { NodeCallback(entry); }, cbPostInsideLock));
            entry->second.category = subCategory != nullptr;
            children.push_back(entry);
            if (subCategory && depth + 1 < maxCategoryDepth)
                pending.push_back({ subCategory, entry, depth + 1 });
        }
        if (parentItem) {
            parentItem->second.children = children.data();
            parentItem->second.childCount = static_cast<qint32>(children.size());
        }
    }
}

void GenParamTreeModelPrivate::DeRegisterCallbacks()
{
    // Its reads name rows that go.
    leaving = true;
    if (reader) {
        reader->cancel(this);
        reader->cancel(&epoch);
    }
    shown.clear();
    toRead.clear();
    asked.clear();
    reading = false;
    leaving = false;
    for (CallbackHandleType handle : callbackHandles)
        Deregister(handle);
    handOff.invalidate(); // changes announced before now name items that go
    callbackHandles.clear();
    pendingChanges.clear();
    writes.clear();
    original.clear();
    items.clear();
    childLists.clear();
    rootChildren = nullptr;
    rootChildCount = 0;
    ipRepresentationTrusted = false;
}

// Node callbacks come on whatever thread changed the node (a host's
// acquisition thread writing or polling the node map); the entry is used on
// the model's own thread, where the entries are built and torn down. It is
// still there when the call runs: the callbacks are deregistered and the
// hand-off invalidated before any entry goes.
void GenParamTreeModelPrivate::NodeCallback(ItemEntry *entry)
{
    handOff.post([this, entry] { ValueChanged(entry); });
}

// Changes are announced once per event-loop turn, one dataChanged per
// category covering its changed rows: a poll may change every feature of the
// camera, and a view handles each signal with a search of its rows.
void GenParamTreeModelPrivate::ValueChanged(ItemEntry *entry)
{
    ++entry->second.changes;
    const auto it = shown.find(entry);
    if (it != shown.end())
        it->second.fresh = false;
    announce(entry);
}

void GenParamTreeModelPrivate::announce(ItemEntry *entry)
{
    Q_Q(GenParamTreeModel);
    if (pendingChanges.empty())
        QMetaObject::invokeMethod(
            q, [this] { announceChanges(); }, Qt::QueuedConnection);
    pendingChanges.push_back(entry);
}

void GenParamTreeModelPrivate::announceChanges()
{
    Q_Q(GenParamTreeModel);
    std::vector<ItemEntry *> changed;
    changed.swap(pendingChanges);
    // Grouped by parent, the parents in the order of the tree, rows
    // ascending.
    auto key = [](const ItemEntry *e) {
        const ItemEntry *parent = e->second.parent;
        return std::make_pair(parent ? qint64(parent->second.order) : qint64(-1), e->second.row);
    };
    std::sort(changed.begin(), changed.end(),
              [&key](const ItemEntry *a, const ItemEntry *b) { return key(a) < key(b); });
    for (size_t first = 0; first < changed.size();) {
        size_t last = first;
        while (last + 1 < changed.size()
               && changed[last + 1]->second.parent == changed[first]->second.parent)
            ++last;
        const ItemEntry *top = changed[first];
        const ItemEntry *bottom = changed[last];
        Q_EMIT q->dataChanged(
            q->createIndex(top->second.row, 1, const_cast<ItemEntry *>(top)),
            q->createIndex(bottom->second.row, 1, const_cast<ItemEntry *>(bottom)), {});
        first = last + 1;
    }
}

// A command's consequences (a counter it counts, values it resets) reach the
// camera's registers with no node callback to tell. After one, the node
// map's cached values are dropped and every value cell is announced: a view
// re-reads only the rows it shows, one read per visible row.
void GenParamTreeModelPrivate::rereadAll()
{
    Q_Q(GenParamTreeModel);
    allOld();
    try {
        NoWaitScope noWait(readsOffThread);
        nodeMap->InvalidateNodes();
    } catch (const WouldWaitException &) {
        // In use by the reader: what it reads from now on is read anew.
        behindReader([map = nodeMap] { map->InvalidateNodes(); });
    }
    auto announce = [q](ItemEntry **children, qint32 count) {
        if (count > 0)
            Q_EMIT q->dataChanged(q->createIndex(0, 1, children[0]),
                                  q->createIndex(count - 1, 1, children[count - 1]), {});
    };
    std::vector<ItemEntry *> parents;
    announce(rootChildren, rootChildCount);
    for (qint32 i = 0; i < rootChildCount; ++i)
        parents.push_back(rootChildren[i]);
    while (!parents.empty()) {
        ItemEntry *parent = parents.back();
        parents.pop_back();
        announce(parent->second.children, parent->second.childCount);
        for (qint32 i = 0; i < parent->second.childCount; ++i)
            parents.push_back(parent->second.children[i]);
    }
}

// On the reader's thread: everything the value cell shows, in one pass.
ShownValue GenParamTreeModelPrivate::readShown(IValue *value) const
{
    ShownValue read;
    read.fresh = true;
    try {
        INode *node = value->GetNode();
        read.mode = node->GetAccessMode();
        read.modeKnown = true;
        const bool command = node->GetPrincipalInterfaceType() == intfICommand;
        if (read.mode != NI && read.mode != NA && (command || IsReadable(read.mode))) {
            read.display = DisplayRoleImp(value);
            read.edit = EditRoleImp(value);
        }
        read.text = currentText(value);
        read.slot = selectorSlot(value);
    } catch (const GenICam::GenericException &e) {
        read.error = messageOf(e);
    }
    return read;
}

QVariant GenParamTreeModelPrivate::fromShown(const ItemEntry *entry, int role) const
{
    const auto it = shown.find(entry);
    if (it == shown.end())
        return QVariant(); // not read yet: an empty cell for a moment
    const ShownValue &read = it->second;
    INode *node = entry->first->GetNode();
    const bool command = node->GetPrincipalInterfaceType() == intfICommand;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        if (!read.error.isEmpty())
            return read.error;
        if (read.mode == NI || read.mode == NA)
            return GenParamTreeModel::tr("<Value not available>");
        if (!command && !IsReadable(read.mode))
            return GenParamTreeModel::tr("<Value not readable>");
        return role == Qt::DisplayRole ? read.display : read.edit;
    case Qt::ForegroundRole: {
        Q_Q(const GenParamTreeModel);
        if (!read.error.isEmpty() || q->m_errors.hasErrors(fromGc(node->GetName())))
            return redBrush();
        const bool writable = read.mode == WO || read.mode == RW;
        if (!read.modeKnown || !(command || IsReadable(read.mode)) || !writable)
            return QBrush(QPalette().color(QPalette::Disabled, QPalette::Text));
        return QVariant();
    }
    case ChangedRole: {
        const auto bySlot = original.find(entry);
        if (bySlot == original.end())
            return false;
        const auto was = bySlot->second.find(read.slot);
        return was != bySlot->second.end() && read.text != std::optional(was->second);
    }
    case AccessModeRole:
        return read.modeKnown ? QVariant(static_cast<int>(read.mode)) : QVariant();
    default:
        return QVariant();
    }
}

void GenParamTreeModelPrivate::readLater(ItemEntry *entry) const
{
    if (!asked.insert(entry).second)
        return;
    toRead.push_back(entry);
    if (flushQueued)
        return;
    flushQueued = true;
    Q_Q(const GenParamTreeModel);
    auto *self = const_cast<GenParamTreeModelPrivate *>(this);
    QMetaObject::invokeMethod(
        const_cast<GenParamTreeModel *>(q), [self] { self->flushReads(); }, Qt::QueuedConnection);
}

// One job at a time, of the rows asked for last (a paint asks after the
// filter has asked for every row), in small batches: the rows in view come
// back first, and a camera that stops answering holds up few.
void GenParamTreeModelPrivate::flushReads()
{
    flushQueued = false;
    if (toRead.empty() || reading)
        return;
    if (!reader)
        reader = DeviceReader::of(nodeMap);
    constexpr size_t kRowsPerJob = 32;
    const std::vector<ItemEntry *> entries(toRead.rbegin(),
                                           toRead.rbegin() + std::min(toRead.size(), kRowsPerJob));
    std::vector<quint32> changes;
    changes.reserve(entries.size());
    for (const ItemEntry *entry : entries)
        changes.push_back(entry->second.changes);
    reading = true;
    reader->post(this, [this, entries, changes, epochAsked = epoch] {
        std::vector<std::pair<ItemEntry *, ShownValue>> results;
        results.reserve(entries.size());
        for (ItemEntry *entry : entries) {
            if (leaving)
                return; // the model goes: its rows with it
            results.emplace_back(entry, readShown(entry->first));
        }
        handOff.post([this, results = std::move(results), changes, epochAsked] {
            takeReads(results, epochAsked, changes);
        });
    });
}

void GenParamTreeModelPrivate::takeReads(
    const std::vector<std::pair<ItemEntry *, ShownValue>> &results, quint32 epochAsked,
    const std::vector<quint32> &changes)
{
    Q_Q(GenParamTreeModel);
    for (size_t i = 0; i < results.size(); ++i) {
        ItemEntry *entry = results[i].first;
        ShownValue read = results[i].second;
        // Changed after it was asked for: shown, and read again when shown
        // next.
        read.fresh = epochAsked == epoch && changes[i] == entry->second.changes;
        asked.erase(entry);
        ShownValue &old = shown[entry];
        const bool differs = !old.sameAs(read);
        old = std::move(read);
        const QString name = fromGc(entry->first->GetNode()->GetName());
        const QModelIndex index = q->createIndex(entry->second.row, 1, entry);
        if (!old.error.isEmpty()) {
            if (q->m_errors.SetError(name, old.error, Qt::DisplayRole))
                Q_EMIT q->errorAppeared(index, name, old.error, Qt::DisplayRole);
        } else if (q->m_errors.ClearError(name, Qt::DisplayRole)) {
            Q_EMIT q->errorDisappeared(index, name, Qt::DisplayRole);
        }
        if (differs)
            announce(entry);
    }
    toRead.erase(std::remove_if(toRead.begin(), toRead.end(),
                                [this](const ItemEntry *e) { return !asked.count(e); }),
                 toRead.end());
    reading = false;
    flushReads();
}

// Node map work that may wait, on the reader beside the rows' reads; a
// second one before the first began replaces it.
void GenParamTreeModelPrivate::behindReader(std::function<void()> job)
{
    if (!reader)
        reader = DeviceReader::of(nodeMap);
    reader->post(&epoch, std::move(job));
}

void GenParamTreeModelPrivate::allOld()
{
    ++epoch;
    for (auto &row : shown)
        row.second.fresh = false;
}

ERepresentation GenParamTreeModelPrivate::IntRepresentation(IInteger *integer) const
{
    if (ipRepresentationTrusted)
        return integer->GetRepresentation();
    return FixIntegerRepresentation(integer, integer->GetNode()->GetName());
}

QString GenParamTreeModelPrivate::CacheModeToStr(ECachingMode mode)
{
    switch (mode) {
    case NoCache:
        return QStringLiteral("NoCache");
    case WriteThrough:
        return QStringLiteral("WriteThrough");
    case WriteAround:
        return QStringLiteral("WriteAround");
    default:
        return QStringLiteral("Undefined");
    }
}

QVariant GenParamTreeModelPrivate::DisplayRoleImp(IValue *value) const
{
    INode *node = value->GetNode();
    switch (node->GetPrincipalInterfaceType()) {
    case intfIInteger: {
        auto *integer = dynamic_cast<IInteger *>(value);
        switch (IntRepresentation(integer)) {
        case IPV4Address:
            return ipText(integer->GetValue());
        case MACAddress:
            return macText(integer->GetValue()).toUpper();
        case HexNumber:
            return QString::number(static_cast<qulonglong>(integer->GetValue()), 16).toUpper();
        default:
            return withUnit(QString::number(integer->GetValue()), fromGc(integer->GetUnit()));
        }
    }
    case intfIBoolean:
        return dynamic_cast<IBoolean *>(value)->GetValue() ? QStringLiteral("True")
                                                           : QStringLiteral("False");
    case intfICommand:
        return QStringLiteral("Execute");
    case intfIFloat: {
        auto *f = dynamic_cast<IFloat *>(value);
        return withUnit(QString::number(f->GetValue(), 'f', shownDecimals(f)),
                        fromGc(f->GetUnit()));
    }
    case intfIString:
        return shownString(dynamic_cast<IString *>(value)->GetValue());
    case intfIEnumeration:
        return fromGc(value->ToString());
    default:
        return QVariant();
    }
}

QVariant GenParamTreeModelPrivate::EditRoleImp(IValue *value) const
{
    INode *node = value->GetNode();
    switch (node->GetPrincipalInterfaceType()) {
    case intfIInteger: {
        auto *integer = dynamic_cast<IInteger *>(value);
        const ERepresentation representation = IntRepresentation(integer);
        if (representation == IPV4Address)
            return ipText(integer->GetValue());
        if (representation == MACAddress)
            return macText(integer->GetValue());
        const QVariant number = QVariant::fromValue<qlonglong>(integer->GetValue());
        if (integer->GetIncMode() == listIncrement)
            return QVariant::fromValue(VariantData { number });
        return number;
    }
    case intfIBoolean:
        return dynamic_cast<IBoolean *>(value)->GetValue();
    case intfIFloat: {
        auto *f = dynamic_cast<IFloat *>(value);
        const QVariant number(f->GetValue());
        if (f->GetIncMode() == listIncrement)
            return QVariant::fromValue(VariantData { number });
        return number;
    }
    case intfIString:
        return fromGc(dynamic_cast<IString *>(value)->GetValue());
    case intfIEnumeration:
        return QVariant::fromValue<qulonglong>(
            static_cast<qulonglong>(dynamic_cast<IEnumeration *>(value)->GetIntValue()));
    default:
        return QVariant();
    }
}

QVariant GenParamTreeModelPrivate::ControlDataRoleImp(IValue *value) const
{
    INode *node = value->GetNode();
    // Each editor goes into data as soon as it exists, so that a limit or
    // entry that cannot be read below frees it.
    ControlData data;
    try {
        switch (node->GetPrincipalInterfaceType()) {
        case intfIInteger: {
            auto *integer = dynamic_cast<IInteger *>(value);
            if (IntRepresentation(integer) == IPV4Address) {
                auto *edit = new QLineEdit;
                data = { edit, ControlData::LineEdit };
                edit->setFrame(false);
                edit->setAlignment(Qt::AlignCenter);
                edit->setValidator(new AddressEditValidator(edit));
            } else if (integer->GetIncMode() == listIncrement) {
                auto *combo = new QComboBox;
                data = { combo, ControlData::ComboBox };
                combo->setFrame(false);
                const QString unit = fromGc(integer->GetUnit());
                for (int64_t v : integer->GetListOfValidValues(true))
                    combo->addItem(withUnit(QString::number(v), unit),
                                   QVariant::fromValue<qlonglong>(v));
            } else {
                auto *spin = new QtOrbSpinBoxVal64;
                data = { spin, ControlData::SpinBox64 };
                spin->setFrame(false);
                spin->setAccelerated(true);
                spin->setKeyboardTracking(false);
                spin->setIgnoreFocusOut(false);
                if (integer->GetRepresentation() == HexNumber)
                    spin->setDisplayIntegerBase(16);
                spin->setClampTyped(true);
                const int64_t step = integer->GetInc();
                spin->setSingleStep(step);
                spin->setValidateStepping(step > 1);
                spin->setRange(integer->GetMin(), integer->GetMax());
                spin->setToolTip(rangeHint(QString::number(integer->GetMin()),
                                           QString::number(integer->GetMax()),
                                           step > 1 ? QString::number(step) : QString()));
            }
            break;
        }
        case intfIBoolean: {
            auto *combo = new QComboBox;
            data = { combo, ControlData::ComboBox };
            combo->setFrame(false);
            combo->addItem(QStringLiteral("True"), true);
            combo->addItem(QStringLiteral("False"), false);
            break;
        }
        case intfICommand: {
            auto *button = new QPushButton(QStringLiteral("Execute"));
            data = { button, ControlData::PushButton };
            // A raised button over a filled cell: the cell's own "Execute"
            // must not show through, and a click must look like one.
            button->setAutoFillBackground(true);
            break;
        }
        case intfIFloat: {
            auto *f = dynamic_cast<IFloat *>(value);
            const QString unit = fromGc(f->GetUnit());
            if (f->GetIncMode() == listIncrement) {
                auto *combo = new QComboBox;
                data = { combo, ControlData::ComboBox };
                combo->setFrame(false);
                // Integer item data for a float list, as the delegate expects.
                for (double v : f->GetListOfValidValues(true))
                    combo->addItem(withUnit(QString::number(v, 'g', 6), unit),
                                   QVariant::fromValue<qlonglong>(static_cast<qlonglong>(v)));
            } else {
                auto *spin = new FeatureDoubleSpinBox;
                data = { spin, ControlData::DoubleSpinBox };
                spin->setFrame(false);
                spin->setAccelerated(true);
                const int decimals = shownDecimals(f);
                spin->setDecimals(decimals);
                spin->setRange(f->GetMin(), f->GetMax());
                spin->setSuffix(unit.isEmpty() ? QString() : QLatin1Char(' ') + shownUnit(unit));
                const bool fixed = f->GetIncMode() == fixedIncrement && f->GetInc() > 0;
                // Most float features have no increment: the arrows still
                // need a step that does something.
                spin->setSingleStep(
                    fixed ? f->GetInc()
                          : FeatureDoubleSpinBox::usefulStep(f->GetMin(), f->GetMax(), decimals));
                spin->setIncrement(fixed ? f->GetInc() : 0);
                spin->setToolTip(rangeHint(floatText(f->GetMin(), decimals),
                                           floatText(f->GetMax(), decimals),
                                           fixed ? floatText(f->GetInc(), decimals) : QString()));
            }
            break;
        }
        case intfIString: {
            auto *edit = new QLineEdit;
            data = { edit, ControlData::LineEdit };
            edit->setFrame(false);
            break;
        }
        case intfIEnumeration: {
            auto *combo = new QComboBox;
            data = { combo, ControlData::ComboBox };
            combo->setFrame(false);
            auto *enumeration = dynamic_cast<IEnumeration *>(value);
            NodeList_t entries;
            enumeration->GetEntries(entries);
            for (INode *entryNode : entries) {
                auto *entry = dynamic_cast<IEnumEntry *>(entryNode);
                if (!entry || !IsAvailable(entryNode->GetAccessMode()))
                    continue;
                combo->addItem(fromGc(entry->GetSymbolic()),
                               QVariant::fromValue<qlonglong>(entry->GetValue()));
            }
            // With no entry available (the camera's state rules them all
            // out, or its registers read as nothing the description knows),
            // the entries are still offered: a choice is then the user's to
            // try, and a refusal comes back with the camera's reason.
            if (combo->count() == 0)
                for (INode *entryNode : entries)
                    if (auto *entry = dynamic_cast<IEnumEntry *>(entryNode))
                        combo->addItem(GenParamTreeModel::tr("%1 (not available)")
                                           .arg(fromGc(entry->GetSymbolic())),
                                       QVariant::fromValue<qlonglong>(entry->GetValue()));
            // A value that matches no entry shows as the number it is until
            // the user picks an entry.
            if (IsReadable(node->GetAccessMode()) && !enumeration->GetCurrentEntry())
                combo->setPlaceholderText(
                    GenParamTreeModel::tr("%1 (no entry)").arg(enumeration->GetIntValue()));
            break;
        }
        default:
            return QVariant();
        }
    } catch (const GenICam::GenericException &) {
        // The limits or entries could not be read: no editor, and the
        // cell's own read reports the failure.
        delete data.control;
        return QVariant();
    }
    return QVariant::fromValue(data);
}

QVariant GenParamTreeModelPrivate::WhatsThis(IValue *value) const
{
    INode *node = value->GetNode();
    QStringList lines;
    try {
        lines << GenParamTreeModel::tr("<i>Name:</i> %1").arg(fromGc(node->GetName()));
        if (auto *selector = dynamic_cast<ISelector *>(value)) {
            FeatureList_t selecting;
            selector->GetSelectingFeatures(selecting);
            if (!selecting.empty()) {
                QStringList names;
                for (IValue *s : selecting)
                    names << fromGc(s->GetNode()->GetDisplayName());
                lines << GenParamTreeModel::tr("<i>Selectors:</i> %1")
                             .arg(names.join(QLatin1Char(',')));
            }
        }
        const EInterfaceType type = node->GetPrincipalInterfaceType();
        QString typeName;
        switch (type) {
        case intfIInteger:
            typeName = GenParamTreeModel::tr("Integer");
            break;
        case intfIBoolean:
            typeName = GenParamTreeModel::tr("Boolean");
            break;
        case intfICommand:
            typeName = GenParamTreeModel::tr("Command");
            break;
        case intfIFloat:
            typeName = GenParamTreeModel::tr("Float");
            break;
        case intfIString:
            typeName = GenParamTreeModel::tr("String");
            break;
        case intfIEnumeration:
            typeName = GenParamTreeModel::tr("Enumeration");
            break;
        default:
            break;
        }
        if (!typeName.isEmpty())
            lines.insert(1, GenParamTreeModel::tr("<i>Type:</i> %1").arg(typeName));

        const QString limits = GenParamTreeModel::tr("<i>Limits</i>: Min: %1, Max: %2");
        const QString increment = GenParamTreeModel::tr("<i>Increment</i>: %1");
        const QString valid = GenParamTreeModel::tr("<i>Valid values</i>: %1");
        if (type == intfIInteger) {
            auto *integer = dynamic_cast<IInteger *>(value);
            switch (integer->GetIncMode()) {
            case noIncrement:
                lines << limits.arg(integer->GetMin()).arg(integer->GetMax());
                break;
            case fixedIncrement:
                lines << limits.arg(integer->GetMin()).arg(integer->GetMax());
                lines << increment.arg(integer->GetInc());
                break;
            case listIncrement: {
                const bool hex = integer->GetRepresentation() == HexNumber;
                QStringList values;
                for (int64_t v : integer->GetListOfValidValues(true))
                    values << (hex ? QStringLiteral("0x")
                                       + QString::number(static_cast<qulonglong>(v), 16)
                                   : QString::number(v));
                lines << valid.arg(values.join(QLatin1Char(',')));
                break;
            }
            }
        } else if (type == intfIFloat) {
            auto *f = dynamic_cast<IFloat *>(value);
            const int p = shownDecimals(f);
            switch (f->GetIncMode()) {
            case noIncrement:
                lines << limits.arg(floatText(f->GetMin(), p), floatText(f->GetMax(), p));
                break;
            case fixedIncrement:
                lines << limits.arg(floatText(f->GetMin(), p), floatText(f->GetMax(), p));
                lines << increment.arg(floatText(f->GetInc(), p));
                break;
            case listIncrement: {
                QStringList values;
                for (double v : f->GetListOfValidValues(true))
                    values << QString::number(v, 'g', 6);
                lines << valid.arg(values.join(QLatin1Char(',')));
                break;
            }
            }
        } else if (type == intfIEnumeration) {
            lines << GenParamTreeModel::tr("<i>Enumeration entries</i>:");
            NodeList_t entries;
            dynamic_cast<IEnumeration *>(value)->GetEntries(entries);
            for (INode *entryNode : entries) {
                if (auto *entry = dynamic_cast<IEnumEntry *>(entryNode))
                    lines << QStringLiteral("\"%1\": %2 (0x%3)")
                                 .arg(fromGc(entry->GetSymbolic()))
                                 .arg(entry->GetValue())
                                 .arg(static_cast<qulonglong>(entry->GetValue()), 8, 16,
                                      QLatin1Char('0'));
            }
        }
    } catch (const GenICam::GenericException &e) {
        // Limits that cannot be read: say so and keep the rest of the text.
        lines << messageOf(e).toHtmlEscaped();
    }
    lines << GenParamTreeModel::tr("<i>Description:</i> %1").arg(fromGc(node->GetDescription()));
    lines << GenParamTreeModel::tr("<i>Streamable:</i> %1")
                 .arg(node->IsStreamable() ? GenParamTreeModel::tr("True")
                                           : GenParamTreeModel::tr("False"));
    lines
        << GenParamTreeModel::tr("<i>Cachable:</i> %1").arg(CacheModeToStr(node->GetCachingMode()));
    const QString why = WhyNot(node);
    if (!why.isEmpty())
        lines << why;
    return lines.join(QStringLiteral("<br />"));
}

namespace {

bool flagSet(INode *flag)
{
    try {
        CIntegerPtr value = CIntegerPtr(flag);
        if (value)
            return value->GetValue() != 0;
        CBooleanPtr boolean = CBooleanPtr(flag);
        return boolean && boolean->GetValue();
    } catch (const GenICam::GenericException &) {
        return false;
    }
}

} // namespace

// Why a feature is not available or is locked: the features whose values
// make it so, each a link ("feature:Name") with its current value. Empty
// for a feature that is neither, or whose reason lies in no feature.
QString GenParamTreeModelPrivate::WhyNot(INode *node) const
{
    EAccessMode mode = NI;
    try {
        mode = node->GetAccessMode();
    } catch (const GenICam::GenericException &) {
        return QString();
    }
    const char *link = nullptr;
    QString label;
    if (mode == NA) {
        link = "pIsAvailable";
        label = GenParamTreeModel::tr("<i>Not available because of:</i> %1");
    } else if (mode == RO) {
        link = "pIsLocked";
        label = GenParamTreeModel::tr("<i>Locked by:</i> %1");
    } else {
        return QString();
    }
    INode *flag = accessLink(nodeMap, node, link);
    // Locked only while the lock reads as set; not available only while
    // the availability reads as clear.
    if (!flag || flagSet(flag) != (mode == RO))
        return QString();
    QStringList causes;
    for (INode *cause : featuresBehind(flag)) {
        QString value;
        try {
            CValuePtr v = CValuePtr(cause);
            value = v && IsReadable(cause->GetAccessMode())
                ? fromGc(v->ToString())
                : GenParamTreeModel::tr("(not readable)");
        } catch (const GenICam::GenericException &e) {
            value = messageOf(e);
        }
        const QString name = fromGc(cause->GetName());
        const QString displayName = fromGc(cause->GetDisplayName());
        causes << QStringLiteral("<a href=\"feature:%1\">%2</a> = %3")
                      .arg(name.toHtmlEscaped(),
                           (displayName.isEmpty() ? name : displayName).toHtmlEscaped(),
                           value.toHtmlEscaped());
    }
    return causes.isEmpty() ? QString() : label.arg(causes.join(QStringLiteral(", ")));
}

GenParamTreeModel::GenParamTreeModel(INodeMap *nodeMap, QObject *parent)
    : QAbstractItemModel(parent)
    , d_ptr(new GenParamTreeModelPrivate(this, nodeMap))
{
    Q_D(GenParamTreeModel);
    d->Init(this);
}

GenParamTreeModel::GenParamTreeModel(OrbGenParam::Array *array, QObject *parent)
    : GenParamTreeModel(array->GetNodeMap(), parent)
{
}

GenParamTreeModel::~GenParamTreeModel()
{
    Q_D(GenParamTreeModel);
    d->DeRegisterCallbacks();
}

QModelIndex GenParamTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    Q_D(const GenParamTreeModel);
    if (!hasIndex(row, column, parent))
        return QModelIndex();
    if (!parent.isValid())
        return createIndex(row, column, d->rootChildren[row]);
    auto *item = static_cast<ItemEntry *>(parent.internalPointer());
    if (!item || item->second.childCount < 1)
        return QModelIndex();
    return createIndex(row, column, item->second.children[row]);
}

QModelIndex GenParamTreeModel::parent(const QModelIndex &index) const
{
    if (!index.isValid())
        return QModelIndex();
    auto *item = static_cast<ItemEntry *>(index.internalPointer());
    if (!item || !item->second.parent)
        return QModelIndex();
    ItemEntry *parentItem = item->second.parent;
    return createIndex(parentItem->second.row, 0, parentItem);
}

int GenParamTreeModel::rowCount(const QModelIndex &parent) const
{
    Q_D(const GenParamTreeModel);
    if (!parent.isValid())
        return d->rootChildCount;
    auto *item = static_cast<ItemEntry *>(parent.internalPointer());
    return item ? item->second.childCount : 0;
}

int GenParamTreeModel::columnCount(const QModelIndex &) const
{
    return 2;
}

QVariant GenParamTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QVariant();
    if (section == 0)
        return tr("Name");
    if (section == 1)
        return tr("Value");
    return QVariant();
}

QVariant GenParamTreeModel::data(const QModelIndex &index, int role) const
{
    Q_D(const GenParamTreeModel);
    if (!index.isValid())
        return QVariant();
    auto *item = static_cast<ItemEntry *>(index.internalPointer());
    if (!item)
        return QVariant();
    IValue *value = item->first;
    if (role == ValuePointerRole)
        return QVariant::fromValue(value);
    if (role == ControlDataRole)
        return d->ControlDataRoleImp(value);
    if (role == Qt::WhatsThisRole)
        return d->WhatsThis(value);

    INode *node = value->GetNode();
    if (index.column() == 0 && role != ChangedRole && role != AccessModeRole) {
        QString paramName = QStringLiteral("UnknownNode");
        try {
            paramName = fromGc(node->GetName());
            switch (role) {
            case Qt::DisplayRole: {
                const QString display = fromGc(node->GetDisplayName());
                return display.isEmpty() ? paramName : display;
            }
            case Qt::ToolTipRole: {
                if (m_errors.hasErrors(paramName))
                    return m_errors.firstError(paramName);
                const QString tip = fromGc(node->GetToolTip());
                return tip.isEmpty() ? data(index, Qt::DisplayRole) : tip;
            }
            case Qt::BackgroundRole:
                if (node->GetPrincipalInterfaceType() == intfICategory)
                    return QBrush(QPalette().color(QPalette::Active, QPalette::Midlight));
                return QVariant();
            case Qt::ForegroundRole:
                return m_errors.hasErrors(paramName) ? QVariant(redBrush()) : QVariant();
            default:
                return QVariant();
            }
        } catch (const GenICam::GenericException &e) {
            if (role == Qt::DisplayRole)
                return tr("ERROR");
            if (role == Qt::ToolTipRole)
                return messageOf(e);
            return QVariant();
        }
    }

    if (!d->readsOffThread)
        return valueData(index, role);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
    case Qt::ForegroundRole:
    case ChangedRole:
    case AccessModeRole:
        break;
    default:
        return valueData(index, role);
    }
    const auto it = d->shown.find(item);
    if (it != d->shown.end() && it->second.fresh)
        return d->fromShown(item, role);
    try {
        NoWaitScope noWait;
        return valueData(index, role);
    } catch (const WouldWaitException &) {
        d->readLater(item);
        return d->fromShown(item, role);
    }
}

// The value column's roles, read from the node map on this thread.
QVariant GenParamTreeModel::valueData(const QModelIndex &index, int role) const
{
    Q_D(const GenParamTreeModel);
    auto *item = static_cast<ItemEntry *>(index.internalPointer());
    IValue *value = item->first;
    INode *node = value->GetNode();
    if (role == ChangedRole) {
        const auto bySlot = d->original.find(item);
        if (bySlot == d->original.end())
            return false;
        const auto it = bySlot->second.find(selectorSlot(value));
        return it != bySlot->second.end() && currentText(value) != std::optional(it->second);
    }
    QString paramName = QStringLiteral("UnknownNode");
    try {
        if (role == AccessModeRole)
            return static_cast<int>(node->GetAccessMode());
        paramName = fromGc(node->GetName());
        const EInterfaceType type = node->GetPrincipalInterfaceType();
        if (type == intfICategory)
            return QVariant();
        QVariant result;
        switch (role) {
        case Qt::ToolTipRole:
            if (m_errors.hasErrors(paramName))
                return m_errors.firstError(paramName);
            return fromGc(node->GetToolTip());
        case Qt::ForegroundRole: {
            if (m_errors.hasErrors(paramName)) {
                result = redBrush();
                break;
            }
            const EAccessMode mode = node->GetAccessMode();
            const bool shown = type == intfICommand || IsReadable(mode);
            if (!(shown && (mode == WO || mode == RW)))
                result = QBrush(QPalette().color(QPalette::Disabled, QPalette::Text));
            break;
        }
        case Qt::DisplayRole:
        case Qt::EditRole: {
            const EAccessMode mode = node->GetAccessMode();
            if (mode == NI || mode == NA)
                result = tr("<Value not available>");
            else if (type != intfICommand && !IsReadable(mode))
                result = tr("<Value not readable>");
            else
                result = role == Qt::DisplayRole ? d->DisplayRoleImp(value) : d->EditRoleImp(value);
            break;
        }
        default:
            return QVariant();
        }
        if (m_errors.ClearError(paramName, role))
            Q_EMIT errorDisappeared(index, paramName, role);
        return result;
    } catch (const WouldWaitException &) {
        throw;
    } catch (const GenICam::GenericException &e) {
        if (role == AccessModeRole)
            return QVariant();
        const QString message = messageOf(e);
        if (m_errors.SetError(paramName, message, role))
            Q_EMIT errorAppeared(index, paramName, message, role);
        if (role == Qt::DisplayRole || role == Qt::EditRole)
            return message;
        return QVariant();
    }
}

bool GenParamTreeModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || index.column() == 0 || role != Qt::EditRole)
        return false;
    auto *item = static_cast<ItemEntry *>(index.internalPointer());
    IValue *feature = item ? item->first : nullptr;
    if (!feature)
        return false;
    QString paramName = QStringLiteral("UnknownNode");
    std::optional<QString> before;
    try {
        INode *node = feature->GetNode();
        const EAccessMode mode = node->GetAccessMode();
        if (mode != WO && mode != RW)
            return false;
        paramName = fromGc(node->GetName());
        before = currentText(feature);
        switch (node->GetPrincipalInterfaceType()) {
        case intfIInteger: {
            auto *integer = dynamic_cast<IInteger *>(feature);
            if (value.userType() == QMetaType::QString)
                integer->SetValue(IP4Validator::getIp(value.toString()));
            else
                integer->SetValue(value.toLongLong());
            break;
        }
        case intfIBoolean:
            dynamic_cast<IBoolean *>(feature)->SetValue(value.toBool());
            break;
        case intfICommand:
            dynamic_cast<ICommand *>(feature)->Execute();
            break;
        case intfIFloat: {
            auto *f = dynamic_cast<IFloat *>(feature);
            const double requested = value.toDouble();
            const double low = f->GetMin();
            const double high = f->GetMax();
            f->SetValue(requested < low ? low : (requested > high ? high : requested));
            break;
        }
        case intfIString:
            dynamic_cast<IString *>(feature)->SetValue(value.toString().toUtf8().constData());
            break;
        case intfIEnumeration: {
            auto *e = dynamic_cast<IEnumeration *>(feature);
            bool ok = false;
            const qlonglong number = value.toLongLong(&ok);
            if (ok)
                e->SetIntValue(number);
            else
                e->FromString(value.toString().toUtf8().constData());
            break;
        }
        default:
            return false;
        }
    } catch (const GenICam::GenericException &e) {
        const QString message = messageOf(e);
        if (m_errors.SetError(paramName, message, WriteErrorId))
            Q_EMIT errorAppeared(index, paramName, message, WriteErrorId);
        return false;
    }
    // A write that can be taken back: not a command, and one whose value
    // could be read before.
    Q_D(GenParamTreeModel);
    if (before && feature->GetNode()->GetPrincipalInterfaceType() != intfICommand) {
        d->writes.push_back({ item, *before });
        d->original[item].emplace(selectorSlot(feature), *before);
    }
    Q_EMIT dataChanged(index, index, s_roles);
    if (m_errors.ClearError(paramName, WriteErrorId))
        Q_EMIT errorDisappeared(index, paramName, WriteErrorId);
    if (feature->GetNode()->GetPrincipalInterfaceType() == intfICommand) {
        d->rereadAll();
        // Once more for what the camera finishes on its own time.
        QTimer::singleShot(kRereadAfterCommandMs, this, [d] { d->rereadAll(); });
    }
    return true;
}

void GenParamTreeModel::setReadsOffThread(bool on)
{
    Q_D(GenParamTreeModel);
    d->readsOffThread = on;
}

void GenParamTreeModel::poll(int64_t elapsedMs)
{
    Q_D(GenParamTreeModel);
    d->allOld();
    if (!d->readsOffThread) {
        d->nodeMap->Poll(elapsedMs);
        return;
    }
    // Polling reads the polled registers; their changes come back as node
    // callbacks, through the hand-off.
    d->behindReader([map = d->nodeMap, elapsedMs] { map->Poll(elapsedMs); });
}

bool GenParamTreeModel::canUndo() const
{
    Q_D(const GenParamTreeModel);
    return !d->writes.empty();
}

bool GenParamTreeModel::undo(QString *error)
{
    Q_D(GenParamTreeModel);
    if (d->writes.empty()) {
        if (error)
            *error = tr("There is nothing to undo.");
        return false;
    }
    const GenParamTreeModelPrivate::Write last = d->writes.back();
    IValue *feature = last.entry->first;
    try {
        feature->FromString(last.before.toUtf8().constData());
    } catch (const GenICam::GenericException &e) {
        if (error)
            *error = messageOf(e);
        return false;
    }
    d->writes.pop_back();
    const QModelIndex index = createIndex(last.entry->second.row, 1, last.entry);
    Q_EMIT dataChanged(index.sibling(index.row(), 0), index);
    return true;
}

Qt::ItemFlags GenParamTreeModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    auto *item = static_cast<ItemEntry *>(index.internalPointer());
    Qt::ItemFlags base = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    // Without it the proxy and the view keep bookkeeping for every leaf as
    // a possible parent, which costs a scan of all of it per change.
    if (item && !item->second.category)
        base |= Qt::ItemNeverHasChildren;
    if (index.column() == 0 || !item || !item->first)
        return base;
    const QVariant mode = data(index, AccessModeRole);
    // An access mode that cannot be read is treated as not editable.
    if (mode.isValid() && (mode.toInt() == WO || mode.toInt() == RW))
        return base | Qt::ItemIsEditable;
    return base;
}

} // namespace OrbGui
