#pragma once

#include <QByteArray>
#include <QString>

// The end of a program's error output: the last 4 KiB of bytes, read back as at most
// the last 8 non-empty lines.
class ErrorTail {
public:
    static constexpr qsizetype kBytes = 4096;
    static constexpr int kLines = 8;

    void Append(const char* data, qsizetype size);
    QString Lines() const;

private:
    QByteArray bytes_;
};
