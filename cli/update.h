// Stores a rewritten picture in place of the one that was read.
#ifndef LUMIGRAM_CLI_UPDATE_H_
#define LUMIGRAM_CLI_UPDATE_H_

#include <functional>
#include <optional>
#include <string>

#include "cli/picture_model.h"

namespace lumigram::cli {

// Reads the picture at a path, and stores what rewrite() makes of it. If another program changes
// the picture meanwhile, it is read and rewritten again, a few times. With a suffix, the old picture
// is kept under the path and the suffix. False when rewrite() returns none, because nothing changes.
// Throws Failure; the picture is then not changed by this call.
bool UpdatePicture(const std::string& path, const std::string& backupSuffix,
                   const std::function<std::optional<Picture>(const Picture&)>& rewrite);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_UPDATE_H_
