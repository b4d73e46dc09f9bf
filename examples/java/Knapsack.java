import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXObjectiveDirection;
import ombrix.OXOperator;
import ombrix.Ombrix;

/**
 * Multidimensional knapsack: choose items of the largest total profit that respect every capacity.
 *
 * <p>File: the number of problems (1), then "items constraints 0", the profits, one row of weights for
 * each constraint, the capacities.
 */
public final class Knapsack {
  private Knapsack() {}

  private static void run(ExampleProgram program) throws IOException {
    InstanceFile file = new InstanceFile(program.instance);
    file.nextInt(1, 1, "one problem in the file");
    int n = file.nextInt(1, 10000000, "the number of items");
    int m = file.nextInt(1, 1000000, "the number of constraints");
    file.nextDouble("the best known value, or 0");
    ScaledNumbers profits = new ScaledNumbers(file.nextDoubles(n));
    // Weights and capacities share one scale, so that they can be compared.
    ScaledNumbers rows = new ScaledNumbers(file.nextDoubles(n * m + m));

    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      List<OXExpression> isTaken = new ArrayList<>();
      for (int i = 0; i < n; i++) {
        isTaken.add(model.createExpression(OXOperator.Bool));
      }
      for (int c = 0; c < m; c++) {
        OXExpression weight = model.createExpression(OXOperator.Sum);
        for (int i = 0; i < n; i++) {
          if (rows.get(c * n + i) != 0) {
            weight.addOperand(
                model.createExpression(OXOperator.Prod, rows.get(c * n + i), isTaken.get(i)));
          }
        }
        if (weight.getNbOperands() > 0) {
          ExampleProgram.requireAtMost(model, weight, rows.get(n * m + c));
        }
      }
      OXExpression profit = model.createExpression(OXOperator.Sum);
      for (int i = 0; i < n; i++) {
        profit.addOperand(model.createExpression(OXOperator.Prod, profits.get(i), isTaken.get(i)));
      }
      model.addObjective(profit, OXObjectiveDirection.Maximize);
      model.close();
      // A full knapsack improves by exchanges whose first half makes it worse.
      solver.getParam().setAnnealingLevel(9);
      program.solve(solver);
      program.report(
          solver, profits.unscaled(profit.getIntValue()), ExampleProgram.chosen(isTaken, 0));
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, Knapsack::run);
  }
}
