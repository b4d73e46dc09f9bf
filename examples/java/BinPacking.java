import java.io.IOException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.List;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXObjectiveDirection;
import ombrix.OXOperator;
import ombrix.Ombrix;

/**
 * Bin packing: put every item into a bin, none above its capacity, with as few bins as possible.
 *
 * <p>File: the number of items, the capacity, the sizes of the items.
 */
public final class BinPacking {
  private final int capacity;
  private final int[] sizes;

  private BinPacking(String fileName) throws IOException {
    InstanceFile file = new InstanceFile(fileName);
    sizes = new int[file.nextInt(1, 100000, "the number of items")];
    capacity = file.nextInt(1, 1000000000, "the capacity");
    for (int i = 0; i < sizes.length; i++) {
      sizes[i] = file.nextInt(0, capacity, "a size");
    }
  }

  /**
   * Puts the items, largest first, each into the first bin that has room. It bounds the bins that the model
   * needs and starts the search.
   */
  private int[] packGreedily() {
    List<Integer> order = new ArrayList<>();
    for (int i = 0; i < sizes.length; i++) {
      order.add(i);
    }
    order.sort(Comparator.comparingInt(i -> -sizes[i]));
    int[] binOf = new int[sizes.length];
    List<Integer> room = new ArrayList<>();
    for (int i : order) {
      int bin = 0;
      while (bin < room.size() && room.get(bin) < sizes[i]) {
        ++bin;
      }
      if (bin == room.size()) {
        room.add(capacity);
      }
      room.set(bin, room.get(bin) - sizes[i]);
      binOf[i] = bin;
    }
    return binOf;
  }

  /** What the bin holds, at most its capacity. */
  private OXExpression createLoad(OXModel model, OXExpression[][] isIn, int bin) {
    OXExpression load = model.createExpression(OXOperator.Sum);
    for (int i = 0; i < sizes.length; i++) {
      load.addOperand(model.createExpression(OXOperator.Prod, (long) sizes[i], isIn[i][bin]));
    }
    ExampleProgram.requireAtMost(model, load, capacity);
    return load;
  }

  private static OXExpression createNbUsed(OXModel model, OXExpression[][] isIn) {
    OXExpression nbUsed = model.createExpression(OXOperator.Sum);
    for (int b = 0; b < isIn[0].length; b++) {
      OXExpression isUsed = model.createExpression(OXOperator.Or);
      for (OXExpression[] item : isIn) {
        isUsed.addOperand(item[b]);
      }
      nbUsed.addOperand(isUsed);
    }
    return nbUsed;
  }

  /**
   * Hardly any move empties a bin, so the number of bins tells the search nothing for long. A second objective
   * leads it on: the squares of the loads, whose sum grows as full bins fill up at the cost of emptier ones,
   * until the emptiest has nothing left.
   */
  private OXExpression createFullness(OXModel model, OXExpression[][] isIn) {
    OXExpression fullness = model.createExpression(OXOperator.Sum);
    for (int b = 0; b < isIn[0].length; b++) {
      OXExpression load = createLoad(model, isIn, b);
      fullness.addOperand(model.createExpression(OXOperator.Prod, load, load));
    }
    return fullness;
  }

  private static void run(ExampleProgram program) throws IOException {
    BinPacking instance = new BinPacking(program.instance);
    int[] start = instance.packGreedily();
    int nbBins = Arrays.stream(start).max().getAsInt() + 1;

    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      OXExpression[][] isIn = ExampleProgram.createTable(model, start.length, nbBins);
      OXExpression nbUsed = createNbUsed(model, isIn);
      model.addObjective(nbUsed, OXObjectiveDirection.Minimize);
      model.addObjective(instance.createFullness(model, isIn), OXObjectiveDirection.Maximize);
      model.close();
      for (int i = 0; i < start.length; i++) {
        isIn[i][start[i]].setValue(1L);
      }
      program.solve(solver);
      program.report(solver, nbUsed.getIntValue(), ExampleProgram.chosenColumns(isIn));
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, BinPacking::run);
  }
}
