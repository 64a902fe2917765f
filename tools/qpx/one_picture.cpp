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
  command.add_option("--quality", files.quality, "Quality of JPEG output (default 95, 4:4:4)")
      ->transform(wholeNumber(1, 100));
}

void changePicture(const OnePicture& files, const Change& change) {
  const std::optional<FileKind> wanted = kindOfOutput(files.out, files.to);
  refuseTerminal(files.out, isatty(STDOUT_FILENO) != 0);
  const std::string name = displayName(files.in, true);
  Progress progress(name, kPictureSteps);
  Picture picture = readPicture(files.in, {progress, kReadSteps});
  const FileKind kind = wanted.value_or(picture.kind);
  const std::string problem = sizeProblem(kind, picture.width(), picture.height());
  if (!problem.empty()) throw RunError(displayName(files.out, false) + ": " + problem);
  refuseUnwritable(files.out);
  try {
    picture = change(std::move(picture), progress);
  } catch (const RunError& error) {
    throw RunError(name + ": " + error.what());
  } catch (const std::bad_alloc&) {
    throw RunError(name + ": not enough memory: use a smaller picture");
  }
  writePicture(picture, files.out, kind, files.quality, {progress, kWriteSteps});
}

void checkResult(int32_t code) {
  if (code == QPX_OK) return;
  if (code == QPX_NO_MEMORY) throw std::bad_alloc();
  if (code == QPX_UNSUPPORTED) throw RunError("is too wide or too high: use a smaller picture");
  throw RunError("the library refuses it (code " + std::to_string(code) + "): use another picture");
}

}  // namespace qpx::tool
