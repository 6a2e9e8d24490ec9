// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_INLINE_NXBITMASKFLAGS_H
#define CORE_ENUM_INLINE_NXBITMASKFLAGS_H

// The flags of every bit mask in bit order: constant, word, short description, long description. NX_BIT_MASK and
// NX_LIBRARY_BIT_MASK_SOURCE make a mask's constants and registrations from the list with its name.
// Texts appear on screens and in users' settings, so a text is never changed and a bit never gets another meaning.

#define NX_FLAGS_nxOrderFillSummaryFieldBitMask(FLAG)      \
    FLAG(TREE_LEVEL, Bit(0), "TREE_LEVEL", "TreeLevel")    \
    FLAG(PRODUCT_ID, Bit(1), "PRODUCT_ID", "ProductId")    \
    FLAG(ACCOUNT_ID, Bit(2), "ACCOUNT_ID", "AccountId")    \
    FLAG(BUY_SELL, Bit(3), "BUY_SELL", "BuySell")          \
    FLAG(FILL_VOLUME, Bit(4), "FILL_VOLUME", "FillVolume") \
    FLAG(FILL_PRICE, Bit(5), "FILL_PRICE", "FillPrice")    \
    FLAG(FILL_COUNT, Bit(6), "FILL_COUNT", "FillCount")    \
    FLAG(LAST_FILL_TIME, Bit(7), "LAST_FILL_TIME", "LastFillTime")

#define NX_FLAGS_nxOrderTransactionFlagsBitMask(FLAG)                                                                  \
    FLAG(NX_ORDER_TRANSACTION_FLAG_AMEND_USER_FIELDS_ONLY, Bit(0), "NX_ORDER_TRANSACTION_FLAG_AMEND_USER_FIELDS_ONLY", \
         "Amend User fields only")                                                                                     \
    FLAG(NX_ORDER_TRANSACTION_FLAG_PRESERVE_HELD_ORDERS, Bit(1), "NX_ORDER_TRANSACTION_FLAG_PRESERVE_HELD_ORDERS",     \
         "Preserve Held orders")                                                                                       \
    FLAG(NX_ORDER_TRANSACTION_FLAG_PULL_CHILD_ORDERS, Bit(2), "NX_ORDER_TRANSACTION_FLAG_PULL_CHILD_ORDERS",           \
         "Pull Child orders")

// The last row repeats the identifier of flag 29; users' stored settings know it so, and it stays. It is never printed,
// because a mask with bit 31 set is null.
#define NX_FLAGS_nxUserOrderFlagsBitMask(FLAG)                                       \
    FLAG(NX_USER_ORDER_FLAG_1, Bit(0), "NX_USER_ORDER_FLAG_1", "UserOrderFlag1")     \
    FLAG(NX_USER_ORDER_FLAG_2, Bit(1), "NX_USER_ORDER_FLAG_2", "UserOrderFlag2")     \
    FLAG(NX_USER_ORDER_FLAG_3, Bit(2), "NX_USER_ORDER_FLAG_3", "UserOrderFlag3")     \
    FLAG(NX_USER_ORDER_FLAG_4, Bit(3), "NX_USER_ORDER_FLAG_4", "UserOrderFlag4")     \
    FLAG(NX_USER_ORDER_FLAG_5, Bit(4), "NX_USER_ORDER_FLAG_5", "UserOrderFlag5")     \
    FLAG(NX_USER_ORDER_FLAG_6, Bit(5), "NX_USER_ORDER_FLAG_6", "UserOrderFlag6")     \
    FLAG(NX_USER_ORDER_FLAG_7, Bit(6), "NX_USER_ORDER_FLAG_7", "UserOrderFlag7")     \
    FLAG(NX_USER_ORDER_FLAG_8, Bit(7), "NX_USER_ORDER_FLAG_8", "UserOrderFlag8")     \
    FLAG(NX_USER_ORDER_FLAG_9, Bit(8), "NX_USER_ORDER_FLAG_9", "UserOrderFlag9")     \
    FLAG(NX_USER_ORDER_FLAG_10, Bit(9), "NX_USER_ORDER_FLAG_10", "UserOrderFlag10")  \
    FLAG(NX_USER_ORDER_FLAG_11, Bit(10), "NX_USER_ORDER_FLAG_11", "UserOrderFlag11") \
    FLAG(NX_USER_ORDER_FLAG_12, Bit(11), "NX_USER_ORDER_FLAG_12", "UserOrderFlag12") \
    FLAG(NX_USER_ORDER_FLAG_13, Bit(12), "NX_USER_ORDER_FLAG_13", "UserOrderFlag13") \
    FLAG(NX_USER_ORDER_FLAG_14, Bit(13), "NX_USER_ORDER_FLAG_14", "UserOrderFlag14") \
    FLAG(NX_USER_ORDER_FLAG_15, Bit(14), "NX_USER_ORDER_FLAG_15", "UserOrderFlag15") \
    FLAG(NX_USER_ORDER_FLAG_16, Bit(15), "NX_USER_ORDER_FLAG_16", "UserOrderFlag16") \
    FLAG(NX_USER_ORDER_FLAG_17, Bit(16), "NX_USER_ORDER_FLAG_17", "UserOrderFlag17") \
    FLAG(NX_USER_ORDER_FLAG_18, Bit(17), "NX_USER_ORDER_FLAG_18", "UserOrderFlag18") \
    FLAG(NX_USER_ORDER_FLAG_19, Bit(18), "NX_USER_ORDER_FLAG_19", "UserOrderFlag19") \
    FLAG(NX_USER_ORDER_FLAG_20, Bit(19), "NX_USER_ORDER_FLAG_20", "UserOrderFlag20") \
    FLAG(NX_USER_ORDER_FLAG_21, Bit(20), "NX_USER_ORDER_FLAG_21", "UserOrderFlag21") \
    FLAG(NX_USER_ORDER_FLAG_22, Bit(21), "NX_USER_ORDER_FLAG_22", "UserOrderFlag22") \
    FLAG(NX_USER_ORDER_FLAG_23, Bit(22), "NX_USER_ORDER_FLAG_23", "UserOrderFlag23") \
    FLAG(NX_USER_ORDER_FLAG_24, Bit(23), "NX_USER_ORDER_FLAG_24", "UserOrderFlag24") \
    FLAG(NX_USER_ORDER_FLAG_25, Bit(24), "NX_USER_ORDER_FLAG_25", "UserOrderFlag25") \
    FLAG(NX_USER_ORDER_FLAG_26, Bit(25), "NX_USER_ORDER_FLAG_26", "UserOrderFlag26") \
    FLAG(NX_USER_ORDER_FLAG_27, Bit(26), "NX_USER_ORDER_FLAG_27", "UserOrderFlag27") \
    FLAG(NX_USER_ORDER_FLAG_28, Bit(27), "NX_USER_ORDER_FLAG_28", "UserOrderFlag28") \
    FLAG(NX_USER_ORDER_FLAG_29, Bit(28), "NX_USER_ORDER_FLAG_29", "UserOrderFlag29") \
    FLAG(NX_USER_ORDER_FLAG_30, Bit(29), "NX_USER_ORDER_FLAG_30", "UserOrderFlag30") \
    FLAG(NX_USER_ORDER_FLAG_NO_CHANGE, Bit(30), "NO_CHANGE", "NoChange")             \
    FLAG(NX_USER_ORDER_FLAG_NULL, Bit(31), "NX_USER_ORDER_FLAG_29", "Null")

#define NX_FLAGS_nxStrategyLegFlagsBitMask(FLAG)                                                               \
    FLAG(ENABLE_SECONDARY_PRODUCT_ID_PRICE_MULTIPLIER, Bit(0), "ENABLE_SECONDARY_PRODUCT_ID_PRICE_MULTIPLIER", \
         "Enable secondary product id price multiplier")                                                       \
    FLAG(INVERT_SECONDARY_PRODUCT_ID_PRICE, Bit(1), "INVERT_SECONDARY_PRODUCT_ID_PRICE",                       \
         "Invert secondary product id price")

#define NX_FLAGS_nxConditionalOrderFlagsBitMask(FLAG)                                                            \
    FLAG(NX_CONDITIONAL_ORDER_FLAG_STOP_ENTRY_BRACKET_EXECUTION_RESTRICTION_STOP, Bit(0),                        \
         "NX_CONDITIONAL_ORDER_FLAG_STOP_ENTRY_BRACKET_EXECUTION_RESTRICTION_STOP", "StopEntryBracket use Stop") \
    FLAG(NX_CONDITIONAL_ORDER_FLAG_STOP_ENTRY_BRACKET_EXECUTION_RESTRICTION_STOP_LIMIT, Bit(1),                  \
         "NX_CONDITIONAL_ORDER_FLAG_STOP_ENTRY_BRACKET_EXECUTION_RESTRICTION_STOP_LIMIT",                        \
         "StopEntryBracket use StopLimit")                                                                       \
    FLAG(NX_CONDITIONAL_ORDER_FLAG_STOP_ENTRY_BRACKET_EXECUTION_RESTRICTION_TRAILING_STOP, Bit(2),               \
         "NX_CONDITIONAL_ORDER_FLAG_STOP_ENTRY_BRACKET_EXECUTION_RESTRICTION_TRAILING_STOP",                     \
         "StopEntryBracket use TrailingStop")

#define NX_FLAGS_nxExchangePriceFilterBitMask(FLAG)                            \
    FLAG(BLOCK_TRADES, Bit(0), "BLOCK_TRADES", "Block trades")                 \
    FLAG(NEW_PRODUCTS, Bit(1), "NEW_PRODUCTS", "New products")                 \
    FLAG(SETTLEMENTS, Bit(2), "SETTLEMENTS", "Settlements")                    \
    FLAG(PREV_SETTLEMENTS, Bit(3), "PREV_SETTLEMENTS", "Previous settlements") \
    FLAG(OPEN_INTEREST, Bit(4), "OPEN_INTEREST", "Open interest")

#define NX_FLAGS_nxOrderTransactionBroadcastBitMask(FLAG) \
    FLAG(GATEWAY_HOP_NOT_NEEDED, Bit(0), "GATEWAY_HOP_NOT_NEEDED", "Gateway hop not needed")

#define NX_FLAGS_nxHIDEventTargetFilterBitMask(FLAG)              \
    FLAG(KEYPAD_GRID, Bit(0), "KEYPAD_GRID", "Keypad grid")       \
    FLAG(ACTIVE_GRID, Bit(1), "ACTIVE_GRID", "Active grid")       \
    FLAG(ACTIVE_TICKET, Bit(2), "ACTIVE_TICKET", "Active ticket") \
    FLAG(FIRST_AVAILABLE_GRID, Bit(3), "FIRST_AVAILABLE_GRID", "First available grid")

#define NX_FLAGS_nxSecurityNodeChangeBitMask(FLAG)                                                          \
    FLAG(DESCRIPTION_CHANGE, Bit(0), "Description change", "Node description changed")                      \
    FLAG(NAME_CHANGE, Bit(1), "Name change", "Node name changed")                                           \
    FLAG(STATE_CHANGE, Bit(2), "State change", "Node state changed")                                        \
    FLAG(PARENT_CHANGE, Bit(3), "Parent change", "Node moved to another parent")                            \
    FLAG(PASSWORD_CHANGE, Bit(4), "Password change", "Password changed")                                    \
    FLAG(EXPIRY_CHANGE, Bit(5), "Expiry change", "Expiry date changed")                                     \
    FLAG(NOTICE_CHANGE, Bit(6), "Notice change", "Notice given or removed")                                 \
    FLAG(LOGIN_LIMIT_CHANGE, Bit(7), "Login limit change", "Number of concurrent logins changed")           \
    FLAG(FUNCTION_PERMISSIONS, Bit(8), "Function permissions", "Function permissions changed")              \
    FLAG(ACCOUNT_PERMISSIONS, Bit(9), "Account permissions", "Account permissions changed")                 \
    FLAG(USER_PERMISSIONS, Bit(10), "User permissions", "User permissions changed")                         \
    FLAG(EXCHANGE_PERMISSIONS, Bit(11), "Exchange permissions", "Exchange permissions changed")             \
    FLAG(PRICE_STREAM_PERMISSIONS, Bit(12), "Price stream permissions", "Price stream permissions changed") \
    FLAG(DATA_ACCESS_RIGHTS, Bit(13), "Data access rights", "Data access rights changed")                   \
    FLAG(EXCHANGE_ACCOUNTS, Bit(14), "Exchange accounts", "Exchange accounts changed")                      \
    FLAG(EXCHANGE_USERS, Bit(15), "Exchange users", "Exchange users changed")                               \
    FLAG(TRADING_LIMITS, Bit(16), "Trading limits", "Trading limits changed")                               \
    FLAG(ALL_ACCOUNTS, Bit(17), "All accounts", "All accounts changed")                                     \
    FLAG(ALL_USERS, Bit(18), "All users", "All users changed")

#define NX_FLAGS_nxDataInterestBitMask(FLAG)                                                          \
    FLAG(TICK_DATA_MINUTE, Bit(0), "Tick Data Minute", "Bars of one minute")                          \
    FLAG(TICK_DATA_2_MINUTE, Bit(1), "Tick Data 2 Minute", "Bars of two minutes")                     \
    FLAG(TICK_DATA_3_MINUTE, Bit(2), "Tick Data 3 Minute", "Bars of three minutes")                   \
    FLAG(TICK_DATA_5_MINUTE, Bit(3), "Tick Data 5 Minute", "Bars of five minutes")                    \
    FLAG(TICK_DATA_10_MINUTE, Bit(4), "Tick Data 10 Minute", "Bars of ten minutes")                   \
    FLAG(TICK_DATA_15_MINUTE, Bit(5), "Tick Data 15 Minute", "Bars of fifteen minutes")               \
    FLAG(TICK_DATA_20_MINUTE, Bit(6), "Tick Data 20 Minute", "Bars of twenty minutes")                \
    FLAG(TICK_DATA_30_MINUTE, Bit(7), "Tick Data 30 Minute", "Bars of thirty minutes")                \
    FLAG(TICK_DATA_HOUR, Bit(8), "Tick Data Hour", "Bars of one hour")                                \
    FLAG(TICK_DATA_2_HOUR, Bit(9), "Tick Data 2 Hour", "Bars of two hours")                           \
    FLAG(TICK_DATA_4_HOUR, Bit(10), "Tick Data 4 Hour", "Bars of four hours")                         \
    FLAG(TICK_DATA_DAY, Bit(11), "Tick Data Day", "Bars of one day")                                  \
    FLAG(TICK_DATA_WEEK, Bit(12), "Tick Data Week", "Bars of one week")                               \
    FLAG(TICK_DATA_MONTH, Bit(13), "Tick Data Month", "Bars of one month")                            \
    FLAG(TICK_DATA_TRADE, Bit(14), "Tick Data Trade", "Every trade")                                  \
    FLAG(TICK_DATA_10_TRADE, Bit(15), "Tick Data 10 Trade", "Bars of ten trades")                     \
    FLAG(TICK_DATA_50_TRADE, Bit(16), "Tick Data 50 Trade", "Bars of fifty trades")                   \
    FLAG(TICK_DATA_100_TRADE, Bit(17), "Tick Data 100 Trade", "Bars of a hundred trades")             \
    FLAG(TICK_DATA_500_TRADE, Bit(18), "Tick Data 500 Trade", "Bars of five hundred trades")          \
    FLAG(TICK_DATA_10_VOLUME, Bit(19), "Tick Data 10 Volume", "Bars of ten lots")                     \
    FLAG(TICK_DATA_50_VOLUME, Bit(20), "Tick Data 50 Volume", "Bars of fifty lots")                   \
    FLAG(TICK_DATA_100_VOLUME, Bit(21), "Tick Data 100 Volume", "Bars of a hundred lots")             \
    FLAG(TICK_DATA_250_VOLUME, Bit(22), "Tick Data 250 Volume", "Bars of two hundred and fifty lots") \
    FLAG(TICK_DATA_500_VOLUME, Bit(23), "Tick Data 500 Volume", "Bars of five hundred lots")          \
    FLAG(TICK_DATA_1000_VOLUME, Bit(24), "Tick Data 1000 Volume", "Bars of a thousand lots")          \
    FLAG(TICK_DATA_5000_VOLUME, Bit(25), "Tick Data 5000 Volume", "Bars of five thousand lots")       \
    FLAG(TICK_DATA_10000_VOLUME, Bit(26), "Tick Data 10000 Volume", "Bars of ten thousand lots")

#define NX_FLAGS_nxPriceInterestBitMask(FLAG)                                              \
    FLAG(BID_PRICE, Bit(0), "Bid prc", "Bid price")                                        \
    FLAG(ASK_PRICE, Bit(1), "Ask prc", "Ask price")                                        \
    FLAG(LAST_PRICE, Bit(2), "Last prc", "Last traded price")                              \
    FLAG(OPEN_PRICE, Bit(3), "Open prc", "Opening price")                                  \
    FLAG(HIGH_PRICE, Bit(4), "High prc", "Highest price of the session")                   \
    FLAG(LOW_PRICE, Bit(5), "Low prc", "Lowest price of the session")                      \
    FLAG(SETTLEMENT_PRICE, Bit(6), "Settl prc", "Settlement price")                        \
    FLAG(PREVIOUS_SETTLEMENT_PRICE, Bit(7), "Prev settl prc", "Previous settlement price") \
    FLAG(STALE_PRICE, Bit(8), "Stale prc", "Stale price")

// The letter or digit in brackets is the condition's code in market data messages.
#define NX_FLAGS_nxFixMDTradeConditionBitMask(FLAG)                 \
    FLAG(EX_PIT, Bit(0), "Ex-Pit(W)", "Ex-pit trade")               \
    FLAG(IMPLIED_TRADE, Bit(1), "Implied(1)", "Implied trade")      \
    FLAG(EXCHANGE_LAST, Bit(2), "ExchangeLast(U)", "Exchange last") \
    FLAG(OPENING_TRADE, Bit(3), "OpeningTrade(E)", "Opening trade")

#define NX_FLAGS_nxFixMDQuoteConditionBitMask(FLAG)            \
    FLAG(IMPLIED_QUOTE, Bit(0), "Implied(K)", "Implied quote") \
    FLAG(BEST_QUOTE, Bit(1), "Best(C)", "Exchange best")       \
    FLAG(ORDER_RETRANSMISSION, Bit(2), "OrderRetransmission(R)", "Order retransmission")

#define NX_FLAGS_nxKeyboardModifierBitMask(FLAG)        \
    FLAG(SHIFT_KEY, Bit(0), "Shift", "Shift key")       \
    FLAG(CONTROL_KEY, Bit(1), "Control", "Control key") \
    FLAG(ALT_KEY, Bit(2), "Alt", "Alt key")

// Levels, not single bits: 3 is a level in its own right, not 1 and 2 together.
#define NX_FLAGS_nxGenericDataAccessLevelBaseBitMask(FLAG)              \
    FLAG(NO_ACCESS, 0, "None", "No access")                             \
    FLAG(READ_ACCESS, 1, "Read", "Read access")                         \
    FLAG(WRITE_ACCESS, 2, "Write", "Write access")                      \
    FLAG(READ_WRITE_ACCESS, 3, "Read / Write", "Read and write access") \
    FLAG(EXECUTE_ACCESS, 4, "Execute", "Execute access")

#define NX_FLAGS_nxProductTypeGUIDisplayBaseBitMask(FLAG) \
    FLAG(FUTURE, Bit(0), "Future", "Futures")             \
    FLAG(OPTION, Bit(1), "Option", "Options")             \
    FLAG(EQUITY, Bit(2), "Equity", "Equities")            \
    FLAG(WARRANT, Bit(3), "Warrant", "Warrants")          \
    FLAG(FORWARD, Bit(4), "Forward", "Forwards")          \
    FLAG(BOND, Bit(5), "Bond", "Bonds")                   \
    FLAG(SWAP, Bit(6), "Swap", "Swaps")                   \
    FLAG(INDEX, Bit(7), "Index", "Indices")               \
    FLAG(CURRENCY, Bit(8), "Currency", "Currencies")

#define NX_FLAGS_nxProductTreeSelectableNodeBaseBitMask(FLAG)                         \
    FLAG(PRODUCT_TYPE, Bit(0), "Product Type", "Product type")                        \
    FLAG(PRODUCT_NAME, Bit(1), "Product Name", "Product name")                        \
    FLAG(OUTRIGHT_OR_STRATEGY, Bit(2), "Outright / Strategy", "Outright or strategy") \
    FLAG(SERIES, Bit(3), "Series", "Series of one expiry")                            \
    FLAG(STRIKE, Bit(4), "Strike", "Strike price")                                    \
    FLAG(CALL_OR_PUT, Bit(5), "Call / Put", "Call or put")                            \
    FLAG(CONTRACT, Bit(6), "Contract", "Single contract")

#define NX_FLAGS_nxSecurityNodeAccessBaseBitMask(FLAG)                                                         \
    FLAG(NO_ACCESS_RIGHTS, Bit(0), "Security node no access rights", "No access rights to the security node")  \
    FLAG(VIEW_ACCESS_RIGHTS, Bit(1), "Security node view access rights", "Right to view the security node")    \
    FLAG(AMEND_ACCESS_RIGHTS, Bit(2), "Security node amend access rights", "Right to amend the security node") \
    FLAG(FULL_ACCESS_RIGHTS, Bit(3), "Security node full access rights", "Full access rights to the security node")

#define NX_FLAGS_nxDataObjectCacheObserverBitMask(FLAG)                 \
    FLAG(OBSERVE, Bit(0), "OBSERVE", "Observe")                         \
    FLAG(NOTIFY_SNAPSHOT, Bit(1), "NOTIFY_SNAPSHOT", "Notify snapshot") \
    FLAG(ASYNC, Bit(2), "ASYNC", "Asynchronous")

#define NX_FLAGS_nxOrderBookInterestBitMask(FLAG)                          \
    FLAG(ALL_CONFIRMED, Bit(0), "ALL_CONFIRMED", "All confirmed")          \
    FLAG(EARLY_SUBMIT, Bit(1), "EARLY_SUBMIT", "Early submit")             \
    FLAG(EARLY_AMEND, Bit(2), "EARLY_AMEND", "Early amend")                \
    FLAG(EARLY_PULL, Bit(3), "EARLY_PULL", "Early pull")                   \
    FLAG(CONFIRMED_SUBMIT, Bit(4), "CONFIRMED_SUBMIT", "Confirmed submit") \
    FLAG(CONFIRMED_AMEND, Bit(5), "CONFIRMED_AMEND", "Confirmed amend")    \
    FLAG(CONFIRMED_PULL, Bit(6), "CONFIRMED_PULL", "Confirmed pull")       \
    FLAG(REJECTED_SUBMIT, Bit(7), "REJECTED_SUBMIT", "Rejected submit")    \
    FLAG(REJECTED_AMEND, Bit(8), "REJECTED_AMEND", "Rejected amend")       \
    FLAG(REJECTED_PULL, Bit(9), "REJECTED_PULL", "Rejected pull")          \
    FLAG(PART_FILLED, Bit(10), "PART_FILLED", "Part filled")               \
    FLAG(FILLED, Bit(11), "FILLED", "Filled")                              \
    FLAG(HELD, Bit(12), "HELD", "Held")                                    \
    FLAG(UNHELD, Bit(13), "UNHELD", "Unheld")                              \
    FLAG(TRIGGERED, Bit(14), "TRIGGERED", "Triggered")                     \
    FLAG(EXPIRED, Bit(15), "EXPIRED", "Expired")                           \
    FLAG(ADOPTED, Bit(16), "ADOPTED", "Adopted")

#define NX_FLAGS_nxAttributeTreeDrilldownBitMask(FLAG)                     \
    FLAG(EXPANDABLE, Bit(0), "Expandable", "Row can be expanded")          \
    FLAG(CHILD, Bit(1), "Child", "Row is a child")                         \
    FLAG(ENABLED, Bit(2), "Enabled", "Drilldown is enabled")               \
    FLAG(HIDE_EXPANDERS, Bit(3), "Hide expanders", "Expanders are hidden") \
    FLAG(EXPANDED, Bit(4), "Expanded", "Row is expanded")

#define NX_FLAGS_nxAttributeTrendBitMask(FLAG)                            \
    FLAG(UPTICK, Bit(0), "UPTICK", "Uptick")                              \
    FLAG(DOWNTICK, Bit(1), "DOWNTICK", "Downtick")                        \
    FLAG(ZERO_UPTICK, Bit(2), "ZERO_UPTICK", "Unchanged after an uptick") \
    FLAG(ZERO_DOWNTICK, Bit(3), "ZERO_DOWNTICK", "Unchanged after a downtick")

#define NX_FLAGS_nxAttributeChangeBitMask(FLAG)                                          \
    FLAG(UPDATE, Bit(0), "UPDATE", "Update")                                             \
    FLAG(UPDATE_WITHOUT_FLASH, Bit(1), "UPDATE_WITHOUT_FLASH", "Update without flash")   \
    FLAG(UPDATE_FORCED_FLASH, Bit(2), "UPDATE_FORCED_FLASH", "Update with forced flash") \
    FLAG(HIGHLIGHT, Bit(3), "HIGHLIGHT", "Highlight")                                    \
    FLAG(EXTENDED_HIGHLIGHT, Bit(4), "EXTENDED_HIGHLIGHT", "Extended highlight")         \
    FLAG(TREND, Bit(5), "TREND", "Trend")                                                \
    FLAG(TREE_DRILLDOWN, Bit(6), "TREE_DRILLDOWN", "Tree drilldown")                     \
    FLAG(NUMBER_FORMAT, Bit(7), "NUMBER_FORMAT", "Number format")                        \
    FLAG(TOOLTIP, Bit(8), "TOOLTIP", "Tooltip")

#define NX_FLAGS_nxAttributeHighlightBitMask(FLAG)             \
    FLAG(OWN_BID, Bit(0), "OWN_BID", "Own bid")                \
    FLAG(OWN_ASK, Bit(1), "OWN_ASK", "Own ask")                \
    FLAG(BEST_BID, Bit(2), "BEST_BID", "Best bid")             \
    FLAG(BEST_ASK, Bit(3), "BEST_ASK", "Best ask")             \
    FLAG(LAST_TRADE, Bit(4), "LAST_TRADE", "Last trade")       \
    FLAG(SESSION_HIGH, Bit(5), "SESSION_HIGH", "Session high") \
    FLAG(SESSION_LOW, Bit(6), "SESSION_LOW", "Session low")    \
    FLAG(STALE, Bit(7), "STALE", "Stale")

#define NX_FLAGS_nxExtendedAttributeHighlightBitMask(FLAG)           \
    FLAG(IMPLIED, Bit(0), "IMPLIED", "Implied")                      \
    FLAG(INDICATIVE, Bit(1), "INDICATIVE", "Indicative")             \
    FLAG(LIMIT_UP, Bit(2), "LIMIT_UP", "Limit up")                   \
    FLAG(LIMIT_DOWN, Bit(3), "LIMIT_DOWN", "Limit down")             \
    FLAG(FAST_MARKET, Bit(4), "FAST_MARKET", "Fast market")          \
    FLAG(LIMIT_BREACHED, Bit(5), "LIMIT_BREACHED", "Limit breached") \
    FLAG(PRICE_ALERT, Bit(6), "PRICE_ALERT", "Price alert")

#define NX_FLAGS_nxIntraDayProductDefinitionUpdateBitMask(FLAG)   \
    FLAG(PRODUCT_STATE, Bit(0), "PRODUCT_STATE", "Product state") \
    FLAG(TRADING_PERIOD, Bit(1), "TRADING_PERIOD", "Trading period")

#define NX_FLAGS_nxProductStateBitMask(FLAG)                                               \
    FLAG(PRECLOSED, Bit(0), "PRECLOSED", "pre-closed")                                     \
    FLAG(CLOSED, Bit(1), "CLOSED", "closed")                                               \
    FLAG(PREOPEN, Bit(2), "PREOPEN", "pre-open")                                           \
    FLAG(OPENING, Bit(3), "OPENING", "opening")                                            \
    FLAG(OPEN, Bit(4), "OPEN", "open")                                                     \
    FLAG(CLOSING, Bit(5), "CLOSING", "closing")                                            \
    FLAG(POSTCLOSED, Bit(6), "POSTCLOSED", "post-closed")                                  \
    FLAG(NO_CANCEL, Bit(7), "NO_CANCEL", "no cancel")                                      \
    FLAG(NO_AMEND, Bit(8), "NO_AMEND", "no amend")                                         \
    FLAG(HALT, Bit(9), "HALT", "halt")                                                     \
    FLAG(SUSPENDED, Bit(10), "SUSPENDED", "suspended")                                     \
    FLAG(FROZEN, Bit(11), "FROZEN", "frozen")                                              \
    FLAG(RESERVED, Bit(12), "RESERVED", "reserved")                                        \
    FLAG(OPENING_AUCTION, Bit(13), "OPENING_AUCTION", "opening auction")                   \
    FLAG(INTRADAY_AUCTION, Bit(14), "INTRADAY_AUCTION", "intra-day auction")               \
    FLAG(CLOSING_AUCTION, Bit(15), "CLOSING_AUCTION", "closing auction")                   \
    FLAG(VOLATILITY_AUCTION, Bit(16), "VOLATILITY_AUCTION", "volatility auction")          \
    FLAG(AUCTION_FREEZE, Bit(17), "AUCTION_FREEZE", "auction freeze")                      \
    FLAG(UNCROSSING, Bit(18), "UNCROSSING", "uncrossing")                                  \
    FLAG(FAST_MARKET, Bit(19), "FAST_MARKET", "fast market")                               \
    FLAG(CIRCUIT_BREAKER, Bit(20), "CIRCUIT_BREAKER", "circuit breaker")                   \
    FLAG(LIMIT_UP, Bit(21), "LIMIT_UP", "limit up")                                        \
    FLAG(LIMIT_DOWN, Bit(22), "LIMIT_DOWN", "limit down")                                  \
    FLAG(TRADING_AT_LAST, Bit(23), "TRADING_AT_LAST", "trading at last")                   \
    FLAG(TRADING_AT_SETTLEMENT, Bit(24), "TRADING_AT_SETTLEMENT", "trading at settlement") \
    FLAG(QUOTES_ONLY, Bit(25), "QUOTES_ONLY", "quotes only")                               \
    FLAG(BLOCK_TRADES_ONLY, Bit(26), "BLOCK_TRADES_ONLY", "block trades only")             \
    FLAG(LATE_TRADING, Bit(27), "LATE_TRADING", "late trading")                            \
    FLAG(NOT_TRADED, Bit(28), "NOT_TRADED", "not traded")                                  \
    FLAG(EXPIRING, Bit(29), "EXPIRING", "expiring")

#define NX_FLAGS_nxDatabaseModeBitMask(FLAG)                                             \
    FLAG(DEFAULT, Bit(0), "DEFAULT", "default")                                          \
    FLAG(NO_MUTEXES, Bit(1), "NO_MUTEXES", "not mutex locked")                           \
    FLAG(THREADED_UNMUTEXED, Bit(2), "THREADED_UNMUTEXED", "threaded, not mutex locked") \
    FLAG(SHARED, Bit(3), "SHARED", "shared")                                             \
    FLAG(READ_ONLY, Bit(4), "READ_ONLY", "read only")

#define NX_FLAGS_nxSettlementPriceBitMask(FLAG)             \
    FLAG(PROVISIONAL, Bit(0), "PROVISIONAL", "provisional") \
    FLAG(INTRADAY, Bit(1), "INTRADAY", "intra-day")         \
    FLAG(DAILY, Bit(2), "DAILY", "daily")                   \
    FLAG(CLOSING, Bit(3), "CLOSING", "closing")             \
    FLAG(EXPIRY, Bit(4), "EXPIRY", "expiry")                \
    FLAG(ACTUAL, Bit(5), "ACTUAL", "actual")                \
    FLAG(THEORETICAL, Bit(6), "THEORETICAL", "theoretical") \
    FLAG(ROUNDED, Bit(7), "ROUNDED", "rounded to the tick")

#define NX_FLAGS_nxUserNodeDefinitionFieldsBitMask(FLAG)                                                             \
    FLAG(USER_NODE_DEFINITION_FIELD_STATE, Bit(0), "USER_NODE_DEFINITION_FIELD_STATE", "State")                      \
    FLAG(USER_NODE_DEFINITION_FIELD_NAME, Bit(1), "USER_NODE_DEFINITION_FIELD_NAME", "Name")                         \
    FLAG(USER_NODE_DEFINITION_FIELD_DESCRIPTION, Bit(2), "USER_NODE_DEFINITION_FIELD_DESCRIPTION", "Description")    \
    FLAG(USER_NODE_DEFINITION_FIELD_PARENT, Bit(3), "USER_NODE_DEFINITION_FIELD_PARENT", "Parent")                   \
    FLAG(USER_NODE_DEFINITION_FIELD_PASSWORD, Bit(4), "USER_NODE_DEFINITION_FIELD_PASSWORD", "Password")             \
    FLAG(USER_NODE_DEFINITION_FIELD_PASSWORD_EXPIRY, Bit(5), "USER_NODE_DEFINITION_FIELD_PASSWORD_EXPIRY",           \
         "Password expiry")                                                                                          \
    FLAG(USER_NODE_DEFINITION_FIELD_EXPIRY_DATE, Bit(6), "USER_NODE_DEFINITION_FIELD_EXPIRY_DATE", "Expiry date")    \
    FLAG(USER_NODE_DEFINITION_FIELD_ACCESS_LEVEL, Bit(7), "USER_NODE_DEFINITION_FIELD_ACCESS_LEVEL", "Access level") \
    FLAG(USER_NODE_DEFINITION_FIELD_FUNCTION_PERMISSIONS, Bit(8), "USER_NODE_DEFINITION_FIELD_FUNCTION_PERMISSIONS", \
         "Function permissions")                                                                                     \
    FLAG(USER_NODE_DEFINITION_FIELD_ACCOUNT_PERMISSIONS, Bit(9), "USER_NODE_DEFINITION_FIELD_ACCOUNT_PERMISSIONS",   \
         "Account permissions")                                                                                      \
    FLAG(USER_NODE_DEFINITION_FIELD_EXCHANGE_MAPPINGS, Bit(10), "USER_NODE_DEFINITION_FIELD_EXCHANGE_MAPPINGS",      \
         "Exchange mappings")                                                                                        \
    FLAG(USER_NODE_DEFINITION_FIELD_MAXIMUM_LOGINS, Bit(11), "USER_NODE_DEFINITION_FIELD_MAXIMUM_LOGINS",            \
         "Maximum logins")                                                                                           \
    FLAG(USER_NODE_DEFINITION_FIELD_EMAIL_ADDRESS, Bit(12), "USER_NODE_DEFINITION_FIELD_EMAIL_ADDRESS",              \
         "Email address")                                                                                            \
    FLAG(USER_NODE_DEFINITION_FIELD_TELEPHONE_NUMBER, Bit(13), "USER_NODE_DEFINITION_FIELD_TELEPHONE_NUMBER",        \
         "Telephone number")

#define NX_FLAGS_nxAccountNodeDefinitionFieldsBitMask(FLAG)                                                          \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_STATE, Bit(0), "ACCOUNT_NODE_DEFINITION_FIELD_STATE", "State")                \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_NAME, Bit(1), "ACCOUNT_NODE_DEFINITION_FIELD_NAME", "Name")                   \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_DESCRIPTION, Bit(2), "ACCOUNT_NODE_DEFINITION_FIELD_DESCRIPTION",             \
         "Description")                                                                                              \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_PARENT, Bit(3), "ACCOUNT_NODE_DEFINITION_FIELD_PARENT", "Parent")             \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_FLAGS, Bit(4), "ACCOUNT_NODE_DEFINITION_FIELD_FLAGS", "Flags")                \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_CURRENCY, Bit(5), "ACCOUNT_NODE_DEFINITION_FIELD_CURRENCY", "Currency")       \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_REGION, Bit(6), "ACCOUNT_NODE_DEFINITION_FIELD_REGION", "Region")             \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_CLEARING_ACCOUNT, Bit(7), "ACCOUNT_NODE_DEFINITION_FIELD_CLEARING_ACCOUNT",   \
         "Clearing account")                                                                                         \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_CLEARING_FIRM, Bit(8), "ACCOUNT_NODE_DEFINITION_FIELD_CLEARING_FIRM",         \
         "Clearing firm")                                                                                            \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_EXCHANGE_ACCOUNTS, Bit(9), "ACCOUNT_NODE_DEFINITION_FIELD_EXCHANGE_ACCOUNTS", \
         "Exchange accounts")                                                                                        \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_POSITION_LIMITS, Bit(10), "ACCOUNT_NODE_DEFINITION_FIELD_POSITION_LIMITS",    \
         "Position limits")                                                                                          \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_CLIP_LIMITS, Bit(11), "ACCOUNT_NODE_DEFINITION_FIELD_CLIP_LIMITS",            \
         "Clip limits")                                                                                              \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_MARGIN_FACTOR, Bit(12), "ACCOUNT_NODE_DEFINITION_FIELD_MARGIN_FACTOR",        \
         "Margin factor")                                                                                            \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_BUYING_POWER, Bit(13), "ACCOUNT_NODE_DEFINITION_FIELD_BUYING_POWER",          \
         "Buying power")                                                                                             \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_GIVE_UP_FIRM, Bit(14), "ACCOUNT_NODE_DEFINITION_FIELD_GIVE_UP_FIRM",          \
         "Give-up firm")                                                                                             \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_OWNER, Bit(15), "ACCOUNT_NODE_DEFINITION_FIELD_OWNER", "Owner")               \
    FLAG(ACCOUNT_NODE_DEFINITION_FIELD_EXPIRY_DATE, Bit(16), "ACCOUNT_NODE_DEFINITION_FIELD_EXPIRY_DATE", "Expiry date")

#define NX_FLAGS_nxAccountNodeFlagBitMask(FLAG)                                                  \
    FLAG(GENERATE_EXCHANGE_STRATEGY_POSITIONS, Bit(0), "GENERATE_EXCHANGE_STRATEGY_POSITIONS",   \
         "Generate exchange strategy positions")                                                 \
    FLAG(GENERATE_SYNTHETIC_STRATEGY_POSITIONS, Bit(1), "GENERATE_SYNTHETIC_STRATEGY_POSITIONS", \
         "Generate synthetic strategy positions")

#define NX_FLAGS_nxProductFlagBitMask(FLAG) FLAG(IS_TAS_CONTRACT, Bit(0), "IS_TAS_CONTRACT", "Is TAS contract")

#define NX_FLAGS_nxServerCapabilityBitMask(FLAG)                                                      \
    FLAG(MULTI_PART_ORDER_SNAPSHOT, Bit(0), "MULTI_PART_ORDER_SNAPSHOT", "Multi-part order snapshot") \
    FLAG(ADOPT_ORDER, Bit(1), "ADOPT_ORDER", "Adopt order")                                           \
    FLAG(ON_OPEN_ORDER, Bit(2), "ON_OPEN_ORDER", "On-open order")                                     \
    FLAG(ON_CLOSE_ORDER, Bit(3), "ON_CLOSE_ORDER", "On-close order")                                  \
    FLAG(CONTINGENT_ORDER, Bit(4), "CONTINGENT_ORDER", "Contingent order")                            \
    FLAG(MARKET_ORDER, Bit(5), "MARKET_ORDER", "Market order")                                        \
    FLAG(MARKET_TO_LIMIT_ORDER, Bit(6), "MARKET_TO_LIMIT_ORDER", "Market-to-limit order")             \
    FLAG(STOP_ORDER, Bit(7), "STOP_ORDER", "Stop order")                                              \
    FLAG(STOP_LIMIT_ORDER, Bit(8), "STOP_LIMIT_ORDER", "Stop-limit order")                            \
    FLAG(TRAILING_STOP_ORDER, Bit(9), "TRAILING_STOP_ORDER", "Trailing stop order")                   \
    FLAG(MARKET_IF_TOUCHED_ORDER, Bit(10), "MARKET_IF_TOUCHED_ORDER", "Market-if-touched order")      \
    FLAG(LIMIT_IF_TOUCHED_ORDER, Bit(11), "LIMIT_IF_TOUCHED_ORDER", "Limit-if-touched order")         \
    FLAG(ICEBERG_ORDER, Bit(12), "ICEBERG_ORDER", "Iceberg order")                                    \
    FLAG(HIDDEN_ORDER, Bit(13), "HIDDEN_ORDER", "Hidden order")                                       \
    FLAG(PEGGED_ORDER, Bit(14), "PEGGED_ORDER", "Pegged order")                                       \
    FLAG(OCO_ORDER, Bit(15), "OCO_ORDER", "OCO order")                                                \
    FLAG(BRACKET_ORDER, Bit(16), "BRACKET_ORDER", "Bracket order")                                    \
    FLAG(HELD_ORDER, Bit(17), "HELD_ORDER", "Held order")                                             \
    FLAG(PARKED_ORDER, Bit(18), "PARKED_ORDER", "Parked order")                                       \
    FLAG(SYNTHETIC_ORDER, Bit(19), "SYNTHETIC_ORDER", "Synthetic order")                              \
    FLAG(BLOCK_ORDER, Bit(20), "BLOCK_ORDER", "Block order")                                          \
    FLAG(CROSS_ORDER, Bit(21), "CROSS_ORDER", "Cross order")                                          \
    FLAG(POST_ONLY_ORDER, Bit(22), "POST_ONLY_ORDER", "Post-only order")                              \
    FLAG(DAY_ORDER, Bit(23), "DAY_ORDER", "Day order")                                                \
    FLAG(GTC_ORDER, Bit(24), "GTC_ORDER", "GTC order")                                                \
    FLAG(GTD_ORDER, Bit(25), "GTD_ORDER", "GTD order")                                                \
    FLAG(IOC_ORDER, Bit(26), "IOC_ORDER", "IOC order")                                                \
    FLAG(FOK_ORDER, Bit(27), "FOK_ORDER", "FOK order")                                                \
    FLAG(MINIMUM_VOLUME_ORDER, Bit(28), "MINIMUM_VOLUME_ORDER", "Minimum volume order")               \
    FLAG(AMEND_PRICE, Bit(29), "AMEND_PRICE", "Amend price")                                          \
    FLAG(AMEND_VOLUME_UP, Bit(30), "AMEND_VOLUME_UP", "Amend volume up")                              \
    FLAG(AMEND_VOLUME_DOWN, Bit(31), "AMEND_VOLUME_DOWN", "Amend volume down")                        \
    FLAG(AMEND_ACCOUNT, Bit(32), "AMEND_ACCOUNT", "Amend account")                                    \
    FLAG(AMEND_USER_FIELDS, Bit(33), "AMEND_USER_FIELDS", "Amend user fields")                        \
    FLAG(MASS_PULL, Bit(34), "MASS_PULL", "Mass pull")                                                \
    FLAG(PULL_ON_DISCONNECT, Bit(35), "PULL_ON_DISCONNECT", "Pull on disconnect")                     \
    FLAG(MASS_QUOTE, Bit(36), "MASS_QUOTE", "Mass quote")                                             \
    FLAG(REQUEST_FOR_QUOTE, Bit(37), "REQUEST_FOR_QUOTE", "Request for quote")                        \
    FLAG(REQUEST_FOR_CROSS, Bit(38), "REQUEST_FOR_CROSS", "Request for cross")                        \
    FLAG(STRATEGY_CREATION, Bit(39), "STRATEGY_CREATION", "Strategy creation")                        \
    FLAG(OUTRIGHT_CREATION, Bit(40), "OUTRIGHT_CREATION", "Outright creation")                        \
    FLAG(SELF_MATCH_PREVENTION, Bit(41), "SELF_MATCH_PREVENTION", "Self-match prevention")            \
    FLAG(PRE_TRADE_RISK_CHECK, Bit(42), "PRE_TRADE_RISK_CHECK", "Pre-trade risk check")               \
    FLAG(MARGIN_CHECK, Bit(43), "MARGIN_CHECK", "Margin check")                                       \
    FLAG(PRICE_DEPTH, Bit(44), "PRICE_DEPTH", "Price depth")                                          \
    FLAG(IMPLIED_PRICES, Bit(45), "IMPLIED_PRICES", "Implied prices")                                 \
    FLAG(THEORETICAL_PRICES, Bit(46), "THEORETICAL_PRICES", "Theoretical prices")                     \
    FLAG(TRADE_HISTORY, Bit(47), "TRADE_HISTORY", "Trade history")                                    \
    FLAG(TRADE_ALLOCATION, Bit(48), "TRADE_ALLOCATION", "Trade allocation")                           \
    FLAG(GIVE_UP, Bit(49), "GIVE_UP", "Give-up")                                                      \
    FLAG(BATCH_TRANSACTIONS, Bit(50), "BATCH_TRANSACTIONS", "Batch transactions")                     \
    FLAG(FAULT_TOLERANT_HANDOVER, Bit(51), "FAULT_TOLERANT_HANDOVER", "Fault-tolerant handover")

#endif
