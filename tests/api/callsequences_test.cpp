#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "api/ombrix.h"
#include "support/statemessages.h"

namespace ombrix {
namespace {

using test::kModeling;
using test::kPausedOrStopped;
using test::kStopped;

using Answer = std::optional<std::string>;

std::string badIndex(const char* noun, int index, int count) {
  return std::string(noun) + " with index " + std::to_string(index) +
         " does not exist.\nOnly indices from 0 to " + std::to_string(count - 1) +
         " are currently allowed.";
}

/// Makes random legal and illegal calls on a solver and on a small table of what it should hold.
/// The table tells the answer of each call before it is made: success or one message.
class RandomCaller {
public:
  explicit RandomCaller(unsigned seed) : random(seed) {
    solver.getParam()->setAdvancedParam("preprocessingEnabled", static_cast<int>(seed % 2));
  }

  void makeCall() {
    using Step = void (RandomCaller::*)();
    static constexpr Step steps[] = {
        &RandomCaller::createDecision, &RandomCaller::createConstant, &RandomCaller::createSum,
        &RandomCaller::addOperand,     &RandomCaller::setOperand,     &RandomCaller::addConstraint,
        &RandomCaller::addObjective,   &RandomCaller::close,          &RandomCaller::open,
        &RandomCaller::setValue,       &RandomCaller::readValues,     &RandomCaller::setName,
        &RandomCaller::createPhase,    &RandomCaller::readPhase,      &RandomCaller::setSeed,
        &RandomCaller::setBound};
    (this->*steps[draw(std::size(steps))])();
    compare();
  }

private:
  struct Expected {
    bool isDecision;
    bool isConstraint;
    std::vector<int> operands;  ///< of a sum
    long long value;            ///< of a decision or a constant
    std::string name;
  };

  std::size_t draw(std::size_t count) { return random() % count; }
  int anyIndex(std::size_t count) { return static_cast<int>(draw(count + 2)) - 1; }
  bool isOpen() const { return state == OXState::Modeling; }

  void expect(const Answer& answer, const std::function<void()>& call) {
    try {
      call();
      EXPECT_FALSE(answer) << "no failure, expected: " << *answer;
    } catch (const OXException& failure) {
      EXPECT_EQ(answer.value_or("success"), failure.getExplanation());
    }
  }
  Answer onlyModeling() const { return isOpen() ? Answer() : kModeling; }
  Answer onlyStopped() const { return isOpen() ? kStopped : Answer(); }
  Answer onlyPausedOrStopped() const { return isOpen() ? kPausedOrStopped : Answer(); }

  void createDecision() {
    expect(onlyModeling(), [&] { model.createExpression(OXOperator::Bool); });
    if (isOpen()) table.push_back({true, false, {}, 0, ""});
  }

  void createConstant() {
    const auto value = static_cast<long long>(draw(8));
    expect(onlyModeling(), [&] { model.createConstant(value); });
    if (isOpen()) findConstant(value);
  }

  void findConstant(long long value) {
    if (constants.contains(value)) return;
    constants[value] = static_cast<int>(table.size());
    table.push_back({false, false, {}, value, ""});
  }

  void createSum() {
    expect(onlyModeling(), [&] { model.createExpression(OXOperator::Sum); });
    if (!isOpen()) return;
    sums.push_back(static_cast<int>(table.size()));
    table.push_back({false, false, {}, 0, ""});
  }

  /// The answer of adding or setting an operand of a sum, apart from positions. Operands come
  /// before their sum, so that there are no cycles.
  void addOperand() {
    if (sums.empty()) return;
    const int sum = sums[draw(sums.size())];
    const int operand = static_cast<int>(draw(static_cast<std::size_t>(sum) + 1)) - 1;
    Answer answer = onlyModeling();
    if (operand < 0) answer = "Argument expr cannot be null.";
    expect(answer, [&] { at(sum)->addOperand(orNull(operand)); });
    if (!answer) table[static_cast<std::size_t>(sum)].operands.push_back(operand);
  }

  void setOperand() {
    if (sums.empty()) return;
    const int sum = sums[draw(sums.size())];
    std::vector<int>& operands = table[static_cast<std::size_t>(sum)].operands;
    const int position = anyIndex(operands.size());
    const auto value = static_cast<long long>(draw(8));
    Answer answer = onlyModeling();
    if (!answer && (position < 0 || position >= static_cast<int>(operands.size()))) {
      answer = badIndex("Operands", position, static_cast<int>(operands.size()));
    }
    expect(answer, [&] { at(sum)->setOperand(position, value); });
    // The constant is created before the position is looked at.
    if (isOpen()) findConstant(value);
    if (!answer) {
      table[static_cast<std::size_t>(sum)].operands[static_cast<std::size_t>(position)] =
          constants.at(value);
    }
  }

  void addConstraint() {
    const int index = anyIndex(table.size());
    if (index >= static_cast<int>(table.size())) return;
    Answer answer = onlyModeling();
    if (!answer && index < 0) answer = "Argument expr cannot be null.";
    if (!answer && !canBeBoolean(index)) {
      answer =
          "Only boolean expressions can be constrained (0, 1, bool, and, or, xor, not, eq, neq, "
          "geq, leq, gt, lt, if).";
    }
    expect(answer, [&] { model.addConstraint(orNull(index)); });
    if (answer || table[static_cast<std::size_t>(index)].isConstraint) return;
    table[static_cast<std::size_t>(index)].isConstraint = true;
    ++nbConstraints;
  }

  bool isSum(int index) const { return std::find(sums.begin(), sums.end(), index) != sums.end(); }

  bool canBeBoolean(int index) const {
    const long long value = table[static_cast<std::size_t>(index)].value;
    return !isSum(index) && (value == 0 || value == 1);
  }

  void addObjective() {
    if (table.empty()) return;
    const auto index = static_cast<int>(draw(table.size()));
    expect(onlyModeling(), [&] { model.addObjective(at(index), OXObjectiveDirection::Maximize); });
    if (isOpen()) objectives.push_back(index);
  }

  Answer answerOfClose() const {
    if (!isOpen()) return kModeling;
    if (objectives.empty()) return "At least one objective is required in the model.";
    for (const int sum : sums) {
      if (!table[static_cast<std::size_t>(sum)].operands.empty()) continue;
      return "Number of operands (0) is too small: at least 1 operands are expected for " +
             textOf(sum) + ".";
    }
    return std::nullopt;
  }

  void close() {
    const Answer answer = answerOfClose();
    expect(answer, [&] { model.close(); });
    if (answer) return;
    state = OXState::Stopped;
    for (Expected& expected : table) {
      if (expected.isDecision) expected.value = 0;
    }
  }

  void open() {
    expect(onlyStopped(), [&] { model.open(); });
    if (!isOpen()) state = OXState::Modeling;
  }

  void setValue() {
    if (table.empty()) return;
    const auto index = static_cast<int>(draw(table.size()));
    const auto value = static_cast<long long>(draw(3));
    Answer answer = onlyPausedOrStopped();
    if (!answer && !table[static_cast<std::size_t>(index)].isDecision) {
      answer = "Only decisions can be set.";
    } else if (!answer && value == 2) {
      answer = "The only allowed values are 0 or 1";
    }
    expect(answer, [&] { at(index)->setValue(value); });
    if (!answer) table[static_cast<std::size_t>(index)].value = value;
  }

  long long valueOf(int index) const {
    const Expected& expected = table[static_cast<std::size_t>(index)];
    long long value = expected.value;
    for (const int operand : expected.operands) value += valueOf(operand);
    return value;
  }

  void readValues() {
    if (isOpen()) {
      for (const auto& [value, index] : constants) EXPECT_EQ(at(index)->getValue(), value);
      return;
    }
    // Chains of sums of sums grow too fast to be read whole.
    for (int read = 0; read < 5; ++read) {
      const auto index = static_cast<int>(draw(table.size()));
      EXPECT_EQ(at(index)->getIntValue(), valueOf(index));
    }
  }

  void setName() {
    if (table.empty()) return;
    const auto index = static_cast<int>(draw(table.size()));
    const std::string name(draw(3), 'n');
    Answer answer = onlyModeling();
    if (!answer && name.empty()) answer = "Argument name cannot be an empty string.";
    if (!answer && isNameTaken(name)) {
      answer = "An operator with name \"" + name + "\" already exists.";
    }
    expect(answer, [&] { at(index)->setName(name); });
    if (!answer) table[static_cast<std::size_t>(index)].name = name;
  }

  bool isNameTaken(const std::string& name) const {
    for (const Expected& expected : table) {
      if (expected.name == name) return true;
    }
    return false;
  }

  void createPhase() {
    expect(onlyStopped(), [&] { solver.createPhase(); });
    if (!isOpen()) ++nbPhases;
  }

  void readPhase() {
    const int index = anyIndex(static_cast<std::size_t>(nbPhases));
    Answer answer = onlyPausedOrStopped();
    if (!answer && (index < 0 || index >= nbPhases)) answer = badIndex("Phase", index, nbPhases);
    expect(answer, [&] { solver.getPhase(index)->getTimeLimit(); });
  }

  void setSeed() {
    const int seed = static_cast<int>(draw(3)) - 1;
    Answer answer = onlyStopped();
    if (!answer && seed < 0) answer = "Argument seed must be positive.";
    expect(answer, [&] { solver.getParam()->setSeed(seed); });
  }

  void setBound() {
    const int index = anyIndex(objectives.size());
    const int nbObjectives = static_cast<int>(objectives.size());
    Answer answer = onlyStopped();
    if (!answer && (index < 0 || index >= nbObjectives)) {
      answer = badIndex("Objective", index, nbObjectives);
    }
    expect(answer, [&] { solver.getParam()->setIntObjectiveBound(index, 100); });
  }

  OXExpression* at(int index) { return model.getExpression(index); }
  OXExpression* orNull(int index) { return index < 0 ? nullptr : at(index); }

  std::string textOf(int index) const {
    const std::string& name = table[static_cast<std::size_t>(index)].name;
    return "Expression " + std::to_string(index) + " (type = sum" +
           (name.empty() ? "" : ", name = " + name) + ")";
  }

  void compare() {
    EXPECT_EQ(solver.getState(), state);
    EXPECT_EQ(model.isClosed(), !isOpen());
    EXPECT_EQ(model.getNbExpressions(), static_cast<int>(table.size()));
    EXPECT_EQ(model.getNbConstraints(), nbConstraints);
    EXPECT_EQ(model.getNbObjectives(), static_cast<int>(objectives.size()));
    std::size_t nbOperands = 0;
    for (const int sum : sums) nbOperands += table[static_cast<std::size_t>(sum)].operands.size();
    EXPECT_EQ(model.getNbOperands(), static_cast<int>(nbOperands));
  }

  std::mt19937 random;
  Ombrix solver;
  OXModel& model = *solver.getModel();
  OXState state = OXState::Modeling;
  std::vector<Expected> table;
  std::map<long long, int> constants;
  std::vector<int> sums;
  std::vector<int> objectives;
  int nbConstraints = 0;
  int nbPhases = 0;
};

TEST(CallSequencesTest, EveryCallInAnyOrderGivesItsOneAnswer) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomCaller caller(seed);
    for (int step = 0; step < 120; ++step) {
      SCOPED_TRACE("step " + std::to_string(step));
      caller.makeCall();
      if (::testing::Test::HasFailure()) return;
    }
  }
}

}  // namespace
}  // namespace ombrix
