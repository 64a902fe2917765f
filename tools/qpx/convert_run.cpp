#include "convert_run.h"

#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "console.h"
#include "conversion.h"
#include "convert_target.h"
#include "errors.h"
#include "frame_source.h"
#include "frame_y4m.h"
#include "image_file.h"
#include "input_file.h"
#include "parallel.h"
#include "picture_frame.h"
#include "progress.h"

namespace qpx::tool {

namespace {

void sayConversion(const FrameShape& from, const FrameShape& to, int threads) {
  const auto text = [](const FrameShape& shape) {
    return std::string(shape.format->name) + " " + std::to_string(shape.width) + "x" +
           std::to_string(shape.height);
  };
  say(text(from) + " to " + text(to) + ", threads: " + std::to_string(threads));
}

class ConvertRun {
 public:
  ConvertRun(const ConvertArguments& arguments, const ConvertPlan& plan)
      : arguments_(arguments), plan_(plan) {}

  void run() {
    const auto file =
        withInputName(arguments_.in, [&] { return std::make_unique<InputFile>(arguments_.in); });
    if (plan_.frames) {
      FrameSource source(*file, *plan_.frames);
      runFrames(source);
    } else if (withInputName(arguments_.in, [&] { return FrameSource::isStream(*file); })) {
      const auto source = withInputName(arguments_.in, [&] {
        return std::make_unique<FrameSource>(*file, plan_.inRange, !arguments_.inRange.empty());
      });
      runFrames(*source);
    } else {
      runPicture(withInputName(arguments_.in, [&] {
        const std::vector<uint8_t> bytes = file->readAll();
        if (bytes.empty()) throw RunError("is empty: use a picture or a stream");
        if (!isPicture(bytes)) {
          throw RunError("is no picture (JPEG, PNG) and no YUV4MPEG2 stream: raw frames need " +
                         std::string("--from and --in-size"));
        }
        return decodePicture(bytes);
      }));
    }
  }

 private:
  void open(const FrameShape& source, bool streamed, const std::optional<Y4mHeader>& header,
            const Picture* origin) {
    shape_ = targetFor(plan_, source, streamed);
    ConversionOptions options = plan_.options;
    options.threads = arguments_.threads > 0
                          ? arguments_.threads
                          : worthwhileThreads(shape_.width, shape_.height, defaultThreads());
    sayConversion(source, shape_, options.threads);
    withInputName(arguments_.in, [&] { conversion_.emplace(source, shape_, options); });
    if (plan_.picture) {
      const std::string problem = sizeProblem(*plan_.picture, shape_.width, shape_.height);
      if (!problem.empty()) throw RunError(displayName(arguments_.out, false) + ": " + problem);
      target_ = pictureTarget(arguments_, *plan_.picture, shape_, origin);
      return;
    }
    std::optional<Y4mHeader> stream;
    if (plan_.stream || (header && !arguments_.raw && fitsY4m(*shape_.format))) {
      stream = headerFor(plan_, source, header, shape_);
    }
    target_ = streamTarget(arguments_.out, shape_, std::move(stream));
  }

  void runFrames(FrameSource& source) {
    Progress progress(displayName(arguments_.in, true), 0);
    progress.countFrames(source.frames());
    std::optional<Frame> frame;
    try {
      while (const std::optional<std::string> parameters =
                 withInputName(arguments_.in, [&] { return source.next(frame); })) {
        takeFrame(source, *frame, *parameters);
        progress.advance();
      }
    } catch (...) {
      if (target_) target_->keepWhatIsThere();
      throw;
    }
    target_->finish();
  }

  void takeFrame(const FrameSource& source, const Frame& frame, const std::string& parameters) {
    if (target_) {
      refuseSecondFrame();
    } else {
      open(source.shape(), true, source.header(), nullptr);
    }
    withInputName(arguments_.in, [&] { conversion_->run(frame.bitmap(), target_->frame()); });
    target_->write(keepsGeometry(plan_, source.shape(), shape_) ? parameters : std::string());
  }

  void refuseSecondFrame() const {
    if (!plan_.picture) return;
    throw RunError(displayName(arguments_.in, true) +
                   ": has more frames than the one that a picture holds: name OUT .y4m, or cut it");
  }

  void runPicture(Picture picture) {
    const bool toAlpha = plan_.format ? plan_.format->keepsAlpha : plan_.picture == FileKind::png;
    if (!toAlpha || plan_.options.adjusts()) picture = onWhite(std::move(picture));
    open(shapeOf(picture), false, std::nullopt, &picture);
    withInputName(arguments_.in, [&] { conversion_->run(bitmapOf(picture), target_->frame()); });
    target_->write({});
    target_->finish();
  }

  const ConvertArguments& arguments_;
  const ConvertPlan& plan_;
  FrameShape shape_;
  std::optional<Conversion> conversion_;
  std::unique_ptr<Target> target_;
};

}  // namespace

void runConversion(const ConvertArguments& arguments, const ConvertPlan& plan) {
  try {
    ConvertRun(arguments, plan).run();
  } catch (const std::bad_alloc&) {
    throw RunError(displayName(arguments.in, true) + ": not enough memory: use a smaller picture");
  }
}

}  // namespace qpx::tool
