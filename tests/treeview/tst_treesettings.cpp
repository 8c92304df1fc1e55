// Saving a camera's settings and loading them back through the tree view:
// round trips on the simulated camera and on real descriptions over memory,
// and the refusals (another model, not a settings file, newer version).
#include <OrbCam/OrbCam.h>
#include <OrbCam/OrbCamSim.h>
#include <OrbGui/orbgenparamtreeview.h>

#include <GenApi/GenApi.h>

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMap>
#include <QMessageBox>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>
#include <unordered_set>

using namespace OrbGui;

namespace {

QString readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool writeAll(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate)
        && file.write(content) == content.size();
}

bool writable(GenApi::INode *node)
{
    try {
        return node->GetAccessMode() == GenApi::RW;
    } catch (const GenICam::GenericException &) {
        return false;
    }
}

// Gives one writable feature another value, as a user changing everything
// would; false when it has no other value to take.
bool change(GenApi::INode *node)
{
    using namespace GenApi;
    try {
        if (CIntegerPtr i = CIntegerPtr(node)) {
            const int64_t now = i->GetValue();
            i->SetValue(now != i->GetMax() ? i->GetMax() : i->GetMin());
        } else if (CFloatPtr f = CFloatPtr(node)) {
            const double now = f->GetValue();
            f->SetValue(now != f->GetMax() ? f->GetMax() : f->GetMin());
        } else if (CBooleanPtr b = CBooleanPtr(node)) {
            b->SetValue(!b->GetValue());
        } else if (CEnumerationPtr e = CEnumerationPtr(node)) {
            StringList_t symbolics;
            e->GetSymbolics(symbolics);
            const GenICam::gcstring now = e->ToString();
            for (const auto &s : symbolics)
                if (s != now) {
                    e->FromString(s);
                    break;
                }
        } else if (CStringPtr s = CStringPtr(node)) {
            s->SetValue("changed");
        } else {
            return false;
        }
    } catch (const GenICam::GenericException &) {
        return false;
    }
    return true;
}

// Changes every writable feature under Root; selected features once for each
// value of their selector. Returns how many changes took.
int changeEverything(GenApi::INodeMap *map)
{
    using namespace GenApi;
    std::vector<INode *> features;
    std::vector<INode *> pending { map->GetNode("Root") };
    std::unordered_set<INode *> seen(pending.begin(), pending.end());
    while (!pending.empty()) {
        INode *node = pending.back();
        pending.pop_back();
        features.push_back(node);
        if (CCategoryPtr c = CCategoryPtr(node)) {
            FeatureList_t list;
            c->GetFeatures(list);
            for (IValue *v : list)
                if (seen.insert(v->GetNode()).second)
                    pending.push_back(v->GetNode());
        }
    }
    int changed = 0;
    for (INode *node : features) {
        auto *selector = dynamic_cast<ISelector *>(node);
        if (selector && selector->IsSelector() && writable(node)) {
            FeatureList_t selected;
            selector->GetSelectedFeatures(selected);
            if (CEnumerationPtr e = CEnumerationPtr(node)) {
                StringList_t symbolics;
                e->GetSymbolics(symbolics);
                for (const auto &s : symbolics) {
                    try {
                        e->FromString(s);
                    } catch (const GenICam::GenericException &) {
                        continue;
                    }
                    for (IValue *v : selected)
                        if (v->GetNode() != node && writable(v->GetNode()))
                            changed += change(v->GetNode());
                }
            }
        }
        if (writable(node))
            changed += change(node);
    }
    return changed;
}

// A settings file's values by "Feature|Selector=value,...": each value with
// the selector values in force where it stands.
QMap<QString, QString> bySlot(const QString &file)
{
    QMap<QString, QString> values;
    QStringList selectors;
    QMap<QString, QString> current;
    QStringList lines = file.split(QLatin1Char('\n'));
    // A name that comes again within a run of one selector's values is a
    // selector: its lines set the slot of those after it.
    QSet<QString> selectorNames;
    for (const QString &line : lines) {
        const QString name = line.section(QStringLiteral(" = "), 0, 0);
        if (!line.contains(QStringLiteral(" = ")) || name.startsWith(QLatin1Char('@')))
            continue;
        if (current.contains(name))
            selectorNames << name;
        current[name] = QString();
    }
    current.clear();
    for (const QString &line : lines) {
        if (!line.contains(QStringLiteral(" = ")) || line.startsWith(QLatin1Char('@')))
            continue;
        const QString name = line.section(QStringLiteral(" = "), 0, 0);
        const QString value = line.section(QStringLiteral(" = "), 1);
        if (selectorNames.contains(name)) {
            current[name] = value;
            continue;
        }
        QStringList slot;
        for (auto it = current.begin(); it != current.end(); ++it)
            slot << it.key() + QLatin1Char('=') + it.value();
        values[name + QLatin1Char('|') + slot.join(QLatin1Char(','))] = value;
    }
    return values;
}

// A description with one feature, Width, under Root.
std::string description(const char *width)
{
    return std::string(
               "<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"None\" "
               "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" "
               "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" ToolTip=\"\" "
               "ProductGuid=\"00000000-0000-0000-0000-000000000000\" "
               "VersionGuid=\"00000000-0000-0000-0000-000000000000\" "
               "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">"
               "<Category Name=\"Root\"><pFeature>Width</pFeature></Category>")
        + width + "</RegisterDescription>";
}

} // namespace

class tst_TreeSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void roundTripOnDescriptions_data();
    void roundTripOnDescriptions();
    void roundTripOnTheSimulatedCamera();
    void unlockingComesFirst();
    void refusals_data();
    void refusals();
    void unknownFeaturesAreReported();
    void fileDialogsAgree();
};

void tst_TreeSettings::roundTripOnDescriptions_data()
{
    QTest::addColumn<QString>("file");
    for (const char *name :
         // The descriptions with more than 20 features writable over zeroed
         // memory.
         { "basler_ace2-a2a2600-20gmbas.xml", "baumer_hxg20.xml", "jai_tmc-1405gev.xml",
           "pco_pco1600.xml", "pixelink_pl-b771g.xml", "theimagingsource_dmk-33gx174.xml" })
        QTest::newRow(name) << QStringLiteral(ORB_CORPUS_DIR "/") + QString::fromLatin1(name);
}

// Save, change everything, load: every writable value is back (the file
// saved afterwards is the same, selector by selector).
void tst_TreeSettings::roundTripOnDescriptions()
{
    QFETCH(QString, file);
    if (!QFile::exists(file))
        QSKIP("the shared corpus is not here");
    GenApi::CNodeMapRef map;
    map._LoadXMLFromFile(file.toUtf8().constData());
    const auto ports = GenApi::ConnectMemoryPorts(map);
    OrbGenParamTreeView view(static_cast<GenApi::INodeMap *>(map));
    // Zeroed memory holds values no camera would report (0 where the range
    // starts at 1, a missing enum entry): a first round of changes gives
    // the writable features values the description accepts.
    changeEverything(map);
    QTemporaryDir dir;
    const QString saved = dir.filePath(QStringLiteral("saved.txt"));
    const QString again = dir.filePath(QStringLiteral("again.txt"));
    QString error;
    QVERIFY2(view.saveSettings(saved, &error), qPrintable(error));
    const QString before = readAll(saved);
    QVERIFY(before.startsWith(QLatin1String("OrbGui settings 1\n")));
    QVERIFY(before.count(QLatin1Char('\n')) > 20);

    QVERIFY(changeEverything(map) > 0);
    QVERIFY2(view.saveSettings(again, &error), qPrintable(error));
    QVERIFY(readAll(again) != before);

    QStringList problems;
    QVERIFY2(view.loadSettings(saved, false, &problems, &error), qPrintable(error));
    QVERIFY2(view.saveSettings(again, &error), qPrintable(error));
    // Zeroed memory leaves some values the description itself refuses (an
    // enumeration at an entry that is not available): those are reported,
    // and every other value must be back, in its selector's slot.
    QSet<QString> refused;
    for (const QString &p : problems)
        refused << p.section(QLatin1Char(':'), 0, 0);
    const QMap<QString, QString> a = bySlot(before), b = bySlot(readAll(again));
    int compared = 0;
    for (auto it = a.begin(); it != a.end(); ++it) {
        if (refused.contains(it.key().section(QLatin1Char('|'), 0, 0)))
            continue;
        ++compared;
        QVERIFY2(b.value(it.key()) == it.value(),
                 qPrintable(QStringLiteral("%1: saved '%2', after loading '%3'")
                                .arg(it.key(), it.value(), b.value(it.key()))));
    }
    qInfo("compared %d, problems %d", compared, int(problems.size()));
    QVERIFY2(compared > 20, qPrintable(QString::number(compared)));
}

void tst_TreeSettings::roundTripOnTheSimulatedCamera()
{
    QCOMPARE(OrbCamSim::Reset(), OrbCamOk);
    OrbCam::System *system = OrbCam_GetSystem();
    QVERIFY(system);
    OrbCam::InterfaceList *interfaces = system->GetInterfaces(OrbCam::AllInterfaces);
    OrbCam::Interface *gev = interfaces->First();
    gev->UpdateDeviceList(nullptr, 200);
    OrbCam::DeviceInfoList *infos = gev->GetDeviceInfoList();
    OrbCam::Device *device = OrbCam_CreateDevice(infos->First(), OrbCam::AccessControl, 0);
    infos->Release();
    QVERIFY(device);
    {
        OrbGenParamTreeView view(device->GetParams());
        GenApi::INodeMap *map = device->GetParams()->GetNodeMap();
        QTemporaryDir dir;
        const QString saved = dir.filePath(QStringLiteral("c2000.txt"));
        QString error;
        QVERIFY2(view.saveSettings(saved, &error), qPrintable(error));
        const QString before = readAll(saved);
        // The frame selector's slots are saved one after the other.
        QVERIFY2(before.contains(QLatin1String("\nFrameAB_Selector = ")), qPrintable(before));
        QVERIFY(changeEverything(map) > 10);
        QStringList problems;
        QVERIFY2(view.loadSettings(saved, false, &problems, &error), qPrintable(error));
        QVERIFY2(view.saveSettings(saved + QStringLiteral(".2"), &error), qPrintable(error));
        QCOMPARE(readAll(saved + QStringLiteral(".2")), before);
    }
    OrbCam_ReleaseDevice(device);
    OrbCam_ReleaseSystem(system);
}

// Width and Height of the simulated camera are locked while TLParamsLocked
// is 1: the file has the lock first, so a camera that is locked now takes
// the file's Width once the file has unlocked it.
void tst_TreeSettings::unlockingComesFirst()
{
    QCOMPARE(OrbCamSim::Reset(), OrbCamOk);
    OrbCam::System *system = OrbCam_GetSystem();
    QVERIFY(system);
    OrbCam::Interface *gev = system->GetInterfaces(OrbCam::AllInterfaces)->First();
    gev->UpdateDeviceList(nullptr, 200);
    OrbCam::DeviceInfoList *infos = gev->GetDeviceInfoList();
    OrbCam::Device *device = OrbCam_CreateDevice(infos->First(), OrbCam::AccessControl, 0);
    infos->Release();
    QVERIFY(device);
    {
        OrbGenParam::Array *params = device->GetParams();
        OrbGenParamTreeView view(params);
        QCOMPARE(params->GetInt("Width")->SetValue(640), OrbCamOk);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("unlocked.txt"));
        QString error;
        QVERIFY2(view.saveSettings(path, &error), qPrintable(error));
        const QString saved = readAll(path);
        const int lock = saved.indexOf(QLatin1String("\nTLParamsLocked = 0\n"));
        const int width = saved.indexOf(QLatin1String("\nWidth = 640\n"));
        QVERIFY2(lock >= 0 && width > lock, qPrintable(saved));

        QCOMPARE(params->GetInt("Width")->SetValue(1280), OrbCamOk);
        QCOMPARE(params->GetInt("TLParamsLocked")->SetValue(1), OrbCamOk);
        QVERIFY(params->GetInt("Width")->SetValue(640) != OrbCamOk); // locked now
        QStringList problems;
        QVERIFY2(view.loadSettings(path, false, &problems, &error), qPrintable(error));
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));
        QCOMPARE(params->GetInt("Width")->GetValue(), int64_t(640));
        QCOMPARE(params->GetInt("TLParamsLocked")->GetValue(), int64_t(0));
    }
    OrbCam_ReleaseDevice(device);
    OrbCam_ReleaseSystem(system);
}

void tst_TreeSettings::refusals_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("accept");
    QTest::addColumn<bool>("loaded");
    QTest::addColumn<QString>("why");
    const QByteArray header = "OrbGui settings 1\n@vendor = Other Vendor\n@model = Other Model\n";
    QTest::newRow("another model") << header + "Width = 64\n"
                                   << false << false << QStringLiteral("Other Vendor Other Model");
    QTest::newRow("another model, accepted") << header + "Width = 64\n"
                                             << true << true << QString();
    QTest::newRow("not a settings file")
        << QByteArray("Width = 64\n") << true << false << QStringLiteral("not a settings file");
    QTest::newRow("a newer version")
        << QByteArray("OrbGui settings 2\n") << true << false << QStringLiteral("version 2");
}

void tst_TreeSettings::refusals()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, accept);
    QFETCH(bool, loaded);
    QFETCH(QString, why);
    GenApi::CNodeMapRef map;
    map._LoadXMLFromString(
        description("<Integer Name=\"Width\"><Value>640</Value></Integer>").c_str());
    OrbGenParamTreeView view(static_cast<GenApi::INodeMap *>(map));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("s.txt"));
    QVERIFY(writeAll(path, content));
    QString error;
    QCOMPARE(view.loadSettings(path, accept, nullptr, &error), loaded);
    QVERIFY2(error.contains(why), qPrintable(error));
    // Nothing was written unless it loaded.
    QCOMPARE(GenApi::CIntegerPtr(map._GetNode("Width"))->GetValue(), loaded ? 64 : 640);
}

void tst_TreeSettings::unknownFeaturesAreReported()
{
    GenApi::CNodeMapRef map;
    map._LoadXMLFromString(
        description(
            "<Integer Name=\"Width\"><Value>640</Value><Min>16</Min><Max>4096</Max></Integer>")
            .c_str());
    OrbGenParamTreeView view(static_cast<GenApi::INodeMap *>(map));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("s.txt"));
    QVERIFY(writeAll(path,
                     "OrbGui settings 1\n@vendor = \n@model = \nGone = 1\nWidth = 8\n"
                     "Width = 320\nnonsense\n"));
    QStringList problems;
    QString error;
    QVERIFY2(view.loadSettings(path, false, &problems, &error), qPrintable(error));
    QCOMPARE(problems.size(), 3);
    QVERIFY2(problems[0].startsWith(QLatin1String("nonsense: ")), qPrintable(problems[0]));
    QVERIFY2(problems[1].startsWith(QLatin1String("Gone: no such feature")),
             qPrintable(problems[1]));
    QVERIFY2(problems[2].startsWith(QLatin1String("Width: ")), qPrintable(problems[2]));
    QCOMPARE(GenApi::CIntegerPtr(map._GetNode("Width"))->GetValue(), int64_t(320));
}

// The file saved under a name typed without an extension gets one, and the
// loading dialog offers it; both offer "All files" too.
void tst_TreeSettings::fileDialogsAgree()
{
    QCOMPARE(OrbCamSim::Reset(), OrbCamOk);
    OrbCamErr err = OrbCamOk;
    OrbCam::System *system = OrbCam_GetSystem(&err);
    OrbCam::InterfaceList *interfaces = system->GetInterfaces(OrbCam::AllInterfaces);
    OrbCam::Interface *gev = interfaces->First();
    gev->UpdateDeviceList(nullptr, 200);
    OrbCam::DeviceInfoList *infos = gev->GetDeviceInfoList();
    OrbCam::Device *device = OrbCam_CreateDevice(infos->First(), OrbCam::AccessControl, 0, &err);
    infos->Release();
    QVERIFY(device);
    QTemporaryDir dir;
    {
        OrbGenParamTreeView view(device->GetParams());
        view.show();
        QStringList saveFilters, loadFilters, offered;
        // Plays the user: answers each file dialog with the next name, and
        // closes what the load reports afterwards (not this test's concern).
        struct Answer {
            QStringList *filters;
            QString name;
            bool listOffered;
        };
        QList<Answer> answers { { &saveFilters, QStringLiteral("settings1"), false },
                                { &loadFilters, QStringLiteral("settings1.txt"), true } };
        QTimer user;
        user.setInterval(20);
        connect(&user, &QTimer::timeout, [&] {
            QWidget *modal = QApplication::activeModalWidget();
            if (auto *box = qobject_cast<QMessageBox *>(modal)) {
                box->close();
                return;
            }
            auto *dialog = qobject_cast<QFileDialog *>(modal);
            if (!dialog || answers.isEmpty() || dialog->property("answered").toBool())
                return;
            dialog->setProperty("answered", true);
            const Answer answer = answers.takeFirst();
            *answer.filters = dialog->nameFilters();
            dialog->setDirectory(dir.path());
            if (answer.listOffered) {
                // The dialog lists what its chosen filter's pattern matches.
                const QString filter = dialog->selectedNameFilter();
                const QString pattern = filter.mid(filter.indexOf(QLatin1Char('(')) + 1).chopped(1);
                for (const QString &file : QDir(dir.path()).entryList(QDir::Files))
                    if (QDir::match(pattern, file))
                        offered << file;
            }
            dialog->selectFile(dir.filePath(answer.name));
            QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
        });
        user.start();
        view.findChild<QAction *>(QStringLiteral("actionSaveSettings"))->trigger();
        QVERIFY(QFile::exists(dir.filePath(QStringLiteral("settings1.txt"))));
        QVERIFY(!QFile::exists(dir.filePath(QStringLiteral("settings1"))));
        view.findChild<QAction *>(QStringLiteral("actionLoadSettings"))->trigger();
        QVERIFY(answers.isEmpty());
        QCOMPARE(saveFilters, loadFilters);
        QVERIFY(saveFilters.contains(QStringLiteral("All files (*)")));
        QVERIFY2(offered.contains(QStringLiteral("settings1.txt")),
                 qPrintable(offered.join(QLatin1Char(','))));
    }
    OrbCam_ReleaseDevice(device);
    OrbCam_ReleaseSystem(system);
}

QTEST_MAIN(tst_TreeSettings)
#include "tst_treesettings.moc"
