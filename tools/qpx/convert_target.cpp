#include "convert_target.h"

#include <utility>

#include "exif.h"
#include "frame_sink.h"
#include "picture.h"
#include "picture_frame.h"
#include "pixel_format.h"

namespace qpx::tool {

namespace {

bool isPictureFormat(const PixelFormat& format) {
  return format.code == QPX_FORMAT_RGB24 || format.code == QPX_FORMAT_RGBA32;
}

class StreamTarget : public Target {
 public:
  StreamTarget(const std::string& path, const FrameShape& shape, std::optional<Y4mHeader> header)
      : frame_(*shape.format, shape.width, shape.height), sink_(path, std::move(header)) {}

  const MBitmap& frame() const override { return frame_.bitmap(); }
  void write(const std::string& parameters) override { sink_.write(frame_, parameters); }
  void finish() override { sink_.finish(); }
  void keepWhatIsThere() override { sink_.finish(); }

 private:
  Frame frame_;
  FrameSink sink_;
};

class PictureTarget : public Target {
 public:
  PictureTarget(const ConvertArguments& arguments, FileKind kind, const FrameShape& shape,
                const Picture* origin)
      : arguments_(arguments),
        kind_(kind),
        picture_(shape.width, shape.height, shape.format->keepsAlpha ? 4 : 3),
        bitmap_(bitmapOf(picture_)) {
    if (origin) takeMetadata(*origin);
    if (isPictureFormat(*shape.format)) return;
    frame_.emplace(*shape.format, shape.width, shape.height);
    back_.emplace(shape, shapeOf(picture_), 1);
  }

  const MBitmap& frame() const override { return frame_ ? frame_->bitmap() : bitmap_; }

  void write(const std::string&) override {
    if (back_) back_->run(frame_->bitmap(), bitmap_);
  }

  void finish() override { writePicture(picture_, arguments_.out, kind_, arguments_.quality); }
  void keepWhatIsThere() override {}

 private:
  void takeMetadata(const Picture& origin) {
    picture_.exif = origin.exif;
    picture_.icc = origin.icc;
    picture_.density = origin.density;
    describeUpright(picture_.exif, picture_.width(), picture_.height());
  }

  const ConvertArguments& arguments_;
  FileKind kind_;
  Picture picture_;
  MBitmap bitmap_;
  std::optional<Frame> frame_;
  std::optional<Conversion> back_;
};

}  // namespace

std::unique_ptr<Target> streamTarget(const std::string& path, const FrameShape& shape,
                                     std::optional<Y4mHeader> header) {
  return std::make_unique<StreamTarget>(path, shape, std::move(header));
}

std::unique_ptr<Target> pictureTarget(const ConvertArguments& arguments, FileKind kind,
                                      const FrameShape& shape, const Picture* origin) {
  return std::make_unique<PictureTarget>(arguments, kind, shape, origin);
}

}  // namespace qpx::tool
