#include "one_picture.h"

#include <qpx/types.h>
#include <unistd.h>

#include <new>
#include <utility>

#include "command_line.h"
#include "effect_run.h"
#include "errors.h"
#include "image_file.h"
#include "output_file.h"

namespace qpx::tool {

void addOnePictureOptions(CLI::App& command, OnePicture& files) {
  command.add_option("IN", files.in, "JPEG or PNG; '-' is standard input")
      ->required()
      ->check(notEmpty());
  command.add_option("OUT", files.out, "JPEG or PNG; '-' is standard output")
      ->required()
      ->check(notEmpty());
  command.add_option("--to", files.to, "Output format, whatever the name says")
      ->check(CLI::IsMember({"png", "jpeg", "jpg"}));
  addQualityOption(command, files.quality);
}

void changePicture(const OnePicture& files, const Change& change) {
  const std::optional<FileKind> wanted = kindOfOutput(files.out, files.to);
  refuseTerminal(files.out, isatty(STDOUT_FILENO) != 0);
  Progress progress(displayName(files.in, true), kPictureSteps);
  Picture picture = readPicture(files.in, {progress, kReadSteps});
  const FileKind kind = wanted.value_or(picture.kind);
  const std::string problem = sizeProblem(kind, picture.width(), picture.height());
  if (!problem.empty()) throw RunError(displayName(files.out, false) + ": " + problem);
  refuseUnwritable(files.out);
  picture = withInputName(files.in, [&] { return change(std::move(picture), progress); });
  writePicture(picture, files.out, kind, files.quality, {progress, kWriteSteps});
}

void checkResult(int32_t code) {
  if (code == QPX_OK) return;
  if (code == QPX_NO_MEMORY) throw std::bad_alloc();
  if (code == QPX_UNSUPPORTED) throw RunError("is too wide or too high: use a smaller picture");
  throw RunError("the library refuses it (code " + std::to_string(code) + "): use another picture");
}

}  // namespace qpx::tool
