#include "flatentry.h"

#include <QApplication>
#include <QGuiApplication>
#include <QWidget>
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

void ensureApplication()
{
    if (QCoreApplication::instance())
        return;
    // Hosts without Qt of their own: the application object lives as long
    // as the process. Its arguments must outlive it as well.
    static int argc = 0;
    static char *argv[] = { nullptr };
    new QApplication(argc, argv, 0x50909);
}

QString titleFromUtf8(const char *title)
{
    return title ? QString::fromUtf8(title, static_cast<int>(std::strlen(title))) : QString();
}

QString titleFromUcs4(const wchar_t *title)
{
    return title ? QString::fromUcs4(reinterpret_cast<const uint *>(title)) : QString();
}

void placeOverForeignWindow(QWidget *window, unsigned long hostWindowId)
{
    if (hostWindowId == 0)
        return;
    QWindow *foreign = QWindow::fromWinId(static_cast<WId>(hostWindowId));
    if (!foreign)
        return;
    window->winId(); // our native window, to be made transient
    window->windowHandle()->setTransientParent(foreign);
    const QRect host = foreignGeometry(static_cast<WId>(hostWindowId));
    if (host.isValid()) {
        const qreal ratio = window->devicePixelRatioF();
        window->move(QPoint(qRound(host.center().x() / ratio), qRound(host.center().y() / ratio))
                     - window->rect().center());
    }
    // The wrapper (not the host's window) lives as long as ours refers to it.
    QObject::connect(window, &QObject::destroyed, [foreign] { delete foreign; });
}

} // namespace OrbGui
