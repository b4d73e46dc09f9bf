import java.io.IOException;
import java.util.Arrays;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXObjectiveDirection;
import ombrix.OXOperator;
import ombrix.Ombrix;

/**
 * Car sequencing: order the cars on a line so that the stations that build in the options keep up. Of any Q
 * cars in a row at most P may take an option; the stretches of Q cars with more than P are counted, option by
 * option, and their number is to be smallest.
 *
 * <p>File: "%" comments, "cars options classes", the P of the options, the Q of the options, and for each class
 * its number, the number of its cars and a 0 or 1 for each option.
 */
public final class CarSequencing {
  private static final int LARGEST = 10000;

  private final int nbCars;
  private final int[] most;
  private final int[] row;
  private final int[] nbCarsOf;

  /** Class by class, then option by option. */
  private final boolean[][] takes;

  private CarSequencing(String fileName) throws IOException {
    InstanceFile file = new InstanceFile(fileName);
    while (file.skipComment('%')) {}
    nbCars = file.nextInt(1, LARGEST, "the number of cars");
    int nbOptions = file.nextInt(0, LARGEST, "the number of options");
    int nbClasses = file.nextInt(1, LARGEST, "the number of classes");
    most = new int[nbOptions];
    row = new int[nbOptions];
    for (int o = 0; o < nbOptions; o++) {
      most[o] = file.nextInt(0, LARGEST, "a P");
    }
    for (int o = 0; o < nbOptions; o++) {
      row[o] = file.nextInt(1, LARGEST, "a Q");
    }
    nbCarsOf = new int[nbClasses];
    takes = new boolean[nbClasses][nbOptions];
    for (int c = 0; c < nbClasses; c++) {
      file.nextInt("the number of a class");
      nbCarsOf[c] = file.nextInt(0, LARGEST, "the cars of a class");
      for (int o = 0; o < nbOptions; o++) {
        takes[c][o] = file.nextInt(0, 1, "a 0 or 1") == 1;
      }
    }
    if (Arrays.stream(nbCarsOf).sum() != nbCars) {
      throw new IllegalArgumentException(fileName + ": the cars of the classes do not add up");
    }
  }

  /**
   * The line as a table of decisions: a car of the class stands at the position. Cars of one class are alike,
   * so that swapping them changes nothing that the model could see.
   */
  private OXExpression[][] createLine(OXModel model) {
    OXExpression[][] isAt = ExampleProgram.createTable(model, nbCars, nbCarsOf.length);
    for (int c = 0; c < nbCarsOf.length; c++) {
      ExampleProgram.requireColumnSum(model, isAt, c, nbCarsOf[c]);
    }
    return isAt;
  }

  /** Whether the car at each position takes the option: a sum shared by all stretches over it. */
  private OXExpression[] createUses(OXModel model, OXExpression[][] isAt, int option) {
    OXExpression[] uses = new OXExpression[nbCars];
    for (int p = 0; p < nbCars; p++) {
      uses[p] = model.createExpression(OXOperator.Sum);
      for (int c = 0; c < nbCarsOf.length; c++) {
        if (takes[c][option]) {
          uses[p].addOperand(isAt[p][c]);
        }
      }
      if (uses[p].getNbOperands() == 0) {
        uses[p].addOperand(0L);
      }
    }
    return uses;
  }

  /**
   * Adds the stretches that have too many cars with an option, and by how many cars in all: that tells worse
   * from bad. A limit stands in the objective and not among the constraints: any order of the cars is
   * feasible, the search is free to pass through bad ones, and a line that cannot keep every limit comes out
   * as good as it gets.
   */
  private void addViolations(
      OXModel model, OXExpression[][] isAt, OXExpression stretches, OXExpression excess) {
    for (int o = 0; o < most.length; o++) {
      OXExpression[] uses = createUses(model, isAt, o);
      for (int first = 0; first + row[o] <= nbCars; first++) {
        OXExpression taken = model.createExpression(OXOperator.Sum);
        for (int i = 0; i < row[o]; i++) {
          taken.addOperand(uses[first + i]);
        }
        stretches.addOperand(model.createExpression(OXOperator.Gt, taken, (long) most[o]));
        OXExpression over = model.createExpression(OXOperator.Sum, taken, (long) -most[o]);
        excess.addOperand(model.createExpression(OXOperator.Max, over, 0L));
      }
    }
  }

  private static void run(ExampleProgram program) throws IOException {
    CarSequencing instance = new CarSequencing(program.instance);
    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      OXExpression[][] isAt = instance.createLine(model);
      OXExpression stretches = model.createExpression(OXOperator.Sum, 0L);
      OXExpression excess = model.createExpression(OXOperator.Sum, 0L);
      instance.addViolations(model, isAt, stretches, excess);
      model.addObjective(stretches, OXObjectiveDirection.Minimize);
      model.addObjective(excess, OXObjectiveDirection.Minimize);
      model.close();
      program.solve(solver);
      program.report(solver, stretches.getIntValue(), ExampleProgram.chosenColumns(isAt));
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, CarSequencing::run);
  }
}
