// Tasks from the queue to the ring of ids that are done.
#include "convert/parallel/tasks.h"

#include <cstdio>

#include "convert/parallel/lock.h"
#include "convert/parallel/pool.h"

namespace qpx {
namespace {

bool takeTask(McvParallel* engine, McvTask* task) {
  Lock lock(&engine->queueLock);
  while (engine->taskCount == 0 && engine->quit == 0) lock.wait(&engine->taskReady);
  if (engine->quit != 0) return false;
  *task = engine->tasks[engine->taskHead];
  engine->taskHead = (engine->taskHead + 1) % kPlaces;
  --engine->taskCount;
  return true;
}

void append(McvParallel* engine, int32_t id) {
  engine->doneIds[(engine->doneHead + engine->doneCount) % kPlaces].id = id;
  ++engine->doneCount;
}

int32_t takeFirst(McvParallel* engine) {
  const int32_t id = engine->doneIds[engine->doneHead].id;
  engine->doneHead = (engine->doneHead + 1) % kPlaces;
  --engine->doneCount;
  return id;
}

void reportDone(McvParallel* engine, int32_t id) {
  {
    const Lock lock(&engine->doneLock);
    if (engine->doneCount < kPlaces) {
      append(engine, id);
    } else {
      std::puts("Task lost");
    }
  }
  // All waiters: a signal that wakes one who waits for another id would be lost for the right one.
  pthread_cond_broadcast(&engine->taskDone);
}

// Ids that do not match go back behind the others, which leaves all in their order if none does.
bool removeDone(McvParallel* engine, int32_t id) {
  const int32_t count = engine->doneCount;
  for (int32_t i = 0; i < count; ++i) {
    const int32_t first = takeFirst(engine);
    if (first == id) return true;
    append(engine, first);
  }
  return false;
}

}  // namespace

void* runTasks(void* worker) {
  McvParallel* const engine = static_cast<McvWorker*>(worker)->engine;
  McvTask task;
  while (takeTask(engine, &task)) {
    task.func(task.arg);
    reportDone(engine, task.id);
  }
  return nullptr;
}

}  // namespace qpx

using namespace qpx;

int32_t mcvAddTask(McvParallel* engine, McvTaskFunc func, void* arg) {
  if (engine == nullptr || func == nullptr) return kPoolNull;
  int32_t id = 0;
  {
    const Lock lock(&engine->queueLock);
    if (engine->taskCount == kPlaces) return kPoolFull;
    id = engine->nextId;
    engine->nextId = id == kLastId ? 0 : id + 1;
    engine->tasks[(engine->taskHead + engine->taskCount) % kPlaces] = {func, arg, id};
    ++engine->taskCount;
  }
  pthread_cond_broadcast(&engine->taskReady);
  return id;
}

int32_t mcvWaitTask(McvParallel* engine, int32_t id) {
  if (engine == nullptr) return kPoolNull;
  Lock lock(&engine->doneLock);
  while (!removeDone(engine, id)) lock.wait(&engine->taskDone);
  return kPoolDone;
}
