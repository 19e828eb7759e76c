package lumigram;

import java.io.File;
import java.io.IOException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.Objects;
import lumigram.jni.LumigramAttrInfo;
import lumigram.jni.LumigramFiles;

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
 * <p>A picture knows the metadata that it has read or written last, and does not overwrite the
 * changes of others: see {@link #write}. It may be used from any thread.
 *
 * <p>The first use loads the native library: the file that the system property {@code
 * lumigram.library.path} names; when it is not set, the library in the jar, if there is one for this
 * machine; otherwise the one on {@code java.library.path}. When that fails, an {@link
 * UnsatisfiedLinkError} reports what was tried.
 */
public final class Picture {
  private static final int CHUNK = 256;
  private static final int GROUP_SIZE = 10;
  private static final int MAX_LOOKUP_BYTES = 255;
  private static final int NO_BLOB = -2;
  private static final int NO_DOCUMENT = -5;
  private static final String TEMPORARY_PREFIX = ".lumigram-";

  /** The metadata that was read or written last. */
  private static final class State {
    final PictureInfo info;
    final long[] fingerprint;
    final int fileSize;

    State(PictureInfo info, long high, long low, long fileSize) {
      this.info = info;
      this.fingerprint = new long[] {high, low};
      this.fileSize = (int) fileSize;
    }
  }

  private final Storage storage;
  private final int width;
  private final int height;
  private final boolean pop;
  private final boolean wasRead;
  private volatile State state;

  private Picture(Storage storage, LumigramAttrInfo attr, State state) {
    this.storage = storage;
    this.state = state;
    wasRead = attr != null;
    width = wasRead ? (int) attr.mWidth : 0;
    height = wasRead ? (int) attr.mHeight : 0;
    pop = wasRead && attr.mOrnamailPop == 1;
  }

  /**
   * Makes a picture without reading its file. It can look up a tag or a blob, and write new
   * metadata whatever the old is.
   *
   * @param file the picture's file
   * @return the picture
   */
  public static Picture at(File file) {
    return new Picture(new FileStorage(file), null, null);
  }

  /**
   * Reads the metadata of one picture. {@link PictureInfo} lists what a picture may carry that is
   * not read. Does not wait for a file that is still empty.
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
   * not stop the others, and none is waited for.
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

  /**
   * Reads the metadata of the pictures in a folder: of all entries with the extension of a picture,
   * in the order of their names, without those of subfolders and without the temporary files of a
   * write.
   *
   * @param folder the folder
   * @return an unmodifiable list with a result for each picture
   * @throws PictureException when the folder cannot be listed
   */
  public static List<ReadResult> readFolder(File folder) throws PictureException {
    File[] files = folder.listFiles(
        (parent, name) -> !name.startsWith(TEMPORARY_PREFIX) && Kind.of(new File(name)) != null);
    if (files == null) throw notListed(folder);
    Arrays.sort(files);
    return readAll(Arrays.asList(files));
  }

  private static PictureException notListed(File folder) {
    Status status = Status.ofObstacle(
        LumigramFiles.findObstacle(folder.getPath(), false, 0, new String[1]));
    if (status == Status.MISSING) return new PictureException(folder, status, "no such folder");
    if (folder.isDirectory()) status = Status.FORBIDDEN;
    return status == Status.FORBIDDEN
        ? new PictureException(folder, status, "the folder cannot be listed")
        : new PictureException(folder, Status.NOT_A_FOLDER);
  }

  private static void readChunk(List<File> files, List<ReadResult> results) {
    String[] paths = new String[files.size()];
    LumigramAttrInfo[] attrs = new LumigramAttrInfo[paths.length];
    long[] fingerprints = new long[2 * paths.length];
    byte[] codes = new byte[paths.length];
    for (int i = 0; i < paths.length; i++) {
      paths[i] = Objects.requireNonNull(files.get(i), "file").getPath();
      attrs[i] = new LumigramAttrInfo();
    }
    int batchCode = LumigramFiles.readPictures(paths, attrs, fingerprints, codes);
    for (int i = 0; i < paths.length; i++) {
      Storage storage = new FileStorage(files.get(i));
      int code = batchCode != 0 ? batchCode : codes[i];
      if (code != 0) {
        results.add(new ReadResult(storage.failure(code, false, 0)));
      } else {
        PictureInfo info = Attributes.toInfo(attrs[i]).readFrom(storage);
        State state =
            new State(info, fingerprints[2 * i], fingerprints[2 * i + 1], attrs[i].mFileSize);
        results.add(new ReadResult(new Picture(storage, attrs[i], state)));
      }
    }
  }

  /** {@return the picture's file, as the caller named it} */
  public File file() {
    return storage.file();
  }

  /**
   * {@return the metadata that the picture had when it was read, or that this object has written
   * last}
   *
   * @throws IllegalStateException when the picture was neither read nor written
   */
  public PictureInfo info() {
    return known(state).info;
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
   * {@return the size of the file in bytes, when it was read or written last}
   *
   * @throws IllegalStateException when the picture was neither read nor written
   */
  public int fileSize() {
    return known(state).fileSize;
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
   * Replaces the metadata of the picture; everything else in it stays. Afterwards {@link #info}
   * returns the new metadata, in which new blobs are blobs of the picture. An old blob stays when a
   * tag refers to it.
   *
   * <p>The write is refused, and the picture unchanged,
   *
   * <ul>
   *   <li>with {@link Status#CHANGED} when somebody else has changed the metadata or the blobs of
   *       the file since this object read or last wrote it. Changed pixels do not matter. When this
   *       object has neither read nor written the picture, nothing is compared;
   *   <li>with {@link Status#UNREAD} when the metadata was read from this picture, and the write
   *       would remove something that could not be read ({@link PictureInfo} has a list), and when
   *       it was read from another picture: {@link PictureInfo#asNew} lifts both;
   *   <li>when the metadata is over a limit or could not be read back ({@link PictureInfo}).
   * </ul>
   *
   * <p>Writes of several programs that use this method or the command line tool follow each other:
   * each locks the file, and this one waits for a lock for at most ten seconds ({@link
   * Status#BUSY}). When any other program changes the file while this one works, the write begins
   * again with the file as it is then. No file is created.
   *
   * <p>Two kinds of pictures are written although their metadata cannot be read afterwards: one
   * without an image, which has no place for metadata, so that it is lost; and one that is wider or
   * higher than 960 pixels.
   *
   * @param info the new metadata
   * @throws PictureException when it was not written; the picture is then unchanged
   */
  public synchronized void write(PictureInfo info) throws PictureException {
    Objects.requireNonNull(info, "info");
    Kind kind = storage.kind();
    if (kind == null) throw new PictureException(storage.file(), Status.UNSUPPORTED_TYPE);
    WriteCheck.check(storage.file(), kind, info);
    requireSamePicture(info.origin());
    State seen = state;
    long[] details = new long[Unread.KINDS];
    int code = storage.write(Attributes.toUpdate(info), seen == null ? null : seen.fingerprint,
        info.origin() == null, details);
    if (code != 0) throw refusal(info, code, details);
    state = new State(info.asWritten().readFrom(storage), details[0], details[1], details[2]);
  }

  private PictureException refusal(PictureInfo info, int code, long[] details) {
    switch (code) {
      case LumigramFiles.UNREAD:
        return new PictureException(storage.file(), Status.UNREAD, Unread.sentence(details));
      case LumigramFiles.BLOB_MISSING:
        int tag = (int) details[0];
        return new PictureException(storage.file(), Status.UNUSABLE_BLOB,
            "tag " + (tag + 1) + ": the blob \"" + info.tags().get(tag).blobName()
                + "\" is not in the picture");
      default:
        return storage.failure(code, true, (int) details[0]);
    }
  }

  /** The file may have got another name, or the metadata may have been read by another name. */
  private void requireSamePicture(Storage origin) throws PictureException {
    if (origin == null || origin == storage) return;
    boolean isSame;
    try {
      isSame = origin.file() != null && storage.file() != null
          && origin.file().getCanonicalFile().equals(storage.file().getCanonicalFile());
    } catch (IOException failure) {
      isSame = false;
    }
    if (isSame) return;
    throw new PictureException(storage.file(), Status.UNREAD,
        "The metadata was read from another picture, " + origin.file()
            + ", and asNew() not called");
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
    int code = storage.lookUpTag(name, results);
    if (code == NO_DOCUMENT) return Collections.emptyList();
    if (code != 0) throw storage.failure(code, false, 0);
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
   * @return the blob's bytes; null when there is no such blob
   * @throws PictureException when the file cannot be read
   */
  public byte[] blob(String label, String name) throws PictureException {
    Objects.requireNonNull(label, "label");
    Objects.requireNonNull(name, "name");
    int[] status = {0};
    byte[] bytes = storage.readBlob(label, name, status);
    if (status[0] == NO_BLOB) return null;
    if (status[0] != 0) throw storage.failure(status[0], false, 0);
    return bytes;
  }

  /** {@return the file and its metadata as text for people to read} */
  @Override
  public String toString() {
    State now = state;
    return storage.file() + (now == null ? "" : ": " + now.info);
  }

  private State known(State now) {
    if (now == null) throw notRead();
    return now;
  }

  private void requireRead() {
    if (!wasRead) throw notRead();
  }

  private IllegalStateException notRead() {
    return new IllegalStateException(storage.file() + " was not read: use Picture.read");
  }
}
