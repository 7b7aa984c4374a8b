#include "MainWindow.h"

#include <gtest/gtest.h>

namespace {

struct StartupRow {
    const char* what;
    QList<QPair<QString, QString>> startup; // "Startup" values seeded
    int textRate;
    int messageRate;
    bool servRec, lanOnly, port;
    QString portText;
};

} // namespace

TEST(Startup, RestoresThePreferencesAlongTheirChain) {
    const StartupRow rows[] = {
        {"no Startup values", {}, 110, 3, false, false, false, ""},
        {"LanOnly without ServRec: the chain stops at ServRec",
         {{"LanOnly", "1"}},
         110,
         3,
         false,
         false,
         false,
         ""},
        {"whole chain",
         {{"ServRec", "1"}, {"lanonly", "1"}, {"Port", "1"}, {"PortNum", "7755"}},
         110,
         3,
         true,
         true,
         true,
         "7755"},
        {"Port missing: PortNum is not restored",
         {{"ServRec", "0"}, {"LanOnly", "1"}, {"PortNum", "7755"}},
         110,
         3,
         false,
         true,
         false,
         ""},
        {"a value other than 0 and 1 leaves its box unchecked and the chain goes on",
         {{"ServRec", "2"}, {"LanOnly", "yes"}, {"Port", "1"}, {"PortNum", ""}},
         110,
         3,
         false,
         false,
         true,
         ""},
        {"rates", {{"TextRate", "50"}, {"MsgRate", "10"}}, 50, 10, false, false, false, ""},
        {"hand-edited rates are brought into range",
         {{"TextRate", "5"}, {"MsgRate", "600"}},
         10,
         15,
         false,
         false,
         false,
         ""},
        {"unreadable rates give the defaults",
         {{"TextRate", "fast"}, {"MsgRate", "0"}},
         110,
         3,
         false,
         false,
         false,
         ""},
    };
    for (const StartupRow& row : rows) {
        MainWindow m;
        m.SeedFirstRun();
        for (const auto& [key, value] : row.startup)
            m.t.Put("Startup", key, value);
        m.Load();
        SCOPED_TRACE(row.what);
        EXPECT_EQ(m.w->TextRate(), row.textRate);
        EXPECT_EQ(m.app.MessageRate, row.messageRate);
        EXPECT_EQ(m.ui().CHKServRec->isChecked(), row.servRec);
        EXPECT_EQ(m.ui().CHKGameTracker->isChecked(), row.lanOnly);
        EXPECT_EQ(m.ui().CHKPort->isChecked(), row.port);
        EXPECT_EQ(m.ui().TXTPort->isEnabled(), row.port);
        EXPECT_EQ(m.ui().TXTPort->text(), row.portText);
        EXPECT_EQ(m.app.CurrentConf, "DEFAULT");
        EXPECT_EQ(m.app.Saved, "yes");
        EXPECT_FALSE(m.timer("TMRAdds")->isActive());
        EXPECT_FALSE(m.timer("TMRSend")->isActive());
    }
}

TEST(Startup, RestoringStoresThePreferencesAgain) {
    MainWindow m;
    m.SeedFirstRun();
    m.t.Put("Startup", "ServRec", "1");
    m.t.Put("Startup", "LanOnly", "1");
    m.t.Put("Startup", "Port", "1");
    m.t.Put("Startup", "PortNum", "12a34");
    const int before = m.t.store.writes;
    m.Load();
    EXPECT_GT(m.t.store.writes, before);
    EXPECT_EQ(m.ui().TXTPort->text(), "1234");
    EXPECT_EQ(m.t.Get("Startup", "PortNum"), "1234");
    EXPECT_EQ(m.t.Get("Startup", "Port"), "1");
}

TEST(Startup, LoadsDefaultIntoEveryControl) {
    MainWindow m;
    m.SeedFirstRun();
    m.Load();
    auto& ui = m.ui();
    EXPECT_TRUE(ui.OPTCTF->isChecked());
    EXPECT_EQ(ui.LSTConfig->currentText(), "DEFAULT");
    EXPECT_EQ(ui.LSTConfig->count(), 1);
    EXPECT_EQ(ui.TXTConfName->text(), "Default");
    EXPECT_EQ(ui.TXTServName->text(), "$Me's Dedicated CTF Running Hostwarden 2.0");
    EXPECT_EQ(ui.MaxPlayers->currentText(), "16");
    EXPECT_EQ(ui.MaxTime->currentText(), "30");
    EXPECT_EQ(ui.MaxKills->currentText(), "50");
    EXPECT_EQ(ui.MaxCaps->currentText(), "5");
    EXPECT_EQ(ui.MaxGeo->currentText(), "128");
    EXPECT_EQ(ui.Balance->currentText(), "True");
    EXPECT_EQ(ui.TeamDamage->currentText(), "False");
    EXPECT_EQ(ui.TXTMod->text(), "None");
    EXPECT_EQ(ui.MCS->text(), "0 Maps");
    EXPECT_EQ(m.app.ServerExe, "RF.EXE");
    EXPECT_EQ(ui.MaxPlayers->count(), 31);
    EXPECT_EQ(ui.MaxTime->count(), 56);
    EXPECT_EQ(ui.MaxKills->count(), 100);
    EXPECT_EQ(ui.MaxCaps->count(), 25);
    EXPECT_EQ(ui.MaxGeo->count(), 129);
    EXPECT_EQ(ui.MaxGeo->itemText(0), "0");
    EXPECT_FALSE(ui.MaxKills->isEnabled());
    EXPECT_TRUE(ui.MaxCaps->isEnabled());
    // The worked example of the options file is what a first run shows.
    EXPECT_TRUE(
        m.Text().startsWith("#Dedicated Server Options\r\n$Name:           \"Default\"\r\n"));
    EXPECT_EQ(m.Text().count("\r\n"), 16);
}

TEST(PortField, KeepsDigitsOnlyAndStoresThem) {
    const struct {
        const char* typed;
        const char* kept;
    } rows[] = {
        {"1234", "1234"}, {"12a34", "1234"}, {"12.5", "12.5"}, {"abc", ""}, {"", ""}, {"7 7", "77"},
    };
    for (const auto& row : rows) {
        MainWindow m;
        m.SeedFirstRun();
        m.Load();
        m.ui().CHKPort->setChecked(true);
        m.ui().TXTPort->setText(QString::fromUtf8(row.typed));
        EXPECT_EQ(m.ui().TXTPort->text(), row.kept) << row.typed;
        EXPECT_EQ(m.ui().TXTPort->cursorPosition(), m.ui().TXTPort->text().size()) << row.typed;
        EXPECT_EQ(m.t.Get("Startup", "PortNum"), row.kept) << row.typed;
    }
}

TEST(LaunchSwitches, ClicksAreStoredUnderTheirKeys) {
    MainWindow m;
    m.SeedFirstRun();
    m.Load();
    m.ui().CHKGameTracker->setChecked(true);
    m.ui().CHKServRec->setChecked(true);
    m.ui().CHKPort->setChecked(true);
    EXPECT_EQ(m.t.Get("Startup", "lanonly"), "1");
    EXPECT_EQ(m.t.Get("Startup", "ServRec"), "1");
    EXPECT_EQ(m.t.Get("Startup", "Port"), "1");
    EXPECT_TRUE(m.ui().TXTPort->isEnabled());
    m.ui().CHKPort->setChecked(false);
    EXPECT_EQ(m.t.Get("Startup", "Port"), "0");
    EXPECT_FALSE(m.ui().TXTPort->isEnabled());
}
