#pragma once

// Whether a sanitizer watches this build; clang tells it by features, gcc by macros.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define QUILLRIP_HAS_SANITIZER 1
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QUILLRIP_HAS_SANITIZER 1
#endif
#if !defined(QUILLRIP_HAS_SANITIZER)
#define QUILLRIP_HAS_SANITIZER 0
#endif

namespace quillrip {

constexpr bool kIsWatchedBySanitizer = QUILLRIP_HAS_SANITIZER != 0;

} // namespace quillrip
