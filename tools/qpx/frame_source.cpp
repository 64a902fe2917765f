#include "frame_source.h"

#include <algorithm>
#include <array>

#include "errors.h"

namespace qpx::tool {

namespace {

constexpr std::array kRangeNames = {"bt601", "bt601-full", "bt709", "bt709-full"};

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
    : file_(file), shape_(shape), frame_(*shape.format, shape.width, shape.height) {}

FrameSource::FrameSource(InputFile& file, Range range, bool certain)
    : file_(file),
      header_(readHeader(file)),
      shape_(shapeOf(*header_, range, certain)),
      frame_(*shape_.format, shape_.width, shape_.height) {}

bool FrameSource::readFrameLine() {
  const std::optional<std::string> line = file_.readLine(kMaxY4mLine);
  if (line) parameters_ = parseY4mFrameLine(*line);
  return line.has_value();
}

bool FrameSource::next() {
  const bool begins = !header_ || readFrameLine();
  const size_t got = begins ? file_.read({frame_.data(), frame_.bytes()}) : 0;
  if (got == frame_.bytes()) {
    ++taken_;
    return true;
  }
  if (got == 0 && (!begins || !header_)) {
    if (taken_ == 0) throw RunError("holds no frame: check what writes it");
    return false;
  }
  throw RunError("ends within frame " + std::to_string(taken_ + 1) + ", which has " +
                 std::to_string(got) + " of " + std::to_string(frame_.bytes()) +
                 " bytes: check its size and format");
}

Range rangeByName(const std::string& name) {
  const auto found = std::find(kRangeNames.begin(), kRangeNames.end(), name);
  if (found == kRangeNames.end()) throw UsageError("there is no range '" + name + "'");
  return static_cast<Range>(found - kRangeNames.begin());
}

std::vector<std::string> rangeNames() { return {kRangeNames.begin(), kRangeNames.end()}; }

}  // namespace qpx::tool
