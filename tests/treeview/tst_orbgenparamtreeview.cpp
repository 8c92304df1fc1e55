// The parameter tree view by hand: editing through the delegate, filters,
// the visibility level, the description pane, polling, errors and the saved
// state, with real input events on the X server.
#include "orbcam/orbcamtest.h"
#include "genparam/genparamtreemodel.h"

#include <GenApi/GenApi.h>
#include <OrbCam/OrbCam.h>
#include <OrbCam/OrbCamSim.h>
#include <OrbGui/orbgenparamtreeview.h>
#include <OrbGui/qtorbspinboxval64.h>

#include <QAbstractProxyModel>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFile>
#include <QLabel>
#include <QScrollBar>
#include <QToolTip>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QClipboard>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMenu>
#include <QSplitter>
#include <QTextBrowser>
#include <QTextCursor>
#include <QTextDocument>
#include <QElapsedTimer>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>
#include <QDataStream>
#include <QtTest>

#include <memory>
#include <stdexcept>

using namespace OrbGui;

Q_DECLARE_METATYPE(std::string)

namespace {

QString dataDir()
{
    return QStringLiteral(ORB_TEST_DATA_DIR "/genparam");
}

// The model description over zero-filled memory, shown in a view.
struct Fixture {
    explicit Fixture(const QString &file = dataDir() + QStringLiteral("/model.xml"))
    {
        map._LoadXMLFromFile(file.toUtf8().constData());
        GenApi::NodeList_t nodes;
        map._GetNodes(nodes);
        for (GenApi::INode *node : nodes)
            if (node->GetPrincipalInterfaceType() == GenApi::intfIPort)
                map._Connect(&port, node->GetName());
        view = std::make_unique<OrbGenParamTreeView>(static_cast<GenApi::INodeMap *>(map));
        view->resize(600, 700);
    }
    ~Fixture() { view.reset(); }
    bool show()
    {
        view->show();
        view->activateWindow();
        return QTest::qWaitForWindowActive(view.get());
    }
    QTreeView *tree() const { return view->treeView(); }
    // The proxy index of a feature, by node name.
    QModelIndex find(const QString &name, const QModelIndex &parent = QModelIndex()) const
    {
        QAbstractItemModel *model = tree()->model();
        for (int row = 0; row < model->rowCount(parent); ++row) {
            const QModelIndex index = model->index(row, 0, parent);
            auto *value = index.data(ValuePointerRole).value<GenApi::IValue *>();
            if (value && QString::fromUtf8(value->GetNode()->GetName().c_str()) == name)
                return index;
            const QModelIndex inner = find(name, index);
            if (inner.isValid())
                return inner;
        }
        return QModelIndex();
    }
    QModelIndex value(const QString &name) const
    {
        const QModelIndex index = find(name);
        return index.sibling(index.row(), 1);
    }
    QPoint center(const QModelIndex &index) const
    {
        tree()->scrollTo(index);
        return tree()->visualRect(index).center();
    }
    void doubleClick(const QModelIndex &index)
    {
        const QPoint at = center(index);
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, Qt::NoModifier, at);
        QTest::mouseDClick(tree()->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    }
    QWidget *editor(const QModelIndex &index) const { return tree()->indexWidget(index); }
    // Opens the editor of a feature's value cell as a user does; null when
    // the editor is not a T.
    template <class T> T *openEditor(const QString &name, QModelIndex *cell)
    {
        tree()->expandAll();
        *cell = value(name);
        doubleClick(*cell);
        return qobject_cast<T *>(editor(*cell));
    }
    QStringList visibleNames(const QModelIndex &parent = QModelIndex()) const
    {
        QStringList names;
        QAbstractItemModel *model = tree()->model();
        for (int row = 0; row < model->rowCount(parent); ++row) {
            const QModelIndex index = model->index(row, 0, parent);
            names << index.data().toString();
            names << visibleNames(index);
        }
        return names;
    }
    template <class T> T *child(const char *name) const
    {
        return view->findChild<T *>(QString::fromLatin1(name));
    }
    // Every readable feature's value as text, and how many writes reached
    // the device: two snapshots differ when anything at all was written.
    QStringList snapshot()
    {
        QStringList values { QString::number(port.WriteCount()) };
        GenApi::NodeList_t nodes;
        map._GetNodes(nodes);
        for (GenApi::INode *node : nodes) {
            auto *value = dynamic_cast<GenApi::IValue *>(node);
            if (value && GenApi::IsReadable(node->GetAccessMode())
                && node->GetPrincipalInterfaceType() != GenApi::intfICommand)
                values << QString::fromUtf8(node->GetName().c_str()) + QLatin1Char('=')
                        + QString::fromUtf8(value->ToString().c_str());
        }
        return values;
    }
    void setCurrentName(const QString &feature)
    {
        tree()->expandAll();
        tree()->setFocus();
        tree()->setCurrentIndex(find(feature));
    }
    GenApi::CNodeMapRef map;
    GenApi::CMemoryPort port;
    std::unique_ptr<OrbGenParamTreeView> view;
};

// A description written for one test, as a file the fixture can load.
QString xmlFile(const QByteArray &body)
{
    static int count = 0;
    const QString path = QDir::temp().filePath(QStringLiteral("orbgui-tree-%1-%2.xml")
                                                   .arg(QCoreApplication::applicationPid())
                                                   .arg(++count));
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write("<RegisterDescription>" + body + "</RegisterDescription>");
    return path;
}

// The modal dialog opened next, read and closed from the event loop.
struct ModalWatcher {
    explicit ModalWatcher(QObject *context)
    {
        timer.setInterval(10);
        QObject::connect(&timer, &QTimer::timeout, context, [this] {
            if (QWidget *dialog = QApplication::activeModalWidget()) {
                ++opened;
                if (auto *text = dialog->findChild<QTextBrowser *>())
                    texts << text->toPlainText();
                sizes << dialog->size();
                dialog->close();
            }
        });
        timer.start();
    }
    QTimer timer;
    int opened = 0;
    QStringList texts;
    QList<QSize> sizes;
};

QImage iconImage(const QIcon &icon)
{
    return icon.pixmap(16, 16).toImage();
}

} // namespace

class tst_OrbGenParamTreeView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void form();
    void typeAndEnterWrites();
    void clickElsewhereCommitsTheSpinBox();
    void comboChoiceWritesAtOnce();
    void commandExecutesOncePerClickAndNeverOnClose();
    void lineEditForAddresses();
    void failedWriteShowsAndClears();
    void slowCameraKeepsTheTreeAnswering();
    void filterText();
    void filterOptions();
    void filterKeepsTheUsersTree();
    void commandConsequencesShow();
    void changedMarkBelongsToTheSlot();
    void visibilityLevel();
    void expandAndCollapse();
    void descriptionPane();
    void pollingRepaintsLiveValues();
    void pollingSettings();
    void hostileCategories_data();
    void hostileCategories();
    void saveStateFormat();
    void saveStateEdges();
    void loadStateEdges_data();
    void loadStateEdges();
    void corruptSplitterState_data();
    void corruptSplitterState();
    void stateRoundTripOnRealDescriptions_data();
    void stateRoundTripOnRealDescriptions();
    void setParamsTwiceDoesNotStackHandlers();
    void clearParams();
    void columnBorderCanBeDragged();
    void navigationNeverWrites();
    void wheelNeverWrites();
    void keyboardEditing();
    void leavingUnchangedWritesNothing_data();
    void leavingUnchangedWritesNothing();
    void clickOutsideTheTreeCommits();
    void addressRefusals_data();
    void addressRefusals();
    void typingIntoEditors_data();
    void typingIntoEditors();
    void floatWithoutIncrementSteps();
    void enumerationValueWithoutEntry();
    void escapeNeverRejects_data();
    void escapeNeverRejects();
    void malformedStatesChangeNothing_data();
    void malformedStatesChangeNothing();
    void keysAreNoCategories();
    void firstShowFitsNames();
    void restoredWidthSurvivesFirstShow();
    void errorListKeepsFirstMessageAndFits();
    void commandEditorCoversTheCell();
    void descriptionPaneHasRoom();
    void copyFromTheRow_data();
    void copyFromTheRow();
    void contextMenuOffersCopyAndExport();
    void exportTextAndJson();
    void changedValuesAreMarkedAndUndone();
    void whyLockedOrNotAvailable();
};

void tst_OrbGenParamTreeView::initTestCase()
{
    QLocale::setDefault(QLocale::c());
    qRegisterMetaType<std::string>();
}

void tst_OrbGenParamTreeView::form()
{
    Fixture f;
    QCOMPARE(f.view->objectName(), QStringLiteral("GenParamTreeView"));
    // Visible, unlike the form says, so that the column border can be found.
    QVERIFY(!f.tree()->isHeaderHidden());
    QVERIFY(f.tree()->alternatingRowColors());
    auto *levels = f.child<QComboBox>("cbVisibility");
    QCOMPARE(levels->count(), 3);
    QCOMPARE(levels->itemText(0), QStringLiteral("Basic"));
    QCOMPARE(f.child<QLineEdit>("filterLineEdit")->placeholderText(), QStringLiteral("Filter"));
    QVERIFY(f.child<QWidget>("FilterOptions"));
    QCOMPARE(iconImage(f.child<QToolButton>("pbStatus")->icon()),
             iconImage(QIcon(QStringLiteral(":/images/ok.png"))));
    QVERIFY(!QIcon(QStringLiteral("://images//options-cw.png")).isNull());
    // Categories span both columns.
    QVERIFY(f.tree()->isFirstColumnSpanned(0, QModelIndex()));
    QVERIFY(!f.tree()->isFirstColumnSpanned(0, f.find(QStringLiteral("Acquisition"))));
    f.view->setVisibility(Expert);
    const QModelIndex nested = f.find(QStringLiteral("Advanced"));
    QVERIFY(nested.isValid());
    QVERIFY(f.tree()->isFirstColumnSpanned(nested.row(), nested.parent()));
}

void tst_OrbGenParamTreeView::typeAndEnterWrites()
{
    Fixture f;
    QVERIFY(f.show());
    QModelIndex cell;
    auto *spin = f.openEditor<QtOrbSpinBoxVal64>(QStringLiteral("ExposureTime"), &cell);
    QVERIFY(spin);
    spin->selectAll();
    QTest::keyClicks(spin, QStringLiteral("1230"));
    QTest::keyClick(spin, Qt::Key_Return);
    // Written to the device (the view commits on its next pass through the
    // event loop).
    QTRY_COMPARE(GenApi::CIntegerPtr(f.map._GetNode("ExposureTime"))->GetValue(), int64_t(1230));
    QTRY_VERIFY(!f.editor(cell));
    QCOMPARE(cell.data().toString(), QStringLiteral("1230 \u03BCs"));
}

void tst_OrbGenParamTreeView::clickElsewhereCommitsTheSpinBox()
{
    Fixture f;
    QVERIFY(f.show());
    QModelIndex cell;
    auto *spin = f.openEditor<QtOrbSpinBoxVal64>(QStringLiteral("ExposureTime"), &cell);
    QVERIFY(spin);
    spin->selectAll();
    QTest::keyClicks(spin, QStringLiteral("500"));
    // A click on another row ends editing and writes what was typed.
    QTest::mouseClick(f.tree()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      f.center(f.find(QStringLiteral("Binning"))));
    QTRY_COMPARE(GenApi::CIntegerPtr(f.map._GetNode("ExposureTime"))->GetValue(), int64_t(500));
    QTRY_VERIFY(!f.editor(cell));
}

void tst_OrbGenParamTreeView::comboChoiceWritesAtOnce()
{
    Fixture f;
    QVERIFY(f.show());
    QModelIndex cell;
    auto *combo = f.openEditor<QComboBox>(QStringLiteral("AnalogGain"), &cell);
    QVERIFY(combo);
    QCOMPARE(combo->currentText(), QStringLiteral("Gain1x"));
    const QStringList before = f.snapshot();
    // A key that would step through the entries opens the list instead.
    QTest::keyClick(combo, Qt::Key_Down);
    QTRY_VERIFY(combo->view()->isVisible());
    QCOMPARE(f.snapshot(), before);
    // Picking an entry writes it and closes the editor.
    QAbstractItemView *list = combo->view();
    const QModelIndex entry = list->model()->index(combo->findText(QStringLiteral("Gain8x")), 0);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                      list->visualRect(entry).center());
    QTRY_COMPARE(GenApi::CEnumerationPtr(f.map._GetNode("AnalogGain"))->ToString(),
                 GenICam::gcstring("Gain8x"));
    QTRY_VERIFY(!f.editor(cell));

    // Picking the entry already set writes nothing.
    const QStringList after = f.snapshot();
    combo = f.openEditor<QComboBox>(QStringLiteral("AnalogGain"), &cell);
    QVERIFY(combo);
    combo->showPopup();
    list = combo->view();
    QTRY_VERIFY(list->isVisible());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                      list->visualRect(list->model()->index(combo->currentIndex(), 0)).center());
    QTRY_VERIFY(!f.editor(cell));
    QCOMPARE(f.snapshot(), after);
}

void tst_OrbGenParamTreeView::commandExecutesOncePerClickAndNeverOnClose()
{
    Fixture f;
    QVERIFY(f.show());
    QModelIndex cell;
    auto commandWrites = [&f] {
        uint32_t v = 0;
        f.port.Read(&v, 0x110, 4);
        return v;
    };
    auto *button = f.openEditor<QPushButton>(QStringLiteral("AcquisitionStart"), &cell);
    QVERIFY(button);
    const uint64_t before = f.port.WriteCount();
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(f.port.WriteCount(), before + 1);
    QCOMPARE(commandWrites(), 1u);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(f.port.WriteCount(), before + 2);
    // Leaving the editor executes nothing.
    QTest::mouseClick(f.tree()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      f.center(f.find(QStringLiteral("Binning"))));
    QTRY_VERIFY(!f.editor(cell));
    QCOMPARE(f.port.WriteCount(), before + 2);
}

void tst_OrbGenParamTreeView::lineEditForAddresses()
{
    Fixture f;
    QVERIFY(f.show());
    QModelIndex cell;
    auto *edit = f.openEditor<QLineEdit>(QStringLiteral("GevCurrentIPAddress"), &cell);
    QVERIFY(edit);
    QCOMPARE(edit->text(), QStringLiteral("0.0.0.0"));
    edit->selectAll();
    QTest::keyClicks(edit, QStringLiteral("192.168.7.30"));
    QCOMPARE(edit->text(), QStringLiteral("192.168.7.30"));
    QTest::keyClick(edit, Qt::Key_Return);
    QTRY_COMPARE(GenApi::CIntegerPtr(f.map._GetNode("GevCurrentIPAddress"))->GetValue(),
                 int64_t(0xC0A8071E));
    QCOMPARE(cell.data().toString(), QStringLiteral("192.168.7.30"));
}

// A camera that answers slowly (a network's round trip on every register)
// keeps the node map's reader waiting, never the tree: a value the node map
// does not hold is read beside the GUI thread, its cell stays as it was
// meanwhile and fills in when the read comes back; the GUI thread runs its
// timers throughout. A write lands, and a loss and a return show.
void tst_OrbGenParamTreeView::slowCameraKeepsTheTreeAnswering()
{
    OrbCamTest::SystemRef sim;
    const auto cameras = sim.cameras("GEV0");
    QVERIFY(!cameras.empty());
    OrbCamTest::DeviceRef camera(cameras.front());
    QVERIFY(camera.device);
    const std::string id = camera.device->GetInfo()->GetID();
    camera.device->GetParams()->GetNodeMap()->InvalidateNodes();
    QCOMPARE(OrbCamSim::SetAnswerTime(id, 300), OrbCamOk);
    {
        OrbGenParamTreeView view(camera.device->GetParams());
        QAbstractItemModel *model = view.treeView()->model();
        QModelIndex name;
        std::function<void(const QModelIndex &)> search = [&](const QModelIndex &parent) {
            for (int row = 0; row < model->rowCount(parent) && !name.isValid(); ++row) {
                const QModelIndex index = model->index(row, 0, parent);
                if (index.data().toString() == QLatin1String("Black Level"))
                    name = index;
                search(index);
            }
        };
        search(QModelIndex());
        QVERIFY(name.isValid());
        const QModelIndex cell = name.sibling(name.row(), 1);
        // Asked before any event ran: not read here, so nothing to show yet.
        QVERIFY2(!cell.data().isValid(), qPrintable(cell.data().toString()));

        QElapsedTimer clock;
        clock.start();
        qint64 last = 0, longest = 0;
        QTimer ticker;
        connect(&ticker, &QTimer::timeout, [&] {
            longest = qMax(longest, clock.elapsed() - last);
            last = clock.elapsed();
        });
        ticker.start(10);
        view.resize(600, 700);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.treeView()->expandAll();
        view.treeView()->scrollTo(cell);
        QTRY_COMPARE_WITH_TIMEOUT(cell.data().toString(), QStringLiteral("16"), 15000);
        QVERIFY2(longest < 250, qPrintable(QString::number(longest)));

        // A write is the user's own act and waits for the camera's answer.
        QVERIFY(model->setData(cell, qlonglong(40)));
        QTRY_COMPARE_WITH_TIMEOUT(cell.data().toString(), QStringLiteral("40"), 115000);

        QCOMPARE(OrbCamSim::LoseCamera(id), OrbCamOk);
        QTRY_VERIFY_WITH_TIMEOUT(cell.data().toString().contains(QLatin1String("not answer")),
                                 15000);
        QCOMPARE(OrbCamSim::RegainCamera(id), OrbCamOk);
        QTRY_COMPARE_WITH_TIMEOUT(cell.data().toString(), QStringLiteral("40"), 115000);
        longest = 0;
        last = clock.elapsed();
        QTest::qWait(100);
        QVERIFY2(longest < 250, qPrintable(QString::number(longest)));
    }
    QCOMPARE(OrbCamSim::SetAnswerTime(id, 0), OrbCamOk);
}

void tst_OrbGenParamTreeView::failedWriteShowsAndClears()
{
    OrbCamTest::SystemRef sim;
    const auto cameras = sim.cameras("GEV0");
    QVERIFY(!cameras.empty());
    OrbCamTest::DeviceRef camera(cameras.front());
    QVERIFY(camera.device);
    const std::string id = camera.device->GetInfo()->GetID();
    {
        OrbGenParamTreeView view(camera.device->GetParams());
        view.resize(600, 700);
        view.show();
        view.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        view.treeView()->expandAll();
        QAbstractItemModel *model = view.treeView()->model();
        QModelIndex name;
        std::function<void(const QModelIndex &)> search = [&](const QModelIndex &parent) {
            for (int row = 0; row < model->rowCount(parent) && !name.isValid(); ++row) {
                const QModelIndex index = model->index(row, 0, parent);
                if (index.data().toString() == QLatin1String("Black Level"))
                    name = index;
                search(index);
            }
        };
        search(QModelIndex());
        QVERIFY(name.isValid());
        const QModelIndex cell = name.sibling(name.row(), 1);
        auto *status = view.findChild<QToolButton *>(QStringLiteral("pbStatus"));

        QCOMPARE(OrbCamSim::FailFeature(id, "Frame_BlackLevel", OrbCamSim::FailWrite), OrbCamOk);
        QVERIFY(!model->setData(cell, qlonglong(40)));
        QCOMPARE(name.data(Qt::ForegroundRole).value<QBrush>().color(), QColor(255, 0, 0));
        QVERIFY(cell.data(Qt::ToolTipRole)
                    .toString()
                    .contains(QStringLiteral("simulated write failure")));
        QCOMPARE(iconImage(status->icon()), iconImage(QIcon(QStringLiteral(":/images/err.png"))));

        // The error dialog lists it; it is modal, so read it from a timer.
        QString listed;
        QTimer::singleShot(0, &view, [&listed] {
            QWidget *dialog = QApplication::activeModalWidget();
            if (!dialog)
                return;
            listed = dialog->findChild<QTextBrowser *>(QStringLiteral("textErrors"))->toPlainText();
            QCOMPARE(dialog->objectName(), QStringLiteral("GenErrorsDlg"));
            dialog->close();
        });
        QTest::mouseClick(status, Qt::LeftButton);
        QVERIFY2(listed.startsWith(QStringLiteral("{Frame_BlackLevel}{id:256}: ")),
                 qPrintable(listed));

        OrbCamSim::ClearFailures(id);
        QVERIFY(model->setData(cell, qlonglong(40)));
        QCOMPARE(iconImage(status->icon()), iconImage(QIcon(QStringLiteral(":/images/ok.png"))));
        QVERIFY(!name.data(Qt::ForegroundRole).isValid());

        QTimer::singleShot(0, &view, [&listed] {
            if (QWidget *dialog = QApplication::activeModalWidget()) {
                listed = dialog->findChild<QTextBrowser *>(QStringLiteral("textErrors"))
                             ->toPlainText();
                dialog->close();
            }
        });
        QTest::mouseClick(status, Qt::LeftButton);
        QCOMPARE(listed, QStringLiteral("No Errors"));
    }
}

// What the filter matches is the proxy's own test; here, the field as the
// user types into it: the tree follows, empty categories go, and an empty
// result says so.
void tst_OrbGenParamTreeView::filterText()
{
    Fixture f;
    QVERIFY(f.show());
    auto *field = f.child<QLineEdit>("filterLineEdit");
    auto *noMatch = f.child<QLabel>("noMatchLabel");
    QVERIFY(noMatch);
    field->setFocus();
    QTest::keyClicks(field, QStringLiteral("*gain"));
    QStringList names = f.visibleNames();
    QVERIFY(names.contains(QStringLiteral("Analog Gain")));
    QVERIFY(!names.contains(QStringLiteral("Exposure Time")));
    QVERIFY(!names.contains(QStringLiteral("Network"))); // nothing in it matches
    QVERIFY(!noMatch->isVisible());

    field->clear();
    QTest::keyClicks(field, QStringLiteral("nothing here"));
    QCOMPARE(f.tree()->model()->rowCount(), 0);
    QVERIFY(noMatch->isVisible());
    QCOMPARE(noMatch->text(), QStringLiteral("No matching features"));

    // The clear action empties the field and shows everything again.
    field->actions().first()->trigger();
    QVERIFY(field->text().isEmpty());
    QVERIFY(!noMatch->isVisible());
    QVERIFY(f.visibleNames().contains(QStringLiteral("Exposure Time")));
    QVERIFY(f.visibleNames().contains(QStringLiteral("Network")));
}

// Matches show expanded while the filter is on; clearing it brings back the
// expansion the user had, and the row chosen meanwhile stays current and in
// view.
void tst_OrbGenParamTreeView::filterKeepsTheUsersTree()
{
    Fixture f;
    QVERIFY(f.show());
    QTreeView *tree = f.tree();
    tree->collapseAll();
    tree->expand(f.find(QStringLiteral("Network")));
    auto *field = f.child<QLineEdit>("filterLineEdit");
    field->setFocus();
    QTest::keyClicks(field, QStringLiteral("Gain"));
    const QModelIndex gain = f.find(QStringLiteral("Gain"));
    QVERIFY(gain.isValid());
    for (QModelIndex above = gain.parent(); above.isValid(); above = above.parent())
        QVERIFY2(tree->isExpanded(above), qPrintable(above.data().toString()));
    QVERIFY(tree->visualRect(gain).isValid());

    tree->setCurrentIndex(gain);
    field->clear();
    QVERIFY(tree->isExpanded(f.find(QStringLiteral("Network"))));
    const QModelIndex current = tree->currentIndex();
    QVERIFY(current.isValid());
    QCOMPARE(current.siblingAtColumn(0).data().toString(), QStringLiteral("Gain"));
    QVERIFY(tree->viewport()->rect().intersects(tree->visualRect(current)));
    // What the user had collapsed stays collapsed.
    QVERIFY(!tree->isExpanded(f.find(QStringLiteral("Hidden"))));
}

// A value the camera changes because of a command (the software trigger's
// counter) is shown at once: the model announces the value cells again, and
// the view re-reads the rows it shows.
void tst_OrbGenParamTreeView::commandConsequencesShow()
{
    OrbCamTest::SystemRef sim;
    const auto cameras = sim.cameras("GEV0");
    QVERIFY(!cameras.empty());
    OrbCamTest::DeviceRef camera(cameras.front());
    QVERIFY(camera.device);
    OrbGenParamTreeView view(camera.device->GetParams());
    view.setVisibility(Guru);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    view.treeView()->expandAll();
    QAbstractItemModel *model = view.treeView()->model();
    QModelIndex counter, trigger;
    std::function<void(const QModelIndex &)> search = [&](const QModelIndex &parent) {
        for (int row = 0; row < model->rowCount(parent); ++row) {
            const QModelIndex index = model->index(row, 0, parent);
            if (index.data().toString() == QLatin1String("Trigger Counter"))
                counter = index.siblingAtColumn(1);
            if (index.data().toString() == QLatin1String("Trigger Software"))
                trigger = index.siblingAtColumn(1);
            search(index);
        }
    };
    search(QModelIndex());
    QVERIFY(counter.isValid() && trigger.isValid());
    const qlonglong before = counter.data().toLongLong();
    QSignalSpy announced(model, &QAbstractItemModel::dataChanged);
    auto covers = [&announced, &counter] {
        for (const QList<QVariant> &signal : announced) {
            const QModelIndex top = signal.at(0).toModelIndex();
            const QModelIndex bottom = signal.at(1).toModelIndex();
            if (top.parent() == counter.parent() && top.row() <= counter.row()
                && counter.row() <= bottom.row() && top.column() <= 1 && 1 <= bottom.column())
                return true;
        }
        return false;
    };
    QVERIFY(model->setData(trigger, true));
    QVERIFY(model->setData(trigger, true));
    QTRY_VERIFY_WITH_TIMEOUT(covers(), 1000);
    QCOMPARE(counter.data().toLongLong(), before + 2);
}

// A changed value's mark belongs to the selector slot it was changed in:
// frame A's width, not frame B's.
void tst_OrbGenParamTreeView::changedMarkBelongsToTheSlot()
{
    OrbCamTest::SystemRef sim;
    const auto cameras = sim.cameras("GEV0");
    QVERIFY(!cameras.empty());
    OrbCamTest::DeviceRef camera(cameras.front());
    QVERIFY(camera.device);
    GenApi::INodeMap *map = camera.device->GetParams()->GetNodeMap();
    GenApi::CEnumerationPtr selector = map->GetNode("FrameAB_Selector");
    GenApi::CIntegerPtr width = map->GetNode("Frame_Width");
    QVERIFY(selector && width);
    selector->FromString("FrameA");
    OrbGenParamTreeView view(camera.device->GetParams());
    view.setVisibility(Guru);
    QAbstractItemModel *model = view.treeView()->model();
    QModelIndex widthCell;
    std::function<void(const QModelIndex &)> search = [&](const QModelIndex &parent) {
        for (int row = 0; row < model->rowCount(parent); ++row) {
            const QModelIndex index = model->index(row, 0, parent);
            auto *value = index.data(ValuePointerRole).value<GenApi::IValue *>();
            if (value && value->GetNode()->GetName() == "Frame_Width")
                widthCell = index.siblingAtColumn(1);
            search(index);
        }
    };
    search(QModelIndex());
    QVERIFY(widthCell.isValid());
    QVERIFY(!widthCell.data(ChangedRole).toBool());
    QVERIFY(model->setData(widthCell, qlonglong(width->GetValue() - width->GetInc())));
    QVERIFY(widthCell.data(ChangedRole).toBool());
    selector->FromString("FrameB");
    QVERIFY(!widthCell.data(ChangedRole).toBool());
    selector->FromString("FrameA");
    QVERIFY(widthCell.data(ChangedRole).toBool());
}

void tst_OrbGenParamTreeView::filterOptions()
{
    Fixture f;
    QVERIFY(f.show());
    auto *field = f.child<QLineEdit>("filterLineEdit");
    field->setText(QStringLiteral("gain"));
    QVERIFY(f.visibleNames().contains(QStringLiteral("Analog Gain")));
    // Open the options pop-up with its action and click the check boxes.
    QAction *options = field->actions().last();
    options->trigger();
    auto *popup = f.child<QWidget>("FilterOptions");
    QTRY_VERIFY(popup->isVisible());
    auto *caseBox = popup->findChild<QCheckBox *>(QStringLiteral("checkBoxCase"));
    auto *wholeBox = popup->findChild<QCheckBox *>(QStringLiteral("checkBoxWhole"));
    QTest::mouseClick(caseBox, Qt::LeftButton);
    QVERIFY(!f.visibleNames().contains(QStringLiteral("Analog Gain"))); // "gain" is lower case
    QCOMPARE(iconImage(options->icon()),
             iconImage(QIcon(QStringLiteral(":/images/options-c.png"))));
    field->setText(QStringLiteral("Gain"));
    QVERIFY(f.visibleNames().contains(QStringLiteral("Analog Gain")));
    field->setText(QStringLiteral("Gai"));
    QVERIFY(f.visibleNames().contains(QStringLiteral("Analog Gain")));
    QTest::mouseClick(wholeBox, Qt::LeftButton);
    QVERIFY(!f.visibleNames().contains(QStringLiteral("Analog Gain"))); // not a whole word
    field->setText(QStringLiteral("Gain"));
    QVERIFY(f.visibleNames().contains(QStringLiteral("Analog Gain")));
    QVERIFY(f.visibleNames().contains(QStringLiteral("Gain")));
    QCOMPARE(iconImage(options->icon()),
             iconImage(QIcon(QStringLiteral(":/images/options-cw.png"))));
}

void tst_OrbGenParamTreeView::visibilityLevel()
{
    Fixture f;
    QCOMPARE(f.view->visibility(), Beginner);
    QVERIFY(!f.visibleNames().contains(QStringLiteral("Advanced Settings")));
    f.view->setVisibility(Expert);
    QCOMPARE(f.child<QComboBox>("cbVisibility")->currentText(), QStringLiteral("Expert"));
    QVERIFY(f.visibleNames().contains(QStringLiteral("Black Level")));
    QVERIFY(!f.visibleNames().contains(QStringLiteral("GuruOnly")));
    f.child<QComboBox>("cbVisibility")->setCurrentIndex(2);
    QCOMPARE(f.view->visibility(), Guru);
    QVERIFY(f.visibleNames().contains(QStringLiteral("GuruOnly")));
}

void tst_OrbGenParamTreeView::expandAndCollapse()
{
    Fixture f;
    QVERIFY(f.show());
    const QModelIndex acquisition = f.find(QStringLiteral("Acquisition"));
    QVERIFY(!f.tree()->isExpanded(acquisition));
    QTest::mouseClick(f.child<QToolButton>("pbExpandAll"), Qt::LeftButton);
    QVERIFY(f.tree()->isExpanded(acquisition));
    QTest::mouseClick(f.child<QToolButton>("pbCollapseAll"), Qt::LeftButton);
    QVERIFY(!f.tree()->isExpanded(acquisition));
}

void tst_OrbGenParamTreeView::descriptionPane()
{
    Fixture f;
    QVERIFY(f.show());
    f.tree()->expandAll();
    auto *pane = f.child<QTextBrowser>("whatsThisLabel");
    QVERIFY(pane->toPlainText().isEmpty());
    QTest::mouseClick(f.tree()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      f.center(f.find(QStringLiteral("ExposureTime"))));
    QVERIFY2(pane->toPlainText().contains(QStringLiteral("Name: ExposureTime")),
             qPrintable(pane->toPlainText()));
    QVERIFY(pane->toPlainText().contains(
        QStringLiteral("Description: Exposure time of a frame in microseconds.")));
}

void tst_OrbGenParamTreeView::pollingRepaintsLiveValues()
{
    Fixture f;
    QVERIFY(f.show());
    f.tree()->expandAll();
    const QModelIndex cell = f.value(QStringLiteral("Temperature"));
    QCOMPARE(cell.data().toString(), QStringLiteral("0 C"));
    QSignalSpy changed(f.tree()->model(), &QAbstractItemModel::dataChanged);
    f.view->setPollingTime(50);
    f.view->enablePolling(true);
    QTest::qWait(200); // polling runs before the device changes
    QCOMPARE(changed.count(), 0);
    const int32_t warm = 37;
    f.port.Write(&warm, 0x118, 4);
    QTRY_VERIFY(changed.count() > 0);
    QCOMPARE(changed.first().first().toModelIndex(), cell);
    QCOMPARE(cell.data().toString(), QStringLiteral("37 C"));
    f.view->enablePolling(false);
}

void tst_OrbGenParamTreeView::pollingSettings()
{
    Fixture f;
    QCOMPARE(f.view->getPollingTime(), 0ul);
    QVERIFY(!f.view->isPollingEnabled());
    f.view->setPollingTime(250);
    QCOMPARE(f.view->getPollingTime(), 250ul);
    f.view->enablePolling(true);
    QVERIFY(f.view->isPollingEnabled());
    f.view->enablePolling(false);
    QVERIFY(!f.view->isPollingEnabled());
}

void tst_OrbGenParamTreeView::hostileCategories_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("categories");
    QTest::addColumn<QString>("deepest");
    const QByteArray leaves = "<Integer Name=\"X\"><Value>1</Value></Integer>"
                              "<Integer Name=\"Y\"><Value>2</Value></Integer>";
    QTest::newRow("cycle")
        << "<Category Name=\"Root\"><pFeature>C1</pFeature></Category>"
           "<Category Name=\"C1\"><pFeature>C2</pFeature><pFeature>X</pFeature></Category>"
           "<Category Name=\"C2\"><pFeature>C1</pFeature><pFeature>Y</pFeature></Category>"
            + leaves
        << 2 << QStringLiteral("Y");
    QTest::newRow("category listing itself")
        << "<Category Name=\"Root\"><pFeature>C1</pFeature></Category>"
           "<Category Name=\"C1\"><pFeature>C1</pFeature><pFeature>X</pFeature></Category>"
            + leaves
        << 1 << QStringLiteral("X");
    QTest::newRow("Root listing itself")
        << "<Category Name=\"Root\"><pFeature>Root</pFeature><pFeature>X</pFeature></Category>"
            + leaves
        << 0 << QStringLiteral("X");
    const int depth = 100000;
    QByteArray chain = "<Category Name=\"Root\"><pFeature>C0</pFeature></Category>";
    for (int i = 0; i < depth; ++i)
        chain += "<Category Name=\"C" + QByteArray::number(i) + "\"><pFeature>"
            + (i + 1 < depth ? "C" + QByteArray::number(i + 1) : QByteArray("X"))
            + "</pFeature></Category>";
    // Shown down to a thousand levels; what lies deeper is out of reach.
    QTest::newRow("chain 100000 deep") << chain + leaves << 1000 << QStringLiteral("C999");
}

// Descriptions that nest categories in a cycle or very deeply load in the
// interpreter; the view on them shows every category once and stays up,
// and a name filter still finds the feature at the bottom where it is
// shown.
void tst_OrbGenParamTreeView::hostileCategories()
{
    QFETCH(QByteArray, body);
    QFETCH(int, categories);
    QFETCH(QString, deepest);
    GenApi::CNodeMapRef map;
    map._LoadXMLFromString(("<RegisterDescription>" + body + "</RegisterDescription>").constData());
    OrbGenParamTreeView view(static_cast<GenApi::INodeMap *>(map));
    view.resize(500, 400);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QAbstractItemModel *model = view.treeView()->model();
    QHash<QString, int> seen;
    int categoryRows = 0;
    std::vector<QModelIndex> pending { QModelIndex() };
    while (!pending.empty()) {
        const QModelIndex parent = pending.back();
        pending.pop_back();
        for (int row = 0; row < model->rowCount(parent); ++row) {
            const QModelIndex index = model->index(row, 0, parent);
            if (model->hasChildren(index) || index.data().toString().startsWith(QLatin1Char('C')))
                ++categoryRows;
            ++seen[index.data().toString()];
            pending.push_back(index);
        }
    }
    QCOMPARE(categoryRows, categories);
    for (auto it = seen.cbegin(); it != seen.cend(); ++it)
        QVERIFY2(it.value() == 1, qPrintable(it.key()));
    QVERIFY(seen.contains(deepest));
    QTest::keyClicks(view.findChild<QLineEdit *>(QStringLiteral("filterLineEdit")),
                     QStringLiteral("X"));
    QTRY_COMPARE(model->rowCount(), deepest == QLatin1String("C999") ? 0 : 1);
}

void tst_OrbGenParamTreeView::saveStateFormat()
{
    // A top-level category A and its child category B, both expanded.
    GenApi::CNodeMapRef map;
    map._LoadXMLFromString(
        "<RegisterDescription><Category Name=\"Root\"><pFeature>A</pFeature></Category>"
        "<Category Name=\"A\"><pFeature>B</pFeature><pFeature>X</pFeature></Category>"
        "<Category Name=\"B\"><pFeature>Y</pFeature></Category>"
        "<Integer Name=\"X\"><Value>1</Value></Integer>"
        "<Integer Name=\"Y\"><Value>1</Value></Integer></RegisterDescription>");
    OrbGenParamTreeView view(static_cast<GenApi::INodeMap *>(map));
    view.treeView()->expandAll();
    view.treeView()->setColumnWidth(0, 180);
    view.setVisibility(Expert);
    const QByteArray splitter = view.findChild<QSplitter *>()->saveState().toHex();
    QCOMPARE(QByteArray(view.saveState()),
             QByteArray("A&lt;A/B&lt;&amp;W180&amp;V1&amp;S") + splitter);
}

void tst_OrbGenParamTreeView::saveStateEdges()
{
    OrbGenParamTreeView empty;
    QVERIFY(empty.saveState());
    QCOMPARE(QByteArray(empty.saveState()), QByteArray());
    Fixture f;
    const QByteArray state = f.view->saveState();
    QVERIFY2(state.startsWith("&amp;W"), state.constData()); // nothing expanded
    QVERIFY(state.contains("&amp;V0&amp;S"));
}

void tst_OrbGenParamTreeView::corruptSplitterState_data()
{
    // A splitter state as Qt writes it, with the fields a saved state could
    // carry corrupted.
    auto state = [](quint32 count, qint32 size, qint32 handleWidth) {
        QByteArray bytes;
        QDataStream out(&bytes, QIODevice::WriteOnly);
        out.setVersion(QDataStream::Qt_5_0);
        out << qint32(0xff) << qint32(0) << count;
        for (quint32 i = 0; i < qMin(count, 2u); ++i)
            out << size;
        out << true << handleWidth << false << qint32(Qt::Vertical) << false;
        return QByteArray("&amp;S") + bytes.toHex();
    };
    QTest::addColumn<QByteArray>("saved");
    QTest::addColumn<bool>("applies");
    QTest::newRow("sizes as this view writes them") << state(2, 300, 5) << true;
    QTest::newRow("handle a gigapixel wide") << state(2, 300, 1073741895) << true;
    QTest::newRow("a billion sizes") << state(1000000000u, 300, 5) << false;
    QTest::newRow("negative size") << state(2, -5, 5) << false;
    QTest::newRow("cut short") << state(2, 300, 5).left(20) << false;
}

// A saved state comes from the host's storage: whatever its splitter part
// holds, the view takes at most the two pane sizes from it, never the
// handle width, and nothing is thrown.
void tst_OrbGenParamTreeView::corruptSplitterState()
{
    QFETCH(QByteArray, saved);
    QFETCH(bool, applies);
    Fixture f;
    QVERIFY(f.show());
    auto *splitter = f.view->findChild<QSplitter *>();
    const int handle = splitter->handleWidth();
    const QSize size = f.view->size();
    splitter->setSizes({ 500, 150 });
    const QList<int> before = splitter->sizes();
    f.view->loadState(saved.constData());
    QCOMPARE(splitter->handleWidth(), handle);
    QCOMPARE(f.view->size(), size);
    if (applies) // equal sizes, shared out over the room there is
        QVERIFY(qAbs(splitter->sizes().at(0) - splitter->sizes().at(1)) <= 1);
    else
        QCOMPARE(splitter->sizes(), before);
}

void tst_OrbGenParamTreeView::loadStateEdges_data()
{
    QTest::addColumn<QByteArray>("state");
    QTest::addColumn<QStringList>("expanded");
    QTest::addColumn<int>("width"); // -1: untouched
    QTest::addColumn<int>("level");
    QTest::newRow("substring expands a prefix path")
        << QByteArray("Acquisition Control/Advanced Settings/Black&lt;")
        << QStringList { QStringLiteral("Acquisition"), QStringLiteral("Advanced") } << -1 << 0;
    QTest::newRow("width 0 is ignored") << QByteArray("&amp;W0&amp;V2") << QStringList() << -1 << 2;
    QTest::newRow("width and level") << QByteArray("Network&lt;&amp;W77&amp;V1")
                                     << QStringList { QStringLiteral("Network") } << 77 << 1;
    QTest::newRow("key without digits is skipped")
        << QByteArray("Network&lt;&amp;W") << QStringList { QStringLiteral("Network") } << -1 << 0;
    QTest::newRow("unknown paths are ignored")
        << QByteArray("Nowhere/Else&lt;") << QStringList() << -1 << 0;
}

void tst_OrbGenParamTreeView::loadStateEdges()
{
    QFETCH(QByteArray, state);
    QFETCH(QStringList, expanded);
    QFETCH(int, width);
    QFETCH(int, level);
    Fixture f;
    f.view->setVisibility(Expert);
    f.view->setVisibility(Beginner);
    f.tree()->expandAll(); // loading also collapses what the state does not list
    const int widthBefore = f.tree()->columnWidth(0);
    f.view->loadState(state.constData());
    f.view->setVisibility(static_cast<Visibility>(f.view->visibility())); // no-op
    for (const QString &category :
         { QStringLiteral("Acquisition"), QStringLiteral("Advanced"), QStringLiteral("Network") }) {
        const QModelIndex index = f.find(category);
        if (index.isValid())
            QCOMPARE(f.tree()->isExpanded(index), expanded.contains(category));
    }
    QCOMPARE(f.tree()->columnWidth(0), width < 0 ? widthBefore : width);
    QCOMPARE(int(f.view->visibility()), level);
    // Loading twice is the same as loading once; "" and null change nothing.
    const QByteArray once = f.view->saveState();
    f.view->loadState(state.constData());
    f.view->loadState("");
    f.view->loadState(nullptr);
    QCOMPARE(QByteArray(f.view->saveState()), once);
}

void tst_OrbGenParamTreeView::stateRoundTripOnRealDescriptions_data()
{
    QTest::addColumn<QString>("file");
    const QDir corpus(QStringLiteral(ORB_CORPUS_DIR));
    for (const QString &name :
         corpus.entryList({ QStringLiteral("*.xml"), QStringLiteral("*.zip") }))
        QTest::newRow(qPrintable(name)) << corpus.filePath(name);
}

void tst_OrbGenParamTreeView::stateRoundTripOnRealDescriptions()
{
    QFETCH(QString, file);
    Fixture f(file);
    f.view->setVisibility(Guru);
    f.tree()->expandAll();
    f.tree()->setColumnWidth(0, 222);
    const QByteArray saved = f.view->saveState();

    // Expansion is restored for the rows visible at the level in force, so
    // the host restores into a view at the same level.
    Fixture other(file);
    other.view->setVisibility(Guru);
    other.view->loadState(saved.constData());
    QCOMPARE(QByteArray(other.view->saveState()), saved);
    QCOMPARE(other.tree()->columnWidth(0), 222);

    // A malformed state changes nothing and throws nothing.
    other.view->loadState("&amp;Wwide");
    QCOMPARE(QByteArray(other.view->saveState()), saved);
}

void tst_OrbGenParamTreeView::setParamsTwiceDoesNotStackHandlers()
{
    Fixture f;
    QVERIFY(f.show());
    // Old models live until the event loop runs: watch them all, so that a
    // handler left on an old one counts as well.
    QList<QSignalSpy *> spies;
    for (int i = 0; i < 3; ++i) {
        if (i > 0)
            f.view->setParams(static_cast<GenApi::INodeMap *>(f.map));
        spies << new QSignalSpy(f.tree()->model(), &QAbstractItemModel::layoutChanged);
    }
    f.child<QCheckBox>("checkBoxCase")->click();
    int layouts = 0;
    for (QSignalSpy *spy : qAsConst(spies))
        layouts += spy->count();
    qDeleteAll(spies);
    QCOMPARE(layouts, 1);

    ModalWatcher dialogs(f.view.get());
    QTest::mouseClick(f.child<QToolButton>("pbStatus"), Qt::LeftButton);
    QTest::qWait(100);
    QCOMPARE(dialogs.opened, 1);
}

void tst_OrbGenParamTreeView::clearParams()
{
    Fixture f;
    f.view->clearParams();
    QVERIFY(!f.tree()->model());
    QCOMPARE(QByteArray(f.view->saveState()), QByteArray());
    f.view->setPollingTime(10);
    f.view->enablePolling(true); // polls nothing, does not crash
    QTest::qWait(30);
    f.view->setParams(static_cast<GenApi::INodeMap *>(nullptr));
    QVERIFY(!f.tree()->model());
    f.view->setParams(static_cast<GenApi::INodeMap *>(f.map));
    QVERIFY(f.tree()->model());
}

void tst_OrbGenParamTreeView::columnBorderCanBeDragged()
{
    Fixture f;
    QVERIFY(f.show());
    f.tree()->expandAll();
    const QModelIndex name = f.find(QStringLiteral("ExposureTime"));
    const QRect rect = f.tree()->visualRect(name);
    const int before = f.tree()->columnWidth(0);
    const QPoint border(rect.right() + 1, rect.center().y());
    QTest::mouseMove(f.tree()->viewport(), border);
    QTest::mousePress(f.tree()->viewport(), Qt::LeftButton, Qt::NoModifier, border);
    QTest::mouseMove(f.tree()->viewport(), border + QPoint(40, 0));
    QTest::mouseRelease(f.tree()->viewport(), Qt::LeftButton, Qt::NoModifier,
                        border + QPoint(40, 0));
    QTRY_COMPARE(f.tree()->columnWidth(0), before + 40);
}

// Arrow keys move through the tree and never open an editor on the way, so
// nothing they pass over is written.
void tst_OrbGenParamTreeView::navigationNeverWrites()
{
    Fixture f;
    QVERIFY(f.show());
    // From a value cell, over lists, a boolean and an enumeration.
    f.setCurrentName(QStringLiteral("AnalogGain"));
    f.tree()->setCurrentIndex(f.value(QStringLiteral("AnalogGain")));
    const QStringList before = f.snapshot();
    for (Qt::Key key :
         { Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down,
           Qt::Key_Up, Qt::Key_Left, Qt::Key_Down, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End }) {
        QTest::keyClick(f.tree(), key);
        QCOMPARE(QApplication::focusWidget(), static_cast<QWidget *>(f.tree()));
    }
    QCOMPARE(f.snapshot(), before);
}

// The wheel over an open editor scrolls the tree; it never steps a value.
void tst_OrbGenParamTreeView::wheelNeverWrites()
{
    Fixture f;
    f.view->resize(600, 300); // something to scroll
    QVERIFY(f.show());
    const QStringList before = f.snapshot();
    for (const QString &feature :
         { QStringLiteral("AnalogGain"), QStringLiteral("ExposureTime") }) {
        QModelIndex cell;
        auto *editor = f.openEditor<QWidget>(feature, &cell);
        QVERIFY(editor);
        const int scrolled = f.tree()->verticalScrollBar()->value();
        for (int i = 0; i < 3; ++i) {
            const QPoint at = editor->rect().center();
            QWheelEvent wheel(at, editor->mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(editor, &wheel);
        }
        QVERIFY(f.tree()->verticalScrollBar()->value() != scrolled);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!f.editor(cell));
    }
    QCOMPARE(f.snapshot(), before);
}

// The keyboard's way in: Right or Tab reaches the value, F2 or Enter edits
// it, Escape leaves the editor without writing and leaves the view open.
void tst_OrbGenParamTreeView::keyboardEditing()
{
    Fixture f;
    QVERIFY(f.show());
    QSignalSpy rejected(f.view.get(), &QDialog::rejected);
    f.setCurrentName(QStringLiteral("ExposureTime"));
    QTest::keyClick(f.tree(), Qt::Key_Right);
    const QModelIndex cell = f.value(QStringLiteral("ExposureTime"));
    QCOMPARE(f.tree()->currentIndex(), cell);
    QTest::keyClick(f.tree(), Qt::Key_F2);
    auto *spin = qobject_cast<QtOrbSpinBoxVal64 *>(f.editor(cell));
    QVERIFY(spin);
    const QStringList before = f.snapshot();
    spin->selectAll();
    QTest::keyClicks(spin, QStringLiteral("4440"));
    QTest::keyClick(spin, Qt::Key_Escape);
    QTRY_VERIFY(!f.editor(cell));
    QCOMPARE(f.snapshot(), before);
    QTest::keyClick(f.tree(), Qt::Key_Escape);
    QVERIFY(f.view->isVisible());

    f.setCurrentName(QStringLiteral("ExposureTime"));
    QTest::keyClick(f.tree(), Qt::Key_Tab);
    QCOMPARE(f.tree()->currentIndex(), cell);
    QTest::keyClick(f.tree(), Qt::Key_Return);
    spin = qobject_cast<QtOrbSpinBoxVal64 *>(f.editor(cell));
    QVERIFY(spin);
    spin->selectAll();
    QTest::keyClicks(spin, QStringLiteral("120"));
    QTest::keyClick(spin, Qt::Key_Return);
    QTRY_COMPARE(GenApi::CIntegerPtr(f.map._GetNode("ExposureTime"))->GetValue(), int64_t(120));
    QCOMPARE(rejected.count(), 0);
}

void tst_OrbGenParamTreeView::leavingUnchangedWritesNothing_data()
{
    QTest::addColumn<QString>("feature");
    QTest::newRow("integer") << "ExposureTime";
    QTest::newRow("hex integer") << "PacketSize";
    QTest::newRow("MAC address") << "GevMACAddress";
    QTest::newRow("IPv4 address") << "GevCurrentIPAddress";
    QTest::newRow("float") << "Gain";
    QTest::newRow("string") << "DeviceUserID";
    QTest::newRow("enumeration") << "AnalogGain";
    QTest::newRow("boolean") << "ReverseX";
    QTest::newRow("command") << "AcquisitionStart";
}

// Opening an editor and leaving it, without changing what it shows, writes
// nothing, whatever the kind of editor and however it is left.
void tst_OrbGenParamTreeView::leavingUnchangedWritesNothing()
{
    QFETCH(QString, feature);
    Fixture f;
    QVERIFY(f.show());
    const int exposure = 1230;
    f.port.Write(&exposure, 0x100, 4);
    const QStringList before = f.snapshot();
    QModelIndex cell;
    QVERIFY(f.openEditor<QWidget>(feature, &cell));
    // Leave by a click on another row.
    QTest::mouseClick(f.tree()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      f.center(f.find(QStringLiteral("Binning"))));
    QTRY_VERIFY(!f.editor(cell));
    QCOMPARE(f.snapshot(), before);
    // Leave by Enter.
    QWidget *editor = f.openEditor<QWidget>(feature, &cell);
    QVERIFY(editor);
    if (!qobject_cast<QComboBox *>(editor) && !qobject_cast<QPushButton *>(editor)) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTRY_VERIFY(!f.editor(cell));
    }
    QCOMPARE(f.snapshot(), before);
}

// A click on something that takes no focus (a label) still ends editing and
// writes what was typed: the editor's mouse tracker sees it.
void tst_OrbGenParamTreeView::clickOutsideTheTreeCommits()
{
    Fixture f;
    QVERIFY(f.show());
    QModelIndex cell;
    auto *spin = f.openEditor<QtOrbSpinBoxVal64>(QStringLiteral("ExposureTime"), &cell);
    QVERIFY(spin);
    spin->selectAll();
    QTest::keyClicks(spin, QStringLiteral("500"));
    auto *label = f.child<QLabel>("label");
    QTest::mouseMove(label); // the pointer leaves the editor, as a hand's would
    QTest::mouseClick(label, Qt::LeftButton);
    QTRY_COMPARE(GenApi::CIntegerPtr(f.map._GetNode("ExposureTime"))->GetValue(), int64_t(500));
    QTRY_VERIFY(!f.editor(cell));
}

void tst_OrbGenParamTreeView::addressRefusals_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("empty") << QString();
    QTest::newRow("incomplete") << "192.168.1";
    QTest::newRow("a number above 255") << "192.168.300.5";
}

// Text that is no address is kept as typed, refused on Enter with the
// reason, and the editor stays open; nothing is written.
void tst_OrbGenParamTreeView::addressRefusals()
{
    QFETCH(QString, typed);
    Fixture f;
    QVERIFY(f.show());
    const QStringList before = f.snapshot();
    QModelIndex cell;
    auto *edit = f.openEditor<QLineEdit>(QStringLiteral("GevCurrentIPAddress"), &cell);
    QVERIFY(edit);
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, typed);
    QCOMPARE(edit->text(), typed);
    QTest::keyClick(edit, Qt::Key_Return);
    QTest::qWait(50);
    QCOMPARE(f.editor(cell), static_cast<QWidget *>(edit));
    QTRY_VERIFY(QToolTip::isVisible());
    QVERIFY2(QToolTip::text().contains(QStringLiteral("0 to 255")), qPrintable(QToolTip::text()));
    QCOMPARE(f.snapshot(), before);
}

void tst_OrbGenParamTreeView::typingIntoEditors_data()
{
    QTest::addColumn<QString>("feature");
    QTest::addColumn<QString>("typed");
    // Refused: Enter writes nothing and the editor stays with the text as
    // typed, saying why. Adjusted: Enter first shows the value that would be
    // written (nothing written yet); a second Enter writes it. Written:
    // Enter writes what the editor shows.
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("shown"); // in the editor after the first Enter
    QTest::addColumn<QString>("cell"); // after the write

    const QString refused = QStringLiteral("refused");
    const QString adjusted = QStringLiteral("adjusted");
    const QString written = QStringLiteral("written");
    // Integer, 10 to 100000 in steps of 10.
    QTest::newRow("integer below the minimum") << "ExposureTime"
                                               << "5" << refused << "5"
                                               << "";
    QTest::newRow("integer negative") << "ExposureTime"
                                      << "-5" << refused << "-5"
                                      << "";
    QTest::newRow("integer above the maximum") << "ExposureTime"
                                               << "500000" << refused << "500000"
                                               << "";
    QTest::newRow("integer, too many digits")
        << "ExposureTime"
        << "123456789012345678901234" << refused << "123456789012345678901234"
        << "";
    QTest::newRow("integer off the increment")
        << "ExposureTime"
        << "1234" << adjusted << "1230" << QStringLiteral("1230 \u03BCs");
    QTest::newRow("integer") << "ExposureTime"
                             << "1240" << written << "1240" << QStringLiteral("1240 \u03BCs");
    // Float, 0 to 24 in steps of 0.5, two decimals.
    QTest::newRow("float below the minimum") << "Gain"
                                             << "-1" << refused << "-1"
                                             << "";
    QTest::newRow("float above the maximum") << "Gain"
                                             << "25" << refused << "25"
                                             << "";
    QTest::newRow("float off the increment") << "Gain"
                                             << "1.3" << adjusted << "1.50"
                                             << "1.50 dB";
    QTest::newRow("float, too many digits") << "Gain"
                                            << "12.50001" << adjusted << "12.50"
                                            << "12.50 dB";
    QTest::newRow("float") << "Gain"
                           << "12.5" << written << "12.5"
                           << "12.50 dB";
    // Hexadecimal integer, 0 to 0xFFFF.
    QTest::newRow("hex below the minimum") << "PacketSize"
                                           << "-1" << refused << "-1"
                                           << "";
    QTest::newRow("hex above the maximum") << "PacketSize"
                                           << "10000" << refused << "10000"
                                           << "";
    QTest::newRow("hex, too many digits")
        << "PacketSize"
        << "FFFFFFFFFFFFFFFFFFFF" << refused << "FFFFFFFFFFFFFFFFFFFF"
        << "";
    QTest::newRow("hex") << "PacketSize"
                         << "1F4" << written << "1F4"
                         << "1F4";
    // IPv4 address: four numbers from 0 to 255.
    QTest::newRow("address, a number above 255") << "GevCurrentIPAddress"
                                                 << "192.168.1.300" << refused << "192.168.1.300"
                                                 << "";
    QTest::newRow("address, too many digits") << "GevCurrentIPAddress"
                                              << "192.168.1.1000" << refused << "192.168.1.1000"
                                              << "";
    QTest::newRow("address, too few numbers") << "GevCurrentIPAddress"
                                              << "192.168.1" << refused << "192.168.1"
                                              << "";
    QTest::newRow("address") << "GevCurrentIPAddress"
                             << "192.168.1.30" << written << "192.168.1.30"
                             << "192.168.1.30";
    // MAC address: edited as the number it is.
    QTest::newRow("MAC, too many digits")
        << "GevMACAddress"
        << "123456789012345678901234" << refused << "123456789012345678901234"
        << "";
    QTest::newRow("MAC") << "GevMACAddress"
                         << "112394521952" << written << "112394521952"
                         << "00:1A:2B:3C:4D:60";
}

namespace {

// The editor's text without the unit it appends.
QString typedPart(const QWidget *editor)
{
    if (auto *spin = qobject_cast<const QDoubleSpinBox *>(editor))
        return spin->text().left(spin->text().size() - spin->suffix().size());
    if (auto *spin = qobject_cast<const QtOrbSpinBoxVal64 *>(editor))
        return spin->text().left(spin->text().size() - spin->suffix().size());
    if (auto *edit = qobject_cast<const QLineEdit *>(editor))
        return edit->text();
    return QString();
}

} // namespace

// Every kind of value editor in the tree, typed into key by key: the text is
// what was typed after every key; what Enter writes is nothing or exactly
// what the editor shows; Escape writes nothing.
void tst_OrbGenParamTreeView::typingIntoEditors()
{
    QFETCH(QString, feature);
    QFETCH(QString, typed);
    QFETCH(QString, outcome);
    QFETCH(QString, shown);
    QFETCH(QString, cell);
    Fixture f;
    QVERIFY(f.show());
    const QStringList before = f.snapshot();
    QModelIndex at;
    // Opens the editor, types key by key, presses Enter.
    auto typeAndEnter = [&]() -> QWidget * {
        QWidget *editor = f.openEditor<QWidget>(feature, &at);
        if (!editor)
            return nullptr;
        if (auto *spin = qobject_cast<QAbstractSpinBox *>(editor))
            spin->selectAll();
        else if (auto *edit = qobject_cast<QLineEdit *>(editor))
            edit->selectAll();
        QTest::keyClick(editor, Qt::Key_Delete);
        for (int i = 0; i < typed.size(); ++i) {
            QTest::keyClick(editor, typed.at(i).toLatin1());
            if (typedPart(editor) != typed.left(i + 1)) {
                qWarning("after %s: %s", qPrintable(typed.left(i + 1)),
                         qPrintable(typedPart(editor)));
                return nullptr;
            }
        }
        QTest::keyClick(editor, Qt::Key_Return);
        return editor;
    };
    QWidget *editor = typeAndEnter();
    QVERIFY(editor);
    if (outcome == QLatin1String("written")) {
        QTRY_VERIFY(!f.editor(at));
        QCOMPARE(at.data().toString(), cell);
        QVERIFY(f.snapshot() != before);
        return;
    }
    QTest::qWait(50);
    QCOMPARE(f.editor(at), editor);
    QCOMPARE(typedPart(editor), shown);
    QCOMPARE(f.snapshot(), before);
    if (outcome == QLatin1String("refused"))
        QVERIFY2(QToolTip::isVisible() && !QToolTip::text().isEmpty(), "no reason shown");
    QTest::keyClick(editor, Qt::Key_Escape);
    QTRY_VERIFY(!f.editor(at));
    QCOMPARE(f.snapshot(), before);
    if (outcome == QLatin1String("refused"))
        return;
    // The value shown, confirmed with a second Enter, is the one written.
    editor = typeAndEnter();
    QVERIFY(editor);
    QTest::qWait(50);
    QCOMPARE(typedPart(editor), shown);
    QCOMPARE(f.snapshot(), before);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY(!f.editor(at));
    QCOMPARE(at.data().toString(), cell);
}

// An enumeration whose value matches none of its entries still offers them:
// the editor shows the number and lets the user pick an entry. Over a
// camera's zero memory no entry may be available; they are offered all the
// same, and the camera's refusal comes back with its reason.
void tst_OrbGenParamTreeView::enumerationValueWithoutEntry()
{
    {
        Fixture f(xmlFile("<Category Name=\"Root\"><pFeature>E</pFeature></Category>"
                          "<Enumeration Name=\"E\"><EnumEntry Name=\"Off\"><Value>0</Value>"
                          "</EnumEntry><EnumEntry Name=\"On\"><Value>1</Value></EnumEntry>"
                          "<Value>7</Value></Enumeration>"));
        QVERIFY(f.show());
        QModelIndex cell;
        auto *combo = f.openEditor<QComboBox>(QStringLiteral("E"), &cell);
        QVERIFY(combo);
        QCOMPARE(combo->count(), 2);
        QCOMPARE(combo->currentIndex(), -1);
        QCOMPARE(combo->placeholderText(), QStringLiteral("7 (no entry)"));
        combo->showPopup();
        QTRY_VERIFY(combo->view()->isVisible());
        combo->view()->setCurrentIndex(
            combo->model()->index(combo->findText(QStringLiteral("On")), 0));
        QTest::keyClick(combo->view()->viewport(), Qt::Key_Return);
        QTRY_COMPARE(cell.data().toString(), QStringLiteral("On"));
    }
    Fixture f(QStringLiteral(ORB_CORPUS_DIR "/basler_ace2-a2a2600-20gmbas.xml"));
    QVERIFY(f.show());
    QModelIndex cell;
    auto *combo = f.openEditor<QComboBox>(QStringLiteral("PixelFormat"), &cell);
    QVERIFY(combo);
    QVERIFY(combo->count() > 0);
    QVERIFY(combo->findText(QStringLiteral("Mono8 (not available)")) >= 0);
    QCOMPARE(combo->placeholderText(), QStringLiteral("0 (no entry)"));
    QAbstractItemModel *model = f.tree()->model();
    QVERIFY(!model->setData(
        cell, combo->itemData(combo->findText(QStringLiteral("Mono8 (not available)")))));
    QVERIFY2(cell.data(Qt::ToolTipRole).toString().contains(QStringLiteral("not available")),
             qPrintable(cell.data(Qt::ToolTipRole).toString()));
}

// Most float features have no increment; their arrows still step.
void tst_OrbGenParamTreeView::floatWithoutIncrementSteps()
{
    Fixture f(xmlFile("<Category Name=\"Root\"><pFeature>F</pFeature></Category>"
                      "<Float Name=\"F\"><Value>1</Value><Min>0</Min><Max>20</Max>"
                      "<DisplayPrecision>1</DisplayPrecision></Float>"));
    QVERIFY(f.show());
    QModelIndex cell;
    auto *spin = f.openEditor<QDoubleSpinBox>(QStringLiteral("F"), &cell);
    QVERIFY(spin);
    QVERIFY(spin->singleStep() > 0);
    QTest::keyClick(spin, Qt::Key_Up);
    QTest::keyClick(spin, Qt::Key_Return);
    QTRY_VERIFY(!f.editor(cell));
    QCOMPARE(GenApi::CFloatPtr(f.map._GetNode("F"))->GetValue(), 1.1);
}

void tst_OrbGenParamTreeView::escapeNeverRejects_data()
{
    QTest::addColumn<bool>("embedded");
    QTest::addColumn<QString>("where");
    for (bool embedded : { false, true }) {
        const char *kind = embedded ? "embedded" : "top-level";
        for (const char *where : { "filter", "description", "tree", "after an edit" })
            QTest::newRow(
                qPrintable(QStringLiteral("%1, %2").arg(QLatin1String(kind), QLatin1String(where))))
                << embedded << QString::fromLatin1(where);
    }
}

// Escape never closes or hides the view; in the filter it clears it.
void tst_OrbGenParamTreeView::escapeNeverRejects()
{
    QFETCH(bool, embedded);
    QFETCH(QString, where);
    QWidget host; // before the view, which it may own
    Fixture f;
    if (embedded) {
        auto *layout = new QVBoxLayout(&host);
        layout->addWidget(f.view.get());
        QObject::connect(&host, &QObject::destroyed, [&f] { (void)f.view.release(); });
        host.resize(600, 700);
        host.show();
        host.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&host));
    } else {
        QVERIFY(f.show());
    }
    QSignalSpy finished(f.view.get(), &QDialog::finished);
    auto *field = f.child<QLineEdit>("filterLineEdit");
    QWidget *target = f.tree();
    if (where == QLatin1String("filter")) {
        field->setFocus();
        QTest::keyClicks(field, QStringLiteral("gain"));
        target = field;
    } else if (where == QLatin1String("description")) {
        target = f.child<QTextBrowser>("whatsThisLabel");
        target->setFocus();
    } else if (where == QLatin1String("after an edit")) {
        QModelIndex cell;
        QVERIFY(f.openEditor<QtOrbSpinBoxVal64>(QStringLiteral("ExposureTime"), &cell));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!f.editor(cell));
        target = QApplication::focusWidget();
    } else {
        f.tree()->setFocus();
    }
    QTest::keyClick(target, Qt::Key_Escape);
    QTest::keyClick(target, Qt::Key_Escape);
    QVERIFY(f.view->isVisible());
    QVERIFY(!f.view->isHidden());
    QCOMPARE(finished.count(), 0);
    if (where == QLatin1String("filter"))
        QVERIFY(field->text().isEmpty());
}

void tst_OrbGenParamTreeView::malformedStatesChangeNothing_data()
{
    QTest::addColumn<QByteArray>("state");
    QTest::newRow("level out of range") << QByteArray("Network&lt;&amp;V7");
    QTest::newRow("width not a number") << QByteArray("Network&lt;&amp;Wwide");
    QTest::newRow("negative width") << QByteArray("&amp;W-5&amp;V1");
    QTest::newRow("splitter not hexadecimal") << QByteArray("&amp;W100&amp;Szz");
    QTest::newRow("splitter cut short") << QByteArray("&amp;V1&amp;S0a1");
    QTest::newRow("huge width") << QByteArray("&amp;W99999999999999999999");
}

// A state the view did not write changes nothing at all, and the view stays
// usable: its tree, level and width are what they were.
void tst_OrbGenParamTreeView::malformedStatesChangeNothing()
{
    QFETCH(QByteArray, state);
    Fixture f;
    QVERIFY(f.show());
    const QByteArray before = f.view->saveState();
    const int rows = f.tree()->model()->rowCount();
    f.view->loadState(state.constData());
    QCOMPARE(QByteArray(f.view->saveState()), before);
    QCOMPARE(f.tree()->model()->rowCount(), rows);
    QCOMPARE(f.child<QComboBox>("cbVisibility")->currentIndex(), 0);
    QVERIFY(!f.tree()->isExpanded(f.find(QStringLiteral("Network"))));
}

// The keyed fields at the end of a state are no category paths: a category
// named like a key is not expanded by every state.
void tst_OrbGenParamTreeView::keysAreNoCategories()
{
    Fixture f(xmlFile("<Category Name=\"Root\"><pFeature>S</pFeature><pFeature>W</pFeature>"
                      "</Category><Category Name=\"S\"><pFeature>X</pFeature></Category>"
                      "<Category Name=\"W\"><pFeature>X</pFeature></Category>"
                      "<Integer Name=\"X\"><Value>1</Value></Integer>"));
    f.view->loadState("W&lt;&amp;W100&amp;V0&amp;S00");
    QVERIFY(!f.tree()->isExpanded(f.find(QStringLiteral("S"))));
    QVERIFY(f.tree()->isExpanded(f.find(QStringLiteral("W"))));
}

// On first show the name column fits the longest name (within most of the
// tree's width), wherever it sits in the tree.
void tst_OrbGenParamTreeView::firstShowFitsNames()
{
    const QString longName
        = QStringLiteral("Sensor Readout Timing Adjustment Offset For The Second Exposure");
    Fixture f(xmlFile("<Category Name=\"Root\"><pFeature>A</pFeature></Category>"
                      "<Category Name=\"A\"><pFeature>B</pFeature></Category>"
                      "<Category Name=\"B\"><pFeature>X</pFeature></Category>"
                      "<Integer Name=\"X\"><DisplayName>"
                      + longName.toUtf8() + "</DisplayName><Value>1</Value></Integer>"));
    f.view->resize(900, 500);
    QVERIFY(f.show());
    const int needed
        = QFontMetrics(f.tree()->font()).horizontalAdvance(longName) + 3 * f.tree()->indentation();
    QVERIFY2(f.tree()->columnWidth(0) >= needed,
             qPrintable(QStringLiteral("%1 < %2").arg(f.tree()->columnWidth(0)).arg(needed)));
    QVERIFY(f.tree()->columnWidth(0) <= f.tree()->viewport()->width() * 3 / 5);
}

void tst_OrbGenParamTreeView::restoredWidthSurvivesFirstShow()
{
    Fixture f;
    f.view->loadState("&amp;W123&amp;V0");
    QVERIFY(f.show());
    QCOMPARE(f.tree()->columnWidth(0), 123);
}

// An id reported twice under one name keeps its first message; the list is
// large enough for long messages and can be resized.
void tst_OrbGenParamTreeView::errorListKeepsFirstMessageAndFits()
{
    Fixture f;
    QVERIFY(f.show());
    auto *proxy = qobject_cast<QAbstractProxyModel *>(f.tree()->model());
    auto *model = qobject_cast<GenParamTreeModel *>(proxy->sourceModel());
    const QModelIndex cell = proxy->mapToSource(f.value(QStringLiteral("ExposureTime")));
    const QString first = QStringLiteral("the first report, long enough to need a wide window: ")
        + QString(80, QLatin1Char('x'));
    Q_EMIT model->errorAppeared(cell, QStringLiteral("ExposureTime"), first, 5);
    Q_EMIT model->errorAppeared(cell, QStringLiteral("ExposureTime"), QStringLiteral("second"), 5);
    ModalWatcher dialogs(f.view.get());
    QTimer::singleShot(0, f.view.get(), [] {
        if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
            QVERIFY(dialog->isSizeGripEnabled());
            auto *text = dialog->findChild<QTextBrowser *>(QStringLiteral("textErrors"));
            QVERIFY(!text->horizontalScrollBar()->isVisible());
        }
    });
    QTest::mouseClick(f.child<QToolButton>("pbStatus"), Qt::LeftButton);
    QTRY_COMPARE(dialogs.opened, 1);
    QVERIFY(dialogs.texts.first().contains(first));
    QVERIFY(!dialogs.texts.first().contains(QStringLiteral("second")));
    QVERIFY(dialogs.sizes.first().width() > 400);
}

// The command's button covers the cell (the cell's own "Execute" does not
// show through) and a click says it was done.
void tst_OrbGenParamTreeView::commandEditorCoversTheCell()
{
    Fixture f;
    QVERIFY(f.show());
    QModelIndex cell;
    auto *button = f.openEditor<QPushButton>(QStringLiteral("AcquisitionStart"), &cell);
    QVERIFY(button);
    QVERIFY(button->autoFillBackground());
    QVERIFY(!button->isFlat());
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_VERIFY(QToolTip::isVisible());
    QCOMPARE(QToolTip::text(), QStringLiteral("Executed"));
}

void tst_OrbGenParamTreeView::descriptionPaneHasRoom()
{
    Fixture f;
    QVERIFY(f.show());
    auto *pane = f.child<QTextBrowser>("whatsThisLabel");
    auto *splitter = f.view->findChild<QSplitter *>();
    QVERIFY2(pane->height() >= splitter->height() / 5,
             qPrintable(QStringLiteral("%1 of %2").arg(pane->height()).arg(splitter->height())));
}

namespace {
// A category with a plain value, one that cannot be read, a string over two
// lines, and a feature listed twice.
QByteArray exportBody()
{
    return "<Category Name=\"Root\"><pFeature>Cat</pFeature><pFeature>Top</pFeature></Category>"
           "<Category Name=\"Cat\"><pFeature>Width</pFeature><pFeature>Broken</pFeature>"
           "<pFeature>Top</pFeature></Category>"
           "<Integer Name=\"Width\"><Value>640</Value><Unit>px</Unit></Integer>"
           "<IntSwissKnife Name=\"Broken\"><Formula>1 / 0</Formula></IntSwissKnife>"
           "<String Name=\"Top\"><Value>two\nlines</Value></String>";
}
} // namespace

void tst_OrbGenParamTreeView::copyFromTheRow_data()
{
    QTest::addColumn<QString>("feature");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("copied");
    QTest::newRow("name") << QStringLiteral("Width") << QStringLiteral("actionCopyName")
                          << QStringLiteral("Width");
    QTest::newRow("value") << QStringLiteral("Width") << QStringLiteral("actionCopyValue")
                           << QStringLiteral("640");
    QTest::newRow("row") << QStringLiteral("Width") << QStringLiteral("actionCopyRow")
                         << QStringLiteral("Width = 640");
    QTest::newRow("Ctrl+C") << QStringLiteral("Width") << QString()
                            << QStringLiteral("Width = 640");
    QTest::newRow("category copies nothing")
        << QStringLiteral("Cat") << QString() << QStringLiteral("untouched");
}

void tst_OrbGenParamTreeView::copyFromTheRow()
{
    QFETCH(QString, feature);
    QFETCH(QString, action);
    QFETCH(QString, copied);
    Fixture f(xmlFile(exportBody()));
    QVERIFY(f.show());
    QGuiApplication::clipboard()->setText(QStringLiteral("untouched"));
    f.setCurrentName(feature);
    QVERIFY(f.tree()->currentIndex().isValid());
    if (action.isEmpty())
        QTest::keyClick(f.tree(), Qt::Key_C, Qt::ControlModifier);
    else
        f.tree()->findChild<QAction *>(action)->trigger();
    QTRY_COMPARE(QGuiApplication::clipboard()->text(), copied);
}

void tst_OrbGenParamTreeView::contextMenuOffersCopyAndExport()
{
    Fixture f(xmlFile(exportBody()));
    QVERIFY(f.show());
    QStringList offered;
    bool copyEnabled = true;
    auto inspect = [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (!menu)
            return;
        for (QAction *a : menu->actions())
            if (!a->isSeparator()) {
                offered << a->objectName();
                if (a->objectName() == QLatin1String("actionCopyRow"))
                    copyEnabled = a->isEnabled();
            }
        menu->close();
    };
    // On a category the copying is there but off.
    f.setCurrentName(QStringLiteral("Cat"));
    QTimer::singleShot(0, f.view.get(), inspect);
    emit f.tree()->customContextMenuRequested(f.center(f.find(QStringLiteral("Cat"))));
    QCOMPARE(offered,
             QStringList({ QStringLiteral("actionCopyName"), QStringLiteral("actionCopyValue"),
                           QStringLiteral("actionCopyRow"), QStringLiteral("actionUndo"),
                           QStringLiteral("actionExportText"), QStringLiteral("actionExportJson"),
                           QStringLiteral("actionSaveSettings"),
                           QStringLiteral("actionLoadSettings") }));
    QVERIFY(!copyEnabled);
    offered.clear();
    f.setCurrentName(QStringLiteral("Width"));
    QTimer::singleShot(0, f.view.get(), inspect);
    emit f.tree()->customContextMenuRequested(f.center(f.find(QStringLiteral("Width"))));
    QCOMPARE(offered.size(), 8);
    QVERIFY(copyEnabled);
}

void tst_OrbGenParamTreeView::exportTextAndJson()
{
    Fixture f(xmlFile(exportBody()));
    const QStringList lines = f.view->exportText().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines[0], QStringLiteral("Root/Cat  (Category)"));
    QCOMPARE(lines[1], QStringLiteral("Root/Cat/Width = 640 px  (Integer, RW)"));
    QVERIFY2(lines[2].startsWith(QStringLiteral("Root/Cat/Broken: error: ")), qPrintable(lines[2]));
    // Listed twice, it comes twice, as the tree shows it.
    QCOMPARE(lines[3], QStringLiteral("Root/Cat/Top = two\\nlines  (String, RW)"));
    QCOMPARE(lines[4], QStringLiteral("Root/Top = two\\nlines  (String, RW)"));

    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(f.view->exportJson(), &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    QCOMPARE(json[QStringLiteral("format")].toString(), QStringLiteral("orbgui-feature-tree"));
    QCOMPARE(json[QStringLiteral("version")].toInt(), 1);
    const QJsonArray features = json[QStringLiteral("features")].toArray();
    QCOMPARE(features.size(), 5);
    const QJsonObject width = features[1].toObject();
    QCOMPARE(width[QStringLiteral("path")].toString(), QStringLiteral("Root/Cat/Width"));
    QCOMPARE(width[QStringLiteral("type")].toString(), QStringLiteral("Integer"));
    QCOMPARE(width[QStringLiteral("access")].toString(), QStringLiteral("RW"));
    QCOMPARE(width[QStringLiteral("value")].toString(), QStringLiteral("640"));
    QCOMPARE(width[QStringLiteral("unit")].toString(), QStringLiteral("px"));
    const QJsonObject broken = features[2].toObject();
    QVERIFY(broken.contains(QStringLiteral("error")));
    QVERIFY(!broken.contains(QStringLiteral("value")));
    QCOMPARE(features[3].toObject()[QStringLiteral("value")].toString(),
             QStringLiteral("two\nlines"));

    // Without a node map there is nothing to export.
    f.view->clearParams();
    QVERIFY(f.view->exportText().isEmpty());
}

// The user's writes are marked until the value reads as before, and undone
// newest first; what the camera (or the host) changes itself is neither.
void tst_OrbGenParamTreeView::changedValuesAreMarkedAndUndone()
{
    Fixture f(
        xmlFile("<Category Name=\"Root\"><pFeature>Width</pFeature><pFeature>Gain</pFeature>"
                "</Category>"
                "<Integer Name=\"Width\"><Value>640</Value><Min>16</Min><Max>4096</Max>"
                "</Integer>"
                "<Integer Name=\"Gain\"><Value>1</Value><Min>0</Min><Max>10</Max></Integer>"));
    QVERIFY(f.show());
    f.tree()->expandAll();
    QAbstractItemModel *model = f.tree()->model();
    const QModelIndex width = f.value(QStringLiteral("Width"));
    auto *undo = f.tree()->findChild<QAction *>(QStringLiteral("actionUndo"));
    QVERIFY(undo);
    QVERIFY(!width.data(ChangedRole).toBool());

    QVERIFY(model->setData(width, qlonglong(100)));
    QVERIFY(width.data(ChangedRole).toBool());
    QVERIFY(model->setData(width, qlonglong(200)));
    // The host changes Gain behind the view: no mark, nothing to undo there.
    GenApi::CIntegerPtr(f.map._GetNode("Gain"))->SetValue(7);
    QVERIFY(!f.value(QStringLiteral("Gain")).data(ChangedRole).toBool());

    auto widthNow = [&] { return GenApi::CIntegerPtr(f.map._GetNode("Width"))->GetValue(); };
    undo->trigger();
    QCOMPARE(widthNow(), int64_t(100));
    QVERIFY(width.data(ChangedRole).toBool());
    f.tree()->setFocus();
    QTest::keyClick(f.tree(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(widthNow(), int64_t(640));
    // Back where it was: the mark clears.
    QVERIFY(!width.data(ChangedRole).toBool());
    undo->trigger(); // nothing left: nothing happens
    QCOMPARE(widthNow(), int64_t(640));
    QCOMPARE(GenApi::CIntegerPtr(f.map._GetNode("Gain"))->GetValue(), int64_t(7));

    // A value changed and changed back by hand clears its mark too.
    QVERIFY(model->setData(width, qlonglong(320)));
    QVERIFY(width.data(ChangedRole).toBool());
    QVERIFY(model->setData(width, qlonglong(640)));
    QVERIFY(!width.data(ChangedRole).toBool());
}

// A locked or unavailable feature names, in its description, the features
// that make it so with their values; a click on one goes to it (showing it
// where the visibility level hid it).
void tst_OrbGenParamTreeView::whyLockedOrNotAvailable()
{
    Fixture f(xmlFile(
        "<Category Name=\"Root\"><pFeature>Gain</pFeature><pFeature>ExposureTime</pFeature>"
        "<pFeature>ExposureAuto</pFeature><pFeature>TLParamsLocked</pFeature></Category>"
        "<Integer Name=\"Gain\"><pIsLocked>TLParamsLocked</pIsLocked><Value>3</Value></Integer>"
        "<Integer Name=\"TLParamsLocked\"><Visibility>Guru</Visibility><Value>1</Value></Integer>"
        "<Integer Name=\"ExposureTime\"><pIsAvailable>ExposureSettable</pIsAvailable>"
        "<Value>5000</Value></Integer>"
        "<IntSwissKnife Name=\"ExposureSettable\"><pVariable Name=\"A\">ExposureAuto</pVariable>"
        "<Formula>A = 0</Formula></IntSwissKnife>"
        "<Enumeration Name=\"ExposureAuto\"><DisplayName>Exposure Auto</DisplayName>"
        "<EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry>"
        "<EnumEntry Name=\"Continuous\"><Value>2</Value></EnumEntry><Value>2</Value>"
        "</Enumeration>"));
    QVERIFY(f.show());
    f.view->setVisibility(OrbGui::Beginner);
    auto *pane = f.view->findChild<QTextBrowser *>(QStringLiteral("whatsThisLabel"));
    QVERIFY(pane);

    f.setCurrentName(QStringLiteral("ExposureTime"));
    QTRY_VERIFY(pane->toPlainText().contains(
        QStringLiteral("Not available because of: Exposure Auto = Continuous")));
    f.setCurrentName(QStringLiteral("Gain"));
    QTRY_VERIFY2(pane->toPlainText().contains(QStringLiteral("Locked by: TLParamsLocked = 1")),
                 qPrintable(pane->toPlainText()));
    // A feature that is neither says nothing of the kind.
    f.setCurrentName(QStringLiteral("ExposureAuto"));
    QTRY_VERIFY(!pane->toPlainText().contains(QStringLiteral("Locked by")));
    QVERIFY(!pane->toPlainText().contains(QStringLiteral("because of")));

    // The lock is a Guru feature the Beginner level hides: a click on it in
    // the pane goes there all the same.
    f.setCurrentName(QStringLiteral("Gain"));
    QTRY_VERIFY(pane->toPlainText().contains(QStringLiteral("TLParamsLocked")));
    QVERIFY(!f.find(QStringLiteral("TLParamsLocked")).isValid());
    const QTextCursor link = pane->document()->find(QStringLiteral("TLParamsLocked"));
    QVERIFY(!link.isNull());
    QTextCursor inside = link;
    inside.setPosition(link.selectionStart() + 2);
    QTest::mouseClick(pane->viewport(), Qt::LeftButton, Qt::NoModifier,
                      pane->cursorRect(inside).center());
    QTRY_VERIFY(f.find(QStringLiteral("TLParamsLocked")).isValid());
    const QModelIndex current = f.tree()->currentIndex();
    QCOMPARE(current.sibling(current.row(), 0), f.find(QStringLiteral("TLParamsLocked")));
    QCOMPARE(f.view->visibility(), OrbGui::Guru);
}

QTEST_MAIN(tst_OrbGenParamTreeView)
#include "tst_orbgenparamtreeview.moc"
