// The list commands New, Copy and Delete on a main window over doubles: what the operator is
// told, what the store holds afterwards key by key, and what the window shows and selects.
#include "MainWindow.h"

#include "settings/ConfigList.h"
#include "ui/ConfigDialogs.h"
#include "ui/settings/ConfigListHandlers.h"
#include "ui_CopyConfig.h"
#include "ui_NewConf.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {

QLineEdit* NameBox(MainWindow& m) {
    if (auto* d = static_cast<NewConf*>(m.forms.NewConf))
        return d->ui->TXTNewName;
    return static_cast<CopyConfig*>(m.forms.CopyConfig)->ui->TXTNewName;
}

} // namespace

TEST(ConfigList, NewCopyAndDeleteKeepTheListNumberedAndRefuseWhatWouldHarmIt) {
    using enum MsgAnswer;
    const QString kNew = "$Me's Dedicated CTF running Hostwarden 2.0";
    const struct {
        const char* what;
        QString seed;    // "section/key=value;..." over DEFAULT and the list A, B, C;
                         // "CurrentConf/=X" makes X current without listing it
        int select;      // LSTConfig entry selected first; -1: A, then none
        const char* run; // "new", "copy" or "delete"; a name box gets `typed`, then Enter
        QString typed;
        MsgAnswer answer;       // to a question
        QStringList told;       // "title: text" of each box
        QString list;           // the stored list after; empty: nothing is written
        QString current, shown; // CurrentConf, and the name in TXTConfName
        QString stored = {};    // "section/key=value;..." that must hold afterwards
    } rows[] = {
        // clang-format off
        {"new, typed with a blank", "", 0, "new", "test 1", Yes, {},
         "DEFAULT A B C TEST1", "TEST1", "TEST1", "TEST1/servname=" + kNew + ";TEST1/Mod="},
        {"new named like a listed one", "", 0, "new", "default", Yes,
         {"Field Error: A configuration with this name already exists. Choose a new name to continue"},
         "", "DEFAULT", "Default"},
        {"new named like a hand-edited entry in another case", "ConfName/Conf2=a", 0, "new", "A",
         Yes, {"Field Error: A configuration with this name already exists. Choose a new name to "
               "continue"}, "", "DEFAULT", "Default"},
        {"new named like the program's own settings", "", 0, "new", "startup", Yes,
         {"Field Error: STARTUP is the name of the program's own settings. Choose a new name to continue"},
         "", "DEFAULT", "Default"},
        {"new without a name", "", 0, "new", "", Yes, {"Field Error: You must specify a name."}, "",
         "DEFAULT", "Default"},
        {"copy carries the fields in their case, the maps in order and no mod",
         "A/teamdamage=True;A/balance=false;A/MapCount=2;A/Map0=ctf05;A/Map1=dm02;A/Mod=Classic",
         1, "copy", "copy", Yes, {}, "DEFAULT A B C COPY", "COPY", "COPY",
         "COPY/name=COPY;COPY/servname=server A;COPY/teamdamage=True;COPY/balance=false;"
         "COPY/mapcount=2;COPY/map0=ctf05;COPY/map1=dm02;COPY/Mod=;COPY/default=1"},
        {"copy of a name typed into the list", "", -1, "copy", "x", Yes,
         {"Copy Configuration: There is no stored configuration named GHOST to copy. Nothing was "
          "created."}, "", "A", "Default", "X/default="},
        {"delete the second of four", "", 1, "delete", "", Yes,
         {"Delete Configuration?: Delete A?", "Settings Deleted: A deleted."}, "DEFAULT B C",
         "DEFAULT", "B", "A/default=;B/default=1"},
        {"delete the last", "", 3, "delete", "", Yes,
         {"Delete Configuration?: Delete C?", "Settings Deleted: C deleted."}, "DEFAULT A B",
         "DEFAULT", "Default", "C/default="},
        {"delete answered No", "", -1, "delete", "", No, {"Delete Configuration?: Delete A?"}, "",
         "DEFAULT", "Default"},
        {"delete DEFAULT", "", 0, "delete", "", Yes,
         {"Permission Denied: Cannot delete default config, only modify."}, "", "DEFAULT",
         "Default"},
        {"delete a name not in the list", "CurrentConf/=GHOST", -1, "delete", "", Yes,
         {"Delete Configuration?: Delete GHOST?",
          "Delete Configuration: GHOST is not in the configuration list. Nothing was deleted."},
         "", "DEFAULT", "Default"},
        {"delete an entry named like the program's settings", "ConfName/Conf3=STARTUP", 2, "delete",
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
            for (const QString& key : QStringList{"gametype=CTF", "default=1", "name=" + name,
                                                  "servname=server " + name})
                m.t.Put(name, key.section('=', 0, 0), key.section('=', 1));
        }
        const QStringList seed = row.seed.split(';', Qt::SkipEmptyParts);
        for (const QString& entry : seed)
            if (!entry.startsWith("CurrentConf/"))
                m.t.Put(entry.section('/', 0, 0), entry.section('/', 1).section('=', 0, 0),
                        entry.section('=', 1));
        auto& ui = m.Load().ui;
        m.w->show();
        ui->LSTConfig->setCurrentIndex(row.select < 0 ? 1 : row.select);
        if (row.select < 0)
            ui->LSTConfig->setCurrentIndex(-1);
        if (row.select < 0 && QString(row.run) == "copy")
            ui->LSTConfig->setEditText("GHOST");
        if (seed.value(0).startsWith("CurrentConf/="))
            m.app.CurrentConf = seed[0].section('=', 1);
        const int writes = m.t.store.writes;
        m.t.messages.answers = {row.answer};

        const QString run = row.run;
        if (run == "delete") {
            QTest::mouseClick(ui->CMDDelete, Qt::LeftButton);
        } else {
            QTest::mouseClick(run == "new" ? ui->CMDNew : ui->CMDCopy, Qt::LeftButton);
            EXPECT_FALSE(m.w->isEnabled()) << "the main window waits for the dialog";
            QTest::keyClicks(NameBox(m), row.typed);
            QTest::keyClick(NameBox(m), Qt::Key_Return);
        }
        QStringList told;
        for (const MessageRequest& box : m.t.messages.shown)
            told << box.title + ": " + box.text;
        EXPECT_EQ(told, row.told);
        const bool refused = !row.told.isEmpty() && row.told.back().startsWith("Field Error");
        EXPECT_EQ(m.forms.NewConf || m.forms.CopyConfig, refused) << "the dialog stays for a retry";
        if (row.list.isEmpty()) {
            EXPECT_EQ(m.t.store.writes, writes) << "nothing is written";
        } else {
            const QStringList list = row.list.split(' ');
            EXPECT_EQ(ReadConfigList(m.t.store, kAppName), list);
            EXPECT_EQ(m.t.Get("ConfName", "Conf" + QString::number(list.size() + 1)), "");
            QStringList shownList;
            for (int i = 0; i < ui->LSTConfig->count(); ++i)
                shownList << ui->LSTConfig->itemText(i);
            EXPECT_EQ(shownList, list);
        }
        for (const QString& entry : row.stored.split(';', Qt::SkipEmptyParts))
            EXPECT_EQ(m.t.Get(entry.section('/', 0, 0), entry.section('/', 1).section('=', 0, 0)),
                      entry.section('=', 1))
                << entry.toStdString();
        EXPECT_EQ(m.app.CurrentConf, row.current);
        if (ui->LSTConfig->currentIndex() >= 0) {
            EXPECT_EQ(ui->LSTConfig->currentText(), row.current);
        }
        EXPECT_EQ(ui->TXTConfName->text(), row.shown);
        EXPECT_EQ(m.app.NewConfName, refused ? NameBox(m)->text().toUpper() : QString());
        EXPECT_EQ(m.w->isEnabled(), !refused);
        if (refused)
            QTest::mouseClick(
                static_cast<QWidget*>(m.forms.NewConf ? m.forms.NewConf : m.forms.CopyConfig)
                    ->findChild<QPushButton*>("CMDCancel"),
                Qt::LeftButton);
        EXPECT_TRUE(m.w->isEnabled());
    }
}
