/* A small pool of threads with a fixed number of places for tasks, and conversions of whole images
 * that run on it in bands.
 *
 * A pool has 32 places for tasks that wait and 32 for the ids of tasks that are done. An id stays
 * until somebody waits for it; a task that ends while 32 ids are there is lost: "Task lost" is
 * printed to standard output and its id can never be waited for. So no more than 32 tasks may be on
 * their way at a time.
 *
 * Tasks are added and waited for from any thread. Codes beside 0: -1 for a null argument, -3
 * stopped, -4 no place. */
#ifndef QPX_PARALLEL_H_
#define QPX_PARALLEL_H_

#include <stddef.h>

#include <qpx/image_convert.h>
#include <qpx/types.h>

QPX_BEGIN_DECLS

/* A pool. */
typedef struct McvParallel McvParallel;

/* What a task runs. Its result is not kept. */
typedef void* (*McvTaskFunc)(void* arg);

/* Memory of a pool: from MMemAlloc and MMemFree with that context, or from malloc and free for a
 * null one. Null may be freed. */
QPX_API void* mcvMemAlloc(void* context, size_t size);
QPX_API void mcvMemFree(void* context, void* pointer);

/* Starts a pool of `threads` threads, at most as many as the system has processors and 16; 0 stands
 * for one for each processor that is online. Returns null for a negative number, for no memory and
 * where a thread cannot be started; threads that were started before stay, without work and out of
 * reach, until the process ends. */
QPX_API McvParallel* mcvParallelInit(void* memContext, int32_t threads);

/* Stops a pool: running tasks are finished, waiting ones dropped, threads joined and memory freed.
 * Nobody may add or wait during or after that, and no task may stop its own pool. Returns 0; -1 for
 * null; -3 for a pool that was stopped before, or is being stopped by another thread. */
QPX_API int32_t mcvParallelUninit(McvParallel* engine);

/* How many threads a pool has; 0 for null. */
QPX_API int32_t mcvParallelEngineCores(McvParallel* engine);

/* Adds a task. Returns its id, which is 0 or above; -1 for a null pool or function; -4 if 32 tasks
 * wait. Tasks begin in the order in which they were added. */
QPX_API int32_t mcvAddTask(McvParallel* engine, McvTaskFunc func, void* arg);

/* Waits until a task is done and forgets its id. Any order, any thread, once for each id: a wait
 * for an id that is not on its way does not end. Returns 0; -1 for null. */
QPX_API int32_t mcvWaitTask(McvParallel* engine, int32_t id);

/* Asks the system to bring the processors online that are not, up to the sixteenth, by writing to
 * /sys/devices/system/cpu/cpu<n>/online. Needs rights that few processes have; whatever fails is
 * silent. Null does nothing. */
QPX_API void mcvTryFireCpu(McvParallel* engine);

/* Writes the states that mcvTryFireCpu found before it changed something; else does nothing. */
QPX_API void mcvTryRestoreCpu(McvParallel* engine);

/* A pool of four threads with the conversions that can run on it. */
typedef struct McvColorCvtContext McvColorCvtContext;

/* The number of a conversion that can run in bands, by the formats of the images; -1 for others and
 * for null:
 *
 *    0 NV21 to RGBA8888     11 I420 to YUYV        22 BGR888 to NV21     33 I444 to I420
 *    1 NV21 to RGB888       12 I420 to BGRA8888    23 I422H to I420      34 I444 to NV21
 *    2 NV21 to BGR888       13 I420 to BGR888      24 I422H to NV21      35 I444 to NV12
 *    3 NV21 to I420         14 RGBA8888 to NV21    25 I422H to NV12      36 I444 to YUYV
 *    4 NV21 to BGRA8888     15 RGBA8888 to NV12    26 I422H to YUYV      37 I444 to LPI422H
 *    5 NV12 to I420         16 RGBA8888 to I420    27 I422H to LPI422H   38 BGRA8888 to LPI422H
 *    6 NV12 to RGBA8888     17 BGRA8888 to NV21    28 I422V to I420      39 LPI422H to BGRA8888
 *    7 NV12 to BGRA8888     18 BGRA8888 to NV12    29 I422V to NV21      40 RGBA8888 to LPI422H
 *    8 I420 to RGBA8888     19 BGRA8888 to I420    30 I422V to NV12      41 LPI422H to RGBA8888
 *    9 I420 to RGB888       20 RGB888 to I420      31 I422V to YUYV      42 YUYV to BGR888
 *   10 I420 to NV21         21 BGR888 to I420      32 I422V to LPI422H   43 BGR888 to YUYV */
QPX_API int32_t mcvColorCvtFunc(const McvImage* src, const McvImage* dst);

/* Starts a pool and wakes processors by mcvTryFireCpu. The context's block comes from MMemAlloc
 * with `memContext`, which may be null. Returns null, and says so on standard output, when a thread
 * cannot be started or memory is short; in the latter case the pool stays, out of reach. */
QPX_API McvColorCvtContext* mcvColorCvtInit_MultiThreads(void* memContext);

/* Converts an image in bands, four for each thread; the bytes are those of mcvColorCvt. The calling
 * thread works on bands as the pool's threads do. `param` points to the alpha of formats that get
 * one; null stands for 255. Several threads may share a context, as long as no more than 32 bands
 * are on their way. Returns 0; -1 for a null context or image and -2 for a pair of formats without
 * a number (which is printed to standard output), and what mcvColorCvt returns for images that it
 * refuses; then nothing is written. */
QPX_API int32_t mcvColorCvtProcess_MultiThreads(McvColorCvtContext* context, const McvImage* src,
                                                const McvImage* dst, const uint8_t* param);

/* Restores processors and stops the pool; `memContext` is that of the start. Returns 0; -1 for a
 * null context; -6 if the pool cannot be stopped, which is printed to standard output, and the
 * context stays. */
QPX_API int32_t mcvColorCvtUnInit_MultiThreads(void* memContext, McvColorCvtContext* context);

QPX_END_DECLS

#endif /* QPX_PARALLEL_H_ */
