#ifndef OMBRIX_TESTS_SUPPORT_STATEMESSAGES_H
#define OMBRIX_TESTS_SUPPORT_STATEMESSAGES_H

/// What a call in a state that does not allow it must answer, to the letter.
namespace ombrix::test {

inline constexpr const char* kModeling =
    "This method is only allowed in state Modeling (the model must not be closed).";
inline constexpr const char* kStopped =
    "This method is only allowed in state Stopped (the model must be closed and the solver must be "
    "stopped).";
inline constexpr const char* kPausedOrStopped =
    "This method is only allowed in states Paused or Stopped (the model must be closed and the "
    "solver must be paused or stopped).";
inline constexpr const char* kNotRunning =
    "This method cannot be called in state Running (the model must not be closed or the solver "
    "must be paused or stopped).";
inline constexpr const char* kStarted =
    "This method cannot be called if the solver has not been started at least once.";

}  // namespace ombrix::test

#endif
