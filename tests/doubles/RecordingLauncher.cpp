#include "RecordingLauncher.h"

std::int32_t RecordingLauncher::ShellExecute(const QString& program, const QString& parameters,
                                             const QString& workingDirectory,
                                             std::int32_t windowStyle) {
    Call call;
    call.kind = Call::Kind::ShellExecute;
    call.program = program;
    call.parameters = parameters;
    call.workingDirectory = workingDirectory;
    call.windowStyle = windowStyle;
    calls.append(call);
    return shellResults.isEmpty() ? defaultShellResult : shellResults.takeFirst();
}

std::int32_t RecordingLauncher::StartCommandLine(const QString& commandLine,
                                                 std::int32_t windowStyle) {
    Call call;
    call.kind = Call::Kind::CommandLine;
    call.commandLine = commandLine;
    call.windowStyle = windowStyle;
    calls.append(call);
    return commandLineResults.isEmpty() ? defaultCommandLineResult : commandLineResults.takeFirst();
}
