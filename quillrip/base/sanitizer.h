#pragma once

namespace quillrip {

// Whether a sanitizer watches this build; clang tells it by features, gcc by macros.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kIsWatchedBySanitizer = true;
#else
constexpr bool kIsWatchedBySanitizer = false;
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsWatchedBySanitizer = true;
#else
constexpr bool kIsWatchedBySanitizer = false;
#endif

} // namespace quillrip
