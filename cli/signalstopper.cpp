#include "cli/signalstopper.h"

#include <ctime>
#include <system_error>

#include "cli/inputerror.h"

namespace ombrix::cli {
namespace {

/// How long a wait for a signal lasts before the watcher looks round: short enough for a search to
/// end promptly, long enough to cost nothing.
constexpr timespec kPatience{0, 20'000'000};

}  // namespace

SignalStopper::SignalStopper(Ombrix& stopped) : solver(stopped) {
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, &previousMask);
  try {
    watcher = std::thread([this] { watch(); });
  } catch (const std::system_error& refusal) {
    pthread_sigmask(SIG_SETMASK, &previousMask, nullptr);
    throw InputError("cannot start a thread: " + refusal.code().message());
  }
}

SignalStopper::~SignalStopper() {
  ended = true;
  watcher.join();
  pthread_sigmask(SIG_SETMASK, &previousMask, nullptr);
}

void SignalStopper::watch() {
  bool stopWanted = false;
  while (!ended) {
    if (sigtimedwait(&signals, nullptr, &kPatience) > 0) stopWanted = true;
    if (stopWanted) solver.stop();
  }
}

}  // namespace ombrix::cli
