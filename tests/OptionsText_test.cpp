#include "options/OptionsText.h"

#include <QFile>
#include <QTemporaryDir>

#include "Texts.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

AppState WorkedExample() {
    AppState s;
    s.name = "Default";
    s.servname = "$Me's Dedicated CTF Running Hostwarden 2.0";
    s.gametype = "CTF";
    s.maxplayers = "16";
    s.maxtime = "30";
    s.maxkills = "50";
    s.maxcaps = "5";
    s.maxgeo = "128";
    s.falldamage = s.balance = kTrue; // the other switches start off
    return s;
}

// The maps follow in list order, quoted as they stand; the file is Windows-1252 text and
// replaces a longer old one. A missing game directory is reported.
TEST(OptionsText, WorkedExampleIsWrittenByteForByte) {
    QTemporaryDir dir;
    const QString gameDir = dir.path() + "/";
    QFile old(gameDir + "dedicated_server.txt");
    ASSERT_TRUE(old.open(QIODevice::WriteOnly) && old.write(QByteArray(5000, 'x')) == 5000);
    old.close();

    QString error;
    const mode_t umask = ::umask(0); // the passwords stay the operator's, whatever the umask
    ASSERT_TRUE(WriteOptionsFile(
        gameDir, ComposeOptionsText(WorkedExample(), {"ctf01", "dm \"x\" 02", "é€ ✓ ß"}), &error))
        << error.toStdString();
    ::umask(umask);
    EXPECT_EQ(QFile::permissions(old.fileName()),
              QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_EQ(old.readAll(),
              texts::kFirstRunOptions + QByteArray("$Map:            \"ctf01\"\r\n"
                                                   "$Map:            \"dm \"x\" 02\"\r\n"
                                                   "$Map:            \"\xE9\x80 ? \xDF\"\r\n"));

    EXPECT_FALSE(WriteOptionsFile(gameDir + "no/such/dir/", "x", &error));
    EXPECT_TRUE(error.contains("dedicated_server.txt")) << error.toStdString();
}

TEST(OptionsText, ValuesAreRenderedAsTheFileExpects) {
    const struct {
        const char* what;
        void (*change)(AppState&);
        const char* line;
    } rows[] = {{"only blanks trimmed from the name",
                 [](AppState& s) { s.name = QString::fromUtf8("  My Conf \t\u00a0 "); },
                 "$Name:           \"My Conf \t\u00a0\"\r\n"},
                {"empty limit leaves the label alone", [](AppState& s) { s.maxplayers = ""; },
                 "$Max Players:    \r\n"},
                {"any non-zero boolean is True", [](AppState& s) { s.teamdamage = 1; },
                 "$Team Damage:    True\r\n"},
                {"weapons stay value starts one column later",
                 [](AppState& s) { s.weaponstay = kTrue; }, "$Weapons Stay:    True\r\n"},
                {"quotes and line breaks are not escaped",
                 [](AppState& s) { s.password = "a\"b\r\nc"; },
                 "$Password:       \"a\"b\r\nc\"\r\n"},
                {"server name is not trimmed", [](AppState& s) { s.servname = " x "; },
                 "$Server Name:    \" x \"\r\n"}};
    for (const auto& row : rows) {
        AppState s = WorkedExample();
        row.change(s);
        EXPECT_TRUE(ComposeOptionsText(s, {}).contains(QString::fromUtf8(row.line))) << row.what;
    }
}

} // namespace
