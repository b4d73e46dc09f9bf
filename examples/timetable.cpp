// Timetable: give the lessons of a school their periods of the week, so that pupils and teachers
// wait for as few idle periods as possible. A class and a teacher have at most one lesson at a
// time, there is a room for every lesson, and no course meets twice a day.
//
// File: "days periods rooms", "classes teachers courses", for each course its class, its teacher
// and its lessons a week, then the number of refusals and for each a teacher and a period of the
// week at which this teacher cannot teach. Classes, teachers and periods count from 0.
//
// With a solution file, the environment is kept beside it, in SOLUTION_FILE.oxb.gz. Such a file can
// be given in place of the instance, here and to the program ombrix: the search goes on from the
// timetable in it, and nothing has to be built again.

#include <charconv>
#include <stdexcept>
#include <string>
#include <vector>

#include "exampleprogram.h"
#include "instancefile.h"

using namespace ombrix;

namespace {

constexpr const char* kEnvironment = ".oxb.gz";

struct Course {
  std::size_t schoolClass = 0;
  std::size_t teacher = 0;
  long long nbLessons = 0;
};

struct Instance {
  explicit Instance(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    nbDays = count(file, "the number of days");
    nbPeriods = count(file, "the number of periods");
    nbRooms = file.nextInt(1, 1000, "the number of rooms");
    nbClasses = count(file, "the number of classes");
    nbTeachers = count(file, "the number of teachers");
    courses.resize(count(file, "the number of courses"));
    for (Course& course : courses) {
      course.schoolClass = below(file, nbClasses, "a class");
      course.teacher = below(file, nbTeachers, "a teacher");
      course.nbLessons = file.nextInt(1, static_cast<long long>(nbDays), "lessons a week");
    }
    refuses.assign(nbTeachers, std::vector<bool>(nbDays * nbPeriods));
    for (long long left = file.nextInt(0, 1000000, "the number of refusals"); left > 0; --left) {
      const std::size_t teacher = below(file, nbTeachers, "a teacher");
      refuses[teacher][below(file, nbDays * nbPeriods, "a period of the week")] = true;
    }
  }

  static std::size_t count(examples::InstanceFile& file, const std::string& expected) {
    return static_cast<std::size_t>(file.nextInt(1, 1000, expected));
  }

  static std::size_t below(examples::InstanceFile& file, std::size_t end,
                           const std::string& expected) {
    return static_cast<std::size_t>(file.nextInt(0, static_cast<long long>(end) - 1, expected));
  }

  std::size_t nbDays = 0;
  std::size_t nbPeriods = 0;
  long long nbRooms = 0;
  std::size_t nbClasses = 0;
  std::size_t nbTeachers = 0;
  std::vector<Course> courses;
  std::vector<std::vector<bool>> refuses;
};

/// Builds the model of a week. The lessons of a course are alike, so a decision says that the
/// course meets in a period and the number of its lessons is the sum of its decisions.
class Week {
public:
  Week(OXModel& built, const Instance& given) : model(built), instance(given) {
    const std::size_t nbSlots = instance.nbDays * instance.nbPeriods;
    byRoom = sums(1, nbSlots);
    byClass = sums(instance.nbClasses, nbSlots);
    byTeacher = sums(instance.nbTeachers, nbSlots);
    for (std::size_t c = 0; c < instance.courses.size(); ++c) addCourse(c);
    requireAtMost(byRoom, instance.nbRooms);
    requireAtMost(byClass, 1);
    requireAtMost(byTeacher, 1);
    idle = model.createExpression(OXOperator::Sum);
    addIdlePeriods(byClass);
    addIdlePeriods(byTeacher);
    model.addObjective(idle, OXObjectiveDirection::Minimize);
  }

private:
  /// Lines of sums over the periods of the week, one line for each room, class or teacher.
  examples::Table sums(std::size_t nbLines, std::size_t nbSlots) {
    examples::Table table(nbLines, std::vector<OXExpression*>(nbSlots));
    for (auto& line : table) {
      for (OXExpression*& sum : line) sum = model.createExpression(OXOperator::Sum, zero());
    }
    return table;
  }

  OXExpression* zero() { return model.createConstant(0); }

  /// A period that the teacher refuses gets no decision at all.
  void addCourse(std::size_t c) {
    const Course& course = instance.courses[c];
    OXExpression* nbLessons = model.createExpression(OXOperator::Sum);
    for (std::size_t day = 0; day < instance.nbDays; ++day) {
      OXExpression* today = model.createExpression(OXOperator::Sum, zero());
      for (std::size_t period = 0; period < instance.nbPeriods; ++period) {
        const std::size_t slot = day * instance.nbPeriods + period;
        if (instance.refuses[course.teacher][slot]) continue;
        OXExpression* meets = model.createExpression(OXOperator::Bool);
        meets->setName("course " + std::to_string(c) + " slot " + std::to_string(slot));
        for (OXExpression* sum :
             {today, nbLessons, byRoom[0][slot], byClass[course.schoolClass][slot],
              byTeacher[course.teacher][slot]}) {
          sum->addOperand(meets);
        }
      }
      examples::requireAtMost(model, today, 1);
    }
    if (nbLessons->getNbOperands() == 0) {
      throw std::runtime_error("the teacher of course " + std::to_string(c) + " is never there");
    }
    examples::requireEqual(model, nbLessons, course.nbLessons);
  }

  void requireAtMost(const examples::Table& table, long long most) {
    for (const auto& line : table) {
      for (OXExpression* sum : line) examples::requireAtMost(model, sum, most);
    }
  }

  void addIdlePeriods(const examples::Table& table) {
    for (const auto& line : table) {
      for (std::size_t day = 0; day < instance.nbDays; ++day) {
        const auto first = line.begin() + static_cast<std::ptrdiff_t>(day * instance.nbPeriods);
        idle->addOperand(
            idlePeriods({first, first + static_cast<std::ptrdiff_t>(instance.nbPeriods)}));
      }
    }
  }

  /// From the first lesson of a day to the last, less the lessons: two maxima give the ends, the
  /// first one counted from the evening. A day off comes out below 0.
  OXExpression* idlePeriods(const std::vector<OXExpression*>& day) {
    const auto nbPeriods = static_cast<long long>(day.size());
    OXExpression* last = model.createExpression(OXOperator::Max);
    OXExpression* first = model.createExpression(OXOperator::Max);
    OXExpression* idleOrOff =
        model.createExpression(OXOperator::Sum, last, first, model.createConstant(-nbPeriods));
    for (long long p = 0; p < nbPeriods; ++p) {
      OXExpression* isBusy = day[static_cast<std::size_t>(p)];
      last->addOperand(examples::times(model, p + 1, isBusy));
      first->addOperand(examples::times(model, nbPeriods - p, isBusy));
      idleOrOff->addOperand(examples::times(model, -1, isBusy));
    }
    return model.createExpression(OXOperator::Max, idleOrOff, zero());
  }

  OXModel& model;
  const Instance& instance;
  examples::Table byRoom;
  examples::Table byClass;
  examples::Table byTeacher;
  OXExpression* idle = nullptr;
};

bool isEnvironment(const std::string& fileName) {
  return fileName.ends_with(kEnvironment);
}

/// The number behind the last space of a name.
long long slotOf(const std::string& name) {
  long long slot = -1;
  const std::size_t start = name.rfind(' ') + 1;
  std::from_chars(name.data() + start, name.data() + name.size(), slot);
  if (slot < 0) {
    throw std::runtime_error("found a decision named '" + name + "', expected 'course N slot N'");
  }
  return slot;
}

/// The periods of all lessons, course after course, from the names of the decisions: they say the
/// same whether the model was built here or came from a file.
std::vector<long long> lessons(const OXModel& model) {
  std::vector<long long> slots;
  for (int i = 0; i < model.getNbDecisions(); ++i) {
    const OXExpression* meets = model.getDecision(i);
    if (meets->getIntValue() != 0) slots.push_back(slotOf(meets->getName()));
  }
  return slots;
}

void run(const examples::Arguments& arguments) {
  Ombrix solver;
  OXModel& model = *solver.getModel();
  if (isEnvironment(arguments.instance)) {
    solver.loadEnvironment(arguments.instance);
  } else {
    const Instance instance(arguments.instance);
    const Week week(model, instance);
    model.close();
  }
  examples::solveFor(solver, arguments.seconds);
  examples::report(solver, arguments, static_cast<double>(model.getObjective(0)->getIntValue()),
                   lessons(model));
  if (!arguments.solutionFile.empty()) {
    solver.saveEnvironment(arguments.solutionFile + kEnvironment);
  }
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
