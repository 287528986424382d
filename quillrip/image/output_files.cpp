#include "quillrip/image/output_files.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <sys/resource.h>

namespace quillrip {

namespace {

/// For the input, fonts, pipes and the copies of former files.
constexpr std::size_t kSpareDescriptors = 64;
constexpr std::size_t kFewestOpenFiles = 8;
/// An open file costs the system memory as well.
constexpr std::size_t kMostOpenFiles = 4096;

std::size_t openFilesAllowed()
{
    struct rlimit limit { };
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur < kSpareDescriptors + kFewestOpenFiles)
        return kFewestOpenFiles;
    return std::min<std::size_t>(limit.rlim_cur - kSpareDescriptors, kMostOpenFiles);
}

} // namespace

OutputFiles::OutputFiles(const Options& options)
    : m_options(options)
{
    if (m_options.openFiles == 0)
        m_options.openFiles = openFilesAllowed();
}

bool OutputFiles::fail(const std::string& target, const std::string& reason)
{
    if (m_reason.empty())
        m_reason = m_targets.empty() || target == m_targets.front() ? reason : target + ": " + reason;
    return false;
}

bool OutputFiles::add(const std::string& target)
{
    OutputPlace place;
    std::string reason;
    if (!findPlace(target, m_folder, m_folderPath, place, reason))
        return fail(target, reason);
    const bool canStayOpen = m_files.size() < m_options.openFiles;
    auto file = OutputFile::create(place, reason, canStayOpen ? m_options.naming : OutputFile::Naming::Hidden);
    if (!file)
        return fail(target, reason);
    m_targets.push_back(target);
    m_files.push_back(std::move(file));
    return true;
}

bool OutputFiles::open(const std::string& target)
{
    m_isOnlyOpen = add(target);
    return m_isOnlyOpen;
}

bool OutputFiles::begin(const std::string& target)
{
    if (!m_reason.empty())
        return false;
    if (std::exchange(m_isOnlyOpen, false) && target == m_targets.front())
        return true;
    // Fewer bytes wait in memory, and a full disk is noticed, before the next file begins.
    if (!m_files.empty() && !m_files.back()->park())
        return fail(m_files.size() - 1);
    return add(target);
}

bool OutputFiles::append(ByteView bytes)
{
    return m_reason.empty() && spend(bytes.size) && (m_files.back()->append(bytes) || fail(m_files.size() - 1));
}

bool OutputFiles::spend(std::uint64_t bytes)
{
    m_bytes += bytes;
    if (m_bytes <= m_mostBytes)
        return true;
    m_isOverspent = true;
    m_reason = "the images of the job need more than " + std::to_string(m_mostBytes >> 20) + " MB (-limit-output)";
    return false;
}

std::vector<int> OutputFiles::folders() const
{
    std::vector<int> descriptors;
    if (m_folder)
        descriptors.push_back(m_folder->descriptor());
    for (const auto& file : m_files)
        descriptors.push_back(file->place().folder->descriptor());
    return descriptors;
}

bool OutputFiles::prepareAll()
{
    // Room is what fails most often, and costs least to find out.
    for (std::size_t i = 0; i < m_files.size(); ++i)
        if (!m_files[i]->flush())
            return fail(i);
    for (std::size_t i = 0; i < m_files.size(); ++i)
        if (!m_files[i]->prepare(m_options.areDurable))
            return fail(i);
    return true;
}

bool OutputFiles::syncFolders()
{
    // Nothing here asks for memory: files have appeared, and what fails now has to leave either all or none of them.
    const OutputFolder* last = nullptr;
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        if (!m_options.areDurable && !m_files[i]->replacesFile())
            continue;
        const OutputFolder* folder = m_files[i]->place().folder.get();
        if (folder == last)
            continue;
        if (!folder->sync())
            return fail(m_targets[i], writeReason(errno));
        last = folder;
    }
    return true;
}

bool OutputFiles::commit()
{
    if (!m_reason.empty())
        return false;
    // Former files that are saved by copying are so on the disk, names and all, before one of several loses its name.
    bool isGood = prepareAll() && (m_files.size() == 1 || syncFolders());
    // The first file last: who sees it, sees all.
    for (std::size_t i = m_files.size(); isGood && i-- > 0;)
        isGood = m_files[i]->appear() || fail(i);
    isGood = isGood && syncFolders();
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        if (isGood)
            m_files[i]->settle();
        else if (!m_files[i]->withdraw())
            m_reason += "; " + m_targets[i] + ": " + m_files[i]->reason();
    }
    m_files.clear();
    m_folder.reset();
    return isGood;
}

} // namespace quillrip
