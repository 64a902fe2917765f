#include "sheet_layout.h"

#include <algorithm>
#include <cmath>

namespace qpx::tool {

namespace {

constexpr int32_t kSmallestText = 11, kLargestText = 40;

// The height of a line, for text of so many pixels to the em.
constexpr int32_t lineOf(int32_t text) { return text * 4 / 3; }

int32_t textFor(int32_t width, int32_t height) {
  return std::clamp(std::max(width, height) / 20, kSmallestText, kLargestText);
}

}  // namespace

SheetLayout::SheetLayout(int32_t tileWidth, int32_t tileHeight, size_t tiles, int columns)
    : tileWidth_(tileWidth),
      tileHeight_(tileHeight),
      tiles_(std::max<size_t>(tiles, 1)),
      em_(textFor(tileWidth, tileHeight)),
      columns_(columns > 0 ? static_cast<int>(std::min(static_cast<size_t>(columns), tiles_))
                           : chosenColumns()),
      width_(widthOf(columns_)),
      height_(heightOf(columns_)) {}

int32_t SheetLayout::noteText() const { return std::max(em_ * 6 / 7, kSmallestText - 1); }

int32_t SheetLayout::headingHeight() const {
  return lineOf(headingText()) + lineOf(titleText()) + em_ * 3 / 2;
}

// Pictures that are very narrow still get room for a word.
int32_t SheetLayout::cellWidth() const { return std::max(tileWidth_, em_ * 10); }

int32_t SheetLayout::cellHeight() const {
  return tileHeight_ + em_ / 2 + lineOf(titleText()) + lineOf(noteText());
}

int64_t SheetLayout::widthOf(int columns) const {
  return 2 * margin() + int64_t{columns} * (cellWidth() + gutter()) - gutter();
}

int64_t SheetLayout::heightOf(int columns) const {
  const int64_t rows = (static_cast<int64_t>(tiles_) + columns - 1) / columns;
  return 2 * margin() + headingHeight() + rows * (cellHeight() + rowGap()) - rowGap();
}

int SheetLayout::chosenColumns() const {
  constexpr double kShape = 1.5;  // width to height
  const auto badness = [this](int columns) {
    const auto width = static_cast<double>(widthOf(columns));
    const auto height = static_cast<double>(heightOf(columns));
    const auto used = static_cast<double>(tiles_ % static_cast<size_t>(columns));
    const double empty = used > 0 ? (columns - used) / columns : 0;
    return std::abs(std::log(width / height / kShape)) + empty / 2;
  };
  int best = 1;
  for (int columns = 2; static_cast<size_t>(columns) <= tiles_; ++columns) {
    if (badness(columns) < badness(best)) best = columns;
  }
  return best;
}

MRect SheetLayout::heading() const {
  return {margin(), margin(), static_cast<int32_t>(width_) - margin(),
          margin() + lineOf(headingText())};
}

MRect SheetLayout::subheading() const {
  const MRect above = heading();
  return {above.left, above.bottom, above.right, above.bottom + lineOf(titleText())};
}

MRect SheetLayout::picture(size_t tile) const {
  const auto column = static_cast<int32_t>(tile % static_cast<size_t>(columns_));
  const auto row = static_cast<int32_t>(tile / static_cast<size_t>(columns_));
  const int32_t left = margin() + column * (cellWidth() + gutter());
  const int32_t top = margin() + headingHeight() + row * (cellHeight() + rowGap());
  return {left, top, left + tileWidth_, top + tileHeight_};
}

MRect SheetLayout::belowPicture(size_t tile, int32_t top, int32_t bottom) const {
  const MRect above = picture(tile);
  return {above.left, above.bottom + top, above.left + cellWidth(), above.bottom + bottom};
}

MRect SheetLayout::title(size_t tile) const {
  return belowPicture(tile, em_ / 2, em_ / 2 + lineOf(titleText()));
}

MRect SheetLayout::note(size_t tile) const {
  const int32_t top = em_ / 2 + lineOf(titleText());
  return belowPicture(tile, top, top + lineOf(noteText()));
}

}  // namespace qpx::tool
