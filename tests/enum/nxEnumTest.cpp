// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxEnum.h"

#include <dlfcn.h>

#include <atomic>
#include <optional>
#include <unordered_map>

#include "core/enum/internal/nxNameTag.h"
#include "core/nxCore.h"
#include "tests/support/nxTest.h"
#include "tests/support/nxTestThreads.h"

namespace
{
//! [application enumeration]
class SessionEnum final : public nxTypedEnum<SessionEnum, 3000000, 3000100>
{
public:
    static constexpr nxEnumValue DAY{3000001};
    static constexpr nxEnumValue NIGHT{3000002};

    using nxTypedEnum::nxTypedEnum;
    using nxTypedEnum::operator=;
    std::string GetClassName() const override { return "SessionEnum"; }

    using nxEnum::_Register;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

const bool SessionEnum::_registered = _RegisterValues();

bool SessionEnum::_RegisterValues()
{
    static constexpr ValueTexts values[] = {{DAY, "SESSION_DAY", "day session"}, {NIGHT, "SESSION_NIGHT", nullptr}};
    return _RegisterAll(values);
}
//! [application enumeration]

// Intervals that touch both ends of the numbering.
class LastEnum final : public nxTypedEnum<LastEnum, 0xFFFFFFF0, 0xFFFFFFFF>
{
public:
    using nxTypedEnum::nxTypedEnum;
    using nxTypedEnum::operator=;
    using nxEnum::_Register;
    std::string GetClassName() const override { return "LastEnum"; }
};

// Rows that another plug-in might register: not constants, and some of them invalid.
class RivalEnum final : public nxTypedEnum<RivalEnum, 3000200, 3000300>
{
public:
    using nxTypedEnum::_Register;
    using nxTypedEnum::nxTypedEnum;
    std::string GetClassName() const override { return "RivalEnum"; }

    static bool Register()
    {
        const std::string longest(64, 'R'), tooLong(65, 'R');
        const ValueTexts rows[] = {{3000201, "SESSION_DAY", "taken by SessionEnum"},
                                   {3000202, "RIVAL", "Rival"},
                                   {3000202, "RIVAL", "once more"},
                                   {3000202, "OTHER", "taken above"},
                                   {1500000, "NX_ERR_RIVAL", "an error code"},
                                   {3000203, tooLong.c_str(), "too long"},
                                   {3000204, longest.c_str(), "just not too long"}};
        return _RegisterAll(rows);
    }
};

// The list form. Its only value is the last one of RivalEnum, too.
#define NX_VALUES_QuoteEnum(VALUE) VALUE(FIRM, 3000299, "QUOTE_FIRM", "firm quote")

class QuoteEnum final : public nxTypedEnum<QuoteEnum, 3000298, 3000300>
{
    NX_ENUM(QuoteEnum);
};
NX_ENUM_SOURCE(QuoteEnum)

template <class Enum>
std::vector<unsigned> Registered()
{
    std::vector<unsigned> values;
    for (const Enum value : Enum::GetRegisteredValues())
        values.push_back(value.GetValue());
    return values;
}

TEST(nxEnum, SettersAcceptTheClassesOwnValuesAndTheTwoSharedOnes)
{
    const struct Row
    {
        unsigned value, generic, boolean, error;
    } rows[] = {
        {0, 0, 0, 0},
        {1, 0, 0, 0},  // "not registered" is a text, never a value
        {2, 2, 2, 2},
        {3, 3, 0, 0},
        {5000, 5000, 0, 0},
        {5001, 5001, 5001, 0},
        {5002, 5002, 5002, 0},
        {5003, 5003, 0, 0},
        {999998, 999998, 0, 0},
        {999999, 0, 0, 0},
        {1000000, 0, 0, 0},
        {1000001, 0, 0, 1000001},
        {1000112, 0, 0, 1000112},  // inside the interval though without a text
        {1999998, 0, 0, 1999998},
        {1999999, 0, 0, 0},
        {0xFFFFFFFF, 0, 0, 0},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.value);
        const auto expect = [&row](auto value, unsigned expected)
        {
            const nxEnumValue constant{row.value};
            EXPECT_EQ(decltype(value)(constant).GetValue(), expected);
            EXPECT_EQ(decltype(value)(row.value).GetValue(), expected);
            EXPECT_EQ((value = constant).GetValue(), expected);
            EXPECT_EQ((value = row.value).GetValue(), expected);
            nxEnum& base = value;
            EXPECT_EQ((base = constant).GetValue(), expected);
            EXPECT_EQ((base = row.value).GetValue(), expected);
        };
        expect(nxGenericEnum(), row.generic);
        expect(nxBoolEnum(), row.boolean);
        expect(nxErrorEnum(), row.error);
    }
    // A number that 32 bits cannot hold belongs to no class, even where its lower half or its complement would.
    for (const long long wide : {(1ll << 32) + 1000001, -1ll, 0xFFFFFFFEll - (1ll << 32)})
    {
        nxErrorEnum error(NX_ERR_NOT_FOUND);
        LastEnum last(0xFFFFFFFE);
        EXPECT_FALSE(error == wide || last == wide || nxEnum::IsRegisteredEnumValue(wide));
        EXPECT_TRUE((static_cast<nxEnum&>(error) = wide).IsUndefined() && nxErrorEnum(wide).IsUndefined());
        EXPECT_TRUE((static_cast<nxEnum&>(last) = wide).IsUndefined() && LastEnum(wide).IsUndefined());
    }
    nxErrorEnum emptied(NX_ERR_INTERNAL);
    emptied = {};
    EXPECT_TRUE(emptied.IsOK());
}

TEST(nxEnum, ParsesIdentifiersOfItsClass)
{
    const unsigned before = NX_ERR_INTERNAL;
    const std::string longest = "NX_ERR_ORDER_GATEWAY_HELD_ORDER_DEL_WHEN_CONTINGENT_ORDER_FILLED";
    ASSERT_EQ(longest.size(), 64u);
    const std::tuple<std::string, bool, unsigned> rows[] = {
        {"NX_ERR_SOCKET_BIND_FAILED", true, 1010202},
        {longest, true, 1005064},
        {longest + "S", false, before},
        {"NO_CHANGE", true, 2},
        {"UNDEFINED", true, 0},
        {"NOT_REGISTERED", false, 0},  // known, but never stored
        {"FALSE", false, 0},           // belongs to another class
        {"no such name", false, before},
        {"Socket bind failed", false, before},  // wordings are not parsed
        {"nx_err_socket_bind_failed", false, before},
        {"NX_ERR_SOCKET_BIND_FAILED ", false, before},
        {std::string("NX_ERR_INTERNAL\0", 16), false, before},
        {std::string(1 << 20, 'N'), false, before},
        {"", false, before},
    };
    for (const auto& [text, result, after] : rows)
    {
        SCOPED_TRACE(text.substr(0, 100));
        nxErrorEnum typed(before), untyped(before);
        EXPECT_EQ(typed.SetFromString(text), result);
        EXPECT_EQ(untyped.SetFromShortDescriptionString(text), result);
        EXPECT_EQ(typed.GetValue(), after);
        EXPECT_EQ(untyped.GetValue(), after);
    }
    nxErrorEnum error(before);
    EXPECT_FALSE(error.SetFromString(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(error.SetFromShortDescriptionString(static_cast<const char*>(nullptr)));
    EXPECT_EQ(error.GetValue(), before);
    EXPECT_TRUE(error.SetFromString(std::string_view(longest)) && error == 1005064);
    EXPECT_TRUE(error.SetFromString("UNDEFINED") && error.IsOK());
    // Registered only here, because the rows above need an empty text that is not registered.
    EXPECT_TRUE(SessionEnum::_Register(3000012, "", "any wording"));
    EXPECT_FALSE(SessionEnum::_Register(3000013, "", "any wording"));
    EXPECT_TRUE(SessionEnum().SetFromString(std::string_view()));
}

TEST(nxEnum, AListMakesAClass)
{
    QuoteEnum quote;
    EXPECT_TRUE(quote.SetFromString("QUOTE_FIRM"));
    EXPECT_EQ(quote, QuoteEnum::FIRM);
    EXPECT_EQ(quote.GetClassName() + ": " + quote.GetLongDescription(), "QuoteEnum: firm quote");
}

TEST(nxEnum, ForeignNumbersNeverReadAsSuccessAndRequestsThatChangeNothingKeepTheValue)
{
    const std::tuple<unsigned long long, unsigned, unsigned> rows[] = {
        {0, 0, 0},
        {2, NX_ERR_UNSPECIFIED, NX_ERR_INTERNAL},
        {1000000, NX_ERR_UNSPECIFIED, 0},
        {1000001, 1000001, 1000001},
        {1999998, 1999998, 1999998},
        {1999999, NX_ERR_UNSPECIFIED, 0},
        {(1ull << 32) + 1000001, NX_ERR_UNSPECIFIED, 0},
    };
    for (const auto& [number, error, updated] : rows)
    {
        SCOPED_TRACE(number);
        EXPECT_EQ(nxErrorEnum::FromForeignValue(number), error);
        nxErrorEnum value(NX_ERR_INTERNAL);
        value.UpdateFrom(nxErrorEnum(number));
        EXPECT_EQ(value, updated);
    }
}

TEST(nxEnum, EveryRegisteredTextLeadsBackToItsValueAndOtherValuesHaveNone)
{
    const auto expect = [](auto parsed)
    {
        for (const auto value : decltype(parsed)::GetRegisteredValues())
        {
            EXPECT_TRUE(parsed.SetFromString(value.GetShortDescription())) << value;
            EXPECT_EQ(parsed, value);
            EXPECT_TRUE(nxEnum::IsRegisteredEnumValue(value.GetValue())) << value;
        }
    };
    expect(nxErrorEnum());
    expect(nxGenericEnum());
    for (const nxErrorEnum& without : {nxErrorEnum(1000112), nxErrorEnum(1999998)})
    {
        EXPECT_FALSE(nxEnum::IsRegisteredEnumValue(without.GetValue()));
        EXPECT_EQ(without.GetShortDescription(), "NOT_REGISTERED");
        EXPECT_EQ(without.GetLongDescription(), "not registered");
        EXPECT_EQ(&without.GetAsString(), &without.GetShortDescription());
    }
}

TEST(nxEnum, RefusedRowsAreToldOnce)
{
    for (int round = 0; round != 2; ++round)
        EXPECT_TRUE(RivalEnum::Register());
    EXPECT_FALSE(RivalEnum::_Register(1500000, "NX_ERR_RIVAL", "an error code"));
    EXPECT_FALSE(RivalEnum::_Register(3000205, "NX_ERR_NOT_FOUND", "taken by another class"));
    EXPECT_TRUE(RivalEnum::_Register(3000300, "RIVAL_BOUND", "a bound, as the list of values has it"));
    EXPECT_EQ(Registered<RivalEnum>(), (std::vector<unsigned>{3000202, 3000204, QuoteEnum::FIRM}));
    EXPECT_FALSE(nxEnum::IsRegisteredEnumValue(3000205));
    EXPECT_EQ(nxErrorEnum(1500000).GetAsString(), "NOT_REGISTERED");
    nxRefusedTexts::AddClass("LateEnum", 3000200, 3000202);
    EXPECT_TRUE(RivalEnum::Register());
    nxRefusedTexts::AddClass("TouchingEnum", 3000099, 3000201);
    nxRefusedTexts::AddClass("UpperBoolEnum", 5001, 5010);
    std::vector<std::string> told = nxRefusedTexts::Get();
    std::erase_if(told, [](const std::string& sentence) { return sentence.find("BitMask") != sentence.npos; });
    EXPECT_EQ(told,
              (std::vector<std::string>{
                  "RivalEnum (3000200 to 3000300) and QuoteEnum (3000298 to 3000300) have values in common",
                  "3000201 'SESSION_DAY' of RivalEnum is not registered: 3000001 of SessionEnum has that identifier",
                  "3000202 'OTHER' of RivalEnum is not registered: the value has the identifier 'RIVAL'",
                  "1500000 'NX_ERR_RIVAL' is not registered: it lies outside the interval of its class",
                  std::string("3000203 '")
                      .append(65, 'R')
                      .append("' of RivalEnum is not registered: the identifier is longer than 64 characters"),
                  "LateEnum (3000200 to 3000202) and RivalEnum (3000200 to 3000300) have values in common",
                  "UpperBoolEnum (5001 to 5010) and nxBoolEnum (5000 to 5003) have values in common"}));
    SessionEnum session;
    RivalEnum rival;
    EXPECT_TRUE(session.SetFromString("SESSION_DAY") && session.GetLongDescription() == "day session");
    EXPECT_FALSE(rival.SetFromString("OTHER"));
    EXPECT_TRUE(rival.SetFromString(std::string(64, 'R')) && rival == 3000204);

    constexpr unsigned rows = 500;
    const std::size_t before = nxRefusedTexts::Get().size();
    const auto refuse = []
    {
        for (unsigned value = 0; value != rows; ++value)
            nxRefusedTexts::AddOutside(value, "AT_ONCE");
    };
    nxInThreads(4, refuse);
    EXPECT_EQ(nxRefusedTexts::Get().size(), before + rows);
}

// A thousand names that differ in one place, wherever it is: no slot of the table is the first choice of many.
TEST(nxEnum, NamesOfOnePatternSpreadOverTheTable)
{
    for (std::size_t size = 3; size <= nxNameTag::MaximumSize; ++size)
        for (std::size_t place = 0; place + 3 <= size; ++place)
        {
            std::string name(size, 'X');
            std::array<unsigned, 2048> slots{};
            for (unsigned number = 0; number != 1000; ++number)
            {
                name.replace(place, 3, std::to_string(1000 + number), 1, 3);
                ++slots[(nxNameTag::Get(name) >> nxNameTag::SizeBits) % slots.size()];
            }
            ASSERT_LE(*std::max_element(slots.begin(), slots.end()), 9u) << size << " bytes, differing at " << place;
        }
}

TEST(nxEnum, NamesWithOneHashAreToldApart)
{
    std::unordered_map<std::uint32_t, std::string> seen;
    std::string name, twin;
    for (unsigned i = 0; twin.empty(); ++i)
    {
        name = "TWIN_" + std::to_string(1'000'000 + i);
        if (const auto [found, isNew] = seen.try_emplace(nxNameTag::Get(name), name); !isNew)
            twin = found->second;
    }
    ASSERT_TRUE(SessionEnum::_Register(3000020, name, ""));
    SessionEnum parsed;
    EXPECT_FALSE(parsed.SetFromString(twin));
    ASSERT_TRUE(SessionEnum::_Register(3000021, twin, ""));
    EXPECT_TRUE(parsed.SetFromString(twin) && parsed == 3000021);
    EXPECT_TRUE(parsed.SetFromString(name) && parsed == 3000020);
}

TEST(nxEnum, ListsTheRegisteredValuesOfAClassInOrder)
{
    const std::vector<nxEnumValue> expected{NX_BOOL_FALSE, NX_BOOL_TRUE};
    std::vector<nxEnumValue> values{NX_ERR_INTERNAL};
    nxBoolEnum().GetRegisteredEnumValuesForInstance(values);
    EXPECT_EQ(values, expected);
    std::set<nxEnumValue> set{NX_ERR_INTERNAL};
    nxBoolEnum().GetRegisteredEnumValuesForInstance(set);
    EXPECT_EQ(set, std::set<nxEnumValue>(expected.begin(), expected.end()));
    EXPECT_EQ(Registered<nxBoolEnum>(), (std::vector<unsigned>{5001, 5002}));
    EXPECT_EQ(Registered<nxErrorEnum>().size(), 581u);

    // The generic class spans all the small ones. The first list includes the values that all classes share.
    nxGenericEnum().GetRegisteredEnumValuesForInstance(values);
    EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
    EXPECT_EQ(Registered<nxGenericEnum>().size(), values.size() - 3);

    EXPECT_TRUE(Registered<LastEnum>().empty());
    ASSERT_TRUE(LastEnum::_Register(0xFFFFFFFF, "LAST_BOUND", ""));
    ASSERT_TRUE(LastEnum::_Register(0xFFFFFFFE, "LAST", ""));
    EXPECT_EQ(Registered<LastEnum>(), (std::vector<unsigned>{0xFFFFFFFE}));
    LastEnum().GetRegisteredEnumValuesForInstance(values);
    EXPECT_EQ(values, (std::vector<nxEnumValue>{nxEnumValue{0xFFFFFFFE}, nxEnumValue{0xFFFFFFFF}}));
}

TEST(nxEnum, SharedStatesAreReachedAndTold)
{
    nxBoolEnum value;
    EXPECT_TRUE(value.IsUndefined() && !value.IsSpecificTypeForInstance());
    EXPECT_EQ(Streamed(value), "UNDEFINED");
    value.SetNoChange();
    EXPECT_TRUE(value.IsNoChange() && !value.IsSpecificTypeForInstance());
    EXPECT_EQ(value.GetLongDescription(), "no change");
    value = NX_BOOL_TRUE;
    EXPECT_TRUE(value.IsSpecificTypeForInstance());
    EXPECT_EQ(value.GetEnumValue(), NX_BOOL_TRUE);
    value.Clear();
    EXPECT_TRUE(value.IsUndefined());
}

TEST(nxEnum, ComparesValuesWithinAndAcrossClasses)
{
    const nxBoolEnum no(NX_BOOL_FALSE), yes(NX_BOOL_TRUE), undefined;
    const nxGenericEnum generic(NX_BOOL_TRUE);
    const nxEnum &base = yes, &other = generic;
    EXPECT_TRUE(yes == nxBoolEnum(yes) && yes == NX_BOOL_TRUE && yes == 5002u && yes == 5002 && yes == generic);
    EXPECT_TRUE(NX_BOOL_TRUE == yes && 5002u == yes && generic == yes);
    EXPECT_TRUE(yes != no && yes != NX_BOOL_FALSE && yes != 5001u && no != generic && undefined == nxErrorEnum());
    EXPECT_TRUE(base == other && base != NX_BOOL_FALSE && base == 5002u);
    EXPECT_TRUE(no < yes && yes > no && no <= no && undefined < no);
    EXPECT_TRUE(no < NX_BOOL_TRUE && NX_BOOL_FALSE < yes && yes >= NX_BOOL_TRUE);
    EXPECT_EQ(std::unordered_set<nxBoolEnum>({no, yes, nxBoolEnum(yes)}).size(), 2u);
    EXPECT_EQ(*std::set<nxBoolEnum>({yes, no}).begin(), no);
}

TEST(nxErrorEnum, SuccessTimeoutsAndSecurityErrorsAreTold)
{
    const std::tuple<unsigned, bool, bool, bool> rows[] = {
        {0, true, false, false},
        {2, false, false, false},  // "no change" is not success
        {NX_ERR_NOT_FOUND, false, false, false},
        {1000112, false, false, false},  // a withdrawn code is an error all the same
        {NX_ERR_THR_TIMEDOUT, false, false, false},
        {1000212, false, false, false},
        {NX_ERR_MSG_RECEIPT_TIMED_OUT, false, true, false},
        {NX_ERR_MSG_RESPONSE_TIMED_OUT, false, true, false},
        {1000215, false, false, false},
        {1000999, false, false, false},
        {1001000, false, false, true},
        {1001048, false, false, true},
        {1001049, false, false, false},
    };
    for (const auto& [value, isOK, isTimeout, isSecurity] : rows)
    {
        const nxErrorEnum error(value);
        EXPECT_EQ(error.IsOK(), isOK) << value;
        EXPECT_EQ(error.IsTimeout(), isTimeout) << value;
        EXPECT_EQ(error.IsSecurityError(), isSecurity) << value;
    }
}

// A plug-in registers thousands of values, which makes the tables grow, while threads look up old and new values. Every
// result is complete, and earlier results stay valid.
TEST(nxEnum, APluginRegistersWhileOtherThreadsLookUp)
{
    const std::string& kept = nxErrorEnum(NX_ERR_NOT_FOUND).GetShortDescription();
    constexpr unsigned first = 4000001;
    constexpr unsigned count = 5000;
    std::atomic<unsigned> looked = 0;
    std::atomic<unsigned> wrong = 0;
    const auto look = [&]
    {
        const unsigned i = ++looked * 7 % count;
        const std::string name = "PLUGIN_VALUE_" + std::to_string(i);
        class PluginEnum final : public nxTypedEnum<PluginEnum, 4000000, 4010000>
        {
        public:
            using nxTypedEnum::nxTypedEnum;
            std::string GetClassName() const override { return "PluginEnum"; }
        } value(nxEnumValue{first + i}), parsed;
        const std::string& text = value.GetShortDescription();
        const bool isParsed = parsed.SetFromString(name);
        nxErrorEnum error;
        wrong += (text != name && text != "NOT_REGISTERED") || (isParsed ? parsed != value : !parsed.IsUndefined()) ||
                 !error.SetFromString("NX_ERR_NO_MATCH") ||
                 nxProductStateBitMask(2).GetShortDescription(" ") != "CLOSED";
        // What a walk finds has its text, too.
        const auto walked = PluginEnum::GetRegisteredValues();
        if (const auto found = walked.begin(); found != walked.end())
            wrong += (*found).GetShortDescription() == "NOT_REGISTERED";
        class PluginBitMask final : public nxTypedBitMask<PluginBitMask, nxBitMask>
        {
        public:
            using nxTypedBitMask::nxTypedBitMask;
            std::string GetClassName() const override { return "PluginBitMask"; }
        };
        const std::string flag = PluginBitMask(1).GetShortDescription(" ");
        wrong += flag != "PLUGGED" && flag != "???" && flag != "No Description Available";
    };
    std::optional<nxBusyThread> threads[3];
    for (std::optional<nxBusyThread>& thread : threads)
        thread.emplace(look);
    EXPECT_TRUE(nxEventually([&] { return looked > 100; }));
    void* const plugin = dlopen(NX_TEST_PLUGIN, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(plugin, nullptr) << dlerror();
    for (std::optional<nxBusyThread>& thread : threads)
        thread.reset();
    EXPECT_EQ(wrong, 0u);
    EXPECT_TRUE(nxEnum::IsRegisteredEnumValue(first + count - 1));
    EXPECT_FALSE(nxEnum::IsRegisteredEnumValue(first + count));
    EXPECT_EQ(&kept, &nxErrorEnum(NX_ERR_NOT_FOUND).GetShortDescription());
    EXPECT_EQ(kept, "NX_ERR_NOT_FOUND");
    dlclose(plugin);
    EXPECT_TRUE(nxEnum::IsRegisteredEnumValue(first));
}
}  // namespace
