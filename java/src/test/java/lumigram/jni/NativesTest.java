package lumigram.jni;

import static java.nio.charset.StandardCharsets.ISO_8859_1;
import static java.util.Collections.nCopies;
import static lumigram.jni.LumigramJni.*;
import static org.junit.jupiter.api.Assertions.*;

import java.awt.image.BufferedImage;
import java.io.File;
import java.lang.reflect.Array;
import java.nio.file.Files;
import java.util.*;
import java.util.concurrent.FutureTask;
import javax.imageio.ImageIO;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

/** What only a virtual machine shows: its texts, arrays, exceptions, threads. */
class NativesTest {
  static final String[] KINDS = {"gif", "png", "jpg"};
  static final String WRITTEN =
      "7x5 pop 0 | é | 3*é,97* | 1,😀,file://THIS/pic.bin,97* | face anime"
          + " | smile 😀,wink,8*old | 笑い,,8*old | 21,0,8*-7";
  @TempDir File folder;

  private String picture(String kind) throws Exception {
    File file = new File(folder, "😀 笑." + kind);
    ImageIO.write(new BufferedImage(7, 5, BufferedImage.TYPE_INT_RGB), kind, file);
    return file.getPath();
  }

  /** Two labels with gaps between, and three tags, of which the last brings a blob. */
  private LumigramAttrUpdate update() throws Exception {
    LumigramAttrUpdate update = new LumigramAttrUpdate();
    update.mName[1] = "smile 😀";
    update.mNote[1] = "笑い";
    update.mPart[1] = 21;
    update.mName[9] = "wink";
    update.mPart[9] = -1;
    update.mCategory = "face";
    update.mType = "anime";
    Arrays.fill(update.mTags, 0, 3, "é");
    update.mTagsElement[0] = "1";
    update.mTagsElement[1] = "😀";
    update.mTagsElement[2] = "";
    update.mApplicationExtensionLabelName[2] = "EMJ00000001";
    File blob = new File(folder, "pic.bin");
    update.mApplicationExtensionBinaryDataUri[2] =
        Files.write(blob.toPath(), new byte[100_000]).toString();
    return update;
  }

  @Test
  void whatIsWrittenIsReadBack() throws Exception {
    for (String kind : KINDS) {
      String path = picture(kind);
      assertEquals(0, setLumigramAttrInfo(path, update()));
      LumigramAttrInfo info = marked();
      assertEquals("0", read(List.of(path), info));
      assertEquals(WRITTEN, text(info), kind);
      assertEquals(new File(path).length(), info.mFileSize);
      String[] results = new String[11];
      assertEquals(0, getLumigramTagInfo(path, "é", results));
      assertEquals("1,😀,file://THIS/pic.bin,7*,null", runs(results));
      byte[] blob = kind.equals("jpg") ? null : new byte[100_000];
      assertArrayEquals(blob, getLumigramApplicationExtensionInfo(path, "EMJ", "pic"));
      assertNull(getLumigramApplicationExtensionInfo(path, "EMJ", "x".repeat(70_000)));
    }
  }

  static class OnlyNumbers {
    long mFileSize, mHeight, mWidth, mOrnamailPop;
  }

  @Test
  void noExceptionStaysBehind() throws Exception {
    String plain = picture("png");
    String full = picture("gif");
    assertEquals(0, setLumigramAttrInfo(full, update()));
    LumigramAttrInfo tooShort = marked();
    tooShort.mTagsName = new String[99];
    LumigramAttrInfo noArray = marked();
    noArray.mName = null;
    LumigramAttrInfo last = marked();
    assertEquals("2*-99,0,3*-99,0", read(
        Arrays.asList(full, full, plain, full, full, null, full),
        "no fields", new OnlyNumbers(), new OnlyNumbers(), tooShort, noArray, marked(), last));
    assertEquals(WRITTEN, text(last));
    assertEquals("-99,0", read(List.of(full, full), null, marked()));
    assertEquals(-99, setLumigramAttrInfo(full, last));
    assertEquals(-10, getLumigramTagInfo(full, null, new String[1]));
    assertNull(getLumigramApplicationExtensionInfo(null, "", ""));
  }

  @ParameterizedTest
  @CsvSource({
    "F09F9880, 😀", "EDA0BDEDB880, 😀", "E38182, あ", "C080, NUL", "EDA0BD, \uD83D", "FF, ?",
    "F09F98, ???", "E08080, ???", "F4908080, ????"
  })
  void everyByteOfATextReachesJava(String hex, String seen) throws Exception {
    String raw = "a" + new String(HexFormat.of().parseHex(hex), ISO_8859_1) + "z";
    String document = "<emoji><label><name>T</name><note>T</note></label><category>T</category>"
        + "<type>T</type><tags name=\"T\">T</tags></emoji>";
    document = document.replace("T", raw);
    File jpeg = new File(picture("jpg"));
    String old = Files.readString(jpeg.toPath(), ISO_8859_1);
    String comment = "\u00FF\u00FE\0" + (char) (document.length() + 2) + document;
    Files.writeString(jpeg.toPath(), old.substring(0, 2) + comment + old.substring(2), ISO_8859_1);
    LumigramAttrInfo info = marked();
    assertEquals("0", read(List.of(jpeg.getPath()), info));
    String text = "a" + seen.replace('?', '\uFFFD').replace("NUL", "\0") + "z";
    assertEquals(
        "7x5 pop 0 | T | T,99* | T,99* | T T | T,9*old | T,9*old | 0,9*-7".replace("T", text),
        text(info));
  }

  @Test
  void threadsWithSmallStacksReadTheSame() throws Exception {
    List<String> paths = new ArrayList<>();
    for (String kind : KINDS) {
      paths.addAll(nCopies(100, picture(kind)));
      assertEquals(0, setLumigramAttrInfo(paths.get(paths.size() - 1), update()));
    }
    List<FutureTask<LumigramAttrInfo[]>> readings = new ArrayList<>();
    for (int i = 0; i < 4; i++) {
      readings.add(new FutureTask<>(() -> {
        LumigramAttrInfo[] infos = new LumigramAttrInfo[300];
        Arrays.setAll(infos, k -> marked());
        assertEquals("300*0", read(paths, (Object[]) infos));
        return infos;
      }));
      new Thread(null, readings.get(i), "reader", 256 * 1024).start();
    }
    for (FutureTask<LumigramAttrInfo[]> reading : readings) {
      for (var info : reading.get()) assertEquals(WRITTEN, text(info));
    }
  }

  /** The results, one for each object. */
  static String read(List<String> paths, Object... infos) {
    byte[] results = new byte[infos.length];
    assertEquals(0, getLumigramAttrInfo(paths.toArray(new String[0]), infos, results));
    return runs(results);
  }

  /** An object whose fields all hold what no picture gives. */
  static LumigramAttrInfo marked() {
    LumigramAttrInfo info = new LumigramAttrInfo();
    info.mFileSize = info.mHeight = info.mWidth = info.mOrnamailPop = -7;
    for (String[] texts : List.of(info.mTagsName, info.mTagsElement, info.mName, info.mNote)) {
      Arrays.fill(texts, "old");
    }
    Arrays.fill(info.mPart, (byte) -7);
    return info;
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
