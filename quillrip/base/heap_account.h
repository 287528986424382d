#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace quillrip {

/// What a conversion may have out of the heap: everything but the bitmaps of its pages, which are mapped (PagePool)
/// and have a limit of their own. Bytes.
struct MemoryBudget {
    /// Whatever the job. Interpreters, fonts, caches and encoders have had no more than 7 MiB for any honest job that
    /// was measured.
    std::uint64_t bytes = std::uint64_t { 32 } << 20;
    /// For each byte of the input that has been read: fonts, macros, metafiles and pictures that a job brings are kept,
    /// and what they mean takes more room than they do. A vertex of a path, four bytes in most jobs, takes 113 when the
    /// path is filled.
    std::uint32_t perInputByte = 32;
    std::uint64_t mostForInput = std::uint64_t { 1 } << 30;
};

/// The account of the process's heap. It has no instance, as there is one heap: what new gives out is entered by the
/// operators of counted_heap.cpp, where a program links them, and what a C library takes by a HeapClaim. Above the
/// bound new throws std::bad_alloc, as for want of memory; nothing else in a program has to know of the account.
///
/// All functions may be called on any thread, and before main().
class HeapAccount {
public:
    /// From here on the budget holds, for a job of which nothing has been read.
    static void open(const MemoryBudget& budget) noexcept;
    /// From here on nothing does.
    static void close() noexcept;

    /// The job's reader has so many bytes more.
    static void addInput(std::uint64_t bytes) noexcept;

    /// Enters bytes that have been or will be taken. False, and nothing is entered, above the bound.
    [[nodiscard]] static bool take(std::uint64_t bytes) noexcept
    {
        if (s_used.fetch_add(bytes, std::memory_order_relaxed) + bytes <= s_bound.load(std::memory_order_relaxed))
            return true;
        s_used.fetch_sub(bytes, std::memory_order_relaxed);
        s_isRefusing.store(true, std::memory_order_relaxed);
        return false;
    }
    static void giveBack(std::uint64_t bytes) noexcept { s_used.fetch_sub(bytes, std::memory_order_relaxed); }

    static std::uint64_t used() noexcept { return s_used.load(std::memory_order_relaxed); }
    static std::uint64_t bound() noexcept { return s_bound.load(std::memory_order_relaxed); }

    /// Why there was no memory: the budget's end or the machine's. A sentence without full stop.
    static std::string reason();

private:
    inline static std::atomic<std::uint64_t> s_used { 0 };
    inline static std::atomic<std::uint64_t> s_bound { UINT64_MAX };
    inline static std::atomic<bool> s_isRefusing { false };
};

/// Opens the account for its life.
class HeapBound {
public:
    explicit HeapBound(const MemoryBudget& budget) { HeapAccount::open(budget); }
    ~HeapBound() { HeapAccount::close(); }
    HeapBound(const HeapBound&) = delete;
    HeapBound& operator=(const HeapBound&) = delete;
};

/// Memory that a library takes by itself, entered for the claim's life.
class HeapClaim {
public:
    HeapClaim() = default;
    ~HeapClaim() { HeapAccount::giveBack(m_bytes); }
    HeapClaim(const HeapClaim&) = delete;
    HeapClaim& operator=(const HeapClaim&) = delete;

    /// So many bytes more; throws std::bad_alloc above the bound.
    void add(std::uint64_t bytes);

private:
    std::uint64_t m_bytes = 0;
};

} // namespace quillrip
