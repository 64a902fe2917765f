// The pixels of a contact sheet.
#pragma once

#include <string>
#include <vector>

#include "effect_run.h"
#include "label_font.h"
#include "picture.h"
#include "progress.h"
#include "sheet_layout.h"
#include "sheet_plan.h"

namespace qpx::tool {

struct Sheet {
  Picture picture;
  std::vector<std::string> problems;  // one for each tile of the plan; empty where all went well
};

// "320 x 240" with a proper sign between the numbers.
std::string sizeText(const Picture& picture);

// Runs every tile of the plan over `source`, which has the layout's tile size and no alpha, in
// options.threads threads. The layout has a place more than the plan has tiles: the first shows the
// source itself.
Sheet drawSheet(const SheetPlan& plan, const Picture& source, const std::string& subheading,
                const SheetLayout& layout, LabelFont& font, const RunOptions& options,
                Progress& progress);

// "1 of 30 tiles failed and is marked: Fx1400 (code 2)"; empty where none did.
std::string failureText(const SheetPlan& plan, const std::vector<std::string>& problems);

}  // namespace qpx::tool
