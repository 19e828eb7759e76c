package lumigram;

import java.io.File;
import java.util.ArrayList;
import java.util.Collections;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import lumigram.jni.LumigramAttrInfo;
import lumigram.jni.LumigramAttrUpdate;
import lumigram.jni.LumigramJni;

/** Converts metadata from and to the objects that the native side fills and reads. */
final class Attributes {
  private static final int GROUP_SIZE = 10;

  private Attributes() {}

  /**
   * Makes metadata of what the native side has stored. When it has stored tag names without
   * contents, the contents are looked up in the file.
   *
   * @param file the picture's file
   * @param attr an object that reading the file has filled
   * @return the metadata, with the file as its origin
   */
  static PictureInfo toInfo(File file, LumigramAttrInfo attr) {
    List<Label> labels = new ArrayList<>();
    for (int i = 0; i < attr.mName.length && attr.mName[i] != null; i++) {
      PartOfSpeech part = PartOfSpeech.ofNumber(attr.mPart[i]);
      labels.add(new Label(attr.mName[i], attr.mNote[i], part));
    }
    return PictureInfo.empty()
        .withLabels(labels)
        .withCategory(attr.mCategory == null ? "" : attr.mCategory)
        .withType(attr.mType == null ? "" : attr.mType)
        .withTags(tagsOf(file, attr))
        .readFrom(file);
  }

  /**
   * The native side stores the names unless the first name is empty, and the contents unless the
   * first content is empty. Contents without names are of no use; for names without contents, each
   * group can still be looked up.
   */
  private static List<Tag> tagsOf(File file, LumigramAttrInfo attr) {
    if (attr.mTagsName[0] == null) return Collections.emptyList();
    if (attr.mTagsElement[0] == null) return tagsByLookup(file, attr.mTagsName);
    List<Tag> tags = new ArrayList<>();
    for (int i = 0; i < attr.mTagsName.length; i++) {
      tags.add(new Tag(attr.mTagsName[i], attr.mTagsElement[i]));
    }
    int end = tags.size();
    while (tags.get(end - 1).equals(new Tag("", ""))) {
      end--;
    }
    return tags.subList(0, end);
  }

  /**
   * The tags whose contents can be found by looking up each group. A lookup ends at an empty
   * content, so the first content that it lacks is empty, and those after it are not known.
   */
  private static List<Tag> tagsByLookup(File file, String[] names) {
    Map<String, List<String>> found = new HashMap<>();
    Map<String, Integer> taken = new HashMap<>();
    List<Tag> tags = new ArrayList<>();
    for (String name : names) {
      if (name.isEmpty()) continue;
      if (!found.containsKey(name)) {
        found.put(name, lookUp(file, name));
        taken.put(name, 0);
      }
      List<String> contents = found.get(name);
      int index = taken.get(name);
      taken.put(name, index + 1);
      if (index < contents.size()) tags.add(new Tag(name, contents.get(index)));
    }
    return tags;
  }

  /** The contents of a group, including the empty one at which the lookup ended. */
  private static List<String> lookUp(File file, String name) {
    String[] results = new String[GROUP_SIZE];
    List<String> contents = new ArrayList<>();
    if (LumigramJni.getLumigramTagInfo(file.getPath(), name, results) != 0) return contents;
    for (String content : results) {
      // The picture may hold the name in other bytes; then nothing is found, whatever it contains.
      if (content.isEmpty() && ModifiedUtf8.mayBeSpelledOtherwise(name)) break;
      contents.add(content);
      if (content.isEmpty()) break;
    }
    return contents;
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
      if (tag.blobFile() == null) continue;
      update.mApplicationExtensionLabelName[i] = tag.blobLabel();
      update.mApplicationExtensionBinaryDataUri[i] = tag.blobFile().getAbsolutePath();
    }
    return update;
  }
}
