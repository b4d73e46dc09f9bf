#include "solver/kernel/nodetypeutils.h"

#include <array>
#include <sstream>

#include "common/failure.h"
#include "solver/kernel/dagfixedfields.h"

namespace ombrix {

namespace {

/// A domain of the table that depends on the node.
constexpr std::uint8_t kByNode = 255;

struct TypeRow {
  const char* name;
  std::uint8_t domain;
};

constexpr std::array<TypeRow, kNbNodeTypes> kTypes{{
    {"boolean", kBooleanDomain},
    {"integer", kIntegerDomain},
    {"float", kDoubleDomain},
    {"abs", kIntegerDomain},
    {"and", kBooleanDomain},
    {"boolean_sum", kIntegerDomain},
    {"constant", kByNode},
    {"distance", kIntegerDomain},
    {"divide", kIntegerDomain},
    {"eq", kBooleanDomain},
    {"geq", kBooleanDomain},
    {"gt", kBooleanDomain},
    {"if", kByNode},
    {"leq", kBooleanDomain},
    {"lt", kBooleanDomain},
    {"max", kIntegerDomain},
    {"min", kIntegerDomain},
    {"modulo", kIntegerDomain},
    {"neq", kBooleanDomain},
    {"not", kBooleanDomain},
    {"or", kBooleanDomain},
    {"product", kIntegerDomain},
    {"scalar_max", kIntegerDomain},
    {"scalar_min", kIntegerDomain},
    {"scalar_product", kIntegerDomain},
    {"scalar_sum", kIntegerDomain},
    {"sum", kIntegerDomain},
    {"xor", kBooleanDomain},
    {"array", kArrayDomain},
    {"const_array", kArrayDomain},
    {"at", kIntegerDomain},
    {"double_abs", kDoubleDomain},
    {"double_constant", kDoubleDomain},
    {"double_distance", kDoubleDomain},
    {"double_divide", kDoubleDomain},
    {"double_eq", kBooleanDomain},
    {"double_geq", kBooleanDomain},
    {"double_gt", kBooleanDomain},
    {"double_if", kDoubleDomain},
    {"double_leq", kBooleanDomain},
    {"double_lt", kBooleanDomain},
    {"double_max", kDoubleDomain},
    {"double_min", kDoubleDomain},
    {"double_neq", kBooleanDomain},
    {"double_product", kDoubleDomain},
    {"double_scalar_max", kDoubleDomain},
    {"double_scalar_min", kDoubleDomain},
    {"double_scalar_product", kDoubleDomain},
    {"double_scalar_sum", kDoubleDomain},
    {"double_sum", kDoubleDomain},
    {"double_at", kDoubleDomain},
    {"double_ceil", kIntegerDomain},
    {"double_floor", kIntegerDomain},
    {"double_round", kIntegerDomain},
    {"double_sqrt", kDoubleDomain},
    {"double_log", kDoubleDomain},
    {"double_exp", kDoubleDomain},
    {"double_pow", kDoubleDomain},
    {"double_cos", kDoubleDomain},
    {"double_sin", kDoubleDomain},
    {"double_tan", kDoubleDomain},
}};

}  // namespace

void NodeTypeUtils::checkType(NodeType type, const Where& where) {
  if (static_cast<std::uint8_t>(type) < kNbNodeTypes) return;
  std::ostringstream text;
  text << "Unknown node type " << static_cast<unsigned>(type);
  fail(kInternal, where, text.str());
}

std::string NodeTypeUtils::toString(NodeType type) {
  checkType(type, OMBRIX_HERE("NodeTypeUtils::toString"));
  return kTypes[static_cast<std::uint8_t>(type)].name;
}

std::uint8_t NodeTypeUtils::getDomainValue(const DagFixedFields& fields, std::uint32_t id) {
  const NodeType type = fields.types[id];
  checkType(type, OMBRIX_HERE("NodeTypeUtils::getDomainValue"));
  const TypeRow& row = kTypes[static_cast<std::uint8_t>(type)];
  if (row.domain != kByNode) return row.domain;
  if (type == NodeType::Constant) {
    const std::int64_t value = fields.scalarsOf(id)->intValue;
    return value == 0 || value == 1 ? kBooleanDomain : kIntegerDomain;
  }
  const bool hasBooleanBranches = fields.domains[fields.operand(id, 1)] == kBooleanDomain &&
                                  fields.domains[fields.operand(id, 2)] == kBooleanDomain;
  return hasBooleanBranches ? kBooleanDomain : kIntegerDomain;
}

}  // namespace ombrix
