#include "genparamdelegate.h"

#include "genparam/featureeditors.h"
#include "genparam/genparamtreemodel.h"

#include <OrbGui/qtorbspinboxval64.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QToolTip>

namespace OrbGui {

namespace {

// What the editor held when it was loaded from the model: its text (or
// entry), to tell whether the user has touched it, and its value, to tell
// whether a commit would change anything.
const char loadedStateProperty[] = "orbLoadedState";
const char loadedValueProperty[] = "orbLoadedValue";

QVariant editorState(const QWidget *editor)
{
    if (auto *combo = qobject_cast<const QComboBox *>(editor))
        return combo->currentIndex();
    if (auto *spin = qobject_cast<const QAbstractSpinBox *>(editor))
        return spin->text();
    if (auto *edit = qobject_cast<const QLineEdit *>(editor))
        return edit->text();
    return QVariant();
}

QVariant editorValue(const QWidget *editor)
{
    if (auto *combo = qobject_cast<const QComboBox *>(editor))
        return combo->currentData(Qt::UserRole);
    if (auto *spin = qobject_cast<const QtOrbSpinBoxVal64 *>(editor))
        return QVariant::fromValue<qlonglong>(spin->value());
    if (auto *spin = qobject_cast<const QDoubleSpinBox *>(editor))
        return spin->value();
    if (auto *edit = qobject_cast<const QLineEdit *>(editor))
        return edit->text();
    return QVariant();
}

// Why the editor's text cannot be committed, or empty when it can.
QString refusal(const QWidget *editor)
{
    if (auto *edit = qobject_cast<const QLineEdit *>(editor))
        if (qobject_cast<const AddressEditValidator *>(edit->validator()))
            return AddressEditValidator::refusal(edit->text());
    // A number typed outside the range is neither limited nor written: the
    // editor stays open with it, and says the range.
    if (editor->property("outOfRange").toBool())
        return editor->toolTip();
    return QString();
}

// A number that would not be written as typed (off the feature's increment,
// more decimals than it has) is first shown as the number that would be:
// true when the editor's text was changed to it. Nothing is written here.
bool showWhatWouldBeWritten(QWidget *editor)
{
    if (auto *spin = qobject_cast<QtOrbSpinBoxVal64 *>(editor)) {
        bool ok = false;
        const QString typed = spin->text().trimmed();
        const qlonglong number = spin->displayIntegerBase() == 10
            ? spin->locale().toLongLong(typed, &ok)
            : typed.toLongLong(&ok, spin->displayIntegerBase());
        spin->commitText();
        return ok && number != spin->value();
    }
    if (auto *box = qobject_cast<FeatureDoubleSpinBox *>(editor))
        return box->showCommitted();
    return false;
}

void showNear(QWidget *editor, const QString &text)
{
    QToolTip::showText(editor->mapToGlobal(QPoint(0, editor->height())), text, editor);
}

// A MAC address edits as a number while the model gives its colon text.
bool readMac(const QString &text, qlonglong *value)
{
    QString digits = text;
    digits.remove(QLatin1Char(':'));
    bool ok = false;
    *value = static_cast<qlonglong>(digits.toULongLong(&ok, 16));
    return ok && digits.size() == 12;
}

bool isSteppingKey(int key)
{
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp
        || key == Qt::Key_PageDown || key == Qt::Key_Home || key == Qt::Key_End;
}

} // namespace

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
    auto *self = const_cast<GenParamDelegate *>(this);
    switch (control.kind) {
    case ControlData::PushButton:
        if (auto *button = qobject_cast<QPushButton *>(control.control)) {
            connect(button, &QPushButton::clicked, self, [self, button] {
                button->setWindowModified(true);
                Q_EMIT self->commitData(button);
                showNear(button, tr("Executed"));
            });
        }
        return control.control;
    case ControlData::ComboBox:
        if (auto *combo = qobject_cast<QComboBox *>(control.control)) {
            // A pick from the list, never a change of index by a key or the
            // wheel: those could pass over entries on their way.
            connect(combo, QOverload<int>::of(&QComboBox::activated), self, [self, combo] {
                Q_EMIT self->commitData(combo);
                Q_EMIT self->closeEditor(combo);
            });
            combo->installEventFilter(self);
        }
        return control.control;
    case ControlData::SpinBox64:
    case ControlData::DoubleSpinBox:
    case ControlData::LineEdit:
        captureMouseForEditor(control.control);
        control.control->installEventFilter(self);
        if (!control.control->toolTip().isEmpty()) {
            // The feature's range while the user types; shown once the
            // editor has its place in the cell.
            QWidget *editor = control.control;
            QMetaObject::invokeMethod(
                editor,
                [editor] {
                    if (editor->isVisible())
                        showNear(editor, editor->toolTip());
                },
                Qt::QueuedConnection);
        }
        return control.control;
    default:
        return control.control;
    }
}

bool GenParamDelegate::eventFilter(QObject *object, QEvent *event)
{
    auto *editor = qobject_cast<QWidget *>(object);
    if (!editor)
        return QStyledItemDelegate::eventFilter(object, event);
    if (event->type() == QEvent::Wheel) {
        // The wheel scrolls the tree, as it does over any other cell.
        if (auto *view = qobject_cast<QAbstractItemView *>(
                editor->parentWidget() ? editor->parentWidget()->parentWidget() : nullptr))
            QCoreApplication::sendEvent(view->viewport(), event);
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (auto *combo = qobject_cast<QComboBox *>(editor)) {
            if (isSteppingKey(key)) {
                combo->showPopup();
                return true;
            }
        } else if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            const QString reason = refusal(editor);
            if (!reason.isEmpty()) {
                showNear(editor, reason);
                return true; // the editor stays open with what was typed
            }
            if (showWhatWouldBeWritten(editor)) {
                showNear(editor,
                         tr("This is the nearest value the feature takes. Enter writes "
                            "it; Escape leaves the feature as it was."));
                return true;
            }
        }
    }
    return QStyledItemDelegate::eventFilter(object, event);
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
    // The model announces every change of the feature while the editor is
    // open (polling, another window); what the user has begun to type is
    // theirs and is not replaced.
    const QVariant loaded = editor->property(loadedStateProperty);
    if (loaded.isValid() && editorState(editor) != loaded)
        return;

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
    } else if (type == QMetaType::LongLong) {
        if (auto *spin = qobject_cast<QtOrbSpinBoxVal64 *>(editor))
            spin->setValue(value.toLongLong());
    } else if (type == QMetaType::Double) {
        if (auto *spin = qobject_cast<QDoubleSpinBox *>(editor))
            spin->setValue(value.toDouble());
    } else if (type == QMetaType::QString) {
        qlonglong mac = 0;
        if (auto *edit = qobject_cast<QLineEdit *>(editor))
            edit->setText(value.toString());
        else if (auto *spin = qobject_cast<QtOrbSpinBoxVal64 *>(editor))
            if (readMac(value.toString(), &mac))
                spin->setValue(mac);
    } else {
        QStyledItemDelegate::setEditorData(editor, index);
    }
    editor->setProperty(loadedStateProperty, editorState(editor));
    editor->setProperty(loadedValueProperty, editorValue(editor));
}

void GenParamDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                    const QModelIndex &index) const
{
    if (auto *button = qobject_cast<QPushButton *>(editor)) {
        // Only a click executes; closing the editor never does.
        if (button->isWindowModified()) {
            model->setData(index, true, Qt::EditRole);
            button->setWindowModified(false);
        }
        return;
    }
    const bool known = editor->property(loadedStateProperty).isValid();
    if (known && editorState(editor) == editor->property(loadedStateProperty))
        return; // untouched
    if (!refusal(editor).isEmpty())
        return; // no value to write (left with an incomplete address)
    // Left (by a click elsewhere) with a number that would be written as
    // another: the user never saw that one, so nothing is written.
    if (showWhatWouldBeWritten(editor))
        return;
    // The box commits typed text on Enter through its own event filter, which
    // runs after this delegate's: it was committed above, so that what the
    // user typed is what gets written.
    if (auto *doubleSpin = qobject_cast<QDoubleSpinBox *>(editor))
        doubleSpin->interpretText();
    const QVariant value = editorValue(editor);
    if (!value.isValid()) {
        QStyledItemDelegate::setModelData(editor, model, index);
        return;
    }
    if (known && value == editor->property(loadedValueProperty))
        return; // changed and changed back
    if (!model->setData(index, value, Qt::EditRole)) {
        // The feature stopped being writable while the editor was open (the
        // camera stopped answering, another feature locked it): what was
        // typed is not kept for later, and the user is told.
        // Shown on the view: the editor closes next.
        if (!(index.flags() & Qt::ItemIsEditable))
            QToolTip::showText(editor->mapToGlobal(QPoint(0, editor->height())),
                               tr("Not written: the feature cannot be written now (the camera "
                                  "may have stopped answering)."),
                               editor->parentWidget());
        return;
    }
    editor->setProperty(loadedStateProperty, editorState(editor));
    editor->setProperty(loadedValueProperty, value);
}

void GenParamDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                            const QModelIndex &) const
{
    editor->setGeometry(option.rect);
}

void GenParamDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.data(ChangedRole).toBool())
        option->font.setBold(true);
}

} // namespace OrbGui
