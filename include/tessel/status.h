/* The status codes by name.
 *
 * Every exported function that has a result returns a TSXStatus: 0 for success or one
 * of these codes, always exactly one. Only those of <tessel/values.h> and
 * <tessel/version.h> answer with the host's codes. The host's own functions have
 * positive codes (1 missing destination, 2 allocation refused); a function that
 * passes one on says so. What each code means, who returns it and what a host
 * can do about it stands in <tessel/status_list.h>, which a program expands to
 * show the texts. */
#ifndef TESSEL_STATUS_H
#define TESSEL_STATUS_H

#include <tessel/status_list.h>

#define TSX_STATUS_ENUMERATOR(number, name, functions, meaning, advice) name = number,
typedef enum TSXStatusCode { TSX_STATUS_LIST(TSX_STATUS_ENUMERATOR) } TSXStatusCode;
#undef TSX_STATUS_ENUMERATOR

#endif
