#include "orbcam/orbcamtest.h"
#include "modeltest.h"
#include "genparam/unittext.h"

#include <OrbCam/OrbCam.h>
#include <OrbCam/OrbCamSim.h>
#include <OrbGui/orbgenparamtreeview.h>
#include <OrbGui/qtorbspinboxval64.h>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QThread>
#include <QTreeView>

#include <atomic>
#include <memory>
#include <thread>

using namespace OrbGui;
using namespace ModelTest;

class tst_GenParamTreeModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void modelTester_data();
    void modelTester();
    void structure();
    void featureInTwoCategories();
    void headers_data();
    void headers();
    void withoutTree_data();
    void withoutTree();
    void displayPrecisionBounded_data();
    void displayPrecisionBounded();
    void longStringShownCut();
    void display_data();
    void display();
    void edit_data();
    void edit();
    void representationTrust_data();
    void representationTrust();
    void editors_data();
    void editors();
    void noEditorWhenItsSetUpFails_data();
    void noEditorWhenItsSetUpFails();
    void writes_data();
    void writes();
    void refusedWrites_data();
    void refusedWrites();
    void columnZeroRoles();
    void flags();
    void whatsThis();
    void readErrorAppearsOnceAndDisappearsOnce();
    void writeErrorIsId256();
    void nodeChangeNotifiesTheValueCell();
    void manyChangesOneSignalPerCategory();
    void changeOnAnotherThreadIsQueued();
    void callbacksStopWithTheModel();
    void viewsBuiltWhileAnotherThreadChangesTheCamera();
    void arrayConstructor();
};

void tst_GenParamTreeModel::initTestCase()
{
    QLocale::setDefault(QLocale::c());
}

void tst_GenParamTreeModel::modelTester_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("test description") << dataDir() + QStringLiteral("/model.xml");
    QTest::newRow("simulated colour camera") << QStringLiteral(ORB_CAMERAS_DIR "/orbsim-c2000.xml");
    const QDir corpus(QStringLiteral(ORB_CORPUS_DIR));
    for (const QString &name :
         corpus.entryList({ QStringLiteral("*.xml"), QStringLiteral("*.zip") }))
        QTest::newRow(qPrintable(name)) << corpus.filePath(name);
}

void tst_GenParamTreeModel::modelTester()
{
    QFETCH(QString, file);
    GenApi::CNodeMapRef map;
    map._LoadXMLFromFile(file.toUtf8().constData());
    const auto ports = GenApi::ConnectMemoryPorts(map);
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(map));
    CheckedModelTester tester(&model);
    QVERIFY(model.rowCount() > 0);
    QCOMPARE(wrongParents(model), QStringList());
    // Every cell answers its display role; failures become error records.
    int cells = 0;
    std::function<void(const QModelIndex &)> walk = [&](const QModelIndex &parent) {
        for (int row = 0; row < model.rowCount(parent); ++row) {
            for (int column = 0; column < 2; ++column) {
                model.index(row, column, parent).data(Qt::DisplayRole);
                ++cells;
            }
            walk(model.index(row, 0, parent));
        }
    };
    walk(QModelIndex());
    QVERIFY(cells > 2);
    QCOMPARE(tester.findings(), QStringList());
}

void tst_GenParamTreeModel::structure()
{
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    QCOMPARE(model.rowCount(), 4);
    QCOMPARE(model.columnCount(), 2);
    const QModelIndex acquisition = model.index(0, 0);
    QCOMPARE(acquisition.data().toString(), QStringLiteral("Acquisition Control"));
    QCOMPARE(model.rowCount(acquisition), 16);
    // A column-1 index of a category reports the same children.
    QCOMPARE(model.rowCount(acquisition.sibling(0, 1)), 16);
    const QModelIndex advanced = model.index(15, 0, acquisition);
    QCOMPARE(advanced.data().toString(), QStringLiteral("Advanced Settings"));
    QCOMPARE(model.rowCount(advanced), 2);
    QCOMPARE(model.parent(advanced), acquisition);
    QCOMPARE(model.parent(model.index(0, 1, advanced)), advanced);
    const QModelIndex empty = model.index(2, 0);
    QCOMPARE(empty.data().toString(), QStringLiteral("Empty"));
    QCOMPARE(model.rowCount(empty), 0);
    const QModelIndex leaf = model.index(0, 0, acquisition);
    QCOMPARE(model.rowCount(leaf), 0);
    QVERIFY(!model.index(0, 0, leaf).isValid());
    QVERIFY(!model.index(16, 0, acquisition).isValid());
    QVERIFY(!model.index(0, 2, acquisition).isValid());
    QVERIFY(!model.parent(acquisition).isValid());
}

void tst_GenParamTreeModel::featureInTwoCategories()
{
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    const QModelIndex acquisition = model.index(0, 0);
    const QModelIndex advanced = model.index(15, 0, acquisition);
    const QModelIndex first = model.index(1, 0, acquisition);
    const QModelIndex second = model.index(1, 0, advanced);
    QCOMPARE(first.data().toString(), QStringLiteral("Gain"));
    QCOMPARE(second.data().toString(), QStringLiteral("Gain"));
    // Both rows share one record: its parent and row are the first occurrence's.
    QCOMPARE(model.parent(second), acquisition);
    QCOMPARE(second.internalPointer(), first.internalPointer());
}

void tst_GenParamTreeModel::headers_data()
{
    QTest::addColumn<int>("section");
    QTest::addColumn<int>("orientation");
    QTest::addColumn<int>("role");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("name") << 0 << int(Qt::Horizontal) << int(Qt::DisplayRole)
                          << QVariant(QStringLiteral("Name"));
    QTest::newRow("value") << 1 << int(Qt::Horizontal) << int(Qt::DisplayRole)
                           << QVariant(QStringLiteral("Value"));
    QTest::newRow("third section")
        << 2 << int(Qt::Horizontal) << int(Qt::DisplayRole) << QVariant();
    QTest::newRow("vertical") << 0 << int(Qt::Vertical) << int(Qt::DisplayRole) << QVariant();
    QTest::newRow("tooltip role") << 0 << int(Qt::Horizontal) << int(Qt::ToolTipRole) << QVariant();
}

void tst_GenParamTreeModel::headers()
{
    QFETCH(int, section);
    QFETCH(int, orientation);
    QFETCH(int, role);
    QFETCH(QVariant, expected);
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    QCOMPARE(model.headerData(section, Qt::Orientation(orientation), role), expected);
}

void tst_GenParamTreeModel::withoutTree_data()
{
    QTest::addColumn<QString>("body");
    QTest::newRow("no Root") << QStringLiteral("<Integer Name=\"A\"><Value>1</Value></Integer>");
    QTest::newRow("Root not a category")
        << QStringLiteral("<Integer Name=\"Root\"><Value>1</Value></Integer>");
    QTest::newRow("empty Root") << QStringLiteral("<Category Name=\"Root\"/>");
}

void tst_GenParamTreeModel::withoutTree()
{
    QFETCH(QString, body);
    GenApi::CNodeMapRef map;
    map._LoadXMLFromString(
        ("<RegisterDescription>" + body.toStdString() + "</RegisterDescription>").c_str());
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(map));
    CheckedModelTester tester(&model);
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(tester.findings(), QStringList());
    QVERIFY(!model.index(0, 0).isValid());
}

void tst_GenParamTreeModel::displayPrecisionBounded_data()
{
    QTest::addColumn<QByteArray>("precision");
    QTest::addColumn<int>("decimals");
    QTest::newRow("as written") << QByteArray("3") << 3;
    QTest::newRow("largest int") << QByteArray("2147483647") << 17;
    QTest::newRow("a billion") << QByteArray("1000000000") << 17;
}

// A description's DisplayPrecision is shown as far as a double has digits:
// a huge one neither aborts nor takes gigabytes, in the cell, the editor's
// range hint or the editor.
void tst_GenParamTreeModel::displayPrecisionBounded()
{
    QFETCH(QByteArray, precision);
    QFETCH(int, decimals);
    GenApi::CNodeMapRef map;
    map._LoadXMLFromString(("<RegisterDescription><Category Name=\"Root\"><pFeature>F</pFeature>"
                            "</Category><Float Name=\"F\"><Value>1.5</Value><Min>0</Min>"
                            "<Max>2</Max><DisplayPrecision>"
                            + precision + "</DisplayPrecision></Float></RegisterDescription>")
                               .constData());
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(map));
    const QModelIndex cell = model.index(0, 1);
    QCOMPARE(cell.data(Qt::DisplayRole).toString(), QString::number(1.5, 'f', decimals));
    QVERIFY(cell.data(Qt::ToolTipRole).toString().size() < 1000);
}

// A megabyte string shows its first 256 characters and an ellipsis in the
// cell; the editor gets all of it. A multi-byte character at the cut stays
// whole.
void tst_GenParamTreeModel::longStringShownCut()
{
    const QString start = QString(255, QLatin1Char('a')) + QChar(0x20AC);
    const QString value = start + QString(1000000, QLatin1Char('b'));
    GenApi::CNodeMapRef map;
    map._LoadXMLFromString(("<RegisterDescription><Category Name=\"Root\"><pFeature>S</pFeature>"
                            "</Category><String Name=\"S\"><Value>"
                            + value.toStdString() + "</Value></String></RegisterDescription>")
                               .c_str());
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(map));
    const QModelIndex cell = model.index(0, 1);
    QCOMPARE(cell.data(Qt::DisplayRole).toString(), start + QChar(0x2026));
    QCOMPARE(cell.data(Qt::EditRole).toString(), value);
}

void tst_GenParamTreeModel::display_data()
{
    QTest::addColumn<QString>("feature");
    QTest::addColumn<QString>("text");
    QTest::newRow("integer with unit") << "ExposureTime" << QStringLiteral("0 \u03BCs");
    QTest::newRow("float, fixed with precision") << "Gain"
                                                 << "0.00 dB";
    QTest::newRow("enumeration") << "AnalogGain"
                                 << "Gain1x";
    QTest::newRow("boolean") << "ReverseX"
                             << "False";
    QTest::newRow("command") << "AcquisitionStart"
                             << "Execute";
    // The register holds 0xBEEF (written by the test), so that case shows.
    QTest::newRow("hex") << "PacketSize"
                         << "BEEF";
    QTest::newRow("not implemented") << "Missing"
                                     << "<Value not available>";
    QTest::newRow("not available") << "Unavailable"
                                   << "<Value not available>";
    QTest::newRow("write-only") << "WriteOnly"
                                << "<Value not readable>";
    QTest::newRow("MAC by name") << "GevMACAddress"
                                 << "00:1A:2B:3C:4D:5E";
    QTest::newRow("IPv4 by name") << "GevCurrentSubnetMask"
                                  << "255.255.255.0";
    QTest::newRow("IPv4 by representation") << "OtherAddress"
                                            << "192.168.1.1";
    QTest::newRow("list of floats") << "Rates"
                                    << "25.000000 fps";
}

void tst_GenParamTreeModel::display()
{
    QFETCH(QString, feature);
    QFETCH(QString, text);
    TestDevice device;
    const quint32 packetSize = 0xBEEF;
    device.port.Write(&packetSize, 0x114, 4);
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    QCOMPARE(valueCell(model, feature).data(Qt::DisplayRole).toString(), text);
}

void tst_GenParamTreeModel::edit_data()
{
    QTest::addColumn<QString>("feature");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("fromList");
    QTest::newRow("integer") << "ExposureTime" << QVariant(qlonglong(0)) << false;
    QTest::newRow("hex edits as a number") << "PacketSize" << QVariant(qlonglong(0)) << false;
    QTest::newRow("list of integers") << "Binning" << QVariant(qlonglong(0)) << true;
    QTest::newRow("float") << "Gain" << QVariant(0.0) << false;
    QTest::newRow("list of floats") << "Rates" << QVariant(25.0) << true;
    QTest::newRow("boolean") << "ReverseX" << QVariant(false) << false;
    QTest::newRow("enumeration as unsigned") << "AnalogGain" << QVariant(qulonglong(0)) << false;
    QTest::newRow("MAC in lower case")
        << "GevMACAddress" << QVariant(QStringLiteral("00:1a:2b:3c:4d:5e")) << false;
    QTest::newRow("IPv4") << "OtherAddress" << QVariant(QStringLiteral("192.168.1.1")) << false;
    QTest::newRow("command has none") << "AcquisitionStart" << QVariant() << false;
}

void tst_GenParamTreeModel::edit()
{
    QFETCH(QString, feature);
    QFETCH(QVariant, value);
    QFETCH(bool, fromList);
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    const QVariant edit = valueCell(model, feature).data(Qt::EditRole);
    if (fromList) {
        QVERIFY(edit.canConvert<VariantData>());
        QCOMPARE(edit.value<VariantData>().value, value);
    } else {
        QCOMPARE(edit, value);
    }
}

void tst_GenParamTreeModel::representationTrust_data()
{
    QTest::addColumn<QString>("probeRepresentation");
    QTest::addColumn<QString>("maskText");
    QTest::addColumn<QString>("macText");
    // The probe node is linear: names decide.
    QTest::newRow("untrusted") << ""
                               << "255.255.255.0"
                               << "00:1A:2B:3C:4D:5E";
    // The probe node is IPv4: each integer's own representation is used.
    QTest::newRow("trusted") << "<Representation>IPV4Address</Representation>"
                             << "4294967040"
                             << "112394521950";
}

void tst_GenParamTreeModel::representationTrust()
{
    QFETCH(QString, probeRepresentation);
    QFETCH(QString, maskText);
    QFETCH(QString, macText);
    const std::string body
        = "<Category Name=\"Root\"><pFeature>GevCurrentIPAddress</pFeature>"
          "<pFeature>GevCurrentSubnetMask</pFeature><pFeature>GevMACAddress</pFeature></Category>"
          "<Integer Name=\"GevCurrentIPAddress\"><Value>3232235777</Value>"
        + probeRepresentation.toStdString()
        + "</Integer><Integer Name=\"GevCurrentSubnetMask\"><Value>0xFFFFFF00</Value></Integer>"
          "<Integer Name=\"GevMACAddress\"><Value>0x001A2B3C4D5E</Value></Integer>";
    GenApi::CNodeMapRef map;
    map._LoadXMLFromString(("<RegisterDescription>" + body + "</RegisterDescription>").c_str());
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(map));
    QCOMPARE(valueCell(model, QStringLiteral("GevCurrentIPAddress")).data().toString(),
             QStringLiteral("192.168.1.1"));
    QCOMPARE(valueCell(model, QStringLiteral("GevCurrentSubnetMask")).data().toString(), maskText);
    QCOMPARE(valueCell(model, QStringLiteral("GevMACAddress")).data().toString(), macText);
}

void tst_GenParamTreeModel::editors_data()
{
    QTest::addColumn<QString>("feature");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("className");
    QTest::newRow("integer") << "ExposureTime" << int(ControlData::SpinBox64)
                             << "OrbGui::QtOrbSpinBoxVal64";
    QTest::newRow("MAC gets the spin box")
        << "GevMACAddress" << int(ControlData::SpinBox64) << "OrbGui::QtOrbSpinBoxVal64";
    QTest::newRow("IPv4 gets a line edit")
        << "GevCurrentSubnetMask" << int(ControlData::LineEdit) << "QLineEdit";
    QTest::newRow("list of integers") << "Binning" << int(ControlData::ComboBox) << "QComboBox";
    // Its own spin box, which lets a number beyond the range be typed.
    QTest::newRow("float") << "Gain" << int(ControlData::DoubleSpinBox)
                           << "OrbGui::FeatureDoubleSpinBox";
    QTest::newRow("list of floats") << "Rates" << int(ControlData::ComboBox) << "QComboBox";
    QTest::newRow("boolean") << "ReverseX" << int(ControlData::ComboBox) << "QComboBox";
    QTest::newRow("command") << "AcquisitionStart" << int(ControlData::PushButton) << "QPushButton";
    QTest::newRow("string") << "DeviceUserID" << int(ControlData::LineEdit) << "QLineEdit";
    QTest::newRow("enumeration") << "AnalogGain" << int(ControlData::ComboBox) << "QComboBox";
}

void tst_GenParamTreeModel::editors()
{
    QFETCH(QString, feature);
    QFETCH(int, kind);
    QFETCH(QString, className);
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    const QVariant v = valueCell(model, feature).data(ControlDataRole);
    QVERIFY(v.canConvert<ControlData>());
    const ControlData data = v.value<ControlData>();
    std::unique_ptr<QWidget> widget(data.control); // the caller owns the editor
    QVERIFY(widget);
    QVERIFY(!widget->parent());
    QCOMPARE(int(data.kind), kind);
    QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), className);

    if (auto *spin = qobject_cast<QtOrbSpinBoxVal64 *>(widget.get())) {
        QVERIFY(!spin->hasFrame());
        QVERIFY(!spin->keyboardTracking());
        QVERIFY(!spin->ignoreFocusOut());
        if (feature == QLatin1String("ExposureTime")) {
            QCOMPARE(spin->minimum(), qlonglong(10));
            QCOMPARE(spin->maximum(), qlonglong(100000));
            QCOMPARE(spin->singleStep(), qlonglong(10));
            QVERIFY(spin->validateStepping());
        }
    } else if (auto *combo = qobject_cast<QComboBox *>(widget.get())) {
        QStringList items;
        for (int i = 0; i < combo->count(); ++i)
            items << combo->itemText(i) + QLatin1Char('=') + combo->itemData(i).toString();
        if (feature == QLatin1String("AnalogGain"))
            QCOMPARE(items,
                     QStringList({ QStringLiteral("Gain1x=0"), QStringLiteral("Gain2x=1"),
                                   QStringLiteral("Gain8x=3") }));
        else if (feature == QLatin1String("Binning"))
            QCOMPARE(items,
                     QStringList({ QStringLiteral("1 x=1"), QStringLiteral("2 x=2"),
                                   QStringLiteral("4 x=4") }));
        else if (feature == QLatin1String("Rates"))
            QCOMPARE(items,
                     QStringList({ QStringLiteral("12.5 fps=12"), QStringLiteral("25 fps=25"),
                                   QStringLiteral("50 fps=50") }));
        else if (feature == QLatin1String("ReverseX"))
            QCOMPARE(items,
                     QStringList({ QStringLiteral("True=true"), QStringLiteral("False=false") }));
    } else if (auto *doubleSpin = qobject_cast<QDoubleSpinBox *>(widget.get())) {
        QCOMPARE(doubleSpin->decimals(), 2);
        QCOMPARE(doubleSpin->maximum(), 24.0);
        QCOMPARE(doubleSpin->suffix(), QStringLiteral(" dB"));
        QCOMPARE(doubleSpin->singleStep(), 0.5);
    } else if (auto *edit = qobject_cast<QLineEdit *>(widget.get())) {
        QCOMPARE(edit->validator() != nullptr, feature == QLatin1String("GevCurrentSubnetMask"));
    }
}

void tst_GenParamTreeModel::noEditorWhenItsSetUpFails_data()
{
    QTest::addColumn<QString>("feature");
    QTest::newRow("integer, maximum unreadable")
        << "<Integer Name=\"F\"><Value>5</Value><pMax>Broken</pMax></Integer>";
    QTest::newRow("float, maximum unreadable")
        << "<Float Name=\"F\"><Value>5</Value><pMax>Broken</pMax></Float>";
    QTest::newRow("float list, entries unreadable")
        << "<Float Name=\"F\"><Value>5</Value><pMax>Broken</pMax>"
           "<ValidValueSet>1;5;9</ValidValueSet></Float>";
    QTest::newRow("enumeration, an entry's availability unreadable")
        << "<Enumeration Name=\"F\"><EnumEntry Name=\"A\"><pIsAvailable>Broken</pIsAvailable>"
           "<Value>0</Value></EnumEntry><Value>0</Value></Enumeration>";
}

// The editor is built before its limits are read; when one cannot be read
// there is no editor and no widget is left behind (the application still
// lists a lost one, so the sanitizer would not see it).
void tst_GenParamTreeModel::noEditorWhenItsSetUpFails()
{
    QFETCH(QString, feature);
    const std::string text = "<RegisterDescription><Category Name=\"Root\"><pFeature>F</pFeature>"
                             "</Category>"
        + feature.toStdString()
        + "<Port Name=\"Device\"/><IntReg Name=\"Broken\"><Address>0x100</Address>"
          "<Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>"
          "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>"
          "</RegisterDescription>";
    GenApi::CNodeMapRef map;
    map._LoadXMLFromString(text.c_str());
    GenApi::CMemoryPort port(16); // the register at 0x100 lies outside
    map._Connect(&port);
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(map));
    const QModelIndex cell = valueCell(model, QStringLiteral("F"));
    QVERIFY(cell.isValid());
    const int widgets = QApplication::allWidgets().size();
    QVERIFY(!cell.data(ControlDataRole).isValid());
    QCOMPARE(QApplication::allWidgets().size(), widgets);
}

void tst_GenParamTreeModel::writes_data()
{
    QTest::addColumn<QString>("feature");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("shown");
    QTest::newRow("integer") << "ExposureTime" << QVariant(qlonglong(5000))
                             << QStringLiteral("5000 \u03BCs");
    QTest::newRow("IPv4 as text") << "GevCurrentIPAddress" << QVariant(QStringLiteral("10.0.0.2"))
                                  << "10.0.0.2";
    QTest::newRow("float") << "Gain" << QVariant(6.5) << "6.50 dB";
    QTest::newRow("float below the minimum writes the minimum")
        << "Gain" << QVariant(-3.0) << "0.00 dB";
    QTest::newRow("float above the maximum writes the maximum")
        << "Gain" << QVariant(99.0) << "24.00 dB";
    QTest::newRow("boolean") << "ReverseX" << QVariant(true) << "True";
    QTest::newRow("string") << "DeviceUserID" << QVariant(QStringLiteral("Bay 4")) << "Bay 4";
    QTest::newRow("enumeration by number") << "TriggerMode" << QVariant(3) << "Auto";
    QTest::newRow("enumeration by name") << "TriggerMode" << QVariant(QStringLiteral("On")) << "On";
}

void tst_GenParamTreeModel::writes()
{
    QFETCH(QString, feature);
    QFETCH(QVariant, value);
    QFETCH(QString, shown);
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    const QModelIndex cell = valueCell(model, feature);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QVERIFY(model.setData(cell, value));
    QCOMPARE(cell.data().toString(), shown);
    // The write's own dataChanged carries the edit role; the node callback
    // adds one for all roles.
    bool editRoleSeen = false;
    for (const QList<QVariant> &args : changed)
        editRoleSeen |= args.at(2).value<QVector<int>>() == QVector<int>({ Qt::EditRole });
    QVERIFY(editRoleSeen);
}

void tst_GenParamTreeModel::refusedWrites_data()
{
    QTest::addColumn<QString>("feature");
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("role");
    QTest::newRow("column 0") << "ExposureTime" << 0 << int(Qt::EditRole);
    QTest::newRow("display role") << "ExposureTime" << 1 << int(Qt::DisplayRole);
    QTest::newRow("read-only") << "Temperature" << 1 << int(Qt::EditRole);
    QTest::newRow("not available") << "Unavailable" << 1 << int(Qt::EditRole);
    QTest::newRow("category") << "Advanced" << 1 << int(Qt::EditRole);
}

void tst_GenParamTreeModel::refusedWrites()
{
    QFETCH(QString, feature);
    QFETCH(int, column);
    QFETCH(int, role);
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    const QModelIndex index = find(model, feature);
    QSignalSpy appeared(&model, &GenParamTreeModel::errorAppeared);
    QVERIFY(!model.setData(index.sibling(index.row(), column), 1, role));
    QCOMPARE(appeared.count(), 0);
}

void tst_GenParamTreeModel::columnZeroRoles()
{
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    const QModelIndex category = model.index(0, 0);
    QCOMPARE(category.data(Qt::BackgroundRole).value<QBrush>().color(),
             QPalette().color(QPalette::Active, QPalette::Midlight));
    QCOMPARE(category.data(Qt::ToolTipRole).toString(), QStringLiteral("How images are taken."));
    // Column 1 of a category is blank for every role.
    for (int role :
         { int(Qt::DisplayRole), int(Qt::EditRole), int(Qt::ToolTipRole), int(Qt::ForegroundRole) })
        QVERIFY(!category.sibling(0, 1).data(role).isValid());
    const QModelIndex exposure = find(model, QStringLiteral("ExposureTime"));
    QVERIFY(!exposure.data(Qt::BackgroundRole).isValid());
    QCOMPARE(exposure.data(Qt::ToolTipRole).toString(),
             QStringLiteral("Exposure time of a frame."));
    // Without a tooltip, column 0 falls back to the display name.
    QCOMPARE(find(model, QStringLiteral("Binning")).data(Qt::ToolTipRole).toString(),
             QStringLiteral("Binning"));
    QVERIFY(!exposure.data(Qt::ForegroundRole).isValid());
    QCOMPARE(exposure.data(ValuePointerRole).value<GenApi::IValue *>(),
             dynamic_cast<GenApi::IValue *>(device.node("ExposureTime")));
    // Read-only values are greyed; writable ones use the default colour.
    QCOMPARE(valueCell(model, QStringLiteral("Temperature"))
                 .data(Qt::ForegroundRole)
                 .value<QBrush>()
                 .color(),
             QPalette().color(QPalette::Disabled, QPalette::Text));
    QVERIFY(!valueCell(model, QStringLiteral("ExposureTime")).data(Qt::ForegroundRole).isValid());
    QVERIFY(
        !valueCell(model, QStringLiteral("AcquisitionStart")).data(Qt::ForegroundRole).isValid());
}

void tst_GenParamTreeModel::flags()
{
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    // Features are leaves; telling the views so spares them bookkeeping.
    const Qt::ItemFlags base = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    QCOMPARE(model.flags(QModelIndex()), Qt::NoItemFlags);
    QCOMPARE(model.flags(find(model, QStringLiteral("ExposureTime"))), base);
    QCOMPARE(model.flags(find(model, QStringLiteral("Advanced"))),
             Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    QCOMPARE(model.flags(valueCell(model, QStringLiteral("ExposureTime"))),
             base | Qt::ItemIsEditable);
    QCOMPARE(model.flags(valueCell(model, QStringLiteral("WriteOnly"))), base | Qt::ItemIsEditable);
    QCOMPARE(model.flags(valueCell(model, QStringLiteral("Temperature"))), base);
    QCOMPARE(model.flags(valueCell(model, QStringLiteral("Unavailable"))), base);
}

void tst_GenParamTreeModel::whatsThis()
{
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    QCOMPARE(valueCell(model, QStringLiteral("ExposureTime")).data(Qt::WhatsThisRole).toString(),
             QStringLiteral("<i>Name:</i> ExposureTime<br /><i>Type:</i> Integer<br />"
                            "<i>Limits</i>: Min: 10, Max: 100000<br /><i>Increment</i>: 10<br />"
                            "<i>Description:</i> Exposure time of a frame in microseconds.<br />"
                            "<i>Streamable:</i> False<br /><i>Cachable:</i> NoCache"));
    const QString analog
        = find(model, QStringLiteral("AnalogGain")).data(Qt::WhatsThisRole).toString();
    QVERIFY2(analog.contains(
                 QStringLiteral("<i>Enumeration entries</i>:<br />\"Gain1x\": 0 (0x00000000)<br />"
                                "\"Gain2x\": 1 (0x00000001)<br />\"Gain4x\": 2 (0x00000002)")),
             qPrintable(analog));
    const QString binning
        = find(model, QStringLiteral("Binning")).data(Qt::WhatsThisRole).toString();
    QVERIFY2(binning.contains(QStringLiteral("<i>Valid values</i>: 1,2,4")), qPrintable(binning));
    const QString gain = find(model, QStringLiteral("Gain")).data(Qt::WhatsThisRole).toString();
    // Fixed notation with the display precision, as the value shows.
    QVERIFY2(gain.contains(QStringLiteral(
                 "<i>Limits</i>: Min: 0.00, Max: 24.00<br /><i>Increment</i>: 0.50")),
             qPrintable(gain));

    // One decimal over 0 to 20 read "Max: 2e+01" in 'g' notation.
    GenApi::CNodeMapRef small;
    small._LoadXMLFromString(
        "<RegisterDescription><Category Name=\"Root\"><pFeature>G</pFeature></Category>"
        "<Float Name=\"G\"><Value>1</Value><Min>0</Min><Max>20</Max>"
        "<DisplayPrecision>1</DisplayPrecision></Float></RegisterDescription>");
    GenParamTreeModel smallModel(static_cast<GenApi::INodeMap *>(small));
    const QString limits = find(smallModel, QStringLiteral("G")).data(Qt::WhatsThisRole).toString();
    QVERIFY2(limits.contains(QStringLiteral("<i>Limits</i>: Min: 0.0, Max: 20.0")),
             qPrintable(limits));
    QVERIFY(!find(model, QStringLiteral("Advanced"))
                 .data(Qt::WhatsThisRole)
                 .toString()
                 .contains(QStringLiteral("Type")));
}

void tst_GenParamTreeModel::readErrorAppearsOnceAndDisappearsOnce()
{
    OrbCamTest::SystemRef sim;
    const auto cameras = sim.cameras("GEV0");
    QVERIFY(!cameras.empty());
    OrbCamTest::DeviceRef camera(cameras.front());
    QVERIFY(camera.device);
    {
        GenParamTreeModel model(camera.device->GetParams());
        const QModelIndex cell = valueCell(model, QStringLiteral("Frame_BlackLevel"));
        QVERIFY(cell.isValid());
        QSignalSpy appeared(&model, &GenParamTreeModel::errorAppeared);
        QSignalSpy disappeared(&model, &GenParamTreeModel::errorDisappeared);
        QCOMPARE(OrbCamSim::FailFeature(camera.device->GetInfo()->GetID(), "Frame_BlackLevel",
                                        OrbCamSim::FailRead),
                 OrbCamOk);
        camera.device->GetParams()->GetNodeMap()->InvalidateNodes();
        const QString shown = cell.data().toString();
        QVERIFY2(
            shown.contains(QStringLiteral("simulated read failure of feature 'Frame_BlackLevel'")),
            qPrintable(shown));
        cell.data(); // repainting does not announce it again
        QCOMPARE(appeared.count(), 1);
        QCOMPARE(appeared.at(0).at(1).toString(), QStringLiteral("Frame_BlackLevel"));
        QCOMPARE(appeared.at(0).at(3).toInt(), int(Qt::DisplayRole));
        QCOMPARE(cell.data(Qt::ForegroundRole).value<QBrush>().color(), QColor(255, 0, 0));
        QCOMPARE(cell.sibling(cell.row(), 0).data(Qt::ForegroundRole).value<QBrush>().color(),
                 QColor(255, 0, 0));
        QCOMPARE(cell.data(Qt::ToolTipRole).toString(), shown);
        QVERIFY(model.errors().hasErrors(QStringLiteral("Frame_BlackLevel")));

        OrbCamSim::ClearFailures(camera.device->GetInfo()->GetID());
        QCOMPARE(cell.data().toString(), QStringLiteral("16"));
        cell.data();
        QCOMPARE(disappeared.count(), 1);
        QCOMPARE(disappeared.at(0).at(2).toInt(), int(Qt::DisplayRole));
        QVERIFY(!cell.sibling(cell.row(), 0).data(Qt::ForegroundRole).isValid());
    }
}

void tst_GenParamTreeModel::writeErrorIsId256()
{
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    const QModelIndex cell = valueCell(model, QStringLiteral("ExposureTime"));
    QSignalSpy appeared(&model, &GenParamTreeModel::errorAppeared);
    QSignalSpy disappeared(&model, &GenParamTreeModel::errorDisappeared);
    QVERIFY(!model.setData(cell, qlonglong(15))); // off the increment
    QVERIFY(!model.setData(cell, qlonglong(15)));
    QCOMPARE(appeared.count(), 1);
    QCOMPARE(appeared.at(0).at(3).toInt(), WriteErrorId);
    QVERIFY2(appeared.at(0).at(2).toString().contains(QStringLiteral("Node 'ExposureTime'")),
             qPrintable(appeared.at(0).at(2).toString()));
    QCOMPARE(cell.data(Qt::ToolTipRole).toString(), appeared.at(0).at(2).toString());
    QVERIFY(model.setData(cell, qlonglong(20)));
    QCOMPARE(disappeared.count(), 1);
    QCOMPARE(disappeared.at(0).at(2).toInt(), WriteErrorId);
    QVERIFY(!model.errors().hasErrors(QStringLiteral("ExposureTime")));

    GenParamErrorController errors;
    QVERIFY(errors.SetError(QStringLiteral("A"), QStringLiteral("first"), 0));
    QVERIFY(!errors.SetError(QStringLiteral("A"), QStringLiteral("second"), 0));
    QCOMPARE(errors.firstError(QStringLiteral("A")), QStringLiteral("first"));
    QVERIFY(!errors.ClearError(QStringLiteral("B"), 0));
    QVERIFY(!errors.ClearError(QStringLiteral("A"), 2));
    QVERIFY(errors.ClearError(QStringLiteral("A"), 0));
    QCOMPARE(errors.count(), 0);
}

// The value cells a spy's dataChanged signals cover, by node name.
static QStringList changedNames(const QSignalSpy &spy)
{
    QStringList names;
    for (const QList<QVariant> &args : spy) {
        const QModelIndex top = args.at(0).toModelIndex();
        const QModelIndex bottom = args.at(1).toModelIndex();
        for (int row = top.row(); row <= bottom.row(); ++row) {
            auto *value = top.sibling(row, 0).data(ValuePointerRole).value<GenApi::IValue *>();
            names << QString::fromUtf8(value->GetNode()->GetName().c_str());
        }
    }
    names.sort();
    return names;
}

// Changes are announced on the next event-loop turn, one signal per
// category covering its changed rows.
void tst_GenParamTreeModel::nodeChangeNotifiesTheValueCell()
{
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    GenApi::CIntegerPtr(device.node("ExposureTime"))->SetValue(100);
    QCOMPARE(changed.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(changed.count(), 1);
    const QModelIndex cell = changed.at(0).at(0).toModelIndex();
    QCOMPARE(cell, valueCell(model, QStringLiteral("ExposureTime")));
    QCOMPARE(changed.at(0).at(1).toModelIndex(), cell);
    QCOMPARE(changed.at(0).at(2).value<QVector<int>>(), QVector<int>());
    // A feature in two categories shares one record: one registration, one
    // notification.
    changed.clear();
    GenApi::CFloatPtr(device.node("Gain"))->SetValue(3);
    QCoreApplication::processEvents();
    QCOMPARE(changedNames(changed), QStringList({ QStringLiteral("Gain") }));
    // A node that is not in the tree is ignored.
    changed.clear();
    GenApi::CIntegerPtr(device.node("Zero"))->SetValue(0);
    QCoreApplication::processEvents();
    // Only what depends on it: Missing, Unavailable, and AnalogGain through
    // the availability of one of its entries (with any rows between them in
    // their category).
    const QStringList names = changedNames(changed);
    for (const char *name : { "Missing", "Unavailable", "AnalogGain" })
        QVERIFY2(names.contains(QString::fromLatin1(name)), qPrintable(names.join(u',')));
    QVERIFY(!names.contains(QStringLiteral("ExposureTime")));
    // Polling a changed register reaches the cell too.
    changed.clear();
    GenApi::CIntegerPtr(device.node("Temperature"))->GetValue();
    const int32_t warmer = 31;
    device.port.Write(&warmer, 0x118, 4);
    device.map._Poll(100);
    QCoreApplication::processEvents();
    QCOMPARE(changedNames(changed), QStringList({ QStringLiteral("Temperature") }));
    QCOMPARE(valueCell(model, QStringLiteral("Temperature")).data().toString(),
             QStringLiteral("31 C"));
}

// Many changes in one turn become one signal per category, in row order.
void tst_GenParamTreeModel::manyChangesOneSignalPerCategory()
{
    std::string body = "<Category Name=\"Root\"><pFeature>A</pFeature><pFeature>B</pFeature>"
                       "</Category>";
    for (const char *category : { "A", "B" }) {
        body += "<Category Name=\"" + std::string(category) + "\">";
        for (int i = 0; i < 10; ++i)
            body += "<pFeature>" + std::string(category) + std::to_string(i) + "</pFeature>";
        body += "</Category>";
        for (int i = 0; i < 10; ++i)
            body += "<Integer Name=\"" + std::string(category) + std::to_string(i)
                + "\"><Value>0</Value></Integer>";
    }
    GenApi::CNodeMapRef map;
    map._LoadXMLFromString(("<RegisterDescription>" + body + "</RegisterDescription>").c_str());
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(map));
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    for (const char *name : { "B7", "A3", "B2", "A8", "A3" })
        GenApi::CIntegerPtr(map._GetNode(name))->SetValue(1);
    QCoreApplication::processEvents();
    QCOMPARE(changed.count(), 2);
    QStringList ranges;
    for (const QList<QVariant> &args : changed)
        ranges << args.at(0)
                      .toModelIndex()
                      .sibling(args.at(0).toModelIndex().row(), 0)
                      .data()
                      .toString()
                + QLatin1Char('-')
                + args.at(1)
                      .toModelIndex()
                      .sibling(args.at(1).toModelIndex().row(), 0)
                      .data()
                      .toString();
    ranges.sort();
    QCOMPARE(ranges, QStringList({ QStringLiteral("A3-A8"), QStringLiteral("B2-B7") }));
    // A model torn down with an announcement pending announces nothing.
    GenApi::CIntegerPtr(map._GetNode("A1"))->SetValue(2);
}

void tst_GenParamTreeModel::changeOnAnotherThreadIsQueued()
{
    TestDevice device;
    GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
    QThread *deliveredOn = nullptr;
    int deliveries = 0;
    connect(&model, &QAbstractItemModel::dataChanged, this, [&] {
        deliveredOn = QThread::currentThread();
        ++deliveries;
    });
    std::thread worker([&] { GenApi::CIntegerPtr(device.node("ExposureTime"))->SetValue(500); });
    worker.join();
    QCOMPARE(deliveries, 0); // not from the worker thread
    QTRY_COMPARE(deliveries, 1);
    QCOMPARE(deliveredOn, QThread::currentThread());
}

void tst_GenParamTreeModel::callbacksStopWithTheModel()
{
    TestDevice device;
    {
        GenParamTreeModel model(static_cast<GenApi::INodeMap *>(device.map));
        QVERIFY(model.rowCount() > 0);
    }
    // A callback left behind would reach the destroyed model here; the
    // sanitizers make that a failure.
    GenApi::CIntegerPtr(device.node("ExposureTime"))->SetValue(200);
    GenApi::CFloatPtr(device.node("Gain"))->SetValue(1);
    // And one made on another thread must not deliver to the dead model.
    {
        auto model
            = std::make_unique<GenParamTreeModel>(static_cast<GenApi::INodeMap *>(device.map));
        std::thread worker(
            [&] { GenApi::CIntegerPtr(device.node("ExposureTime"))->SetValue(300); });
        worker.join();
        model.reset();
    }
    QCoreApplication::processEvents();
}

// Views are built and torn down on the GUI thread while a host's thread
// writes and polls the same camera and the camera is lost and regained
// (events from the API's thread): node callbacks then fire during each
// build. Run under ThreadSanitizer too; any access to the model's items
// from the other threads is a reported race.
void tst_GenParamTreeModel::viewsBuiltWhileAnotherThreadChangesTheCamera()
{
    OrbCamTest::SystemRef sim;
    const auto cameras = sim.cameras("U3V0");
    QVERIFY(!cameras.empty());
    OrbCamTest::DeviceRef camera(cameras.front());
    QVERIFY(camera.device);
    GenApi::INodeMap *map = camera.params()->GetNodeMap();
    QVERIFY(map);
    GenApi::CIntegerPtr exposure(map->GetNode("ExposureTime"));
    QVERIFY(exposure);
    const std::string id = cameras.front()->GetID();
    const int64_t lowest = exposure->GetMin();
    const int64_t step = std::max<int64_t>(exposure->GetInc(), 1);

    std::atomic<bool> stop { false };
    std::atomic<int64_t> lastWritten { -1 };
    std::thread host([&] {
        for (int64_t i = 0; !stop; ++i) {
            try {
                const int64_t value = lowest + (i % 50) * step;
                exposure->SetValue(value);
                lastWritten = value;
                map->Poll(10);
                if (i % 16 == 0)
                    OrbCamSim::LoseCamera(id);
                else if (i % 16 == 8)
                    OrbCamSim::RegainCamera(id);
            } catch (const GenICam::GenericException &) {
                // the camera is away for now
            }
        }
        OrbCamSim::RegainCamera(id);
        exposure->SetValue(lowest + step);
        lastWritten = lowest + step;
    });
    for (int i = 0; i < 40; ++i) {
        OrbGenParamTreeView view(map);
        view.setVisibility(Guru);
        view.treeView()->expandAll();
        QCoreApplication::processEvents();
    }
    stop = true;
    host.join();
    QCOMPARE(lastWritten.load(), lowest + step);

    // A view built afterwards shows the camera as it is.
    OrbGenParamTreeView view(map);
    view.setVisibility(Guru);
    const QAbstractItemModel *model = view.treeView()->model();
    const QModelIndex name = find(*model, QStringLiteral("ExposureTime"));
    QVERIFY(name.isValid());
    const QString expected
        = withUnit(QString::number(lowest + step), QString::fromUtf8(exposure->GetUnit()));
    QTRY_COMPARE(name.sibling(name.row(), 1).data().toString(), expected);
}

void tst_GenParamTreeModel::arrayConstructor()
{
    OrbCamTest::SystemRef sim;
    const auto cameras = sim.cameras("U3V0");
    QVERIFY(!cameras.empty());
    OrbCamTest::DeviceRef camera(cameras.front());
    QVERIFY(camera.device);
    {
        GenParamTreeModel model(camera.device->GetParams());
        CheckedModelTester tester(&model);
        QCOMPARE(tester.findings(), QStringList());
        QCOMPARE(valueCell(model, QStringLiteral("DeviceSerialNumber")).data().toString(),
                 QStringLiteral("M1-2001"));
        QCOMPARE(valueCell(model, QStringLiteral("Gain")).data().toString(),
                 QStringLiteral("2.5 dB"));
        QVERIFY(!find(model, QStringLiteral("FrameAB_Selector")).isValid());
    }
}

QTEST_MAIN(tst_GenParamTreeModel)
#include "tst_genparamtreemodel.moc"
