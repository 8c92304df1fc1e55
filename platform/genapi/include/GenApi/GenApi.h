/// \file
/// The GenApi 3.0 compatible interface of libOrbGenApi: load a GenICam
/// description with CNodeMapRef, connect a port, and use the nodes through
/// the smart pointers (CIntegerPtr, CFloatPtr, ...). Namespace GenApi_3_0,
/// aliased as GenApi.
#ifndef GENAPI_GENAPI_H
#define GENAPI_GENAPI_H

#include <GenICam.h>
#include <GenApi/Types.h>
#include <GenApi/Interfaces.h>
#include <GenApi/Synch.h>
#include <GenApi/NoWait.h>
#include <GenApi/Pointer.h>
#include <GenApi/NodeCallback.h>
#include <GenApi/NodeMapRef.h>
#include <GenApi/MemoryPort.h>

#endif
