#include "image_file.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "codecs.h"
#include "errors.h"
#include "exif.h"
#include "frame_y4m.h"
#include "input_file.h"
#include "text.h"

namespace qpx::tool {

namespace {

bool beginsWith(const std::vector<uint8_t>& file, std::string_view text) {
  const auto same = [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; };
  return file.size() >= text.size() && std::equal(text.begin(), text.end(), file.begin(), same);
}

bool isJpeg(const std::vector<uint8_t>& file) { return beginsWith(file, "\xFF\xD8\xFF"); }

// A file cut within the signature is a PNG that ends too early, not something else.
bool isPng(const std::vector<uint8_t>& file) {
  constexpr std::string_view kSignature = "\x89PNG\r\n\x1A\n";
  return file.size() >= 4 && beginsWith(file, kSignature.substr(0, file.size()));
}

Picture decode(const std::vector<uint8_t>& file, ProgressShare& share) {
  if (isJpeg(file)) return decodeJpeg(file, share);
  if (isPng(file)) return decodePng(file, share);
  if (file.empty()) throw RunError("is empty: use a JPEG or PNG picture");
  if (beginsWith(file, "PKM ")) {
    throw RunError("is a PKM texture: make a picture of it with 'qpx etc decode'");
  }
  if (beginsWith(file, kY4mMagic)) {
    throw RunError("is a YUV4MPEG2 stream: make a picture of a frame with 'qpx convert'");
  }
  throw RunError("is neither JPEG nor PNG: convert it to one of them first");
}

}  // namespace

bool isPicture(const std::vector<uint8_t>& file) { return isJpeg(file) || isPng(file); }

std::vector<uint8_t> readFileBytes(const std::string& path) { return InputFile(path).readAll(); }

std::string displayName(const std::string& path, bool input) {
  if (path != "-") return path;
  return input ? "standard input" : "standard output";
}

std::optional<FileKind> kindByName(const std::string& path) {
  const size_t dot = path.rfind('.');
  if (dot == std::string::npos) return std::nullopt;
  const std::string extension = lowerCase(path.substr(dot + 1));
  if (extension == "jpg" || extension == "jpeg" || extension == "jpe" || extension == "jfif") {
    return FileKind::jpeg;
  }
  if (extension == "png") return FileKind::png;
  return std::nullopt;
}

std::optional<FileKind> wantedKind(const std::string& to) {
  if (to.empty()) return std::nullopt;
  return to == "png" ? FileKind::png : FileKind::jpeg;
}

std::optional<FileKind> kindOfOutput(const std::string& out, const std::string& to) {
  if (const std::optional<FileKind> wanted = wantedKind(to)) return wanted;
  if (out == "-") return std::nullopt;
  if (const std::optional<FileKind> kind = kindByName(out)) return kind;
  throw UsageError(out + ": qpx writes JPEG and PNG: name it .jpg or .png, or give --to");
}

Picture decodePicture(const std::vector<uint8_t>& file, ProgressShare share) {
  Picture picture = decode(file, share);
  if (!isRgbProfile(picture.icc)) picture.icc.clear();
  const int orientation = exifOrientation(picture.exif);
  picture = turned(std::move(picture), orientation);
  describeUpright(picture.exif, picture.width(), picture.height());
  return picture;
}

Picture readPicture(const std::string& path, ProgressShare share) {
  return withInputName(path, [&] { return decodePicture(readFileBytes(path), share); });
}

std::string sizeProblem(FileKind kind, int32_t width, int32_t height) {
  const bool jpeg = kind == FileKind::jpeg;
  const int32_t most = jpeg ? kMaxJpegSide : kMaxPngSide;
  if (width <= most && height <= most) return {};
  return std::to_string(width) + "x" + std::to_string(height) + " is wider or higher than the " +
         std::to_string(most) + " pixels of a " +
         (jpeg ? "JPEG: write a PNG instead" : "PNG: use a smaller picture");
}

PictureSize parseSize(const std::string& text) {
  const std::vector<std::string> sides = split(lowerCase(text), 'x');
  if (sides.size() == 2) {
    const std::optional<int64_t> width = parseInteger(sides[0]), height = parseInteger(sides[1]);
    if (width && height && *width >= 1 && *height >= 1 && *width <= kMaxPngSide &&
        *height <= kMaxPngSide && *width * *height <= kMaxPixels) {
      return {static_cast<int32_t>(*width), static_cast<int32_t>(*height)};
    }
  }
  throw UsageError("'" + text +
                   "' is no size: use WIDTHxHEIGHT, such as 640x480, from 1x1 to 512 " +
                   "megapixels");
}

void writePicture(const Picture& picture, const std::string& path, FileKind kind, int quality,
                  ProgressShare share) {
  const std::string problem = sizeProblem(kind, picture.width(), picture.height());
  if (!problem.empty()) throw RunError(displayName(path, false) + ": " + problem);
  OutputFile out(path);
  try {
    if (kind == FileKind::jpeg) {
      encodeJpeg(picture, quality, out, share);
    } else {
      encodePng(picture, out, share);
    }
  } catch (const RunError& error) {
    // What stopped the encoder may be the disk, and then commit() says so better.
    if (out.error() != 0) out.commit();
    throw RunError(displayName(path, false) + ": " + error.what());
  }
  out.commit();
}

}  // namespace qpx::tool
