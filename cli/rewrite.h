// Builds the rewritten form of a picture in memory, reads it back and checks it.
#ifndef LUMIGRAM_CLI_REWRITE_H_
#define LUMIGRAM_CLI_REWRITE_H_

#include <optional>
#include <string>
#include <vector>

#include "cli/changes.h"
#include "cli/picture_model.h"

namespace lumigram::cli {

struct RewriteOptions {
  bool replace = false;       // start from an empty document
  bool force = false;         // rewrite even if something is lost
  bool withoutBlobs = false;  // copy no blobs, and no tags that refer to them
  bool dryRun = false;        // build, but store nothing
  std::string backupSuffix;   // empty: no backup
};

// Returns the new picture; none when nothing changes. Throws Failure.
std::optional<Picture> SetPicture(const Picture& picture, const Changes& changes,
                                  const RewriteOptions& options);
std::optional<Picture> ClearPicture(const Picture& picture, const RewriteOptions& options);

// The same: the picture with the document and the blobs of the source in place of its own. Without
// force, it must have none that the source does not have.
std::optional<Picture> CopyMetadata(const Picture& source, const Picture& picture,
                                    const RewriteOptions& options);

// Describes the blobs that a picture does not have although a tag refers to them, and those of a list
// that no picture can have.
std::vector<std::string> FindMissingBlobs(const Picture& picture, const std::vector<Blob>& blobs);

// Applies the changes to an empty document. Throws Failure if no picture can hold the result.
void RequireWritable(const Changes& changes);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_REWRITE_H_
