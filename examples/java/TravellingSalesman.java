import java.io.IOException;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.List;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXObjectiveDirection;
import ombrix.OXOperator;
import ombrix.Ombrix;

/**
 * Travelling salesman: visit every city once and return, on the shortest tour.
 *
 * <p>File: TSPLIB, symmetric, with EDGE_WEIGHT_TYPE EUC_2D, ATT, GEO or EXPLICIT, the last one as FULL_MATRIX,
 * LOWER_DIAG_ROW or UPPER_ROW.
 */
public final class TravellingSalesman {
  private int n;
  private String type = "";
  private String format = "";
  private long[][] distance;

  private TravellingSalesman(String fileName) throws IOException {
    InstanceFile file = new InstanceFile(fileName);
    while (distance == null) {
      String key = file.nextWord("a key of the header or a section");
      switch (key.endsWith(":") ? key.substring(0, key.length() - 1) : key) {
        case "DIMENSION":
          n = readDimension(file);
          break;
        case "EDGE_WEIGHT_TYPE":
          type = valueOf(file);
          break;
        case "EDGE_WEIGHT_FORMAT":
          format = valueOf(file);
          break;
        case "NODE_COORD_SECTION":
          distance = readCoordinates(file);
          break;
        case "EDGE_WEIGHT_SECTION":
          distance = readDistances(file);
          break;
        default:
          file.skipLine();
      }
    }
    if (n == 0) {
      throw new IllegalArgumentException(fileName + ": found no line 'DIMENSION' before a section");
    }
  }

  private static String valueOf(InstanceFile file) {
    String word = file.nextWord("a value");
    return word.equals(":") ? file.nextWord("a value") : word;
  }

  private static int readDimension(InstanceFile file) {
    String text = valueOf(file);
    if (!text.matches("[0-9]{1,4}") || Integer.parseInt(text) < 2 || Integer.parseInt(text) > 1000) {
      throw new IllegalArgumentException("found DIMENSION " + text + ", expected 2 to 1000 cities");
    }
    return Integer.parseInt(text);
  }

  private long[][] readCoordinates(InstanceFile file) {
    double[][] cities = new double[n][];
    for (int i = 0; i < n; i++) {
      file.nextInt("the number of a city");
      cities[i] = file.nextDoubles(2);
    }
    long[][] matrix = new long[n][n];
    for (int i = 0; i < n; i++) {
      for (int j = 0; j < n; j++) {
        matrix[i][j] = i == j ? 0 : distanceBetween(cities[i], cities[j]);
      }
    }
    return matrix;
  }

  private long distanceBetween(double[] a, double[] b) {
    double dx = a[0] - b[0];
    double dy = a[1] - b[1];
    switch (type) {
      case "EUC_2D":
        return (long) Math.floor(Math.sqrt(dx * dx + dy * dy) + 0.5);
      case "ATT":
        return (long) Math.ceil(Math.sqrt((dx * dx + dy * dy) / 10));
      case "GEO":
        return onTheGlobe(a, b);
      default:
        throw new IllegalArgumentException(
            "found EDGE_WEIGHT_TYPE " + type + ", expected EUC_2D, ATT or GEO");
    }
  }

  private static long onTheGlobe(double[] a, double[] b) {
    double q1 = Math.cos(radians(a[1]) - radians(b[1]));
    double q2 = Math.cos(radians(a[0]) - radians(b[0]));
    double q3 = Math.cos(radians(a[0]) + radians(b[0]));
    return (long) (6378.388 * Math.acos(0.5 * ((1.0 + q1) * q2 - (1.0 - q1) * q3)) + 1.0);
  }

  /** The coordinates are degrees before the point and minutes behind it. */
  private static double radians(double coordinate) {
    double degrees = (double) (long) coordinate;
    return 3.141592 * (degrees + 5.0 * (coordinate - degrees) / 3.0) / 180.0;
  }

  private long[][] readDistances(InstanceFile file) {
    boolean isFull = format.equals("FULL_MATRIX");
    boolean isUpper = format.equals("UPPER_ROW");
    if (!isFull && !isUpper && !format.equals("LOWER_DIAG_ROW")) {
      throw new IllegalArgumentException("found EDGE_WEIGHT_FORMAT " + format
          + ", expected FULL_MATRIX, LOWER_DIAG_ROW or UPPER_ROW");
    }
    long[][] matrix = new long[n][n];
    for (int i = 0; i < n; i++) {
      for (int j = isUpper ? i + 1 : 0; j < (isFull || isUpper ? n : i + 1); j++) {
        matrix[i][j] = file.nextInt("a distance");
        if (!isFull) {
          matrix[j][i] = matrix[i][j];
        }
      }
    }
    return matrix;
  }

  /**
   * The distances stand in one array of constants, row after row, and a leg looks its own up. So a leg takes
   * one sum and one look-up, where products of decisions would take n for each city.
   */
  private OXExpression createLength(OXModel model, OXExpression[] cityAt) {
    OXExpression distances = model.createExpression(OXOperator.Array);
    for (long[] row : distance) {
      for (long entry : row) {
        distances.addOperand(entry);
      }
    }
    OXExpression length = model.createExpression(OXOperator.Sum);
    for (int p = 0; p < n; p++) {
      OXExpression leg = model.createExpression(
          OXOperator.Sum,
          model.createExpression(OXOperator.Prod, (long) n, cityAt[p]), cityAt[(p + 1) % n]);
      length.addOperand(model.createExpression(OXOperator.At, distances, leg));
    }
    return length;
  }

  /**
   * Starts the search from the tour that always goes on to the nearest city not yet visited: good in most
   * places, so that the search spends its time on the few bad ones.
   */
  private void startAtNearestNeighbours(OXExpression[][] isAt) {
    List<Integer> left = new ArrayList<>();
    for (int i = 0; i < n; i++) {
      left.add(i);
    }
    int city = 0;
    for (OXExpression[] position : isAt) {
      long[] from = distance[city];
      Integer nearest = left.stream().min(Comparator.comparingLong(i -> from[i])).get();
      left.remove(nearest);
      city = nearest;
      position[city].setValue(1L);
    }
  }

  private static void run(ExampleProgram program) throws IOException {
    TravellingSalesman instance = new TravellingSalesman(program.instance);
    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      // City i is visited at position p: the rows are the positions, in the order of the tour.
      OXExpression[][] isAt = ExampleProgram.createAssignment(model, instance.n);
      OXExpression length =
          instance.createLength(model, ExampleProgram.createChosenColumns(model, isAt));
      model.addObjective(length, OXObjectiveDirection.Minimize);
      model.close();
      // The valleys are many: a search that goes back further ends lower.
      solver.getParam().setAnnealingLevel(9);
      instance.startAtNearestNeighbours(isAt);
      program.solve(solver);
      program.report(solver, length.getIntValue(), ExampleProgram.chosenColumns(isAt));
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, TravellingSalesman::run);
  }
}
