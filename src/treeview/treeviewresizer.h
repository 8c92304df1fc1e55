#ifndef ORBGUI_TREEVIEWRESIZER_H
#define ORBGUI_TREEVIEWRESIZER_H

#include <QModelIndex>
#include <QObject>

class QTreeView;

namespace OrbGui {

// Lets the user drag the border between tree columns although the header is
// hidden, and tells when the tree is shown.
class TreeViewResizer : public QObject {
    Q_OBJECT

public:
    // Child of the tree; filters the tree's and its viewport's events.
    explicit TreeViewResizer(QTreeView *tree);
    ~TreeViewResizer() override;

Q_SIGNALS:
    // Every time the tree is shown.
    void showed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QModelIndex ifResizable(const QPoint &point) const;

    QTreeView *m_tree;
    // Kept from construction: the filter also sees events while the tree is
    // being destroyed, when asking it for its viewport is no longer valid.
    QWidget *m_viewport;
    const int m_margin = 5;
    bool m_dragging = false;
    int m_column = 0;
    int m_lastX = 0;
};

} // namespace OrbGui

#endif
