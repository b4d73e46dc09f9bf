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
 * Facility location in the plane: open facilities on some of the sites and serve every customer from the
 * nearest open one, at the smallest cost of opening and of carrying each demand over its straight
 * distance. Distances are no decimal numbers, so the model computes with doubles.
 *
 * <p>File: "sites customers", for each site its two coordinates and the cost of opening it, and for each
 * customer its two coordinates and its demand.
 */
public final class PlaneLocation {
  /** A site with its opening cost, or a customer with its demand. */
  private static final class Place {
    final double x;
    final double y;
    final double weight;

    Place(InstanceFile file) {
      x = file.nextDouble("a coordinate");
      y = file.nextDouble("a coordinate");
      weight = file.nextDouble("a cost or demand");
    }
  }

  private final List<Place> sites = new ArrayList<>();
  private final List<Place> customers = new ArrayList<>();

  private PlaneLocation(String fileName) throws IOException {
    InstanceFile file = new InstanceFile(fileName);
    int nbSites = file.nextInt(1, 100000, "the number of sites");
    int nbCustomers = file.nextInt(1, 1000000, "the number of customers");
    for (int i = 0; i < nbSites; i++) {
      sites.add(new Place(file));
    }
    for (int j = 0; j < nbCustomers; j++) {
      customers.add(new Place(file));
    }
  }

  /** The costs of serving a customer, site by site. */
  private double[] serviceCosts(Place customer) {
    return sites.stream()
        .mapToDouble(site -> customer.weight * Math.hypot(customer.x - site.x, customer.y - site.y))
        .toArray();
  }

  private static void run(ExampleProgram program) throws IOException {
    PlaneLocation instance = new PlaneLocation(program.instance);
    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      List<OXExpression> isOpen = new ArrayList<>();
      OXExpression nbOpen = model.createExpression(OXOperator.Sum);
      OXExpression cost = model.createExpression(OXOperator.Sum);
      for (Place site : instance.sites) {
        OXExpression open = model.createExpression(OXOperator.Bool);
        isOpen.add(open);
        nbOpen.addOperand(open);
        cost.addOperand(model.createExpression(OXOperator.Prod, site.weight, open));
      }
      ExampleProgram.requireAtLeast(model, nbOpen, 1);

      // A customer pays the dearest service less the best saving that an open facility offers: a
      // maximum of weighted decisions, which needs no expression for each pair of customer and site.
      for (Place customer : instance.customers) {
        double[] costs = instance.serviceCosts(customer);
        double dearest = Arrays.stream(costs).max().getAsDouble();
        OXExpression saving = model.createExpression(OXOperator.Max);
        for (int i = 0; i < costs.length; i++) {
          saving.addOperand(
              model.createExpression(OXOperator.Prod, dearest - costs[i], isOpen.get(i)));
        }
        cost.addOperand(dearest);
        cost.addOperand(model.createExpression(OXOperator.Prod, -1.0, saving));
      }
      model.addObjective(cost, OXObjectiveDirection.Minimize);
      model.close();
      program.solve(solver);
      program.report(solver, cost.getDoubleValue(), ExampleProgram.chosen(isOpen, 0));
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, PlaneLocation::run);
  }
}
