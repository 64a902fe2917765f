/* Threads, locks and events over POSIX threads. The library itself uses only the clock.
 *
 * Every function may be called from any thread. Results are 0 for success, 2 for a null handle, 1
 * for any other failure, unless a comment says more. A handle that was destroyed, or a thread that
 * was joined, must not be used again. */
#ifndef QPX_THREADS_H_
#define QPX_THREADS_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* A thread as the system names it; 0 is none. */
typedef uintptr_t MThreadHandle;

/* What a thread runs; its result is not kept. */
typedef void* (*MThreadRoutine)(void* argument);

/* A lock that its owner may take again; it is free when it was given back as often. */
typedef struct MMutex MMutex;
typedef MMutex* MMutexHandle;

/* A flag to wait for. It resets itself: one signal, kept until somebody waits, lets one waiter
 * through. */
typedef struct MEvent MEvent;
typedef MEvent* MEventHandle;

/* Milliseconds that stand for a wait without end. */
#define QPX_WAIT_FOREVER 0xFFFFFFFFu

/* Starts a thread. Returns 0 when the routine is null or no thread can be made. Every thread must
 * be joined by MThreadExit or MThreadDestory, once. */
QPX_API MThreadHandle MThreadCreate(MThreadRoutine routine, void* argument);

/* Wait for the end of a thread and release it. The two are the same. Return 0, also for thread 0,
 * which does nothing. */
QPX_API int32_t MThreadExit(MThreadHandle thread);
QPX_API int32_t MThreadDestory(MThreadHandle thread);

/* Lets the calling thread, whatever `thread` is, sleep for so many milliseconds; a signal handler
 * may end the sleep early. Returns 0. */
QPX_API int32_t MThreadSleep(MThreadHandle thread, uint32_t milliseconds);

/* For callers written for systems that have these. They do nothing and return 0. */
QPX_API int32_t MThreadResume(MThreadHandle thread);
QPX_API int32_t MThreadSuspend(MThreadHandle thread);
QPX_API int32_t MThreadSetPriority(MThreadHandle thread, int32_t priority);

/* Returns null when there is no memory. MMutexDestroy, on a lock that nobody holds, returns 0, for
 * null too. */
QPX_API MMutexHandle MMutexCreate(void);
QPX_API int32_t MMutexDestroy(MMutexHandle mutex);

/* MMutexUnlock by a thread that does not hold the lock returns 1. */
QPX_API int32_t MMutexLock(MMutexHandle mutex);
QPX_API int32_t MMutexUnlock(MMutexHandle mutex);

/* An event that is not signalled; null when there is no memory. Nobody may wait for it when it is
 * destroyed. */
QPX_API MEventHandle MEventCreate(void);
QPX_API int32_t MEventDestroy(MEventHandle event);

/* Set the flag and wake one waiter; clear the flag. */
QPX_API int32_t MEventSignal(MEventHandle event);
QPX_API int32_t MEventReset(MEventHandle event);

/* Waits for the flag and clears it: at once where it is set, otherwise for at most so many
 * milliseconds or QPX_WAIT_FOREVER. Returns 0 when the event came, 1 after the time or a failure.
 *
 * The wait is not repeated: the system may end it early, which answers 0 without a signal, so check
 * what the event stands for. A wait whose fraction of a second and the clock's are together a whole
 * second or more is refused with 1 at once: callers for whom that matters wait for whole seconds or
 * without end, or ask again. */
QPX_API int32_t MEventWait(MEventHandle event, uint32_t milliseconds);

/* Milliseconds of the system's clock, rounded, modulo 2^32: differences of two are right across the
 * wrap, unless somebody set the clock between them. */
QPX_API uint32_t MGetCurTimeStamp(void);

QPX_END_DECLS

#endif /* QPX_THREADS_H_ */
