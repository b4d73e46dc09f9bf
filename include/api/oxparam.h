#ifndef OMBRIX_API_OXPARAM_H
#define OMBRIX_API_OXPARAM_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace ombrix {

class Ombrix;
union OXValue;
struct Where;

/// The settings of a search, owned by their Ombrix. Setters take effect at the next solve.
///
/// Unless told otherwise a setter is allowed in state Stopped only, so on a closed model, and a
/// getter in states Paused and Stopped; a value out of its range gives code 0 and changes nothing.
class OXParam {
public:
  OXParam(const OXParam&) = delete;
  OXParam& operator=(const OXParam&) = delete;
  ~OXParam();

  /// The solver that owns the parameters. Not while Running.
  Ombrix* getOmbrix() const;

  /// The seed of the random draws, 0 or more; 0 at first. With an iteration limit, the same seed on
  /// the same number of threads gives the same solution.
  void setSeed(int seed);
  int getSeed() const;

  /// The number of search threads, 1 to 1024; 2 at first.
  void setNbThreads(int nbThreads);
  int getNbThreads() const;

  /// How much the search accepts moves that do not improve, 0 (hardly) to 9; 1 at first.
  void setAnnealingLevel(int annealingLevel);
  int getAnnealingLevel() const;

  /// 0 writes nothing to the standard output; 1 and more show the progress. 1 at first.
  void setVerbosity(int verbosity);
  int getVerbosity() const;

  /// The period of the progress display in seconds, 1 to 65535; 1 at first.
  void setTimeBetweenDisplays(int timeBetweenDisplays);
  int getTimeBetweenDisplays() const;

  /// The value at which an objective, given by its index, counts as reached: the search ends once
  /// all objectives up to the optimised one are. The smallest integer (minimizing) and the largest
  /// (maximizing) mean no bound. The bounds survive opening and closing as long as the type of the
  /// objective stays, but that of a constant objective is overwritten at close. Code 0: no such
  /// objective. Code 2: the objective is neither boolean nor integer.
  void setIntObjectiveBound(int objective, long long bound);

  /// The same for an objective of type double; infinities mean no bound. Code 0: no such objective.
  /// Code 2: the objective is not double, or the bound is not a number.
  void setDoubleObjectiveBound(int objective, double bound);

  /// setIntObjectiveBound or setDoubleObjectiveBound, by the type of the bound.
  void setObjectiveBound(int objective, long long bound);
  void setObjectiveBound(int objective, double bound);
  void setObjectiveBound(int objective, int bound) {
    setObjectiveBound(objective, static_cast<long long>(bound));
  }
  void setObjectiveBound(int objective, long bound) {
    setObjectiveBound(objective, static_cast<long long>(bound));
  }

  /// The bound of a boolean or integer objective; codes as for its setter.
  long long getIntObjectiveBound(int objective) const;
  /// The bound of an objective of type double; codes as for its setter.
  double getDoubleObjectiveBound(int objective) const;
  /// getIntObjectiveBound under another name.
  long long getObjectiveBound(int objective) const;

  /// Stores an integer under any name, replacing the one stored before. Not while Running. A name
  /// that nothing reads is kept and has no effect; each reader reads at its own moment, most of
  /// them when the model closes or solve begins.
  void setAdvancedParam(const std::string& key, int value);
  /// The integer stored under a name. Code 0: none is.
  int getAdvancedParam(const std::string& key) const;
  /// The integer stored under a name, or the default if none is.
  int getAdvancedParam(const std::string& key, int defaultValue) const;

  /// Limits of the phases taken together, settings, bounds and advanced parameters in a few lines.
  /// Not while Running.
  std::string toString() const;

private:
  friend class Ombrix;
  friend class OXModel;
  friend struct SolverRecord;

  explicit OXParam(Ombrix* owner);

  void setIntBound(int objective, long long bound, const Where& where);
  void setDoubleBound(int objective, double bound, const Where& where);
  long long intBound(int objective, const Where& where) const;
  void checkIntObjective(int objective, const Where& where) const;
  void checkDoubleObjective(int objective, const Where& where) const;
  std::int8_t typeOfObjective(int objective, const Where& where) const;
  void resizeBounds();
  std::string limitsText() const;
  std::string objectivesText() const;

  Ombrix* ombrix;
  std::int32_t seed = 0;
  std::int32_t nbThreads = 2;
  std::int32_t annealingLevel = 1;
  std::int32_t timeBetweenDisplays = 1;
  std::int32_t verbosity = 1;
  std::int64_t iterationLimit;
  std::int32_t timeLimit;
  std::vector<OXValue> objectiveBounds;
  std::vector<std::int8_t> objectiveTypes;
  std::map<std::string, std::int32_t> advancedParams;
};

}  // namespace ombrix

#endif
