// Text on pictures, in the system's sans-serif font.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "canvas.h"

struct FT_LibraryRec_;
struct FT_FaceRec_;

namespace qpx::tool {

// Not for several threads at once.
class LabelFont {
 public:
  // Throws RunError where the system has no font.
  LabelFont();

  // Draws one line of UTF-8, from the left edge of the box and centred between top and bottom, with
  // `pixels` to the em. What is too long ends in an ellipsis; nothing is drawn outside the box.
  void draw(Picture& picture, const MRect& box, const std::string& text, int32_t pixels, Ink ink);

  // The text, or as much of its beginning as fits a width together with an ellipsis.
  std::string fitted(const std::string& text, int32_t pixels, int32_t width);

  // How far the pen moves, rounded up to whole pixels.
  int32_t widthOf(const std::string& text, int32_t pixels);

 private:
  struct LibraryCloser {
    void operator()(FT_LibraryRec_* library) const;
  };
  struct FaceCloser {
    void operator()(FT_FaceRec_* face) const;
  };

  void setSize(int32_t pixels);
  int32_t load(char32_t character, uint32_t& previous);
  std::vector<int32_t> penPositions(const std::u32string& text);
  void drawGlyph(Picture& picture, const MRect& box, int32_t pen, int32_t baseline, Ink ink);

  std::unique_ptr<FT_LibraryRec_, LibraryCloser> library_;
  std::unique_ptr<FT_FaceRec_, FaceCloser> face_;  // goes before the library
};

}  // namespace qpx::tool
