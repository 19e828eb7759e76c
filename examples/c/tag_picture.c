/* Shows the labels of a picture and adds one: tag_picture PICTURE [NAME [NOTE]]
 * Labels, category, type, tags and the blobs that tags name stay. A picture of which anything would
 * be lost is left alone. */
#include <lumigram.h>
#include <string.h>

static int32_t AddLabel(AttrInfo* attr, const char* name, const char* note) {
  int32_t i = attr->nameCount;
  if (i == kLumigramMaxLabels) return kLumigramLabels;
  if (strlen(name) > kLumigramMaxTextBytes || strlen(note) > kLumigramMaxTextBytes)
    return kLumigramTooLong;
  strcpy(attr->name[i], name);
  strcpy(attr->note[i], note);
  return kLumigramOk;
}

/* How much of the picture a batch read withholds or a rewrite may drop. */
static int32_t CountLost(const PictureSummary* summary) {
  return summary->furtherLabels + summary->refusedLabels + summary->refusedTags +
         summary->droppedTags + summary->refusedTexts + summary->strayTexts +
         summary->furtherDocuments + summary->unnamedBlobs + summary->bytesAfterEnd;
}

int main(int argc, char** argv) {
  static AttrInfo attr; /* 290 KB: too much for some stacks */
  PictureSummary summary;
  FILE* stream = NULL;
  FileType type = kFileTypeUnknown;
  int32_t i, status;
  if (argc < 2 || argc > 4) {
    fprintf(stderr, "usage: tag_picture PICTURE [NAME [NOTE]]\n");
    return 2;
  }
  status = OpenFile(argv[1], 0, &stream, &type);
  if (status == kLumigramOk) status = GetPictureRecord(stream, type, &attr, &summary);
  if (status == kLumigramOk) {
    for (i = 0; i < attr.nameCount; ++i) printf("%s (%s)\n", attr.name[i], attr.note[i]);
    if (argc > 2 && CountLost(&summary) > 0) {
      fprintf(stderr, "%s: not changed: something in it would be lost\n", argv[1]);
      status = kLumigramLabels;
    } else if (argc > 2) {
      status = AddLabel(&attr, argv[2], argc > 3 ? argv[3] : "");
      if (status == kLumigramOk) status = SetXmlStringToFile(stream, argv[1], &attr, type);
    }
  }
  if (stream != NULL) fclose(stream);
  if (status == kLumigramOk) return 0;
  fprintf(stderr, "%s: %s (%d)\n", argv[1], LumigramStatusText(status), (int)status);
  return 1;
}
