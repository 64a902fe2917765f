// Frames keep their order and failures come after the frames before them, whatever lanes do.
#include "frame_pipeline.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "errors.h"

namespace qpx::tool {
namespace {

constexpr int kNobody = 1000;

// Turns frames of one pixel over; the frame `failing` fails in it.
class Negative : public FrameLane {
 public:
  Negative(std::atomic<int>& running, int failing)
      : running_(running), failing_(failing), result_(pixelFormatByName("grey"), 1, 1) {}

  const Frame& run(const Frame& frame) override {
    const int number = frame.data()[0];
    if (number == failing_) throw RunError("the lane fails");
    ++running_;
    // Early frames take longest, so that later ones are done before them.
    std::this_thread::sleep_for(std::chrono::microseconds(number % 4 == 0 ? 3000 : 100));
    result_.data()[0] = static_cast<uint8_t>(255 - number);
    --running_;
    return result_;
  }

 private:
  std::atomic<int>& running_;
  int failing_;
  Frame result_;
};

struct Outcome {
  std::vector<int> written;
  std::string parameters;
  std::string failure;
  int lanes = 0;
  int frames = 0;
};

// Frames 0 ... count - 1; the given one fails in the reader, a lane, or the writer.
Outcome run(int lanes, int count, int failsReading, int failsRunning, int failsWriting) {
  Outcome outcome;
  std::atomic<int> running{0}, made{0};
  int next = 0;
  try {
    runFramePipeline(
        [&](std::optional<Frame>& frame) -> std::optional<std::string> {
          if (next == failsReading) throw RunError("the reader fails");
          if (next == count) return std::nullopt;
          if (!frame) {
            frame.emplace(pixelFormatByName("grey"), 1, 1);
            ++outcome.frames;
          }
          frame->data()[0] = static_cast<uint8_t>(next++);
          return std::string(1, static_cast<char>('a' + (next - 1) % 26));
        },
        lanes,
        [&] {
          ++made;
          return std::make_unique<Negative>(running, failsRunning);
        },
        [&](const Frame& frame, const std::string& parameters) {
          const int number = 255 - frame.data()[0];
          if (number == failsWriting) throw RunError("the writer fails");
          outcome.written.push_back(number);
          outcome.parameters += parameters;
        });
  } catch (const RunError& error) {
    outcome.failure = error.what();
  }
  EXPECT_EQ(running, 0);
  outcome.lanes = made;
  return outcome;
}

std::vector<int> upTo(int count) {
  std::vector<int> numbers;
  for (int i = 0; i < count; ++i) numbers.push_back(i);
  return numbers;
}

TEST(FramePipeline, FramesStayInOrder) {
  for (const int lanes : {1, 2, 3, 7}) {
    const Outcome outcome = run(lanes, 40, kNobody, kNobody, kNobody);
    EXPECT_EQ(outcome.written, upTo(40)) << lanes;
    EXPECT_EQ(outcome.parameters, "abcdefghijklmnopqrstuvwxyzabcdefghijklmn");
    EXPECT_EQ(outcome.failure, "");
    EXPECT_EQ(outcome.lanes, lanes);
    EXPECT_EQ(outcome.frames, lanes) << "a frame for each lane and no more";
  }
}

TEST(FramePipeline, LanesWithoutAFrameAreNotMade) {
  EXPECT_EQ(run(6, 2, kNobody, kNobody, kNobody).lanes, 2);
  EXPECT_EQ(run(6, 0, kNobody, kNobody, kNobody).written, upTo(0));
}

TEST(FramePipeline, FramesBeforeAFailureAreWritten) {
  for (const int lanes : {1, 2, 5}) {
    for (const int frame : {0, 1, 8, 19}) {
      Outcome outcome = run(lanes, 20, frame, kNobody, kNobody);
      EXPECT_EQ(outcome.written, upTo(frame)) << lanes;
      EXPECT_EQ(outcome.failure, "the reader fails");
      outcome = run(lanes, 20, kNobody, frame, kNobody);
      EXPECT_EQ(outcome.written, upTo(frame)) << lanes;
      EXPECT_EQ(outcome.failure, "the lane fails");
      outcome = run(lanes, 20, kNobody, kNobody, frame);
      EXPECT_EQ(outcome.written, upTo(frame)) << lanes;
      EXPECT_EQ(outcome.failure, "the writer fails");
    }
  }
}

TEST(FramePipeline, TheFirstOfTwoFailuresIsTold) {
  EXPECT_EQ(run(4, 20, 10, 9, kNobody).failure, "the lane fails");
}

}  // namespace
}  // namespace qpx::tool
