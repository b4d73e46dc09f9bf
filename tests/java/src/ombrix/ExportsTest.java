package ombrix;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
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

  private static final List<Class<?>> PROXIES =
      List.of(
          Ombrix.class, OXModel.class, OXExpression.class, OXParam.class, OXPhase.class,
          OXSolution.class, OXStatistics.class, OXVersion.class);

  /** Public methods of the proxies that are not native operations under the same name. */
  private static final Set<String> WRITTEN_IN_JAVA =
      Set.of(
          "Ombrix.fromEnvironment", "Ombrix.close", "Ombrix.delete", "OXVersion.delete");

  private static boolean isOperation(Method method) {
    String name = method.getDeclaringClass().getSimpleName() + "." + method.getName();
    return Modifier.isPublic(method.getModifiers())
        && !WRITTEN_IN_JAVA.contains(name)
        && !method.getName().equals("equals")
        && !method.getName().equals("hashCode");
  }

  /** An object crosses as its handle and the proxy that keeps it, an enumeration as a number. */
  private static void addNativeTypes(Class<?> type, List<String> types) {
    if (type.isEnum()) {
      types.add("int");
    } else {
      if (PROXIES.contains(type)) {
        types.add("long");
      }
      types.add(type.getSimpleName());
    }
  }

  private static String nativeFormOf(Method operation) {
    Class<?> owner = operation.getDeclaringClass();
    List<String> types = new ArrayList<>();
    if (!Modifier.isStatic(operation.getModifiers())) {
      addNativeTypes(owner, types);
    }
    for (Class<?> type : operation.getParameterTypes()) {
      addNativeTypes(type, types);
    }
    List<String> result = new ArrayList<>();
    addNativeTypes(operation.getReturnType(), result);
    return result.get(0) + " " + owner.getSimpleName() + "_" + operation.getName() + types;
  }

  private static String formOf(Method function) {
    List<String> types = new ArrayList<>();
    for (Class<?> type : function.getParameterTypes()) {
      types.add(type.getSimpleName());
    }
    String name = function.getName().replaceFirst("__SWIG_\\d+$", "");
    return function.getReturnType().getSimpleName() + " " + name + types;
  }

  @Test
  void everyObjectArgumentIsItsHandleAndItsProxyAndADeleteTakesTheHandleAlone() {
    List<String> forms = new ArrayList<>();
    forms.add("long new_Ombrix[]");
    forms.add("void delete_Ombrix[long]");
    forms.add("void delete_OXVersion[long]");
    forms.add("void delete_OXException[long]");
    for (Class<?> proxy : PROXIES) {
      for (Method method : proxy.getDeclaredMethods()) {
        if (isOperation(method)) {
          forms.add(nativeFormOf(method));
        }
      }
    }
    Collections.sort(forms);
    List<String> declared = new ArrayList<>();
    for (Method method : ombrixnativejavaJNI.class.getDeclaredMethods()) {
      if (Modifier.isNative(method.getModifiers())) {
        declared.add(formOf(method));
      }
    }
    Collections.sort(declared);
    assertEquals(159, declared.size());
    assertEquals(String.join("\n", forms), String.join("\n", declared));
    assertTrue(
        declared.contains("void OXModel_addConstraint[long, OXModel, long, OXExpression]"));
    assertTrue(
        declared.contains("long OXModel_createExpression[long, OXModel, int, long, OXExpression]"));
  }
}
