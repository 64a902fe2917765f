#include "input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "errors.h"

namespace qpx::tool {

namespace {

constexpr size_t kMaxFileBytes = (size_t{1} << 31) - 1;
constexpr size_t kReadStep = size_t{1} << 20;

[[noreturn]] void failReading(int error) {
  throw RunError(std::string("cannot be read (") + std::strerror(error) +
                 "): check the name and the right to read it");
}

}  // namespace

InputFile::InputFile(const std::string& path)
    : owned_(path != "-"),
      descriptor_(owned_ ? open(path.c_str(), O_RDONLY | O_CLOEXEC) : STDIN_FILENO) {
  if (descriptor_ < 0) failReading(errno);
}

InputFile::~InputFile() {
  if (owned_) close(descriptor_);
}

size_t InputFile::readSome(uint8_t* bytes, size_t count) {
  for (;;) {
    const ssize_t got = ::read(descriptor_, bytes, count);
    if (got >= 0) return static_cast<size_t>(got);
    if (errno != EINTR) failReading(errno);
  }
}

// May end with fewer, at the end of the input.
void InputFile::fillAhead(size_t count) {
  while (ahead_.size() < count) {
    const size_t used = ahead_.size();
    ahead_.resize(count);
    const size_t got = readSome(ahead_.data() + used, count - used);
    ahead_.resize(used + got);
    if (got == 0) return;
  }
}

bool InputFile::startsWith(std::string_view text) {
  fillAhead(text.size());
  return ahead_.size() >= text.size() && std::equal(text.begin(), text.end(), ahead_.begin());
}

size_t InputFile::read(std::span<uint8_t> bytes) {
  size_t done = std::min(bytes.size(), ahead_.size());
  std::copy_n(ahead_.begin(), done, bytes.begin());
  ahead_.erase(ahead_.begin(), ahead_.begin() + static_cast<ptrdiff_t>(done));
  while (done < bytes.size()) {
    const size_t got = readSome(bytes.data() + done, bytes.size() - done);
    if (got == 0) break;
    done += got;
  }
  return done;
}

// Byte by byte: what stands behind the line is left to the reader of the frame, which reads large
// pieces straight to their place.
std::optional<std::string> InputFile::readLine(size_t most) {
  std::string line;
  for (uint8_t byte = 0; read({&byte, 1}) == 1;) {
    if (byte == '\n') return line;
    if (line.size() == most) {
      throw RunError("has a header line of more than " + std::to_string(most) +
                     " bytes: it is damaged, or no YUV4MPEG2 stream");
    }
    line += static_cast<char>(byte);
  }
  if (line.empty()) return std::nullopt;
  throw RunError("ends within a header line: it is cut off");
}

uint64_t InputFile::bytesAhead() const {
  struct stat status {};
  if (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  const off_t at = lseek(descriptor_, 0, SEEK_CUR);
  return at < 0 || at > status.st_size ? 0
                                       : static_cast<uint64_t>(status.st_size - at) + ahead_.size();
}

size_t InputFile::expectedBytes() const {
  struct stat status {};
  if (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0) return 0;
  return static_cast<uint64_t>(status.st_size) <= kMaxFileBytes
             ? static_cast<size_t>(status.st_size) + 1
             : 0;
}

std::vector<uint8_t> InputFile::readAll() {
  std::vector<uint8_t> bytes = std::move(ahead_);
  ahead_.clear();
  bytes.reserve(expectedBytes());
  for (;;) {
    const size_t used = bytes.size();
    bytes.resize(std::max(std::min(bytes.capacity(), used + kReadStep), used + 1));
    const size_t got = readSome(bytes.data() + used, bytes.size() - used);
    bytes.resize(used + got);
    if (got == 0) return bytes;
    if (bytes.size() > kMaxFileBytes) throw RunError("is larger than 2 GiB: use a smaller file");
    if (bytes.size() == bytes.capacity())
      bytes.reserve(bytes.size() + bytes.size() / 2 + kReadStep);
  }
}

}  // namespace qpx::tool
