#include "core/write/target.h"

#include <string.h>

#include "core/write/temporary_file.h"

namespace lumigram {
namespace {

// Replaces the path by the target of the links in its last component. The target need not exist.
bool FollowLinks(char (&path)[PATH_MAX]) {
  constexpr int kMaxLinks = 40;  // as many as the kernel follows
  for (int i = 0; i <= kMaxLinks; ++i) {
    char link[PATH_MAX];
    const ssize_t n = readlink(path, link, sizeof(link));
    if (n < 0) return true;
    const size_t size = static_cast<size_t>(n);
    const size_t folder = link[0] == '/' ? 0 : FolderSize(path);
    if (folder + size >= sizeof(path)) return false;
    memcpy(path + folder, link, size);
    path[folder + size] = '\0';
  }
  return false;
}

}  // namespace

bool OpenTarget(const char* path, int flags, Target* target) {
  if (strlen(path) >= sizeof(target->path)) {
    errno = ENAMETOOLONG;
    return false;
  }
  strcpy(target->path, path);
  target->file.Reset(Open(target->path, flags | O_NOFOLLOW));
  if (target->file.Get() < 0 && errno == ELOOP && FollowLinks(target->path))
    target->file.Reset(Open(target->path, flags | O_NOFOLLOW));
  return target->file.Get() >= 0;
}

}  // namespace lumigram
