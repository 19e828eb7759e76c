// Reads and writes a picture in memory and in a file, and compares the results.
#ifndef LUMIGRAM_FUZZ_MEMORY_H_
#define LUMIGRAM_FUZZ_MEMORY_H_

#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "core/base/text.h"
#include "core/document/document_builder.h"
#include "core/write/build_picture.h"
#include "lumigram.h"
#include "tests/support/bytes.h"

namespace lumigram::fuzz {

using test::Bytes;

// A copy of a picture of at most 2 MiB, in memory that ends at an inaccessible page.
class GuardedBytes {
 public:
  explicit GuardedBytes(const Bytes& picture) : size_(picture.size()) {
    fd_ = memfd_create("picture", 0);
    if (ftruncate(fd_, kRoom) != 0) abort();
    memory_ = Map(kRoom + kPage);
    mprotect(memory_ + kRoom, kPage, PROT_NONE);
    std::copy(picture.begin(), picture.end(), memory_ + kRoom - size_);
  }
  ~GuardedBytes() {
    munmap(memory_, kRoom + kPage);
    close(fd_);
  }
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;

  const uint8_t* Get() const { return memory_ + kRoom - size_; }
  size_t Size() const { return size_; }
  // The same bytes at a second address, through which a thread changes them: ThreadSanitizer, which
  // goes by the address, does not report that. The mapping is never removed.
  uint8_t* SecondMapping() const { return Map(kRoom) + kRoom - size_; }

 private:
  static constexpr size_t kPage = 65536, kRoom = 33 * kPage;

  uint8_t* Map(size_t size) const {
    void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd_, 0);
    if (memory == MAP_FAILED) abort();
    return static_cast<uint8_t*>(memory);
  }

  int fd_;
  uint8_t* memory_;
  const size_t size_;
};

// The statuses and outputs of all functions that read or write a picture.
struct AllResults {
  int32_t read = 0, height = 0, width = 0, pop = 0;
  char document[kLumigramDocumentBufferBytes] = {};
  int32_t took = 0;
  AttrInfo record = {};
  PictureSummary summary = {};
  int32_t listed = 0, copied = 0, wrote = 0;
  std::string blobs;
  Bytes blob, written;
};

inline void AddBlob(void* list, const BlobInfo* blob) {
  *static_cast<std::string*>(list) +=
      std::string(blob->labelName) + "/" + blob->fileName + "/" + std::to_string(blob->size) + "\n";
}

// The record that is written keeps the blob "b" and adds one, from the file at the path or from
// memory.
inline const Bytes kNewBlob(700, 0x21);

inline std::unique_ptr<AttrInfo> RecordToAdd(const std::string& path) {
  auto record = std::make_unique<AttrInfo>();
  CopyText(record->category, "new");
  record->appExt[0] = {"EMJ", "b", "file://THIS/b"};
  record->appExt[1] = {"EMJ", "new", ""};
  CopyText(record->appExt[1].binaryDataUri, path);
  return record;
}

inline std::unique_ptr<AllResults> ResultsFromFile(const Bytes& picture, FileType type) {
  auto r = std::make_unique<AllResults>();
  const ScopedFile file = test::Stream(picture), blobFile = test::Stream(kNewBlob);
  FILE* const stream = file.get();
  r->read = GetXmlString(stream, type, r->document, &r->height, &r->width, &r->pop);
  r->took = GetPictureRecord(stream, type, &r->record, &r->summary);
  r->listed = ListBlobs(stream, type, AddBlob, &r->blobs);
  rewind(stream);
  r->blob.resize(picture.size() + 1);
  uint32_t length = 0;
  const auto copy = type == kFileTypeGif ? GetApplicationExtensionDataFromGif
                                         : GetApplicationExtensionDataFromPng;
  if (type != kFileTypeJpeg) r->copied = copy(stream, r->blob.data(), &length, "EMJ", "b");
  r->blob.resize(length);
  const auto record = RecordToAdd("/proc/self/fd/" + std::to_string(fileno(blobFile.get())));
  XmlStringInfo document;
  if (BuildDocument(*record, &document) != kOk) abort();
  NewPicture built;
  ByteSource source(stream);
  r->wrote = BuildPicture(source, static_cast<Kind>(type), document, *record, &built);
  r->written.assign(built.bytes.get(), built.bytes.get() + built.length);
  return r;
}

inline std::unique_ptr<AllResults> ResultsFromBytes(const uint8_t* bytes, size_t size,
                                                    FileType type) {
  auto r = std::make_unique<AllResults>();
  r->read = GetXmlStringFromBytes(bytes, size, type, r->document, &r->height, &r->width, &r->pop);
  r->took = GetPictureRecordFromBytes(bytes, size, type, &r->record, &r->summary);
  r->listed = ListBlobsFromBytes(bytes, size, type, AddBlob, &r->blobs);
  size_t length = 0;
  r->copied = GetBlobFromBytes(bytes, size, type, "EMJ", "b", nullptr, 0, &length);
  r->blob.resize(length);
  if (length > 0) {
    const int32_t copied =
        GetBlobFromBytes(bytes, size, type, "EMJ", "b", r->blob.data(), r->blob.size(), &length);
    if (r->copied == 0) r->copied = copied;
    r->blob.resize(length);
  }
  const auto record = RecordToAdd("");
  const BlobBytes added[] = {{}, {kNewBlob.data(), kNewBlob.size()}};
  const NewBlobs newBlobs = {added, 2, 0};
  uint8_t* out = nullptr;
  size_t outSize = 0;
  r->wrote = SetXmlStringToBytes(bytes, size, type, record.get(), &newBlobs, &out, &outSize);
  const ScopedBlock<uint8_t> owner(out);
  r->written.assign(out, out + outSize);
  return r;
}

// Names the results that differ between a picture in a file and in memory; empty if none do.
inline std::string DifferencesFromFile(const Bytes& picture, FileType type) {
  const GuardedBytes guarded(picture);
  const auto file = ResultsFromFile(picture, type);
  auto memory = ResultsFromBytes(guarded.Get(), guarded.Size(), type);
  // The copy from a stream does not report that there is no such blob.
  if (memory->copied == kLumigramNoTags) memory->copied = 0;
  std::string names;
  const auto add = [&names](bool differ, const char* name) { names += differ ? name : ""; };
  add(file->read != memory->read, "status of reading, ");
  add(file->height != memory->height || file->width != memory->width, "dimensions, ");
  add(file->pop != memory->pop, "pop flag, ");
  add(memcmp(file->document, memory->document, sizeof file->document) != 0, "document, ");
  add(file->took != memory->took, "status of taking apart, ");
  add(memcmp(&file->record, &memory->record, sizeof file->record) != 0, "record, ");
  add(memcmp(&file->summary, &memory->summary, sizeof file->summary) != 0, "summary, ");
  add(file->listed != memory->listed || file->blobs != memory->blobs, "list of blobs, ");
  add(file->copied != memory->copied || file->blob != memory->blob, "blob, ");
  add(file->wrote != memory->wrote, "status of writing, ");
  add(file->written != memory->written, "new picture, ");
  return names;
}

}  // namespace lumigram::fuzz

#endif  // LUMIGRAM_FUZZ_MEMORY_H_
