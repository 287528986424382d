#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace quillrip::cli {

/// How far a conversion is.
struct Progress {
    int pages = 0;
    double seconds = 0; ///< since it began
    std::optional<int> percentRead; ///< of the input, where its length is known
};

/// "12 pages, 34.5 a second, 67 % read".
std::string progressText(const Progress& progress);

/// Standard error: messages, a line each that is written at once, and on a terminal, below them, a line that tells how
/// far a long conversion is. That one is rewritten in place and gone at the end.
class Console {
public:
    using Duration = std::chrono::steady_clock::duration;

    /// `descriptor` is written to and stays the caller's. Conversions that are done before `patience` ends show no
    /// progress; nor does anything that is no terminal, or one that cannot move its cursor.
    explicit Console(int descriptor, bool showsProgress, Duration patience = std::chrono::seconds(1));
    ~Console() { rest(); }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    /// "quillrip: " and the text, whatever bytes that has.
    void say(const std::string& text);
    /// The text alone, likewise.
    void print(const std::string& text);

    /// From here on progress is shown. A descriptor of the input; it stays the caller's, who may close it.
    void follow(int input);
    void countPage();
    /// No more progress.
    void rest();

    /// What has to be written before anything else that does not come through here, so that it starts on a line of its
    /// own.
    std::string lineStart() const;

private:
    void showUntilRest();
    void show();
    std::optional<int> percentRead() const;
    void write(const std::string& bytes) const;

    int m_descriptor;
    bool m_showsProgress;
    Duration m_patience;
    int m_input = -1; ///< shares its place with the one that is read
    std::chrono::steady_clock::time_point m_start;
    std::mutex m_mutex; ///< of what follows, and of what is written
    std::condition_variable m_wakesUp;
    int m_pages = 0;
    bool m_isShown = false;
    bool m_isResting = false;
    std::thread m_thread;
};

} // namespace quillrip::cli
