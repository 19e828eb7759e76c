package lumigram.demo;

import java.io.IOException;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import lumigram.jni.LumigramAttrInfo;
import lumigram.jni.LumigramAttrUpdate;
import lumigram.jni.LumigramJni;
import lumigram.jni.LumigramStatus;

/** Writes new metadata into a copy of a picture and reads it back. */
final class WriteAndReadBack {
  private static final String[] KINDS = {".gif", ".png", ".jpg"};

  private final Path folder;
  private final Path blob;
  private final PrintStream out;
  private final TextTable table =
      new TextTable("file", "", Batch.LABELS_TITLE, "category", "type", "tags", "result");

  private WriteAndReadBack(Path folder, PrintStream out) {
    this.folder = folder;
    this.blob = folder.resolve("hello.txt");
    this.out = out;
  }

  /** Does so with the first good picture of each kind, in a temporary folder. */
  static boolean show(Batch batch, PrintStream out) throws IOException {
    Path folder = Files.createTempDirectory("lumigram-demo");
    try {
      return new WriteAndReadBack(folder, out).showKinds(batch);
    } finally {
      for (Path file : Demo.filesIn(folder)) {
        Files.delete(file);
      }
      Files.delete(folder);
    }
  }

  private boolean showKinds(Batch batch) throws IOException {
    Files.write(blob, "Hello from a blob!\n".getBytes(StandardCharsets.UTF_8));
    boolean good = true;
    List<Path> copies = new ArrayList<>();
    for (String kind : KINDS) {
      Path picture = firstGood(batch, kind);
      if (picture != null) {
        Path copy = Files.copy(picture, folder.resolve(picture.getFileName()));
        good &= writeAndReadBack(copy);
        copies.add(copy);
      }
    }
    out.println("Written into a copy of one picture of each kind:");
    table.print(out);
    for (Path copy : copies) {
      good &= !carriesBlobs(copy) || Blobs.compare(copy, blob, out);
    }
    return good;
  }

  private boolean writeAndReadBack(Path picture) {
    LumigramAttrUpdate update = update(carriesBlobs(picture));
    int written = LumigramJni.setLumigramAttrInfo(picture.toString(), update);
    List<Object> in = Arrays.asList(Batch.labels(update.mName, update.mNote, update.mPart),
        update.mCategory, update.mType, Batch.tags(update.mTags, update.mTagsElement));
    addRow(picture.getFileName(), "written", in, written);

    Batch read = Batch.read(Collections.singletonList(picture));
    LumigramAttrInfo info = read.infos[0];
    List<Object> back = Arrays.asList(Batch.labels(info.mName, info.mNote, info.mPart),
        info.mCategory, info.mType, Batch.tags(info.mTagsName, info.mTagsElement));
    addRow("", "read back", back, read.results[0]);
    return written == 0 && read.results[0] == 0 && back.equals(in);
  }

  private void addRow(Object file, String step, List<Object> record, int status) {
    List<Object> cells = new ArrayList<>(Arrays.asList(file, step));
    cells.addAll(record);
    cells.add(LumigramStatus.describe(status));
    table.add(cells.toArray());
  }

  /** Two labels, category, type, two tags of one group, and, if wanted, a tag with a new blob. */
  private LumigramAttrUpdate update(boolean withBlob) {
    LumigramAttrUpdate update = new LumigramAttrUpdate();
    update.mName[0] = "挨拶";
    update.mNote[0] = "あいさつ";
    update.mPart[0] = 5;
    update.mName[1] = "hello 👋";
    update.mPart[1] = 20;
    update.mCategory = "greeting";
    update.mType = "demo";
    update.mTags[0] = "mood";
    update.mTagsElement[0] = "friendly";
    update.mTags[1] = "mood";
    update.mTagsElement[1] = "cheerful";
    if (withBlob) {
      update.mTags[2] = "text";
      update.mTagsElement[2] = Blobs.HERE + blob.getFileName();
      update.mApplicationExtensionLabelName[2] = "EMJ00000001";
      update.mApplicationExtensionBinaryDataUri[2] = blob.toString();
    }
    return update;
  }

  private static boolean carriesBlobs(Path picture) {
    return !picture.toString().endsWith(".jpg");
  }

  private static Path firstGood(Batch batch, String kind) {
    for (int i = 0; i < batch.results.length; i++) {
      if (batch.results[i] == 0 && batch.pictures.get(i).toString().endsWith(kind)) {
        return batch.pictures.get(i);
      }
    }
    return null;
  }
}
