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
    nxAttributeHighlightAndExtendedHightBitMaskPair() = default;
    nxAttributeHighlightAndExtendedHightBitMaskPair(const nxAttributeHighlightBitMask& highlight,
                                                    const nxExtendedAttributeHighlightBitMask& extendedHighlight)
        : _highlight(highlight), _extendedHighlight(extendedHighlight)
    {
    }

    const nxAttributeHighlightBitMask& GetHighlight() const { return _highlight; }
    nxAttributeHighlightBitMask& GetHighlight() { return _highlight; }
    const nxExtendedAttributeHighlightBitMask& GetExtendedHighlight() const { return _extendedHighlight; }
    nxExtendedAttributeHighlightBitMask& GetExtendedHighlight() { return _extendedHighlight; }

    /// Makes both masks the empty set.
    void Clear()
    {
        _highlight.Clear();
        _extendedHighlight.Clear();
    }

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
