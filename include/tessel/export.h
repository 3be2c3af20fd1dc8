/* Linkage and visibility of the exported functions. */
#ifndef TESSEL_EXPORT_H
#define TESSEL_EXPORT_H

#include <stdint.h>

#ifdef __cplusplus
#define TSX_API extern "C" __attribute__((visibility("default")))
#else
#define TSX_API extern __attribute__((visibility("default")))
#endif

/* A reference id. 0 is no object. */
typedef uint64_t TSXRefId;

/* 0, or one of the negative codes of <tessel/status.h>; a few functions pass on
 * a positive host code, and their entries say so. */
typedef int32_t TSXStatus;

#endif
