import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXObjectiveDirection;
import ombrix.OXOperator;
import ombrix.Ombrix;

/**
 * Antennas: place antennas on a ring around the users, so that the power needed to reach every user from
 * the antenna nearest to him is smallest. Power grows with the square of the distance.
 *
 * <p>File: "antennas users radius", then for each user his two coordinates, seen from the centre of the
 * ring, and his demand. An antenna stands on one of 256 positions on the ring; position p is at the angle
 * 2 pi p / 256.
 */
public final class Antennas {
  /** Of a position. */
  private static final int NB_BITS = 8;

  /** A position in binary digits, and where on the ring of radius 1 it lies. */
  private static final class Antenna {
    final OXExpression position;
    final OXExpression x;
    final OXExpression y;

    Antenna(OXModel model) {
      position = model.createExpression(OXOperator.Sum);
      for (int b = 0; b < NB_BITS; b++) {
        OXExpression bit = model.createExpression(OXOperator.Bool);
        position.addOperand(model.createExpression(OXOperator.Prod, 1L << b, bit));
      }
      OXExpression angle =
          model.createExpression(OXOperator.Prod, 2 * Math.PI / (1 << NB_BITS), position);
      x = model.createExpression(OXOperator.Cos, angle);
      y = model.createExpression(OXOperator.Sin, angle);
    }
  }

  private Antennas() {}

  private static void run(ExampleProgram program) throws IOException {
    InstanceFile file = new InstanceFile(program.instance);
    int nbAntennas = file.nextInt(1, 10000, "the number of antennas");
    int nbUsers = file.nextInt(1, 1000000, "the number of users");
    double r = file.nextDouble("the radius");

    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      List<Antenna> antennas = new ArrayList<>();
      for (int i = 0; i < nbAntennas; i++) {
        antennas.add(new Antenna(model));
      }

      // The square of the distance between a user u and an antenna a on the ring is r^2 + u^2 - 2 u a,
      // so the nearest antenna is the one with the largest product u a.
      OXExpression power = model.createExpression(OXOperator.Sum);
      for (int j = 0; j < nbUsers; j++) {
        double x = file.nextDouble("a coordinate");
        double y = file.nextDouble("a coordinate");
        double demand = file.nextDouble("a demand");
        OXExpression nearest = model.createExpression(OXOperator.Max);
        for (Antenna antenna : antennas) {
          nearest.addOperand(
              model.createExpression(
                  OXOperator.Sum,
                  model.createExpression(OXOperator.Prod, r * x, antenna.x),
                  model.createExpression(OXOperator.Prod, r * y, antenna.y)));
        }
        power.addOperand(demand * (r * r + x * x + y * y));
        power.addOperand(model.createExpression(OXOperator.Prod, -2.0 * demand, nearest));
      }
      model.addObjective(power, OXObjectiveDirection.Minimize);
      model.close();
      program.solve(solver);

      List<Integer> positions = new ArrayList<>();
      for (Antenna antenna : antennas) {
        positions.add((int) antenna.position.getIntValue());
      }
      program.report(solver, power.getDoubleValue(), positions);
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, Antennas::run);
  }
}
