/// \file
/// Common declarations of libOrbCameraGuiApi: the export macro and the
/// visibility levels of the parameter tree.
#ifndef ORBGUI_ORBGUIGLOBAL_H
#define ORBGUI_ORBGUIGLOBAL_H

/// Every exported symbol of the library is marked with ORBGUI_EXPORT (from
/// a header the build generates, free of Qt); the library is built with
/// hidden visibility, so nothing else is visible.
#include <OrbGui/orbguiexport.h>

namespace OrbGui {

/// The highest GenICam visibility level the parameter tree shows. The values
/// are the GenICam levels; the view's level box lists them as "Basic",
/// "Expert" and "Guru".
enum Visibility { Beginner = 0, Expert = 1, Guru = 2 };

} // namespace OrbGui

#endif
