// The program's start: the Setup window and its Browse first, the configurations it stores,
// then the main window's load with the configuration DEFAULT and the operator's start-up
// preferences; and the mods a launch can name.
#include "MainWindow.h"
#include "Texts.h"

#include "automation/Rates.h"
#include "platform/FolderList.h"
#include "platform/posix/Drives.h"
#include "server/ModList.h"
#include "ui/Browse.h"
#include "ui/Setup.h"
#include "ui/server/SetupHandlers.h"
#include "ui/settings/ResetHandlers.h"
#include "ui_Browse.h"
#include "ui_Setup.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

// The warning's Cancel, a first run on an empty store and a later run are the first-run
// journey's; here a stored directory and older defaults, and Setup's Cancel.
TEST(Setup, FirstRunStoresFreshDefaultsAtOnceOnOKAndEndsOnCancel) {
    for (const QString button : {"CMDOK", "CMDCancel"}) {
        MainWindow r;
        r.Seed("Startup/RFLocation=/games/rf/;Default/maxplayers=4;ConfName/ConfCount=3");
        const int writes = r.t.store.writes;
        auto* setup = new ::Setup(r.app, r.forms, r.t.services);
        r.forms.Setup = setup;
        Setup_Form_Load(*setup);
        EXPECT_EQ(r.t.messages.shown.size(), 1) << "the backup warning";
        EXPECT_EQ(setup->ui->TXTRFLocate->text(), "/games/rf/");
        EXPECT_TRUE(setup->ui->CMDOK->isEnabled()) << "enabled by a directory";
        EXPECT_EQ(r.forms.MainWindow, nullptr) << "Setup waits for the operator";
        setup->show();
        const int commits = r.t.store.commits;
        QTest::mouseClick(setup->findChild<QPushButton*>(button), Qt::LeftButton);
        const std::unique_ptr<QWidget> setupGone(setup), main(r.forms.MainWindow);
        const bool ok = button == "CMDOK";
        EXPECT_EQ(r.t.end.ended, ok ? 0 : 1);
        EXPECT_EQ(r.t.store.commits - commits, ok ? 1 : 0) << "one file replacement";
        EXPECT_EQ(r.t.store.writes != writes, ok);
        ASSERT_EQ(main != nullptr, ok);
        if (!ok)
            continue;
        // Older defaults are overwritten; the rest of a first run is the first-run journey's.
        EXPECT_EQ(r.NotHeld("ConfName/ConfCount=1;Default/maxplayers=16"), "");
        EXPECT_EQ(r.forms.Setup, nullptr);
    }
}

// The first-run configuration key by key in the order written: over an existing store its
// values are overwritten, other keys and sections stay, the list is written afresh. A new
// configuration replaces a stored one (with the "default" marker); a section without the
// marker keeps its other keys. The reset deletes everything.
TEST(StoredConfig, FirstRunAndNewConfigurationsWriteTheirDefaultsAndResetDeletesAll) {
    const QStringList firstRun =
        texts::kFirstRunDefaults.mid(0, 16) +
        QStringList{"Text0=This Dedicated Server is running with Hostwarden 2.0 by Velloquin",
                    "Text1=Visit " + kProjectAddress + " for updates.", "Text2=", "Text3="} +
        texts::kFirstRunDefaults.mid(16);
    MainWindow m;
    m.Seed("Default/gametype=DM;Default/map0=ctf01;ConfName/ConfCount=2;ConfName/Conf2=CLAN;"
           "CLAN/default=1;CLAN/map0=ctf01;HALF/default=0;HALF/map0=ctf01");
    CreateDefaultConfig(m.t.store, kAppName);
    QStringList expected = firstRun;
    expected.insert(1, "map0=ctf01");
    EXPECT_EQ(Dump(m.t.store, kAppName, "Default"), expected);
    EXPECT_EQ(Dump(m.t.store, kAppName, "ConfName"),
              QStringList({"ConfCount=1", "Conf2=CLAN", "Conf1=DEFAULT"}));
    EXPECT_EQ(m.t.Get("CLAN", "map0"), "ctf01");

    for (const char* conf : {"CLAN", "HALF"}) {
        m.app.CurrentConf = conf;
        m.app.Saved = "no";
        CreateNewConfig(m.t.store, m.app);
        EXPECT_EQ(m.app.Saved, "yes");
    }
    expected = firstRun;
    expected.removeLast(); // MapCount comes earlier, as mapcount
    expected.replace(1, "servname=$Me's Dedicated CTF running Hostwarden 2.0");
    expected.replace(2, "name=CLAN");
    expected.insert(15, "mapcount=0");
    expected.insert(17, "Mod=");
    EXPECT_EQ(Dump(m.t.store, kAppName, "CLAN"), expected);
    EXPECT_EQ(m.NotHeld("HALF/map0=ctf01;HALF/default=1"), "");

    // "Fix Reg" answered No changes nothing; answered Yes, it deletes everything and ends.
    m.t.Put("Startup", "HasRunSetup", "1");
    m.t.messages.answers = {MsgAnswer::No, MsgAnswer::Yes};
    CMDReset_Click(m.t.services, m.app);
    EXPECT_EQ(m.t.Get("Startup", "HasRunSetup"), "1");
    EXPECT_EQ(std::pair(m.t.beeper.beeps, m.t.end.ended), std::pair(0, 0));
    CMDReset_Click(m.t.services, m.app);
    const MessageRequest question{"All configurations and settings for this program will be "
                                  "deleted.\r\nReset Registry entries for this program?",
                                  "Reset Application Registry Entries?", MsgButtons::YesNo,
                                  MsgIcon::Critical, MsgDefault::Second};
    EXPECT_EQ(m.t.messages.shown, QList<MessageRequest>(2, question));
    EXPECT_TRUE(m.t.store.IsEmpty(kAppName));
    EXPECT_EQ(std::pair(m.t.beeper.beeps, m.t.end.ended), std::pair(1, 1));
}

// Rates as a hand edit may leave them: clamped into the dialog's range and rounded; text that
// is no number gives the default. (Numbers and booleans: the configuration's load.)
TEST(StoredFields, RatesAreClampedIntoTheirDialogsRange) {
    const std::tuple<const char*, int, int> rates[] = {
        {"", 3, 110},   {"12abc", 3, 110}, {"0", 3, 10},       {" 7 ", 7, 10},
        {"16", 15, 16}, {"211", 15, 210},  {"120.6", 15, 121}, {"99999999999999999999", 15, 210}};
    for (const auto& [stored, messageRate, textRate] : rates) {
        EXPECT_EQ(ClampMessageRate(stored), messageRate) << stored;
        EXPECT_EQ(ClampTextRate(stored), textRate) << stored;
    }
}

// Whatever the preferences, DEFAULT is loaded into every control and nothing runs yet; the
// preferences the operator then changes are stored at once.
TEST(Startup, LoadsDefaultRestoresThePreferencesAlongTheirChainAndStoresTheirChanges) {
    const struct {
        QString startup; // "key=value;..." seeded under Startup
        int textRate, messageRate;
        QString checked; // boxes that end up checked
        QString portText;
    } rows[] = {
        {"LanOnly=1", 110, 3, "", ""}, // the chain stops at ServRec
        {"ServRec=1;lanonly=1;Port=1;PortNum=12a34", 110, 3, "ServRec LanOnly Port", "1234"},
        {"ServRec=0;LanOnly=1;PortNum=7755", 110, 3, "LanOnly", ""}, // PortNum needs Port
        {"ServRec=2;LanOnly=yes;Port=1;PortNum=", 110, 3, "Port", ""},
        {"TextRate=5;MsgRate=10", 10, 10, "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.startup.toStdString());
        MainWindow m;
        m.SeedFirstRun();
        m.Seed(row.startup, "Startup");
        auto& ui = m.Load().ui;
        const bool port = row.checked.contains("Port");
        EXPECT_EQ(std::pair(m.w->TextRate(), int(m.app.MessageRate)),
                  std::pair(row.textRate, row.messageRate));
        EXPECT_EQ(ui->CHKServRec->isChecked(), row.checked.contains("ServRec"));
        EXPECT_EQ(ui->CHKGameTracker->isChecked(), row.checked.contains("LanOnly"));
        EXPECT_EQ(std::pair(ui->CHKPort->isChecked(), ui->TXTPort->isEnabled()),
                  std::pair(port, port));
        EXPECT_EQ(ui->TXTPort->text(), row.portText);
        EXPECT_TRUE(!port || m.t.Get("Startup", "PortNum") == row.portText);
        EXPECT_EQ(m.app.Saved, "yes");
        EXPECT_FALSE(m.timer("TMRAdds")->isActive() || m.timer("TMRSend")->isActive());
    }
    MainWindow m;
    auto& ui = m.Start().ui();
    // The worked example of the options file is what a first run shows.
    EXPECT_EQ(m.Text().toLatin1(), texts::kFirstRunOptions);
    EXPECT_EQ(QStringList({m.app.CurrentConf, ui.LSTConfig->currentText(),
                           QString::number(ui.LSTConfig->count()), ui.TXTConfName->text(),
                           ui.TXTMod->text(), ui.MCS->text()}),
              QStringList({"DEFAULT", "DEFAULT", "1", "Default", "None", "0 Maps"}));

    // The operator's clicks and typed ports are stored.
    for (QCheckBox* box : {ui.CHKGameTracker, ui.CHKServRec, ui.CHKPort})
        box->setChecked(true);
    EXPECT_EQ(m.NotHeld("Startup/lanonly=1;Startup/ServRec=1;Startup/Port=1"), "");
    EXPECT_TRUE(ui.TXTPort->isEnabled());
    // Only digits and the point stay, the cursor at the end, however long the number.
    const QString digits(320, u'7');
    const std::pair<QString, QString> ports[] = {
        {"12a34", "1234"}, {"12.5", "12.5"}, {"abc", ""}, {digits + "x" + digits, digits + digits}};
    for (const auto& [typed, kept] : ports) {
        ui.TXTPort->setText(typed);
        EXPECT_EQ(ui.TXTPort->text(), kept) << typed.toStdString();
        EXPECT_EQ(ui.TXTPort->cursorPosition(), kept.size()) << typed.toStdString();
        EXPECT_EQ(m.t.Get("Startup", "PortNum"), kept) << typed.toStdString();
    }
    ui.CHKPort->setChecked(false);
    EXPECT_EQ(m.t.Get("Startup", "Port"), "0");
    EXPECT_FALSE(ui.TXTPort->isEnabled());
}

// Makes the folders and files named, relative to `root`; a name ending in "/" is a folder.
static void Make(const QString& root, const QStringList& paths) {
    for (const QString& path : paths) {
        QDir(root).mkpath(path.endsWith('/') ? path : path.section('/', 0, -2));
        if (!path.endsWith('/'))
            QFile(root + "/" + path).open(QIODevice::WriteOnly);
    }
}

TEST(Browse, OnlyAFolderHoldingTheGameExecutableCanBeTaken) {
    QTemporaryDir home;
    Make(home.path(), {"lower/rf.exe", "upper/RF.EXE", "mixed/Rf.Exe", "none/rf.exe.bak",
                       "none/sub/", "folder/rf.exe/", ".wine/drive_c/", "gone/inner/"});
    const QByteArray realHome = qgetenv("HOME");
    qputenv("HOME", home.path().toUtf8());
    MainWindow m;
    ::Setup setup(m.app, m.forms, m.t.services);
    setup.show();
    QTest::mouseClick(setup.ui->CMDBrowse, Qt::LeftButton);
    auto* b = static_cast<Browse*>(m.forms.Browse);
    EXPECT_EQ(b->ui->Drive1->currentText(), home.path());
    // A folder that cannot be read any more when it is opened (root reads any folder).
    QDir(home.filePath("gone")).removeRecursively();
    QStringList folders;
    QTreeWidgetItem* top = b->ui->Dir1->topLevelItem(0);
    for (int i = 0; i < top->childCount(); ++i) {
        QTreeWidgetItem* item = top->child(i);
        item->setExpanded(true);
        b->ui->Dir1->setCurrentItem(item);
        folders << item->text(0) + (b->ui->CMDOK->isEnabled() ? "+" : "") +
                       QString::number(item->childCount());
    }
    EXPECT_EQ(folders.join(' '), ".wine1 folder1 gone0 lower+0 mixed+0 none1 upper+0")
        << "name, + where OK is enabled, sub-folders";
    b->ui->Dir1->setCurrentItem(top->child(3)); // lower
    QTest::mouseClick(b->ui->CMDOK, Qt::LeftButton);
    EXPECT_EQ(setup.ui->TXTRFLocate->text(), home.path() + "/lower/");
    EXPECT_EQ(m.forms.Browse, nullptr);

    QTest::mouseClick(setup.ui->CMDBrowse, Qt::LeftButton);
    b = static_cast<Browse*>(m.forms.Browse);
    b->ui->Drive1->setCurrentIndex(0);
    EXPECT_EQ(FolderText(b->Path()), "/") << "a root is not doubled";
    QTest::mouseClick(b->ui->CMDCancel, Qt::LeftButton);
    EXPECT_EQ(m.t.end.ended, 1) << "Cancel ends the program";
    qputenv("HOME", realHome);
}

TEST(Browse, DrivesAreTheRootTheHomeAndTheMountedFileSystems) {
    const QString mounts =
        "overlay / overlay rw 0 0\nproc /proc proc rw 0 0\ntmpfs /dev/shm tmpfs "
        "rw 0 0\n/dev/sda2 /home ext4 rw 0 0\n/dev/sdb1 /media/op/USB\\040STICK "
        "vfat rw 0 0\n/dev/sdc1 /mnt/g ntfs3 rw 0 0\n/dev/sdc1 /mnt/g ntfs3 rw 0 0\n";
    EXPECT_EQ(DrivesFromMounts(mounts, "/home/op"),
              QStringList({"/", "/home/op", "/home", "/media/op/USB STICK", "/mnt/g"}));
}

TEST(Mods, AreTheSubFoldersOfModsHoldingAPackageInNameOrder) {
    QTemporaryDir game;
    Make(game.path(), {"MODS/Zed/z.VPP", "MODS/b/", "MODS/a/a.vpp", "MODS/Deep/data/d.vpp",
                       "MODS/notes/readme.txt", "MODS/loose.vpp"});
    EXPECT_EQ(UsableMods(game.path() + "/"), QStringList({"a", "Zed"}));
    EXPECT_EQ(UsableMods(game.path() + "/MODS/b/"), QStringList()) << "no mods folder";
}
