package lumigram;

import java.io.File;
import java.io.IOException;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import lumigram.jni.LumigramAttrInfo;
import lumigram.jni.LumigramAttrUpdate;

/** Converts metadata from and to the objects that the native side fills and reads. */
final class Attributes {
  private Attributes() {}

  /**
   * Makes metadata of what the native side has stored.
   *
   * @param attr an object that reading a picture has filled
   * @return the metadata
   */
  static PictureInfo toInfo(LumigramAttrInfo attr) {
    List<Label> labels = new ArrayList<>();
    for (int i = 0; i < attr.mName.length && attr.mName[i] != null; i++) {
      PartOfSpeech part = PartOfSpeech.ofNumber(attr.mPart[i]);
      labels.add(new Label(attr.mName[i], attr.mNote[i], part));
    }
    return PictureInfo.empty()
        .withLabels(labels)
        .withCategory(attr.mCategory == null ? "" : attr.mCategory)
        .withType(attr.mType == null ? "" : attr.mType)
        .withTags(tagsOf(attr));
  }

  /** The native side stores names and contents together, and fills up with empty texts. */
  private static List<Tag> tagsOf(LumigramAttrInfo attr) {
    if (attr.mTagsName[0] == null) return Collections.emptyList();
    int end = attr.mTagsName.length;
    while (end > 0 && attr.mTagsName[end - 1].isEmpty() && attr.mTagsElement[end - 1].isEmpty()) {
      end--;
    }
    List<Tag> tags = new ArrayList<>(end);
    for (int i = 0; i < end; i++) {
      tags.add(new Tag(attr.mTagsName[i], attr.mTagsElement[i]));
    }
    return tags;
  }

  /**
   * Makes the object from which the native side writes.
   *
   * @param info metadata within the limits
   * @return a new object
   */
  static LumigramAttrUpdate toUpdate(PictureInfo info) {
    LumigramAttrUpdate update = new LumigramAttrUpdate();
    for (int i = 0; i < info.labels().size(); i++) {
      Label label = info.labels().get(i);
      update.mName[i] = label.name();
      update.mNote[i] = label.note();
      update.mPart[i] = label.part().number();
    }
    update.mCategory = info.category();
    update.mType = info.type();
    for (int i = 0; i < info.tags().size(); i++) {
      Tag tag = info.tags().get(i);
      update.mTags[i] = tag.name();
      update.mTagsElement[i] = tag.content();
      if (!tag.addsBlob()) continue;
      update.mApplicationExtensionLabelName[i] = tag.blobLabel();
      update.mApplicationExtensionBinaryDataUri[i] = "/" + tag.blobName();
    }
    return update;
  }

  /**
   * {@return the bytes of the new blobs, each at the index of its tag; null when there are none}
   *
   * @param file the picture's file, for messages
   * @param info metadata within the limits
   * @throws PictureException when the file of a blob cannot be read
   */
  static byte[][] newBlobs(File file, PictureInfo info) throws PictureException {
    byte[][] blobs = null;
    for (int i = 0; i < info.tags().size(); i++) {
      Tag tag = info.tags().get(i);
      if (!tag.addsBlob()) continue;
      if (blobs == null) blobs = new byte[info.tags().size()][];
      try {
        blobs[i] = tag.blobBytes();
      } catch (IOException failure) {
        throw new PictureException(file, Status.UNUSABLE_BLOB,
            "tag " + (i + 1) + ": the blob \"" + tag.blobName()
                + "\" cannot be read: " + failure.getMessage());
      }
    }
    return blobs;
  }
}
