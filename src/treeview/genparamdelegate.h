#ifndef ORBGUI_GENPARAMDELEGATE_H
#define ORBGUI_GENPARAMDELEGATE_H

#include <QStyledItemDelegate>

namespace OrbGui {

// Edits the value column of the parameter tree with the editor the model
// hands out (ControlDataRole), with commit rules per editor kind: a combo
// box writes at once and closes, a command button executes once per click
// and never on close, spin boxes and line edits commit on Enter or when the
// user clicks anywhere else.
class GenParamDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit GenParamDelegate(QObject *parent = nullptr);
    ~GenParamDelegate() override;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;

    // Ends editing when the user presses a mouse button outside the editor.
    class MouseTracker : public QObject {
    public:
        MouseTracker(const GenParamDelegate *delegate, QWidget *editor);
        bool eventFilter(QObject *watched, QEvent *event) override;
        const GenParamDelegate *delegate() const { return m_delegate; }

    private:
        const GenParamDelegate *m_delegate;
        QWidget *m_editor;
    };

    void captureMouseForEditor(QWidget *editor) const;
};

} // namespace OrbGui

#endif
