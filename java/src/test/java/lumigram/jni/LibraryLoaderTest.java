package lumigram.jni;

import static java.nio.charset.StandardCharsets.UTF_8;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.File;
import java.nio.channels.FileChannel;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardOpenOption;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import javax.tools.ToolProvider;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.condition.EnabledIfSystemProperty;
import org.junit.jupiter.api.io.TempDir;

/** Loads the library in other virtual machines. Needs lumigram.jar with the library for this one. */
@EnabledIfSystemProperty(named = "os.arch", matches = "amd64")
class LibraryLoaderTest {
  private static final String TMPDIR = "or java.io.tmpdir to a folder where you may create files";
  private static final String BY_NAME = "Tried System.loadLibrary(\"LumigramJniNative\"): ";

  @TempDir Path work;
  private Path jar;
  private Path temporary;

  /** Prints the result of a call with the property java.vm.name of the argument, if any. */
  public static class Call {
    public static void main(String[] vmName) throws Exception {
      if (vmName.length > 0) {
        System.setProperty("java.vm.name", vmName[0]);
      }
      try {
        System.out.print(LumigramJni.getLumigramTagInfo(null, null, null));
        System.setProperty("lumigram.library.path", "gone");
        Class.forName("lumigram.jni.LumigramFiles");  // does not load the library again
      } catch (UnsatisfiedLinkError error) {
        System.out.print(error.getMessage());
      }
    }
  }

  @BeforeEach
  void copyTheJar() throws Exception {
    String original =
        LumigramJni.class.getProtectionDomain().getCodeSource().getLocation().getPath();
    jar = Files.createDirectory(work.resolve("a b%20c")).resolve("lumigram.jar");
    Files.copy(new File(original).toPath(), jar);
    temporary = Files.createDirectory(work.resolve("temporary"));
  }

  private String call(String option, String... arguments) throws Exception {
    String tests = Call.class.getProtectionDomain().getCodeSource().getLocation().getPath();
    String classPath = work + "/first:" + jar + ":" + tests;
    List<String> command = new ArrayList<>(Arrays.asList(
        System.getProperty("java.home") + "/bin/java", "-XX:TieredStopAtLevel=1", "-Xcheck:jni",
        "-Djava.io.tmpdir=" + temporary, option, "-cp", classPath, Call.class.getName()));
    command.addAll(Arrays.asList(arguments));
    Process process = new ProcessBuilder(command).redirectErrorStream(true).start();
    return new String(process.getInputStream().readAllBytes(), UTF_8);
  }

  private void assertCall(String wanted, String option, String... arguments) throws Exception {
    String got = call(option, arguments);
    boolean isAsWanted = wanted.equals("works") ? got.equals("-10") : got.contains(wanted);
    assertTrue(isAsWanted, option + String.join("", arguments) + ": " + wanted + "\ngot: " + got);
  }

  @Test
  void findsTheLibraryOrNamesTheWaysOut() throws Exception {
    String property = "Set the system property lumigram.library.path to the path";
    assertCall("works", "-Da=b");
    assertCall("works", "-Dos.arch=amd64");
    assertCall("works", "-Dos.arch=x86_64");
    assertCall("The jar has no library for linux/pdp11. " + BY_NAME, "-Dos.arch=pdp11");
    assertCall("The jar has no library for linux/aarch64. " + BY_NAME, "-Dos.arch=arm64");
    assertCall(property, "-Dos.arch=pdp11");
    assertCall("in a folder of java.library.path, which is now \"/no\"", "-Djava.library.path=/no",
        "Dalvik");
    assertCall("be loaded. " + BY_NAME, "-Da=b", "Dalvik");
    assertCall("/no.so\"): Can't load library: ", "-Dlumigram.library.path=no.so");
    assertCall("NoSuchFileException: /no. " + property, "-Djava.io.tmpdir=/no");
    assertCall(TMPDIR, "-Djava.io.tmpdir=/no");
    assertEquals("[]", Arrays.toString(temporary.toFile().list()));
  }

  @Test
  void refusesAFolderWhereOthersCanReplaceFiles() throws Exception {
    Object[][] rows = {
        {0777, "not sticky"}, {0720, "not sticky"}, {01777, "works"}, {0755, "works"}};
    for (Object[] row : rows) {
      Files.setAttribute(temporary, "unix:mode", row[0]);
      assertCall((String) row[1], "-Da=b");
    }
    assertEquals("[]", Arrays.toString(temporary.toFile().list()));
  }

  @Test
  void removesTheFoldersOfDeadVirtualMachines() throws Exception {
    for (String name : new String[] {"dead", "alive", "empty", "unknown"}) {
      Path folder = Files.createDirectory(temporary.resolve("lumigram-library-" + name));
      if (!name.equals("empty")) {
        Files.createFile(folder.resolve(name.equals("unknown") ? "mine" : "in-use"));
        Files.createFile(folder.resolve("libLumigramJniNative.so"));
      }
    }
    Path lock = temporary.resolve("lumigram-library-alive/in-use");
    try (FileChannel channel = FileChannel.open(lock, StandardOpenOption.WRITE)) {
      channel.lock();
      assertCall("works", "-Da=b");
    }
    String[] left = temporary.toFile().list();
    Arrays.sort(left);
    assertEquals("[lumigram-library-alive, lumigram-library-unknown]", Arrays.toString(left));
  }

  @Test
  void refusesALibraryOfAnotherVersion() throws Exception {
    String[] numbers = Version.ofClasses().split("\\.");
    String[][] rows = {{numbers[0] + "." + numbers[1] + ".987", "works"},
        {numbers[0] + ".987.0",
            ".987.0, and the native library that the jar has loaded has version "
                + Version.ofClasses()}};
    for (String[] row : rows) {
      Path source = work.resolve("Version.java");
      Files.write(source,
          ("package lumigram.jni; class Version { static String ofClasses() { return \"" + row[0]
              + "\"; } }")
              .getBytes(UTF_8));
      ToolProvider.getSystemJavaCompiler().run(
          null, null, null, "-d", work + "/first", source.toString());
      assertCall(row[1], "-Da=b");
    }
  }
}
