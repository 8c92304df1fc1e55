// A plain C++ program, without Qt in its code or its build, that has its
// own X window and opens the parameter tree view for a camera description
// through the library's flat entry points, above that window.
//
//   example-plain-host FILE.xml
//
// The view is a window of its own, kept above the host's and centred on it;
// the host's window is never re-parented, moved or hidden. This host has no
// Qt event loop, so it uses the view through its interface and closes it
// again; a host that keeps the view open runs Qt's loop (see the README).
#include <GenApi/GenApi.h>
#include <OrbGui/orbgenparamtreeviewapi.h>

#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: example-plain-host FILE.xml\n");
        return 2;
    }

    // The host's own window.
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) {
        std::fprintf(stderr, "example-plain-host: no X display\n");
        xcb_disconnect(connection);
        return 2;
    }
    xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 100, 100, 800, 600, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    const char title[] = "Plain host";
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, std::strlen(title), title);
    xcb_map_window(connection, window);
    xcb_flush(connection);

    int status = 0;
    try {
        GenApi::CNodeMapRef map;
        map._LoadXMLFromFile(argv[1]);
        const auto ports = GenApi::ConnectMemoryPorts(map);

        OrbGui::IOrbGenParamTreeView *view = CreateGenParamTreeViewForNodemapA(
            static_cast<GenApi::INodeMap *>(map), "Camera features", window);
        if (!view) {
            std::fprintf(stderr, "example-plain-host: no view\n");
            status = 1;
        } else {
            view->setVisibility(OrbGui::Expert);
            std::printf("view open at level %d, state %s\n", int(view->visibility()),
                        view->saveState());
            DestroyGenParamTreeView(view);
        }
    } catch (const GenICam::GenericException &e) {
        std::fprintf(stderr, "example-plain-host: %s\n", e.GetDescription());
        status = 1;
    }

    // The host's window is still there, untouched.
    xcb_get_geometry_reply_t *geometry
        = xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr);
    if (!geometry || geometry->width != 800 || geometry->height != 600) {
        std::fprintf(stderr, "example-plain-host: the host's window was changed\n");
        status = 1;
    }
    std::free(geometry);
    xcb_destroy_window(connection, window);
    xcb_disconnect(connection);
    return status;
}
