#include "settings/IniSettingsStore.h"
#include "settings/ServerConfig.h"

#include "MemorySettingsStore.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}

namespace {

const QString App = QStringLiteral("Hostwarden 2.0");

QByteArray ReadBytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void WriteBytes(const QString& path, const QByteArray& bytes, unsigned mode = 0600) {
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
    ::chmod(QFile::encodeName(path).constData(), mode);
}

unsigned Mode(const QString& path) {
    struct stat st {};
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 ? st.st_mode & 07777 : 0;
}

QStringList FolderEntries(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

class StoreTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString folder = dir.path() + QStringLiteral("/Hostwarden");
    QString file = folder + QStringLiteral("/Hostwarden 2.0.ini");
    QString text() const { return QString::fromUtf8(ReadBytes(file)); }
};

// Values are the operator's own text, configuration names become section names, keys are
// the program's own: none of them may break the file. The whole file is given where its
// form matters.
TEST_F(StoreTest, EveryTextReadsBackExactly) {
    struct Row {
        QString section, key, value, file;
    };
    const auto value = [](const QString& v, const char* line = nullptr) {
        return Row{"S", "k", v, line ? QString("[S]\nk=%1\n").arg(line) : QString()};
    };
    const auto name = [](const QString& section, const QString& key, const char* file) {
        return Row{section, key, "v", file};
    };
    const QString controls = QStringLiteral("nul") + QChar(u'\0') + "\x01\x1f\x7f" + QChar(0x85);
    const Row rows[] = {value("", ""),
                        value("C:\\Games\\RF\\", R"("C:\\Games\\RF\\")"),
                        value("  two  ", R"("  two  ")"),
                        value(";a=b[c]#", ";a=b[c]#"),
                        value("\"quoted\"", R"("\"quoted\"")"),
                        value("one\r\n\ttwo", R"("one\r\n\ttwo")"),
                        value(controls, R"("nul\x00\x01\x1F\x7F\x85")"),
                        value("Ünïcødé ✓ 日本 🎮", "Ünïcødé ✓ 日本 🎮"),
                        value("\xEF\xBB\xBFx"),
                        value("\xC2\xA0x\xC2\xA0"),
                        name("[O=D]", "a=b", "[[O=D]]\n\"a=b\"=v\n"),
                        name(" PAD ", " k ", "[ PAD ]\n\" k \"=v\n"),
                        name("\"Q\"", ";k", "[\"\\\"Q\\\"\"]\n\";k\"=v\n"),
                        name("A\nB", "[k]", "[\"A\\nB\"]\n\"[k]\"=v\n"),
                        name("", "", "[]\n\"\"=v\n"),
                        name("S", "\"k", "[S]\n\"\\\"k\"=v\n")};
    for (const Row& row : rows) {
        QFile::remove(file);
        IniSettingsStore store(folder);
        store.SaveSetting(App, row.section, row.key, row.value);
        EXPECT_EQ(store.GetSetting(App, row.section, row.key), row.value);
        EXPECT_EQ(IniSettingsStore(folder).GetSetting(App, row.section, row.key), row.value);
        if (!row.file.isNull()) {
            EXPECT_EQ(text(), row.file);
        }
    }
}

TEST_F(StoreTest, HandWrittenFileReadsAsItStands) {
    WriteBytes(file,
               "\xEF\xBB\xBF; kept by hand\r\n\r\n  [Startup]  \r\n# Windows install\r\n"
               "RFLocation = C:\\Games\\RF\\ \r\n\tPortNum\t=\t7755\r\nHasRunSetup=\r\n"
               "[Default]\nText0 = \" padded \\\"msg\\\" \\x41\"  \nservname=first\n"
               "SERVNAME=second\n[startup]\nTextRate=90\n[Été]\nClé=x\n",
               0644);
    IniSettingsStore store(folder);
    ASSERT_FALSE(store.loadError(App).has_value())
        << SettingsLoadErrorMessage(*store.loadError(App)).toStdString();
    EXPECT_EQ(store.GetSetting(App, "startup", "rflocation"), "C:\\Games\\RF\\");
    EXPECT_EQ(store.GetSetting(App, "ÉTÉ", "CLÉ"), "x");

    // The first write puts the file into the store's own form and shows everything it read.
    store.SaveSetting(App, "Startup", "MsgRate", "5");
    EXPECT_EQ(text(),
              "[Startup]\nRFLocation=\"C:\\\\Games\\\\RF\\\\\"\nPortNum=7755\nHasRunSetup=\n"
              "TextRate=90\nMsgRate=5\n\n[Default]\nText0=\" padded \\\"msg\\\" A\"\n"
              "servname=second\n\n[Été]\nClé=x\n");
    EXPECT_EQ(Mode(file), 0600u);
    // Names match in any case, and a section goes with its last key.
    store.DeleteSetting(App, "DEFAULT", "TEXT0");
    store.DeleteSetting(App, "default", "ServName");
    store.DeleteSection(App, "STARTUP");
    store.DeleteSetting(App, "été", "clÉ");
    EXPECT_FALSE(QFile::exists(file));
}

// $XDG_CONFIG_HOME/Hostwarden, or ~/.config/Hostwarden when that is unset, empty or relative.
TEST(StoreLocation, FileLivesInTheUsersConfigFolder) {
    const QByteArray home = qgetenv("HOME"), xdg = qgetenv("XDG_CONFIG_HOME");
    const bool xdgSet = qEnvironmentVariableIsSet("XDG_CONFIG_HOME");
    QTemporaryDir dir;
    const QByteArray root = QFile::encodeName(dir.path());
    qputenv("HOME", root);
    for (const QByteArray& value : {QByteArray(), QByteArray(""), QByteArray("cfg"), root + "/x"}) {
        value.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", value);
        const QString expected = dir.path() + (value.startsWith('/') ? "/x" : "/.config") +
                                 "/Hostwarden/Hostwarden 2.0.ini";
        IniSettingsStore store;
        EXPECT_EQ(store.filePath(App), expected);
        if (value.isNull()) { // a fresh home
            EXPECT_EQ(store.GetSetting(App, "Startup", "HasRunSetup"), "");
            EXPECT_FALSE(QFile::exists(expected)) << "reading creates no file";
        }
        store.SaveSetting(App, "Startup", "HasRunSetup", "1");
        EXPECT_EQ(ReadBytes(expected), "[Startup]\nHasRunSetup=1\n");
        EXPECT_EQ(Mode(QFileInfo(expected).path()), 0700u);
    }
    qputenv("HOME", home);
    xdgSet ? qputenv("XDG_CONFIG_HOME", xdg) : qunsetenv("XDG_CONFIG_HOME");
}

// A file the store cannot read is reported with its line, handed out in no part (not even
// the lines before the fault), and never written. Null bytes: a folder stands in the way.
TEST_F(StoreTest, BadFileIsReportedAndNeverWritten) {
    const struct {
        QByteArray bytes;
        const char* where; // none: the system's own words
    } rows[] = {
        {"[Startup]\nHasRunSetup=1\nRFLocation=/jeux/\xe9t\xe9\n",
         "line 3: the line is not valid UTF-8 text"},
        {"[Startup]\nHasRunSetup=1\n\njust some words\n",
         "line 4: the line is neither a [section] header, a key=value line nor a comment"},
        {"; settings\nHasRunSetup=1\n[Startup]\n",
         "line 2: a key comes before any [section] header"},
        {"[Startup]\nHasRunSetup=1\n[Default\n", "line 3: a section header must end with \"]\""},
        {"[Startup]\nHasRunSetup=1\nRFLocation=\"/games/rf/\n",
         "line 3: quoted text has no closing double quote"},
        {"[Startup]\nRFLocation=\"C:\\Games\"\n", "line 2: unknown escape \"\\G\" in quoted text"},
        {"[Startup]\nRFLocation=\"x\\x4\"\n",
         "line 2: \"\\x\" must be followed by two hexadecimal digits"},
        {"[Startup]\nServRec=\"1\" 0\n", "line 2: text follows the quoted value"},
        {"[Startup]\n\"Port\" 1\n", "line 2: a quoted key must be followed by \"=\""},
        {QByteArray(), nullptr}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bytes.toStdString());
        QFile::remove(file);
        if (row.bytes.isNull())
            ASSERT_TRUE(QDir().mkpath(file));
        else
            WriteBytes(file, row.bytes, 0644);
        int failures = 0;
        IniSettingsStore store(folder);
        store.setErrorHandler([&](const QString&) { ++failures; });

        const auto error = store.loadError(App);
        ASSERT_TRUE(error.has_value());
        const QString where = row.where ? QString(row.where) : error->reason;
        EXPECT_EQ(
            SettingsLoadErrorMessage(*error),
            QString("The settings file %1 cannot be read (%2).\n\nIt has been left unchanged. "
                    "Correct or remove it, then start Hostwarden again.")
                .arg(file, where));
        EXPECT_EQ(store.GetSetting(App, "Startup", "HasRunSetup"), "");

        store.SaveSetting(App, "Startup", "HasRunSetup", "1");
        store.DeleteSetting(App, "Startup", "HasRunSetup");
        store.DeleteSection(App, "Startup");
        store.DeleteAll(App);
        EXPECT_EQ(ReadBytes(file), row.bytes);
        EXPECT_EQ(Mode(file), row.bytes.isNull() ? Mode(folder) : 0644u);
        EXPECT_EQ(FolderEntries(folder), QStringList{"Hostwarden 2.0.ini"});
        EXPECT_EQ(failures, 0) << "refused writes are not write failures";
    }
}

// Runs `writes` with the largest file this process may write lowered to 1 KiB, so that writing
// the settings file fails as on a full disk (this works for root as well).
void OnAFullDisk(const std::function<void()>& writes) {
    rlimit saved{};
    ::getrlimit(RLIMIT_FSIZE, &saved);
    const rlimit limit{1024, saved.rlim_max};
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    writes();
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, oldHandler);
}

TEST_F(StoreTest, FailedWritesKeepTheOldFileAndAreReportedOncePerRun) {
    IniSettingsStore store(folder);
    QStringList messages;
    store.setErrorHandler([&](const QString& m) { messages << m; });
    store.SaveSetting(App, "Startup", "Port", "1");
    const QByteArray old = ReadBytes(file);
    const QString big(4000, u'x');
    OnAFullDisk([&] {
        store.SaveSetting(App, "Default", "Text0", big);
        store.SaveSetting(App, "Default", "Text1", "second");
        store.DeleteSetting(App, "Startup", "Port");
    });
    EXPECT_EQ(ReadBytes(file), old);
    EXPECT_EQ(FolderEntries(folder), QStringList{"Hostwarden 2.0.ini"}) << "temp file left";
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages[0].startsWith("Hostwarden cannot save its settings to " + file + " (") &&
                messages[0].contains("File too large"))
        << messages[0].toStdString();
    EXPECT_EQ(store.GetSetting(App, "Default", "Text0"), big);
    EXPECT_EQ(store.GetSetting(App, "Startup", "Port"), "");

    // A write that gets through saves everything, and a later failure is told again.
    store.SaveSetting(App, "Default", "Text2", "third");
    IniSettingsStore after(folder);
    EXPECT_EQ(after.GetSetting(App, "Default", "Text0"), big);
    EXPECT_EQ(after.GetSetting(App, "Startup", "Port"), "");
    OnAFullDisk([&] { store.SaveSetting(App, "Default", "Text3", "fourth"); });
    EXPECT_EQ(messages.size(), 2);
}

// Only a regular file of at most 64 MiB is read; anything else is refused before a byte is
// read. A link to a regular file is read and written through, and stays a link.
TEST_F(StoreTest, OnlyARegularFileOfAtMost64MiBIsRead) {
    QDir().mkpath(folder);
    const QByteArray path = QFile::encodeName(file);
    const QString real = dir.path() + "/real.ini";
    WriteBytes(real, "[S]\nk=v\n");
    const std::pair<std::function<void()>, const char*> rows[] = {
        {[&] { ::mkfifo(path, 0600); }, "it is not a regular file"},
        {[&] { QFile::link("/dev/zero", file); }, "it is not a regular file"},
        {[&] { WriteBytes(file, ""), ::truncate(path, (64 << 20) + 1); },
         "it is larger than 64 MiB"},
        {[&] { QFile::link(real, file); }, nullptr}};
    for (const auto& [make, reason] : rows) {
        QFile::remove(file);
        make();
        IniSettingsStore store(folder);
        EXPECT_EQ(store.loadError(App).value_or(SettingsLoadError{}).reason, QString(reason));
        store.SaveSetting(App, "S", "k", "w"); // refused unless read
    }
    EXPECT_TRUE(QFileInfo(file).isSymLink());
    EXPECT_EQ(ReadBytes(real), "[S]\nk=w\n");
}

// A child saves a whole configuration round after round and is killed at random, 300 times:
// the file holds one round's configuration whole, with its maps and no others.
TEST_F(StoreTest, KilledSaveLeavesAWholeConfiguration) {
    const auto save = [&](SettingsStore& store, int round) {
        AppState s;
        s.AppName = App;
        s.CurrentConf = "DEFAULT";
        const QString r = s.servname = s.password = QString::number(round);
        SaveConfigSection(store, s, {QStringList(round % 4, r), r, {r, r, r, r}, true});
    };
    IniSettingsStore initial(folder);
    save(initial, 3);
    QRandomGenerator random(20261125);
    int partial = 0;
    for (int run = 1; run <= 300; ++run) {
        int ready[2];
        ASSERT_EQ(::pipe(ready), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            IniSettingsStore store(folder);
            for (int round = run * 1000; ::write(ready[1], "", 1) == 1; ++round)
                save(store, round);
            ::_exit(5);
        }
        char byte = 0;
        ASSERT_EQ(::read(ready[0], &byte, 1), 1); // under way
        ::usleep(useconds_t(random.bounded(0, 6000)));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        ::close(ready[0]), ::close(ready[1]);

        // Whole: the very keys and values that saving its round writes, in their order.
        IniSettingsStore after(folder);
        const QStringList stored = Dump(after, App, "Default");
        MemorySettingsStore whole;
        save(whole, stored.value(1).section('=', 1).toInt());
        partial += stored != Dump(whole, App, "Default");
        EXPECT_EQ(FolderEntries(folder), QStringList{"Hostwarden 2.0.ini"}) << "temp file left";
    }
    EXPECT_EQ(partial, 0) << "of 300 kills";
}

} // namespace
