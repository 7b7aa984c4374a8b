// Finding the game directory with Browse, and the mods a launch can name.
#include "MainWindow.h"

#include "platform/FolderList.h"
#include "platform/posix/Drives.h"
#include "server/ModList.h"
#include "ui/Browse.h"
#include "ui/Setup.h"
#include "ui_Browse.h"
#include "ui_Setup.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

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
    EXPECT_FALSE(setup.isEnabled());
    EXPECT_EQ(b->ui->Drive1->currentText(), home.path());
    EXPECT_FALSE(b->ui->CMDOK->isEnabled()) << "the home folder holds no game";
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
    EXPECT_TRUE(setup.ui->CMDOK->isEnabled() && setup.isEnabled());
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
