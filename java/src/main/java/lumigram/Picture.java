package lumigram;

import java.io.File;
import java.io.FileDescriptor;
import java.io.FileInputStream;
import java.io.IOException;
import java.io.InputStream;
import java.io.OutputStream;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.Objects;
import lumigram.jni.LumigramAttrInfo;
import lumigram.jni.LumigramFiles;

/**
 * A picture with metadata, a GIF, PNG or JPEG: in a file or in memory. The file's extension decides
 * its kind ({@code .gif}, {@code .png}, {@code .jpg} or {@code .jpeg}, in any case), and the
 * signature that of bytes. Pictures of at most 2,097,152 bytes and 960 by 960 pixels can be read.
 *
 * <pre>{@code
 * Picture picture = Picture.read(new File("heart.png"));
 * picture.write(picture.info().withLabel("heart").withTag("color", "red"));
 * }</pre>
 *
 * <p>A picture in memory can do the same. A {@link #write} changes nothing but this object;
 * {@link #toBytes} and {@link #writeTo} give its bytes away.
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
   * Reads the metadata of a picture that is bytes. Their signature shows its kind.
   *
   * @param bytes the picture, which is not copied: do not change the array while the picture is in
   *     use. {@link #write} does not change it, but makes a new one
   * @return the picture
   * @throws PictureException when the bytes cannot be read
   */
  public static Picture read(byte[] bytes) throws PictureException {
    return read(new MemoryStorage(bytes, null));
  }

  /**
   * Reads the metadata of a picture that is bytes, and of a known kind.
   *
   * @param bytes the picture, which is not copied
   * @param kind its kind
   * @return the picture
   * @throws PictureException when the bytes cannot be read
   */
  public static Picture read(byte[] bytes, Kind kind) throws PictureException {
    return read(new MemoryStorage(bytes, Objects.requireNonNull(kind, "kind")));
  }

  /**
   * Reads the metadata of a picture from a stream, up to the stream's end. A stream of more than
   * 2,097,152 bytes fails with {@link Status#TOO_LARGE} and is not read to its end. The picture is
   * then in memory: see {@link #writeTo}.
   *
   * @param in the stream, which is not closed
   * @return the picture
   * @throws PictureException when the bytes cannot be read as a picture
   * @throws IOException when the stream cannot be read
   */
  public static Picture read(InputStream in) throws IOException {
    return read(Streams.read(in));
  }

  /**
   * Reads the metadata of a picture from a descriptor, from its position to its end, as from a
   * stream.
   *
   * @param descriptor the descriptor, which is not closed
   * @return the picture
   * @throws PictureException when the bytes cannot be read as a picture
   * @throws IOException when the descriptor cannot be read
   */
  public static Picture read(FileDescriptor descriptor) throws IOException {
    return read(new FileInputStream(Objects.requireNonNull(descriptor, "descriptor")));
  }

  private static Picture read(MemoryStorage storage) throws PictureException {
    return readStorages(Collections.singletonList(storage), MemoryStorage::read).get(0).picture();
  }

  /**
   * Reads the metadata of many pictures, faster than one by one. A file that cannot be read does
   * not stop the others, and none is waited for.
   *
   * @param files the pictures' files, of which none is null
   * @return an unmodifiable list with a result for each file, in the same order
   */
  public static List<ReadResult> readAll(List<File> files) {
    List<FileStorage> storages = new ArrayList<>(files.size());
    for (File file : files) {
      storages.add(new FileStorage(file));
    }
    return readStorages(storages, FileStorage::read);
  }

  /**
   * Reads the metadata of many pictures that are bytes, faster than one by one.
   *
   * @param pictures the pictures, of which none is null
   * @return an unmodifiable list with a result for each picture, in the same order
   */
  public static List<ReadResult> readAllBytes(List<byte[]> pictures) {
    List<MemoryStorage> storages = new ArrayList<>(pictures.size());
    for (byte[] picture : pictures) {
      storages.add(new MemoryStorage(picture, null));
    }
    return readStorages(storages, MemoryStorage::read);
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
    Status status =
        Status.ofObstacle(LumigramFiles.findObstacle(folder.getPath(), false, 0, new String[1]));
    if (status == Status.MISSING) return new PictureException(folder, status, "no such folder");
    if (folder.isDirectory()) status = Status.FORBIDDEN;
    return status == Status.FORBIDDEN
        ? new PictureException(folder, status, "the folder cannot be listed")
        : new PictureException(folder, Status.NOT_A_FOLDER);
  }

  /** Reads a batch, as the native methods do. */
  private interface BatchReader<S> {
    int read(List<S> storages, Object[] attrs, long[] fingerprints, byte[] results);
  }

  private static <S extends Storage> List<ReadResult> readStorages(
      List<S> storages, BatchReader<S> reader) {
    List<ReadResult> results = new ArrayList<>(storages.size());
    for (int start = 0; start < storages.size(); start += CHUNK) {
      int end = Math.min(start + CHUNK, storages.size());
      readChunk(storages.subList(start, end), reader, results);
    }
    return Collections.unmodifiableList(results);
  }

  private static <S extends Storage> void readChunk(
      List<S> storages, BatchReader<S> reader, List<ReadResult> results) {
    LumigramAttrInfo[] attrs = new LumigramAttrInfo[storages.size()];
    for (int i = 0; i < attrs.length; i++) {
      attrs[i] = new LumigramAttrInfo();
    }
    long[] fingerprints = new long[2 * attrs.length];
    byte[] codes = new byte[attrs.length];
    int batchCode = reader.read(storages, attrs, fingerprints, codes);
    for (int i = 0; i < attrs.length; i++) {
      Storage storage = storages.get(i);
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

  /** {@return the picture's file, as the caller named it; null for a picture in memory} */
  public File file() {
    return storage.file();
  }

  /** {@return the picture's kind; null when the extension of its file is another one} */
  public Kind kind() {
    return storage.kind();
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
    byte[][] newBlobs = Attributes.newBlobs(storage.file(), info);
    int code = storage.write(Attributes.toUpdate(info), newBlobs,
        seen == null ? null : seen.fingerprint, info.origin() == null, details);
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
        "The metadata was read from another picture"
            + (origin.file() == null ? "" : ", " + origin.file()) + ", and asNew() not called");
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
   * @return the blob's bytes, or nothing when there is no such blob
   * @throws PictureException when the file cannot be read
   */
  public OptionalBlob blob(String label, String name) throws PictureException {
    Objects.requireNonNull(label, "label");
    Objects.requireNonNull(name, "name");
    int[] status = {0};
    byte[] bytes = storage.readBlob(label, name, status);
    if (status[0] != 0 && status[0] != NO_BLOB) throw storage.failure(status[0], false, 0);
    return new OptionalBlob(bytes);
  }

  /**
   * Lists the blobs of the picture as it is now: those whose label begins with "EMJ", whether or
   * not a tag refers to them.
   *
   * @return an unmodifiable list, in stored order
   * @throws PictureException when the file cannot be read
   */
  public List<Blob> blobs() throws PictureException {
    int[] status = {0};
    String[] texts = storage.listBlobs(status);
    if (status[0] != 0) throw storage.failure(status[0], false, 0);
    List<Blob> blobs = new ArrayList<>(texts.length / 3);
    for (int i = 0; i < texts.length; i += 3) {
      blobs.add(new Blob(texts[i], texts[i + 1], Integer.parseInt(texts[i + 2])));
    }
    return Collections.unmodifiableList(blobs);
  }

  /**
   * {@return the bytes of the picture as it is now: a new array}
   *
   * @throws IOException when the file cannot be read
   */
  public byte[] toBytes() throws IOException {
    return storage.bytes().clone();
  }

  /**
   * Writes the bytes of the picture as it is now.
   *
   * @param out receives the bytes; it is not closed
   * @throws IOException when the file cannot be read or the stream not written
   */
  public void writeTo(OutputStream out) throws IOException {
    out.write(storage.bytes());
  }

  /** {@return the file and its metadata as text for people to read} */
  @Override
  public String toString() {
    State now = state;
    return name() + (now == null ? "" : ": " + now.info);
  }

  private String name() {
    return storage.file() == null ? "picture in memory" : storage.file().toString();
  }

  private State known(State now) {
    if (now == null) throw notRead();
    return now;
  }

  private void requireRead() {
    if (!wasRead) throw notRead();
  }

  private IllegalStateException notRead() {
    return new IllegalStateException(name() + " was not read: use Picture.read");
  }
}
