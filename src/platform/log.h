#pragma once

#include <qpx/log.h>

namespace qpx {

// Logs one line, formatted as by printf and cut to 1023 bytes. Costs a lock and a comparison while
// nobody listens; never to be called per row.
void log(int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

}  // namespace qpx
