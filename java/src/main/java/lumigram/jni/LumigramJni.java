package lumigram.jni;

/**
 * The native methods: reading and writing the metadata of small emoji pictures, which are GIF, PNG
 * and JPEG files.
 *
 * <p>The file name's extension alone decides the kind of a picture: {@code .gif}, {@code .png},
 * {@code .jpg} or {@code .jpeg}, in any case. Pictures of at most 2,097,152 bytes and 960 by 960
 * pixels are read and written; a metadata document has at most 10,240 bytes. No method throws: each
 * reports a failure by its status ({@link LumigramStatus} has words for them) or by null. All block
 * until they are done. They keep no state and may be called from any thread, but the caller must
 * not let two calls use the same file, array or object at the same time.
 *
 * <p>The class loads the native library when it is first used: the file that the system property
 * {@value #LIBRARY_PATH_PROPERTY} names; when it is not set, the library in the jar, if there is
 * one for this machine; otherwise by {@code System.loadLibrary("LumigramJniNative")}. When that
 * fails, the first use throws an {@link UnsatisfiedLinkError} whose message has what was tried, the
 * reason and the ways out.
 */
public final class LumigramJni {
  /** The name of the system property that may hold the path of the native library's file. */
  public static final String LIBRARY_PATH_PROPERTY = LibraryLoader.PATH_PROPERTY;

  static {
    LibraryLoader.load();
  }

  private LumigramJni() {}

  /**
   * Reads the metadata of a batch of pictures. File i is read into {@code attrs[i]} and its status
   * goes into {@code results[i]}; as many files are processed as the shortest of the three arrays
   * has elements, and the rest of the longer ones is not touched. A file that cannot be read never
   * stops the batch. No picture is changed. For each file that is empty, or whose size cannot be
   * had, the call waits up to five seconds: an empty file, a folder, most devices, a file over
   * 2,147,483,647 bytes. A pipe is waited for until it has a writer.
   *
   * <p>The attribute objects are {@link LumigramAttrInfo}s, or objects of any class with fields of
   * the same names and types. For each file, these fields are stored in this order:
   *
   * <ol>
   *   <li>{@code mFileSize}, when the file can be opened and has 1 to 2,097,152 bytes;
   *   <li>{@code mHeight}, {@code mWidth} and {@code mOrnamailPop}; for a picture that then turns
   *       out to be damaged or too large, the values that were read until then, or 0;
   *   <li>{@code mTags}, {@code mTagsName} and {@code mTagsElement}, when the document has tag
   *       elements, and none with a name over 256 bytes or 24 characters or a content over 1,024
   *       bytes;
   *   <li>{@code mCategory} and {@code mType}, each when the document has it, at most 256 bytes;
   *   <li>{@code mName}, {@code mNote} and {@code mPart}, when all labels of the document are well
   *       formed and within 256 bytes and 24 characters.
   * </ol>
   *
   * <p>A field that is not stored keeps its value. Each byte of a document that is no valid UTF-8
   * becomes U+FFFD.
   *
   * <p>The statuses in {@code results}:
   *
   * <table>
   *   <caption>Statuses of a file</caption>
   *   <tr><td>0</td><td>read; also when the picture has no document, or one whose labels cannot be
   *       used</td></tr>
   *   <tr><td>-20</td><td>the file cannot be opened</td></tr>
   *   <tr><td>-21</td><td>the extension is none of those above, or a JPEG has no frame
   *       header</td></tr>
   *   <tr><td>-30</td><td>the picture is damaged or cut short</td></tr>
   *   <tr><td>-31</td><td>the picture is wider or higher than 960 pixels</td></tr>
   *   <tr><td>-41</td><td>the document is over 10,240 bytes</td></tr>
   *   <tr><td>-99</td><td>the path or the object is null; the file is still empty after five
   *       seconds, or over 2,097,152 bytes, or its size cannot be had; the picture holds a size
   *       that does not fit its file; the object lacks a field that is stored, or an array in it is
   *       null or too short; no memory. Fields that were stored before keep their new
   *       values</td></tr>
   * </table>
   *
   * @param paths the pictures' paths; a null element is -99 for that file
   * @param attrs the objects that receive the metadata; a null element is -99 for that file
   * @param results receives the statuses
   * @return 0 when the batch was processed, whatever the results of the files; -10 when an argument
   *     is null, and -99 when there is no memory: then nothing is read or stored
   */
  public static native int getLumigramAttrInfo(String[] paths, Object[] attrs, byte[] results);

  /**
   * Replaces the metadata of one picture. The old document is removed, and so is each old blob,
   * unless the new metadata names it by a {@code file://THIS/} URI. Everything else in the picture
   * is kept. A complete new file replaces the old one, so the old picture is still there after a
   * failure or a crash. (Exception: a file with several hard links, or in a folder that allows no
   * new file, is written in place, and a crash in that moment can damage it.)
   *
   * <p>The object is a {@link LumigramAttrUpdate}, or one of any class with fields of the same
   * names and types; it is only read. Elements that an array lacks up to its limit count as null.
   *
   * @param path the picture's path
   * @param attr the metadata
   * @return
   *     <ul>
   *       <li>0: the picture has the new metadata;
   *       <li>-10: an argument is null;
   *       <li>-20: the picture cannot be opened; -21: its extension is none of those above;
   *       <li>-41: the picture could not be written: a name or note over 24 characters, a document
   *           that would reach 10,240 bytes (PNG: over 10,234), a new picture over 2,097,152 bytes,
   *           a blob file that is missing or empty, a damaged picture, no memory, or a file that
   *           cannot be written;
   *       <li>-50: a labelled blob has the file name of an earlier blob;
   *       <li>-99: the object lacks a field; an array other than {@code mTags} is null; a null
   *           among the ten names or notes; a tag without content; a blob label without a URI or a
   *           URI without a label; the URI of a labelled blob without {@code /}; no memory.
   *     </ul>
   */
  public static native int setLumigramAttrInfo(String path, Object attr);

  /**
   * Looks up one tag group of one picture: the contents of its first ten elements of exactly that
   * name, in document order. The list ends before an element that is empty or over 1,024 bytes. The
   * picture is only read. When the file is empty, the call waits for it, one second; a pipe is waited for
   * until it has a writer.
   *
   * @param path the picture's path
   * @param tagName the group's name, at most 255 bytes of UTF-8
   * @param results receives the contents, at least ten elements: on success the first ten are all
   *     set, the unused ones to empty strings; after a failure of the lookup they are untouched
   * @return
   *     <ul>
   *       <li>0: the document was read, also when it has no such group;
   *       <li>-10: an argument is null, or the name is over 256 bytes;
   *       <li>-20: the picture cannot be opened; -21: its extension is none of those above;
   *       <li>-99: {@code results} is too short, the name has 256 bytes, the picture has no
   *           document, is damaged, empty, wider or higher than 960 pixels or over 2,097,152 bytes,
   *           or there is no memory.
   *     </ul>
   */
  public static native int getLumigramTagInfo(String path, String tagName, String[] results);

  /**
   * Reads one blob of a GIF or PNG picture: the first whose label begins with {@code labelName} and
   * whose name begins with {@code fileName}. Unlike for the other methods, the file may have any
   * size that fits in memory; the limit in pixels holds.
   *
   * @param path the picture's path
   * @param labelName the label, or its beginning; empty for any. Stored labels have 11 bytes
   * @param fileName the blob's name, or its beginning; empty for any
   * @return the blob's bytes, a new array; null when there is none, when it is empty, when an
   *     argument is null, and after every failure (a JPEG, a file that cannot be opened, a damaged
   *     picture, no memory, ...)
   */
  public static native byte[] getLumigramApplicationExtensionInfo(
      String path, String labelName, String fileName);
}
