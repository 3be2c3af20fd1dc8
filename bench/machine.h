// What a run is measured on, and whether something else runs there.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "runner.h"

namespace bench {

// What the figures were measured on and with, as names and values.
using CSurroundings = std::vector<std::pair<std::string, std::string>>;
CSurroundings Surroundings(const COptions& options);

// How many processors are at work, watched for a second in which this program rests; says
// so on the error output where it is too much to measure beside. Empty where the system
// does not tell.
std::string LookAround();

}  // namespace bench
