// The custom-map catalogue of a large installation, 2,000 CTF packs of 32 levels, against the
// I/O floor: listing the folder and reading each pack's header and directory blocks, nothing
// more. The packs are sparse 1 MiB files, so reading any archive whole would show.
#include "maps/MapCatalogue.h"
#include "maps/VppArchive.h"
#include "platform/FolderList.h"
#include "platform/posix/Heap.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr int kPacks = 2000;
constexpr int kLevels = 32;
constexpr qint64 kPackSize = 1 << 20;

const QString& GameDir() {
    static QTemporaryDir dir;
    static const bool made = [] {
        const QString multi = dir.filePath(kCustomFolder);
        QDir().mkpath(multi);
        for (int p = 0; p < kPacks; ++p) {
            QList<VppEntry> entries;
            for (int l = 0; l < kLevels; ++l)
                entries << VppEntry{QStringLiteral("ctf_p%1_%2.rfl").arg(p).arg(l), {}};
            QFile file(QStringLiteral("%1/ctf_pack%2.vpp").arg(multi).arg(p, 4, 10, QChar('0')));
            if (!file.open(QIODevice::WriteOnly) || file.write(BuildVppArchive(entries)) < 0 ||
                !file.resize(kPackSize))
                return false;
        }
        return true;
    }();
    static const QString path = made ? dir.path() + '/' : QString();
    return path;
}

void BM_Catalogue(benchmark::State& state) {
    if (GameDir().isEmpty())
        return state.SkipWithError("cannot lay out the packs");
    for (auto _ : state) {
        const QString folder = FindFolder(GameDir(), kCustomFolder);
        QStringList candidates;
        for (const QString& pack : ListFiles(folder, kCtfPacks))
            ReadLevels(folder + '/' + pack, candidates);
        const QStringList levels = FilterLevels(candidates, true);
        if (levels.size() != kPacks * kLevels)
            return state.SkipWithError("levels missing");
        benchmark::DoNotOptimize(levels);
    }
}
BENCHMARK(BM_Catalogue)->Unit(benchmark::kMillisecond)->MinTime(2);

void BM_Floor(benchmark::State& state) {
    if (GameDir().isEmpty())
        return state.SkipWithError("cannot lay out the packs");
    const std::string folder = QFile::encodeName(GameDir() + kCustomFolder).toStdString();
    std::vector<char> header(kVppBlock), directory(kVppBlock);
    for (auto _ : state) {
        std::vector<std::string> names;
        DIR* dir = ::opendir(folder.c_str());
        while (const dirent* entry = ::readdir(dir))
            if (entry->d_name[0] != '.')
                names.emplace_back(entry->d_name);
        ::closedir(dir);
        qint64 bytes = 0;
        for (const std::string& name : names) {
            const int fd = ::open((folder + '/' + name).c_str(), O_RDONLY | O_CLOEXEC);
            bytes += ::pread(fd, header.data(), header.size(), 0);
            bytes += ::pread(fd, directory.data(), directory.size(), kVppBlock);
            ::close(fd);
        }
        if (bytes != qint64(kPacks) * 2 * kVppBlock)
            return state.SkipWithError("short reads");
    }
}
BENCHMARK(BM_Floor)->Unit(benchmark::kMillisecond)->MinTime(2);

// Prints the usual table, then the catalogue's time against the floor's: the medians when
// the runs are repeated.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const std::string& name = run.run_name.function_name;
            if (run.error_occurred)
                continue;
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
                medians_.insert(name);
            else if (run.run_type != Run::RT_Iteration || medians_.count(name))
                continue;
            ms_[name] = run.GetAdjustedRealTime();
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        const double catalogue = ms_["BM_Catalogue"];
        const double floor = ms_["BM_Floor"];
        if (catalogue > 0 && floor > 0)
            std::printf("catalogue %.2f ms, floor %.2f ms, ratio %.2f (target: at most 50 ms "
                        "and 2.00)\n",
                        catalogue, floor, catalogue / floor);
    }

private:
    std::map<std::string, double> ms_;
    std::set<std::string> medians_;
};

} // namespace

int main(int argc, char** argv) {
    KeepFreedHeap(); // as the program does
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
}
