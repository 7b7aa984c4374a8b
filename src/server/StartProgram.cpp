#include "server/StartProgram.h"

#include "platform/ProcessLauncher.h"

namespace {

bool IsSeparator(QChar ch) {
    return ch == QLatin1Char('\\') || ch == QLatin1Char('/');
}

QString StripLeadingBlanks(const QString& text) {
    qsizetype i = 0;
    while (i < text.size() && text[i] == QLatin1Char(' '))
        ++i;
    return text.mid(i);
}

} // namespace

CommandSplit SplitCommandLine(QString& commandLine, const QString& currentDir) {
    // `split` is the 0-based index where the parameters start (one past the program).
    qsizetype split = commandLine.size();
    if (commandLine.startsWith(QLatin1Char('"'))) {
        const qsizetype closing = commandLine.indexOf(QLatin1Char('"'), 1);
        if (closing >= 0) {
            commandLine = commandLine.mid(1, closing - 1) + commandLine.mid(closing + 1);
            split = closing - 1;
        }
    } else {
        const qsizetype blank = commandLine.indexOf(QLatin1Char(' '));
        if (blank >= 0)
            split = blank;
    }

    CommandSplit result;
    result.program = commandLine.left(split);
    result.parameters = StripLeadingBlanks(commandLine.mid(split));

    qsizetype separator = split - 1;
    while (separator >= 0 && !IsSeparator(commandLine[separator]))
        --separator;
    if (separator < 0)
        result.workingDirectory = currentDir;
    else if (separator == 0 || commandLine[separator - 1] == QLatin1Char(':'))
        result.workingDirectory = commandLine.left(separator + 1); // a root keeps its separator
    else
        result.workingDirectory = commandLine.left(separator);
    return result;
}

std::int32_t StartProgram(ProcessLauncher& launcher, QString& commandLine, std::int32_t windowStyle,
                          std::optional<QString> workingDirectory, std::int32_t* fallbackResult) {
    CommandSplit split = SplitCommandLine(commandLine, launcher.CurrentDirectory());
    if (workingDirectory)
        split.workingDirectory = *workingDirectory;
    const std::int32_t result =
        launcher.ShellExecute(split.program, split.parameters, split.workingDirectory, windowStyle);
    if (result < 32) {
        const std::int32_t fallback = launcher.StartCommandLine(commandLine, windowStyle);
        if (fallbackResult)
            *fallbackResult = fallback;
    }
    return result;
}
