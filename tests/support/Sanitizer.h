#pragma once

namespace quillon::testing {

// Whether the test runs under a sanitizer, which reserves address space beyond any small limit
// and reports the blocks the C library keeps for good (a loaded locale's) as leaks.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) ||                         \
    __has_feature(thread_sanitizer)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif
#else
constexpr bool kSanitized = false;
#endif

} // namespace quillon::testing
