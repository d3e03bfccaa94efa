// The export library's first file; removed once a writer lands.
namespace ff {
int exportLibraryVersion() { return 1; }
} // namespace ff
