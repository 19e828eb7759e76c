package lumigram.jni;

/**
 * The metadata of one picture, as {@link LumigramJni#getLumigramAttrInfo} reads it. The native side
 * finds the fields by name and type and stores into the arrays of the object, so they must not be
 * null or shorter than in a new object.
 *
 * <p>A field or element for which the picture has no value keeps its old one. Use a new object for
 * each picture, unless the old values are wanted as defaults.
 */
public class LumigramAttrInfo {
  /** The file's size in bytes, 1 to 2,097,152. */
  public long mFileSize;

  /**
   * The picture's height in pixels, at most 960; of a GIF the largest among screen and images. When
   * the status is not 0, this is the value that was read until then, or 0; for a GIF or PNG that is
   * refused for its size it is that size.
   */
  public long mHeight;

  /** The picture's width in pixels, like {@link #mHeight}. */
  public long mWidth;

  /**
   * 1 for a GIF that is marked as a pop picture and whose creator comments after the mark, if any,
   * are valid; else 0.
   */
  public long mOrnamailPop;

  /**
   * The distinct tag names, at most 10, in order of first appearance, joined by {@code ","}. Not
   * stored when there are none.
   */
  public String mTags;

  /**
   * The name of each tag element, in document order: at most 10 names of at most 24 characters, and
   * at most 10 elements of a name. When any is stored, the unused elements become empty strings.
   */
  public String[] mTagsName = new String[100];

  /**
   * The content of the tag element whose name is at the same index of {@link #mTagsName}, at most
   * 1,024 bytes: text, or {@code file://THIS/} and the name of a blob in the same picture, which
   * {@link LumigramJni#getLumigramApplicationExtensionInfo} reads. Stored when the first content is
   * not empty; the unused elements then become empty strings.
   */
  public String[] mTagsElement = new String[100];

  /** The category, at most 256 bytes. Not stored when the picture has none. */
  public String mCategory;

  /** The type, at most 256 bytes. Not stored when the picture has none. */
  public String mType;

  /** The names of the labels, at most 24 characters each. Later elements are not stored. */
  public String[] mName = new String[10];

  /**
   * The note of the label whose name is at the same index, at most 24 characters; empty when that
   * label has none. Elements after the last label are not stored.
   */
  public String[] mNote = new String[10];

  /**
   * The part of speech of the label whose name is at the same index: 1 to 21, or 0 for none or an
   * unknown one. Elements after the last label are not stored.
   */
  public byte[] mPart = new byte[10];

  /** Makes an object whose fields are 0, null, or arrays of them. */
  public LumigramAttrInfo() {}
}
