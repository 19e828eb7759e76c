package lumigram.jni;

/**
 * The native methods beneath the typed API, for pictures that are bytes. They are those of {@link
 * LumigramFiles}, with the bytes and the kind of a picture (1 GIF, 2 JPEG, 3 PNG) in place of a
 * path, and with the same results; a wrong kind, or one of 0, is -21. Only arrays of 1 to 2,097,152
 * bytes are read. The bytes are not copied where the virtual machine lends them: meanwhile nothing
 * waits and no file is opened. Another thread should not change them: the result is then a failure,
 * or mixes old and new bytes.
 */
public final class LumigramBytes {
  static {
    LibraryLoader.load();
  }

  private LumigramBytes() {}

  /**
   * Determines the kind of a picture from its first bytes.
   *
   * @param bytes the picture
   * @return 1 for a GIF, 2 for a JPEG, 3 for a PNG, 0 for anything else
   */
  public static native int findKind(byte[] bytes);

  /**
   * Reads the metadata of a batch of pictures, as {@link LumigramFiles#readPictures} does.
   *
   * @param pictures the pictures
   * @param kinds their kinds
   * @param attrs the objects that receive the metadata
   * @param fingerprints receives two numbers for each picture
   * @param results receives the statuses
   * @return 0, -10 and -99 as for files
   */
  public static native int readPictures(
      byte[][] pictures, byte[] kinds, Object[] attrs, long[] fingerprints, byte[] results);

  /**
   * Builds a picture with new metadata, as {@link LumigramFiles#writePicture} does, without
   * changing the old one.
   *
   * @param bytes the picture
   * @param kind its kind
   * @param attr the metadata
   * @param newBlobs the bytes of new blobs
   * @param expected the fingerprint that the picture must have; null for any
   * @param replacesUnread whether the new picture may lack what a read withholds
   * @param details receives numbers, as for files
   * @param written receives the new picture in its first element
   * @return a result of {@link LumigramFiles#writePicture}, without {@link LumigramFiles#BUSY},
   *     {@link LumigramFiles#NOT_REPLACED} and -20
   */
  public static native int writePicture(byte[] bytes, int kind, Object attr, byte[][] newBlobs,
      long[] expected, boolean replacesUnread, long[] details, byte[][] written);

  /**
   * Looks up one tag group, as {@link LumigramFiles#lookUpTag} does.
   *
   * @param bytes the picture
   * @param kind its kind
   * @param tagName the group's name
   * @param results receives the contents, at least ten elements
   * @return a result of that method
   */
  public static native int lookUpTag(byte[] bytes, int kind, String tagName, String[] results);

  /**
   * Reads one blob, as {@link LumigramFiles#readBlob} does.
   *
   * @param bytes the picture
   * @param kind its kind
   * @param labelName the label, or its beginning
   * @param fileName the blob's name, or its beginning
   * @param status receives the status in its first element
   * @return the blob's bytes; null unless the status is 0
   */
  public static native byte[] readBlob(
      byte[] bytes, int kind, String labelName, String fileName, int[] status);

  /**
   * Lists the blobs of a picture, as {@link LumigramFiles#listBlobs} does.
   *
   * @param bytes the picture
   * @param kind its kind
   * @param status receives the status in its first element
   * @return three texts for each blob; null unless the status is 0
   */
  public static native String[] listBlobs(byte[] bytes, int kind, int[] status);

  /**
   * Finds out, after a failure, what is wrong with bytes.
   *
   * @param bytes the picture
   * @param kind the kind that it should be of
   * @param words receives words for people in its first element
   * @return 0, 7, 8 or 9 as {@link LumigramFiles#findObstacle}
   */
  public static native int findObstacle(byte[] bytes, int kind, String[] words);
}
