#ifndef ORBGUI_GENPARAMDELEGATE_H
#define ORBGUI_GENPARAMDELEGATE_H

#include <QStyledItemDelegate>

namespace OrbGui {

// Edits the value column of the parameter tree with the editor the model
// hands out (ControlDataRole). Nothing is written that the user did not
// choose: a combo box writes when the user picks an entry (keys that would
// step through it open its list instead), a command button executes once
// per click and never on close, spin boxes and line edits commit on Enter
// or when the user clicks anywhere else, and an editor whose value the user
// did not change writes nothing. The mouse wheel over an editor scrolls the
// tree and never changes a value. Text that is no value (an empty or
// incomplete address) is refused on Enter with the reason, and the editor
// stays open.
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

protected:
    // A value the user changed in this session shows in bold.
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

public:
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

protected:
    bool eventFilter(QObject *editor, QEvent *event) override;
};

} // namespace OrbGui

#endif
