// The plain entry points of the parameter tree view.
#include <OrbGui/orbgenparamtreeview.h>
#include <OrbGui/orbgenparamtreeviewapi.h>

#include <QApplication>
#include <QGuiApplication>
#include <QWindow>

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>

namespace OrbGui {

namespace {

// Where a foreign window lies on the screen, asked of the X server on a
// connection of our own: Qt's wrapper of a foreign window does not know its
// size. Empty when it cannot be told (another platform, a vanished window).
QRect foreignGeometry(WId window)
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return QRect();
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    QRect rect;
    if (!xcb_connection_has_error(connection)) {
        const auto id = static_cast<xcb_window_t>(window);
        if (xcb_get_geometry_reply_t *geometry
            = xcb_get_geometry_reply(connection, xcb_get_geometry(connection, id), nullptr)) {
            if (xcb_translate_coordinates_reply_t *origin = xcb_translate_coordinates_reply(
                    connection, xcb_translate_coordinates(connection, id, geometry->root, 0, 0),
                    nullptr)) {
                rect = QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height);
                std::free(origin);
            }
            std::free(geometry);
        }
    }
    xcb_disconnect(connection);
    return rect;
}

} // namespace

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
    auto *view = new OrbGenParamTreeView(object, nullptr);
    view->setWindowTitle(title);
    view->setModal(false);
    if (parentWindowId != 0) {
        // Deliberately not the container of the host's window that the
        // literal steps build: wrapping a foreign window in a container
        // re-parents it into Qt's window, out of the host's own. The host's
        // window stays where it is; the view is a window of its own,
        // transient for the host's (above it, centred on it).
        QWindow *foreign = QWindow::fromWinId(static_cast<WId>(parentWindowId));
        view->winId(); // the view's native window, to be made transient
        view->windowHandle()->setTransientParent(foreign);
        const qreal ratio = view->devicePixelRatioF();
        const QRect host = foreignGeometry(static_cast<WId>(parentWindowId));
        if (host.isValid())
            view->move(QPoint(qRound(host.center().x() / ratio), qRound(host.center().y() / ratio))
                       - view->rect().center());
        // The wrapper (not the host's window) lives as long as the view
        // refers to it.
        QObject::connect(view, &QObject::destroyed, [foreign] { delete foreign; });
    }
    view->show();
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
