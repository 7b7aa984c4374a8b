#include "MainWindow.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {

MainWindow& Started(MainWindow& m) {
    m.SeedFirstRun();
    m.Load();
    return m;
}

} // namespace

TEST(GameType, EachOptionSetsItsTypeLimitsNameAndEmptiesTheMaps) {
    const struct {
        const char* option;
        const char* gametype;
        const char* servname;
        bool kills, caps;
    } rows[] = {
        {"OPTDM", "DM", "$ME's Dedicated DM", true, false},
        {"OPTTDM", "TeamDM", "$ME's Dedicated TeamDM", true, false},
        {"OPTCTF", "CTF", "$ME's Dedicated CTF", false, true},
    };
    for (const auto& row : rows) {
        MainWindow m;
        Started(m);
        if (QString(row.option) == "OPTCTF")
            m.ui().OPTDM->setChecked(true);
        m.AddMaps({"ctf01", "ctf02"});
        m.ui().TXTServName->setText("typed by the operator");
        m.app.Saved = "yes";
        m.w->findChild<QRadioButton*>(row.option)->click();
        SCOPED_TRACE(row.option);
        EXPECT_EQ(m.app.gametype, row.gametype);
        EXPECT_EQ(m.ui().TXTServName->text(), row.servname);
        EXPECT_EQ(m.app.servname, row.servname);
        EXPECT_EQ(m.ui().MaxKills->isEnabled(), row.kills);
        EXPECT_EQ(m.ui().MaxCaps->isEnabled(), row.caps);
        EXPECT_TRUE(m.Maps().isEmpty());
        EXPECT_EQ(m.ui().MCS->text(), "0 Maps");
        EXPECT_EQ(m.app.Saved, "no");
        EXPECT_TRUE(m.Text().contains(QString("$Game Type:      \"") + row.gametype + "\"\r\n"));
        EXPECT_EQ(int(m.ui().OPTCTF->isChecked()) + m.ui().OPTDM->isChecked() +
                      m.ui().OPTTDM->isChecked(),
                  1);
    }
}

TEST(GameType, ClickingTheSelectedOptionKeepsIt) {
    MainWindow m;
    Started(m);
    m.AddMaps({"ctf01"});
    QTest::mouseClick(m.ui().OPTCTF, Qt::LeftButton);
    EXPECT_TRUE(m.ui().OPTCTF->isChecked());
    EXPECT_EQ(m.Maps(), QStringList{"ctf01"});
}

TEST(ListFields, ChoosingAnItemUpdatesStateAndText) {
    const struct {
        const char* list;
        int index;
        const char* line;
    } rows[] = {
        {"MaxPlayers", 30, "$Max Players:    32\r\n"},
        {"MaxTime", 0, "$Max Time:       5\r\n"},
        {"MaxKills", 99, "$Max Kills:      100\r\n"},
        {"MaxCaps", 24, "$Max Captures:   25\r\n"},
        {"MaxGeo", 0, "$Geomod Limit:   0\r\n"},
        {"TeamDamage", 0, "$Team Damage:    True\r\n"},
        {"FallDamage", 1, "$Fall Damage:    False\r\n"},
        {"WeaponStay", 0, "$Weapons Stay:    True\r\n"},
        {"ForceSpawn", 0, "$Force Respawn:  True\r\n"},
        {"Balance", 1, "$Balance Teams:  False\r\n"},
    };
    for (const auto& row : rows) {
        MainWindow m;
        Started(m);
        SCOPED_TRACE(row.list);
        // A hand edit of the options box counts as a change and lasts until a rebuild.
        m.app.Saved = "yes";
        m.ui().TXTSTat->appendPlainText("$Extra: 1");
        EXPECT_EQ(m.app.Saved, "no");
        EXPECT_TRUE(m.Text().contains("$Extra: 1"));
        m.app.Saved = "yes";
        m.w->findChild<QComboBox*>(row.list)->setCurrentIndex(row.index);
        EXPECT_TRUE(m.Text().contains(row.line));
        EXPECT_FALSE(m.Text().contains("$Extra: 1"));
        EXPECT_EQ(m.app.Saved, "no");
    }
}

TEST(ListFields, TypingWithoutChoosingChangesNothing) {
    MainWindow m;
    Started(m);
    const QString before = m.Text();
    m.app.Saved = "yes";
    for (QComboBox* list : {m.ui().MaxPlayers, m.ui().TeamDamage}) {
        list->lineEdit()->selectAll();
        QTest::keyClicks(list->lineEdit(), "7");
    }
    EXPECT_EQ(m.Text(), before);
    EXPECT_EQ(m.app.maxplayers, "16");
    EXPECT_EQ(m.app.teamdamage, kFalse);
    EXPECT_EQ(m.app.Saved, "yes");
}

TEST(TextFields, EveryKeystrokeShowsAtOnce) {
    const struct {
        const char* box;
        const char* prefix;
    } rows[] = {
        {"TXTServName", "$Server Name:    \""},
        {"TXTPassword", "$Password:       \""},
        {"TXTRconPass", "$Rcon Password:  \""},
    };
    for (const auto& row : rows) {
        MainWindow m;
        Started(m);
        auto* box = m.w->findChild<QLineEdit*>(row.box);
        box->clear();
        QString typed;
        for (const char ch : QByteArray("ab c")) {
            m.app.Saved = "yes";
            QTest::keyClick(box, ch);
            typed += ch;
            EXPECT_TRUE(m.Text().contains(row.prefix + typed + "\"\r\n")) << row.box;
            EXPECT_EQ(m.app.Saved, "no") << row.box;
        }
        EXPECT_EQ(box->echoMode(), QLineEdit::Normal) << row.box;
    }
}

TEST(Banner, ShowsTheUpdateNoticeThenBeeps) {
    MainWindow m;
    Started(m);
    int beepsWhileShown = -1;
    m.t.messages.onShow = [&](const MessageRequest&) { beepsWhileShown = m.t.beeper.beeps; };
    QTest::mouseClick(m.ui().Image1, Qt::LeftButton);
    ASSERT_EQ(m.t.messages.shown.size(), 1);
    EXPECT_EQ(m.t.messages.shown[0],
              (MessageRequest{"Please visit " + kProjectAddress + " for possible updates.",
                              kAppName, MsgButtons::OK, MsgIcon::None, MsgDefault::First}));
    EXPECT_EQ(beepsWhileShown, 0);
    EXPECT_EQ(m.t.beeper.beeps, 1);
}
