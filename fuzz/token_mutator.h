#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t mostSize);

namespace quillrip::fuzz {

/// Where the commands of an input begin, ascending, without the first: each language has its own way to tell.
using Splitter = std::vector<std::size_t> (*)(const std::uint8_t* data, std::size_t size);

/// PCL: an escape sequence with its data, or text up to the next one.
std::vector<std::size_t> pclCommands(const std::uint8_t* data, std::size_t size);
/// HP-GL: a mnemonic with its parameters.
std::vector<std::size_t> hpglInstructions(const std::uint8_t* data, std::size_t size);
/// PCL XL: values with the attributes that name them, operators, embedded data.
std::vector<std::size_t> pclXlTags(const std::uint8_t* data, std::size_t size);

/// Leaves out, doubles, exchanges and moves whole commands, changes numbers in them, or lets the fuzzer change the
/// bytes of one: inputs stay jobs, where bytes changed anywhere would end most of them at the first command. Half of
/// the time it is the fuzzer's own change of the whole all the same.
std::size_t mutateCommands(
    std::uint8_t* data, std::size_t size, std::size_t mostSize, unsigned seed, Splitter splitter);

/// Commands of two inputs in turn, each in its order.
std::size_t crossCommands(const std::uint8_t* first, std::size_t firstSize, const std::uint8_t* second,
    std::size_t secondSize, std::uint8_t* out, std::size_t mostSize, unsigned seed, Splitter splitter);

} // namespace quillrip::fuzz

/// Gives a target the two above.
#define QUILLRIP_FUZZ_COMMANDS(splitter)                                                                               \
    extern "C" std::size_t LLVMFuzzerCustomMutator(                                                                    \
        std::uint8_t* data, std::size_t size, std::size_t mostSize, unsigned seed)                                     \
    {                                                                                                                  \
        return quillrip::fuzz::mutateCommands(data, size, mostSize, seed, splitter);                                   \
    }                                                                                                                  \
    extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* first, std::size_t firstSize,                 \
        const std::uint8_t* second, std::size_t secondSize, std::uint8_t* out, std::size_t mostSize, unsigned seed)    \
    {                                                                                                                  \
        return quillrip::fuzz::crossCommands(first, firstSize, second, secondSize, out, mostSize, seed, splitter);     \
    }
