#include "cli/files.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/base/scoped.h"
#include "core/base/status.h"

namespace lumigram::cli {

std::vector<uint8_t> ReadRegularFile(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) throw Failure(kCannotOpen, strerror(errno));
  if (!S_ISREG(status.st_mode)) throw Failure(kCannotOpen, "not a regular file");
  if (status.st_size == 0) throw Failure(kBadArgument, "empty file");
  if (status.st_size > kLumigramMaxPictureBytes) throw Failure(kBadArgument, "over 2 MiB");
  const ScopedFile file(fopen(path.c_str(), "rbe"));
  if (file == nullptr) throw Failure(kCannotOpen, strerror(errno));
  std::vector<uint8_t> bytes(static_cast<size_t>(status.st_size));
  if (fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
    throw Failure(kBadArgument, ferror(file.get()) ? strerror(errno) : "the file became shorter");
  }
  return bytes;
}

void WriteFile(const std::string& path, std::span<const uint8_t> bytes, mode_t mode,
               Existing existing) {
  const int flags = existing == Existing::kRefuse ? O_EXCL : O_TRUNC;
  const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, mode);
  FILE* const file = descriptor < 0 ? nullptr : fdopen(descriptor, "wb");
  if (file == nullptr) throw Failure(kCannotWrite, strerror(errno));
  const bool written = fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  if (fclose(file) == 0 && written) return;
  const std::string reason = strerror(errno);
  if (existing == Existing::kRefuse) unlink(path.c_str());
  throw Failure(kCannotWrite, reason);
}

}  // namespace lumigram::cli
