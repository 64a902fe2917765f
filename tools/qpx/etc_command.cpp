// qpx etc: ETC1 textures in PKM files.
#include <qpx/etc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "errors.h"
#include "image_file.h"
#include "output_file.h"
#include "picture.h"
#include "pkm_file.h"
#include "text.h"

namespace qpx::tool {

namespace {

struct EtcArguments {
  std::string in, second, out;
  std::string quality = "high";
  std::string to;
  std::string rect, at = "0,0";
  double alpha = 1;
  int jpegQuality = 95;
};

void check(int32_t result, const std::string& path) {
  if (result == QPX_OK) return;
  throw RunError(path + ": " +
                 (result == QPX_NO_MEMORY
                      ? "not enough memory: use a smaller picture"
                      : "the texture codec answered " + std::to_string(result)));
}

// Numbers between commas.
std::vector<int32_t> parseNumbers(const std::string& text, size_t count, const std::string& shape) {
  constexpr int64_t kMost = 1 << 20;
  std::vector<int32_t> numbers;
  for (const std::string& part : split(text, ',')) {
    const std::optional<int64_t> number = parseInteger(part);
    if (number && *number >= -kMost && *number <= kMost) {
      numbers.push_back(static_cast<int32_t>(*number));
    }
  }
  if (numbers.size() != count || split(text, ',').size() != count) {
    throw UsageError("'" + text + "' is not of the form " + shape);
  }
  return numbers;
}

void refuseNonMultiples(const std::vector<int32_t>& numbers, const std::string& option) {
  for (const int32_t number : numbers) {
    if (number % 4 != 0) {
      throw UsageError(option + ": " + std::to_string(number) +
                       " is no multiple of 4, the side of a block");
    }
  }
}

struct Region {
  int32_t x, y, width, height;
};

// x, y, w, h in pixels. Sides may end with the picture, within a block.
Region parseRegion(const std::string& text) {
  const std::vector<int32_t> n = parseNumbers(text, 4, "x,y,w,h");
  refuseNonMultiples({n[0], n[1]}, "--rect");
  if (n[0] < 0 || n[1] < 0 || n[2] < 1 || n[3] < 1) {
    throw UsageError("--rect: '" + text + "' is no rectangle: x and y start at 0, w and h at 1");
  }
  return {n[0], n[1], n[2], n[3]};
}

void checkRegion(const Region& region, const PkmTexture& texture, const std::string& path) {
  const bool fits =
      region.x + region.width <= texture.width() && region.y + region.height <= texture.height();
  const auto endsWithBlock = [](int32_t start, int32_t side, int32_t whole) {
    return side % 4 == 0 || start + side == whole;
  };
  if (!fits) {
    throw RunError(path + ": --rect leaves the picture of " + std::to_string(texture.width()) +
                   "x" + std::to_string(texture.height()) + " pixels");
  }
  if (!endsWithBlock(region.x, region.width, texture.width()) ||
      !endsWithBlock(region.y, region.height, texture.height())) {
    throw RunError(path +
                   ": --rect ends within a block: use a width and height that are multiples "
                   "of 4 or reach the picture's edge");
  }
}

MRect blocksOf(const Region& region) {
  return {region.x, region.y, region.x + (region.width + 3) / 4 * 4,
          region.y + (region.height + 3) / 4 * 4};
}

// Three channels, transparency on white, the last column and row repeated up to whole blocks.
Picture paddedRgb(const Picture& picture) {
  Picture padded((picture.width() + 3) / 4 * 4, (picture.height() + 3) / 4 * 4, 3);
  for (int32_t y = 0; y < padded.height(); ++y) {
    const uint8_t* from = picture.row(std::min(y, picture.height() - 1));
    uint8_t* to = padded.row(y);
    for (int32_t x = 0; x < padded.width(); ++x, to += 3) {
      const uint8_t* pixel =
          from + ptrdiff_t{std::min(x, picture.width() - 1)} * picture.channels();
      const int alpha = picture.hasAlpha() ? pixel[3] : 255;
      for (int c = 0; c < 3; ++c) {
        to[c] = static_cast<uint8_t>((pixel[c] * alpha + 255 * (255 - alpha) + 127) / 255);
      }
    }
  }
  return padded;
}

MBitmap recordOf(Picture& picture) {
  return {QPX_FORMAT_RGB24,
          picture.width(),
          picture.height(),
          {static_cast<int32_t>(picture.pitch()), 0, 0},
          {picture.row(0), nullptr, nullptr}};
}

void refusePictureName(const std::string& out) {
  if (out == "-" || !kindByName(out)) return;
  throw UsageError(out + ": is written as a PKM file: name it .pkm");
}

void encode(const EtcArguments& arguments) {
  refusePictureName(arguments.out);
  refuseTerminal(arguments.out, isatty(STDOUT_FILENO) != 0);
  const Picture picture = readPicture(arguments.in);
  const std::string name = displayName(arguments.in, true);
  if (picture.width() > kMaxPkmSide || picture.height() > kMaxPkmSide) {
    throw RunError(name + ": is wider or higher than the " + std::to_string(kMaxPkmSide) +
                   " pixels of a PKM file: use a smaller picture");
  }
  Picture padded = paddedRgb(picture);
  PkmTexture texture(picture.width(), picture.height());
  const MBitmap source = recordOf(padded);
  MBitmap target = texture.record();
  const bool fast = arguments.quality == "fast";
  check(TEXPK_Compress_ETC(&source, &target, fast ? QPX_ETC_FAST : QPX_ETC_SLOW), name);
  writePkm(texture, arguments.out);
}

FileKind kindFor(const EtcArguments& arguments) {
  if (!arguments.to.empty()) return arguments.to == "png" ? FileKind::png : FileKind::jpeg;
  if (arguments.out == "-") return FileKind::png;
  if (const std::optional<FileKind> kind = kindByName(arguments.out)) return *kind;
  throw UsageError(arguments.out + ": qpx writes JPEG and PNG: name it .jpg or .png, or give --to");
}

void decode(const EtcArguments& arguments) {
  const FileKind kind = kindFor(arguments);
  refuseTerminal(arguments.out, isatty(STDOUT_FILENO) != 0);
  const PkmTexture texture = readPkm(arguments.in);
  Picture padded(texture.paddedWidth(), texture.paddedHeight(), 3);
  const MBitmap source = texture.record();
  MBitmap target = recordOf(padded);
  check(TEXPK_Uncompress_ETC(&source, &target), displayName(arguments.in, true));
  Picture picture(texture.width(), texture.height(), 3);
  for (int32_t y = 0; y < picture.height(); ++y) {
    std::memcpy(picture.row(y), padded.row(y), static_cast<size_t>(picture.pitch()));
  }
  writePicture(picture, arguments.out, kind, arguments.jpegQuality);
}

void crop(const EtcArguments& arguments) {
  const Region region = parseRegion(arguments.rect);
  refusePictureName(arguments.out);
  refuseTerminal(arguments.out, isatty(STDOUT_FILENO) != 0);
  const PkmTexture texture = readPkm(arguments.in);
  const std::string name = displayName(arguments.in, true);
  checkRegion(region, texture, name);
  const PkmTexture cropped(region.width, region.height);
  const MBitmap source = texture.record();
  MBitmap target = cropped.record();
  const MRect rect = blocksOf(region);
  const MPoint origin = {0, 0};
  check(TEXPK_Crop_ETC(&source, &target, &rect, &origin), name);
  writePkm(cropped, arguments.out);
}

void merge(const EtcArguments& arguments) {
  const std::vector<int32_t> at = parseNumbers(arguments.at, 2, "x,y");
  refuseNonMultiples(at, "--at");
  std::optional<Region> region;
  if (!arguments.rect.empty()) region = parseRegion(arguments.rect);
  if (arguments.in == "-" && arguments.second == "-") {
    throw UsageError("BASE and OVERLAY cannot both be standard input");
  }
  refusePictureName(arguments.out);
  refuseTerminal(arguments.out, isatty(STDOUT_FILENO) != 0);
  const PkmTexture base = readPkm(arguments.in);
  const PkmTexture overlay = readPkm(arguments.second);
  if (!region) region = Region{0, 0, overlay.width(), overlay.height()};
  checkRegion(*region, overlay, displayName(arguments.second, true));
  const PkmTexture merged(base.width(), base.height());
  const MBitmap baseRecord = base.record(), overlayRecord = overlay.record();
  MBitmap target = merged.record();
  const MRect rect = blocksOf(*region);
  const MPoint origin = {at[0], at[1]};
  check(TEXPK_Merge_ETC(&target, &overlayRecord, &baseRecord, &rect, &origin,
                        static_cast<float>(arguments.alpha)),
        displayName(arguments.in, true));
  writePkm(merged, arguments.out);
}

using ArgumentsPtr = std::shared_ptr<EtcArguments>;

void addFile(CLI::App& command, const std::string& name, std::string& to, const std::string& text) {
  command.add_option(name, to, text)->required()->check(notEmpty());
}

CLI::App* addJob(CLI::App& etc, const std::string& name, const std::string& text,
                 void (*job)(const EtcArguments&), const ArgumentsPtr& arguments) {
  CLI::App* command = etc.add_subcommand(name, text);
  command->callback([=] { job(*arguments); });
  return command;
}

void addEncode(CLI::App& etc) {
  const auto arguments = std::make_shared<EtcArguments>();
  CLI::App* command = addJob(etc, "encode", "Compress a picture", encode, arguments);
  addFile(*command, "IN", arguments->in, "JPEG or PNG; '-' is standard input");
  addFile(*command, "OUT", arguments->out, "PKM file; '-' is standard output");
  command
      ->add_option("--quality", arguments->quality,
                   "fast: mean colours, left and right halves only (default high)")
      ->check(CLI::IsMember({"fast", "high"}));
  command->footer(
      "Any size: the last column and row are repeated up to whole blocks of 4 x 4,\n"
      "and the file tells the real size. Transparency is laid on white.\n\n"
      "Example:\n"
      "  qpx etc encode photo.jpg photo.pkm");
}

void addDecode(CLI::App& etc) {
  const auto arguments = std::make_shared<EtcArguments>();
  CLI::App* command = addJob(etc, "decode", "Turn a texture into a picture", decode, arguments);
  addFile(*command, "IN", arguments->in, "PKM file; '-' is standard input");
  addFile(*command, "OUT", arguments->out, "JPEG or PNG; '-' is standard output");
  command->add_option("--to", arguments->to, "Output format, whatever the name says")
      ->check(CLI::IsMember({"png", "jpeg", "jpg"}));
  command->add_option("--quality", arguments->jpegQuality, "Quality of JPEG output (default 95)")
      ->transform(wholeNumber(1, 100));
  command->footer(
      "Example:\n"
      "  qpx etc decode photo.pkm photo.png");
}

void addCrop(CLI::App& etc) {
  const auto arguments = std::make_shared<EtcArguments>();
  CLI::App* command =
      addJob(etc, "crop", "Cut out blocks; nothing is compressed again", crop, arguments);
  addFile(*command, "IN", arguments->in, "PKM file; '-' is standard input");
  addFile(*command, "OUT", arguments->out, "PKM file; '-' is standard output");
  command->add_option("--rect", arguments->rect, "What to keep, in pixels")
      ->required()
      ->check(notEmpty())
      ->type_name("x,y,w,h");
  command->footer(
      "x and y are multiples of 4; w and h too, unless they reach the picture's edge.\n\n"
      "Example:\n"
      "  qpx etc crop photo.pkm corner.pkm --rect 0,0,256,128");
}

void addMerge(CLI::App& etc) {
  const auto arguments = std::make_shared<EtcArguments>();
  CLI::App* command = addJob(
      etc, "merge", "Blend one texture into another; neither is decompressed", merge, arguments);
  addFile(*command, "BASE", arguments->in, "PKM file; '-' is standard input");
  addFile(*command, "OVERLAY", arguments->second, "PKM file that is laid on it");
  addFile(*command, "OUT", arguments->out, "PKM file of the base's size; '-' is standard output");
  command->add_option("--rect", arguments->rect, "Part of the overlay (default: all of it)")
      ->check(notEmpty())
      ->type_name("x,y,w,h");
  command->add_option("--at", arguments->at, "Its place on the base (default 0,0); may lie outside")
      ->check(notEmpty())
      ->type_name("x,y");
  command->add_option("--alpha", arguments->alpha, "Share of the overlay (default 1)")
      ->check(number(0, 1));
  command->footer(
      "Works by whole blocks of 4 x 4: x and y are multiples of 4; w and h too, unless\n"
      "they reach the overlay's edge, whose last blocks are then laid on whole.\n\n"
      "Example:\n"
      "  qpx etc merge photo.pkm logo.pkm out.pkm --at 32,16 --alpha 0.5");
}

}  // namespace

void addEtcCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand("etc", "ETC1 textures in PKM files");
  command->require_subcommand(1);
  command->footer(
      "'qpx etc JOB --help' shows each.\n\n"
      "Example:\n"
      "  qpx etc encode photo.jpg photo.pkm");
  addEncode(*command);
  addDecode(*command);
  addCrop(*command);
  addMerge(*command);
}

}  // namespace qpx::tool
