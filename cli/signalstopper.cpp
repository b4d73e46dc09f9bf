#include "cli/signalstopper.h"

#include <ctime>
#include <system_error>

#include "cli/inputerror.h"

namespace ombrix::cli {
namespace {

/// How long a wait for a signal lasts before the watcher looks round: short enough for a search to
/// end promptly, long enough to cost nothing.
constexpr timespec kPatience{0, 20'000'000};
constexpr timespec kAtOnce{0, 0};

/// A program started to outlive its terminal, as by nohup, ignores the signal that tells its end.
bool isIgnored(int signal) {
  struct sigaction present {};
  return sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

}  // namespace

SignalStopper::SignalStopper(Ombrix& stopped) : solver(stopped) {
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  // A blocked signal comes to the waiting thread even where it is ignored.
  if (!isIgnored(SIGHUP)) sigaddset(&signals, SIGHUP);
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
  // One that came since has nothing left to end.
  while (sigtimedwait(&signals, nullptr, &kAtOnce) > 0) {
  }
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
