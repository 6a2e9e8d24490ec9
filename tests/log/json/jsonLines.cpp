// SPDX-License-Identifier: Apache-2.0
// Writes records of any bytes and values as lines of JSON to standard output, each after a line with what it must hold:
// jsonLines COUNT SEED. check.py compares the two.
//
// What must be held is NAME=KIND:VALUE, with blanks between: a text (t, in hexadecimal digits), a number (n, as JSON writes
// it), true, false or null (=).

#include <array>
#include <bit>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include "core/log/nxLog.h"
#include "core/log/nxLogLine.h"
#include "core/numeric/nxDecimal.h"
#include "core/time/nxDate.h"

struct Order
{
    unsigned id;
};
nxLog& operator<<(nxLog& record, const Order& order) { return record << "#" << order.id << nxField("side", "buy"); }

namespace
{
std::mt19937_64 randomBits;

unsigned Below(unsigned limit) { return static_cast<unsigned>(randomBits() % limit); }

// Mostly printable, with what JSON and terminals care about, characters of all sizes, and bytes that are none.
std::string AnyText()
{
    static const std::array<std::string, 16> pieces = {"a",
                                                       "filled",
                                                       "\"",
                                                       "\\",
                                                       "\n",
                                                       std::string(1, '\0'),
                                                       "\x7F",
                                                       "\x1B[31m",
                                                       "\xC3\xA9",
                                                       "\xE2\x82\xAC",
                                                       "\xF0\x9F\x93\x88",
                                                       "\xE2\x80\xA8",
                                                       "\xC2\x85",
                                                       "\xED\xA0\x80",
                                                       "\xF4\x90\x80\x80",
                                                       "\xC0\xAF"};
    std::string text;
    for (unsigned count = Below(12); count > 0; --count)
        text += Below(4) == 0 ? std::string(1, static_cast<char>(Below(256))) : pieces[Below(pieces.size())];
    return Below(50) == 0 ? std::string(Below(6000), 'x') + text : text;
}

std::string Hexadecimal(const std::string& text)
{
    std::string digits = "t:";
    for (const char c : text)
    {
        char two[3];
        std::snprintf(two, sizeof two, "%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
        digits += two;
    }
    return digits;
}

template <class Value>
std::string Add(nxLog& record, nxFieldName name, const Value& value, const std::string& expected)
{
    record << nxField(name, value);
    return std::string(" ").append(name.Get()).append("=").append(expected);
}

std::string AddField(nxLog& record)
{
    switch (Below(14))
    {
        case 0:
            return Add(record, "flag", true, "=:true");
        case 1:
            return Add(record, "flag", false, "=:false");
        case 2:
        {
            const auto number = static_cast<std::int64_t>(randomBits());
            return Add(record, "signed", number, std::string("n:").append(std::to_string(number)));
        }
        case 3:
        {
            const std::uint64_t number = randomBits();
            return Add(record, "unsigned-64", number, std::string("n:").append(std::to_string(number)));
        }
        case 4:
            return Add(record, "level", short{-7}, "n:-7");
        case 5:
        {
            const double number = std::bit_cast<double>(randomBits());
            char text[40];
            std::snprintf(text, sizeof text, "%.17g", number);
            return Add(record, "double", number, std::isfinite(number) ? std::string("n:") + text : "=:null");
        }
        case 6:
        {
            const nxDecimal decimal(static_cast<long long>(Below(2'000'000)) - 1'000'000,
                                    static_cast<unsigned char>(Below(8)));
            return Add(record, "price", decimal, std::string("n:").append(decimal.GetAsString('.')));
        }
        case 7:
            return Add(record, "price", nxDecimal::GetNullDecimal(), "=:null");
        case 8:
            return Add(record, "count", nxValueWrapper<int>(), "=:null");
        case 9:
            return Add(record, "error", nxErrorEnum(NX_ERR_NOT_FOUND), Hexadecimal("NX_ERR_NOT_FOUND"));
        case 10:
        {
            const Order order{Below(100)};
            return Add(record, "own", order,
                       Hexadecimal(std::string("#").append(std::to_string(order.id)).append(" side=buy")));
        }
        case 11:
            return Add(record, "day", nxDate(2024, 3, 5), Hexadecimal("20240305"));
        default:
        {
            const std::string text = AnyText();
            return Add(record, "text", text, Hexadecimal(text));
        }
    }
}
}  // namespace

int main(int count, char** arguments)
{
    if (count != 3)
        return 2;
    randomBits.seed(std::strtoull(arguments[2], nullptr, 10));
    for (unsigned left = static_cast<unsigned>(std::atoi(arguments[1])); left > 0; --left)
    {
        const std::string file = Below(3) == 0 ? "x.cpp" : AnyText();
        nxLog record(NX_LOG_LEVEL_WARNING, file.c_str(), Below(1000), nxTimeStamp(1'709'629'623, 123'456'789));
        std::string expected =
            "source=" +
            Hexadecimal(std::string(file.c_str()).append(":").append(std::to_string(record.GetLineNumber())));
        std::string message, fields;
        for (unsigned parts = Below(6); parts > 0; --parts)
        {
            const std::string text = AnyText();
            record << text;
            message += text;
            if (Below(3) == 0)
                fields += AddField(record);
        }
        for (unsigned parts = Below(6); parts > 0; --parts)
            fields += AddField(record);
        std::string line;
        nxLogLine::Append(line, record, {nxLogLineStyle::Json, Below(2) == 0});
        expected += std::string(" message=").append(Hexadecimal(message)).append(fields).append("\n");
        std::fwrite(expected.data(), 1, expected.size(), stdout);
        std::fwrite(line.data(), 1, line.size(), stdout);
    }
}
