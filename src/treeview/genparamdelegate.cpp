#include "genparamdelegate.h"

#include "genparam/genparamtreemodel.h"

#include <OrbGui/qtorbspinboxval64.h>

#include <QApplication>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPushButton>

namespace OrbGui {

GenParamDelegate::GenParamDelegate(QObject *parent)
    : QStyledItemDelegate(parent)
{
}

GenParamDelegate::~GenParamDelegate() = default;

QWidget *GenParamDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                        const QModelIndex &index) const
{
    const QVariant data = index.data(ControlDataRole);
    if (!data.isValid() || !data.canConvert<ControlData>()) {
        QWidget *editor = QStyledItemDelegate::createEditor(parent, option, index);
        if (editor)
            captureMouseForEditor(editor);
        return editor;
    }
    const ControlData control = data.value<ControlData>();
    if (!control.control)
        return nullptr;
    control.control->setParent(parent);
    switch (control.kind) {
    case ControlData::PushButton:
        if (auto *button = qobject_cast<QPushButton *>(control.control)) {
            auto *self = const_cast<GenParamDelegate *>(this);
            connect(button, &QPushButton::clicked, self, [self, button] {
                button->setWindowModified(true);
                Q_EMIT self->commitData(button);
            });
        }
        return control.control;
    case ControlData::ComboBox:
        if (auto *combo = qobject_cast<QComboBox *>(control.control)) {
            auto *self = const_cast<GenParamDelegate *>(this);
            connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), self,
                    [self, combo] {
                        Q_EMIT self->commitData(combo);
                        Q_EMIT self->closeEditor(combo);
                    });
        }
        return control.control;
    case ControlData::SpinBox64:
    case ControlData::DoubleSpinBox:
    case ControlData::LineEdit:
        captureMouseForEditor(control.control);
        return control.control;
    default:
        return control.control;
    }
}

void GenParamDelegate::captureMouseForEditor(QWidget *editor) const
{
    qApp->installEventFilter(new MouseTracker(this, editor));
}

GenParamDelegate::MouseTracker::MouseTracker(const GenParamDelegate *delegate, QWidget *editor)
    : QObject(editor)
    , m_delegate(delegate)
    , m_editor(editor)
{
}

bool GenParamDelegate::MouseTracker::eventFilter(QObject *, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress && !m_editor->testAttribute(Qt::WA_UnderMouse)) {
        // Losing the focus makes the view commit and close the editor.
        m_editor->clearFocus();
        qApp->removeEventFilter(this);
    }
    return false;
}

void GenParamDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    const QVariant value = index.data(Qt::EditRole);
    if (!value.isValid()) {
        QStyledItemDelegate::setEditorData(editor, index);
        return;
    }
    const int type = value.userType();
    if (type == QMetaType::Bool || type == QMetaType::ULongLong
        || type == qMetaTypeId<VariantData>()) {
        if (auto *combo = qobject_cast<QComboBox *>(editor)) {
            const QVariant wanted
                = type == qMetaTypeId<VariantData>() ? value.value<VariantData>().value : value;
            combo->setCurrentIndex(
                combo->findData(wanted, Qt::UserRole, Qt::MatchExactly | Qt::MatchCaseSensitive));
        }
        return;
    }
    if (type == QMetaType::LongLong) {
        if (auto *spin = qobject_cast<QtOrbSpinBoxVal64 *>(editor))
            spin->setValue(value.toLongLong());
        return;
    }
    if (type == QMetaType::Double) {
        if (auto *spin = qobject_cast<QDoubleSpinBox *>(editor))
            spin->setValue(value.toDouble());
        return;
    }
    if (type == QMetaType::QString) {
        if (auto *edit = qobject_cast<QLineEdit *>(editor))
            edit->setText(value.toString());
        return;
    }
    QStyledItemDelegate::setEditorData(editor, index);
}

void GenParamDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                    const QModelIndex &index) const
{
    if (auto *combo = qobject_cast<QComboBox *>(editor)) {
        model->setData(index, combo->currentData(Qt::UserRole), Qt::EditRole);
    } else if (auto *spin = qobject_cast<QtOrbSpinBoxVal64 *>(editor)) {
        // The spin box commits typed text on Enter through its own event
        // filter, which the view's filter on the editor runs before; commit
        // it here so that what the user typed is what gets written.
        spin->commitText();
        model->setData(index, QVariant::fromValue<qlonglong>(spin->value()), Qt::EditRole);
    } else if (auto *doubleSpin = qobject_cast<QDoubleSpinBox *>(editor)) {
        doubleSpin->interpretText();
        model->setData(index, doubleSpin->value(), Qt::EditRole);
    } else if (auto *edit = qobject_cast<QLineEdit *>(editor)) {
        model->setData(index, edit->text(), Qt::EditRole);
    } else if (auto *button = qobject_cast<QPushButton *>(editor)) {
        // Only a click executes; closing the editor never does.
        if (button->isWindowModified()) {
            model->setData(index, true, Qt::EditRole);
            button->setWindowModified(false);
        }
    } else {
        QStyledItemDelegate::setModelData(editor, model, index);
    }
}

void GenParamDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                            const QModelIndex &) const
{
    editor->setGeometry(option.rect);
}

} // namespace OrbGui
