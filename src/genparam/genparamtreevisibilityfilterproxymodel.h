#ifndef ORBGUI_GENPARAMTREEVISIBILITYFILTERPROXYMODEL_H
#define ORBGUI_GENPARAMTREEVISIBILITYFILTERPROXYMODEL_H

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
    // calls invalidate().
    QRegExp filterRegExp;
    // True: the display name must match as a whole; false: anywhere in it.
    bool wholeWords = false;

public Q_SLOTS:
    void setFilterVisibility(int _visibility);
    void setFilterText(const QString &text);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;
};

} // namespace OrbGui

#endif
