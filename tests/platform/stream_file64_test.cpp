#include <qpx/streams.h>

#include <string>

#include "platform/stream_record.h"
#include "platform/temporary_folder.h"

namespace {

constexpr int64_t kGiB = int64_t{1} << 30;

class StreamFile64 : public qpx::testing::StreamFolder {
 protected:
  std::string describe(int32_t mode) {
    std::string story;
    for (const bool exists : {true, false}) {
      std::filesystem::remove(path("f"));
      if (exists) fileWith("f", "old");
      MStream64Handle* const stream = MStreamOpenFromFile64S(path("f").c_str(), mode);
      if (stream == nullptr) {
        story += "none;";
        continue;
      }
      const int64_t at = MStreamTell64(stream);
      MStreamSeek64(stream, kStart, 0);
      char to[4] = {};
      const int32_t taken = MStreamRead64(stream, to, 3);
      MStreamSeek64(stream, kStart, 0);
      const int32_t written = MStreamWrite64(stream, "N", 1);
      MStreamClose64(stream);
      story += "@" + std::to_string(at) + " r" + std::to_string(taken) + " w" +
               std::to_string(written) + " " + contents(path("f")) + ";";
    }
    return story;
  }
};

TEST_F(StreamFile64, EachModeOpensItsWayAndAppendStartsAtTheEnd) {
  EXPECT_EQ(describe(1), "@0 r3 w0 old;none;");
  EXPECT_EQ(describe(2), "@0 r0 w1 N;@0 r0 w1 N;");
  EXPECT_EQ(describe(3), "@3 r0 w1 oldN;@0 r0 w1 N;");
  EXPECT_EQ(describe(4), "@0 r3 w1 Nld;none;");
  EXPECT_EQ(describe(5), "@0 r0 w1 N;@0 r0 w1 N;");
  EXPECT_EQ(describe(6), "@3 r3 w1 oldN;@0 r0 w1 N;");
  for (const int32_t mode : {0, 7, -1, 1000}) EXPECT_EQ(describe(mode), describe(1)) << mode;
}

TEST_F(StreamFile64, RecordHoldsDescriptorKindAndSize) {
  MStream64Handle* const stream = MStreamOpenFromFile64S(fileWith("f", "abcde").c_str(), 1);
  ASSERT_NE(stream, nullptr);
  EXPECT_GE(stream->fd, 0);
  EXPECT_EQ(stream->kind, 1u);
  EXPECT_EQ(stream->size64, 5u);
  EXPECT_EQ(MStreamClose64(stream), 1);
}

TEST_F(StreamFile64, PositionsBeyondTwoGiB) {
  const std::string sparse = path("sparse");
  MStream64Handle* const stream = MStreamOpenFromFile64S(sparse.c_str(), 5);
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(MStreamSeek64(stream, kStart, 3 * kGiB), 0);
  EXPECT_EQ(MStreamWrite64(stream, "end", 3), 3);
  EXPECT_EQ(MStreamTell64(stream), 3 * kGiB + 3);
  EXPECT_EQ(MStreamGetSize64(stream), 3 * kGiB + 3);
  EXPECT_EQ(MStreamSeek64(stream, kEnd, -2), 0);
  EXPECT_EQ(MStreamSeek64(stream, kCurrent, -kGiB), 0);
  EXPECT_EQ(MStreamTell64(stream), 2 * kGiB + 1);
  EXPECT_EQ(MStreamSeek64(stream, kCurrent, kGiB), 0);
  char to[8] = {};
  EXPECT_EQ(MStreamRead64(stream, to, 8), 2);
  EXPECT_STREQ(to, "nd");
  EXPECT_EQ(MStreamClose64(stream), 1);
  EXPECT_EQ(MStreamFileGetSize64S(sparse.c_str()), 3 * kGiB + 3);
  EXPECT_EQ(MStreamFileGetSize64W(wide(sparse).data()), 3 * kGiB + 3);
  EXPECT_EQ(MStreamFileGetSizeS(sparse.c_str()), -1) << "more than 31 bits hold";
}

TEST_F(StreamFile64, BufferedStreamsNeverAnswerAWrongSize) {
  const std::string sparse = fileWith("sparse", "");
  std::filesystem::resize_file(sparse, 3 * kGiB);
  // Where `long` has 32 bits such a file is not even opened.
  MStreamHandle* const stream = MStreamOpenFromFileS(sparse.c_str(), 1);
  EXPECT_EQ(MStreamGetSize(stream), -1);
  MStreamClose(stream);
}

TEST_F(StreamFile64, SizeLeavesThePositionAndSeesGrowth) {
  MStream64Handle* const stream = MStreamOpenFromFile64S(fileWith("f", "abcde").c_str(), 4);
  EXPECT_EQ(MStreamSeek64(stream, kStart, 2), 0);
  EXPECT_EQ(MStreamGetSize64(stream), 5);
  EXPECT_EQ(MStreamTell64(stream), 2);
  EXPECT_EQ(MStreamSeek64(stream, kEnd, 0), 0);
  EXPECT_EQ(MStreamWrite64(stream, "fg", 2), 2);
  EXPECT_EQ(MStreamGetSize64(stream), 7);
  EXPECT_EQ(MStreamClose64(stream), 1);
}

TEST_F(StreamFile64, RefusesSeeksBeforeTheStartAndUnknownOrigins) {
  MStream64Handle* const stream = MStreamOpenFromFile64S(fileWith("f", "abcde").c_str(), 1);
  MStreamSeek64(stream, kStart, 2);
  EXPECT_EQ(MStreamSeek64(stream, kStart, -1), -1);
  EXPECT_EQ(MStreamSeek64(stream, kCurrent, -3), -1);
  EXPECT_EQ(MStreamSeek64(stream, 3, 0), -1);
  EXPECT_EQ(MStreamSeek64(stream, -1, 0), -1);
  EXPECT_EQ(MStreamTell64(stream), 2);
  MStreamClose64(stream);
}

TEST_F(StreamFile64, RefusesNullsAndCountsBelowOne) {
  EXPECT_EQ(MStreamOpenFromFile64S(nullptr, 1), nullptr);
  EXPECT_EQ(MStreamOpenFromFile64W(nullptr, 1), nullptr);
  EXPECT_EQ(MStreamOpenFromFile64S(path("missing").c_str(), 1), nullptr);
  char byte = '#';
  EXPECT_EQ(MStreamRead64(nullptr, &byte, 1), 0);
  EXPECT_EQ(MStreamWrite64(nullptr, &byte, 1), 0);
  EXPECT_EQ(MStreamSeek64(nullptr, kStart, 0), -1);
  EXPECT_EQ(MStreamTell64(nullptr), -1);
  EXPECT_EQ(MStreamGetSize64(nullptr), -1);
  EXPECT_EQ(MStreamClose64(nullptr), 0);
  MStream64Handle* const stream = MStreamOpenFromFile64W(wide(fileWith("f", "ab")).data(), 4);
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(MStreamRead64(stream, nullptr, 1), 0);
  EXPECT_EQ(MStreamRead64(stream, &byte, 0), 0);
  EXPECT_EQ(MStreamRead64(stream, &byte, -1), 0);
  EXPECT_EQ(MStreamWrite64(stream, nullptr, 1), 0);
  EXPECT_EQ(MStreamWrite64(stream, &byte, -1), 0);
  EXPECT_EQ(MStreamTell64(stream), 0);
  MStreamClose64(stream);
  EXPECT_EQ(contents(path("f")), "ab");
}

}  // namespace
