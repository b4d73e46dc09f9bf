#ifndef OMBRIX_TESTS_SUPPORT_MIRRORCHECKS_H
#define OMBRIX_TESTS_SUPPORT_MIRRORCHECKS_H

#include <gtest/gtest.h>

#include "solver/kernel/dag.h"
#include "solver/move/autonomousstructure.h"

namespace ombrix::test {

/// Every mirrored node passes its check and has the given value of the Dag, and the violated ones
/// are those at 0 among the constraints.
inline void expectMirrorAgrees(const AutonomousStructure& structure, const NodeValues& values) {
  const DagFixedFields& fields = *structure.dag->fixedFields;
  for (const DynamicConstraintNode* node : structure.dynamicNodes) {
    const std::uint32_t id = node->getStatic()->node;
    ASSERT_NO_THROW(node->check()) << fields.getTypeName(id);
    if (fields.domains[id] == kDoubleDomain) {
      ASSERT_TRUE(approxEqual(node->getDoubleValue(), values[id].doubleValue));
    } else {
      ASSERT_EQ(node->getValue(), values[id].intValue) << fields.getTypeName(id);
    }
    if (fields.isConstraint(id)) {
      ASSERT_EQ(structure.violatedNodes.contains(node->getStatic()->index),
                values[id].intValue == 0);
    }
  }
}

}  // namespace ombrix::test

#endif
