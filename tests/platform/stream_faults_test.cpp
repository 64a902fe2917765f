// Every call that allocates, with every one of its allocations failing.

#include <qpx/streams.h>

#include <string>
#include <vector>

#include "platform/temporary_folder.h"
#include "support/failing_memory.h"

namespace {

using qpx::testing::FailingMemory;

class StreamFaults : public qpx::testing::StreamFolder {
 protected:
  // Runs body with the n-th allocation failing, alone and with all behind it; after each run
  // nothing may be left open or allocated. Returns the number of allocations that were made to
  // fail.
  template <typename Body>
  int64_t faults(Body body) {
    int64_t count = 0;
    for (const bool firstOnly : {true, false}) {
      count = FailingMemory::forEachFailure(firstOnly, [&] {
        body();
        expectAllGivenBack();
        EXPECT_EQ(FailingMemory::doubleFrees() + FailingMemory::foreignFrees(), 0);
      });
    }
    return count;
  }
};

bool refused() { return FailingMemory::failures() > 0; }

TEST_F(StreamFaults, OpeningMemory) {
  EXPECT_EQ(faults([] {
              MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, 0);
              EXPECT_EQ(stream == nullptr, refused());
              MStreamClose(stream);
            }),
            2);
  char block[4];
  EXPECT_EQ(faults([&block] {
              MStreamHandle* const stream = MStreamOpenFromMemoryBlock(block, 4);
              EXPECT_EQ(stream == nullptr, refused());
              MStreamClose(stream);
            }),
            1);
}

TEST_F(StreamFaults, OpeningFilesLeavesNoDescriptorAndNoEmptiedFile) {
  const std::string file = fileWith("f", "keep");
  const std::vector<uint16_t> wideFile = wide(file);
  for (const int32_t mode : {1, 2, 3, 4, 5, 6}) {
    EXPECT_EQ(faults([&] {
                fileWith("f", "keep");
                MStreamHandle* const stream = MStreamOpenFromFileS(file.c_str(), mode);
                EXPECT_EQ(stream == nullptr, refused());
                MStreamClose(stream);
                if (refused()) {
                  EXPECT_EQ(contents(file), "keep");
                }
              }),
              1);
    EXPECT_EQ(faults([&] {
                fileWith("f", "keep");
                MStream64Handle* const stream = MStreamOpenFromFile64S(file.c_str(), mode);
                EXPECT_EQ(stream == nullptr, refused());
                MStreamClose64(stream);
                if (refused()) {
                  EXPECT_EQ(contents(file), "keep");
                }
              }),
              1);
    EXPECT_EQ(faults([&] { MStreamClose(MStreamOpenFromFileW(wideFile.data(), mode)); }), 1);
    EXPECT_EQ(faults([&] { MStreamClose64(MStreamOpenFromFile64W(wideFile.data(), mode)); }), 1);
  }
  EXPECT_EQ(faults([&] { MStreamClose(MStreamFileCreateS(file.c_str())); }), 1);
  EXPECT_EQ(faults([&] { MStreamClose(MStreamFileCreateW(wideFile.data())); }), 1);
}

TEST_F(StreamFaults, AFileThatCannotBeOpenedLeavesNoRecord) {
  const std::string missing = path("missing");
  EXPECT_EQ(faults([&] { EXPECT_EQ(MStreamOpenFromFileS(missing.c_str(), 1), nullptr); }), 1);
  EXPECT_EQ(faults([&] { EXPECT_EQ(MStreamOpenFromFile64S(missing.c_str(), 1), nullptr); }), 1);
}

TEST_F(StreamFaults, AWriteEndsWhereMemoryDoesAndTheStreamLivesOn) {
  const std::vector<uint8_t> bytes(16384 * 3 + 100, 0x5A);
  const int32_t count = static_cast<int32_t>(bytes.size());
  for (int64_t n = 1; n <= 3; ++n) {
    MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, 100);
    FailingMemory::failFrom(n);
    const int32_t kept = 100 + static_cast<int32_t>(n - 1) * 16384;
    EXPECT_EQ(MStreamWrite(stream, bytes.data(), count), kept);
    EXPECT_EQ(MStreamGetSize(stream), kept);
    EXPECT_EQ(MStreamTell(stream), kept);
    FailingMemory::reset();
    EXPECT_EQ(MStreamWrite(stream, bytes.data(), 5), 5) << "memory is back";
    EXPECT_EQ(MStreamGetSize(stream), kept + 5);
    EXPECT_EQ(MStreamClose(stream), 1);
  }
}

TEST_F(StreamFaults, CopyWithoutABufferCopiesNothing) {
  char source[] = "abcdef";
  char target[6] = {};
  MStreamHandle* const from = MStreamOpenFromMemoryBlock(source, 6);
  MStreamHandle* const to = MStreamOpenFromMemoryBlock(target, 6);
  FailingMemory::failOnly(1);
  EXPECT_EQ(MStreamCopy(from, to, 6), 0);
  EXPECT_EQ(MStreamTell(from), 0);
  EXPECT_EQ(MStreamTell(to), 0);
  FailingMemory::reset();
  EXPECT_EQ(MStreamCopy(from, to, 6), 6);
  MStreamClose(from);
  MStreamClose(to);
}

TEST_F(StreamFaults, ServicesOnPathsNeedNoMemory) {
  const std::string file = fileWith("f", "abc");
  FailingMemory::failFrom(1);
  EXPECT_EQ(MStreamFileExistsS(file.c_str()), 1);
  EXPECT_EQ(MStreamFileGetSizeS(file.c_str()), 3);
  EXPECT_EQ(MStreamFileCopyS(path("g").c_str(), file.c_str(), 0), 1);
  FailingMemory::reset();
}

}  // namespace
