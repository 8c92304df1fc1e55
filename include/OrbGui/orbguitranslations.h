/// \file
/// The library's texts in the user's language.
///
/// The library's windows are written in English; translations (German so
/// far) are built with the library and installed beside the camera models.
/// An application installs them once, before it creates the library's
/// windows, usually right after creating its QApplication.
#ifndef ORBGUI_ORBGUITRANSLATIONS_H
#define ORBGUI_ORBGUITRANSLATIONS_H

#include <OrbGui/orbguiglobal.h>

#include <QLocale>

namespace OrbGui {

/// Installs the translation of the library's texts for `locale` into the
/// running application (which must exist; the translator belongs to it).
/// Looks in ORBGUI_TRANSLATIONS_DIR when set, else in the build tree while
/// it exists, else in the installed data folder. Returns false, changing
/// nothing, when there is no translation for the locale (English needs
/// none). Call on the GUI thread; calling it again adds nothing twice.
ORBGUI_EXPORT bool installTranslations(const QLocale &locale = QLocale());

} // namespace OrbGui

#endif
