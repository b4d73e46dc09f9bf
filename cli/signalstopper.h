#ifndef OMBRIX_CLI_SIGNALSTOPPER_H
#define OMBRIX_CLI_SIGNALSTOPPER_H

#include <ombrix/ombrix.h>

#include <atomic>
#include <csignal>
#include <thread>

namespace ombrix::cli {

/// While it lives, SIGINT, SIGTERM and SIGHUP end the search of a solver instead of the process; a
/// SIGHUP that is ignored stays ignored.
///
/// The signals are blocked for this thread and for those that it starts, and a thread of its
/// own waits for them, so no code runs in a signal handler. Once one has come, it asks for the stop
/// again and again, since a stop between two phases is without effect. What comes after the search
/// is taken and has no effect.
class SignalStopper {
public:
  explicit SignalStopper(Ombrix& solver);
  ~SignalStopper();
  SignalStopper(const SignalStopper&) = delete;
  SignalStopper& operator=(const SignalStopper&) = delete;

private:
  void watch();

  Ombrix& solver;
  sigset_t signals{};
  sigset_t previousMask{};
  std::atomic<bool> ended{false};
  std::thread watcher;
};

}  // namespace ombrix::cli

#endif
