#pragma once

#include <span>

#include "convert/parallel/pool.h"

namespace qpx {

// What a thread of a pool runs until the pool is stopped; `worker` is its McvWorker.
void* runTasks(void* worker);

// Adds the tasks, whose ids it sets, and returns when all of them are done. Threads begin with the
// first; the caller does what waits from the last one backwards, so that it takes no longer than
// alone where they get no processor, and each works on neighbours.
void runTogether(McvParallel* engine, std::span<McvTask> tasks);

}  // namespace qpx
