#include "MainWindow.h"

#include <gtest/gtest.h>

namespace {

MainWindow& Started(MainWindow& m, const QList<QPair<QString, QString>>& startup = {}) {
    m.SeedFirstRun();
    for (const auto& [key, value] : startup)
        m.t.Put("Startup", key, value);
    m.Load();
    return m;
}

} // namespace

TEST(Startup, RestoresThePreferencesAlongTheirChain) {
    const struct {
        const char* what;
        QString startup; // "key=value" pairs seeded under Startup
        int textRate, messageRate;
        QString checked; // boxes that end up checked
        QString portText;
    } rows[] = {
        {"no Startup values", "", 110, 3, "", ""},
        {"LanOnly alone: the chain stops at ServRec", "LanOnly=1", 110, 3, "", ""},
        {"whole chain", "ServRec=1 lanonly=1 Port=1 PortNum=7755", 110, 3, "ServRec LanOnly Port",
         "7755"},
        {"Port missing: PortNum is not restored", "ServRec=0 LanOnly=1 PortNum=7755", 110, 3,
         "LanOnly", ""},
        {"other values leave a box unchecked, the chain goes on",
         "ServRec=2 LanOnly=yes Port=1 PortNum=", 110, 3, "Port", ""},
        {"rates", "TextRate=50 MsgRate=10", 50, 10, "", ""},
        {"rates out of range", "TextRate=5 MsgRate=600", 10, 15, "", ""},
        {"unreadable rates", "TextRate=fast MsgRate=0", 110, 3, "", ""},
        {"typed port is cleaned and stored again", "ServRec=1 LanOnly=1 Port=1 PortNum=12a34", 110,
         3, "ServRec LanOnly Port", "1234"},
    };
    for (const auto& row : rows) {
        MainWindow m;
        QList<QPair<QString, QString>> startup;
        for (const QString& pair : row.startup.split(' ', Qt::SkipEmptyParts))
            startup.append({pair.section('=', 0, 0), pair.section('=', 1)});
        Started(m, startup);
        SCOPED_TRACE(row.what);
        const bool port = row.checked.contains("Port");
        EXPECT_EQ(m.w->TextRate(), row.textRate);
        EXPECT_EQ(m.app.MessageRate, row.messageRate);
        EXPECT_EQ(m.ui().CHKServRec->isChecked(), row.checked.contains("ServRec"));
        EXPECT_EQ(m.ui().CHKGameTracker->isChecked(), row.checked.contains("LanOnly"));
        EXPECT_EQ(m.ui().CHKPort->isChecked(), port);
        EXPECT_EQ(m.ui().TXTPort->isEnabled(), port);
        EXPECT_EQ(m.ui().TXTPort->text(), row.portText);
        if (port) {
            EXPECT_EQ(m.t.Get("Startup", "PortNum"), row.portText);
        }
        EXPECT_EQ(m.app.CurrentConf, "DEFAULT");
        EXPECT_EQ(m.app.Saved, "yes");
        EXPECT_FALSE(m.timer("TMRAdds")->isActive());
        EXPECT_FALSE(m.timer("TMRSend")->isActive());
    }
}

TEST(Startup, LoadsDefaultIntoEveryControl) {
    MainWindow m;
    auto& ui = Started(m).ui();
    EXPECT_TRUE(ui.OPTCTF->isChecked());
    EXPECT_EQ(ui.LSTConfig->currentText(), "DEFAULT");
    EXPECT_EQ(ui.LSTConfig->count(), 1);
    EXPECT_EQ(ui.TXTConfName->text(), "Default");
    EXPECT_EQ(ui.TXTServName->text(), "$Me's Dedicated CTF Running Hostwarden 2.0");
    EXPECT_EQ(ui.TXTMod->text(), "None");
    EXPECT_EQ(ui.MCS->text(), "0 Maps");
    EXPECT_EQ(m.app.ServerExe, "RF.EXE");
    const struct {
        QComboBox* list;
        const char* current;
        int count;
        bool enabled;
    } lists[] = {
        {ui.MaxPlayers, "16", 31, true},   {ui.MaxTime, "30", 56, true},
        {ui.MaxKills, "50", 100, false},   {ui.MaxCaps, "5", 25, true},
        {ui.MaxGeo, "128", 129, true},     {ui.Balance, "True", 2, true},
        {ui.TeamDamage, "False", 2, true},
    };
    for (const auto& l : lists) {
        SCOPED_TRACE(l.list->objectName().toStdString());
        EXPECT_EQ(l.list->currentText(), l.current);
        EXPECT_EQ(l.list->count(), l.count);
        EXPECT_EQ(l.list->isEnabled(), l.enabled);
    }
    EXPECT_EQ(ui.MaxGeo->itemText(0), "0");
    // The worked example of the options file is what a first run shows.
    EXPECT_TRUE(
        m.Text().startsWith("#Dedicated Server Options\r\n$Name:           \"Default\"\r\n"));
    EXPECT_EQ(m.Text().count("\r\n"), 16);
}

TEST(LaunchSwitches, ClicksAndTypedPortsAreStored) {
    MainWindow m;
    auto& ui = Started(m).ui();
    for (QCheckBox* box : {ui.CHKGameTracker, ui.CHKServRec, ui.CHKPort})
        box->setChecked(true);
    for (const char* key : {"lanonly", "ServRec", "Port"})
        EXPECT_EQ(m.t.Get("Startup", key), "1") << key;
    EXPECT_TRUE(ui.TXTPort->isEnabled());
    // Only digits and the point stay, the cursor at the end.
    for (const auto& [typed, kept] : QList<QPair<QString, QString>>{
             {"1234", "1234"}, {"12a34", "1234"}, {"12.5", "12.5"}, {"abc", ""}, {"7 7", "77"}}) {
        ui.TXTPort->setText(typed);
        EXPECT_EQ(ui.TXTPort->text(), kept) << typed.toStdString();
        EXPECT_EQ(ui.TXTPort->cursorPosition(), kept.size()) << typed.toStdString();
        EXPECT_EQ(m.t.Get("Startup", "PortNum"), kept) << typed.toStdString();
    }
    ui.CHKPort->setChecked(false);
    EXPECT_EQ(m.t.Get("Startup", "Port"), "0");
    EXPECT_FALSE(ui.TXTPort->isEnabled());
}
