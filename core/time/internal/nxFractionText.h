// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_INTERNAL_NXFRACTIONTEXT_H
#define CORE_TIME_INTERNAL_NXFRACTIONTEXT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// The end of a time text, ".123.456": milliseconds and microseconds. Threads: no state.
class nxFractionText
{
public:
    nxFractionText() = delete;

    static constexpr std::size_t Size = 8;  ///< The length of the text.

    /// Writes the text, without a NUL. @param nanoseconds below 10^9.
    static void Write(char* out, unsigned nanoseconds)
    {
        const unsigned microseconds = nanoseconds / 1'000;
        const unsigned milliseconds = nanoseconds / 1'000'000;
        const std::uint64_t first = _threeDigits[milliseconds];
        const std::uint64_t last = _threeDigits[microseconds - 1'000 * milliseconds];
        // One store, so that a copy of the text right afterwards is served from the store buffer.
        const std::uint64_t word = '.' | first << 8 | std::uint64_t{'.'} << 32 | last << 40;
        std::memcpy(out, &word, sizeof word);
    }

private:
    // "000" to "999", each as the word that these three characters are in memory.
    static constexpr auto _threeDigits = []
    {
        std::array<std::uint32_t, 1'000> words{};
        for (unsigned i = 0; i < 1'000; ++i)
            words[i] = ('0' + i / 100) | ('0' + i / 10 % 10) << 8 | ('0' + i % 10) << 16;
        return words;
    }();
};

#endif
