#include <csetjmp>
#include <memory>
#include <vector>

#include "codecs.h"
#include "errors.h"
#include "image_file.h"
#include "jpeg_errors.h"

#include <jerror.h>

namespace qpx::tool {

namespace {

// libjpeg's output end: a small buffer that empties into the file.
struct Destination {
  jpeg_destination_mgr base;
  OutputFile* out;
  JOCTET buffer[1 << 16];
};

Destination* destinationOf(j_compress_ptr jpeg) {
  return reinterpret_cast<Destination*>(jpeg->dest);
}

void startBuffer(j_compress_ptr jpeg) {
  Destination* to = destinationOf(jpeg);
  to->base.next_output_byte = to->buffer;
  to->base.free_in_buffer = sizeof to->buffer;
}

void writeOut(j_compress_ptr jpeg, size_t bytes) {
  if (!destinationOf(jpeg)->out->write(destinationOf(jpeg)->buffer, bytes)) {
    ERREXIT(jpeg, JERR_FILE_WRITE);
  }
}

boolean emptyBuffer(j_compress_ptr jpeg) {
  writeOut(jpeg, sizeof destinationOf(jpeg)->buffer);
  startBuffer(jpeg);
  return TRUE;
}

void endBuffer(j_compress_ptr jpeg) {
  writeOut(jpeg, sizeof destinationOf(jpeg)->buffer - destinationOf(jpeg)->base.free_in_buffer);
}

// As the fields of the JFIF marker hold it; what does not fit them is not stated.
struct JfifDensity {
  UINT8 unit = 0;  // none, inch, centimetre
  UINT16 across = 1;
  UINT16 down = 1;
};

JfifDensity jfifDensity(const Density& stated) {
  using Unit = Density::Unit;
  const Density density = stated.unit == Unit::metre ? inUnit(stated, Unit::inch) : stated;
  const auto fits = [](uint32_t side) { return side > 0 && side <= 0xFFFF; };
  if (!fits(density.across) || !fits(density.down)) return {};
  const int unit = density.unit == Unit::inch ? 1 : (density.unit == Unit::centimetre ? 2 : 0);
  return {static_cast<UINT8>(unit), static_cast<UINT16>(density.across),
          static_cast<UINT16>(density.down)};
}

class Encoder {
 public:
  explicit Encoder(OutputFile& out) {
    jpeg_.err = prepare(handler_);
    destination_.base.init_destination = startBuffer;
    destination_.base.empty_output_buffer = emptyBuffer;
    destination_.base.term_destination = endBuffer;
    destination_.out = &out;
  }
  ~Encoder() { jpeg_destroy_compress(&jpeg_); }
  Encoder(const Encoder&) = delete;
  Encoder& operator=(const Encoder&) = delete;

  bool start(const Picture& picture, int quality, const JfifDensity& density) {
    if (setjmp(handler_.jump)) return false;
    jpeg_create_compress(&jpeg_);
    jpeg_.dest = &destination_.base;
    jpeg_.image_width = static_cast<JDIMENSION>(picture.width());
    jpeg_.image_height = static_cast<JDIMENSION>(picture.height());
    const bool grey = picture.channels() == 1;
    jpeg_.input_components = grey ? 1 : 3;
    jpeg_.in_color_space = grey ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&jpeg_);
    jpeg_set_quality(&jpeg_, quality, TRUE);
    jpeg_.comp_info[0].h_samp_factor = 1;
    jpeg_.comp_info[0].v_samp_factor = 1;
    jpeg_.density_unit = density.unit;
    jpeg_.X_density = density.across;
    jpeg_.Y_density = density.down;
    jpeg_start_compress(&jpeg_, TRUE);
    return true;
  }

  bool writeSegment(int marker, std::span<const uint8_t> bytes) {
    if (setjmp(handler_.jump)) return false;
    jpeg_write_marker(&jpeg_, marker, bytes.data(), static_cast<unsigned>(bytes.size()));
    return true;
  }

  bool writeProfile(std::span<const uint8_t> icc) {
    if (setjmp(handler_.jump)) return false;
    jpeg_write_icc_profile(&jpeg_, icc.data(), static_cast<unsigned>(icc.size()));
    return true;
  }

  bool writeRow(const uint8_t* row) {
    if (setjmp(handler_.jump)) return false;
    JSAMPROW rows = const_cast<JSAMPROW>(row);
    return jpeg_write_scanlines(&jpeg_, &rows, 1) == 1;
  }

  bool finish() {
    if (setjmp(handler_.jump)) return false;
    jpeg_finish_compress(&jpeg_);
    return true;
  }

  const char* message() const { return handler_.message; }

 private:
  jpeg_compress_struct jpeg_{};
  JpegErrorHandler handler_{};
  Destination destination_{};
};

static_assert(kMaxJpegSide == JPEG_MAX_DIMENSION);

constexpr size_t kMaxSegment = 65533;
constexpr size_t kMaxProfile = 255 * (kMaxSegment - 14);

bool writeMetadata(Encoder& encoder, const Picture& picture) {
  std::vector<uint8_t> segment(kExifPrefix, kExifPrefix + kExifPrefixSize);
  segment.insert(segment.end(), picture.exif.begin(), picture.exif.end());
  // A segment cannot hold more, and such Exif data came from a PNG: the picture matters more.
  const bool exifFits = !picture.exif.empty() && segment.size() <= kMaxSegment;
  if (exifFits && !encoder.writeSegment(JPEG_APP0 + 1, segment)) return false;
  // Profiles are for RGB.
  const bool profileFits =
      !picture.icc.empty() && picture.channels() >= 3 && picture.icc.size() <= kMaxProfile;
  return !profileFits || encoder.writeProfile(picture.icc);
}

}  // namespace

void encodeJpeg(const Picture& picture, int quality, OutputFile& out, ProgressShare& share) {
  share.expect(picture.height());
  const auto encoder = std::make_unique<Encoder>(out);
  bool good = encoder->start(picture, quality, jfifDensity(picture.density)) &&
              writeMetadata(*encoder, picture);
  std::vector<uint8_t> opaque(picture.hasAlpha() ? static_cast<size_t>(picture.width()) * 3 : 0);
  for (int32_t y = 0; good && y < picture.height(); ++y) {
    if (picture.hasAlpha()) layOnWhite(picture.row(y), picture.width(), opaque.data());
    good = encoder->writeRow(picture.hasAlpha() ? opaque.data() : picture.row(y));
    share.advance();
  }
  if (!good || !encoder->finish()) {
    throw RunError(std::string("cannot be written as JPEG (") + encoder->message() +
                   "): try a PNG instead");
  }
}

}  // namespace qpx::tool
