/* Byte streams over files and memory behind one set of calls (MStream*), files by descriptor with
 * 64-bit positions (MStream*64), and small services on whole files (MStreamFile*).
 *
 * A stream belongs to one thread at a time; distinct streams are independent. Handles and the
 * memory of growing streams come from MMemAlloc (kesbase.h). Null streams, null pointers, counts
 * below 1 and streams of the wrong kind are refused with each call's failure value.
 *
 * Modes of opening a file; every other number acts as 1:
 *   1  read an existing file                 4  read and write an existing file
 *   2  write, emptied or created             5  read and write, emptied or created
 *   3  append, created if missing            6  read and append, created if missing
 * Names ending in S take an 8-bit path. Names ending in W take a path of 16-bit units, of which the
 * low bytes are used, 255 of them at the most: what is beyond is cut off, not refused.
 *
 * Origins of a seek: 0 from the start, 1 from the end, 2 from the current position. */
#ifndef QPX_STREAMS_H_
#define QPX_STREAMS_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

/* A stream over a buffered file or over memory. */
typedef struct MStreamHandle MStreamHandle;

/* A stream over a file descriptor. */
typedef struct MStream64Handle MStream64Handle;

/* Names this stream layer. The strings are constants of the library. */
typedef struct KESStreamVersion {
  int32_t major;
  int32_t minor;
  int32_t build;
  int32_t revision;
  const char* version; /* name and the four numbers */
  const char* date;    /* of that version, month/day/year */
  const char* text;    /* what it is */
} KESStreamVersion;

/* Never null. */
QPX_API const KESStreamVersion* KESSTREAM_GetVersion(void);

/* Open a file. Return a stream to close with MStreamClose, or null: no path, no such file, no
 * memory. In a mode that reads and writes, seek between a read and a write. */
QPX_API MStreamHandle* MStreamOpenFromFileS(const char* path, int32_t mode);
QPX_API MStreamHandle* MStreamOpenFromFileW(const uint16_t* path, int32_t mode);

/* Opens a stream over memory, at position 0. With a buffer it reads and writes those `size` bytes
 * in place: the length is `size` from the start, writes stop at the end, and the buffer must
 * outlive the stream. With a null buffer it owns its memory, starts empty and grows with writes, in
 * blocks; `size` (0 for the default) then only hints at the first block. Returns null for a
 * negative size or no memory.
 */
QPX_API MStreamHandle* MStreamOpenFromMemoryBlock(void* buffer, int32_t size);

/* Closes the stream and frees it and what it owns. Returns 1; 0 for null, or if the file reported a
 * failure, but then too the stream is gone. */
QPX_API int32_t MStreamClose(MStreamHandle* stream);

/* Read or write up to `count` bytes at the position and move it. Return the bytes moved: less than
 * count at the end of the data, on a failure of the file or the memory, 0 when refused. */
QPX_API int32_t MStreamRead(MStreamHandle* stream, void* buffer, int32_t count);
QPX_API int32_t MStreamWrite(MStreamHandle* stream, const void* buffer, int32_t count);

/* Hands buffered bytes of a file to the system. Returns 0, or -1 on failure or for null; 0 for
 * memory. */
QPX_API int32_t MStreamFlush(MStreamHandle* stream);

/* Moves the position. In memory a target outside the data lands at its nearer end; in a file it may
 * lie behind the end. Returns 0; for a file -1 when refused (an unknown origin, a target before the
 * start); for memory 1 for an unknown origin; 1 for null. */
QPX_API int32_t MStreamSeek(MStreamHandle* stream, int32_t origin, int32_t offset);

/* Position, and size in bytes. -1 when refused and for files of 2 GiB and more. */
QPX_API int32_t MStreamTell(MStreamHandle* stream);
QPX_API int32_t MStreamGetSize(MStreamHandle* stream);

/* Lowers the length of a memory stream to `size`; never raises it. The position stays, behind the
 * end perhaps, where reads of a growing stream give nothing; a stream over the caller's buffer
 * still reads up to the end of the buffer. Returns the length; -1 for a file, null or a negative
 * size. */
QPX_API int32_t MStreamSetSize(MStreamHandle* stream, int32_t size);

/* Copies up to `count` bytes from one position to another; ends at the end of the source or at a
 * short write. Returns the bytes written; 0 when refused or without memory for its buffer. */
QPX_API int32_t MStreamCopy(MStreamHandle* from, MStreamHandle* to, int32_t count);

/* Size of a file in bytes; -1 if there is none, for null, and in the first form for 2 GiB and more.
 */
QPX_API int32_t MStreamFileGetSizeS(const char* path);
QPX_API int64_t MStreamFileGetSize64S(const char* path);
QPX_API int64_t MStreamFileGetSize64W(const uint16_t* path);

/* 1 if the path can be opened for reading, else 0. */
QPX_API int32_t MStreamFileExistsS(const char* path);
QPX_API int32_t MStreamFileExistsW(const uint16_t* path);

/* Create or empty a file and return it open in mode 2, or null. */
QPX_API MStreamHandle* MStreamFileCreateS(const char* path);
QPX_API MStreamHandle* MStreamFileCreateW(const uint16_t* path);

/* Rename (a file at `to` is replaced), the same under another name, and delete. Return 0, or -1 on
 * failure or for null. */
QPX_API int32_t MStreamFileRenameS(const char* from, const char* to);
QPX_API int32_t MStreamFileMoveS(const char* from, const char* to);
QPX_API int32_t MStreamFileDeleteS(const char* path);

/* Copies a file; note the order of the arguments. Returns 1; 0 if the source can not be read, if
 * `to` exists and `overwrite` is 0, if both are the same file, or if writing failed (an incomplete
 * target is left behind). */
QPX_API int32_t MStreamFileCopyS(const char* to, const char* from, int32_t overwrite);

/* The same by descriptor, without a buffer, on files of any size. MStreamSeek64 returns 0, or -1
 * when refused; positions and sizes are -1 when refused. */
QPX_API MStream64Handle* MStreamOpenFromFile64S(const char* path, int32_t mode);
QPX_API MStream64Handle* MStreamOpenFromFile64W(const uint16_t* path, int32_t mode);
QPX_API int32_t MStreamClose64(MStream64Handle* stream);
QPX_API int32_t MStreamRead64(MStream64Handle* stream, void* buffer, int32_t count);
QPX_API int32_t MStreamWrite64(MStream64Handle* stream, const void* buffer, int32_t count);
QPX_API int32_t MStreamSeek64(MStream64Handle* stream, int32_t origin, int64_t offset);
QPX_API int64_t MStreamTell64(MStream64Handle* stream);
QPX_API int64_t MStreamGetSize64(MStream64Handle* stream);

/* The memory streams by themselves: what the MStream calls do when given one. A file is refused. */
QPX_API int32_t STRMEMClose(MStreamHandle* stream);
QPX_API int32_t STRMEMRead(MStreamHandle* stream, void* buffer, int32_t count);
QPX_API int32_t STRMEMWrite(MStreamHandle* stream, const void* buffer, int32_t count);
QPX_API int32_t STRMEMSeek(MStreamHandle* stream, int32_t origin, int32_t offset);
QPX_API int32_t STRMEMGetSize(MStreamHandle* stream);
QPX_API int32_t STRMEMTell(MStreamHandle* stream);

QPX_END_DECLS

#endif /* QPX_STREAMS_H_ */
