#include "core/enum/nxBitMask.h"

#include <gtest/gtest.h>

#include <sstream>
#include <unordered_set>

#include "core/nxCore.h"
#include "tests/support/nxVirtualSlot.h"

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
    static bool RegisterMore()
    {
        return _RegisterFlags("QuoteFlagsBitMask", {{FIRM, "FIRM", ""}, {INDICATIVE, "OTHER", "Other"}});
    }
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
    const std::tuple<typename TypeParam::Word, bool, bool, bool> rows[] = {{0, true, false, false},
                                                                           {noChange >> 1, true, false, false},
                                                                           {noChange, false, false, true},
                                                                           {null, false, true, false},
                                                                           {null | noChange | 1, false, true, true}};
    for (const auto& [word, valid, isNull, isNoChange] : rows)
    {
        SCOPED_TRACE(word);
        TypeParam mask;
        mask = word;
        EXPECT_EQ(mask.GetValue(), word);
        EXPECT_EQ(mask.IsValid(), valid);
        EXPECT_EQ(mask.IsNull(), isNull);
        EXPECT_EQ(mask.IsNoChange(), isNoChange);
    }
    TypeParam mask;
    mask.SetNoChange();
    EXPECT_EQ(mask.GetValue(), noChange);
    mask.SetNull();
    EXPECT_EQ(mask.GetValue(), null);
    mask.SetBits(mask);  // the operand is read before the target is emptied
    EXPECT_TRUE(mask.IsNull());
    mask.Clear();
    EXPECT_TRUE(mask.IsValid());
    EXPECT_EQ(mask.GetShortDescription(","), "");
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
}

TYPED_TEST(AnyBitMask, ClearsTestsAndComparesBits)
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

    TypeParam copy;
    copy = TypeParam(mask);
    const std::unordered_set<TypeParam> set{mask, copy, TypeParam(6)};
    EXPECT_EQ(set.size(), 2u);
}

#if defined(__x86_64__)
TYPED_TEST(AnyBitMask, HasItsVirtualSlotsInTheirOrder)
{
    using Base = std::conditional_t<sizeof(typename TypeParam::Word) == 4, nxBitMask, nxBitMask64>;
    using Generic = std::conditional_t<sizeof(typename TypeParam::Word) == 4, nxGenericBitMask, nxGenericBitMask64>;
    using Text = std::string (Base::*)(const std::string&) const;
    EXPECT_EQ(nxVirtualSlot(&Base::IsValid), 2u);
    EXPECT_EQ(nxVirtualSlot(&Base::IsNoChange), 3u);
    EXPECT_EQ(nxVirtualSlot(&Base::IsNull), 4u);
    EXPECT_EQ(nxVirtualSlot(static_cast<void (Base::*)(typename Base::Word)>(&Base::SetBits)), 5u);
    EXPECT_EQ(nxVirtualSlot(static_cast<void (Base::*)(const Base&)>(&Base::SetBits)), 6u);
    EXPECT_EQ(nxVirtualSlot(&Base::SetNull), 7u);
    EXPECT_EQ(nxVirtualSlot(&Base::SetNoChange), 8u);
    EXPECT_EQ(nxVirtualSlot(static_cast<Text>(&Base::GetShortDescription)), 9u);
    EXPECT_EQ(nxVirtualSlot(static_cast<Text>(&Base::GetLongDescription)), 10u);
    EXPECT_EQ(nxVirtualSlot(&Base::GetClassName), 11u);
    EXPECT_EQ(nxVirtualSlot(static_cast<std::string (Generic::*)() const>(&Generic::GetShortDescription)), 12u);
    EXPECT_EQ(nxVirtualSlot(static_cast<std::string (Generic::*)() const>(&Generic::GetLongDescription)), 13u);
}
#endif

TEST(nxBitMask, DescribesItsFlagsLowestFirst)
{
    const std::tuple<unsigned, const char*, const char*> rows[] = {
        {0, "", ""},
        {QuoteFlagsBitMask::FIRM, "FIRM", "Firm"},
        {QuoteFlagsBitMask::FIRM | QuoteFlagsBitMask::INDICATIVE, "FIRM, INDICATIVE", "Firm, Indicative"},
        {QuoteFlagsBitMask::FIRM | QuoteFlagsBitMask::UNNAMED, "FIRM, ???", "Firm, ???"},
        {nxBitMask::NullBit | QuoteFlagsBitMask::FIRM, "Null", "Null"},
        {nxBitMask::NoChangeBit | QuoteFlagsBitMask::FIRM, "No Change", "No Change"},
        {nxBitMask::NullBit | nxBitMask::NoChangeBit, "Null", "Null"},
    };
    for (const auto& [word, shortText, longText] : rows)
    {
        SCOPED_TRACE(word);
        const QuoteFlagsBitMask mask(word);
        EXPECT_EQ(mask.GetShortDescription(", "), shortText);
        EXPECT_EQ(mask.GetLongDescription(", "), longText);
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
    // The identifier that is registered once more, on the null bit, never prints.
    EXPECT_EQ(nxUserOrderFlagsBitMask(1u << 31).GetShortDescription(" "), "Null");
}

TEST(nxBitMask, ATextOnceRegisteredIsKept)
{
    EXPECT_FALSE(QuoteFlagsBitMask::RegisterAgain());
    EXPECT_TRUE(QuoteFlagsBitMask::RegisterMore());
    std::vector<std::string> told = nxRefusedTexts::Get();
    std::erase_if(told, [](const std::string& sentence) { return sentence.find("BitMask") == sentence.npos; });
    EXPECT_EQ(told, (std::vector<std::string>{
                        "QuoteFlagsBitMask 2 'OTHER' is not registered: the flag has the text 'INDICATIVE'"}));
    EXPECT_EQ(QuoteFlagsBitMask(1).GetShortDescription(" "), "FIRM");
    EXPECT_TRUE(QuoteFlagsBitMask().RegisterOfInstance());
    EXPECT_EQ(QuoteFlagsBitMask(QuoteFlagsBitMask::LAST_ORDINARY).GetLongDescription(" "), "Last ordinary");
}

TEST(nxGenericBitMask, WritesTheWordInBinary)
{
    const std::pair<unsigned long long, std::string> rows[] = {
        {0, ""}, {1, "1"}, {5, "101"}, {0x80000000, "1" + std::string(31, '0')}};
    for (const auto& [word, text] : rows)
    {
        SCOPED_TRACE(word);
        EXPECT_EQ(nxGenericBitMask(static_cast<unsigned>(word)).GetShortDescription(), text);
        EXPECT_EQ(nxGenericBitMask64(word).GetShortDescription(), text);
        EXPECT_EQ(nxGenericBitMask64(word).GetLongDescription(), text);
    }
    EXPECT_EQ(nxGenericBitMask64(~0ull).GetShortDescription(), std::string(64, '1'));
}

struct CatalogueRow
{
    const char* name;
    std::size_t entries;
    unsigned long long word;  // of a flag, whose texts these are; 0 for none
    const char* shortText;
    const char* longText;  // empty: not checked
};

template <class Map, std::size_t Size>
void ExpectCatalogue(const Map& map, const CatalogueRow (&rows)[Size])
{
    std::size_t classes = 0;
    std::string last;
    for (const CatalogueRow& row : rows)
    {
        SCOPED_TRACE(std::string(row.name) + ' ' + row.shortText);
        const auto found = map.find(row.name);
        ASSERT_NE(found, map.end());
        const auto& flags = found->second;
        EXPECT_EQ(flags.size(), row.entries);
        classes += std::exchange(last, row.name) != row.name;
        if (row.word == 0)
            continue;
        const auto flag = flags.find(static_cast<typename Map::mapped_type::key_type>(row.word));
        ASSERT_NE(flag, flags.end());
        EXPECT_EQ(flag->second.first, row.shortText);
        EXPECT_TRUE(*row.longText == '\0' || flag->second.second == row.longText) << flag->second.second;
    }
    std::size_t ofTheLibrary = 0;
    for (const auto& [name, flags] : map)
    {
        SCOPED_TRACE(name);
        if (name.rfind("nx", 0) != 0)
            continue;
        ++ofTheLibrary;
        // Bit order without a hole, except for the levels, which are plain numbers; every flag has both texts.
        const bool isPlain = name == "nxGenericDataAccessLevelBaseBitMask";
        unsigned long long expected = isPlain ? 0 : 1;
        for (const auto& [word, texts] : flags)
        {
            EXPECT_EQ(word, expected);
            expected = isPlain ? expected + 1 : expected << 1;
            EXPECT_FALSE(texts.first.empty() || texts.second.empty());
        }
    }
    EXPECT_EQ(ofTheLibrary, classes);
}

TEST(nxBitMask, EveryClassHasItsFlags)
{
    const CatalogueRow rows[] = {
        {"nxOrderFillSummaryFieldBitMask", 8, 1, "TREE_LEVEL", "TreeLevel"},
        {"nxOrderTransactionFlagsBitMask", 3, 1, "NX_ORDER_TRANSACTION_FLAG_AMEND_USER_FIELDS_ONLY",
         "Amend User fields only"},
        {"nxOrderTransactionFlagsBitMask", 3, 2, "NX_ORDER_TRANSACTION_FLAG_PRESERVE_HELD_ORDERS", ""},
        {"nxUserOrderFlagsBitMask", 32, 1, "NX_USER_ORDER_FLAG_1", ""},
        {"nxUserOrderFlagsBitMask", 32, 1u << 28, "NX_USER_ORDER_FLAG_29", ""},
        {"nxUserOrderFlagsBitMask", 32, 1u << 29, "NX_USER_ORDER_FLAG_30", ""},
        {"nxUserOrderFlagsBitMask", 32, 1u << 30, "NO_CHANGE", "NoChange"},
        {"nxUserOrderFlagsBitMask", 32, 1u << 31, "NX_USER_ORDER_FLAG_29", "Null"},
        {"nxStrategyLegFlagsBitMask", 2, 1, "ENABLE_SECONDARY_PRODUCT_ID_PRICE_MULTIPLIER", ""},
        {"nxStrategyLegFlagsBitMask", 2, 2, "INVERT_SECONDARY_PRODUCT_ID_PRICE", ""},
        {"nxConditionalOrderFlagsBitMask", 3, 1,
         "NX_CONDITIONAL_ORDER_FLAG_STOP_ENTRY_BRACKET_EXECUTION_RESTRICTION_STOP", "StopEntryBracket use Stop"},
        {"nxExchangePriceFilterBitMask", 5, 1, "BLOCK_TRADES", ""},
        {"nxExchangePriceFilterBitMask", 5, 8, "PREV_SETTLEMENTS", ""},
        {"nxOrderTransactionBroadcastBitMask", 1, 1, "GATEWAY_HOP_NOT_NEEDED", ""},
        {"nxHIDEventTargetFilterBitMask", 4, 1, "KEYPAD_GRID", ""},
        {"nxHIDEventTargetFilterBitMask", 4, 8, "FIRST_AVAILABLE_GRID", ""},
        {"nxSecurityNodeChangeBitMask", 19, 1, "Description change", ""},
        {"nxSecurityNodeChangeBitMask", 19, 1u << 18, "All users", ""},
        {"nxDataInterestBitMask", 27, 1, "Tick Data Minute", ""},
        {"nxPriceInterestBitMask", 9, 1, "Bid prc", ""},
        {"nxPriceInterestBitMask", 9, 2, "Ask prc", ""},
        {"nxPriceInterestBitMask", 9, 256, "Stale prc", ""},
        {"nxFixMDTradeConditionBitMask", 4, 1, "Ex-Pit(W)", ""},
        {"nxFixMDTradeConditionBitMask", 4, 2, "Implied(1)", ""},
        {"nxFixMDTradeConditionBitMask", 4, 4, "ExchangeLast(U)", ""},
        {"nxFixMDTradeConditionBitMask", 4, 8, "OpeningTrade(E)", ""},
        {"nxFixMDQuoteConditionBitMask", 3, 1, "Implied(K)", ""},
        {"nxFixMDQuoteConditionBitMask", 3, 2, "Best(C)", ""},
        {"nxFixMDQuoteConditionBitMask", 3, 4, "OrderRetransmission(R)", ""},
        {"nxKeyboardModifierBitMask", 3, 1, "Shift", ""},
        {"nxGenericDataAccessLevelBaseBitMask", 5, 2, "Write", ""},
        {"nxGenericDataAccessLevelBaseBitMask", 5, 3, "Read / Write", ""},
        {"nxGenericDataAccessLevelBaseBitMask", 5, 4, "Execute", ""},
        {"nxProductTypeGUIDisplayBaseBitMask", 9, 1, "Future", ""},
        {"nxProductTypeGUIDisplayBaseBitMask", 9, 16, "Forward", ""},
        {"nxProductTreeSelectableNodeBaseBitMask", 7, 1, "Product Type", ""},
        {"nxProductTreeSelectableNodeBaseBitMask", 7, 4, "Outright / Strategy", ""},
        {"nxSecurityNodeAccessBaseBitMask", 4, 1, "Security node no access rights", ""},
        {"nxSecurityNodeAccessBaseBitMask", 4, 8, "Security node full access rights", ""},
        {"nxDataObjectCacheObserverBitMask", 3, 1, "OBSERVE", ""},
        {"nxDataObjectCacheObserverBitMask", 3, 4, "ASYNC", ""},
        {"nxOrderBookInterestBitMask", 17, 1, "ALL_CONFIRMED", ""},
        {"nxOrderBookInterestBitMask", 17, 8, "EARLY_PULL", ""},
        {"nxAttributeTreeDrilldownBitMask", 5, 1, "Expandable", ""},
        {"nxAttributeTreeDrilldownBitMask", 5, 8, "Hide expanders", ""},
        {"nxAttributeTrendBitMask", 4, 0, "", ""},
        {"nxAttributeChangeBitMask", 9, 1, "UPDATE", ""},
        {"nxAttributeChangeBitMask", 9, 8, "HIGHLIGHT", ""},
        {"nxAttributeHighlightBitMask", 8, 0, "", ""},
        {"nxExtendedAttributeHighlightBitMask", 7, 0, "", ""},
        {"nxIntraDayProductDefinitionUpdateBitMask", 2, 1, "PRODUCT_STATE", ""},
        {"nxIntraDayProductDefinitionUpdateBitMask", 2, 2, "TRADING_PERIOD", ""},
        {"nxProductStateBitMask", 30, 1, "PRECLOSED", "pre-closed"},
        {"nxProductStateBitMask", 30, nxProductStateBitMask::INTRADAY_AUCTION, "INTRADAY_AUCTION", "intra-day auction"},
        {"nxProductStateBitMask", 30, 1u << 29, "EXPIRING", ""},
        {"nxDatabaseModeBitMask", 5, 1, "DEFAULT", ""},
        {"nxDatabaseModeBitMask", 5, 2, "NO_MUTEXES", "not mutex locked"},
        {"nxSettlementPriceBitMask", 8, 1, "PROVISIONAL", ""},
    };
    ExpectCatalogue(Registry::_GetDescriptionMap(), rows);
    const CatalogueRow rows64[] = {
        {"nxUserNodeDefinitionFieldsBitMask", 14, 1, "USER_NODE_DEFINITION_FIELD_STATE", ""},
        {"nxAccountNodeDefinitionFieldsBitMask", 17, 1, "ACCOUNT_NODE_DEFINITION_FIELD_STATE", ""},
        {"nxAccountNodeFlagBitMask", 2, 2, "GENERATE_SYNTHETIC_STRATEGY_POSITIONS", ""},
        {"nxProductFlagBitMask", 1, 1, "IS_TAS_CONTRACT", "Is TAS contract"},
        {"nxServerCapabilityBitMask", 52, 1, "MULTI_PART_ORDER_SNAPSHOT", ""},
        {"nxServerCapabilityBitMask", 52, 2, "ADOPT_ORDER", ""},
    };
    ExpectCatalogue(Registry64::_GetDescriptionMap(), rows64);
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
