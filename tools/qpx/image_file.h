// Pictures in and out: JPEG and PNG, from files, standard input and to files, standard output.
#pragma once

#include <cstdint>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "errors.h"
#include "picture.h"
#include "progress.h"

namespace qpx::tool {

// Reads a whole picture; "-" is standard input. The format goes by content. Pixels are turned
// upright by the Exif orientation, and the Exif data is made to say so. Grey, palette, 16-bit and
// CMYK pictures become RGB of 8 bits. Throws RunError, which names the file and says what to do.
Picture readPicture(const std::string& path, ProgressShare share = {});

// Whether the bytes of a file begin as those of a JPEG or PNG.
bool isPicture(const std::vector<uint8_t>& file);

// The same from the bytes of a file. The message of its RunError lacks the file's name.
Picture decodePicture(const std::vector<uint8_t>& file, ProgressShare share = {});

// Writes a whole picture or nothing. JPEG: 4:4:4, transparency laid on white, Exif and profile as
// segments. PNG: 8 bits, Exif and profile as chunks. Both state the density. Throws RunError.
void writePicture(const Picture& picture, const std::string& path, FileKind kind, int quality,
                  ProgressShare share = {});

// The longest side of a picture: that of the codec, or for PNG one that readers still take.
constexpr int32_t kMaxJpegSide = 65500;
constexpr int32_t kMaxPngSide = 1000000;

// What is wrong with writing a picture of this size; empty where nothing is.
std::string sizeProblem(FileKind kind, int32_t width, int32_t height);

struct PictureSize {
  int32_t width, height;
};

// WIDTHxHEIGHT, as options have it. Throws UsageError for anything else, and for a size that a
// picture cannot have.
PictureSize parseSize(const std::string& text);

// By what follows the last dot of the name; nothing for names that say nothing.
std::optional<FileKind> kindByName(const std::string& path);

// The kind that `--to` names; nothing for no name.
std::optional<FileKind> wantedKind(const std::string& to);

// The format wanted by --to ("png", "jpeg", "jpg" or empty), else that of the name; nothing for
// standard output without a wish. Throws UsageError for a name that says nothing.
std::optional<FileKind> kindOfOutput(const std::string& out, const std::string& to);

// All bytes of a file, of 2 GiB at most; "-" is standard input. The message of its RunError lacks
// the file's name.
std::vector<uint8_t> readFileBytes(const std::string& path);

// How a path is called in messages.
std::string displayName(const std::string& path, bool input);

// Returns what `work` does. What goes wrong in it with the input `path` is reported with its name.
template <typename Work>
auto withInputName(const std::string& path, const Work& work) {
  try {
    return work();
  } catch (const RunError& error) {
    throw RunError(displayName(path, true) + ": " + error.what());
  } catch (const std::bad_alloc&) {
    throw RunError(displayName(path, true) + ": not enough memory: use a smaller picture");
  }
}

}  // namespace qpx::tool
