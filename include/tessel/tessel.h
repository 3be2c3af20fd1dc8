/* The whole interface. */
#ifndef TESSEL_TESSEL_H
#define TESSEL_TESSEL_H

#include <tessel/attributes.h>
#include <tessel/characterdata.h>
#include <tessel/collections.h>
#include <tessel/document.h>
#include <tessel/export.h>
#include <tessel/host.h>
#include <tessel/io.h>
#include <tessel/mutation.h>
#include <tessel/navigation.h>
#include <tessel/options.h>
#include <tessel/status.h>
#include <tessel/strings.h>
#include <tessel/values.h>
#include <tessel/version.h>
#include <tessel/xpath.h>

#endif
