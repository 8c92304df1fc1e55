#include "genparamtreevisibilityfilterproxymodel.h"

#include "genparamtreemodel.h"

#include <algorithm>
#include <vector>

using namespace GenApi;

namespace OrbGui {

GenParamTreeVisibilityFilterProxyModel::GenParamTreeVisibilityFilterProxyModel(QObject *parent)
    : QSortFilterProxyModel(parent)
    , filterRegExp(QStringLiteral("*"), Qt::CaseInsensitive, QRegExp::WildcardUnix)
{
}

GenParamTreeVisibilityFilterProxyModel::~GenParamTreeVisibilityFilterProxyModel() = default;

void GenParamTreeVisibilityFilterProxyModel::setSourceModel(QAbstractItemModel *model)
{
    if (sourceModel())
        disconnect(sourceModel(), nullptr, this, nullptr);
    matchesBelow.clear();
    QSortFilterProxyModel::setSourceModel(model);
    if (!model)
        return;
    // Availability (NI) follows values: any change may change an answer.
    auto forget = [this] { matchesBelow.clear(); };
    connect(model, &QAbstractItemModel::dataChanged, this, forget);
    connect(model, &QAbstractItemModel::layoutChanged, this, forget);
    connect(model, &QAbstractItemModel::modelReset, this, forget);
    connect(model, &QAbstractItemModel::rowsInserted, this, forget);
    connect(model, &QAbstractItemModel::rowsRemoved, this, forget);
}

void GenParamTreeVisibilityFilterProxyModel::setFilterVisibility(int _visibility)
{
    visibility = _visibility;
    refilter();
}

void GenParamTreeVisibilityFilterProxyModel::setFilterText(const QString &text)
{
    filterRegExp.setPattern(text);
    refilter();
}

// invalidate(), not invalidateFilter(): Qt re-filters what is mapped by
// recursing once per mapped level, which overflows the stack on a deeply
// nested description; invalidate() drops the mapping flat and maps again on
// demand.
void GenParamTreeVisibilityFilterProxyModel::refilter()
{
    matchesBelow.clear();
    invalidate();
}

namespace {

enum class Verdict { Hide, Show, AskChildren };

// What a row says of itself; a category under a name filter leaves it to
// what lies below it.
Verdict ownVerdict(const QModelIndex &index, int visibility, const QRegExp &filterRegExp,
                   bool wholeWords)
{
    const QVariant pointer = index.data(ValuePointerRole);
    if (!pointer.canConvert<IValue *>())
        return Verdict::Show;
    IValue *value = pointer.value<IValue *>();
    if (!value)
        return Verdict::Show;
    INode *node = value->GetNode();
    if (static_cast<int>(node->GetVisibility()) > visibility)
        return Verdict::Hide;
    // Through the model, which knows whether reading it may wait; a mode
    // that cannot be told (yet) shows the row, and its cell says why.
    const QVariant mode = index.data(AccessModeRole);
    if (mode.isValid() && mode.toInt() == NI)
        return Verdict::Hide;
    // "*" (the pattern before any text is set) names nothing either.
    const bool named
        = !filterRegExp.pattern().isEmpty() && filterRegExp.pattern() != QLatin1String("*");
    if (!named)
        return Verdict::Show;
    // While a name filter is set, a category shows only for what matches
    // below it: dozens of empty categories hid the matches.
    if (node->GetPrincipalInterfaceType() == intfICategory)
        return Verdict::AskChildren;
    // The name shown and the feature's own name (the one the description
    // pane and the host's code use) both find it.
    const QString names[] = { QString::fromUtf8(node->GetDisplayName().c_str()),
                              QString::fromUtf8(node->GetName().c_str()) };
    const auto matches = [&](const QString &name) {
        if (!wholeWords)
            return filterRegExp.indexIn(name) >= 0;
        // Whole words: the pattern matches the whole name or one of its
        // words ("gain" finds "Analog Gain", not "Gainsborough").
        if (filterRegExp.exactMatch(name))
            return true;
        static const QRegExp separators(QStringLiteral("[^\\w]+"));
        const QStringList words = name.split(separators, Qt::SkipEmptyParts);
        return std::any_of(words.begin(), words.end(), [&filterRegExp](const QString &word) {
            return filterRegExp.exactMatch(word);
        });
    };
    return std::any_of(std::begin(names), std::end(names), matches) ? Verdict::Show : Verdict::Hide;
}

} // namespace

bool GenParamTreeVisibilityFilterProxyModel::filterAcceptsRow(int sourceRow,
                                                              const QModelIndex &sourceParent) const
{
    const QModelIndex index = sourceModel()->index(sourceRow, 0, sourceParent);
    const Verdict verdict = ownVerdict(index, visibility, filterRegExp, wholeWords);
    if (verdict != Verdict::AskChildren)
        return verdict == Verdict::Show;
    return anyMatchBelow(index);
}

// Depth first with an explicit stack (categories may nest very deeply), and
// every category's answer is kept: the view asks for each level of a chain
// in turn, which must not cost the square of its depth.
bool GenParamTreeVisibilityFilterProxyModel::anyMatchBelow(const QModelIndex &category) const
{
    struct Frame {
        QModelIndex index;
        int next;
        bool found;
    };
    std::vector<Frame> stack { { category, 0, false } };
    bool answer = false;
    while (!stack.empty()) {
        Frame &top = stack.back();
        const void *key = top.index.internalPointer();
        const auto known = matchesBelow.constFind(key);
        const bool done = known != matchesBelow.constEnd() || top.found
            || top.next >= sourceModel()->rowCount(top.index);
        if (done) {
            answer = known != matchesBelow.constEnd() ? *known : top.found;
            matchesBelow.insert(key, answer);
            stack.pop_back();
            if (!stack.empty())
                stack.back().found = stack.back().found || answer;
            continue;
        }
        const QModelIndex child = sourceModel()->index(top.next++, 0, top.index);
        switch (ownVerdict(child, visibility, filterRegExp, wholeWords)) {
        case Verdict::Show:
            top.found = true;
            break;
        case Verdict::AskChildren:
            stack.push_back({ child, 0, false }); // `top` is not used after this
            break;
        case Verdict::Hide:
            break;
        }
    }
    return answer;
}

} // namespace OrbGui
