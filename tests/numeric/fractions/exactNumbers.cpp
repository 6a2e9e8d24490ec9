// SPDX-License-Identifier: Apache-2.0
// Calculates what each line of the standard input asks for, and writes one line with the result or the error's name.

#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "core/numeric/nxExchangeRateConverter.h"

namespace
{
using At = nxExchangeRateConverter::At;

template <class Value>
Value Take(std::istream& words)
{
    Value value{};
    words >> value;
    return value;
}

nxDecimal TakeDecimal(std::istream& words)
{
    const auto mantissa = Take<long long>(words);
    return nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, static_cast<unsigned char>(Take<int>(words)));
}

nxRatio TakeRatio(std::istream& words)
{
    nxRatio ratio;
    return ratio.SetFromString(Take<std::string>(words)).IsOK() ? ratio : nxRatio();
}

nxRoundingMethodEnum TakeMethod(std::istream& words)
{
    nxRoundingMethodEnum method;
    static_cast<void>(method.SetFromString(Take<std::string>(words)));
    return method;
}

std::string Told(const nxErrorEnum& error, const std::string& result)
{
    return error.IsOK() ? result : error.GetShortDescription();
}

std::string Combined(const std::string& operation, std::istream& words)
{
    nxRatio left = TakeRatio(words);
    const nxRatio right = TakeRatio(words);
    const nxErrorEnum error = operation == "add"   ? left.Add(right)
                              : operation == "sub" ? left.Subtract(right)
                              : operation == "mul" ? left.Multiply(right)
                                                   : left.Divide(right);
    return Told(error, left.GetAsString());
}

std::string Ordered(std::istream& words)
{
    const nxRatio left = TakeRatio(words), right = TakeRatio(words);
    return left < right ? "-1" : (left > right ? "1" : "0");
}

std::string Nearest(std::istream& words)
{
    const double value = std::strtod(Take<std::string>(words).c_str(), nullptr);
    return nxRatio::GetNearest(value, Take<long long>(words)).GetAsLogString();
}

std::string OfDecimal(std::istream& words)
{
    nxRatio ratio;
    const nxErrorEnum error = ratio.SetFromDecimal(TakeDecimal(words));
    return Told(error, ratio.GetAsString());
}

std::string Applied(std::istream& words)
{
    const nxRatio ratio = TakeRatio(words);
    nxDecimal value = TakeDecimal(words);
    const auto places = static_cast<unsigned char>(Take<int>(words));
    const nxErrorEnum error = ratio.Apply(value, places, TakeMethod(words), value);
    return Told(error, value.GetAsExactString('.'));
}

std::string Split(std::istream& words)
{
    const nxMoney money(TakeDecimal(words), "USD");
    std::vector<unsigned long long> weights;
    for (unsigned long long weight; words >> weight;)
        weights.push_back(weight);
    std::vector<nxMoney> parts;
    const nxErrorEnum error = money.Allocate(weights, parts);
    std::string text;
    for (const nxMoney& part : parts)
        text.append(text.empty() ? "" : " ").append(part.GetAmount().GetAsExactString('.'));
    return Told(error, text);
}

std::string Converted(std::istream& words)
{
    const nxMoney money(TakeDecimal(words), "AAA");
    const nxCurrency target(Take<std::string>(words));
    const At at = Take<std::string>(words) == "mid" ? At::Mid : At::Dealing;
    const nxRoundingMethodEnum method = TakeMethod(words);
    const nxTimeStamp now;
    nxExchangeRateList rates;
    for (std::string base; words >> base;)
    {
        const nxCurrency quote(Take<std::string>(words));
        const nxDecimal bid = TakeDecimal(words), ask = TakeDecimal(words);
        nxExchangeRate rate;
        const nxErrorEnum error = rate.Set(nxCurrency(base), quote, bid, ask, now, Take<unsigned>(words));
        if (!error.IsOK() || !rates.Set(rate).IsOK())
            return "rate " + error.GetShortDescription();
    }
    const nxExchangeRateConverter converter(std::make_shared<nxExchangeRateList>(rates), {nxCurrency("BBB")},
                                            nxDateTimeSpan(0, 0));
    nxMoney result;
    const nxErrorEnum error = converter.Convert(money, target, at, method, now, result);
    return Told(error, result.GetAsExactString('.'));
}
}  // namespace

int main()
{
    for (std::string line; std::getline(std::cin, line);)
    {
        std::istringstream words(line);
        const auto task = Take<std::string>(words);
        std::cout << (task == "cmp"     ? Ordered(words)
                      : task == "near"  ? Nearest(words)
                      : task == "dec"   ? OfDecimal(words)
                      : task == "apply" ? Applied(words)
                      : task == "split" ? Split(words)
                      : task == "conv"  ? Converted(words)
                                        : Combined(task, words))
                  << '\n';
    }
}
