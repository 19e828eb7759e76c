package lumigram;

import java.io.File;
import java.io.FileInputStream;
import java.io.IOException;
import java.util.Objects;

/**
 * One of a picture's tags: a name and a content. Tags of the same name are a group. A content that
 * begins with {@value #THIS_PICTURE} refers to a blob in the same picture.
 */
public final class Tag {
  /** The beginning of a content that refers to a blob; the blob's name follows. */
  public static final String THIS_PICTURE = "file://THIS/";

  private final String name;
  private final String content;
  private final String blobLabel;
  private final File blobFile;
  private final byte[] blobBytes;

  private Tag(String name, String content, String blobLabel, File blobFile, byte[] blobBytes) {
    this.name = Objects.requireNonNull(name, "name");
    this.content = Objects.requireNonNull(content, "content");
    this.blobLabel = blobLabel;
    this.blobFile = blobFile;
    this.blobBytes = blobBytes;
  }

  /**
   * Makes a tag with a text. A text that begins with {@value #THIS_PICTURE} keeps the blob whose
   * name follows, and which the picture carries already. A write removes every blob that no tag
   * keeps.
   *
   * @param name not empty, at most 24 characters and 256 bytes (see {@link PictureInfo})
   * @param content at most 1,024 bytes
   */
  public Tag(String name, String content) {
    this(name, content, null, null, null);
  }

  /**
   * Makes a tag that refers to a new blob of a GIF or PNG picture: the bytes of a file, under the
   * file's name. The file is read when the picture is written.
   *
   * @param name the tag's name
   * @param blobLabel the kind of the blob: begins with "EMJ" and has at most 11 bytes
   * @param blobFile the file; not empty, with a name of at most 255 bytes
   * @return the tag
   */
  public static Tag ofBlob(String name, String blobLabel, File blobFile) {
    Objects.requireNonNull(blobLabel, "blobLabel");
    return new Tag(name, THIS_PICTURE + blobFile.getName(), blobLabel, blobFile, null);
  }

  /**
   * Makes a tag that refers to a new blob of a GIF or PNG picture.
   *
   * @param name the tag's name
   * @param blobLabel the kind of the blob: begins with "EMJ" and has at most 11 bytes
   * @param blobName the blob's name, of at most 255 bytes
   * @param blobBytes the bytes, which are copied; not empty
   * @return the tag
   */
  public static Tag ofBlob(String name, String blobLabel, String blobName, byte[] blobBytes) {
    Objects.requireNonNull(blobLabel, "blobLabel");
    return new Tag(name, THIS_PICTURE + blobName, blobLabel, null, blobBytes.clone());
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
   * {@return the name of the blob to which the tag refers, which follows the last {@code /}; null
   * when the content is a text}
   */
  public String blobName() {
    if (!content.startsWith(THIS_PICTURE)) return null;
    return content.substring(content.lastIndexOf('/') + 1);
  }

  /** {@return the label of the new blob; null when the tag refers to no new one} */
  String blobLabel() {
    return blobLabel;
  }

  /** {@return the file of the new blob; null when there is none} */
  File blobFile() {
    return blobFile;
  }

  /** {@return the number of bytes of the new blob} */
  long blobSize() {
    return blobFile == null ? blobBytes.length : blobFile.length();
  }

  /**
   * {@return the bytes of the new blob, which the caller does not change}
   *
   * @throws IOException when its file cannot be read
   */
  byte[] blobBytes() throws IOException {
    if (blobFile == null) return blobBytes;
    try (FileInputStream in = new FileInputStream(blobFile)) {
      return Streams.read(in);
    }
  }

  /** {@return whether the tag refers to a new blob} */
  boolean addsBlob() {
    return blobLabel != null;
  }

  /** Tags are equal when their names and contents are; the bytes of a new blob do not matter. */
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

  /** {@return the tag as text for people to read} */
  @Override
  public String toString() {
    return name + "=" + content;
  }
}
