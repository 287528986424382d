#include "tests/cli/program.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace quillrip::test {

namespace {

std::vector<char*> pointersTo(const std::vector<std::string>& words)
{
    std::vector<char*> pointers;
    for (const std::string& word : words)
        pointers.push_back(const_cast<char*>(word.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

Outcome runQuillrip(
    const std::vector<std::string>& arguments, const std::vector<std::string>& environment, const std::string& input)
{
    const TemporaryFolder folder;
    std::vector<std::string> words { QUILLRIP_PROGRAM };
    words.insert(words.end(), arguments.begin(), arguments.end());
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, 0, input.c_str(), 0, 0);
    posix_spawn_file_actions_addopen(&files, 1, folder.path("out").c_str(), 01 | 0100, 0600);
    posix_spawn_file_actions_addopen(&files, 2, folder.path("err").c_str(), 01 | 0100, 0600);
    pid_t process = -1;
    int status = 0;
    const std::vector<char*> own = pointersTo(environment);
    const int failure = posix_spawn(&process, words[0].c_str(), &files, nullptr, pointersTo(words).data(),
        environment.empty() ? environ : own.data());
    posix_spawn_file_actions_destroy(&files);
    struct rusage usage { };
    if (failure != 0 || ::wait4(process, &status, 0, &usage) != process)
        throw std::runtime_error("quillrip cannot be started");
    return { WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(folder.path("err")), contentOf(folder.path("out")),
        static_cast<std::uint64_t>(usage.ru_maxrss) * 1024 };
}

TemporaryFolder::TemporaryFolder()
{
    std::string path = (std::filesystem::temp_directory_path() / "quillrip-test-XXXXXX").string();
    if (!::mkdtemp(path.data()))
        throw std::runtime_error("no temporary folder");
    m_path = path;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string TemporaryFolder::file(const std::string& name, const std::string& bytes) const
{
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
}

std::vector<std::string> TemporaryFolder::names() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_path))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string contentOf(const std::string& path)
{
    std::ifstream input(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>() };
}

} // namespace quillrip::test
