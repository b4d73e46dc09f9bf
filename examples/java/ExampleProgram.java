import java.io.IOException;
import java.math.BigDecimal;
import java.math.MathContext;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardOpenOption;
import java.util.ArrayList;
import java.util.List;
import ombrix.OXException;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXOperator;
import ombrix.OXPhase;
import ombrix.OXSolutionStatus;
import ombrix.Ombrix;

/** What the example programs share around their models: the command line, the search, the answer. */
final class ExampleProgram {
  private static final String USAGE =
      "usage: PROGRAM INSTANCE [SECONDS [BEST_KNOWN [SOLUTION_FILE]]]";

  final String instance;
  int seconds = 10;
  /** Null for none. */
  Double bestKnown;
  /** Null for none. */
  Path solutionFile;

  /** The part that differs from example to example. */
  interface Body {
    void run(ExampleProgram program) throws IOException;
  }

  private ExampleProgram(String[] args) throws IOException {
    if (args.length < 1 || args.length > 4) {
      throw new IllegalArgumentException(USAGE);
    }
    instance = args[0];
    if (args.length > 1) {
      seconds = (int) number(args[1], "SECONDS");
    }
    if (seconds < 1) {
      throw new IllegalArgumentException("SECONDS must be at least 1");
    }
    // "-" leaves the best known value out, so that a solution file can be given without it.
    if (args.length > 2 && !args[2].equals("-")) {
      bestKnown = number(args[2], "BEST_KNOWN");
    }
    if (args.length > 3) {
      solutionFile = Path.of(args[3]);
      // Opened now and left as it is: better to fail before the search than after it.
      Files.newOutputStream(solutionFile, StandardOpenOption.CREATE, StandardOpenOption.APPEND).close();
    }
  }

  private static double number(String text, String name) {
    try {
      return Double.parseDouble(text);
    } catch (NumberFormatException e) {
      throw new IllegalArgumentException(
          "found '" + text + "', expected a number for " + name + "; " + USAGE);
    }
  }

  /**
   * Runs an example; a failure becomes one line on the standard error and the exit status 1. With -h or --help
   * alone it prints the usage.
   */
  static void run(String[] args, Body body) {
    if (args.length == 1 && (args[0].equals("-h") || args[0].equals("--help"))) {
      System.out.println(USAGE);
      return;
    }
    try {
      body.run(new ExampleProgram(args));
    } catch (OXException | IllegalArgumentException e) {
      System.err.println(e.getMessage());
      System.exit(1);
    } catch (IOException e) {
      System.err.println("Cannot read or write file " + e.getMessage());
      System.exit(1);
    }
  }

  /**
   * Searches for the time given on the command line, with the engine's own display: in the first phase, which
   * is new unless an environment was loaded.
   */
  void solve(Ombrix solver) {
    solveFor(solver, seconds);
  }

  static void solveFor(Ombrix solver, int seconds) {
    OXPhase phase = solver.getNbPhases() == 0 ? solver.createPhase() : solver.getPhase(0);
    phase.setTimeLimit(seconds);
    solver.solve();
  }

  /** Prints the answer beside the best known value, and writes the solution if a file was given. */
  void report(Ombrix solver, double objective, List<Integer> solution) throws IOException {
    OXSolutionStatus status = solver.getSolution().getStatus();
    if (status != OXSolutionStatus.Feasible && status != OXSolutionStatus.Optimal) {
      System.out.println("no feasible solution found");
      return;
    }
    reportAnswer(objective, solution);
  }

  /** The same for an answer that is known to be feasible. */
  void reportAnswer(double objective, List<Integer> solution) throws IOException {
    String best = bestKnown == null ? "" : ", best known " + text(bestKnown);
    System.out.println("objective " + text(objective) + best);
    if (solutionFile != null) {
      List<String> lines = new ArrayList<>();
      solution.forEach(number -> lines.add(number.toString()));
      Files.write(solutionFile, lines);
    }
  }

  private static String text(double value) {
    BigDecimal rounded = new BigDecimal(value, new MathContext(15));
    return rounded.signum() == 0 ? "0" : rounded.stripTrailingZeros().toPlainString();
  }

  static void requireEqual(OXModel model, OXExpression expression, long value) {
    model.addConstraint(model.createExpression(OXOperator.Eq, expression, value));
  }

  static void requireAtMost(OXModel model, OXExpression expression, long value) {
    model.addConstraint(model.createExpression(OXOperator.Leq, expression, value));
  }

  static void requireAtLeast(OXModel model, OXExpression expression, long value) {
    model.addConstraint(model.createExpression(OXOperator.Geq, expression, value));
  }

  /** A table of new decisions with exactly one chosen in every row. */
  static OXExpression[][] createTable(OXModel model, int nbRows, int nbColumns) {
    OXExpression[][] table = new OXExpression[nbRows][nbColumns];
    for (OXExpression[] row : table) {
      OXExpression chosen = model.createExpression(OXOperator.Sum);
      for (int j = 0; j < nbColumns; j++) {
        row[j] = model.createExpression(OXOperator.Bool);
        chosen.addOperand(row[j]);
      }
      requireEqual(model, chosen, 1);
    }
    return table;
  }

  /** "sum of the column of the table is value". */
  static void requireColumnSum(OXModel model, OXExpression[][] table, int column, long value) {
    OXExpression sum = model.createExpression(OXOperator.Sum);
    for (OXExpression[] row : table) {
      sum.addOperand(row[column]);
    }
    requireEqual(model, sum, value);
  }

  /**
   * A square table of new decisions with exactly one chosen in every row and in every column: a permutation.
   * The rows come first: the moves that turn or shift a stretch of a permutation work on neighbouring lists of
   * which exactly one decision holds.
   */
  static OXExpression[][] createAssignment(OXModel model, int size) {
    OXExpression[][] table = createTable(model, size, size);
    for (int column = 0; column < size; column++) {
      requireColumnSum(model, table, column, 1);
    }
    return table;
  }

  /** The number of the column chosen in every row, as an expression of the model. */
  static OXExpression[] createChosenColumns(OXModel model, OXExpression[][] table) {
    OXExpression[] columns = new OXExpression[table.length];
    for (int i = 0; i < table.length; i++) {
      columns[i] = model.createExpression(OXOperator.Sum);
      for (int j = 0; j < table[i].length; j++) {
        columns[i].addOperand(model.createExpression(OXOperator.Prod, (long) j, table[i][j]));
      }
    }
    return columns;
  }

  /** The column chosen in every row of the solution. */
  static List<Integer> chosenColumns(OXExpression[][] table) {
    List<Integer> columns = new ArrayList<>();
    for (OXExpression[] row : table) {
      int column = 0;
      while (column < row.length && row[column].getIntValue() == 0) {
        ++column;
      }
      columns.add(column);
    }
    return columns;
  }

  /** The numbers, counted from first, of the decisions that are 1. */
  static List<Integer> chosen(List<OXExpression> decisions, int first) {
    List<Integer> numbers = new ArrayList<>();
    for (int i = 0; i < decisions.size(); i++) {
      if (decisions.get(i).getIntValue() != 0) {
        numbers.add(first + i);
      }
    }
    return numbers;
  }
}
