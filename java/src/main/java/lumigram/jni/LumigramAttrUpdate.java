package lumigram.jni;

import java.util.Arrays;

/**
 * The metadata that {@link LumigramJni#setLumigramAttrInfo} writes into one picture. It replaces
 * all metadata of the picture, which keeps nothing that is empty here. A new object is valid and
 * describes a picture without labels, category, type, tags and blobs.
 *
 * <p>Limits are in bytes of UTF-8; longer texts are cut. All texts together, with the markup around
 * them, must stay below 10,240 bytes. No text is escaped: a text must not hold the end tag of its
 * own element ({@code </name>}, {@code </tags>}, ...), nor a tag name the characters {@code ">}, or
 * it is not read back as it was written.
 *
 * <p>Unlike in {@link LumigramAttrInfo}, {@link #mTags} is an array, one tag name for each element
 * that is to be written.
 */
public class LumigramAttrUpdate {
  /**
   * The names of up to ten labels, at most 256 bytes and 24 characters each. All ten elements must
   * be there and not null; a label with an empty name is left out, with its note and its part of
   * speech.
   */
  public String[] mName = emptyTexts(10);

  /**
   * The note of the label at the same index, at most 256 bytes and 24 characters; empty for none.
   * All ten elements must be there and not null.
   */
  public String[] mNote = emptyTexts(10);

  /** The part of speech of the label at the same index: 1 to 21; every other value is none. */
  public byte[] mPart = new byte[10];

  /** The category, at most 256 bytes; empty or null for none. */
  public String mCategory = "";

  /** The type, at most 256 bytes; empty or null for none. */
  public String mType = "";

  /**
   * The tag name of up to 100 tag elements, at most 256 bytes each. A name over 24 characters is
   * written, but reading a batch then leaves out all tags of the picture. Several elements may have
   * the same name, which makes them a group. The list ends at the first null, and with it the three
   * arrays below; null for the whole array is an empty list.
   */
  public String[] mTags = new String[100];

  /**
   * The content of the tag element at the same index, at most 1,024 bytes; not null where there is
   * a name. {@code file://THIS/} and a name keeps the blob of that name that the picture carries.
   * Where {@link #mApplicationExtensionLabelName} has a label, the content follows from the blob's
   * name, and the element here is not used.
   */
  public String[] mTagsElement = new String[100];

  /**
   * The label of the blob that goes with the tag element at the same index, or null for none. Its
   * first 11 bytes are stored; it should begin with {@code EMJ}, which distinguishes blobs from
   * other programs' data. Only GIF and PNG pictures carry blobs.
   */
  public String[] mApplicationExtensionLabelName = new String[100];

  /**
   * The source of the blob at the same index, at most 1,024 bytes; null exactly where there is no
   * label. Either the path of a file whose bytes are embedded, or {@code file://THIS/} and the name
   * of a blob that the picture carries and keeps. The text must hold a {@code /}; the text after
   * the last one is the blob's name, and no two names may be equal.
   */
  public String[] mApplicationExtensionBinaryDataUri = new String[100];

  /** Makes an object that describes a picture without metadata. */
  public LumigramAttrUpdate() {}

  private static String[] emptyTexts(int count) {
    String[] texts = new String[count];
    Arrays.fill(texts, "");
    return texts;
  }
}
