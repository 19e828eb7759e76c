#include "cli/rewrite.h"

#include <algorithm>
#include <memory>
#include <tuple>

#include "cli/spelling.h"
#include "core/base/utf8.h"
#include "core/document/blob_entries.h"
#include "core/document/document_builder.h"
#include "core/document/document_format.h"
#include "core/document/document_walk.h"
#include "core/file/blobs.h"
#include "core/write/build_picture.h"

namespace lumigram::cli {
namespace {

// ---- checks before writing ----------------------------------------------------------------------

// Returns the first finding that keeps a document from being written; null when there is none.
// Bytes that are no character are written: they are in a new document only if the changes have them.
const Finding* FindRefused(const std::vector<Finding>& findings) {
  const auto isRefused = [](const Finding& finding) {
    return finding.severity == Finding::kUnread && finding.code != kBadArgument;
  };
  const auto found = std::find_if(findings.begin(), findings.end(), isRefused);
  return found == findings.end() ? nullptr : &*found;
}

void RequireReadable(const Document& document) {
  const std::vector<Finding> findings = FindUnread(document);
  if (const Finding* const refused = FindRefused(findings)) {
    throw Failure(refused->code, refused->text);
  }
}

// An embedded blob must not have the name of another blob, or of one that an earlier tag refers to.
void RequireDistinctBlobs(const Document& document, const std::vector<Blob>& blobs) {
  for (auto tag = document.tags.begin(); tag != document.tags.end(); ++tag) {
    if (tag->blob == nullptr) continue;
    const std::string& name = tag->blob->name;
    const auto refers = [&name](const Tag& earlier) {
      return BlobReference(earlier.content) == name;
    };
    const auto isNamed = [&name](const Blob& blob) { return blob.name == name; };
    if (std::any_of(document.tags.begin(), tag, refers) ||
        std::count_if(blobs.begin(), blobs.end(), isNamed) > 1) {
      throw Failure(kDuplicateBlob, "two blobs would have the name " + Quoted(name));
    }
  }
}

// A record, and the bytes of its new blobs. Borrows the blobs.
struct Record {
  AttrInfo attr = {};
  BlobBytes bytes[kLumigramMaxTags] = {};

  void Add(size_t entry, const Blob& blob) {
    CopyText(attr.appExt[entry].labelName, blob.label);
    CopyText(attr.appExt[entry].fileName, blob.name);
    bytes[entry] = {reinterpret_cast<const uint8_t*>(blob.bytes.data()), blob.bytes.size()};
  }
};

// Returns the record of a document that is within all limits. Tags that refer to this picture keep
// its blobs.
std::unique_ptr<Record> ToRecord(const Document& document) {
  auto whole = std::make_unique<Record>();
  AttrInfo* const record = &whole->attr;
  for (size_t i = 0; i < document.labels.size(); ++i) {
    CopyText(record->name[i], document.labels[i].name);
    CopyText(record->note[i], document.labels[i].note);
    CopyText(record->part[i], document.labels[i].part);
  }
  CopyText(record->category, document.category);
  CopyText(record->type, document.type);
  for (size_t i = 0; i < document.tags.size(); ++i) {
    const Tag& tag = document.tags[i];
    CopyText(record->tag[i].tagName, tag.name);
    CopyText(record->tag[i].tagElement, tag.content);
    if (tag.blob) {
      whole->Add(i, *tag.blob);
    } else if (RefersToThisPicture(tag.content)) {
      SetUri(tag.content, &record->appExt[i]);
    }
  }
  return whole;
}

// Gives the record these blobs, all of them new.
void SetBlobs(const std::vector<Blob>& blobs, Record* record) {
  if (blobs.size() > std::size(record->bytes)) {
    throw Failure(kBadBlob, "the limit is 100 blobs");
  }
  for (AppExtEntry& entry : record->attr.appExt) entry = {};
  for (size_t i = 0; i < blobs.size(); ++i) record->Add(i, blobs[i]);
}

// ---- building and reading back ------------------------------------------------------------------

// Describes the text whose markup changes the meaning of a document.
std::string DescribeMarkup(const Document& document) {
  static constexpr const char* kMarkup[] = {kRootStart, kRootEnd, kLabelStart,    kLabelEnd,
                                            kNameStart, kNameEnd, kNoteStart,     kNoteEnd,
                                            kPartStart, kPartEnd, kCategoryStart, kCategoryEnd,
                                            kTypeStart, kTypeEnd, kTagsStart,     kTagsEnd};
  std::string description = "a text would be read as markup of the document";
  bool described = false;
  ForEachText(document, [&](const std::string& what, const std::string& text) {
    const auto holds = [&text](const char* markup) {
      return text.find(markup) != std::string::npos;
    };
    const auto* const found = std::find_if(std::begin(kMarkup), std::end(kMarkup), holds);
    const bool endsName = what.starts_with("the name of tag") && holds(kAttributeEnd);
    if (described || (found == std::end(kMarkup) && !endsName)) return;
    described = true;
    description = what + " holds " + (endsName ? kAttributeEnd : *found) +
                  ", which is markup of the document";
  });
  return description;
}

// Whether a record can add the blob so that a reader finds it.
bool CanBeAdded(const Blob& blob) {
  return BeginsWith(blob.label, kBlobMark) && blob.label.size() <= kBlobLabelSize &&
         !blob.name.empty() && blob.name.size() <= kMaxBlobName && !blob.bytes.empty();
}

// The blobs that the new picture has: those of the changes or, without any, those of the picture
// that a tag refers to, and those that are embedded.
std::vector<Blob> WantedBlobs(const Document& document, const Changes& changes,
                              const Picture& picture) {
  std::vector<Blob> wanted;
  if (changes.allBlobs) {
    std::copy_if(changes.allBlobs->begin(), changes.allBlobs->end(), std::back_inserter(wanted),
                 CanBeAdded);
  } else {
    std::copy_if(picture.blobs.begin(), picture.blobs.end(), std::back_inserter(wanted),
                 [&document](const Blob& blob) { return IsReferredTo(blob, document); });
  }
  for (const Tag& tag : document.tags) {
    if (tag.blob) wanted.push_back(*tag.blob);
  }
  return wanted;
}

// A reference to a blob that is not in the picture is refused, unless the picture has it already.
void RequireBlobs(const Document& document, const std::vector<Blob>& blobs,
                  const Picture& picture) {
  const std::vector<Tag>& old = picture.GetDocument().tags;
  for (const Tag& tag : document.tags) {
    const auto isSame = [&tag](const Tag& other) { return other.content == tag.content; };
    if (!IsWithoutBlob(tag, blobs) || std::any_of(old.begin(), old.end(), isSame)) continue;
    throw Failure(kBadBlob, "tag " + std::to_string(&tag - document.tags.data() + 1) +
                                ": the blob " + Quoted(BlobName(tag.content)) +
                                " is not in the picture");
  }
}

// Ignores the order: kept blobs stay in their places, before or after the new ones.
bool AreSame(std::vector<Blob> a, std::vector<Blob> b) {
  const auto less = [](const Blob& x, const Blob& y) {
    return std::tie(x.name, x.label, x.bytes) < std::tie(y.name, y.label, y.bytes);
  };
  std::sort(a.begin(), a.end(), less);
  std::sort(b.begin(), b.end(), less);
  return a == b;
}

void RequireSameBlobs(const Picture& built, const std::vector<Blob>& wanted) {
  if (AreSame(built.blobs, wanted)) return;
  throw Failure(kBadBlob, "the new picture would not have the blobs that it should have");
}

Document WithoutFiles(Document document) {
  for (Tag& tag : document.tags) tag.blob = nullptr;
  return document;
}

// Builds the text of a document, and checks that it reads back as the same document.
void BuildText(const Document& document, const AttrInfo& record, XmlStringInfo* text) {
  if (const Status status = BuildDocument(record, text); status != kOk) {
    throw Failure(status, "the document would be over 10,239 bytes");
  }
  const Reading reading = InspectDocument(text->text);
  const Document wanted = WithoutFiles(document);
  if (reading.whole != wanted || reading.asRead != wanted) {
    throw Failure(kTooLong, DescribeMarkup(wanted));
  }
}

// Builds the picture in memory; an empty text means no document.
Picture Build(const Picture& source, const XmlStringInfo& text, const Record& record) {
  NewPicture built;
  const NewBlobs blobs = {record.bytes, kLumigramMaxTags, 0};
  ByteSource original{source.bytes};
  const Status status = BuildPicture(original, source.kind, text, {record.attr, blobs}, &built);
  if (status == kTooLong) throw Failure(status, "the document is too long for a PNG picture");
  if (status == kPictureTooLarge) throw Failure(status, "the picture would be over 2 MiB");
  if (status != kOk) throw Failure(status, LumigramStatusText(status));
  const uint8_t* const bytes = built.bytes.get();
  return InspectPicture(source.kind, {bytes, bytes + built.length});
}

// Builds the picture with these blobs. If they replace those of the source, all of them are new.
Picture BuildWith(const Picture& source, const Document& document, const std::vector<Blob>& blobs,
                  bool replacesBlobs) {
  RequireReadable(document);
  RequireDistinctBlobs(document, blobs);
  const auto record = ToRecord(document);
  const auto text = std::make_unique<XmlStringInfo>();
  BuildText(document, record->attr, text.get());
  if (replacesBlobs) SetBlobs(blobs, record.get());
  Picture built = Build(source, *text, *record);
  if (!built.hasDocument || built.GetDocument() != WithoutFiles(document)) {
    throw Failure(kMalformed, "this picture has no place where a document is read");
  }
  RequireSameBlobs(built, blobs);
  if (const Finding* const lost = FindRefused(built.reading.findings)) {
    throw Failure(lost->code, "even the new picture would lose something: " + lost->text);
  }
  return built;
}

// ---- what is kept -------------------------------------------------------------------------------

std::optional<Picture> UnlessSame(const Picture& old, Picture built) {
  if (built.bytes == old.bytes) return std::nullopt;
  return built;
}

void RequireNothingLost(const Picture& picture, Finding::Severity severity,
                        const RewriteOptions& options) {
  const Finding* const finding = options.force ? nullptr : picture.First(severity);
  if (finding == nullptr) return;
  throw Failure(finding->code, finding->text + "; --force rewrites the picture anyway");
}

// The part of the document that a reader delivers, reduced to what can be written again.
Document Delivered(const Picture& picture) {
  Document document = picture.reading.asRead;
  const auto repair = [](std::string* text) {
    if (!IsValidText(*text)) *text = ToJava(*text);
  };
  for (Label& label : document.labels) {
    repair(&label.name);
    repair(&label.note);
  }
  repair(&document.category);
  repair(&document.type);
  for (Tag& tag : document.tags) {
    repair(&tag.name);
    repair(&tag.content);
  }
  std::erase_if(document.labels, [](const Label& label) { return label.name.empty(); });
  std::erase_if(document.tags, [](const Tag& tag) { return tag.name.empty(); });
  const auto holdsText = [](const Tag& tag) { return !tag.content.empty(); };
  const auto first = std::find_if(document.tags.begin(), document.tags.end(), holdsText);
  document.tags.erase(document.tags.begin(), first);
  return document;
}

// ---- copying ------------------------------------------------------------------------------------

// Leaves out the tags that refer to blobs; all other bytes of the document stay.
std::string WithoutReferences(std::string_view document) {
  if (document.empty()) return "";
  const ElementTags& markup = kRootElements[kTagsElement];
  std::string kept;
  const char* from = document.data();
  std::string_view root, after;
  (void)SplitDocument(document, &root, &after);
  FoundElement element;
  while (TakeElement(kRootElements, &root, &element)) {
    std::string_view name, content;
    const bool isTag =
        element.index == kTagsElement && SplitTagGroup(element.content, &name, &content);
    if (!isTag || !RefersToThisPicture(content)) continue;
    kept.append(from, element.content.data() - markup.start.size());
    from = element.content.data() + element.content.size() + markup.end.size();
  }
  return kept.append(from, document.data() + document.size());
}

// Whether a picture has metadata that are not among these.
bool HasOther(const Picture& picture, const std::string& document, const std::vector<Blob>& blobs) {
  const auto isOther = [&blobs](const Blob& blob) {
    return std::find(blobs.begin(), blobs.end(), blob) == blobs.end();
  };
  return (picture.hasDocument && picture.document != document) || picture.survey.documents > 1 ||
         picture.survey.brokenBlobs > 0 ||
         std::any_of(picture.blobs.begin(), picture.blobs.end(), isOther);
}

uint64_t SizeOf(const std::vector<Blob>& blobs) {
  uint64_t size = 0;
  for (const Blob& blob : blobs) size += blob.bytes.size();
  return size;
}

// The reasons for which a writer would refuse the blobs with less clear words.
void RequireCarried(const std::vector<Blob>& blobs, const std::string& document,
                    const Picture& picture) {
  if (blobs.empty()) return;
  if (BlobFunctionsOf(picture.kind) == nullptr) {
    throw Failure(kBadBlob, std::string("a ") + picture.KindName() +
                                " picture carries no blobs; --without-blobs copies the rest");
  }
  if (document.empty()) throw Failure(kBadBlob, "blobs are not written without a document");
  for (const Blob& blob : blobs) {
    if (blob.name.empty()) throw Failure(kBadBlob, "a blob has no name");
    if (blob.bytes.empty()) throw Failure(kBadBlob, "blob " + Quoted(blob.name) + " is empty");
  }
  if (picture.bytes.size() - SizeOf(picture.blobs) + SizeOf(blobs) > kLumigramMaxPictureBytes) {
    throw Failure(kPictureTooLarge, "the picture would be over 2 MiB");
  }
}

Picture BuildCopy(const Picture& picture, const std::string& document,
                  const std::vector<Blob>& blobs) {
  const auto text = std::make_unique<XmlStringInfo>();
  text->length = static_cast<int32_t>(document.copy(text->text, sizeof text->text));
  const auto record = std::make_unique<Record>();
  SetBlobs(blobs, record.get());
  return Build(picture, *text, *record);
}

}  // namespace

std::optional<Picture> SetPicture(const Picture& picture, const Changes& changes,
                                  const RewriteOptions& options) {
  const bool replacesBlobs = changes.allBlobs.has_value();
  const Picture withoutSpellings;  // With its blobs, a text has the spelling that they refer to.
  const Picture& spelled = replacesBlobs ? withoutSpellings : picture;
  Document wanted = Apply(changes, options.replace ? Document{} : picture.GetDocument(), spelled);
  std::vector<Blob> blobs = WantedBlobs(wanted, changes, picture);
  const bool changesBlobs = (replacesBlobs || options.replace) && !AreSame(blobs, picture.blobs);
  if (wanted == picture.GetDocument() && !changesBlobs) return std::nullopt;
  RequireNothingLost(picture, Finding::kDropped, options);
  if (!options.replace) {
    RequireNothingLost(picture, Finding::kUnread, options);
    if (!replacesBlobs || changesBlobs) RequireNothingLost(picture, Finding::kUnnamed, options);
  }
  if (!options.replace && picture.First(Finding::kUnread)) {
    wanted = Apply(changes, Delivered(picture), spelled);
    blobs = WantedBlobs(wanted, changes, picture);
  }
  if (!blobs.empty() && BlobFunctionsOf(picture.kind) == nullptr) {
    throw Failure(kBadBlob, std::string("a ") + picture.KindName() + " picture carries no blobs");
  }
  if (!replacesBlobs) RequireBlobs(wanted, blobs, picture);
  return UnlessSame(picture, BuildWith(picture, wanted, blobs, replacesBlobs));
}

std::optional<Picture> ClearPicture(const Picture& picture, const RewriteOptions& options) {
  if (!picture.hasDocument && picture.blobs.empty()) return std::nullopt;
  RequireNothingLost(picture, Finding::kDropped, options);
  const auto record = std::make_unique<Record>();
  const auto text = std::make_unique<XmlStringInfo>();
  Picture built = Build(picture, *text, *record);
  if (built.hasDocument || !built.blobs.empty()) {
    throw Failure(kMalformed, "the document is in a place from which it cannot be removed");
  }
  return UnlessSame(picture, std::move(built));
}

std::optional<Picture> CopyMetadata(const Picture& source, const Picture& picture,
                                    const RewriteOptions& options) {
  const bool all = !options.withoutBlobs;
  const std::string document = all ? source.document : WithoutReferences(source.document);
  const std::vector<Blob> blobs = all ? source.blobs : std::vector<Blob>();
  if (picture.document == document && AreSame(picture.blobs, blobs)) return std::nullopt;
  RequireCarried(blobs, document, picture);
  if (!options.force && HasOther(picture, document, blobs)) {
    throw Failure(kBadArgument, "has other metadata of its own; --force replaces them");
  }
  RequireNothingLost(picture, Finding::kDropped, options);
  Picture built = BuildCopy(picture, document, blobs);
  if (built.document != document) {
    throw Failure(kMalformed, "this picture has no place where the document is read");
  }
  RequireSameBlobs(built, blobs);
  return UnlessSame(picture, std::move(built));
}

std::vector<std::string> FindMissingBlobs(const Picture& picture, const std::vector<Blob>& blobs) {
  std::vector<std::string> missing;
  for (const Finding& finding : picture.reading.findings) {
    if (finding.severity == Finding::kMissing) missing.push_back(finding.text);
  }
  for (const Blob& blob : blobs) {
    if (CanBeAdded(blob)) continue;
    missing.push_back("blob " + Quoted(blob.name) +
                      " is left out: its label does not begin with EMJ, or its name or its size "
                      "cannot be written");
  }
  return missing;
}

void RequireWritable(const Changes& changes) {
  const Document document = Apply(changes, {}, Picture());
  RequireReadable(document);
  XmlStringInfo text;
  BuildText(document, ToRecord(document)->attr, &text);
}

}  // namespace lumigram::cli
