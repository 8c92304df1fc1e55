#include "genparamtreemodel.h"
#include "unittext.h"

#include "accessreasons.h"

#include <OrbCam/OrbGenParam.h>
#include <OrbGui/qtorbspinboxval64.h>

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
#include <optional>
#include <cmath>
#include <functional>
#include <limits>
#include <list>
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
    void rereadAll();

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
    nodeMap->InvalidateNodes();
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
        const QString shown = fromGc(cause->GetDisplayName());
        causes << QStringLiteral("<a href=\"feature:%1\">%2</a> = %3")
                      .arg(name.toHtmlEscaped(), (shown.isEmpty() ? name : shown).toHtmlEscaped(),
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
    if (role == ChangedRole) {
        const auto bySlot = d->original.find(item);
        if (bySlot == d->original.end())
            return false;
        const auto it = bySlot->second.find(selectorSlot(value));
        return it != bySlot->second.end() && currentText(value) != std::optional(it->second);
    }

    QString paramName = QStringLiteral("UnknownNode");
    INode *node = value->GetNode();
    if (index.column() == 0) {
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

    try {
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
    } catch (const GenICam::GenericException &e) {
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
    try {
        const EAccessMode mode = item->first->GetNode()->GetAccessMode();
        if (mode == WO || mode == RW)
            return base | Qt::ItemIsEditable;
    } catch (const GenICam::GenericException &) {
        // An access mode that cannot be read is treated as not editable.
    }
    return base;
}

} // namespace OrbGui
