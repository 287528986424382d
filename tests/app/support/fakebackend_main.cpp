// A backend that converts nothing. It records how it was started, then does what the environment tells it.
//
// PRISMO_FAKE_RUNS   folder of the records: files 1, 2, 3 ..., each "=" and the value of PCLFONTSOURCE (nothing when it
//                    is unset), then every argument, each ended by a zero byte
// PRISMO_FAKE_PRINT  bytes to write to standard output and to standard error
// PRISMO_FAKE_GATE   fifo to take one byte from before going on
// PRISMO_FAKE_CRASH  set: end by a signal
// PRISMO_FAKE_EXIT   exit code

#include <cstdio>
#include <cstdlib>
#include <string>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

// Written whole under a name of its own first, so that whoever sees the record sees all of it. Linking fails where the
// number is taken, which also keeps two backends apart.
void record(const std::string& folder, const std::string& text)
{
    const std::string draft = folder + "/draft" + std::to_string(::getpid());
    std::FILE* file = std::fopen(draft.c_str(), "wb");
    if (!file)
        std::abort();
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
    for (int number = 1; ::link(draft.c_str(), (folder + '/' + std::to_string(number)).c_str()) != 0; ++number) {
        if (number > 100'000)
            std::abort();
    }
    ::unlink(draft.c_str());
}

void print(int bytes)
{
    const std::string line(99, '.');
    for (int written = 0; written < bytes; written += 100) {
        std::fprintf(stdout, "%s\n", line.c_str());
        std::fprintf(stderr, "%s\n", line.c_str());
    }
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    if (const char* folder = std::getenv("PRISMO_FAKE_RUNS")) {
        std::string text;
        if (const char* fontSource = std::getenv("PCLFONTSOURCE"))
            text = std::string("=") + fontSource;
        text += '\0';
        for (int i = 1; i < argc; ++i)
            text += std::string(argv[i]) + '\0';
        record(folder, text);
    }
    if (const char* bytes = std::getenv("PRISMO_FAKE_PRINT"))
        print(std::atoi(bytes));
    if (const char* gate = std::getenv("PRISMO_FAKE_GATE")) {
        const int fifo = ::open(gate, O_RDONLY);
        char ticket = 0;
        if (fifo < 0 || ::read(fifo, &ticket, 1) != 1)
            return 99;
    }
    if (std::getenv("PRISMO_FAKE_CRASH"))
        std::raise(SIGKILL);
    const char* code = std::getenv("PRISMO_FAKE_EXIT");
    return code ? std::atoi(code) : 0;
}
