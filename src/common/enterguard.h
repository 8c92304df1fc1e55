// Enter in a dialog commits the field it is pressed in and nothing else.
//
// A QDialog passes an Enter that its focused field does not take on to its
// default button, and makes the first push button its default when none is
// set: typing a number and pressing Enter then also starts a pulse
// generator or fires a trigger. With the guard installed, an Enter that
// reaches the dialog clicks a push button only when that button has the
// focus; from any other control it ends there. Escape still closes the
// dialog.
#ifndef ORBGUI_ENTERGUARD_H
#define ORBGUI_ENTERGUARD_H

class QDialog;

namespace OrbGui {

// Installs the guard on `dialog` (it lives as the dialog's child). Whenever
// the dialog shows, its push buttons lose the default-button role, so that
// none is drawn as the one Enter would press. GUI thread.
void commitOnlyOnEnter(QDialog *dialog);

} // namespace OrbGui

#endif
