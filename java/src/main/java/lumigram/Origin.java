package lumigram;

import java.io.File;
import java.io.FileInputStream;
import java.io.IOException;
import java.io.InputStream;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.List;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * Where metadata was read, and how much of it there was. Reading does not tell everything that a
 * picture carries, and a write would take the rest away; so before one, the whole file is searched
 * for elements and blobs. It may find some that are none, in another program's texts: then a write
 * is refused that would do no harm, which is the better mistake.
 */
final class Origin {
  private static final Pattern LABEL = element("label");
  private static final Pattern PART = element("part");
  private static final Pattern TAG = element("tags");
  private static final Pattern CATEGORY = element("category");
  private static final Pattern TYPE = element("type");

  /** A label of the size that stands before it, then name size in one byte, and name. */
  private static final Pattern GIF_BLOB = Pattern.compile("!\u00FF(.)(?=EMJ)", Pattern.DOTALL);

  /** A label, name size in four bytes, and name. */
  private static final Pattern PNG_BLOB = Pattern.compile("emJe(.{11})", Pattern.DOTALL);

  private final File file;
  private final PictureInfo told;

  /** What reading the file told. */
  Origin(File file, PictureInfo told) {
    this.file = file;
    this.told = told;
  }

  /** Whether one of the tags that were read refers to a blob of this name. */
  boolean names(String blobName) {
    for (Tag tag : told.tags()) {
      if (blobName.equals(tag.blobName())) return true;
    }
    return false;
  }

  /** Makes sure that the picture is the one that was read, and carries no more than was read. */
  void check(File target, Kind kind) throws PictureException {
    boolean same;
    String raw;
    try {
      same = target.getCanonicalFile().equals(file.getCanonicalFile());
      raw = contents(target);
    } catch (IOException failure) {
      throw new PictureException(target, Status.CANNOT_OPEN);
    }
    if (!same) {
      throw new PictureException(
          target, Status.UNREAD,
          "The metadata was read from another file, " + file + ", and asNew() not called");
    }
    List<String> unread = unread(raw, kind);
    if (!unread.isEmpty()) {
      throw new PictureException(
          target, Status.UNREAD,
          Status.UNREAD.sentence() + " and writing would keep: " + unread
              + "; metadata from PictureInfo.empty() or asNew() is written all the same");
    }
  }

  private List<String> unread(String raw, Kind kind) {
    List<String> unread = new ArrayList<>();
    String document = ModifiedUtf8.encode(told.document());
    addMore(unread, "labels", LABEL, raw, document);
    addMore(unread, "parts of speech", PART, raw, document);
    addMore(unread, "categories", CATEGORY, raw, document);
    addMore(unread, "types", TYPE, raw, document);
    addMore(unread, "tags", TAG, raw, document);
    if (kind != Kind.JPEG) addBlobs(unread, raw, kind);
    return unread;
  }

  /** What lacks its start or its end is one more, too. */
  private static void addMore(
      List<String> unread, String what, Pattern pattern, String raw, String document) {
    int more = count(pattern, raw) - count(pattern, document);
    if (more > 0) unread.add(what + ": " + (more + 1) / 2);
  }

  private static int count(Pattern pattern, String text) {
    int count = 0;
    for (Matcher matcher = pattern.matcher(text); matcher.find(); ) {
      count++;
    }
    return count;
  }

  private void addBlobs(List<String> unread, String raw, Kind kind) {
    Matcher blob = (kind == Kind.GIF ? GIF_BLOB : PNG_BLOB).matcher(raw);
    while (blob.find()) {
      int sizeAt = kind == Kind.GIF ? blob.start(1) + 1 + blob.group(1).charAt(0) : blob.end();
      int nameAt = sizeAt + (kind == Kind.GIF ? 1 : 4);
      int size = number(raw, sizeAt, nameAt);
      if (size < 0 || size > raw.length() - nameAt) continue;
      String name = raw.substring(nameAt, nameAt + size);
      if (!raw.startsWith("EMJ", blob.start(1) + (kind == Kind.GIF ? 1 : 0)) || !isKept(name)) {
        unread.add("blob \"" + decode(name) + "\"");
      }
    }
  }

  /** A blob is kept by every tag that names it, or the beginning of its name. */
  private boolean isKept(String name) {
    for (Tag tag : told.tags()) {
      if (tag.keepsBlob() && name.startsWith(ModifiedUtf8.encode(tag.blobName()))) return true;
    }
    return false;
  }

  private static int number(String raw, int at, int end) {
    int number = 0;
    for (int i = at; i < end; i++) {
      number = number << 8 | (i < raw.length() ? raw.charAt(i) : 0xFF);
    }
    return number;
  }

  /**
   * What finds an element's start and its end. A GIF cuts its texts into blocks, so between any two
   * bytes may stand the size of the next block.
   */
  private static Pattern element(String name) {
    StringBuilder pattern = new StringBuilder("<.?/?.?");
    for (char c : name.toCharArray()) {
      pattern.append(c).append(".?");
    }
    return Pattern.compile(pattern.append("[ >]").toString(), Pattern.DOTALL);
  }

  /** The file's bytes, as characters up to U+00FF. */
  private static String contents(File file) throws IOException {
    StringBuilder contents = new StringBuilder((int) Math.min(file.length(), 1 << 21));
    try (InputStream in = new FileInputStream(file)) {
      byte[] block = new byte[8192];
      for (int size = in.read(block); size > 0; size = in.read(block)) {
        contents.append(new String(block, 0, size, StandardCharsets.ISO_8859_1));
      }
    }
    return contents.toString();
  }

  private static String decode(String bytes) {
    return new String(bytes.getBytes(StandardCharsets.ISO_8859_1), StandardCharsets.UTF_8);
  }
}
