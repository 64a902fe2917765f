#include "frame_sink.h"

#include <utility>

namespace qpx::tool {

FrameSink::FrameSink(const std::string& path, std::optional<Y4mHeader> header)
    : out_(path), header_(std::move(header)) {}

void FrameSink::writeText(const std::string& text) {
  out_.write(reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

void FrameSink::write(const Frame& frame, const std::string& parameters) {
  if (header_) {
    if (written_ == 0) writeText(y4mHeaderLine(*header_));
    writeText("FRAME" + parameters + "\n");
  }
  // What could not be written is said by commit().
  if (!out_.write(frame.data(), frame.bytes())) out_.commit();
  ++written_;
}

void FrameSink::finish() {
  if (written_ > 0 && out_.error() == 0) out_.commit();
}

}  // namespace qpx::tool
