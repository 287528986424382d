#include "quillrip/image/output_files.h"

#include <algorithm>

namespace quillrip {

namespace {

constexpr std::size_t kCopyBytes = std::size_t { 256 } << 10;

} // namespace

bool OutputFiles::fail(const std::string& target, const std::string& reason)
{
    if (m_reason.empty())
        m_reason = target == m_firstTarget ? reason : target + ": " + reason;
    return false;
}

std::unique_ptr<OutputFile> OutputFiles::create(const std::string& target)
{
    std::string reason;
    auto file = OutputFile::create(target, reason, m_naming);
    if (!file)
        fail(target, reason);
    return file;
}

bool OutputFiles::begin(const std::string& target)
{
    if (!m_reason.empty())
        return false;
    if (m_files.empty())
        m_firstTarget = target;
    if (m_files.size() < m_openFiles) {
        auto file = create(target);
        if (!file)
            return false;
        // Fewer bytes wait in memory, and a full disk is noticed, before the next file begins.
        if (!m_files.empty() && !m_files.back()->flush())
            return fail(m_targets.back(), m_files.back()->reason());
        m_files.push_back(std::move(file));
        m_targets.push_back(target);
        return true;
    }
    if (!m_gathering) {
        m_gathering = create(target);
        if (!m_gathering)
            return false;
    }
    m_gathered.push_back({ target, m_gathering->size() });
    return true;
}

bool OutputFiles::append(ByteView bytes)
{
    if (!m_reason.empty())
        return false;
    if (m_gathered.empty())
        return m_files.back()->append(bytes) || fail(m_targets.back(), m_files.back()->reason());
    return m_gathering->append(bytes) || fail(m_gathered.back().target, m_gathering->reason());
}

bool OutputFiles::copyOut(std::size_t index)
{
    const Gathered& gathered = m_gathered[index];
    std::uint64_t offset = gathered.offset;
    const std::uint64_t end = index + 1 < m_gathered.size() ? m_gathered[index + 1].offset : m_gathering->size();
    auto file = create(gathered.target);
    if (!file)
        return false;
    std::vector<std::uint8_t> bytes(kCopyBytes);
    while (offset < end) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(end - offset, bytes.size()));
        if (!m_gathering->readAt(offset, bytes.data(), count))
            return fail(gathered.target, m_gathering->reason());
        if (!file->append({ bytes.data(), count }))
            return fail(gathered.target, file->reason());
        offset += count;
    }
    m_files.push_back(std::move(file));
    m_targets.push_back(gathered.target);
    return true;
}

bool OutputFiles::publish(std::size_t index)
{
    return m_files[index]->publish() || fail(m_targets[index], m_files[index]->reason());
}

bool OutputFiles::commit()
{
    if (!m_reason.empty())
        return false;
    std::size_t published = 0;
    // Everything is on disk before the first file appears, apart from what has to be copied out.
    bool isGood = true;
    for (std::size_t i = 0; isGood && i < m_files.size(); ++i)
        isGood = m_files[i]->flush() || fail(m_targets[i], m_files[i]->reason());
    while (isGood && published < m_files.size()) {
        isGood = publish(published);
        published += isGood;
    }
    for (std::size_t i = 0; isGood && i < m_gathered.size(); ++i) {
        isGood = copyOut(i) && publish(published);
        published += isGood;
    }
    while (!isGood && published > 0)
        m_files[--published]->withdraw();
    for (const auto& file : m_files)
        file->settle();
    m_files.clear();
    m_gathering.reset();
    return isGood;
}

} // namespace quillrip
