#include "settings/IniSettingsStore.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <poll.h>
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

void WriteBytes(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

unsigned Mode(const QString& path) {
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return 0;
    return st.st_mode & 07777;
}

QStringList FolderEntries(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

class StoreTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString folder = dir.path() + QStringLiteral("/Hostwarden");
    QString file = folder + QStringLiteral("/Hostwarden 2.0.ini");
    QStringList lines() const { return QString::fromUtf8(ReadBytes(file)).split(u'\n'); }
};

// ---------------------------------------------------------------- names and case

struct NameForms {
    const char* writeSection;
    const char* writeKey;
    const char* readSection;
    const char* readKey;
};

class NameFormTest : public StoreTest, public ::testing::WithParamInterface<NameForms> {};

TEST_P(NameFormTest, OneEntryUnderEitherFormKeepsItsFirstSpelling) {
    const NameForms p = GetParam();
    const QString ws = QString::fromUtf8(p.writeSection), wk = QString::fromUtf8(p.writeKey);
    const QString rs = QString::fromUtf8(p.readSection), rk = QString::fromUtf8(p.readKey);
    {
        IniSettingsStore store(folder);
        store.SaveSetting(App, ws, wk, "first");
        EXPECT_EQ(store.GetSetting(App, rs, rk), "first");
        store.SaveSetting(App, rs, rk, "second");
        EXPECT_EQ(store.GetSetting(App, ws, wk), "second");
    }
    IniSettingsStore fresh(folder);
    EXPECT_EQ(fresh.GetSetting(App, rs, rk), "second");
    EXPECT_EQ(lines(), (QStringList{"[" + ws + "]", wk + "=second", ""}));
}

INSTANTIATE_TEST_SUITE_P(Forms, NameFormTest,
                         ::testing::Values(NameForms{"Default", "servname", "DEFAULT", "servname"},
                                           NameForms{"Default", "MapCount", "DEFAULT", "mapcount"},
                                           NameForms{"NEWONE", "mapcount", "NEWONE", "MapCount"},
                                           NameForms{"Default", "Text0", "DEFAULT", "text0"},
                                           NameForms{"Default", "map0", "Default", "Map0"},
                                           NameForms{"ConfName", "Conf1", "ConfName", "conf1"},
                                           NameForms{"Startup", "RFLocation", "Startup",
                                                     "RFlocation"},
                                           NameForms{"Startup", "lanonly", "startup", "LanOnly"},
                                           NameForms{"Été", "Clé", "ÉTÉ", "CLÉ"}));

TEST_F(StoreTest, SectionsAndKeysKeepFirstWriteOrder) {
    IniSettingsStore store(folder);
    store.SaveSetting(App, "Startup", "HasRunSetup", "1");
    store.SaveSetting(App, "ConfName", "ConfCount", "1");
    store.SaveSetting(App, "Startup", "RFLocation", "/games/rf/");
    store.SaveSetting(App, "STARTUP", "HASRUNSETUP", "1");
    store.SaveSetting(App, "confname", "Conf1", "DEFAULT");
    EXPECT_EQ(lines(), (QStringList{"[Startup]", "HasRunSetup=1", "RFLocation=/games/rf/", "",
                                    "[ConfName]", "ConfCount=1", "Conf1=DEFAULT", ""}));
}

// ---------------------------------------------------------------- absent and deleted

TEST_F(StoreTest, AbsentReadsEmptyAndDeletesRemoveWhatTheyName) {
    IniSettingsStore store(folder);
    EXPECT_EQ(store.GetSetting(App, "Startup", "HasRunSetup"), "");
    EXPECT_FALSE(QFile::exists(file)) << "reading must not create the file";

    store.SaveSetting(App, "Startup", "HasRunSetup", "1");
    store.SaveSetting(App, "Startup", "Port", "0");
    store.SaveSetting(App, "Default", "gametype", "CTF");
    store.SaveSetting(App, "Default", "map0", "ctf01");
    EXPECT_EQ(store.GetSetting(App, "Startup", "TextRate"), "");
    EXPECT_EQ(store.GetSetting(App, "NoSuchConf", "gametype"), "");

    store.DeleteSetting(App, "STARTUP", "port");
    EXPECT_EQ(store.GetSetting(App, "Startup", "Port"), "");
    EXPECT_EQ(store.GetSetting(App, "Startup", "HasRunSetup"), "1");
    store.DeleteSection(App, "DEFAULT");
    EXPECT_EQ(store.GetSetting(App, "Default", "gametype"), "");
    EXPECT_EQ(lines(), (QStringList{"[Startup]", "HasRunSetup=1", ""}));
    EXPECT_EQ(IniSettingsStore(folder).GetSetting(App, "Default", "map0"), "");

    store.DeleteAll(App);
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_EQ(store.GetSetting(App, "Startup", "HasRunSetup"), "");
    EXPECT_EQ(IniSettingsStore(folder).GetSetting(App, "Startup", "HasRunSetup"), "");

    store.SaveSetting(App, "Startup", "MsgRate", "3");
    EXPECT_EQ(lines(), (QStringList{"[Startup]", "MsgRate=3", ""}));
}

TEST_F(StoreTest, ApplicationsHaveSeparateFiles) {
    IniSettingsStore store(folder);
    store.SaveSetting(App, "Startup", "Port", "1");
    store.SaveSetting("Other", "Startup", "Port", "0");
    store.DeleteAll("Other");
    EXPECT_EQ(IniSettingsStore(folder).GetSetting(App, "Startup", "Port"), "1");
    EXPECT_EQ(FolderEntries(folder), QStringList{"Hostwarden 2.0.ini"});
}

// ---------------------------------------------------------------- values

struct ValueCase {
    const char* label;
    QString value;
    const char* fileLine; // the line in the file, or nullptr when not pinned down
};

void PrintTo(const ValueCase& c, std::ostream* os) {
    *os << c.label;
}

class ValueTest : public StoreTest, public ::testing::WithParamInterface<ValueCase> {};

TEST_P(ValueTest, RoundTripsExactly) {
    const ValueCase& c = GetParam();
    IniSettingsStore store(folder);
    store.SaveSetting(App, "Default", "servname", c.value);
    EXPECT_EQ(store.GetSetting(App, "Default", "servname"), c.value);

    IniSettingsStore fresh(folder);
    EXPECT_EQ(fresh.GetSetting(App, "Default", "servname"), c.value);
    EXPECT_FALSE(fresh.loadError(App).has_value());
    if (c.fileLine) {
        EXPECT_EQ(lines().value(1), QString::fromUtf8(c.fileLine));
    }
}

QString WithControls() {
    QString s = QStringLiteral("nul");
    s += QChar(u'\0');
    s += QStringLiteral("\x01\x1f\x7f");
    s += QChar(char16_t(0x85));
    return s;
}

INSTANTIATE_TEST_SUITE_P(
    Values, ValueTest,
    ::testing::Values(
        ValueCase{"empty", "", "servname="},
        ValueCase{"unix path", "/games/rf/", "servname=/games/rf/"},
        ValueCase{"windows path", "C:\\Games\\RF\\", R"(servname="C:\\Games\\RF\\")"},
        ValueCase{"outer blanks", "  two  ", R"(servname="  two  ")"},
        ValueCase{"outer tabs", "\tx\t", R"(servname="\tx\t")"},
        ValueCase{"ini punctuation", "a=b;c[d]e#", "servname=a=b;c[d]e#"},
        ValueCase{"leading semicolon", ";not a comment", "servname=;not a comment"},
        ValueCase{"header lookalike", "[Startup]", "servname=[Startup]"},
        ValueCase{"inner quotes", "say \"hi\"", "servname=say \"hi\""},
        ValueCase{"leading quote", "\"quoted\"", R"(servname="\"quoted\"")"},
        ValueCase{"crlf", "one\r\ntwo", R"(servname="one\r\ntwo")"},
        ValueCase{"lone cr and lf", "a\rb\nc", R"(servname="a\rb\nc")"},
        ValueCase{"controls", WithControls(), R"(servname="nul\x00\x01\x1F\x7F\x85")"},
        ValueCase{"unicode", QString::fromUtf8("Ünïcødé ✓ 日本"), "servname=Ünïcødé ✓ 日本"},
        ValueCase{"astral", QString::fromUtf8("🎮 x"), "servname=🎮 x"},
        ValueCase{"zero width no-break space", QString::fromUtf8("\xEF\xBB\xBFx"), nullptr},
        ValueCase{"no-break spaces", QString::fromUtf8("\xC2\xA0x\xC2\xA0"), nullptr},
        ValueCase{"lone backslash", "\\", R"(servname="\\")"},
        ValueCase{"everything", QStringLiteral(" \"\\\r\n\t=;[]' x "), nullptr}),
    [](const auto& info) { return "Row" + std::to_string(info.index); });

// Configuration names become section names; keys are the program's own but must not
// break the file either.
struct NameCase {
    QString section;
    QString key;
    const char* header;
};

class NameTest : public StoreTest, public ::testing::WithParamInterface<NameCase> {};

TEST_P(NameTest, RoundTripsThroughTheFile) {
    const NameCase& c = GetParam();
    IniSettingsStore(folder).SaveSetting(App, c.section, c.key, "v");
    IniSettingsStore fresh(folder);
    EXPECT_FALSE(fresh.loadError(App).has_value());
    EXPECT_EQ(fresh.GetSetting(App, c.section, c.key), "v");
    EXPECT_EQ(lines().value(0), QString::fromUtf8(c.header));
}

INSTANTIATE_TEST_SUITE_P(Names, NameTest,
                         ::testing::Values(NameCase{"A]B", "gametype", "[A]B]"},
                                           NameCase{"X=Y", "gametype", "[X=Y]"},
                                           NameCase{"[OLD]", "gametype", "[[OLD]]"},
                                           NameCase{" PAD ", "gametype", "[ PAD ]"},
                                           NameCase{"\"Q\"", "gametype", R"(["\"Q\""])"},
                                           NameCase{"A\nB", "gametype", R"(["A\nB"])"},
                                           NameCase{"", "", "[]"}, NameCase{"S", "a=b", "[S]"},
                                           NameCase{"S", ";k", "[S]"}, NameCase{"S", " k ", "[S]"},
                                           NameCase{"S", "[k]", "[S]"},
                                           NameCase{"S", "\"k", "[S]"}));

// ---------------------------------------------------------------- hand-written files

TEST_F(StoreTest, HandWrittenFileReadsAsItStands) {
    WriteBytes(file, "\xEF\xBB\xBF; kept by hand\r\n"
                     "\r\n"
                     "  [Startup]  \r\n"
                     "# Windows install\r\n"
                     "RFLocation = C:\\Games\\RF\\ \r\n"
                     "\tPortNum\t=\t7755\r\n"
                     "HasRunSetup=\r\n"
                     "[Default]\n"
                     "Text0 = \" padded \\\"msg\\\" \\x41\"  \n"
                     "servname=first\n"
                     "SERVNAME=second\n"
                     "[startup]\n"
                     "TextRate=90\n");
    IniSettingsStore store(folder);
    ASSERT_FALSE(store.loadError(App).has_value())
        << SettingsLoadErrorMessage(*store.loadError(App)).toStdString();
    EXPECT_EQ(store.GetSetting(App, "Startup", "RFlocation"), "C:\\Games\\RF\\");
    EXPECT_EQ(store.GetSetting(App, "Startup", "PortNum"), "7755");
    EXPECT_EQ(store.GetSetting(App, "Startup", "HasRunSetup"), "");
    EXPECT_EQ(store.GetSetting(App, "Startup", "TextRate"), "90");
    EXPECT_EQ(store.GetSetting(App, "Default", "text0"), " padded \"msg\" A");
    EXPECT_EQ(store.GetSetting(App, "Default", "servname"), "second");

    // The first write puts the file into the store's own form, values unchanged.
    store.SaveSetting(App, "Startup", "MsgRate", "5");
    EXPECT_EQ(lines(), (QStringList{"[Startup]", R"(RFLocation="C:\\Games\\RF\\")", "PortNum=7755",
                                    "HasRunSetup=", "TextRate=90", "MsgRate=5", "", "[Default]",
                                    R"(Text0=" padded \"msg\" A")", "servname=second", ""}));
}

TEST_F(StoreTest, FileIsReadOnceAndKeptInMemory) {
    IniSettingsStore store(folder);
    store.SaveSetting(App, "Startup", "Port", "1");
    WriteBytes(file, "[Startup]\nPort=0\n");
    EXPECT_EQ(store.GetSetting(App, "Startup", "Port"), "1");
}

// ---------------------------------------------------------------- location and mode

TEST_F(StoreTest, NewAndRewrittenFilesHaveMode0600InA0700Folder) {
    IniSettingsStore store(folder);
    store.SaveSetting(App, "Startup", "Port", "1");
    EXPECT_EQ(Mode(file), 0600u);
    EXPECT_EQ(Mode(folder), 0700u);

    ASSERT_EQ(::chmod(QFile::encodeName(file).constData(), 0644), 0);
    IniSettingsStore second(folder);
    second.SaveSetting(App, "Startup", "Port", "0");
    EXPECT_EQ(Mode(file), 0600u);
    EXPECT_EQ(ReadBytes(file), "[Startup]\nPort=0\n");
}

struct LocationCase {
    const char* label;
    std::optional<QByteArray> xdg; // nullopt: unset
    const char* expectedBelowTemp; // below the temporary folder
};

void PrintTo(const LocationCase& c, std::ostream* os) {
    *os << c.label;
}

class LocationTest : public ::testing::TestWithParam<LocationCase> {
protected:
    void SetUp() override {
        savedHome_ = qgetenv("HOME");
        hadXdg_ = qEnvironmentVariableIsSet("XDG_CONFIG_HOME");
        savedXdg_ = qgetenv("XDG_CONFIG_HOME");
    }
    void TearDown() override {
        qputenv("HOME", savedHome_);
        if (hadXdg_)
            qputenv("XDG_CONFIG_HOME", savedXdg_);
        else
            qunsetenv("XDG_CONFIG_HOME");
    }
    QTemporaryDir dir;

private:
    QByteArray savedHome_, savedXdg_;
    bool hadXdg_ = false;
};

TEST_P(LocationTest, FileLivesInTheUsersConfigFolder) {
    const LocationCase& c = GetParam();
    qputenv("HOME", QFile::encodeName(dir.path() + "/home"));
    if (c.xdg)
        qputenv("XDG_CONFIG_HOME", c.xdg->isEmpty() || !c.xdg->startsWith('/')
                                       ? *c.xdg
                                       : QFile::encodeName(dir.path()) + *c.xdg);
    else
        qunsetenv("XDG_CONFIG_HOME");

    IniSettingsStore store;
    const QString expected = dir.path() + QString::fromUtf8(c.expectedBelowTemp);
    EXPECT_EQ(store.filePath(App), expected);
    store.SaveSetting(App, "Startup", "HasRunSetup", "1");
    EXPECT_EQ(ReadBytes(expected), "[Startup]\nHasRunSetup=1\n");
    EXPECT_EQ(Mode(expected), 0600u);
}

INSTANTIATE_TEST_SUITE_P(
    Locations, LocationTest,
    ::testing::Values(
        LocationCase{"unset", std::nullopt, "/home/.config/Hostwarden/Hostwarden 2.0.ini"},
        LocationCase{"empty", QByteArray(""), "/home/.config/Hostwarden/Hostwarden 2.0.ini"},
        LocationCase{"relative", QByteArray("cfg"), "/home/.config/Hostwarden/Hostwarden 2.0.ini"},
        LocationCase{"absolute", QByteArray("/xdg"), "/xdg/Hostwarden/Hostwarden 2.0.ini"}));

// ---------------------------------------------------------------- unreadable files

struct BadFile {
    const char* label;
    QByteArray bytes;
    int line;
    const char* reason;
};

void PrintTo(const BadFile& c, std::ostream* os) {
    *os << c.label;
}

class BadFileTest : public StoreTest, public ::testing::WithParamInterface<BadFile> {};

TEST_P(BadFileTest, IsReportedAndNeverWritten) {
    const BadFile& c = GetParam();
    WriteBytes(file, c.bytes);
    ::chmod(QFile::encodeName(file).constData(), 0644);
    int failures = 0;
    IniSettingsStore store(folder);
    store.setErrorHandler([&](const QString&) { ++failures; });

    const auto error = store.loadError(App);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->path, file);
    EXPECT_EQ(error->line, c.line);
    EXPECT_EQ(error->reason, QString::fromUtf8(c.reason));
    // Nothing of an untrusted file is handed out, not even the lines before the fault.
    EXPECT_EQ(store.GetSetting(App, "Startup", "HasRunSetup"), "");

    store.SaveSetting(App, "Startup", "HasRunSetup", "1");
    store.DeleteSetting(App, "Startup", "HasRunSetup");
    store.DeleteSection(App, "Startup");
    store.DeleteAll(App);
    EXPECT_EQ(ReadBytes(file), c.bytes);
    EXPECT_EQ(Mode(file), 0644u);
    EXPECT_EQ(FolderEntries(folder), QStringList{"Hostwarden 2.0.ini"});
    EXPECT_EQ(failures, 0) << "refused writes are not write failures";
}

INSTANTIATE_TEST_SUITE_P(
    Files, BadFileTest,
    ::testing::Values(
        BadFile{"latin1 text", "[Startup]\nHasRunSetup=1\nRFLocation=/jeux/\xe9t\xe9\n", 3,
                "the line is not valid UTF-8 text"},
        BadFile{"stray line", "[Startup]\nHasRunSetup=1\n\njust some words\n", 4,
                "the line is neither a [section] header, a key=value line nor a comment"},
        BadFile{"key before section", "; settings\nHasRunSetup=1\n[Startup]\n", 2,
                "a key comes before any [section] header"},
        BadFile{"unclosed header", "[Startup]\nHasRunSetup=1\n[Default\n", 3,
                "a section header must end with \"]\""},
        BadFile{"unclosed quote", "[Startup]\nHasRunSetup=1\nRFLocation=\"/games/rf/\n", 3,
                "quoted text has no closing double quote"},
        BadFile{"quote cut by escape", "[Startup]\nRFLocation=\"/games/rf/\\\"\n", 2,
                "quoted text has no closing double quote"},
        BadFile{"unknown escape", "[Startup]\nRFLocation=\"C:\\Games\"\n", 2,
                "unknown escape \"\\G\" in quoted text"},
        BadFile{"short hex escape", "[Startup]\nRFLocation=\"x\\x4\"\n", 2,
                "\"\\x\" must be followed by two hexadecimal digits"},
        BadFile{"text after quote", "[Startup]\nServRec=\"1\" 0\n", 2,
                "text follows the quoted value"},
        BadFile{"quoted key without =", "[Startup]\n\"Port\" 1\n", 2,
                "a quoted key must be followed by \"=\""},
        BadFile{"carriage returns only", "[Startup]\rHasRunSetup=1\r", 1,
                "a section header must end with \"]\""}),
    [](const auto& info) { return "Row" + std::to_string(info.index); });

TEST_F(StoreTest, UnopenableFileIsReportedAndLeftAlone) {
    ASSERT_TRUE(QDir().mkpath(file)); // a folder where the file should be
    IniSettingsStore store(folder);
    const auto error = store.loadError(App);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->line, 0);
    store.DeleteAll(App);
    store.SaveSetting(App, "Startup", "Port", "1");
    EXPECT_TRUE(QFileInfo(file).isDir());
}

TEST_F(StoreTest, OperatorMessageSaysWhereWhatAndWhatToDo) {
    EXPECT_EQ(SettingsLoadErrorMessage({"/home/op/.config/Hostwarden/Hostwarden 2.0.ini", 7,
                                        "a key comes before any [section] header"}),
              "The settings file /home/op/.config/Hostwarden/Hostwarden 2.0.ini cannot be read "
              "(line 7: a key comes before any [section] header).\n\n"
              "It has been left unchanged. Correct or remove it, then start Hostwarden again.");
    EXPECT_EQ(SettingsLoadErrorMessage({"/x.ini", 0, "Is a directory"}),
              "The settings file /x.ini cannot be read (Is a directory).\n\n"
              "It has been left unchanged. Correct or remove it, then start Hostwarden again.");
}

// ---------------------------------------------------------------- failed writes

// Lowers the largest file this process may write, so that writing the new settings
// file fails as on a full disk (this works for root as well).
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &saved_);
        oldHandler_ = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = saved_;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &saved_);
        std::signal(SIGXFSZ, oldHandler_);
    }

private:
    rlimit saved_{};
    void (*oldHandler_)(int) = nullptr;
};

TEST_F(StoreTest, FailedWritesKeepTheOldFileAndAreReportedOncePerRun) {
    IniSettingsStore store(folder);
    QStringList messages;
    store.setErrorHandler([&](const QString& m) { messages << m; });
    store.SaveSetting(App, "Startup", "Port", "1");
    const QByteArray old = ReadBytes(file);
    const QString big(4000, u'x');
    {
        FileSizeLimit limit(1024);
        store.SaveSetting(App, "Default", "Text0", big);
        store.SaveSetting(App, "Default", "Text1", "second");
        store.DeleteSetting(App, "Startup", "Port");
    }
    EXPECT_EQ(ReadBytes(file), old);
    EXPECT_EQ(FolderEntries(folder), QStringList{"Hostwarden 2.0.ini"}) << "temp file left";
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages[0].startsWith("Hostwarden cannot save its settings to " + file + " ("))
        << messages[0].toStdString();
    EXPECT_TRUE(messages[0].contains("File too large")) << messages[0].toStdString();
    EXPECT_EQ(store.GetSetting(App, "Default", "Text0"), big);
    EXPECT_EQ(store.GetSetting(App, "Startup", "Port"), "");

    // A write that gets through saves everything, and a later failure is told again.
    store.SaveSetting(App, "Default", "Text2", "third");
    EXPECT_EQ(IniSettingsStore(folder).GetSetting(App, "Default", "Text0"), big);
    EXPECT_EQ(IniSettingsStore(folder).GetSetting(App, "Startup", "Port"), "");
    {
        FileSizeLimit limit(1024);
        store.SaveSetting(App, "Default", "Text3", "fourth");
    }
    EXPECT_EQ(messages.size(), 2);
}

TEST_F(StoreTest, FolderBlockedByAFileIsReportedOnce) {
    WriteBytes(dir.path() + "/blocked", "not a folder");
    const QString blockedFolder = dir.path() + "/blocked/Hostwarden";
    IniSettingsStore store(blockedFolder);
    QStringList messages;
    store.setErrorHandler([&](const QString& m) { messages << m; });
    store.SaveSetting(App, "Startup", "Port", "1");
    store.SaveSetting(App, "Startup", "PortNum", "7755");
    EXPECT_EQ(store.GetSetting(App, "Startup", "PortNum"), "7755");
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages[0].contains("the folder " + blockedFolder + " cannot be created"))
        << messages[0].toStdString();
    EXPECT_EQ(ReadBytes(dir.path() + "/blocked"), "not a folder");
}

// ---------------------------------------------------------------- crash safety

constexpr int CrashKeys = 8;

QString CrashValue(int run, int round) {
    return QStringLiteral(" \"%1.%2\"\\\n✓ ").arg(run).arg(round);
}

QString CrashKey(int j) {
    return QStringLiteral("key%1").arg(j);
}

// Writes round after round of every key until killed; one byte on progress per write.
[[noreturn]] void WriteUntilKilled(const QString& folder, int run, int progress) {
    IniSettingsStore store(folder);
    if (store.loadError(App))
        ::_exit(3);
    store.setErrorHandler([](const QString&) { ::_exit(4); });
    for (int round = 1;; ++round)
        for (int j = 0; j < CrashKeys; ++j) {
            store.SaveSetting(App, "Crash", CrashKey(j), CrashValue(run, round));
            const char byte = 1;
            if (::write(progress, &byte, 1) != 1)
                ::_exit(5);
        }
}

TEST_F(StoreTest, KilledWriterLeavesOldOrNewValueOfEveryKey) {
    std::vector<QString> before(CrashKeys);
    {
        IniSettingsStore store(folder);
        for (int j = 0; j < CrashKeys; ++j) {
            before[j] = QStringLiteral("initial %1").arg(j);
            store.SaveSetting(App, "Crash", CrashKey(j), before[j]);
        }
    }
    QRandomGenerator random(20240611);
    for (int run = 1; run <= 20; ++run) {
        int pipeFds[2];
        ASSERT_EQ(::pipe(pipeFds), 0);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::close(pipeFds[0]);
            WriteUntilKilled(folder, run, pipeFds[1]);
        }
        ::close(pipeFds[1]);
        // Let the child get well into its writes, then kill it somewhere inside one.
        const int writes = random.bounded(1, 2 * CrashKeys);
        for (int seen = 0; seen < writes;) {
            char buffer[64];
            const ssize_t n = ::read(pipeFds[0], buffer, std::min<int>(64, writes - seen));
            ASSERT_GT(n, 0) << "the writer ended early";
            seen += int(n);
        }
        ::usleep(useconds_t(random.bounded(0, 1500)));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ::close(pipeFds[0]);
        ASSERT_TRUE(WIFSIGNALED(status)) << "writer exit code " << WEXITSTATUS(status);

        IniSettingsStore after(folder);
        ASSERT_FALSE(after.loadError(App).has_value())
            << SettingsLoadErrorMessage(*after.loadError(App)).toStdString();
        // The file is the state after some number of whole writes: a prefix of the keys
        // is one round ahead of the rest.
        std::vector<int> rounds(CrashKeys);
        for (int j = 0; j < CrashKeys; ++j) {
            const QString value = after.GetSetting(App, "Crash", CrashKey(j));
            rounds[j] = -1;
            if (value == before[j])
                rounds[j] = 0;
            for (int r = 1; r <= 10000 && rounds[j] < 0; ++r)
                if (value == CrashValue(run, r))
                    rounds[j] = r;
            ASSERT_GE(rounds[j], 0)
                << "run " << run << ": key" << j << " holds " << value.toStdString();
        }
        for (int j = 1; j < CrashKeys; ++j)
            ASSERT_LE(rounds[j], rounds[j - 1]) << "run " << run;
        ASSERT_LE(rounds.front() - rounds.back(), 1) << "run " << run;
        EXPECT_EQ(FolderEntries(folder), QStringList{"Hostwarden 2.0.ini"})
            << "a temporary file survived the next load";
        for (int j = 0; j < CrashKeys; ++j)
            before[j] = after.GetSetting(App, "Crash", CrashKey(j));
    }
}

} // namespace
