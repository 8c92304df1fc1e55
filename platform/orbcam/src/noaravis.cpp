// A build without Aravis: no real-camera backend.
#include "backend.h"

#include <stdexcept>

namespace OrbCamImpl {

std::unique_ptr<Backend> createAravisBackend()
{
    throw std::runtime_error("this build has no real-camera backend");
}

bool aravisBuiltIn()
{
    return false;
}

} // namespace OrbCamImpl
