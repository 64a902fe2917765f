// Threads that cannot be started and files that cannot be opened, on demand. Linked with --wrap for
// pthread_create, fopen and fopen64.
#pragma once

#include <string>
#include <vector>

namespace qpx::testing {

// Refuses to start the n-th thread from now on, counting from 1, and all behind it; 0: none.
void failThreadsFrom(int n);

// Refuses to open the n-th file from now on for writing, counting from 1, and all behind it; 0:
// none. Forgets what was opened before.
void failWritesFrom(int n);

// Names of the files that were to be opened for writing since.
const std::vector<std::string>& openedForWriting();

}  // namespace qpx::testing
