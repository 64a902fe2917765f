// Streams and raw frames as the tool reads them: what is broken is refused with a message, what is
// taken has frames that lie in the input, and memory goes by the input and not by its header.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "errors.h"
#include "frame_source.h"
#include "frame_y4m.h"
#include "fuzz_check.h"
#include "input_file.h"

namespace {

using qpx::tool::Frame;
using qpx::tool::FrameSource;
using qpx::tool::InputFile;
using qpx::tool::RunError;
using qpx::tool::Y4mHeader;

// A file without a name.
class Memory {
 public:
  explicit Memory(std::string_view bytes) : descriptor_(memfd_create("frames", MFD_CLOEXEC)) {
    FUZZ_CHECK(descriptor_ >= 0);
    FUZZ_CHECK(write(descriptor_, bytes.data(), bytes.size()) ==
               static_cast<ssize_t>(bytes.size()));
  }
  ~Memory() { close(descriptor_); }
  Memory(const Memory&) = delete;
  Memory& operator=(const Memory&) = delete;

  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

void checkMessage(const RunError& error) {
  const std::string_view text = error.what();
  FUZZ_CHECK(!text.empty() && text.find('\n') == std::string_view::npos);
}

bool sameHeader(const Y4mHeader& a, const Y4mHeader& b) {
  return a.width == b.width && a.height == b.height && a.format == b.format &&
         a.chroma == b.chroma && a.rate == b.rate && a.interlacing == b.interlacing &&
         a.aspectAcross == b.aspectAcross && a.aspectDown == b.aspectDown &&
         a.rangeStated == b.rangeStated && a.fullRange == b.fullRange;
}

// What is written of a header is read as the same header.
void checkHeader(const Y4mHeader& header) {
  FUZZ_CHECK(header.width > 0 && header.height > 0 && header.format);
  std::string line = qpx::tool::y4mHeaderLine(header);
  FUZZ_CHECK(line.ends_with('\n'));
  line.pop_back();
  FUZZ_CHECK(sameHeader(qpx::tool::parseY4mHeader(line), header));
  Y4mHeader stretched = header;
  qpx::tool::stretchAspect(stretched, header.width, header.height, 7, 3);
  FUZZ_CHECK(stretched.aspectAcross >= 0 && stretched.aspectDown >= 0);
}

// Reads to the end, or to what is broken.
void readFrames(FrameSource& source, size_t inputBytes) {
  std::optional<Frame> frame;
  size_t taken = 0;
  while (source.next(frame)) {
    taken += frame->bytes();
    FUZZ_CHECK(taken <= inputBytes);
    FUZZ_CHECK(frame->width() == source.shape().width && frame->height() == source.shape().height);
  }
  FUZZ_CHECK(taken > 0);
}

// Four bytes say what the frames behind them are.
void readRaw(InputFile& file, size_t size) {
  uint8_t head[4] = {};
  if (file.read(head) < sizeof head) return;
  const auto formats = qpx::tool::pixelFormats();
  FrameSource source(file, {&formats[head[0] % formats.size()], head[1] % 64 + 1, head[2] % 64 + 1,
                            qpx::tool::Range::bt601});
  readFrames(source, size);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const Memory memory(bytes);
  try {
    InputFile file(memory.path());
    FUZZ_CHECK(file.bytesAhead() == size);
    if (FrameSource::isStream(file)) {
      FrameSource source(file, qpx::tool::Range::bt709, size % 2 == 0);
      checkHeader(*source.header());
      readFrames(source, size);
    } else {
      readRaw(file, size);
    }
  } catch (const RunError& error) {
    checkMessage(error);
  }
  return 0;
}
