#ifndef OMBRIX_API_OXVERSION_H
#define OMBRIX_API_OXVERSION_H

#include <string>

namespace ombrix {

/// The version of the library. The values are constants of the version, the build date included;
/// every operation is allowed at any time and from any thread.
class OXVersion {
public:
  static int getMajorVersionNumber();
  static int getMinorVersionNumber();
  /// Year, month and day as one decimal number, as in 20130618.
  static int getBuildDate();
  /// The major and minor version numbers as one decimal number, as in 31.
  static int getVersionCode();
  /// The platform built for, as in "Linux64".
  static std::string getPlatform();
  /// Version numbers, build date and platform, as in "3.1.20130618-Linux64".
  static std::string getVersion();
  /// The copyright notice, in two lines.
  static std::string getCopyright();
  /// Name, version, platform, build date and copyright notice.
  static std::string getInfo();
};

}  // namespace ombrix

#endif
