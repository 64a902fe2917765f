// Output that is there whole or not at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace qpx::tool {

// Writes beside the wanted file and renames over it in commit(). Without a commit nothing is left
// behind, not even after a signal that asks the process to end. "-" is standard output; devices,
// pipes and the like are written straight, since a rename would replace them. A symbolic link keeps
// pointing where it did, and one that leads nowhere is refused.
class OutputFile {
 public:
  // Throws RunError when nothing can be written there.
  explicit OutputFile(const std::string& path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Called from within C libraries, so it must not throw: the failure is kept for commit().
  bool write(const uint8_t* bytes, size_t count) noexcept;

  // Throws RunError when anything was not written.
  void commit();

  int error() const { return error_; }

 private:
  void openTemporary();

  std::string path_;       // as the user wrote it
  std::string target_;     // behind symbolic links
  std::string temporary_;  // empty when written straight
  int slot_ = -1;          // of the list that the signal handler clears
  int descriptor_ = -1;
  bool ownsDescriptor_ = true;
  int error_ = 0;
};

// Throws RunError where OutputFile would, before long work is done for nothing. Leaves nothing
// behind.
void refuseUnwritable(const std::string& path);

// Throws UsageError when a picture would go to a terminal: `terminal` says that standard output is
// one.
void refuseTerminal(const std::string& path, bool terminal);

// Makes signals remove temporary files before they end the process, and a limit on file sizes an
// error of write() rather than a signal. Call once, early.
void installSignalCleanup();

}  // namespace qpx::tool
