/* Metadata of small emoji pictures: GIF, PNG and JPEG files that carry, besides their pixels, a
 * short XML-like document rooted at <emoji> and, in GIF and PNG, named blobs of bytes.
 *
 * Conventions, said once for everything below:
 *
 * - This header compiles as C11 and as C++20. Every function has C linkage, keeps no state between
 * calls, and may be called from any thread, as long as two calls do not share a stream, a document
 * or an output.
 * - Results are signed 32-bit statuses unless a function says otherwise: 0 for success, a negative
 * LumigramStatus for a failure. Each function lists the statuses it can return.
 * LumigramStatusText() has words for each.
 * - Every record, buffer and stream belongs to the caller. Nothing is kept after a call returns. A
 * stream is never closed here; who opened it closes it with fclose().
 * - The caller clears outputs to zero before each call. Texts are copied into them without a
 * terminator: the zeros behind them supply it. After a failure the outputs hold whatever was stored
 * before it.
 * - Texts are NUL-terminated bytes, UTF-8 by convention; no byte is translated on the way in or
 * out. Sizes and lengths are in bytes. Widths and heights are in pixels. Characters, where a limit
 * counts them, are those of GetStrLenUtf8().
 * - The readers want the stream at the start of the picture and leave it where they stopped, on
 * success and on failure. The queries say where they leave it.
 * - Pointers may be null only where a function says so, or names the status for it.
 */
#ifndef LUMIGRAM_H_
#define LUMIGRAM_H_

#include <assert.h>
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

/* ------------------------------------------------------------------------------------------------
 * statuses */

/* A code that has two meanings stands once here; what it means is said by the function that returns
 * it. */
enum LumigramStatus {
  kLumigramOk = 0,
  /* A size query or a type lookup failed, an extraction had a null argument or an ordinary element
   * over 256 bytes, or a stream refused to go back over a comment that is being rewritten. */
  kLumigramFailed = -1,
  kLumigramNoTags = -2,       /* neither the start tag nor the end tag was found */
  kLumigramStartTagOnly = -3, /* a start tag without its end tag */
  kLumigramEndTagOnly = -4,   /* an end tag without its start tag */
  kLumigramNoDocument = -5,   /* the picture carries no metadata document */
  kLumigramNullArgument = -10,
  kLumigramCannotOpen = -20,
  kLumigramUnsupported =
      -21, /* not one of the supported extensions, or a JPEG without a frame header */
  kLumigramMalformed = -30,  /* a damaged or truncated picture */
  kLumigramDimensions = -31, /* a picture wider or higher than 960 pixels */
  kLumigramLabels = -40,     /* the labels of the document cannot be used */
  kLumigramTooLong = -41,    /* an element or the document is over its limit in bytes */
  kLumigramOverLimit = -42,  /* a name or note over 24 characters, or a new picture over 2 MiB */
  kLumigramDuplicate = -50,  /* two blobs with the same file name */
  kLumigramBadArgument =
      -99 /* bad argument, file size, Java field or blob file; no memory; a failed write */
};

/* Words for a status, for messages: a constant text, never null. Unknown codes have words too. */
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

/* --------------------------------------------------------------------------------------------------
 * limits */

enum {
  kLumigramMaxPixels = 960,           /* width and height each */
  kLumigramMaxPictureBytes = 2097152, /* 2 MiB, of a picture that is read or written */
  kLumigramMaxDocumentBytes =
      10240, /* of a document that is read; one that is written has at most 10,239 */
  kLumigramDocumentBufferBytes =
      10241, /* what a document buffer must hold: a document and its terminator */
  kLumigramMaxCharacters =
      24, /* of a label's name and note, and of a tag name that is read in a batch */
  kLumigramMaxTextBytes =
      256, /* of names, notes, parts of speech, category, type, tag and file names */
  kLumigramMaxContentBytes = 1024, /* of tag contents and blob URIs */
  kLumigramMaxLabels = 10,
  kLumigramMaxTags = 100,     /* tag elements of a document, and blobs of a record */
  kLumigramMaxTagGroups = 10, /* distinct tag names that a TagCollection keeps, */
  kLumigramMaxGroupSize = 10, /* elements it keeps for each, and results of a tag lookup */
  kLumigramParts = 22         /* entries of the part-of-speech table, "none" included */
};

/* -------------------------------------------------------------------------------------------------
 * records */

/* A picture's container, by the extension of its file name only. */
typedef int32_t FileType;
enum { kFileTypeUnknown = 0, kFileTypeGif = 1, kFileTypeJpeg = 2, kFileTypePng = 3 };

/* One tag element of a document: <tags name="tagName">tagElement</tags>. In use when tagName is not
 * empty. */
typedef struct TagEntry {
  char tagName[257];
  char tagElement[1025];
} TagEntry;

/* One blob. In use when binaryDataUri is not empty. */
typedef struct AppExtEntry {
  char labelName[257]; /* its first 11 bytes are stored, padded with zeros; "EMJ" at the start marks
                          a blob */
  char fileName[257];  /* the blob's name: the text after the last "/" of binaryDataUri */
  char binaryDataUri[1025]; /* "file://THIS/" and a name: kept in this picture; else the path of a
                               file to embed */
} AppExtEntry;

/* The metadata of one picture. All zero means none. Texts are NUL-terminated within their arrays;
 * one without a terminator ends at its array's last byte. A writer goes by the first byte of each
 * text (entries in use need not be contiguous) and ignores the four counts; a reader sets the
 * counts and fills entries from 0 on. */
typedef struct AttrInfo {
  int32_t labelCount; /* labels met, counted before their contents are checked */
  int32_t nameCount;  /* names accepted */
  char name[10][257];
  int32_t noteCount; /* labels whose note was accepted or absent */
  char note[10][257];
  int32_t partCount;  /* labels whose part of speech was accepted or absent */
  char part[10][257]; /* a name of the part-of-speech table, or empty */
  char category[257];
  char type[257];
  TagEntry tag[100];
  AppExtEntry appExt[100]; /* entry i belongs to tag entry i */
} AttrInfo;

/* A document that is to be written. */
typedef struct XmlStringInfo {
  int32_t length; /* bytes of text, terminator not counted; 0 means no document */
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

static_assert(sizeof(AttrInfo) == 290344, "AttrInfo is a fixed layout that callers share");
static_assert(sizeof(XmlStringInfo) == 10248, "XmlStringInfo is a fixed layout that callers share");

/* ---------------------------------------------------------------------------------------------
 * file access */

/* Stores the type that the path's extension names: ".gif", ".jpg", ".jpeg" or ".png", in any case,
 * from the last dot of the whole path. Returns 0; -1 (nothing stored) when an argument is null or
 * the extension is none of these. */
LUMIGRAM_API int32_t GetFileType(const char* path, FileType* outType);

/* Opens a picture: modeIndex 0 for reading ("rb"), 1 to create or truncate ("wb"). Stores the type,
 * then the stream, which the caller closes. A path that Java delivers with surrogate pairs (two
 * three-byte sequences) and that cannot be opened so is tried in its UTF-8 spelling. outStream must
 * not be null. Returns 0; -99 (nothing stored) when path or outType is null or modeIndex is above
 * 1; -21 (nothing stored) when the extension is not supported; -20 (null stored as the stream, the
 * type stored) when the file cannot be opened. */
LUMIGRAM_API int32_t OpenFile(const char* path, uint32_t modeIndex, FILE** outStream,
                              FileType* outType);

/* Stores the file's size. The stream's position is the same afterwards. Neither argument may be
 * null. Returns 0; -1 when the size cannot be had or is above 2,147,483,647. */
LUMIGRAM_API int32_t CommonGetFileSize(FILE* stream, int32_t* outSize);

/* Returns the file's size and puts the stream at its start; -1 when stream is null, or the size
 * cannot be had or is above 2,147,483,647. */
LUMIGRAM_API int32_t GetFileLength(FILE* stream);

/* Stores a new block of the file's size, all zero, which the caller releases with free() on every
 * path. Returns that size; 0 when an argument is null, the size cannot be had, the file is empty
 * (null is stored), or there is no memory (null is stored). The stream's position is the same
 * afterwards. */
LUMIGRAM_API uint32_t GetMemory(FILE* stream, void** outBuffer);

/* -------------------------------------------------------------------------------------------------
 * readers */

/* Reads the document of a picture of the given type, at most 2 MiB, into xmlBuf (10,241 bytes, all
 * zero), and its dimensions, and for GIF the pop flag (1 or 0). pop keeps its value for JPEG and
 * PNG. height, width and pop start at 0 and must not be null. Waits one second before it reads an
 * empty file. Returns 0 with a document; -5 without one; -99 when stream or xmlBuf is null, the
 * type is unknown, or the size cannot be had or is above 2,097,152; otherwise the status of the
 * reader of that type, below. */
LUMIGRAM_API int32_t GetXmlString(FILE* stream, FileType type, char* xmlBuf, int32_t* height,
                                  int32_t* width, int32_t* pop);

/* Reads the document of a GIF picture, the largest width and height among its screen and images,
 * and its pop flag. Returns 0, also without a document (xmlBuf stays empty); -99 when stream or
 * xmlBuf is null or the stream cannot be positioned; -30 for a truncated picture; -31 for a width
 * or height over 960 (that of the screen is stored all the same); -41 when a comment would take the
 * document over 10,240 bytes. */
LUMIGRAM_API int32_t GetXmlStringFromGif(FILE* stream, char* xmlBuf, int32_t* height,
                                         int32_t* width, int32_t* pop);

/* Reads the document of a PNG picture and the dimensions of its header.
 * Returns 0, also without a document; -99 when stream or xmlBuf is null, the stream cannot be
 * positioned, or a text chunk claims more than the file has; -30 for a wrong signature or a
 * truncated picture; -31 for a width or height over 960 (both are stored all the same); -41 for a
 * text of this system that is empty or over 10,240 bytes. */
LUMIGRAM_API int32_t GetXmlStringFromPng(FILE* stream, char* xmlBuf, uint32_t* height,
                                         uint32_t* width);

/* Reads the document of a JPEG picture and the dimensions of its frame header. The stream need not
 * be seekable. Returns 0, also without a document; -21 when the picture ends without a frame
 * header; -99 when stream or xmlBuf is null; -30 for a malformed or truncated picture; -31 for a
 * width or height over 960 (not stored); -41 for a comment over 10,240 bytes or with an impossible
 * length. */
LUMIGRAM_API int32_t GetXmlStringFromJpg(FILE* stream, char* xmlBuf, uint32_t* height,
                                         uint32_t* width);

/* The size in bytes of the colour table that a GIF descriptor's packed byte announces: 0, or 6 to
 * 768. */
LUMIGRAM_API uint32_t GetSizeColorTable(uint32_t packed);

/* Returns 0 when the byte may stand in a value of a GIF creator comment (a letter or digit of
 * ASCII, ".", "_" or
 * "-"), else -1. */
LUMIGRAM_API int32_t IsAcceptPopCommentData(int32_t byte);

/* ---------------------------------------------------------------------------------------------------
 * blobs */

/* Stores how many bytes of a GIF file its blobs take: all of them when fileName is null, else the
 * first whose name begins with fileName (0 when none does). On success the stream is back where it
 * was. Returns 0; -99 when stream or size is null, fileName is over 12,289 bytes, or the stream
 * cannot be positioned; -30 for a truncated picture. After a failure size holds what was counted so
 * far. */
LUMIGRAM_API int32_t GetSizeApplicationExtensionFromGif(FILE* stream, uint32_t* size,
                                                        const char* fileName);

/* Copies one blob of a GIF picture to data, which must hold it (as many bytes as the file has
 * always do), and stores its length: that of the first application extension whose identifier
 * begins with label and whose name begins with fileName; length 0 when there is none. Returns 0;
 * -99 when an argument is null, label or fileName is over 12,289 bytes, or the stream cannot be
 * positioned; -30 for a truncated picture; -31 for a screen wider or higher than 960 pixels. */
LUMIGRAM_API int32_t GetApplicationExtensionDataFromGif(FILE* stream, uint8_t* data,
                                                        uint32_t* dataLength, const char* label,
                                                        const char* fileName);

/* The same size query for PNG; fileName is limited to 65,536 bytes. -99 also when a seek fails. */
LUMIGRAM_API int32_t GetSizeApplicationExtensionFromPng(FILE* stream, uint32_t* size,
                                                        const char* fileName);

/* The same copy for PNG; label and fileName are limited to 65,536 bytes each. -99 also for a blob
 * that claims more bytes than the file has, -30 also for a wrong signature. */
LUMIGRAM_API int32_t GetApplicationExtensionDataFromPng(FILE* stream, uint8_t* data,
                                                        uint32_t* dataLength, const char* label,
                                                        const char* fileName);

/* --------------------------------------------------------------------------------------------------
 * document */

/* The documents below are NUL-terminated in a caller's buffer of at most 10,241 bytes, and are
 * changed in place. */

/* What two searches found (positions or null): 0 both, -2 neither, -3 only start, -4 only end. */
LUMIGRAM_API int32_t CheckTagState(const char* start, const char* end);

/* The number of characters in a UTF-8 text: printable ASCII and lead bytes count, control
 * characters do not. 0 for null. */
LUMIGRAM_API uint32_t GetStrLenUtf8(const char* text);

/* Copies the content of the first startTag ... endTag element to out and cuts the element out of
 * the document. With out null it only tells whether there is one. At most 256 bytes, or 1,024 for a
 * tag group (a start tag longer than 12 bytes that begins <tags name="); out holds one more, all
 * zero. Returns 0; -1 when another argument is null, or the content is over its limit or overlaps
 * the start tag; -2 when the start tag is missing; -3 when no end tag follows it. A failure changes
 * nothing. */
LUMIGRAM_API int32_t GetElementContent(char* doc, const char* startTag, const char* endTag,
                                       char* out);

/* Copies name and content of the first tag group, and cuts it out of the document. startTag is
 * <tags name=" and endTag
 * </tags>; nameOut holds 257 and contentOut 1,025 bytes, all zero. With either null it only tells
 * the search status. Returns 0; -1 when another argument is null; -2, -3 or -4 as CheckTagState(),
 * both tags searched from the start; -41 when the name is over 256 bytes or 24 characters, the
 * content over 1,024 bytes, or the start tag malformed. A failure does not change the document; a
 * name over 24 characters stays in nameOut. */
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

/* Reads the contents of the first ten elements of one tag group of a picture into results, which is
 * all zero. The list ends at an empty content, or one over 1,024 bytes. Waits one second before it
 * reads an empty file. Returns 0, also when none was found; -99 when an argument is null, the type
 * is unknown, the size cannot be had or is above 2,097,152, the picture cannot be read or has no
 * document, or tagName is over 255 bytes. */
LUMIGRAM_API int32_t GetTagInfo(FILE* stream, FileType fileType, const char* tagName,
                                char results[10][1025]);

/* The stored name of a part of speech, 1 to 21: a constant text; the empty text for every other
 * number. */
LUMIGRAM_API const char* GetPartName(uint32_t index);

/* The number of a stored part-of-speech name; 0 for null, for the empty text, and for one that is
 * not in the table. */
LUMIGRAM_API int32_t GetPartNo(const char* name);

/* -----------------------------------------------------------------------------------------------------
 * writing */

/* Writes the record into the picture at path, which stream holds open for reading (its position
 * does not matter, and is unspecified afterwards). The old document goes, the new one comes; of the
 * old blobs those stay that a "file://THIS/" URI names; everything else in the picture stays as it
 * is. The picture is replaced only by a complete new one: after a failure, or when the process is
 * killed, it is the old one, except where it can only be written in place (more than one hard link,
 * or a folder or owner that does not let a new file take its place). Returns 0; -10 when stream,
 * path or attr is null; -42 for a name or note over 24 characters, or a new picture over 2 MiB; -41
 * for a document that would reach 10,240 bytes (PNG: over 10,234); -99 for an unknown type, a
 * source without a size, a blob file that is missing or empty, no memory, or a picture that cannot
 * be written; -30 for a malformed source; -1 when the source stream refuses to go back. */
LUMIGRAM_API int32_t SetXmlStringToFile(FILE* stream, const char* path, const AttrInfo* attr,
                                        FileType fileType);

#ifdef __cplusplus
}
#endif

#endif /* LUMIGRAM_H_ */
