// The plain entry points of the parameter tree view.
#include <OrbGui/orbgenparamtreeview.h>
#include <OrbGui/orbgenparamtreeviewapi.h>

#include "common/flatentry.h"

namespace OrbGui {

template <class T>
IOrbGenParamTreeView *CreateGenParamTreeView(T *object, const QString &title,
                                             unsigned long parentWindowId)
{
    ensureApplication();
    auto *view = new OrbGenParamTreeView(object, nullptr);
    view->setWindowTitle(title);
    view->setModal(false);
    // Deliberately not the container of the host's window that the literal
    // steps build: wrapping a foreign window in a container re-parents it
    // into Qt's window, out of the host's own. The view is a window of its
    // own, transient for the host's.
    placeOverForeignWindow(view, parentWindowId);
    view->show();
    return view;
}

} // namespace OrbGui

extern "C" {

OrbGui::IOrbGenParamTreeView *CreateGenParamTreeViewForNodemapA(GenApi_3_0::INodeMap *nodeMap,
                                                                const char *title,
                                                                unsigned long parentWindowId)
{
    return OrbGui::CreateGenParamTreeView(nodeMap, OrbGui::titleFromUtf8(title), parentWindowId);
}

OrbGui::IOrbGenParamTreeView *CreateGenParamTreeViewForNodemapW(GenApi_3_0::INodeMap *nodeMap,
                                                                const wchar_t *title,
                                                                unsigned long parentWindowId)
{
    return OrbGui::CreateGenParamTreeView(nodeMap, OrbGui::titleFromUcs4(title), parentWindowId);
}

OrbGui::IOrbGenParamTreeView *CreateGenParamTreeViewForArrayA(OrbGenParam::Array *array,
                                                              const char *title,
                                                              unsigned long parentWindowId)
{
    return OrbGui::CreateGenParamTreeView(array, OrbGui::titleFromUtf8(title), parentWindowId);
}

OrbGui::IOrbGenParamTreeView *CreateGenParamTreeViewForArrayW(OrbGenParam::Array *array,
                                                              const wchar_t *title,
                                                              unsigned long parentWindowId)
{
    return OrbGui::CreateGenParamTreeView(array, OrbGui::titleFromUcs4(title), parentWindowId);
}

void DestroyGenParamTreeView(OrbGui::IOrbGenParamTreeView *view)
{
    delete view;
}
}
