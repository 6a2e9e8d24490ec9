// SPDX-License-Identifier: Apache-2.0
#ifndef BENCHMARKS_SUPPORT_TRADESFILE_H
#define BENCHMARKS_SUPPORT_TRADESFILE_H

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

/// A CSV file in memory: a day of trades with date, symbol, price and volume.
class TradesFile
{
public:
    static constexpr std::int64_t RowCount = 100'000;  ///< Without the header line.
    static constexpr std::size_t PriceColumn = 2;

    TradesFile() = delete;

    static const std::string& Get()
    {
        static const std::string file = []
        {
            std::mt19937_64 random(1);
            std::string text = "Date,Symbol,Price,Volume\n";
            for (std::int64_t i = 0; i < RowCount; ++i)
            {
                const auto cents = static_cast<unsigned>(random() % 2'000'000);
                text += "2020-04-20,WTI," + std::to_string(cents / 100) + "." +
                        std::to_string(100 + cents % 100).substr(1) + "," + std::to_string(random() % 5000) + "\n";
            }
            return text;
        }();
        return file;
    }
};

#endif
