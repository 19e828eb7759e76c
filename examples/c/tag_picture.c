/* Shows the labels of a picture and adds one: tag_picture PICTURE [NAME [NOTE]]
 * Labels, category, type, tags and the blobs that tags name stay. What the readers do not tell (an
 * eleventh label, an eleventh element of a tag group, ...) goes. */
#include <lumigram.h>
#include <string.h>

typedef struct Picture {
  FILE* stream;
  FileType type;
  char document[kLumigramDocumentBufferBytes];
  AttrInfo attr;
  TagCollection tags;
} Picture;

/* A blob stays when an entry of appExt names it, as the tag does that it belongs to. */
static void KeepTag(const TagCollection* tags, int32_t i, AttrInfo* attr) {
  const char* content = tags->tagElement[i];
  strcpy(attr->tag[i].tagName, tags->tagName[i]);
  strcpy(attr->tag[i].tagElement, content);
  if (strncmp(content, "file://THIS/", 12) == 0) {
    strcpy(attr->appExt[i].binaryDataUri, content);
    strncpy(attr->appExt[i].fileName, strrchr(content, '/') + 1, 256);
  }
}

/* Each step but the last cuts what it has read out of the document. */
static int32_t ReadPicture(Picture* picture) {
  int32_t height = 0, width = 0, pop = 0, i, status;
  char* document = picture->document;
  AttrInfo* attr = &picture->attr;
  status = GetXmlString(picture->stream, picture->type, document, &height, &width, &pop);
  if (status == kLumigramNoDocument) return kLumigramOk;
  if (status != kLumigramOk) return status;
  CollectTagGroups(document, &picture->tags);
  for (i = 0; i < picture->tags.elementCount; ++i) KeepTag(&picture->tags, i, attr);
  GetElementContent(document, "<category>", "</category>", attr->category);
  GetElementContent(document, "<type>", "</type>", attr->type);
  status = GetLabelInfo(document, attr);
  return attr->labelCount == 0 ? kLumigramOk : status;
}

static int32_t AddLabel(Picture* picture, const char* path, const char* name, const char* note) {
  AttrInfo* attr = &picture->attr;
  int32_t i = attr->nameCount;
  if (i == kLumigramMaxLabels) return kLumigramLabels;
  if (strlen(name) > kLumigramMaxTextBytes || strlen(note) > kLumigramMaxTextBytes)
    return kLumigramTooLong;
  strcpy(attr->name[i], name);
  strcpy(attr->note[i], note);
  return SetXmlStringToFile(picture->stream, path, attr, picture->type);
}

int main(int argc, char** argv) {
  static Picture picture; /* 800 KB, all zero: too much for some stacks */
  int32_t i, status;
  if (argc < 2 || argc > 4) {
    fprintf(stderr, "usage: tag_picture PICTURE [NAME [NOTE]]\n");
    return 2;
  }
  status = OpenFile(argv[1], 0, &picture.stream, &picture.type);
  if (status == kLumigramOk) {
    status = ReadPicture(&picture);
    for (i = 0; status == kLumigramOk && i < picture.attr.nameCount; ++i)
      printf("%s (%s)\n", picture.attr.name[i], picture.attr.note[i]);
    if (status == kLumigramOk && argc > 2)
      status = AddLabel(&picture, argv[1], argv[2], argc > 3 ? argv[3] : "");
    fclose(picture.stream);
  }
  if (status == kLumigramOk) return 0;
  fprintf(stderr, "%s: %s (%d)\n", argv[1], LumigramStatusText(status), (int)status);
  return 1;
}
