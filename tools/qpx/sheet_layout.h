// Where everything on a contact sheet is.
#pragma once

#include <qpx/types.h>

#include <cstddef>
#include <cstdint>

namespace qpx::tool {

// A tile is a picture with two lines of text below it. Tiles fill the sheet row by row, under a
// heading of two lines. All distances follow from the size of the text, and that from the
// pictures'.
class SheetLayout {
 public:
  // All tiles have the same size. Without a wish (0) there are as many columns as give the sheet
  // about the shape of a screen, with few places left empty.
  SheetLayout(int32_t tileWidth, int32_t tileHeight, size_t tiles, int columns);

  // Of the whole sheet, in 64 bits: whether a picture can be that large is for others to say.
  int64_t width() const { return width_; }
  int64_t height() const { return height_; }
  int columns() const { return columns_; }

  // Pixels to the em.
  int32_t headingText() const { return em_ * 7 / 4; }
  int32_t titleText() const { return em_; }
  int32_t noteText() const;

  MRect heading() const;
  MRect subheading() const;
  MRect picture(size_t tile) const;
  MRect title(size_t tile) const;
  MRect note(size_t tile) const;

 private:
  int64_t widthOf(int columns) const;
  int64_t heightOf(int columns) const;
  int chosenColumns() const;
  MRect belowPicture(size_t tile, int32_t top, int32_t bottom) const;

  int32_t margin() const { return em_ * 2; }
  int32_t gutter() const { return em_ * 3 / 2; }
  int32_t rowGap() const { return em_ * 2; }
  int32_t headingHeight() const;
  int32_t cellWidth() const;
  int32_t cellHeight() const;

  int32_t tileWidth_, tileHeight_;
  size_t tiles_;
  int32_t em_;
  int columns_;
  int64_t width_, height_;
};

}  // namespace qpx::tool
