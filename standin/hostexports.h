// The host interface as this library provides it. It stands before any other of
// our headers, for whoever includes the interface first decides its visibility.
#pragma once

#pragma GCC visibility push(default)
#include <tessel/host.h>
#pragma GCC visibility pop

#include <tessel/standin.h>

// Host codes.
inline constexpr int32_t kMissing = 1;
inline constexpr int32_t kRefused = 2;
