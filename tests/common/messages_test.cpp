#include "common/messages.h"

#include <gtest/gtest.h>

namespace ombrix::messages {
namespace {

// No test can fill a solver so far as to meet them where they are thrown.
TEST(Messages, CapacitiesNameWhatIsCountedAndTheLimit) {
  EXPECT_EQ(capacityExceeded("expressions", 2147483647),
            "Number of expressions cannot exceed 2147483647.");
  EXPECT_EQ(capacityExceeded("constraints", 2147483647),
            "Number of constraints cannot exceed 2147483647.");
  EXPECT_EQ(capacityExceeded("objectives", 2147483647),
            "Number of objectives cannot exceed 2147483647.");
  EXPECT_EQ(capacityExceeded("phases", 2147483647), "Number of phases cannot exceed 2147483647.");
}

}  // namespace
}  // namespace ombrix::messages
