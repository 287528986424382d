#pragma once

#include "quillrip/image/output_file.h"

#include <memory>
#include <string>
#include <vector>

namespace quillrip {

/// The files of one document, written one after the other, which appear together at the end or not at all.
///
/// Each file stays open, because it has no name, until then. A process may open some hundred files only, so the ones
/// beyond `openFiles` are gathered in one further unnamed file and copied out of it at the end.
class OutputFiles {
public:
    explicit OutputFiles(std::size_t openFiles = 200, OutputFile::Naming naming = OutputFile::Naming::Unnamed)
        : m_openFiles(openFiles)
        , m_naming(naming)
    {
    }

    /// What is appended from now on goes to the file that will be `target`. All are false, with reason(), once one
    /// of them failed.
    [[nodiscard]] bool begin(const std::string& target);
    [[nodiscard]] bool append(ByteView bytes);
    /// All files appear, or, after a failure, none: then the former ones are as they were.
    [[nodiscard]] bool commit();

    /// The file that was begun last, for formats that write out of order; only while no more than one was begun.
    OutputFile& file() { return *m_files.back(); }
    /// Begins with the name of the file unless that is the first one.
    const std::string& reason() const { return m_reason; }

private:
    struct Gathered {
        std::string target;
        std::uint64_t offset;
    };

    bool fail(const std::string& target, const std::string& reason);
    std::unique_ptr<OutputFile> create(const std::string& target);
    bool publish(std::size_t index);
    bool copyOut(std::size_t index);

    std::size_t m_openFiles;
    OutputFile::Naming m_naming;
    std::string m_firstTarget;
    std::vector<std::string> m_targets; ///< of m_files
    std::vector<std::unique_ptr<OutputFile>> m_files;
    std::unique_ptr<OutputFile> m_gathering;
    std::vector<Gathered> m_gathered;
    std::string m_reason;
};

} // namespace quillrip
