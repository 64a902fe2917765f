#include "convert/parallel/cpus.h"

#include <unistd.h>

namespace qpx {
namespace {

constexpr CpuSource kSystem = {[] { return static_cast<int>(sysconf(_SC_NPROCESSORS_CONF)); },
                               [] { return static_cast<int>(sysconf(_SC_NPROCESSORS_ONLN)); },
                               "/sys/devices/system/cpu/cpu%d/online"};

CpuSource g_source = kSystem;

}  // namespace

const CpuSource& systemCpus() { return kSystem; }
const CpuSource& cpus() { return g_source; }
void setCpusForTest(const CpuSource& source) { g_source = source; }

}  // namespace qpx
