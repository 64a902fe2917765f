// Tasks from the queue to the ring of ids that are done.
#include "convert/parallel/tasks.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "convert/parallel/lock.h"
#include "convert/parallel/pool.h"

namespace qpx {
namespace {

// How long threads look before they sleep. To sleep and be woken again takes about as long, and in
// a run of conversions the next one follows sooner.
constexpr int64_t kPatience = 50'000;

int64_t nanoseconds() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

// With the lock held, as all up to takeTask.
template <typename Condition>
bool becomesTrue(Lock* lock, const Condition& condition) {
  for (const int64_t end = nanoseconds() + kPatience; !condition(); lock->yield()) {
    if (nanoseconds() >= end) return false;
  }
  return true;
}

int32_t placeOfTask(const McvParallel& engine, int32_t index) {
  return (engine.taskHead + index) % kPlaces;
}

bool putTask(McvParallel* engine, McvTask* task) {
  if (engine->taskCount == kPlaces) return false;
  task->id = engine->nextId;
  engine->nextId = task->id == kLastId ? 0 : task->id + 1;
  engine->tasks[placeOfTask(*engine, engine->taskCount)] = *task;
  ++engine->taskCount;
  return true;
}

// False if a thread has taken it.
bool takeBack(McvParallel* engine, int32_t id) {
  int32_t index = 0;
  while (index < engine->taskCount && engine->tasks[placeOfTask(*engine, index)].id != id) ++index;
  if (index == engine->taskCount) return false;
  --engine->taskCount;
  for (; index < engine->taskCount; ++index) {
    engine->tasks[placeOfTask(*engine, index)] = engine->tasks[placeOfTask(*engine, index + 1)];
  }
  return true;
}

void awaitTask(McvParallel* engine, Lock* lock) {
  const auto isNeeded = [engine] { return engine->taskCount != 0 || engine->quit != 0; };
  ++engine->idle;
  becomesTrue(lock, isNeeded);
  --engine->idle;
  while (!isNeeded()) lock->wait(&engine->taskReady);
}

bool takeTask(McvParallel* engine, McvTask* task) {
  Lock lock(&engine->queueLock);
  awaitTask(engine, &lock);
  if (engine->quit != 0) return false;
  *task = engine->tasks[engine->taskHead];
  engine->taskHead = placeOfTask(*engine, 1);
  --engine->taskCount;
  return true;
}

// Threads that `tasks` are worth waking for: those that have a processor beside that of the caller.
// More would only take turns with it. Processors that are off may be on by the time.
int32_t wantedThreads(const McvParallel& engine, int32_t tasks) {
  return std::min(tasks, std::max(engine.cpuConfigured - 1, 1)) - engine.idle;
}

// How many found a place; the others have no id.
size_t addAll(McvParallel* engine, std::span<McvTask> tasks) {
  size_t added = 0;
  int32_t threads = 0;
  {
    const Lock lock(&engine->queueLock);
    while (added < tasks.size() && putTask(engine, &tasks[added])) ++added;
    threads = wantedThreads(*engine, static_cast<int32_t>(added));
  }
  for (; threads > 0; --threads) pthread_cond_signal(&engine->taskReady);
  return added;
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

void awaitDone(McvParallel* engine, int32_t id) {
  Lock lock(&engine->doneLock);
  if (becomesTrue(&lock, [=] { return removeDone(engine, id); })) return;
  while (!removeDone(engine, id)) lock.wait(&engine->taskDone);
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

void runTogether(McvParallel* engine, std::span<McvTask> tasks) {
  const size_t added = addAll(engine, tasks);
  const auto isMine = [&](size_t index) {
    if (index >= added) return true;
    const Lock lock(&engine->queueLock);
    return takeBack(engine, tasks[index].id);
  };
  size_t others = tasks.size();
  for (; others > 0 && isMine(others - 1); --others) tasks[others - 1].func(tasks[others - 1].arg);
  for (const McvTask& task : tasks.first(others)) awaitDone(engine, task.id);
}

}  // namespace qpx

using namespace qpx;

int32_t mcvAddTask(McvParallel* engine, McvTaskFunc func, void* arg) {
  if (engine == nullptr || func == nullptr) return kPoolNull;
  McvTask task = {func, arg, kPoolFull};
  {
    const Lock lock(&engine->queueLock);
    if (!putTask(engine, &task)) return kPoolFull;
  }
  pthread_cond_broadcast(&engine->taskReady);
  return task.id;
}

int32_t mcvWaitTask(McvParallel* engine, int32_t id) {
  if (engine == nullptr) return kPoolNull;
  awaitDone(engine, id);
  return kPoolDone;
}
