// What a pool asks the system about processors. Tests put something else in its place: nothing but
// the pool may write to the system's files.
#pragma once

namespace qpx {

struct CpuSource {
  int (*configured)();     // below 1: not known
  int (*online)();         // below 1: not known
  const char* pathFormat;  // of the file that holds a processor's state, with one %d
};

const CpuSource& systemCpus();

// Process-wide; not to be changed while pools are started, woken or restored.
const CpuSource& cpus();
void setCpusForTest(const CpuSource& source);

}  // namespace qpx
