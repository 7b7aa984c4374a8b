// Lays out a demo game directory: the stand-in server as RF.EXE, the stock level
// archive, a few custom map packs and a few mods. Files that the server or Hostwarden
// write there (dedicated_server.txt, transcripts) are left alone.
#include "maps/VppArchive.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

VppEntry Level(const QString& name) {
    return {name, QByteArray("RFLV") + name.toLatin1() + '\n'};
}

VppEntry Other(const QString& name) {
    return {name, QByteArray("demo file ") + name.toLatin1() + '\n'};
}

bool Fail(const QString& message) {
    std::fprintf(stderr, "make-demo-game: %s\n", qPrintable(message));
    return false;
}

bool Write(const QDir& dir, const QString& name, const QList<VppEntry>& entries) {
    if (!dir.mkpath(QStringLiteral(".")))
        return Fail(QStringLiteral("cannot create %1").arg(dir.path()));
    QString error;
    if (!WriteVppArchive(dir.filePath(name), entries, &error))
        return Fail(error);
    return true;
}

bool CopyServer(const QString& standin, const QString& target) {
    QFile::remove(target);
    if (!QFile::copy(standin, target))
        return Fail(QStringLiteral("cannot copy %1 to %2").arg(standin, target));
    return QFile::setPermissions(target, QFile::permissions(target) | QFile::ExeOwner |
                                             QFile::ExeGroup | QFile::ExeOther);
}

QList<VppEntry> StockLevels() {
    QList<VppEntry> entries;
    for (int i = 1; i <= 7; ++i)
        entries << Level(QStringLiteral("ctf%1.rfl").arg(i, 2, 10, QLatin1Char('0')));
    for (int i = 1; i <= 20; ++i)
        entries << Level(QStringLiteral("dm%1.rfl").arg(i, 2, 10, QLatin1Char('0')));
    entries << Other(QStringLiteral("levels.tbl")) << Other(QStringLiteral("readme.txt"));
    return entries;
}

bool MakeDemo(const QDir& game, const QString& standin) {
    if (!game.mkpath(QStringLiteral(".")))
        return Fail(QStringLiteral("cannot create %1").arg(game.path()));
    for (const char* managed : {"user_maps", "mods"})
        QDir(game.filePath(managed)).removeRecursively();

    if (!CopyServer(standin, game.filePath(QStringLiteral("RF.EXE"))) ||
        !Write(game, QStringLiteral("levelsm.vpp"), StockLevels()))
        return false;

    const QDir multi(game.filePath(QStringLiteral("user_maps/multi")));
    const bool packs =
        Write(multi, QStringLiteral("ctf_pack1.vpp"),
              {Level("ctf_bridge.rfl"), Level("ctf_canyon.rfl"), Other("pack1.txt")}) &&
        Write(multi, QStringLiteral("DM_pack1.vpp"),
              {Level("dm_arena.rfl"), Level("dm_warehouse.rfl"), Level("dm_sewers.rfl")}) &&
        // Mixed case as Windows packs often are: "CTF_Tower.rfl" lists as ctf_tower.rfl,
        // "CTF_Upper.RFL" is no level name and the DM level is no CTF level.
        Write(multi, QStringLiteral("Ctf_MixedCase.vpp"),
              {Level("CTF_Tower.rfl"), Level("CTF_Upper.RFL"), Level("dm_mixed.rfl")}) &&
        // The same level in two packs is offered twice.
        Write(multi, QStringLiteral("dm_pack2.vpp"), {Level("dm_arena.rfl"), Level("dm_yard.rfl")});

    const QDir mods(game.filePath(QStringLiteral("mods")));
    const bool modsDone = Write(QDir(mods.filePath("Rocketball")), QStringLiteral("rocketball.vpp"),
                                {Other("rocketball.tbl"), Level("ctf_rocketball.rfl")}) &&
                          Write(QDir(mods.filePath("Classic")), QStringLiteral("CLASSIC.VPP"),
                                {Other("classic.tbl")}) &&
                          // Not usable: no package directly inside.
                          mods.mkpath(QStringLiteral("EmptyMod")) &&
                          Write(QDir(mods.filePath("Nested/data")), QStringLiteral("nested.vpp"),
                                {Other("nested.tbl")});
    return packs && modsDone;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "Usage: make-demo-game <game directory> <stand-in server binary>\n");
        return 2;
    }
    const QString game = QFile::decodeName(argv[1]);
    const QString standin = QFile::decodeName(argv[2]);
    return MakeDemo(QDir(game), standin) ? 0 : 1;
}
