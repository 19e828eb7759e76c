package lumigram;

import java.io.File;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.Objects;
import lumigram.jni.LumigramAttrInfo;
import lumigram.jni.LumigramJni;

/**
 * A picture file with metadata: a GIF, PNG or JPEG. The file's extension decides which ({@code
 * .gif}, {@code .png}, {@code .jpg} or {@code .jpeg}, in any case). Pictures of at most 2,097,152
 * bytes and 960 by 960 pixels can be read.
 *
 * <pre>{@code
 * Picture picture = Picture.read(new File("heart.png"));
 * picture.write(picture.info().withLabel("heart").withTag("color", "red"));
 * }</pre>
 *
 * <p>The first use loads the native library: the file that the system property {@code
 * lumigram.library.path} names, or, when it is not set, the one on {@code java.library.path}. When
 * that fails, an {@link UnsatisfiedLinkError} reports what was tried.
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
   * Makes a picture without reading its file. It can look up a tag or a blob, and write new
   * metadata whatever the old is.
   *
   * @param file the picture's file
   * @return the picture
   */
  public static Picture at(File file) {
    return new Picture(Objects.requireNonNull(file, "file"), null, new LumigramAttrInfo());
  }

  /**
   * Reads the metadata of one picture. {@link PictureInfo} lists what a picture may carry that is
   * not read. While the file is empty, this waits for it, up to five seconds.
   *
   * @param file the picture's file
   * @return the picture with its {@link #info}, which is empty when the picture has no metadata
   * @throws PictureException when the file cannot be read
   */
  public static Picture read(File file) throws PictureException {
    return readAll(Collections.singletonList(file)).get(0).picture();
  }

  /**
   * Reads the metadata of many pictures, faster than one by one. A file that cannot be read does
   * not stop the others.
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
      results.add(status == Status.OK
              ? new ReadResult(new Picture(file, Attributes.toInfo(file, attrs[i]), attrs[i]))
              : new ReadResult(new PictureException(file, status)));
    }
  }

  /** {@return the picture's file, as the caller named it} */
  public File file() {
    return file;
  }

  /**
   * {@return the metadata that the picture had when it was read}
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
   * {@return whether this is a pop picture: a GIF that is marked as one and whose creator comments
   * after the mark, if any, are valid}
   *
   * @throws IllegalStateException when the picture was not read
   */
  public boolean isPop() {
    requireRead();
    return pop;
  }

  /**
   * Replaces the metadata of the picture; everything else in it stays. This object keeps the old
   * metadata: read the picture again to get the new.
   *
   * <p>The write is refused, before the file is touched, when the metadata is over a limit, and
   * when it was read from this picture and the write would remove something that could not be read
   * ({@link PictureInfo} has both rules). Metadata that was read from another picture needs {@link
   * PictureInfo#asNew}. An old blob stays when a tag refers to it.
   *
   * <p>Two kinds of pictures are written although their metadata cannot be read afterwards: one
   * without an image, which has no place for metadata, so that it is lost; and one that is wider or
   * higher than 960 pixels.
   *
   * @param info the new metadata
   * @throws PictureException when it was not written; the picture is then unchanged
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
   * Looks up the tags of one name in the file as it is now. Unlike {@link #read}, this finds groups
   * after the tenth, too.
   *
   * @param name the tags' name, at most 255 bytes
   * @return an unmodifiable list of up to ten contents, in stored order; it ends before a content
   *     that is empty or over 1,024 bytes, and is empty when there is no such tag
   * @throws PictureException when the file cannot be read
   */
  public List<String> tag(String name) throws PictureException {
    if (ModifiedUtf8.bytes(name) > MAX_LOOKUP_BYTES) return Collections.emptyList();
    String[] results = new String[GROUP_SIZE];
    if (LumigramJni.getLumigramTagInfo(file.getPath(), name, results) != 0) {
      read(file);  // throws, unless there is just no metadata
      return Collections.emptyList();
    }
    List<String> contents = new ArrayList<>();
    for (String content : results) {
      if (!content.isEmpty()) contents.add(content);
    }
    return Collections.unmodifiableList(contents);
  }

  /**
   * Reads a blob from the file as it is now: the first one whose label and name begin with these
   * texts. A JPEG has none.
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
    if (bytes == null) read(file);  // throws, unless there is just no such blob
    return bytes;
  }

  /** {@return the file and its metadata as text for people to read} */
  @Override
  public String toString() {
    return file + (info == null ? "" : ": " + info);
  }

  private void requireRead() {
    if (info == null) throw new IllegalStateException(file + " was not read: use Picture.read");
  }
}
