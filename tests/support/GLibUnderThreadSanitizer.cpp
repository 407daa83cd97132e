// GLib's libraries are not built for the thread sanitizer, and their locks are futexes of their own, which it does not
// see: what they do under these locks looks like a race to it. What the project's own code does is checked still.
extern "C" const char* __tsan_default_suppressions();

extern "C" const char* __tsan_default_suppressions() {
  return "called_from_lib:libglib-2.0.so\n"
         "called_from_lib:libgobject-2.0.so\n"
         "called_from_lib:libgio-2.0.so\n"
         "called_from_lib:libsecret-1.so\n"
         "race:libsecret-1.so\n"
         "mutex:libsecret-1.so\n";
}
