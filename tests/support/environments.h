#ifndef OMBRIX_TESTS_SUPPORT_ENVIRONMENTS_H
#define OMBRIX_TESTS_SUPPORT_ENVIRONMENTS_H

#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "api/ombrix.h"
#include "builder/modelrecord.h"
#include "builder/operatortools.h"
#include "builder/solverrecord.h"

namespace ombrix::test {

/// Fills a model with expressions of every operator, all of which have a value at every assignment,
/// and leaves it open.
class RandomEnvironment {
public:
  /// Without whole doubles and with one objective at most that is double, also a text file gives
  /// the same environment back.
  RandomEnvironment(Ombrix& target, unsigned seed, bool isForText)
      : model(*target.getModel()), random(seed), forText(isForText) {
    late = model.createExpression(OXOperator::Sum);
    for (int i = 0; i < 4; ++i) booleans.push_back(named(model.createExpression(OXOperator::Bool)));
    for (const long long value : {0LL, 1LL, 5LL, -70000LL, 1LL << 40}) {
      integers.push_back(named(model.createConstant(value)));
    }
    for (const double value : {0.5, -1.25, 1e-300}) doubles.push_back(model.createConstant(value));
    if (!forText) doubles.push_back(model.createConstant(2.0));
    for (int op = static_cast<int>(OXOperator::Sum); op <= static_cast<int>(OXOperator::Tan);
         ++op) {
      add(static_cast<OXOperator>(op));
    }
    for (int i = 0; i < 20; ++i) add(static_cast<OXOperator>(2 + pick(32)));
    late->addOperand(integer());
    late->addOperand(late == integers.back() ? integers.front() : boolean());
    addGoals();
  }

private:
  int pick(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }
  OXExpression* pickFrom(const std::vector<OXExpression*>& pool) {
    return pool[static_cast<std::size_t>(pick(static_cast<int>(pool.size())))];
  }
  OXExpression* boolean() { return pickFrom(booleans); }
  OXExpression* integer() { return pickFrom(integers); }
  OXExpression* real() { return pickFrom(doubles); }
  OXExpression* number() { return pick(2) == 0 ? integer() : real(); }

  OXExpression* named(OXExpression* e) {
    if (pick(3) == 0 && !e->isNamed()) e->setName("name " + std::to_string(e->getIndex()));
    return e;
  }
  template <typename... Operands>
  OXExpression* make(OXOperator op, Operands... operands) {
    OXExpression* e = model.createExpression(op);
    (e->addOperand(operands), ...);
    return named(e);
  }
  OXExpression* nary(OXOperator op, OXExpression* first) {
    OXExpression* e = make(op, first);
    for (int n = pick(5); n > 0; --n) e->addOperand(first);
    return e;
  }
  OXExpression* atLeastOne() {
    return make(OXOperator::Sum, make(OXOperator::Abs, model.createConstant(0.5)), 1);
  }

  void add(OXOperator op) {
    switch (op) {
      case OXOperator::Sum:
      case OXOperator::Max:
      case OXOperator::Min:
        doubles.push_back(nary(op, real()));
        break;
      case OXOperator::Prod:
        make(op, boolean(), integer());
        break;
      case OXOperator::Eq:
      case OXOperator::Neq:
      case OXOperator::Geq:
      case OXOperator::Leq:
      case OXOperator::Gt:
      case OXOperator::Lt:
        booleans.push_back(make(op, number(), number()));
        break;
      case OXOperator::Iif:
        doubles.push_back(make(op, boolean(), number(), real()));
        break;
      case OXOperator::Not:
        booleans.push_back(make(op, boolean()));
        break;
      case OXOperator::And:
      case OXOperator::Or:
      case OXOperator::Xor:
        booleans.push_back(nary(op, boolean()));
        break;
      case OXOperator::Dist:
        make(op, number(), number());
        break;
      case OXOperator::Div:
        make(op, number(), 0.25);
        break;
      case OXOperator::Mod:
        make(op, integer(), 7);
        break;
      case OXOperator::Array:
        make(op);
        break;
      case OXOperator::At:
        make(op, make(OXOperator::Array, number(), number()), boolean());
        break;
      case OXOperator::Scalar:
        make(op, make(OXOperator::Array, boolean(), boolean()),
             make(OXOperator::Array, integer(), 0.5));
        break;
      case OXOperator::Pow:
        make(op, atLeastOne(), 0.5);
        break;
      case OXOperator::Sqrt:
      case OXOperator::Log:
        make(op, atLeastOne());
        break;
      case OXOperator::Exp:
        make(op, boolean());
        break;
      default:
        make(op, number());
    }
  }

  void addGoals() {
    for (int n = pick(4); n > 0; --n) model.addConstraint(boolean());
    model.addObjective(late, OXObjectiveDirection::Maximize);
    model.addObjective(booleans.back(), OXObjectiveDirection::Minimize);
    if (!forText) model.addObjective(doubles.back(), OXObjectiveDirection::Maximize);
    model.addObjective(doubles.back(), OXObjectiveDirection::Minimize);
  }

  OXModel& model;
  std::mt19937 random;
  bool forText;
  OXExpression* late = nullptr;  ///< its operands are created behind it
  std::vector<OXExpression*> booleans;
  std::vector<OXExpression*> integers;
  std::vector<OXExpression*> doubles;
};

/// Closes the model and gives phases, parameters and decisions values that are no defaults.
inline void closeAndSetUp(Ombrix& solver) {
  OXModel& model = *solver.getModel();
  model.close();
  OXPhase& phase = *solver.createPhase();
  phase.setIterationLimit(1LL << 40);
  phase.setTimeLimit(17);
  phase.setOptimizedObjective(0);
  solver.createPhase();
  OXParam& param = *solver.getParam();
  param.setSeed(4711);
  param.setNbThreads(3);
  param.setAnnealingLevel(4);
  param.setVerbosity(0);
  param.setTimeBetweenDisplays(9);
  param.setObjectiveBound(0, -12345678901LL);
  param.setAdvancedParam("someKey", -7);
  param.setAdvancedParam("anotherKey", 8);
  for (int i = 0; i < model.getNbDecisions(); ++i) model.getDecision(i)->setValue(i % 2);
}

inline std::string valueText(OXValue value, ValueType type) {
  std::ostringstream text;
  text << static_cast<int>(type) << ":" << value.intValue;
  return text.str();
}

/// Everything that an environment file is to keep, in lines: two environments are the same when
/// their texts are.
inline std::string describe(const Ombrix& solver) {
  const OXModel& model = *solver.getModel();
  std::ostringstream text;
  for (const OXExpression* e : ModelRecord::expressions(model)) {
    text << ModelRecord::text(*e);
    if (e->isConstant()) {
      text << " = " << valueText(ModelRecord::constant(*e), ModelRecord::valueType(*e));
    }
    for (int i = 0; i < e->getNbOperands(); ++i) text << " " << e->getOperand(i)->getIndex();
    text << "\n";
  }
  for (const OXExpression* e : ModelRecord::decisions(model)) text << "d " << e->getIndex() << "\n";
  for (const OXExpression* e : ModelRecord::constraints(model)) {
    text << "c " << e->getIndex() << "\n";
  }
  for (int i = 0; i < model.getNbObjectives(); ++i) {
    text << "o " << model.getObjective(i)->getIndex() << " "
         << static_cast<int>(model.getObjectiveDirection(i)) << "\n";
  }
  text << model.getNbOperands() << " operands\n";
  if (!model.isClosed()) return text.str();
  const OXParam& param = *solver.getParam();
  for (int i = 0; i < solver.getNbPhases(); ++i) {
    const OXPhase& phase = *solver.getPhase(i);
    text << "p " << phase.getIterationLimit() << " " << phase.getTimeLimit() << " "
         << phase.getOptimizedObjective() << "\n";
  }
  text << param.getSeed() << " " << param.getNbThreads() << " " << param.getAnnealingLevel() << " "
       << param.getVerbosity() << " " << param.getTimeBetweenDisplays() << "\n";
  for (int i = 0; i < model.getNbObjectives(); ++i) {
    text << "b "
         << valueText(SolverRecord::objectiveBounds(param)[static_cast<std::size_t>(i)],
                      ModelRecord::valueType(*model.getObjective(i)))
         << "\n";
  }
  for (const auto& [key, value] : SolverRecord::advancedParams(param)) {
    text << key << " = " << value << "\n";
  }
  for (const OXExpression* e : ModelRecord::decisions(model)) text << e->getIntValue();
  return text.str();
}

}  // namespace ombrix::test

#endif
