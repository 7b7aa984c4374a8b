#include "settings/ServerConfig.h"
#include "ui/settings/ResetHandlers.h"

#include "TestServices.h"

#include <gtest/gtest.h>

namespace {

// The first-run configuration as the store holds it, key by key in the order written.
const QStringList kFirstRun =
    ("gametype=CTF|servname=$Me's Dedicated CTF Running Hostwarden 2.0|name=Default|"
     "maxplayers=16|password=|rconpass=|maxtime=30|maxcaps=5|maxkills=50|maxgeo=128|"
     "teamdamage=false|forcespawn=false|balance=true|weaponstay=false|falldamage=true|default=1|"
     "Text0=This Dedicated Server is running with Hostwarden 2.0 by Velloquin|Text1=Visit " +
     kProjectAddress + " for updates.|Text2=|Text3=|MessageOn=1|MapCount=0")
        .split('|');

TEST(CreateDefaultConfig, WritesTheFirstRunSectionAndTheList) {
    TestServices t;
    CreateDefaultConfig(t.store, kAppName);
    EXPECT_EQ(t.store.Dump(kAppName, "Default"), kFirstRun);
    EXPECT_EQ(t.store.Dump(kAppName, "ConfName"), QStringList({"ConfCount=1", "Conf1=DEFAULT"}));
    // The list entry names the same section, and the count is read under its other name.
    EXPECT_EQ(t.Get("DEFAULT", "mapcount"), "0");
    EXPECT_EQ(t.Get("DEFAULT", "name"), "Default");
    EXPECT_EQ(t.Get("DEFAULT", "Mod"), "");
}

TEST(CreateDefaultConfig, OnAnExistingStoreResetsTheListAndKeepsOtherSections) {
    TestServices t;
    t.Put("ConfName", "ConfCount", "2");
    t.Put("ConfName", "Conf1", "DEFAULT");
    t.Put("ConfName", "Conf2", "CLAN");
    t.Put("CLAN", "default", "1");
    t.Put("Default", "maxplayers", "8");
    t.Put("Default", "map0", "ctf01");
    CreateDefaultConfig(t.store, kAppName);
    EXPECT_EQ(t.Get("ConfName", "ConfCount"), "1");
    EXPECT_EQ(t.Get("Default", "maxplayers"), "16");
    EXPECT_EQ(t.Get("Default", "map0"), "ctf01"); // nothing is deleted first
    EXPECT_EQ(t.Get("CLAN", "default"), "1");
}

// A stored configuration (one with the "default" marker) is replaced; a section without the
// marker keeps its other keys.
TEST(CreateNewConfig, WritesTheDefaultsAndMarksTheConfigurationSaved) {
    TestServices t;
    t.Put("CLAN", "default", "1");
    t.Put("CLAN", "map0", "ctf01");
    t.Put("CLAN", "map1", "ctf02");
    t.Put("HALF", "default", "0");
    t.Put("HALF", "map0", "ctf01");
    AppState s;
    s.AppName = kAppName;
    for (const char* conf : {"CLAN", "HALF"}) {
        s.CurrentConf = conf;
        s.Saved = "no";
        CreateNewConfig(t.store, s);
        EXPECT_EQ(s.Saved, "yes");
    }

    QStringList expected = kFirstRun;
    expected.removeLast(); // MapCount comes earlier, as mapcount
    expected.replace(1, "servname=$Me's Dedicated CTF running Hostwarden 2.0");
    expected.replace(2, "name=CLAN");
    expected.insert(15, "mapcount=0");
    expected.insert(17, "Mod=");
    EXPECT_EQ(t.store.Dump(kAppName, "CLAN"), expected);
    EXPECT_EQ(t.Get("HALF", "map0"), "ctf01");
    EXPECT_EQ(t.Get("HALF", "default"), "1");
}

// CMDReset_Click, the reset button's handler: kept in a test of its own to move with it.
TEST(Reset, AsksThenDeletesEverythingAndEnds) {
    for (const MsgAnswer answer : {MsgAnswer::Yes, MsgAnswer::No}) {
        TestServices t;
        AppState s;
        s.AppName = kAppName;
        CreateDefaultConfig(t.store, kAppName);
        t.Put("Startup", "HasRunSetup", "1");
        t.messages.answers = {answer};

        CMDReset_Click(t.services, s);

        ASSERT_EQ(t.messages.shown.size(), 1);
        EXPECT_EQ(t.messages.shown[0],
                  (MessageRequest{"All configurations and settings for this program will be "
                                  "deleted.\r\nReset Registry entries for this program?",
                                  "Reset Application Registry Entries?", MsgButtons::YesNo,
                                  MsgIcon::Critical, MsgDefault::Second}));
        const bool yes = answer == MsgAnswer::Yes;
        EXPECT_EQ(t.store.IsEmpty(kAppName), yes);
        EXPECT_EQ(t.beeper.beeps, yes ? 1 : 0);
        EXPECT_EQ(t.end.ended, yes ? 1 : 0);
    }
}

TEST(StoredFields, ReadingRules) {
    const struct {
        const char* text;
        std::optional<int> number;
        std::optional<bool> boolean;
    } rows[] = {{"16", 16, {}},       {" 7 ", 7, {}},     {"-3", -3, {}},     {"", {}, {}},
                {"12abc", {}, {}},    {"TRUE", {}, true}, {"True", {}, true}, {"false", {}, false},
                {"FaLsE", {}, false}, {"yes", {}, {}}};
    for (const auto& row : rows) {
        EXPECT_EQ(ReadNumber(row.text), row.number) << row.text;
        EXPECT_EQ(ReadBoolean(row.text), row.boolean) << row.text;
    }
}

} // namespace
