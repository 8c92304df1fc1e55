/// \file
/// Error codes of the camera access API.
///
/// Every operation that can fail returns (or reports through an out-pointer)
/// an OrbCamErr: 0 for success, a negative code for a failure. GenICam
/// exceptions raised by a camera's node map are mapped by kind:
///
///   AccessException, TimeoutException        -> OrbCamErrGenICamAccess      (-40202)
///   DynamicCastException (wrong kind)         -> OrbCamErrGenICamType        (-40203)
///   OutOfRangeException                       -> OrbCamErrGenICamOutOfRange  (-40204)
///   InvalidArgumentException                  -> OrbCamErrGenICamArgument    (-40206)
///   PropertyException, LogicalErrorException  -> OrbCamErrGenICamTree       (-40201)
///   any other GenericException                -> OrbCamErrGenICamGeneric     (-40200)
///
/// A parameter that does not exist is OrbCamErrGenICamUnknownParam (-40205);
/// any operation on a camera that is lost or was removed is OrbCamErrNoDevice.
#ifndef ORBCAM_ORBCAMERR_H
#define ORBCAM_ORBCAMERR_H

#include <cstdint>

#if defined(__GNUC__) || defined(__clang__)
#define ORBCAM_API __attribute__((visibility("default")))
#else
#define ORBCAM_API
#endif

typedef int32_t OrbCamErr;

enum : OrbCamErr {
    OrbCamOk = 0,
    OrbCamErrUnknown = -40001,
    OrbCamErrFileNotFound = -40002,
    OrbCamErrFileRead = -40003,
    OrbCamErrWrongConfiguration = -40004,
    OrbCamErrInvalidIndex = -40005,
    OrbCamErrNoDevice = -40006,
    OrbCamErrInvalidArgument = -40007,
    OrbCamErrInvalidState = -40051,
    OrbCamErrFlashErase = -40101,
    OrbCamErrGenICamGeneric = -40200,
    OrbCamErrGenICamTree = -40201,
    OrbCamErrGenICamAccess = -40202,
    OrbCamErrGenICamType = -40203,
    OrbCamErrGenICamOutOfRange = -40204,
    OrbCamErrGenICamUnknownParam = -40205,
    OrbCamErrGenICamArgument = -40206,
};

/// A short English text for the code ("No device", "GenICam: Access error"),
/// or "Unknown code". The text is static; never free it.
ORBCAM_API const char *OrbCam_ErrorText(OrbCamErr code);

#endif
