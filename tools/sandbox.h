// What the client forbids itself, so that a document cannot make it do it. The
// parser resolves what a document refers to inside the library, where the
// interface has no say but for the external DTD; so the kernel enforces these
// rules for the whole process. Both throw a CFailure where it cannot.
#ifndef TESSEL_TOOLS_SANDBOX_H
#define TESSEL_TOOLS_SANDBOX_H

#include <string>
#include <vector>

// From here on no socket can be made, so nothing is fetched and nothing is told
// to a name server.
void RefuseNetwork();

// From here on no file but these can be opened for reading.
void AllowReadingOnly(const std::vector<std::string>& paths);

#endif
