// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGFIELDVIEW_H
#define CORE_LOG_NXLOGFIELDVIEW_H

#include <string_view>
#include <variant>

#include "core/numeric/nxDecimal.h"

/// A field of a log record as a device sees it: see nxLog::VisitFields(). A view, valid as long as its giver says.
/// @code
/// record.VisitFields([](const nxLogFieldView& field)
///                    {
///                        if (const auto* const price = std::get_if<nxDecimal>(&field.value); field.name == "price")
///                            ...
///                    });
/// @endcode
struct nxLogFieldView
{
    /// Null and no change are std::monostate, except that a decimal keeps its mark. Integers of all sizes are long long, or
    /// unsigned long long where their type has no sign. What is none of the others is the text that a line shows, with
    /// control bytes as they are.
    using Value =
        std::variant<std::monostate, bool, long long, unsigned long long, double, nxDecimal, std::string_view>;

    std::string_view name;  ///< 1 to nxFieldName::MaximumSize characters; fields of one record may have equal names.
    Value value;            ///< The value.
};

#endif
