// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGMARKERS_H
#define CORE_LOG_NXLOGMARKERS_H

#include <string>
#include <utility>

#include "core/text/nxStringHelper.h"
#include "core/text/nxValueWrapper.h"

/// Values that can be streamed into a record without becoming part of its message. They are named as members of nxLog:
/// `record << nxLog::nxLogDestinationUserID(7)`.
struct nxLogMarkers
{
    /// The user that a record is meant for.
    struct nxLogDestinationUserID
    {
        /// @param userID the user, or null for no particular user.
        explicit nxLogDestinationUserID(const nxValueWrapper<unsigned>& userID) : destinationUserID(userID) {}

        nxValueWrapper<unsigned> destinationUserID;  ///< The user.
    };

    /// The application that a record comes from and the user that it is meant for.
    struct nxLogSourceApplicationDestUserID
    {
        /// @param application its name. @param userID the user, or null for no particular user.
        nxLogSourceApplicationDestUserID(std::string application, const nxValueWrapper<unsigned>& userID)
            : sourceApplication(std::move(application)), destinationUserID(userID)
        {
        }
        /// The same; a null pointer is an empty name.
        nxLogSourceApplicationDestUserID(const char* application, const nxValueWrapper<unsigned>& userID)
            : nxLogSourceApplicationDestUserID(nxStringHelper::GetAsString(application), userID)
        {
        }

        std::string sourceApplication;               ///< The application.
        nxValueWrapper<unsigned> destinationUserID;  ///< The user.
    };

    /// The end of a record.
    struct nxLogTerminator
    {
    };
};

#endif
