// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_TERMINAL_H
#define NXTICK_TERMINAL_H

#include <string>
#include <string_view>

namespace nxtick
{
/// Standard output as a person sees it: with colours on a terminal, without them elsewhere, if the environment variable
/// NO_COLOR is set, or if the terminal calls itself "dumb".
class Terminal
{
public:
    Terminal();

    enum class Style
    {
        Bold,
        Faint,
        Marked
    };

    /// The text in the style, or as it is where there are no colours.
    std::string Styled(Style style, std::string_view text) const;
    /// Several lines, the first of them as a heading.
    std::string WithHeading(const std::string& lines) const;

private:
    bool _hasColours;
};

/// Whether standard error is a terminal, so that a line on it can be overwritten.
bool IsErrorTerminal();

/// Opens /dev/null for each of standard input, output and error that the caller closed, so that no file gets their
/// numbers. Using them fails as it would if they were closed.
void OpenClosedStreams();

/// Writes to standard error. When its reader is gone, the text is lost and the run goes on.
void WriteError(std::string_view text);
}  // namespace nxtick

#endif
