package lumigram;

import java.io.File;
import java.util.Objects;

/**
 * One of a picture's tags: a name and a content. Tags of the same name are a group. A content that
 * begins with {@value #THIS_PICTURE} refers to a blob in the same picture.
 */
public final class Tag {
  /** What the content of a tag begins with that refers to a blob; the blob's name follows. */
  public static final String THIS_PICTURE = "file://THIS/";

  private final String name;
  private final String content;
  private final String blobLabel;
  private final File blobFile;

  private Tag(String name, String content, String blobLabel, File blobFile) {
    this.name = Objects.requireNonNull(name, "name");
    this.content = Objects.requireNonNull(content, "content");
    this.blobLabel = blobLabel;
    this.blobFile = blobFile;
  }

  /**
   * A tag with a text; or, when the text begins with {@value #THIS_PICTURE}, one that keeps the
   * blob of that name, which the picture carries already. A blob that no tag keeps is gone after a
   * write.
   *
   * @param name not empty, at most 24 characters and 256 bytes (see {@link PictureInfo})
   * @param content at most 1,024 bytes
   */
  public Tag(String name, String content) {
    this(name, content, null, null);
  }

  /**
   * A tag that brings a new blob into a GIF or PNG picture: the bytes of a file, under the file's
   * name. They are read when the picture is written.
   *
   * @param name the tag's name
   * @param blobLabel what kind of blob it is: begins with "EMJ" and has at most 11 bytes
   * @param blobFile the file; not empty, with a name of at most 255 bytes
   * @return the tag
   */
  public static Tag ofBlob(String name, String blobLabel, File blobFile) {
    Objects.requireNonNull(blobLabel, "blobLabel");
    return new Tag(name, THIS_PICTURE + blobFile.getName(), blobLabel, blobFile);
  }

  /** {@return the tag's name} */
  public String name() {
    return name;
  }

  /** {@return the tag's content: a text, or {@value #THIS_PICTURE} and the name of a blob} */
  public String content() {
    return content;
  }

  /**
   * {@return the name of the blob that the tag refers to, which is what follows the last {@code /};
   * null when the content is a text}
   */
  public String blobName() {
    return content.startsWith(THIS_PICTURE)
        ? content.substring(content.lastIndexOf('/') + 1)
        : null;
  }

  /** The label of a new blob; null for one that the picture carries already, and for none. */
  String blobLabel() {
    return blobLabel;
  }

  /** The file of a new blob, or null. */
  File blobFile() {
    return blobFile;
  }

  /** Whether the tag keeps a blob that the picture carries already. */
  boolean keepsBlob() {
    return blobFile == null && blobName() != null;
  }

  /** Tags are equal when names and contents are, wherever the bytes of a blob come from. */
  @Override
  public boolean equals(Object other) {
    if (!(other instanceof Tag)) return false;
    Tag that = (Tag) other;
    return name.equals(that.name) && content.equals(that.content);
  }

  @Override
  public int hashCode() {
    return Objects.hash(name, content);
  }

  /** The tag for people to read. */
  @Override
  public String toString() {
    return name + "=" + content;
  }
}
