#ifndef OMBRIX_API_OXSTATE_H
#define OMBRIX_API_OXSTATE_H

#include <cstdint>

namespace ombrix {

/// The state of a solver, which guards every public call.
enum class OXState : std::int32_t {
  Modeling = 0,  ///< the model is open
  Running = 1,   ///< search threads are at work: only getState and stop are allowed
  Paused = 2,    ///< the controlling thread holds the workers between two time slices
  Stopped = 3    ///< the model is closed and no search is active
};

}  // namespace ombrix

#endif
