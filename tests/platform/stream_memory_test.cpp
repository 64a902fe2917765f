#include <gtest/gtest.h>
#include <qpx/streams.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "platform/stream_record.h"
#include "support/failing_memory.h"

namespace {

using qpx::testing::FailingMemory;

constexpr int32_t kStart = 0;
constexpr int32_t kEnd = 1;
constexpr int32_t kCurrent = 2;

class StreamMemory : public ::testing::Test {
 protected:
  void SetUp() override {
    FailingMemory::reset();
    before_ = FailingMemory::liveBlocks();
  }
  void TearDown() override {
    EXPECT_EQ(FailingMemory::liveBlocks(), before_);
    EXPECT_EQ(FailingMemory::doubleFrees() + FailingMemory::foreignFrees(), 0);
  }

 private:
  int64_t before_ = 0;
};

std::vector<uint8_t> ramp(size_t count) {
  std::vector<uint8_t> bytes(count);
  for (size_t i = 0; i < count; ++i) bytes[i] = static_cast<uint8_t>(i * 7 + i / 256);
  return bytes;
}

TEST_F(StreamMemory, VersionNamesTheLayer) {
  const KESStreamVersion* const version = KESSTREAM_GetVersion();
  ASSERT_NE(version, nullptr);
  EXPECT_EQ(version->major, 3);
  EXPECT_EQ(version->minor, 0);
  EXPECT_EQ(version->build, 0);
  EXPECT_EQ(version->revision, 1);
  EXPECT_STREQ(version->version, "kelvane_kesstream_3.0.0.1");
  EXPECT_STREQ(version->date, "08/26/2014");
  EXPECT_NE(version->text, nullptr);
}

TEST_F(StreamMemory, UserBlockStopsAWriteAtItsEnd) {
  char block[6] = "....";
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(block, 4);
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(MStreamGetSize(stream), 4);
  EXPECT_EQ(MStreamWrite(stream, "abcdef", 6), 4);
  EXPECT_EQ(std::string(block, 5), std::string("abcd\0", 5));
  EXPECT_EQ(MStreamTell(stream), 4);
  EXPECT_EQ(MStreamWrite(stream, "x", 1), 0);
  EXPECT_EQ(MStreamGetSize(stream), 4);
  EXPECT_EQ(MStreamClose(stream), 1);
}

TEST_F(StreamMemory, UserBlockIsReadInPlace) {
  char block[] = "abcdef";
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(block, 6);
  char to[8] = {};
  EXPECT_EQ(MStreamRead(stream, to, 4), 4);
  block[4] = 'X';
  EXPECT_EQ(MStreamRead(stream, to, 4), 2);
  EXPECT_EQ(std::string(to, 2), "Xf");
  EXPECT_EQ(MStreamRead(stream, to, 4), 0);
  MStreamClose(stream);
}

TEST_F(StreamMemory, UserBlockReadsBehindALoweredLength) {
  char block[] = "abcdef";
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(block, 6);
  EXPECT_EQ(MStreamSetSize(stream, 2), 2);
  EXPECT_EQ(MStreamGetSize(stream), 2);
  char to[8] = {};
  EXPECT_EQ(MStreamRead(stream, to, 8), 6) << "only the block's end stops a read in place";
  EXPECT_EQ(MStreamSeek(stream, kEnd, 0), 0);
  EXPECT_EQ(MStreamTell(stream), 2);
  MStreamClose(stream);
}

TEST_F(StreamMemory, EmptyUserBlockMovesNothing) {
  char byte = 'a';
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(&byte, 0);
  ASSERT_NE(stream, nullptr);
  char to = 'z';
  EXPECT_EQ(MStreamRead(stream, &to, 1), 0);
  EXPECT_EQ(MStreamWrite(stream, "x", 1), 0);
  EXPECT_EQ(byte, 'a');
  MStreamClose(stream);
}

TEST_F(StreamMemory, FirstBlockFollowsTheHint) {
  const struct {
    int32_t hint;
    uint32_t block;
  } kCases[] = {{0, 16384},     {1, 1},         {16383, 16383},
                {16384, 16384}, {16385, 16384}, {1 << 30, 16384}};
  for (const auto& c : kCases) {
    MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, c.hint);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->blockSize, c.block);
    EXPECT_EQ(stream->capacity, c.block);
    EXPECT_EQ(stream->length, 0u);
    EXPECT_EQ(stream->ownedFlag, 4097u);
    EXPECT_EQ(MStreamClose(stream), 1);
  }
  EXPECT_EQ(MStreamOpenFromMemoryBlock(nullptr, -1), nullptr);
}

TEST_F(StreamMemory, UserBlockFillsItsRecord) {
  char block[9];
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(block, 9);
  EXPECT_EQ(stream->handle, block);
  EXPECT_EQ(stream->kind, 2u);
  EXPECT_EQ(stream->chain, nullptr);
  EXPECT_EQ(stream->blockSize, 9u);
  EXPECT_EQ(stream->length, 9u);
  EXPECT_EQ(stream->capacity, 9u);
  EXPECT_EQ(stream->position, 0u);
  EXPECT_NE(stream->ownedFlag, 4097u);
  MStreamClose(stream);
}

TEST_F(StreamMemory, GrowsByBlocksOf16384) {
  const std::vector<uint8_t> bytes = ramp(40000);
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, 10);
  FailingMemory::reset();
  EXPECT_EQ(MStreamWrite(stream, bytes.data(), 40000), 40000);
  EXPECT_EQ(FailingMemory::allocations(), 3);
  EXPECT_EQ(stream->capacity, 10u + 3 * 16384);
  EXPECT_EQ(MStreamGetSize(stream), 40000);
  EXPECT_EQ(MStreamTell(stream), 40000);
  MStreamSeek(stream, kStart, 0);
  std::vector<uint8_t> back(40000);
  EXPECT_EQ(MStreamRead(stream, back.data(), 50000 - 10000), 40000);
  EXPECT_EQ(back, bytes);
  EXPECT_EQ(MStreamRead(stream, back.data(), 1), 0) << "the end of a chain";
  MStreamClose(stream);
}

TEST_F(StreamMemory, ExactlyFullBlockGrowsOnlyWithTheNextByte) {
  const std::vector<uint8_t> bytes = ramp(16384);
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, 0);
  EXPECT_EQ(MStreamWrite(stream, bytes.data(), 16384), 16384);
  EXPECT_EQ(stream->capacity, 16384u);
  EXPECT_EQ(MStreamWrite(stream, "x", 1), 1);
  EXPECT_EQ(stream->capacity, 32768u);
  EXPECT_EQ(MStreamSeek(stream, kStart, 16384), 0);
  EXPECT_EQ(stream->position, 16384u) << "a block's end belongs to that block";
  char to = 0;
  EXPECT_EQ(MStreamRead(stream, &to, 1), 1);
  EXPECT_EQ(to, 'x');
  MStreamClose(stream);
}

TEST_F(StreamMemory, SeekLandsAtTheNearerEnd) {
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, 4);
  MStreamWrite(stream, "abcdefgh", 8);
  const struct {
    int32_t origin, offset, lands;
  } kCases[] = {{kStart, 3, 3},        {kStart, 100, 8},
                {kStart, -1, 0},       {kEnd, 0, 8},
                {kEnd, -3, 5},         {kEnd, 1, 8},
                {kEnd, -9, 0},         {kStart, 4, 4},
                {kCurrent, 2, 6},      {kCurrent, -5, 1},
                {kCurrent, -2, 0},     {kCurrent, 2147483647, 8},
                {kEnd, 2147483647, 8}, {kCurrent, std::numeric_limits<int32_t>::min(), 0}};
  for (const auto& c : kCases) {
    EXPECT_EQ(MStreamSeek(stream, c.origin, c.offset), 0);
    EXPECT_EQ(MStreamTell(stream), c.lands) << c.origin << " " << c.offset;
  }
  MStreamClose(stream);
}

TEST_F(StreamMemory, UnknownOriginGivesOneAndMovesNothing) {
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, 4);
  MStreamWrite(stream, "abc", 3);
  for (const int32_t origin : {-1, 3, 100}) EXPECT_EQ(MStreamSeek(stream, origin, 0), 1);
  EXPECT_EQ(MStreamTell(stream), 3);
  MStreamClose(stream);
}

TEST_F(StreamMemory, SetSizeLowersAndNeverRaises) {
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, 4);
  MStreamWrite(stream, "abcdefgh", 8);
  EXPECT_EQ(MStreamSetSize(stream, 100), 8);
  EXPECT_EQ(MStreamSetSize(stream, 5), 5);
  EXPECT_EQ(MStreamSetSize(stream, 6), 5);
  EXPECT_EQ(MStreamSetSize(stream, -1), -1);
  EXPECT_EQ(MStreamGetSize(stream), 5);
  EXPECT_EQ(MStreamTell(stream), 8) << "the position stays";
  char to[4];
  EXPECT_EQ(MStreamRead(stream, to, 4), 0) << "nothing lies behind the length";
  EXPECT_EQ(MStreamWrite(stream, "z", 1), 1);
  EXPECT_EQ(MStreamGetSize(stream), 9);
  MStreamClose(stream);
}

TEST_F(StreamMemory, FlushOfMemoryIsDone) {
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, 4);
  EXPECT_EQ(MStreamFlush(stream), 0);
  MStreamClose(stream);
}

TEST_F(StreamMemory, RefusesNullsAndCountsBelowOne) {
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, 4);
  MStreamWrite(stream, "abc", 3);
  MStreamSeek(stream, kStart, 0);
  char to = '#';
  EXPECT_EQ(MStreamRead(stream, nullptr, 1), 0);
  EXPECT_EQ(MStreamRead(stream, &to, 0), 0);
  EXPECT_EQ(MStreamRead(stream, &to, -1), 0);
  EXPECT_EQ(MStreamWrite(stream, nullptr, 1), 0);
  EXPECT_EQ(MStreamWrite(stream, "x", -1), 0);
  EXPECT_EQ(to, '#');
  EXPECT_EQ(MStreamTell(stream), 0);
  EXPECT_EQ(MStreamGetSize(stream), 3);
  MStreamClose(stream);
  EXPECT_EQ(MStreamClose(nullptr), 0);
  EXPECT_EQ(MStreamRead(nullptr, &to, 1), 0);
  EXPECT_EQ(MStreamWrite(nullptr, &to, 1), 0);
  EXPECT_EQ(MStreamSeek(nullptr, kStart, 0), 1);
  EXPECT_EQ(MStreamTell(nullptr), -1);
  EXPECT_EQ(MStreamGetSize(nullptr), -1);
  EXPECT_EQ(MStreamSetSize(nullptr, 0), -1);
  EXPECT_EQ(MStreamFlush(nullptr), -1);
  EXPECT_EQ(MStreamCopy(nullptr, nullptr, 1), 0);
}

TEST_F(StreamMemory, UnknownKindIsRefusedByAll) {
  MStreamHandle odd = {};
  odd.kind = 3;
  char byte = '#';
  EXPECT_EQ(MStreamRead(&odd, &byte, 1), 0);
  EXPECT_EQ(MStreamWrite(&odd, &byte, 1), 0);
  EXPECT_EQ(MStreamSeek(&odd, kStart, 0), 1);
  EXPECT_EQ(MStreamTell(&odd), -1);
  EXPECT_EQ(MStreamGetSize(&odd), -1);
  EXPECT_EQ(MStreamSetSize(&odd, 0), -1);
  EXPECT_EQ(MStreamFlush(&odd), -1);
  EXPECT_EQ(MStreamClose(&odd), 0);
}

TEST_F(StreamMemory, BackEndCallsAreTheSameStream) {
  MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, 3);
  EXPECT_EQ(STRMEMWrite(stream, "abcdef", 6), 6);
  EXPECT_EQ(STRMEMGetSize(stream), 6);
  EXPECT_EQ(STRMEMSeek(stream, kEnd, -2), 0);
  EXPECT_EQ(STRMEMTell(stream), 4);
  char to[4];
  EXPECT_EQ(STRMEMRead(stream, to, 4), 2);
  EXPECT_EQ(std::string(to, 2), "ef");
  EXPECT_EQ(STRMEMClose(stream), 1);
  EXPECT_EQ(STRMEMClose(nullptr), 0);
}

TEST_F(StreamMemory, CopyGoesFromPositionToPosition) {
  const std::vector<uint8_t> bytes = ramp(300001);
  MStreamHandle* const from = MStreamOpenFromMemoryBlock(nullptr, 0);
  MStreamHandle* const to = MStreamOpenFromMemoryBlock(nullptr, 1);
  MStreamWrite(from, bytes.data(), 300001);
  MStreamSeek(from, kStart, 1);
  EXPECT_EQ(MStreamCopy(from, to, 0), 0);
  EXPECT_EQ(MStreamCopy(from, to, -1), 0);
  EXPECT_EQ(MStreamCopy(from, to, 270000), 270000) << "more than two chunks";
  EXPECT_EQ(MStreamTell(from), 270001);
  EXPECT_EQ(MStreamCopy(from, to, 2147483647), 30000) << "up to the end of the source";
  EXPECT_EQ(MStreamCopy(from, to, 1), 0);
  MStreamSeek(to, kStart, 0);
  std::vector<uint8_t> back(300000);
  EXPECT_EQ(MStreamRead(to, back.data(), 300000), 300000);
  EXPECT_TRUE(std::equal(back.begin(), back.end(), bytes.begin() + 1));
  MStreamClose(from);
  MStreamClose(to);
}

TEST_F(StreamMemory, CopyEndsAtAShortWrite) {
  std::vector<uint8_t> source = ramp(300000);
  uint8_t target[3];
  MStreamHandle* const from = MStreamOpenFromMemoryBlock(source.data(), 300000);
  MStreamHandle* const to = MStreamOpenFromMemoryBlock(target, 3);
  EXPECT_EQ(MStreamCopy(from, to, 300000), 3);
  EXPECT_EQ(MStreamTell(from), 0x20000) << "one chunk was read, and no other";
  EXPECT_TRUE(std::equal(target, target + 3, source.begin()));
  MStreamClose(from);
  MStreamClose(to);
}

// What a stream is, over one vector: bytes ever written, a length, a position.
struct Model {
  std::vector<uint8_t> bytes;
  size_t length = 0;
  size_t position = 0;
  bool grows = true;

  size_t readable() const {
    const size_t end = grows ? length : bytes.size();
    return end - std::min(end, position);
  }
  std::vector<uint8_t> read(size_t count) {
    const size_t taken = std::min(count, readable());
    const auto from = bytes.begin() + static_cast<ptrdiff_t>(position);
    position += taken;
    return {from, from + static_cast<ptrdiff_t>(taken)};
  }
  size_t write(const std::vector<uint8_t>& from) {
    if (grows) bytes.resize(std::max(bytes.size(), position + from.size()));
    const size_t taken = std::min(from.size(), bytes.size() - position);
    std::copy_n(from.begin(), taken, bytes.begin() + static_cast<ptrdiff_t>(position));
    position += taken;
    length = std::max(length, position);
    return taken;
  }
  void seek(int32_t origin, int64_t offset) {
    const size_t bases[] = {0, length, position};
    const int64_t target = static_cast<int64_t>(bases[origin]) + offset;
    position = static_cast<size_t>(std::clamp<int64_t>(target, 0, static_cast<int64_t>(length)));
  }
};

void runAgainstModel(MStreamHandle* stream, Model model, uint32_t seed, int32_t largest) {
  std::mt19937 random(seed);
  const auto upTo = [&random](int32_t most) {
    return static_cast<int32_t>(random() % (static_cast<uint32_t>(most) + 1));
  };
  for (int step = 0; step < 600; ++step) {
    switch (random() % 8) {
      case 0:
      case 1:
      case 2: {
        std::vector<uint8_t> bytes(static_cast<size_t>(1 + upTo(largest)));
        for (uint8_t& b : bytes) b = static_cast<uint8_t>(random());
        ASSERT_EQ(MStreamWrite(stream, bytes.data(), static_cast<int32_t>(bytes.size())),
                  static_cast<int32_t>(model.write(bytes)));
        break;
      }
      case 3:
      case 4:
      case 5: {
        const int32_t count = 1 + upTo(largest);
        std::vector<uint8_t> bytes(static_cast<size_t>(count));
        const int32_t taken = MStreamRead(stream, bytes.data(), count);
        bytes.resize(static_cast<size_t>(taken));
        ASSERT_EQ(bytes, model.read(static_cast<size_t>(count)));
        break;
      }
      case 6: {
        const int32_t origin = upTo(2);
        // Block boundaries are where a walk over a chain goes wrong, so they come often.
        const int32_t boundary = 16384 * upTo(4);
        const int32_t offset = (random() % 2 ? boundary : upTo(2 * largest)) *
                               (origin == kStart || random() % 2 ? 1 : -1);
        ASSERT_EQ(MStreamSeek(stream, origin, offset), 0);
        model.seek(origin, offset);
        break;
      }
      default:
        if (random() % 4 == 0) {
          const int32_t size = upTo(static_cast<int32_t>(model.length) + 100);
          model.length = std::min(model.length, static_cast<size_t>(size));
          ASSERT_EQ(MStreamSetSize(stream, size), static_cast<int32_t>(model.length));
        }
    }
    ASSERT_EQ(MStreamTell(stream), static_cast<int32_t>(model.position)) << "step " << step;
    ASSERT_EQ(MStreamGetSize(stream), static_cast<int32_t>(model.length)) << "step " << step;
  }
}

TEST_F(StreamMemory, RandomUseOfAChainFollowsTheModel) {
  for (const int32_t hint : {1, 5, 4096, 16384, 0, 100000}) {
    for (const int32_t largest : {3, 1000, 16384, 40000}) {
      MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, hint);
      ASSERT_NE(stream, nullptr);
      runAgainstModel(stream, Model{}, static_cast<uint32_t>(hint + largest), largest);
      ASSERT_FALSE(HasFatalFailure()) << "hint " << hint << ", sizes up to " << largest;
      EXPECT_EQ(MStreamClose(stream), 1);
    }
  }
}

TEST_F(StreamMemory, RandomUseOfAUserBlockFollowsTheModel) {
  for (const size_t size : {size_t{1}, size_t{77}, size_t{50000}}) {
    std::vector<uint8_t> block = ramp(size);
    MStreamHandle* const stream =
        MStreamOpenFromMemoryBlock(block.data(), static_cast<int32_t>(size));
    ASSERT_NE(stream, nullptr);
    runAgainstModel(stream, Model{block, size, 0, false}, static_cast<uint32_t>(size),
                    static_cast<int32_t>(size));
    EXPECT_EQ(MStreamClose(stream), 1);
  }
}

}  // namespace
