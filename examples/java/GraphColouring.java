import java.io.IOException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import java.util.TreeSet;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXObjectiveDirection;
import ombrix.OXOperator;
import ombrix.Ombrix;

/**
 * Graph colouring: give every vertex a colour, different ones to adjacent vertices, with as few colours as
 * possible.
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

  /**
   * Colours the vertices in order of falling degree, each with the first colour that its neighbours leave.
   * It bounds the colours that the model needs and starts the search.
   */
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

  private static void run(ExampleProgram program) throws IOException {
    GraphColouring graph = new GraphColouring(program.instance);
    int n = graph.neighbours.size();
    int[] start = graph.colourGreedily();
    int nbColours = Arrays.stream(start).max().getAsInt() + 1;

    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      OXExpression[][] hasColour = ExampleProgram.createTable(model, n, nbColours);
      for (int u = 0; u < n; u++) {
        for (int v : graph.neighbours.get(u)) {
          for (int c = 0; v > u && c < nbColours; c++) {
            ExampleProgram.requireAtMost(
                model,
                model.createExpression(OXOperator.Sum, hasColour[u][c], hasColour[v][c]), 1);
          }
        }
      }
      OXExpression nbUsed = model.createExpression(OXOperator.Sum);
      for (int c = 0; c < nbColours; c++) {
        OXExpression isUsed = model.createExpression(OXOperator.Or);
        for (int v = 0; v < n; v++) {
          isUsed.addOperand(hasColour[v][c]);
        }
        nbUsed.addOperand(isUsed);
      }
      model.addObjective(nbUsed, OXObjectiveDirection.Minimize);
      model.close();
      for (int v = 0; v < n; v++) {
        hasColour[v][start[v]].setValue(1L);
      }
      program.solve(solver);
      program.report(solver, nbUsed.getIntValue(), ExampleProgram.chosenColumns(hasColour));
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, GraphColouring::run);
  }
}
