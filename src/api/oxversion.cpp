#include "api/oxversion.h"

#include <locale>
#include <sstream>

namespace ombrix {

namespace {

constexpr int kMajor = 3;
constexpr int kMinor = 1;
constexpr int kBuildDate = 20130618;
constexpr const char* kPlatform = "Linux64";

}  // namespace

int OXVersion::getMajorVersionNumber() {
  return kMajor;
}

int OXVersion::getMinorVersionNumber() {
  return kMinor;
}

int OXVersion::getBuildDate() {
  return kBuildDate;
}

int OXVersion::getVersionCode() {
  return 10 * kMajor + kMinor;
}

std::string OXVersion::getPlatform() {
  return kPlatform;
}

std::string OXVersion::getVersion() {
  std::ostringstream text;
  text.imbue(std::locale::classic());  // environment files hold it: it is the same on every host
  text << kMajor << "." << kMinor << "." << kBuildDate << "-" << kPlatform;
  return text.str();
}

std::string OXVersion::getCopyright() {
  return "Copyright (c) the Ombrix authors.\n"
         "Licensed under the Apache License, Version 2.0.";
}

std::string OXVersion::getInfo() {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << "Ombrix " << kMajor << "." << kMinor << " (" << kPlatform << ", build " << kBuildDate
       << ")\n"
       << getCopyright() << "\n";
  return text.str();
}

}  // namespace ombrix
