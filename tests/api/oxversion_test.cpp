#include "api/oxversion.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ombrix {
namespace {

TEST(OXVersionTest, TellsItsNumbers) {
  EXPECT_EQ(OXVersion::getMajorVersionNumber(), 3);
  EXPECT_EQ(OXVersion::getMinorVersionNumber(), 1);
  EXPECT_EQ(OXVersion::getVersionCode(), 31);
  EXPECT_EQ(OXVersion::getBuildDate(), 20130618);
}

TEST(OXVersionTest, TellsItsTexts) {
  EXPECT_EQ(OXVersion::getPlatform(), "Linux64");
  EXPECT_EQ(OXVersion::getVersion(), "3.1.20130618-Linux64");
  EXPECT_EQ(OXVersion::getInfo(),
            "Ombrix 3.1 (Linux64, build 20130618)\n" + OXVersion::getCopyright() + "\n");
}

TEST(OXVersionTest, TheCopyrightHasTwoLines) {
  const std::string notice = OXVersion::getCopyright();
  EXPECT_EQ(std::count(notice.begin(), notice.end(), '\n'), 1);
  EXPECT_NE(notice.find("the Ombrix authors"), std::string::npos);
}

}  // namespace
}  // namespace ombrix
