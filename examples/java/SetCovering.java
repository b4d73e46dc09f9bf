import java.io.IOException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
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

  private static void run(ExampleProgram program) throws IOException {
    SetCovering instance = new SetCovering(program.instance);
    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      List<OXExpression> isChosen = new ArrayList<>();
      OXExpression cost = model.createExpression(OXOperator.Sum);
      for (long columnCost : instance.costs) {
        OXExpression column = model.createExpression(OXOperator.Bool);
        isChosen.add(column);
        cost.addOperand(model.createExpression(OXOperator.Prod, columnCost, column));
      }
      for (List<Integer> row : instance.coveringColumns) {
        if (row.isEmpty()) {
          throw new IllegalArgumentException("a row is covered by no column");
        }
        OXExpression cover = model.createExpression(OXOperator.Sum);
        row.forEach(column -> cover.addOperand(isChosen.get(column)));
        ExampleProgram.requireAtLeast(model, cover, 1);
      }
      model.addObjective(cost, OXObjectiveDirection.Minimize);
      model.close();
      program.solve(solver);
      program.report(solver, cost.getIntValue(), ExampleProgram.chosen(isChosen, 1));
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, SetCovering::run);
  }
}
