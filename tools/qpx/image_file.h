// Pictures in and out: JPEG and PNG, from files, standard input and to files, standard output.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "picture.h"

namespace qpx::tool {

// Reads a whole picture; "-" is standard input. The format goes by content. Pixels are turned
// upright by the Exif orientation, and the Exif data is made to say so. Grey, palette, 16-bit and
// CMYK pictures become RGB of 8 bits. Throws RunError, which names the file and says what to do.
Picture readPicture(const std::string& path);

// Writes a whole picture or nothing. JPEG: 4:4:4, transparency laid on white, Exif and profile as
// segments. PNG: 8 bits, Exif and profile as chunks. Throws RunError.
void writePicture(const Picture& picture, const std::string& path, FileKind kind, int quality);

// By what follows the last dot of the name; nothing for names that say nothing.
std::optional<FileKind> kindByName(const std::string& path);

// How a path is called in messages.
std::string displayName(const std::string& path, bool input);

}  // namespace qpx::tool
