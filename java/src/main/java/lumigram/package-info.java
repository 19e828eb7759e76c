/**
 * Labels, tags and blobs of small emoji pictures (GIF, PNG and JPEG files), in types.
 *
 * <p>Start with {@link lumigram.Picture}, which reads pictures, one or many, and writes them. Their
 * metadata is a {@link lumigram.PictureInfo}. Every object is immutable, may be used from any
 * thread, and does not change when the file does. The caller must not let two calls work on the
 * same file at the same time.
 *
 * <p>A {@link lumigram.PictureException} reports a failure for a reason outside the program. Null
 * is never an argument or a result, except where a method says so.
 */
package lumigram;
