// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxTickTableSource.h"

#include <algorithm>

std::span<const nxTickTableSource> nxTickTableSource::GetAll()
{
    static constexpr nxTickTableSource all[] = {
#define NX_TICK_TABLE(name, status, source, note, bands) nxTickTableSource(#name, status, source, note),
#include "core/price/nxTickTables.inc"
#undef NX_TICK_TABLE
    };
    return all;
}

const nxTickTableSource* nxTickTableSource::Find(std::string_view nameOrID)
{
    const std::string_view name = nameOrID.starts_with(IDPrefix) ? nameOrID.substr(IDPrefix.size()) : nameOrID;
    const auto all = GetAll();
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto& source) { return source._name == name; });
    return found == all.end() ? nullptr : &*found;
}

std::string nxTickTableSource::GetID() const { return std::string(IDPrefix).append(_name); }
