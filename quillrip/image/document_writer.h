#pragma once

#include "quillrip/base/outcome.h"
#include "quillrip/base/page_bitmap.h"
#include "quillrip/image/document_options.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip {

/// Finished pages in, image files out. Pages are encoded on threads of the writer's own while the caller draws the
/// next one.
///
/// No file is seen under its name before commit(): what is written has no name until then, or a hidden one next to
/// it where the system has no unnamed files. All functions are for one thread, the one that draws.
class DocumentWriter {
public:
    /// Refused when nothing can be written there: the folder is missing or not writable, the name is a folder's or
    /// another thing's that is no file, the file is write-protected.
    static Made<DocumentWriter> create(const DocumentOptions& options);

    /// Without commit() nothing is left behind, and former files of the same names are untouched.
    ~DocumentWriter();
    DocumentWriter(const DocumentWriter&) = delete;
    DocumentWriter& operator=(const DocumentWriter&) = delete;

    /// Takes a page and returns while it is being encoded; waits while two pages (or one, when they are large) are in
    /// work. Pages of one document may differ in size, resolution and format. False, with reason(), when the page
    /// does not fit the file type or a former one could not be written; nothing is written from then on.
    [[nodiscard]] bool addPage(PageBitmap&& page);

    /// Waits for all pages and makes their files appear. False, with reason(), when that failed: then none of this
    /// document's files is there and former files are as they were. A document without pages commits no file.
    [[nodiscard]] bool commit();

    /// Descriptors of the folders that files are made in: what a sandbox has to leave open.
    std::vector<int> folders() const;

    /// What all files together may have from now on.
    void setMostBytes(std::uint64_t bytes);
    /// The failure is that of a limit, of memory or of setMostBytes(), and not of the files.
    bool isLimitExceeded() const;

    /// What went wrong, as a sentence without full stop; begins with the file's name when that is not the document's
    /// own path. Empty while all is well.
    const std::string& reason() const;

    /// Pages that were taken in and, after commit(), are in the files.
    int pageCount() const;

private:
    class Implementation;
    explicit DocumentWriter(std::unique_ptr<Implementation> implementation);

    std::unique_ptr<Implementation> m_implementation;
};

} // namespace quillrip
