// SPDX-License-Identifier: Apache-2.0
// Runs one named operation a given number of times, for counting its instructions: instructions OPERATION COUNT.
// Without arguments it lists the operations. scripts/instructions.sh runs it under callgrind.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include "benchmarks/log/counted.h"
#include "benchmarks/support/logTarget.h"
#include "core/nxCore.h"

namespace
{
template <class Value>
void Keep(Value& value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

const std::string decimalText = "12345.67890", integerText = "123456789", name = "NX_ERR_INSUFFICIENT_MEMORY";
const nxRoundingMethodEnum nearest(NX_ROUNDING_METHOD_NEAREST);
nxDecimal price(decimalText, '.'), sameScale("3.25000", '.'), otherScale(7, 1), cent("0.01", '.'), result;
nxErrorEnum error;
nxMutex mutex;
int integer = 123456789;
double number = 1234.5678;
char buffer[64];
std::string text;

const nxVariableTickTable& Table() { return *nxVariableTickTableContainer::GetVariableTickTable("VTT_CHIX_FESE1"); }

const auto& samples = LogBenchmark::Samples();
std::size_t sampleIndex = 0;

const LogBenchmark::Sample& NextSample() { return samples[sampleIndex++ % samples.size()]; }

void LogValues()
{
    const auto& sample = NextSample();
    NX_LOG(NX_LOG_LEVEL_INFO) << "filled " << sample.quantity << sample.price << sample.symbol;
}
void LogFields()
{
    const auto& sample = NextSample();
    NX_LOG(NX_LOG_LEVEL_INFO) << "filled" << nxField("quantity", sample.quantity) << nxField("price", sample.price)
                              << nxField("symbol", sample.symbol);
}
void LogNothing() { NX_LOG(NX_LOG_LEVEL_DEBUG) << "filled " << integer << price << integerText; }

struct Operation
{
    const char* name;
    void (*run)();
};

const Operation operations[] = {
    {"decimal_add_same_scale",
     []
     {
         result = price;
         Keep(result);
         result += sameScale;
     }},
    {"decimal_add_other_scale",
     []
     {
         result = price;
         Keep(result);
         result += otherScale;
     }},
    {"decimal_multiply",
     []
     {
         result = price;
         Keep(result);
         result *= otherScale;
     }},
    {"decimal_divide",
     []
     {
         result = price;
         Keep(result);
         result /= otherScale;
     }},
    {"decimal_round",
     []
     {
         result = price;
         Keep(result);
         result.Round(cent, nearest);
     }},
    {"decimal_exact_add_same_scale",
     []
     {
         result = price;
         Keep(result);
         if (!result.AddExact(sameScale).IsOK())
             std::abort();
     }},
    {"decimal_exact_add_other_scale",
     []
     {
         result = price;
         Keep(result);
         if (!result.AddExact(otherScale).IsOK())
             std::abort();
     }},
    {"decimal_exact_multiply",
     []
     {
         result = price;
         Keep(result);
         if (!result.MultiplyExact(otherScale).IsOK())
             std::abort();
     }},
    {"decimal_exact_multiply_rounded",
     []
     {
         result = price;
         Keep(result);
         if (!result.MultiplyExact(otherScale, 5, NX_ROUNDING_METHOD_NEAREST).IsOK())
             std::abort();
     }},
    {"decimal_exact_divide",
     []
     {
         result = price;
         Keep(result);
         if (!result.DivideExact(otherScale, 5, NX_ROUNDING_METHOD_NEAREST).IsOK())
             std::abort();
     }},
    {"decimal_parse",
     []
     {
         Keep(decimalText);
         if (!result.SetFromString(decimalText, '.').IsOK())
             std::abort();
     }},
    {"decimal_print",
     []
     {
         Keep(price);
         price.GetAsString(buffer, '.');
     }},
    {"int_parse",
     []
     {
         Keep(integerText);
         if (!nxStringHelper::SetFromString(integerText, integer).IsOK())
             std::abort();
     }},
    {"int_parse_exact",
     []
     {
         Keep(integerText);
         if (!nxStringHelper::SetFromStringExact(integerText, integer).IsOK())
             std::abort();
     }},
    {"int_print",
     []
     {
         text.clear();
         nxStringHelper::AppendAsString(text, integer);
     }},
    {"double_parse",
     []
     {
         Keep(decimalText);
         if (!nxStringHelper::SetFromString(decimalText, number, '.').IsOK())
             std::abort();
     }},
    {"double_parse_exact",
     []
     {
         Keep(decimalText);
         if (!nxStringHelper::SetFromStringExact(decimalText, number, '.').IsOK())
             std::abort();
     }},
    {"double_print",
     []
     {
         text.clear();
         nxStringHelper::AppendAsString(text, number);
     }},
    {"enum_to_text",
     []
     {
         Keep(error);
         const std::string& found = error.GetShortDescription();
         Keep(found);
     }},
    {"text_to_enum",
     []
     {
         Keep(name);
         if (!error.SetFromString(name))
             std::abort();
     }},
    {"tick_at_price_table",
     []
     {
         static const auto& table = Table();
         Keep(price);
         Keep(table.GetTickIncrement(price));
     }},
    {"tick_at_price_cursor",
     []
     {
         static nxTickTableCursor cursor(Table());
         Keep(price);
         Keep(cursor.GetTickIncrement(price));
     }},
    {"tick_round_cursor",
     []
     {
         static nxTickTableCursor cursor(Table());
         result = price;
         Keep(result);
         cursor.RoundToValidTick(nearest, result);
     }},
    {"tick_step_cursor",
     []
     {
         static nxTickTableCursor cursor(Table());
         result = price;
         Keep(result);
         cursor.Increment(result);
     }},
    {"mutex_lock_unlock",
     []
     {
         static_cast<void>(mutex.Lock());
         static_cast<void>(mutex.Unlock());
     }},
    {"time_stamp_text",
     []
     {
         static const nxTimeStamp stamp(1709629623, 123456000);
         Keep(stamp);
         stamp.GetAsStringFast(buffer, sizeof buffer);
     }},
    {"log_suppressed", LogNothing},
};

// What a record costs its caller, and what the log's thread pays for it.
struct LogOperation
{
    const char* name;
    void (*report)();
    std::optional<nxLogLineStyle::Form> form;  // of the lines; none where the caller's part is counted
};

const LogOperation logOperations[] = {
    {"log_caller", LogValues, {}},
    {"log_caller_fields", LogFields, {}},
    {"log_text", LogValues, nxLogLineStyle::Full},
    {"log_json", LogValues, nxLogLineStyle::Json},
    {"log_text_fields", LogFields, nxLogLineStyle::Full},
    {"log_json_fields", LogFields, nxLogLineStyle::Json},
};

// Returns if there is no operation of this name.
void RunLogOperation(const char* wanted, int count)
{
    for (const LogOperation& operation : logOperations)
        if (std::strcmp(operation.name, wanted) == 0)
        {
            if (operation.form)
                CountedLog::RunWriter(operation.report, *operation.form, count);
            CountedLog::RunCaller(operation.report, count);
        }
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
    {
        for (const Operation& operation : operations)
            std::puts(operation.name);
        for (const LogOperation& operation : logOperations)
            std::puts(operation.name);
        return 0;
    }
    text.reserve(sizeof buffer);
    for (const Operation& operation : operations)
        if (std::strcmp(operation.name, argv[1]) == 0)
        {
            for (int i = std::atoi(argv[2]); i >= 0; --i)
                operation.run();
            return 0;
        }
    RunLogOperation(argv[1], std::atoi(argv[2]));
    return 1;
}
