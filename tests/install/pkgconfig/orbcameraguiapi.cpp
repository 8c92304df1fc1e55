// Built with `pkg-config --cflags --libs orbcameraguiapi` only: opens the
// parameter tree view of a camera model through the flat entry points and
// closes it again.
#include <GenApi/GenApi.h>
#include <OrbGui/orbgenparamtreeviewapi.h>

#include <cstdio>
#include <cstdlib>
#include <string>

int main()
{
    const char *dir = std::getenv("ORBCAM_CAMERAS_DIR");
    if (!dir)
        return 2;
    GenApi::CNodeMapRef map;
    map._LoadXMLFromFile((std::string(dir) + "/orbsim-m1300.xml").c_str());
    const auto ports = GenApi::ConnectMemoryPorts(map);
    OrbGui::IOrbGenParamTreeView *view
        = CreateGenParamTreeViewForNodemapA(static_cast<GenApi::INodeMap *>(map), "pkg-config", 0);
    if (!view)
        return 1;
    view->setVisibility(OrbGui::Guru);
    const bool guru = view->visibility() == OrbGui::Guru;
    DestroyGenParamTreeView(view);
    std::printf("tree view %s\n", guru ? "works" : "does not keep its level");
    return guru ? 0 : 1;
}
