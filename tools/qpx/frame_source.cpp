#include "frame_source.h"

#include <algorithm>
#include <array>
#include <span>

#include "errors.h"

namespace qpx::tool {

namespace {

constexpr std::array kRangeNames = {"bt601", "bt601-full", "bt709", "bt709-full"};

constexpr size_t kShortestFrameLine = 6;  // "FRAME" and a line feed

Y4mHeader readHeader(InputFile& file) {
  return parseY4mHeader(file.readLine(kMaxY4mLine).value_or(""));
}

Range withFullness(Range range, bool full) {
  const bool is709 = range == Range::bt709 || range == Range::bt709Full;
  if (is709) return full ? Range::bt709Full : Range::bt709;
  return full ? Range::bt601Full : Range::bt601;
}

FrameShape shapeOf(const Y4mHeader& header, Range range, bool certain) {
  if (header.rangeStated && !certain) range = withFullness(range, header.fullRange);
  return {header.format, header.width, header.height, range};
}

}  // namespace

FrameSource::FrameSource(InputFile& file, const FrameShape& shape)
    : file_(file),
      shape_(shape),
      bytes_(Frame::bytesOf(*shape.format, shape.width, shape.height)),
      frames_(static_cast<int64_t>(file.bytesAhead() / bytes_)) {}

FrameSource::FrameSource(InputFile& file, Range range, bool certain)
    : file_(file),
      header_(readHeader(file)),
      shape_(shapeOf(*header_, range, certain)),
      bytes_(Frame::bytesOf(*shape_.format, shape_.width, shape_.height)),
      frames_(static_cast<int64_t>(file.bytesAhead() / (bytes_ + kShortestFrameLine))) {}

size_t FrameSource::readFirst(std::optional<Frame>& frame) {
  constexpr size_t kFirstPiece = size_t{1} << 20;
  std::vector<uint8_t> bytes;
  size_t got = 0;
  while (got == bytes.size() && got < bytes_) {
    bytes.resize(std::min(bytes_, std::max(kFirstPiece, got * 2)));
    got += file_.read(std::span(bytes).subspan(got));
  }
  if (got < bytes_) return got;
  frame.emplace(*shape_.format, shape_.width, shape_.height);
  std::copy(bytes.begin(), bytes.end(), frame->data());
  return got;
}

std::optional<std::string> FrameSource::next(std::optional<Frame>& frame) {
  std::optional<std::string> line = header_ ? file_.readLine(kMaxY4mLine) : std::string();
  std::string parameters = header_ && line ? parseY4mFrameLine(*line) : std::string();
  size_t got = 0;
  if (line) got = frame ? file_.read({frame->data(), bytes_}) : readFirst(frame);
  if (got == bytes_) {
    ++taken_;
    return parameters;
  }
  const bool ended = got == 0 && !(header_ && line);
  if (ended && taken_ == 0) throw RunError("holds no frame: check what writes it");
  if (ended) return std::nullopt;
  throw RunError("ends within frame " + std::to_string(taken_ + 1) + ", which has " +
                 std::to_string(got) + " of " + std::to_string(bytes_) +
                 " bytes: check its size and format");
}

Range rangeByName(const std::string& name) {
  const auto found = std::find(kRangeNames.begin(), kRangeNames.end(), name);
  if (found == kRangeNames.end()) throw UsageError("there is no range '" + name + "'");
  return static_cast<Range>(found - kRangeNames.begin());
}

std::vector<std::string> rangeNames() { return {kRangeNames.begin(), kRangeNames.end()}; }

}  // namespace qpx::tool
