#pragma once

#include <pthread.h>
#include <sched.h>

namespace qpx {

// Holds a lock for as long as it lives.
class Lock {
 public:
  explicit Lock(pthread_mutex_t* mutex) : mutex_(mutex) { pthread_mutex_lock(mutex_); }
  ~Lock() { pthread_mutex_unlock(mutex_); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

  void wait(pthread_cond_t* condition) { pthread_cond_wait(condition, mutex_); }

  // Lets others have the lock and the processor for a moment.
  void yield() {
    pthread_mutex_unlock(mutex_);
    sched_yield();
    pthread_mutex_lock(mutex_);
  }

 private:
  pthread_mutex_t* mutex_;
};

}  // namespace qpx
