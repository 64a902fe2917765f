// The calls that serve files and memory alike, and the buffered files themselves.

#include <algorithm>
#include <limits>

#include "platform/stream_record.h"

namespace qpx {

int whenceOf(int32_t origin) {
  switch (origin) {
    case kFromStart:
      return SEEK_SET;
    case kFromEnd:
      return SEEK_END;
    case kFromCurrent:
      return SEEK_CUR;
    default:
      return -1;
  }
}

namespace {

constexpr int32_t kCopyBytes = 0x20000;

const char* stdioMode(int32_t mode) {
  static constexpr const char* kModes[] = {"rb", "wb", "ab", "rb+", "wb+", "ab+"};
  const bool known = mode >= kModeRead && mode <= kModeLast;
  return kModes[(known ? mode : kModeRead) - kModeRead];
}

// `long` may have 64 bits, the answers of this layer have 32 everywhere.
int32_t answer32(long position) {
  return position > std::numeric_limits<int32_t>::max() ? -1 : static_cast<int32_t>(position);
}

int32_t fileSize(std::FILE* file) {
  const long here = std::ftell(file);
  if (here < 0 || std::fseek(file, 0, SEEK_END) != 0) return -1;
  const long end = std::ftell(file);
  return std::fseek(file, here, SEEK_SET) == 0 ? answer32(end) : -1;
}

int32_t copyThrough(uint8_t* chunk, MStreamHandle* from, MStreamHandle* to, int32_t count) {
  int32_t copied = 0;
  while (copied < count) {
    const int32_t taken = MStreamRead(from, chunk, std::min(count - copied, kCopyBytes));
    const int32_t written = MStreamWrite(to, chunk, taken);
    copied += written;
    if (taken == 0 || written < taken) break;
  }
  return copied;
}

}  // namespace
}  // namespace qpx

const KESStreamVersion* KESSTREAM_GetVersion(void) {
  static constexpr KESStreamVersion kVersion = {3,
                                                0,
                                                0,
                                                1,
                                                "kelvane_kesstream_3.0.0.1",
                                                "08/26/2014",
                                                "Kelvane byte streams over files and memory"};
  return &kVersion;
}

MStreamHandle* MStreamOpenFromFileS(const char* path, int32_t mode) {
  if (path == nullptr) return nullptr;
  // The record first: a mode that empties the file must not do so for a stream that then fails.
  MStreamHandle* const stream = qpx::newRecord<MStreamHandle>();
  if (stream == nullptr) return nullptr;
  stream->kind = qpx::kStreamFile;
  stream->handle = std::fopen(path, qpx::stdioMode(mode));
  if (stream->handle == nullptr) {
    MMemFree(nullptr, stream);
    return nullptr;
  }
  return stream;
}

MStreamHandle* MStreamOpenFromFileW(const uint16_t* path, int32_t mode) {
  return MStreamOpenFromFileS(qpx::NarrowPath(path).get(), mode);
}

int32_t MStreamClose(MStreamHandle* stream) {
  if (!qpx::isKind(stream, qpx::kStreamFile)) return STRMEMClose(stream);
  const bool closed = std::fclose(qpx::fileOf(stream)) == 0;
  MMemFree(nullptr, stream);
  return closed ? 1 : 0;
}

int32_t MStreamRead(MStreamHandle* stream, void* buffer, int32_t count) {
  if (!qpx::isKind(stream, qpx::kStreamFile)) return STRMEMRead(stream, buffer, count);
  if (buffer == nullptr || count <= 0) return 0;
  return static_cast<int32_t>(
      std::fread(buffer, 1, static_cast<size_t>(count), qpx::fileOf(stream)));
}

int32_t MStreamWrite(MStreamHandle* stream, const void* buffer, int32_t count) {
  if (!qpx::isKind(stream, qpx::kStreamFile)) return STRMEMWrite(stream, buffer, count);
  if (buffer == nullptr || count <= 0) return 0;
  return static_cast<int32_t>(
      std::fwrite(buffer, 1, static_cast<size_t>(count), qpx::fileOf(stream)));
}

int32_t MStreamFlush(MStreamHandle* stream) {
  if (qpx::isKind(stream, qpx::kStreamFile)) return std::fflush(qpx::fileOf(stream));
  return qpx::isKind(stream, qpx::kStreamMemory) ? 0 : -1;
}

int32_t MStreamSeek(MStreamHandle* stream, int32_t origin, int32_t offset) {
  if (!qpx::isKind(stream, qpx::kStreamFile)) return STRMEMSeek(stream, origin, offset);
  return std::fseek(qpx::fileOf(stream), offset, qpx::whenceOf(origin));
}

int32_t MStreamTell(MStreamHandle* stream) {
  if (!qpx::isKind(stream, qpx::kStreamFile)) return STRMEMTell(stream);
  return qpx::answer32(std::ftell(qpx::fileOf(stream)));
}

int32_t MStreamGetSize(MStreamHandle* stream) {
  if (!qpx::isKind(stream, qpx::kStreamFile)) return STRMEMGetSize(stream);
  return qpx::fileSize(qpx::fileOf(stream));
}

int32_t MStreamCopy(MStreamHandle* from, MStreamHandle* to, int32_t count) {
  if (from == nullptr || to == nullptr || count <= 0) return 0;
  const size_t bytes = static_cast<size_t>(std::min(count, qpx::kCopyBytes));
  uint8_t* const chunk = static_cast<uint8_t*>(MMemAlloc(nullptr, bytes));
  if (chunk == nullptr) return 0;
  const int32_t copied = qpx::copyThrough(chunk, from, to, count);
  MMemFree(nullptr, chunk);
  return copied;
}
