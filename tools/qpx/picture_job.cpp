#include "picture_job.h"

#include <new>
#include <utility>

#include "command_line.h"
#include "effect_run.h"
#include "errors.h"
#include "image_file.h"

namespace qpx::tool {

namespace {

std::optional<FileKind> wantedKind(const JobArguments& arguments) {
  if (!arguments.to.empty()) return arguments.to == "png" ? FileKind::png : FileKind::jpeg;
  if (arguments.out == "-") return std::nullopt;  // that of the input
  if (const std::optional<FileKind> kind = kindByName(arguments.out)) return kind;
  throw UsageError(arguments.out + ": qpx writes JPEG and PNG: name it .jpg or .png, or give --to");
}

}  // namespace

void addJobOptions(CLI::App& command, JobArguments& arguments) {
  command.add_option("IN", arguments.in, "JPEG or PNG; '-' is standard input")
      ->required()
      ->check(notEmpty());
  command.add_option("OUT", arguments.out, "JPEG or PNG; '-' is standard output")
      ->required()
      ->check(notEmpty());
  command.add_option("--to", arguments.to, "Output format, whatever the name says")
      ->check(CLI::IsMember({"png", "jpeg", "jpg"}));
  command.add_option("--quality", arguments.quality, "Quality of JPEG output (default 95, 4:4:4)")
      ->check(CLI::Range(1, 100));
}

void runPictureJob(const JobArguments& arguments, const PictureWork& work) {
  const std::optional<FileKind> wanted = wantedKind(arguments);
  const std::string name = displayName(arguments.in, true);
  Progress progress(name, kPictureSteps);
  Picture picture = readPicture(arguments.in, {progress, kReadSteps});
  const FileKind kind = wanted.value_or(picture.kind);
  try {
    picture = work(std::move(picture), progress);
  } catch (const RunError& error) {
    throw RunError(name + ": " + error.what());
  } catch (const std::bad_alloc&) {
    throw RunError(name + ": not enough memory: use a smaller picture");
  }
  writePicture(picture, arguments.out, kind, arguments.quality, {progress, kWriteSteps});
}

std::string failureText(int32_t code) {
  if (code == QPX_NO_MEMORY) return "not enough memory: use a smaller picture";
  if (code == QPX_UNSUPPORTED) return "is too wide or too high: use a smaller picture";
  return "the library refuses it (code " + std::to_string(code) + "): use another picture";
}

MBitmap recordOf(const Picture& picture) {
  MBitmap record{};
  record.format = picture.hasAlpha() ? QPX_FORMAT_RGBA32 : QPX_FORMAT_RGB24;
  record.width = picture.width();
  record.height = picture.height();
  record.pitch[0] = static_cast<int32_t>(picture.pitch());
  record.plane[0] = const_cast<uint8_t*>(picture.row(0));
  return record;
}

}  // namespace qpx::tool
