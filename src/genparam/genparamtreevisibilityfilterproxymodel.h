#ifndef ORBGUI_GENPARAMTREEVISIBILITYFILTERPROXYMODEL_H
#define ORBGUI_GENPARAMTREEVISIBILITYFILTERPROXYMODEL_H

#include <QHash>
#include <QRegExp>
#include <QSortFilterProxyModel>

namespace OrbGui {

// Hides features above a visibility level, features that are not
// implemented, and features whose display name does not match a wildcard
// pattern. Sits between GenParamTreeModel and the tree view.
class GenParamTreeVisibilityFilterProxyModel : public QSortFilterProxyModel {
    Q_OBJECT

public:
    explicit GenParamTreeVisibilityFilterProxyModel(QObject *parent = nullptr);
    ~GenParamTreeVisibilityFilterProxyModel() override;

    // The highest GenApi visibility shown (0 Beginner at construction).
    int visibility = 0;
    // The name filter: wildcard syntax, case-insensitive at construction.
    // The view changes its case sensitivity and wholeWords directly, then
    // calls refilter().
    QRegExp filterRegExp;
    // True: the display name must match as a whole; false: anywhere in it.
    bool wholeWords = false;

    void setSourceModel(QAbstractItemModel *model) override;

public Q_SLOTS:
    void setFilterVisibility(int _visibility);
    void setFilterText(const QString &text);
    // Filters again after the filter's settings changed.
    void refilter();

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

private:
    bool anyMatchBelow(const QModelIndex &category) const;

    // Whether anything below a category (by its source index's internal
    // pointer) matches the current filter; emptied whenever the filter or
    // the source changes.
    mutable QHash<const void *, bool> matchesBelow;
};

} // namespace OrbGui

#endif
