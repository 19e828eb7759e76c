/**
 * Labels, tags and blobs of small emoji pictures (GIF, PNG and JPEG files), in types.
 *
 * <p>Start with {@link lumigram.Picture}, which reads pictures, one or many, and writes them. Their
 * metadata is a {@link lumigram.PictureInfo}. A picture follows what it writes; every other object is
 * immutable. All may be used from any thread.
 *
 * <p>A {@link lumigram.PictureException} reports a failure for a reason outside the program. Null
 * is never an argument or a result, except where a method says so.
 */
package lumigram;
