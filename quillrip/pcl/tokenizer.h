#pragma once

#include "quillrip/base/escape_sequence.h"
#include "quillrip/base/input_stream.h"

#include <cstdint>
#include <vector>

namespace quillrip::pcl {

using Value = EscapeValue;

struct Token {
    enum class Kind {
        End, ///< no more input
        UniversalExit, ///< the stream stands on the ESC of ESC%-12345X, of which nothing was taken
        Text, ///< `byte` goes through the current font
        Control, ///< `byte` is a control code that never prints by itself
        TwoCharacter, ///< ESC and `byte`
        Command, ///< one parameter of a parameterised sequence
    };

    Kind kind = Kind::End;
    std::uint8_t byte = 0;
    char prefix = 0; ///< parameterised character, such as '&'
    char group = 0; ///< group character, such as 'l'; 0 where the sequence has none
    char terminator = 0; ///< always upper case: chaining is undone
    bool chained = false; ///< ended by a lower-case letter: the same sequence goes on after the command's data
    Value value;
    std::uint64_t offset = 0; ///< byte in the stream where the token starts
};

/// Cuts a stream into text, control codes and commands. Knows the syntax only: how many bytes of data follow a command
/// is the caller's business, who takes them from here before asking for the next token.
class Tokenizer {
public:
    explicit Tokenizer(InputStream& stream)
        : m_stream(stream)
    {
    }

    Token next();

    /// Appends up to `count` bytes to `data`, keeping at most `keep` of them; returns how many were taken from the
    /// stream. Fewer than `count` means that the stream has ended.
    std::uint64_t takeData(std::uint64_t count, std::vector<std::uint8_t>& data, std::size_t keep);
    std::uint64_t skipData(std::uint64_t count);

    /// Goes on as if the last sequence had not ended: some ink-jet drivers close one with an upper-case letter and
    /// continue it nevertheless. True when what follows looks like a further parameter with one of `terminators`.
    bool resumeIfContinued(char prefix, char group, const char* terminators);

    /// Between the parameters of a combined sequence.
    bool isInSequence() const { return m_inSequence; }
    /// Forgets a sequence that was to be continued.
    void abandonSequence() { m_inSequence = false; }

    /// From now on every byte taken is also appended to `record`, until stopRecording(). When the command that started
    /// the recording is part of a combined sequence, the record starts with that sequence's opening.
    void startRecording(std::vector<std::uint8_t>& record, std::size_t limit);
    void stopRecording() { m_record = nullptr; }
    /// Takes the last token off the record.
    void dropTokenFromRecord();
    bool recordOverflowed() const { return m_recordOverflowed; }

    InputStream& stream() { return m_stream; }

private:
    int take();
    Token parameter();
    Token escape();
    Value readValue();

    InputStream& m_stream;
    bool m_inSequence = false;
    bool m_isFirstParameter = false;
    std::uint64_t m_sequenceStart = 0;
    char m_prefix = 0;
    char m_group = 0;

    std::vector<std::uint8_t>* m_record = nullptr;
    std::size_t m_recordLimit = 0;
    std::size_t m_recordedBeforeToken = 0;
    bool m_recordOverflowed = false;
};

} // namespace quillrip::pcl
