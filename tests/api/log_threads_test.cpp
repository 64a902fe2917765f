// The log's sink is the one thing that engines of all threads share.
#include <gtest/gtest.h>
#include <qpx/engine.h>
#include <qpx/log.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

struct Receiver {
  std::atomic<int> lines = 0;
  std::atomic<int> foreign = 0;
  const Receiver* self = this;
};

void receive(void* user, int32_t /*priority*/, const char* tag, const char* message) {
  auto* const receiver = static_cast<Receiver*>(user);
  if (receiver->self != receiver || tag == nullptr || message == nullptr) ++receiver->foreign;
  ++receiver->lines;
}

// A create that is refused logs a line.
void logOneLine() {
  const MBitmap image = {QPX_FORMAT_BGR24, 4, 4, {}, {}};
  const QPXEffectItem item = {0xFFFF00, nullptr, 0};
  const QPXEffectList list = {&item, 1, 0};
  QPXEngine* engine = nullptr;
  EXPECT_EQ(QPX_UNSUPPORTED, QPXCreate(&image, &image, &list, &engine));
}

TEST(LogThreads, SinkChangesWhileOthersLog) {
  Receiver first;
  Receiver second;
  QPX_SetLogSink(receive, &first);
  logOneLine();
  EXPECT_EQ(1, first.lines.load());
  std::atomic<bool> done = false;
  std::vector<std::thread> loggers;
  for (int t = 0; t < 3; ++t) {
    loggers.emplace_back([&] {
      while (!done) logOneLine();
    });
  }
  for (int i = 0; i < 2000; ++i) {
    QPX_SetLogSink(receive, i % 2 == 0 ? &second : &first);
    if (i % 5 == 0) QPX_SetLogSink(nullptr, nullptr);
  }
  QPX_SetLogSink(receive, &second);
  const int before = second.lines;
  while (second.lines == before) std::this_thread::yield();
  done = true;
  for (std::thread& logger : loggers) logger.join();
  QPX_SetLogSink(nullptr, nullptr);
  const int received = second.lines;
  logOneLine();
  EXPECT_EQ(received, second.lines.load());
  EXPECT_EQ(0, first.foreign.load());
  EXPECT_EQ(0, second.foreign.load());
}

}  // namespace
