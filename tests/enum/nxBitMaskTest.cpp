#include "core/enum/nxBitMask.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <unordered_set>

#include "core/nxCore.h"

namespace
{
// Opens the registry's accessor to the tests.
struct Registry : nxBitMask
{
    using nxBitMask::_GetDescriptionMap;
};
struct Registry64 : nxBitMask64
{
    using nxBitMask64::_GetDescriptionMap;
};

// An application's own mask, as the header of nxTypedBitMask shows; bit 2 has no text.
class QuoteFlagsBitMask final : public nxTypedBitMask<QuoteFlagsBitMask, nxBitMask>
{
public:
    enum Flag : Word
    {
        FIRM = Bit(0),
        INDICATIVE = Bit(1),
        UNNAMED = Bit(2),
        LAST_ORDINARY = Bit(29),
    };
    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;
    std::string GetClassName() const override { return "QuoteFlagsBitMask"; }

    static bool RegisterAgain() { return _Register("QuoteFlagsBitMask", FIRM, "OTHER", "Other"); }
    bool RegisterOfInstance() { return _Register(LAST_ORDINARY, "LAST_ORDINARY", "Last ordinary"); }

private:
    static bool _RegisterValues();
    static const bool _registered;
};

const bool QuoteFlagsBitMask::_registered = _RegisterValues();

bool QuoteFlagsBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {{FIRM, "FIRM", "Firm"}, {INDICATIVE, "INDICATIVE", "Indicative"}};
    return _RegisterFlags("QuoteFlagsBitMask", flags);
}

class UnregisteredBitMask final : public nxTypedBitMask<UnregisteredBitMask, nxBitMask64>
{
public:
    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;
    std::string GetClassName() const override { return "UnregisteredBitMask"; }
};

// The same behaviour is asked of both widths.
template <class Mask>
class AnyBitMask : public testing::Test
{
};
using Masks = testing::Types<nxProductStateBitMask, nxServerCapabilityBitMask>;
TYPED_TEST_SUITE(AnyBitMask, Masks);

TYPED_TEST(AnyBitMask, TopBitsMeanNullAndNoChange)
{
    constexpr auto null = TypeParam::NullBit;
    constexpr auto noChange = TypeParam::NoChangeBit;
    EXPECT_EQ(null, TypeParam::Bit(sizeof(typename TypeParam::Word) * 8 - 1));
    EXPECT_EQ(noChange, null >> 1);
    struct Row
    {
        typename TypeParam::Word word;
        bool valid, isNull, isNoChange;
    };
    const Row rows[] = {{0, true, false, false},
                        {noChange >> 1, true, false, false},
                        {noChange, false, false, true},
                        {null, false, true, false},
                        {null | noChange | 1, false, true, true}};
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.word);
        TypeParam mask;
        mask = row.word;
        EXPECT_EQ(mask.GetValue(), row.word);
        EXPECT_EQ(mask.IsValid(), row.valid);
        EXPECT_EQ(mask.IsNull(), row.isNull);
        EXPECT_EQ(mask.IsNoChange(), row.isNoChange);
    }
}

TYPED_TEST(AnyBitMask, SettingBitsKeepsTheOthersOfAValidMaskAndStartsAnInvalidOneAfresh)
{
    const typename TypeParam::Word before[] = {0, 3, TypeParam::NullBit | 3, TypeParam::NoChangeBit | 3};
    const typename TypeParam::Word after[] = {4, 7, 4, 4};
    for (std::size_t i = 0; i != std::size(before); ++i)
    {
        SCOPED_TRACE(i);
        TypeParam byWord(before[i]), byMask(before[i]), orWord(before[i]), orMask(before[i]);
        byWord.SetBits(4);
        byMask.SetBits(TypeParam(4));
        orWord |= 4;
        orMask |= TypeParam(4);
        EXPECT_EQ(byWord.GetValue(), after[i]);
        EXPECT_EQ(byMask, byWord);
        EXPECT_EQ(orWord, byWord);
        EXPECT_EQ(orMask, byWord);
    }
    TypeParam null;
    null.SetNull();
    null.SetBits(null);  // the operand is read before the target is emptied
    EXPECT_TRUE(null.IsNull());
}

TYPED_TEST(AnyBitMask, ClearsAndTestsBits)
{
    TypeParam mask(7);
    mask.ClearBits(2);
    EXPECT_EQ(mask, 5u);
    EXPECT_NE(mask, 7u);
    EXPECT_NE(mask, TypeParam(TypeParam::NullBit | 5));
    EXPECT_TRUE(mask.AreAllBitsSet(5));
    EXPECT_TRUE(mask.AreAllBitsSet(TypeParam(0)));
    EXPECT_FALSE(mask.AreAllBitsSet(TypeParam(6)));
    EXPECT_TRUE(mask.AreAnyBitsSet(TypeParam(6)));
    EXPECT_FALSE(mask.AreAnyBitsSet(2));
    EXPECT_FALSE(mask.AreAnyBitsSet(0));
    mask.ClearBits(TypeParam(1));
    EXPECT_EQ(mask, 4u);
    mask.SetNoChange();
    EXPECT_EQ(mask.GetValue(), TypeParam::NoChangeBit);
    mask.SetNull();
    EXPECT_EQ(mask.GetValue(), TypeParam::NullBit);
    mask.Clear();
    EXPECT_TRUE(mask.IsValid());
    EXPECT_EQ(mask.GetShortDescription(","), "");
}

TYPED_TEST(AnyBitMask, CopiesAndHashesByWord)
{
    const TypeParam first(5), second(first);
    TypeParam third;
    third = second;
    const std::unordered_set<TypeParam> set{first, second, third, TypeParam(6)};
    EXPECT_EQ(set.size(), 2u);
}

TYPED_TEST(AnyBitMask, HasSixteenBytesAndTheVirtualSlotsInTheirOrder)
{
    EXPECT_EQ(sizeof(TypeParam), 2 * sizeof(void*));
#if defined(__x86_64__)
    // A pointer to a virtual member function holds the slot's offset plus one; the destructor takes two slots.
    struct Pointer
    {
        std::uintptr_t function;
        std::ptrdiff_t adjustment;
    };
    const auto slot = [](auto member) { return (std::bit_cast<Pointer>(member).function - 1) / sizeof(void*); };
    using Base = std::conditional_t<sizeof(typename TypeParam::Word) == 4, nxBitMask, nxBitMask64>;
    using Generic = std::conditional_t<sizeof(typename TypeParam::Word) == 4, nxGenericBitMask, nxGenericBitMask64>;
    using Text = std::string (Base::*)(const std::string&) const;
    EXPECT_EQ(slot(&Base::IsValid), 2u);
    EXPECT_EQ(slot(&Base::IsNoChange), 3u);
    EXPECT_EQ(slot(&Base::IsNull), 4u);
    EXPECT_EQ(slot(static_cast<void (Base::*)(typename Base::Word)>(&Base::SetBits)), 5u);
    EXPECT_EQ(slot(static_cast<void (Base::*)(const Base&)>(&Base::SetBits)), 6u);
    EXPECT_EQ(slot(&Base::SetNull), 7u);
    EXPECT_EQ(slot(&Base::SetNoChange), 8u);
    EXPECT_EQ(slot(static_cast<Text>(&Base::GetShortDescription)), 9u);
    EXPECT_EQ(slot(static_cast<Text>(&Base::GetLongDescription)), 10u);
    EXPECT_EQ(slot(&Base::GetClassName), 11u);
    EXPECT_EQ(slot(static_cast<std::string (Generic::*)() const>(&Generic::GetShortDescription)), 12u);
    EXPECT_EQ(slot(static_cast<std::string (Generic::*)() const>(&Generic::GetLongDescription)), 13u);
#endif
}

TEST(nxBitMask, DescribesItsFlagsLowestFirst)
{
    struct Row
    {
        unsigned word;
        const char* shortText;
        const char* longText;
    };
    const Row rows[] = {
        {0, "", ""},
        {QuoteFlagsBitMask::FIRM, "FIRM", "Firm"},
        {QuoteFlagsBitMask::FIRM | QuoteFlagsBitMask::INDICATIVE, "FIRM, INDICATIVE", "Firm, Indicative"},
        {QuoteFlagsBitMask::FIRM | QuoteFlagsBitMask::UNNAMED, "FIRM, ???", "Firm, ???"},
        {nxBitMask::NullBit | QuoteFlagsBitMask::FIRM, "Null", "Null"},
        {nxBitMask::NoChangeBit | QuoteFlagsBitMask::FIRM, "No Change", "No Change"},
        {nxBitMask::NullBit | nxBitMask::NoChangeBit, "Null", "Null"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.word);
        const QuoteFlagsBitMask mask(row.word);
        EXPECT_EQ(mask.GetShortDescription(", "), row.shortText);
        EXPECT_EQ(mask.GetLongDescription(", "), row.longText);
    }
    std::ostringstream stream;
    stream << QuoteFlagsBitMask(3) << '|' << nxServerCapabilityBitMask(1ull << 51 | 2);
    EXPECT_EQ(stream.str(), "FIRM INDICATIVE|ADOPT_ORDER FAULT_TOLERANT_HANDOVER");
}

TEST(nxBitMask, AClassWithoutTextsSaysSoUnlessItIsNotValid)
{
    UnregisteredBitMask mask(5);
    EXPECT_EQ(mask.GetShortDescription(" "), "No Description Available");
    EXPECT_EQ(UnregisteredBitMask().GetLongDescription(" "), "No Description Available");
    EXPECT_EQ(nxGenericBitMask(5).GetLongDescription(" "), "No Description Available");
    mask.SetNull();
    EXPECT_EQ(mask.GetShortDescription(" "), "Null");
    mask.SetNoChange();
    EXPECT_EQ(mask.GetLongDescription(" "), "No Change");
}

TEST(nxBitMask, ATextOnceRegisteredIsKept)
{
    EXPECT_FALSE(QuoteFlagsBitMask::RegisterAgain());
    EXPECT_EQ(QuoteFlagsBitMask(1).GetShortDescription(" "), "FIRM");
    EXPECT_TRUE(QuoteFlagsBitMask().RegisterOfInstance());
    EXPECT_EQ(QuoteFlagsBitMask(QuoteFlagsBitMask::LAST_ORDINARY).GetLongDescription(" "), "Last ordinary");
}

TEST(nxGenericBitMask, WritesTheWordInBinary)
{
    struct Row
    {
        unsigned long long word;
        std::string text;
    };
    const Row rows[] = {{0, ""}, {1, "1"}, {5, "101"}, {0x80000000, "1" + std::string(31, '0')}};
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.word);
        EXPECT_EQ(nxGenericBitMask(static_cast<unsigned>(row.word)).GetShortDescription(), row.text);
        EXPECT_EQ(nxGenericBitMask64(row.word).GetShortDescription(), row.text);
        EXPECT_EQ(nxGenericBitMask64(row.word).GetLongDescription(), row.text);
    }
    EXPECT_EQ(nxGenericBitMask64(~0ull).GetShortDescription(), std::string(64, '1'));
}

struct CatalogueRow
{
    const char* name;
    unsigned bits;
    std::size_t entries;
    std::vector<std::pair<unsigned long long, std::pair<std::string, std::string>>>
        texts;  // long text empty: not checked
};

template <class Map>
void ExpectCatalogue(const Map& map, const CatalogueRow& row)
{
    const auto found = map.find(row.name);
    ASSERT_NE(found, map.end());
    const auto& flags = found->second;
    EXPECT_EQ(flags.size(), row.entries);
    for (const auto& [word, texts] : row.texts)
    {
        SCOPED_TRACE(texts.first + "/" + texts.second);
        const auto flag = flags.find(static_cast<typename Map::mapped_type::key_type>(word));
        ASSERT_NE(flag, flags.end());
        EXPECT_EQ(flag->second.first, texts.first);
        EXPECT_TRUE(texts.second.empty() || texts.second == flag->second.second) << flag->second.second;
    }
    // Bit order without a hole, except for the levels, which are plain numbers; every flag has both texts.
    unsigned long long expected = std::string(row.name) == "nxGenericDataAccessLevelBaseBitMask" ? 0 : 1;
    for (const auto& [word, texts] : flags)
    {
        EXPECT_EQ(word, expected);
        expected = expected == 0 || flags.begin()->first == 0 ? expected + 1 : expected << 1;
        EXPECT_FALSE(texts.first.empty());
        EXPECT_FALSE(texts.second.empty());
    }
}

TEST(nxBitMask, EveryClassHasItsFlags)
{
    const CatalogueRow rows[] = {
        {"nxOrderFillSummaryFieldBitMask", 32, 8, {{1, {"TREE_LEVEL", "TreeLevel"}}}},
        {"nxOrderTransactionFlagsBitMask",
         32,
         3,
         {{1, {"NX_ORDER_TRANSACTION_FLAG_AMEND_USER_FIELDS_ONLY", "Amend User fields only"}},
          {2, {"NX_ORDER_TRANSACTION_FLAG_PRESERVE_HELD_ORDERS", ""}}}},
        {"nxUserOrderFlagsBitMask",
         32,
         32,
         {{1, {"NX_USER_ORDER_FLAG_1", ""}},
          {1u << 28, {"NX_USER_ORDER_FLAG_29", ""}},
          {1u << 29, {"NX_USER_ORDER_FLAG_30", ""}},
          {1u << 30, {"NO_CHANGE", "NoChange"}},
          {1u << 31, {"NX_USER_ORDER_FLAG_29", "Null"}}}},
        {"nxStrategyLegFlagsBitMask",
         32,
         2,
         {{1, {"ENABLE_SECONDARY_PRODUCT_ID_PRICE_MULTIPLIER", ""}}, {2, {"INVERT_SECONDARY_PRODUCT_ID_PRICE", ""}}}},
        {"nxConditionalOrderFlagsBitMask",
         32,
         3,
         {{1,
           {"NX_CONDITIONAL_ORDER_FLAG_STOP_ENTRY_BRACKET_EXECUTION_RESTRICTION_STOP", "StopEntryBracket use Stop"}}}},
        {"nxExchangePriceFilterBitMask", 32, 5, {{1, {"BLOCK_TRADES", ""}}, {8, {"PREV_SETTLEMENTS", ""}}}},
        {"nxOrderTransactionBroadcastBitMask", 32, 1, {{1, {"GATEWAY_HOP_NOT_NEEDED", ""}}}},
        {"nxHIDEventTargetFilterBitMask", 32, 4, {{1, {"KEYPAD_GRID", ""}}, {8, {"FIRST_AVAILABLE_GRID", ""}}}},
        {"nxSecurityNodeChangeBitMask", 32, 19, {{1, {"Description change", ""}}, {1u << 18, {"All users", ""}}}},
        {"nxDataInterestBitMask", 32, 27, {{1, {"Tick Data Minute", ""}}}},
        {"nxPriceInterestBitMask", 32, 9, {{1, {"Bid prc", ""}}, {2, {"Ask prc", ""}}, {256, {"Stale prc", ""}}}},
        {"nxFixMDTradeConditionBitMask",
         32,
         4,
         {{1, {"Ex-Pit(W)", ""}}, {2, {"Implied(1)", ""}}, {4, {"ExchangeLast(U)", ""}}, {8, {"OpeningTrade(E)", ""}}}},
        {"nxFixMDQuoteConditionBitMask",
         32,
         3,
         {{1, {"Implied(K)", ""}}, {2, {"Best(C)", ""}}, {4, {"OrderRetransmission(R)", ""}}}},
        {"nxKeyboardModifierBitMask", 32, 3, {{1, {"Shift", ""}}}},
        {"nxGenericDataAccessLevelBaseBitMask",
         32,
         5,
         {{2, {"Write", ""}}, {3, {"Read / Write", ""}}, {4, {"Execute", ""}}}},
        {"nxProductTypeGUIDisplayBaseBitMask", 32, 9, {{1, {"Future", ""}}, {16, {"Forward", ""}}}},
        {"nxProductTreeSelectableNodeBaseBitMask",
         32,
         7,
         {{1, {"Product Type", ""}}, {4, {"Outright / Strategy", ""}}}},
        {"nxSecurityNodeAccessBaseBitMask",
         32,
         4,
         {{1, {"Security node no access rights", ""}}, {8, {"Security node full access rights", ""}}}},
        {"nxDataObjectCacheObserverBitMask", 32, 3, {{1, {"OBSERVE", ""}}, {4, {"ASYNC", ""}}}},
        {"nxOrderBookInterestBitMask", 32, 17, {{1, {"ALL_CONFIRMED", ""}}, {8, {"EARLY_PULL", ""}}}},
        {"nxAttributeTreeDrilldownBitMask", 32, 5, {{1, {"Expandable", ""}}, {8, {"Hide expanders", ""}}}},
        {"nxAttributeTrendBitMask", 32, 4, {}},
        {"nxAttributeChangeBitMask", 32, 9, {{1, {"UPDATE", ""}}, {8, {"HIGHLIGHT", ""}}}},
        {"nxAttributeHighlightBitMask", 32, 8, {}},
        {"nxExtendedAttributeHighlightBitMask", 32, 7, {}},
        {"nxIntraDayProductDefinitionUpdateBitMask", 32, 2, {{1, {"PRODUCT_STATE", ""}}, {2, {"TRADING_PERIOD", ""}}}},
        {"nxProductStateBitMask",
         32,
         30,
         {{1, {"PRECLOSED", "pre-closed"}},
          {nxProductStateBitMask::INTRADAY_AUCTION, {"INTRADAY_AUCTION", "intra-day auction"}},
          {1u << 29, {"EXPIRING", ""}}}},
        {"nxDatabaseModeBitMask", 32, 5, {{1, {"DEFAULT", ""}}, {2, {"NO_MUTEXES", "not mutex locked"}}}},
        {"nxSettlementPriceBitMask", 32, 8, {{1, {"PROVISIONAL", ""}}}},
        {"nxUserNodeDefinitionFieldsBitMask", 64, 14, {{1, {"USER_NODE_DEFINITION_FIELD_STATE", ""}}}},
        {"nxAccountNodeDefinitionFieldsBitMask", 64, 17, {{1, {"ACCOUNT_NODE_DEFINITION_FIELD_STATE", ""}}}},
        {"nxAccountNodeFlagBitMask", 64, 2, {{2, {"GENERATE_SYNTHETIC_STRATEGY_POSITIONS", ""}}}},
        {"nxProductFlagBitMask", 64, 1, {{1, {"IS_TAS_CONTRACT", "Is TAS contract"}}}},
        {"nxServerCapabilityBitMask", 64, 52, {{1, {"MULTI_PART_ORDER_SNAPSHOT", ""}}, {2, {"ADOPT_ORDER", ""}}}},
    };
    for (const CatalogueRow& row : rows)
    {
        SCOPED_TRACE(row.name);
        if (row.bits == 32)
            ExpectCatalogue(Registry::_GetDescriptionMap(), row);
        else
            ExpectCatalogue(Registry64::_GetDescriptionMap(), row);
    }
    EXPECT_EQ(Registry::_GetDescriptionMap().count("nxServerCapabilityBitMask"), 0u);
    EXPECT_EQ(Registry64::_GetDescriptionMap().count("nxProductStateBitMask"), 0u);
}

TEST(nxUserOrderFlagsBitMask, TheRepeatedIdentifierOnTheNullBitNeverPrints)
{
    nxUserOrderFlagsBitMask mask;
    mask.SetNull();
    EXPECT_EQ(mask.GetShortDescription(" "), "Null");
    EXPECT_EQ(nxUserOrderFlagsBitMask(nxUserOrderFlagsBitMask::NX_USER_ORDER_FLAG_29).GetShortDescription(" "),
              "NX_USER_ORDER_FLAG_29");
}

TEST(nxAttributeHighlightAndExtendedHightBitMaskPair, HoldsBothMasks)
{
    nxAttributeHighlightAndExtendedHightBitMaskPair pair(nxAttributeHighlightBitMask::OWN_BID,
                                                         nxExtendedAttributeHighlightBitMask::IMPLIED);
    pair.GetHighlight() |= nxAttributeHighlightBitMask::BEST_BID;
    EXPECT_EQ(pair.GetHighlight().GetShortDescription("+"), "OWN_BID+BEST_BID");
    EXPECT_EQ(pair.GetExtendedHighlight().GetShortDescription("+"), "IMPLIED");
    EXPECT_NE(pair, nxAttributeHighlightAndExtendedHightBitMaskPair());
    pair.Clear();
    EXPECT_EQ(pair, nxAttributeHighlightAndExtendedHightBitMaskPair());
}
}  // namespace
