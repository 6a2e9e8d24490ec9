// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include "core/nxCore.h"

namespace
{
volatile int stop = 0;

// Short and long texts as libc++ stores them, and a class that the printer does not fit.
struct ShortText
{
    unsigned char size = 2 * 4;
    char text[23] = "FIRM";
} shortText;
struct LongText
{
    unsigned long long capacity = 33, size = 24;
    const char* text = "A_TEXT_OF_MORE_THAN_22_B";
} longText;
struct Undescribed
{
    int nothing = 0;
} undescribed;

void Pause() { stop = 1; }

// Keeps its arguments alive at the breakpoint.
template <class... Values>
void Look(const Values&...)
{
    Pause();
}
}  // namespace

int main()
{
    const nxDecimal price(25, 1), cents("-0.05", '.'), nothing = nxDecimal::GetNullDecimal(),
                                                       same = nxDecimal::GetNoChangeDecimal();
    const nxErrorEnum error(NX_ERR_NOT_FOUND);
    const nxBoolEnum truth(NX_BOOL_TRUE);
    nxProductStateBitMask state, none;
    state.SetBits(nxProductStateBitMask::CLOSED | nxProductStateBitMask::EXPIRING);
    none.SetNull();
    const nxTimeStamp stamp(1709629623, 123456000);
    const nxValueWrapper<unsigned> volume(7), noVolume;
    const nxDoubleValueWrapper ratio(2.5), noRatio;
    const nxDate date(2024, 3, 5), noDate;
    const nxTime time(9, 7, 3, 500'000'000), noTime;
    const nxDateTime dateTime(date, nxTime(17, 30, 0)), timeAlone(8, 30, 0), never;
    const nxDateTimeSpan span(-1, -129'600'007'000'000), day(1, 0), noTimeAtAll(0, 0), noSpan;
    const nxMoney fee(nxDecimal("12.50", '.'), "EUR"), noFee;
    const nxCurrency yen("JPY"), noCurrency;
    const nxRatio hedge(6, -4), whole(5, 1), noRatioOfTwo;
    nxExchangeRate rate, noRate;
    static_cast<void>(
        rate.Set(nxCurrency("EUR"), nxCurrency("USD"), nxDecimal("1.0850", '.'), nxDecimal("1.0852", '.'), stamp));
    const nxStringValue text("A-1"), noText, strange("a\"b\n\x1b[2J"), wordy("more than fifteen characters");
    nxDecimal unmadePrice;
    nxDateTime unmadeTime;
    std::memset(static_cast<void*>(&unmadePrice), 0x41, sizeof unmadePrice);
    std::memset(static_cast<void*>(&unmadeTime), 0x41, sizeof unmadeTime);
    const nxProductStateBitMask& byReference = state;
    const nxBitMask& maskBase = state;
    const nxEnum& enumBase = error;
    Look(price, cents, nothing, same, error, truth, state, none, stamp, volume, noVolume, ratio, noRatio, date, noDate,
         time, noTime, dateTime, timeAlone, never, span, day, noTimeAtAll, noSpan, fee, noFee, yen, noCurrency, hedge,
         whole, noRatioOfTwo, rate, noRate, text, noText, strange, wordy, unmadePrice, unmadeTime, byReference,
         maskBase, enumBase, shortText, longText, undescribed);
    return 0;
}
