// Faults that a test orders from the stand-in host.
#pragma once

// Counts a request for memory and tells whether it is to be refused.
bool RefuseAllocation();

// Whether every resize moves its block.
bool Moving();
