// SPDX-License-Identifier: Apache-2.0
#include "Terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "core/app/nxCmdLineArgs.h"

namespace nxtick
{
Terminal::Terminal()
{
    const nxCmdLineArgs& environment = nxCmdLineArgs::GetInstance();
    _hasColours = ::isatty(STDOUT_FILENO) != 0 && environment.GetEnvValue("NO_COLOR").empty() &&
                  environment.GetEnvValue("TERM") != "dumb";
}

std::string Terminal::Styled(Style style, std::string_view text) const
{
    if (!_hasColours || text.empty())
        return std::string(text);
    const char* const start = style == Style::Bold ? "\x1b[1m" : style == Style::Faint ? "\x1b[2m" : "\x1b[33m";
    return start + std::string(text) + "\x1b[0m";
}

std::string Terminal::WithHeading(const std::string& lines) const
{
    const std::size_t end = lines.find('\n');
    return Styled(Style::Faint, lines.substr(0, end)) + lines.substr(end);
}

bool IsErrorTerminal() { return ::isatty(STDERR_FILENO) != 0; }

void OpenClosedStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0)  // then it is the lowest free number, which open() takes
            ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

void WriteError(std::string_view text)
{
    const auto pipeAction = ::signal(SIGPIPE, SIG_IGN);
    while (!text.empty())
    {
        const ssize_t count = ::write(STDERR_FILENO, text.data(), text.size());
        if (count > 0)
            text.remove_prefix(static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            break;  // nobody is left to be told
    }
    ::signal(SIGPIPE, pipeAction);
}
}  // namespace nxtick
