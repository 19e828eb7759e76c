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

/** The way between metadata and the objects that the native side fills and reads. */
final class Attributes {
  private static final int GROUP_SIZE = 10;

  private Attributes() {}

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
   * The tags. Names are stored when the first name is not empty, and contents when the first
   * content is not: without the names nothing can be made of the contents, but not the other way
   * round.
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
   * The tags whose contents can be had by looking up each group. A lookup ends before an empty
   * content; so the one that it lacks first is empty, and those behind that are not known.
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

  /** The contents of a group, with the empty one before which a lookup ends. */
  private static List<String> lookUp(File file, String name) {
    String[] results = new String[GROUP_SIZE];
    List<String> contents = new ArrayList<>();
    if (LumigramJni.getLumigramTagInfo(file.getPath(), name, results) != 0) return contents;
    for (String content : results) {
      // A name that is stored otherwise than Java spells it is not found; that is not "empty".
      if (content.isEmpty() && ModifiedUtf8.mayBeSpelledOtherwise(name)) break;
      contents.add(content);
      if (content.isEmpty()) break;
    }
    return contents;
  }

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
