// qpx list: the catalogue, as a table, in detail, or for programs.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "catalogue.h"
#include "command_line.h"
#include "commands.h"
#include "console.h"
#include "errors.h"
#include "json.h"
#include "pixel_format.h"
#include "point_list.h"
#include "text.h"

namespace qpx::tool {

namespace {

struct ListArguments {
  std::string name;
  std::string family;
  std::string format;
  bool built = false;
  bool json = false;
};

struct FlagName {
  uint32_t flag;
  const char* name;
  const char* meaning;
};

constexpr std::array kFlags = {
    FlagName{QPX_EFFECT_GIVES_TABLE, "givesTable", "merges with a point effect behind it"},
    FlagName{QPX_EFFECT_TAKES_TABLE, "takesTable", "merges with a point effect before it"},
    FlagName{QPX_EFFECT_ROW_THREADS, "rowThreads", "rows may be split among threads"},
    FlagName{QPX_EFFECT_SAME_AREA, "sameArea", "moves no pixel"},
    FlagName{QPX_EFFECT_SECOND_INPUT, "secondInput", "takes a second picture and a mask"},
    FlagName{QPX_EFFECT_GENERIC, "generic", "has a form for every format"},
};

const char* marginName(int32_t rule) {
  constexpr std::array kNames = {"fixed", "record", "format", "picture", "wholeImage", "rotation"};
  return rule >= 0 && rule < static_cast<int32_t>(kNames.size()) ? kNames[static_cast<size_t>(rule)]
                                                                 : "unknown";
}

std::string marginText(const QPXEffectInfo& effect) {
  switch (effect.marginRule) {
    case QPX_MARGIN_FIXED:
      return std::to_string(effect.margin) + " pixels on each side";
    case QPX_MARGIN_RECORD:
      return "depends on the parameters";
    case QPX_MARGIN_FORMAT:
      return "depends on the pixel format";
    case QPX_MARGIN_PICTURE:
      return "depends on the size of the picture";
    case QPX_MARGIN_WHOLE_IMAGE:
      return "the whole picture";
    case QPX_MARGIN_ROTATION:
      return "depends on the angle";
    default:
      return "unknown";
  }
}

// Formats that are always taken together have one word, so that a row of the table stays readable.
std::string shortFormats(const QPXEffectInfo& effect) {
  struct Group {
    uint32_t bits;
    const char* name;
  };
  constexpr std::array kGroups = {
      Group{QPX_TAKES_RGB24, "rgb24"},   Group{QPX_TAKES_RGB32, "rgb32"},
      Group{QPX_TAKES_RGB565, "rgb565"}, Group{QPX_TAKES_RGB_ANY, "other-rgb"},
      Group{QPX_TAKES_GREY, "grey"},     Group{QPX_TAKES_NV21, "nv21"},
      Group{QPX_TAKES_NV12, "nv12"},     Group{QPX_TAKES_I420, "i420"},
      Group{QPX_TAKES_PLANAR, "planar"}, Group{QPX_TAKES_YUYV, "yuyv"},
      Group{QPX_TAKES_UYVY, "uyvy"},
  };
  uint32_t all = 0;
  std::vector<std::string> names;
  for (const Group& group : kGroups) {
    all |= group.bits;
    if ((effect.formats & group.bits) != 0) names.emplace_back(group.name);
  }
  if ((effect.formats & all) == all) return "all";
  return names.empty() ? "-" : joined(names, " ");
}

std::vector<const QPXEffectInfo*> selected(const ListArguments& arguments) {
  if (!arguments.name.empty()) {
    if (!arguments.family.empty() || !arguments.format.empty() || arguments.built) {
      throw UsageError("list takes a NAME or filters, not both: leave " + arguments.name +
                       " out, or --family, --format and --built");
    }
    return {&effectByName(arguments.name)};
  }
  const std::string family = arguments.family.empty() ? "" : familyByName(arguments.family);
  const PixelFormat* format =
      arguments.format.empty() ? nullptr : &pixelFormatByName(arguments.format);
  return effectsWhere([&](const QPXEffectInfo& effect) {
    return (family.empty() || family == effect.family) && (!format || takes(effect, *format)) &&
           (!arguments.built || isBuilt(effect));
  });
}

void printTable(const std::vector<const QPXEffectInfo*>& effects) {
  int name = 4, title = 5;
  for (const QPXEffectInfo* effect : effects) {
    name = std::max(name, static_cast<int>(std::string_view(effect->name).size()));
    title = std::max(title, static_cast<int>(std::string_view(effect->title).size()));
  }
  std::array<char, 200> heading{};
  std::snprintf(heading.data(), heading.size(), "%-10s %-*s %-*s %-5s %s", "ID", name, "NAME",
                title, "TITLE", "BUILT", "FORMATS");
  std::printf("%s\n", bold(heading.data(), STDOUT_FILENO).c_str());
  for (const QPXEffectInfo* effect : effects) {
    std::printf("%-10s %-*s %-*s %-5s %s\n", idText(effect->id).c_str(), name, effect->name, title,
                effect->title, isBuilt(*effect) ? "yes" : "no", shortFormats(*effect).c_str());
  }
}

void printParams(const QPXEffectInfo& effect) {
  if (effect.paramCount <= 0) {
    std::printf("  parameters   none\n");
    return;
  }
  std::printf("\n%s\n", bold("Parameters", STDOUT_FILENO).c_str());
  for (size_t i = 0; i < paramsOf(effect).size(); ++i) {
    if (const std::optional<PointList> list = pointListAt(effect, i)) {
      std::printf("  %-14s x:y,x:y,... from left to right, 2 to %zu points\n", list->name.c_str(),
                  list->most);
      std::printf("  %-14s The same in one as what follows.\n", "");
    }
    const QPXParamInfo& param = paramsOf(effect)[i];
    std::printf("  %-14s %s, default %s\n", param.name, rangeText(param).c_str(),
                valueText(param, param.initial).c_str());
    std::printf("  %-14s %s\n", "", param.summary);
  }
}

// The points that a list has by default; a list without any is no value.
std::string pointsText(const QPXEffectInfo& effect, const PointList& list) {
  const std::span<const QPXParamInfo> params = paramsOf(effect);
  std::string text;
  const auto count = static_cast<size_t>(params[list.count].initial);
  for (size_t i = list.count + 1; i < list.count + 1 + 2 * count; i += 2) {
    text += (text.empty() ? "" : ",") + valueText(params[i], params[i].initial) + ":" +
            valueText(params[i + 1], params[i + 1].initial);
  }
  return text;
}

// A call with all its defaults written out.
std::string wholeCall(const QPXEffectInfo& effect) {
  std::string call = effect.name;
  char separator = ':';
  const auto add = [&](const std::string& name, const std::string& value) {
    if (value.empty()) return;
    call += separator + name + "=" + value;
    separator = ',';
  };
  for (size_t i = 0; i < paramsOf(effect).size(); ++i) {
    if (const std::optional<PointList> list = pointListAt(effect, i)) {
      add(list->name, pointsText(effect, *list));
      i += 2 * list->most;
    } else {
      const QPXParamInfo& param = paramsOf(effect)[i];
      add(param.name, valueText(param, param.initial));
    }
  }
  return call;
}

void printDetails(const QPXEffectInfo& effect) {
  std::printf("%s  %s\n%s\n\n", bold(effect.name, STDOUT_FILENO).c_str(), effect.title,
              effect.summary);
  std::printf("  id           %s\n", idText(effect.id).c_str());
  std::printf("  family       %s\n", effect.family);
  std::printf("  built        %s\n", isBuilt(effect) ? "yes" : "no");
  std::printf("  formats      %s\n", joined(formatNames(effect), " ").c_str());
  std::printf("  neighbours   %s\n", marginText(effect).c_str());
  for (const FlagName& flag : kFlags) {
    if ((effect.flags & flag.flag) != 0) std::printf("  also         %s\n", flag.meaning);
  }
  printParams(effect);
  if (!isBuilt(effect)) return;
  std::printf("\n  qpx apply '%s' in.jpg out.jpg\n", wholeCall(effect).c_str());
}

void writeParam(JsonWriter& json, const QPXParamInfo& param) {
  json.openObject();
  json.text("name", param.name);
  json.text("summary", param.summary);
  json.text("unit", param.unit ? param.unit : "");
  json.text("type", typeName(param));
  json.number("offset", param.offset);
  json.number("minimum", param.minimum);
  json.number("maximum", param.maximum);
  json.number("default", param.initial);
  json.closeObject();
}

void writeEffect(JsonWriter& json, const QPXEffectInfo& effect) {
  json.openObject();
  json.text("id", idText(effect.id));
  json.text("name", effect.name);
  json.text("title", effect.title);
  json.text("summary", effect.summary);
  json.text("family", effect.family);
  json.flag("built", isBuilt(effect));
  json.openArray("formats");
  for (const std::string& name : formatNames(effect)) json.text({}, name);
  json.closeArray();
  json.number("recordSize", effect.recordSize);
  json.text("marginRule", marginName(effect.marginRule));
  json.number("margin", effect.margin);
  for (const FlagName& flag : kFlags) json.flag(flag.name, (effect.flags & flag.flag) != 0);
  json.openArray("parameters");
  for (const QPXParamInfo& param : paramsOf(effect)) writeParam(json, param);
  json.closeArray();
  json.closeObject();
}

void list(const ListArguments& arguments) {
  const std::vector<const QPXEffectInfo*> effects = selected(arguments);
  if (arguments.json) {
    JsonWriter json;
    if (arguments.name.empty()) json.openArray();
    for (const QPXEffectInfo* effect : effects) writeEffect(json, *effect);
    if (arguments.name.empty()) json.closeArray();
    std::fputs(json.take().c_str(), stdout);
  } else if (arguments.name.empty()) {
    printTable(effects);
  } else {
    printDetails(*effects.front());
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
    throw RunError("standard output: cannot be written: check where it goes");
  }
}

}  // namespace

void addListCommand(CLI::App& app) {
  const auto arguments = std::make_shared<ListArguments>();
  CLI::App* command = app.add_subcommand("list", "Show the effects, or one of them in detail");
  command->add_option("NAME", arguments->name, "An effect by name, number (0x1300) or title")
      ->check(notEmpty());
  command->add_option("--family", arguments->family, "Only effects of this family")
      ->check(notEmpty());
  command->add_option("--format", arguments->format, "Only effects that run in this pixel format")
      ->check(notEmpty());
  command->add_flag("--built", arguments->built, "Only effects that this library can run");
  command->add_flag("--json", arguments->json,
                    "For programs: an array of effects, or one effect with NAME");
  command->footer(
      "Examples:\n"
      "  qpx list --format nv21 --built\n"
      "  qpx list 0x1300\n"
      "  qpx list --json | python3 -m json.tool");
  command->callback([arguments] { list(*arguments); });
}

}  // namespace qpx::tool
