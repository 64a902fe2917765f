// The texture codec: millions of pixels in a second, in one thread, and whole commands beside
// etc1tool on the same picture. CPU time, that of commands included; rounds are interleaved so that
// a slow moment of the machine falls on all alike.
#include <qpx/qpx.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "image_file.h"
#include "picture.h"
#include "progress.h"
#include "sample_scene.h"

namespace qpx::bench {
namespace {

constexpr int32_t kWidth = 1920;
constexpr int32_t kHeight = 1080;
constexpr int kRounds = 9;

struct Subject {
  std::string group;
  std::string name;
  std::function<void()> work;
  std::vector<double> seconds = {};

  double median() const {
    std::vector<double> sorted = seconds;
    std::sort(sorted.begin(), sorted.end());
    return sorted[sorted.size() / 2];
  }
};

// A folder that goes with the run.
class Folder {
 public:
  Folder() {
    std::string name = std::filesystem::temp_directory_path() / "qpx-bench-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
      std::perror("no temporary folder");
      std::exit(1);
    }
    path_ = name;
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

bool runCommand(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t child = 0;
  if (posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0) {
    return false;
  }
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Spent by this process and by the commands that it ran, in seconds.
double cpuTime() {
  double sum = 0;
  for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    rusage usage;
    getrusage(who, &usage);
    for (const timeval& time : {usage.ru_utime, usage.ru_stime}) {
      sum += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    }
  }
  return sum;
}

std::function<void()> command(const std::vector<std::string>& words) {
  return [=] {
    if (!runCommand(words)) {
      std::fprintf(stderr, "%s failed: is it installed? (scripts/install-deps.sh bench)\n",
                   words[0].c_str());
      std::exit(1);
    }
  };
}

MBitmap textureRecord(std::vector<uint8_t>& blocks) {
  MBitmap record = {QPX_FORMAT_ETC1, kWidth, kHeight, {}, {}};
  record.plane[0] = blocks.data();
  return record;
}

// The picture in all the shapes that the subjects work on.
struct Material {
  tool::Picture scene;
  std::vector<uint8_t> blocks = std::vector<uint8_t>(kWidth * kHeight / 2);
  std::vector<uint8_t> merged = blocks;
  std::vector<uint8_t> pixels = std::vector<uint8_t>(kWidth * kHeight * 3);
  MBitmap source = {QPX_FORMAT_RGB24, kWidth, kHeight, {kWidth * 3, 0, 0}, {}};

  explicit Material(tool::Picture picture) : scene(std::move(picture)) {
    source.plane[0] = scene.row(0);
  }

  void compress(int32_t quality) {
    MBitmap target = textureRecord(blocks);
    TEXPK_Compress_ETC(&source, &target, quality);
  }
  void decompress() {
    const MBitmap texture = textureRecord(blocks);
    MBitmap target = {QPX_FORMAT_RGB24, 0, 0, {}, {}};
    target.plane[0] = pixels.data();
    TEXPK_Uncompress_ETC(&texture, &target);
  }
  void merge() {
    const MBitmap texture = textureRecord(blocks);
    MBitmap target = textureRecord(merged);
    const MRect whole = {0, 0, kWidth, kHeight};
    const MPoint origin = {0, 0};
    TEXPK_Merge_ETC(&target, &texture, &texture, &whole, &origin, 0.5f);
  }
};

std::function<void()> plainForms(const std::function<void()>& work) {
  return [=] {
    QPX_UsePlainForms(1);
    work();
    QPX_UsePlainForms(0);
  };
}

std::vector<Subject> subjects(Material& m, const Folder& folder) {
  const std::string picture = folder.file("scene.png"), out = folder.file("out.png");
  const std::string fast = folder.file("fast.pkm"), high = folder.file("high.pkm");
  const std::string peer = folder.file("peer.pkm");
  const std::string encode = "Whole command, PNG to PKM", decode = "Whole command, PKM to PNG";
  const auto compressFast = [&m] { m.compress(QPX_ETC_FAST); };
  const auto compressHigh = [&m] { m.compress(QPX_ETC_SLOW); };
  const auto decompress = [&m] { m.decompress(); };
  return {{"Compress", "fast", compressFast},
          {"Compress", "high", compressHigh},
          {"Compress", "fast, plain forms", plainForms(compressFast)},
          {"Compress", "high, plain forms", plainForms(compressHigh)},
          {"Decompress", "vector forms", decompress},
          {"Decompress", "plain forms", plainForms(decompress)},
          {"Merge at one half", "qpx", [&m] { m.merge(); }},
          {encode, "etc1tool", command({"etc1tool", "--encode", picture, "-o", peer})},
          {encode, "qpx, fast",
           command({QPX_TOOL_PATH, "etc", "encode", picture, fast, "--quality", "fast"})},
          {encode, "qpx, high", command({QPX_TOOL_PATH, "etc", "encode", picture, high})},
          {decode, "etc1tool", command({"etc1tool", "--decode", peer, "-o", out})},
          {decode, "qpx", command({QPX_TOOL_PATH, "etc", "decode", peer, out})}};
}

void print(const std::vector<Subject>& all) {
  constexpr double kPixels = double{kWidth} * kHeight;
  const Subject* first = nullptr;
  for (const Subject& subject : all) {
    if (first == nullptr || first->group != subject.group) {
      first = &subject;
      std::printf("\n%s, %dx%d\n  %-20s %10s %10s %10s %10s %10s\n", subject.group.c_str(), kWidth,
                  kHeight, "by", "ms", "least", "most", "MP/s", "x first");
    }
    const auto [least, most] = std::minmax_element(subject.seconds.begin(), subject.seconds.end());
    std::printf("  %-20s %10.2f %10.2f %10.2f %10.1f %10.3f\n", subject.name.c_str(),
                subject.median() * 1e3, *least * 1e3, *most * 1e3, kPixels / subject.median() / 1e6,
                subject.median() / first->median());
  }
  std::printf("\nMedian, least and most CPU time of %d interleaved rounds.\n", kRounds);
}

int run() {
  const Folder folder;
  tool::Progress progress("scene", 1);
  Material material(tool::drawSampleScene(kWidth, kHeight, 1, progress));
  progress.stop();
  tool::writePicture(material.scene, folder.file("scene.png"), tool::FileKind::png, 95);
  std::vector<Subject> all = subjects(material, folder);
  for (int round = 0; round <= kRounds; ++round) {
    for (Subject& subject : all) {
      const double start = cpuTime();
      subject.work();
      if (round > 0) subject.seconds.push_back(cpuTime() - start);  // the first warms up
    }
  }
  print(all);
  return 0;
}

}  // namespace
}  // namespace qpx::bench

int main() { return qpx::bench::run(); }
