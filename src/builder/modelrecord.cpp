#include "builder/modelrecord.h"

namespace ombrix {

OXExpression* ModelRecord::createRecord(OXModel& model, OXOperator op) {
  return model.createRecord(op);
}

void ModelRecord::appendOperand(OXExpression& e, std::int32_t operandIndex) {
  e.appendOperand(operandIndex);
}

}  // namespace ombrix
