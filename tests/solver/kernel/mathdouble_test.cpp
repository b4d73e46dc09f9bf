#include "solver/kernel/mathdouble.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "support/failures.h"

namespace ombrix {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
const double kNan = std::nan("");

class MathDoubleTest : public testing::Test {
protected:
  void SetUp() override { errno = 0; }

  template <typename Action>
  static void expectRefused(const std::string& function, const std::string& explanation,
                            const Action& action) {
    test::expectFailure(5, "MathDouble::" + function, explanation, action);
    EXPECT_EQ(errno, 0) << "a failure that was reported leaves no mark";
  }
};

TEST_F(MathDoubleTest, DistanceRefusesInfinitiesOfTheSameSign) {
  EXPECT_EQ(MathDouble::dist(2.0, -1.5), 3.5);
  EXPECT_EQ(MathDouble::dist(kInf, -kInf), kInf);
  EXPECT_EQ(MathDouble::dist(1.0, -kInf), kInf);
  expectRefused("dist", "Cannot compute distance between two infinities",
                [] { MathDouble::dist(kInf, kInf); });
  expectRefused("dist", "Cannot compute distance between two infinities",
                [] { MathDouble::dist(kNan, 1.0); });
}

TEST_F(MathDoubleTest, DistanceDoesNotLookAtTheIndicator) {
  errno = EDOM;
  EXPECT_EQ(MathDouble::dist(1.0, 2.0), 1.0);
}

TEST_F(MathDoubleTest, SquareRoot) {
  EXPECT_EQ(MathDouble::sqrt(9.0), 3.0);
  EXPECT_EQ(MathDouble::sqrt(kInf), kInf);
  for (const double x : {-1.0, -kInf, kNan}) {
    expectRefused("sqrt", "Invalid square root operation (NaN or negative number provided)",
                  [x] { MathDouble::sqrt(x); });
  }
}

TEST_F(MathDoubleTest, Trigonometry) {
  EXPECT_EQ(MathDouble::cos(0.0), 1.0);
  EXPECT_EQ(MathDouble::sin(0.0), 0.0);
  EXPECT_EQ(MathDouble::tan(0.0), 0.0);
  for (const double x : {kInf, -kInf, kNan}) {
    expectRefused("cos", "Invalid cosine operation (NaN or infinity provided)",
                  [x] { MathDouble::cos(x); });
    expectRefused("sin", "Invalid sine operation (NaN or infinity provided)",
                  [x] { MathDouble::sin(x); });
    expectRefused("tan", "Invalid tangent operation (NaN or infinity provided)",
                  [x] { MathDouble::tan(x); });
  }
}

TEST_F(MathDoubleTest, Exponential) {
  EXPECT_EQ(MathDouble::exp(0.0), 1.0);
  EXPECT_EQ(MathDouble::exp(kInf), kInf);
  EXPECT_EQ(MathDouble::exp(1e9), kInf);
  EXPECT_EQ(MathDouble::exp(-kInf), 0.0);
  expectRefused("exp", "Invalid exponential operation (NaN provided)",
                [] { MathDouble::exp(kNan); });
}

TEST_F(MathDoubleTest, Logarithm) {
  EXPECT_EQ(MathDouble::log(1.0), 0.0);
  EXPECT_EQ(MathDouble::log(0.0), -kInf);
  EXPECT_EQ(MathDouble::log(kInf), kInf);
  for (const double x : {-1e-300, -kInf, kNan}) {
    expectRefused("log", "Invalid log operation (NaN or negative number provided)",
                  [x] { MathDouble::log(x); });
  }
}

TEST_F(MathDoubleTest, AnIndicatorLeftByAnotherComputationRefusesOnce) {
  errno = EDOM;
  expectRefused("sqrt", "Invalid square root operation (NaN or negative number provided)",
                [] { MathDouble::sqrt(4.0); });
  EXPECT_EQ(MathDouble::sqrt(4.0), 2.0);
}

TEST_F(MathDoubleTest, AnotherErrorOfTheHostIsNoDomainError) {
  errno = ERANGE;
  EXPECT_EQ(MathDouble::sqrt(4.0), 2.0);
}

TEST_F(MathDoubleTest, CeilForgivesAMillionthAboveAnInteger) {
  EXPECT_EQ(MathDouble::ceil(3.0000005), 3);
  EXPECT_EQ(MathDouble::ceil(3.000002), 4);
  EXPECT_EQ(MathDouble::ceil(-2.5), -2);
}

TEST_F(MathDoubleTest, FloorForgivesAMillionthBelowAnInteger) {
  EXPECT_EQ(MathDouble::floor(2.9999995), 3);
  EXPECT_EQ(MathDouble::floor(2.999998), 2);
  EXPECT_EQ(MathDouble::floor(-2.5), -3);
}

TEST_F(MathDoubleTest, CeilAndFloorRefuseWhatNoIntegerHolds) {
  for (const double x : {9.3e18, -9.3e18, kIntLimit, -kIntLimit, kInf, -kInf}) {
    expectRefused("ceil", "Invalid ceil operation (out of bounds)", [x] { MathDouble::ceil(x); });
    expectRefused("floor", "Invalid floor operation (out of bounds)",
                  [x] { MathDouble::floor(x); });
  }
  EXPECT_EQ(MathDouble::ceil(-9.2e18), -9200000000000000000);
  EXPECT_EQ(MathDouble::floor(9.2e18), 9200000000000000000);
}

TEST_F(MathDoubleTest, CeilAndFloorLetANaNPass) {
  EXPECT_EQ(MathDouble::ceil(kNan), kIntMin);
  EXPECT_EQ(MathDouble::floor(kNan), kIntMin);
}

TEST_F(MathDoubleTest, PowersZeroAndOneComeFirst) {
  EXPECT_EQ(MathDouble::pow(0.0, 0.0), 1.0);
  EXPECT_EQ(MathDouble::pow(kNan, -0.0), 1.0);
  EXPECT_EQ(MathDouble::pow(-kInf, 0.0), 1.0);
  EXPECT_EQ(MathDouble::pow(-3.5, 1.0), -3.5);
  expectRefused("pow", "Invalid pow operation", [] { MathDouble::pow(kNan, 1.0); });
}

TEST_F(MathDoubleTest, PowersOfNaNAreRefused) {
  expectRefused("pow", "Invalid pow operation", [] { MathDouble::pow(kNan, 2.0); });
  expectRefused("pow", "Invalid pow operation", [] { MathDouble::pow(2.0, kNan); });
}

TEST_F(MathDoubleTest, NegativePowersOfFiniteBasesAreInfinite) {
  EXPECT_EQ(MathDouble::pow(2.0, -1.0), kInf);
  EXPECT_EQ(MathDouble::pow(-2.0, -1.0), -kInf);
  EXPECT_EQ(MathDouble::pow(-2.0, -0.5), -kInf);
  EXPECT_EQ(MathDouble::pow(0.0, -2.0), kInf);
  EXPECT_EQ(MathDouble::pow(-0.0, -2.0), -kInf);
}

TEST_F(MathDoubleTest, NegativePowersOfInfinitiesAreThoseOfTheLibrary) {
  EXPECT_EQ(MathDouble::pow(kInf, -2.0), 0.0);
  EXPECT_EQ(MathDouble::pow(-kInf, -2.0), 0.0);
  expectRefused("pow", "Invalid pow operation (non integer exponent with negative base)",
                [] { MathDouble::pow(-kInf, -0.5); });
}

TEST_F(MathDoubleTest, FractionalPowersOfNegativeBasesAreRefused) {
  EXPECT_EQ(MathDouble::pow(-2.0, 3.0), -8.0);
  EXPECT_EQ(MathDouble::pow(2.0, 0.5), std::sqrt(2.0));
  expectRefused("pow", "Invalid pow operation (non integer exponent with negative base)",
                [] { MathDouble::pow(-2.0, 0.5); });
}

TEST_F(MathDoubleTest, AnInfiniteExponentHasNoFractionalPart) {
  EXPECT_EQ(MathDouble::pow(-2.0, kInf), kInf);
  EXPECT_EQ(MathDouble::pow(-0.5, kInf), 0.0);
}

TEST_F(MathDoubleTest, TheIndicatorRefusesAPowerWhicheverStepGaveIt) {
  for (const double exponent : {0.0, 1.0, -1.0, 2.0}) {
    errno = EDOM;
    expectRefused("pow", "Invalid pow operation", [=] { MathDouble::pow(2.0, exponent); });
  }
}

}  // namespace
}  // namespace ombrix
