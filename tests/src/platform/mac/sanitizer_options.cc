// Options that the sanitizers read from the program.

extern "C" {

// Whole stacks: the system's libraries have no frame pointers, and all objects come from one of
// them.
const char* __asan_default_options() {
  return "fast_unwind_on_malloc=0";
}

// Kept by what is not ours: the Objective-C runtime keeps what it learns of classes and what they
// set up when they are first used, logging and the address books the local time zone; a URL that
// raises while it is made is never released.
const char* __lsan_default_suppressions() {
  return "leak:libobjc.so\n"
         "leak:NSLogv\n"
         "leak:libAddresses.so\n"
         "leak:FilesMac_APathThatCannotBeConvertedLeavesTheUrlAndIsLogged\n";
}

}  // extern "C"
