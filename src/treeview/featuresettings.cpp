#include "featuresettings.h"

#include "genparam/accessreasons.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>

#include <unordered_map>
#include <unordered_set>

using namespace GenApi;

namespace OrbGui {

namespace {

const QString Magic = QStringLiteral("OrbGui settings");
constexpr int Version = 1;
// A selector with more values than this (a wide integer) is saved at its
// current value only.
constexpr int64_t MaxSelectorValues = 256;

QString text(const GenICam::gcstring &value)
{
    return QString::fromUtf8(value.c_str());
}

QString escaped(QString value)
{
    return value.replace(QLatin1Char('\\'), QStringLiteral("\\\\"))
        .replace(QLatin1Char('\n'), QStringLiteral("\\n"))
        .replace(QLatin1Char('\r'), QStringLiteral("\\r"));
}

QString unescaped(const QString &value)
{
    QString out;
    out.reserve(value.size());
    for (int i = 0; i < value.size(); ++i) {
        const QChar c = value[i];
        if (c != QLatin1Char('\\') || i + 1 == value.size()) {
            out += c;
            continue;
        }
        const QChar next = value[++i];
        out += next == QLatin1Char('n') ? QChar(QLatin1Char('\n'))
            : next == QLatin1Char('r')  ? QChar(QLatin1Char('\r'))
                                        : next;
    }
    return out;
}

QString featureText(INodeMap *map, const char *name)
{
    try {
        CValuePtr value = map->GetNode(name);
        if (value && IsReadable(value->GetNode()->GetAccessMode()))
            return text(value->ToString());
    } catch (const GenICam::GenericException &) {
    }
    return QString();
}

// The value as text that reads back as the same value: a float in full,
// not rounded to its display precision as ToString gives it.
QString valueText(INode *node)
{
    if (CFloatPtr number = CFloatPtr(node))
        return QString::number(number->GetValue(), 'g', QLocale::FloatingPointShortest);
    return text(CValuePtr(node)->ToString());
}

bool savable(INode *node)
{
    switch (node->GetPrincipalInterfaceType()) {
    case intfIInteger:
    case intfIFloat:
    case intfIBoolean:
    case intfIEnumeration:
    case intfIString:
        return true;
    default:
        return false;
    }
}

bool writable(INode *node)
{
    try {
        return node->GetAccessMode() == RW;
    } catch (const GenICam::GenericException &) {
        return false;
    }
}

// The features under Root in the tree's order, each once, and which of
// them a selector selects.
class Walk {
public:
    explicit Walk(INodeMap *map)
    {
        INode *root = map->GetNode("Root");
        if (!root)
            return;
        std::vector<INode *> pending { root };
        std::unordered_set<INode *> seen { root };
        while (!pending.empty()) {
            INode *node = pending.back();
            pending.pop_back();
            if (node != root)
                order.push_back(node);
            CCategoryPtr category = CCategoryPtr(node);
            if (!category)
                continue;
            FeatureList_t features;
            category->GetFeatures(features);
            for (auto it = features.rbegin(); it != features.rend(); ++it) {
                INode *child = (*it)->GetNode();
                if (child && seen.insert(child).second)
                    pending.push_back(child);
            }
        }
        for (INode *node : order) {
            auto *selector = dynamic_cast<ISelector *>(node);
            if (!selector || !selector->IsSelector())
                continue;
            FeatureList_t selected;
            selector->GetSelectedFeatures(selected);
            for (IValue *value : selected)
                if (INode *target = value->GetNode(); target != node)
                    selectedBy[target].push_back(node);
        }
        for (INode *node : order)
            position[node] = position.size();
    }

    // The features a selector selects, in the tree's order.
    std::vector<INode *> selectedOf(INode *selector) const
    {
        FeatureList_t selected;
        dynamic_cast<ISelector *>(selector)->GetSelectedFeatures(selected);
        std::vector<INode *> nodes;
        for (IValue *value : selected)
            if (INode *node = value->GetNode(); node != selector && position.count(node))
                nodes.push_back(node);
        std::sort(nodes.begin(), nodes.end(),
                  [this](INode *a, INode *b) { return position.at(a) < position.at(b); });
        return nodes;
    }
    bool isSelector(INode *node) const
    {
        auto *selector = dynamic_cast<ISelector *>(node);
        return selector && selector->IsSelector();
    }

    std::vector<INode *> order;
    std::unordered_map<INode *, std::vector<INode *>> selectedBy;
    std::unordered_map<INode *, size_t> position;
};

// The values a selector can take, as text; its current one only where
// they cannot be listed.
QStringList selectorValues(INode *node)
{
    QStringList values;
    try {
        if (CEnumerationPtr e = CEnumerationPtr(node)) {
            StringList_t symbolics;
            e->GetSymbolics(symbolics);
            for (const auto &s : symbolics)
                values << text(s);
        } else if (CIntegerPtr i = CIntegerPtr(node)) {
            const int64_t min = i->GetMin(), max = i->GetMax();
            const int64_t inc = std::max<int64_t>(1, i->GetInc());
            if (max >= min && (max - min) / inc < MaxSelectorValues)
                for (int64_t v = min; v <= max; v += inc)
                    values << QString::number(v);
        }
        if (values.isEmpty())
            values << text(CValuePtr(node)->ToString());
    } catch (const GenICam::GenericException &) {
    }
    return values;
}

class Saver {
public:
    Saver(INodeMap *map, const Walk &walk)
        : m_map(map)
        , m_walk(walk)
    {
    }

    QString run()
    {
        m_out = Magic + QLatin1Char(' ') + QString::number(Version) + QLatin1Char('\n');
        m_out
            += QStringLiteral("# Written by libOrbCameraGuiApi: \"Name = value\" per line, in the "
                              "order the camera takes them.\n");
        m_out += QStringLiteral("@vendor = ") + escaped(featureText(m_map, "DeviceVendorName"))
            + QLatin1Char('\n');
        m_out += QStringLiteral("@model = ") + escaped(featureText(m_map, "DeviceModelName"))
            + QLatin1Char('\n');
        for (INode *node : m_walk.order)
            if (!m_walk.selectedBy.count(node))
                saveFeature(node);
        return m_out;
    }

private:
    void line(INode *node, const QString &value)
    {
        m_out += text(node->GetName()) + QStringLiteral(" = ") + escaped(value) + QLatin1Char('\n');
    }

    void saveFeature(INode *node)
    {
        if (!m_done.insert(node).second)
            return;
        // What unlocks it, or makes it available, first: loaded in this
        // order, the camera takes it.
        for (const char *link : { "pIsLocked", "pIsAvailable" })
            if (INode *flag = accessLink(m_map, node, link))
                for (INode *cause : featuresBehind(flag))
                    if (!m_walk.selectedBy.count(cause))
                        saveFeature(cause);
        if (m_walk.isSelector(node) && writable(node)) {
            saveSelector(node);
            return;
        }
        if (!savable(node) || !writable(node))
            return;
        try {
            line(node, valueText(node));
        } catch (const GenICam::GenericException &) {
        }
    }

    // Every value of the selector in turn with what it selects, then the
    // value it had.
    void saveSelector(INode *selector)
    {
        CValuePtr value = CValuePtr(selector);
        QString original;
        try {
            original = text(value->ToString());
        } catch (const GenICam::GenericException &) {
            return;
        }
        const std::vector<INode *> selected = m_walk.selectedOf(selector);
        for (const QString &v : selectorValues(selector)) {
            try {
                value->FromString(v.toUtf8().constData());
            } catch (const GenICam::GenericException &) {
                continue;
            }
            line(selector, v);
            for (INode *node : selected) {
                m_done.erase(node); // once per selector value
                saveFeature(node);
            }
        }
        try {
            value->FromString(original.toUtf8().constData());
        } catch (const GenICam::GenericException &) {
        }
        line(selector, original);
    }

    INodeMap *m_map;
    const Walk &m_walk;
    QString m_out;
    std::unordered_set<INode *> m_done;
};

} // namespace

QString saveSettings(INodeMap *map)
{
    if (!map)
        return QString();
    try {
        const Walk walk(map);
        return Saver(map, walk).run();
    } catch (const GenICam::GenericException &) {
        return QString();
    }
}

SettingsLoadResult loadSettings(INodeMap *map, const QString &content, bool acceptOtherModel)
{
    SettingsLoadResult result;
    struct Entry {
        QString name, value;
        bool selector = false;
    };
    std::vector<Entry> entries;
    const QStringList lines = content.split(QLatin1Char('\n'));
    bool headerSeen = false;
    for (QString raw : lines) {
        if (raw.endsWith(QLatin1Char('\r')))
            raw.chop(1);
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        if (!headerSeen) {
            if (!line.startsWith(Magic + QLatin1Char(' '))) {
                result.error = QStringLiteral("not a settings file");
                return result;
            }
            bool ok = false;
            const int version = line.mid(Magic.size() + 1).toInt(&ok);
            if (!ok || version < 1 || version > Version) {
                result.error = QStringLiteral("settings file version %1 is not supported")
                                   .arg(line.mid(Magic.size() + 1));
                return result;
            }
            headerSeen = true;
            continue;
        }
        const int equals = raw.indexOf(QStringLiteral(" = "));
        if (equals <= 0) {
            result.problems.push_back({ line, QStringLiteral("not a \"Name = value\" line") });
            continue;
        }
        const QString name = raw.left(equals).trimmed();
        const QString value = unescaped(raw.mid(equals + 3));
        if (name == QLatin1String("@vendor"))
            result.fileVendor = value;
        else if (name == QLatin1String("@model"))
            result.fileModel = value;
        else if (!name.startsWith(QLatin1Char('@')))
            entries.push_back({ name, value });
    }
    if (!headerSeen) {
        result.error = QStringLiteral("not a settings file");
        return result;
    }
    if (!map) {
        result.error = QStringLiteral("no camera");
        return result;
    }
    result.otherModel = result.fileVendor != featureText(map, "DeviceVendorName")
        || result.fileModel != featureText(map, "DeviceModelName");
    if (result.otherModel && !acceptOtherModel)
        return result;

    // A line naming a selector sets the context of the lines after it.
    for (Entry &e : entries) {
        auto *node = map->GetNode(e.name.toUtf8().constData());
        auto *selector = dynamic_cast<ISelector *>(node);
        e.selector = selector && selector->IsSelector();
    }

    // Everything in order; then, as long as it helps, once more what was
    // refused, with the selector lines replayed so that each value lands in
    // its own selector's slot.
    std::vector<QString> failure(entries.size());
    std::vector<bool> pending(entries.size(), true);
    for (int pass = 0; pass < 4; ++pass) {
        int progress = 0;
        for (size_t i = 0; i < entries.size(); ++i) {
            const Entry &e = entries[i];
            if (!pending[i] && !e.selector)
                continue;
            INode *node = map->GetNode(e.name.toUtf8().constData());
            CValuePtr value = CValuePtr(node);
            if (!value) {
                failure[i]
                    = node ? QStringLiteral("not a value") : QStringLiteral("no such feature");
                continue;
            }
            try {
                // What already reads as the file says is not written again:
                // fewer writes to the camera, and of two features over one
                // register the one saved last does not undo the other.
                if (valueText(node) != e.value)
                    value->FromString(e.value.toUtf8().constData());
                if (pending[i]) {
                    pending[i] = false;
                    ++progress;
                    ++result.written;
                }
            } catch (const GenICam::GenericException &ex) {
                failure[i] = QString::fromUtf8(ex.GetDescription());
            }
        }
        if (progress == 0)
            break;
    }
    for (size_t i = 0; i < entries.size(); ++i)
        if (pending[i])
            result.problems.push_back({ entries[i].name, failure[i] });
    return result;
}

} // namespace OrbGui
