import java.io.IOException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import java.util.TreeSet;
import java.util.concurrent.TimeUnit;
import java.util.stream.Collectors;
import java.util.stream.IntStream;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXObjectiveDirection;
import ombrix.OXOperator;
import ombrix.OXParam;
import ombrix.Ombrix;

/**
 * Graph colouring: give every vertex a colour, different ones to adjacent vertices, with as few colours as
 * possible. A greedy colouring comes first; then models for one colour less are solved, again and again,
 * until the time is over or the best known number is reached.
 *
 * <p>File: "c" comments, "p edge VERTICES EDGES" (or "p col"), "e U V" for each edge, vertices from 1.
 */
public final class GraphColouring {
  /** Some files list an edge in both directions: the sets keep it once. */
  private final List<Set<Integer>> neighbours = new ArrayList<>();

  private GraphColouring(String fileName) throws IOException {
    InstanceFile file = new InstanceFile(fileName);
    while (!file.atEnd()) {
      String kind = file.nextWord("a word");
      if (kind.equals("p")) {
        file.nextWord("edge or col");
        int n = file.nextInt(1, 10000000, "the number of vertices");
        file.nextInt("the number of edges");
        for (int v = 0; v < n; v++) {
          neighbours.add(new TreeSet<>());
        }
      } else if (kind.equals("e")) {
        readEdge(file);
      } else {
        file.skipLine();
      }
    }
    if (neighbours.isEmpty()) {
      throw new IllegalArgumentException(fileName + ": found no line 'p edge', expected one");
    }
  }

  private void readEdge(InstanceFile file) {
    int u = file.nextInt(1, neighbours.size(), "a vertex") - 1;
    int v = file.nextInt(1, neighbours.size(), "a vertex") - 1;
    if (u != v) {
      neighbours.get(u).add(v);
      neighbours.get(v).add(u);
    }
  }

  /** Colours the vertices in order of falling degree, each with the first colour that its neighbours leave. */
  private int[] colourGreedily() {
    int n = neighbours.size();
    List<Integer> order = new ArrayList<>();
    for (int v = 0; v < n; v++) {
      order.add(v);
    }
    order.sort(Comparator.comparingInt(v -> -neighbours.get(v).size()));
    int[] colours = new int[n];
    Arrays.fill(colours, n);
    for (int v : order) {
      Set<Integer> taken = new HashSet<>();
      neighbours.get(v).forEach(u -> taken.add(colours[u]));
      int colour = 0;
      while (taken.contains(colour)) {
        ++colour;
      }
      colours[v] = colour;
    }
    return colours;
  }

  private static int nbColours(int[] colouring) {
    return Arrays.stream(colouring).max().getAsInt() + 1;
  }

  /**
   * The edges whose ends have one colour. The colour of a vertex is a number, so an edge is one comparison,
   * whatever the number of colours.
   */
  private OXExpression createConflicts(OXModel model, OXExpression[][] hasColour) {
    OXExpression[] colours = ExampleProgram.createChosenColumns(model, hasColour);
    OXExpression conflicts = model.createExpression(OXOperator.Sum);
    for (int u = 0; u < colours.length; u++) {
      for (int v : neighbours.get(u)) {
        if (v > u) {
          conflicts.addOperand(model.createExpression(OXOperator.Eq, colours[u], colours[v]));
        }
      }
    }
    if (conflicts.getNbOperands() == 0) {
      conflicts.addOperand(0L);
    }
    return conflicts;
  }

  /**
   * A number of conflicts in steps of a grain, rounded up: 0 still means that none is left. Within a step the
   * search walks freely over hills that conflicts counted one by one make too steep.
   */
  private static OXExpression inSteps(OXModel model, OXExpression conflicts, long grain) {
    OXExpression raised = model.createExpression(OXOperator.Sum, conflicts);
    raised.addOperand(grain - 1);
    return model.createExpression(OXOperator.Div, raised, model.createConstant(grain));
  }

  private static void setSearch(OXParam param) {
    // A search that goes back further ends with fewer conflicts. Each move takes a vertex that is in
    // conflict: others only carry the walk to the upper end of a step. Swaps change nothing here, and
    // planning ahead costs more moves than it finds.
    param.setAnnealingLevel(9);
    param.setAdvancedParam("targetingLevel", 10);
    param.setAdvancedParam("moveSwapEnabled", 0);
    param.setAdvancedParam("advancedMovesEnabled", 0);
  }

  /**
   * The best colouring found with so many colours, from one that may have more: the vertices of the colours
   * that are gone start with any. Conflicts are counted and not forbidden, so the search may pass through
   * them; it ends when none is left or when the time is over.
   */
  private int[] colourWith(int nbAllowed, long grain, int[] start, int seconds) {
    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      OXExpression[][] hasColour = ExampleProgram.createTable(model, start.length, nbAllowed);
      OXExpression conflicts = createConflicts(model, hasColour);
      model.addObjective(inSteps(model, conflicts, grain), OXObjectiveDirection.Minimize);
      model.close();
      setSearch(solver.getParam());
      for (int v = 0; v < start.length; v++) {
        hasColour[v][start[v] < nbAllowed ? start[v] : v % nbAllowed].setValue(1L);
      }
      ExampleProgram.solveFor(solver, seconds);
      return ExampleProgram.chosenColumns(hasColour).stream().mapToInt(c -> c).toArray();
    }
  }

  private boolean hasConflict(int[] colouring) {
    return IntStream.range(0, colouring.length)
        .anyMatch(u -> neighbours.get(u).stream().anyMatch(v -> colouring[u] == colouring[v]));
  }

  /** What is left of the time given on the command line. */
  private static final class Countdown {
    private final long end;

    Countdown(int seconds) {
      end = System.nanoTime() + TimeUnit.SECONDS.toNanos(seconds);
    }

    int secondsLeft() {
      return (int) Math.max(Math.ceil((end - System.nanoTime()) / 1e9), 0);
    }
  }

  /**
   * Looks for a colouring with so many colours until it has one or the time is over; what it returns in the
   * second case has conflicts. Which grain is best depends on the graph, so they take turns, and the turns get
   * longer.
   */
  private int[] lookFor(int nbColoursWanted, int[] start, Countdown countdown) {
    int[] colouring = start;
    for (int turn = 4; countdown.secondsLeft() > 0; turn *= 2) {
      for (long grain = 4; grain >= 2; --grain) {
        int seconds = Math.min(turn, countdown.secondsLeft());
        if (seconds == 0) {
          break;
        }
        System.out.println("looking for " + nbColoursWanted + " colours, conflicts in steps of " + grain);
        colouring = colourWith(nbColoursWanted, grain, colouring, seconds);
        if (!hasConflict(colouring)) {
          return colouring;
        }
      }
    }
    return colouring;
  }

  private static void run(ExampleProgram program) throws IOException {
    GraphColouring graph = new GraphColouring(program.instance);
    Countdown countdown = new Countdown(program.seconds);
    int goal = program.bestKnown == null ? 1 : (int) Math.max(program.bestKnown, 1);
    int[] best = graph.colourGreedily();
    while (nbColours(best) > goal && countdown.secondsLeft() > 0) {
      int[] better = graph.lookFor(nbColours(best) - 1, best, countdown);
      if (graph.hasConflict(better)) {
        break;
      }
      best = better;
    }
    program.reportAnswer(nbColours(best), Arrays.stream(best).boxed().collect(Collectors.toList()));
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, GraphColouring::run);
  }
}
