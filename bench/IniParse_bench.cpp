#include "settings/IniDocument.h"

#include <benchmark/benchmark.h>

namespace {

// A settings file of `sections` configurations, four keys each, names in mixed case so
// that every lookup folds them.
QByteArray File(int sections) {
    QByteArray text = "[Startup]\nHasRunSetup=1\n";
    for (int i = 0; i < sections; ++i)
        text += "\n[Conf" + QByteArray::number(i) + "]\ngametype=CTF\nServName=server " +
                QByteArray::number(i) + "\nmapcount=1\nmap0=ctf01\n";
    return text;
}

void BM_ParseIni(benchmark::State& state) {
    const QByteArray text = File(int(state.range(0)));
    for (auto _ : state) {
        IniDocument doc;
        benchmark::DoNotOptimize(ParseIni(text, doc));
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_ParseIni)
    ->Arg(12500)
    ->Arg(50000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

} // namespace
