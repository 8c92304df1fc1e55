// What the plain entry points share: a QApplication for hosts without one,
// titles from plain strings, and the placement of our window over a host's
// foreign native window.
#ifndef ORBGUI_FLATENTRY_H
#define ORBGUI_FLATENTRY_H

#include <QString>

class QWidget;

namespace OrbGui {

// Creates the process's QApplication when there is none; it lives as long as
// the process.
void ensureApplication();

// A title from UTF-8, or from a zero-terminated UCS-4 string; null gives an
// empty title.
QString titleFromUtf8(const char *title);
QString titleFromUcs4(const wchar_t *title);

// Makes `window` (a top-level widget of ours) transient for the host's native
// window `hostWindowId` and centres it on that window. The host's window is
// never re-parented, moved or hidden: wrapping it in a container, as a child
// widget would need, takes it out of the host's own window. Nothing happens
// for id 0.
void placeOverForeignWindow(QWidget *window, unsigned long hostWindowId);

} // namespace OrbGui

#endif
