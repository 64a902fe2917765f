/* The base library's memory services. A host that brings a libkesbase of its own replaces the one
 * built here; whoever calls these functions sees no difference.
 *
 * All five are thread safe as far as the blocks they are given are not shared. The context is an
 * opaque word for a host's own heaps; the library built here ignores it, and 0 is always valid. */
#ifndef KESBASE_H_
#define KESBASE_H_

#include <stddef.h>

#if defined(__GNUC__)
#define KESBASE_API __attribute__((visibility("default")))
#else
#define KESBASE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Allocates `size` bytes with undefined contents, aligned for any type of the C language. A size of
 * 0 gives a block too: never null unless memory is short, and to be freed like any other. Returns
 * null when there is no memory. */
KESBASE_API void* MMemAlloc(void* context, size_t size);

/* Frees a block that came from MMemAlloc or MMemRealloc with the same context. Null is allowed. */
KESBASE_API void MMemFree(void* context, void* block);

/* Changes the size of a block, keeping the bytes that fit into both sizes; the block may move. A
 * null block makes this MMemAlloc; a size of 0 keeps a block alive, as MMemAlloc does. Returns null
 * when there is no memory, and then the old block is still there, untouched. */
KESBASE_API void* MMemRealloc(void* context, void* block, size_t size);

/* Sets `size` bytes at `block` to the low byte of `value`; returns `block`. Does nothing for a null
 * block. */
KESBASE_API void* MMemSet(void* block, int value, size_t size);

/* Copies `size` bytes between places that do not overlap; returns `to`. Does nothing when either
 * pointer is null. */
KESBASE_API void* MMemCpy(void* to, const void* from, size_t size);

#ifdef __cplusplus
}
#endif

#endif /* KESBASE_H_ */
