#include "effect_argument.h"

#include <gtest/gtest.h>

#include <algorithm>
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

QPXCurveParam curveOf(const std::string& argument) {
  const std::vector<uint8_t> record = parseEffect(argument).record();
  QPXCurveParam param = {};
  EXPECT_EQ(record.size(), sizeof param);
  std::memcpy(&param, record.data(), std::min(record.size(), sizeof param));
  return param;
}

TEST(EffectArgument, TakesCurvesAsPoints) {
  const QPXCurveParam param =
      curveOf("Curve:Master=0:0,64:80,255:250,blue=0:20,10:30,20:40,30:50,40:60,50:70,255:235");
  ASSERT_EQ(param.master.count, 3);
  const uint8_t master[3][2] = {{0, 0}, {64, 80}, {255, 250}};
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(param.master.point[i][0], master[i][0]) << i;
    EXPECT_EQ(param.master.point[i][1], master[i][1]) << i;
  }
  EXPECT_EQ(param.red.count, 0);
  ASSERT_EQ(param.blue.count, 7);
  EXPECT_EQ(param.blue.point[5][1], 70);
  EXPECT_EQ(param.blue.point[6][0], 255);
  EXPECT_EQ(param.blue.point[6][1], 235);
  // Point by point is the same, and both ways go side by side.
  const QPXCurveParam single =
      curveOf("Curve:redPoints=2,redX1=0,redY1=9,redX2=200,redY2=99,green=0:9,200:99");
  EXPECT_EQ(single.red.count, 2);
  EXPECT_EQ(single.green.count, 2);
  EXPECT_EQ(std::memcmp(single.red.point, single.green.point, 4), 0);
}

TEST(EffectArgument, RefusesWhatIsNoCurve) {
  const char* const kWrong[][2] = {{"0:0", "1 points"},
                                   {"", "1 points"},
                                   {"0:0,1:1,2:2,3:3,4:4,5:5,6:6,7:7", "8 points"},
                                   {"0:0,256:9", "'256:9', which is no point"},
                                   {"0:300,255:9", "'0:300', which is no point"},
                                   {"7,255:9", "'7', which is no point"},
                                   {":,255:9", "':', which is no point"},
                                   {"-1:0,255:9", "'-1:0', which is no point"},
                                   {"0x1:0,255:9", "'0x1:0', which is no point"},
                                   {"0:0,99999999999999999999:9", "which is no point"},
                                   {"0:0,20:10,20:30", "goes back at '20:30'"},
                                   {"100:0,50:255", "goes back at '50:255'"}};
  for (const auto& [points, why] : kWrong) {
    EXPECT_TRUE(says(messageOf(std::string("Curve:master=") + points),
                     {"Curve: master=", why, "use x:y,x:y, 2 to 7 points"}))
        << points;
  }
  EXPECT_TRUE(says(messageOf("Curve:red=0:0,255:9,red=0:0,255:9"), {"redPoints is given twice"}));
  EXPECT_TRUE(says(messageOf("Curve:redY2=4,red=0:0,255:9"), {"redY2 is given twice"}));
  EXPECT_TRUE(says(messageOf("Curve:mastr=0:0,255:9"), {"did you mean master?"}));
  EXPECT_TRUE(says(messageOf("Fx1300:0:0"), {"'0:0' sets nothing"}));
  EXPECT_TRUE(says(messageOf("Fx1300:brightness=3,4:4"), {"brightness=3,4:4 is not in range"}));
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
