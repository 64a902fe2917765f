#pragma once

#include "convert/parallel/cpus.h"

namespace qpx::testing {

// More processors than the machine may have, with state files that are nowhere.
inline CpuSource sixteenCpus() {
  return {[] { return 16; }, [] { return 16; }, "/nowhere/cpu%d/online"};
}

}  // namespace qpx::testing
