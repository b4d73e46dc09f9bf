import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXObjectiveDirection;
import ombrix.OXOperator;
import ombrix.Ombrix;

/**
 * Portfolio: hold a given number of assets in equal parts, so that the risk less the expected return
 * times a reward is smallest. The assets move together through a few common factors, such as the market:
 * the risk is the sum of the squared exposures to the factors and of what each asset varies on its own.
 *
 * <p>File: "assets factors held reward", then for each asset its expected return, its own variance and
 * its exposure to each factor, in percent a year.
 */
public final class Portfolio {
  private final int nbAssets;
  private final int nbFactors;
  private final int nbHeld;
  private final double reward;
  private final double[] expectedReturns;
  private final double[] variances;

  /** Asset by asset, of each factor. */
  private final double[][] exposures;

  private Portfolio(String fileName) throws IOException {
    InstanceFile file = new InstanceFile(fileName);
    nbAssets = file.nextInt(1, 100000, "the number of assets");
    nbFactors = file.nextInt(0, 1000, "the number of factors");
    nbHeld = file.nextInt(1, nbAssets, "the number of assets to hold");
    reward = file.nextDouble("the reward of return");
    expectedReturns = new double[nbAssets];
    variances = new double[nbAssets];
    exposures = new double[nbAssets][];
    for (int i = 0; i < nbAssets; i++) {
      expectedReturns[i] = file.nextDouble("a return");
      variances[i] = file.nextDouble("a variance");
      exposures[i] = file.nextDoubles(nbFactors);
    }
  }

  private static void run(ExampleProgram program) throws IOException {
    Portfolio instance = new Portfolio(program.instance);
    double part = 1.0 / instance.nbHeld;
    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      List<OXExpression> isHeld = new ArrayList<>();
      OXExpression nbHeld = model.createExpression(OXOperator.Sum);
      OXExpression cost = model.createExpression(OXOperator.Sum);
      for (int i = 0; i < instance.nbAssets; i++) {
        OXExpression held = model.createExpression(OXOperator.Bool);
        isHeld.add(held);
        nbHeld.addOperand(held);
        double own =
            part * part * instance.variances[i]
                - instance.reward * part * instance.expectedReturns[i];
        cost.addOperand(model.createExpression(OXOperator.Prod, own, held));
      }
      ExampleProgram.requireEqual(model, nbHeld, instance.nbHeld);

      // One square for each factor, and none for each pair of assets: a change of the portfolio then
      // reaches a handful of expressions, whatever the number of assets.
      for (int f = 0; f < instance.nbFactors; f++) {
        OXExpression exposure = model.createExpression(OXOperator.Sum);
        for (int i = 0; i < instance.nbAssets; i++) {
          double exposed = part * instance.exposures[i][f];
          exposure.addOperand(model.createExpression(OXOperator.Prod, exposed, isHeld.get(i)));
        }
        cost.addOperand(model.createExpression(OXOperator.Prod, exposure, exposure));
      }
      model.addObjective(cost, OXObjectiveDirection.Minimize);
      model.close();
      program.solve(solver);
      program.report(solver, cost.getDoubleValue(), ExampleProgram.chosen(isHeld, 0));
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, Portfolio::run);
  }
}
