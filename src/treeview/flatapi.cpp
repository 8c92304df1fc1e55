// The plain entry points of the parameter tree view.
#include <OrbGui/orbgenparamtreeview.h>
#include <OrbGui/orbgenparamtreeviewapi.h>

#include <QApplication>
#include <QWindow>

#include <cstring>

namespace OrbGui {

template <class T>
IOrbGenParamTreeView *CreateGenParamTreeView(T *object, const QString &title,
                                             unsigned long parentWindowId)
{
    if (!QCoreApplication::instance()) {
        // Hosts without Qt of their own: the application object lives as
        // long as the process. Its arguments must outlive it as well.
        static int argc = 0;
        static char *argv[] = { nullptr };
        new QApplication(argc, argv, 0x50909);
    }
    QWindow *foreign = nullptr;
    QWidget *parent = nullptr;
    if (parentWindowId != 0) {
        foreign = QWindow::fromWinId(static_cast<WId>(parentWindowId));
        parent = QWidget::createWindowContainer(foreign);
    }
    auto *view = new OrbGenParamTreeView(object, parent);
    view->setWindowTitle(title);
    view->setModal(false);
    view->show();
    if (foreign) {
        // Only the wrapper goes; the container widget stays the parent, and
        // goes with the view, which is all it holds.
        foreign->setParent(nullptr);
        delete foreign;
        QObject::connect(view, &QObject::destroyed, parent, &QObject::deleteLater);
    }
    return view;
}

} // namespace OrbGui

namespace {

QString fromWide(const wchar_t *title)
{
    if (!title)
        return QString();
    return QString::fromUcs4(reinterpret_cast<const uint *>(title));
}

QString fromUtf8(const char *title)
{
    return title ? QString::fromUtf8(title, static_cast<int>(std::strlen(title))) : QString();
}

} // namespace

extern "C" {

OrbGui::IOrbGenParamTreeView *CreateGenParamTreeViewForNodemapA(GenApi_3_0::INodeMap *nodeMap,
                                                                const char *title,
                                                                unsigned long parentWindowId)
{
    return OrbGui::CreateGenParamTreeView(nodeMap, fromUtf8(title), parentWindowId);
}

OrbGui::IOrbGenParamTreeView *CreateGenParamTreeViewForNodemapW(GenApi_3_0::INodeMap *nodeMap,
                                                                const wchar_t *title,
                                                                unsigned long parentWindowId)
{
    return OrbGui::CreateGenParamTreeView(nodeMap, fromWide(title), parentWindowId);
}

OrbGui::IOrbGenParamTreeView *CreateGenParamTreeViewForArrayA(OrbGenParam::Array *array,
                                                              const char *title,
                                                              unsigned long parentWindowId)
{
    return OrbGui::CreateGenParamTreeView(array, fromUtf8(title), parentWindowId);
}

OrbGui::IOrbGenParamTreeView *CreateGenParamTreeViewForArrayW(OrbGenParam::Array *array,
                                                              const wchar_t *title,
                                                              unsigned long parentWindowId)
{
    return OrbGui::CreateGenParamTreeView(array, fromWide(title), parentWindowId);
}

void DestroyGenParamTreeView(OrbGui::IOrbGenParamTreeView *view)
{
    delete view;
}
}
