/**
 * Labels, tags and blobs of small emoji pictures (GIF, PNG and JPEG files), in types.
 *
 * <p>{@link lumigram.Picture} is where to begin: it reads pictures, one or many, and writes them.
 * {@link lumigram.PictureInfo} is what they carry. Nothing here keeps state: every object is
 * immutable, may be used from any thread, and shows what was true when it was made. Two calls that
 * work on the same file at the same time are the caller's to keep apart.
 *
 * <p>What fails for a reason outside the program is a {@link lumigram.PictureException}. Null is
 * never an argument or a result, except where a method says so.
 */
package lumigram;
