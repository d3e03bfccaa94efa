// The pdfmail library's first file; removed once the JPEG encoder lands.
namespace ff {
int pdfMailLibraryVersion() { return 1; }
} // namespace ff
