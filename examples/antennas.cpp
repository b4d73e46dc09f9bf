// Antennas: place antennas on a ring around the users, so that the power needed to reach every user
// from the antenna nearest to him is smallest. Power grows with the square of the distance.
//
// File: "antennas users radius", then for each user his two coordinates, seen from the centre of
// the ring, and his demand. An antenna stands on one of 256 positions on the ring; position p is at
// the angle 2 pi p / 256.

#include <vector>

#include "exampleprogram.h"
#include "instancefile.h"

using namespace ombrix;

namespace {

constexpr int kNbBits = 8;  ///< of a position
constexpr double kFullTurn = 6.283185307179586;

struct User {
  explicit User(examples::InstanceFile& file)
      : x(file.nextDouble("a coordinate")),
        y(file.nextDouble("a coordinate")),
        demand(file.nextDouble("a demand")) {}

  double x;
  double y;
  double demand;
};

struct Instance {
  explicit Instance(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    nbAntennas = file.nextInt(1, 10000, "the number of antennas");
    const long long nbUsers = file.nextInt(1, 1000000, "the number of users");
    radius = file.nextDouble("the radius");
    for (long long j = 0; j < nbUsers; ++j) users.emplace_back(file);
  }

  long long nbAntennas = 0;
  double radius = 0.0;
  std::vector<User> users;
};

/// A position in binary digits, and where on the ring of radius 1 it lies.
struct Antenna {
  explicit Antenna(OXModel& model) : position(model.createExpression(OXOperator::Sum)) {
    for (int b = 0; b < kNbBits; ++b) {
      OXExpression* bit = model.createExpression(OXOperator::Bool);
      position->addOperand(examples::times(model, 1LL << b, bit));
    }
    OXExpression* angle = examples::weighted(model, kFullTurn / (1 << kNbBits), position);
    x = model.createExpression(OXOperator::Cos, angle);
    y = model.createExpression(OXOperator::Sin, angle);
  }

  OXExpression* position;
  OXExpression* x;
  OXExpression* y;
};

void run(const examples::Arguments& arguments) {
  const Instance instance(arguments.instance);
  Ombrix solver;
  OXModel& model = *solver.getModel();
  std::vector<Antenna> antennas;
  for (long long i = 0; i < instance.nbAntennas; ++i) antennas.emplace_back(model);

  // The square of the distance between a user u and an antenna a on the ring is r^2 + u^2 - 2 u a,
  // so the nearest antenna is the one with the largest product u a.
  const double r = instance.radius;
  OXExpression* power = model.createExpression(OXOperator::Sum);
  for (const User& user : instance.users) {
    OXExpression* nearest = model.createExpression(OXOperator::Max);
    for (const Antenna& antenna : antennas) {
      nearest->addOperand(model.createExpression(OXOperator::Sum,
                                                 examples::weighted(model, r * user.x, antenna.x),
                                                 examples::weighted(model, r * user.y, antenna.y)));
    }
    power->addOperand(user.demand * (r * r + user.x * user.x + user.y * user.y));
    power->addOperand(examples::weighted(model, -2.0 * user.demand, nearest));
  }
  model.addObjective(power, OXObjectiveDirection::Minimize);
  model.close();
  examples::solveFor(solver, arguments.seconds);

  std::vector<long long> positions;
  for (const Antenna& antenna : antennas) positions.push_back(antenna.position->getIntValue());
  examples::report(solver, arguments, power->getDoubleValue(), positions);
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
