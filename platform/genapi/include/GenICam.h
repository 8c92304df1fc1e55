/// \file
/// The GenICam base: gcstring and the exception hierarchy.
/// Namespace GenICam_3_0, aliased as GenICam.
#ifndef GENICAM_H
#define GENICAM_H

#include <GenICam/GCLinkage.h>
#include <GenICam/GCString.h>
#include <GenICam/GCException.h>

#endif
