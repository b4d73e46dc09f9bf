// Nurse rostering: give every employee a shift or a day off on each day, within the rules of work,
// so that requests and the wanted numbers of staff are met as well as can be.
//
// File: sections of lines with fields between commas, "#" before comments; see the readers below.
// Days count from 0 and the first one is a Monday.
//
// A day off is a shift like the others, so each day of an employee is a choice of exactly one, and
// the days of an employee follow one another: the moves that shift or turn a run of choices then
// shift stretches of work. All rules on work and rest are sums over the days off.

#include <algorithm>
#include <map>
#include <stdexcept>

#include "modelling.h"
#include "models.h"

namespace bench {

using namespace ombrix;

namespace {

using Words = std::vector<std::string>;

struct Shift {
  long long minutes = 0;
  std::vector<std::string> forbiddenNext;
};

struct Employee {
  std::vector<long long> mostShifts;
  long long mostMinutes = 0;
  long long leastMinutes = 0;
  std::size_t mostConsecutive = 0;
  std::size_t leastConsecutive = 0;
  std::size_t leastOff = 0;
  long long mostWeekends = 0;
};

struct Request {
  std::size_t employee;
  std::size_t day;
  std::size_t shift;
  long long weight;
};

struct Cover {
  std::size_t day;
  std::size_t shift;
  long long wanted;
  long long weightUnder;
  long long weightOver;
};

class Instance {
public:
  explicit Instance(const std::string& name) : fileName(name) {
    std::string section;
    for (const Words& words : readLines(fileName, ", \t\r")) {
      if (words.empty() || words[0][0] == '#') continue;
      if (words[0].rfind("SECTION_", 0) == 0) {
        section = words[0];
      } else {
        readLine(section, words);
      }
    }
    if (nbDays == 0 || shifts.empty() || employees.empty()) {
      throw std::runtime_error(fileName + ": expected a horizon, shifts and staff");
    }
  }

  std::size_t shiftOf(const std::string& word) const { return find(shiftNames, word, "shift"); }

  std::size_t nbDays = 0;
  std::vector<Shift> shifts;
  std::vector<Employee> employees;
  std::vector<std::pair<std::size_t, std::size_t>> daysOff;  ///< employee and day
  std::vector<Request> wanted;
  std::vector<Request> unwanted;
  std::vector<Cover> covers;

private:
  void readLine(const std::string& section, const Words& words) {
    if (section == "SECTION_HORIZON") {
      nbDays = static_cast<std::size_t>(toInteger(fileName, words[0]));
    } else if (section == "SECTION_SHIFTS") {
      readShift(words);
    } else if (section == "SECTION_STAFF") {
      readEmployee(words);
    } else if (section == "SECTION_DAYS_OFF") {
      const std::size_t employee = find(employeeNames, words[0], "employee");
      for (std::size_t i = 1; i < words.size(); ++i) daysOff.emplace_back(employee, day(words[i]));
    } else if (section == "SECTION_SHIFT_ON_REQUESTS") {
      wanted.push_back(readRequest(words));
    } else if (section == "SECTION_SHIFT_OFF_REQUESTS") {
      unwanted.push_back(readRequest(words));
    } else if (section == "SECTION_COVER") {
      needFields(words, 5);
      covers.push_back({day(words[0]), shiftOf(words[1]), toInteger(fileName, words[2]),
                        toInteger(fileName, words[3]), toInteger(fileName, words[4])});
    }
  }

  /// Name, minutes, and the shifts that cannot follow on the next day, with "|" between them.
  void readShift(const Words& words) {
    needFields(words, 2);
    shiftNames[words[0]] = shifts.size();
    Shift shift;
    shift.minutes = toInteger(fileName, words[1]);
    if (words.size() > 2) shift.forbiddenNext = parts(words[2]);
    shifts.push_back(shift);
  }

  /// Name, most shifts of each kind as in "E=14|L=7", most and least minutes, most and least
  /// shifts in a row, least days off in a row, most weekends.
  void readEmployee(const Words& words) {
    needFields(words, 8);
    employeeNames[words[0]] = employees.size();
    Employee employee;
    employee.mostShifts.assign(shifts.size(), static_cast<long long>(nbDays));
    for (const std::string& part : parts(words[1])) {
      const std::size_t sign = part.find('=');
      if (sign == std::string::npos) throw std::runtime_error(fileName + ": found " + part);
      employee.mostShifts[shiftOf(part.substr(0, sign))] =
          toInteger(fileName, part.substr(sign + 1));
    }
    employee.mostMinutes = toInteger(fileName, words[2]);
    employee.leastMinutes = toInteger(fileName, words[3]);
    employee.mostConsecutive = static_cast<std::size_t>(toInteger(fileName, words[4]));
    employee.leastConsecutive = static_cast<std::size_t>(toInteger(fileName, words[5]));
    employee.leastOff = static_cast<std::size_t>(toInteger(fileName, words[6]));
    employee.mostWeekends = toInteger(fileName, words[7]);
    employees.push_back(employee);
  }

  Request readRequest(const Words& words) const {
    needFields(words, 4);
    return {find(employeeNames, words[0], "employee"), day(words[1]), shiftOf(words[2]),
            toInteger(fileName, words[3])};
  }

  std::size_t day(const std::string& word) const {
    const auto number = static_cast<std::size_t>(toInteger(fileName, word));
    if (number >= nbDays) throw std::runtime_error(fileName + ": found day " + word);
    return number;
  }

  std::size_t find(const std::map<std::string, std::size_t>& names, const std::string& word,
                   const char* what) const {
    const auto found = names.find(word);
    if (found == names.end()) {
      throw std::runtime_error(fileName + ": found '" + word + "', expected a " + what);
    }
    return found->second;
  }

  void needFields(const Words& words, std::size_t count) const {
    if (words.size() < count) {
      throw std::runtime_error(fileName + ": found too few fields behind " + words[0]);
    }
  }

  static std::vector<std::string> parts(const std::string& word) {
    std::vector<std::string> found;
    for (std::size_t start = 0; start < word.size();) {
      const std::size_t end = std::min(word.find('|', start), word.size());
      if (end > start) found.push_back(word.substr(start, end - start));
      start = end + 1;
    }
    return found;
  }

  std::string fileName;
  std::map<std::string, std::size_t> shiftNames;
  std::map<std::string, std::size_t> employeeNames;
};

/// The decisions and rules of one employee.
class Roster {
public:
  Roster(OXModel& target, const Instance& read, std::size_t employee)
      : model(target), instance(read), rules(read.employees[employee]) {
    for (std::size_t d = 0; d < instance.nbDays; ++d) {
      OXExpression* chosen = model.createExpression(OXOperator::Sum);
      works.emplace_back();
      // The last column is the day off.
      for (std::size_t s = 0; s <= instance.shifts.size(); ++s) {
        works[d].push_back(createDecision(model, {employee, d, s}));
        chosen->addOperand(works[d][s]);
      }
      examples::requireEqual(model, chosen, 1);
      isOff.push_back(works[d].back());
    }
  }

  void post() {
    postSuccessions();
    postAmounts();
    postLongestWork();
    for (std::size_t length = 1; length < rules.leastConsecutive; ++length) forbidWork(length);
    for (std::size_t length = 1; length < rules.leastOff; ++length) forbidRest(length);
    postWeekends();
  }

  OXExpression* at(std::size_t day, std::size_t shift) const { return works[day][shift]; }
  OXExpression* off(std::size_t day) const { return isOff[day]; }

private:
  void postSuccessions() {
    for (std::size_t s = 0; s < instance.shifts.size(); ++s) {
      const std::vector<std::string>& forbidden = instance.shifts[s].forbiddenNext;
      if (forbidden.empty()) continue;
      for (std::size_t d = 0; d + 1 < instance.nbDays; ++d) {
        OXExpression* pair = model.createExpression(OXOperator::Sum, works[d][s]);
        for (const std::string& next : forbidden) {
          pair->addOperand(works[d + 1][instance.shiftOf(next)]);
        }
        examples::requireAtMost(model, pair, 1);
      }
    }
  }

  void postAmounts() {
    OXExpression* minutes = model.createExpression(OXOperator::Sum);
    for (std::size_t s = 0; s < instance.shifts.size(); ++s) {
      OXExpression* count = model.createExpression(OXOperator::Sum);
      for (std::size_t d = 0; d < instance.nbDays; ++d) {
        count->addOperand(works[d][s]);
        addTerm(model, minutes, instance.shifts[s].minutes, works[d][s]);
      }
      if (rules.mostShifts[s] < static_cast<long long>(instance.nbDays)) {
        examples::requireAtMost(model, count, rules.mostShifts[s]);
      }
    }
    examples::requireAtMost(model, minutes, rules.mostMinutes);
    examples::requireAtLeast(model, minutes, rules.leastMinutes);
  }

  /// Of one day more than may be worked in a row, one is off.
  void postLongestWork() {
    for (std::size_t d = 0; d + rules.mostConsecutive < instance.nbDays; ++d) {
      OXExpression* rest = model.createExpression(OXOperator::Sum);
      for (std::size_t i = 0; i <= rules.mostConsecutive; ++i) rest->addOperand(isOff[d + i]);
      examples::requireAtLeast(model, rest, 1);
    }
  }

  /// No stretch of work of just this length between two days off.
  void forbidWork(std::size_t length) {
    for (std::size_t d = 1; d + length < instance.nbDays; ++d) {
      OXExpression* rest = model.createExpression(OXOperator::Sum, isOff[d - 1], isOff[d + length]);
      for (std::size_t i = 0; i < length; ++i) addTerm(model, rest, -1, isOff[d + i]);
      examples::requireAtMost(model, rest, 1);
    }
  }

  /// No stretch of days off of just this length between two days of work.
  void forbidRest(std::size_t length) {
    for (std::size_t d = 1; d + length < instance.nbDays; ++d) {
      OXExpression* rest = model.createExpression(OXOperator::Sum);
      for (std::size_t i = 0; i < length; ++i) rest->addOperand(isOff[d + i]);
      addTerm(model, rest, -1, isOff[d - 1]);
      addTerm(model, rest, -1, isOff[d + length]);
      examples::requireAtMost(model, rest, static_cast<long long>(length) - 1);
    }
  }

  void postWeekends() {
    OXExpression* nbFree = model.createExpression(OXOperator::Sum);
    long long nbWeekends = 0;
    for (std::size_t saturday = 5; saturday + 1 < instance.nbDays; saturday += 7) {
      nbFree->addOperand(
          model.createExpression(OXOperator::And, isOff[saturday], isOff[saturday + 1]));
      ++nbWeekends;
    }
    if (nbWeekends > rules.mostWeekends) {
      examples::requireAtLeast(model, nbFree, nbWeekends - rules.mostWeekends);
    }
  }

  OXModel& model;
  const Instance& instance;
  const Employee& rules;
  examples::Table works;
  std::vector<OXExpression*> isOff;
};

/// What the staff of one shift costs: by how many they are too few, and too many.
void addCover(OXModel& model, OXExpression* cost, const std::vector<Roster>& rosters,
              const Cover& cover) {
  OXExpression* surplus = model.createExpression(OXOperator::Sum);
  OXExpression* lack = model.createExpression(OXOperator::Sum, model.createConstant(cover.wanted));
  for (const Roster& roster : rosters) {
    surplus->addOperand(roster.at(cover.day, cover.shift));
    addTerm(model, lack, -1, roster.at(cover.day, cover.shift));
  }
  surplus->addOperand(-cover.wanted);
  addTerm(model, cost, cover.weightOver,
          model.createExpression(OXOperator::Max, surplus, model.createConstant(0)));
  addTerm(model, cost, cover.weightUnder,
          model.createExpression(OXOperator::Max, lack, model.createConstant(0)));
}

}  // namespace

void buildNurse(OXModel& model, const std::string& fileName) {
  const Instance instance(fileName);
  std::vector<Roster> rosters;
  for (std::size_t e = 0; e < instance.employees.size(); ++e) {
    rosters.emplace_back(model, instance, e);
  }
  for (Roster& roster : rosters) roster.post();
  for (const auto& [employee, day] : instance.daysOff) {
    model.addConstraint(rosters[employee].off(day));
  }
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (const Cover& cover : instance.covers) addCover(model, cost, rosters, cover);
  long long offset = 0;
  for (const Request& request : instance.wanted) {
    offset += request.weight;
    addTerm(model, cost, -request.weight, rosters[request.employee].at(request.day, request.shift));
  }
  for (const Request& request : instance.unwanted) {
    addTerm(model, cost, request.weight, rosters[request.employee].at(request.day, request.shift));
  }
  if (offset != 0 || cost->getNbOperands() == 0) cost->addOperand(offset);
  model.addObjective(cost, OXObjectiveDirection::Minimize);
}

}  // namespace bench
