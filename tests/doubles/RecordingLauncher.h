#pragma once

#include "platform/ProcessLauncher.h"

#include <QList>
#include <QString>

// Records every start with its arguments and answers with scripted results.
class RecordingLauncher : public ProcessLauncher {
public:
    struct Call {
        enum class Kind { ShellExecute, CommandLine };
        Kind kind = Kind::ShellExecute;
        QString program;          // ShellExecute only
        QString parameters;       // ShellExecute only
        QString workingDirectory; // ShellExecute only
        QString commandLine;      // StartCommandLine only
        std::int32_t windowStyle = 0;
    };

    std::int32_t ShellExecute(const QString& program, const QString& parameters,
                              const QString& workingDirectory, std::int32_t windowStyle) override;
    std::int32_t StartCommandLine(const QString& commandLine, std::int32_t windowStyle) override;
    QString CurrentDirectory() override { return currentDirectory; }

    QList<Call> calls;
    // Results handed out in order; when a script runs dry the default answers.
    QList<std::int32_t> shellResults;
    QList<std::int32_t> commandLineResults;
    std::int32_t defaultShellResult = 42;
    std::int32_t defaultCommandLineResult = 42;
    QString currentDirectory = QStringLiteral("C:\\Hostwarden");
};
