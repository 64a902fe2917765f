// The records of a pool.
#pragma once

#include <pthread.h>
#include <qpx/parallel.h>

#include <cstddef>
#include <cstdint>

namespace qpx {

inline constexpr int32_t kPlaces = 32;    // of tasks that wait, and of ids that are done
inline constexpr int32_t kMostCpus = 16;  // that a pool keeps states of
inline constexpr int32_t kLastId = 0x7FFFFFFE;

inline constexpr int32_t kPoolDone = 0;
inline constexpr int32_t kPoolNull = -1;
inline constexpr int32_t kPoolStopped = -3;
inline constexpr int32_t kPoolFull = -4;
inline constexpr int32_t kPoolNotStopped = -6;

struct McvTask {
  McvTaskFunc func;
  void* arg;
  int32_t id;
};

// What a thread is given. `next` links the first workers of all running pools; from the last worker
// that a pool has a place for on, the further workers of its own pool.
struct McvWorker {
  int32_t index;
  McvWorker* next;
  McvParallel* engine;
};

}  // namespace qpx

struct McvParallel {
  pthread_mutex_t queueLock;  // tasks and quit
  pthread_mutex_t doneLock;   // doneIds
  pthread_cond_t taskReady;   // with queueLock
  pthread_cond_t taskDone;    // with doneLock
  qpx::McvTask tasks[qpx::kPlaces];
  int32_t taskHead;
  int32_t taskCount;
  qpx::McvTask doneIds[qpx::kPlaces];  // only ids
  int32_t doneHead;
  int32_t doneCount;
  int32_t quit;
  pthread_t* threads;
  int32_t threadCount;
  qpx::McvWorker* workers[qpx::kMostCpus];
  void* memContext;
  int32_t cpuOnline;                 // when the pool was started
  int32_t cpuConfigured;             // 16 at most
  int32_t cpuFired;                  // mcvTryFireCpu changed something
  int32_t cpuState[qpx::kMostCpus];  // 1 online, 0 offline, when mcvTryFireCpu looked
  int32_t nextId;
  int32_t idle;  // threads that still look for tasks before they sleep; with queueLock
};

namespace qpx {

// Hosts of 32 bits know the sizes, which differ only by the system's locks, of all up to `idle`.
static_assert(sizeof(void*) != 4 || sizeof(McvWorker) == 12);
static_assert(sizeof(void*) != 4 || offsetof(McvParallel, idle) == 944 +
                                                                       2 * sizeof(pthread_mutex_t) +
                                                                       2 * sizeof(pthread_cond_t));

// Whether a pool is there and nobody stops it. Any pointer may be asked about.
bool isRunning(McvParallel* engine);

}  // namespace qpx
