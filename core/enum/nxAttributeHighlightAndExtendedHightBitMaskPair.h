// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXATTRIBUTEHIGHLIGHTANDEXTENDEDHIGHTBITMASKPAIR_H
#define CORE_ENUM_NXATTRIBUTEHIGHLIGHTANDEXTENDEDHIGHTBITMASKPAIR_H

#include "core/enum/nxAttributeHighlightBitMask.h"
#include "core/enum/nxExtendedAttributeHighlightBitMask.h"

/// All reasons why a displayed attribute is highlighted: the plain ones and the extended ones side by side (the
/// spelling of the name is kept).
///
/// A new pair holds two empty sets. Like the masks, it is a value that may be shared by readers and owns nothing.
class NX_CORE_API nxAttributeHighlightAndExtendedHightBitMaskPair
{
public:
    nxAttributeHighlightAndExtendedHightBitMaskPair() = default;  ///< Two empty sets.
    /// Copies of both masks, null and "no change" included.
    nxAttributeHighlightAndExtendedHightBitMaskPair(const nxAttributeHighlightBitMask& highlight,
                                                    const nxExtendedAttributeHighlightBitMask& extendedHighlight)
        : _highlight(highlight), _extendedHighlight(extendedHighlight)
    {
    }

    /// The plain reasons; the reference is into this object.
    const nxAttributeHighlightBitMask& GetHighlight() const { return _highlight; }
    /// The plain reasons, to be changed in place.
    nxAttributeHighlightBitMask& GetHighlight() { return _highlight; }
    /// The extended reasons; the reference is into this object.
    const nxExtendedAttributeHighlightBitMask& GetExtendedHighlight() const { return _extendedHighlight; }
    /// The extended reasons, to be changed in place.
    nxExtendedAttributeHighlightBitMask& GetExtendedHighlight() { return _extendedHighlight; }

    /// Makes both masks the empty set.
    void Clear()
    {
        _highlight.Clear();
        _extendedHighlight.Clear();
    }

    /// Compares both words, top bits included.
    friend bool operator==(const nxAttributeHighlightAndExtendedHightBitMaskPair& left,
                           const nxAttributeHighlightAndExtendedHightBitMaskPair& right)
    {
        return left._highlight == right._highlight && left._extendedHighlight == right._extendedHighlight;
    }

private:
    nxAttributeHighlightBitMask _highlight;
    nxExtendedAttributeHighlightBitMask _extendedHighlight;
};

#endif
