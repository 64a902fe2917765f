#include "sheet_drawing.h"

#include <qpx/engine.h>

#include <new>
#include <utility>

#include "canvas.h"
#include "console.h"
#include "errors.h"
#include "parallel.h"
#include "text.h"

namespace qpx::tool {

namespace {

// Neutral throughout, so that nothing casts a colour on the pictures but what is wrong with one.
constexpr Ink kGround = {244, 244, 244}, kFrame = {214, 214, 214}, kEmpty = {232, 232, 232};
constexpr Ink kText = {28, 28, 28}, kQuietText = {100, 100, 100}, kAlarm = {170, 24, 24};

// What became of a tile: nothing where all went well.
std::string runTile(const SheetTile& tile, const Picture& source, const RunOptions& options,
                    Progress& progress, Picture& result) {
  try {
    result = applyEffects(copyOf(source), {tile.call}, optionsOf(tile, options), progress);
    return {};
  } catch (const EngineError& error) {
    say(error.what());
    const bool missesSecond =
        error.code() == QPX_BAD_PARAM && !options.second && mayTakeSecond(tile.call);
    return "code " + std::to_string(error.code()) + (missesSecond ? ", try --second" : "");
  } catch (const std::bad_alloc&) {
    return "code " + std::to_string(QPX_NO_MEMORY);
  } catch (const std::exception& error) {
    say(error.what());
    return "not finished";
  }
}

class Board {
 public:
  Board(const SheetLayout& layout, LabelFont& font)
      : layout_(layout),
        font_(font),
        picture_(static_cast<int32_t>(layout.width()), static_cast<int32_t>(layout.height()), 3) {
    fill(picture_, {0, 0, picture_.width(), picture_.height()}, kGround);
  }

  void writeHeading(const std::string& heading, const std::string& subheading) {
    font_.draw(picture_, layout_.heading(), heading, layout_.headingText(), kText);
    font_.draw(picture_, layout_.subheading(), subheading, layout_.titleText(), kQuietText);
  }

  // Distinct tiles may be put by distinct threads.
  void putPicture(size_t tile, const Picture& picture) {
    const MRect place = framed(tile);
    paste(picture_, picture, place.left, place.top);
  }

  void putFailure(size_t tile) { fill(picture_, framed(tile), kEmpty); }

  void writeLabel(size_t tile, const std::string& title, const std::string& note) {
    font_.draw(picture_, layout_.title(tile), title, layout_.titleText(), kText);
    font_.draw(picture_, layout_.note(tile), note, layout_.noteText(), kQuietText);
  }

  void writeFailure(size_t tile, const std::string& problem) {
    const MRect place = layout_.picture(tile);
    const int32_t text = layout_.titleText(), room = place.right - place.left;
    const std::string fitting = font_.fitted("failed: " + problem, text, room);
    const int32_t left = place.left + (room - font_.widthOf(fitting, text)) / 2;
    font_.draw(picture_, {left, place.top, place.right, place.bottom}, fitting, text, kAlarm);
  }

  Picture take() { return std::move(picture_); }

 private:
  // With a line around it, which keeps pictures that are as light as the ground apart from it.
  MRect framed(size_t tile) {
    const MRect place = layout_.picture(tile);
    fill(picture_, {place.left - 1, place.top - 1, place.right + 1, place.bottom + 1}, kFrame);
    return place;
  }

  const SheetLayout& layout_;
  LabelFont& font_;
  Picture picture_;
};

}  // namespace

std::string sizeText(const Picture& picture) {
  return std::to_string(picture.width()) + " \u00D7 " + std::to_string(picture.height());
}

Sheet drawSheet(const SheetPlan& plan, const Picture& source, const std::string& subheading,
                const SheetLayout& layout, LabelFont& font, const RunOptions& options,
                Progress& progress) {
  const size_t count = plan.tiles.size();
  Board board(layout, font);
  board.writeHeading(plan.heading, subheading);
  board.putPicture(0, source);
  board.writeLabel(0, "Original", "shown at " + sizeText(source));
  std::vector<std::string> problems(count);
  RunOptions tileOptions = options;
  tileOptions.threads = 1;
  forEachInThreads(count, options.threads, [&](size_t i) {
    Picture result;
    problems[i] = runTile(plan.tiles[i], source, tileOptions, progress, result);
    problems[i].empty() ? board.putPicture(i + 1, result) : board.putFailure(i + 1);
  });
  for (size_t i = 0; i < count; ++i) {
    board.writeLabel(i + 1, plan.tiles[i].title, plan.tiles[i].note);
    if (!problems[i].empty()) board.writeFailure(i + 1, problems[i]);
  }
  Sheet sheet = {board.take(), std::move(problems)};
  sheet.picture.icc = source.icc;
  return sheet;
}

// "1 of 30 effects failed and is marked: Fx1400 (code 2)".
std::string failureText(const SheetPlan& plan, const std::vector<std::string>& problems) {
  std::vector<std::string> failures;
  for (size_t i = 0; i < problems.size(); ++i) {
    if (problems[i].empty()) continue;
    failures.push_back(plan.tiles[i].call.effect->name + (" (" + problems[i] + ")"));
  }
  if (failures.empty()) return {};
  return std::to_string(failures.size()) + " of " + std::to_string(problems.size()) +
         (problems.size() == 1 ? " tile" : " tiles") + " failed and " +
         (failures.size() == 1 ? "is" : "are") + " marked: " + joined(failures, ", ");
}

}  // namespace qpx::tool
