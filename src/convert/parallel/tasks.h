#pragma once

namespace qpx {

// What a thread of a pool runs until the pool is stopped; `worker` is its McvWorker.
void* runTasks(void* worker);

}  // namespace qpx
