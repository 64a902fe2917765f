/* Where the library's diagnostic lines go. They are for diagnosis only: nothing is ever logged that
 * a caller needs, and without a sink the library is silent. */
#ifndef QPX_LOG_H_
#define QPX_LOG_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* Priorities, numbered as in Android's logcat. */
typedef enum QPXLogPriority {
  QPX_LOG_VERBOSE = 2,
  QPX_LOG_DEBUG = 3,
  QPX_LOG_INFO = 4,
  QPX_LOG_WARN = 5,
  QPX_LOG_ERROR = 6
} QPXLogPriority;

/* Receives one line: no line end, at most 1023 bytes (longer ones are cut), valid during the call
 * only. It is called in the thread that logs, several threads at a time perhaps. */
typedef void (*QPXLogSink)(void* user, int32_t priority, const char* tag, const char* message);

/* Sends the lines of all threads to `sink` from now on, which is called with `user`; a null sink
 * silences them, as at the start. Thread safe: sink and user change as a pair, so that no line
 * reaches a sink with another one's user. A line that another thread is just logging may still
 * reach the previous sink while this call runs or shortly after it, so `user` must outlive that;
 * the sink itself may call this function. On Android the lines go to the system's log instead and
 * no sink is called. */
QPX_API void QPX_SetLogSink(QPXLogSink sink, void* user);

QPX_END_DECLS

#endif /* QPX_LOG_H_ */
