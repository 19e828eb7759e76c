package lumigram;

import java.io.File;
import java.util.ArrayList;
import java.util.Collection;
import java.util.Collections;
import java.util.List;
import java.util.Objects;

/**
 * What a picture carries besides its pixels: labels, a category, a type and tags, some of which
 * refer to blobs. Immutable: each {@code with} and {@code without} method returns a new object.
 * {@link #empty} is where a new one starts, {@link Picture#info} gives what a picture carries.
 *
 * <p><b>Limits.</b> They are tested when the metadata is written, before anything is touched.
 * Lengths in bytes are those of Java's modified UTF-8, which is what pictures store; a character
 * outside the basic plane, such as most emoji, has 6 bytes there and counts as two characters.
 * Control characters count as none.
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
 * as {@code </name>} or {@code <label>}), and a tag's name not {@code ">}. Neither may they hold
 * U+0000, half a surrogate pair, or U+FFFD, which is what stands in a text that was read for bytes
 * that are not valid. The name of a label or tag is never empty.
 *
 * <p><b>What reading does not tell.</b> The native side reads what is within the limits and keeps
 * silent about the rest. An object that was read therefore lacks:
 *
 * <ul>
 *   <li>the labels behind the tenth, and all of them when one is malformed or over its limits;
 *   <li>all tags when one is over its limits; of the others, those behind the first hundred, behind
 *       the tenth group, and behind the tenth of a group; all tags behind a first one with an empty
 *       name; and, only where the first tag's content is empty, the tags of a group behind one with
 *       an empty content, which {@link Picture#read} otherwise fetches by looking the groups up;
 *   <li>a category or type over 256 bytes; a part of speech that is not in {@link PartOfSpeech};
 *   <li>the blobs that no tag refers to.
 * </ul>
 *
 * <p>Writing would take all that out of the picture. Before it does, {@link Picture#write} searches
 * the picture's file for it, and refuses with {@link Status#UNREAD} when it finds more than was
 * read; {@link #asNew} overrules that. What it cannot find out, and what a write takes away without
 * a word, is text outside of the elements above: white space, elements that are not of this format,
 * and the spelling of characters outside the basic plane (a program that does not use Java may have
 * stored them as 4 bytes, which become 6).
 */
public final class PictureInfo {
  private static final PictureInfo EMPTY =
      new PictureInfo(
          Collections.<Label>emptyList(), "", "", Collections.<Tag>emptyList(), null);

  private final List<Label> labels;
  private final String category;
  private final String type;
  private final List<Tag> tags;
  private final Origin origin;

  private PictureInfo(
      List<Label> labels, String category, String type, List<Tag> tags, Origin origin) {
    this.labels = labels;
    this.category = Objects.requireNonNull(category, "category");
    this.type = Objects.requireNonNull(type, "type");
    this.tags = tags;
    this.origin = origin;
  }

  /** The same metadata, as what reading a file has told. */
  PictureInfo readFrom(File file) {
    return new PictureInfo(labels, category, type, tags, new Origin(file, this));
  }

  /**
   * Metadata without anything. Written into a picture as it is, it empties it.
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

  /** {@return the tags, with those that refer to blobs: an unmodifiable list, in stored order} */
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
   * Adds a tag, behind those that are there: also when there are some of that name.
   *
   * @param name the tag's name
   * @param content its content
   * @return the new metadata
   */
  public PictureInfo withTag(String name, String content) {
    return withTag(new Tag(name, content));
  }

  /**
   * Adds a tag that refers to a new blob, which is written into the picture with it.
   *
   * @param name the tag's name
   * @param blobLabel what kind of blob it is: begins with "EMJ" and has at most 11 bytes
   * @param blobFile where its bytes are; the file's name becomes the blob's
   * @return the new metadata
   */
  public PictureInfo withBlob(String name, String blobLabel, File blobFile) {
    return withTag(Tag.ofBlob(name, blobLabel, blobFile));
  }

  /**
   * Replaces all tags. A blob whose tag is not among the new ones leaves the picture.
   *
   * @param tags the new ones, of which none is null
   * @return the new metadata
   */
  public PictureInfo withTags(Collection<Tag> tags) {
    return new PictureInfo(labels, category, type, copyOf(tags, "tag"), origin);
  }

  /**
   * Removes the tags of one name, and with them the blobs to which they refer.
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
   * The same metadata, as if it had not been read from a picture. It may then be written into any
   * picture, whatever that carries and reading did not tell: what is not named here is gone. A tag
   * that refers to a blob needs a picture that carries that blob.
   *
   * @return the new metadata
   */
  public PictureInfo asNew() {
    return new PictureInfo(labels, category, type, tags, null);
  }

  /** Where this metadata was read; null for what was made from nothing. */
  Origin origin() {
    return origin;
  }

  /** The document that pictures store. An element without text is left out. */
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

  /** The metadata for people to read. */
  @Override
  public String toString() {
    return "labels " + labels + ", category " + category + ", type " + type + ", tags " + tags;
  }
}
