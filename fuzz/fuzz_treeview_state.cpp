// Any text handed to the tree view as a saved state: loadState either
// restores it or changes nothing, never crashes, never throws anything but
// the std::invalid_argument its interface names, and never lets the window
// or its panes grow beyond what a screen can hold.
#include <OrbGui/orbgenparamtreeview.h>

#include <GenApi/GenApi.h>

#include <QApplication>
#include <QHeaderView>
#include <QTreeView>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#ifndef ORB_TEST_DESCRIPTION
#error "ORB_TEST_DESCRIPTION must name the description the view shows"
#endif

namespace {

void quietMessages(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtFatalMsg) {
        fprintf(stderr, "%s\n", qPrintable(message));
        abort();
    }
}

struct Fixture {
    GenApi::CNodeMapRef map;
    std::vector<std::unique_ptr<GenApi::CMemoryPort>> ports;
    std::unique_ptr<OrbGui::OrbGenParamTreeView> view;
    std::string initial;
    QSize initialSize;
};

Fixture *fixture = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(quietMessages);
    static QApplication app(*argc, *argv);
    fixture = new Fixture;
    fixture->map._LoadXMLFromFile(ORB_TEST_DESCRIPTION);
    fixture->ports = GenApi::ConnectMemoryPorts(fixture->map);
    fixture->view = std::make_unique<OrbGui::OrbGenParamTreeView>(
        static_cast<GenApi::INodeMap *>(fixture->map));
    fixture->view->resize(600, 500);
    fixture->view->show();
    QCoreApplication::processEvents();
    fixture->initial = fixture->view->saveState();
    fixture->initialSize = fixture->view->size();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    OrbGui::OrbGenParamTreeView &view = *fixture->view;
    const std::string state(reinterpret_cast<const char *>(data), size);
    try {
        view.loadState(state.c_str());
    } catch (const std::invalid_argument &) {
    }
    QCoreApplication::processEvents();
    if (view.size() != fixture->initialSize) {
        fprintf(stderr, "the state resized the window to %dx%d\n", view.width(), view.height());
        abort();
    }
    // What it restored saves and restores again unchanged.
    const std::string saved = view.saveState();
    view.loadState(saved.c_str());
    if (saved != view.saveState()) {
        fprintf(stderr, "a saved state does not restore itself:\n%s\n", saved.c_str());
        abort();
    }
    view.loadState(fixture->initial.c_str());
    return 0;
}
