// qpx: the effects of libqpxengine on the command line.
#include <qpx/engine.h>

#include <cstdio>
#include <new>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "console.h"
#include "errors.h"
#include "output_file.h"

namespace {

using namespace qpx::tool;

std::string versionText() {
  int32_t major = 0, minor = 0, build = 0;
  PixmorphGetVersionInfo(&major, &minor, &build, nullptr, 0);
  return "qpx " QPX_TOOL_VERSION " (libqpxengine " + std::to_string(major) + "." +
         std::to_string(minor) + "." + std::to_string(build) + ")";
}

// Where the message of a wrong call sends people for help.
std::string helpCall(const CLI::App& app) {
  std::string call = "qpx";
  for (const CLI::App* level = &app; !level->get_subcommands().empty();) {
    level = level->get_subcommands().front();
    call += " " + level->get_name();
  }
  return call + " --help";
}

int run(CLI::App& app, const std::vector<std::string>& words) {
  try {
    checkWords(app, words);
    // The parser takes words from the back.
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    return kExitDone;
  } catch (const CLI::RuntimeError& error) {
    return error.get_exit_code();
  } catch (const CLI::ParseError& error) {
    // Help and version come as errors too, with a status of 0.
    if (error.get_exit_code() == 0) return app.exit(error);
    printError(error.what() + fileHint(words) + ": see '" + helpCall(app) + "'");
    return kExitWrongCall;
  } catch (const UsageError& error) {
    printError(error.what());
    return kExitWrongCall;
  } catch (const std::bad_alloc&) {
    printError("not enough memory: use a smaller picture");
    return kExitFailed;
  } catch (const std::exception& error) {
    printError(error.what());
    return kExitFailed;
  }
}

}  // namespace

int main(int argc, char** argv) {
  installSignalCleanup();
  CLI::App app("Effects for pictures, by libqpxengine.", "qpx");
  app.set_version_flag("--version", versionText());
  app.require_subcommand(1);
  app.footer(
      "Exit status: 0 done, 1 a run failed, 2 a wrong call.\n\n"
      "Example:\n"
      "  qpx sample scene.png\n"
      "  qpx apply Fx4800 scene.png warm.jpg");
  addApplyCommand(app);
  addListCommand(app);
  addSheetCommand(app);
  addRotateCommand(app);
  addStraightenCommand(app);
  addMotionBlurCommand(app);
  addRetouchCommand(app);
  addWaterfallCommand(app);
  addCutoutCommand(app);
  addEtcCommand(app);
  addConvertCommand(app);
  addSampleCommand(app);
  const std::vector<std::string> words = wordsOf(argc, argv);
  if (words.empty()) {
    std::fputs(app.help().c_str(), stderr);
    return kExitWrongCall;
  }
  return run(app, words);
}
