#include "cli/change_file.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <functional>
#include <set>
#include <utility>

#include "cli/files.h"
#include "cli/picture_model.h"
#include "cli/spelling.h"
#include "core/base/scoped.h"
#include "core/base/status.h"

namespace lumigram::cli {
namespace {

// The folder below which files are embedded, without links.
std::string FolderOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const ScopedBlock<char> real(realpath(folder.c_str(), nullptr));
  if (real == nullptr) throw Failure(kCannotOpen, strerror(errno));
  return real.get();
}

uint64_t HashOfFile(const std::string& path) {
  constexpr uint64_t kOddFactor = 0x9E3779B97F4A7C15;
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return std::hash<std::string>()(path);
  return status.st_ino + status.st_dev * kOddFactor;
}

}  // namespace

ChangeFile::ChangeFile(const std::string& path, bool filesAnywhere, bool eachHasPath)
    : text_(path), reader_(&text_, filesAnywhere ? "" : FolderOf(path)) {
  std::vector<Place> places;
  while (const auto entry = reader_.Next()) {
    ++count_;
    if (!eachHasPath) continue;
    if (entry->path.empty()) {
      throw Failure(kBadArgument, entry->place + ": expected a member \"path\", found none");
    }
    if (entry->path == kStandardInput) {
      throw Failure(kBadArgument, entry->place + "/path: expected a file, found -; ./- is one");
    }
    places.push_back({HashOfFile(entry->path), entry->position});
  }
  if (!eachHasPath && count_ != 1) {
    throw Failure(kBadArgument,
                  "expected one object for the paths given, found " + std::to_string(count_));
  }
  FindRepeated(std::move(places));
  count_ -= repeated_.size();
  reader_.Rewind();
}

std::optional<JsonEntry> ChangeFile::Next() {
  auto entry = reader_.Next();
  while (entry && repeated_.contains(entry->position)) entry = reader_.Next();
  return entry;
}

void ChangeFile::FindRepeated(std::vector<Place> places) {
  std::sort(places.begin(), places.end());
  for (auto begin = places.begin(); begin != places.end();) {
    const auto isOther = [begin](const Place& place) { return place.file != begin->file; };
    const auto end = std::find_if(begin, places.end(), isOther);
    if (end - begin > 1) Compare({begin, end});
    begin = end;
  }
}

// Compares objects whose files have the same hash.
void ChangeFile::Compare(std::span<const Place> places) {
  const JsonEntry first = reader_.ReadAt(places.front().position);
  std::set<std::string> paths = {first.path};
  for (const Place& place : places.subspan(1)) {
    const JsonEntry entry = reader_.ReadAt(place.position);
    if (!paths.insert(entry.path).second) {
      throw Failure(kBadArgument,
                    PlaceOf(place.position) + "/path: expected each picture once, found it again");
    }
    if (!AreSameFile(first.path, entry.path)) continue;
    if (entry.changes != first.changes) {
      throw Failure(kBadArgument, PlaceOf(place.position) +
                                      "/path: expected each picture once, found " +
                                      Quoted(entry.path) + ", another name of " +
                                      Quoted(first.path) + ", with other changes");
    }
    repeated_.insert(place.position);
  }
}

std::string ChangeFile::PlaceOf(uint64_t position) {
  reader_.Rewind();
  auto entry = reader_.Next();
  while (entry && entry->position != position) entry = reader_.Next();
  return entry ? entry->place : "";
}

}  // namespace lumigram::cli
