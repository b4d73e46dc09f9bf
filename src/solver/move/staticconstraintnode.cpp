#include "solver/move/staticconstraintnode.h"

#include <iostream>

#include "solver/move/moveanalysis.h"

namespace ombrix {

namespace {

void printValue(std::uint8_t domain, OXValue value) {
  if (domain == kDoubleDomain) {
    std::cout << value.doubleValue;
  } else {
    std::cout << value.intValue;
  }
}

}  // namespace

void StaticConstraintNode::printOperands(const MoveAnalysis& analysis, const char* start,
                                         bool withCoefficients) const {
  const DagFixedFields& fields = *analysis.fixedFieldsRef;
  std::cout << start;
  for (std::uint32_t i = 0; i < fields.nbOperands(node); ++i) {
    if (i > 0) std::cout << " , ";
    if (withCoefficients) {
      printValue(fields.domains[node], fields.scalarsOf(node)[i]);
      std::cout << ' ';
    }
    const std::uint32_t operand = fields.operand(node, i);
    const std::uint32_t operandIndex = analysis.staticByNode[operand];
    if (operandIndex != kNone) {
      analysis.staticNodes[operandIndex]->print(analysis);
    } else {
      printValue(fields.domains[operand], *fields.scalarsOf(operand));
    }
  }
  std::cout << ')';
}

}  // namespace ombrix
