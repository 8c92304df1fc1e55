// Built with `pkg-config --cflags --libs orbgenapi` only: loads a camera
// model over zero-filled memory and reads a feature.
#include <GenApi/GenApi.h>

#include <cstdio>
#include <cstdlib>
#include <string>

int main()
{
    const char *dir = std::getenv("ORBCAM_CAMERAS_DIR");
    if (!dir)
        return 2;
    GenApi::CNodeMapRef map;
    map._LoadXMLFromFile((std::string(dir) + "/orbsim-c2000.xml").c_str());
    const auto ports = GenApi::ConnectMemoryPorts(map);
    GenApi::CValuePtr width(map._GetNode("Width"));
    if (!width)
        return 1;
    std::printf("Width = %s\n", width->ToString().c_str());
    return 0;
}
