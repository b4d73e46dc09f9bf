// Travelling salesman: visit every city once and return, on the shortest tour.
//
// File: TSPLIB, symmetric, with EDGE_WEIGHT_TYPE EUC_2D, ATT, GEO or EXPLICIT, the last one as
// FULL_MATRIX, LOWER_DIAG_ROW or UPPER_ROW.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "exampleprogram.h"
#include "instancefile.h"

using namespace ombrix;

namespace {

class Instance {
public:
  explicit Instance(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    while (distances.empty()) {
      std::string key = file.nextWord("a key of the header or a section");
      if (key.back() == ':') key.pop_back();
      if (key == "DIMENSION") {
        n = readDimension(file);
      } else if (key == "EDGE_WEIGHT_TYPE") {
        type = valueOf(file);
      } else if (key == "EDGE_WEIGHT_FORMAT") {
        format = valueOf(file);
      } else if (key == "NODE_COORD_SECTION") {
        readCoordinates(file);
      } else if (key == "EDGE_WEIGHT_SECTION") {
        readDistances(file);
      } else {
        file.skipLine();
      }
    }
  }

  long long distance(std::size_t i, std::size_t j) const { return distances[i * n + j]; }

  std::size_t n = 0;

private:
  using Point = std::pair<double, double>;

  static std::string valueOf(examples::InstanceFile& file) {
    const std::string word = file.nextWord("a value");
    return word == ":" ? file.nextWord("a value") : word;
  }

  static std::size_t readDimension(examples::InstanceFile& file) {
    std::size_t n = 0;
    const std::string text = valueOf(file);
    const auto end = std::from_chars(text.data(), text.data() + text.size(), n);
    if (end.ec != std::errc() || end.ptr != text.data() + text.size() || n < 2 || n > 1000) {
      throw std::runtime_error("found DIMENSION " + text + ", expected 2 to 1000 cities");
    }
    return n;
  }

  void readCoordinates(examples::InstanceFile& file) {
    std::vector<Point> cities(n);
    for (Point& city : cities) {
      file.nextInt("the number of a city");
      city.first = file.nextDouble("a coordinate");
      city.second = file.nextDouble("a coordinate");
    }
    distances.resize(n * n);
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = 0; j < n; ++j) {
        if (i != j) distances[i * n + j] = distanceBetween(cities[i], cities[j]);
      }
    }
  }

  long long distanceBetween(const Point& a, const Point& b) const {
    const double dx = a.first - b.first;
    const double dy = a.second - b.second;
    if (type == "EUC_2D") return std::llround(std::floor(std::sqrt(dx * dx + dy * dy) + 0.5));
    if (type == "ATT")
      return static_cast<long long>(std::ceil(std::sqrt((dx * dx + dy * dy) / 10)));
    if (type == "GEO") return onTheGlobe(a, b);
    throw std::runtime_error("found EDGE_WEIGHT_TYPE " + type + ", expected EUC_2D, ATT or GEO");
  }

  /// The coordinates are degrees before the point and minutes behind it.
  static long long onTheGlobe(const Point& a, const Point& b) {
    const auto radians = [](double x) {
      return 3.141592 * (std::trunc(x) + 5.0 * (x - std::trunc(x)) / 3.0) / 180.0;
    };
    const double q1 = std::cos(radians(a.second) - radians(b.second));
    const double q2 = std::cos(radians(a.first) - radians(b.first));
    const double q3 = std::cos(radians(a.first) + radians(b.first));
    const double angle = std::acos(0.5 * ((1.0 + q1) * q2 - (1.0 - q1) * q3));
    return static_cast<long long>(6378.388 * angle + 1.0);
  }

  void readDistances(examples::InstanceFile& file) {
    const bool isFull = format == "FULL_MATRIX";
    if (!isFull && format != "LOWER_DIAG_ROW" && format != "UPPER_ROW") {
      throw std::runtime_error("found EDGE_WEIGHT_FORMAT " + format +
                               ", expected FULL_MATRIX, LOWER_DIAG_ROW or UPPER_ROW");
    }
    distances.resize(n * n);
    for (std::size_t i = 0; i < n; ++i) {
      const std::size_t first = format == "UPPER_ROW" ? i + 1 : 0;
      const std::size_t end = format == "LOWER_DIAG_ROW" ? i + 1 : n;
      for (std::size_t j = first; j < end; ++j) {
        distances[i * n + j] = file.nextInt("a distance");
        if (!isFull) distances[j * n + i] = distances[i * n + j];
      }
    }
  }

  std::string type;
  std::string format;
  std::vector<long long> distances;
};

/// The distances stand in one array of constants, row after row, and a leg looks its own up. So a
/// leg takes one sum and one look-up, where products of decisions would take n for each city.
OXExpression* createLength(OXModel& model, const Instance& instance,
                           const std::vector<OXExpression*>& cityAt) {
  const std::size_t n = instance.n;
  OXExpression* distances = model.createExpression(OXOperator::Array);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) distances->addOperand(instance.distance(i, j));
  }
  OXExpression* length = model.createExpression(OXOperator::Sum);
  for (std::size_t p = 0; p < n; ++p) {
    OXExpression* leg = model.createExpression(
        OXOperator::Sum, examples::times(model, static_cast<long long>(n), cityAt[p]),
        cityAt[(p + 1) % n]);
    length->addOperand(model.createExpression(OXOperator::At, distances, leg));
  }
  return length;
}

/// Starts the search from the tour that always goes on to the nearest city not yet visited: good in
/// most places, so that the search spends its time on the few bad ones.
void startAtNearestNeighbours(const Instance& instance, const examples::Table& isAt) {
  std::vector<std::size_t> left(instance.n);
  std::iota(left.begin(), left.end(), std::size_t{0});
  std::size_t city = 0;
  for (const auto& position : isAt) {
    const auto nearest =
        std::min_element(left.begin(), left.end(), [&](std::size_t i, std::size_t j) {
          return instance.distance(city, i) < instance.distance(city, j);
        });
    city = *nearest;
    left.erase(nearest);
    position[city]->setValue(1);
  }
}

void run(const examples::Arguments& arguments) {
  const Instance instance(arguments.instance);
  Ombrix solver;
  OXModel& model = *solver.getModel();
  // City i is visited at position p: the rows are the positions, in the order of the tour.
  const examples::Table isAt = examples::createAssignment(model, instance.n);
  OXExpression* length = createLength(model, instance, examples::createChosenColumns(model, isAt));
  model.addObjective(length, OXObjectiveDirection::Minimize);
  model.close();
  // The valleys are many: a search that goes back further ends lower.
  solver.getParam()->setAnnealingLevel(9);
  startAtNearestNeighbours(instance, isAt);
  examples::solveFor(solver, arguments.seconds);
  examples::report(solver, arguments, static_cast<double>(length->getIntValue()),
                   examples::chosenColumns(isAt));
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
