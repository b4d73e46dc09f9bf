import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import ombrix.OXExpression;
import ombrix.OXModel;
import ombrix.OXObjectiveDirection;
import ombrix.OXOperator;
import ombrix.Ombrix;

/**
 * Timetable: give the lessons of a school their periods of the week, so that pupils and teachers wait for as
 * few idle periods as possible. A class and a teacher have at most one lesson at a time, there is a room for
 * every lesson, and no course meets twice a day.
 *
 * <p>File: "days periods rooms", "classes teachers courses", for each course its class, its teacher and its
 * lessons a week, then the number of refusals and for each a teacher and a period of the week at which this
 * teacher cannot teach. Classes, teachers and periods count from 0.
 *
 * <p>With a solution file, the environment is kept beside it, in SOLUTION_FILE.oxb.gz. Such a file can be given
 * in place of the instance, here and to the program ombrix: the search goes on from the timetable in it, and
 * nothing has to be built again.
 */
public final class Timetable {
  private static final String ENVIRONMENT = ".oxb.gz";

  private final OXModel model;
  private final int nbDays;
  private final int nbPeriods;
  private final OXExpression[][] byClass;
  private final OXExpression[][] byTeacher;
  private final OXExpression[][] byRoom;
  private final OXExpression idle;

  /**
   * Reads the instance and builds its model. The lessons of a course are alike, so a decision says that the
   * course meets in a period and the number of its lessons is the sum of its decisions.
   */
  private Timetable(OXModel model, String fileName) throws IOException {
    this.model = model;
    InstanceFile file = new InstanceFile(fileName);
    nbDays = count(file, "the number of days");
    nbPeriods = count(file, "the number of periods");
    int nbRooms = count(file, "the number of rooms");
    byRoom = sums(1);
    byClass = sums(count(file, "the number of classes"));
    byTeacher = sums(count(file, "the number of teachers"));
    int[][] courses = readCourses(file);
    boolean[][] refuses = readRefusals(file);
    for (int c = 0; c < courses.length; c++) {
      addCourse(c, courses[c], refuses[courses[c][1]]);
    }
    requireAtMost(byRoom, nbRooms);
    requireAtMost(byClass, 1);
    requireAtMost(byTeacher, 1);
    idle = model.createExpression(OXOperator.Sum);
    addIdlePeriods(byClass);
    addIdlePeriods(byTeacher);
    model.addObjective(idle, OXObjectiveDirection.Minimize);
  }

  private static int count(InstanceFile file, String expected) {
    return file.nextInt(1, 1000, expected);
  }

  /** For each course its class, its teacher and its lessons a week. */
  private int[][] readCourses(InstanceFile file) {
    int[][] courses = new int[count(file, "the number of courses")][];
    for (int c = 0; c < courses.length; c++) {
      courses[c] = new int[] {
        file.nextInt(0, byClass.length - 1, "a class"),
        file.nextInt(0, byTeacher.length - 1, "a teacher"),
        file.nextInt(1, nbDays, "lessons a week")
      };
    }
    return courses;
  }

  private boolean[][] readRefusals(InstanceFile file) {
    boolean[][] refuses = new boolean[byTeacher.length][nbDays * nbPeriods];
    for (int left = file.nextInt(0, 1000000, "the number of refusals"); left > 0; left--) {
      int teacher = file.nextInt(0, byTeacher.length - 1, "a teacher");
      refuses[teacher][file.nextInt(0, nbDays * nbPeriods - 1, "a period of the week")] = true;
    }
    return refuses;
  }

  /** Lines of sums over the periods of the week, one line for each room, class or teacher. */
  private OXExpression[][] sums(int nbLines) {
    OXExpression[][] table = new OXExpression[nbLines][nbDays * nbPeriods];
    for (OXExpression[] line : table) {
      for (int slot = 0; slot < line.length; slot++) {
        line[slot] = model.createExpression(OXOperator.Sum, 0L);
      }
    }
    return table;
  }

  /** A period that the teacher refuses gets no decision at all. */
  private void addCourse(int c, int[] course, boolean[] refuses) {
    OXExpression nbLessons = model.createExpression(OXOperator.Sum);
    for (int day = 0; day < nbDays; day++) {
      OXExpression today = model.createExpression(OXOperator.Sum, 0L);
      for (int slot = day * nbPeriods; slot < (day + 1) * nbPeriods; slot++) {
        if (!refuses[slot]) {
          OXExpression meets = model.createExpression(OXOperator.Bool);
          meets.setName("course " + c + " slot " + slot);
          today.addOperand(meets);
          nbLessons.addOperand(meets);
          byRoom[0][slot].addOperand(meets);
          byClass[course[0]][slot].addOperand(meets);
          byTeacher[course[1]][slot].addOperand(meets);
        }
      }
      ExampleProgram.requireAtMost(model, today, 1);
    }
    if (nbLessons.getNbOperands() == 0) {
      throw new IllegalArgumentException("the teacher of course " + c + " is never there");
    }
    ExampleProgram.requireEqual(model, nbLessons, course[2]);
  }

  private void requireAtMost(OXExpression[][] table, int most) {
    for (OXExpression[] line : table) {
      for (OXExpression sum : line) {
        ExampleProgram.requireAtMost(model, sum, most);
      }
    }
  }

  private void addIdlePeriods(OXExpression[][] table) {
    for (OXExpression[] line : table) {
      for (int day = 0; day < nbDays; day++) {
        idle.addOperand(idlePeriods(line, day * nbPeriods));
      }
    }
  }

  /**
   * From the first lesson of a day to the last, less the lessons: two maxima give the ends, the first one
   * counted from the evening. A day off comes out below 0.
   */
  private OXExpression idlePeriods(OXExpression[] line, int start) {
    OXExpression last = model.createExpression(OXOperator.Max);
    OXExpression first = model.createExpression(OXOperator.Max);
    OXExpression idleOrOff =
        model.createExpression(OXOperator.Sum, last, first, (long) -nbPeriods);
    for (int p = 0; p < nbPeriods; p++) {
      OXExpression isBusy = line[start + p];
      last.addOperand(model.createExpression(OXOperator.Prod, p + 1L, isBusy));
      first.addOperand(model.createExpression(OXOperator.Prod, (long) (nbPeriods - p), isBusy));
      idleOrOff.addOperand(model.createExpression(OXOperator.Prod, -1L, isBusy));
    }
    return model.createExpression(OXOperator.Max, idleOrOff, 0L);
  }

  /**
   * The periods of all lessons, course after course, from the names of the decisions: they say the same
   * whether the model was built here or came from a file.
   */
  private static List<Integer> lessons(OXModel model) {
    List<Integer> slots = new ArrayList<>();
    for (int i = 0; i < model.getNbDecisions(); i++) {
      OXExpression meets = model.getDecision(i);
      if (meets.getIntValue() != 0) {
        String name = meets.getName();
        if (!name.matches("course [0-9]+ slot [0-9]{1,6}")) {
          throw new IllegalArgumentException(
              "found a decision named '" + name + "', expected 'course N slot N'");
        }
        slots.add(Integer.parseInt(name.substring(name.lastIndexOf(' ') + 1)));
      }
    }
    return slots;
  }

  private static void run(ExampleProgram program) throws IOException {
    try (Ombrix solver = new Ombrix()) {
      OXModel model = solver.getModel();
      if (program.instance.endsWith(ENVIRONMENT)) {
        solver.loadEnvironment(program.instance);
      } else {
        new Timetable(model, program.instance);
        model.close();
      }
      program.solve(solver);
      program.report(solver, model.getObjective(0).getIntValue(), lessons(model));
      if (program.solutionFile != null) {
        solver.saveEnvironment(program.solutionFile + ENVIRONMENT);
      }
    }
  }

  public static void main(String[] args) {
    ExampleProgram.run(args, Timetable::run);
  }
}
