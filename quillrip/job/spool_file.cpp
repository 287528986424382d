#include "quillrip/job/spool_file.h"

#include "quillrip/stream/content.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/types.h>
#include <unistd.h>
#include <vector>

namespace quillrip {

namespace {

constexpr std::uint8_t kTag = 0x01;
// How much of what follows a Universal Exit has to be seen to believe it.
constexpr std::size_t kJudged = 4096;

} // namespace

SpoolFile::~SpoolFile()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

std::string SpoolFile::folder()
{
    const char* named = std::getenv("TMPDIR");
    return named && *named ? named : "/tmp";
}

bool SpoolFile::create()
{
    const std::string folder = SpoolFile::folder();
    m_descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (m_descriptor >= 0)
        return true;
    // Some file systems cannot make a file without a name.
    std::string path = folder + "/quillrip-XXXXXX";
    m_descriptor = ::mkostemp(path.data(), O_CLOEXEC);
    if (m_descriptor >= 0)
        ::unlink(path.c_str());
    return m_descriptor >= 0;
}

bool SpoolFile::write(const std::uint8_t* bytes, std::size_t count)
{
    while (count > 0) {
        const ssize_t done = ::write(m_descriptor, bytes, count);
        if (done < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        bytes += done;
        count -= static_cast<std::size_t>(done);
    }
    return true;
}

bool SpoolFile::fill(InputStream& input, bool decodesTagged)
{
    if (!create())
        return false;
    const ByteView start = input.window(2);
    const bool isTagged = decodesTagged && start.size >= 2 && start[0] == kTag && start[1] == 'M';
    if (isTagged)
        input.skip(2);
    bool isAfterTag = false;
    std::vector<std::uint8_t> decoded;
    for (;;) {
        const ByteView window = input.window(InputStream::kLookAhead);
        if (window.empty())
            break;
        // Up to the next place where the job may end.
        if (window[0] == kEscape && stream::isBelievableUniversalExit(window))
            break;
        std::size_t length = window.size;
        if (window.size > 1) {
            const auto* escape
                = static_cast<const std::uint8_t*>(std::memchr(window.data + 1, kEscape, window.size - 1));
            while (escape
                && !stream::startsWithUniversalExit(window.sub(static_cast<std::size_t>(escape - window.data)))
                && static_cast<std::size_t>(window.end() - escape) > kJudged)
                escape = static_cast<const std::uint8_t*>(
                    std::memchr(escape + 1, kEscape, static_cast<std::size_t>(window.end() - escape) - 1));
            if (escape)
                length = static_cast<std::size_t>(escape - window.data);
        }
        if (isTagged) {
            decoded.clear();
            for (const std::uint8_t byte : window.sub(0, length)) {
                if (isAfterTag || byte != kTag)
                    decoded.push_back(isAfterTag ? byte ^ 0x40 : byte);
                isAfterTag = !isAfterTag && byte == kTag;
            }
        }
        if (isTagged ? !write(decoded.data(), decoded.size()) : !write(window.data, length))
            return false;
        input.skip(length);
    }
    return ::lseek(m_descriptor, 0, SEEK_SET) == 0;
}

} // namespace quillrip
