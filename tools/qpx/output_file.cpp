#include "output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "errors.h"

namespace qpx::tool {

namespace {

// Names to remove when a signal ends the process. Fixed storage, because the handler may not
// allocate or lock; a slot belongs to one OutputFile from `taken` on and is read by the handler
// once `live`.
struct Slot {
  std::atomic<bool> taken{false};
  std::atomic<bool> live{false};
  std::array<char, PATH_MAX> name{};
};
constexpr size_t kSlots = 256;
std::array<Slot, kSlots> gSlots;
static_assert(std::atomic<bool>::is_always_lock_free, "the signal handler reads these");

constexpr std::array kFatalSignals = {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGQUIT, SIGXCPU, SIGALRM};

void removeAndDie(int number) {
  for (const Slot& slot : gSlots) {
    if (slot.live.load()) unlink(slot.name.data());
  }
  signal(number, SIG_DFL);
  raise(number);
}

int takeSlot(const std::string& name) {
  if (name.size() >= PATH_MAX) return -1;
  for (size_t i = 0; i < kSlots; ++i) {
    if (gSlots[i].taken.exchange(true)) continue;
    std::memcpy(gSlots[i].name.data(), name.c_str(), name.size() + 1);
    gSlots[i].live = true;
    return static_cast<int>(i);
  }
  return -1;
}

void releaseSlot(int index) {
  if (index < 0) return;
  Slot& slot = gSlots[static_cast<size_t>(index)];
  slot.live = false;
  slot.taken = false;
}

mode_t wantedMode(const std::string& target) {
  struct stat status {};
  if (stat(target.c_str(), &status) == 0) return status.st_mode & 07777;
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

std::string folderOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

[[noreturn]] void fail(const std::string& path, int error) {
  const std::string name = path == "-" ? "standard output" : path;
  throw RunError(name + ": cannot be written (" + std::strerror(error) + "): " +
                 (error == EFBIG ? "raise the limit on file sizes (ulimit -f)"
                                 : "choose a place that can be written and has room"));
}

}  // namespace

void refuseTerminal(const std::string& path, bool terminal) {
  if (path != "-" || !terminal) return;
  throw UsageError(
      "standard output is a terminal, which cannot show a picture: send it to a file or a program, "
      "as in '... - > out.png'");
}

void refuseUnwritable(const std::string& path) {
  struct stat status {};
  const bool there = stat(path.c_str(), &status) == 0;
  // Whoever reads a pipe would take its closing for the end.
  if (path == "-" || (there && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode))) return;
  const OutputFile probe(path);
}

void installSignalCleanup() {
  // Beyond the limit on file sizes a write fails all the same, and says why.
  signal(SIGXFSZ, SIG_IGN);
  for (const int number : kFatalSignals) {
    struct sigaction action {};
    if (sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
    action = {};
    action.sa_handler = removeAndDie;
    sigemptyset(&action.sa_mask);
    for (const int other : kFatalSignals) sigaddset(&action.sa_mask, other);
    sigaction(number, &action, nullptr);
  }
}

OutputFile::OutputFile(const std::string& path) : path_(path), target_(path) {
  if (path == "-") {
    descriptor_ = STDOUT_FILENO;
    ownsDescriptor_ = false;
    return;
  }
  struct stat status {};
  if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    if (S_ISDIR(status.st_mode)) fail(path, EISDIR);
    descriptor_ = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor_ < 0) fail(path, errno);
    return;
  }
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr),
                                                         std::free);
  const int error = errno;
  if (real) {
    target_ = real.get();
  } else if (lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode)) {
    if (error != ENOENT && error != ELOOP) fail(path, error);
    throw RunError(path + ": is a symbolic link that leads nowhere: remove it or mend its target");
  }
  // Replacing a file needs no right to write it, but someone who took that right away meant it.
  if (real && access(target_.c_str(), W_OK) != 0) fail(path, errno);
  openTemporary();
}

void OutputFile::openTemporary() {
  static std::atomic<unsigned> counter{0};
  for (int attempt = 0; attempt < 100; ++attempt) {
    temporary_ = folderOf(target_) + ".qpx-" + std::to_string(getpid()) + "-" +
                 std::to_string(counter++) + ".part";
    // Listed before it exists: a signal in between removes nothing, one after it removes the file.
    slot_ = takeSlot(temporary_);
    if (slot_ < 0) fail(path_, ENAMETOOLONG);
    descriptor_ = open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor_ >= 0) return;
    const int error = errno;
    releaseSlot(slot_);
    slot_ = -1;
    if (error != EEXIST) fail(path_, error);
  }
  fail(path_, EEXIST);
}

OutputFile::~OutputFile() {
  if (descriptor_ >= 0 && ownsDescriptor_) close(descriptor_);
  if (slot_ >= 0) {
    unlink(temporary_.c_str());
    releaseSlot(slot_);
  }
}

bool OutputFile::write(const uint8_t* bytes, size_t count) noexcept {
  while (count > 0 && error_ == 0) {
    const ssize_t written = ::write(descriptor_, bytes, count);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) {
      error_ = errno;
    } else {
      bytes += written;
      count -= static_cast<size_t>(written);
    }
  }
  return error_ == 0;
}

void OutputFile::commit() {
  if (error_ == 0 && slot_ >= 0 && fchmod(descriptor_, wantedMode(target_)) != 0 &&
      errno != EPERM) {
    error_ = errno;
  }
  if (ownsDescriptor_) {
    if (close(descriptor_) != 0 && error_ == 0) error_ = errno;
    descriptor_ = -1;
  }
  if (error_ == 0 && slot_ >= 0 && rename(temporary_.c_str(), target_.c_str()) != 0) error_ = errno;
  if (error_ != 0) fail(path_, error_);
  releaseSlot(slot_);
  slot_ = -1;
}

}  // namespace qpx::tool
