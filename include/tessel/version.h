/* The version record. */
#ifndef TESSEL_VERSION_H
#define TESSEL_VERSION_H

#include <stdint.h>
#include <tessel/export.h>
#include <tessel/host.h>

/* The block of a host array of host strings: 8 bytes, then `count` handles. The
 * array owns its strings. */
typedef struct HStrArrayRecord {
  int32_t count;
  int32_t zero;
  HStr items[1];
} HStrArrayRecord;
typedef HStrArrayRecord** HStrArray;

/* Makes *versionsOut hold one string each for the library ("Tessel 15.0.0") and
 * for every library below it ("Xerces-C 3.2.4"), with the version it was built
 * with. Those libraries tell no version at run time; their sonames see to it that
 * the first two numbers are the ones that run. The handle is created, resized or reused; strings
 * that it held before are disposed of, so an array of this function may be passed again. Returns 0
 * or the host code of a memory refusal; the array is then disposed of and null. Any thread may
 * call. */
TSX_API int32_t nKelVersion_TESSEL_getVersionStringArray(HStrArray* versionsOut);

#endif
