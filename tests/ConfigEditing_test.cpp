#include "MainWindow.h"

#include "ui/settings/ConfigHandlers.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {

// A stored configuration "CLAN" next to DEFAULT, as the program itself saves one.
void SeedClan(TestServices& t, const QString& gametype, const QStringList& maps,
              const QString& yes = "True", const QString& no = "False") {
    const QString keys = "servname=Clan Night;name=CLAN;maxplayers=8;password=pw;rconpass=rc;"
                         "maxtime=20;maxcaps=3;maxkills=25;maxgeo=64;teamdamage=" +
                         yes + ";forcespawn=" + yes + ";balance=" + no + ";weaponstay=" + yes +
                         ";falldamage=" + no +
                         ";default=1;Mod=Rocketball;Text0=hello;Text1=;Text2=third;Text3=;"
                         "MessageOn=0";
    for (const QString& pair : keys.split(';'))
        t.Put("CLAN", pair.section('=', 0, 0), pair.section('=', 1));
    t.Put("CLAN", "gametype", gametype);
    for (int i = 0; i < maps.size(); ++i)
        t.Put("CLAN", "map" + QString::number(i), maps[i]);
    t.Put("CLAN", "mapcount", QString::number(maps.size()));
    t.Put("ConfName", "ConfCount", "2");
    t.Put("ConfName", "Conf2", "CLAN");
}

} // namespace

TEST(LoadConfig, StoredValuesWinWhateverGameTypeWasSelected) {
    const struct {
        const char* selected;
        const char *yes, *no; // booleans load alike in either letter case
    } rows[] = {{"OPTCTF", "True", "False"}, {"OPTDM", "true", "FALSE"}};
    QString firstText;
    for (const auto& row : rows) {
        MainWindow m;
        m.SeedFirstRun();
        SeedClan(m.t, "CTF", {"ctf01", "ctf05", "ctf01"}, row.yes, row.no);
        m.Load();
        m.w->findChild<QRadioButton*>(row.selected)->setChecked(true);
        m.ui().LSTConfig->setCurrentIndex(1);
        CMDLoad_Click(*m.w);
        auto& ui = m.ui();
        SCOPED_TRACE(row.selected);
        EXPECT_EQ(m.app.gametype, "CTF");
        EXPECT_EQ(ui.TXTServName->text(), "Clan Night");
        EXPECT_EQ(ui.MaxPlayers->currentText(), "8");
        EXPECT_EQ(ui.TeamDamage->currentText() + ui.Balance->currentText(), "TrueFalse");
        EXPECT_EQ(m.Maps(), QStringList({"ctf01", "ctf05", "ctf01"}));
        EXPECT_EQ(ui.TXTMod->text(), "Rocketball");
        EXPECT_EQ(ui.MCS->text(), "3 Maps");
        EXPECT_EQ(ui.TXTMess_0->text(), "hello");
        EXPECT_EQ(ui.TXTMess_2->text(), "third");
        // MessageOn is stored but not read back: loading never switches the messages
        // (and with them Server Recover) off behind the operator.
        EXPECT_TRUE(ui.CHKMessage->isChecked());
        EXPECT_EQ(m.app.name, "CLAN");
        EXPECT_EQ(m.app.Saved, "no");
        EXPECT_TRUE(m.Text().endsWith("$Map:            \"ctf01\"\r\n"));
        if (firstText.isEmpty())
            firstText = m.Text();
        EXPECT_EQ(m.Text(), firstText);
    }
}

TEST(LoadConfig, UnreadableFieldsFallBackToTheNewConfigurationDefaults) {
    MainWindow m;
    m.SeedFirstRun();
    SeedClan(m.t, "TeamDM", {"dm01"});
    m.t.Put("CLAN", "maxplayers", "99");
    m.t.Put("CLAN", "maxtime", "soon");
    m.t.Put("CLAN", "teamdamage", "maybe");
    m.t.Put("CLAN", "balance", "");
    m.t.Put("CLAN", "mapcount", "40000"); // one map stored: loading stops there
    m.Load();
    m.app.CurrentConf = "CLAN";
    LoadConfig(*m.w);
    EXPECT_EQ(m.ui().MaxPlayers->currentText(), "16");
    EXPECT_EQ(m.ui().MaxTime->currentText(), "30");
    EXPECT_EQ(m.ui().TeamDamage->currentText(), "False");
    EXPECT_EQ(m.ui().Balance->currentText(), "True");
    EXPECT_EQ(m.Maps(), QStringList{"dm01"});
    EXPECT_EQ(m.app.gametype, "TeamDM");
}

TEST(LoadConfig, DoesNothingWithoutTheMarker) {
    MainWindow m;
    m.SeedFirstRun();
    SeedClan(m.t, "DM", {"dm01"});
    m.t.Put("CLAN", "default", "yes");
    m.Load();
    const QString before = m.Text();
    m.app.Saved = "yes";
    m.app.CurrentConf = "CLAN";
    LoadConfig(*m.w);
    EXPECT_EQ(m.Text(), before);
    EXPECT_EQ(m.app.Saved, "yes");
    EXPECT_EQ(m.app.gametype, "CTF");
}

TEST(LoadConfig, DiscardsUnsavedEditsWithoutAsking) {
    MainWindow m;
    m.SeedFirstRun();
    m.Load();
    QTest::keyClicks(m.ui().TXTServName, " edited");
    CMDLoad_Click(*m.w);
    EXPECT_EQ(m.ui().TXTServName->text(), "$Me's Dedicated CTF Running Hostwarden 2.0");
    EXPECT_TRUE(m.t.messages.shown.isEmpty());
}

TEST(ConfigList, SelectingAnEntryOnlyChangesCurrentConf) {
    MainWindow m;
    m.SeedFirstRun();
    SeedClan(m.t, "DM", {"dm01"});
    m.Load();
    const QString shown = m.Text();
    m.ui().LSTConfig->setCurrentIndex(1);
    EXPECT_EQ(m.app.CurrentConf, "CLAN");
    EXPECT_EQ(m.Text(), shown);
    // Typing into the list's edit field selects nothing.
    m.ui().LSTConfig->setEditText("SOMETHING");
    EXPECT_EQ(m.app.CurrentConf, "CLAN");
}

TEST(SaveConfig, RewritesTheSectionSoRemovedMapsLeaveNoKeys) {
    MainWindow m;
    m.SeedFirstRun();
    SeedClan(m.t, "CTF", {"ctf01", "ctf02", "ctf03"});
    m.Load();
    m.ui().LSTConfig->setCurrentIndex(1);
    CMDLoad_Click(*m.w);
    delete m.ui().LSTMaps->takeItem(1);
    m.t.messages.answers = {MsgAnswer::Yes};
    CMDSave_Click(*m.w);
    EXPECT_EQ(m.t.Get("CLAN", "mapcount"), "2");
    EXPECT_EQ(m.t.Get("CLAN", "map1"), "ctf03");
    EXPECT_EQ(m.t.Get("CLAN", "map2"), "");
    EXPECT_EQ(m.t.Get("CLAN", "teamdamage"), "True");
    EXPECT_EQ(m.t.Get("CLAN", "falldamage"), "False");
    EXPECT_EQ(m.t.Get("CLAN", "MessageOn"), "1");
    EXPECT_EQ(m.t.Get("CLAN", "Mod"), "Rocketball");
}

TEST(SaveButton, AsksSavesAndTellsOrWritesNothing) {
    for (const MsgAnswer answer : {MsgAnswer::Yes, MsgAnswer::No}) {
        MainWindow m;
        m.SeedFirstRun();
        m.Load();
        QTest::keyClicks(m.ui().TXTPassword, "secret");
        ASSERT_EQ(m.app.Saved, "no");
        const int writes = m.t.store.writes;
        m.t.messages.answers = {answer};
        CMDSave_Click(*m.w);

        const MessageRequest question{"Are you sure you want to modify DEFAULT?",
                                      "Save Configuration", MsgButtons::YesNo, MsgIcon::Critical,
                                      MsgDefault::Second};
        ASSERT_GE(m.t.messages.shown.size(), 1);
        EXPECT_EQ(m.t.messages.shown[0], question);
        if (answer == MsgAnswer::No) {
            EXPECT_EQ(m.t.messages.shown.size(), 1);
            EXPECT_EQ(m.t.store.writes, writes);
            EXPECT_EQ(m.app.Saved, "no");
            EXPECT_EQ(m.t.beeper.beeps, 0);
            continue;
        }
        ASSERT_EQ(m.t.messages.shown.size(), 2);
        EXPECT_EQ(m.t.messages.shown[1],
                  (MessageRequest{"DEFAULT Configuration Saved.", "Configuration Saved",
                                  MsgButtons::OK, MsgIcon::Information, MsgDefault::First}));
        EXPECT_EQ(m.t.beeper.beeps, 1);
        EXPECT_EQ(m.app.Saved, "yes");
        EXPECT_EQ(m.t.Get("DEFAULT", "password"), "secret");
        // Saved under the list's name, where the first run wrote "Default".
        EXPECT_EQ(m.t.Get("Default", "name"), "DEFAULT");
        EXPECT_EQ(m.ui().TXTConfName->text(), "DEFAULT");
        EXPECT_TRUE(m.Text().contains("$Name:           \"DEFAULT\"\r\n"));
    }
}

TEST(ConfigName, TypedSpacesAreDiscarded) {
    MainWindow m;
    m.SeedFirstRun();
    m.Load();
    m.ui().TXTConfName->setReadOnly(false); // as if it took typing
    m.ui().TXTConfName->clear();
    QTest::keyClicks(m.ui().TXTConfName, "A B C");
    EXPECT_EQ(m.ui().TXTConfName->text(), "ABC");
    EXPECT_EQ(m.app.name, "ABC");
}
