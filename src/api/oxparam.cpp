#include "api/oxparam.h"

#include <cmath>
#include <limits>
#include <sstream>

#include "api/checks.h"
#include "builder/modelrecord.h"
#include "builder/solverrecord.h"
#include "common/failure.h"
#include "common/messages.h"

namespace ombrix {

namespace {

constexpr std::int64_t kSmallestInt = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargestInt = std::numeric_limits<std::int64_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr int kMaxThreads = 1024;
constexpr int kMaxAnnealingLevel = 9;
constexpr int kMaxTimeBetweenDisplays = 65535;

bool isMaximized(std::int32_t direction) {
  return direction == static_cast<std::int32_t>(OXObjectiveDirection::Maximize);
}

OXValue unbounded(ValueType type, bool maximized) {
  if (type == kDoubleType) return OXValue::ofDouble(maximized ? kInfinity : -kInfinity);
  return OXValue::ofInt(maximized ? kLargestInt : kSmallestInt);
}

bool isUnbounded(ValueType type, OXValue bound) {
  if (type == kDoubleType) return std::isinf(bound.doubleValue);
  return bound.intValue == kSmallestInt || bound.intValue == kLargestInt;
}

/// The sum of a limit over all phases; no phase and an overflow both mean no limit.
template <typename Limit, typename Read>
Limit totalLimit(const Ombrix& solver, Limit noLimit, Read read) {
  const auto& phases = SolverRecord::phases(solver);
  if (phases.empty()) return noLimit;
  Limit total = 0;
  for (const std::unique_ptr<OXPhase>& phase : phases) {
    if (__builtin_add_overflow(total, read(*phase), &total)) return noLimit;
  }
  return total;
}

}  // namespace

OXParam::OXParam(Ombrix* owner)
    : ombrix(owner), iterationLimit(kNoIterationLimit), timeLimit(kNoTimeLimit) {}

OXParam::~OXParam() = default;

Ombrix* OXParam::getOmbrix() const {
  checks::notRunning(*ombrix, OMBRIX_HERE("OXParam::getOmbrix"));
  return ombrix;
}

void OXParam::setSeed(int value) {
  const Where where = OMBRIX_HERE("OXParam::setSeed");
  checks::stoppedOnly(*ombrix, where);
  if (value < 0) fail(kMisuse, where, messages::notPositive("seed"));
  seed = value;
}

int OXParam::getSeed() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXParam::getSeed"));
  return seed;
}

void OXParam::setNbThreads(int value) {
  const Where where = OMBRIX_HERE("OXParam::setNbThreads");
  checks::stoppedOnly(*ombrix, where);
  if (value < 1 || value > kMaxThreads) {
    fail(kMisuse, where, messages::outOfRange("Number of threads", 1, kMaxThreads));
  }
  nbThreads = value;
}

int OXParam::getNbThreads() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXParam::getNbThreads"));
  return nbThreads;
}

void OXParam::setAnnealingLevel(int value) {
  const Where where = OMBRIX_HERE("OXParam::setAnnealingLevel");
  checks::stoppedOnly(*ombrix, where);
  if (value < 0 || value > kMaxAnnealingLevel) {
    fail(kMisuse, where, messages::outOfRange("Annealing level", 0, kMaxAnnealingLevel));
  }
  annealingLevel = value;
}

int OXParam::getAnnealingLevel() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXParam::getAnnealingLevel"));
  return annealingLevel;
}

void OXParam::setVerbosity(int value) {
  const Where where = OMBRIX_HERE("OXParam::setVerbosity");
  checks::stoppedOnly(*ombrix, where);
  if (value < 0) fail(kMisuse, where, messages::notPositive("verbosity"));
  verbosity = value;
}

int OXParam::getVerbosity() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXParam::getVerbosity"));
  return verbosity;
}

void OXParam::setTimeBetweenDisplays(int seconds) {
  const Where where = OMBRIX_HERE("OXParam::setTimeBetweenDisplays");
  checks::stoppedOnly(*ombrix, where);
  if (seconds < 1 || seconds > kMaxTimeBetweenDisplays) {
    fail(kMisuse, where, messages::outOfRange("TimeBetweenDisplays", 1, kMaxTimeBetweenDisplays));
  }
  timeBetweenDisplays = seconds;
}

int OXParam::getTimeBetweenDisplays() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXParam::getTimeBetweenDisplays"));
  return timeBetweenDisplays;
}

void OXParam::setIntObjectiveBound(int objective, long long bound) {
  setIntBound(objective, bound, OMBRIX_HERE("OXParam::setIntObjectiveBound"));
}

void OXParam::setDoubleObjectiveBound(int objective, double bound) {
  setDoubleBound(objective, bound, OMBRIX_HERE("OXParam::setDoubleObjectiveBound"));
}

void OXParam::setObjectiveBound(int objective, long long bound) {
  setIntBound(objective, bound, OMBRIX_HERE("OXParam::setObjectiveBound"));
}

void OXParam::setObjectiveBound(int objective, double bound) {
  setDoubleBound(objective, bound, OMBRIX_HERE("OXParam::setObjectiveBound"));
}

void OXParam::setIntBound(int objective, long long bound, const Where& where) {
  checks::stoppedOnly(*ombrix, where);
  checkIntObjective(objective, where);
  objectiveBounds[static_cast<std::size_t>(objective)] = OXValue::ofInt(bound);
}

void OXParam::setDoubleBound(int objective, double bound, const Where& where) {
  checks::stoppedOnly(*ombrix, where);
  checkDoubleObjective(objective, where);
  if (std::isnan(bound)) fail(kInvalidModel, where, messages::notANumber());
  objectiveBounds[static_cast<std::size_t>(objective)] = OXValue::ofDouble(bound);
}

long long OXParam::getIntObjectiveBound(int objective) const {
  return intBound(objective, OMBRIX_HERE("OXParam::getIntObjectiveBound"));
}

long long OXParam::getObjectiveBound(int objective) const {
  return intBound(objective, OMBRIX_HERE("OXParam::getObjectiveBound"));
}

long long OXParam::intBound(int objective, const Where& where) const {
  checks::pausedOrStopped(*ombrix, where);
  checkIntObjective(objective, where);
  return objectiveBounds[static_cast<std::size_t>(objective)].intValue;
}

double OXParam::getDoubleObjectiveBound(int objective) const {
  const Where where = OMBRIX_HERE("OXParam::getDoubleObjectiveBound");
  checks::pausedOrStopped(*ombrix, where);
  checkDoubleObjective(objective, where);
  return objectiveBounds[static_cast<std::size_t>(objective)].doubleValue;
}

void OXParam::checkIntObjective(int objective, const Where& where) const {
  if (!isIntegral(typeOfObjective(objective, where))) {
    fail(kInvalidModel, where, messages::mustBeIntegral());
  }
}

void OXParam::checkDoubleObjective(int objective, const Where& where) const {
  if (typeOfObjective(objective, where) != kDoubleType) {
    fail(kInvalidModel, where, messages::mustBeDouble());
  }
}

std::int8_t OXParam::typeOfObjective(int objective, const Where& where) const {
  const auto& objectives = ModelRecord::objectives(SolverRecord::model(*ombrix));
  const int nbObjectives = static_cast<int>(objectives.size());
  if (objective < 0 || objective >= nbObjectives) {
    fail(kMisuse, where, messages::badIndex("Objective", objective, nbObjectives - 1));
  }
  return ModelRecord::valueType(*objectives[static_cast<std::size_t>(objective)]);
}

void OXParam::resizeBounds() {
  const OXModel& model = SolverRecord::model(*ombrix);
  const auto& objectives = ModelRecord::objectives(model);
  objectiveBounds.resize(objectives.size());
  objectiveTypes.resize(objectives.size(), kNoType);
  for (std::size_t i = 0; i < objectives.size(); ++i) {
    const OXExpression& objective = *objectives[i];
    const ValueType type = ModelRecord::valueType(objective);
    if (ModelRecord::op(objective) == OXOperator::Const) {
      objectiveBounds[i] = ModelRecord::constant(objective);
    } else if (objectiveTypes[i] != type) {
      objectiveBounds[i] = unbounded(type, isMaximized(ModelRecord::objectiveDirections(model)[i]));
    }
    objectiveTypes[i] = type;
  }
}

void OXParam::setAdvancedParam(const std::string& key, int value) {
  checks::notRunning(*ombrix, OMBRIX_HERE("OXParam::setAdvancedParam"));
  advancedParams[key] = value;
}

int OXParam::getAdvancedParam(const std::string& key) const {
  const Where where = OMBRIX_HERE("OXParam::getAdvancedParam");
  checks::pausedOrStopped(*ombrix, where);
  const auto found = advancedParams.find(key);
  if (found == advancedParams.end()) {
    fail(kMisuse, where, "Advanced parameter '" + key + "' does not exist.");
  }
  return found->second;
}

int OXParam::getAdvancedParam(const std::string& key, int defaultValue) const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXParam::getAdvancedParam"));
  return SolverRecord::advancedParam(*this, key, defaultValue);
}

std::string OXParam::toString() const {
  checks::notRunning(*ombrix, OMBRIX_HERE("OXParam::toString"));
  std::ostringstream text;
  text << "Param: \n" << limitsText() << "\n";
  text << "  seed = " << seed << ", nb threads = " << nbThreads
       << ", annealing level = " << annealingLevel << "\n\n";
  text << "Objectives:\n" << objectivesText();
  if (!advancedParams.empty()) {
    text << "\nAdvanced params:\n";
    for (const auto& [key, value] : advancedParams) text << "  " << key << " = " << value << "\n";
  }
  return text.str();
}

std::string OXParam::limitsText() const {
  const auto seconds = totalLimit<std::int32_t>(
      *ombrix, kNoTimeLimit, [](const OXPhase& phase) { return SolverRecord::timeLimit(phase); });
  const auto nbIterations = totalLimit<std::int64_t>(
      *ombrix, kNoIterationLimit,
      [](const OXPhase& phase) { return SolverRecord::iterationLimit(phase); });
  std::ostringstream text;
  if (seconds == kNoTimeLimit) {
    text << "  no time limit, ";
  } else {
    text << "  time limit = " << seconds << " sec, ";
  }
  if (nbIterations == kNoIterationLimit) {
    text << "no iteration limit";
  } else {
    text << "iteration limit = " << nbIterations;
  }
  return text.str();
}

std::string OXParam::objectivesText() const {
  const auto& directions = ModelRecord::objectiveDirections(SolverRecord::model(*ombrix));
  std::ostringstream text;
  for (std::size_t i = 0; i < directions.size(); ++i) {
    text << "  Obj " << i << ": " << (isMaximized(directions[i]) ? "maximize" : "minimize") << ", ";
    // An objective added since the last closing has no bound yet.
    if (i >= objectiveBounds.size() || isUnbounded(objectiveTypes[i], objectiveBounds[i])) {
      text << "no bound\n";
    } else if (objectiveTypes[i] == kDoubleType) {
      text << "bound = " << objectiveBounds[i].doubleValue << "\n";
    } else {
      text << "bound = " << objectiveBounds[i].intValue << "\n";
    }
  }
  return text.str();
}

}  // namespace ombrix
