#include "MainWindow.h"

#include "ui/settings/ConfigHandlers.h"

#include <QTest>

#include <gtest/gtest.h>

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

TEST(GameType, EachOptionSetsItsTypeLimitsNameAndEmptiesTheMaps) {
    const struct {
        const char* option;
        QString type;
        bool kills, caps;
    } rows[] = {{"OPTDM", "DM", true, false},
                {"OPTTDM", "TeamDM", true, false},
                {"OPTCTF", "CTF", false, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.option);
        MainWindow m;
        auto& ui = m.Start().ui();
        if (QString(row.option) == "OPTCTF")
            ui.OPTDM->setChecked(true);
        ui.LSTMaps->addItems({"ctf01", "ctf02"});
        ui.TXTServName->setText("typed by the operator");
        m.app.Saved = "yes";
        auto* option = m.w->findChild<QRadioButton*>(row.option);
        option->click();
        EXPECT_EQ(ui.TXTServName->text(), "$ME's Dedicated " + row.type);
        EXPECT_TRUE(m.Text().contains("$Server Name:    \"$ME's Dedicated " + row.type +
                                      "\"\r\n$Game Type:      \"" + row.type + "\"\r\n"));
        EXPECT_EQ(std::pair(ui.MaxKills->isEnabled(), ui.MaxCaps->isEnabled()),
                  std::pair(row.kills, row.caps));
        EXPECT_EQ(QStringList({ui.MCS->text(), m.app.Saved}), QStringList({"0 Maps", "no"}));
        EXPECT_TRUE(m.Maps().isEmpty());
        // Clicking the selected option again keeps it, and the maps with it.
        ui.LSTMaps->addItem("ctf01");
        QTest::mouseClick(option, Qt::LeftButton);
        EXPECT_TRUE(option->isChecked());
        EXPECT_EQ(m.Maps(), QStringList{"ctf01"});
    }
}

// Choosing from a list and every keystroke in a text field mark the configuration changed and
// show at once in the options text (which control feeds which field: the save's round trip).
TEST(ConfigFields, EveryChoiceAndKeystrokeShowsAtOnceTypingInAListDoesNot) {
    MainWindow m;
    auto& ui = m.Start().ui();
    // A hand edit of the options box counts as a change and lasts until a rebuild.
    m.app.Saved = "yes";
    ui.TXTSTat->appendPlainText("$Extra: 1");
    EXPECT_EQ(m.app.Saved, "no");
    EXPECT_TRUE(m.Text().contains("$Extra: 1"));
    const auto shows = [&](const QString& line) {
        EXPECT_TRUE(m.Text().contains(line + "\r\n")) << line.toStdString();
        EXPECT_FALSE(m.Text().contains("$Extra: 1"));
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
    const QList<QPair<QComboBox*, QString>> lists = {{ui.MaxPlayers, "20"},
                                                     {ui.MaxTime, "1"},
                                                     {ui.TeamDamage, "true"},
                                                     {ui.LSTConfig, "default"}};
    for (const auto& [list, typed] : lists) {
        const int index = list->currentIndex();
        list->lineEdit()->selectAll();
        QTest::keyClicks(list->lineEdit(), typed);
        QTest::keyClick(list->lineEdit(), Qt::Key_Return);
        emit list->lineEdit()->editingFinished(); // as when the field loses the focus
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
}

TEST(Banner, ShowsTheUpdateNoticeThenBeeps) {
    MainWindow m;
    m.Start();
    int beepsWhileShown = -1;
    m.t.messages.onShow = [&](const MessageRequest&) { beepsWhileShown = m.t.beeper.beeps; };
    QTest::mouseClick(m.ui().Image1, Qt::LeftButton);
    EXPECT_EQ(
        m.t.messages.shown,
        QList<MessageRequest>({{"Please visit " + kProjectAddress + " for possible updates.",
                                kAppName, MsgButtons::OK, MsgIcon::None, MsgDefault::First}}));
    EXPECT_EQ(std::pair(beepsWhileShown, m.t.beeper.beeps), std::pair(0, 1));
}

TEST(LoadConfig, ReplacesEditsWithTheStoredValuesWhateverGameTypeWasSelected) {
    const struct {
        const char *selected, *changes; // booleans load alike in either letter case
    } rows[] = {{"OPTCTF", ""},
                {"OPTDM", "teamdamage=true;forcespawn=true;balance=FALSE;weaponstay=true;"
                          "falldamage=FALSE"}};
    QString firstText;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.selected);
        MainWindow m;
        auto& ui = WithClan(m, row.changes).ui();
        m.w->findChild<QRadioButton*>(row.selected)->setChecked(true);
        QTest::keyClicks(ui.TXTServName, " edited");
        // Choosing an entry only names the configuration; typing in the list's field does not.
        const QString shown = m.Text();
        ui.LSTConfig->setCurrentIndex(1);
        ui.LSTConfig->setEditText("SOMETHING");
        EXPECT_EQ(m.app.CurrentConf, "CLAN");
        EXPECT_EQ(m.Text(), shown);

        CMDLoad_Click(*m.w);
        EXPECT_TRUE(m.t.messages.shown.isEmpty());
        EXPECT_EQ(QStringList({ui.TXTServName->text(), ui.TXTConfName->text(),
                               ui.MaxPlayers->currentText(), ui.TeamDamage->currentText(),
                               ui.Balance->currentText(), ui.TXTMod->text(), ui.MCS->text(),
                               ui.TXTMess_0->text(), ui.TXTMess_2->text()}),
                  QStringList({"Clan Night", "CLAN", "8", "True", "False", "Rocketball", "3 Maps",
                               "hello", "third"}));
        EXPECT_EQ(m.Maps(), QStringList({"ctf01", "ctf05", "ctf01"}));
        // MessageOn is stored but not read back: loading never switches the messages
        // (and with them Server Recover) off behind the operator.
        EXPECT_TRUE(ui.CHKMessage->isChecked());
        EXPECT_EQ(m.app.Saved, "no");
        EXPECT_TRUE(m.Text().endsWith("$Map:            \"ctf01\"\r\n"));
        if (firstText.isEmpty())
            firstText = m.Text();
        EXPECT_EQ(m.Text(), firstText);
    }
}

// A missing map key loads as an empty entry; a huge count stops at the last map key, and a
// hand-edited list count at the highest stored entry.
TEST(LoadConfig, NeedsTheMarkerAndFallsBackOnUnreadableFields) {
    MainWindow m;
    WithClan(m, "default=yes;gametype=TeamDM;maxplayers=99;maxtime=soon;teamdamage=maybe;"
                "balance=;mapcount=2000000000;ConfName/ConfCount=999999999;ConfName/Conf2=;"
                "ConfName/conf3=CLAN");
    m.t.store.DeleteSetting(kAppName, "CLAN", "map1");
    const QString before = m.Text();
    m.app.Saved = "yes";
    m.app.CurrentConf = "CLAN";
    EXPECT_EQ(m.ui().LSTConfig->count(), 3);
    EXPECT_EQ(m.ui().LSTConfig->itemText(2), "CLAN");
    LoadConfig(*m.w);
    EXPECT_EQ(m.Text(), before);
    EXPECT_EQ(m.app.Saved, "yes");

    m.t.Put("CLAN", "default", "1");
    LoadConfig(*m.w);
    auto& ui = m.ui();
    EXPECT_EQ(QStringList({ui.MaxPlayers->currentText(), ui.MaxTime->currentText(),
                           ui.TeamDamage->currentText(), ui.Balance->currentText()}),
              QStringList({"16", "30", "False", "True"}));
    EXPECT_EQ(m.Maps(), QStringList({"ctf01", "", "ctf01"}));
    EXPECT_EQ(m.app.gametype, "TeamDM");
}

TEST(SaveConfig, AsksThenRewritesTheWholeSectionOrWritesNothing) {
    MainWindow m;
    WithClan(m).ui().LSTConfig->setCurrentIndex(1);
    CMDLoad_Click(*m.w);
    delete m.ui().LSTMaps->takeItem(0);
    m.ui().TXTPassword->setText("secret");
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
    EXPECT_EQ(m.t.store.Dump(kAppName, "CLAN").join(';').toStdString(),
              "gametype=CTF;servname=Clan Night;name=CLAN;maxplayers=8;password=secret;"
              "rconpass=rc;maxtime=20;maxcaps=3;maxkills=25;maxgeo=64;teamdamage=True;"
              "forcespawn=True;balance=False;weaponstay=True;falldamage=False;map0=ctf05;"
              "map1=ctf01;mapcount=2;default=1;Mod=Rocketball;Text0=hello;Text1=;"
              "Text2=third;Text3=;MessageOn=1");
}
