#include "Journey.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRect>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <filesystem>
#include <stdexcept>

#include <signal.h>

namespace e2e {

namespace {

QString TestName() {
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    return QString::fromUtf8(info->test_suite_name()).replace('/', '-') + "-" +
           QString::fromUtf8(info->name()).replace('/', '-');
}

// The control's rectangle in its window's client area, from the form file: the geometries
// of the widgets it sits in are added up, the window's own left out.
std::optional<QRect> FormGeometry(const QString& form, const QString& control) {
    QDirIterator files(QStringLiteral(FORMS_DIR), {form + ".ui"}, QDir::Files,
                       QDirIterator::Subdirectories);
    QFile file(files.hasNext() ? files.next() : QString());
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QXmlStreamReader xml(&file);
    std::vector<std::pair<QString, QRect>> open; // the widgets around, outermost first
    bool inGeometry = false;
    while (!xml.atEnd()) {
        xml.readNext();
        const auto name = xml.name();
        if (xml.isStartElement() && name == u"widget") {
            open.emplace_back(xml.attributes().value("name").toString(), QRect());
        } else if (xml.isStartElement() && name == u"property") {
            inGeometry = xml.attributes().value("name") == u"geometry";
        } else if (xml.isStartElement() && inGeometry && !open.empty()) {
            QRect& r = open.back().second;
            if (name == u"x" || name == u"y" || name == u"width" || name == u"height") {
                const int v = xml.readElementText().toInt();
                name == u"x" ? r.moveLeft(v) : name == u"y" ? r.moveTop(v)
                             : name == u"width" ? r.setWidth(v) : r.setHeight(v);
            }
        } else if (xml.isEndElement() && name == u"property") {
            inGeometry = false;
        } else if (xml.isEndElement() && name == u"widget") {
            if (open.back().first == control && open.size() > 1 && open.back().second.isValid()) {
                QRect r = open.back().second;
                for (std::size_t i = 1; i + 1 < open.size(); ++i)
                    r.translate(open[i].second.topLeft());
                return r;
            }
            open.pop_back();
        }
    }
    return std::nullopt;
}

} // namespace

QByteArray ReadFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

Journey::Journey() {
    game_ = gameParent_.filePath("game");
    // Copies keep their permissions, so RF.EXE stays executable.
    std::filesystem::copy(QStringLiteral(DEMO_GAME_DIR).toStdString(), game_.toStdString(),
                          std::filesystem::copy_options::recursive);
    if (!QFileInfo(GameFile("RF.EXE")).isExecutable() ||
        !QDir(home_.path()).mkpath("config/Hostwarden"))
        throw std::runtime_error("cannot prepare the home and the game copy");
    QFile::remove(ArtifactPath(TestName() + "-hostwarden.log"));
}

Journey::~Journey() {
    if (HasFailure())
        desktop_.Screenshot(TestName() + "-at-failure");
    hostwarden_.Stop();
    // The launcher detaches the servers it starts; end the ones started in this game copy.
    for (pid_t pid : StartedPids())
        if (QFileInfo(QStringLiteral("/proc/%1/cwd").arg(pid)).canonicalFilePath() ==
            QFileInfo(game_).canonicalFilePath())
            ::kill(pid, SIGKILL);
}

QString Journey::SettingsFile() const {
    return home_.filePath("config/Hostwarden/" + kAppName + ".ini");
}

void Journey::Seed(const QByteArray& text) const {
    QFile file(SettingsFile());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(text) != text.size())
        throw std::runtime_error("cannot write the settings file");
}

void Journey::Seed(const LaterRun& run) const {
    QString text = "[Startup]\nHasRunSetup=1\nRFLocation=" + GameDir() + "\n";
    for (const QString& line : run.startup)
        text += line + "\n";
    text += "\n[Default]\n" + kFirstRunDefaults.join('\n') + "\n";
    for (int k = 0; k < int(run.messages.size()); ++k)
        text += QStringLiteral("Text%1=%2\n").arg(k).arg(run.messages[k]);
    Seed((text + "\n[ConfName]\nConfCount=1\nConf1=" + run.listEntry + "\n").toUtf8());
}

QStringList Journey::Section(const QString& name) const {
    QStringList lines;
    bool inside = false;
    for (QString line : QString::fromUtf8(Settings()).split('\n')) {
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.startsWith('[') && line.endsWith(']'))
            inside = line.mid(1, line.size() - 2).compare(name, Qt::CaseInsensitive) == 0;
        else if (inside && !line.isEmpty())
            lines << line;
    }
    return lines;
}

Process Journey::StartHostwarden(std::optional<int> secondMs) const {
    const QStringList env =
        session_.Environment() +
        QStringList{"HOME=" + home_.path(), "XDG_CONFIG_HOME=" + home_.filePath("config"),
                    "QT_QPA_PLATFORM=xcb",
                    // Empty (a real second) also when this test process was given one.
                    "HOSTWARDEN_TEST_SECOND_MS=" +
                        (secondMs ? QString::number(*secondMs) : QString())};
    return Process(QStringLiteral(HOSTWARDEN_BIN), {},
                   {env, home_.path(), ArtifactPath(TestName() + "-hostwarden.log")});
}

void Journey::StartMain(const LaterRun& run, std::optional<int> secondMs) {
    Seed(run);
    hostwarden_ = StartHostwarden(secondMs);
    main_ = desktop_.WaitForWindow(kMainTitle, TitleMatch::Exact, 30s).value_or(0);
    ASSERT_NE(main_, 0u) << "no main window; windows: " << Windows();
}

bool Journey::Click(WindowId window, const QString& form, const QString& control) const {
    const auto rect = FormGeometry(form, control);
    EXPECT_TRUE(rect) << (control + " not found in " + form + ".ui").toStdString();
    return window && rect && desktop_.Click(window, rect->center());
}

QStringList Journey::GameLines(const QString& name) const {
    QStringList lines = QString::fromUtf8(ReadFile(GameFile(name))).split('\n');
    lines.removeLast();
    return lines;
}

std::vector<KeyLine> Journey::KeyLines() const {
    std::vector<KeyLine> lines(1);
    for (const QString& line : GameLines("keys.log")) {
        const int code = line.section(' ', 1).toInt();
        lines.back().ms.push_back(line.section(' ', 0, 0).toLongLong());
        if (code == 13)
            lines.emplace_back();
        else
            lines.back().text += QChar(code);
    }
    lines.pop_back(); // the unfinished rest
    return lines;
}

std::vector<pid_t> Journey::StartedPids() const {
    std::vector<pid_t> pids;
    static const QRegularExpression started(QStringLiteral("^started pid (\\d+)$"));
    for (const QString& line : GameLines("events.txt"))
        if (const auto match = started.match(line); match.hasMatch())
            pids.push_back(pid_t(match.captured(1).toInt()));
    return pids;
}

} // namespace e2e
