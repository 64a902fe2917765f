/* A debugging allocator over MMemAlloc and MMemFree that finds writes beyond a block and blocks
 * that were never freed. It reports to the log (see log.h) at debug priority under the tag
 * "memchk".
 *
 * There is one table of blocks for the process and no lock around it: use it from one thread at a
 * time. Freeing searches the table, so that many live blocks make it slow. */
#ifndef QPX_HEAP_CHECK_H_
#define QPX_HEAP_CHECK_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* Allocates `size` bytes between two guard zones of 500 bytes and notes where: `file` is the path
 * of the source file, of which up to 63 bytes of the base name are kept, `line` the line, `name`
 * what reports begin with, up to 31 bytes of it. Null texts count as empty. The address is a
 * multiple of 4 only.
 *
 * Returns null for a size below 0, when there is no memory, and, with a report, while 40000 blocks
 * are live. */
QPX_API void* HEAPCK_MemAlloc(void* memContext, int32_t size, const char* file, int32_t line,
                              const char* name);

/* Checks both guard zones, reports the first damaged byte, and frees the block with the context it
 * was allocated with. A pointer that is not in the table is taken for a block of size 0 with its
 * guard zones around it and freed all the same, so it must be one: a block freed twice, or one from
 * elsewhere, is as fatal as with MMemFree. Null is allowed. */
QPX_API void HEAPCK_MemFree(void* memContext, void* pointer);

/* Reports every live block as a leak, or, where there is none, the most blocks and bytes that were
 * ever live at one time. `name` begins every line. */
QPX_API void HEAPCK_MemConclusion(const char* name);

QPX_END_DECLS

#endif /* QPX_HEAP_CHECK_H_ */
