package lumigram.jni;

import static java.util.Arrays.copyOf;
import static java.util.Collections.nCopies;
import static lumigram.jni.Pictures.*;
import static org.junit.jupiter.api.Assertions.*;

import java.lang.reflect.Array;
import java.nio.file.*;
import java.util.*;
import java.util.concurrent.FutureTask;
import java.util.function.Consumer;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class ReadAttributesTest {
  static final String FULL =
      "<emoji><label><name>smile</name><note>笑い</note><part>記号</part></label>"
          + "<label><name>wink</name></label><category>face</category><type>anime</type>"
          + "<tags name=\"a\">x</tags><tags name=\"b\">y</tags></emoji>";

  static final String FULL_TEXT =
      "a,b | a,b,98* | x,y,98* | face anime | smile,wink,8*old | 笑い,,8*old | 21,0,8*-7";

  @TempDir Path folder;

  @ParameterizedTest
  @CsvSource(delimiter = ';', nullValues = "none", value = {
    FULL + ";" + FULL_TEXT,
    "none; old | 100*old | 100*old | old old | 10*old | 10*old | 10*-7",
    // A label without a name spoils the labels only, and a tag may be empty.
    "<emoji><label><name>n</name></label><label></label><category>c</category>"
        + "<tags name=\"a\"></tags></emoji>; a | a,99* | 100*old | c old | 10*old | 10*old | 10*-7",
  })
  void storesWhatThePictureCarriesAndNoMore(String document, String expected) throws Exception {
    for (String kind : KINDS) {
      byte[] content = picture(kind, document);
      String path = save(folder, "picture." + kind, content);
      LumigramAttrInfo info = read(path);
      assertEquals("7x5 pop 0 | " + expected, text(info), kind);
      assertEquals(content.length, info.mFileSize);
      assertArrayEquals(content, Files.readAllBytes(Path.of(path)), "reading changed a " + kind);
    }
  }

  @Test
  void badFilesNeverStopABatch() throws Exception {
    byte[] popMarker = bytes(0x21, 0xFF, 11, "HTMLEMJI1.0", 1, 1, 0);
    byte[] png = picture("png", FULL);
    String[] paths = {
      save(folder, "😀 笑.GIF", picture("gif", FULL, popMarker)),
      null,
      save(folder, "photo.bmp", png),
      folder + "/missing.gif",
      save(folder, "empty.png", bytes()), // takes five seconds
      save(folder, "cut.png", copyOf(png, png.length - 9)),
      save(folder, "wide.gif", bytes("GIF89a", 193, 3, 5, 0, 0, 0, 0)),
      save(folder, "no-object.png", png),
      save(folder, "photo.jpeg", picture("jpg", FULL))
    };
    LumigramAttrInfo[] infos = marked(9);
    infos[7] = null;
    assertArrayEquals(
        bytes(0, -99, -21, -20, -99, -30, -31, -99, 0), read(Arrays.asList(paths), infos));
    assertEquals("7x5 pop 1 | " + FULL_TEXT, text(infos[0]));
    String untouched = text(marked(1)[0]);
    assertEquals(untouched, text(infos[4]));
    assertEquals(untouched.replace("-7x-7 pop -7", "7x5 pop 0"), text(infos[5]));
    assertEquals(untouched.replace("-7x-7 pop -7", "961x5 pop 1"), text(infos[6]));
    assertEquals("7x5 pop 0 | " + FULL_TEXT, text(infos[8]));
  }

  static class OnlyNumbers {
    long mFileSize, mHeight, mWidth, mOrnamailPop;
  }

  @Test
  void objectsThatCannotHoldWhatIsDueFailTheirFileOnly() throws Exception {
    String full = save(folder, "full.png", picture("png", FULL));
    String plain = save(folder, "plain.png", picture("png", null));
    String[] ninetyNine = new String[99];
    String[] one = new String[1];
    byte[] oneByte = new byte[1];
    List<Consumer<LumigramAttrInfo>> changes = List.of(
        info -> info.mTagsName = ninetyNine, info -> info.mTagsElement = ninetyNine,
        info -> info.mName = null, info -> info.mNote = one, info -> info.mPart = oneByte,
        info -> info.mName = new String[2], info -> info.mPart = new byte[2]);
    LumigramAttrInfo[] infos = marked(7);
    for (int i = 0; i < 7; i++) changes.get(i).accept(infos[i]);
    assertArrayEquals(bytes(-99, -99, -99, -99, -99, 0, 0), read(nCopies(7, full), infos));
    assertEquals("99*null null 0", runs(ninetyNine) + " " + runs(one) + " " + runs(oneByte));
    Object[] others = {"no fields", new OnlyNumbers(), new OnlyNumbers(), marked(1)[0]};
    assertArrayEquals(bytes(-99, -99, 0, 0), read(List.of(full, full, plain, full), others));
  }

  @Test
  void limitsOfFilesAndDocuments() throws Exception {
    byte[] full = picture("gif", FULL);
    String padding = "x".repeat(10_240 - bytes(FULL).length);
    List<String> paths = List.of(
        save(folder, "2097152.gif", copyOf(full, 2_097_152)),
        save(folder, "2097153.gif", copyOf(full, 2_097_153)),
        save(folder, "10240.png", picture("png", FULL + padding)),
        save(folder, "10241.png", picture("png", FULL + padding + "x")));
    LumigramAttrInfo[] infos = marked(4);
    assertArrayEquals(bytes(0, -99, 0, -41), read(paths, infos));
    assertEquals(2_097_152, infos[0].mFileSize);
    assertEquals("7x5 pop 0 | " + FULL_TEXT, text(infos[2]));
  }

  @Test
  void aLargeDocumentIsCutToTheLimitsAndLeavesNoTraceInTheNextFile() throws Exception {
    String label = "<label><name>n</name><note>o</note><part>名詞</part></label>";
    String document = "<emoji>" + label.repeat(12);
    for (int i = 0; i < 110; i++) document += "<tags name=\"g" + i / 10 + "\">x</tags>";
    String large = save(folder, "large.gif", picture("gif", document + "</emoji>"));
    String full = save(folder, "full.png", picture("png", FULL));
    String bare = save(folder, "bare.jpg", picture("jpg", "<emoji></emoji>"));
    LumigramAttrInfo[] infos = marked(3);
    assertArrayEquals(bytes(0, 0, 0), read(List.of(large, full, bare), infos));
    assertEquals(
        "7x5 pop 0 | g0,g1,g2,g3,g4,g5,g6,g7,g8,g9 | 10*g0,10*g1,10*g2,10*g3,10*g4,10*g5,10*g6,"
            + "10*g7,10*g8,10*g9 | 100*x | old old | 10*n | 10*o | 10*1",
        text(infos[0]));
    assertEquals("7x5 pop 0 | " + FULL_TEXT, text(infos[1]));
    assertEquals(text(marked(1)[0]).replace("-7x-7 pop -7", "7x5 pop 0"), text(infos[2]));
  }

  @ParameterizedTest
  @CsvSource({
    "F09F9880, 😀", "EDA0BDEDB880, 😀", "E38182, あ", "C080, NUL", "EDA0BD, \uD83D", "FF, ?",
    "F09F98, ???", "E381, ??", "80BF, ??", "C1BF, ??", "E08080, ???", "F4908080, ????"
  })
  void everyByteOfATextReachesJava(String hex, String seen) throws Exception {
    byte[] raw = bytes("a", HexFormat.of().parseHex(hex), "z");
    byte[] document = bytes(
        "<emoji><label><name>", raw, "</name><note>", raw, "</note></label><category>", raw,
        "</category><type>", raw, "</type><tags name=\"", raw, "\">", raw, "</tags></emoji>");
    String path = save(folder, "text.jpg", picture("jpg", document));
    String text = "a" + seen.replace('?', '\uFFFD').replace("NUL", "\0") + "z";
    assertEquals(
        "7x5 pop 0 | T | T,99* | T,99* | T T | T,9*old | T,9*old | 0,9*-7".replace("T", text),
        text(read(path)));
  }

  @Test
  void threadsWithSmallStacksReadTheSame() throws Exception {
    List<String> paths = new ArrayList<>();
    for (String kind : KINDS) {
      paths.addAll(nCopies(100, save(folder, "full." + kind, picture(kind, FULL))));
    }
    List<FutureTask<LumigramAttrInfo[]>> readings = new ArrayList<>();
    for (int i = 0; i < 4; i++) {
      readings.add(new FutureTask<>(() -> {
        LumigramAttrInfo[] infos = marked(300);
        assertArrayEquals(new byte[300], read(paths, infos));
        return infos;
      }));
      new Thread(null, readings.get(i), "reader", 256 * 1024).start();
    }
    for (FutureTask<LumigramAttrInfo[]> reading : readings) {
      for (var info : reading.get()) assertEquals("7x5 pop 0 | " + FULL_TEXT, text(info));
    }
  }

  static LumigramAttrInfo read(String path) {
    LumigramAttrInfo[] infos = marked(1);
    assertArrayEquals(bytes(0), read(List.of(path), infos));
    return infos[0];
  }

  /** Reads as many files as there are objects; the other two arrays are longer. */
  static byte[] read(List<String> paths, Object[] infos) {
    byte[] results = bytes(new byte[infos.length], 77);
    String[] more = copyOf(paths.toArray(new String[0]), infos.length + 2);
    assertEquals(0, LumigramJni.getLumigramAttrInfo(more, infos, results));
    assertEquals(77, results[infos.length]);
    return copyOf(results, infos.length);
  }

  /** Objects whose fields all hold what no picture gives. */
  static LumigramAttrInfo[] marked(int count) {
    LumigramAttrInfo[] infos = new LumigramAttrInfo[count];
    for (int i = 0; i < count; i++) {
      LumigramAttrInfo info = infos[i] = new LumigramAttrInfo();
      info.mFileSize = info.mHeight = info.mWidth = info.mOrnamailPop = -7;
      info.mTags = info.mCategory = info.mType = "old";
      for (String[] texts : List.of(info.mTagsName, info.mTagsElement, info.mName, info.mNote)) {
        Arrays.fill(texts, "old");
      }
      Arrays.fill(info.mPart, (byte) -7);
    }
    return infos;
  }

  /** All that an object holds, with runs of equal elements written as "count*element". */
  static String text(LumigramAttrInfo info) {
    return String.join(" | ",
        info.mWidth + "x" + info.mHeight + " pop " + info.mOrnamailPop, info.mTags,
        runs(info.mTagsName), runs(info.mTagsElement), info.mCategory + " " + info.mType,
        runs(info.mName), runs(info.mNote), runs(info.mPart));
  }

  private static String runs(Object array) {
    int length = Array.getLength(array);
    List<String> runs = new ArrayList<>();
    for (int from = 0, to; from < length; from = to) {
      Object first = Array.get(array, from);
      for (to = from; to < length && Objects.equals(Array.get(array, to), first); ) to++;
      runs.add((to - from > 1 ? to - from + "*" : "") + first);
    }
    return String.join(",", runs);
  }
}
