#include <benchmark/benchmark.h>

#include "core/enum/nxErrorEnum.h"

namespace
{
void EnumToText(benchmark::State& state)
{
    const nxErrorEnum error(NX_ERR_NOT_FOUND);
    for (auto _ : state)
        benchmark::DoNotOptimize(error.GetShortDescription().data());
}
BENCHMARK(EnumToText)->Name("enum_to_text/ours");
}  // namespace
