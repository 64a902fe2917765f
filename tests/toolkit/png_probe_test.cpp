// Size and depth from the first bytes of a file.
#include <gtest/gtest.h>

#include <cstdio>

#include "platform/stream_record.h"
#include "toolkit/png_files.h"

namespace {

using namespace qpx::testing;

struct Probe {
  explicit Probe(MStreamHandle* stream) {
    result = PNG_GetInfoFromFile(stream, &width, &height, &bits);
  }
  explicit Probe(const std::vector<uint8_t>& bytes) : Probe(ByteStream(bytes).get()) {}

  int32_t width = -7, height = -7, bits = -7;
  int32_t result;
};

TEST(PngProbe, CountsBitsOfAPixel) {
  struct Case {
    uint8_t depth, colorType;
    int32_t bits;
  };
  constexpr Case kCases[] = {{1, 0, 1},   {2, 0, 2},   {4, 0, 4},   {8, 0, 8},  {16, 0, 8},
                             {8, 2, 24},  {16, 2, 24}, {1, 3, 1},   {8, 3, 8},  {8, 4, 16},
                             {16, 4, 16}, {8, 6, 32},  {16, 6, 32}, {8, 1, 24}, {8, 255, 24}};
  for (const Case& c : kCases) {
    const Probe probe(pngStart(0x01020304, 0x05060708, c.depth, c.colorType));
    EXPECT_EQ(probe.result, 0);
    EXPECT_EQ(probe.width, 0x01020304);
    EXPECT_EQ(probe.height, 0x05060708);
    EXPECT_EQ(probe.bits, c.bits) << int{c.depth} << " bits, colour type " << int{c.colorType};
  }
}

TEST(PngProbe, AgreesWithTheDecoder) {
  for (const PngKind& kind : pngKinds()) {
    const PngPicture picture(kind, 19, 12, false);
    const Probe probe(picture.file());
    EXPECT_EQ(probe.width, 19);
    EXPECT_EQ(probe.height, 12);
    EXPECT_EQ(probe.bits, static_cast<int32_t>(picture.bits()));
  }
}

TEST(PngProbe, LeavesTheStreamAtItsStart) {
  const ByteStream stream(PngPicture({2, 8}, 3, 3, false).file());
  MStreamSeek(stream.get(), 0, 9);
  EXPECT_EQ(Probe(stream.get()).result, 0);
  EXPECT_EQ(MStreamTell(stream.get()), 0);
}

TEST(PngProbe, RefusesShortStreamsAndOtherSignatures) {
  std::vector<uint8_t> bytes = pngStart(3, 3, 8, 2);
  for (size_t size = 0; size < 26; ++size) {
    EXPECT_EQ(Probe({bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size)}).result, 3);
  }
  bytes.resize(26);
  EXPECT_EQ(Probe(bytes).result, 0);
  for (size_t i = 0; i < 4; ++i) {
    std::vector<uint8_t> other = bytes;
    other[i] ^= 0x20;
    const Probe probe(other);
    EXPECT_EQ(probe.result, 3);
    EXPECT_EQ(probe.width, -7);
  }
}

TEST(PngProbe, RefusesNullArguments) {
  const ByteStream stream(pngStart(3, 3, 8, 2));
  int32_t a = 0, b = 0;
  EXPECT_EQ(PNG_GetInfoFromFile(nullptr, &a, &b, &a), 2);
  EXPECT_EQ(PNG_GetInfoFromFile(stream.get(), nullptr, &b, &a), 2);
  EXPECT_EQ(PNG_GetInfoFromFile(stream.get(), &a, nullptr, &a), 2);
  EXPECT_EQ(PNG_GetInfoFromFile(stream.get(), &a, &b, nullptr), 2);
}

// A file whose reads end, or whose seeks fail, at will.
class Disk {
 public:
  Disk(std::vector<uint8_t> bytes, int64_t readable, int seeks)
      : bytes_(std::move(bytes)), readable_(readable), seeksLeft_(seeks) {
    const cookie_io_functions_t calls = {read, nullptr, seek, nullptr};
    stream_.kind = qpx::kStreamFile;
    stream_.handle = fopencookie(this, "rb", calls);
    std::setvbuf(file(), nullptr, _IONBF, 0);
  }
  ~Disk() { std::fclose(file()); }
  MStreamHandle* stream() { return &stream_; }

 private:
  std::FILE* file() { return static_cast<std::FILE*>(stream_.handle); }

  static ssize_t read(void* cookie, char* to, size_t count) {
    Disk& disk = *static_cast<Disk*>(cookie);
    const int64_t left = std::max<int64_t>(disk.readable_ - disk.position_, 0);
    const size_t moved = std::min(count, static_cast<size_t>(left));
    std::copy_n(disk.bytes_.begin() + disk.position_, moved, to);
    disk.position_ += static_cast<int64_t>(moved);
    return static_cast<ssize_t>(moved);
  }

  static int seek(void* cookie, off64_t* offset, int whence) {
    Disk& disk = *static_cast<Disk*>(cookie);
    if (disk.seeksLeft_-- <= 0) return -1;
    const int64_t from = whence == SEEK_SET   ? 0
                         : whence == SEEK_CUR ? disk.position_
                                              : static_cast<int64_t>(disk.bytes_.size());
    *offset = disk.position_ = from + *offset;
    return 0;
  }

  std::vector<uint8_t> bytes_;
  int64_t readable_;
  int64_t position_ = 0;
  int seeksLeft_;
  MStreamHandle stream_ = {};
};

TEST(PngProbe, TellsAShortReadFromAFailedSeek) {
  const std::vector<uint8_t> bytes = pngStart(3, 3, 8, 2);
  for (const int64_t readable : {0, 3, 16, 20, 25}) {
    Disk disk(bytes, readable, 100);
    EXPECT_EQ(Probe(disk.stream()).result, 4102) << readable;
  }
  Disk whole(bytes, 26, 100);
  EXPECT_EQ(Probe(whole.stream()).result, 0);

  // With fewer and fewer seeks allowed, each one fails in turn, the last of them before the size is
  // known.
  int failed = 0;
  for (int seeks = 1; seeks < 20; ++seeks) {
    Disk disk(bytes, 26, seeks);
    const Probe probe(disk.stream());
    if (probe.result == 0) break;
    EXPECT_TRUE(probe.result == 4101 || (probe.result == 3 && failed == 0)) << seeks;
    EXPECT_EQ(probe.width, -7);
    failed += probe.result == 4101;
  }
  EXPECT_GE(failed, 2);
}

}  // namespace
