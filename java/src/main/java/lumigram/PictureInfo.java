package lumigram;

import java.io.File;
import java.util.ArrayList;
import java.util.Collection;
import java.util.Collections;
import java.util.List;
import java.util.Objects;

/**
 * The metadata of a picture: labels, a category, a type and tags, some of which refer to blobs.
 * Immutable: each {@code with} and {@code without} method returns a new object. Start with {@link
 * #empty}, or with the {@link Picture#info} of a picture.
 *
 * <p><b>Limits.</b> They are checked when the metadata is written, before the file is touched.
 * Lengths in bytes are those of Java's modified UTF-8, which is what pictures store; a character
 * outside the basic plane, such as most emoji, has 6 bytes there and counts as two characters.
 * Control characters do not count.
 *
 * <table>
 *   <caption>Limits</caption>
 *   <tr><td>labels</td><td>10; name and note 24 characters and 256 bytes each</td></tr>
 *   <tr><td>category, type</td><td>256 bytes each</td></tr>
 *   <tr><td>tags</td><td>100, in 10 groups of 10 (a name that is the beginning of an earlier
 *       group's name counts toward that); name 24 characters and 256 bytes, content 1,024
 *       bytes</td></tr>
 *   <tr><td>everything together, with its markup</td><td>10,239 bytes; in a PNG 10,234</td></tr>
 * </table>
 *
 * <p><b>Texts.</b> Pictures store them without escaping, so none may hold a tag of the format (such
 * as {@code </name>} or {@code <label>}), and a tag's name must not hold {@code ">}. No text may
 * hold U+0000, half a surrogate pair, or U+FFFD, which replaces invalid bytes in a text that was
 * read. The name of a label or tag is never empty.
 *
 * <p><b>Metadata that is not read.</b> What is over the limits is not read. Metadata that was read
 * therefore lacks:
 *
 * <ul>
 *   <li>the labels after the tenth, and all of them when one is malformed or over its limits;
 *   <li>all tags when one is over its limits, or when the first one has an empty name; otherwise
 *       those after the first hundred, those of groups after the tenth, and those after the tenth
 *       of a group;
 *   <li>a category or type over 256 bytes; a part of speech that is not in {@link PartOfSpeech};
 *   <li>the blobs that no tag refers to.
 * </ul>
 *
 * <p>A write would remove all of this from the picture, and with it text between the elements,
 * further documents, and bytes after the end of the picture. {@link Picture#write} therefore refuses
 * with {@link Status#UNREAD} when the picture has any of it, and names what it is; {@link #asNew}
 * turns this off. Characters outside the basic plane that a program without Java has stored as 4
 * bytes are stored as 6.
 */
public final class PictureInfo {
  private static final PictureInfo EMPTY =
      new PictureInfo(Collections.<Label>emptyList(), "", "", Collections.<Tag>emptyList(), null);

  private final List<Label> labels;
  private final String category;
  private final String type;
  private final List<Tag> tags;
  private final Storage origin;

  private PictureInfo(
      List<Label> labels, String category, String type, List<Tag> tags, Storage origin) {
    this.labels = labels;
    this.category = Objects.requireNonNull(category, "category");
    this.type = Objects.requireNonNull(type, "type");
    this.tags = tags;
    this.origin = origin;
  }

  /**
   * {@return the same metadata, with its origin}
   *
   * @param storage the picture from which this was read, or into which it was written
   */
  PictureInfo readFrom(Storage storage) {
    return new PictureInfo(labels, category, type, tags, storage);
  }

  /** {@return the same metadata as a read after the write finds it: with no new blobs} */
  PictureInfo asWritten() {
    List<Tag> written = new ArrayList<>(tags.size());
    for (Tag tag : tags) {
      written.add(new Tag(tag.name(), tag.content()));
    }
    return withTags(written);
  }

  /**
   * Metadata with nothing in it. Writing it removes all metadata from a picture.
   *
   * @return the same object every time
   */
  public static PictureInfo empty() {
    return EMPTY;
  }

  /** {@return the labels: an unmodifiable list, in stored order} */
  public List<Label> labels() {
    return labels;
  }

  /** {@return the category; empty for none} */
  public String category() {
    return category;
  }

  /** {@return the type; empty for none} */
  public String type() {
    return type;
  }

  /**
   * {@return the tags, including those that refer to blobs: an unmodifiable list, in stored order}
   */
  public List<Tag> tags() {
    return tags;
  }

  /**
   * Adds a label that is only a name.
   *
   * @param name the label's name
   * @return the new metadata
   */
  public PictureInfo withLabel(String name) {
    return withLabel(name, "", PartOfSpeech.NONE);
  }

  /**
   * Adds a label.
   *
   * @param name the label's name
   * @param note its note; empty for none
   * @param part its part of speech
   * @return the new metadata
   */
  public PictureInfo withLabel(String name, String note, PartOfSpeech part) {
    List<Label> more = new ArrayList<>(labels);
    more.add(new Label(name, note, part));
    return withLabels(more);
  }

  /**
   * Replaces all labels.
   *
   * @param labels the new ones, of which none is null
   * @return the new metadata
   */
  public PictureInfo withLabels(Collection<Label> labels) {
    return new PictureInfo(copyOf(labels, "label"), category, type, tags, origin);
  }

  /**
   * Removes the labels of one name.
   *
   * @param name the labels' name
   * @return the new metadata
   */
  public PictureInfo withoutLabel(String name) {
    List<Label> rest = new ArrayList<>();
    for (Label label : labels) {
      if (!label.name().equals(name)) rest.add(label);
    }
    return withLabels(rest);
  }

  /**
   * Replaces the category.
   *
   * @param category the new one; empty for none
   * @return the new metadata
   */
  public PictureInfo withCategory(String category) {
    return new PictureInfo(labels, category, type, tags, origin);
  }

  /**
   * Replaces the type.
   *
   * @param type the new one; empty for none
   * @return the new metadata
   */
  public PictureInfo withType(String type) {
    return new PictureInfo(labels, category, type, tags, origin);
  }

  /**
   * Adds a tag after the others, even when some of them have that name.
   *
   * @param name the tag's name
   * @param content its content
   * @return the new metadata
   */
  public PictureInfo withTag(String name, String content) {
    return withTag(new Tag(name, content));
  }

  /**
   * Adds a new blob, and the tag that refers to it.
   *
   * @param name the tag's name
   * @param blobLabel the kind of the blob: begins with "EMJ" and has at most 11 bytes
   * @param blobFile the file that holds the blob's bytes; its name becomes the blob's name
   * @return the new metadata
   */
  public PictureInfo withBlob(String name, String blobLabel, File blobFile) {
    return withTag(Tag.ofBlob(name, blobLabel, blobFile));
  }

  /**
   * Adds a new blob, and the tag that refers to it.
   *
   * @param name the tag's name
   * @param blobLabel the kind of the blob: begins with "EMJ" and has at most 11 bytes
   * @param blobName the blob's name
   * @param blobBytes the blob's bytes, which are copied
   * @return the new metadata
   */
  public PictureInfo withBlob(String name, String blobLabel, String blobName, byte[] blobBytes) {
    return withTag(Tag.ofBlob(name, blobLabel, blobName, blobBytes));
  }

  /**
   * Replaces all tags. A write removes a blob to which none of the new tags refers.
   *
   * @param tags the new ones, of which none is null
   * @return the new metadata
   */
  public PictureInfo withTags(Collection<Tag> tags) {
    return new PictureInfo(labels, category, type, copyOf(tags, "tag"), origin);
  }

  /**
   * Removes the tags of one name. A write removes the blobs to which only they refer.
   *
   * @param name the tags' name
   * @return the new metadata
   */
  public PictureInfo withoutTags(String name) {
    List<Tag> rest = new ArrayList<>();
    for (Tag tag : tags) {
      if (!tag.name().equals(name)) rest.add(tag);
    }
    return withTags(rest);
  }

  /**
   * The same metadata, as if it had not been read from a picture. It may be written into any
   * picture, and replaces there even metadata that cannot be read. A tag that refers to a blob
   * needs a picture that carries that blob.
   *
   * @return the new metadata
   */
  public PictureInfo asNew() {
    return new PictureInfo(labels, category, type, tags, null);
  }

  /** {@return the origin of metadata that was read or written; null for other metadata} */
  Storage origin() {
    return origin;
  }

  /** {@return the document that pictures store; an element without text is left out} */
  String document() {
    StringBuilder document = new StringBuilder("<emoji>");
    for (Label label : labels) {
      document.append("<label>");
      append(document, "name", label.name());
      append(document, "note", label.note());
      append(document, "part", label.part().storedName());
      document.append("</label>");
    }
    append(document, "category", category);
    append(document, "type", type);
    for (Tag tag : tags) {
      document.append("<tags name=\"").append(tag.name()).append("\">");
      document.append(tag.content()).append("</tags>");
    }
    return document.append("</emoji>").toString();
  }

  private static void append(StringBuilder document, String element, String text) {
    if (text.isEmpty()) return;
    document.append('<').append(element).append('>').append(text);
    document.append("</").append(element).append('>');
  }

  private PictureInfo withTag(Tag tag) {
    List<Tag> more = new ArrayList<>(tags);
    more.add(tag);
    return withTags(more);
  }

  private static <T> List<T> copyOf(Collection<T> items, String what) {
    List<T> copy = new ArrayList<>(items);
    for (T item : copy) {
      Objects.requireNonNull(item, what);
    }
    return Collections.unmodifiableList(copy);
  }

  /**
   * Metadata is equal when its labels, category, type and tags are; where it was read does not
   * matter.
   */
  @Override
  public boolean equals(Object other) {
    if (!(other instanceof PictureInfo)) return false;
    PictureInfo that = (PictureInfo) other;
    return labels.equals(that.labels) && category.equals(that.category) && type.equals(that.type)
        && tags.equals(that.tags);
  }

  @Override
  public int hashCode() {
    return Objects.hash(labels, category, type, tags);
  }

  /**
   * {@return the metadata as text for people to read, such as {@code smile (happy) [noun], wink;
   * category: face; type: anime; tags: color=yellow}}
   */
  @Override
  public String toString() {
    StringBuilder text = new StringBuilder();
    describe(text, "", listed(labels));
    describe(text, "category: ", category);
    describe(text, "type: ", type);
    describe(text, "tags: ", listed(tags));
    return text.length() == 0 ? "no metadata" : text.toString();
  }

  private static void describe(StringBuilder text, String title, String value) {
    if (value.isEmpty()) return;
    if (text.length() > 0) text.append("; ");
    text.append(title).append(value);
  }

  private static String listed(List<?> items) {
    String list = items.toString();
    return list.substring(1, list.length() - 1);
  }
}
