// Where standard error is no terminal nothing is drawn, but steps are counted all the same.
#include "progress.h"

#include <algorithm>
#include <string>

#include "engine_pass.h"
#include "image_file.h"
#include "image_files.h"
#include "run_tool.h"
#include "sample_scene.h"

namespace qpx::test {
namespace {

using tool::Progress;
using tool::progressLine;
using tool::ProgressShare;

class ProgressTest : public ToolTest {};

TEST_F(ProgressTest, LineShowsShareAndLabel) {
  const std::string tenth = "[###" + std::string(27, '.') + "]  10% a.jpg";
  EXPECT_EQ(progressLine(1, 10, "a.jpg", 80, false), tenth);
  EXPECT_EQ(progressLine(10, 10, "", 80, false), "[" + std::string(30, '#') + "] 100% ");
  EXPECT_EQ(progressLine(11, 10, "", 80, false), progressLine(10, 10, "", 80, false));
  EXPECT_EQ(progressLine(0, 0, "", 80, false), "[" + std::string(30, '.') + "]   0% ");
}

TEST_F(ProgressTest, LineFitsTheTerminal) {
  const std::string label(100, 'x');
  for (int columns = 7; columns < 150; ++columns) {
    const size_t size = progressLine(1, 3, label, columns, false).size();
    EXPECT_LE(size, static_cast<size_t>(columns));
    EXPECT_GE(size + 1, std::min<size_t>(static_cast<size_t>(columns), 138)) << columns;
  }
}

TEST_F(ProgressTest, FramesAreCountedWithTheirRate) {
  using tool::framesLine;
  EXPECT_EQ(framesLine(90, 0, 3, "standard input", 80, false),
            "90 frames, 30.0 a second  standard input");
  EXPECT_EQ(framesLine(0, 0, 1, "a.y4m", 80, false), "0 frames  a.y4m");
  EXPECT_EQ(framesLine(1, 0, 4, "a.y4m", 80, false), "1 frame, 0.2 a second  a.y4m");
  EXPECT_EQ(framesLine(30, 300, 1, "a.y4m", 90, false),
            "[###" + std::string(27, '.') + "]  10% 30 of 300 frames, 30.0 a second  a.y4m");
  for (int columns = 0; columns < 100; ++columns) {
    EXPECT_LE(framesLine(5, 0, 1, "a", columns, false).size(), static_cast<size_t>(columns));
  }
}

TEST_F(ProgressTest, CountingFramesBeginsAnew) {
  Progress progress("", 500);
  progress.advance(250);
  progress.countFrames(0);
  progress.advance();
  EXPECT_EQ(progress.done(), 1);
}

TEST_F(ProgressTest, RowsAddUpToAllStepsOfAShare) {
  for (const int rows : {1, 3, 249, 250, 251, 7001}) {
    Progress progress("", 250);
    ProgressShare share(progress, 250);
    share.expect(rows);
    for (int i = 0; i < rows; ++i) {
      EXPECT_EQ(progress.done(), int64_t{250} * i / rows);
      share.advance();
    }
    EXPECT_EQ(progress.done(), 250);
    share.advance();
    EXPECT_EQ(progress.done(), 250);
  }
}

TEST_F(ProgressTest, ReadingAndWritingFillTheirShares) {
  const Image image = randomImage(9, 37, 3, 51);
  write("a.jpg", jpegFile(image));
  write("a.png", pngFile(image));
  write("b.png", pngFile(image, {.interlaced = true}));
  for (const char* name : {"a.jpg", "a.png", "b.png"}) {
    Progress progress("", 500);
    const tool::Picture picture = tool::readPicture(path(name), {progress, 250});
    EXPECT_EQ(progress.done(), 250) << name;
    const auto kind = tool::kindByName(name).value();
    tool::writePicture(picture, path("out"), kind, 90, {progress, 250});
    EXPECT_EQ(progress.done(), 500) << name;
  }
}

TEST_F(ProgressTest, NarrowBandsAdvanceToo) {
  const std::vector<tool::EffectCall> chain = {tool::parseEffect("Fx1800")};
  const tool::PixelFormat& format = tool::pixelFormatByName("bgr24");
  tool::Frame in(format, 4, 1501), out(format, 4, 1501);
  std::fill_n(in.data(), in.bytes(), uint8_t{9});
  Progress progress("", 500);
  EXPECT_EQ(tool::EnginePass(chain, 0).run(in, out, 1, 1, 500, progress), 0);
  EXPECT_EQ(progress.done(), 500);
}

TEST_F(ProgressTest, DrawingASampleAdvancesByRows) {
  Progress progress("", 48);
  tool::drawSampleScene(64, 48, 1, progress);
  EXPECT_EQ(progress.done(), 48);
}

}  // namespace
}  // namespace qpx::test
