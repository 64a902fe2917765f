// Every way to go wrong ends in one clear line, the right status, and no file left behind.
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "image_files.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

class FailureTest : public ToolTest {
 protected:
  FailureTest() { write("in.png", pngFile(randomImage(20, 20, 3, 31))); }

  ToolRun apply(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "apply");
    return run(arguments);
  }
};

TEST_F(FailureTest, TruncatedJpegsAtEveryLength) {
  for (const bool progressive : {false, true}) {
    const std::string whole =
        jpegFile(randomImage(24, 24, 3, 32), {.quality = 80, .progressive = progressive});
    for (size_t length = 3; length < whole.size(); length += 1 + whole.size() / 60) {
      write("cut.jpg", whole.substr(0, length));
      ASSERT_TRUE(failedWith(apply({"Fx1800", "cut.jpg", "out.jpg"}), 1, "cut.jpg: is a damaged"))
          << length << " of " << whole.size();
    }
    write("cut.jpg", whole.substr(0, whole.size() - 1));
    EXPECT_TRUE(failedWith(apply({"Fx1800", "cut.jpg", "out.jpg"}), 1, "cut.jpg: is a damaged"));
  }
  EXPECT_EQ(files(), "cut.jpg in.png");
}

TEST_F(FailureTest, TruncatedPngsAtEveryLength) {
  const std::string whole = read("in.png");
  for (size_t length = 4; length < whole.size(); length += 1 + whole.size() / 60) {
    write("cut.png", whole.substr(0, length));
    ASSERT_TRUE(failedWith(apply({"Fx1800", "cut.png", "out.png"}), 1, "cut.png: is a damaged"))
        << length << " of " << whole.size();
  }
  EXPECT_EQ(files(), "cut.png in.png");
}

TEST_F(FailureTest, FilesThatAreNoPictures) {
  write("empty.jpg", "");
  write("text.jpg", "Dear all,\n");
  EXPECT_TRUE(failedWith(apply({"Fx1800", "empty.jpg", "o.png"}), 1, "empty.jpg: is empty"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "text.jpg", "o.png"}), 1, "neither JPEG nor PNG"));
  EXPECT_TRUE(
      failedWith(apply({"Fx1800", "missing.jpg", "o.png"}), 1, "missing.jpg: cannot be read"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", ".", "o.png"}), 1, "cannot be read"));
  EXPECT_TRUE(failedWith(run({"apply", "Fx1800", "-", "o.png"}), 1, "standard input: is empty"));
  EXPECT_EQ(files(), "empty.jpg in.png text.jpg");
}

TEST_F(FailureTest, PicturesBeyondTheLimitAreRefusedBeforeMemoryIsTaken) {
  std::string huge = pngFile(makeImage(1, 1, 3, [](int, int, int) { return 0; }));
  // Width and height of the header, 100000 each, and its checksum.
  huge.replace(16, 8, std::string("\0\x01\x86\xA0\0\x01\x86\xA0", 8));
  huge.replace(29, 4, std::string("\x27\x30\x9C\x9F", 4));
  write("huge.png", huge);
  EXPECT_TRUE(
      failedWith(apply({"Fx1800", "huge.png", "o.png"}), 1, "huge.png: 100000x100000 pixels"));

  std::string wide = jpegFile(makeImage(8, 8, 3, [](int, int, int) { return 0; }));
  const size_t frame = wide.find("\xFF\xC0");
  ASSERT_NE(frame, std::string::npos);
  wide.replace(frame + 5, 4, "\xFF\x00\xFF\x00", 4);
  write("wide.jpg", wide);
  EXPECT_TRUE(failedWith(apply({"Fx1800", "wide.jpg", "o.png"}), 1, "512 megapixels"));
}

TEST_F(FailureTest, RandomDamageNeverCrashes) {
  const std::string whole = jpegFile(randomImage(24, 24, 3, 33), {.quality = 80});
  for (size_t i = 0; i < 60; ++i) {
    std::string damaged = whole;
    damaged[2 + i * (whole.size() - 4) / 60] ^= static_cast<char>(0x5A + i);
    write("bad.jpg", damaged);
    const ToolRun result = apply({"Fx1800", "bad.jpg", "out.png"});
    ASSERT_TRUE(result.status == 0 || result.status == 1) << i << " " << result.err;
  }
}

TEST_F(FailureTest, OutputsThatCannotBeWritten) {
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", "missing/o.png"}), 1,
                         "missing/o.png: cannot be written"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", ".", "--to", "png"}), 1, "cannot be written"));
  EXPECT_EQ(files(), "in.png");
}

// A limit on what a child may write stands in for a disk without room. Device nodes would do too,
// but a tool that is broken could replace them.
class WriteLimit {
 public:
  explicit WriteLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &saved_);
    const rlimit limit = {bytes, saved_.rlim_max};
    signal(SIGXFSZ, SIG_DFL);  // as it is where a shell starts the tool
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~WriteLimit() { setrlimit(RLIMIT_FSIZE, &saved_); }
  WriteLimit(const WriteLimit&) = delete;
  WriteLimit& operator=(const WriteLimit&) = delete;

 private:
  rlimit saved_{};
};

TEST_F(FailureTest, ADiskThatFillsUpLeavesTheOldFile) {
  ASSERT_EQ(run({"sample", "big.png", "--size", "200x200"}).status, 0);
  for (const char* out : {"out.png", "out.jpg"}) {
    write(out, "old");
    ToolRun result;
    {
      const WriteLimit limit(1000);
      result = apply({"Fx1800", "big.png", out});
    }
    EXPECT_TRUE(
        failedWith(result, 1, std::string(out) + ": cannot be written (File too large): raise"));
    EXPECT_EQ(read(out), "old");
  }
  EXPECT_EQ(files(), "big.png in.png out.jpg out.png");  // above all no temporary file
}

TEST_F(FailureTest, WrongCallsSayWhatWouldBeRight) {
  EXPECT_TRUE(failedWith(apply({"Fx1801", "in.png", "o.png"}), 2, "did you mean Fx1800?"));
  EXPECT_TRUE(failedWith(apply({"Fx1300:bright=3", "in.png", "o.png"}), 2, "it takes brightness"));
  EXPECT_TRUE(failedWith(apply({"Fx1300:brightness=300", "in.png", "o.png"}), 2, "-128 ... 127"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", "o.bmp"}), 2, "name it .jpg or .png"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", "o.png", "--format", "rgb48"}), 2, "nv21"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", "o.png", "--format", "yvyu"}), 2, "yvyu"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", "o.png", "--strength", "101"}), 2, "0 to 100"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", "o.png", "--quality", "0"}), 2, "1 to 100"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", "o.png", "--threads", "0"}), 2, "--threads"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", "o.png", "--sharpen"}), 2, "--sharpen"));
  EXPECT_TRUE(
      failedWith(apply({"Fx1800", "in.png", "o.png", "--second", "in.png"}), 2, "--second"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png"}), 2, "EFFECT... IN OUT"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", "in.png", "o.png"}), 2, "--out-dir"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "-", "o.png", "--mask", "-"}), 2, "standard input"));
  EXPECT_EQ(files(), "in.png");
}

TEST_F(FailureTest, UnknownOptionsAreNamedBeforeAnythingElse) {
  EXPECT_TRUE(failedWith(run({"--foo"}), 2, "unknown option --foo: see 'qpx --help'"));
  EXPECT_TRUE(failedWith(run({"apply", "--foo"}), 2, "unknown option --foo: see 'qpx apply"));
  EXPECT_TRUE(failedWith(run({"convert", "in.png", "o.png", "--form", "nv21"}), 2,
                         "unknown option --form (did you mean --from?)"));
  EXPECT_TRUE(failedWith(run({"etc", "encode", "in.png", "o.pkm", "--qualty=fast"}), 2,
                         "(did you mean --quality?): see 'qpx etc encode --help'"));
}

TEST_F(FailureTest, NumbersAreFiniteAndWholeWhereTheyCount) {
  const auto refused = [&](std::vector<std::string> call, const std::string& text) {
    EXPECT_TRUE(failedWith(run(call), 2, text)) << call.back();
  };
  for (const char* value : {"nan", "inf", "-inf", "1e400", "", " 1", "1 ", "two"}) {
    refused({"apply", "Fx1800", "in.png", "o.png", "--strength", value}, "from 0 to 100, not");
    refused({"etc", "merge", "a.pkm", "b.pkm", "c.pkm", "--alpha", value}, "from 0 to 1, not");
    refused({"retouch", "in.png", "o.png", "--mask", "in.png", "--weight", value}, "0 to 1, not");
    refused({"retouch", "in.png", "o.png", "--mask", "in.png", "--scale", value}, "1 to 64, not");
  }
  refused({"sample", "o.png", "--quality", "1.5"}, "a whole number from 1 to 100, not '1.5'");
  refused({"sample", "o.png", "--seed", "-1"}, "a whole number from 0 to 4294967295, not '-1'");
  refused({"motion-blur", "in.png", "o.png", "--length", "9999999999999"}, "not '9999999999999'");
  // A zero in front is no other base.
  EXPECT_TRUE(succeeded(run({"sample", "a.png", "--size", "64x48", "--seed", "010"})));
  EXPECT_TRUE(succeeded(run({"sample", "b.png", "--size", "64x48", "--seed", "10"})));
  EXPECT_TRUE(read("a.png") == read("b.png"));
}

TEST_F(FailureTest, WhatIsWrongWithASecondFileIsSaidOfThatFile) {
  for (const std::string command : {"retouch", "motion-blur"}) {
    const ToolRun missing = run({command, "in.png", "o.png", "--mask", "none.png"});
    EXPECT_TRUE(failedWith(missing, 1, "qpx: none.png: cannot be read")) << command;
  }
}

TEST_F(FailureTest, PlacesThatCannotBeWrittenAreFoundOutBeforeTheWork) {
  write("mask.png",
        pngFile(makeImage(20, 20, 1, [](int x, int, int) { return x == 9 ? 255 : 0; })));
  const std::vector<std::vector<std::string>> calls = {
      {"retouch", "in.png", "no/o.png", "--mask", "mask.png"},
      {"sheet", "in.png", "no/o.png", "--effects", "Sepia"},
      {"cutout", "in.png", "no/o.png", "-f", "2,2 9,9", "-b", "15,2 15,15"},
      {"cutout", "in.png", "o.png", "-f", "2,2", "-b", "15,2", "--mask", "no/m.png"},
      {"cutout", "in.png", "o.png", "-f", "2,2", "-b", "15,2", "--outline", "no/o.svg"}};
  for (const auto& call : calls) {
    EXPECT_TRUE(failedWith(run(call), 1, "cannot be written")) << call.front();
    EXPECT_EQ(files(), "in.png mask.png") << call.back();
  }
}

TEST_F(FailureTest, NamesSayWhatIsInTheFile) {
  write("a.pkm", "PKM 10 and more");
  write("a.y4m", "YUV4MPEG2 W2 H2\n");
  EXPECT_TRUE(failedWith(run({"etc", "encode", "in.png", "o.png"}), 2, "name it .pkm"));
  EXPECT_TRUE(failedWith(run({"etc", "crop", "a.pkm", "o.jpg", "--rect", "0,0,4,4"}), 2, ".pkm"));
  EXPECT_TRUE(failedWith(run({"cutout", "in.png", "o.bmp", "-f", "2,2", "-b", "9,9"}), 2, ".png"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "a.pkm", "o.png"}), 1, "'qpx etc decode'"));
  EXPECT_TRUE(failedWith(run({"rotate", "a.y4m", "o.png", "--degrees", "5"}), 1, "'qpx convert'"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", "o.y4m"}), 1, "'qpx convert' makes one"));
  EXPECT_TRUE(failedWith(run({"convert", "in.png", "o.bmp"}), 2, "--to must say"));
}

TEST_F(FailureTest, WrongCallsWithAFolder) {
  EXPECT_TRUE(
      failedWith(apply({"Fx1800", "--out-dir", "d"}), 2, "at least one effect and one input"));
  EXPECT_TRUE(failedWith(apply({"in.png", "--out-dir", "d"}), 2, "unknown effect 'in.png'"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "Fx1801", "in.png", "--out-dir", "d"}), 2,
                         "did you mean Fx1800?"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "-", "--out-dir", "d"}), 2, "standard input"));
  EXPECT_TRUE(
      failedWith(apply({"Fx1800", "in.png", "./in.png", "--out-dir", "d"}), 2, "two inputs"));
  EXPECT_EQ(files(), "in.png");
}

TEST_F(FailureTest, AFolderOfOutputsIsNotThatOfTheInputs) {
  const std::string before = read("in.png");
  write("in.jpg", "no picture");
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", "--out-dir", "."}), 2,
                         "./in.png: would replace the input in.png"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "./in.jpg", "--out-dir", path("")}), 2,
                         "would replace the input ./in.jpg"));
  EXPECT_EQ(read("in.png"), before);
  EXPECT_EQ(files(), "in.jpg in.png");
}

TEST_F(FailureTest, SymbolicLinksThatLeadNowhereStay) {
  std::filesystem::create_symlink("missing", path("dangling.png"));
  std::filesystem::create_symlink("loop.png", path("loop.png"));
  for (const char* name : {"dangling.png", "loop.png"}) {
    EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", name}), 1, "link that leads nowhere"));
    EXPECT_TRUE(std::filesystem::is_symlink(path(name)));
  }
  EXPECT_EQ(files(), "dangling.png in.png loop.png");
}

TEST_F(FailureTest, EmptyValuesAreRefused) {
  for (const char* option : {"--mask", "--second", "--format", "--out-dir", "--to"}) {
    EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", "o.png", option, ""}), 2, option)) << option;
  }
  EXPECT_TRUE(failedWith(apply({"Fx1800", "", "o.png"}), 2, "is empty"));
  EXPECT_TRUE(failedWith(apply({"Fx1800", "in.png", ""}), 2, "is empty"));
  EXPECT_TRUE(failedWith(run({"sample", ""}), 2, "is empty"));
  EXPECT_TRUE(failedWith(run({"list", "--family", ""}), 2, "--family"));
  EXPECT_TRUE(failedWith(run({"list", "--format", ""}), 2, "--format"));
  EXPECT_TRUE(failedWith(run({"list", ""}), 2, "is empty"));
  EXPECT_EQ(files(), "in.png");
}

TEST_F(FailureTest, NamesCannotSteerTheTerminal) {
  const ToolRun result = apply({"Fx1800", "a\033[2J\nb", "o.png", "--verbose"});
  EXPECT_TRUE(failedWith(result, 1, "a\\x1b[2J\\x0ab: cannot be read"));
}

TEST_F(FailureTest, CallsWithoutSense) {
  EXPECT_TRUE(failedWith(run({"apply"}), 2, "qpx apply --help"));
  EXPECT_TRUE(failedWith(run({"sample"}), 2, "qpx sample --help"));
}

TEST_F(FailureTest, HelpAndVersionAreNoFailures) {
  for (const std::vector<std::string>& call : std::vector<std::vector<std::string>>{
           {"--help"}, {"apply", "--help"}, {"list", "--help"}, {"sample", "--help"}}) {
    const ToolRun result = run(call);
    EXPECT_TRUE(succeeded(result));
    EXPECT_NE(result.out.find("Example"), std::string::npos) << call.front();
  }
  EXPECT_TRUE(run({"--version"}).out.starts_with("qpx 1."));
}

}  // namespace
}  // namespace qpx::test
