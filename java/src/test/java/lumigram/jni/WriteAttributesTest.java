package lumigram.jni;

import static lumigram.jni.LookupTest.assertBlob;
import static lumigram.jni.Pictures.*;
import static lumigram.jni.ReadAttributesTest.*;
import static org.junit.jupiter.api.Assertions.*;

import java.nio.file.*;
import java.util.Arrays;
import java.util.function.Consumer;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

class WriteAttributesTest {
  private final byte[] blob = "blob".repeat(200).getBytes();
  @TempDir Path folder;

  /** Two labels with gaps between, and three tags, of which the last brings a blob. */
  private LumigramAttrUpdate update() throws Exception {
    LumigramAttrUpdate update = new LumigramAttrUpdate();
    update.mName[1] = "smile 😀";
    update.mNote[1] = "笑い";
    update.mPart[1] = 21;
    update.mName[9] = "wink";
    update.mPart[9] = -1;
    update.mCategory = "face";
    update.mType = "anime";
    for (int i = 0; i < 3; i++) update.mTags[i] = update.mTagsElement[i] = "t" + i;
    update.mApplicationExtensionLabelName[2] = "EMJ00000001";
    update.mApplicationExtensionBinaryDataUri[2] = save(folder, "pic.bin", blob);
    return update;
  }

  @Test
  void whatIsWrittenIsReadBackAndNothingElseChanges() throws Exception {
    for (String kind : KINDS) {
      String path = save(folder, "😀." + kind, picture(kind, "<emoji>old</emoji>"));
      assertEquals(0, LumigramJni.setLumigramAttrInfo(path, update()));
      assertEquals(
          "7x5 pop 0 | t0,t1,t2 | t0,t1,t2,97* | t0,t1,file://THIS/pic.bin,97* | face anime"
              + " | smile 😀,wink,8*old | 笑い,,8*old | 21,0,8*-7",
          text(read(path)), kind);
      assertBlob(kind.equals("jpg") ? null : blob, path, "EMJ00000001", "pic.bin");
      assertEquals(0, LumigramJni.setLumigramAttrInfo(path, new LumigramAttrUpdate()));
      assertArrayEquals(picture(kind, "<emoji></emoji>"), Files.readAllBytes(Path.of(path)), kind);
    }
    assertEquals(4, folder.toFile().list().length, "a temporary file stayed behind");
  }

  @Test
  void whatIsRefusedLeavesThePictureAsItWas() throws Exception {
    assertStatus(0, update -> {
      Arrays.fill(update.mName, "all");
      Arrays.fill(update.mTags, "all");
      Arrays.fill(update.mTagsElement, "all");
      update.mCategory = null;
      update.mPart = new byte[0];
    });
    assertStatus(-99, update -> update.mName[7] = null);
    assertStatus(-99, update -> update.mNote = Arrays.copyOf(update.mNote, 9));
    assertStatus(-99, update -> update.mTags = update.mApplicationExtensionLabelName = null);
    assertStatus(-99, update -> update.mApplicationExtensionLabelName = new String[2]);
    assertStatus(-50, update -> update.mTagsElement[1] = "file://THIS/pic.bin");
    assertStatus(-41, update -> update.mApplicationExtensionBinaryDataUri[2] = "/no/pic.bin");
    assertEquals(-99, LumigramJni.setLumigramAttrInfo("missing.gif", marked(1)[0]));
  }

  private void assertStatus(int status, Consumer<LumigramAttrUpdate> change) throws Exception {
    byte[] original = picture("png", null);
    String path = save(folder, "picture.png", original);
    LumigramAttrUpdate update = update();
    change.accept(update);
    assertEquals(status, LumigramJni.setLumigramAttrInfo(path, update));
    assertEquals(status != 0, Arrays.equals(original, Files.readAllBytes(Path.of(path))));
  }
}
