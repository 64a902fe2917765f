#include "effect_argument.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "errors.h"
#include "json.h"
#include "text.h"

namespace qpx::tool {
namespace {

std::string messageOf(const std::string& argument) {
  try {
    parseEffect(argument);
  } catch (const UsageError& error) {
    return error.what();
  }
  return "no error";
}

testing::AssertionResult says(const std::string& message, const std::vector<std::string>& parts) {
  for (const std::string& part : parts) {
    if (message.find(part) == std::string::npos) {
      return testing::AssertionFailure() << "'" << part << "' is not in: " << message;
    }
  }
  return testing::AssertionSuccess();
}

TEST(EffectArgument, FindsAnEffectByNameNumberAndTitle) {
  for (const char* name : {"Fx1300", "fx1300", "0x1300", "4864", "Brightness and contrast"}) {
    EXPECT_EQ(parseEffect(name).effect->id, 0x1300u) << name;
  }
}

TEST(EffectArgument, FillsTheRecordAtTheCataloguesOffsets) {
  const EffectCall call = parseEffect("Fx1300:contrast=-7,brightness=0x21");
  QPXBrightnessContrastParam param{};
  const std::vector<uint8_t> record = call.record();
  ASSERT_EQ(record.size(), sizeof param);
  std::memcpy(&param, record.data(), sizeof param);
  EXPECT_EQ(param.brightness, 33);
  EXPECT_EQ(param.contrast, -7);
}

TEST(EffectArgument, TakesDefaultsForWhatIsNotGiven) {
  const EffectCall call = parseEffect("Fx1300:brightness=1");
  ASSERT_EQ(call.effect->paramCount, 2);
  EXPECT_EQ(call.values[0], 1);
  EXPECT_EQ(call.values[1], call.effect->params[1].initial);
}

TEST(EffectArgument, NamesTheNearestEffect) {
  EXPECT_TRUE(says(messageOf("Fx1330"), {"unknown effect 'Fx1330'", "did you mean Fx1300?"}));
  EXPECT_TRUE(says(messageOf("Brightnes and contrast"), {"did you mean Brightness and contrast?"}));
  EXPECT_EQ(messageOf("zzzzzzzzzzzz").find("did you mean"), std::string::npos);
}

TEST(EffectArgument, NamesTheNearestParameter) {
  EXPECT_TRUE(says(messageOf("Fx1300:brigtness=1"),
                   {"Fx1300", "unknown parameter 'brigtness'", "did you mean brightness?"}));
}

TEST(EffectArgument, RefusesValuesOutOfRangeAndNamesTheRange) {
  for (const char* value : {"128", "-129", "1.5", "", "12x", "99999999999999999999"}) {
    EXPECT_TRUE(
        says(messageOf(std::string("Fx1300:brightness=") + value), {"brightness=", "-128 ... 127"}))
        << value;
  }
  EXPECT_EQ(messageOf("Fx1300:brightness=127"), "no error");
  EXPECT_EQ(messageOf("Fx1300:brightness=-128"), "no error");
}

TEST(EffectArgument, RefusesAParameterWithoutAValue) {
  EXPECT_TRUE(says(messageOf("Fx1300:brightness"), {"name=value"}));
  EXPECT_TRUE(says(messageOf("Fx1300:"), {"name=value"}));
}

TEST(EffectArgument, RefusesAParameterThatIsGivenTwice) {
  EXPECT_TRUE(says(messageOf("Fx1300:brightness=1,contrast=2,Brightness=1"),
                   {"Fx1300: brightness is given twice"}));
}

TEST(EffectArgument, ReadsColorsInEveryForm) {
  EXPECT_EQ(parseColor("#12aBcD"), 0x12ABCDu);
  EXPECT_EQ(parseColor("0x12abcd"), 0x12ABCDu);
  EXPECT_EQ(parseColor("#f80"), 0xFF8800u);
  EXPECT_EQ(parseColor("RED"), 0xFF0000u);
  for (const char* wrong : {"", "#", "#12", "#1234567", "#12345g", "#+12345", "redd"}) {
    EXPECT_THROW(parseColor(wrong), UsageError) << wrong;
  }
}

TEST(EditDistance, CountsInsertionsRemovalsAndReplacements) {
  EXPECT_EQ(editDistance("", ""), 0);
  EXPECT_EQ(editDistance("abc", ""), 3);
  EXPECT_EQ(editDistance("kitten", "Sitting"), 3);
  EXPECT_EQ(editDistance("Sepia", "sepai"), 2);
}

TEST(Json, EscapesWhatMustBeEscaped) {
  EXPECT_EQ(jsonString("a\"b\\c\n\t\x01"), "\"a\\\"b\\\\c\\n\\t\\u0001\"");
  EXPECT_EQ(jsonString("Gr\xC3\xBC\xC3\x9F"), "\"Gr\xC3\xBC\xC3\x9F\"");
  EXPECT_EQ(jsonString("\xC3"), "\"\xEF\xBF\xBD\"");
  EXPECT_EQ(jsonString("\xC0\x80"), "\"\xEF\xBF\xBD\xEF\xBF\xBD\"");
}

TEST(Json, PutsCommasBetweenMembersOnly) {
  JsonWriter json;
  json.openArray();
  json.openObject();
  json.number("half", 0.5);
  json.flag("on", true);
  json.closeObject();
  json.openArray();
  json.closeArray();
  json.closeArray();
  EXPECT_EQ(json.take(), "[\n  {\n    \"half\": 0.5,\n    \"on\": true\n  },\n  []\n]\n");
}

}  // namespace
}  // namespace qpx::tool
