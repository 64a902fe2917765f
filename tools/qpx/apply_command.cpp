// qpx apply: effects over pictures.
#include <qpx/engine.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "commands.h"
#include "console.h"
#include "effect_argument.h"
#include "effect_run.h"
#include "errors.h"
#include "image_file.h"
#include "progress.h"
#include "text.h"

namespace qpx::tool {

namespace {

struct ApplyArguments {
  std::vector<std::string> words;
  std::string outDir;
  std::string to;
  std::string format;
  std::string mask;
  std::string second;
  int band = 0;
  int threads = 0;
  int strength = 100;
  int level = 0;
  int quality = 95;
  bool plain = false;
  bool verbose = false;
};

struct Job {
  std::string in;
  std::string out;
  std::optional<FileKind> kind;  // nothing: that of the input
};

struct Plan {
  std::vector<EffectCall> chain;
  std::vector<Job> jobs;
};

std::optional<FileKind> wantedKind(const ApplyArguments& arguments) {
  if (arguments.to.empty()) return std::nullopt;
  return arguments.to == "png" ? FileKind::png : FileKind::jpeg;
}

std::optional<FileKind> kindOfOutput(const std::string& out, const ApplyArguments& arguments) {
  if (const std::optional<FileKind> wanted = wantedKind(arguments)) return wanted;
  if (out == "-") return std::nullopt;
  if (const std::optional<FileKind> kind = kindByName(out)) return kind;
  throw UsageError(out + ": qpx writes JPEG and PNG: name it .jpg or .png, or give --to");
}

Plan planOne(const ApplyArguments& arguments) {
  const std::vector<std::string>& words = arguments.words;
  if (words.size() < 3) {
    throw UsageError(
        "apply needs at least one effect, an input and an output: "
        "qpx apply EFFECT... IN OUT");
  }
  Plan plan;
  const size_t effects = words.size() - 2;
  for (size_t i = 0; i < effects; ++i) {
    std::error_code ignored;
    if (i > 0 && !namesEffect(words[i]) && std::filesystem::exists(words[i], ignored)) {
      throw UsageError(words[i] +
                       ": is a file where an effect should be: " + "several inputs need --out-dir");
    }
    plan.chain.push_back(parseEffect(words[i]));
  }
  const std::string &in = words[effects], &out = words[effects + 1];
  plan.jobs.push_back({in, out, kindOfOutput(out, arguments)});
  return plan;
}

// A word that is neither an effect nor a file is rather a slip in an effect's name.
void refuseSlip(const std::string& word) {
  std::error_code ignored;
  const std::string name = word.substr(0, word.find(':'));
  if (word != "-" && !std::filesystem::exists(word, ignored) &&
      name.find_first_of("./") == std::string::npos) {
    effectByName(name);
  }
}

Job jobInto(const std::string& in, const ApplyArguments& arguments) {
  if (in == "-") throw UsageError("standard input has no name for --out-dir: give OUT instead");
  std::filesystem::path name = std::filesystem::path(in).filename();
  const std::optional<FileKind> wanted = wantedKind(arguments);
  if (wanted && kindByName(in) != wanted) {
    name.replace_extension(*wanted == FileKind::png ? ".png" : ".jpg");
  }
  return {in, (std::filesystem::path(arguments.outDir) / name).string(),
          wanted ? wanted : kindByName(in)};
}

Plan planMany(const ApplyArguments& arguments) {
  const std::vector<std::string>& words = arguments.words;
  Plan plan;
  size_t next = 0;
  do {
    if (next == words.size()) break;
    plan.chain.push_back(parseEffect(words[next++]));
  } while (next < words.size() && namesEffect(words[next]));
  if (plan.chain.empty() || next == words.size()) {
    throw UsageError(
        "apply needs at least one effect and one input: "
        "qpx apply EFFECT... IN... --out-dir DIR");
  }
  std::set<std::string> names;
  for (; next < words.size(); ++next) {
    refuseSlip(words[next]);
    plan.jobs.push_back(jobInto(words[next], arguments));
    if (!names.insert(plan.jobs.back().out).second) {
      throw UsageError(plan.jobs.back().out + ": two inputs would be written here: " +
                       "give them different names, or run twice");
    }
  }
  return plan;
}

void runJob(const Job& job, const Plan& plan, const RunOptions& options, int quality,
            Progress& progress) {
  Picture picture = readPicture(job.in);
  progress.advance(kReadSteps);
  say(displayName(job.in, true) + ": " + std::to_string(picture.width()) + "x" +
      std::to_string(picture.height()) + (picture.hasAlpha() ? " with alpha" : ""));
  const FileKind kind = job.kind.value_or(picture.kind);
  try {
    picture = applyEffects(std::move(picture), plan.chain, options, progress);
  } catch (const RunError& error) {
    throw RunError(displayName(job.in, true) + ": " + error.what());
  } catch (const std::bad_alloc&) {
    throw RunError(displayName(job.in, true) + ": not enough memory: use a smaller picture");
  }
  writePicture(picture, job.out, kind, quality);
  progress.advance(kWriteSteps);
  say(displayName(job.out, false) + ": written");
}

// Every file is tried, whatever becomes of the others. Returns how many failed.
int runAll(const Plan& plan, const RunOptions& options, int workers, int quality,
           Progress& progress) {
  std::atomic<size_t> next{0};
  std::atomic<int> failed{0};
  const auto work = [&] {
    for (size_t i = next++; i < plan.jobs.size(); i = next++) {
      try {
        runJob(plan.jobs[i], plan, options, quality, progress);
      } catch (const std::exception& error) {
        ++failed;
        printError(error.what());
      }
    }
  };
  std::vector<std::jthread> threads;
  for (int i = 1; i < workers; ++i) threads.emplace_back(work);
  work();
  threads.clear();  // joins
  return failed;
}

void checkStandardInput(const ApplyArguments& arguments, const Plan& plan) {
  const bool byInput = plan.jobs.front().in == "-";
  if (byInput + (arguments.mask == "-") + (arguments.second == "-") > 1) {
    throw UsageError("only one of IN, --mask and --second can be standard input");
  }
}

void apply(const ApplyArguments& arguments) {
  if (arguments.verbose) beVerbose();
  const Plan plan = arguments.outDir.empty() ? planOne(arguments) : planMany(arguments);
  checkStandardInput(arguments, plan);
  RunOptions options;
  if (!arguments.format.empty()) options.format = &pixelFormatByName(arguments.format);
  options.band = arguments.band;
  options.strength = arguments.strength;
  options.level = arguments.level;
  options.forceThreads = arguments.threads > 0;
  const int processors = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  const int threads = arguments.threads > 0 ? arguments.threads : processors;
  const int workers = std::min(threads, static_cast<int>(plan.jobs.size()));
  options.threads = plan.jobs.size() > 1 ? 1 : threads;

  // The chain is checked before anything is read, for which it matters only that there are
  // pictures.
  Picture mask, second;
  options.mask = arguments.mask.empty() ? nullptr : &mask;
  options.second = arguments.second.empty() ? nullptr : &second;
  checkChain(plan.chain, options);
  if (options.mask) mask = readPicture(arguments.mask);
  if (options.second) second = readPicture(arguments.second);
  QPX_UsePlainForms(arguments.plain ? 1 : 0);
  if (!arguments.outDir.empty()) {
    std::error_code error;
    std::filesystem::create_directories(arguments.outDir, error);
    if (error) {
      throw RunError(arguments.outDir + ": cannot be made (" + error.message() +
                     "): choose another --out-dir");
    }
  }
  const auto count = static_cast<int64_t>(plan.jobs.size());
  Progress progress(count > 1 ? std::to_string(count) + " pictures" : plan.jobs.front().in,
                    count * kPictureSteps);
  const int failed = runAll(plan, options, workers, arguments.quality, progress);
  progress.stop();
  if (failed > 0) throw CLI::RuntimeError(kExitFailed);  // each has its own line already
}

constexpr const char* kFooter =
    R"(  qpx apply EFFECT[:name=value,...]... IN OUT
  qpx apply EFFECT[:name=value,...]... IN... --out-dir DIR

With IN OUT, the last two arguments are files and all before them are effects.
With --out-dir, arguments are effects as long as they name one; all from the
first that does not are inputs (write ./name for a file called like an effect).

Effects are applied in the order given. IN and OUT may be the same file, and '-'
is standard input and output. Parameters that are not given have the defaults
that 'qpx list EFFECT' shows. Pictures are turned upright by their Exif
orientation; Exif data and colour profile are kept.

Without --format the effects run in bgr24, or in bgra32 for a picture with
alpha, or in the first format that all of them take. YUV and grey are reached
by full-range BT.601, chroma being averaged over its block.

Examples:
  qpx apply Fx1300:brightness=20,contrast=10 photo.jpg brighter.jpg
  qpx apply Sepia Fx2D00:percent=130 photo.jpg out.png --strength 60
  qpx apply Sepia --out-dir looks holiday/*.jpg --threads 4
  qpx apply 0x1900 - - < in.jpg > out.jpg)";

void addFileOptions(CLI::App& command, ApplyArguments& arguments) {
  command.add_option("ARGUMENTS", arguments.words, "Effects, then files")->required();
  command
      .add_option("--out-dir", arguments.outDir, "Write every input under its name to this folder")
      ->type_name("DIR");
  command.add_option("--to", arguments.to, "Output format, whatever the name says")
      ->check(CLI::IsMember({"png", "jpeg", "jpg"}));
  command.add_option("--quality", arguments.quality, "Quality of JPEG output (default 95, 4:4:4)")
      ->check(CLI::Range(1, 100));
}

void addEffectOptions(CLI::App& command, ApplyArguments& arguments) {
  command.add_option("--format", arguments.format, "Pixel format that the effects run in")
      ->type_name(joined(pixelFormatNames(), "|"));
  command.add_option("--strength", arguments.strength, "Percent of the effect over the source")
      ->check(CLI::Range(0, 100));
  command
      .add_option("--mask", arguments.mask,
                  "Picture whose light or opaque parts get the effect; any size")
      ->type_name("FILE");
  command
      .add_option("--second", arguments.second,
                  "Second picture, for effects that take one; any size")
      ->type_name("FILE");
  command.add_option("--level", arguments.level, "Quality level of effects that have levels")
      ->check(CLI::IsMember({0, 2, 3, 4}));
}

void addRunOptions(CLI::App& command, ApplyArguments& arguments) {
  command.add_option("--band", arguments.band, "Rows for each call of the engine (0: all at once)")
      ->check(CLI::Range(0, 1 << 30));
  command
      .add_option("--threads", arguments.threads,
                  "Pictures at once, or rows of one picture where the effects allow it (default: "
                  "one for each processor)")
      ->check(CLI::Range(1, 256));
  command.add_flag("--plain", arguments.plain, "Use the plain forms of all vector code");
  command.add_flag("--verbose", arguments.verbose, "Print the library's log and what is done");
}

}  // namespace

void addApplyCommand(CLI::App& app) {
  const auto arguments = std::make_shared<ApplyArguments>();
  CLI::App* command = app.add_subcommand("apply", "Apply one or more effects to pictures");
  addFileOptions(*command, *arguments);
  addEffectOptions(*command, *arguments);
  addRunOptions(*command, *arguments);
  command->footer(kFooter);
  command->callback([arguments] { apply(*arguments); });
}

}  // namespace qpx::tool
