#include "StandinWindow.h"

#include "ServerOptions.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <cstdlib>
#include <unistd.h>

StandinWindow::StandinWindow(const QDir& gameDir, const QStringList& arguments, QWidget* parent)
    : QWidget(parent), gameDir_(gameDir), keys_(gameDir.filePath("keys.log")),
      log_(new QPlainTextEdit(this)), console_(new QLineEdit(this)) {
    clock_.start();
    setWindowTitle(QStringLiteral("Red Faction Dedicated Server"));
    resize(640, 400);

    log_->setReadOnly(true);
    log_->setFocusPolicy(Qt::NoFocus); // clicks on the log leave the console focused
    log_->setObjectName("log");
    console_->setObjectName("console");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(log_);
    layout->addWidget(console_);
    setFocusProxy(console_);
    console_->setFocus();
    console_->installEventFilter(this);
    connect(console_, &QLineEdit::returnPressed, this, &StandinWindow::Submit);

    // A fresh key log each run: its times count from this start.
    keys_.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text);

    Log(QStringLiteral("Red Faction Dedicated Server (Hostwarden stand-in), pid %1")
            .arg(QCoreApplication::applicationPid()));
    Log(QStringLiteral("Game directory: %1").arg(QDir::toNativeSeparators(gameDir.absolutePath())));
    ShowCommandLine(arguments);
    ShowOptions();
    RecordEvent(QStringLiteral("started"));
}

void StandinWindow::Log(const QString& line) {
    log_->appendPlainText(line);
}

void StandinWindow::ShowCommandLine(const QStringList& arguments) {
    Log(QStringLiteral("Command line: %1").arg(arguments.mid(1).join(' ')));
    // The configuration name is not quoted, so it runs up to the next switch.
    QStringList name;
    bool inName = false;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == QLatin1String("-dedicated")) {
            inName = true;
        } else if (argument == QLatin1String("-lanonly")) {
            inName = false;
            Log(QStringLiteral("  LAN only"));
        } else if (argument == QLatin1String("-port") || argument == QLatin1String("-mod")) {
            inName = false;
            Log(QStringLiteral("  %1 %2").arg(argument == QLatin1String("-port") ? "Port" : "Mod",
                                              arguments.value(++i)));
        } else if (inName) {
            name << argument;
        } else {
            Log(QStringLiteral("  Not understood: %1").arg(argument));
        }
    }
    Log(QStringLiteral("  Configuration: %1").arg(name.isEmpty() ? "(none)" : name.join(' ')));
}

void StandinWindow::ShowOptions() {
    const QString path = gameDir_.filePath("dedicated_server.txt");
    const ServerOptions options = ReadServerOptions(path);
    if (!options.found) {
        Log(QStringLiteral("dedicated_server.txt is missing: %1")
                .arg(QDir::toNativeSeparators(path)));
        return;
    }
    Log(QStringLiteral("dedicated_server.txt:"));
    for (const QString& line : options.understood)
        Log(QStringLiteral("  ") + line);
    for (const QString& line : options.notUnderstood)
        Log(QStringLiteral("  Not understood: ") + line);
}

void StandinWindow::Submit() {
    const QString line = console_->text();
    console_->clear();
    Log(QStringLiteral("> ") + line);
    AppendTo(QStringLiteral("transcript.txt"), line + QLatin1Char('\n'));
    if (line.startsWith(QLatin1String("say ")))
        Log(QStringLiteral("[chat] ") + line.mid(4));
    if (line == QLatin1String("crash"))
        std::abort();
    if (line == QLatin1String("hang"))
        for (;;)
            ::pause();
}

bool StandinWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == console_ && event->type() == QEvent::KeyPress && keys_.isOpen()) {
        const auto* key = static_cast<QKeyEvent*>(event);
        QString text = key->text();
        if (text.isEmpty() && (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter))
            text = QStringLiteral("\r");
        for (const QChar ch : text)
            keys_.write(QStringLiteral("%1 %2\n").arg(clock_.elapsed()).arg(ch.unicode()).toUtf8());
        keys_.flush();
    }
    return QWidget::eventFilter(watched, event);
}

void StandinWindow::closeEvent(QCloseEvent* event) {
    Log(QStringLiteral("closed"));
    RecordEvent(QStringLiteral("closed"));
    event->accept();
}

void StandinWindow::RecordEvent(const QString& what) {
    AppendTo(QStringLiteral("events.txt"),
             QStringLiteral("%1 pid %2\n").arg(what).arg(QCoreApplication::applicationPid()));
}

void StandinWindow::AppendTo(const QString& fileName, const QString& text) {
    QFile file(gameDir_.filePath(fileName));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        Log(QStringLiteral("Cannot write %1: %2").arg(fileName, file.errorString()));
        return;
    }
    file.write(text.toUtf8());
}
