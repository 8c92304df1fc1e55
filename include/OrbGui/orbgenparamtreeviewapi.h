/// \file
/// Plain entry points for the parameter tree view, with unmangled names, for
/// hosts that cannot use the classes.
///
/// The Create functions make a QApplication when the process has none (it
/// lives as long as the process), create the view with the title (UTF-8 for
/// the A forms, zero-terminated UCS-4 for the W forms; null gives an untitled
/// window), make it a window of its own that stays above the host's native
/// window parentWindowId (an X11 window id) and is centred on it when that is
/// not 0 (the host's window is never re-parented, moved or hidden), show it
/// non-modally and return it. The host runs the event loop.
/// The node map or array must outlive the view. Call them on the thread that
/// runs the GUI event loop.
#ifndef ORBGUI_ORBGENPARAMTREEVIEWAPI_H
#define ORBGUI_ORBGENPARAMTREEVIEWAPI_H

#include <OrbGui/iorbgenparamtreeview.h>

#include <cstddef>

extern "C" {

ORBGUI_EXPORT OrbGui::IOrbGenParamTreeView *
CreateGenParamTreeViewForNodemapA(GenApi_3_0::INodeMap *nodeMap, const char *title,
                                  unsigned long parentWindowId);
ORBGUI_EXPORT OrbGui::IOrbGenParamTreeView *
CreateGenParamTreeViewForNodemapW(GenApi_3_0::INodeMap *nodeMap, const wchar_t *title,
                                  unsigned long parentWindowId);
ORBGUI_EXPORT OrbGui::IOrbGenParamTreeView *
CreateGenParamTreeViewForArrayA(OrbGenParam::Array *array, const char *title,
                                unsigned long parentWindowId);
ORBGUI_EXPORT OrbGui::IOrbGenParamTreeView *
CreateGenParamTreeViewForArrayW(OrbGenParam::Array *array, const wchar_t *title,
                                unsigned long parentWindowId);
/// Destroys a view made by a Create function; null is ignored.
ORBGUI_EXPORT void DestroyGenParamTreeView(OrbGui::IOrbGenParamTreeView *view);
}

#endif
