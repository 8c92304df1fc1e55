#include "genparamtreevisibilityfilterproxymodel.h"

#include "genparamtreemodel.h"

using namespace GenApi;

namespace OrbGui {

GenParamTreeVisibilityFilterProxyModel::GenParamTreeVisibilityFilterProxyModel(QObject *parent)
    : QSortFilterProxyModel(parent)
    , filterRegExp(QStringLiteral("*"), Qt::CaseInsensitive, QRegExp::WildcardUnix)
{
}

GenParamTreeVisibilityFilterProxyModel::~GenParamTreeVisibilityFilterProxyModel() = default;

void GenParamTreeVisibilityFilterProxyModel::setFilterVisibility(int _visibility)
{
    visibility = _visibility;
    invalidateFilter();
}

void GenParamTreeVisibilityFilterProxyModel::setFilterText(const QString &text)
{
    filterRegExp.setPattern(text);
    invalidateFilter();
}

bool GenParamTreeVisibilityFilterProxyModel::filterAcceptsRow(int sourceRow,
                                                              const QModelIndex &sourceParent) const
{
    const QModelIndex index = sourceModel()->index(sourceRow, 0, sourceParent);
    const QVariant pointer = index.data(ValuePointerRole);
    if (!pointer.canConvert<IValue *>())
        return true;
    IValue *value = pointer.value<IValue *>();
    if (!value)
        return true;
    INode *node = value->GetNode();
    if (static_cast<int>(node->GetVisibility()) > visibility)
        return false;
    try {
        if (node->GetAccessMode() == NI)
            return false;
    } catch (const GenICam::GenericException &) {
        // Whether it exists cannot be told: show it, the cell says why.
    }
    if (node->GetPrincipalInterfaceType() == intfICategory)
        return true;
    if (filterRegExp.pattern().isEmpty())
        return true;
    const QString name = QString::fromUtf8(node->GetDisplayName().c_str());
    if (wholeWords)
        return filterRegExp.exactMatch(name);
    return filterRegExp.indexIn(name) >= 0;
}

} // namespace OrbGui
