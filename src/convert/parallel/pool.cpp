#include "convert/parallel/pool.h"

#include <kesbase.h>

#include <algorithm>
#include <cstdlib>
#include <new>

#include "convert/parallel/cpus.h"
#include "convert/parallel/lock.h"
#include "convert/parallel/tasks.h"

namespace qpx {
namespace {

// First workers of the pools that run. A pool that is not found here is gone, so that stopping one
// twice reads nothing that was freed.
pthread_mutex_t g_poolsLock = PTHREAD_MUTEX_INITIALIZER;
McvWorker* g_pools = nullptr;

void enlist(McvWorker* first) {
  const Lock lock(&g_poolsLock);
  first->next = g_pools;
  g_pools = first;
}

void strike(const McvWorker* first) {
  const Lock lock(&g_poolsLock);
  McvWorker** place = &g_pools;
  while (*place != first) place = &(*place)->next;
  *place = first->next;
}

// With the list's lock held.
bool isListed(const McvParallel* engine) {
  const McvWorker* first = g_pools;
  while (first != nullptr && first->engine != engine) first = first->next;
  return first != nullptr;
}

// The first to ask may stop the pool.
bool mayStop(McvParallel* engine) {
  const Lock pools(&g_poolsLock);
  if (!isListed(engine)) return false;
  const Lock queue(&engine->queueLock);
  if (engine->quit != 0) return false;
  engine->quit = 1;
  return true;
}

McvParallel* newPool(void* memContext) {
  void* const block = mcvMemAlloc(memContext, sizeof(McvParallel));
  if (block == nullptr) return nullptr;
  McvParallel* const engine = new (block) McvParallel{};
  engine->memContext = memContext;
  engine->cpuOnline = cpus().online();
  engine->cpuConfigured = std::min(cpus().configured(), kMostCpus);
  return engine;
}

void initLocks(McvParallel* engine) {
  pthread_mutex_init(&engine->queueLock, nullptr);
  pthread_mutex_init(&engine->doneLock, nullptr);
  pthread_cond_init(&engine->taskReady, nullptr);
  pthread_cond_init(&engine->taskDone, nullptr);
}

void destroyLocks(McvParallel* engine) {
  pthread_cond_destroy(&engine->taskDone);
  pthread_cond_destroy(&engine->taskReady);
  pthread_mutex_destroy(&engine->doneLock);
  pthread_mutex_destroy(&engine->queueLock);
}

// Where the pointer to a worker is kept.
McvWorker** placeOf(McvParallel* engine, int32_t index) {
  if (index < kMostCpus) return &engine->workers[index];
  McvWorker** place = &engine->workers[kMostCpus - 1]->next;
  for (int32_t i = kMostCpus; i < index; ++i) place = &(*place)->next;
  return place;
}

bool startWorker(McvParallel* engine, int32_t index) {
  void* const block = mcvMemAlloc(engine->memContext, sizeof(McvWorker));
  if (block == nullptr) return false;
  McvWorker* const worker = new (block) McvWorker{index, nullptr, engine};
  if (pthread_create(&engine->threads[index], nullptr, runTasks, worker) != 0) {
    mcvMemFree(engine->memContext, worker);
    return false;
  }
  *placeOf(engine, index) = worker;
  return true;
}

void freePool(McvParallel* engine) {
  destroyLocks(engine);
  mcvMemFree(engine->memContext, engine->threads);
  mcvMemFree(engine->memContext, engine);
}

void freeWorkers(McvParallel* engine) {
  for (int32_t i = engine->threadCount - 1; i >= 0; --i) {
    mcvMemFree(engine->memContext, *placeOf(engine, i));
  }
}

}  // namespace

bool isRunning(McvParallel* engine) {
  const Lock pools(&g_poolsLock);
  if (!isListed(engine)) return false;
  const Lock queue(&engine->queueLock);
  return engine->quit == 0;
}

}  // namespace qpx

using namespace qpx;

void* mcvMemAlloc(void* context, size_t size) {
  return context == nullptr ? std::malloc(size) : MMemAlloc(context, size);
}

void mcvMemFree(void* context, void* pointer) {
  if (context == nullptr) {
    std::free(pointer);
  } else {
    MMemFree(context, pointer);
  }
}

McvParallel* mcvParallelInit(void* memContext, int32_t threads) {
  if (threads < 0) return nullptr;
  McvParallel* const engine = newPool(memContext);
  if (engine == nullptr) return nullptr;
  const int32_t wanted =
      threads == 0 ? engine->cpuOnline : std::min(threads, engine->cpuConfigured);
  const int32_t count = std::max(wanted, 1);
  initLocks(engine);
  engine->threads = static_cast<pthread_t*>(
      mcvMemAlloc(memContext, sizeof(pthread_t) * static_cast<size_t>(count)));
  if (engine->threads == nullptr) {
    freePool(engine);
    return nullptr;
  }
  while (engine->threadCount < count && startWorker(engine, engine->threadCount)) {
    ++engine->threadCount;
  }
  if (engine->threadCount < count) {
    // Threads that run still use the pool.
    if (engine->threadCount == 0) freePool(engine);
    return nullptr;
  }
  enlist(engine->workers[0]);
  return engine;
}

int32_t mcvParallelUninit(McvParallel* engine) {
  if (engine == nullptr) return kPoolNull;
  if (!mayStop(engine)) return kPoolStopped;
  pthread_cond_broadcast(&engine->taskReady);
  for (int32_t i = 0; i < engine->threadCount; ++i) pthread_join(engine->threads[i], nullptr);
  strike(engine->workers[0]);
  freeWorkers(engine);
  freePool(engine);
  return kPoolDone;
}

int32_t mcvParallelEngineCores(McvParallel* engine) {
  return engine == nullptr ? 0 : engine->threadCount;
}
