#include "frame_y4m.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "errors.h"
#include "picture.h"
#include "text.h"

namespace qpx::tool {

namespace {

struct Chroma {
  std::string_view name;
  std::string_view format;
};

// The first of each format is what qpx writes.
constexpr std::array kChromas = {
    Chroma{"420jpeg", "i420"}, Chroma{"420mpeg2", "i420"}, Chroma{"420paldv", "i420"},
    Chroma{"420", "i420"},     Chroma{"422", "i422"},      Chroma{"444", "i444"},
    Chroma{"411", "i411"},     Chroma{"mono", "grey"},
};

[[noreturn]] void refuse(const std::string& parameter, const char* advice) {
  throw RunError("has a YUV4MPEG2 header with '" + parameter + "': " + advice);
}

// Decimal digits alone; more than a size or a ratio has are refused.
std::optional<int64_t> parseDigits(std::string_view text) {
  constexpr size_t kMostDigits = 10;
  const bool digits =
      std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (text.empty() || text.size() > kMostDigits || !digits) return std::nullopt;
  return std::accumulate(text.begin(), text.end(), int64_t{0},
                         [](int64_t value, char c) { return value * 10 + (c - '0'); });
}

std::optional<std::pair<int64_t, int64_t>> parseRatio(std::string_view text) {
  const size_t colon = text.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const std::optional<int64_t> first = parseDigits(text.substr(0, colon));
  const std::optional<int64_t> second = parseDigits(text.substr(colon + 1));
  if (!first || !second) return std::nullopt;
  return std::pair{*first, *second};
}

int32_t parseSide(const std::string& parameter) {
  const std::optional<int64_t> side = parseDigits(std::string_view(parameter).substr(1));
  if (!side || *side < 1 || *side > INT32_MAX) {
    refuse(parameter, "sizes are numbers from 1 on: it is damaged");
  }
  return static_cast<int32_t>(*side);
}

void takeChroma(const std::string& parameter, Y4mHeader& header) {
  header.chroma = parameter.substr(1);
  header.format = nullptr;
  for (const Chroma& chroma : kChromas) {
    if (chroma.name == header.chroma) header.format = &pixelFormatByName(chroma.format);
  }
  if (!header.format) {
    refuse(parameter, "qpx takes 8-bit streams of 420, 422, 444, 411 and mono");
  }
}

void takeParameter(const std::string& parameter, Y4mHeader& header) {
  const std::string value = parameter.substr(1);
  switch (parameter.front()) {
    case 'W':
      header.width = parseSide(parameter);
      break;
    case 'H':
      header.height = parseSide(parameter);
      break;
    case 'F':
      if (!parseRatio(value)) refuse(parameter, "a rate is FRAMES:SECONDS: it is damaged");
      header.rate = value;
      break;
    case 'I':
      if (value.size() != 1 || std::string_view("ptbm?").find(value) == std::string_view::npos) {
        refuse(parameter, "interlacing is one of p, t, b, m and ?: it is damaged");
      }
      header.interlacing = value;
      break;
    case 'A': {
      const auto aspect = parseRatio(value);
      if (!aspect) refuse(parameter, "a pixel's shape is ACROSS:DOWN: it is damaged");
      header.aspectAcross = aspect->first;
      header.aspectDown = aspect->second;
      break;
    }
    case 'C':
      takeChroma(parameter, header);
      break;
    case 'X':
      if (!value.starts_with("COLORRANGE=")) break;
      header.rangeStated = true;
      header.fullRange = value == "COLORRANGE=FULL";
      break;
    default:
      refuse(parameter, "there is no such parameter: it is damaged");
  }
}

}  // namespace

Y4mHeader parseY4mHeader(std::string_view line) {
  const std::vector<std::string> words = split(line, ' ');
  if (words.front() != kY4mMagic) throw RunError("is no YUV4MPEG2 stream");
  Y4mHeader header;
  for (size_t i = 1; i < words.size(); ++i) {
    if (!words[i].empty()) takeParameter(words[i], header);
  }
  if (header.width == 0 || header.height == 0) {
    throw RunError("has a YUV4MPEG2 header without width or height: it is damaged");
  }
  checkSize(header.width, header.height, 4);
  if (!header.format) takeChroma("C420jpeg", header);  // as the format says for a header without
  return header;
}

std::string y4mHeaderLine(const Y4mHeader& header) {
  std::string line(kY4mMagic);
  line += " W" + std::to_string(header.width) + " H" + std::to_string(header.height);
  line += " F" + header.rate + " I" + header.interlacing;
  line += " A" + std::to_string(header.aspectAcross) + ":" + std::to_string(header.aspectDown);
  line += " C" + header.chroma;
  if (header.rangeStated) line += header.fullRange ? " XCOLORRANGE=FULL" : " XCOLORRANGE=LIMITED";
  return line + "\n";
}

std::string parseY4mFrameLine(std::string_view line) {
  constexpr std::string_view kFrame = "FRAME";
  if (!line.starts_with(kFrame) || (line.size() > kFrame.size() && line[kFrame.size()] != ' ')) {
    throw RunError("has '" + fitted(printable(line), 40) + "' where a frame should begin: it is " +
                   "damaged");
  }
  return std::string(line.substr(kFrame.size()));
}

bool fitsY4m(const PixelFormat& format) {
  return std::any_of(kChromas.begin(), kChromas.end(),
                     [&](const Chroma& chroma) { return chroma.format == format.name; });
}

std::string y4mChromaOf(const PixelFormat& format) {
  for (const Chroma& chroma : kChromas) {
    if (chroma.format == format.name) return std::string(chroma.name);
  }
  return {};
}

void stretchAspect(Y4mHeader& header, int32_t fromWidth, int32_t fromHeight, int32_t toWidth,
                   int32_t toHeight) {
  // Real ratios are small; others are not worth wider numbers, and become unknown.
  constexpr int64_t kMost = 1 << 20;
  int64_t across = header.aspectAcross, down = header.aspectDown;
  if (across <= 0 || down <= 0 || across > kMost || down > kMost) {
    header.aspectAcross = header.aspectDown = 0;
    return;
  }
  const auto multiply = [&](int64_t by, int64_t over) {
    const int64_t common = std::gcd(by, over);
    across *= by / common;
    down *= over / common;
    const int64_t shared = std::gcd(across, down);
    across /= shared;
    down /= shared;
  };
  multiply(fromWidth, toWidth);
  const bool fits = across <= kMost && down <= kMost;
  if (fits) multiply(toHeight, fromHeight);
  const bool known = fits && across <= kMost && down <= kMost;
  header.aspectAcross = known ? across : 0;
  header.aspectDown = known ? down : 0;
}

}  // namespace qpx::tool
