package lumigram.demo;

import java.io.PrintStream;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import lumigram.PartOfSpeech;
import lumigram.jni.LumigramAttrInfo;
import lumigram.jni.LumigramJni;
import lumigram.jni.LumigramStatus;

/** Pictures that one call has read, with the metadata and the status of each. */
final class Batch {
  static final String LABELS_TITLE = "labels (note) [part of speech]";

  final List<Path> pictures;
  final LumigramAttrInfo[] infos;
  final byte[] results;

  private Batch(List<Path> pictures) {
    this.pictures = pictures;
    infos = new LumigramAttrInfo[pictures.size()];
    results = new byte[pictures.size()];
    for (int i = 0; i < infos.length; i++) {
      infos[i] = new LumigramAttrInfo();
    }
  }

  static Batch read(List<Path> pictures) {
    Batch batch = new Batch(pictures);
    String[] paths = pictures.stream().map(Path::toString).toArray(size -> new String[size]);
    int status = LumigramJni.getLumigramAttrInfo(paths, batch.infos, batch.results);
    if (status != 0) {
      throw new IllegalStateException("reading a batch: " + LumigramStatus.describe(status));
    }
    return batch;
  }

  void print(PrintStream out) {
    TextTable table = new TextTable(
        "file", "bytes", "pixels", "pop", LABELS_TITLE, "category", "type", "tag groups", "result");
    for (int i = 0; i < infos.length; i++) {
      LumigramAttrInfo info = infos[i];
      table.add(pictures.get(i).getFileName(), info.mFileSize, info.mWidth + " x " + info.mHeight,
          info.mOrnamailPop, labels(info.mName, info.mNote, info.mPart), orEmpty(info.mCategory),
          orEmpty(info.mType), tagGroups(info.mTagsName),
          results[i] + " " + LumigramStatus.describe(results[i]));
    }
    table.print(out);
  }

  static List<String> labels(String[] names, String[] notes, byte[] parts) {
    List<String> lines = new ArrayList<>();
    for (int k = 0; k < names.length && !orEmpty(names[k]).isEmpty(); k++) {
      String note = notes[k].isEmpty() ? "" : " (" + notes[k] + ")";
      String part = parts[k] == 0 ? "" : " [" + PartOfSpeech.values()[parts[k]].englishName() + "]";
      lines.add(names[k] + note + part);
    }
    return lines;
  }

  static List<String> tags(String[] names, String[] contents) {
    List<String> lines = new ArrayList<>();
    for (int k = 0; k < names.length && !orEmpty(names[k]).isEmpty(); k++) {
      lines.add(names[k] + " = " + contents[k]);
    }
    return lines;
  }

  /** The groups' names, each with the number of its elements when there are several. */
  private static List<String> tagGroups(String[] names) {
    Map<String, Integer> sizes = new LinkedHashMap<>();
    for (int k = 0; k < names.length && !orEmpty(names[k]).isEmpty(); k++) {
      sizes.merge(names[k], 1, Integer::sum);
    }
    List<String> groups = new ArrayList<>();
    sizes.forEach((name, size) -> groups.add(size == 1 ? name : name + " (" + size + ")"));
    return TextTable.filled(groups, 30);
  }

  static String orEmpty(String text) {
    return text == null ? "" : text;
  }
}
