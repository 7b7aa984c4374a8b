#pragma once

#include "platform/ProcessLauncher.h"

#include <QList>
#include <QString>

// Records every start with its arguments and answers with scripted results, then 42.
class RecordingLauncher : public ProcessLauncher {
public:
    struct Call {
        QString program, parameters, workingDirectory; // ShellExecute only
        QString commandLine;                           // StartCommandLine only
        std::int32_t windowStyle = 0;
    };

    std::int32_t ShellExecute(const QString& program, const QString& parameters,
                              const QString& workingDirectory, std::int32_t windowStyle) override {
        calls.append({program, parameters, workingDirectory, {}, windowStyle});
        return shellResults.isEmpty() ? 42 : shellResults.takeFirst();
    }
    std::int32_t StartCommandLine(const QString& commandLine, std::int32_t windowStyle) override {
        calls.append({{}, {}, {}, commandLine, windowStyle});
        return commandLineResults.isEmpty() ? 42 : commandLineResults.takeFirst();
    }
    QString CurrentDirectory() override { return "C:\\Hostwarden"; }

    QList<Call> calls;
    QList<std::int32_t> shellResults, commandLineResults;
};
