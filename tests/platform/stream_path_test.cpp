#include <qpx/streams.h>

#include <string>

#include "platform/temporary_folder.h"

namespace {

using StreamPath = qpx::testing::StreamFolder;

TEST_F(StreamPath, SizesOfFiles) {
  const std::string file = fileWith("f", "abcde");
  EXPECT_EQ(MStreamFileGetSizeS(file.c_str()), 5);
  EXPECT_EQ(MStreamFileGetSize64S(file.c_str()), 5);
  EXPECT_EQ(MStreamFileGetSize64W(wide(file).data()), 5);
  EXPECT_EQ(MStreamFileGetSizeS(path("missing").c_str()), -1);
  EXPECT_EQ(MStreamFileGetSize64S(path("missing").c_str()), -1);
  EXPECT_EQ(MStreamFileGetSizeS(nullptr), -1);
  EXPECT_EQ(MStreamFileGetSize64W(nullptr), -1);
}

TEST_F(StreamPath, LargestSizeOfTheNarrowForm) {
  const std::string file = fileWith("f", "");
  std::filesystem::resize_file(file, 2147483647);
  EXPECT_EQ(MStreamFileGetSizeS(file.c_str()), 2147483647);
  std::filesystem::resize_file(file, 2147483648);
  EXPECT_EQ(MStreamFileGetSizeS(file.c_str()), -1);
}

TEST_F(StreamPath, ExistenceIsReadability) {
  const std::string file = fileWith("f", "");
  EXPECT_EQ(MStreamFileExistsS(file.c_str()), 1);
  EXPECT_EQ(MStreamFileExistsW(wide(file).data()), 1);
  EXPECT_EQ(MStreamFileExistsS(path("missing").c_str()), 0);
  EXPECT_EQ(MStreamFileExistsW(wide(path("missing")).data()), 0);
  EXPECT_EQ(MStreamFileExistsS(nullptr), 0);
  EXPECT_EQ(MStreamFileExistsW(nullptr), 0);
}

TEST_F(StreamPath, CreateEmptiesAndGivesTheStream) {
  const std::string file = fileWith("f", "old");
  MStreamHandle* stream = MStreamFileCreateS(file.c_str());
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(MStreamWrite(stream, "ab", 2), 2);
  EXPECT_EQ(MStreamClose(stream), 1);
  EXPECT_EQ(contents(file), "ab");
  stream = MStreamFileCreateW(wide(path("g")).data());
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(MStreamClose(stream), 1);
  EXPECT_EQ(MStreamFileGetSizeS(path("g").c_str()), 0);
  EXPECT_EQ(MStreamFileCreateS(nullptr), nullptr);
  EXPECT_EQ(MStreamFileCreateW(nullptr), nullptr);
}

TEST_F(StreamPath, RenameAndMoveReplaceTheTarget) {
  fileWith("a", "A");
  fileWith("b", "B");
  EXPECT_EQ(MStreamFileRenameS(path("a").c_str(), path("b").c_str()), 0);
  EXPECT_EQ(contents(path("b")), "A");
  EXPECT_EQ(MStreamFileExistsS(path("a").c_str()), 0);
  EXPECT_EQ(MStreamFileMoveS(path("b").c_str(), path("c").c_str()), 0);
  EXPECT_EQ(contents(path("c")), "A");
  EXPECT_EQ(MStreamFileRenameS(path("missing").c_str(), path("b").c_str()), -1);
  EXPECT_EQ(MStreamFileMoveS(path("missing").c_str(), path("b").c_str()), -1);
  EXPECT_EQ(MStreamFileRenameS(nullptr, path("b").c_str()), -1);
  EXPECT_EQ(MStreamFileMoveS(path("c").c_str(), nullptr), -1);
}

TEST_F(StreamPath, DeleteRemovesOnce) {
  const std::string file = fileWith("f", "x");
  EXPECT_EQ(MStreamFileDeleteS(file.c_str()), 0);
  EXPECT_EQ(MStreamFileDeleteS(file.c_str()), -1);
  EXPECT_EQ(MStreamFileDeleteS(nullptr), -1);
}

TEST_F(StreamPath, CopyTakesTheTargetFirst) {
  for (const size_t size : {size_t{0}, size_t{1}, size_t{1023}, size_t{1024}, size_t{5000}}) {
    const std::string text(size, 'x');
    fileWith("from", text);
    EXPECT_EQ(MStreamFileCopyS(path("to").c_str(), path("from").c_str(), 1), 1);
    EXPECT_EQ(contents(path("to")), text);
    EXPECT_EQ(contents(path("from")), text);
  }
}

TEST_F(StreamPath, CopyOverwritesOnlyWhenAsked) {
  fileWith("from", "new");
  fileWith("to", "old one");
  EXPECT_EQ(MStreamFileCopyS(path("to").c_str(), path("from").c_str(), 0), 0);
  EXPECT_EQ(contents(path("to")), "old one");
  EXPECT_EQ(MStreamFileCopyS(path("to").c_str(), path("from").c_str(), 1), 1);
  EXPECT_EQ(contents(path("to")), "new");
  EXPECT_EQ(MStreamFileCopyS(path("fresh").c_str(), path("from").c_str(), 0), 1);
  EXPECT_EQ(contents(path("fresh")), "new");
}

TEST_F(StreamPath, CopyOntoItselfKeepsTheFile) {
  const std::string file = fileWith("f", "precious");
  std::filesystem::create_hard_link(file, path("link"));
  EXPECT_EQ(MStreamFileCopyS(file.c_str(), file.c_str(), 1), 0);
  EXPECT_EQ(MStreamFileCopyS(path("link").c_str(), file.c_str(), 1), 0);
  EXPECT_EQ(contents(file), "precious");
}

TEST_F(StreamPath, CopyReportsFailures) {
  const std::string file = fileWith("f", "abc");
  EXPECT_EQ(MStreamFileCopyS(path("to").c_str(), path("missing").c_str(), 1), 0);
  EXPECT_EQ(MStreamFileExistsS(path("to").c_str()), 0) << "no target without a source";
  EXPECT_EQ(MStreamFileCopyS(path("no/such").c_str(), file.c_str(), 1), 0);
  EXPECT_EQ(MStreamFileCopyS("/dev/full", file.c_str(), 1), 0);
  EXPECT_EQ(MStreamFileCopyS(nullptr, file.c_str(), 1), 0);
  EXPECT_EQ(MStreamFileCopyS(path("to").c_str(), nullptr, 1), 0);
}

}  // namespace
