#include "settings/IniSettingsStore.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

const QString App = QStringLiteral("Hostwarden 2.0");

// A store the size of a well-used installation: 50 configurations of 30 keys.
void Fill(IniSettingsStore& store) {
    for (int c = 0; c < 50; ++c) {
        const QString section = QStringLiteral("CONF%1").arg(c);
        for (int k = 0; k < 30; ++k)
            store.SaveSetting(App, section, QStringLiteral("key%1").arg(k),
                              QStringLiteral("value %1 of %2").arg(k).arg(section));
    }
}

void BM_SaveSetting(benchmark::State& state) {
    QTemporaryDir dir;
    IniSettingsStore store(dir.path());
    Fill(store);
    int i = 0;
    for (auto _ : state)
        store.SaveSetting(App, "CONF25", "servname", (++i & 1) ? "odd" : "even");
}
BENCHMARK(BM_SaveSetting)->Unit(benchmark::kMillisecond);

void BM_GetSetting(benchmark::State& state) {
    QTemporaryDir dir;
    IniSettingsStore store(dir.path());
    Fill(store);
    for (auto _ : state)
        benchmark::DoNotOptimize(store.GetSetting(App, "conf25", "KEY15"));
}
BENCHMARK(BM_GetSetting);

} // namespace
