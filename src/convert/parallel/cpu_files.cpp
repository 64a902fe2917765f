// Processors that the system took offline, brought back while a pool works.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "convert/parallel/cpus.h"
#include "convert/parallel/pool.h"

namespace qpx {
namespace {

struct Close {
  void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, Close>;

File openState(int32_t cpu, const char* mode) {
  char path[256];
  const int length = std::snprintf(path, sizeof path, cpus().pathFormat, static_cast<int>(cpu));
  if (length < 0 || length >= static_cast<int>(sizeof path)) return nullptr;
  return File(std::fopen(path, mode));
}

bool readState(int32_t cpu, int32_t* online) {
  const File file = openState(cpu, "rt");
  char state[2] = {};
  if (file == nullptr || std::fread(state, 1, 1, file.get()) != 1) return false;
  *online = std::atoi(state) != 0;
  return true;
}

bool writeState(int32_t cpu, int32_t online) {
  const File file = openState(cpu, "wt");
  const char state = static_cast<char>('0' + online);
  return file != nullptr && std::fwrite(&state, 1, 1, file.get()) == 1;
}

void wakeMissing(const int32_t (&states)[kMostCpus], int32_t configured, int32_t missing) {
  for (int32_t cpu = 0; missing > 0 && cpu < configured; ++cpu) {
    if (states[cpu] != 0) continue;
    --missing;
    if (!writeState(cpu, 1)) return;
  }
}

}  // namespace
}  // namespace qpx

using namespace qpx;

void mcvTryFireCpu(McvParallel* engine) {
  if (engine == nullptr) return;
  const int32_t configured = cpus().configured() < kMostCpus ? cpus().configured() : kMostCpus;
  const int32_t online = cpus().online();
  int32_t states[kMostCpus] = {};
  if (configured <= 0) {
    std::memcpy(engine->cpuState, states, sizeof states);
    if (online < 0) engine->cpuFired = 1;
    return;
  }
  for (int32_t cpu = 0; cpu < configured; ++cpu) {
    if (!readState(cpu, &states[cpu])) return;
  }
  std::memcpy(engine->cpuState, states, sizeof states);
  if (online >= configured) return;
  engine->cpuFired = 1;
  wakeMissing(states, configured, configured - online);
}

void mcvTryRestoreCpu(McvParallel* engine) {
  if (engine == nullptr || engine->cpuFired == 0) return;
  int32_t cpu = 0;
  while (cpu < engine->cpuConfigured && writeState(cpu, engine->cpuState[cpu])) ++cpu;
  engine->cpuFired = 0;
}
