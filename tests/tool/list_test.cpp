#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "catalogue.h"
#include "pixel_format.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

class ListTest : public ToolTest {
 protected:
  // Python's reader of JSON, which is strict, on a file of the test's folder; prints an expression
  // of the data `d`.
  std::string query(const std::string& json, const std::string& expression) const {
    write("list.json", json);
    const std::string script = "import json; d = json.load(open('" + path("list.json") +
                               "', encoding='utf-8')); print(" + expression + ")";
    const std::string command = "python3 -c \"" + script + "\" > " + path("answer") + " 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << read("answer");
    return read("answer");
  }
};

size_t lines(const std::string& text) {
  return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST_F(ListTest, TableHasARowForEachEffect) {
  const ToolRun result = run({"list"});
  EXPECT_TRUE(succeeded(result));
  EXPECT_EQ(lines(result.out), tool::catalogue().size() + 1);
  EXPECT_TRUE(result.out.starts_with("ID "));  // no colours in a pipe
  for (const QPXEffectInfo& effect : tool::catalogue()) {
    EXPECT_NE(result.out.find(effect.title), std::string::npos) << effect.name;
  }
}

TEST_F(ListTest, FiltersByFamilyAndFormat) {
  const auto count = [](auto wanted) {
    return static_cast<size_t>(
        std::count_if(tool::catalogue().begin(), tool::catalogue().end(), wanted));
  };
  const std::string family = tool::familyNames().front();
  const auto& yuyv = tool::pixelFormatByName("yuyv");
  EXPECT_EQ(lines(run({"list", "--family", family}).out),
            1 + count([&](const QPXEffectInfo& effect) { return effect.family == family; }));
  const size_t takers =
      count([&](const QPXEffectInfo& effect) { return tool::takes(effect, yuyv); });
  EXPECT_GT(takers, 0u);
  EXPECT_LT(takers, tool::catalogue().size());
  EXPECT_EQ(lines(run({"list", "--format", "YUYV"}).out), 1 + takers);
}

TEST_F(ListTest, RowsAreSortedByNumber) {
  const std::string table = run({"list"}).out;
  unsigned long last = 0;
  for (size_t start = table.find('\n') + 1; start < table.size();
       start = table.find('\n', start) + 1) {
    const unsigned long id = std::stoul(table.substr(start, 10), nullptr, 16);
    EXPECT_LT(last, id);
    last = id;
  }
  EXPECT_GT(last, 0x1300u);
}

TEST_F(ListTest, ShowsOnlyWhatIsBuilt) {
  const std::string table = run({"list", "--built"}).out;
  size_t built = 0;
  for (const QPXEffectInfo& effect : tool::catalogue()) {
    built += tool::isBuilt(effect) ? 1 : 0;
    EXPECT_EQ(table.find(tool::idText(effect.id) + " ") != std::string::npos, tool::isBuilt(effect))
        << effect.name;
  }
  EXPECT_EQ(lines(table), 1 + built);
  EXPECT_NE(table.find("BUILT"), std::string::npos);
}

TEST_F(ListTest, ShowsACallOnlyForWhatIsBuilt) {
  for (const QPXEffectInfo& effect : tool::catalogue()) {
    EXPECT_EQ(run({"list", effect.name}).out.find("qpx apply") != std::string::npos,
              tool::isBuilt(effect))
        << effect.name;
  }
}

TEST_F(ListTest, ShowsOneEffectByNameNumberAndTitle) {
  const std::string details = run({"list", "Fx1300"}).out;
  EXPECT_NE(details.find("0x1300"), std::string::npos);
  EXPECT_NE(details.find("-128 ... 127"), std::string::npos);
  EXPECT_EQ(run({"list", "0x1300"}).out, details);
  EXPECT_EQ(run({"list", "brightness AND contrast"}).out, details);
}

TEST_F(ListTest, JsonHoldsTheWholeCatalogue) {
  const ToolRun result = run({"list", "--json"});
  EXPECT_TRUE(succeeded(result));
  EXPECT_EQ(query(result.out, "len(d)"), std::to_string(tool::catalogue().size()) + "\n");
  EXPECT_EQ(query(result.out, "sum(len(e['parameters']) for e in d)"), [] {
    int count = 0;
    for (const QPXEffectInfo& effect : tool::catalogue()) count += effect.paramCount;
    return std::to_string(count) + "\n";
  }());
}

TEST_F(ListTest, JsonOfOneEffectIsAnObject) {
  const std::string json = run({"list", "--json", "0x1300"}).out;
  EXPECT_EQ(query(json, "d['name'], d['recordSize'], d['parameters'][0]['minimum']"),
            "Fx1300 8 -128\n");
}

TEST_F(ListTest, RefusesWhatIsNotThere) {
  EXPECT_TRUE(failedWith(run({"list", "Fx1301"}), 2, "did you mean Fx1300?"));
  EXPECT_TRUE(failedWith(run({"list", "--family", "pint"}), 2, "did you mean point?"));
  EXPECT_TRUE(failedWith(run({"list", "--format", "rgb"}), 2, "bgr24"));
  EXPECT_TRUE(failedWith(run({"list", "Fx1300", "--built"}), 2, "NAME or filters"));
  EXPECT_TRUE(failedWith(run({"list", "Fx1300", "--family", "point"}), 2, "NAME or filters"));
  EXPECT_TRUE(failedWith(run({"list", "Fx1300", "--format", "bgr24"}), 2, "NAME or filters"));
}

}  // namespace
}  // namespace qpx::test
