package lumigram;

import java.io.File;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.Objects;
import lumigram.jni.LumigramAttrInfo;
import lumigram.jni.LumigramJni;

/**
 * A picture file with metadata: a GIF, PNG or JPEG, which its extension tells ({@code .gif}, {@code
 * .png}, {@code .jpg}, {@code .jpeg}, in any case). At most 2,097,152 bytes and 960 by 960 pixels.
 *
 * <pre>{@code
 * Picture picture = Picture.read(new File("heart.png"));
 * picture.write(picture.info().withLabel("heart").withTag("color", "red"));
 * }</pre>
 *
 * <p>The first use loads the native library: the file that the system property {@code
 * lumigram.library.path} names, else the one on {@code java.library.path}. When there is none, an
 * {@link UnsatisfiedLinkError} says what was tried.
 */
public final class Picture {
  private static final int CHUNK = 256;
  private static final int GROUP_SIZE = 10;
  private static final int MAX_LOOKUP_BYTES = 255;

  private final File file;
  private final PictureInfo info;
  private final int width;
  private final int height;
  private final int fileSize;
  private final boolean pop;

  private Picture(File file, PictureInfo info, LumigramAttrInfo attr) {
    this.file = file;
    this.info = info;
    width = (int) attr.mWidth;
    height = (int) attr.mHeight;
    fileSize = (int) attr.mFileSize;
    pop = attr.mOrnamailPop == 1;
  }

  /**
   * A picture of which nothing is read: enough for looking up a tag or a blob, and for writing new
   * metadata without a look at the old.
   *
   * @param file the picture's file
   * @return the picture
   */
  public static Picture at(File file) {
    return new Picture(Objects.requireNonNull(file, "file"), null, new LumigramAttrInfo());
  }

  /**
   * Reads the metadata of one picture. What a picture may carry that is not read stands at {@link
   * PictureInfo}. A file that is still empty is waited for, up to five seconds.
   *
   * @param file the picture's file
   * @return the picture, with {@link #info}; a picture without metadata has empty one
   * @throws PictureException when the file cannot be read
   */
  public static Picture read(File file) throws PictureException {
    return readAll(Collections.singletonList(file)).get(0).picture();
  }

  /**
   * Reads the metadata of many pictures, which is quicker than one by one. A file that cannot be
   * read does not keep the others from being read.
   *
   * @param files the pictures' files, of which none is null
   * @return an unmodifiable list with a result for each file, in the same order
   */
  public static List<ReadResult> readAll(List<File> files) {
    List<File> all = new ArrayList<>(files);
    List<ReadResult> results = new ArrayList<>(all.size());
    for (int start = 0; start < all.size(); start += CHUNK) {
      readChunk(all.subList(start, Math.min(start + CHUNK, all.size())), results);
    }
    return Collections.unmodifiableList(results);
  }

  private static void readChunk(List<File> files, List<ReadResult> results) {
    String[] paths = new String[files.size()];
    LumigramAttrInfo[] attrs = new LumigramAttrInfo[paths.length];
    byte[] codes = new byte[paths.length];
    for (int i = 0; i < paths.length; i++) {
      paths[i] = Objects.requireNonNull(files.get(i), "file").getPath();
      attrs[i] = new LumigramAttrInfo();
    }
    int batchCode = LumigramJni.getLumigramAttrInfo(paths, attrs, codes);
    for (int i = 0; i < paths.length; i++) {
      File file = files.get(i);
      Status status = Status.ofReading(batchCode != 0 ? batchCode : codes[i]);
      results.add(
          status == Status.OK
              ? new ReadResult(new Picture(file, Attributes.toInfo(file, attrs[i]), attrs[i]))
              : new ReadResult(new PictureException(file, status)));
    }
  }

  /** {@return the picture's file, as the caller named it} */
  public File file() {
    return file;
  }

  /**
   * {@return the metadata, as it was when the picture was read}
   *
   * @throws IllegalStateException when the picture was not read
   */
  public PictureInfo info() {
    requireRead();
    return info;
  }

  /**
   * {@return the width in pixels; of a GIF the largest among screen and images}
   *
   * @throws IllegalStateException when the picture was not read
   */
  public int width() {
    requireRead();
    return width;
  }

  /**
   * {@return the height in pixels; of a GIF the largest among screen and images}
   *
   * @throws IllegalStateException when the picture was not read
   */
  public int height() {
    requireRead();
    return height;
  }

  /**
   * {@return the size of the file in bytes}
   *
   * @throws IllegalStateException when the picture was not read
   */
  public int fileSize() {
    requireRead();
    return fileSize;
  }

  /**
   * {@return whether this is a pop picture: a GIF with the mark of one, whose creator comments, if
   * any, are valid}
   *
   * @throws IllegalStateException when the picture was not read
   */
  public boolean isPop() {
    requireRead();
    return pop;
  }

  /**
   * Writes metadata into the picture, in place of all that it carries; everything else in it stays.
   * This object still shows what was read before: read the picture again to see the new metadata.
   *
   * <p>Nothing is touched when the metadata breaks a limit, or when it was read from this picture
   * and would take away what could not be read ({@link PictureInfo} says more about both); metadata
   * that was read from another picture needs {@link PictureInfo#asNew}. Of the old blobs those stay
   * to which a tag refers.
   *
   * <p>Neither is a picture refused that cannot hold metadata for want of an image, nor one of more
   * than 960 pixels: the metadata of the first is lost, that of the second cannot be read.
   *
   * @param info the new metadata
   * @throws PictureException when it was not written; the picture is then as it was
   */
  public void write(PictureInfo info) throws PictureException {
    Objects.requireNonNull(info, "info");
    Kind kind = Kind.of(file);
    if (kind == null) throw new PictureException(file, Status.UNSUPPORTED_TYPE);
    WriteCheck.check(file, kind, info);
    if (info.origin() != null) info.origin().check(file, kind);
    int code = LumigramJni.setLumigramAttrInfo(file.getPath(), Attributes.toUpdate(info));
    if (code != 0) throw new PictureException(file, Status.ofWriting(code));
  }

  /**
   * Looks up the tags of one name, in the file as it is now. Unlike reading, this also finds those
   * of an eleventh group.
   *
   * @param name the tags' name, at most 255 bytes
   * @return an unmodifiable list of up to ten contents, in stored order, which ends before one that
   *     is empty or over 1,024 bytes; empty when there are none
   * @throws PictureException when the file cannot be read
   */
  public List<String> tag(String name) throws PictureException {
    if (ModifiedUtf8.bytes(name) > MAX_LOOKUP_BYTES) return Collections.emptyList();
    String[] results = new String[GROUP_SIZE];
    if (LumigramJni.getLumigramTagInfo(file.getPath(), name, results) != 0) {
      read(file);  // tells why, unless it is only that there is no metadata
      return Collections.emptyList();
    }
    List<String> contents = new ArrayList<>();
    for (String content : results) {
      if (!content.isEmpty()) contents.add(content);
    }
    return Collections.unmodifiableList(contents);
  }

  /**
   * Takes out a blob, from the file as it is now: the first one whose label and name begin like
   * these. A JPEG has none.
   *
   * @param label the blob's label, or its beginning; empty for any
   * @param name the blob's name, or its beginning; empty for any
   * @return the blob's bytes; null when there is no such blob, or when it is empty
   * @throws PictureException when the file cannot be read
   */
  public byte[] blob(String label, String name) throws PictureException {
    Objects.requireNonNull(label, "label");
    Objects.requireNonNull(name, "name");
    byte[] bytes = LumigramJni.getLumigramApplicationExtensionInfo(file.getPath(), label, name);
    if (bytes == null) read(file);  // tells why, unless it is only that there is no such blob
    return bytes;
  }

  /** The file and what it carries, for people to read. */
  @Override
  public String toString() {
    return file + (info == null ? "" : ": " + info);
  }

  private void requireRead() {
    if (info == null) throw new IllegalStateException(file + " was not read: use Picture.read");
  }
}
