#ifndef OMBRIX_API_OXOBJECTIVEDIRECTION_H
#define OMBRIX_API_OXOBJECTIVEDIRECTION_H

#include <cstdint>

namespace ombrix {

/// Whether a smaller or a larger value of an objective is better.
enum class OXObjectiveDirection : std::int32_t { Minimize = 0, Maximize = 1 };

}  // namespace ombrix

#endif
