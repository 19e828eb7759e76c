#include "cli/json_text.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/files.h"
#include "core/base/status.h"

namespace lumigram::cli {
namespace {

constexpr size_t kBlockBytes = 1 << 16;
constexpr uint64_t kMaxCopiedBytes = 1ULL << 30;

[[noreturn]] void Fail(const std::string& prefix = "") {
  throw Failure(kCannotOpen, prefix + strerror(errno));
}

std::string ReadBlock(FILE* file) {
  std::string block(kBlockBytes, '\0');
  block.resize(fread(block.data(), 1, block.size(), file));
  if (ferror(file)) Fail();
  return block;
}

ScopedFile CopyToTemporaryFile(FILE* input) {
  constexpr char kCannot[] = "cannot be copied to a temporary file: ";
  const char* const folder = getenv("TMPDIR");
  std::string path = std::string(folder == nullptr ? "/tmp" : folder) + "/lumigram-XXXXXX";
  const int descriptor = mkstemp(path.data());
  if (descriptor < 0) Fail(kCannot);
  unlink(path.c_str());
  ScopedFile copy(fdopen(descriptor, "w+b"));
  if (copy == nullptr) Fail(kCannot);
  uint64_t size = 0;
  for (std::string block = ReadBlock(input); !block.empty(); block = ReadBlock(input)) {
    size += block.size();
    if (size > kMaxCopiedBytes) throw Failure(kTooLong, "over 1 GiB");
    if (fwrite(block.data(), 1, block.size(), copy.get()) != block.size()) Fail(kCannot);
  }
  if (fflush(copy.get()) != 0) Fail(kCannot);
  return copy;
}

}  // namespace

JsonText::JsonText(const std::string& path) {
  const bool fromInput = path == "-";
  if (!fromInput) file_.reset(fopen(path.c_str(), "rbe"));
  if (!fromInput && file_ == nullptr) Fail();
  struct stat status;
  if (fromInput || fstat(fileno(file_.get()), &status) != 0 || !S_ISREG(status.st_mode)) {
    file_ = CopyToTemporaryFile(fromInput ? stdin : file_.get());
  }
  Seek(0);
}

int JsonText::Peek() {
  if (next_ == block_.size()) {
    blockStart_ += block_.size();
    next_ = 0;
    block_ = ReadBlock(file_.get());
    if (block_.empty()) return kEnd;
  }
  return static_cast<uint8_t>(block_[next_]);
}

void JsonText::Seek(uint64_t position) {
  if (position >= blockStart_ && position - blockStart_ < block_.size()) {
    next_ = static_cast<size_t>(position - blockStart_);
    return;
  }
  if (fseeko(file_.get(), static_cast<off_t>(position), SEEK_SET) != 0) Fail();
  blockStart_ = position;
  next_ = 0;
  block_.clear();
}

std::string JsonText::Where(uint64_t size) {
  uint64_t line = 1, column = 0;
  for (Seek(0); Position() < size; Advance()) {
    const int byte = Peek();
    line += byte == '\n' ? 1 : 0;
    column = byte == '\n' ? 0 : column + 1;
  }
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

}  // namespace lumigram::cli
