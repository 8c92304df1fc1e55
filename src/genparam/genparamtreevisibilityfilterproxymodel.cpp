#include "genparamtreevisibilityfilterproxymodel.h"

#include "genparamtreemodel.h"

#include <algorithm>

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
    // "*" (the pattern before any text is set) names nothing either.
    const bool named
        = !filterRegExp.pattern().isEmpty() && filterRegExp.pattern() != QLatin1String("*");
    if (node->GetPrincipalInterfaceType() == intfICategory) {
        // While a name filter is set, a category shows only for what
        // matches below it: dozens of empty categories hid the matches.
        if (!named)
            return true;
        for (int row = 0; row < sourceModel()->rowCount(index); ++row)
            if (filterAcceptsRow(row, index))
                return true;
        return false;
    }
    if (!named)
        return true;
    const QString name = QString::fromUtf8(node->GetDisplayName().c_str());
    if (!wholeWords)
        return filterRegExp.indexIn(name) >= 0;
    // Whole words: the pattern matches the whole name or one of its words
    // ("gain" finds "Analog Gain", not "Gainsborough").
    if (filterRegExp.exactMatch(name))
        return true;
    static const QRegExp separators(QStringLiteral("[^\\w]+"));
    const QStringList words = name.split(separators, Qt::SkipEmptyParts);
    return std::any_of(words.begin(), words.end(),
                       [this](const QString &word) { return filterRegExp.exactMatch(word); });
}

} // namespace OrbGui
