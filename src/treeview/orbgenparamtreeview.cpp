#include <OrbGui/orbgenparamtreeview.h>

#include "genparam/genparamtreemodel.h"
#include "genparam/genparamtreevisibilityfilterproxymodel.h"
#include "featureexport.h"
#include "featuresettings.h"
#include "genparamdelegate.h"
#include "treeviewresizer.h"
#include "ui_genparamtreeview.h"

#include <OrbCam/OrbGenParam.h>

#include <QAction>
#include <QCheckBox>
#include <QDataStream>
#include <QDialogButtonBox>
#include <QDir>
#include <QHeaderView>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMenu>
#include <QMessageBox>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QSplitter>
#include <QTextBrowser>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>
#include <cctype>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

using namespace GenApi;

namespace OrbGui {

IOrbGenParamTreeView::~IOrbGenParamTreeView() = default;

namespace {
const char keyState[] = "&lt;";
const char keyWidth[] = "&amp;W";
const char keyVisibility[] = "&amp;V";
const char keySplitter[] = "&amp;S";

// Calls visit(index, parent, row, depth) for every row below `top` (depth 1
// for its children) and descends where visit returns true. Its own stack,
// not recursion: categories may nest very deeply.
template <class Visit>
void forEachBelow(const QAbstractItemModel *model, const QModelIndex &top, Visit visit)
{
    std::vector<std::pair<QModelIndex, int>> pending { { top, 1 } };
    while (!pending.empty()) {
        const auto [parent, depth] = pending.back();
        pending.pop_back();
        for (int row = 0; row < model->rowCount(parent); ++row) {
            const QModelIndex index = model->index(row, 0, parent);
            if (visit(index, parent, row, depth))
                pending.emplace_back(index, depth + 1);
        }
    }
}
} // namespace

class OrbGenParamTreeViewPrivate {
    Q_DECLARE_PUBLIC(OrbGenParamTreeView)

public:
    explicit OrbGenParamTreeViewPrivate(OrbGenParamTreeView *view)
        : q_ptr(view)
    {
    }

    void Init(OrbGenParamTreeView *view, INodeMap *map);
    void initFilterWidget();
    void setModel(INodeMap *map);
    void setSpanForChildren(const QModelIndex &parent, int first, int last);
    std::string saveState(const QModelIndex &index, const std::string &separator) const;
    void loadState(const QModelIndex &index, const QString &parentPath, const std::string &state);
    bool isCategory(const QModelIndex &index) const;
    QString pathOf(const QModelIndex &index, const QString &parentPath) const;
    void updateOptionsIcon();
    void errorAppeared(const QModelIndex &index, const QString &name, const QString &message,
                       int id);
    void errorDisappeared(const QModelIndex &index, const QString &name, int id);
    void repaintRow(const QModelIndex &sourceIndex);
    void showErrors();
    void fitNameColumn();
    void updateNoMatch();
    void applyFilterText(GenParamTreeVisibilityFilterProxyModel *filter, const QString &text);
    void refilterKeepingView(GenParamTreeVisibilityFilterProxyModel *filter);
    bool treeKeyPress(QKeyEvent *event);
    void initContextMenu();
    // The current row's feature name, value and "Name = Value"; empty for a
    // category or no row.
    QString currentText(int what) const;
    void exportTo(bool json);
    QString askForFile(const QString &title, const QString &kind, const QString &suffix, bool save);
    void undo();
    void goToFeature(const QString &name);
    void saveSettingsAsked();
    void loadSettingsAsked();
    std::optional<SettingsLoadResult> loadSettingsFile(const QString &path, bool acceptOtherModel,
                                                       QString &why);
    GenParamTreeVisibilityFilterProxyModel *proxy() const;

    OrbGenParamTreeView *const q_ptr;
    QSplitter *splitter = nullptr;
    Ui_GenParamTreeView ui;
    mutable std::string stateText;
    bool columnWidthRestored = false;
    const QVector<int> foregroundRoles { Qt::ForegroundRole };
    std::map<QString, std::map<int, QString>> errors;
    QAction *filterOptionsAction = nullptr;
    QWidget *filterOptionsPopup = nullptr;
    QCheckBox *checkBoxCase = nullptr;
    QCheckBox *checkBoxWhole = nullptr;
    QTimer *pollTimer = nullptr;
    INodeMap *nodeMap = nullptr;
    QLabel *noMatch = nullptr;
    QObject *treeKeys = nullptr;
    // The rows the user had expanded when a name filter began (source
    // indexes: the filter does not change them), brought back when it ends.
    std::vector<QPersistentModelIndex> expandedBeforeFilter;
    bool nameFilterOn = false;
};

namespace {

// Gives the tree's key presses to the view first.
class TreeKeys : public QObject {
public:
    explicit TreeKeys(OrbGenParamTreeViewPrivate *view)
        : QObject(view->ui.treeView)
        , m_view(view)
    {
        view->ui.treeView->installEventFilter(this);
    }
    bool eventFilter(QObject *, QEvent *event) override
    {
        return event->type() == QEvent::KeyPress
            && m_view->treeKeyPress(static_cast<QKeyEvent *>(event));
    }

private:
    OrbGenParamTreeViewPrivate *m_view;
};

} // namespace

void OrbGenParamTreeViewPrivate::Init(OrbGenParamTreeView *view, INodeMap *map)
{
    ui.setupUi(view);
    splitter = new QSplitter(Qt::Vertical, view);
    ui.verticalLayout->addWidget(splitter);
    splitter->addWidget(ui.treeView);
    splitter->addWidget(ui.whatsThisLabel);
    splitter->setChildrenCollapsible(false);
    // The description pane starts at a quarter of the height, not at its
    // minimum: a few lines cut most descriptions.
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({ 750, 250 });

    // Deliberate deviations from the form, for users who browse with the
    // keyboard and hosts that embed the view: moving the current cell never
    // opens an editor (an editor opened in passing wrote what the arrow keys
    // met), and the header stays visible so that the column border can be
    // found.
    ui.treeView->setEditTriggers(QAbstractItemView::DoubleClicked
                                 | QAbstractItemView::SelectedClicked
                                 | QAbstractItemView::EditKeyPressed);
    ui.treeView->setHeaderHidden(false);
    treeKeys = new TreeKeys(this);
    noMatch = new QLabel(OrbGenParamTreeView::tr("No matching features"), ui.treeView);
    noMatch->setObjectName(QStringLiteral("noMatchLabel"));
    noMatch->setAlignment(Qt::AlignCenter);
    noMatch->setEnabled(false);
    noMatch->hide();

    // The filter widgets exist before the first model is wired to them, so
    // that the option check boxes work from the start.
    initFilterWidget();
    setModel(map);

    ui.treeView->setItemDelegateForColumn(1, new GenParamDelegate(view));
    initContextMenu();
    // The description pane names the features that lock a feature or make
    // it unavailable; a click on one goes to it.
    ui.whatsThisLabel->setOpenLinks(false);
    QObject::connect(ui.whatsThisLabel, &QTextBrowser::anchorClicked, view,
                     [this](const QUrl &url) {
                         if (url.scheme() == QLatin1String("feature"))
                             goToFeature(url.path());
                     });

    auto *resizer = new TreeViewResizer(ui.treeView);
    QObject::connect(resizer, &TreeViewResizer::showed, view, [this, resizer] {
        if (!columnWidthRestored)
            fitNameColumn();
        QObject::disconnect(resizer, nullptr, nullptr, nullptr); // the first show only
    });

    pollTimer = new QTimer(view);
    QObject::connect(pollTimer, &QTimer::timeout, view, [this] {
        auto *model = proxy() ? qobject_cast<GenParamTreeModel *>(proxy()->sourceModel()) : nullptr;
        if (model)
            model->poll(pollTimer->interval());
    });
}

namespace {
enum CopyWhat { CopyName, CopyValue, CopyRow };
} // namespace

// Copying and exporting, from the tree's context menu and the usual
// shortcuts (Ctrl+C copies the row).
void OrbGenParamTreeViewPrivate::initContextMenu()
{
    QTreeView *tree = ui.treeView;
    auto action = [&](const char *name, const QString &text, auto &&run) {
        auto *a = new QAction(text, tree);
        a->setObjectName(QString::fromLatin1(name));
        a->setShortcutContext(Qt::WidgetShortcut);
        QObject::connect(a, &QAction::triggered, tree, run);
        tree->addAction(a);
        return a;
    };
    auto copy = [this](int what) {
        const QString text = currentText(what);
        if (!text.isEmpty())
            QGuiApplication::clipboard()->setText(text);
    };
    action("actionCopyName", OrbGenParamTreeView::tr("Copy &Name"), [copy] { copy(CopyName); });
    action("actionCopyValue", OrbGenParamTreeView::tr("Copy &Value"), [copy] { copy(CopyValue); });
    action("actionCopyRow", OrbGenParamTreeView::tr("&Copy Name = Value"), [copy] {
        copy(CopyRow);
    })->setShortcut(QKeySequence::Copy);
    action("actionUndo", OrbGenParamTreeView::tr("&Undo"), [this] {
        undo();
    })->setShortcut(QKeySequence::Undo);
    action("actionExportText", OrbGenParamTreeView::tr("Export Tree as &Text..."),
           [this] { exportTo(false); });
    action("actionExportJson", OrbGenParamTreeView::tr("Export Tree as &JSON..."),
           [this] { exportTo(true); });
    action("actionSaveSettings", OrbGenParamTreeView::tr("&Save Settings..."),
           [this] { saveSettingsAsked(); });
    action("actionLoadSettings", OrbGenParamTreeView::tr("&Load Settings..."),
           [this] { loadSettingsAsked(); });
    tree->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(tree, &QTreeView::customContextMenuRequested, tree, [this, tree](QPoint at) {
        const bool row = !currentText(CopyName).isEmpty();
        QMenu menu(tree);
        menu.setObjectName(QStringLiteral("treeContextMenu"));
        for (QAction *a : tree->actions()) {
            const bool copying = a->objectName().startsWith(QLatin1String("actionCopy"));
            a->setEnabled(!copying || row);
            if (a->objectName() == QLatin1String("actionUndo")) {
                auto *model
                    = proxy() ? qobject_cast<GenParamTreeModel *>(proxy()->sourceModel()) : nullptr;
                a->setEnabled(model && model->canUndo());
            }
            if (a->objectName() == QLatin1String("actionUndo")
                || a->objectName() == QLatin1String("actionExportText")
                || a->objectName() == QLatin1String("actionSaveSettings"))
                menu.addSeparator();
            menu.addAction(a);
        }
        menu.exec(tree->viewport()->mapToGlobal(at));
    });
}

QString OrbGenParamTreeViewPrivate::currentText(int what) const
{
    const QModelIndex current = ui.treeView->currentIndex();
    const QModelIndex row = current.sibling(current.row(), 0);
    if (!row.isValid() || isCategory(row))
        return QString();
    auto *value = row.data(ValuePointerRole).value<IValue *>();
    if (!value)
        return QString();
    const QString name = QString::fromUtf8(value->GetNode()->GetName().c_str());
    QString text;
    try {
        text = QString::fromUtf8(value->ToString().c_str());
    } catch (const GenICam::GenericException &e) {
        text = QString::fromUtf8(e.GetDescription());
    }
    switch (what) {
    case CopyName:
        return name;
    case CopyValue:
        return text;
    default:
        return name + QStringLiteral(" = ") + text;
    }
}

// Asks for a file to save to or to load from. Saving and loading offer the
// same kind, and "All files" too; a name typed without an extension gets
// the kind's, so that the file saved is the one the loading dialog offers.
QString OrbGenParamTreeViewPrivate::askForFile(const QString &title, const QString &kind,
                                               const QString &suffix, bool save)
{
    Q_Q(OrbGenParamTreeView);
    QFileDialog dialog(q, title);
    dialog.setObjectName(QStringLiteral("treeFileDialog"));
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setNameFilters({ QStringLiteral("%1 (*.%2)").arg(kind, suffix),
                            OrbGenParamTreeView::tr("All files (*)") });
    dialog.setDefaultSuffix(suffix);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    return dialog.selectedFiles().first();
}

void OrbGenParamTreeViewPrivate::exportTo(bool json)
{
    Q_Q(OrbGenParamTreeView);
    const QString path = askForFile(OrbGenParamTreeView::tr("Export Feature Tree"),
                                    json ? OrbGenParamTreeView::tr("JSON files")
                                         : OrbGenParamTreeView::tr("Text files"),
                                    json ? QStringLiteral("json") : QStringLiteral("txt"), true);
    if (path.isEmpty())
        return;
    QFile file(path);
    const QByteArray content = json ? q->exportJson() : q->exportText().toUtf8();
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)
        || file.write(content) != content.size() || !file.flush())
        QMessageBox::warning(q, OrbGenParamTreeView::tr("Export Feature Tree"),
                             OrbGenParamTreeView::tr("Cannot write %1: %2")
                                 .arg(QDir::toNativeSeparators(path), file.errorString()));
}

// Selects the feature's row (its value cell), expanding its categories;
// where the visibility level or the name filter hides it, they are opened
// up so far as it takes.
void OrbGenParamTreeViewPrivate::goToFeature(const QString &name)
{
    GenParamTreeVisibilityFilterProxyModel *filter = proxy();
    QAbstractItemModel *source = filter ? filter->sourceModel() : nullptr;
    if (!source)
        return;
    QModelIndex found;
    std::vector<QModelIndex> pending { QModelIndex() };
    while (!pending.empty() && !found.isValid()) {
        const QModelIndex parent = pending.back();
        pending.pop_back();
        for (int row = 0; row < source->rowCount(parent) && !found.isValid(); ++row) {
            const QModelIndex index = source->index(row, 0, parent);
            auto *value = index.data(ValuePointerRole).value<IValue *>();
            if (value && QString::fromUtf8(value->GetNode()->GetName().c_str()) == name)
                found = index;
            else
                pending.push_back(index);
        }
    }
    if (!found.isValid())
        return;
    QModelIndex shown = filter->mapFromSource(found);
    if (!shown.isValid()) {
        ui.filterLineEdit->clear();
        ui.cbVisibility->setCurrentIndex(ui.cbVisibility->count() - 1);
        shown = filter->mapFromSource(found);
    }
    if (!shown.isValid())
        return; // invisible at every level the view offers
    for (QModelIndex p = shown.parent(); p.isValid(); p = p.parent())
        ui.treeView->expand(p);
    const QModelIndex cell = shown.sibling(shown.row(), 1);
    ui.treeView->scrollTo(cell);
    ui.treeView->setCurrentIndex(cell);
    ui.treeView->setFocus();
}

// Takes back the user's last write; says why when the camera refuses.
void OrbGenParamTreeViewPrivate::undo()
{
    Q_Q(OrbGenParamTreeView);
    auto *model = proxy() ? qobject_cast<GenParamTreeModel *>(proxy()->sourceModel()) : nullptr;
    QString why;
    if (model && model->canUndo() && !model->undo(&why))
        QMessageBox::warning(q, OrbGenParamTreeView::tr("Undo"), why);
}

void OrbGenParamTreeViewPrivate::saveSettingsAsked()
{
    Q_Q(OrbGenParamTreeView);
    const QString title = OrbGenParamTreeView::tr("Save Settings");
    const QString path = askForFile(title, OrbGenParamTreeView::tr("Camera settings"),
                                    QStringLiteral("txt"), true);
    QString why;
    if (!path.isEmpty() && !q->saveSettings(path, &why))
        QMessageBox::warning(q, title, why);
}

void OrbGenParamTreeViewPrivate::loadSettingsAsked()
{
    Q_Q(OrbGenParamTreeView);
    const QString title = OrbGenParamTreeView::tr("Load Settings");
    const QString path = askForFile(title, OrbGenParamTreeView::tr("Camera settings"),
                                    QStringLiteral("txt"), false);
    if (path.isEmpty())
        return;
    QString why;
    std::optional<SettingsLoadResult> result = loadSettingsFile(path, false, why);
    if (result && result->otherModel) {
        // Written for another model: only if the user says so.
        if (QMessageBox::question(
                q, title,
                OrbGenParamTreeView::tr("%1\nLoad them into this camera anyway?").arg(why))
            != QMessageBox::Yes)
            return;
        result = loadSettingsFile(path, true, why);
    }
    if (!result) {
        QMessageBox::warning(q, title, why);
        return;
    }
    if (!result->problems.empty()) {
        QStringList lines;
        for (const SettingsProblem &p : result->problems)
            lines << p.feature + QStringLiteral(": ") + p.reason;
        QMessageBox box(QMessageBox::Warning, title,
                        OrbGenParamTreeView::tr("%n feature(s) could not be written.", nullptr,
                                                int(lines.size())),
                        QMessageBox::Ok, q);
        box.setDetailedText(lines.join(QLatin1Char('\n')));
        box.exec();
    }
}

// The file's values written to the camera; nullopt with the reason when the
// file is unusable. For another model, nothing is written unless accepted:
// the result says so, with the reason.
std::optional<SettingsLoadResult>
OrbGenParamTreeViewPrivate::loadSettingsFile(const QString &path, bool acceptOtherModel,
                                             QString &why)
{
    if (!nodeMap) {
        why = OrbGenParamTreeView::tr("There is no camera.");
        return std::nullopt;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        why = OrbGenParamTreeView::tr("Cannot read %1: %2")
                  .arg(QDir::toNativeSeparators(path), file.errorString());
        return std::nullopt;
    }
    SettingsLoadResult result
        = OrbGui::loadSettings(nodeMap, QString::fromUtf8(file.readAll()), acceptOtherModel);
    if (!result.error.isEmpty()) {
        why = QDir::toNativeSeparators(path) + QStringLiteral(": ") + result.error;
        return std::nullopt;
    }
    if (result.otherModel && !acceptOtherModel)
        why = OrbGenParamTreeView::tr("The settings are for %1 %2, not for this camera.")
                  .arg(result.fileVendor, result.fileModel);
    return result;
}

void OrbGenParamTreeViewPrivate::initFilterWidget()
{
    Q_Q(OrbGenParamTreeView);
    QLineEdit *field = ui.filterLineEdit;
    QAction *clear = field->addAction(QIcon(QStringLiteral("://images//clear_left.png")),
                                      QLineEdit::TrailingPosition);
    clear->setToolTip(OrbGenParamTreeView::tr("Clear filter"));
    QObject::connect(clear, &QAction::triggered, field, [field] { field->setText(QString()); });

    filterOptionsAction = field->addAction(QIcon(QStringLiteral("://images//options.png")),
                                           QLineEdit::LeadingPosition);
    filterOptionsAction->setToolTip(OrbGenParamTreeView::tr("Filter options"));
    QObject::connect(filterOptionsAction, &QAction::triggered, field, [this, field] {
        filterOptionsPopup->move(field->mapToGlobal(QPoint(0, field->height() - 1)));
        filterOptionsPopup->show();
    });
    field->setMinimumWidth(3 * field->sizeHint().height()
                           + QFontMetrics(q->font()).horizontalAdvance(field->placeholderText()));

    filterOptionsPopup = new QWidget(field, Qt::Popup);
    filterOptionsPopup->setObjectName(QStringLiteral("FilterOptions"));
    auto *layout = new QVBoxLayout(filterOptionsPopup);
    layout->setObjectName(QStringLiteral("verticalLayout"));
    checkBoxCase = new QCheckBox(OrbGenParamTreeView::tr("Case Sensitive"), filterOptionsPopup);
    checkBoxCase->setObjectName(QStringLiteral("checkBoxCase"));
    checkBoxWhole = new QCheckBox(OrbGenParamTreeView::tr("Whole Words Only"), filterOptionsPopup);
    checkBoxWhole->setObjectName(QStringLiteral("checkBoxWhole"));
    layout->addWidget(checkBoxCase);
    layout->addWidget(checkBoxWhole);
}

GenParamTreeVisibilityFilterProxyModel *OrbGenParamTreeViewPrivate::proxy() const
{
    return qobject_cast<GenParamTreeVisibilityFilterProxyModel *>(ui.treeView->model());
}

void OrbGenParamTreeViewPrivate::setModel(INodeMap *map)
{
    Q_Q(OrbGenParamTreeView);
    if (QAbstractItemModel *old = ui.treeView->model()) {
        QItemSelectionModel *oldSelection = ui.treeView->selectionModel();
        ui.treeView->setModel(nullptr);
        if (oldSelection)
            oldSelection->deleteLater();
        old->deleteLater();
    }
    nodeMap = map;
    nameFilterOn = false;
    expandedBeforeFilter.clear();
    ui.whatsThisLabel->setText(QString());
    if (!map)
        return;

    auto *filter = new GenParamTreeVisibilityFilterProxyModel(q);
    auto *model = new GenParamTreeModel(map, filter);
    // A camera on the network keeps its waits off the host's GUI thread.
    model->setReadsOffThread(true);
    filter->setSourceModel(model);
    filter->setFilterVisibility(ui.cbVisibility->currentIndex());
    ui.treeView->setModel(filter);

    // Widgets that outlive the model: repeated setParams must not stack
    // handlers on them.
    for (QObject *sender :
         { static_cast<QObject *>(ui.filterLineEdit), static_cast<QObject *>(checkBoxCase),
           static_cast<QObject *>(checkBoxWhole), static_cast<QObject *>(ui.pbStatus) })
        if (sender)
            QObject::disconnect(sender, nullptr, nullptr, nullptr);

    QTreeView *tree = ui.treeView;
    QObject::connect(tree->selectionModel(), &QItemSelectionModel::currentChanged, q, [this] {
        const QModelIndex current = ui.treeView->currentIndex();
        if (current.isValid())
            ui.whatsThisLabel->setText(current.data(Qt::WhatsThisRole).toString());
    });
    QObject::connect(ui.cbVisibility, QOverload<int>::of(&QComboBox::currentIndexChanged), filter,
                     &GenParamTreeVisibilityFilterProxyModel::setFilterVisibility);
    QObject::connect(ui.filterLineEdit, &QLineEdit::textChanged, filter,
                     [this, filter](const QString &text) { applyFilterText(filter, text); });
    if (checkBoxCase) {
        QObject::connect(checkBoxCase, &QCheckBox::clicked, filter, [this, filter](bool checked) {
            updateOptionsIcon();
            filter->filterRegExp.setCaseSensitivity(checked ? Qt::CaseSensitive
                                                            : Qt::CaseInsensitive);
            refilterKeepingView(filter);
        });
        QObject::connect(checkBoxWhole, &QCheckBox::clicked, filter, [this, filter](bool checked) {
            updateOptionsIcon();
            filter->wholeWords = checked;
            refilterKeepingView(filter);
        });
    }
    QObject::connect(ui.pbExpandAll, &QToolButton::clicked, tree, &QTreeView::expandAll,
                     Qt::UniqueConnection);
    QObject::connect(ui.pbCollapseAll, &QToolButton::clicked, tree, &QTreeView::collapseAll,
                     Qt::UniqueConnection);
    QObject::connect(model, &GenParamTreeModel::errorAppeared, q,
                     [this](const QModelIndex &index, const QString &name, const QString &message,
                            int id) { errorAppeared(index, name, message, id); });
    QObject::connect(model, &GenParamTreeModel::errorDisappeared, q,
                     [this](const QModelIndex &index, const QString &name, int id) {
                         errorDisappeared(index, name, id);
                     });
    QObject::connect(ui.pbStatus, &QToolButton::clicked, q, [this] { showErrors(); });

    tree->setColumnWidth(0, (tree->columnWidth(0) + tree->columnWidth(1)) / 2);
    setSpanForChildren(QModelIndex(), 0, filter->rowCount() - 1);
    // Rows the filter brings back are new rows: span their categories too.
    QObject::connect(filter, &QAbstractItemModel::rowsInserted, q,
                     [this](const QModelIndex &parent, int first, int last) {
                         setSpanForChildren(parent, first, last);
                     });
    QObject::connect(filter, &QAbstractItemModel::layoutChanged, q, [this, filter] {
        setSpanForChildren(QModelIndex(), 0, filter->rowCount() - 1);
    });
    for (auto signal : { &QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved })
        QObject::connect(filter, signal, q, [this] { updateNoMatch(); });
    QObject::connect(filter, &QAbstractItemModel::layoutChanged, q, [this] { updateNoMatch(); });
    QObject::connect(filter, &QAbstractItemModel::modelReset, q, [this] { updateNoMatch(); });
    updateNoMatch();
}

// Wide enough for the longest name (at its depth), within three fifths of
// the tree, so that the value column keeps room. Halving both columns on
// first show, as the view once did, cut long names on every real description.
void OrbGenParamTreeViewPrivate::fitNameColumn()
{
    QTreeView *tree = ui.treeView;
    QAbstractItemModel *model = tree->model();
    if (!model)
        return;
    // Measuring every name costs more than the rest of showing a large
    // tree: only the longest names (in characters) at each depth are
    // measured, which in a proportional font still finds the widest.
    constexpr size_t measuredPerDepth = 16;
    std::map<int, std::vector<QString>> longest; // by depth, shortest first
    auto shorter = [](const QString &a, const QString &b) { return a.size() > b.size(); };
    forEachBelow(model, QModelIndex(),
                 [&](const QModelIndex &index, const QModelIndex &, int, int depth) {
                     // Categories span both columns and do not count.
                     if (isCategory(index))
                         return true;
                     std::vector<QString> &names = longest[depth];
                     QString name = index.data().toString();
                     if (names.size() < measuredPerDepth) {
                         names.push_back(std::move(name));
                         std::push_heap(names.begin(), names.end(), shorter);
                     } else if (name.size() > names.front().size()) {
                         std::pop_heap(names.begin(), names.end(), shorter);
                         names.back() = std::move(name);
                         std::push_heap(names.begin(), names.end(), shorter);
                     }
                     return false;
                 });
    const QFontMetrics metrics(tree->font());
    int widest = 0;
    for (const auto &[depth, names] : longest)
        for (const QString &name : names)
            widest = qMax(widest, metrics.horizontalAdvance(name) + depth * tree->indentation());
    const int available = tree->viewport()->width();
    tree->setColumnWidth(0, qBound(available / 4, widest + 16, available * 3 / 5));
}

// Matches of a name filter show expanded: what was searched for is in view
// without Expand All. Ending the filter brings back the expansion the user
// had before it; the current row stays current and in view throughout.
void OrbGenParamTreeViewPrivate::applyFilterText(GenParamTreeVisibilityFilterProxyModel *filter,
                                                 const QString &text)
{
    QTreeView *tree = ui.treeView;
    const bool wasFiltering = nameFilterOn;
    nameFilterOn = !text.isEmpty();
    if (!wasFiltering && !text.isEmpty()) {
        expandedBeforeFilter.clear();
        forEachBelow(filter, QModelIndex(),
                     [&](const QModelIndex &index, const QModelIndex &, int, int) {
                         if (!tree->isExpanded(index))
                             return false;
                         expandedBeforeFilter.emplace_back(filter->mapToSource(index));
                         return true;
                     });
    }
    const QPersistentModelIndex current = filter->mapToSource(tree->currentIndex());
    filter->setFilterText(text);
    if (!text.isEmpty()) {
        tree->expandAll();
    } else if (wasFiltering) {
        tree->collapseAll();
        for (const QPersistentModelIndex &source : expandedBeforeFilter)
            if (source.isValid())
                tree->expand(filter->mapFromSource(source));
        expandedBeforeFilter.clear();
    }
    const QModelIndex shown = current.isValid() ? filter->mapFromSource(current) : QModelIndex();
    if (shown.isValid()) {
        for (QModelIndex above = shown.parent(); above.isValid(); above = above.parent())
            tree->expand(above);
        tree->selectionModel()->setCurrentIndex(
            shown, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        tree->scrollTo(shown);
    }
}

void OrbGenParamTreeViewPrivate::refilterKeepingView(GenParamTreeVisibilityFilterProxyModel *filter)
{
    applyFilterText(filter, ui.filterLineEdit->text());
}

void OrbGenParamTreeViewPrivate::updateNoMatch()
{
    QAbstractItemModel *model = ui.treeView->model();
    const bool none = model && !ui.filterLineEdit->text().isEmpty() && model->rowCount() == 0;
    if (none) {
        noMatch->setGeometry(ui.treeView->viewport()->geometry());
        noMatch->raise();
    }
    noMatch->setVisible(none);
}

bool OrbGenParamTreeViewPrivate::treeKeyPress(QKeyEvent *event)
{
    QTreeView *tree = ui.treeView;
    // Keys that an open editor passes on are not for the tree.
    if (QApplication::focusWidget() != tree || !tree->model())
        return false;
    const QModelIndex current = tree->currentIndex();
    if (!current.isValid())
        return false;
    const QModelIndex value = current.sibling(current.row(), 1);
    const bool category = tree->isFirstColumnSpanned(current.row(), current.parent());
    switch (event->key()) {
    case Qt::Key_F2:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (category) {
            tree->setExpanded(current.sibling(current.row(), 0), !tree->isExpanded(current));
            return true;
        }
        if (!(value.flags() & Qt::ItemIsEditable))
            return false;
        tree->setCurrentIndex(value);
        tree->edit(value);
        return true;
    case Qt::Key_Right:
    case Qt::Key_Tab:
        // From a feature's name to its value; from the value on, Tab leaves.
        if (category || current.column() != 0 || event->modifiers() != Qt::NoModifier)
            return false;
        tree->setCurrentIndex(value);
        return true;
    case Qt::Key_Left:
        if (current.column() != 1)
            return false;
        tree->setCurrentIndex(current.sibling(current.row(), 0));
        return true;
    default:
        return false;
    }
}

// The model marks every row that is not a category as one that never has
// children; asking the flags costs no node access.
bool OrbGenParamTreeViewPrivate::isCategory(const QModelIndex &index) const
{
    return !(index.flags() & Qt::ItemNeverHasChildren);
}

// Spans the categories among the rows first..last of parent and every
// category below them. Only categories are touched: a new row is not
// spanned already, and each call costs the view a search of its rows, so
// visiting the leaves too made every filter change quadratic.
void OrbGenParamTreeViewPrivate::setSpanForChildren(const QModelIndex &parent, int first, int last)
{
    QAbstractItemModel *model = ui.treeView->model();
    if (!model)
        return;
    std::vector<QModelIndex> categories;
    for (int row = first; row <= last; ++row) {
        const QModelIndex index = model->index(row, 0, parent);
        if (isCategory(index))
            categories.push_back(index);
    }
    while (!categories.empty()) {
        const QModelIndex category = categories.back();
        categories.pop_back();
        ui.treeView->setFirstColumnSpanned(category.row(), category.parent(), true);
        for (int row = 0; row < model->rowCount(category); ++row) {
            const QModelIndex index = model->index(row, 0, category);
            if (isCategory(index))
                categories.push_back(index);
        }
    }
}

QString OrbGenParamTreeViewPrivate::pathOf(const QModelIndex &index,
                                           const QString &parentPath) const
{
    const QString text = index.data(Qt::DisplayRole).toString();
    return parentPath.isEmpty() ? text : parentPath + QLatin1Char('/') + text;
}

// Both walks keep their own stack: categories may nest very deeply.
std::string OrbGenParamTreeViewPrivate::saveState(const QModelIndex &top,
                                                  const std::string &separator) const
{
    std::string result;
    std::vector<QModelIndex> pending { top };
    while (!pending.empty()) {
        const QModelIndex index = pending.back();
        pending.pop_back();
        if (!isCategory(index))
            continue;
        if (ui.treeView->isExpanded(index)) {
            QStringList path;
            for (QModelIndex i = index; i.isValid(); i = i.parent())
                path.prepend(i.data(Qt::DisplayRole).toString());
            result += path.join(QLatin1Char('/')).toUtf8().toStdString() + separator;
        }
        const QAbstractItemModel *model = index.model();
        // Reversed onto the stack, so that the paths come out in tree order.
        for (int row = model->rowCount(index) - 1; row >= 0; --row)
            pending.push_back(model->index(row, 0, index));
    }
    return result;
}

void OrbGenParamTreeViewPrivate::loadState(const QModelIndex &top, const QString &topParentPath,
                                           const std::string &state)
{
    std::vector<std::pair<QModelIndex, QString>> pending { { top, topParentPath } };
    while (!pending.empty()) {
        const auto [index, parentPath] = pending.back();
        pending.pop_back();
        if (!isCategory(index))
            continue;
        const QString path = pathOf(index, parentPath);
        const bool expanded = state.find(path.toUtf8().toStdString()) != std::string::npos;
        ui.treeView->setExpanded(index, expanded);
        const QAbstractItemModel *model = index.model();
        if (expanded) {
            for (int row = 0; row < model->rowCount(index); ++row)
                pending.emplace_back(model->index(row, 0, index), path);
            continue;
        }
        // No path below one that is not in the state can be in it: collapse
        // the rest without building paths (quadratic in a deep chain).
        forEachBelow(model, index,
                     [this, model](const QModelIndex &child, const QModelIndex &, int, int) {
                         if (!model->hasChildren(child))
                             return false;
                         ui.treeView->setExpanded(child, false);
                         return true;
                     });
    }
}

namespace {

// The splitter's part of a saved state, read by hand: Qt's own reader takes
// the handle width, orientation and a list length from the bytes as they
// stand, and a corrupt state then grows the window without bound or throws
// std::bad_alloc. Only the two pane sizes are taken; they must be what this
// view writes (marker 0xff, version 0, two non-negative sizes).
std::optional<QList<int>> splitterSizes(const QByteArray &state)
{
    QDataStream stream(state);
    stream.setVersion(QDataStream::Qt_5_0);
    qint32 marker = 0;
    qint32 version = 0;
    quint32 count = 0;
    stream >> marker >> version >> count;
    if (stream.status() != QDataStream::Ok || marker != 0xff || version != 0 || count != 2)
        return std::nullopt;
    QList<int> sizes;
    for (quint32 i = 0; i < count; ++i) {
        qint32 size = -1;
        stream >> size;
        if (stream.status() != QDataStream::Ok || size < 0 || size > QWIDGETSIZE_MAX)
            return std::nullopt;
        sizes << size;
    }
    return sizes;
}

} // namespace

void OrbGenParamTreeViewPrivate::updateOptionsIcon()
{
    const bool caseSensitive = checkBoxCase->isChecked();
    const bool whole = checkBoxWhole->isChecked();
    QString icon = QStringLiteral("://images//options.png");
    if (caseSensitive && whole)
        icon = QStringLiteral("://images//options-cw.png");
    else if (caseSensitive)
        icon = QStringLiteral("://images//options-c.png");
    else if (whole)
        icon = QStringLiteral("://images//options-w.png");
    filterOptionsAction->setIcon(QIcon(icon));
}

void OrbGenParamTreeViewPrivate::repaintRow(const QModelIndex &sourceIndex)
{
    GenParamTreeVisibilityFilterProxyModel *filter = proxy();
    if (!filter || sourceIndex.model() != filter->sourceModel())
        return;
    const QModelIndex cell = filter->mapFromSource(sourceIndex);
    if (!cell.isValid())
        return;
    ui.treeView->update(cell.sibling(cell.row(), 0));
    ui.treeView->update(cell);
}

void OrbGenParamTreeViewPrivate::errorAppeared(const QModelIndex &index, const QString &name,
                                               const QString &message, int id)
{
    ui.pbStatus->setIcon(QIcon(QStringLiteral("://images//err.png")));
    repaintRow(index);
    errors[name].emplace(id, message); // the first message of an id stays
}

void OrbGenParamTreeViewPrivate::errorDisappeared(const QModelIndex &index, const QString &name,
                                                  int id)
{
    auto it = errors.find(name);
    if (it != errors.end()) {
        it->second.erase(id);
        if (it->second.empty())
            errors.erase(it);
    }
    repaintRow(index);
    if (errors.empty())
        ui.pbStatus->setIcon(QIcon(QStringLiteral("://images//ok.png")));
}

void OrbGenParamTreeViewPrivate::showErrors()
{
    QDialog dialog(ui.pbStatus);
    dialog.setObjectName(QStringLiteral("GenErrorsDlg"));
    dialog.resize(400, 171);
    dialog.setSizeGripEnabled(true);
    dialog.setWindowTitle(QCoreApplication::translate("GenErrorsDlg", "Gen<i>Cam errors"));
    auto *layout = new QVBoxLayout(&dialog);
    layout->setObjectName(QStringLiteral("verticalLayout"));
    auto *text = new QTextBrowser(&dialog);
    text->setObjectName(QStringLiteral("textErrors"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, Qt::Horizontal, &dialog);
    buttons->setObjectName(QStringLiteral("buttonBox"));
    layout->addWidget(text);
    layout->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::close);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::close);
    QString content;
    for (const auto &[name, ids] : errors)
        for (const auto &[id, message] : ids)
            content += QStringLiteral("{%1}{id:%3}: %2 \n").arg(name, message).arg(id);
    text->setPlainText(errors.empty() ? QCoreApplication::translate("GenErrorsDlg", "No Errors")
                                      : content);
    // Large enough for its text (within most of the screen), never smaller
    // than the form's 400 x 171: long messages were cut.
    const QFontMetrics metrics(text->font());
    int widest = 0;
    const QStringList lines = text->toPlainText().split(QLatin1Char('\n'));
    for (const QString &line : lines)
        widest = qMax(widest, metrics.horizontalAdvance(line));
    const QSize textSize(widest + 80, lines.size() * metrics.lineSpacing() + 120);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    dialog.resize(qBound(400, textSize.width(), screen.width() * 2 / 3),
                  qBound(171, textSize.height(), screen.height() * 2 / 3));
    dialog.exec();
}

OrbGenParamTreeView::OrbGenParamTreeView(QWidget *parent)
    : OrbGenParamTreeView(static_cast<INodeMap *>(nullptr), parent)
{
}

OrbGenParamTreeView::OrbGenParamTreeView(INodeMap *nodeMap, QWidget *parent)
    : QDialog(parent)
    , d_ptr(new OrbGenParamTreeViewPrivate(this))
{
    Q_D(OrbGenParamTreeView);
    d->Init(this, nodeMap);
}

OrbGenParamTreeView::OrbGenParamTreeView(OrbGenParam::Array *array, QWidget *parent)
    : OrbGenParamTreeView(array->GetNodeMap(0), parent)
{
}

OrbGenParamTreeView::~OrbGenParamTreeView()
{
    Q_D(OrbGenParamTreeView);
    // The model's callbacks must go before the node map does; the host may
    // release it right after destroying the view.
    d->pollTimer->stop();
    if (QAbstractItemModel *model = d->ui.treeView->model()) {
        d->ui.treeView->setModel(nullptr);
        delete model;
    }
}

void OrbGenParamTreeView::setParams(OrbGenParam::Array *array)
{
    Q_D(OrbGenParamTreeView);
    d->setModel(array->GetNodeMap(0));
}

void OrbGenParamTreeView::setParams(INodeMap *nodeMap)
{
    Q_D(OrbGenParamTreeView);
    d->setModel(nodeMap);
}

void OrbGenParamTreeView::clearParams()
{
    Q_D(OrbGenParamTreeView);
    if (QAbstractItemModel *old = d->ui.treeView->model()) {
        QItemSelectionModel *oldSelection = d->ui.treeView->selectionModel();
        d->ui.treeView->setModel(nullptr);
        old->deleteLater();
        if (oldSelection)
            oldSelection->deleteLater();
    }
    d->nodeMap = nullptr;
    d->ui.whatsThisLabel->setText(QString());
}

Visibility OrbGenParamTreeView::visibility() const
{
    Q_D(const OrbGenParamTreeView);
    return static_cast<Visibility>(d->ui.cbVisibility->currentIndex());
}

void OrbGenParamTreeView::setVisibility(Visibility visibility)
{
    Q_D(OrbGenParamTreeView);
    d->ui.cbVisibility->setCurrentIndex(static_cast<int>(visibility));
}

const char *OrbGenParamTreeView::saveState() const
{
    Q_D(const OrbGenParamTreeView);
    d->stateText.clear();
    const QAbstractItemModel *model = d->ui.treeView->model();
    if (!model)
        return d->stateText.c_str();
    const QModelIndex root = d->ui.treeView->rootIndex();
    for (int row = 0; row < model->rowCount(root); ++row)
        d->stateText += d->saveState(model->index(row, 0, root), keyState);
    d->stateText += keyWidth + std::to_string(d->ui.treeView->columnWidth(0));
    d->stateText += keyVisibility + std::to_string(d->ui.cbVisibility->currentIndex());
    d->stateText += keySplitter + d->splitter->saveState().toHex().toStdString();
    return d->stateText.c_str();
}

// A state the view did not write (edited by hand, cut short, from another
// version) changes nothing unless every keyed field in it is well formed: a
// level out of range would leave the tree empty, and a malformed number is
// refused here rather than thrown into the host.
void OrbGenParamTreeView::loadState(const char *state)
{
    Q_D(OrbGenParamTreeView);
    QAbstractItemModel *model = d->ui.treeView->model();
    if (!state || !*state || !model)
        return;
    const std::string text = state;
    // The category paths run to the first key; only they name categories
    // (a category named "S" must not match the splitter's key).
    const std::string paths = text.substr(0, text.find("&amp;"));

    // Each key's value runs to the next "&" or to the end.
    auto valueAfter = [&text](const std::string &key) {
        const size_t at = text.find(key);
        if (at == std::string::npos)
            return std::string();
        const size_t start = at + key.size();
        return text.substr(start, text.find('&', start) - start);
    };
    auto isNumber = [](const std::string &value, int base) {
        return !value.empty() && value.size() <= 9
            && std::all_of(value.begin(), value.end(), [base](char c) {
                   return base == 16 ? std::isxdigit(static_cast<unsigned char>(c)) != 0
                                     : std::isdigit(static_cast<unsigned char>(c)) != 0;
               });
    };
    const std::string width = valueAfter(keyWidth);
    const std::string level = valueAfter(keyVisibility);
    const std::string splitter = valueAfter(keySplitter);
    if ((!width.empty() && !isNumber(width, 10)) || (!level.empty() && !isNumber(level, 10))
        || (!level.empty() && std::stoi(level) > int(Guru))
        || (!splitter.empty()
            && (splitter.size() % 2 != 0
                || !std::all_of(splitter.begin(), splitter.end(), [](char c) {
                       return std::isxdigit(static_cast<unsigned char>(c)) != 0;
                   }))))
        return;

    d->stateText = state;
    const QModelIndex root = d->ui.treeView->rootIndex();
    for (int row = 0; row < model->rowCount(root); ++row)
        d->loadState(model->index(row, 0, root), QString(), paths);
    if (!width.empty() && std::stoi(width) != 0) {
        d->ui.treeView->setColumnWidth(0, std::stoi(width));
        d->columnWidthRestored = true;
    }
    if (!level.empty())
        d->ui.cbVisibility->setCurrentIndex(std::stoi(level));
    if (!splitter.empty())
        if (const auto sizes
            = splitterSizes(QByteArray::fromHex(QByteArray::fromStdString(splitter))))
            d->splitter->setSizes(*sizes);
}

void OrbGenParamTreeView::setPollingTime(unsigned long milliseconds)
{
    Q_D(OrbGenParamTreeView);
    d->pollTimer->setInterval(static_cast<int>(milliseconds));
}

unsigned long OrbGenParamTreeView::getPollingTime()
{
    Q_D(OrbGenParamTreeView);
    return static_cast<unsigned long>(d->pollTimer->interval());
}

void OrbGenParamTreeView::enablePolling(bool enable)
{
    Q_D(OrbGenParamTreeView);
    if (enable)
        d->pollTimer->start();
    else
        d->pollTimer->stop();
}

bool OrbGenParamTreeView::isPollingEnabled()
{
    Q_D(OrbGenParamTreeView);
    return d->pollTimer->isActive();
}

// Escape never rejects the view: a top-level view would close under the
// user's hand, and an embedded one would hide for good from its host. In
// the filter field it clears the filter; an open editor takes its own
// Escape before this.
void OrbGenParamTreeView::keyPressEvent(QKeyEvent *event)
{
    Q_D(OrbGenParamTreeView);
    if (event->key() != Qt::Key_Escape) {
        QDialog::keyPressEvent(event);
        return;
    }
    if (d->ui.filterLineEdit->hasFocus())
        d->ui.filterLineEdit->clear();
    event->accept();
}

void OrbGenParamTreeView::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    d_func()->updateNoMatch();
}

QTreeView *OrbGenParamTreeView::treeView() const
{
    Q_D(const OrbGenParamTreeView);
    return d->ui.treeView;
}

QString OrbGenParamTreeView::exportText() const
{
    Q_D(const OrbGenParamTreeView);
    return featuresAsText(collectFeatures(d->proxy() ? d->proxy()->sourceModel() : nullptr));
}

bool OrbGenParamTreeView::saveSettings(const QString &path, QString *error)
{
    Q_D(OrbGenParamTreeView);
    auto fail = [error](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    if (!d->nodeMap)
        return fail(tr("There is no camera."));
    const QByteArray content = OrbGui::saveSettings(d->nodeMap).toUtf8();
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)
        || file.write(content) != content.size() || !file.flush())
        return fail(
            tr("Cannot write %1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
    return true;
}

bool OrbGenParamTreeView::loadSettings(const QString &path, bool acceptOtherModel,
                                       QStringList *problems, QString *error)
{
    Q_D(OrbGenParamTreeView);
    QString why;
    const std::optional<SettingsLoadResult> result
        = d->loadSettingsFile(path, acceptOtherModel, why);
    if (!result || (result->otherModel && !acceptOtherModel)) {
        if (error)
            *error = why;
        return false;
    }
    if (problems) {
        problems->clear();
        for (const SettingsProblem &p : result->problems)
            *problems << p.feature + QStringLiteral(": ") + p.reason;
    }
    return true;
}

QByteArray OrbGenParamTreeView::exportJson() const
{
    Q_D(const OrbGenParamTreeView);
    return featuresAsJson(collectFeatures(d->proxy() ? d->proxy()->sourceModel() : nullptr));
}

} // namespace OrbGui
