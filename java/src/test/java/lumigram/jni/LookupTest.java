package lumigram.jni;

import static lumigram.jni.Pictures.*;
import static org.junit.jupiter.api.Assertions.*;

import java.nio.file.Path;
import java.util.Arrays;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

class LookupTest {
  @TempDir Path folder;

  @Test
  void tagGroups() throws Exception {
    String many = "<tags name=\"many\">x</tags>".repeat(12);
    String document = "<emoji><tags name=\"é\">1</tags><tags name=\"b\">2</tags>" + many
        + "<tags name=\"é\">😀</tags></emoji><tags name=\"é\">behind</tags>";
    for (String kind : KINDS) {
      String path = save(folder, "picture." + kind, picture(kind, document));
      assertEquals("0 1,😀,behind,,,,,,,,old", lookUp(path, "é", 11), kind);
      assertEquals("0 x,x,x,x,x,x,x,x,x,x", lookUp(path, "many", 10), kind);
      assertEquals("-99 old,old,old,old,old,old,old,old,old", lookUp(path, "é", 9), kind);
      assertEquals("0 ,,,,,,,,,", lookUp(path, "é".repeat(127) + "x", 10), kind);
      assertEquals("-99 " + "old,".repeat(9) + "old", lookUp(path, "é".repeat(128), 10), kind);
    }
    assertEquals("-10 old", lookUp("missing.gif", null, 1));
    assertEquals("-10 " + "old,".repeat(9) + "old", lookUp("a.gif", "x".repeat(257), 10));
  }

  /** The status of a lookup and what it leaves in an array of the given length. */
  private static String lookUp(String path, String name, int length) {
    String[] results = new String[length];
    Arrays.fill(results, "old");
    return LumigramJni.getLumigramTagInfo(path, name, results) + " " + String.join(",", results);
  }

  @Test
  void blobs() throws Exception {
    byte[] large = "large".repeat(200_000).getBytes();
    for (String kind : new String[] {"gif", "png"}) {
      byte[] content = picture(kind, null,
          blob(kind, "OTHER000000", "x3", bytes(3)), blob(kind, "EMJ00000001", "x1", bytes(1)),
          blob(kind, "EMJ00000001", "x2", large));
      String path = save(folder, "picture." + kind, content);
      assertBlob(bytes(1), path, "EMJ", "x1");
      assertBlob(large, path, "EMJ00000001", "x2");
      assertBlob(bytes(1), path, "EMJ", "x");
      assertBlob(bytes(3), path, "", "");
      assertBlob(null, path, "EMJ", "x3");
      assertBlob(null, path, "EMJ", "x".repeat(70_000));
      assertBlob(null, save(folder, "cut." + kind, Arrays.copyOf(content, 999_999)), "EMJ", "x2");
    }
    assertBlob(null, save(folder, "a.jpg", picture("jpg", null)), "", "");
    assertBlob(null, null, "", "");
  }

  static void assertBlob(byte[] expected, String path, String label, String name) {
    byte[] blob = LumigramJni.getLumigramApplicationExtensionInfo(path, label, name);
    assertArrayEquals(expected, blob, () -> path + " " + label + " " + name);
  }
}
