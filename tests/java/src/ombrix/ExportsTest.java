package ombrix;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Set;
import java.util.TreeSet;
import org.junit.jupiter.api.Test;

/** The binary interface: which functions the native library exports, and nothing else. */
class ExportsTest {
  private static final String PREFIX = "Java_ombrix_ombrixnativejavaJNI_";

  private final Set<String> expected = new TreeSet<>();

  private void family(String className, String... operations) {
    for (String operation : operations) {
      add(className + "_" + operation);
    }
  }

  private void overloads(String className, String operation, int count) {
    for (int i = 0; i < count; i++) {
      add(className + "_" + operation + "__SWIG_" + i);
    }
  }

  /** In a mangled name an underscore is written _1. */
  private void add(String name) {
    expected.add(PREFIX + name.replace("_", "_1"));
  }

  private void addAll() {
    add("new_Ombrix");
    add("delete_Ombrix");
    add("delete_OXVersion");
    add("delete_OXException");
    family("Ombrix", "getState", "getModel", "getParam", "solve", "stop", "createPhase", "getPhase",
        "getNbPhases", "getSolution", "getStatistics", "toString", "getInfo", "saveEnvironment",
        "loadEnvironment");
    family("OXModel", "getOmbrix", "getNbExpressions", "getNbDecisions", "getDecision",
        "addConstraint", "getNbConstraints", "getConstraint", "addObjective", "getNbObjectives",
        "getObjective", "getObjectiveDirection", "getNbOperands", "close", "open", "isClosed",
        "toString");
    overloads("OXModel", "createConstant", 2);
    overloads("OXModel", "createExpression", 26);
    overloads("OXModel", "getExpression", 2);
    family("OXExpression", "getOmbrix", "getModel", "getOperator", "getIndex", "isConstant",
        "isDecision", "isConstraint", "isObjective", "isDouble", "isInt", "isBool", "isArray",
        "getOperand", "getNbOperands", "setIntValue", "setDoubleValue", "getValue", "getIntValue",
        "getDoubleValue", "setName", "isNamed", "getName", "toString", "getInfo");
    overloads("OXExpression", "addOperand", 3);
    overloads("OXExpression", "setOperand", 3);
    overloads("OXExpression", "setValue", 2);
    family("OXParam", "getOmbrix", "setSeed", "getSeed", "setNbThreads", "getNbThreads",
        "setAnnealingLevel", "getAnnealingLevel", "setVerbosity", "getVerbosity",
        "setTimeBetweenDisplays", "getTimeBetweenDisplays", "setIntObjectiveBound",
        "setDoubleObjectiveBound", "getObjectiveBound", "getIntObjectiveBound",
        "getDoubleObjectiveBound", "setAdvancedParam", "toString");
    overloads("OXParam", "setObjectiveBound", 2);
    overloads("OXParam", "getAdvancedParam", 2);
    family("OXPhase", "getOmbrix", "setTimeLimit", "getTimeLimit", "setIterationLimit",
        "getIterationLimit", "setOptimizedObjective", "getOptimizedObjective", "getStatistics",
        "toString");
    family("OXSolution", "getOmbrix", "setIntValue", "setDoubleValue", "getValue", "getIntValue",
        "getDoubleValue", "getStatus", "clear");
    overloads("OXSolution", "setValue", 2);
    family("OXStatistics", "getOmbrix", "getRunningTime", "getNbIterations", "getNbMoves",
        "getNbAcceptedMoves", "getNbImprovingMoves", "getNbInfeasibleMoves", "getNbRejectedMoves",
        "getPercentAcceptedMoves", "getPercentImprovingMoves", "getPercentRejectedMoves",
        "getPercentInfeasibleMoves", "toString", "getInfo");
    family("OXVersion", "getMajorVersionNumber", "getMinorVersionNumber", "getBuildDate",
        "getVersionCode", "getPlatform", "getVersion", "getCopyright", "getInfo");
  }

  private static Set<String> exportsOf(String library) throws IOException, InterruptedException {
    Process nm = new ProcessBuilder("nm", "-D", "--defined-only", "--format=posix", library).start();
    String output = new String(nm.getInputStream().readAllBytes(), StandardCharsets.UTF_8);
    assertEquals(0, nm.waitFor());
    Set<String> names = new TreeSet<>();
    output.lines().forEach(line -> names.add(line.split(" ")[0]));
    return names;
  }

  @Test
  void theLibraryExportsThePublicOperationsAndNothingElse() throws Exception {
    addAll();
    assertEquals(159, expected.size());
    assertEquals(expected, exportsOf(System.getProperty("ombrix.library")));
  }

  @Test
  void everyFailureNamesItsExport() throws IOException {
    byte[] library = Files.readAllBytes(Path.of(System.getProperty("ombrix.library")));
    assertFalse(new String(library, StandardCharsets.ISO_8859_1).contains("$wrapname"));
  }
}
