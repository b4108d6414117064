// What the sanitizers are told in tests that run the framework itself: its library is not built
// for them, and what they report from inside it says nothing about this program.
extern "C" {

const char* __asan_default_options();
const char* __lsan_default_suppressions();
const char* __tsan_default_options();

const char* __asan_default_options() {
  return "new_delete_type_mismatch=0";
}

const char* __lsan_default_suppressions() {
  return "leak:libQt6WebEngineCore\n"
         "leak:libQt6Gui\n"
         "leak:libfontconfig\n";
}

const char* __tsan_default_options() {
  return "ignore_noninstrumented_modules=1 report_thread_leaks=0";
}
}
