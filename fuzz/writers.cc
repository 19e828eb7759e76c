// Builds pictures into an allocated block and into a buffer of a given size. Input: a byte for the
// container, a record, the source picture.
#include <sys/mman.h>
#include <unistd.h>

#include "core/base/text.h"
#include "core/document/document_builder.h"
#include "core/write/build_picture.h"
#include "fuzz/input.h"

using namespace lumigram;
using namespace lumigram::fuzz;

namespace {

// Returns the path of a file to embed. The file stays open.
std::string BlobPath(size_t size) {
  const int fd = memfd_create("blob", 0);
  const Bytes bytes(size, 0x21);
  Require(fd >= 0 && write(fd, bytes.data(), size) == static_cast<ssize_t>(size), "a blob file");
  return "/proc/self/fd/" + std::to_string(fd);
}

std::string Uri(uint8_t kind, const std::string& name) {
  static const std::string small = BlobPath(1), large = BlobPath(700), empty = BlobPath(0);
  switch (kind % 8) {
    case 0:
      return small;
    case 1:
      return large;
    case 2:
      return kind < 16 ? empty : "/nowhere/at.all";
    case 3:
    case 4:
      return "file://THIS/" + name;
    default:
      return "";
  }
}

struct Record {
  AttrInfo attr = {};
  bool keepsBlobs = false;
  bool foreignLabels = false;  // a new blob has a label that does not begin "EMJ"
};

std::unique_ptr<Record> TakeRecord(Input& input) {
  auto record = std::make_unique<Record>();
  AttrInfo& attr = record->attr;
  const uint8_t entries = input.Byte() % 4;
  for (int i = 0; i < entries; ++i) {
    CopyText(attr.name[i], input.Text(300));
    CopyText(attr.tag[i].tagName, input.Text(300));
    CopyText(attr.tag[i].tagElement, input.Text(1100));
    AppExtEntry& blob = attr.appExt[i];
    const std::string label = (input.Byte() % 8 == 0 ? "" : "EMJ") + input.Text(20);
    CopyText(blob.labelName, label);
    CopyText(blob.fileName, input.Text(300));
    const std::string uri = Uri(input.Byte(), blob.fileName);
    CopyText(blob.binaryDataUri, uri);
    const bool kept = uri.starts_with("file://");
    record->keepsBlobs |= kept;
    record->foreignLabels |= !uri.empty() && !kept && !label.starts_with("EMJ");
  }
  return record;
}

int32_t Build(const Bytes& picture, FileType type, const XmlStringInfo& document,
              const AttrInfo& attr, Bytes* out) {
  NewPicture built;
  const ScopedFile stream = test::Stream(picture);
  ByteSource source(stream.get());
  const int32_t status = BuildPicture(source, *KindOf(type), document, attr, &built);
  if (status == 0) out->assign(built.bytes.get(), built.bytes.get() + built.length);
  return status;
}

int32_t Write(const Bytes& picture, FileType type, const XmlStringInfo& document,
              const AttrInfo& attr, uint32_t room, Bytes* out) {
  const auto block = Block(room);
  OutputBuffer built(reinterpret_cast<uint8_t*>(block.get()), room);
  const ScopedFile stream = test::Stream(picture);
  ByteSource source(stream.get());
  const int32_t status = BuildPicture(source, *KindOf(type), document, attr, built);
  Require(built.Size() <= room, "the picture fits");
  const auto bytes = built.Last(built.Size());
  out->assign(bytes.begin(), bytes.end());
  return status;
}

// Whether reader and writer walk a GIF picture differently: it has an extension with an unknown
// label, or an identifier with another size than 11. They may find different documents in it.
bool IsOdd(const Bytes& gif) {
  const auto skipChain = [&](size_t at) {
    while (at < gif.size() && gif[at] != 0) at += gif[at] + 1u;
    return at + 1;
  };
  for (size_t at = 13 + GetSizeColorTable(gif[10]); at + 10 < gif.size() && gif[at] != 0x3B;) {
    if (gif[at] == 0x21) {
      const uint8_t label = gif[at + 1];
      if (label != 0x01 && label < 0xF9) return true;
      if (label > 0xF9 && label < 0xFE) return true;
      if (label == 0xFF && gif[at + 2] != 11) return true;
      at = skipChain(at + 2);
    } else if (gif[at] == 0x2C) {
      at = skipChain(at + 11 + GetSizeColorTable(gif[at + 9]));
    } else {
      ++at;
    }
  }
  return false;
}

void CheckReadBack(const Bytes& source, const Bytes& written, FileType type,
                   const XmlStringInfo& document) {
  const ReadResult before = ReadPicture(source, type), after = ReadPicture(written, type);
  if (after.status != 0) return;  // Many pictures can be written but not read.
  if (type == kFileTypeGif && IsOdd(source)) return;
  const std::string wanted = document.text;
  // Exceptions: a picture may have no place for a document, and a document in a later sub-block
  // of a GIF comment stays.
  const bool stays = type == kFileTypeGif && after.document == before.document;
  Require(after.document == wanted || after.document.empty() || stays, "the document reads back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const FileType type = 1 + input.Byte() % 3;
  const auto record = TakeRecord(input);
  const AttrInfo& attr = record->attr;
  const Bytes source = input.Rest();
  auto document = std::make_unique<XmlStringInfo>();
  const int32_t built = BuildDocument(attr, document.get());
  RequireStatus(built, {0, -41, -42});
  if (built != 0) return 0;

  Bytes picture;
  const int32_t status = Build(source, type, *document, attr, &picture);
  RequireStatus(status, {0, -1, -30, -41, -42, -99});
  Bytes direct;
  if (status != 0) {
    (void)Write(source, type, *document, attr, static_cast<uint32_t>(source.size() / 2), &direct);
    return 0;
  }
  const uint32_t length = static_cast<uint32_t>(picture.size());
  Require(Write(source, type, *document, attr, length, &direct) == 0 && direct == picture,
          "a buffer of the picture's size is enough");
  Require(Write(source, type, *document, attr, length - 1, &direct) == -99,
          "a smaller buffer is refused");
  CheckReadBack(source, picture, type, *document);
  if (record->keepsBlobs || record->foreignLabels) return 0;
  // Exception: if the first marker of a JPEG has another prefix than FF, the document takes it
  // over.
  if (type == kFileTypeJpeg && source[2] != 0xFF) return 0;

  Bytes again, bare, bareSource;
  Require(Build(picture, type, *document, attr, &again) == 0 && again == picture,
          "writing twice changes nothing");
  const XmlStringInfo none = {};
  const auto nothing = std::make_unique<AttrInfo>();
  Require(Build(source, type, none, *nothing, &bareSource) == 0 &&
              Build(picture, type, none, *nothing, &bare) == 0 && bare == bareSource,
          "only metadata change");
  return 0;
}
