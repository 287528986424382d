#include "tests/support/files.h"

#include <fstream>
#include <iterator>

namespace quillrip::test {

std::string readFile(const std::string& path)
{
    std::ifstream file { path, std::ios::binary };
    return { std::istreambuf_iterator<char> { file }, std::istreambuf_iterator<char> {} };
}

std::vector<std::uint8_t> readBytes(const std::string& path)
{
    std::ifstream file { path, std::ios::binary };
    return { std::istreambuf_iterator<char> { file }, std::istreambuf_iterator<char> {} };
}

} // namespace quillrip::test
