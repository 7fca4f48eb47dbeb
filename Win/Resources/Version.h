// The version of the programs, for their version resources (one place: scripts/package reads it
// here too).
#define VLR_VERSION_NUMBERS 6, 4, 3, 1
#define VLR_VERSION_TEXT "6.4.3-1"
