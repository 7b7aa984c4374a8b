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
        bool operator==(const Call&) const = default;
    };

    std::int32_t ShellExecute(const QString& program, const QString& parameters,
                              const QString& workingDirectory, std::int32_t windowStyle) override {
        calls.append({program, parameters, workingDirectory, {}, windowStyle});
        return last = shellResults.isEmpty() ? 42 : shellResults.takeFirst();
    }
    std::int32_t StartCommandLine(const QString& commandLine, std::int32_t windowStyle) override {
        calls.append({{}, {}, {}, commandLine, windowStyle});
        return last = commandLineResults.isEmpty() ? 42 : commandLineResults.takeFirst();
    }
    QString CurrentDirectory() override { return "C:\\Hostwarden"; }
    // A successful start makes process 999 + the number of calls so far.
    std::int64_t StartedProcess() override { return last > 32 ? 999 + calls.size() : 0; }
    void OnProgramExit(ExitHandler handler) override { onExit = std::move(handler); }
    QString ErrorOutput(std::int64_t p) override { return QString("stderr of %1").arg(p); }
    // The last started process ends with `status` and that error output.
    void End(int status, QString tail = {}) { onExit({StartedProcess(), "", status, 0, tail}); }

    QList<Call> calls;
    QList<std::int32_t> shellResults, commandLineResults;
    std::int32_t last = 0;
    ExitHandler onExit = [](const ProgramExit&) {};
};
