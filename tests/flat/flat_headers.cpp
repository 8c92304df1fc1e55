// Compiled on its own with only the library's include folders (no Qt, no
// GenApi, no OrbCam): a host in plain C++ includes these and nothing more.
#include <OrbGui/orbcameraselectorapi.h>
#include <OrbGui/orbgenparamtreeviewapi.h>

int main()
{
    // Taking the addresses checks the declarations, not just the names.
    auto create = &CreateGenParamTreeViewForNodemapA;
    auto destroy = &DestroyGenParamTreeView;
    auto select = &SelectCameraA;
    OrbGui::IOrbGenParamTreeView *view = nullptr;
    OrbGui::Visibility level = OrbGui::Guru;
    return (create && destroy && select && !view && level == OrbGui::Guru) ? 0 : 1;
}
