// A fuzzed description behind the parameter model and its filter proxy: the
// model either refuses the map with a GenICam exception or builds a tree
// that Qt's model checker accepts (but for the two deviations the model
// has on purpose, see tests/genparam/modeltest.h), whose every cell and
// role can be read,
// whose editors can be created, and that survives visibility and name
// filter changes.
#include "genparam/genparamtreemodel.h"
#include "genparam/genparamtreevisibilityfilterproxymodel.h"
#include "modeltest.h"

#include <GenApi/GenApi.h>

#include <QApplication>
#include <QWidget>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

void quietMessages(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    // Qt's fatal messages must reach the fuzzer as a crash; everything else
    // is noise at this rate.
    if (type == QtFatalMsg) {
        fprintf(stderr, "%s\n", qPrintable(message));
        abort();
    }
}

// Every row below parent, depth first with an explicit stack (a hostile
// description may nest categories very deeply).
void readEverything(const QAbstractItemModel &model)
{
    static const int roles[]
        = { Qt::DisplayRole,    Qt::EditRole,     Qt::ToolTipRole,         Qt::StatusTipRole,
            Qt::WhatsThisRole,  Qt::FontRole,     Qt::ForegroundRole,      Qt::BackgroundRole,
            Qt::DecorationRole, Qt::SizeHintRole, OrbGui::ValuePointerRole };
    std::vector<QModelIndex> pending { QModelIndex() };
    while (!pending.empty()) {
        const QModelIndex parent = pending.back();
        pending.pop_back();
        for (int row = 0; row < model.rowCount(parent); ++row) {
            for (int column = 0; column < model.columnCount(parent); ++column) {
                const QModelIndex index = model.index(row, column, parent);
                for (int role : roles)
                    model.data(index, role);
                (void)model.flags(index);
                const QVariant editor = model.data(index, OrbGui::ControlDataRole);
                if (editor.canConvert<OrbGui::ControlData>())
                    delete editor.value<OrbGui::ControlData>().control;
            }
            pending.push_back(model.index(row, 0, parent));
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(quietMessages);
    static QApplication app(*argc, *argv);
    QLocale::setDefault(QLocale::c());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace GenApi;
    CNodeMapRef map;
    try {
        map._LoadXMLFromString(std::string(reinterpret_cast<const char *>(data), size).c_str());
    } catch (const GenICam::GenericException &) {
        return 0;
    }
    const auto ports = ConnectMemoryPorts(map);
    std::unique_ptr<OrbGui::GenParamTreeModel> model;
    try {
        model = std::make_unique<OrbGui::GenParamTreeModel>(static_cast<INodeMap *>(map));
    } catch (const GenICam::GenericException &) {
        return 0;
    }
    ModelTest::CheckedModelTester modelCheck(model.get());
    OrbGui::GenParamTreeVisibilityFilterProxyModel proxy;
    proxy.setSourceModel(model.get());
    readEverything(*model);
    proxy.setFilterVisibility(3);
    readEverything(proxy);
    proxy.setFilterText(QStringLiteral("*a*"));
    proxy.setFilterVisibility(0);
    readEverything(proxy);
    proxy.setFilterText(QString());
    // Node callbacks reach the model through the event loop.
    map._Poll(1000);
    QCoreApplication::processEvents();
    readEverything(proxy);
    const QStringList findings = modelCheck.findings() + ModelTest::wrongParents(*model);
    if (!findings.isEmpty()) {
        fprintf(stderr, "%s\n", qPrintable(findings.join(QLatin1Char('\n'))));
        abort();
    }
    return 0;
}
