#include "core/app/nxConfigurationKeys.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

namespace
{
// Read while globals are initialised, before nxConfigurationKeys.h of any other file could have run code.
const std::string readByAnInitialiser = QRX_LOG_DIRECTORY;

TEST(nxConfigurationKeys, EveryGroupIsComplete)
{
    const std::map<std::string, int> expected = {
        {"EXCHANGE", 87},  {"FIX", 58},      {"SPREAD", 21}, {"ENABLE", 18}, {"ORDER", 13}, {"SECURITY", 11},
        {"LOG", 9},        {"DB", 8},        {"CME", 6},     {"LIFFE", 6},   {"LIMIT", 6},  {"PRICE", 6},
        {"AGGREGATED", 5}, {"SYNTHETIC", 5}, {"MX", 4},      {"PRODUCT", 4}, {"SERVER", 4}, {"SOCKET", 4},
        {"USE", 4},        {"CASS", 3},      {"DATA", 3},    {"EUREX", 3},   {"FT", 3},     {"INTERNALISATION", 3},
        {"OUTBOUND", 3},   {"Others", 55}};
    std::map<std::string, int> counted;
    std::set<std::string> distinct;
    for (const std::string key : nxConfigurationKeys)
    {
        ASSERT_EQ(key.rfind("QRX_", 0), 0U) << key;
        ASSERT_EQ(key.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_"), std::string::npos) << key;
        EXPECT_TRUE(distinct.insert(key).second) << key << " stands twice";
        const std::string group = key.substr(4, key.find('_', 4) - 4);
        ++counted[expected.count(group) != 0 ? group : "Others"];
    }
    EXPECT_EQ(counted, expected);
    EXPECT_EQ(nxConfigurationKeyCount, 352U);
    EXPECT_EQ(readByAnInitialiser, "QRX_LOG_DIRECTORY");
}
}  // namespace
