// SPDX-License-Identifier: Apache-2.0
#include "core/app/nxOption.h"

#include "core/app/internal/nxOptionHelp.h"
#include "core/text/nxPrintableText.h"

nxOption::nxOption(Texts texts) : _texts(std::move(texts)) {}

nxOption::~nxOption() = default;

nxRepeatedOption::~nxRepeatedOption() = default;

// As the user writes it: "-lots N".
std::string nxOption::_GetUse() const
{
    std::string use = "-";
    use += _texts.name;
    return _IsFlag() ? use : use.append(" ").append(_texts.label);
}

std::string nxOption::_GetHelp() const
{
    std::vector<std::string> remarks = _conditions;
    if (!_texts.words.empty())
        remarks.push_back("one of " + nxOptionHelp::GetList(_texts.words));
    if (_isRequired)
        remarks.emplace_back("required");
    else if (!_texts.defaultValue.empty())
        remarks.push_back("default " + _texts.defaultValue);
    if (!_key.empty())
        remarks.push_back("or by " + _key + " in the environment");
    std::string text;
    for (const std::string& remark : remarks)
        text.append(text.empty() ? "(" : "; ").append(remark);
    if (text.empty())
        return _texts.meaning;
    return _texts.meaning + (_texts.meaning.empty() ? "" : " ") + text.append(")");
}

nxErrorEnum nxOption::_Check(const std::string& text, const std::string& source, std::vector<std::string>& messages)
{
    std::string wanted;
    const nxErrorEnum error = _Read(text, wanted);
    if (error.IsOK())
        return error;
    std::string message = source;
    message.append(" ").append(nxPrintableText::GetQuoted(text)).append(" is not ").append(wanted);
    if (!_texts.words.empty() && error == NX_ERR_INVALID_PARAMETER)
    {
        message.append(" ").append(nxOptionHelp::GetList(_texts.words));
        message += nxOptionHelp::GetSuggestion(text, {_texts.words.begin(), _texts.words.end()});
    }
    messages.push_back(std::move(message));
    return error;
}
