// Read by the thread sanitizer's runtime when a test program starts. Debian's TBB is built without
// the sanitizer, which therefore does not see how TBB synchronises its own memory: a task handed
// from the thread that makes it (in prepare_task) to the one that runs it, the counter a group
// waits on, the scheduler's slots. What the tasks work on stays watched.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "race:prepare_task\n"
           "race:tbb::detail::d1::wait_context::\n"
           "called_from_lib:libtbb.so\n";
}
