#include "core/file/picture_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/base/path.h"
#include "core/file/extraction.h"

namespace lumigram {
namespace {

// False for files that are left to the functions for streams: an empty file, which may still be
// written, a file over the limit, and anything that is not a regular file.
bool IsReadyToRead(int descriptor, int32_t* size) {
  struct stat status;
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return false;
  if (status.st_size <= 0 || status.st_size > kLumigramMaxPictureBytes) return false;
  *size = static_cast<int32_t>(status.st_size);
  return true;
}

}  // namespace

PictureFile::~PictureFile() {
  if (descriptor_ >= 0) (void)close(descriptor_);
}

Status PictureFile::Open(const char* path) {
  if (GetFileType(path, &type_) != kOk) return kUnsupported;
  const int descriptor = OpenDescriptorForReading(path);
  if (descriptor < 0) return kCannotOpen;
  if (IsReadyToRead(descriptor, &size_)) {
    descriptor_ = descriptor;
    return kOk;
  }
  stream_.reset(fdopen(descriptor, "rb"));
  if (stream_ == nullptr) (void)close(descriptor);
  return stream_ == nullptr ? kCannotOpen : kOk;
}

// Without O_NONBLOCK, opening a pipe waits for its writer. It has no effect on regular files.
Status PictureFile::OpenReady(const char* path) {
  if (GetFileType(path, &type_) != kOk) return kUnsupported;
  const int descriptor = OpenDescriptorForReading(path, O_NONBLOCK | O_NOCTTY);
  if (descriptor < 0) return kCannotOpen;
  if (IsReadyToRead(descriptor, &size_)) {
    descriptor_ = descriptor;
    return kOk;
  }
  (void)close(descriptor);
  return kNotReady;
}

Status PictureFile::GetSize(int32_t* size) const {
  if (stream_ != nullptr) return static_cast<Status>(CommonGetFileSize(stream_.get(), size));
  *size = size_;
  return kOk;
}

ByteSource PictureFile::Source() const {
  return stream_ != nullptr ? ByteSource(stream_.get())
                            : ByteSource(descriptor_, static_cast<uint64_t>(size_));
}

Status PictureFile::ReadDocument(const ReaderOutputs& out) const {
  if (stream_ != nullptr) {
    return static_cast<Status>(
        GetXmlString(stream_.get(), type_, out.document, out.height, out.width, out.pop));
  }
  ByteSource source = Source();
  return ExtractDocument(source, GetKind(), out);
}

}  // namespace lumigram
