#include "text.h"

#include <gtest/gtest.h>

namespace qpx::tool {
namespace {

TEST(Text, ControlCharactersAreMadeVisible) {
  EXPECT_EQ(printable("a\x1b[1mb\r\n\t\x7f"), "a\\x1b[1mb\\x0d\\x0a\\x09\\x7f");
  // The second set of control characters, in UTF-8 and as a bare byte.
  EXPECT_EQ(printable("\xC2\x9B"
                      "1m"),
            "\\xc2\\x9b1m");
  EXPECT_EQ(printable("\x9B"
                      "1m"),
            "\\x9b1m");
}

TEST(Text, LettersOfAllLanguagesStay) {
  EXPECT_EQ(printable("Gr\xC3\xBC\xC3\x9F, \xE5\x86\x99\xE7\x9C\x9F \xF0\x9F\x93\xB7"),
            "Gr\xC3\xBC\xC3\x9F, \xE5\x86\x99\xE7\x9C\x9F \xF0\x9F\x93\xB7");
}

TEST(Text, LongTextIsCutBetweenCharacters) {
  EXPECT_EQ(fitted("photo.jpg", 9), "photo.jpg");
  EXPECT_EQ(fitted("photo.jpg", 8), "photo...");
  EXPECT_EQ(fitted("\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC", 4), "\xC3\xBC...");
  EXPECT_EQ(fitted("photo.jpg", 2), "..");
  EXPECT_EQ(fitted("photo.jpg", 0), "");
}

}  // namespace
}  // namespace qpx::tool
