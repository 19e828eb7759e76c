package lumigram;

import static java.nio.charset.StandardCharsets.ISO_8859_1;
import static lumigram.jni.LumigramJni.*;
import static org.junit.jupiter.api.Assertions.*;

import java.awt.image.BufferedImage;
import java.io.*;
import java.net.URI;
import java.nio.file.*;
import java.util.*;
import javax.imageio.ImageIO;
import lumigram.jni.LumigramAttrInfo;
import lumigram.jni.LumigramStatus;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.api.io.TempDir;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import org.junit.jupiter.params.provider.ValueSource;

class PictureTest {
  @TempDir static File folder;

  static final String PNG = "\u0089PNG\r\n\u001A\n";
  static final PictureInfo NEW = PictureInfo.empty();
  static final PictureInfo RICH = NEW.withLabel("smile 😀", "\"tab\t\", line\n", PartOfSpeech.SYMBOL)
                                      .withLabel("שלום")
                                      .withCategory("a < b & c")
                                      .withType("笑顔")
                                      .withTag("empty", "")
                                      .withTag("color", "red")
                                      .withTag("second", "x")
                                      .withTag("color", "")
                                      .withTag("color", "blue");

  static File picture(String kind) throws Exception {
    File file = File.createTempFile("😀 笑", "." + kind, folder);
    ImageIO.write(new BufferedImage(7, 5, BufferedImage.TYPE_INT_RGB), kind, file);
    return file;
  }

  static File blob() throws Exception {
    return Files.write(new File(folder, "data.bin").toPath(), new byte[700]).toFile();
  }

  static void edit(File file, String old, String replacement) throws Exception {
    String bytes = Files.readString(file.toPath(), ISO_8859_1);
    Files.writeString(file.toPath(), bytes.replace(old, replacement), ISO_8859_1);
  }

  /** A JPEG picture with that document, of which a character is a byte. */
  static File jpeg(String document) throws Exception {
    File file = picture("jpg");
    String size = "" + (char) (document.length() + 2 >> 8) + (char) (document.length() + 2 & 255);
    edit(file, "\u00FF\u00D8", "\u00FF\u00D8\u00FF\u00FE" + size + document);
    return file;
  }

  static String told(PictureInfo info) {
    return info.labels() + info.category() + info.type() + info.tags();
  }

  static Picture written(File file, PictureInfo info) throws Exception {
    Picture.at(file).write(info);
    assertEquals(info, Picture.read(file).info());
    return Picture.read(file);
  }

  static void refuses(File file, PictureInfo info, String text) throws Exception {
    byte[] before = Files.readAllBytes(file.toPath());
    PictureException e = assertThrows(PictureException.class, () -> Picture.at(file).write(info));
    assertTrue(e.getMessage().contains(text), () -> text + " is not in: " + e.getMessage());
    assertArrayEquals(before, Files.readAllBytes(file.toPath()));
  }

  @Test
  void statusesAndPartsOfSpeechAreThoseOfTheLibrary() throws Exception {
    Map<Integer, String> words = new HashMap<>();
    for (String line : Files.readAllLines(Path.of("tests/status_words.txt"))) {
      words.put(Integer.valueOf(line.split(" ")[0]), line.split(" ", 2)[1]);
    }
    for (int code = -127; code <= 0; code++) {
      if (LumigramStatus.describe(code).startsWith("unknown")) continue;
      assertEquals(words.get(code), LumigramStatus.describe(code));
      assertEquals(code, Status.of(code).code());
    }
    Set<Integer> codes = new HashSet<>();
    for (Status status : Status.values()) assertTrue(codes.add(status.code()), status.name());
    for (byte number : new byte[] {-1, 0, 22}) {
      assertEquals(PartOfSpeech.NONE, PartOfSpeech.ofNumber(number));
    }
  }

  @Test
  void metadataThatDiffersInOneTextIsNotEqual() {
    List<PictureInfo> infos = List.of(NEW, NEW.withCategory("a"), NEW.withType("a"),
        NEW.withLabel("a"), NEW.withLabel("b"), NEW.withLabel("a", "b", PartOfSpeech.NONE),
        NEW.withLabel("a", "", PartOfSpeech.NOUN), NEW.withTag("a", ""), NEW.withTag("b", ""),
        NEW.withTag("a", "b"), NEW.withTag("a", "").withTag("a", ""));
    for (PictureInfo info : infos) {
      for (PictureInfo other : infos) {
        assertEquals(info == other, info.equals(other), info + " and " + other);
      }
      assertEquals(info.asNew(), info);
      assertEquals(info.asNew().hashCode(), info.hashCode());
    }
  }

  /** A kind of picture that the library reads has a sample, and has to be known here, too. */
  @Test
  void kindsAreThoseOfTheLibrary() {
    for (File sample : new File("samples").listFiles(File::isFile)) {
      byte[] status = {0};
      LumigramAttrInfo[] attrs = {new LumigramAttrInfo()};
      getLumigramAttrInfo(new String[] {sample.getPath()}, attrs, status);
      assertEquals(status[0] == -21, Kind.of(sample) == null, sample.getName());
    }
  }

  @ParameterizedTest
  @ValueSource(strings = {"gif", "png", "jpg"})
  void whatIsWrittenIsReadAndWrittenBack(String kind) throws Exception {
    File file = picture(kind);
    PictureInfo info = kind.equals("jpg") ? RICH : RICH.withBlob("motion", "EMJMOTION", blob());
    Picture picture = written(file, info);
    byte[] written = Files.readAllBytes(file.toPath());
    String facts = picture.width() + " x " + picture.height() + " " + picture.tag("color");
    assertEquals("7 x 5 [red]", facts);
    assertTrue(new String(written, ISO_8859_1).contains(ModifiedUtf8.encode("<part>記号</part>")));
    picture.write(picture.info());
    assertArrayEquals(written, Files.readAllBytes(file.toPath()));

    picture = written(file, picture.info().withoutTags("empty").withLabels(List.of()));
    byte[] bytes = picture.blob("EMJMOTION", "data.bin").orElse(null);
    assertArrayEquals(kind.equals("jpg") ? null : new byte[700], bytes);
    picture.write(picture.info().withoutTags("motion"));
    assertFalse(picture.blob("EMJ", "").isPresent());
  }

  /** Everything as large as it may be, but for the document. */
  static PictureInfo most() {
    Label label = new Label("あ".repeat(24) + "\t".repeat(184), "😀".repeat(12), PartOfSpeech.NONE);
    PictureInfo info = NEW.withLabels(Collections.nCopies(10, label)).withType("é".repeat(128));
    for (int i = 0; i < 100; i++) {
      info = info.withTag(i < 10 ? "あ".repeat(24) : "g " + i / 10, "c".repeat(i < 1 ? 1024 : 1));
    }
    return info;
  }

  /** What takes a document of exactly this many bytes. */
  static PictureInfo document(int bytes) {
    PictureInfo info = NEW;
    for (int left = bytes - 15; left > 0; left -= 1046) {
      info = info.withTag("t", "c".repeat(Math.min(left, 1046) - 22));
    }
    return info;
  }

  @Test
  void theLargestIsReadBackAndMoreIsRefusedByName() throws Exception {
    File png = picture("png");
    File gif = picture("gif");
    written(png, most());
    written(png, document(10234));
    written(gif, document(10239));
    PictureInfo less = most().withoutTags("g 9");
    Tag keep = new Tag("u", "file://THIS/data");
    PictureInfo two = NEW.withTags(List.of(Tag.ofBlob("t", "EMJ", blob()), keep));
    refuses(png, most().withLabel("x"), "11 labels, 1 over the limit of 10 (OVER_LIMIT, 1)");
    refuses(png, most().withTag("z", ""), "101 tags, 1 over the limit of 100");
    refuses(png, less.withTag("あ", ""), "\" has 11 tags, 1 over the limit");
    refuses(png, less.withTag("g", ""), "\" has 11 tags, 1 over the limit of 10 (OVER_LIMIT, 1)");
    refuses(png, less.withTag("u", "").withTag("v", ""), "11 groups of tags, 1 over");
    refuses(png, NEW.withLabel("n".repeat(25)), "label 1: the name has 25 characters, 1 over");
    refuses(png, NEW.withTag("😀".repeat(13), "x"), "26 characters (an emoji may count as two), 2");
    refuses(png, NEW.withCategory("あ".repeat(86)), "the category has 258 bytes, 2 over");
    refuses(png, NEW.withTag("n", "c".repeat(1025)), "tag 1: the content has 1025 bytes");
    refuses(png, document(10235), "document has 10235 bytes, 1 over the limit of 10234");
    refuses(gif, document(10240), "document has 10240 bytes, 1 over the limit of 10239");
    PictureInfo each = document(10000).withLabel("n", "note", PartOfSpeech.NOUN);
    for (int i = 0; i < 2; i++)
      each = each.withLabel("n".repeat(24), "n".repeat(24), PartOfSpeech.NOUN);
    refuses(gif, each.withCategory("c").withType("t"), "document has 10317 bytes");
    refuses(png, NEW.withLabel(""), "label 1: the name is empty (NOT_STORABLE, 2)");
    refuses(png, NEW.withLabel("a</name>b"), "label 1: the name holds the markup </name>");
    refuses(png, NEW.withTag("a\">", "x"), "tag 1: the name holds \">");
    refuses(png, NEW.withType("\0"), "the type holds U+0000");
    refuses(png, NEW.withType("\uFFFD"), "the type holds U+FFFD");
    refuses(png, NEW.withType("😀\uD83D"), "half a surrogate pair");
    refuses(png, NEW.withBlob("t", "EMJ456789012", blob()), "its label has 12 bytes, 1 over");
    refuses(png, NEW.withBlob("t", "XMJ", blob()), "does not begin with EMJ (UNUSABLE_BLOB, 3)");
    refuses(png, NEW.withBlob("t", "EMJ", folder), "there is no file");
    refuses(
        png, NEW.withTags(List.of(new Tag("t", ""), keep)), "tag 2: the blob \"data\" is not in");
    refuses(png, NEW.withBlob("t", "EMJ", "name", new byte[0]), "is empty (UNUSABLE_BLOB, 3)");
    refuses(png, two, "cannot be told by its name from that of tag 2 (DUPLICATE_BLOB, -50)");
    refuses(picture("jpg"), two, "has no place in a JPEG");
  }

  @ParameterizedTest
  // clang-format would indent the rows past the limit.
  // clang-format off
  @CsvSource(delimiter = ';', quoteCharacter = '~', value = {
    "11; <label><name>n</name></label>; [n, n, n, n, n, n, n, n, n, n][]; [labels after the tenth: 1]",
    "1; <label></label><type>t</type><type></type>; []t[]; [labels over a limit or without a name: 1, second or",
    "1; <label><name>n</name><part>x</part></label>; [n][]; [unknown parts of speech: 1]",
    "2; <category>c</category>; []c[]; or too long categories or types: 1]",
    "11; <tags name='a'>x</tags>; [][a=x, a=x, a=x, a=x, a=x, a=x, a=x, a=x, a=x, a=x]; or without a name: 1]",
    "1; <tags name='a'>x</tags><tags name='1234567890123456789012345'></tags>; [][]; [tags over a limit: 1]",
    "1; <tags name=''>x</tags><tags name='b'>y</tags>; [][]; or without a name: 1]",
    "2; <type>t</type> and </emoji><emoji>; []t[]; [texts between elements: 2]"
  })
  void unreadIsNotLost(int times, String body, String told, String unread) throws Exception {
    // clang-format on
    File file = jpeg("<emoji>" + body.replace('\'', '"').repeat(times) + "</emoji>");
    PictureInfo info = Picture.read(file).info();
    assertEquals(told, told(info));
    refuses(file, info.withLabels(List.of()), unread);
    refuses(picture("jpg"), info, "from another picture, " + file);
    written(file, info.asNew());
  }

  @ParameterizedTest
  @ValueSource(strings = {"gif", "png"})
  void blobsThatNoTagNamesAreNotLostAndReferencesToNothingStay(String kind) throws Exception {
    File file = picture(kind);
    written(file, NEW.withBlob("t", "EMJ", blob()).withTag("u", "file://ELSE/none"));
    edit(file, "file://THIS", "file://ELSE");
    refuses(file, Picture.read(file).info(), "[blobs that no tag refers to: 1]; metadata from");
    edit(file, "file://ELSE", "file://THIS");
    written(file, Picture.read(file).info());
  }

  @Test
  void everyWriteStartsFromTheLast() throws Exception {
    Picture picture = Picture.read(picture("gif"));
    PictureInfo first = picture.info();
    picture.write(first.withLabel("one"));
    picture.write(picture.info().withLabel("two").withBlob("data", "EMJ", blob()));
    assertTrue(blob().delete());
    picture.write(picture.info().withType("type"));
    String text = "one, two; type: type; tags: data=file://THIS/data.bin";
    assertEquals(text, picture.info().toString());
    assertEquals(picture.info(), Picture.read(picture.file()).info());
    assertEquals(picture.file().length(), picture.fileSize());
    picture.write(picture.info().withLabel("one").withoutLabel("one"));
    assertEquals("[two]", Picture.read(picture.file()).info().labels().toString());
    picture.write(first);
    picture.write(first);
    assertEquals("no metadata", Picture.read(picture.file()).info().toString());
    Picture unread = Picture.at(picture.file());
    assertThrows(IllegalStateException.class, unread::info);
    assertThrows(IllegalStateException.class, unread::fileSize);
    unread.write(NEW.withLabel("three"));
    assertEquals("three", unread.info().toString());
    for (Executable way : new Executable[] {unread::isPop, unread::width, unread::height}) {
      assertThrows(IllegalStateException.class, way);
    }
    assertThrows(PictureException.class, () -> picture.write(first));
  }

  /** Each of two objects counts the category up, again and again when the other was faster. */
  @Test
  void noWriteOfTwoObjectsIsLost() throws Exception {
    File file = picture("png");
    written(file, NEW.withCategory("0"));
    Executable count = () -> {
      for (int done = 0; done < 20;) {
        Picture picture = Picture.read(file);
        int next = Integer.parseInt(picture.info().category()) + 1;
        try {
          picture.write(picture.info().withCategory("" + next));
          done++;
        } catch (PictureException e) {
          assertEquals(Status.CHANGED, e.status(), e::getMessage);
        }
      }
    };
    Thread other = new Thread(() -> assertDoesNotThrow(count));
    other.start();
    assertDoesNotThrow(count);
    other.join();
    assertEquals("40", Picture.read(file).info().category());
  }

  @Test
  void popPicturesAreKnown() throws Exception {
    File file = picture("gif");
    assertFalse(Picture.read(file).isPop());
    edit(file, "\0;", "\0!\u00FF\u000BHTMLEMJI1.0\1\1\0;");
    assertTrue(Picture.read(file).isPop());
  }

  static final String COMMENT = "\0\0\0!tEXtComment\0see <label> in the manualCRC.";

  @ParameterizedTest
  @CsvSource({"gif,GIF89a,GIF87a,true", "png,IHDR,IHDS,true", "png,<label> in,<label> is,true",
      "gif,one,two,false", "jpg,one,two,false", "png,AAB,AAC,false", "gif,AAB,AAC,false",
      "png,EMJx,EMJy,false", "gif,EMJx,EMJy,false", "gif,data.bin,data.bim,false"})
  void
  whatOthersChangeIsNotLost(String kind, String old, String now, boolean isWritten)
      throws Exception {
    File file = picture(kind);
    File blob = Files.writeString(blob().toPath(), "A".repeat(700) + "B").toFile();
    edit(file, "\0\0\0\0IEND", COMMENT + "\0\0\0\0IEND");
    PictureInfo info = NEW.withLabel("one");
    written(file, kind.equals("jpg") ? info : info.withBlob("t", "EMJx", blob));
    Picture picture = Picture.read(file);
    edit(file, old, now);
    if (isWritten) {
      picture.write(picture.info().withType("t"));
    } else {
      PictureException e =
          assertThrows(PictureException.class, () -> picture.write(NEW.withLabel("x")));
      assertEquals(Status.CHANGED, e.status());
    }
    assertTrue(Files.readString(file.toPath(), ISO_8859_1).contains(now));
  }

  @Test
  void aFolderIsReadAndEveryFailureSaysWhatItIs() throws Exception {
    File pictures = new File(folder, "pictures");
    String[][] rows = {
        {"a.png", null, "a folder (NOT_A_FILE, 13)"},
        {"b.GIF", "GIF89a123", "The picture is damaged or cut short (DAMAGED, -30)"},
        {"c.gif", "", "empty file (EMPTY, 14)"},
        {"d.png", "text", "holds text, not a picture (OTHER_CONTENT, 16)"},
        {"e.gif", PNG, "holds a PNG picture; rename it to .png (OTHER_CONTENT, 16)"},
        {"f.png", PNG + "\0".repeat(1 << 21), "over 2 MiB (TOO_LARGE, 15)"},
        {"g.gif", "mkfifo", "not a regular file (NOT_A_FILE, 13)"},
    };
    for (String[] row : rows) {
      File file = new File(pictures, row[0]);
      if (row[1] == null)
        assertTrue(file.mkdirs());
      else if (row[1].equals("mkfifo"))
        new ProcessBuilder(row[1], file.getPath()).start().waitFor();
      else
        Files.writeString(file.toPath(), row[1], ISO_8859_1);
    }
    File good = new File(pictures, "h.jpg");
    assertTrue(picture("jpg").renameTo(good));
    written(good, RICH);
    for (String other : List.of(".lumigram-abcdefgh.png", "photo.bmp")) {
      Files.write(new File(pictures, other).toPath(), new byte[9]);
    }
    List<ReadResult> results = Picture.readFolder(pictures);
    assertEquals(rows.length + 1, results.size());
    assertEquals(RICH, results.get(rows.length).picture().info());
    for (int i = 0; i < rows.length; i++) {
      fails(new File(pictures, rows[i][0]), rows[i][2], results.get(i).failure());
    }
    fails(new File("missing.gif"), "no such file (MISSING, 11)", null);
    fails(new File("photo.bmp"), "that could be read (UNSUPPORTED_TYPE, -21)", null);
    String[][] folders = {
        {"missing", "no such folder (MISSING, 11)"}, {"h.jpg", "(NOT_A_FOLDER, 18)"}};
    for (String[] row : folders) {
      File folder = new File(pictures, row[0]);
      PictureException e =
          assertThrows(PictureException.class, () -> Picture.readFolder(folder), row[0]);
      assertTrue(e.getMessage().contains(row[1]), e.getMessage());
    }
    assertEquals(List.of(), Picture.read(picture("jpg")).tag("color"));
    assertEquals(List.of(), Picture.at(good).tag("n".repeat(256)));
    assertThrows(NullPointerException.class, () -> Picture.at(good).write(null));
  }

  /** Every way to use a file fails with these words. */
  static void fails(File file, String words, PictureException failure) {
    Executable[] ways = {()
                             -> Picture.readAll(List.of(file)).get(0).picture(),
        ()
            -> Picture.at(file).tag("color"),
        ()
            -> Picture.at(file).blob("", ""),
        () -> Picture.at(file).write(NEW.withTag("t", "file://THIS/x"))};
    for (Executable way : ways) {
      PictureException e = assertThrows(PictureException.class, way, file.getName());
      assertTrue(e.getMessage().endsWith(words), e::getMessage);
      assertEquals(file, e.file());
      assertTrue(failure == null || failure.getMessage().equals(e.getMessage()), e::getMessage);
    }
  }

  @ParameterizedTest
  @ValueSource(strings = {"gif", "png", "jpg"})
  void bytesAreWrittenLikeFiles(String kind) throws Exception {
    File file = picture(kind);
    byte[] first = Files.readAllBytes(file.toPath());
    Picture memory = Picture.read(first);
    assertEquals(Picture.read(file).kind(), memory.kind());
    byte[] data = {1, 2, 3};
    boolean hasBlobs = !kind.equals("jpg");
    PictureInfo info =
        hasBlobs ? RICH.withBlob("t", "EMJx", "name", data).withBlob("u", "EMJy", blob()) : RICH;
    written(file, info);
    memory.write(info);
    assertArrayEquals(Files.readAllBytes(file.toPath()), memory.toBytes());
    assertArrayEquals(Picture.at(file).toBytes(), memory.toBytes());
    assertNotEquals(first.length, memory.fileSize());
    assertEquals(List.of("red"), memory.tag("color"));
    for (Picture picture : List.of(Picture.at(file), memory)) {
      String blobs = "[EMJx name, 3 bytes, EMJy data.bin, 700 bytes]";
      assertEquals(hasBlobs ? blobs : "[]", picture.blobs().toString());
      assertArrayEquals(hasBlobs ? data : null, picture.blob("EMJx", "na").orElse(null));
      assertThrows(NoSuchElementException.class, () -> picture.blob("EMJ", "none").bytes());
    }
    ByteArrayOutputStream out = new ByteArrayOutputStream();
    memory.writeTo(out);
    List<ReadResult> read = Picture.readAllBytes(List.of(out.toByteArray(), first, new byte[1]));
    assertEquals(memory.info(), read.get(0).picture().info());
    assertEquals(NEW, read.get(1).picture().info());
    assertEquals(7, read.get(1).picture().width());
    assertEquals(Status.UNSUPPORTED_TYPE, read.get(2).status());
    assertEquals("picture in memory: " + memory.info(), memory.toString());
    PictureException e =
        assertThrows(PictureException.class, () -> Picture.read(first).write(memory.info()));
    assertTrue(e.getMessage().contains("another picture, and asNew()"), e::getMessage);
    Picture changed = Picture.read(first);
    Arrays.fill(first, (byte) 9);
    e = assertThrows(PictureException.class, () -> changed.write(RICH));
    assertEquals(Status.CHANGED, e.status());
  }

  @Test
  void failuresOfBytesSayWhatTheyAre() throws Exception {
    byte[] png = Files.readAllBytes(picture("png").toPath());
    byte[] large = Arrays.copyOf(png, 1 << 21);
    assertEquals(1 << 21, Picture.read(new ByteArrayInputStream(large)).fileSize());
    Object[][] rows = {
        {"", null, "no bytes (EMPTY, 14)"},
        {new String(large, ISO_8859_1) + "x", null, "over 2 MiB (TOO_LARGE, 15)"},
        {"text", null, "holds text, not a picture (OTHER_CONTENT, 16)"},
        {"RIFF1234WEBP", null, "holds a WebP picture, which is not supported (OTHER_CONTENT, 16)"},
        {"\1\2\3", null, "no GIF, PNG or JPEG picture (UNSUPPORTED_TYPE, -21)"},
        {PNG, null, "The picture is damaged or cut short (DAMAGED, -30)"},
        {new String(png, ISO_8859_1), Kind.JPEG, "holds a PNG picture (OTHER_CONTENT, 16)"},
    };
    for (Object[] row : rows) {
      byte[] bytes = ((String) row[0]).getBytes(ISO_8859_1);
      PictureException e = assertThrows(PictureException.class, () -> {
        if (row[1] == null)
          Picture.read(bytes);
        else
          Picture.read(bytes, (Kind) row[1]);
      }, (String) row[2]);
      assertEquals("picture in memory: " + row[2], e.getMessage());
      assertNull(e.file());
    }
    InputStream endless =
        new SequenceInputStream(new ByteArrayInputStream(large), new ByteArrayInputStream(large));
    assertThrows(PictureException.class, () -> Picture.read(endless));
    assertEquals((1 << 21) - 1, endless.readAllBytes().length);
  }

  @Test
  void descriptorsAndPathsAreRead() throws Exception {
    File file = picture("gif");
    written(file, RICH);
    try (RandomAccessFile raw = new RandomAccessFile(new File(folder, "two"), "rw")) {
      raw.write(new byte[10]);
      raw.write(Files.readAllBytes(file.toPath()));
      raw.seek(10);
      assertEquals(RICH, Picture.read(raw.getFD()).info());
      assertEquals(raw.length(), raw.getFilePointer());
    }
    assertEquals(file, PicturePaths.read(file.toPath()).file());
    assertEquals(RICH, PicturePaths.readAll(List.of(file.toPath())).get(0).picture().info());
    URI archive = URI.create("jar:" + new File(folder, "a.zip").toURI());
    try (FileSystem zip = FileSystems.newFileSystem(archive, Map.of("create", "true"))) {
      Path inside = Files.copy(file.toPath(), zip.getPath("/a.gif"));
      assertEquals(RICH, PicturePaths.read(inside).info());
    }
  }

  @Test
  void everyByteOfATextReachesJava() throws Exception {
    String hex = "F09F98802EEDA0BDEDB8802EE381822EC0802EEDA0BD2EFF2EF09F982EE080802EF4908080";
    String seen = "😀.😀.あ.\0.\uD83D.?.???.???.????".replace('?', '\uFFFD');
    String document = "<emoji><label><name>T</name><note>T</note></label><category>T</category>"
        + "<type>T</type><tags name=\"T\">T</tags></emoji>";
    String raw = new String(HexFormat.of().parseHex(hex), ISO_8859_1);
    PictureInfo info = Picture.read(jpeg(document.replace("T", raw))).info();
    assertEquals("[T (T)]TT[T=T]".replace("T", seen), told(info));
  }

  @Test
  void threadsWithSmallStacksReadTheSame() throws Exception {
    List<File> files = new ArrayList<>();
    for (String kind : List.of("gif", "png", "jpg")) {
      files.addAll(Collections.nCopies(100, picture(kind)));
      written(files.get(files.size() - 1), RICH);
    }
    List<ReadResult> results = Collections.synchronizedList(new ArrayList<>());
    List<Thread> threads = new ArrayList<>();
    for (int i = 0; i < 4; i++) {
      threads.add(
          new Thread(null, () -> results.addAll(Picture.readAll(files)), "reader", 256 * 1024));
      threads.get(i).start();
    }
    for (Thread thread : threads) thread.join();
    assertEquals(1200, results.size());
    for (ReadResult read : results) {
      assertEquals(RICH, read.picture().info());
    }
  }

  static class OnlyNumbers { long mFileSize, mHeight, mWidth, mOrnamailPop; }

  @Test
  void noExceptionOfTheNativeMethodsStaysBehind() throws Exception {
    File file = picture("gif");
    written(file, RICH);
    String full = file.getPath();
    String plain = picture("png").getPath();
    LumigramAttrInfo tooShort = new LumigramAttrInfo();
    tooShort.mTagsName = new String[99];
    LumigramAttrInfo noArray = new LumigramAttrInfo();
    noArray.mName = null;
    LumigramAttrInfo last = new LumigramAttrInfo();
    String[] paths = {full, full, plain, full, full, null, full, full};
    Object[] objects = {"no fields", new OnlyNumbers(), new OnlyNumbers(), tooShort, noArray,
        new LumigramAttrInfo(), null, last};
    byte[] results = new byte[8];
    assertEquals(0, getLumigramAttrInfo(paths, objects, results));
    assertArrayEquals(new byte[] {-99, -99, 0, -99, -99, -99, -99, 0}, results);
    assertEquals(95, Collections.frequency(Arrays.asList(last.mTagsName), ""));
    assertEquals(-99, setLumigramAttrInfo(full, last));
  }
}
