#pragma once

#include "platform/ProcessLauncher.h"

#include <QList>
#include <QString>

// Records every start with its arguments and answers with scripted results, then 42.
// A successful start makes process 1000, 1001, ...; End reports one of them ended.
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
        return Started(shellResults.isEmpty() ? 42 : shellResults.takeFirst());
    }
    std::int32_t StartCommandLine(const QString& commandLine, std::int32_t windowStyle) override {
        calls.append({{}, {}, {}, commandLine, windowStyle});
        return Started(commandLineResults.isEmpty() ? 42 : commandLineResults.takeFirst());
    }
    QString CurrentDirectory() override { return "C:\\Hostwarden"; }
    std::int64_t StartedProcess() override { return started; }
    void OnProgramExit(ExitHandler handler) override { onExit = std::move(handler); }
    QString ErrorOutput(std::int64_t process) override {
        return QString("stderr of %1").arg(process);
    }
    // The last started process ends with `status` and that error output.
    void End(int status, const QString& tail = {}) { onExit({started, "RF.EXE", status, 0, tail}); }

    QList<Call> calls;
    QList<std::int32_t> shellResults, commandLineResults;
    std::int64_t started = 0, nextProcess = 1000;
    ExitHandler onExit = [](const ProgramExit&) {};

private:
    std::int32_t Started(std::int32_t result) {
        started = result > 32 ? nextProcess++ : 0;
        return result;
    }
};
