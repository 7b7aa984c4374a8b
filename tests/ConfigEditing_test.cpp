// Editing a configuration in the main window: its fields, the options text they make and
// the file it is written to, loading and saving, and the list commands New, Copy and Delete.
#include "MainWindow.h"

#include "options/OptionsText.h"
#include "settings/ConfigList.h"
#include "ui/settings/ConfigHandlers.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

// A main window over a store holding a configuration "CLAN" next to DEFAULT, as the program
// itself saves one, with some keys changed ("key=value;...", "section/key=value" elsewhere).
MainWindow& WithClan(MainWindow& m, const QString& changes = {}) {
    m.SeedFirstRun();
    m.Seed("ConfName/ConfCount=2;ConfName/Conf2=CLAN;gametype=CTF;servname=Clan Night;name=CLAN;"
           "maxplayers=8;password=pw;rconpass=rc;maxtime=20;maxcaps=3;maxkills=25;maxgeo=64;"
           "teamdamage=True;forcespawn=True;balance=False;weaponstay=True;falldamage=False;"
           "map0=ctf01;map1=ctf05;map2=ctf01;mapcount=3;default=1;Mod=Rocketball;Text0=hello;"
           "Text1=;Text2=third;Text3=;MessageOn=0;" +
               changes,
           "CLAN");
    m.Load();
    return m;
}

} // namespace

// Choosing from a list and every keystroke in a text field mark the configuration changed and
// show at once in the options text (which control feeds which field: the save's round trip).
// A game type sets its limits and server name and empties the maps; chosen again it keeps them.
TEST(ConfigFields, EveryChoiceAndKeystrokeShowsAtOnceTypingInAListPicksNothing) {
    MainWindow m;
    auto& ui = m.Start().ui();
    // A hand edit of the options box counts as a change.
    m.app.Saved = "yes";
    ui.TXTSTat->appendPlainText("$Extra: 1");
    EXPECT_EQ(m.app.Saved, "no");
    const auto shows = [&](const QString& line) {
        EXPECT_TRUE(m.Text().contains(line + "\r\n")) << line.toStdString();
        EXPECT_EQ(m.app.Saved, "no") << line.toStdString();
        m.app.Saved = "yes";
    };
    m.app.Saved = "yes";
    ui.MaxPlayers->setCurrentIndex(30);
    shows("$Max Players:    32");
    ui.Balance->setCurrentIndex(1);
    shows("$Balance Teams:  False");
    for (auto [box, line] :
         QList<QPair<QLineEdit*, QString>>{{ui.TXTServName, "$Server Name:    \""},
                                           {ui.TXTPassword, "$Password:       \""},
                                           {ui.TXTRconPass, "$Rcon Password:  \""}}) {
        box->clear();
        m.app.Saved = "yes";
        for (const char ch : QByteArray("ab c")) {
            QTest::keyClick(box, ch);
            shows((line += ch) + "\"");
        }
    }
    // Typing chooses nothing: no completion, and neither Enter nor leaving the field picks
    // the entry that matches; the configuration list keeps CurrentConf.
    const QString before = m.Text();
    m.app.CurrentConf = "Typed over";
    for (const auto& [list, typed] : QList<QPair<QComboBox*, QString>>{{ui.MaxPlayers, "20"},
                                                                       {ui.MaxTime, "1"},
                                                                       {ui.TeamDamage, "true"},
                                                                       {ui.LSTConfig, "default"}}) {
        const int index = list->currentIndex();
        list->lineEdit()->selectAll();
        QTest::keyClicks(list->lineEdit(), typed + '\r'); // Enter after it
        emit list->lineEdit()->editingFinished();         // as when the field loses the focus
        EXPECT_EQ(std::pair(list->lineEdit()->text(), list->currentIndex()),
                  std::pair(typed, index));
    }
    EXPECT_EQ(m.Text(), before);
    EXPECT_EQ(m.app.Saved, "yes");
    EXPECT_EQ(m.app.CurrentConf, "Typed over");
    // Spaces typed into the configuration's name are discarded.
    ui.TXTConfName->setReadOnly(false); // as if it took typing
    ui.TXTConfName->clear();
    QTest::keyClicks(ui.TXTConfName, "A B C");
    EXPECT_EQ(QStringList({ui.TXTConfName->text(), m.app.name}), QStringList({"ABC", "ABC"}));

    for (const auto& [option, type] :
         {std::pair{ui.OPTDM, "DM"}, {ui.OPTTDM, "TeamDM"}, {ui.OPTCTF, "CTF"}}) {
        ui.LSTMaps->addItems({"ctf01", "ctf02"});
        m.app.Saved = "yes";
        option->click();
        EXPECT_EQ(ui.TXTServName->text(), "$ME's Dedicated " + QString(type));
        EXPECT_TRUE(m.Text().contains(QString("$Server Name:    \"$ME's Dedicated %1\"\r\n"
                                              "$Game Type:      \"%1\"\r\n")
                                          .arg(type)));
        EXPECT_EQ(std::pair(ui.MaxKills->isEnabled(), ui.MaxCaps->isEnabled()),
                  std::pair(option != ui.OPTCTF, option == ui.OPTCTF));
        EXPECT_EQ(QStringList({ui.MCS->text(), m.app.Saved}), QStringList({"0 Maps", "no"}));
        EXPECT_TRUE(m.Maps().isEmpty());
        ui.LSTMaps->addItem("ctf01");
        QTest::mouseClick(option, Qt::LeftButton);
        EXPECT_TRUE(option->isChecked());
        EXPECT_EQ(m.Maps(), QStringList{"ctf01"});
    }

    // The banner: the update notice, then a beep.
    int beepsWhileShown = -1;
    m.t.messages.onShow = [&](const MessageRequest&) { beepsWhileShown = m.t.beeper.beeps; };
    QTest::mouseClick(ui.Image1, Qt::LeftButton);
    EXPECT_EQ(
        m.t.messages.shown,
        QList<MessageRequest>({{"Please visit " + kProjectAddress + " for possible updates.",
                                kAppName, MsgButtons::OK, MsgIcon::None, MsgDefault::First}}));
    EXPECT_EQ(std::pair(beepsWhileShown, m.t.beeper.beeps), std::pair(0, 1));
}

// Loading needs the "default" marker and replaces the edits, booleans alike in either letter
// case, the game type with its limits; a field it cannot read gets its default, a missing
// map key an empty entry, and a huge count stops at the last map key (a hand-edited list
// count at the highest stored entry). Saving asks, then rewrites the whole section or nothing.
TEST(LoadAndSave, LoadNeedsTheMarkerAndFallsBackOnUnreadableFieldsSaveRewritesTheWholeSection) {
    MainWindow m;
    auto& ui = WithClan(m, "teamdamage=true;balance=FALSE;default=yes;gametype=TeamDM;"
                           "maxplayers=99;maxtime=soon;forcespawn=maybe;falldamage=;"
                           "mapcount=2000000000;ConfName/ConfCount=999999999;ConfName/Conf2=;"
                           "ConfName/conf3=CLAN")
                   .ui();
    m.t.store.DeleteSetting(kAppName, "CLAN", "map1");
    QTest::keyClicks(ui.TXTServName, " edited");
    // Choosing an entry only names the configuration; typing in the list's field does not.
    const QString shown = m.Text();
    ui.LSTConfig->setCurrentIndex(2);
    ui.LSTConfig->setEditText("SOMETHING");
    EXPECT_EQ(m.app.CurrentConf, "CLAN");
    CMDLoad_Click(*m.w);
    EXPECT_EQ(m.Text(), shown);

    m.t.Put("CLAN", "default", "1");
    CMDLoad_Click(*m.w);
    EXPECT_TRUE(m.t.messages.shown.isEmpty());
    EXPECT_EQ(
        QStringList({ui.TXTServName->text(), ui.TXTConfName->text(), ui.MaxPlayers->currentText(),
                     ui.MaxTime->currentText(), ui.TeamDamage->currentText(),
                     ui.Balance->currentText(), ui.ForceSpawn->currentText(),
                     ui.FallDamage->currentText(), ui.TXTMod->text(), ui.MCS->text(),
                     ui.TXTMess_0->text(), ui.TXTMess_2->text()}),
        QStringList({"Clan Night", "CLAN", "16", "30", "True", "False", "False", "True",
                     "Rocketball", "3 Maps", "hello", "third"}));
    EXPECT_EQ(m.Maps(), QStringList({"ctf01", "", "ctf01"}));
    EXPECT_TRUE(ui.OPTTDM->isChecked() && ui.MaxKills->isEnabled() && !ui.MaxCaps->isEnabled());
    // MessageOn is stored but not read back: loading never switches the messages
    // (and with them Server Recover) off behind the operator.
    EXPECT_TRUE(ui.CHKMessage->isChecked());
    EXPECT_EQ(m.app.Saved, "no");
    EXPECT_TRUE(m.Text().contains("$Game Type:      \"TeamDM\"\r\n"));
    EXPECT_TRUE(m.Text().endsWith("$Map:            \"ctf01\"\r\n"));

    delete ui.LSTMaps->takeItem(0);
    ui.TXTPassword->setText("secret");
    const MessageRequest question{"Are you sure you want to modify CLAN?", "Save Configuration",
                                  MsgButtons::YesNo, MsgIcon::Critical, MsgDefault::Second};
    const int writes = m.t.store.writes, commits = m.t.store.commits;
    m.t.messages.answers = {MsgAnswer::No};
    CMDSave_Click(*m.w);
    EXPECT_EQ(m.t.messages.shown, QList{question});
    EXPECT_EQ(m.t.store.writes, writes);
    EXPECT_EQ(m.app.Saved, "no");
    EXPECT_EQ(m.t.beeper.beeps, 0);

    m.t.messages.answers = {MsgAnswer::Yes};
    CMDSave_Click(*m.w);
    EXPECT_EQ(m.t.store.commits, commits + 1) << "the save reaches the file as one replacement";
    const MessageRequest notice{"CLAN Configuration Saved.", "Configuration Saved", MsgButtons::OK,
                                MsgIcon::Information, MsgDefault::First};
    EXPECT_EQ(m.t.messages.shown, (QList{question, question, notice}));
    EXPECT_EQ(m.t.beeper.beeps, 1);
    EXPECT_EQ(m.app.Saved, "yes");
    // Rewritten from scratch, so no key of the removed map is left behind.
    EXPECT_EQ(Dump(m.t.store, kAppName, "CLAN").join(';').toStdString(),
              "gametype=TeamDM;servname=Clan Night;name=CLAN;maxplayers=16;password=secret;"
              "rconpass=rc;maxtime=30;maxcaps=3;maxkills=25;maxgeo=64;teamdamage=True;"
              "forcespawn=False;balance=False;weaponstay=True;falldamage=True;map0=;"
              "map1=ctf01;mapcount=2;default=1;Mod=Rocketball;Text0=hello;Text1=;"
              "Text2=third;Text3=;MessageOn=1");
}

// The worked example itself is the first run's text (the start-up test). Values are written
// as they stand, only the name losing its blanks; the maps follow in list order, quoted as they
// stand, in Windows-1252; the file replaces a longer old one and is the operator's alone,
// whatever the umask. A missing game directory is reported.
TEST(OptionsText, ValuesAndMapsAreWrittenAsTheyStandIntoAFileOfTheOperatorsOwn) {
    QTemporaryDir dir;
    const QString gameDir = dir.path() + "/";
    QFile old(gameDir + "dedicated_server.txt");
    ASSERT_TRUE(old.open(QIODevice::WriteOnly) && old.write(QByteArray(5000, 'x')) == 5000);
    old.close();

    AppState s;
    s.name = QString::fromUtf8("  My Conf \t\u00a0 ");
    s.servname = " x ";
    s.password = "a\"b\r\nc";
    s.maxplayers = ""; // the label stays
    s.teamdamage = 1;  // any non-zero boolean is True
    const QString text = ComposeOptionsText(s, {"ctf01", "dm \"x\" 02", "é€ ✓ ß"});
    for (const char* line : {"$Name:           \"My Conf \t\u00a0\"\r\n",
                             "$Server Name:    \" x \"\r\n", "$Password:       \"a\"b\r\nc\"\r\n",
                             "$Max Players:    \r\n", "$Team Damage:    True\r\n"})
        EXPECT_TRUE(text.contains(QString::fromUtf8(line))) << line;
    QString error;
    const mode_t umask = ::umask(0);
    ASSERT_TRUE(WriteOptionsFile(gameDir, text, &error)) << error.toStdString();
    ::umask(umask);
    EXPECT_EQ(QFile::permissions(old.fileName()),
              QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    const QByteArray bytes = old.readAll();
    EXPECT_EQ(bytes.size(), text.size()) << "one byte a character, nothing of the old file";
    EXPECT_TRUE(bytes.endsWith("\r\n$Map:            \"ctf01\"\r\n"
                               "$Map:            \"dm \"x\" 02\"\r\n"
                               "$Map:            \"\xE9\x80 ? \xDF\"\r\n"))
        << bytes.toStdString();

    EXPECT_FALSE(WriteOptionsFile(gameDir + "no/such/dir/", "x", &error));
    EXPECT_TRUE(error.contains("dedicated_server.txt")) << error.toStdString();
}

// The list commands on a main window over doubles: what the operator is told, what the store
// holds afterwards key by key, and what the window shows and selects.
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
        {"new, typed with a blank, after a hand-edited count", "ConfName/ConfCount=999999999", 0,
         "CMDNew", "n 1", Yes, {}, "DEFAULT A B C N1", "N1", "N1", "ConfName/ConfCount=5"},
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
        if (dialog()) // typed, then Enter
            QTest::keyClicks(dialog()->findChild<QLineEdit*>("TXTNewName"), row.typed + '\r');
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
