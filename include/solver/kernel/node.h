#ifndef OMBRIX_SOLVER_KERNEL_NODE_H
#define OMBRIX_SOLVER_KERNEL_NODE_H

#include <cstdint>

#include "solver/kernel/oxvalue.h"

namespace ombrix {

class Dag;
class DagFixedFields;

/// The base of all node objects of a Dag. A node's value is not in the object but in two arrays of
/// the Dag: values holds the last accepted move, tValues the open one. eval reads both of its
/// operands and its own incremental state and writes only its own entry of tValues; commit and
/// rollback settle the move. So a rejected move undoes nothing. A node does not know its number: it
/// is an argument of every operation.
///
/// The picking operations go from a node to a decision whose change should move the node in the
/// wanted direction; they answer false when they find none.
class Node {
public:
  virtual ~Node() = default;

  /// Whether incremental state and values agree with a computation from nothing. No move is open.
  virtual bool isConsistent(const Dag& dag, std::uint32_t id) const = 0;
  /// Dumps the node and raises code 6 if it is not consistent.
  virtual void check(const Dag& dag, std::uint32_t id) const;
  /// Writes the node to the standard output.
  virtual void dump(const Dag& dag, std::uint32_t id) const;

  virtual bool pickForTarget(const Dag& dag, std::uint32_t id, std::uint32_t& rng, OXValue& target,
                             std::uint32_t& decision, OXValue& decisionValue) const;
  virtual bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                              std::uint32_t& decision) const = 0;
  virtual bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                              std::uint32_t& decision) const = 0;
  virtual bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                            std::uint32_t& decision) const = 0;

  /// How far a constraint is from satisfied, on values.
  virtual std::int64_t violation(const Dag& dag, std::uint32_t id) const;
  /// The change of the violation under the open move.
  virtual std::int64_t violationDelta(const Dag& dag, std::uint32_t id) const;

  // A sum as the two sets of operand positions that can still rise and that can still fall.
  virtual std::uint32_t nbNotMaxNodes(const Dag& dag, std::uint32_t id) const;
  virtual std::uint32_t nbNotMinNodes(const Dag& dag, std::uint32_t id) const;
  virtual std::uint32_t notMaxNodeAt(const Dag& dag, std::uint32_t id, std::uint32_t i) const;
  virtual std::uint32_t notMinNodeAt(const Dag& dag, std::uint32_t id, std::uint32_t i) const;
  virtual bool isNotMaxNode(const Dag& dag, std::uint32_t id, std::uint32_t position) const;
  virtual bool isNotMinNode(const Dag& dag, std::uint32_t id, std::uint32_t position) const;
  /// A random position, or kNone when there is none.
  virtual std::uint32_t randomNotMaxNode(const Dag& dag, std::uint32_t id,
                                         std::uint32_t& rng) const;
  virtual std::uint32_t randomNotMinNode(const Dag& dag, std::uint32_t id,
                                         std::uint32_t& rng) const;

  /// Computes the value and all incremental state from the operands' values.
  virtual void init(Dag& dag, std::uint32_t id) = 0;
  virtual void eval(Dag& dag, std::uint32_t id) const;
  virtual void commit(Dag& dag, std::uint32_t id);
  virtual void rollback(Dag& dag, std::uint32_t id);
  /// The operand at a position changed in the open move.
  virtual void operandChanged(std::uint32_t position, const DagFixedFields& fields,
                              std::uint32_t id);

protected:
  /// The lines that every dump begins with; the number stands behind the given label.
  static void dumpCommon(const Dag& dag, std::uint32_t id, const char* numberLabel);
};

/// A node with a boolean or integer value computed from operands.
class NodeInner : public Node {
public:
  bool isConsistent(const Dag& dag, std::uint32_t id) const override;
  void init(Dag& dag, std::uint32_t id) override;

  /// The value from the operands' committed values, without any incremental state.
  virtual std::int64_t computeValue(const Dag& dag, std::uint32_t id) const = 0;
};

/// A node with a double value computed from operands; compares within the tolerance.
class NodeDoubleInner : public Node {
public:
  bool isConsistent(const Dag& dag, std::uint32_t id) const override;
  void dump(const Dag& dag, std::uint32_t id) const override;
  void init(Dag& dag, std::uint32_t id) override;

  virtual double computeValue(const Dag& dag, std::uint32_t id) const = 0;
};

}  // namespace ombrix

#endif
