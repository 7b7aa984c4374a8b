#include "settings/ServerConfig.h"
#include "ui/settings/ResetHandlers.h"

#include "TestServices.h"

#include <gtest/gtest.h>

namespace {

const QStringList kFirstRun = {
    "gametype=CTF",
    "servname=$Me's Dedicated CTF Running Hostwarden 2.0",
    "name=Default",
    "maxplayers=16",
    "password=",
    "rconpass=",
    "maxtime=30",
    "maxcaps=5",
    "maxkills=50",
    "maxgeo=128",
    "teamdamage=false",
    "forcespawn=false",
    "balance=true",
    "weaponstay=false",
    "falldamage=true",
    "default=1",
    "Text0=This Dedicated Server is running with Hostwarden 2.0 by Velloquin",
    "Text1=Visit " + kProjectAddress + " for updates.",
    "Text2=",
    "Text3=",
    "MessageOn=1",
    "MapCount=0",
};

} // namespace

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

TEST(CreateNewConfig, ReplacesAStoredConfigurationAndMarksItSaved) {
    TestServices t;
    AppState s;
    s.AppName = kAppName;
    s.CurrentConf = "CLAN";
    s.Saved = "no";
    t.Put("CLAN", "default", "1");
    t.Put("CLAN", "map0", "ctf01");
    t.Put("CLAN", "map1", "ctf02");
    CreateNewConfig(t.store, s);

    QStringList expected = kFirstRun;
    expected.removeLast(); // MapCount comes earlier, as mapcount
    expected.replace(1, "servname=$Me's Dedicated CTF running Hostwarden 2.0");
    expected.replace(2, "name=CLAN");
    expected.insert(15, "mapcount=0");
    expected.insert(17, "Mod=");
    EXPECT_EQ(t.store.Dump(kAppName, "CLAN"), expected);
    EXPECT_EQ(s.Saved, "yes");
}

TEST(CreateNewConfig, KeepsKeysOfASectionWithoutTheMarker) {
    TestServices t;
    AppState s;
    s.AppName = kAppName;
    s.CurrentConf = "HALF";
    t.Put("HALF", "default", "0");
    t.Put("HALF", "map0", "ctf01");
    CreateNewConfig(t.store, s);
    EXPECT_EQ(t.Get("HALF", "map0"), "ctf01");
    EXPECT_EQ(t.Get("HALF", "default"), "1");
}

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
    EXPECT_EQ(ReadNumber("16"), 16);
    EXPECT_EQ(ReadNumber(" 7 "), 7);
    EXPECT_EQ(ReadNumber("-3"), -3);
    EXPECT_EQ(ReadNumber(""), std::nullopt);
    EXPECT_EQ(ReadNumber("12abc"), std::nullopt);
    EXPECT_EQ(ReadBoolean("TRUE"), true);
    EXPECT_EQ(ReadBoolean("True"), true);
    EXPECT_EQ(ReadBoolean("false"), false);
    EXPECT_EQ(ReadBoolean("FaLsE"), false);
    EXPECT_EQ(ReadBoolean("yes"), std::nullopt);
    EXPECT_EQ(ReadBoolean(""), std::nullopt);
}
