#ifndef OMBRIX_SOLVER_NODE_SELECTORS_H
#define OMBRIX_SOLVER_NODE_SELECTORS_H

#include <cstdint>
#include <ostream>

#include "solver/kernel/dag.h"

namespace ombrix {

/// The coefficients of an aggregate, so that each family is written once. A selector is
/// made where it is used, from the node's number: nothing is stored in the node.

/// Every coefficient is 1, and the compiler drops the multiplications.
class IntOneSelector {
public:
  IntOneSelector(const Dag&, std::uint32_t) {}

  std::int64_t operator[](std::uint32_t) const { return 1; }
  /// The one number of a product.
  std::int64_t scalar() const { return 1; }
};

/// The coefficient at a position is the node's scalar there.
class IntScalarSelector {
public:
  IntScalarSelector(const Dag& dag, std::uint32_t id)
      : scalars(dag.fixedFields->linkedScalarsOf(id)) {}

  std::int64_t operator[](std::uint32_t position) const { return scalars[position].intValue; }
  std::int64_t scalar() const { return scalars[0].intValue; }

private:
  const OXValue* scalars;
};

class DoubleOneSelector {
public:
  DoubleOneSelector(const Dag&, std::uint32_t) {}

  double operator[](std::uint32_t) const { return 1.0; }
  double scalar() const { return 1.0; }
};

class DoubleScalarSelector {
public:
  DoubleScalarSelector(const Dag& dag, std::uint32_t id)
      : scalars(dag.fixedFields->linkedScalarsOf(id)) {}

  double operator[](std::uint32_t position) const { return scalars[position].doubleValue; }
  double scalar() const { return scalars[0].doubleValue; }

private:
  const OXValue* scalars;
};

/// The line of a dump that shows the coefficients of a node.
template <typename Selector>
void printCoefficients(std::ostream& out, const Dag& dag, std::uint32_t id) {
  const Selector coefficients(dag, id);
  out << "coefficients ";
  for (std::uint32_t i = 0; i < dag.fixedFields->nbOperands(id); ++i) out << coefficients[i] << ' ';
  out << '\n';
}

}  // namespace ombrix

#endif
