#include "oxm/oxmreader.h"

namespace ombrix {

void OXMReader::skip() {
  std::string name;
  std::int64_t depth = 0;
  do {
    if (isMapStart()) {
      nextMapStart();
      ++depth;
    } else if (depth > 0 && isMapEnd()) {
      nextMapEnd();
      --depth;
    } else if (depth > 0 && isProperty()) {
      nextProperty(name);
    } else {
      if (isAtEnd()) failAtEnd();
      nextValue();
    }
  } while (depth > 0);
}

}  // namespace ombrix
