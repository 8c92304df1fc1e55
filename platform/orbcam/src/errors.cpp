#include "paramarray.h"

#include <GenICam.h>

const char *OrbCam_ErrorText(OrbCamErr code)
{
    switch (code) {
    case OrbCamOk:
        return "Success";
    case OrbCamErrUnknown:
        return "Unknown error";
    case OrbCamErrFileNotFound:
        return "File not found";
    case OrbCamErrFileRead:
        return "File read error";
    case OrbCamErrWrongConfiguration:
        return "Wrong configuration";
    case OrbCamErrInvalidIndex:
        return "Invalid index";
    case OrbCamErrNoDevice:
        return "No device";
    case OrbCamErrInvalidArgument:
        return "Invalid argument";
    case OrbCamErrInvalidState:
        return "Invalid state";
    case OrbCamErrFlashErase:
        return "Flash erase error";
    case OrbCamErrGenICamGeneric:
        return "GenICam: Generic error";
    case OrbCamErrGenICamTree:
        return "GenICam: Tree error";
    case OrbCamErrGenICamAccess:
        return "GenICam: Access error";
    case OrbCamErrGenICamType:
        return "GenICam: Parameter type is invalid";
    case OrbCamErrGenICamOutOfRange:
        return "GenICam: Parameter is out of range";
    case OrbCamErrGenICamUnknownParam:
        return "GenICam: Unknown param";
    case OrbCamErrGenICamArgument:
        return "GenICam: Invalid argument";
    default:
        return "Unknown code";
    }
}

namespace OrbCamImpl {

OrbCamErr errorFor(const GenICam::GenericException &e)
{
    using namespace GenICam;
    if (dynamic_cast<const AccessException *>(&e) || dynamic_cast<const TimeoutException *>(&e))
        return OrbCamErrGenICamAccess;
    if (dynamic_cast<const DynamicCastException *>(&e))
        return OrbCamErrGenICamType;
    if (dynamic_cast<const OutOfRangeException *>(&e))
        return OrbCamErrGenICamOutOfRange;
    if (dynamic_cast<const InvalidArgumentException *>(&e))
        return OrbCamErrGenICamArgument;
    if (dynamic_cast<const PropertyException *>(&e)
        || dynamic_cast<const LogicalErrorException *>(&e))
        return OrbCamErrGenICamTree;
    return OrbCamErrGenICamGeneric;
}

} // namespace OrbCamImpl
