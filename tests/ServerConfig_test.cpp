#include "automation/Rates.h"
#include "settings/ServerConfig.h"
#include "ui/settings/ResetHandlers.h"

#include "TestServices.h"
#include "Texts.h"

#include <gtest/gtest.h>

namespace {

// The first-run configuration as the store holds it, key by key in the order written.
const QStringList kFirstRun =
    texts::kFirstRunDefaults.mid(0, 16) +
    QStringList{"Text0=This Dedicated Server is running with Hostwarden 2.0 by Velloquin",
                "Text1=Visit " + kProjectAddress + " for updates.", "Text2=", "Text3="} +
    texts::kFirstRunDefaults.mid(16);

// Over an existing store: values are overwritten, other keys and sections stay, the list is
// written afresh.
TEST(CreateDefaultConfig, WritesTheFirstRunSectionAndTheList) {
    TestServices t;
    t.Put("Default", "gametype", "DM");
    t.Put("Default", "map0", "ctf01");
    t.Put("ConfName", "ConfCount", "2");
    t.Put("ConfName", "Conf2", "CLAN");
    t.Put("CLAN", "default", "1");
    CreateDefaultConfig(t.store, kAppName);
    QStringList expected = kFirstRun;
    expected.insert(1, "map0=ctf01");
    EXPECT_EQ(t.store.Dump(kAppName, "Default"), expected);
    EXPECT_EQ(t.store.Dump(kAppName, "ConfName"),
              QStringList({"ConfCount=1", "Conf2=CLAN", "Conf1=DEFAULT"}));
    EXPECT_EQ(t.Get("CLAN", "default"), "1");
}

// A stored configuration (one with the "default" marker) is replaced; a section without the
// marker keeps its other keys.
TEST(CreateNewConfig, WritesTheDefaultsAndMarksTheConfigurationSaved) {
    TestServices t;
    t.Put("CLAN", "default", "1");
    t.Put("CLAN", "map0", "ctf01");
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
        t.Put("Startup", "HasRunSetup", "1");
        t.messages.answers = {answer};
        CMDReset_Click(t.services, s);
        EXPECT_EQ(t.messages.shown,
                  (QList<MessageRequest>{{"All configurations and settings for this program will "
                                          "be deleted.\r\nReset Registry entries for this program?",
                                          "Reset Application Registry Entries?", MsgButtons::YesNo,
                                          MsgIcon::Critical, MsgDefault::Second}}));
        const int yes = answer == MsgAnswer::Yes;
        EXPECT_EQ(t.store.IsEmpty(kAppName), yes);
        EXPECT_EQ(t.beeper.beeps, yes);
        EXPECT_EQ(t.end.ended, yes);
    }
}

// Numbers, booleans and rates as a hand edit may leave them. A rate is clamped into its
// dialog's range; text that is no number gives the default.
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
    const char *const huge = "99999999999999999999", *const minusHuge = "-99999999999999999999";
    const std::tuple<const char*, int, int> rates[] = {
        {"", 3, 110},   {"abc", 3, 110},    {"12abc", 3, 110}, {"0", 3, 10},      {"-7", 3, 10},
        {"3", 3, 10},   {"5", 5, 10},       {" 7 ", 7, 10},    {"10", 10, 10},    {"15", 15, 15},
        {"16", 15, 16}, {"50", 15, 50},     {"210", 15, 210},  {"211", 15, 210},  {"547", 15, 210},
        {"4.4", 4, 10}, {"120.6", 15, 121}, {huge, 15, 210},   {minusHuge, 3, 10}};
    for (const auto& [stored, messageRate, textRate] : rates) {
        EXPECT_EQ(ClampMessageRate(stored), messageRate) << stored;
        EXPECT_EQ(ClampTextRate(stored), textRate) << stored;
    }
}

} // namespace
