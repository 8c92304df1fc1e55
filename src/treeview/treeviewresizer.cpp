#include "treeviewresizer.h"

#include <QHeaderView>
#include <QMouseEvent>
#include <QTreeView>

#include <cstdlib>

namespace OrbGui {

TreeViewResizer::TreeViewResizer(QTreeView *tree)
    : QObject(tree)
    , m_tree(tree)
    , m_viewport(tree->viewport())
{
    tree->installEventFilter(this);
    tree->viewport()->installEventFilter(this);
    tree->viewport()->setMouseTracking(true);
}

TreeViewResizer::~TreeViewResizer() = default;

QModelIndex TreeViewResizer::ifResizable(const QPoint &point) const
{
    const QModelIndex index
        = m_tree->indexAt(QPoint(point.x() - m_margin - 1, point.y() - m_margin - 1));
    if (!index.isValid())
        return QModelIndex();
    const QRect rect = m_tree->visualRect(index);
    if (std::abs(rect.right() - point.x()) >= m_margin)
        return QModelIndex();
    const QAbstractItemModel *model = index.model();
    if (index.column() >= model->columnCount(index.parent()) - 1)
        return QModelIndex();
    if (m_tree->header()->sectionResizeMode(index.column()) != QHeaderView::Interactive)
        return QModelIndex();
    return index;
}

bool TreeViewResizer::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_tree) {
        if (event->type() == QEvent::Show)
            Q_EMIT showed();
        return false;
    }
    if (watched != m_viewport)
        return false;
    switch (event->type()) {
    case QEvent::MouseMove: {
        auto *mouse = static_cast<QMouseEvent *>(event);
        if (!m_dragging) {
            if (ifResizable(mouse->pos()).isValid())
                m_viewport->setCursor(Qt::SplitHCursor);
            else
                m_viewport->unsetCursor();
            return false;
        }
        const int x = qRound(mouse->screenPos().x());
        const int delta = x - m_lastX;
        m_lastX = x;
        QHeaderView *header = m_tree->header();
        header->resizeSection(m_column, qMax(2 * m_margin, header->sectionSize(m_column) + delta));
        return true;
    }
    case QEvent::MouseButtonPress: {
        auto *mouse = static_cast<QMouseEvent *>(event);
        if (m_dragging || mouse->button() != Qt::LeftButton)
            return false;
        const QModelIndex index = ifResizable(mouse->pos());
        if (!index.isValid())
            return false;
        m_dragging = true;
        m_column = index.column();
        m_lastX = qRound(mouse->screenPos().x());
        return true;
    }
    case QEvent::MouseButtonRelease:
        if (m_dragging && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
            m_dragging = false;
            return true;
        }
        return false;
    default:
        return false;
    }
}

} // namespace OrbGui
