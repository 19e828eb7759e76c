package lumigram;

import java.io.File;
import java.util.ArrayList;
import java.util.List;

/**
 * Refuses metadata that a picture cannot hold, or that could not be read back unchanged. The native
 * side would truncate some of it, drop some, and report the rest by one status.
 */
final class WriteCheck {
  private static final int MAX_LABELS = 10;
  private static final int MAX_TAGS = 100;
  private static final int MAX_TAG_GROUPS = 10;
  private static final int MAX_GROUP_SIZE = 10;
  private static final int MAX_CHARACTERS = 24;
  private static final int MAX_TEXT_BYTES = 256;
  private static final int MAX_CONTENT_BYTES = 1024;
  private static final int MAX_BLOB_NAME_BYTES = 255;
  private static final int MAX_BLOB_LABEL_BYTES = 11;
  private static final int NO_LIMIT = Integer.MAX_VALUE;

  private static final String BLOB_MARK = "EMJ";

  /** Markup that readers search for; the last without its quote, which the next markup supplies. */
  private static final String[] MARKUP = {"<emoji>", "</emoji>", "<label>", "</label>", "<name>",
      "</name>", "<note>", "</note>", "<part>", "</part>", "<category>", "</category>", "<type>",
      "</type>", "</tags>", "<tags name="};

  private final File file;
  private final Kind kind;
  private final PictureInfo info;

  private WriteCheck(File file, Kind kind, PictureInfo info) {
    this.file = file;
    this.kind = kind;
    this.info = info;
  }

  /**
   * Checks metadata before it is written.
   *
   * @param file the picture's file
   * @param kind its kind
   * @param info the metadata
   * @throws PictureException when the picture cannot hold the metadata; its message names the field
   */
  static void check(File file, Kind kind, PictureInfo info) throws PictureException {
    WriteCheck check = new WriteCheck(file, kind, info);
    check.checkLabels();
    check.checkText("the category", info.category(), MAX_TEXT_BYTES, NO_LIMIT);
    check.checkText("the type", info.type(), MAX_TEXT_BYTES, NO_LIMIT);
    check.checkTags();
    check.checkGroups();
    check.checkBlobs();
    int bytes = ModifiedUtf8.bytes(info.document());
    check.checkLength("the document", bytes, kind.documentBytes, "bytes");
  }

  private void checkLabels() throws PictureException {
    checkLength("the metadata", info.labels().size(), MAX_LABELS, "labels");
    for (int i = 0; i < info.labels().size(); i++) {
      Label label = info.labels().get(i);
      String field = "label " + (i + 1);
      checkName(field, label.name());
      checkText(field + ": the note", label.note(), MAX_TEXT_BYTES, MAX_CHARACTERS);
    }
  }

  private void checkTags() throws PictureException {
    checkLength("the metadata", info.tags().size(), MAX_TAGS, "tags");
    for (int i = 0; i < info.tags().size(); i++) {
      Tag tag = info.tags().get(i);
      String field = "tag " + (i + 1);
      checkName(field, tag.name());
      if (tag.name().contains("\">")) throw notStorable(field + ": the name holds \">");
      checkText(field + ": the content", tag.content(), MAX_CONTENT_BYTES, NO_LIMIT);
    }
  }

  private void checkName(String field, String name) throws PictureException {
    if (name.isEmpty()) throw notStorable(field + ": the name is empty");
    checkText(field + ": the name", name, MAX_TEXT_BYTES, MAX_CHARACTERS);
  }

  private void checkText(String field, String text, int maxBytes, int maxCharacters)
      throws PictureException {
    for (String tag : MARKUP) {
      if (text.contains(tag)) throw notStorable(field + " holds the markup " + tag);
    }
    if (text.indexOf('\0') >= 0) throw notStorable(field + " holds U+0000");
    if (text.indexOf('\uFFFD') >= 0) {
      throw notStorable(field + " holds U+FFFD, which stands for bytes that could not be read");
    }
    if (ModifiedUtf8.hasLoneSurrogate(text)) {
      throw notStorable(field + " holds half a surrogate pair");
    }
    boolean hasPairs = text.codePointCount(0, text.length()) < text.length();
    String characters = hasPairs ? "characters (an emoji may count as two)" : "characters";
    checkLength(field, ModifiedUtf8.characters(text), maxCharacters, characters);
    checkLength(field, ModifiedUtf8.bytes(text), maxBytes, "bytes");
  }

  private void checkLength(String field, int length, int limit, String unit)
      throws PictureException {
    if (length <= limit) return;
    throw new PictureException(file, Status.OVER_LIMIT,
        field + " has " + length + " " + unit + ", " + (length - limit) + " over the limit of "
            + limit);
  }

  /** Readers put a tag into the first group whose name begins with the name of the tag. */
  private void checkGroups() throws PictureException {
    List<String> names = new ArrayList<>();
    List<Integer> sizes = new ArrayList<>();
    for (Tag tag : info.tags()) {
      int group = 0;
      while (group < names.size() && !names.get(group).startsWith(tag.name())) {
        group++;
      }
      if (group == names.size()) {
        names.add(tag.name());
        sizes.add(0);
      }
      sizes.set(group, sizes.get(group) + 1);
    }
    checkLength("the metadata", names.size(), MAX_TAG_GROUPS, "groups of tags");
    for (int i = 0; i < names.size(); i++) {
      checkLength("the group \"" + names.get(i) + "\"", sizes.get(i), MAX_GROUP_SIZE, "tags");
    }
  }

  private void checkBlobs() throws PictureException {
    for (int i = 0; i < info.tags().size(); i++) {
      Tag tag = info.tags().get(i);
      if (tag.blobName() == null) continue;
      String field = "tag " + (i + 1) + ": the blob \"" + tag.blobName() + "\"";
      if (!tag.addsBlob()) continue;
      checkNewBlob(field, tag);
      checkNameOfNewBlob(field, i);
    }
  }

  private void checkNewBlob(String field, Tag tag) throws PictureException {
    File source = tag.blobFile();
    if (kind == Kind.JPEG) throw unusable(field + " has no place in a JPEG");
    checkText(field, tag.blobName(), MAX_BLOB_NAME_BYTES, NO_LIMIT);
    checkText(field + ": its label", tag.blobLabel(), MAX_BLOB_LABEL_BYTES, NO_LIMIT);
    if (!tag.blobLabel().startsWith(BLOB_MARK)) {
      // The next write would take it for another program's data and keep it beside the new one.
      throw unusable(field + " has a label that does not begin with " + BLOB_MARK);
    }
    if (source != null && !source.isFile()) {
      throw unusable(field + ": there is no file " + source);
    }
    if (tag.blobSize() == 0) throw unusable(field + " is empty");
    if (tag.blobSize() > Streams.MAX_BYTES) throw unusable(field + " is over 2 MiB");
  }

  /** A beginning of a name finds a blob, so no name may be the beginning of another. */
  private void checkNameOfNewBlob(String field, int index) throws PictureException {
    String name = info.tags().get(index).blobName();
    for (int i = 0; i < info.tags().size(); i++) {
      String other = info.tags().get(i).blobName();
      if (i == index || other == null) continue;
      if (name.startsWith(other) || other.startsWith(name)) {
        throw new PictureException(file, Status.DUPLICATE_BLOB,
            field + " cannot be told by its name from that of tag " + (i + 1));
      }
    }
  }

  private PictureException notStorable(String sentence) {
    return new PictureException(file, Status.NOT_STORABLE, sentence);
  }

  private PictureException unusable(String sentence) {
    return new PictureException(file, Status.UNUSABLE_BLOB, sentence);
  }
}
