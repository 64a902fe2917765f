// Bytes of a file, a pipe or standard input, of which the first can be looked at before they are
// taken.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qpx::tool {

// Messages of the RunError that any call may throw lack the file's name.
class InputFile {
 public:
  // "-" is standard input.
  explicit InputFile(const std::string& path);
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  // The next bytes are these. They stay.
  bool startsWith(std::string_view text);

  // Fills `bytes` and waits for what is still to come. Returns how many there were before the end.
  size_t read(std::span<uint8_t> bytes);

  // Up to the next line feed, which is taken and not returned; nothing at the end of the input.
  // Refuses lines of more than `most` bytes and one that the end cuts off.
  std::optional<std::string> readLine(size_t most);

  // What is left of a file; 0 for a pipe and the like, of which nobody knows.
  uint64_t bytesAhead() const;

  // All that is left, of 2 GiB at most.
  std::vector<uint8_t> readAll();

 private:
  size_t readSome(uint8_t* bytes, size_t count);
  void fillAhead(size_t count);
  size_t expectedBytes() const;

  bool owned_;
  int descriptor_;
  std::vector<uint8_t> ahead_;  // read and not yet taken
};

}  // namespace qpx::tool
