#ifndef OMBRIX_API_OMBRIX_H
#define OMBRIX_API_OMBRIX_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "oxexception.h"
#include "oxexpression.h"
#include "oxmodel.h"
#include "oxobjectivedirection.h"
#include "oxoperator.h"
#include "oxparam.h"
#include "oxphase.h"
#include "oxsolution.h"
#include "oxsolutionstatus.h"
#include "oxstate.h"
#include "oxstatistics.h"
#include "oxversion.h"

namespace ombrix {

class Parallelizer;
class SearchListener;
struct Worker;

/// A solver: the root of the public interface and the one object that a user creates.
///
/// It owns everything else (model, parameters, phases, solution, statistics, search), so a pointer
/// got from any public object is valid as long as its Ombrix and is never deleted by the user.
///
/// The state guards every call; a call in another state than those told throws OXException with
/// code 0 and changes nothing:
///
///     Modeling --OXModel::close--> Stopped --solve--> Running <-> Paused --end of solve--> Stopped
///     Stopped --OXModel::open--> Modeling
///
/// One thread uses a solver at a time. Only getState and stop may be called from another thread
/// while solve runs.
class Ombrix {
public:
  /// An empty model, default parameters, no phase; the state is Modeling.
  Ombrix();
  /// Stops a search that runs and destroys everything that the solver owns. Any state.
  ~Ombrix();
  Ombrix(const Ombrix&) = delete;
  Ombrix& operator=(const Ombrix&) = delete;

  /// The state. Allowed in every state and from every thread.
  OXState getState() const;

  /// The model, owned by the solver. Not while Running.
  OXModel* getModel() const;

  /// The parameters, owned by the solver. Not while Running.
  OXParam* getParam() const;

  /// Searches through the phases in order of creation and returns when all have ended. Only in
  /// state Stopped, to which it leads back.
  ///
  /// A solver without a phase gets a default one, which stays. The search starts from the decisions
  /// in getSolution() and leaves the best solution found there, with its status. Limits of phases
  /// are cumulative, and the running time told by the statistics of the phases counts against them,
  /// so raise or re-set time limits before solving again: see OXPhase::setTimeLimit. Parameters are
  /// read anew by every call.
  ///
  /// Code 1: the advanced parameter "dumpEnabled" is set and dump.oxm.gz cannot be written. Code 5:
  /// the model has no value at some assignment met by the search. Code 6: the closing of the model
  /// had failed on the way (open, repair and close it again), or "targetingLevel" is beyond 10.
  /// After a failure the state may stay Paused: reads still work, and the solver can be destroyed.
  void solve();

  /// Asks the running phase to end; returns at once, and solve goes on with the next phase or
  /// returns soon after. Without effect before the search, between two phases and when no search
  /// runs: to end all phases, call it again until solve has returned. Allowed in every state and
  /// from every thread.
  void stop();

  /// A new phase behind the existing ones, without limits, on the last objective. Owned by the
  /// solver. Only in state Stopped. Code 0: there are 2147483647 phases already.
  OXPhase* createPhase();

  /// The phase at a position from 0 to getNbPhases() - 1, else code 0. In states Paused and
  /// Stopped.
  OXPhase* getPhase(int index) const;

  /// The number of phases. In states Paused and Stopped.
  int getNbPhases() const;

  /// The public solution, owned by the solver. In states Paused and Stopped.
  OXSolution* getSolution() const;

  /// The statistics over all phases, owned by the solver. In states Paused and Stopped.
  OXStatistics* getStatistics() const;

  /// Model, parameters and phases in a few lines. Not while Running.
  std::string toString() const;

  /// Time, iterations, objectives and moves of the search in one line. In states Paused and
  /// Stopped, once a search has begun since the model was closed (an inconsistent model is not
  /// searched), else code 0.
  std::string getInfo() const;

  /// Writes model, phases, parameters and solution to a file, in the format that its name tells:
  /// binary if it ends with ".oxb" or ".oxb.gz", text otherwise, compressed if it ends with ".gz".
  /// An open model is written without phases, parameters and solution. Not while Running.
  ///
  /// Prefer binary: text writes a double with a whole value as an integer, changes names that hold
  /// quotes, backslashes or line feeds, and a text file with an infinite bound may not be readable.
  ///
  /// Code 0: the name is empty. Code 1: the file cannot be opened. Code 6: the closing of the model
  /// had failed on the way; open, repair and close it again. A failure while the solution is read
  /// (a value that cannot be computed) passes through and leaves the file as far as it was written;
  /// a disk that is full shows only as a short file.
  void saveEnvironment(const std::string& fileName) const;

  /// Reads what saveEnvironment wrote and closes the model, into a solver whose model is empty. The
  /// form of the file, text or binary, compressed or not, is told by its content. The decisions
  /// saved become the starting point of the next search; the status is not restored. Only in state
  /// Modeling.
  ///
  /// A load that fails leaves what was read so far: part of the expressions, or a closed model with
  /// part of the phases. Such a solver can only be destroyed or looked at: load into a fresh one.
  ///
  /// Code 0: the name is empty, or a phase, parameter or decision of the file is refused. Code 1:
  /// the file cannot be read or is malformed. Code 2: the model of this solver is not empty, or the
  /// model read is not valid. Code 6: a word of the file names no operator or number.
  void loadEnvironment(const std::string& fileName);

private:
  friend struct SolverRecord;

  /// The kinds of moment at which a callback is called.
  enum CallbackEvent : std::int32_t {
    kTick = 0,
    kSynchronization = 1,
    kPhaseStart = 2,
    kPhaseEnd = 3
  };
  using CallbackFunction = void (*)(void*);

  void addCallback(std::int32_t event, CallbackFunction function, void* data);
  void destroySearch();
  static void onPhaseStart(void* data);
  static void onPhaseEnd(void* data);
  static void onTick(void* data);

  std::atomic<OXState> state;
  std::atomic<std::int32_t> stopRequested;
  std::unique_ptr<OXModel> model;
  std::unique_ptr<OXParam> param;
  std::vector<std::int32_t> callbackEvents;
  std::vector<CallbackFunction> callbackFunctions;
  std::vector<void*> callbackData;
  std::vector<std::unique_ptr<Worker>> workers;
  std::vector<std::unique_ptr<OXPhase>> phases;
  /// Held by stop, and by whoever replaces the parallelizer: stop comes from any thread at any
  /// moment.
  std::mutex searchMutex;
  /// Null until the first solve: its presence means that the solver has been started.
  std::unique_ptr<Parallelizer> parallelizer;
  std::unique_ptr<OXSolution> solution;
  std::unique_ptr<OXStatistics> statistics;
  /// Follows the search from inside; not owned, null for none.
  SearchListener* searchListener = nullptr;
};

}  // namespace ombrix

#endif
