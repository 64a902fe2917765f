// Services on whole files by path.

#include <sys/stat.h>

#include <limits>

#include "platform/stream_record.h"

namespace qpx {
namespace {

constexpr size_t kCopyBytes = 1024;

bool isReadable(const char* path) {
  std::FILE* const file = path == nullptr ? nullptr : std::fopen(path, "rb");
  return file != nullptr && std::fclose(file) == 0;
}

// Opening for writing would empty the source before it is read.
bool isSameFile(std::FILE* file, const char* path) {
  struct stat64 a;
  struct stat64 b;
  return fstat64(fileno(file), &a) == 0 && stat64(path, &b) == 0 && a.st_dev == b.st_dev &&
         a.st_ino == b.st_ino;
}

bool copyBytes(std::FILE* from, std::FILE* to) {
  uint8_t chunk[kCopyBytes];
  size_t taken;
  while ((taken = std::fread(chunk, 1, kCopyBytes, from)) > 0) {
    if (std::fwrite(chunk, 1, taken, to) != taken) return false;
  }
  return std::ferror(from) == 0;
}

bool copyTo(const char* path, std::FILE* from, bool overwrite) {
  // A file onto itself would be emptied before it is read.
  if (isSameFile(from, path)) return false;
  std::FILE* const to = std::fopen(path, overwrite ? "wb" : "wbx");
  if (to == nullptr) return false;
  const bool copied = copyBytes(from, to);
  return std::fclose(to) == 0 && copied;
}

}  // namespace
}  // namespace qpx

int64_t MStreamFileGetSize64S(const char* path) {
  struct stat64 status;
  if (path == nullptr || stat64(path, &status) != 0) return -1;
  return status.st_size;
}

int64_t MStreamFileGetSize64W(const uint16_t* path) {
  return MStreamFileGetSize64S(qpx::NarrowPath(path).get());
}

int32_t MStreamFileGetSizeS(const char* path) {
  const int64_t size = MStreamFileGetSize64S(path);
  return size > std::numeric_limits<int32_t>::max() ? -1 : static_cast<int32_t>(size);
}

int32_t MStreamFileExistsS(const char* path) { return qpx::isReadable(path) ? 1 : 0; }

int32_t MStreamFileExistsW(const uint16_t* path) {
  return MStreamFileExistsS(qpx::NarrowPath(path).get());
}

MStreamHandle* MStreamFileCreateS(const char* path) {
  return MStreamOpenFromFileS(path, qpx::kModeWrite);
}

MStreamHandle* MStreamFileCreateW(const uint16_t* path) {
  return MStreamOpenFromFileW(path, qpx::kModeWrite);
}

int32_t MStreamFileRenameS(const char* from, const char* to) {
  return from == nullptr || to == nullptr ? -1 : std::rename(from, to);
}

int32_t MStreamFileMoveS(const char* from, const char* to) { return MStreamFileRenameS(from, to); }

int32_t MStreamFileDeleteS(const char* path) { return path == nullptr ? -1 : std::remove(path); }

int32_t MStreamFileCopyS(const char* to, const char* from, int32_t overwrite) {
  if (to == nullptr || from == nullptr) return 0;
  std::FILE* const source = std::fopen(from, "rb");
  if (source == nullptr) return 0;
  const bool copied = qpx::copyTo(to, source, overwrite != 0);
  std::fclose(source);
  return copied ? 1 : 0;
}
