// The list commands New, Copy and Delete on a main window over doubles: what the operator is
// told, what the store holds afterwards key by key, and what the window shows and selects.
#include "MainWindow.h"

#include "settings/ConfigList.h"

#include <QTest>

#include <gtest/gtest.h>

TEST(ConfigList, NewCopyAndDeleteKeepTheListNumberedAndRefuseWhatWouldHarmIt) {
    using enum MsgAnswer;
    const struct {
        const char* what;
        QString seed; // "section/key=value;..." over DEFAULT, A, B, C; "CurrentConf/=X": X current
        int select;   // LSTConfig entry selected first; -1: A, then none
        const char* run; // the button clicked; a name box that opens gets `typed`, then Enter
        QString typed;
        MsgAnswer answer;       // to a question
        QStringList told;       // "title: text" of each box
        QString list;           // the stored list after; empty: nothing is written
        QString current, shown; // CurrentConf, and the name in TXTConfName
        QString stored = {};    // "section/key=value;..." that must hold afterwards
    } rows[] = {
        // clang-format off
        {"new, typed with a blank", "", 0, "CMDNew", "test 1", Yes, {}, "DEFAULT A B C TEST1",
         "TEST1", "TEST1", "TEST1/servname=$Me's Dedicated CTF running Hostwarden 2.0;TEST1/Mod="},
        {"new after a hand-edited count", "ConfName/ConfCount=999999999", 0, "CMDNew", "n", Yes, {},
         "DEFAULT A B C N", "N", "N", "ConfName/ConfCount=5"},
        {"new named like an entry in another case", "ConfName/Conf2=a", 0, "CMDNew", "A",
         Yes, {"Field Error: A configuration with this name already exists. Choose a new name to "
               "continue"}, "", "DEFAULT", "Default"},
        {"new named like the program's own settings", "", 0, "CMDNew", "startup", Yes,
         {"Field Error: STARTUP is the name of the program's own settings. Choose a new name to continue"},
         "", "DEFAULT", "Default"},
        {"copy carries the fields in their case, the maps in order and no mod",
         "A/teamdamage=True;A/balance=false;A/MapCount=2;A/Map0=ctf05;A/Map1=dm02;A/Mod=Classic",
         1, "CMDCopy", "copy", Yes, {}, "DEFAULT A B C COPY", "COPY", "COPY",
         "COPY/name=COPY;COPY/servname=server A;COPY/teamdamage=True;COPY/balance=false;"
         "COPY/mapcount=2;COPY/map0=ctf05;COPY/map1=dm02;COPY/Mod=;COPY/default=1"},
        {"copy of a name typed into the list", "", -1, "CMDCopy", "x", Yes,
         {"Copy Configuration: There is no stored configuration named GHOST to copy. Nothing was "
          "created."}, "", "A", "Default", "X/default="},
        {"delete the second of four", "", 1, "CMDDelete", "", Yes,
         {"Delete Configuration?: Delete A?", "Settings Deleted: A deleted."}, "DEFAULT B C",
         "DEFAULT", "B", "A/default=;B/default=1"},
        {"delete the last", "", 3, "CMDDelete", "", Yes,
         {"Delete Configuration?: Delete C?", "Settings Deleted: C deleted."}, "DEFAULT A B",
         "DEFAULT", "Default", "C/default="},
        {"delete answered No", "", -1, "CMDDelete", "", No, {"Delete Configuration?: Delete A?"}, "",
         "DEFAULT", "Default"},
        {"delete a name not in the list", "CurrentConf/=GHOST", -1, "CMDDelete", "", Yes,
         {"Delete Configuration?: Delete GHOST?",
          "Delete Configuration: GHOST is not in the configuration list. Nothing was deleted."},
         "", "DEFAULT", "Default"},
        {"delete an entry named like the program's settings", "ConfName/Conf3=STARTUP", 2, "CMDDelete",
         "", Yes, {"Delete Configuration?: Delete STARTUP?", "Settings Deleted: STARTUP deleted."},
         "DEFAULT A C", "DEFAULT", "C", "Startup/HasRunSetup=1"},
        // clang-format on
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        MainWindow m;
        m.SeedFirstRun();
        for (const QString name : {"A", "B", "C"}) {
            AppendConfigName(m.t.store, kAppName, name);
            m.Seed("default=1;name=" + name + ";servname=server " + name, name);
        }
        const bool current = row.seed.startsWith("CurrentConf/=");
        if (!current)
            m.Seed(row.seed);
        auto& ui = m.Load().ui;
        ui->LSTConfig->setCurrentIndex(row.select < 0 ? 1 : row.select);
        if (row.select < 0)
            ui->LSTConfig->setCurrentIndex(-1);
        if (row.select < 0 && QString(row.run) == "CMDCopy")
            ui->LSTConfig->setEditText("GHOST");
        if (current)
            m.app.CurrentConf = row.seed.section('=', 1);
        const int writes = m.t.store.writes, commits = m.t.store.commits;
        m.t.messages.answers = {row.answer};
        const auto dialog = [&] { return m.forms.NewConf ? m.forms.NewConf : m.forms.CopyConfig; };

        QTest::mouseClick(m.w->findChild<QPushButton*>(row.run), Qt::LeftButton);
        if (dialog()) {
            QTest::keyClicks(dialog()->findChild<QLineEdit*>("TXTNewName"), row.typed);
            QTest::keyClick(dialog()->findChild<QLineEdit*>("TXTNewName"), Qt::Key_Return);
        }
        QStringList told;
        for (const MessageRequest& box : m.t.messages.shown)
            told << box.title + ": " + box.text;
        EXPECT_EQ(told, row.told);
        const bool refused = !row.told.isEmpty() && row.told.back().startsWith("Field Error");
        EXPECT_EQ(dialog() != nullptr, refused) << "the dialog stays for a retry";
        const QStringList list = row.list.split(' ', Qt::SkipEmptyParts);
        EXPECT_EQ(m.t.store.writes == writes, list.isEmpty()) << "nothing is written";
        EXPECT_EQ(m.t.store.commits - commits, list.isEmpty() ? 0 : 1) << "one file replacement";
        if (!list.isEmpty()) {
            EXPECT_EQ(ReadConfigList(m.t.store, kAppName), list);
            EXPECT_EQ(m.t.Get("ConfName", "Conf" + QString::number(list.size() + 1)), "");
        }
        EXPECT_EQ(m.NotHeld(row.stored), "");
        EXPECT_EQ(m.app.CurrentConf, row.current);
        EXPECT_EQ(ui->TXTConfName->text(), row.shown);
        EXPECT_EQ(m.w->isEnabled(), !refused);
    }
}
