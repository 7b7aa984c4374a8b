#include "platform/posix/ErrorTail.h"

#include <QStringList>

void ErrorTail::Append(const char* data, qsizetype size) {
    if (size >= kBytes) {
        bytes_ = QByteArray(data + size - kBytes, kBytes);
        return;
    }
    bytes_.append(data, size);
    if (bytes_.size() > kBytes)
        bytes_.remove(0, bytes_.size() - kBytes);
}

QString ErrorTail::Lines() const {
    QStringList lines;
    for (const QByteArray& line : bytes_.split('\n')) {
        const QString text = QString::fromLocal8Bit(line).trimmed();
        if (!text.isEmpty())
            lines << text;
    }
    return lines.mid(qMax<qsizetype>(0, lines.size() - kLines)).join(QLatin1Char('\n'));
}
