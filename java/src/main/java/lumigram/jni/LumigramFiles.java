package lumigram.jni;

/**
 * The native methods beneath the typed API, for pictures in files. Unlike those of {@link
 * LumigramJni}, they never wait for a file to be written: only regular files of 1 to 2,097,152
 * bytes are read, and everything else is answered at once. They throw nothing, keep no state, and
 * may be called from any thread; the arrays and objects belong to the call while it runs.
 */
public final class LumigramFiles {
  /** A tag newly refers to a blob that the picture does not carry. */
  public static final int BLOB_MISSING = 3;

  /** The write would remove something that a read withholds. */
  public static final int UNREAD = 4;

  /** The document or the blobs of the picture are not those that were expected. */
  public static final int CHANGED = 5;

  /** Another program holds the lock of the picture for ten seconds, or keeps changing it. */
  public static final int BUSY = 6;

  /** The picture's file could not be replaced. */
  public static final int NOT_REPLACED = 7;

  static {
    LibraryLoader.load();
  }

  private LumigramFiles() {}

  /**
   * Reads the metadata of a batch of pictures, as {@link LumigramJni#getLumigramAttrInfo} does,
   * with these differences: it does not wait; the contents of tags are stored whenever their names
   * are; and each picture that is read gets a fingerprint. Two fingerprints are different, in all
   * likelihood, when the documents or blobs (labels, names, bytes) of the pictures are.
   *
   * @param paths the pictures' paths
   * @param attrs the objects that receive the metadata
   * @param fingerprints receives two numbers for each picture; after a failure they are unspecified
   * @param results receives the statuses of {@link LumigramJni#getLumigramAttrInfo}; -99 also for a
   *     file that is empty or over 2,097,152 bytes, and for what is no regular file
   * @return 0 when the batch was processed, whatever the results of the files; -10 when an argument
   *     is null, and -99 when there is no memory
   */
  public static native int readPictures(
      String[] paths, Object[] attrs, long[] fingerprints, byte[] results);

  /**
   * Replaces the metadata of one picture, if it is still what the caller has seen: reads the
   * picture, compares, builds the new picture and replaces the file, unless another program changes
   * it meanwhile; then begins again, a few times. Waits for the lock of another rewrite, at most
   * ten seconds. Creates no file. After a failure the picture is unchanged.
   *
   * @param path the picture's path
   * @param attr the metadata, as for {@link LumigramJni#setLumigramAttrInfo}
   * @param newBlobs the bytes of new blobs, each at the index of its tag, which has a blob label and
   *     a URI that ends with the blob's name; null elements and a null array for none. No file is
   *     opened
   * @param expected the two numbers of the fingerprint that the picture must have; null for any
   * @param replacesUnread whether the write may remove what a read withholds, and metadata that
   *     cannot be read
   * @param details receives, in at least 11 elements: after 0 the two numbers of the new
   *     fingerprint and the size of the file; after {@link #UNREAD} how many there are of each kind
   *     that a write would remove, in this order: labels over a limit, labels after the tenth,
   *     unknown parts of speech, tags over a limit, tags over the limits of groups or without a
   *     name, further or too long categories and types, texts between elements, texts with markup,
   *     further documents, blobs that no tag refers to, bytes after the end; after {@link
   *     #BLOB_MISSING} the index of the tag; after -20 and {@link #NOT_REPLACED} an error number of
   *     the system, or 0
   * @return 0; one of the constants of this class; -10, -21, -50 and -99 as {@link
   *     LumigramJni#setLumigramAttrInfo} returns them; -20: the file is missing or cannot be read;
   *     -30, -31, -41, -42, -99 as reading the old picture or building the new one ended
   */
  public static native int writePicture(String path, Object attr, byte[][] newBlobs,
      long[] expected, boolean replacesUnread, long[] details);

  /**
   * Looks up one tag group of one picture, as {@link LumigramJni#getLumigramTagInfo} does, but does
   * not wait.
   *
   * @param path the picture's path
   * @param tagName the group's name
   * @param results receives the contents, at least ten elements
   * @return 0, -10, -20 and -21 as {@link LumigramJni#getLumigramTagInfo}; -5 for a picture without
   *     a document; -30, -31, -41 and -99 as reading it ended
   */
  public static native int lookUpTag(String path, String tagName, String[] results);

  /**
   * Reads one blob, as {@link LumigramJni#getLumigramApplicationExtensionInfo} does, from a file of
   * at most 2,097,152 bytes, and does not wait.
   *
   * @param path the picture's path
   * @param labelName the label, or its beginning
   * @param fileName the blob's name, or its beginning
   * @param status receives in its first element 0; -2 when there is no such blob; or the status of
   *     a failure
   * @return the blob's bytes; null unless the status is 0
   */
  public static native byte[] readBlob(
      String path, String labelName, String fileName, int[] status);

  /**
   * Lists the blobs of a picture.
   *
   * @param path the picture's path
   * @param status receives in its first element 0, or the status of a failure
   * @return three texts for each blob, in stored order: label, name, number of bytes; null unless
   *     the status is 0
   */
  public static native String[] listBlobs(String path, int[] status);

  /**
   * Finds out, after a failure, what is wrong with a file.
   *
   * @param path the picture's path
   * @param isWriting whether the picture was to be written
   * @param error an error number of the system, or 0: its words serve when nothing else is found
   * @param words receives words for people in its first element; empty when there are none
   * @return 0: nothing was found; 1: missing; 2: forbidden; 3: a folder; 4: not a regular file; 5:
   *     empty; 6: over 2 MiB; 7: a picture of another kind than its name says; 8: a known format
   *     that is not supported; 9: text; 10: may only be read
   */
  public static native int findObstacle(String path, boolean isWriting, int error, String[] words);
}
