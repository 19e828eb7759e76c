/* lumigram.h: metadata inside small emoji pictures.
 *
 * A GIF, PNG or JPEG picture can carry, besides its pixels, a short XML-like document with labels,
 * a category, a type and tags and, in GIF and PNG, named blobs of bytes. This header is all that a
 * C or C++ program needs to read and write them.
 *
 *   read a whole picture        OpenFile, GetPictureRecord, fclose
 *   write a whole picture       OpenFile, SetXmlStringToFile, fclose
 *   read one tag group          OpenFile, GetTagInfo, fclose
 *   read one blob               OpenFile, GetMemory, GetApplicationExtensionDataFrom...,
 *                               fclose, free
 *   read what a batch reads     OpenFile, GetXmlString, GetLabelInfo, CollectTagGroups,
 *                               GetElementContent, fclose
 *   list all blobs              OpenFile, ListBlobs, fclose
 *
 * and the same for a picture in memory:
 *
 *   find out its kind           GetFileTypeFromBytes
 *   read the whole picture      GetPictureRecordFromBytes
 *   write the whole picture     SetXmlStringToBytes, free
 *   read one blob               GetBlobFromBytes for its size, malloc, GetBlobFromBytes, free
 *   read what a batch reads     GetXmlStringFromBytes, then as above
 *   list all blobs              ListBlobsFromBytes
 *
 * Conventions, for everything below:
 *
 * - The header compiles as C11 and as C++20. All functions have C linkage, keep no state between
 *   calls, and may be called from any thread, unless two calls share a stream, a document or an
 *   output.
 * - A result is a signed 32-bit status unless a function says otherwise: 0 for success, a negative
 *   LumigramStatus for a failure. Each function lists the statuses that it can return.
 *   LumigramStatusText() has words for them.
 * - Records, buffers and streams belong to the caller. Nothing is kept after a call returns. No
 *   stream is closed; the program that opened it closes it with fclose().
 * - Texts are NUL-terminated bytes, UTF-8 by convention; no byte is translated or escaped. Sizes
 *   and lengths are in bytes, widths and heights in pixels. Characters, where a limit counts them,
 *   are those of GetStrLenUtf8().
 * - Texts are copied into outputs without a terminator: the zeros of a cleared output supply it. So
 *   the caller clears, before each picture: a document buffer, the results of a tag lookup, a
 *   TagCollection, the outputs of GetElementContent() and GetElementTagContent(), and of an
 *   AttrInfo the category, type, tags and blob entries. GetLabelInfo() clears the labels and counts
 *   of its record, and GetPictureRecord() its whole record and summary.
 * - After a failure the outputs hold what was stored before it.
 * - Readers want the stream at the start of the picture, and leave it where they stopped, even
 *   after a failure. Size queries say where they leave it.
 * - A pointer may be null only where a function says so or names the status for it.
 * - A picture in memory is given by its bytes and their number, at most 2,097,152; the bytes may be
 *   null when the number is 0. Nothing is written to them, and no byte past them is read. Another
 *   thread may change them during a call: the result is then a failure, or one that mixes old and
 *   new bytes, but no call reads or writes past what it was given. An empty picture is not waited
 *   for.
 */
#ifndef LUMIGRAM_H_
#define LUMIGRAM_H_

#include <assert.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#if defined(__GNUC__)
#define LUMIGRAM_API __attribute__((visibility("default")))
#else
#define LUMIGRAM_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- statuses -------------------------------------------------------------------------------- */

/* A code with several meanings is listed once. The function that returns it says which one
 * holds. */
enum LumigramStatus {
  kLumigramOk = 0,
  /* A size or a type cannot be had; an extraction has a null argument or an ordinary element over
   * 256 bytes; a stream refuses to seek back over a comment that is being rewritten. */
  kLumigramFailed = -1,
  kLumigramNoTags = -2,        /* neither the start tag nor the end tag is there; no such blob */
  kLumigramStartTagOnly = -3,  /* a start tag without its end tag */
  kLumigramEndTagOnly = -4,    /* an end tag without its start tag */
  kLumigramNoDocument = -5,    /* the picture carries no document */
  kLumigramNullArgument = -10, /* a required argument is null */
  kLumigramCannotOpen = -20,   /* the picture cannot be opened */
  kLumigramUnsupported = -21,  /* an unknown file type; a JPEG without a frame header */
  kLumigramMalformed = -30,    /* a damaged or truncated picture */
  kLumigramDimensions = -31,   /* a picture wider or higher than 960 pixels */
  kLumigramLabels = -40,       /* the labels of the document cannot be used */
  kLumigramTooLong = -41,      /* an element or the document is over its limit in bytes */
  kLumigramOverLimit = -42,    /* a name or note over 24 characters; a new picture over 2 MiB */
  kLumigramDuplicate = -50,    /* two blobs with one name */
  /* A bad argument, size, Java field or blob file; no memory; a picture that cannot be written. */
  kLumigramBadArgument = -99
};

/* Words for a status, for messages: a constant text, never null. Unknown codes have words, too. */
static inline const char* LumigramStatusText(int32_t status) {
  switch (status) {
    case kLumigramOk:
      return "ok";
    case kLumigramFailed:
      return "low-level failure";
    case kLumigramNoTags:
      return "element not found";
    case kLumigramStartTagOnly:
      return "end tag missing";
    case kLumigramEndTagOnly:
      return "start tag missing";
    case kLumigramNoDocument:
      return "no metadata document";
    case kLumigramNullArgument:
      return "required argument missing";
    case kLumigramCannotOpen:
      return "cannot be opened";
    case kLumigramUnsupported:
      return "unsupported file type";
    case kLumigramMalformed:
      return "damaged or truncated picture";
    case kLumigramDimensions:
      return "picture over 960 pixels";
    case kLumigramLabels:
      return "unusable labels";
    case kLumigramTooLong:
      return "text or document too long, or not writable";
    case kLumigramOverLimit:
      return "over 24 characters or over 2 MiB";
    case kLumigramDuplicate:
      return "duplicate blob name";
    case kLumigramBadArgument:
      return "bad argument, size, field or file";
    default:
      return "unknown status";
  }
}

/* ---- limits ---------------------------------------------------------------------------------- */

enum {
  kLumigramMaxPixels = 960,             /* width and height each */
  kLumigramMaxPictureBytes = 2097152,   /* 2 MiB, of a picture that is read or written */
  kLumigramMaxDocumentBytes = 10240,    /* of a document that is read; 10,239 when it is written */
  kLumigramDocumentBufferBytes = 10241, /* of a document buffer: a document and its terminator */
  kLumigramMaxCharacters = 24,          /* of a label's name and note, and of a tag name */
  kLumigramMaxTextBytes = 256,          /* of all texts but these: */
  kLumigramMaxContentBytes = 1024,      /* of tag contents and blob URIs */
  kLumigramMaxLabels = 10,
  kLumigramMaxTags = 100,     /* tag elements of a document, and blob entries of a record */
  kLumigramMaxTagGroups = 10, /* distinct tag names that a TagCollection keeps */
  kLumigramMaxGroupSize = 10, /* elements that it keeps of each; results of a tag lookup */
  kLumigramParts = 22         /* parts of speech, "none" included */
};

/* ---- records --------------------------------------------------------------------------------- */

/* The kind of a picture: by its file name extension, or by its first bytes if it is in memory. */
typedef int32_t FileType;
enum { kFileTypeUnknown = 0, kFileTypeGif = 1, kFileTypeJpeg = 2, kFileTypePng = 3 };

/* One tag element of a document: <tags name="tagName">tagElement</tags>. In use when tagName is not
 * empty. */
typedef struct TagEntry {
  char tagName[257];
  char tagElement[1025];
} TagEntry;

/* One blob: kept in the picture, or added to it. In use when binaryDataUri is not empty.
 *
 * To keep a blob that the picture carries: binaryDataUri "file://THIS/" and the blob's name,
 * fileName the name. Every blob whose stored name begins with fileName stays. labelName is not
 * used.
 *
 * To add a blob: binaryDataUri the path of a file that is not empty, fileName the new blob's name
 * (a GIF stores its first 255 bytes), labelName a label that begins "EMJ" (its first 11 bytes are
 * stored, padded with zeros). The names of two entries should not begin with each other: a blob is
 * found by the beginning of its name.
 *
 * An entry that does not hold this:
 *   an empty fileName        GIF: -99. PNG: stored, but only an empty name finds the blob
 *   an empty labelName       GIF: the entry is ignored. PNG: stored, and removed by the next write
 *   a label without "EMJ"    GIF: stored for good; each write with the entry adds another blob.
 *                            PNG: stored, and removed by the next write
 *   any entry, in a JPEG     ignored: a JPEG carries no blobs. Its tag is written */
typedef struct AppExtEntry {
  char labelName[257];
  char fileName[257];
  char binaryDataUri[1025];
} AppExtEntry;

/* The bytes of one new blob. bytes is null for an entry without bytes in memory. */
typedef struct BlobBytes {
  const uint8_t* bytes;
  size_t size;
} BlobBytes;

/* Where the bytes of a record's new blobs come from: element i of blobs has those of blob entry i.
 * Such an entry adds a blob, whatever its binaryDataUri is. An entry without bytes that names a
 * file is refused unless mayOpenFiles is 1: a server must not embed a file because a record from
 * elsewhere names it. All zero means no bytes and no files. */
typedef struct NewBlobs {
  const BlobBytes* blobs;
  uint32_t count; /* elements of blobs, 0 to 100 */
  int32_t mayOpenFiles;
} NewBlobs;

/* One blob of a picture. Texts end at their first NUL. */
typedef struct BlobInfo {
  char labelName[257];
  char fileName[257]; /* the first 256 bytes of the name */
  uint32_t size;      /* bytes of its data */
} BlobInfo;

/* Is called for each blob of a picture, in stored order. The blob is valid only during the call. */
typedef void (*BlobCallback)(void* context, const BlobInfo* blob);

/* The metadata of one picture. All zero means none. Each text is NUL-terminated within its array;
 * one without a terminator ends at the last byte of its array. Writing goes by the first byte of
 * each text, so entries in use need not be contiguous, and ignores the four counts. Reading sets
 * the counts, and fills entries from 0 on. */
typedef struct AttrInfo {
  int32_t labelCount; /* labels found, counted before their contents are checked */
  int32_t nameCount;  /* names accepted */
  char name[10][257];
  int32_t noteCount; /* labels whose note is accepted or absent */
  char note[10][257];
  int32_t partCount;  /* labels whose part of speech is accepted or absent */
  char part[10][257]; /* a stored name of GetPartName(), or empty */
  char category[257];
  char type[257];
  TagEntry tag[100];
  AppExtEntry appExt[100]; /* entry i belongs to tag entry i */
} AttrInfo;

/* A document that is to be written. */
typedef struct XmlStringInfo {
  int32_t length; /* bytes of text without its terminator; 0 means no document */
  char text[10244];
} XmlStringInfo;

/* The tag elements of one document, grouped by name. */
typedef struct TagCollection {
  char joinedNames[2570]; /* the distinct names in order of first appearance, joined by "," */
  int32_t groupCount;     /* distinct names, 0 to 10 */
  char groupName[10][257];
  int32_t groupSize[10];
  int32_t elementCount; /* elements kept, 0 to 100, in document order: */
  char tagName[100][257];
  char tagElement[100][1025];
} TagCollection;

/* A picture, and how many of its metadata a batch read withholds or a rewrite drops. All counts are
 * 0 for a picture of which a batch read delivers everything, and a rewrite of its record keeps
 * everything. What an AttrInfo can hold is in the record that comes with the summary; the rest is
 * counted only. */
typedef struct PictureSummary {
  FileType fileType;
  int32_t width; /* pixels; of a GIF picture the largest of screen and images */
  int32_t height;
  int32_t pop;         /* the pop flag, 1 or 0 */
  int32_t size;        /* bytes of the file */
  int32_t hasDocument; /* 1 or 0 */

  /* Labels without a name or with a text over its limit, and a root that is not closed. A batch
   * read delivers no label then, unless a name is merely empty. A label with a name of 1 to 256
   * bytes is in the record, with those of its other texts that fit. */
  int32_t refusedLabels;
  /* Labels after the tenth. Not in the record. */
  int32_t furtherLabels;
  /* Parts of speech that GetPartNo() does not know. In the record as stored. */
  int32_t unknownParts;
  /* Tags over a limit, or with a name that is not closed. A batch read delivers no tag then. In the
   * record if name and content fit their fields. */
  int32_t refusedTags;
  /* Tags with an eleventh name, with an empty name, beyond ten of a name or beyond 100. In the
   * record are up to 100 whose name is not empty. */
  int32_t droppedTags;
  /* 1 when the first tag is within the limits and has no content: a batch read then delivers the
   * names of the tags and none of the contents. In the record, like every other tag. */
  int32_t hiddenContents;
  /* A category or type over 256 bytes, or a second one. Not in the record. */
  int32_t refusedTexts;
  /* Texts, other than white space, between the elements or after the root. Not in the record. */
  int32_t strayTexts;
  /* Texts with bytes that belong to no character. In the record as stored. */
  int32_t invalidTexts;
  /* Texts with markup in them, which a batch read may take for elements. In the record. */
  int32_t textsWithMarkup;

  /* Documents after the first, blobs that no tag of the record refers to, and bytes after the end
   * of the picture. A rewrite removes them. */
  int32_t furtherDocuments;
  int32_t unnamedBlobs;
  int32_t bytesAfterEnd;
} PictureSummary;

static_assert(sizeof(AttrInfo) == 290344, "AttrInfo is a fixed layout that callers share");
static_assert(sizeof(XmlStringInfo) == 10248, "XmlStringInfo is a fixed layout that callers share");

/* ---- files ----------------------------------------------------------------------------------- */

/* Stores the kind that a path's extension names: ".gif", ".jpg", ".jpeg" or ".png" in any case,
 * from the last dot of the whole path. Returns 0; -1, with nothing stored, when an argument is null
 * or the extension is another one. */
LUMIGRAM_API int32_t GetFileType(const char* path, FileType* outType);

/* Opens a picture: modeIndex 0 to read it ("rb"), 1 to create or truncate it ("wb"). Stores the
 * kind and then the stream, which the caller closes. A path with surrogate pairs, as Java spells
 * characters outside the basic plane, is also tried in real UTF-8 when it cannot be opened as it
 * is. outStream must not be null. Returns
 *     0
 *   -99, nothing stored: path or outType is null, or modeIndex is above 1
 *   -21, nothing stored: an unknown extension
 *   -20, the kind and a null stream stored: the file cannot be opened */
LUMIGRAM_API int32_t OpenFile(const char* path, uint32_t modeIndex, FILE** outStream,
                              FileType* outType);

/* Stores the size of a file. The stream's position stays the same. Neither argument may be null.
 * Returns 0; -1 when the size cannot be had or is above 2,147,483,647. */
LUMIGRAM_API int32_t CommonGetFileSize(FILE* stream, int32_t* outSize);

/* Returns the size of a file and puts the stream at its start; -1 when stream is null, or the size
 * cannot be had or is above 2,147,483,647. */
LUMIGRAM_API int32_t GetFileLength(FILE* stream);

/* Stores a new block of the file's size, all zero, which the caller releases with free(). Returns
 * the size. Returns 0 when an argument is null or the size cannot be had, with nothing stored, and
 * when the file is empty or there is no memory, with null stored. The stream's position stays the
 * same. */
LUMIGRAM_API uint32_t GetMemory(FILE* stream, void** outBuffer);

/* ---- whole pictures -------------------------------------------------------------------------- */

/* Takes a whole picture apart. Fills attr with everything that the picture holds and an AttrInfo
 * can hold: labels, category, type, the tags in stored order and, for each tag that refers to a
 * blob of this picture, the entry of the same index that keeps the blob. Writing such a record back
 * keeps all of it, unless a text is over 24 characters: a batch read withholds it, the record has
 * it, and SetXmlStringToFile() refuses it. Fills summary with the picture's properties and with
 * counts of what a batch read withholds or a rewrite drops. Both are cleared first. Reads from the
 * start of the file, whatever the stream's position, which is unspecified afterwards. Returns
 *     0, even without a document
 *   -99: an argument is null, the kind is unknown, the size cannot be had or is above 2,097,152, or
 *        the stream cannot be positioned
 *   -30: a damaged or truncated picture; a picture of which only the document can be read
 *   -31, -41, -21, -99: as the reader of the kind, below */
LUMIGRAM_API int32_t GetPictureRecord(FILE* stream, FileType type, AttrInfo* attr,
                                      PictureSummary* summary);

/* Writes a record into the picture at path, which stream has open for reading at any position. The
 * document of the record replaces all old ones. Of the old blobs, those that the record keeps stay.
 * Everything else in the picture stays, byte for byte. Texts are not escaped: a text that holds the
 * end tag of its own element, or a tag name that holds ">, is cut there when it is read.
 *
 * The picture is replaced by a complete new file, by rename(): after a failure it is the old one,
 * and after a kill the old one or the new one. Exception: it is written in place when it has more
 * than one hard link, or when its folder, owner or file system does not let a new file take its
 * place. A write needs room for the new picture beside the old one, so a full disk refuses even the
 * removal of metadata.
 *
 * Afterwards stream still shows the old picture, unless it was written in place, and its position
 * is unspecified. Close it, and open the picture again before the next write: a second write from
 * the same stream loses the blobs of the first one, with status 0.
 *
 * Returns
 *     0
 *   -10: stream, path or attr is null
 *   -42: a name over 24 characters, or the note of a label with a name; a new picture over 2 MiB
 *   -41: the document would reach 10,240 bytes (in a PNG: 10,235)
 *   -99: an unknown kind, a source without a size, a blob file that is missing or empty, a new blob
 *        without a name in a GIF, no memory, or a picture that cannot be written
 *   -30: a damaged or truncated source
 *    -1: the stream refuses to seek back */
LUMIGRAM_API int32_t SetXmlStringToFile(FILE* stream, const char* path, const AttrInfo* attr,
                                        FileType fileType);

/* Reads the contents of the first ten elements of one tag group of a picture into results, which is
 * all zero. The list ends before a content over 1,024 bytes and after an empty one. Waits one
 * second before it reads an empty file. Returns 0, even when there is no such element; -99 when an
 * argument is null, the kind is unknown, the size cannot be had or is above 2,097,152, the picture
 * cannot be read or has no document, or tagName is over 255 bytes. */
LUMIGRAM_API int32_t GetTagInfo(FILE* stream, FileType fileType, const char* tagName,
                                char results[10][1025]);

/* ---- whole pictures in memory ---------------------------------------------------------------- */

/* Stores the kind that the first bytes of a picture show. Eight bytes are enough. Returns
 *     0
 *   -21: none of ours; the unknown kind is stored
 *   -99, nothing stored: outType is null, or bytes is null and size is not 0 */
LUMIGRAM_API int32_t GetFileTypeFromBytes(const uint8_t* bytes, size_t size, FileType* outType);

/* As GetXmlString(), which has the statuses, for a picture in memory. Does not wait. */
LUMIGRAM_API int32_t GetXmlStringFromBytes(const uint8_t* bytes, size_t size, FileType type,
                                           char* xmlBuf, int32_t* height, int32_t* width,
                                           int32_t* pop);

/* As GetPictureRecord(), which has the statuses, for a picture in memory. */
LUMIGRAM_API int32_t GetPictureRecordFromBytes(const uint8_t* bytes, size_t size, FileType type,
                                               AttrInfo* attr, PictureSummary* summary);

/* Builds the picture that SetXmlStringToFile() would write: the picture in memory with the metadata
 * of the record. Stores its bytes, in a new block that the caller releases with free(), and their
 * number; null and 0 after a failure. It is a new block because the size is known only when the
 * picture has been built, and the largest room would be 2 MiB for a picture of a few KiB. newBlobs
 * may be null. Returns
 *     0
 *   -10: attr, outBytes or outSize is null, or bytes is null and size is not 0
 *   -99: the source is empty or over 2,097,152 bytes; a new blob is empty, its file is missing or
 *        must not be opened; an unknown kind, a new blob without a name in a GIF, or no memory
 *   -42, -41, -30: as SetXmlStringToFile() */
LUMIGRAM_API int32_t SetXmlStringToBytes(const uint8_t* bytes, size_t size, FileType type,
                                         const AttrInfo* attr, const NewBlobs* newBlobs,
                                         uint8_t** outBytes, size_t* outSize);

/* ---- the document of a picture --------------------------------------------------------------- */

/* Reads the document of a picture of the given kind into xmlBuf (10,241 bytes, all zero), its
 * dimensions and, of a GIF, the pop flag (1 or 0; the other kinds leave pop unchanged). height,
 * width and pop start at 0 and must not be null. Waits one second before it reads an empty file.
 * Returns
 *     0 with a document
 *    -5 without one
 *   -99: stream or xmlBuf is null, the kind is unknown, or the size cannot be had or is above
 *        2,097,152
 *   otherwise the status of the reader of that kind, below */
LUMIGRAM_API int32_t GetXmlString(FILE* stream, FileType type, char* xmlBuf, int32_t* height,
                                  int32_t* width, int32_t* pop);

/* Reads the document of a GIF picture, the largest width and height among its screen and images,
 * and its pop flag. Returns
 *     0, even without a document (xmlBuf stays empty)
 *   -99: stream or xmlBuf is null, or the stream cannot be positioned
 *   -30: a truncated picture
 *   -31: a width or height over 960; a screen's is stored all the same
 *   -41: a sub-block of a comment is longer than what the document leaves of 10,240 bytes */
LUMIGRAM_API int32_t GetXmlStringFromGif(FILE* stream, char* xmlBuf, int32_t* height,
                                         int32_t* width, int32_t* pop);

/* Reads the document of a PNG picture and the dimensions of its header. Returns
 *     0, even without a document
 *   -99: stream or xmlBuf is null, the stream cannot be positioned, or a text chunk is shorter than
 *        its keyword or claims more than the file has
 *   -30: a wrong signature, or a truncated picture
 *   -31: a width or height over 960; both are stored all the same
 *   -41: a text with our keyword that is empty or over 10,240 bytes */
LUMIGRAM_API int32_t GetXmlStringFromPng(FILE* stream, char* xmlBuf, uint32_t* height,
                                         uint32_t* width);

/* Reads the document of a JPEG picture and the dimensions of its frame header. The stream need not
 * be seekable. Returns
 *     0, even without a document
 *   -21: the picture ends without a frame header
 *   -99: stream or xmlBuf is null
 *   -30: a damaged or truncated picture
 *   -31: a width or height over 960; nothing is stored
 *   -41: a comment over 10,240 bytes, or with a length field of 0 or 1 */
LUMIGRAM_API int32_t GetXmlStringFromJpg(FILE* stream, char* xmlBuf, uint32_t* height,
                                         uint32_t* width);

/* The size in bytes of the colour table that the packed byte of a GIF descriptor announces: 0, or 6
 * to 768. */
LUMIGRAM_API uint32_t GetSizeColorTable(uint32_t packed);

/* Returns 0 when a value of a GIF creator comment may hold the byte (an ASCII letter or digit, ".",
 * "_" or "-"), else -1. */
LUMIGRAM_API int32_t IsAcceptPopCommentData(int32_t byte);

/* ---- blobs ----------------------------------------------------------------------------------- */

/* Stores how many bytes of a GIF file its blobs take: all of them when fileName is null, else the
 * first one whose name begins with fileName, 0 when there is none. On success the stream is back
 * where it was. Returns
 *     0
 *   -99: stream or size is null, fileName is over 12,289 bytes, or the stream cannot be positioned
 *   -30: a truncated picture; size holds what was counted before */
LUMIGRAM_API int32_t GetSizeApplicationExtensionFromGif(FILE* stream, uint32_t* size,
                                                        const char* fileName);

/* Copies one blob of a GIF picture to data, and stores its length: that of the first application
 * extension whose identifier begins with label and whose name begins with fileName, 0 when there is
 * none. data must have room for the blob; as many bytes as the file has are always enough. Returns
 *     0
 *   -99: an argument is null, label or fileName is over 12,289 bytes, or the stream cannot be
 *        positioned
 *   -30: a truncated picture
 *   -31: a screen wider or higher than 960 pixels */
LUMIGRAM_API int32_t GetApplicationExtensionDataFromGif(FILE* stream, uint8_t* data,
                                                        uint32_t* dataLength, const char* label,
                                                        const char* fileName);

/* The size query for PNG. Returns
 *     0
 *   -99: stream or size is null, fileName is over 65,536 bytes, or the stream cannot be positioned
 *   -30: a truncated picture; size holds what was counted before */
LUMIGRAM_API int32_t GetSizeApplicationExtensionFromPng(FILE* stream, uint32_t* size,
                                                        const char* fileName);

/* The copy for PNG. Returns
 *     0
 *   -99: an argument is null, label or fileName is over 65,536 bytes, the stream cannot be
 *        positioned, or the blob claims more bytes than the file has
 *   -30: a wrong signature, or a truncated picture
 *   -31: a width or height over 960 */
LUMIGRAM_API int32_t GetApplicationExtensionDataFromPng(FILE* stream, uint8_t* data,
                                                        uint32_t* dataLength, const char* label,
                                                        const char* fileName);

/* Copies one blob of a picture in memory to data, which has room for capacity bytes, and stores how
 * many bytes were copied. With data null, stores the blob's size only, and capacity is not used.
 * Finds the blob as GetApplicationExtensionDataFromGif() or ...FromPng() does. Returns
 *     0
 *    -2: there is no such blob; a JPEG has none
 *   -99: dataLength, label or fileName is null, or bytes is null and size is not 0; the picture is
 *        over 2,097,152 bytes; an unknown kind; the blob is larger than capacity; and as the copy
 *        of the kind
 *   -30, -31: as the copy of the kind */
LUMIGRAM_API int32_t GetBlobFromBytes(const uint8_t* bytes, size_t size, FileType type,
                                      const char* label, const char* fileName, uint8_t* data,
                                      size_t capacity, size_t* dataLength);

/* Calls back for each blob whose label begins "EMJ" and whose lengths fit the picture. A JPEG has
 * none. Reads from the start of the file, whatever the stream's position, which is unspecified
 * afterwards. After a failure, the blobs before the damage have been reported. Returns
 *     0
 *   -99: stream or callback is null, the kind is unknown, the size cannot be had or is above
 *        2,097,152, or the stream cannot be positioned
 *   -30: a damaged or truncated picture */
LUMIGRAM_API int32_t ListBlobs(FILE* stream, FileType type, BlobCallback callback, void* context);

/* The same for a picture in memory. */
LUMIGRAM_API int32_t ListBlobsFromBytes(const uint8_t* bytes, size_t size, FileType type,
                                        BlobCallback callback, void* context);

/* ---- parts of a document --------------------------------------------------------------------- */

/* The documents below are NUL-terminated in a buffer of the caller, of at most 10,241 bytes. The
 * functions change them in place. */

/* The status of two searches, each a position or null: 0 for both found, -2 for neither, -3 for
 * start only, -4 for end only. */
LUMIGRAM_API int32_t CheckTagState(const char* start, const char* end);

/* The number of characters in a UTF-8 text: printable ASCII and lead bytes count, control
 * characters do not. 0 for null. */
LUMIGRAM_API uint32_t GetStrLenUtf8(const char* text);

/* Copies the content of the first element with the given tags to out, and cuts the element out of
 * the document. With out null it changes nothing, and only reports whether there is such an
 * element. A content has at most 256 bytes, that of a tag group (a start tag longer than 12 bytes
 * that begins <tags name=") at most 1,024. out holds one byte more, all zero. A failure changes
 * nothing. Returns
 *     0
 *    -1: another argument is null, or the content is over its limit or overlaps the start tag
 *    -2: there is no start tag
 *    -3: no end tag follows it */
LUMIGRAM_API int32_t GetElementContent(char* doc, const char* startTag, const char* endTag,
                                       char* out);

/* Copies name and content of the first tag group, and cuts the group out of the document. startTag
 * is <tags name=" and endTag </tags>. nameOut holds 257 and contentOut 1,025 bytes, all zero. With
 * either null it changes nothing, and only reports the status of the search. A failure does not
 * change the document. Returns
 *     0
 *    -1: another argument is null
 *    -2, -3, -4: as CheckTagState(); both tags are searched from the start of the document
 *   -41: the name is over 256 bytes or 24 characters, the content over 1,024 bytes, or the start
 *        tag is malformed. A name over 24 characters stays in nameOut */
LUMIGRAM_API int32_t GetElementTagContent(char* doc, const char* startTag, const char* endTag,
                                          char* nameOut, char* contentOut);

/* Copies the labels of a document into attr and cuts the document after its first </emoji>. Clears
 * what it stores: the counts start at 0, an entry is all zero before its label is copied, and the
 * texts of unused entries are empty. The caller need not clear the labels of a record that is used
 * for one picture after another, but clears its category, type, tags and blobs, and the document
 * buffer. Returns 0 with 1 to 10 labels; -40 when the document does not begin with <emoji>, is not
 * closed, has no label, or has one that is malformed or over its limits; -99 when an argument is
 * null, with attr unchanged. After -40 the counts say how many labels were found and accepted. */
LUMIGRAM_API int32_t GetLabelInfo(char* doc, AttrInfo* attr);

/* Takes at most 100 tag elements out of the document and groups them by name: at most 10 names, 10
 * elements each, the rest dropped. One element over its limits clears joinedNames and every entry
 * of tagName and tagElement; the counts keep the numbers that were reached. Neither argument may be
 * null. The caller clears tags before each document, as it clears the results of GetTagInfo(). */
LUMIGRAM_API void CollectTagGroups(char* doc, TagCollection* tags);

/* The stored name of a part of speech, 1 to 21: a constant text. Empty for every other number. */
LUMIGRAM_API const char* GetPartName(uint32_t index);

/* The number of a stored part-of-speech name; 0 for null, for the empty text, and for a name that
 * is not in the table. */
LUMIGRAM_API int32_t GetPartNo(const char* name);

#ifdef __cplusplus
}
#endif

#endif /* LUMIGRAM_H_ */
