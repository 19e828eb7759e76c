// A picture file that is opened to be read once, or to be rewritten.
#ifndef LUMIGRAM_CORE_FILE_PICTURE_FILE_H_
#define LUMIGRAM_CORE_FILE_PICTURE_FILE_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/scoped.h"
#include "core/base/status.h"

namespace lumigram {

// A regular file that holds something takes as few system calls as any program needs: open, status,
// read, close. What else a path may lead to, and a file that is still empty, is handed to the
// functions for streams. Either way the results are theirs.
class PictureFile {
 public:
  PictureFile() = default;
  ~PictureFile();
  PictureFile(const PictureFile&) = delete;
  PictureFile& operator=(const PictureFile&) = delete;

  // As OpenFile() for reading. Once.
  Status Open(const char* path);
  // As CommonGetFileSize().
  Status GetSize(int32_t* size) const;
  // As GetXmlString().
  Status ReadDocument(char* xmlBuf, int32_t* height, int32_t* width, int32_t* pop) const;

  FileType Type() const { return type_; }
  // The bytes, from the first one on.
  ByteSource Source() const;

 private:
  FileType type_ = kFileTypeUnknown;
  int descriptor_ = -1;  // ours, of a regular file with size_ bytes; else there is a stream
  int32_t size_ = 0;
  ScopedFile stream_;
};

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_FILE_PICTURE_FILE_H_
