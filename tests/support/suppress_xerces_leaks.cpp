/// Read by the leak checker of sanitizer builds: what Xerces leaks by itself. Only blocks that Xerces allocated and
/// dropped match; ours pass through its frames nowhere.
extern "C" const char* __lsan_default_suppressions();

extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libxerces-c\n";
}
