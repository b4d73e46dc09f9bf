import java.io.IOException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.List;
import java.util.TreeSet;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXObjectiveDirection;
import ombrix.OXOperator;
import ombrix.Ombrix;

/**
 * Set covering: choose columns of the smallest total cost so that every row is covered.
 *
 * <p>File, one of three layouts that are told apart by their length: "rows columns", the costs of the
 * columns, and for each row the number of columns covering it and those columns; "rows columns", and for
 * each column its cost, the number of rows it covers and those rows; or "points triples" and the triples
 * of points, each of which must be hit at unit cost. Numbers of rows, columns and points start at 1.
 */
public final class SetCovering {
  private final long[] numbers;
  private int position;
  private int nbRows;
  private int nbColumns;
  private long[] costs;
  private List<List<Integer>> coveringColumns;

  private SetCovering(String fileName) throws IOException {
    InstanceFile file = new InstanceFile(fileName);
    long[] read = new long[1024];
    int count = 0;
    while (!file.atEnd()) {
      if (count == read.length) {
        read = Arrays.copyOf(read, 2 * count);
      }
      read[count++] = file.nextInt("an integer");
    }
    numbers = Arrays.copyOf(read, count);
    if (!readTriples() && !readRows() && !readColumns()) {
      throw new IllegalArgumentException(
          fileName + ": found numbers that fit none of the layouts, expected rows with their columns,"
              + " columns with their rows, or triples");
    }
  }

  private boolean startReading(int rowPosition, int columnPosition) {
    long largest = 100000000;
    if (numbers.length < 2 || Math.min(numbers[0], numbers[1]) < 1
        || Math.max(numbers[0], numbers[1]) > largest) {
      return false;
    }
    nbRows = (int) numbers[rowPosition];
    nbColumns = (int) numbers[columnPosition];
    position = 2;
    coveringColumns = new ArrayList<>();
    if (nbRows >= numbers.length || nbColumns > 3L * numbers.length) {
      return false;
    }
    for (int row = 0; row < nbRows; row++) {
      coveringColumns.add(new ArrayList<>());
    }
    return true;
  }

  /** The next number if it lies between the limits, else -1. */
  private int next(int low, int high) {
    if (position == numbers.length || numbers[position] < low || numbers[position] > high) {
      return -1;
    }
    return (int) numbers[position++];
  }

  private boolean readTriples() {
    if (!startReading(1, 0) || numbers.length != 2 + 3L * nbRows) {
      return false;
    }
    costs = new long[nbColumns];
    Arrays.fill(costs, 1);
    for (List<Integer> row : coveringColumns) {
      for (int i = 0; i < 3; i++) {
        int point = next(1, nbColumns);
        if (point < 0) {
          return false;
        }
        row.add(point - 1);
      }
    }
    return true;
  }

  private boolean readRows() {
    if (!startReading(0, 1) || numbers.length < 2 + nbColumns) {
      return false;
    }
    costs = Arrays.copyOfRange(numbers, 2, 2 + nbColumns);
    position = 2 + nbColumns;
    for (List<Integer> row : coveringColumns) {
      int count = next(0, nbColumns);
      for (int i = 0; i < count; i++) {
        int column = next(1, nbColumns);
        if (column < 0) {
          return false;
        }
        row.add(column - 1);
      }
      if (count < 0) {
        return false;
      }
    }
    return position == numbers.length;
  }

  private boolean readColumns() {
    if (!startReading(0, 1)) {
      return false;
    }
    costs = new long[nbColumns];
    for (int column = 0; column < nbColumns; column++) {
      if (position == numbers.length) {
        return false;
      }
      costs[column] = numbers[position++];
      int count = next(0, nbRows);
      for (int i = 0; i < count; i++) {
        int row = next(1, nbRows);
        if (row < 0) {
          return false;
        }
        coveringColumns.get(row - 1).add(column);
      }
      if (count < 0) {
        return false;
      }
    }
    return position == numbers.length;
  }

  /** The cheapest of the columns that cover each row. */
  private int[] cheapestColumns() {
    int[] cheapest = new int[coveringColumns.size()];
    for (int row = 0; row < cheapest.length; row++) {
      cheapest[row] =
          coveringColumns.get(row).stream()
              .min(Comparator.comparingLong(column -> costs[column]))
              .orElseThrow(() -> new IllegalArgumentException("a row is covered by no column"));
    }
    return cheapest;
  }

  /** The columns chosen, and the cheapest one of each row that they leave out; numbered from 1. */
  private static List<Integer> covering(
      List<OXExpression> isChosen, List<OXExpression> isLeftOut, int[] cheapest) {
    TreeSet<Integer> columns = new TreeSet<>(ExampleProgram.chosen(isChosen, 1));
    for (int row = 0; row < cheapest.length; row++) {
      if (isLeftOut.get(row).getIntValue() != 0) {
        columns.add(cheapest[row] + 1);
      }
    }
    return new ArrayList<>(columns);
  }

  /**
   * The model has no constraints: a row that the chosen columns leave out is priced at its cheapest column,
   * which will be added to the answer. Every choice thus stands for a covering that costs at most what the
   * objective says, a best one costs just that, and the search passes freely through choices that cover
   * only in part, where a constraint for each row would stop it at every step.
   */
  private static void run(ExampleProgram program) throws IOException {
    SetCovering instance = new SetCovering(program.instance);
    int[] cheapest = instance.cheapestColumns();
    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      List<OXExpression> isChosen = new ArrayList<>();
      OXExpression cost = model.createExpression(OXOperator.Sum);
      for (long columnCost : instance.costs) {
        OXExpression column = model.createExpression(OXOperator.Bool);
        isChosen.add(column);
        cost.addOperand(model.createExpression(OXOperator.Prod, columnCost, column));
      }
      List<OXExpression> isLeftOut = new ArrayList<>();
      for (int row = 0; row < cheapest.length; row++) {
        OXExpression isCovered = model.createExpression(OXOperator.Or);
        instance.coveringColumns.get(row).forEach(
            column -> isCovered.addOperand(isChosen.get(column)));
        OXExpression leftOut = model.createExpression(OXOperator.Not, isCovered);
        isLeftOut.add(leftOut);
        cost.addOperand(
            model.createExpression(OXOperator.Prod, instance.costs[cheapest[row]], leftOut));
      }
      model.addObjective(cost, OXObjectiveDirection.Minimize);
      model.close();
      // Columns that share rows improve by exchanges whose first half makes it worse.
      solver.getParam().setAnnealingLevel(9);
      program.solve(solver);

      List<Integer> columns = covering(isChosen, isLeftOut, cheapest);
      long total = columns.stream().mapToLong(column -> instance.costs[column - 1]).sum();
      program.report(solver, total, columns);
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, SetCovering::run);
  }
}
