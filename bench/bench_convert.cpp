// Conversions through the post process beside libyuv's, OpenCV's and swscale's of the same formats.
// One thread; CPU time. Peers round their own way: it is the speed that is compared.
//
// Arguments are those of Google Benchmark; without any, repetitions are interleaved so that a slow
// moment of the machine falls on all subjects alike.
#include <benchmark/benchmark.h>
#include <libyuv.h>

extern "C" {
#include <libswscale/swscale.h>
}

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "bench_report.h"
#include "subjects.h"

namespace qpx::bench {
namespace {

void expectDone(int32_t result) {
  if (result == QPX_OK) return;
  std::fprintf(stderr, "refused with %d\n", static_cast<int>(result));
  std::exit(1);
}

// A picture without padding; planes of chroma stand behind luma.
class Image {
 public:
  Image(uint32_t code, int32_t columns, int32_t lines)
      : format(code), width(columns), height(lines) {
    const int32_t half = (width + 1) / 2, rows = (height + 1) / 2;
    const size_t luma = static_cast<size_t>(width) * static_cast<size_t>(height);
    const size_t chroma = static_cast<size_t>(half) * static_cast<size_t>(rows);
    if (format == QPX_FORMAT_I420 || format == QPX_FORMAT_NV21) {
      bytes_.resize(luma + 2 * chroma);
      const bool pairs = format == QPX_FORMAT_NV21;
      pitch[0] = width;
      pitch[1] = pitch[2] = pairs ? 2 * half : half;
      plane[0] = bytes_.data();
      plane[1] = bytes_.data() + luma + (pairs ? 1 : 0);
      plane[2] = bytes_.data() + luma + (pairs ? 0 : chroma);
    } else {
      pitch[0] = width * (format == QPX_FORMAT_YUYV ? 2 : UTIL_GetPixelBytesEX(format));
      bytes_.resize(static_cast<size_t>(pitch[0]) * static_cast<size_t>(height));
      plane[0] = bytes_.data();
    }
    uint32_t noise = 1;
    for (size_t i = 0; i < bytes_.size(); ++i) {
      noise = noise * 1664525 + 1013904223;
      bytes_[i] = static_cast<uint8_t>(i / 64 + (noise >> 28));
    }
  }
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  uint8_t* pairs() const { return plane[2]; }  // of NV21
  cv::Mat mat(int type) const {
    return {height, width, type, plane[0], static_cast<size_t>(pitch[0])};
  }

  uint32_t format;
  int32_t width, height;
  int32_t pitch[3] = {};
  uint8_t* plane[3] = {};

 private:
  std::vector<uint8_t> bytes_;
};
using ImagePtr = std::shared_ptr<Image>;

ImagePtr image(uint32_t format, int32_t width, int32_t height) {
  return std::make_shared<Image>(format, width, height);
}

Body postProcess(ImagePtr src, ImagePtr dst, uint32_t orientation, bool bilinear) {
  const auto side = [](const Image& of) {
    return PostProcessImage{
        of.format, static_cast<uint32_t>(of.width), static_cast<uint32_t>(of.height), {}, nullptr};
  };
  const PostProcessImage from = side(*src), to = side(*dst);
  PostProcessOption option = {};
  option.resampleMode = bilinear ? 2 : 1;
  option.orientation = orientation;
  option.alignMode = 256;
  option.alpha = 255;
  PostProcessContext* context = nullptr;
  expectDone(MPPCreate(&from, &to, &option, &context));
  const std::shared_ptr<PostProcessContext> owned(context, MPPDestroy);
  return [=] {
    expectDone(MPProcess(owned.get(), src->plane, nullptr, src->pitch, dst->plane, dst->pitch));
  };
}

// swscale between two pictures, which it takes in planes of its own order.
Body swscale(ImagePtr src, AVPixelFormat from, ImagePtr dst, AVPixelFormat to) {
  const std::shared_ptr<SwsContext> context(
      sws_getContext(src->width, src->height, from, dst->width, dst->height, to, SWS_BILINEAR,
                     nullptr, nullptr, nullptr),
      sws_freeContext);
  return [=] {
    const auto planesOf = [](const Image& of, uint8_t** planes) {
      const bool pairs = of.format == QPX_FORMAT_NV21;
      planes[0] = of.plane[0];
      planes[1] = pairs ? of.pairs() : of.plane[1];
      planes[2] = pairs ? nullptr : of.plane[2];
      planes[3] = nullptr;
    };
    uint8_t *fromPlanes[4], *toPlanes[4];
    planesOf(*src, fromPlanes);
    planesOf(*dst, toPlanes);
    const int fromPitch[4] = {src->pitch[0], src->pitch[1], src->pitch[2], 0};
    const int toPitch[4] = {dst->pitch[0], dst->pitch[1], dst->pitch[2], 0};
    sws_scale(context.get(), fromPlanes, fromPitch, 0, src->height, toPlanes, toPitch);
  };
}

class Suite {
 public:
  explicit Suite(Report* report) : report_(report) {}

  void addAll() {
    for (const Frame& size : {kFull, kPhoto}) {
      width_ = size.width;
      height_ = size.height;
      addToRgb();
      addToYuv();
      addTurns();
      addScales();
    }
  }

 private:
  void addToRgb() {
    const ImagePtr nv21 = image(QPX_FORMAT_NV21, width_, height_);
    const ImagePtr i420 = image(QPX_FORMAT_I420, width_, height_);
    const ImagePtr yuyv = image(QPX_FORMAT_YUYV, width_, height_);
    const ImagePtr bgr = image(QPX_FORMAT_BGR24, width_, height_);
    const ImagePtr rgba = image(QPX_FORMAT_RGBA32, width_, height_);
    const ImagePtr bgra = image(QPX_FORMAT_BGRA32, width_, height_);
    const ImagePtr rgb16 = image(QPX_FORMAT_RGB565, width_, height_);
    const int32_t w = width_, h = height_;

    ours("NV21 to BGR24", nv21, bgr);
    peer("libyuv", [=] {
      libyuv::NV21ToRGB24(nv21->plane[0], w, nv21->pairs(), w, bgr->plane[0], 3 * w, w, h);
    });
    ours("NV21 to RGBA32", nv21, rgba);
    peer("libyuv", [=] {
      libyuv::NV21ToABGR(nv21->plane[0], w, nv21->pairs(), w, rgba->plane[0], 4 * w, w, h);
    });
    ours("I420 to RGBA32", i420, rgba);
    peer("libyuv", [=] {
      libyuv::I420ToABGR(i420->plane[0], w, i420->plane[1], w / 2, i420->plane[2], w / 2,
                         rgba->plane[0], 4 * w, w, h);
    });
    ours("YUYV to BGR24", yuyv, bgr);
    peer("cv::cvtColor", [=] {
      cv::Mat to = bgr->mat(CV_8UC3);
      cv::cvtColor(yuyv->mat(CV_8UC2), to, cv::COLOR_YUV2BGR_YUY2);
    });
    ours("RGBA32 to RGB565", rgba, rgb16);
    peer("libyuv",
         [=] { libyuv::ARGBToRGB565(bgra->plane[0], 4 * w, rgb16->plane[0], 2 * w, w, h); });
  }

  void addToYuv() {
    const ImagePtr nv21 = image(QPX_FORMAT_NV21, width_, height_);
    const ImagePtr i420 = image(QPX_FORMAT_I420, width_, height_);
    const ImagePtr yuyv = image(QPX_FORMAT_YUYV, width_, height_);
    const ImagePtr bgr = image(QPX_FORMAT_BGR24, width_, height_);
    const ImagePtr rgba = image(QPX_FORMAT_RGBA32, width_, height_);
    const int32_t w = width_, h = height_;

    ours("RGBA32 to NV21", rgba, nv21);
    peer("libyuv", [=] {
      libyuv::ABGRToNV21(rgba->plane[0], 4 * w, nv21->plane[0], w, nv21->pairs(), w, w, h);
    });
    ours("BGR24 to I420", bgr, i420);
    peer("libyuv", [=] {
      libyuv::RGB24ToI420(bgr->plane[0], 3 * w, i420->plane[0], w, i420->plane[1], w / 2,
                          i420->plane[2], w / 2, w, h);
    });
    ours("NV21 to I420", nv21, i420);
    peer("libyuv", [=] {
      libyuv::NV21ToI420(nv21->plane[0], w, nv21->pairs(), w, i420->plane[0], w, i420->plane[1],
                         w / 2, i420->plane[2], w / 2, w, h);
    });
    ours("I420 to NV21", i420, nv21);
    peer("libyuv", [=] {
      libyuv::I420ToNV21(i420->plane[0], w, i420->plane[1], w / 2, i420->plane[2], w / 2,
                         nv21->plane[0], w, nv21->pairs(), w, w, h);
    });
    ours("YUYV to I420", yuyv, i420);
    peer("libyuv", [=] {
      libyuv::YUY2ToI420(yuyv->plane[0], 2 * w, i420->plane[0], w, i420->plane[1], w / 2,
                         i420->plane[2], w / 2, w, h);
    });
  }

  void addTurns() {
    const int32_t w = width_, h = height_;
    const ImagePtr nv21 = image(QPX_FORMAT_NV21, w, h);
    struct Turn {
      const char* name;
      uint32_t orientation;
      libyuv::RotationMode mode;
      int cvCode;
    };
    for (const Turn& turn : {Turn{"90", 3, libyuv::kRotate90, cv::ROTATE_90_CLOCKWISE},
                             Turn{"180", 6, libyuv::kRotate180, cv::ROTATE_180},
                             Turn{"270", 5, libyuv::kRotate270, cv::ROTATE_90_COUNTERCLOCKWISE}}) {
      const bool swap = turn.orientation != 6;
      const ImagePtr to = image(QPX_FORMAT_NV21, swap ? h : w, swap ? w : h);
      ours(std::string("NV21 turned ") + turn.name, nv21, to, turn.orientation);
      // Luma, and the pairs as elements of two bytes: libyuv turns pairs into planes alone.
      peer("libyuv, cv::rotate", [=] {
        libyuv::RotatePlane(nv21->plane[0], w, to->plane[0], to->width, w, h, turn.mode);
        const cv::Mat from(h / 2, w / 2, CV_8UC2, nv21->pairs());
        cv::Mat pairs(to->height / 2, to->width / 2, CV_8UC2, to->pairs());
        cv::rotate(from, pairs, turn.cvCode);
      });
    }
    const ImagePtr rgba = image(QPX_FORMAT_RGBA32, w, h), turned = image(QPX_FORMAT_RGBA32, h, w);
    ours("RGBA32 turned 90", rgba, turned, 3);
    peer("libyuv", [=] {
      libyuv::ARGBRotate(rgba->plane[0], 4 * w, turned->plane[0], 4 * h, w, h, libyuv::kRotate90);
    });
  }

  void addScales() {
    const int32_t w = width_, h = height_;
    const ImagePtr i420 = image(QPX_FORMAT_I420, w, h), rgba = image(QPX_FORMAT_RGBA32, w, h);
    for (const double scale : {0.5, 0.37}) {
      const int32_t toW = static_cast<int32_t>(w * scale) & ~1,
                    toH = static_cast<int32_t>(h * scale) & ~1;
      const std::string name = scale == 0.5 ? " bilinear to 1/2" : " bilinear to 0.37";
      const ImagePtr small = image(QPX_FORMAT_I420, toW, toH);
      ours("I420" + name, i420, small, 0, true);
      peer("libyuv", [=] {
        libyuv::I420Scale(i420->plane[0], w, i420->plane[1], w / 2, i420->plane[2], w / 2, w, h,
                          small->plane[0], toW, small->plane[1], toW / 2, small->plane[2], toW / 2,
                          toW, toH, libyuv::kFilterBilinear);
      });
      peer("swscale", swscale(i420, AV_PIX_FMT_YUV420P, small, AV_PIX_FMT_YUV420P));
      const ImagePtr pixels = image(QPX_FORMAT_RGBA32, toW, toH);
      ours("RGBA32" + name, rgba, pixels, 0, true);
      peer("libyuv", [=] {
        libyuv::ARGBScale(rgba->plane[0], 4 * w, w, h, pixels->plane[0], 4 * toW, toW, toH,
                          libyuv::kFilterBilinear);
      });
      peer("cv::resize", [=] {
        cv::Mat to = pixels->mat(CV_8UC4);
        cv::resize(rgba->mat(CV_8UC4), to, to.size(), 0, 0, cv::INTER_LINEAR);
      });
      peer("swscale", swscale(rgba, AV_PIX_FMT_RGBA, pixels, AV_PIX_FMT_RGBA));
    }
    addScaledToRgb();
  }

  // Ours in one call, libyuv's in two: smaller first.
  void addScaledToRgb() {
    const int32_t w = width_, h = height_, toW = w / 2 & ~1, toH = h / 2 & ~1;
    const ImagePtr nv21 = image(QPX_FORMAT_NV21, w, h), small = image(QPX_FORMAT_NV21, toW, toH);
    const ImagePtr bgr = image(QPX_FORMAT_BGR24, toW, toH);
    ours("NV21 to BGR24 at 1/2", nv21, bgr, 0, true);
    peer("libyuv", [=] {
      libyuv::NV12Scale(nv21->plane[0], w, nv21->pairs(), w, w, h, small->plane[0], toW,
                        small->pairs(), toW, toW, toH, libyuv::kFilterBilinear);
      libyuv::NV21ToRGB24(small->plane[0], toW, small->pairs(), toW, bgr->plane[0], 3 * toW, toW,
                          toH);
    });
    peer("swscale", swscale(nv21, AV_PIX_FMT_NV21, bgr, AV_PIX_FMT_BGR24));
  }

  void ours(const std::string& workload, const ImagePtr& src, const ImagePtr& dst,
            uint32_t orientation = 0, bool bilinear = false) {
    workload_ = workload;
    const Body body = postProcess(src, dst, orientation, bilinear);
    add("qpx", body, false);
    add("qpx, plain forms", body, true);
  }

  void peer(const std::string& name, const Body& body) { add(name, body, false); }

  void add(const std::string& name, const Body& body, bool plain) {
    const std::string group =
        "Conversion, " + std::to_string(width_) + "x" + std::to_string(height_);
    report_->add({group, workload_, name, int64_t{width_} * height_},
                 [body, plain](benchmark::State& state) {
                   QPX_UsePlainForms(plain);
                   for (auto _ : state) body();
                   QPX_UsePlainForms(0);
                 });
  }

  Report* report_;
  std::string workload_;
  int32_t width_ = 0, height_ = 0;
};

}  // namespace
}  // namespace qpx::bench

int main(int argc, char** argv) {
  cv::setNumThreads(1);
  qpx::bench::Report report;
  qpx::bench::Suite suite(&report);
  suite.addAll();
  return qpx::bench::run(argc, argv, report);
}
