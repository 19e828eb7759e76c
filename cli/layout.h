// The places of a picture's metadata as its writer finds them, which the readers do not report.
#ifndef LUMIGRAM_CLI_LAYOUT_H_
#define LUMIGRAM_CLI_LAYOUT_H_

#include <stdint.h>

#include <string>
#include <string_view>
#include <vector>

#include "cli/document_model.h"
#include "core/base/kind.h"
#include "core/document/survey.h"

namespace lumigram::cli {

struct Layout {
  Survey survey;
  std::vector<Blob> blobs;
};

// Surveys a picture that its reader has accepted, and copies its blobs. Throws Failure.
Layout LayOut(Kind kind, const std::vector<uint8_t>& bytes);

// A stored text without the NULs that fill its field.
std::string WithoutPadding(std::string_view text);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_LAYOUT_H_
