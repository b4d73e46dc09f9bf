import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXObjectiveDirection;
import ombrix.OXOperator;
import ombrix.Ombrix;

/**
 * Uncapacitated facility location: open facilities and serve every customer from an open one, at the
 * smallest cost of opening and serving.
 *
 * <p>File: "facilities customers", for each facility its capacity (ignored) and the cost of opening it,
 * and for each customer its demand (ignored) and the cost of serving it from each facility. Decimal
 * numbers.
 */
public final class FacilityLocation {
  private final int nbFacilities;
  private final int nbCustomers;

  /** Of opening, then of serving, customer by customer. */
  private final ScaledNumbers costs;

  private FacilityLocation(String fileName) throws IOException {
    InstanceFile file = new InstanceFile(fileName);
    nbFacilities = file.nextInt(1, 100000, "the number of facilities");
    nbCustomers = file.nextInt(1, 1000000, "the number of customers");
    double[] numbers = new double[Math.addExact(
        nbFacilities, Math.multiplyExact(nbFacilities, nbCustomers))];
    int count = 0;
    for (int i = 0; i < nbFacilities; i++) {
      file.nextWord("a capacity");
      numbers[count++] = file.nextDouble("the cost of a facility");
    }
    for (int j = 0; j < nbCustomers; j++) {
      file.nextWord("a demand");
      for (int i = 0; i < nbFacilities; i++) {
        numbers[count++] = file.nextDouble("the cost of serving a customer");
      }
    }
    costs = new ScaledNumbers(numbers);
  }

  private long service(int customer, int facility) {
    return costs.get(nbFacilities + customer * nbFacilities + facility);
  }

  private long dearestService(int customer) {
    long dearest = service(customer, 0);
    for (int i = 1; i < nbFacilities; i++) {
      dearest = Math.max(dearest, service(customer, i));
    }
    return dearest;
  }

  private static void run(ExampleProgram program) throws IOException {
    FacilityLocation instance = new FacilityLocation(program.instance);
    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      List<OXExpression> isOpen = new ArrayList<>();
      OXExpression nbOpen = model.createExpression(OXOperator.Sum);
      OXExpression cost = model.createExpression(OXOperator.Sum);
      for (int i = 0; i < instance.nbFacilities; i++) {
        OXExpression open = model.createExpression(OXOperator.Bool);
        isOpen.add(open);
        nbOpen.addOperand(open);
        cost.addOperand(model.createExpression(OXOperator.Prod, instance.costs.get(i), open));
      }
      ExampleProgram.requireAtLeast(model, nbOpen, 1);

      // A customer pays the dearest service less the best saving that an open facility offers: a
      // maximum of weighted decisions, which needs no expression for each pair of customer and
      // facility.
      for (int j = 0; j < instance.nbCustomers; j++) {
        long dearest = instance.dearestService(j);
        OXExpression saving = model.createExpression(OXOperator.Max);
        for (int i = 0; i < instance.nbFacilities; i++) {
          saving.addOperand(
              model.createExpression(
                  OXOperator.Prod, dearest - instance.service(j, i), isOpen.get(i)));
        }
        cost.addOperand(dearest);
        cost.addOperand(model.createExpression(OXOperator.Prod, -1L, saving));
      }
      model.addObjective(cost, OXObjectiveDirection.Minimize);
      model.close();
      program.solve(solver);
      program.report(
          solver, instance.costs.unscaled(cost.getIntValue()), ExampleProgram.chosen(isOpen, 0));
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, FacilityLocation::run);
  }
}
