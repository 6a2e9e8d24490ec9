// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXTEST_H
#define TESTS_SUPPORT_NXTEST_H

/// @file
/// What nearly every test includes.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <unordered_set>
#include <utility>
#include <vector>

/// What a standard stream prints of @p value.
template <class Value>
std::string Streamed(const Value& value)
{
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

#endif
