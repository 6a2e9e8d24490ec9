// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXENUMRANGE_H
#define CORE_ENUM_NXENUMRANGE_H

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "core/enum/inline/nxEnumTable.h"
#include "core/enum/nxEnumValue.h"

/// The registered values of an interval, ascending, to loop over without a container. nxTypedEnum::GetRegisteredValues()
/// returns one.
///
/// Values that a plug-in registers during the loop may or may not appear in it.
/// @tparam Element the type of the loop's variable: an enumeration class, or unsigned.
template <class Element>
class nxEnumRange
{
public:
    /// Visits the registered values: an input iterator that creates its elements on demand.
    class Iterator
    {
    public:
        using iterator_category = std::input_iterator_tag;  ///< Elements are values, not references.
        using value_type = Element;                         ///< The loop's variable.
        using difference_type = std::ptrdiff_t;             ///< Not used.
        using pointer = void;                               ///< Elements have no address.
        using reference = Element;                          ///< Elements are returned by value.

        Iterator() = default;  ///< The end of every range.

        /// @return the current value.
        Element operator*() const { return Element(static_cast<nxEnumValue>(_value)); }
        /// Goes to the next registered value.
        Iterator& operator++()
        {
            _value = Seek(_value + 1, _highest);
            return *this;
        }
        /// @copydoc operator++()
        Iterator operator++(int)
        {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        /// Iterators of one range are equal when they point to the same value.
        friend bool operator==(const Iterator& left, const Iterator& right) { return left._value == right._value; }

    private:
        friend class nxEnumRange;
        Iterator(std::int64_t lowest, std::int64_t highest) : _value(Seek(lowest, highest)), _highest(highest) {}

        static std::int64_t Seek(std::int64_t lowest, std::int64_t highest)
        {
            const std::int64_t found =
                lowest <= highest ? nxEnumTable::FindFrom(static_cast<unsigned>(lowest)) : nxEnumTable::NotFound;
            return found <= highest ? found : nxEnumTable::NotFound;
        }

        std::int64_t _value = nxEnumTable::NotFound;
        std::int64_t _highest = nxEnumTable::NotFound;
    };

    /// The registered values from @p lowest to @p highest, both included.
    nxEnumRange(unsigned lowest, unsigned highest) : _lowest(lowest), _highest(highest) {}

    Iterator begin() const { return Iterator(_lowest, _highest); }  ///< The first registered value.
    Iterator end() const { return Iterator(); }                     ///< Past the last one.

private:
    unsigned _lowest;
    unsigned _highest;
};

#endif
