// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/internal/nxDecimalText.h"

#include <algorithm>

#include "core/numeric/nxPowersOfTen.h"

namespace
{
// Up to eight characters of a number.
struct Piece
{
    std::uint64_t value;      // of the digits
    std::uint64_t separator;  // 1 when one of the characters is the separator, else 0
    std::size_t places;       // the number of digits after it; 0 without one
    bool isNumber;            // nothing but digits and at most one separator
};

// Reads what LoadRightAligned() gives. No branch depends on the position or presence of the separator, because both are
// unpredictable.
inline Piece ReadPiece(std::uint64_t word, char separator)
{
    const std::uint64_t others = nxDigits::FindNonDigit(word);
    // The lowest bit of the first byte that is no digit; it has to be the separator. Without one, 0, and below it is
    // all.
    const std::uint64_t found = (others & (0 - others)) >> 7;
    const std::uint64_t below = found - 1;
    const std::uint64_t any = (0 - found) >> 63;
    const std::uint64_t wanted = found * static_cast<unsigned char>(separator ^ '0');
    const bool isSeparator = (word & (found * 0xFF)) == wanted;
    // Close the gap; anything else that is no digit stays.
    const std::uint64_t digits = (word & (~below << 8)) | ((word & below) << (8 * any));
    const int position = std::countr_zero(others | (std::uint64_t{1} << 63)) / 8;
    return {nxDigits::Gather(digits), any, static_cast<std::size_t>(7 - position),
            isSeparator && nxDigits::FindNonDigit(digits) == 0};
}
}  // namespace

bool nxDecimalText::Parse(std::string_view text, char separator, std::uint64_t& mantissa, std::size_t& places)
{
    std::size_t digits = 0;
    bool separatorSeen = false;
    while (!text.empty())
    {
        const std::size_t count = std::min(text.size(), std::size_t{8});
        const Piece piece = ReadPiece(nxDigits::LoadRightAligned(text.data(), count), separator);
        if (!piece.isNumber || (piece.separator != 0 && separatorSeen))
            return false;
        const std::size_t pieceDigits = count - piece.separator;
        mantissa = mantissa * nxPowersOfTen::GetInteger(pieceDigits) + piece.value;
        digits += pieceDigits;
        places += separatorSeen ? pieceDigits : piece.places;
        separatorSeen = separatorSeen || piece.separator != 0;
        text.remove_prefix(count);
    }
    return digits != 0;
}

char* nxDecimalText::_PrintLong(char* out, std::uint64_t magnitude, std::size_t places, std::size_t shown,
                                char separator)
{
    const std::uint64_t power = nxPowersOfTen::GetInteger(places);
    const std::uint64_t whole = power == 0 ? 0 : magnitude / power;
    const std::uint64_t fraction = magnitude - whole * power;
    out = nxDigits::Write(out, whole);
    if (shown == 0)
        return out;
    // The fraction has less than 20 digits, so that cutting 20 leaves zeros. Twelve digits are always written.
    const std::size_t cut = places - shown;
    const std::uint64_t kept =
        (cut < 20 ? fraction / nxPowersOfTen::GetInteger(cut) : 0) * nxPowersOfTen::GetInteger(MaxPlaces - shown);
    *out++ = separator;
    nxDigits::WriteFixed<4>(out, kept / 100'000'000);
    nxDigits::WriteFixed<8>(out + 4, kept % 100'000'000);
    return out + shown;
}
