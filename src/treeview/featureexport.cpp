#include "featureexport.h"

#include "genparam/unittext.h"

#include "genparam/genparamtreemodel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace GenApi;

namespace OrbGui {

namespace {

QString typeName(EInterfaceType type)
{
    switch (type) {
    case intfIInteger:
        return QStringLiteral("Integer");
    case intfIBoolean:
        return QStringLiteral("Boolean");
    case intfICommand:
        return QStringLiteral("Command");
    case intfIFloat:
        return QStringLiteral("Float");
    case intfIString:
        return QStringLiteral("String");
    case intfIRegister:
        return QStringLiteral("Register");
    case intfICategory:
        return QStringLiteral("Category");
    case intfIEnumeration:
        return QStringLiteral("Enumeration");
    case intfIEnumEntry:
        return QStringLiteral("EnumEntry");
    case intfIPort:
        return QStringLiteral("Port");
    default:
        return QStringLiteral("Value");
    }
}

QString text(const GenICam::gcstring &value)
{
    return QString::fromUtf8(value.c_str());
}

FeatureRecord recordOf(INode *node, const QString &path)
{
    FeatureRecord r;
    r.path = path;
    r.name = text(node->GetName());
    const EInterfaceType type = node->GetPrincipalInterfaceType();
    r.type = typeName(type);
    r.category = type == intfICategory;
    try {
        const EAccessMode mode = node->GetAccessMode();
        r.access = text(EAccessModeClass::ToString(mode));
        if (r.category || type == intfICommand || !IsReadable(mode))
            return r;
        if (CValuePtr value = CValuePtr(node))
            r.value = text(value->ToString());
        if (CIntegerPtr integer = CIntegerPtr(node))
            r.unit = text(integer->GetUnit());
        else if (CFloatPtr number = CFloatPtr(node))
            r.unit = text(number->GetUnit());
    } catch (const GenICam::GenericException &e) {
        r.error = QString::fromUtf8(e.GetDescription());
    }
    return r;
}

} // namespace

std::vector<FeatureRecord> collectFeatures(const QAbstractItemModel *model)
{
    std::vector<FeatureRecord> result;
    if (!model)
        return result;
    // Depth first with a stack of its own: categories may nest very deep.
    struct Pending {
        QModelIndex index;
        QString path;
    };
    std::vector<Pending> pending;
    const auto pushChildren = [&](const QModelIndex &parent, const QString &path) {
        for (int row = model->rowCount(parent) - 1; row >= 0; --row)
            pending.push_back({ model->index(row, 0, parent), path });
    };
    pushChildren(QModelIndex(), QStringLiteral("Root"));
    while (!pending.empty()) {
        const Pending next = pending.back();
        pending.pop_back();
        auto *value = next.index.data(ValuePointerRole).value<IValue *>();
        if (!value)
            continue;
        INode *node = value->GetNode();
        const QString path = next.path + QLatin1Char('/') + text(node->GetName());
        result.push_back(recordOf(node, path));
        pushChildren(next.index, path);
    }
    return result;
}

namespace {
// One feature, one line: a string value or message with line breaks keeps
// them as \n.
QString oneLine(QString text)
{
    return text.replace(QLatin1Char('\\'), QStringLiteral("\\\\"))
        .replace(QLatin1Char('\n'), QStringLiteral("\\n"))
        .replace(QLatin1Char('\r'), QStringLiteral("\\r"));
}
} // namespace

QString featuresAsText(const std::vector<FeatureRecord> &features)
{
    QString out;
    for (const FeatureRecord &f : features) {
        if (f.category) {
            out += f.path + QStringLiteral("  (Category)\n");
            continue;
        }
        const QString kind = QStringLiteral("  (%1, %2)\n").arg(f.type, f.access);
        if (!f.error.isEmpty())
            out += f.path + QStringLiteral(": error: ") + oneLine(f.error) + kind;
        else
            out += f.path + QStringLiteral(" = ") + oneLine(f.value)
                + (f.unit.isEmpty() ? QString() : QLatin1Char(' ') + shownUnit(f.unit)) + kind;
    }
    return out;
}

QByteArray featuresAsJson(const std::vector<FeatureRecord> &features)
{
    QJsonArray list;
    for (const FeatureRecord &f : features) {
        QJsonObject o { { QStringLiteral("path"), f.path },
                        { QStringLiteral("name"), f.name },
                        { QStringLiteral("type"), f.type },
                        { QStringLiteral("access"), f.access } };
        if (!f.error.isEmpty()) {
            o.insert(QStringLiteral("error"), f.error);
        } else if (!f.category) {
            o.insert(QStringLiteral("value"), f.value);
            o.insert(QStringLiteral("unit"), f.unit);
        }
        list.append(o);
    }
    const QJsonObject document { { QStringLiteral("format"),
                                   QStringLiteral("orbgui-feature-tree") },
                                 { QStringLiteral("version"), 1 },
                                 { QStringLiteral("features"), list } };
    return QJsonDocument(document).toJson(QJsonDocument::Indented);
}

} // namespace OrbGui
