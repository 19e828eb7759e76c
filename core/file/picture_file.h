// A picture file that is opened for one read or one rewrite.
#ifndef LUMIGRAM_CORE_FILE_PICTURE_FILE_H_
#define LUMIGRAM_CORE_FILE_PICTURE_FILE_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/kind.h"
#include "core/base/scoped.h"
#include "core/base/status.h"
#include "core/document/reader_outputs.h"

namespace lumigram {

// A regular file of 1 byte to 2 MiB is read without a stream, which saves system calls: open,
// fstat, pread, close. All other files are read by the functions for streams. Both ways give the
// same results.
class PictureFile {
 public:
  PictureFile() = default;
  ~PictureFile();
  PictureFile(const PictureFile&) = delete;
  PictureFile& operator=(const PictureFile&) = delete;

  // As OpenFile() for reading. To be called once.
  Status Open(const char* path);
  // The same, but never waits: kNotReady for anything but a regular file of 1 byte to 2 MiB.
  Status OpenReady(const char* path);
  // As CommonGetFileSize().
  Status GetSize(int32_t* size) const;
  // As GetXmlString().
  Status ReadDocument(const ReaderOutputs& out) const;

  // Both are for a file that has been opened.
  Kind GetKind() const { return static_cast<Kind>(type_); }
  ByteSource Source() const;

 private:
  FileType type_ = kFileTypeUnknown;
  int descriptor_ = -1;  // owned, of a regular file with size_ bytes; -1: stream_ is used
  int32_t size_ = 0;
  ScopedFile stream_;
};

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_FILE_PICTURE_FILE_H_
