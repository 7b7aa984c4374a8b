// Finding the game directory with Browse, and the mods a launch can name.
#include "MainWindow.h"

#include "platform/FolderList.h"
#include "platform/posix/Drives.h"
#include "server/ModList.h"
#include "ui/Browse.h"
#include "ui/Mods.h"
#include "ui/Setup.h"
#include "ui/server/BrowseHandlers.h"
#include "ui_Browse.h"
#include "ui_Mods.h"
#include "ui_Setup.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// Makes the folders and files named, relative to `root`; a name ending in "/" is a folder.
void Make(const QString& root, const QStringList& paths) {
    for (const QString& path : paths) {
        QDir(root).mkpath(path.endsWith('/') ? path : path.section('/', 0, -2));
        if (!path.endsWith('/'))
            QFile(root + "/" + path).open(QIODevice::WriteOnly);
    }
}

} // namespace

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
    ASSERT_NE(b, nullptr);
    EXPECT_FALSE(setup.isEnabled());
    EXPECT_EQ(b->ui->Drive1->itemText(0), "/");
    EXPECT_EQ(b->ui->Drive1->currentText(), home.path());
    QTreeWidgetItem* top = b->ui->Dir1->topLevelItem(0);
    QStringList folders;
    for (int i = 0; i < top->childCount(); ++i)
        folders << top->child(i)->text(0);
    EXPECT_EQ(folders.join(' '), ".wine folder gone lower mixed none upper");
    // A folder that cannot be read any more when it is opened (root reads any folder).
    QDir(home.filePath("gone")).removeRecursively();
    EXPECT_FALSE(b->ui->CMDOK->isEnabled()) << "the home folder holds no game";
    for (int i = 0; i < top->childCount(); ++i) {
        QTreeWidgetItem* item = top->child(i);
        item->setExpanded(true);
        b->ui->Dir1->setCurrentItem(item);
        EXPECT_EQ(b->ui->CMDOK->isEnabled(), QString("lower upper mixed").contains(item->text(0)))
            << item->text(0).toStdString();
        if (item->text(0) == "gone") {
            EXPECT_EQ(item->childCount(), 0) << "an unreadable folder shows nothing";
        }
    }
    b->ui->Dir1->setCurrentItem(top->child(3)); // lower
    QTest::mouseClick(b->ui->CMDOK, Qt::LeftButton);
    EXPECT_EQ(setup.ui->TXTRFLocate->text(), home.path() + "/lower/");
    EXPECT_TRUE(setup.ui->CMDOK->isEnabled());
    EXPECT_TRUE(setup.isEnabled());
    EXPECT_EQ(m.forms.Browse, nullptr);
    EXPECT_FALSE(b->isVisible());

    QTest::mouseClick(setup.ui->CMDBrowse, Qt::LeftButton);
    b = static_cast<Browse*>(m.forms.Browse);
    b->ui->Drive1->setCurrentIndex(0);
    EXPECT_EQ(b->Path(), "/");
    EXPECT_EQ(FolderText(b->Path()), "/") << "a root is not doubled";
    QTest::mouseClick(b->ui->CMDCancel, Qt::LeftButton);
    EXPECT_EQ(m.t.end.ended, 1) << "Cancel ends the program";
    qputenv("HOME", realHome);
}

TEST(Browse, DrivesAreTheRootTheHomeAndTheMountedFileSystems) {
    const QString mounts = "overlay / overlay rw 0 0\n"
                           "proc /proc proc rw 0 0\n"
                           "tmpfs /dev/shm tmpfs rw 0 0\n"
                           "/dev/sda2 /home ext4 rw 0 0\n"
                           "/dev/sdb1 /media/op/USB\\040STICK vfat rw 0 0\n"
                           "cgroup2 /sys/fs/cgroup cgroup2 rw 0 0\n"
                           "/dev/sdc1 /mnt/games ntfs3 rw 0 0\n"
                           "/dev/sdc1 /mnt/games ntfs3 rw 0 0\n";
    EXPECT_EQ(DrivesFromMounts(mounts, "/home/op"),
              QStringList({"/", "/home/op", "/home", "/media/op/USB STICK", "/mnt/games"}));
}

TEST(Mods, TheSubFoldersOfModsHoldingAPackageInNameOrder) {
    QTemporaryDir game;
    Make(game.path(), {"MODS/Zed/z.VPP", "MODS/b/", "MODS/a/a.vpp", "MODS/Deep/data/d.vpp",
                       "MODS/notes/readme.txt", "MODS/loose.vpp"});
    EXPECT_EQ(UsableMods(game.path() + "/"), QStringList({"a", "Zed"}));
    EXPECT_EQ(UsableMods(game.path() + "/MODS/b/"), QStringList());

    MainWindow m;
    auto& ui = m.Start().ui();
    m.app.GameDir = game.path() + "/";
    m.w->show();
    for (const auto& [pick, ok, shown] :
         {std::tuple{1, true, "Zed"}, {-1, false, "Zed"}, {-1, true, "None"}, {0, true, "a"}}) {
        QTest::mouseClick(ui.CMDMod, Qt::LeftButton);
        auto* d = static_cast<Mods*>(m.forms.Mods);
        EXPECT_FALSE(m.w->isEnabled());
        EXPECT_EQ(d->ui->LSTMod->count(), 2);
        d->ui->LSTMod->setCurrentRow(pick);
        QTest::mouseClick(ok ? d->ui->CMDOK : d->ui->CMDCancel, Qt::LeftButton);
        EXPECT_EQ(ui.TXTMod->text(), shown);
        EXPECT_TRUE(m.w->isEnabled());
    }
    m.app.Saved = "yes";
    QTest::mouseClick(ui.CMDRemovemod, Qt::LeftButton);
    EXPECT_EQ(ui.TXTMod->text(), "None");
    EXPECT_EQ(m.app.Saved, "no");
}
