// Options that the sanitizers read from the program.

extern "C" {

// Complete stacks are needed to recognise leaks: the system's libraries, which create all objects,
// have no frame pointers.
const char* __asan_default_options() {
  return "fast_unwind_on_malloc=0";
}

// Leaks of the system's libraries: the Objective-C runtime keeps its class data, logging and the
// address books keep the local time zone, and a URL whose creation raises is never released.
const char* __lsan_default_suppressions() {
  return "leak:libobjc.so\n"
         "leak:NSLogv\n"
         "leak:libAddresses.so\n"
         "leak:FilesMac_APathThatCannotBeConvertedLeavesTheUrlAndIsLogged\n";
}

}  // extern "C"
