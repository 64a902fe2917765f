// Promises that no sanitizer knows of.
#ifndef QPX_FUZZ_FUZZ_CHECK_H_
#define QPX_FUZZ_FUZZ_CHECK_H_

#include <cstdio>
#include <cstdlib>

#define FUZZ_CHECK(condition)                                                            \
  do {                                                                                   \
    if (!(condition)) {                                                                  \
      std::fprintf(stderr, "%s:%d: %s does not hold\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                      \
    }                                                                                    \
  } while (false)

#endif  // QPX_FUZZ_FUZZ_CHECK_H_
