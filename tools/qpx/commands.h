// The subcommands. Each adds itself to the command line; its callback does the work and throws
// UsageError or RunError.
#pragma once

#include <CLI/CLI.hpp>

namespace qpx::tool {

void addListCommand(CLI::App& app);
void addApplyCommand(CLI::App& app);
void addSheetCommand(CLI::App& app);
void addRotateCommand(CLI::App& app);
void addStraightenCommand(CLI::App& app);
void addMotionBlurCommand(CLI::App& app);
void addRetouchCommand(CLI::App& app);
void addWaterfallCommand(CLI::App& app);
void addCutoutCommand(CLI::App& app);
void addEtcCommand(CLI::App& app);
void addConvertCommand(CLI::App& app);
void addSampleCommand(CLI::App& app);

}  // namespace qpx::tool
