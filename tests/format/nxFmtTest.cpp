// SPDX-License-Identifier: Apache-2.0
#include "core/format/nxFmt.h"

#include "core/format/nxFormat.h"
#include "core/nxCore.h"
#include "tests/support/nxTest.h"

namespace
{
/// A class of an application that happens to have the same member, and a formatter of its own for several classes.
struct Session
{
    std::string GetAsLogString() const { return "not this"; }
    int id;
};

template <class Type>
concept HasId = requires(const Type& value)
{
    value.id;
};
}  // namespace

template <HasId Type>
struct fmt::formatter<Type, char> : fmt::formatter<int, char>
{
    template <class Context>
    auto format(const Type& value, Context& context) const
    {
        return fmt::formatter<int, char>::format(value.id, context);
    }
};

TEST(nxFmt, LeavesClassesOfTheApplicationAlone)
{
    EXPECT_FALSE(nxPrintable<Session>);
    EXPECT_EQ(fmt::format("{:>3}", Session{7}), "  7");
}

TEST(nxFmt, CutsTextsOnly)
{
    const nxDecimal price("1012.50", '.');
    for (const char* const format : {"{:.2}", "{:.<.2}", "{:>10.2s}", "{:.{}}"})
    {
        EXPECT_THROW(static_cast<void>(fmt::format(fmt::runtime(format), price, 2)), fmt::format_error) << format;
        EXPECT_THROW(static_cast<void>(fmt::format(fmt::runtime(format), nxDate(), 2)), fmt::format_error) << format;
        EXPECT_NO_THROW(static_cast<void>(fmt::format(fmt::runtime(format), nxErrorEnum(), 2))) << format;
    }
    EXPECT_EQ(fmt::format("{:.>{}} {:.2}", price, 9, nxStringValue("EUR")), "..1012.50 EU");
}

TEST(nxFmt, ValuesPrintAsInTheLog)
{
    const nxProductStateBitMask state(nxProductStateBitMask::CLOSED | nxProductStateBitMask::EXPIRING);
    EXPECT_EQ(fmt::format("[{}] [{:>7}] [{:<6}]", nxErrorEnum(NX_ERR_NOT_FOUND), nxDecimal(5, 2),
                          nxDecimal::GetNullDecimal()),
              "[NX_ERR_NOT_FOUND] [   5.00] [NULL  ]");
    EXPECT_EQ(fmt::format("{} {} {}", state, nxValueWrapper<unsigned>(4294967294U), nxDoubleValueWrapper(2.5)),
              "CLOSED EXPIRING NO_CHANGE 2.5");
    EXPECT_EQ(fmt::format("{}", nxTimeStamp(0, 5'000)).substr(17), "000.005");
    EXPECT_EQ(fmt::format("{}{:>6}", nxDate(), nxDateTimeSpan(1, 0)), "NULL   P1D");
    EXPECT_EQ(fmt::format("{}", nxMoney()), nxMoney().GetAsLogString('.'));
    EXPECT_EQ(fmt::format("{} {:>4} {}", nxCurrency("USD"), nxRatio(1, 2), nxExchangeRate()), "USD  1/2 NULL");
}

#ifdef __cpp_lib_format
TEST(nxFormat, ValuesPrintAsInTheLog)
{
    EXPECT_EQ(std::format("[{}] [{:>7}]", nxErrorEnum(NX_ERR_NOT_FOUND), nxDecimal(5, 2)),
              "[NX_ERR_NOT_FOUND] [   5.00]");
}
#endif
