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
 * The file from which metadata was read, and that metadata. Reading leaves out some of what a
 * picture may carry, and a write would remove it; so before a write the whole file is searched for
 * elements and blobs. The search may take another program's texts for elements. Then a harmless
 * write is refused, which is better than a loss.
 */
final class Origin {
  private static final Pattern LABEL = element("label");
  private static final Pattern PART = element("part");
  private static final Pattern TAG = element("tags");
  private static final Pattern CATEGORY = element("category");
  private static final Pattern TYPE = element("type");

  /** An extension: label size in one byte, label, name size in one byte, name. */
  private static final Pattern GIF_BLOB = Pattern.compile("!\u00FF(.)(?=EMJ)", Pattern.DOTALL);

  /** A chunk: label of 11 bytes, name size in four bytes, name. */
  private static final Pattern PNG_BLOB = Pattern.compile("emJe(.{11})", Pattern.DOTALL);

  private final File file;
  private final PictureInfo info;

  /**
   * Remembers what was read.
   *
   * @param file the file that was read
   * @param info the metadata that was read from it
   */
  Origin(File file, PictureInfo info) {
    this.file = file;
    this.info = info;
  }

  /**
   * {@return whether one of the tags that were read refers to a blob of this name}
   *
   * @param blobName the blob's name
   */
  boolean refersToBlob(String blobName) {
    for (Tag tag : info.tags()) {
      if (blobName.equals(tag.blobName())) return true;
    }
    return false;
  }

  /**
   * Checks, before a write, that the picture is the one that was read, and that it carries no more
   * than was read.
   *
   * @param target the picture that is to be written
   * @param kind its kind
   * @throws PictureException when it is another file, cannot be read, or carries more
   */
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
      throw new PictureException(target, Status.UNREAD,
          "The metadata was read from another file, " + file + ", and asNew() not called");
    }
    List<String> unread = unread(raw, kind);
    if (!unread.isEmpty()) {
      throw new PictureException(target, Status.UNREAD,
          Status.UNREAD.sentence() + " and writing would keep: " + unread
              + "; metadata from PictureInfo.empty() or asNew() is written all the same");
    }
  }

  private List<String> unread(String raw, Kind kind) {
    List<String> unread = new ArrayList<>();
    String document = ModifiedUtf8.encode(info.document());
    addMore(unread, "labels", LABEL, raw, document);
    addMore(unread, "parts of speech", PART, raw, document);
    addMore(unread, "categories", CATEGORY, raw, document);
    addMore(unread, "types", TYPE, raw, document);
    addMore(unread, "tags", TAG, raw, document);
    if (kind != Kind.JPEG) addBlobs(unread, raw, kind);
    return unread;
  }

  /** An element that lacks its start tag or its end tag counts as one, so halves round up. */
  private static void addMore(
      List<String> unread, String what, Pattern pattern, String raw, String document) {
    int more = count(pattern, raw) - count(pattern, document);
    if (more > 0) unread.add(what + ": " + (more + 1) / 2);
  }

  private static int count(Pattern pattern, String text) {
    Matcher matcher = pattern.matcher(text);
    int count = 0;
    while (matcher.find()) {
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

  /** A tag keeps every blob whose name begins with the name to which the tag refers. */
  private boolean isKept(String name) {
    for (Tag tag : info.tags()) {
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
   * A pattern for an element's start tag and its end tag. A GIF splits a text into sub-blocks, so
   * between any two bytes there may be the size of the next sub-block.
   */
  private static Pattern element(String name) {
    StringBuilder pattern = new StringBuilder("<.?/?.?");
    for (char c : name.toCharArray()) {
      pattern.append(c).append(".?");
    }
    return Pattern.compile(pattern.append("[ >]").toString(), Pattern.DOTALL);
  }

  /** The file's bytes, each as a character up to U+00FF. */
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
