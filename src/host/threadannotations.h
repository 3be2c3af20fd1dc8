// Clang's thread-safety attributes; nothing elsewhere. They declare which lock
// guards what, and a Clang build checks it.
#pragma once

#if defined(__clang__)
#define TESSEL_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define TESSEL_THREAD_ATTRIBUTE(x)
#endif

#define TESSEL_CAPABILITY(x) TESSEL_THREAD_ATTRIBUTE(capability(x))
#define TESSEL_SCOPED_CAPABILITY TESSEL_THREAD_ATTRIBUTE(scoped_lockable)
#define TESSEL_GUARDED_BY(x) TESSEL_THREAD_ATTRIBUTE(guarded_by(x))
#define TESSEL_REQUIRES(x) TESSEL_THREAD_ATTRIBUTE(requires_capability(x))
#define TESSEL_ACQUIRE(x) TESSEL_THREAD_ATTRIBUTE(acquire_capability(x))
#define TESSEL_RELEASE() TESSEL_THREAD_ATTRIBUTE(release_capability())
