// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxBitMask.h"

#include <set>

#include "core/nxCore.h"
#include "tests/support/nxTest.h"

namespace
{
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

// Both widths have the same behaviour.
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
    TypeParam mask;
    for (const auto& [word, valid, isNull, isNoChange] : rows)
    {
        SCOPED_TRACE(word);
        mask = word;
        EXPECT_EQ(mask.GetValue(), word);
        EXPECT_EQ(mask.IsValid(), valid);
        EXPECT_EQ(mask.IsNull(), isNull);
        EXPECT_EQ(mask.IsNoChange(), isNoChange);
    }
    mask.SetNoChange();
    EXPECT_EQ(mask.GetValue(), noChange);
    mask.SetNull();
    EXPECT_EQ(mask.GetValue(), null);
    mask.SetBits(mask);  // the operand is read before the target is emptied
    EXPECT_TRUE(mask.IsNull());
    mask.Clear();
    EXPECT_EQ(mask.GetShortDescription(","), "");
}

TYPED_TEST(AnyBitMask, SettingBitsKeepsTheOthersOfAValidMaskAndEmptiesAnInvalidOneFirst)
{
    const std::pair<typename TypeParam::Word, typename TypeParam::Word> rows[] = {
        {0, 4}, {3, 7}, {TypeParam::NullBit | 3, 4}, {TypeParam::NoChangeBit | 3, 4}};
    for (const auto& [before, after] : rows)
    {
        TypeParam byWord(before), byMask(before), orWord(before), orMask(before);
        byWord.SetBits(4);
        byMask.SetBits(TypeParam(4));
        orWord |= 4;
        orMask |= TypeParam(4);
        for (const TypeParam& mask : {byWord, byMask, orWord, orMask})
            EXPECT_EQ(mask.GetValue(), after) << before;
    }
}

TYPED_TEST(AnyBitMask, AnUpdateReplacesTheSetUnlessItSaysNoChange)
{
    TypeParam stored(3), request;
    request.SetNoChange();
    stored.UpdateFrom(request);
    EXPECT_EQ(stored, 3u);
    stored.UpdateFrom(TypeParam(4));
    EXPECT_EQ(stored, 4u);
    EXPECT_EQ(stored | TypeParam(2), 6u);
    EXPECT_EQ((std::set<TypeParam>{stored | TypeParam(2), stored, stored}.begin()->GetValue()), 4u);
    request.SetNull();
    stored.UpdateFrom(request);
    EXPECT_TRUE(stored.IsNull());
}

TYPED_TEST(AnyBitMask, ClearsTestsAndComparesBits)
{
    TypeParam mask(7);
    mask.ClearBits(2);
    EXPECT_EQ(mask, 5u);
    EXPECT_NE(mask, 7u);
    EXPECT_NE(mask, TypeParam(TypeParam::NullBit | 5));
    EXPECT_TRUE(mask.AreAllBitsSet(5) && mask.AreAllBitsSet(TypeParam(0)));
    EXPECT_FALSE(mask.AreAllBitsSet(TypeParam(6)));
    EXPECT_TRUE(mask.AreAnyBitsSet(TypeParam(6)));
    EXPECT_FALSE(mask.AreAnyBitsSet(2) || mask.AreAnyBitsSet(0));
    mask.ClearBits(TypeParam(1));
    EXPECT_EQ(mask, 4u);
    TypeParam copy;
    copy = TypeParam(mask);
    EXPECT_EQ(std::unordered_set<TypeParam>({mask, copy, TypeParam(6)}).size(), 2u);
}

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
    EXPECT_EQ(Streamed(QuoteFlagsBitMask(3)), "FIRM INDICATIVE");
    EXPECT_EQ(Streamed(nxServerCapabilityBitMask(1ull << 51 | 2)), "ADOPT_ORDER FAULT_TOLERANT_HANDOVER");
}

TEST(nxBitMask, AClassWithoutTextsSaysSoUnlessItIsNotValid)
{
    nxGenericBitMask64 mask(5);
    EXPECT_EQ(mask.GetShortDescription(" "), "No Description Available");
    EXPECT_EQ(nxGenericBitMask64().GetLongDescription(" "), "No Description Available");
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
