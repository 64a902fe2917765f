#include "label_font.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>

#include <algorithm>
#include <utility>

#include "errors.h"
#include "text.h"

#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace qpx::tool {

namespace {

// Positions of the pen have six fractional bits.
constexpr int32_t kUnit = 64;

// Hinted downwards only, so that stems are sharp and letters keep their widths.
constexpr FT_Int32 kLoadFlags = FT_LOAD_NO_BITMAP | FT_LOAD_TARGET_LIGHT;

constexpr char32_t kEllipsis = U'\u2026';
constexpr char32_t kReplacement = U'\uFFFD';

struct FontPlace {
  std::string file;
  int index = 0;
};

// Fontconfig's own rules say which font is meant by sans-serif; outlines only, since they are drawn
// in several sizes.
FontPlace findFont() {
  FontPlace place;
  const std::unique_ptr<FcConfig, decltype(&FcConfigDestroy)> config(FcInitLoadConfigAndFonts(),
                                                                     FcConfigDestroy);
  const std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)> wanted(
      FcPatternBuild(nullptr, FC_FAMILY, FcTypeString, "sans-serif", FC_OUTLINE, FcTypeBool, FcTrue,
                     FC_LANG, FcTypeString, "en", nullptr),
      FcPatternDestroy);
  if (!config || !wanted) return place;
  FcConfigSubstitute(config.get(), wanted.get(), FcMatchPattern);
  FcDefaultSubstitute(wanted.get());
  FcResult result = FcResultNoMatch;
  const std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)> font(
      FcFontMatch(config.get(), wanted.get(), &result), FcPatternDestroy);
  FcChar8* file = nullptr;
  if (!font || FcPatternGetString(font.get(), FC_FILE, 0, &file) != FcResultMatch) return place;
  place.file = reinterpret_cast<const char*>(file);
  FcPatternGetInteger(font.get(), FC_INDEX, 0, &place.index);
  return place;
}

[[noreturn]] void refuseFont() {
  throw RunError(
      "there is no font to write labels with: install one, such as the package fonts-dejavu-core");
}

std::u32string codePoints(std::string_view text) {
  std::u32string result;
  while (!text.empty()) {
    const size_t length = sequenceLength(text);
    const auto lead = static_cast<unsigned char>(text.front());
    char32_t value = length == 0 ? kReplacement : lead;
    if (length > 1) value &= 0x7Fu >> length;
    for (size_t i = 1; i < length; ++i) {
      value = value << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    }
    result += value;
    text.remove_prefix(std::max<size_t>(length, 1));
  }
  return result;
}

}  // namespace

void LabelFont::LibraryCloser::operator()(FT_LibraryRec_* library) const {
  FT_Done_FreeType(library);
}

void LabelFont::FaceCloser::operator()(FT_FaceRec_* face) const { FT_Done_Face(face); }

LabelFont::LabelFont() {
  const FontPlace place = findFont();
  if (place.file.empty()) refuseFont();
  FT_Library library = nullptr;
  if (FT_Init_FreeType(&library) != 0) throw RunError("the font library cannot be started");
  library_.reset(library);
  FT_Face face = nullptr;
  if (FT_New_Face(library, place.file.c_str(), place.index, &face) != 0) {
    throw RunError(place.file + ": cannot be read as a font: install it again, or another one");
  }
  face_.reset(face);
  // What fontconfig names where it knows of bitmap fonts only.
  if (!FT_IS_SCALABLE(face)) refuseFont();
}

void LabelFont::setSize(int32_t pixels) {
  FT_Set_Pixel_Sizes(face_.get(), 0, static_cast<FT_UInt>(pixels));
}

// Puts a character into the face's slot. Returns its distance from the one before, by kerning.
int32_t LabelFont::load(char32_t character, uint32_t& previous) {
  const FT_UInt glyph = FT_Get_Char_Index(face_.get(), character);
  FT_Vector kern{};
  if (previous != 0 && FT_HAS_KERNING(face_.get())) {
    FT_Get_Kerning(face_.get(), previous, glyph, FT_KERNING_UNFITTED, &kern);
  }
  if (FT_Load_Glyph(face_.get(), glyph, kLoadFlags) != 0) {
    throw RunError("the font for labels is damaged: install it again, or another one");
  }
  previous = glyph;
  return static_cast<int32_t>(kern.x);
}

// Where each character starts, and at the end where the last one ends.
std::vector<int32_t> LabelFont::penPositions(const std::u32string& text) {
  std::vector<int32_t> positions;
  int32_t pen = 0;
  uint32_t previous = 0;
  for (const char32_t character : text) {
    pen += load(character, previous);
    positions.push_back(pen);
    // Of 16 fractional bits, and unlike the hinted advance not rounded to whole pixels.
    pen += static_cast<int32_t>(face_->glyph->linearHoriAdvance >> 10);
  }
  positions.push_back(pen);
  return positions;
}

int32_t LabelFont::widthOf(const std::string& text, int32_t pixels) {
  setSize(pixels);
  return (penPositions(codePoints(text)).back() + kUnit - 1) / kUnit;
}

std::string LabelFont::fitted(const std::string& text, int32_t pixels, int32_t width) {
  if (widthOf(text, pixels) <= width) return text;
  const bool hasEllipsis = FT_Get_Char_Index(face_.get(), kEllipsis) != 0;
  const std::string ellipsis = hasEllipsis ? "\u2026" : "...";
  const int32_t room = width - widthOf(ellipsis, pixels);
  const std::vector<int32_t> positions = penPositions(codePoints(text));
  std::string_view rest = text;
  for (size_t i = 1; i < positions.size() && positions[i] <= room * kUnit; ++i) {
    rest.remove_prefix(std::max<size_t>(sequenceLength(rest), 1));
  }
  std::string start = text.substr(0, text.size() - rest.size());
  while (start.ends_with(' ') || start.ends_with(',')) start.pop_back();
  return room >= 0 ? start + ellipsis : std::string();
}

void LabelFont::drawGlyph(Picture& picture, const MRect& box, int32_t pen, int32_t baseline,
                          Ink ink) {
  FT_GlyphSlotRec& slot = *face_->glyph;
  // Drawn where the pen is between two pixels, so that letters keep their distances.
  FT_Outline_Translate(&slot.outline, pen % kUnit, 0);
  if (FT_Render_Glyph(&slot, FT_RENDER_MODE_NORMAL) != 0) return;
  const FT_Bitmap& bitmap = slot.bitmap;
  const int32_t left = pen / kUnit + slot.bitmap_left, top = baseline - slot.bitmap_top;
  const auto width = static_cast<int32_t>(bitmap.width), height = static_cast<int32_t>(bitmap.rows);
  for (int32_t y = std::max(top, box.top); y < std::min(top + height, box.bottom); ++y) {
    const uint8_t* coverage = bitmap.buffer + ptrdiff_t{y - top} * bitmap.pitch;
    for (int32_t x = std::max(left, box.left); x < std::min(left + width, box.right); ++x) {
      blend(picture.row(y) + ptrdiff_t{x} * 3, ink, coverage[x - left]);
    }
  }
}

void LabelFont::draw(Picture& picture, const MRect& box, const std::string& text, int32_t pixels,
                     Ink ink) {
  const std::u32string characters = codePoints(fitted(text, pixels, box.right - box.left));
  const MRect inside = {std::max(box.left, 0), std::max(box.top, 0),
                        std::min(box.right, picture.width()),
                        std::min(box.bottom, picture.height())};
  const FT_Size_Metrics& metrics = face_->size->metrics;
  const auto line = static_cast<int32_t>(metrics.ascender - metrics.descender);
  const int32_t baseline = box.top + ((box.bottom - box.top) * kUnit - line +
                                      2 * static_cast<int32_t>(metrics.ascender)) /
                                         (2 * kUnit);
  const std::vector<int32_t> positions = penPositions(characters);
  uint32_t previous = 0;
  for (size_t i = 0; i < characters.size(); ++i) {
    load(characters[i], previous);
    drawGlyph(picture, inside, box.left * kUnit + positions[i], baseline, ink);
  }
}

}  // namespace qpx::tool
