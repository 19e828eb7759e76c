// Rewriting one picture: nothing is stored that was not built, read back and found to be what was
// wanted.
#ifndef LUMIGRAM_TOOLS_REWRITE_H_
#define LUMIGRAM_TOOLS_REWRITE_H_

#include <optional>
#include <string>

#include "tools/changes.h"
#include "tools/picture_model.h"

namespace lumigram::tool {

struct RewriteOptions {
  bool replace = false;      // start from an empty document
  bool force = false;        // rewrite although something is lost
  bool dryRun = false;       // build, but store nothing
  std::string backupSuffix;  // empty: no backup
};

// The new picture, which has been stored unless it is a dry run; none when nothing changes. Throws
// Failure; the file is then as it was.
std::optional<Picture> SetPicture(const std::string& path, const Picture& picture,
                                  const Changes& changes, const RewriteOptions& options);
std::optional<Picture> ClearPicture(const std::string& path, const Picture& picture,
                                    const RewriteOptions& options);

// Throws Failure when no picture could hold what the changes alone make of an empty document.
void RequireWritable(const Changes& changes);

}  // namespace lumigram::tool

#endif  // LUMIGRAM_TOOLS_REWRITE_H_
