// Sizes of open files: from fstat() for a regular file that is open for reading only, from the
// position of the end for every other stream.
#include <stdlib.h>

#include "core/base/byte_source.h"
#include "core/base/status.h"

namespace lumigram {
namespace {

bool FitsSize(uint64_t size) { return size <= kMaxPosition; }

// Moves the stream to its end, and stores that position.
bool SeekToEnd(FILE* stream, int32_t* size) {
  if (fseek(stream, 0, SEEK_END) != 0) return false;
  const long end = ftell(stream);
  if (end < 0 || !FitsSize(static_cast<uint64_t>(end))) return false;
  *size = static_cast<int32_t>(end);
  return true;
}

bool SizeByStatus(FILE* stream, int32_t* size, bool* fits) {
  int descriptor;
  uint64_t bytes;
  if (!IsReadOnlyFile(stream, &descriptor, &bytes)) return false;
  *fits = FitsSize(bytes);
  if (*fits) *size = static_cast<int32_t>(bytes);
  return true;
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

int32_t CommonGetFileSize(FILE* stream, int32_t* outSize) {
  bool fits = false;
  if (SizeByStatus(stream, outSize, &fits)) return fits ? kOk : kFailed;
  fpos_t position;
  if (fgetpos(stream, &position) != 0 || !SeekToEnd(stream, outSize)) return kFailed;
  return fsetpos(stream, &position) == 0 ? kOk : kFailed;
}

int32_t GetFileLength(FILE* stream) {
  if (stream == nullptr) return kFailed;
  int32_t size = 0;
  bool fits = false;
  if (SizeByStatus(stream, &size, &fits) ? !fits : !SeekToEnd(stream, &size)) return kFailed;
  return fseek(stream, 0, SEEK_SET) == 0 ? size : static_cast<int32_t>(kFailed);
}

uint32_t GetMemory(FILE* stream, void** outBuffer) {
  if (stream == nullptr || outBuffer == nullptr) return 0;
  int32_t size = 0;
  if (CommonGetFileSize(stream, &size) != kOk) return 0;
  *outBuffer = size > 0 ? calloc(1, static_cast<size_t>(size)) : nullptr;
  return *outBuffer == nullptr ? 0 : static_cast<uint32_t>(size);
}
