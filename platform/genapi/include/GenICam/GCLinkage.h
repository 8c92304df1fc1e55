/// \file
/// Symbol visibility for the GenICam base and GenApi libraries.
///
/// The libraries are built with hidden visibility; everything a host may use is
/// marked here. Interfaces are marked too, so that their type information is
/// unique across shared objects and dynamic_cast between them works.
#ifndef GENICAM_GCLINKAGE_H
#define GENICAM_GCLINKAGE_H

#if defined(__GNUC__) || defined(__clang__)
#define GCBASE_API __attribute__((visibility("default")))
#define GENAPI_DECL __attribute__((visibility("default")))
#define GENAPI_DECL_ABSTRACT __attribute__((visibility("default")))
#else
#define GCBASE_API
#define GENAPI_DECL
#define GENAPI_DECL_ABSTRACT
#endif

#ifndef interface
#define interface struct
#endif

#endif
