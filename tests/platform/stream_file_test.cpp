#include <qpx/streams.h>

#include <fstream>
#include <string>

#include "platform/temporary_folder.h"

namespace {

class StreamFile : public qpx::testing::StreamFolder {
 protected:
  // What a mode does to a file of "old" and to no file, as one line.
  std::string describe(int32_t mode) {
    std::string story;
    for (const bool exists : {true, false}) {
      std::filesystem::remove(path("f"));
      if (exists) fileWith("f", "old");
      MStreamHandle* const stream = MStreamOpenFromFileS(path("f").c_str(), mode);
      if (stream == nullptr) {
        story += "none;";
        continue;
      }
      char to[4] = {};
      const int32_t taken = MStreamRead(stream, to, 3);
      MStreamSeek(stream, kStart, 0);
      const int32_t written = MStreamWrite(stream, "N", 1);
      MStreamClose(stream);
      story += "r" + std::to_string(taken) + " w" + std::to_string(written) + " " +
               contents(path("f")) + ";";
    }
    return story;
  }
};

TEST_F(StreamFile, EachModeOpensItsWay) {
  EXPECT_EQ(describe(1), "r3 w0 old;none;");
  EXPECT_EQ(describe(2), "r0 w1 N;r0 w1 N;");
  EXPECT_EQ(describe(3), "r0 w1 oldN;r0 w1 N;");
  EXPECT_EQ(describe(4), "r3 w1 Nld;none;");
  EXPECT_EQ(describe(5), "r0 w1 N;r0 w1 N;");
  EXPECT_EQ(describe(6), "r3 w1 oldN;r0 w1 N;");
  for (const int32_t mode : {0, 7, -1, 1000}) EXPECT_EQ(describe(mode), describe(1)) << mode;
}

TEST_F(StreamFile, OriginsAreNumberedStartEndCurrent) {
  MStreamHandle* const stream = MStreamOpenFromFileS(fileWith("f", "abcdefgh").c_str(), 1);
  ASSERT_NE(stream, nullptr);
  const struct {
    int32_t origin, offset, lands;
  } kCases[] = {{kStart, 3, 3}, {kCurrent, 2, 5}, {kEnd, -2, 6}, {kCurrent, -6, 0}, {kEnd, 4, 12}};
  for (const auto& c : kCases) {
    EXPECT_EQ(MStreamSeek(stream, c.origin, c.offset), 0);
    EXPECT_EQ(MStreamTell(stream), c.lands);
  }
  EXPECT_EQ(MStreamSeek(stream, kStart, -1), -1);
  EXPECT_EQ(MStreamSeek(stream, 3, 0), -1);
  EXPECT_EQ(MStreamTell(stream), 12);
  EXPECT_EQ(MStreamClose(stream), 1);
}

TEST_F(StreamFile, SizeLeavesThePosition) {
  MStreamHandle* const stream = MStreamOpenFromFileS(fileWith("f", "abcdefgh").c_str(), 1);
  MStreamSeek(stream, kStart, 5);
  EXPECT_EQ(MStreamGetSize(stream), 8);
  char to[8];
  EXPECT_EQ(MStreamRead(stream, to, 8), 3);
  EXPECT_EQ(std::string(to, 3), "fgh");
  EXPECT_EQ(MStreamRead(stream, to, 8), 0);
  EXPECT_EQ(MStreamSetSize(stream, 1), -1) << "files keep their size";
  MStreamClose(stream);
}

TEST_F(StreamFile, FlushHandsTheBytesOn) {
  MStreamHandle* const stream = MStreamOpenFromFileS(path("f").c_str(), 2);
  EXPECT_EQ(MStreamWrite(stream, "abc", 3), 3);
  EXPECT_EQ(contents(path("f")), "");
  EXPECT_EQ(MStreamFlush(stream), 0);
  EXPECT_EQ(contents(path("f")), "abc");
  MStreamClose(stream);
}

TEST_F(StreamFile, CloseReportsAFailedLastWrite) {
  MStreamHandle* const stream = MStreamOpenFromFileS("/dev/full", 2);
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(MStreamWrite(stream, "abc", 3), 3) << "still in the buffer";
  EXPECT_EQ(MStreamClose(stream), 0);
}

TEST_F(StreamFile, MemoryCallsRefuseAFile) {
  MStreamHandle* const stream = MStreamOpenFromFileS(fileWith("f", "abc").c_str(), 4);
  char to = '#';
  EXPECT_EQ(STRMEMRead(stream, &to, 1), 0);
  EXPECT_EQ(STRMEMWrite(stream, &to, 1), 0);
  EXPECT_EQ(STRMEMSeek(stream, kStart, 0), 1);
  EXPECT_EQ(STRMEMTell(stream), -1);
  EXPECT_EQ(STRMEMGetSize(stream), -1);
  EXPECT_EQ(STRMEMClose(stream), 0);
  EXPECT_EQ(MStreamRead(stream, nullptr, 1), 0);
  EXPECT_EQ(MStreamRead(stream, &to, -1), 0);
  EXPECT_EQ(MStreamWrite(stream, nullptr, 1), 0);
  EXPECT_EQ(MStreamWrite(stream, &to, -1), 0);
  MStreamClose(stream);
  EXPECT_EQ(contents(path("f")), "abc");
}

TEST_F(StreamFile, WidePathsUseTheLowBytes) {
  std::vector<uint16_t> name = wide(fileWith("f\xE9", "abc"));
  name[0] = static_cast<uint16_t>(name[0] | 0x7700);
  MStreamHandle* const stream = MStreamOpenFromFileW(name.data(), 1);
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(MStreamGetSize(stream), 3);
  MStreamClose(stream);
  EXPECT_EQ(MStreamOpenFromFileW(wide(path("missing")).data(), 1), nullptr);
}

TEST_F(StreamFile, LongWidePathsAreCutTo255Bytes) {
  // The name that is left after the cut exists, the whole one does not.
  std::string whole = path("");
  whole.append(300 - whole.size(), 'n');
  const std::string cut = whole.substr(0, 255);
  std::ofstream(cut) << "cut";
  EXPECT_EQ(MStreamFileExistsW(wide(whole).data()), 1);
  EXPECT_EQ(MStreamFileExistsS(whole.c_str()), 0);
  EXPECT_EQ(MStreamFileGetSize64W(wide(whole).data()), 3);
}

TEST_F(StreamFile, NullAndMissingPathsAreRefused) {
  EXPECT_EQ(MStreamOpenFromFileS(nullptr, 2), nullptr);
  EXPECT_EQ(MStreamOpenFromFileW(nullptr, 2), nullptr);
  EXPECT_EQ(MStreamOpenFromFileS("", 2), nullptr);
  EXPECT_EQ(MStreamOpenFromFileS(path("no/such/folder").c_str(), 2), nullptr);
}

TEST_F(StreamFile, CopiesBetweenFilesAndMemory) {
  const std::string text(200000, 'q');
  MStreamHandle* const file = MStreamOpenFromFileS(fileWith("f", text).c_str(), 1);
  MStreamHandle* const memory = MStreamOpenFromMemoryBlock(nullptr, 0);
  EXPECT_EQ(MStreamCopy(file, memory, 500000), 200000);
  MStreamHandle* const target = MStreamOpenFromFileS(path("g").c_str(), 2);
  MStreamSeek(memory, kStart, 0);
  EXPECT_EQ(MStreamCopy(memory, target, 150000), 150000);
  MStreamClose(file);
  MStreamClose(memory);
  MStreamClose(target);
  EXPECT_EQ(contents(path("g")), text.substr(0, 150000));
}

}  // namespace
