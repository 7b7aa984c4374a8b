#include "options/OptionsText.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

// The worked example itself is checked byte for byte by the launch journey. The maps follow in
// list order, quoted as they stand, in Windows-1252; the file replaces a longer old one and is
// the operator's alone, whatever the umask. A missing game directory is reported.
TEST(OptionsText, MapsAreWrittenAsTheyStandIntoAFileOfTheOperatorsOwn) {
    QTemporaryDir dir;
    const QString gameDir = dir.path() + "/";
    QFile old(gameDir + "dedicated_server.txt");
    ASSERT_TRUE(old.open(QIODevice::WriteOnly) && old.write(QByteArray(5000, 'x')) == 5000);
    old.close();

    QString error;
    const QString text = ComposeOptionsText(AppState{}, {"ctf01", "dm \"x\" 02", "é€ ✓ ß"});
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
        AppState s;
        row.change(s);
        EXPECT_TRUE(ComposeOptionsText(s, {}).contains(QString::fromUtf8(row.line))) << row.what;
    }
}

} // namespace
