// The tag groups of a document, for a batch read.
