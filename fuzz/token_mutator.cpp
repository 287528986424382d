#include "fuzz/token_mutator.h"

#include <algorithm>
#include <array>
#include <random>
#include <string>

namespace quillrip::fuzz {

namespace {

using Bytes = std::vector<std::uint8_t>;
using Commands = std::vector<Bytes>;

bool isDigit(std::uint8_t c) { return c >= '0' && c <= '9'; }
bool isLetter(std::uint8_t c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

Commands split(const std::uint8_t* data, std::size_t size, const CommandForm& form)
{
    Commands commands;
    std::size_t from = 0;
    std::vector<std::size_t> ends = form.starts(data, size);
    ends.push_back(size);
    for (const std::size_t end : ends) {
        if (end > from && end <= size)
            commands.emplace_back(data + from, data + end);
        from = std::max(from, end);
    }
    return commands;
}

std::size_t join(const Commands& commands, std::uint8_t* data, std::size_t mostSize, const CommandForm& form)
{
    std::uint8_t* out = data;
    std::size_t size = 0;
    for (const Bytes& command : commands) {
        if (command.size() > mostSize - size)
            break;
        out = std::copy(command.begin(), command.end(), out);
        size += command.size();
    }
    if (form.finish)
        form.finish(data, size);
    return size;
}

std::uint32_t wordAt(const std::uint8_t* data, std::size_t size, std::size_t at)
{
    std::uint32_t word = 0;
    for (std::size_t i = 4; i-- > 0;)
        word = word << 8 | (at + i < size ? data[at + i] : 0u);
    return word;
}

void putWord(std::uint8_t* to, std::uint32_t word)
{
    for (int i = 0; i < 4; ++i)
        to[i] = static_cast<std::uint8_t>(word >> 8 * i);
}

/// Another number in the place of one that is written in digits; values at the edges of what handlers expect.
void changeNumber(Bytes& command, std::mt19937& dice)
{
    static constexpr std::array s_numbers { "0", "1", "-1", "2", "3", "7", "8", "9", "100", "255", "256", "300", "600",
        "720", "1000", "4095", "32767", "32768", "-32768", "65535", "65536", "99999", "2147483647", "0.001", "-0.5" };
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < command.size(); ++i)
        if (isDigit(command[i]) && (i == 0 || !isDigit(command[i - 1])))
            places.push_back(i);
    if (places.empty())
        return;
    const std::size_t at = places[dice() % places.size()];
    std::size_t end = at;
    while (end < command.size() && isDigit(command[end]))
        ++end;
    const std::string number = s_numbers[dice() % s_numbers.size()];
    const auto begin = command.begin();
    command.erase(begin + static_cast<std::ptrdiff_t>(at), begin + static_cast<std::ptrdiff_t>(end));
    command.insert(command.begin() + static_cast<std::ptrdiff_t>(at), number.begin(), number.end());
}

void changeWord(Bytes& command, std::mt19937& dice)
{
    static constexpr std::array<std::uint32_t, 20> s_words { 0, 1, 2, 3, 4, 7, 8, 12, 16, 100, 255, 256, 0x7FFF, 0x8000,
        0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF };
    // The first two say what the command is, and how long.
    if (command.size() >= 12)
        putWord(command.data() + 8 + dice() % (command.size() / 4 - 2) * 4, s_words[dice() % s_words.size()]);
}

void changeBytes(Bytes& command)
{
    const std::size_t size = command.size();
    command.resize(size + 16);
    command.resize(LLVMFuzzerMutate(command.data(), size, command.size()));
}

std::vector<std::size_t> pclCommands(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::size_t> starts;
    std::size_t at = 0;
    while (at < size) {
        if (data[at] != 0x1B) {
            at = static_cast<std::size_t>(std::find(data + at, data + size, 0x1B) - data);
        } else {
            ++at;
            const bool hasParameters = at < size && data[at] >= '!' && data[at] <= '/';
            std::size_t count = 0;
            while (hasParameters && at < size && !(data[at] >= '@' && data[at] <= '^')) {
                count = isDigit(data[at]) ? std::min<std::size_t>(count * 10 + data[at] - '0', size) : 0;
                ++at;
            }
            const bool hasData = hasParameters && at < size && data[at] == 'W';
            at = std::min(size, at + 1 + (hasData ? count : 0));
        }
        starts.push_back(at);
    }
    return starts;
}

std::vector<std::size_t> hpglInstructions(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::size_t> starts;
    for (std::size_t at = 1; at + 1 < size; ++at) {
        const bool isMnemonic = isLetter(data[at]) && isLetter(data[at + 1]);
        if (data[at - 1] == ';' || (isMnemonic && !isLetter(data[at - 1])))
            starts.push_back(at);
    }
    return starts;
}

std::vector<std::size_t> pclXlTags(const std::uint8_t* data, std::size_t size)
{
    static constexpr std::array<std::size_t, 6> s_typeBytes { 1, 2, 4, 2, 4, 4 }; // ubyte to real32
    const auto byteAt = [&](std::size_t at) { return at < size ? std::size_t { data[at] } : 0; };
    std::vector<std::size_t> starts;
    // The header is text up to its line feed.
    std::size_t at = static_cast<std::size_t>(std::find(data, data + size, '\n') - data) + 1;
    for (; at < size; starts.push_back(at)) {
        const std::uint8_t tag = data[at++];
        const std::size_t type = (tag & 0x1Fu) % 8;
        if (tag == 0xFA) {
            at += 4 + byteAt(at) + byteAt(at + 1) * 256;
        } else if (tag == 0xFB) {
            at += 1 + byteAt(at);
        } else if (tag >= 0xC0 && tag < 0xE8 && type < s_typeBytes.size()) {
            std::size_t count = tag >= 0xE0 ? 4 : tag >= 0xD0 && tag < 0xD8 ? 2 : 1;
            if (tag >= 0xC8 && tag < 0xD0) {
                const bool isWord = byteAt(at) == 0xC1;
                count = byteAt(at + 1) + (isWord ? byteAt(at + 2) * 256 : 0);
                at += isWord ? 3 : 2;
            }
            at += count * s_typeBytes[type];
            if (byteAt(at) == 0xF8)
                at += 2;
        }
        at = std::min(at, size);
    }
    return starts;
}

/// Records that begin with what they are and how long they are, from `at` on.
std::vector<std::size_t> recordsFrom(std::size_t at, const std::uint8_t* data, std::size_t size, std::size_t head)
{
    std::vector<std::size_t> starts;
    while (at + head <= size) {
        const std::size_t length = wordAt(data, size, at + 4);
        if (length < head || length > size - at)
            break;
        starts.push_back(at += length);
    }
    return starts;
}

constexpr std::uint32_t kMetafileHeader = 1;
constexpr std::size_t kRecordHead = 8;
constexpr std::size_t kPlusRecordHead = 12;

std::vector<std::size_t> emfRecords(const std::uint8_t* data, std::size_t size)
{
    return recordsFrom(0, data, size, kRecordHead);
}

void mendRecord(Bytes& record)
{
    record.resize(std::max(kRecordHead, (record.size() + 3) / 4 * 4));
    putWord(record.data() + 4, static_cast<std::uint32_t>(record.size()));
}

std::vector<std::size_t> spoolRecords(const std::uint8_t* data, std::size_t size)
{
    // Their lengths are those of what follows these two words; the file's header counts itself.
    std::vector<std::size_t> starts;
    for (std::size_t at = wordAt(data, size, 4); at < size; at += kRecordHead + wordAt(data, size, at + 4))
        starts.push_back(at);
    return starts;
}

void mendSpoolRecord(Bytes& record)
{
    if (isSpoolFile(record.data(), record.size()))
        return;
    record.resize(std::max(kRecordHead, record.size()));
    putWord(record.data() + 4, static_cast<std::uint32_t>(record.size() - kRecordHead));
}

/// The first record says how long all are together, and how many.
void finishMetafile(std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t bytesAt = 48;
    constexpr std::size_t recordsAt = 52;
    if (size < recordsAt + 4 || wordAt(data, size, 0) != kMetafileHeader)
        return;
    putWord(data + bytesAt, static_cast<std::uint32_t>(size));
    putWord(data + recordsAt, static_cast<std::uint32_t>(recordsFrom(0, data, size, kRecordHead).size()));
}

std::vector<std::size_t> emfPlusRecords(const std::uint8_t* data, std::size_t size)
{
    return recordsFrom(0, data, size, kPlusRecordHead);
}

void mendPlusRecord(Bytes& record)
{
    record.resize(std::max(kPlusRecordHead, (record.size() + 3) / 4 * 4));
    putWord(record.data() + 4, static_cast<std::uint32_t>(record.size()));
    putWord(record.data() + 8, static_cast<std::uint32_t>(record.size() - kPlusRecordHead));
}

} // namespace

bool isSpoolFile(const std::uint8_t* data, std::size_t size)
{
    constexpr std::uint32_t firstWord = 0x00010000;
    return wordAt(data, size, 0) == firstWord;
}

const CommandForm kPclCommands { pclCommands };
const CommandForm kHpglInstructions { hpglInstructions };
const CommandForm kPclXlTags { pclXlTags };
const CommandForm kEmfRecords { emfRecords, true, mendRecord, finishMetafile };
const CommandForm kSpoolRecords { spoolRecords, true, mendSpoolRecord };
const CommandForm kEmfPlusRecords { emfPlusRecords, true, mendPlusRecord };

std::size_t mutateCommands(
    std::uint8_t* data, std::size_t size, std::size_t mostSize, unsigned seed, const CommandForm& form)
{
    std::mt19937 dice { seed };
    Commands commands = split(data, size, form);
    if (commands.size() < 2 || dice() % 2 == 0)
        return LLVMFuzzerMutate(data, size, mostSize);
    for (auto changes = 1 + dice() % 3; changes > 0 && !commands.empty(); --changes) {
        const auto begin = commands.begin();
        const auto one = static_cast<std::ptrdiff_t>(dice() % commands.size());
        const auto other = static_cast<std::ptrdiff_t>(dice() % commands.size());
        switch (dice() % 6) {
        case 0:
            commands.erase(begin + one);
            break;
        case 1: {
            const Bytes copy = begin[one];
            commands.insert(begin + other, 1 + dice() % 3, copy);
            break;
        }
        case 2:
            std::swap(begin[one], begin[other]);
            break;
        case 3:
            std::rotate(begin + std::min(one, other), begin + std::max(one, other), commands.end());
            break;
        case 4:
            (form.hasWords ? changeWord : changeNumber)(begin[one], dice);
            break;
        default:
            changeBytes(begin[one]);
            if (form.mend)
                form.mend(begin[one]);
        }
    }
    return join(commands, data, mostSize, form);
}

std::size_t crossCommands(const std::uint8_t* first, std::size_t firstSize, const std::uint8_t* second,
    std::size_t secondSize, std::uint8_t* out, std::size_t mostSize, unsigned seed, const CommandForm& form)
{
    std::mt19937 dice { seed };
    const Commands ours = split(first, firstSize, form);
    const Commands theirs = split(second, secondSize, form);
    Commands mixed;
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < ours.size() || j < theirs.size()) {
        for (auto run = 1 + dice() % 8; run > 0 && i < ours.size(); --run)
            mixed.push_back(ours[i++]);
        for (auto run = 1 + dice() % 8; run > 0 && j < theirs.size(); --run)
            mixed.push_back(theirs[j++]);
    }
    return join(mixed, out, mostSize, form);
}

} // namespace quillrip::fuzz
