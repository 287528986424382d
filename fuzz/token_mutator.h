#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t mostSize);

namespace quillrip::fuzz {

/// How a language's inputs are taken apart and put together.
struct CommandForm {
    /// Where its commands begin, ascending, without the first.
    std::vector<std::size_t> (*starts)(const std::uint8_t* data, std::size_t size);
    /// Numbers are words of 32 bits, lower byte first, instead of digits.
    bool hasWords = false;
    /// A command that was changed says its own length again. Null: none does.
    void (*mend)(std::vector<std::uint8_t>& command) = nullptr;
    /// So does the whole.
    void (*finish)(std::uint8_t* data, std::size_t size) = nullptr;
};

/// PCL: an escape sequence with its data, or text up to the next one.
extern const CommandForm kPclCommands;
/// HP-GL: a mnemonic with its parameters.
extern const CommandForm kHpglInstructions;
/// PCL XL: values with the attributes that name them, operators, embedded data.
extern const CommandForm kPclXlTags;
/// EMF: records of a metafile.
extern const CommandForm kEmfRecords;
/// Those of a spool file that holds metafiles, and how to know one.
extern const CommandForm kSpoolRecords;
bool isSpoolFile(const std::uint8_t* data, std::size_t size);
/// EMF+: records as they stand in comments.
extern const CommandForm kEmfPlusRecords;

/// Leaves out, doubles, exchanges and moves whole commands, changes numbers in them, or lets the fuzzer change the
/// bytes of one: inputs stay jobs, where bytes changed anywhere would end most of them at the first command. Half of
/// the time it is the fuzzer's own change of the whole all the same.
std::size_t mutateCommands(
    std::uint8_t* data, std::size_t size, std::size_t mostSize, unsigned seed, const CommandForm& form);

/// Commands of two inputs in turn, each in its order.
std::size_t crossCommands(const std::uint8_t* first, std::size_t firstSize, const std::uint8_t* second,
    std::size_t secondSize, std::uint8_t* out, std::size_t mostSize, unsigned seed, const CommandForm& form);

} // namespace quillrip::fuzz

/// Gives a target the two above. `form` may depend on the input, `data` and `size`.
#define QUILLRIP_FUZZ_COMMANDS(form)                                                                                   \
    extern "C" std::size_t LLVMFuzzerCustomMutator(                                                                    \
        std::uint8_t* data, std::size_t size, std::size_t mostSize, unsigned seed)                                     \
    {                                                                                                                  \
        return quillrip::fuzz::mutateCommands(data, size, mostSize, seed, form);                                       \
    }                                                                                                                  \
    extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data, std::size_t size,                       \
        const std::uint8_t* second, std::size_t secondSize, std::uint8_t* out, std::size_t mostSize, unsigned seed)    \
    {                                                                                                                  \
        return quillrip::fuzz::crossCommands(data, size, second, secondSize, out, mostSize, seed, form);               \
    }
