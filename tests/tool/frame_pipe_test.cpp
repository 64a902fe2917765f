// Frames on their way through apply and convert: from the test and from ffmpeg.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "errors.h"
#include "frame_source.h"
#include "image_files.h"
#include "input_file.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

class FramePipeTest : public ToolTest {
 protected:
  // Standard output of a shell's command line in the test's folder. $QPX is the tool.
  std::string shell(const std::string& commands) const {
    const std::string line =
        "cd '" + path("") + "' && QPX='" QPX_TOOL_PATH "' && set -e; " + commands;
    // As a user's shell has it, for the programs at both ends of a pipe.
    signal(SIGPIPE, SIG_DFL);
    FILE* pipe = popen(line.c_str(), "r");
    signal(SIGPIPE, SIG_IGN);
    if (pipe == nullptr) return {};
    std::string out;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) out += static_cast<char>(c);
    EXPECT_EQ(pclose(pipe), 0) << commands;
    return out;
  }
};

// Four frames of bars with red, green and blue at the bottom.
constexpr const char* kSource =
    "ffmpeg -nostdin -v error -f lavfi -i testsrc2=s=64x48:r=5:d=0.8 -pix_fmt yuv420p ";

std::string negative(std::string samples) {
  for (char& sample : samples) sample = static_cast<char>(255 - static_cast<uint8_t>(sample));
  return samples;
}

TEST_F(FramePipeTest, EffectsRunInTheFormatOfRawFrames) {
  std::string frames;
  for (int i = 0; i < 3 * 36; ++i) frames += static_cast<char>(i);
  const ToolRun result =
      run({"apply", "Fx1800", "-", "-", "--from", "rgb24", "--in-size", "4x3"}, frames);
  ASSERT_TRUE(succeeded(result));
  EXPECT_EQ(result.out, negative(frames));
  const ToolRun nv21 =
      run({"apply", "Fx1800", "-", "-", "--from", "nv21", "--in-size", "6x4"}, frames);
  ASSERT_TRUE(succeeded(nv21));
  ASSERT_EQ(nv21.out.size(), 108u);
  for (size_t frame = 0; frame < 3; ++frame) {
    EXPECT_EQ(nv21.out.substr(frame * 36, 24), negative(frames.substr(frame * 36, 24)));
  }
}

TEST_F(FramePipeTest, StreamsKeepTheirHeader) {
  const std::string header = "YUV4MPEG2 W2 H2 F24:1 Ip A1:1 C420mpeg2 XCOLORRANGE=LIMITED\n";
  const std::string in =
      header + "FRAME\n" + std::string(6, '\x60') + "FRAME\n" + std::string(6, '\x70');
  const ToolRun result = run({"apply", "Fx1800", "-", "-"}, in);
  ASSERT_TRUE(succeeded(result));
  EXPECT_EQ(result.out.size(), in.size());
  EXPECT_TRUE(result.out.starts_with(header + "FRAME\n" + std::string(4, '\x9F')));
}

TEST_F(FramePipeTest, MixedEffectsGoByWayOfRgb) {
  const std::string frame(48, '\x60');
  const ToolRun half =
      run({"apply", "Fx1800", "-", "-", "--from", "rgb24", "--in-size", "4x4", "--strength", "50"},
          frame);
  ASSERT_TRUE(succeeded(half));
  ASSERT_EQ(half.out.size(), 48u);
  for (const char sample : half.out) ASSERT_NEAR(static_cast<uint8_t>(sample), 0x80, 1);
  const ToolRun none = run({"apply", "Fx1800", "-", "-", "--from", "i444", "--in-size", "4x4",
                            "--strength", "0", "--format", "bgr24"},
                           std::string(16, '\x60') + std::string(32, '\x80'));
  ASSERT_TRUE(succeeded(none));
  ASSERT_EQ(none.out.size(), 48u);
  EXPECT_NEAR(static_cast<uint8_t>(none.out[5]), 0x60, 1);
  EXPECT_NEAR(static_cast<uint8_t>(none.out[40]), 0x80, 1);
}

TEST_F(FramePipeTest, ThreadsChangeNeitherFramesNorTheirOrder) {
  std::string frames;
  for (int i = 0; i < 40 * 24; ++i) frames += static_cast<char>(i * 7 + i / 24);
  const auto gothic = [&](const std::string& threads) {
    return run({"apply", "Gothic", "-", "-", "--from", "nv21", "--in-size", "4x4", "--threads",
                threads},
               frames)
        .out;
  };
  const std::string one = gothic("1");
  EXPECT_EQ(one.size(), frames.size());
  EXPECT_EQ(gothic("3"), one);
  EXPECT_EQ(gothic("64"), one);
}

// A frame must not wait for the next one: a camera sends them when it has them.
TEST_F(FramePipeTest, EachFrameIsWrittenAsSoonAsItIsDone) {
  for (const std::string threads : {"1", "3"}) {
    const std::string out = shell(
        "mkfifo in out; $QPX apply Fx1800 in - --from grey --in-size 2x1 --threads " + threads +
        " > out & exec 3<>in; exec 4<out; printf ab >&3; head -c 2 <&4 >a; printf cd >&3; "
        "head -c 2 <&4 >b; exec 3>&-; wait; cat a b; rm in out a b");
    EXPECT_EQ(out, negative("abcd")) << threads;
  }
}

TEST_F(FramePipeTest, NoFrameIsMadeOfWhatAHeaderClaims) {
  write("in.y4m", "YUV4MPEG2 W20000 H20000 C444\nFRAME\n" + std::string(70, 'x'));
  tool::InputFile file(path("in.y4m"));
  tool::FrameSource source(file, tool::Range::bt601, false);
  EXPECT_EQ(source.frames(), 0);
  std::optional<tool::Frame> frame;
  EXPECT_THROW(source.next(frame), tool::RunError);
  EXPECT_FALSE(frame);
}

TEST_F(FramePipeTest, LargeFirstFramesComeInPieces) {
  std::string frames;
  for (int i = 0; i < 2 * 1300 * 900 * 3; ++i) frames += static_cast<char>(i * 31 + (i >> 12));
  write("in.raw", frames);
  tool::InputFile file(path("in.raw"));
  tool::FrameSource source(file, {&tool::pixelFormatByName("rgb24"), 1300, 900});
  EXPECT_EQ(source.frames(), 2);
  std::optional<tool::Frame> frame;
  std::string read;
  while (source.next(frame)) read.append(frame->data(), frame->data() + frame->bytes());
  EXPECT_TRUE(read == frames);
}

TEST_F(FramePipeTest, CutStreamsKeepTheirWholeFrames) {
  const std::string frame(12, '\x60');
  const ToolRun result =
      run({"apply", "Fx1800", "-", "a.raw", "--from", "rgb24", "--in-size", "2x2"}, frame + "abc");
  EXPECT_TRUE(failedWith(result, 1, "standard input: ends within frame 2"));
  EXPECT_EQ(read("a.raw"), negative(frame));
}

TEST_F(FramePipeTest, ApplyRefusesWhatCannotBeMeant) {
  EXPECT_TRUE(failedWith(run({"apply", "Fx1800", "-", "a.raw", "--from", "nv21"}), 2, "--in-size"));
  EXPECT_TRUE(
      failedWith(run({"apply", "Fx1800", "-", "a.png", "--from", "nv21", "--in-size", "2x2"}), 2,
                 "qpx convert"));
  EXPECT_TRUE(
      failedWith(run({"apply", "Fx1800", "-", "a.y4m"}, "something else"), 1, "no YUV4MPEG2"));
  EXPECT_EQ(files(), "");
}

TEST_F(FramePipeTest, AReaderThatLeavesEndsTheRunQuietly) {
  const std::string out = shell(
      std::string(kSource) +
      "-f rawvideo in.yuv; for i in 1 2 3 4 5 6 7 8 9 10; do cat in.yuv in.yuv in.yuv; done "
      "| $QPX convert - - --from i420 --in-size 64x48 --to rgb24 2>err | head -c 100; cat err");
  EXPECT_EQ(out.size(), 100u);
}

TEST_F(FramePipeTest, TakesWhatFfmpegWritesAndWritesWhatItTakes) {
  shell(std::string(kSource) +
        "-f yuv4mpegpipe - | $QPX convert - - --size 32x24 --bilinear | $QPX apply Fx1800 - - | "
        "ffmpeg -v error -f yuv4mpegpipe -i - -f rawvideo -pix_fmt yuv420p out.yuv");
  EXPECT_EQ(read("out.yuv").size(), 4u * 32 * 24 * 3 / 2);
}

TEST_F(FramePipeTest, ColoursAreThoseOfFfmpeg) {
  shell(std::string(kSource) + "-f yuv4mpegpipe - | $QPX convert - a.rgb --to rgb24");
  const std::string frames = read("a.rgb");
  ASSERT_EQ(frames.size(), 4u * 64 * 48 * 3);
  const auto expectColor = [&](size_t x, int red, int green, int blue) {
    for (size_t frame = 0; frame < 4; ++frame) {
      const size_t at = ((frame * 48 + 45) * 64 + x) * 3;
      EXPECT_NEAR(static_cast<uint8_t>(frames[at]), red, 6) << x;
      EXPECT_NEAR(static_cast<uint8_t>(frames[at + 1]), green, 6) << x;
      EXPECT_NEAR(static_cast<uint8_t>(frames[at + 2]), blue, 6) << x;
    }
  };
  expectColor(5, 255, 0, 0);
  expectColor(17, 0, 255, 0);
  expectColor(38, 0, 0, 255);
}

TEST_F(FramePipeTest, RawFramesOfEveryLayoutAreThoseOfFfmpeg) {
  shell(std::string(kSource) + "-f yuv4mpegpipe in.y4m");
  for (const std::string layout : {"nv21", "nv12", "yuv420p"}) {
    const std::string name = layout == "yuv420p" ? "i420" : layout;
    shell("ffmpeg -nostdin -v error -y -i in.y4m -f rawvideo -pix_fmt " + layout + " theirs");
    shell("$QPX convert in.y4m ours --raw --to " + name);
    EXPECT_EQ(read("ours"), read("theirs")) << layout;
  }
}

}  // namespace
}  // namespace qpx::test
