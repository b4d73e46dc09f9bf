#include <ombrix/ombrix.h>

#include <iostream>

int main() {
  using namespace ombrix;
  constexpr int weights[] = {10, 60, 30, 40, 30, 20, 20, 2};
  constexpr int values[] = {1, 10, 15, 40, 60, 90, 100, 15};

  Ombrix solver;
  OXModel* model = solver.getModel();
  OXExpression* weight = model->createExpression(OXOperator::Sum);
  OXExpression* value = model->createExpression(OXOperator::Sum);
  for (int i = 0; i < 8; ++i) {
    OXExpression* taken = model->createExpression(OXOperator::Bool);
    OXExpression* itemWeight = model->createConstant(weights[i]);
    OXExpression* itemValue = model->createConstant(values[i]);
    weight->addOperand(model->createExpression(OXOperator::Prod, itemWeight, taken));
    value->addOperand(model->createExpression(OXOperator::Prod, itemValue, taken));
  }
  OXExpression* capacity = model->createConstant(102);
  model->addConstraint(model->createExpression(OXOperator::Leq, weight, capacity));
  model->addObjective(value, OXObjectiveDirection::Maximize);
  model->close();

  solver.getParam()->setVerbosity(0);
  solver.createPhase()->setIterationLimit(20000);
  solver.solve();
  std::cout << "value " << value->getIntValue() << ", weight " << weight->getIntValue() << "\n";
}
