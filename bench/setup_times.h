// How long effects take to be set up.
#pragma once

namespace qpx::bench {

// Creates an engine of every built effect for a photograph, several times over, and prints a table.
void printSetupTimes();

}  // namespace qpx::bench
