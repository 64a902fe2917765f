#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "codecs.h"
#include "errors.h"
#include "jpeg_errors.h"

namespace qpx::tool {

namespace {

// A progressive file of a few kilobytes may ask for thousands of passes over a huge picture.
constexpr int kMaxScans = 500;

void limitScans(j_common_ptr codec) {
  auto* decoder = reinterpret_cast<j_decompress_ptr>(codec);
  if (decoder->input_scan_number > kMaxScans) {
    JpegErrorHandler* handler = handlerOf(codec);
    std::snprintf(handler->message, sizeof handler->message, "more than %d scans", kMaxScans);
    std::longjmp(handler->jump, 1);
  }
}

class Decoder {
 public:
  explicit Decoder(std::span<const uint8_t> file) : file_(file) { jpeg_.err = prepare(handler_); }
  ~Decoder() { jpeg_destroy_decompress(&jpeg_); }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  bool readHeader() {
    if (setjmp(handler_.jump)) return false;
    jpeg_create_decompress(&jpeg_);
    progress_.progress_monitor = limitScans;
    jpeg_.progress = &progress_;
    jpeg_mem_src(&jpeg_, file_.data(), static_cast<unsigned long>(file_.size()));
    jpeg_save_markers(&jpeg_, JPEG_APP0 + 1, 0xFFFF);
    jpeg_save_markers(&jpeg_, JPEG_APP0 + 2, 0xFFFF);
    jpeg_read_header(&jpeg_, TRUE);
    inks_ = jpeg_.jpeg_color_space == JCS_CMYK || jpeg_.jpeg_color_space == JCS_YCCK;
    jpeg_.out_color_space = inks_ ? JCS_CMYK : JCS_RGB;
    return true;
  }

  bool start() {
    if (setjmp(handler_.jump)) return false;
    return jpeg_start_decompress(&jpeg_) != 0;
  }

  bool readRow(uint8_t* row) {
    if (setjmp(handler_.jump)) return false;
    return jpeg_read_scanlines(&jpeg_, &row, 1) == 1;
  }

  bool finish() {
    if (setjmp(handler_.jump)) return false;
    return jpeg_finish_decompress(&jpeg_) != 0;
  }

  // The profile is put together by libjpeg, which allocates it with malloc; null where there is
  // none.
  bool readProfile(JOCTET** profile, unsigned* bytes) {
    if (setjmp(handler_.jump)) return false;
    if (!jpeg_read_icc_profile(&jpeg_, profile, bytes)) *profile = nullptr;
    return true;
  }

  bool inks() const { return inks_; }
  bool invertedInks() const { return jpeg_.saw_Adobe_marker != 0; }
  bool damaged() const { return handler_.damaged; }
  const char* message() const { return handler_.message; }
  const jpeg_decompress_struct& jpeg() const { return jpeg_; }

 private:
  std::span<const uint8_t> file_;
  jpeg_decompress_struct jpeg_{};
  jpeg_progress_mgr progress_{};
  JpegErrorHandler handler_{};
  bool inks_ = false;
};

[[noreturn]] void failDecoding(const Decoder& decoder) {
  throw RunError(std::string("is a damaged or incomplete JPEG (") + decoder.message() +
                 "): get a complete copy of it");
}

// Without a colour profile the plain subtractive formula is all there is: each ink takes its share
// of light, and black takes its share of what is left.
void inksToRgb(const uint8_t* inks, bool inverted, int32_t width, uint8_t* rgb) {
  for (int32_t x = 0; x < width; ++x, inks += 4, rgb += 3) {
    const int black = inverted ? inks[3] : 255 - inks[3];
    for (int c = 0; c < 3; ++c) {
      const int light = inverted ? inks[c] : 255 - inks[c];
      rgb[c] = static_cast<uint8_t>((light * black + 127) / 255);
    }
  }
}

std::vector<uint8_t> exifOf(const jpeg_decompress_struct& jpeg) {
  for (jpeg_saved_marker_ptr marker = jpeg.marker_list; marker; marker = marker->next) {
    if (marker->marker == JPEG_APP0 + 1 && marker->data_length > kExifPrefixSize &&
        std::memcmp(marker->data, kExifPrefix, kExifPrefixSize) == 0) {
      return {marker->data + kExifPrefixSize, marker->data + marker->data_length};
    }
  }
  return {};
}

Density densityOf(const jpeg_decompress_struct& jpeg) {
  constexpr Density::Unit kUnits[] = {Density::Unit::unknown, Density::Unit::inch,
                                      Density::Unit::centimetre};
  // Encoders that know nothing write a ratio of 1 to 1.
  const bool stated = jpeg.density_unit != 0 || jpeg.X_density != jpeg.Y_density;
  const bool valid = jpeg.density_unit < 3 && jpeg.X_density > 0 && jpeg.Y_density > 0;
  if (!jpeg.saw_JFIF_marker || !stated || !valid) return {};
  return {kUnits[jpeg.density_unit], jpeg.X_density, jpeg.Y_density};
}

std::vector<uint8_t> profileOf(Decoder& decoder) {
  JOCTET* bytes = nullptr;
  unsigned count = 0;
  if (!decoder.readProfile(&bytes, &count)) failDecoding(decoder);
  const std::unique_ptr<JOCTET, decltype(&std::free)> owner(bytes, std::free);
  return bytes ? std::vector<uint8_t>(bytes, bytes + count) : std::vector<uint8_t>();
}

void decodeRows(Decoder& decoder, Picture& picture, ProgressShare& share) {
  share.expect(picture.height());
  std::vector<uint8_t> inks(decoder.inks() ? static_cast<size_t>(picture.width()) * 4 : 0);
  for (int32_t y = 0; y < picture.height(); ++y) {
    if (!decoder.readRow(inks.empty() ? picture.row(y) : inks.data()) || decoder.damaged()) {
      failDecoding(decoder);
    }
    if (!inks.empty()) {
      inksToRgb(inks.data(), decoder.invertedInks(), picture.width(), picture.row(y));
    }
    share.advance();
  }
}

}  // namespace

Picture decodeJpeg(std::span<const uint8_t> file, ProgressShare& share) {
  // On the heap, so that nothing of it is a local of the functions that set the jump.
  const auto decoder = std::make_unique<Decoder>(file);
  if (!decoder->readHeader()) failDecoding(*decoder);
  const jpeg_decompress_struct& jpeg = decoder->jpeg();
  Picture picture(static_cast<int32_t>(jpeg.image_width), static_cast<int32_t>(jpeg.image_height),
                  3);
  picture.kind = FileKind::jpeg;
  picture.exif = exifOf(jpeg);
  picture.icc = profileOf(*decoder);
  picture.density = densityOf(jpeg);
  if (!decoder->start() || decoder->damaged()) failDecoding(*decoder);
  decodeRows(*decoder, picture, share);
  if (!decoder->finish() || decoder->damaged()) failDecoding(*decoder);
  return picture;
}

}  // namespace qpx::tool
