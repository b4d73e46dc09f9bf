import java.io.IOException;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXObjectiveDirection;
import ombrix.OXOperator;
import ombrix.Ombrix;

/**
 * Quadratic assignment: place facilities at locations, one at each, so that the flows between facilities
 * times the distances between their locations are smallest.
 *
 * <p>File: the size n, the n x n flows, the n x n distances.
 */
public final class QuadraticAssignment {
  private final int n;
  private final long[][] flow;
  private final long[][] distance;

  private QuadraticAssignment(String fileName) throws IOException {
    InstanceFile file = new InstanceFile(fileName);
    n = file.nextInt(1, 1000, "the size");
    flow = read(file);
    distance = read(file);
  }

  private long[][] read(InstanceFile file) {
    long[][] matrix = new long[n][n];
    for (long[] row : matrix) {
      for (int j = 0; j < n; j++) {
        row[j] = file.nextInt("an integer");
      }
    }
    return matrix;
  }

  /** The permutation as a table of decisions: facility i stands at location k. */
  private OXExpression[][] createPlacement(OXModel model) {
    OXExpression[][] isAt = ExampleProgram.createTable(model, n, n);
    for (int k = 0; k < n; k++) {
      OXExpression placed = model.createExpression(OXOperator.Sum);
      for (int i = 0; i < n; i++) {
        placed.addOperand(isAt[i][k]);
      }
      ExampleProgram.requireEqual(model, placed, 1);
    }
    return isAt;
  }

  /**
   * The distance from location k to wherever facility j stands. With these shared sums the cost takes n
   * products for a pair of facilities, not n squared.
   */
  private OXExpression[][] createDistances(OXModel model, OXExpression[][] isAt) {
    OXExpression[][] distanceTo = new OXExpression[n][n];
    for (int j = 0; j < n; j++) {
      for (int k = 0; k < n; k++) {
        OXExpression sum = model.createExpression(OXOperator.Sum);
        for (int l = 0; l < n; l++) {
          if (distance[k][l] != 0) {
            sum.addOperand(model.createExpression(OXOperator.Prod, distance[k][l], isAt[j][l]));
          }
        }
        if (sum.getNbOperands() == 0) {
          sum.addOperand(0L);
        }
        distanceTo[j][k] = sum;
      }
    }
    return distanceTo;
  }

  private OXExpression createCost(OXModel model, OXExpression[][] isAt) {
    OXExpression[][] distanceTo = createDistances(model, isAt);
    OXExpression cost = model.createExpression(OXOperator.Sum);
    for (int i = 0; i < n; i++) {
      for (int k = 0; k < n; k++) {
        OXExpression sum = model.createExpression(OXOperator.Sum);
        for (int j = 0; j < n; j++) {
          if (flow[i][j] != 0) {
            sum.addOperand(model.createExpression(OXOperator.Prod, flow[i][j], distanceTo[j][k]));
          }
        }
        if (sum.getNbOperands() > 0) {
          cost.addOperand(model.createExpression(OXOperator.Prod, isAt[i][k], sum));
        }
      }
    }
    if (cost.getNbOperands() == 0) {
      cost.addOperand(0L);
    }
    return cost;
  }

  private static void run(ExampleProgram program) throws IOException {
    QuadraticAssignment instance = new QuadraticAssignment(program.instance);
    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      OXExpression[][] isAt = instance.createPlacement(model);
      OXExpression cost = instance.createCost(model, isAt);
      model.addObjective(cost, OXObjectiveDirection.Minimize);
      model.close();
      program.solve(solver);
      program.report(solver, cost.getIntValue(), ExampleProgram.chosenColumns(isAt));
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, QuadraticAssignment::run);
  }
}
