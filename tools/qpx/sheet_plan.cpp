#include "sheet_plan.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

#include "errors.h"
#include "image_file.h"
#include "output_file.h"
#include "point_list.h"
#include "text.h"

namespace qpx::tool {

namespace {

SheetTile tileOf(const std::string& argument) {
  SheetTile tile = {parseEffect(argument), {}, {}};
  const QPXEffectInfo& effect = *tile.call.effect;
  tile.title = effect.title;
  const size_t colon = argument.find(':');
  // The name goes with every number and title that it was called by.
  tile.note = effect.name + (colon == std::string::npos ? "" : argument.substr(colon));
  if (tile.note == tile.title) tile.note = idText(effect.id);
  return tile;
}

std::vector<SheetTile> namedTiles(const std::vector<std::string>& lists) {
  std::vector<SheetTile> tiles;
  for (const std::string& list : lists) {
    for (const std::string& argument : splitEffects(list)) {
      if (argument.empty())
        throw UsageError("--effects " + list + ": a name is missing at a comma");
      tiles.push_back(tileOf(argument));
    }
  }
  return tiles;
}

std::vector<SheetTile> cataloguedTiles(const SheetArguments& arguments, const RunOptions& options) {
  const std::string family = arguments.family.empty() ? "" : familyByName(arguments.family);
  const PixelFormat* format = options.format;
  // Effects of a family run in what apply would choose for them; of all effects only those that
  // work on the colours of a picture are of interest.
  if (!format && family.empty()) format = &pixelFormatByName("bgr24");
  const auto effects = effectsWhere([&](const QPXEffectInfo& effect) {
    return isBuilt(effect) && (family.empty() || family == effect.family) &&
           (!format || takes(effect, *format));
  });
  std::vector<SheetTile> tiles;
  for (const QPXEffectInfo* effect : effects) tiles.push_back(tileOf(effect->name));
  return tiles;
}

// The units of fixed-point numbers, such as 1/256, are left out: behind a number they mislead.
std::string valueWithUnit(const QPXParamInfo& param, double value) {
  const std::string unit = param.unit ? param.unit : "";
  const bool isWord = !unit.empty() && unit.find('/') == std::string::npos;
  return valueText(param, value) + (isWord ? " " + unit : "");
}

struct Sweep {
  EffectCall call;
  size_t param;
  std::string rest;  // of the call, behind the parameter
};

Sweep parseSweep(const std::string& text) {
  const size_t colon = text.find(':');
  const QPXEffectInfo& effect = effectByName(text.substr(0, colon));
  const std::string behind = colon == std::string::npos ? "" : text.substr(colon + 1);
  const std::string name = behind.substr(0, behind.find(','));
  if (name.empty() || name.find('=') != std::string::npos) {
    throw UsageError(std::string(effect.name) +
                     ": --sweep needs a parameter without a value first: write NAME:param, or " +
                     "NAME:param,other=value");
  }
  Sweep sweep = {{}, paramIndex(effect, name), behind.substr(name.size())};
  const QPXParamInfo& param = paramsOf(effect)[sweep.param];
  if (param.type == QPX_PARAM_COLOR) {
    throw UsageError(std::string(effect.name) + ": " + param.name +
                     " is a colour, which has no range: name effects with colours in --effects");
  }
  // With a value of the parameter itself, so that another one for it is given twice.
  sweep.call = parseEffect(std::string(effect.name) + ":" + param.name + "=" +
                           valueText(param, param.initial) + sweep.rest);
  return sweep;
}

std::vector<SheetTile> sweptTiles(const Sweep& sweep, int steps) {
  const QPXEffectInfo& effect = *sweep.call.effect;
  const QPXParamInfo& param = paramsOf(effect)[sweep.param];
  std::vector<SheetTile> tiles;
  for (const double value : sweepValues(param, steps)) {
    SheetTile tile = {
        sweep.call, valueWithUnit(param, value),
        std::string(effect.name) + ":" + param.name + "=" + valueText(param, value) + sweep.rest};
    tile.call.values[sweep.param] = value;
    tiles.push_back(std::move(tile));
  }
  return tiles;
}

void checkFiles(const SheetArguments& arguments) {
  if (arguments.in == "-" && arguments.second == "-") {
    throw UsageError("only one of IN and --second can be standard input");
  }
  std::error_code ignored;
  if (std::filesystem::equivalent(arguments.in, arguments.out, ignored)) {
    throw UsageError(arguments.out + ": would replace the input by its sheet: name another OUT");
  }
  refuseTerminal(arguments.out, isatty(STDOUT_FILENO) != 0);
}

std::string nothingToShow(const SheetArguments& arguments, const RunOptions& options) {
  std::string text = "no effect that is built";
  if (!arguments.family.empty()) text += " is of the family '" + arguments.family + "'";
  if (options.format) {
    text += (arguments.family.empty() ? " runs in " : " and runs in ") +
            std::string(options.format->name);
  }
  return text + ": 'qpx list --built' shows what there is";
}

}  // namespace

std::vector<std::string> splitEffects(const std::string& list) {
  std::vector<std::string> effects;
  for (const std::string& piece : split(list, ',')) {
    // A colon behind the sign is one of a point.
    const size_t equals = piece.find('=');
    const bool setsParameter =
        isPoint(piece) || (equals != std::string::npos && equals < piece.find(':'));
    // Some titles have a comma of their own, and the part before it may be another title.
    const bool endsTitle = !effects.empty() && effects.back().find(':') == std::string::npos &&
                           namesEffect(effects.back() + "," + piece);
    if (!effects.empty() && (setsParameter || endsTitle)) {
      effects.back() += "," + piece;
    } else {
      effects.push_back(piece);
    }
  }
  return effects;
}

std::vector<double> sweepValues(const QPXParamInfo& param, int steps) {
  const double range = param.maximum - param.minimum;
  if (range <= 0) return {param.minimum};
  // Three digits within a step's distance; whole numbers where only these are taken.
  const double finest = std::pow(10.0, std::floor(std::log10(range)) - 3);
  const double unit = isInteger(param) ? 1.0 : finest;
  std::vector<double> values;
  for (int i = 0; i < steps; ++i) {
    const double even = param.minimum + range * i / (steps - 1);
    const double value = std::clamp(std::round(even / unit) * unit, param.minimum, param.maximum);
    // What the label says is what is computed.
    const double shown =
        std::clamp(parseReal(numberText(value)).value_or(value), param.minimum, param.maximum);
    if (values.empty() || shown > values.back()) values.push_back(shown);
  }
  return values;
}

SheetPlan sheetPlanFor(const SheetArguments& arguments, const RunOptions& options) {
  checkFiles(arguments);
  SheetPlan plan{};
  plan.kind = kindOfOutput(arguments.out, arguments.to).value_or(FileKind::png);
  plan.file = printable(std::filesystem::path(displayName(arguments.in, true)).filename().string());
  plan.heading = plan.file;
  if (!arguments.sweep.empty()) {
    const Sweep sweep = parseSweep(arguments.sweep);
    const QPXEffectInfo& effect = *sweep.call.effect;
    plan.heading = std::string(effect.title) + ": " + paramsOf(effect)[sweep.param].name;
    plan.tiles = sweptTiles(sweep, arguments.steps);
  } else if (!arguments.effects.empty()) {
    plan.tiles = namedTiles(arguments.effects);
  } else {
    plan.tiles = cataloguedTiles(arguments, options);
  }
  if (plan.tiles.empty()) throw UsageError(nothingToShow(arguments, options));
  for (const SheetTile& tile : plan.tiles) checkChain({tile.call}, optionsOf(tile, options));
  if (options.second && std::none_of(plan.tiles.begin(), plan.tiles.end(),
                                     [](const auto& tile) { return mayTakeSecond(tile.call); })) {
    throw UsageError("no effect of the sheet takes a second picture: leave --second out");
  }
  return plan;
}

RunOptions optionsOf(const SheetTile& tile, RunOptions options) {
  if (!mayTakeSecond(tile.call)) options.second = nullptr;
  return options;
}

}  // namespace qpx::tool
