#include "core/enum/nxErrorEnum.h"

#include <gtest/gtest.h>

#include <cctype>
#include <set>
#include <tuple>

namespace
{
// Identifiers are parsed back from users' files and wordings are searched for by support desks: both stay to the byte,
// odd spellings included.
TEST(nxErrorEnum, KeepsTheIdentifiersAndWordingsThatUsersKnow)
{
    using Row = std::tuple<unsigned, const char*, const char*>;
    const Row rows[] = {
        {0, "UNDEFINED", "undefined"},
        {1000001, "NX_ERR_NOT_FOUND", "not found"},
        {1000002, "NX_ERR_INVALID_PARAMETER", "invalid parameter"},
        {1000005, "NX_ERR_UNSPECIFIED", "unspecified"},
        {1000006, "NX_ERR_INTERNAL", "internal"},
        {1000007, "NX_ERR_VALUE_OUT_OF_RANGE", "value out of range"},
        {1000010, "NX_ERR_INSUFFICIENT_MEMORY", "insufficient memory"},
        {1000014, "NX_ERR_FAILED_TO_INITIALISE", "failed to initialise"},
        {1000015, "NX_ERR_ALREADY_INITIALISED", "already initialised"},
        {1000016, "NX_ERR_NOT_INITIALISED", "not initialised"},
        {1000017, "NX_ERR_FAILED_TO_OPEN_FILE", "failed to open file"},
        {1000018, "NX_ERR_NOT_IMPLEMENTED", "not implemented"},
        {1000019, "NX_ERR_FILE_SEEK_ERR", "file seek error"},
        {1000020, "NX_ERR_FILE_READ_ERR", "file read error"},
        {1000021, "NX_ERR_FILE_WRITE_ERR", "file write error"},
        {1000024, "NX_ERR_ROUTES_NOT_ENABLED", "Direct routes not enabled"},
        {1000100, "NX_ERR_THR_DEADLOCK", "deadlock condition"},
        {1000101, "NX_ERR_THR_LOCKED", "lock is already locked"},
        {1000102, "NX_ERR_THR_MISMATCH", "thread mismatch"},
        {1000103, "NX_ERR_THR_RESOURCE", "insufficient resources"},
        {1000104, "NX_ERR_THR_MEMORY", "insufficient memory"},
        {1000105, "NX_ERR_THR_PERMISSION", "insufficient permissions"},
        {1000106, "NX_ERR_THR_UNSUPPORTED", "unsupported operation"},
        {1000107, "NX_ERR_THR_INTERRUPTED", "interrupted by a signal"},
        {1000108, "NX_ERR_THR_TIMEDOUT", "operation timed out"},
        {1000109, "NX_ERR_THR_ALREADY_STARTED", "already started"},
        {1000110, "NX_ERR_THR_NOT_RUNNING", "not running"},
        {1000111, "NX_ERR_THR_OWNER_DEAD", "owner dead"},
        {1000113, "NX_ERR_THR_FAILED_TO_SET_SCHEDULER_PARAMATERS", "fail to set scheduler parameters"},
        {1000213, "NX_ERR_MSG_RECEIPT_TIMED_OUT", "timeout waiting for initial receipt"},
        {1000214, "NX_ERR_MSG_RESPONSE_TIMED_OUT", "timeout waiting for response"},
        {1000228, "NX_ERR_MSG_COMPRESSION_FAILED", "compression failed"},
        {1000229, "NX_ERR_MSG_DECOMPRESSION_FAILED", "decompression failed"},
        {1000231, "NX_ERR_MSG_NVALID_ASP_CONNECTION_VALUE", "Invalid QRX_ASP_CONNECTION value"},
        {1001000, "NX_ERR_SECURITY_CHECKS_FAILED", "security checks failed"},
        {1003000, "NX_ERR_CSV_FILE_READ_ERROR", "csv file read error"},
        {1005000, "NX_ERR_ORDER_INVALID_ORDER", "invalid order"},
        {1006000, "NX_ERR_TRADE_NULL_TRADE", "null trade object"},
        {1007000, "NX_ERR_XML_READ_FAILED", "xml read failed"},
        {1008000, "NX_ERR_LIMIT_NODE_LIMIT_TYPE_MISMATCH", "Limit type does not match account/user node"},
        {1010200, "NX_ERR_SOCKET_INVALID_HANDLE", "Invalid socket handle"},
        {1010201, "NX_ERR_SOCKET_CREATE_FAILED", "Socket create failed"},
        {1010202, "NX_ERR_SOCKET_BIND_FAILED", "Socket bind failed"},
        {1010203, "NX_ERR_SOCKET_LISTEN_FAILED", "Socket listen failed"},
        {1010204, "NX_ERR_SOCKET_ACCEPT_FAILED", "Socket accept failed"},
        {1010205, "NX_ERR_SOCKET_SEND_FAILED", "Socket send failed"},
        {1010206, "NX_ERR_SOCKET_CLOSE_FAILED", "Socket close failed"},
        {1010207, "NX_ERR_SOCKET_INVALID_HOST_ADDRESS", "Invalid host address"},
        {1010208, "NX_ERR_SOCKET_CONNECT_FAILED", "Socket connect failed"},
        {1010209, "NX_ERR_SOCKET_NOT_CONNECTED", "Socket not connected"},
        {1010210, "NX_ERR_SOCKET_RECEIVE_FAILED", "Socket receive failed"},
        {1010211, "NX_ERR_SOCKET_SELECT_FAILED", "Socket select failed"},
        {1010600, "NX_ERR_VER_NUM_CHECK_INVALID_VER_NUM",
         "Application Version Number Check Failed - Version not compatible"},
        {1012000, "NX_ERR_FIX_FIELD_VALUE_MISSING", "Value missing for field"},
        {1024000, "NX_ERR_DIRECT_ROUTES_NOT_ENABLED", "Direct routes not enabled"},
    };
    for (const auto& [value, identifier, wording] : rows)
    {
        EXPECT_EQ(nxErrorEnum(value).GetShortDescription(), identifier);
        EXPECT_EQ(nxErrorEnum(value).GetLongDescription(), wording) << identifier;
    }
}

TEST(nxErrorEnum, EveryWordingIsInTheStyleOfItsBlock)
{
    // Capitalised in a block that is not, because users know them so.
    const std::set<unsigned> exceptions{NX_ERR_ROUTES_NOT_ENABLED, NX_ERR_MSG_NVALID_ASP_CONNECTION_VALUE};
    const auto isUpper = [](char c) { return std::isupper(static_cast<unsigned char>(c)) != 0; };
    for (const nxErrorEnum error : nxErrorEnum::GetRegisteredValues())
    {
        const std::string& wording = error.GetLongDescription();
        SCOPED_TRACE(error.GetShortDescription() + ": " + wording);
        ASSERT_GT(wording.size(), 3u);
        EXPECT_EQ(error.GetShortDescription().rfind("NX_ERR_", 0), 0u);
        EXPECT_EQ(wording.find("  "), std::string::npos);
        EXPECT_EQ(wording.find_first_of("\t\r\n%"), std::string::npos);
        EXPECT_TRUE(std::isalnum(static_cast<unsigned char>(wording.back())) != 0);
        if (exceptions.count(error.GetValue()) != 0)
            continue;
        EXPECT_EQ(wording.find('_'), std::string::npos);
        const bool isAcronym = isUpper(wording[0]) && isUpper(wording[1]);
        EXPECT_TRUE(isAcronym || isUpper(wording[0]) == (error.GetValue() >= 1008000));
    }
}

TEST(nxErrorEnum, SuccessTimeoutsAndSecurityErrorsAreTold)
{
    const std::tuple<unsigned, bool, bool, bool> rows[] = {
        {0, true, false, false},
        {2, false, false, false},  // "no change" is not success
        {NX_ERR_NOT_FOUND, false, false, false},
        {1000112, false, false, false},  // a withdrawn code is an error all the same
        {NX_ERR_THR_TIMEDOUT, false, false, false},
        {1000212, false, false, false},
        {NX_ERR_MSG_RECEIPT_TIMED_OUT, false, true, false},
        {NX_ERR_MSG_RESPONSE_TIMED_OUT, false, true, false},
        {1000215, false, false, false},
        {1000999, false, false, false},
        {1001000, false, false, true},
        {1001048, false, false, true},
        {1001049, false, false, false},
    };
    for (const auto& [value, isOK, isTimeout, isSecurity] : rows)
    {
        SCOPED_TRACE(value);
        const nxErrorEnum error(value);
        EXPECT_EQ(error.GetValue(), value);
        EXPECT_EQ(error.IsOK(), isOK);
        EXPECT_EQ(error.IsTimeout(), isTimeout);
        EXPECT_EQ(error.IsSecurityError(), isSecurity);
    }
}
}  // namespace
