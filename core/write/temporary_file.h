// New files: beside a picture under an unused name, or at a given path.
#ifndef LUMIGRAM_CORE_WRITE_TEMPORARY_FILE_H_
#define LUMIGRAM_CORE_WRITE_TEMPORARY_FILE_H_

#include <limits.h>
#include <stddef.h>
#include <sys/types.h>

#include <string_view>

#include "core/write/system_calls.h"

namespace lumigram {

// The name of a temporary file is this prefix, eight letters and the picture's extension.
inline constexpr std::string_view kTemporaryPrefix = ".lumigram-";

// The size of a path's folder, with its slash; 0 for a path without one.
size_t FolderSize(const char* path);

// A new file, removed at the end of the scope unless it is kept or renamed.
class NewFile {
 public:
  NewFile() = default;
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  // Call one of the two, once. False with errno set; EEXIST when the path exists.
  [[nodiscard]] bool Create(const char* path, mode_t mode);
  // In the folder of the picture at target, with the extension.
  [[nodiscard]] bool CreateBeside(const char* target, const char* extension, mode_t mode);

  [[nodiscard]] bool SyncAndClose() { return Sync(file_.Get()) && file_.Close(); }
  // Moves the file to the target, which it replaces. False with errno set.
  [[nodiscard]] bool RenameTo(const char* target);
  void Keep() { isOurs_ = false; }
  int Get() const { return file_.Get(); }
  const char* Path() const { return path_; }

 private:
  bool OpenNew(mode_t mode);

  char path_[PATH_MAX];
  bool isOurs_ = false;
  Descriptor file_;
};

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_TEMPORARY_FILE_H_
