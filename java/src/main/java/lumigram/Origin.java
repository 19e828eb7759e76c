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
  private static final Pattern LABEL = element("<label>");
  private static final Pattern PART = element("<part>");
  private static final Pattern TAG = element("<tags name=\"");
  private static final Pattern CATEGORY = element("<category>");
  private static final Pattern TYPE = element("<type>");

  /** Label, name size in one byte, and name, wherever the block's own size says the name begins. */
  private static final Pattern GIF_BLOB = Pattern.compile("!\u00FF(.)(?=EMJ)", Pattern.DOTALL);

  /** Label, name size in four bytes, and name. */
  private static final Pattern PNG_BLOB = Pattern.compile("emJe(.{11})", Pattern.DOTALL);

  private final File file;
  private final int labels;
  private final int parts;
  private final int categories;
  private final int types;
  private final int tags;
  private final List<String> blobNames = new ArrayList<>();

  Origin(File file, List<Label> labels, boolean hasCategory, boolean hasType, List<Tag> tags) {
    int parts = 0;
    for (Label label : labels) {
      if (label.part() != PartOfSpeech.NONE) parts++;
    }
    this.file = file;
    this.labels = labels.size();
    this.parts = parts;
    categories = hasCategory ? 1 : 0;
    types = hasType ? 1 : 0;
    this.tags = tags.size();
    for (Tag tag : tags) {
      if (tag.keepsBlob()) blobNames.add(tag.blobName());
    }
  }

  /** Whether one of the tags that were read referred to a blob of this name. */
  boolean names(String blobName) {
    return blobNames.contains(blobName);
  }

  /** Makes sure that the picture is the one that was read, and carries no more than was read. */
  void check(File target, Kind kind) throws PictureException {
    String raw;
    try {
      if (!target.getCanonicalFile().equals(file.getCanonicalFile())) {
        throw new PictureException(
            target, Status.UNREAD, "The metadata was read from another file, " + file
                + ", and not made for this one by asNew()");
      }
      raw = contents(target);
    } catch (PictureException failure) {
      throw failure;
    } catch (IOException failure) {
      throw new PictureException(target, Status.CANNOT_OPEN);
    }
    List<String> unread = unread(raw, kind);
    if (!unread.isEmpty()) {
      throw new PictureException(
          target, Status.UNREAD,
          Status.UNREAD.sentence() + " and writing would keep: " + String.valueOf(unread)
              + "; metadata from PictureInfo.empty() or asNew() is written all the same");
    }
  }

  private List<String> unread(String raw, Kind kind) {
    List<String> unread = new ArrayList<>();
    addMore(unread, "labels", count(LABEL, raw) - labels);
    addMore(unread, "parts of speech", count(PART, raw) - parts);
    addMore(unread, "categories", count(CATEGORY, raw) - categories);
    addMore(unread, "types", count(TYPE, raw) - types);
    addMore(unread, "tags", count(TAG, raw) - tags);
    if (kind != Kind.JPEG) addBlobs(unread, raw, kind);
    return unread;
  }

  private static void addMore(List<String> unread, String what, int more) {
    if (more > 0) unread.add(what + ": " + more);
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
    for (String kept : blobNames) {
      if (name.startsWith(ModifiedUtf8.encode(kept))) return true;
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

  private static int count(Pattern pattern, String raw) {
    int count = 0;
    for (Matcher matcher = pattern.matcher(raw); matcher.find(); ) {
      count++;
    }
    return count;
  }

  /** A GIF cuts its texts into blocks, so between any two bytes may stand the size of the next. */
  private static Pattern element(String start) {
    StringBuilder pattern = new StringBuilder();
    for (int i = 0; i < start.length(); i++) {
      pattern.append(i == 0 ? "" : ".?").append(start.charAt(i));
    }
    return Pattern.compile(pattern.toString(), Pattern.DOTALL);
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
