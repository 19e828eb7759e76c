/* Adds a tag and a blob to a picture that never was a file: tag_bytes <PICTURE >NEW_PICTURE
 * The tag "source" refers to the blob, whose bytes are in memory, too. */
#include <lumigram.h>
#include <stdlib.h>
#include <string.h>

static const char kNote[] = "received as bytes";

static int32_t AddSource(AttrInfo* attr, const PictureSummary* summary, BlobBytes* blobs) {
  size_t i = 0;
  while (i < kLumigramMaxTags && attr->tag[i].tagName[0] != '\0') ++i;
  if (i == kLumigramMaxTags || summary->droppedTags > 0) return kLumigramOverLimit;
  strcpy(attr->tag[i].tagName, "source");
  strcpy(attr->tag[i].tagElement, "file://THIS/source.txt");
  strcpy(attr->appExt[i].labelName, "EMJSOURCE01");
  strcpy(attr->appExt[i].fileName, "source.txt");
  blobs[i].bytes = (const uint8_t*)kNote;
  blobs[i].size = strlen(kNote);
  return kLumigramOk;
}

int main(void) {
  static uint8_t in[kLumigramMaxPictureBytes + 1]; /* one more shows that it is too long */
  static AttrInfo attr;                            /* 290 KB: too much for some stacks */
  static BlobBytes blobs[kLumigramMaxTags];
  const NewBlobs newBlobs = {blobs, kLumigramMaxTags, 0}; /* no file is opened */
  PictureSummary summary;
  uint8_t* out = NULL;
  size_t outSize = 0;
  const size_t size = fread(in, 1, sizeof in, stdin);
  FileType type = kFileTypeUnknown;
  int32_t status = GetFileTypeFromBytes(in, size, &type);
  if (status == kLumigramOk) status = GetPictureRecordFromBytes(in, size, type, &attr, &summary);
  if (status == kLumigramOk) status = AddSource(&attr, &summary, blobs);
  if (status == kLumigramOk)
    status = SetXmlStringToBytes(in, size, type, &attr, &newBlobs, &out, &outSize);
  if (status == kLumigramOk && fwrite(out, 1, outSize, stdout) != outSize) status = kLumigramFailed;
  free(out);
  if (status == kLumigramOk) return 0;
  fprintf(stderr, "%s (%d)\n", LumigramStatusText(status), (int)status);
  return 1;
}
