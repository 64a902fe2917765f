// Files by descriptor, with 64-bit positions on targets whose `long` has 32 bits too.

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/stream_record.h"

namespace qpx {
namespace {

int openFlags(int32_t mode) {
  switch (mode) {
    case 2:
      return O_WRONLY | O_CREAT | O_TRUNC;
    case 3:
      return O_WRONLY | O_CREAT | O_APPEND;
    case 4:
      return O_RDWR;
    case 5:
      return O_RDWR | O_CREAT | O_TRUNC;
    case 6:
      return O_RDWR | O_CREAT | O_APPEND;
    default:
      return O_RDONLY;
  }
}

bool appends(int32_t mode) { return mode == 3 || mode == 6; }

// One system call may move less than asked for; only the end, an error or the full count ends this.
template <typename Byte, typename Call>
int32_t moveAll(int fd, Byte* bytes, int32_t count, Call call) {
  int32_t moved = 0;
  while (moved < count) {
    const ssize_t step = call(fd, bytes + moved, static_cast<size_t>(count - moved));
    if (step < 0 && errno == EINTR) continue;
    if (step <= 0) break;
    moved += static_cast<int32_t>(step);
  }
  return moved;
}

}  // namespace
}  // namespace qpx

MStream64Handle* MStreamOpenFromFile64S(const char* path, int32_t mode) {
  if (path == nullptr) return nullptr;
  // The record first: a mode that empties the file must not do so for a stream that then fails, and
  // no descriptor is left over without one.
  MStream64Handle* const stream = qpx::newRecord<MStream64Handle>();
  if (stream == nullptr) return nullptr;
  stream->fd = open(path, qpx::openFlags(mode) | O_LARGEFILE, 0666);
  if (stream->fd < 0) {
    MMemFree(nullptr, stream);
    return nullptr;
  }
  stream->kind = qpx::kStreamFile;
  MStreamGetSize64(stream);
  if (qpx::appends(mode)) lseek64(stream->fd, 0, SEEK_END);
  return stream;
}

MStream64Handle* MStreamOpenFromFile64W(const uint16_t* path, int32_t mode) {
  return MStreamOpenFromFile64S(qpx::NarrowPath(path).get(), mode);
}

int32_t MStreamClose64(MStream64Handle* stream) {
  if (stream == nullptr) return 0;
  const bool closed = close(stream->fd) == 0;
  MMemFree(nullptr, stream);
  return closed ? 1 : 0;
}

int32_t MStreamRead64(MStream64Handle* stream, void* buffer, int32_t count) {
  if (stream == nullptr || buffer == nullptr || count <= 0) return 0;
  return qpx::moveAll(stream->fd, static_cast<uint8_t*>(buffer), count, read);
}

int32_t MStreamWrite64(MStream64Handle* stream, const void* buffer, int32_t count) {
  if (stream == nullptr || buffer == nullptr || count <= 0) return 0;
  return qpx::moveAll(stream->fd, static_cast<const uint8_t*>(buffer), count, write);
}

int32_t MStreamSeek64(MStream64Handle* stream, int32_t origin, int64_t offset) {
  if (stream == nullptr) return -1;
  return lseek64(stream->fd, offset, qpx::whenceOf(origin)) < 0 ? -1 : 0;
}

int64_t MStreamTell64(MStream64Handle* stream) {
  return stream == nullptr ? -1 : lseek64(stream->fd, 0, SEEK_CUR);
}

int64_t MStreamGetSize64(MStream64Handle* stream) {
  const int64_t here = MStreamTell64(stream);
  if (here < 0) return -1;
  const int64_t end = lseek64(stream->fd, 0, SEEK_END);
  if (end < 0 || lseek64(stream->fd, here, SEEK_SET) < 0) return -1;
  stream->size64 = static_cast<uint64_t>(end);
  return end;
}
