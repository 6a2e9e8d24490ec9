// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGOPENMETRICS_H
#define CORE_LOG_INTERNAL_NXLOGOPENMETRICS_H

#include <cstdint>
#include <string>
#include <string_view>

/// Writes the text format of OpenMetrics.
///
/// Invariant: the samples of a family follow its description without others between them, if they are added in this order.
///
/// Errors: std::bad_alloc is thrown. Threads: none.
class nxLogOpenMetrics
{
public:
    /// What is known of a family of samples.
    struct Family
    {
        enum class Kind
        {
            Counter,
            Gauge,
            Nanoseconds  ///< A gauge that is shown in seconds.
        };

        const char* name;  ///< With its unit at its end, if it has one.
        Kind kind;
        const char* unit;  ///< Empty for none.
        const char* help;  ///< One sentence.
    };

    void Begin(const Family& family);
    /// Adds a sample of the family that was begun last. @param label empty for none.
    void Add(std::string_view label, std::string_view labelValue, std::uint64_t value);
    /// @return the text, complete.
    std::string End();

private:
    void _PutLine(const char* what, const char* text);

    std::string _text;
    Family _family{};
};

#endif
