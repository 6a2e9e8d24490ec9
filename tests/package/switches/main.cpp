#include <unistd.h>

#include <deque>
#include <iostream>
#include <memory>
#include <sstream>

#include "Gateway.h"
#include "core/app/nxCmdLineArgs.h"
#include "core/log/nxLogMacros.h"
#include "core/log/nxLogManager.h"
#include "core/price/nxVariableTickTableContainer.h"
#include "core/testing/nxCapturingLogDevice.h"
#include "core/thread/nxMutexGuard.h"
#include "core/thread/nxSemaphore.h"
#include "core/thread/nxThread.h"

namespace
{
class JobQueue
{
public:
    void Put(std::string job)
    {
        {
            const nxMutexGuard guard(_mutex);
            _jobs.push_back(std::move(job));
        }
        _ready.Post();
    }
    // The empty text ends the worker that takes it.
    std::string Take()
    {
        while (!_ready.Wait().IsOK())
            ;
        const nxMutexGuard guard(_mutex);
        std::string job = std::move(_jobs.front());
        _jobs.pop_front();
        return job;
    }

private:
    nxMutex _mutex;
    nxSemaphore _ready{0};
    std::deque<std::string> _jobs;
};

class Worker : public nxThread
{
public:
    Worker(JobQueue& jobs, Totals& totals, const Tables& tables, const nxRoundingMethodEnum& method)
        : _jobs(jobs), _totals(totals), _tables(tables), _method(method)
    {
    }

    nxErrorEnum Run() override
    {
        for (std::string job = _jobs.Take(); !job.empty(); job = _jobs.Take())
            Handle(job);
        return nxErrorEnum();
    }
    const std::map<std::string, std::string>& GetAnswers() const { return _answers; }

private:
    void Handle(const std::string& job)
    {
        Order order;
        nxErrorEnum error = ReadOrder(job, order);
        const auto table = _tables.find(order.symbol);
        if (error.IsOK() && table == _tables.end())
            error = NX_ERR_NOT_FOUND;
        const nxMutexGuard guard(_totals.mutex);
        ++_totals.errors[error];
        if (!error.IsOK())
        {
            NX_LOG(NX_LOG_LEVEL_WARNING) << job << ": " << error;
            return;
        }
        const VerdictEnum verdict = Check(*table->second, _method, order);
        ++_totals.verdicts[verdict];
        if (verdict != VerdictEnum::Rejected)
        {
            const nxDecimal amount = order.price * nxDecimal(static_cast<unsigned>(order.volume), 4);
            _totals.notional += amount;
            _totals.turnover += amount.GetAsDouble();
        }
        _answers[job] = Describe(order, verdict);
    }

    JobQueue& _jobs;
    Totals& _totals;
    const Tables& _tables;
    const nxRoundingMethodEnum _method;
    std::map<std::string, std::string> _answers;
};

int Fail(const std::string& complaint)
{
    NX_LOG(NX_LOG_LEVEL_ERROR) << complaint;
    std::cerr << "gateway: " << complaint << '\n';
    return 2;
}

// An object whose class and address nobody else knows: the compiler sees through its virtual functions.
nxEnumValue ReadMethod(const nxCmdLineArgs& args)
{
    nxRoundingMethodEnum method(NX_ROUNDING_METHOD_NEAREST);
    if (args.IsArgDefined("method") && !method.SetFromString("NX_ROUNDING_METHOD_" + args.GetArgValue("method")))
        return NX_ENUM_UNDEFINED;
    return method.GetEnumValue();
}

bool FindTables(Tables& tables, nxCustomVariableTickTable::Tables& own)
{
    std::string reason;
    const char* const text = "name,band,upper_bound,increment\nOWN,1,10,0.005\nOWN,2,20,0.05\nOWN,3,,0.5\n";
    if (!nxCustomVariableTickTable::ReadText(text, own, reason).IsOK())
        return false;
    tables["OWN"] = own.front().get();
    for (const std::string& id : nxVariableTickTableContainer::GetVariableTickTableIDs())
        tables[id] = nxVariableTickTableContainer::GetVariableTickTable(id);
    return true;
}

int Run(const nxCmdLineArgs& args)
{
    nxCapturingLogDevice device;
    Tables tables;
    nxCustomVariableTickTable::Tables own;
    const nxRoundingMethodEnum method(ReadMethod(args));
    if (method.IsUndefined())
        return Fail("-method wants DOWN, UP, NEAREST or MODIFIED_NEAREST");
    nxValueWrapper<unsigned int> threads = args.GetArgValueAsVolume("threads");
    if (!threads.IsValid() || threads == 0u)
        threads = 2u;
    if (!FindTables(tables, own))
        return Fail("no tables");

    JobQueue jobs;
    Totals totals;
    std::vector<std::unique_ptr<Worker>> workers;
    for (unsigned n = 0; n < threads; ++n)
    {
        workers.push_back(std::make_unique<Worker>(jobs, totals, tables, method));
        if (!workers.back()->Create().IsOK())
            return Fail("no thread");
    }
    for (unsigned n = 0; n < 60; ++n)
    {
        std::ostringstream line;
        line << (n % 7 == 0 ? "NOWHERE" : "OWN") << (n % 2 == 0 ? ",BUY," : ",SELL,") << n * 100 << ','
             << nxDecimal::ConstructFromValueAndDecimalPlaces(997 * n + 3, 3);
        jobs.Put(line.str() + (n % 3 == 0 ? ",1.5" : ""));
    }
    jobs.Put("OWN,HOLD,1,1");
    jobs.Put("OWN,BUY,1,1.2.3");
    for (unsigned n = 0; n < threads; ++n)
        jobs.Put("");
    std::map<std::string, std::string> answers;
    for (const auto& worker : workers)
    {
        if (!worker->Wait().IsOK())
            return Fail("a worker failed");
        answers.insert(worker->GetAnswers().begin(), worker->GetAnswers().end());
    }
    for (const auto& [job, answer] : answers)
        std::cout << job << ": " << answer << '\n';
    for (const auto& [error, count] : totals.errors)
        std::cout << error << ' ' << count << '\n';
    for (const auto& [verdict, count] : totals.verdicts)
        std::cout << verdict << ' ' << count << '\n';
    std::cout << totals.notional << ' ' << totals.turnover << ' ' << method << '\n';
    nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(3);
    std::cout << device.GetRecords().size() << " records\n";
    return 0;
}
}  // namespace

int main(int, char** argv)
{
    nxCmdLineArgs& args = nxCmdLineArgs::GetInstance();
    args.Initialise(argv, environ);
    for (const std::string& line : SumUpNumbers())
        std::cout << line << '\n';
    return Run(args);
}
