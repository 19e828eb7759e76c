#include "cli/console.h"

#include <langinfo.h>
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "cli/spelling.h"

namespace lumigram::cli {
namespace {

// Output is UTF-8 whatever the locale, and wcwidth() needs a UTF-8 locale.
void SetUtf8Locale() {
  if (setlocale(LC_CTYPE, "") != nullptr && strcmp(nl_langinfo(CODESET), "UTF-8") == 0) return;
  setlocale(LC_CTYPE, "C.UTF-8");
}

bool WantsColours() {
  const char* const refused = getenv("NO_COLOR");
  const char* const terminal = getenv("TERM");
  return (refused == nullptr || *refused == '\0') && terminal != nullptr &&
         strcmp(terminal, "dumb") != 0;
}

std::string Joined(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) line += (line.empty() ? "" : "\t") + field;
  return line + "\n";
}

std::vector<std::string> PictureFields(const Picture& picture) {
  return {picture.KindName(), std::to_string(picture.width) + "x" + std::to_string(picture.height),
          std::to_string(picture.bytes.size()) + " bytes", picture.pop != 0 ? "pop" : ""};
}

std::string Duration(double seconds) {
  if (seconds < 100) return std::to_string(std::lround(seconds)) + " s";
  if (seconds < 6000) return std::to_string(std::lround(seconds / 60)) + " min";
  return std::to_string(std::lround(seconds / 3600)) + " h";
}

}  // namespace

Console::Console()
    : outIsTerminal_(isatty(STDOUT_FILENO) != 0),
      errIsTerminal_(isatty(STDERR_FILENO) != 0),
      colours_(outIsTerminal_ && WantsColours()) {
  SetUtf8Locale();
}

void Console::Print(std::string_view text) {
  if (text.empty()) return;
  ClearProgress();
  fwrite(text.data(), 1, text.size(), stdout);
  if (outIsTerminal_) fflush(stdout);
}

void Console::Fail(const std::string& path, const Failure& failure) {
  Complain(path + ": " + failure.what() + " (" + std::to_string(failure.code) + ")");
}

void Console::Complain(const std::string& message) {
  ClearProgress();
  fflush(stdout);
  fprintf(stderr, "%s\n", Printable(message).c_str());
}

void Console::Flush() { fflush(stdout); }

void Console::Progress(size_t done, size_t total, double seconds) {
  const double rate = static_cast<double>(done) / seconds;
  std::string line = std::to_string(done);
  if (total >= done) line += " of " + std::to_string(total);
  line += " pictures, " + std::to_string(std::lround(rate)) + "/s";
  if (total >= done && done > 0) {
    line += ", " + Duration(static_cast<double>(total - done) / rate) + " left";
  }
  fprintf(stderr, "\r%s\033[K", line.c_str());
  fflush(stderr);
  progressShown_ = true;
}

void Console::ClearProgress() {
  if (progressShown_) fputs("\r\033[K", stderr);
  progressShown_ = false;
}

// Between tabs, a backslash is escaped, too, so that the output can be taken apart again.
std::string Console::Shown(const std::string& text) const {
  return outIsTerminal_ ? Printable(text) : Escaped(text);
}

std::vector<Console::Row> Console::Rows(const Picture& picture) const {
  std::vector<Row> rows;
  const Document& document = picture.GetDocument();
  for (const Label& label : document.labels) {
    rows.push_back(
        {"label", Shown(label.name), Shown(label.note), Shown(DescribePart(label.part))});
  }
  if (!document.category.empty()) rows.push_back({"category", Shown(document.category)});
  if (!document.type.empty()) rows.push_back({"type", Shown(document.type)});
  for (const Tag& tag : document.tags) {
    rows.push_back({"tag", Shown(tag.name), Shown(tag.content)});
  }
  for (const Blob& blob : picture.blobs) {
    const std::string size = std::to_string(blob.bytes.size()) + " bytes";
    rows.push_back({"blob", Shown(blob.label), Shown(blob.name), size});
  }
  return rows;
}

std::string Console::Painted(Paint paint, const std::string& text) const {
  constexpr const char* kCodes[] = {"1", "2", "31", "32"};
  if (!colours_ || text.empty()) return text;
  return std::string("\033[") + kCodes[static_cast<int>(paint)] + "m" + text + "\033[0m";
}

// Aligns the fields of rows of one kind in columns. The kind is printed in the first row only.
std::string Console::Aligned(const std::vector<Row>& rows) const {
  std::map<std::string, std::vector<size_t>> widths;
  for (const Row& row : rows) {
    auto& columns = widths[row[0]];
    columns.resize(std::max(columns.size(), row.size()));
    for (size_t i = 1; i < row.size(); ++i) columns[i] = std::max(columns[i], Columns(row[i]));
  }
  std::string text, kind;
  for (const Row& row : rows) {
    constexpr size_t kKindWidth = 8;
    const std::string name = row[0] == kind ? "" : row[0];
    kind = row[0];
    std::string line =
        "  " + Painted(Paint::kDim, name) + std::string(kKindWidth - name.size(), ' ');
    for (size_t i = 1; i < row.size(); ++i) {
      line += "  " + row[i] + std::string(widths[kind][i] - Columns(row[i]), ' ');
    }
    text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  }
  return text;
}

std::string Console::Describe(const std::string& path, const Picture& picture) const {
  std::vector<Row> rows = Rows(picture);
  for (const Finding& finding : picture.reading.findings) {
    if (finding.severity == Finding::kNote) continue;
    const char* const kind = finding.severity == Finding::kMissing ? "missing" : "unread";
    rows.push_back({kind, Shown(finding.text)});
  }
  std::vector<std::string> fields = PictureFields(picture);
  if (fields.back().empty()) fields.pop_back();
  if (!outIsTerminal_) {
    fields.insert(fields.begin(), {Shown(path), "picture"});
    std::string text = Joined(fields);
    for (Row& row : rows) text += Shown(path) + "\t" + Joined(row);
    return text;
  }
  std::string text = Painted(Paint::kBold, Shown(path));
  for (const std::string& field : fields) text += "  " + field;
  return text + "\n" + Aligned(rows);
}

std::string Console::DescribeChange(const std::string& path, const Picture& old,
                                    const Picture& built) const {
  std::vector<Row> before = Rows(old), after = Rows(built);
  for (auto row = before.begin(); row != before.end();) {
    const auto same = std::find(after.begin(), after.end(), *row);
    const bool stays = same != after.end();
    if (stays) after.erase(same);
    row = stays ? before.erase(row) : row + 1;
  }
  std::string text;
  const auto add = [&](Paint paint, const char* sign, const Row& row) {
    if (!outIsTerminal_) {
      text += Shown(path) + "\t" + sign + "\t" + Joined(row);
    } else {
      std::string line = std::string("  ") + sign;
      for (const std::string& field : row) line += "  " + field;
      text += Painted(paint, line) + "\n";
    }
  };
  for (const Row& row : before) add(Paint::kRed, "-", row);
  for (const Row& row : after) add(Paint::kGreen, "+", row);
  if (text.empty()) add(Paint::kDim, "*", {"only bytes change, no text"});
  return outIsTerminal_ ? Painted(Paint::kBold, Shown(path)) + "\n" + text : text;
}

}  // namespace lumigram::cli
