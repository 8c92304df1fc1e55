/// \file
/// Plain entry points for the camera selector, with unmangled names, for
/// hosts that cannot use the classes: they run OrbGui::SelectCamera with a
/// UTF-8 (A) or zero-terminated UCS-4 (W) title and return the chosen camera
/// or null on cancel. Call them on the thread that runs (or will run) the GUI.
#ifndef ORBGUI_ORBCAMERASELECTORAPI_H
#define ORBGUI_ORBCAMERASELECTORAPI_H

#include <OrbGui/orbguiglobal.h>

namespace OrbCam {
class System;
class DeviceInfo;
} // namespace OrbCam

extern "C" {

ORBGUI_EXPORT OrbCam::DeviceInfo *SelectCameraA(OrbCam::System *system, const char *title,
                                                unsigned long parentWindowId, bool poll);
ORBGUI_EXPORT OrbCam::DeviceInfo *SelectCameraW(OrbCam::System *system, const wchar_t *title,
                                                unsigned long parentWindowId, bool poll);
}

#endif
