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

  private boolean isSymmetric() {
    for (int k = 0; k < n; k++) {
      for (int l = 0; l < k; l++) {
        if (distance[k][l] != distance[l][k]) {
          return false;
        }
      }
    }
    return true;
  }

  /** The distances row by row: the one from k to l stands at k times the size plus l. */
  private OXExpression createDistances(OXModel model) {
    OXExpression distances = model.createExpression(OXOperator.Array);
    for (long[] row : distance) {
      for (long entry : row) {
        distances.addOperand(entry);
      }
    }
    return distances;
  }

  /**
   * A pair of facilities looks its distance up: an exchange of two facilities is evaluated in time
   * proportional to their number. Where distances are symmetric one look-up serves both ways.
   */
  private OXExpression createCost(OXModel model, OXExpression[] locations) {
    boolean isSymmetric = isSymmetric();
    OXExpression distances = createDistances(model);
    OXExpression cost = model.createExpression(OXOperator.Sum);
    for (int i = 0; i < n; i++) {
      for (int j = isSymmetric ? i : 0; j < n; j++) {
        long pairFlow = isSymmetric && j > i ? flow[i][j] + flow[j][i] : flow[i][j];
        if (pairFlow == 0) {
          continue;
        }
        OXExpression row = model.createExpression(OXOperator.Prod, (long) n, locations[i]);
        OXExpression index = model.createExpression(OXOperator.Sum, row, locations[j]);
        OXExpression pairDistance = model.createExpression(OXOperator.At, distances, index);
        cost.addOperand(model.createExpression(OXOperator.Prod, pairFlow, pairDistance));
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
      // Facility i stands at location k.
      OXExpression[][] isAt = ExampleProgram.createAssignment(model, instance.n);
      OXExpression cost =
          instance.createCost(model, ExampleProgram.createChosenColumns(model, isAt));
      model.addObjective(cost, OXObjectiveDirection.Minimize);
      model.close();
      // The valleys are many and flat: a search that goes back further ends lower.
      solver.getParam().setAnnealingLevel(9);
      program.solve(solver);
      program.report(solver, cost.getIntValue(), ExampleProgram.chosenColumns(isAt));
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, QuadraticAssignment::run);
  }
}
