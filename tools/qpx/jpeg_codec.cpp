#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include <jpeglib.h>

#include <jerror.h>

#include "codecs.h"
#include "errors.h"

namespace qpx::tool {

namespace {

// libjpeg reports errors by a call that must not return. It leaves by longjmp, over frames of C
// only: every function that sets the jump calls nothing but libjpeg and holds no object with a
// destructor.
struct ErrorHandler {
  jpeg_error_mgr base;
  std::jmp_buf jump;
  char message[JMSG_LENGTH_MAX];
  bool damaged;  // data ended early or made no sense, though libjpeg would paint over it
};

ErrorHandler* handlerOf(j_common_ptr codec) { return reinterpret_cast<ErrorHandler*>(codec->err); }

void leave(j_common_ptr codec) {
  ErrorHandler* handler = handlerOf(codec);
  if (!handler->damaged) codec->err->format_message(codec, handler->message);
  std::longjmp(handler->jump, 1);
}

// A picture painted over with grey is worse than an error, so what libjpeg only warns of counts.
void noteWarning(j_common_ptr codec, int level) {
  if (level >= 0) return;
  ErrorHandler* handler = handlerOf(codec);
  const int code = codec->err->msg_code;
  const bool serious = code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER ||
                       code == JWRN_MUST_RESYNC || code == JWRN_HUFF_BAD_CODE ||
                       code == JWRN_ARITH_BAD_CODE;
  if (serious && !handler->damaged) {
    codec->err->format_message(codec, handler->message);
    handler->damaged = true;
  }
}

void beQuiet(j_common_ptr) {}

jpeg_error_mgr* prepare(ErrorHandler& handler) {
  jpeg_std_error(&handler.base);
  handler.base.error_exit = leave;
  handler.base.emit_message = noteWarning;
  handler.base.output_message = beQuiet;
  handler.message[0] = '\0';
  handler.damaged = false;
  return &handler.base;
}

// A progressive file of a few kilobytes may ask for thousands of passes over a huge picture.
constexpr int kMaxScans = 500;

void limitScans(j_common_ptr codec) {
  auto* decoder = reinterpret_cast<j_decompress_ptr>(codec);
  if (decoder->input_scan_number > kMaxScans) {
    ErrorHandler* handler = handlerOf(codec);
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
  ErrorHandler handler_{};
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

constexpr char kExifPrefix[] = "Exif\0";  // and the terminating zero: six bytes
constexpr size_t kExifPrefixSize = sizeof kExifPrefix;

std::vector<uint8_t> exifOf(const jpeg_decompress_struct& jpeg) {
  for (jpeg_saved_marker_ptr marker = jpeg.marker_list; marker; marker = marker->next) {
    if (marker->marker == JPEG_APP0 + 1 && marker->data_length > kExifPrefixSize &&
        std::memcmp(marker->data, kExifPrefix, kExifPrefixSize) == 0) {
      return {marker->data + kExifPrefixSize, marker->data + marker->data_length};
    }
  }
  return {};
}

std::vector<uint8_t> profileOf(Decoder& decoder) {
  JOCTET* bytes = nullptr;
  unsigned count = 0;
  if (!decoder.readProfile(&bytes, &count)) failDecoding(decoder);
  const std::unique_ptr<JOCTET, decltype(&std::free)> owner(bytes, std::free);
  return bytes ? std::vector<uint8_t>(bytes, bytes + count) : std::vector<uint8_t>();
}

void decodeRows(Decoder& decoder, Picture& picture) {
  std::vector<uint8_t> inks(decoder.inks() ? static_cast<size_t>(picture.width()) * 4 : 0);
  for (int32_t y = 0; y < picture.height(); ++y) {
    if (!decoder.readRow(inks.empty() ? picture.row(y) : inks.data()) || decoder.damaged()) {
      failDecoding(decoder);
    }
    if (!inks.empty()) {
      inksToRgb(inks.data(), decoder.invertedInks(), picture.width(), picture.row(y));
    }
  }
}

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

  bool start(int32_t width, int32_t height, int quality) {
    if (setjmp(handler_.jump)) return false;
    jpeg_create_compress(&jpeg_);
    jpeg_.dest = &destination_.base;
    jpeg_.image_width = static_cast<JDIMENSION>(width);
    jpeg_.image_height = static_cast<JDIMENSION>(height);
    jpeg_.input_components = 3;
    jpeg_.in_color_space = JCS_RGB;
    jpeg_set_defaults(&jpeg_);
    jpeg_set_quality(&jpeg_, quality, TRUE);
    jpeg_.comp_info[0].h_samp_factor = 1;
    jpeg_.comp_info[0].v_samp_factor = 1;
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
  ErrorHandler handler_{};
  Destination destination_{};
};

void layOnWhite(const uint8_t* rgba, int32_t width, uint8_t* rgb) {
  for (int32_t x = 0; x < width; ++x, rgba += 4, rgb += 3) {
    for (int c = 0; c < 3; ++c) {
      rgb[c] = static_cast<uint8_t>((rgba[c] * rgba[3] + 255 * (255 - rgba[3]) + 127) / 255);
    }
  }
}

constexpr size_t kMaxSegment = 65533;
constexpr size_t kMaxProfile = 255 * (kMaxSegment - 14);

bool writeMetadata(Encoder& encoder, const Picture& picture) {
  std::vector<uint8_t> segment(kExifPrefix, kExifPrefix + kExifPrefixSize);
  segment.insert(segment.end(), picture.exif.begin(), picture.exif.end());
  // A segment cannot hold more, and such Exif data came from a PNG: the picture matters more.
  const bool exifFits = !picture.exif.empty() && segment.size() <= kMaxSegment;
  if (exifFits && !encoder.writeSegment(JPEG_APP0 + 1, segment)) return false;
  const bool profileFits = !picture.icc.empty() && picture.icc.size() <= kMaxProfile;
  return !profileFits || encoder.writeProfile(picture.icc);
}

}  // namespace

Picture decodeJpeg(std::span<const uint8_t> file) {
  // On the heap, so that nothing of it is a local of the functions that set the jump.
  const auto decoder = std::make_unique<Decoder>(file);
  if (!decoder->readHeader()) failDecoding(*decoder);
  const jpeg_decompress_struct& jpeg = decoder->jpeg();
  Picture picture(static_cast<int32_t>(jpeg.image_width), static_cast<int32_t>(jpeg.image_height),
                  3);
  picture.kind = FileKind::jpeg;
  picture.exif = exifOf(jpeg);
  picture.icc = profileOf(*decoder);
  if (!decoder->start() || decoder->damaged()) failDecoding(*decoder);
  decodeRows(*decoder, picture);
  if (!decoder->finish() || decoder->damaged()) failDecoding(*decoder);
  return picture;
}

void encodeJpeg(const Picture& picture, int quality, OutputFile& out) {
  if (picture.width() > JPEG_MAX_DIMENSION || picture.height() > JPEG_MAX_DIMENSION) {
    throw RunError("is wider or higher than the " + std::to_string(JPEG_MAX_DIMENSION) +
                   " pixels of a JPEG: write a PNG instead");
  }
  const auto encoder = std::make_unique<Encoder>(out);
  bool good = encoder->start(picture.width(), picture.height(), quality) &&
              writeMetadata(*encoder, picture);
  std::vector<uint8_t> opaque(picture.hasAlpha() ? static_cast<size_t>(picture.width()) * 3 : 0);
  for (int32_t y = 0; good && y < picture.height(); ++y) {
    if (picture.hasAlpha()) layOnWhite(picture.row(y), picture.width(), opaque.data());
    good = encoder->writeRow(picture.hasAlpha() ? opaque.data() : picture.row(y));
  }
  if (!good || !encoder->finish()) {
    throw RunError(std::string("cannot be written as JPEG (") + encoder->message() +
                   "): try a PNG instead");
  }
}

}  // namespace qpx::tool
