// qpx apply: effects over pictures.
#include <qpx/engine.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apply_plan.h"
#include "command_line.h"
#include "commands.h"
#include "console.h"
#include "effect_run.h"
#include "errors.h"
#include "frame_effects.h"
#include "frame_pipeline.h"
#include "frame_sink.h"
#include "frame_source.h"
#include "image_file.h"
#include "input_file.h"
#include "output_file.h"
#include "parallel.h"
#include "progress.h"
#include "text.h"

namespace qpx::tool {

namespace {

void runPicture(const Job& job, const Plan& plan, const RunOptions& options, int quality,
                Picture picture, Progress& progress) {
  say(displayName(job.in, true) + ": " + std::to_string(picture.width()) + "x" +
      std::to_string(picture.height()) + (picture.hasAlpha() ? " with alpha" : ""));
  const FileKind kind = job.kind.value_or(picture.kind);
  const std::string problem = sizeProblem(kind, picture.width(), picture.height());
  if (!problem.empty()) throw RunError(displayName(job.out, false) + ": " + problem);
  refuseUnwritable(job.out);
  picture = withInputName(
      job.in, [&] { return applyEffects(std::move(picture), plan.chain, options, progress); });
  writePicture(picture, job.out, kind, quality, {progress, kWriteSteps});
  say(displayName(job.out, false) + ": written");
}

class EffectLane : public FrameLane {
 public:
  EffectLane(const Job& job, const FrameShape& shape, const std::vector<EffectCall>& chain,
             const RunOptions& options)
      : job_(job), effects_(withInputName(job.in, [&] {
          return std::make_unique<FrameEffects>(shape, chain, options);
        })) {}

  const Frame& run(const Frame& frame) override {
    return *withInputName(job_.in, [&] { return &effects_->run(frame, unseen_); });
  }

 private:
  const Job& job_;
  std::unique_ptr<FrameEffects> effects_;
  Progress unseen_;  // frames are counted when they are written
};

std::optional<Y4mHeader> headerOf(const FrameSource& source, const Frame& result) {
  std::optional<Y4mHeader> header = source.header();
  if (header) {
    header->width = result.width();
    header->height = result.height();
  }
  return header;
}

// Whole frames in front of one that fails are written.
void runFrames(const Job& job, const Plan& plan, const RunOptions& options, FrameSource& source,
               const std::function<void()>& advance) {
  const FrameShape& shape = source.shape();
  say(displayName(job.in, true) + ": frames of " + shape.format->name + ", " +
      std::to_string(shape.width) + "x" + std::to_string(shape.height) +
      ", at once: " + std::to_string(options.threads));
  RunOptions laneOptions = options;
  laneOptions.threads = 1;
  std::optional<FrameSink> sink;
  try {
    runFramePipeline(
        [&](std::optional<Frame>& frame) {
          return withInputName(job.in, [&] { return source.next(frame); });
        },
        options.threads,
        [&] { return std::make_unique<EffectLane>(job, shape, plan.chain, laneOptions); },
        [&](const Frame& result, const std::string& parameters) {
          if (!sink) sink.emplace(job.out, headerOf(source, result));
          sink->write(result, parameters);
          advance();
        });
  } catch (...) {
    if (sink) sink->finish();
    throw;
  }
  sink->finish();
}

void runStream(const Job& job, const Plan& plan, const RunOptions& options, InputFile& file,
               Progress& progress) {
  if (job.kind) {
    throw RunError(displayName(job.in, true) +
                   ": frames stay frames under apply: 'qpx convert' makes pictures of them");
  }
  const auto source = withInputName(job.in, [&] {
    return plan.frames ? std::make_unique<FrameSource>(file, *plan.frames)
                       : std::make_unique<FrameSource>(file, plan.range, false);
  });
  if (plan.jobs.size() == 1) {
    progress.countFrames(source->frames());
    runFrames(job, plan, options, *source, [&] { progress.advance(); });
  } else {
    runFrames(job, plan, options, *source, [] {});
    progress.advance(kPictureSteps);
  }
}

void runJob(const Job& job, const Plan& plan, const RunOptions& options, int quality,
            Progress& progress) {
  const auto file = withInputName(job.in, [&] { return std::make_unique<InputFile>(job.in); });
  if (plan.frames || withInputName(job.in, [&] { return FrameSource::isStream(*file); })) {
    runStream(job, plan, options, *file, progress);
    return;
  }
  if (job.stream) {
    throw RunError(displayName(job.in, true) +
                   ": is no YUV4MPEG2 stream: 'qpx convert' makes one of " +
                   "pictures, and raw frames need --from and --in-size");
  }
  Picture picture = withInputName(job.in, [&] {
    return decodePicture(file->readAll(), {progress, kReadSteps});
  });
  runPicture(job, plan, options, quality, std::move(picture), progress);
}

// Every file is tried, whatever becomes of the others. Returns how many failed.
int runAll(const Plan& plan, const RunOptions& options, int workers, int quality,
           Progress& progress) {
  std::atomic<int> failed{0};
  forEachInThreads(plan.jobs.size(), workers, [&](size_t i) {
    try {
      runJob(plan.jobs[i], plan, options, quality, progress);
    } catch (const std::exception& error) {
      ++failed;
      printError(error.what());
    }
  });
  return failed;
}

void sayThreads(const ApplyArguments& arguments, const Plan& plan) {
  const std::vector<std::string> names = effectsInOneThread(plan.chain);
  if (plan.jobs.size() > 1 || arguments.threads < 2 || names.empty()) return;
  say("--threads " + std::to_string(arguments.threads) + ": the rows of one picture cannot be " +
      "split for " + joined(names, " ") + ", which gets one thread");
}

void apply(const ApplyArguments& arguments) {
  if (arguments.verbose) beVerbose();
  const Plan plan = planFor(arguments);
  RunOptions options;
  if (!arguments.format.empty()) options.format = &pixelFormatByName(arguments.format);
  options.band = arguments.band;
  options.strength = arguments.strength;
  options.level = arguments.level;
  options.forceThreads = arguments.threads > 0;
  const int threads = arguments.threads > 0 ? arguments.threads : defaultThreads();
  const int workers = std::min(threads, static_cast<int>(plan.jobs.size()));
  options.threads = plan.jobs.size() > 1 ? 1 : threads;

  // The chain is checked before anything is read, for which it matters only that there are
  // pictures.
  Picture mask, second;
  options.mask = arguments.mask.empty() ? nullptr : &mask;
  options.second = arguments.second.empty() ? nullptr : &second;
  checkChain(plan.chain, options);
  sayThreads(arguments, plan);
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
  Progress progress(
      count > 1 ? std::to_string(count) + " pictures" : displayName(plan.jobs.front().in, true),
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
No output may replace an input there. Words after '--' are no options, so that
names may start with '-'.

Effects are applied in the order given. IN and OUT may be the same file, and '-'
is standard input and output. Parameters that are not given have the defaults
that 'qpx list EFFECT' shows; the points of a curve may be given as one list,
x:y,x:y,... from left to right. Pictures are turned upright by their Exif
orientation; Exif data, colour profile and density (dpi) are kept.

Not carried over: JPEG comments, PNG text and other metadata. Samples of 16 bits
become 8, grey and palettes become RGB, and a JPEG has its transparency laid on
white.

Effects that turn a picture grow its frame so that nothing is cut off; they cannot
be mixed with their source by --strength or --mask.

Frames are taken too: a YUV4MPEG2 stream (.y4m), or raw ones that --from and
--in-size describe. They leave in the format they came in, in which the effects
run where they can, or else by way of another. Where a frame is cut off, the whole
ones before it are written.

Without --format the effects run in bgr24, or in bgra32 for a picture with
alpha, or in the first format that all of them take. Pictures become YUV and grey
of the full range of BT.601, as 'qpx convert --range bt601-full' makes it.

Examples:
  qpx apply Fx1300:brightness=20,contrast=10 photo.jpg brighter.jpg
  qpx apply Curve:master=0:0,64:80,255:255,blue=0:20,255:235 photo.jpg out.png
  qpx apply Fx4800 Fx2D00:percent=130 photo.jpg out.png --strength 60
  qpx apply Fx1700 --out-dir looks holiday/*.jpg --threads 4
  qpx apply 0x1800 - - < in.jpg > out.jpg
  ffmpeg -i in.mp4 -f yuv4mpegpipe - | qpx apply Gothic - out.y4m)";

void addFileOptions(CLI::App& command, ApplyArguments& arguments) {
  command.add_option("ARGUMENTS", arguments.words, "Effects, then files")
      ->required()
      ->check(notEmpty());
  command
      .add_option("--out-dir", arguments.outDir, "Write every input under its name to this folder")
      ->check(notEmpty())
      ->type_name("DIR");
  command.add_option("--to", arguments.to, "Output format, whatever the name says")
      ->check(CLI::IsMember({"png", "jpeg", "jpg"}));
  addQualityOption(command, arguments.quality);
}

void addFrameOptions(CLI::App& command, ApplyArguments& arguments) {
  addRawFrameOptions(command, arguments.from, arguments.inSize);
  command
      .add_option("--range", arguments.range,
                  "Matrix and range of frames that go by way of RGB (default bt601)")
      ->check(CLI::IsMember(rangeNames()));
}

void addEffectOptions(CLI::App& command, ApplyArguments& arguments) {
  command.add_option("--format", arguments.format, "Pixel format that the effects run in")
      ->check(notEmpty())
      ->type_name("FORMAT");
  command.add_option("--strength", arguments.strength, "Percent of the effect over the source")
      ->transform(wholeNumber(0, 100));
  command
      .add_option("--mask", arguments.mask,
                  "Picture whose light or opaque parts get the effect; any size")
      ->check(notEmpty())
      ->type_name("FILE");
  command
      .add_option("--second", arguments.second,
                  "Second picture, for effects that take one; any size")
      ->check(notEmpty())
      ->type_name("FILE");
  command.add_option("--level", arguments.level, "Quality level of effects that have levels")
      ->check(CLI::IsMember({0, 2, 3, 4}));
}

void addRunOptions(CLI::App& command, ApplyArguments& arguments) {
  command.add_option("--band", arguments.band, "Rows for each call of the engine (0: all at once)")
      ->transform(wholeNumber(0, 1 << 30));
  command
      .add_option("--threads", arguments.threads,
                  "Pictures or frames at once, or rows of one picture where the effects allow it "
                  "(default: one for each processor)")
      ->transform(wholeNumber(1, 256));
  command.add_flag("--plain", arguments.plain, "Use the plain forms of all vector code");
  command.add_flag("--verbose", arguments.verbose, "Print the library's log and what is done");
}

}  // namespace

void addApplyCommand(CLI::App& app) {
  const auto arguments = std::make_shared<ApplyArguments>();
  CLI::App* command = app.add_subcommand("apply", "Apply one or more effects to pictures");
  addFileOptions(*command, *arguments);
  addFrameOptions(*command, *arguments);
  addEffectOptions(*command, *arguments);
  addRunOptions(*command, *arguments);
  command->footer(std::string(kFooter) + "\n\n" + formatHelp());
  command->callback([arguments] { apply(*arguments); });
}

}  // namespace qpx::tool
