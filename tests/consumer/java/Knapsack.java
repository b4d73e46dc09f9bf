import ombrix.*;

class Knapsack {
  public static void main(String[] arguments) {
    long[] weights = {10, 60, 30, 40, 30, 20, 20, 2};
    long[] values = {1, 10, 15, 40, 60, 90, 100, 15};

    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      OXExpression weight = model.createExpression(OXOperator.Sum);
      OXExpression value = model.createExpression(OXOperator.Sum);
      for (int i = 0; i < weights.length; i++) {
        OXExpression taken = model.createExpression(OXOperator.Bool);
        weight.addOperand(model.createExpression(OXOperator.Prod, weights[i], taken));
        value.addOperand(model.createExpression(OXOperator.Prod, values[i], taken));
      }
      model.addConstraint(model.createExpression(OXOperator.Leq, weight, 102));
      model.addObjective(value, OXObjectiveDirection.Maximize);
      model.close();

      solver.getParam().setVerbosity(0);
      solver.createPhase().setIterationLimit(20000);
      solver.solve();
      System.out.println("value " + value.getIntValue() + ", weight " + weight.getIntValue());
    }
  }
}
