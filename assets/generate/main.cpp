// Draws the textures and builds the tables: qpx_generate_assets [--draft] ASSETS_FOLDER [NAME...]
#include <cstdio>
#include <cstring>
#include <string>

#include "png_file.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

using TableFamily = std::span<const Table> (*)();

constexpr TableFamily kTableFamilies[] = {inverseTables, lookTables, pictureTables, toneTables};

using Family = std::span<const Texture> (*)();

constexpr Family kFamilies[] = {agedTextures,    boardTextures, classicTextures, exposureTextures,
                                filmTextures,    flareTextures, gelTextures,     geometricTextures,
                                glassTextures,   leakTextures,  lomoTextures,    maskTextures,
                                overlayTextures, paintTextures, prismTextures,   shardTextures,
                                surfaceTextures};

bool isWanted(const char* name, std::span<char* const> wanted) {
  for (const char* each : wanted) {
    if (std::strcmp(each, name) == 0) {
      return true;
    }
  }
  return wanted.empty();
}

bool drawTexture(const std::string& folder, const Texture& texture, bool draft) {
  Canvas canvas(texture.width, texture.height);
  texture.draw(canvas);
  return writePng(folder + "/textures/" + texture.name + ".png", canvas, texture.channels, draft);
}

bool buildTable(const std::string& folder, const Table& table) {
  const std::vector<uint8_t> bytes = table.build();
  if (bytes.size() != table.bytes) {
    std::fprintf(stderr, "%s: built %zu bytes, %zu are expected\n", table.name, bytes.size(),
                 table.bytes);
    return false;
  }
  return writeFile(folder + "/tables/" + table.name + ".bin", bytes);
}

int run(const std::string& folder, std::span<char* const> wanted, bool draft) {
  int count = 0;
  bool fine = true;
  for (const Family family : kFamilies) {
    for (const Texture& texture : family()) {
      if (isWanted(texture.name, wanted)) {
        fine = drawTexture(folder, texture, draft) && fine;
        ++count;
      }
    }
  }
  for (const TableFamily family : kTableFamilies) {
    for (const Table& table : family()) {
      if (isWanted(table.name, wanted)) {
        fine = buildTable(folder, table) && fine;
        ++count;
      }
    }
  }
  if (count == 0) {
    std::fprintf(stderr, "no asset has that name\n");
    return 1;
  }
  std::printf("%d assets\n", count);
  return fine ? 0 : 1;
}

}  // namespace
}  // namespace qpx::drawing

int main(int argc, char** argv) {
  const bool draft = argc > 1 && std::strcmp(argv[1], "--draft") == 0;
  const int first = draft ? 2 : 1;
  if (argc <= first || argv[first][0] == '-') {
    std::fprintf(stderr,
                 "usage: qpx_generate_assets [--draft] ASSETS_FOLDER [NAME...]\n"
                 "  --draft  pack the pictures fast instead of small, to look at while drawing\n"
                 "example: qpx_generate_assets --draft /tmp/assets flare07_port Wood_85Mask\n");
    return 2;
  }
  return qpx::drawing::run(argv[first], {argv + first + 1, argv + argc}, draft);
}
