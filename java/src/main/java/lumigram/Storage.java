package lumigram;

import java.io.File;
import java.io.IOException;
import lumigram.jni.LumigramAttrUpdate;

/** The place of a picture's bytes. */
abstract class Storage {
  /** {@return the picture's file; null for a picture that is not in a file} */
  abstract File file();

  /** {@return the picture's kind; null when it is none that is supported} */
  abstract Kind kind();

  /**
   * Replaces the metadata of the picture.
   *
   * @param update the new metadata
   * @param newBlobs the bytes of new blobs, each at the index of its tag
   * @param expected the fingerprint that the picture must have; null for any
   * @param replacesUnread whether to remove what could not be read
   * @param details receives the numbers that {@link lumigram.jni.LumigramFiles#writePicture} stores
   * @return a result of that method
   */
  abstract int write(LumigramAttrUpdate update, byte[][] newBlobs, long[] expected,
      boolean replacesUnread, long[] details);

  /**
   * Looks up the tags of one name.
   *
   * @param name the name
   * @param results receives ten contents
   * @return a result of {@link lumigram.jni.LumigramFiles#lookUpTag}
   */
  abstract int lookUpTag(String name, String[] results);

  /**
   * Reads a blob.
   *
   * @param label its label, or the beginning of it
   * @param name its name, or the beginning of it
   * @param status receives the status in its first element
   * @return the bytes; null when there are none
   */
  abstract byte[] readBlob(String label, String name, int[] status);

  /**
   * Lists the blobs.
   *
   * @param status receives the status in its first element
   * @return three texts for each blob; null after a failure
   */
  abstract String[] listBlobs(int[] status);

  /**
   * {@return the bytes of the picture, which the caller does not change}
   *
   * @throws IOException when they cannot be read
   */
  abstract byte[] bytes() throws IOException;

  /**
   * {@return the reason of a failure}
   *
   * @param code the result of a native method
   * @param isWriting whether the picture was to be written
   * @param error an error number of the system, or 0
   */
  abstract PictureException failure(int code, boolean isWriting, int error);
}
