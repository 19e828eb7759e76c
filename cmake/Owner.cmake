# What the owner of the project replaces before the first release: nothing else names these things.
set(LUMIGRAM_MAVEN_GROUP lumigram)
set(LUMIGRAM_OWNER "Lumigram developers")
set(LUMIGRAM_EMAIL lumigram@example.org)
set(LUMIGRAM_HOMEPAGE https://lumigram.invalid/)
set(LUMIGRAM_LICENSE "No licence was chosen yet")
