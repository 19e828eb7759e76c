// The copy of the old picture that --backup keeps beside the new one.
#ifndef LUMIGRAM_CLI_BACKUP_H_
#define LUMIGRAM_CLI_BACKUP_H_

#include <string>

#include "core/write/opened_picture.h"

namespace lumigram::cli {

// Removed at the end of the scope, unless it is kept or was there before.
class Backup {
 public:
  // Gives the copy its name when it is complete, with the picture's owner and mode, and returns
  // when copy and name are on the disk. A file of that name is never overwritten; when it has the
  // bytes of the picture, as after a run that was killed, it is the backup. Throws Failure.
  Backup(const std::string& path, const OpenedPicture& picture);
  ~Backup();
  Backup(const Backup&) = delete;
  Backup& operator=(const Backup&) = delete;

  void Keep() { isOurs_ = false; }

 private:
  const std::string path_;
  bool isOurs_ = false;
};

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_BACKUP_H_
