#include "maps/VppArchive.h"

#include "platform/Ansi.h"

#include <QFile>
#include <QSaveFile>

namespace {

constexpr int kNameSize = 60;

QString TrimBlanks(const QString& text) {
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text[first] == QLatin1Char(' '))
        ++first;
    while (last > first && text[last - 1] == QLatin1Char(' '))
        --last;
    return text.mid(first, last - first);
}

QString EntryName(const QByteArray& record) {
    QString name;
    for (const char byte : record) {
        if (byte == 0)
            break;
        const char32_t ch = FromAnsi(static_cast<std::uint8_t>(byte));
        name += QString::fromUcs4(&ch, 1);
    }
    return TrimBlanks(name);
}

void PutWord(QByteArray& out, qsizetype offset, quint32 value) {
    for (int i = 0; i < 4; ++i)
        out[offset + i] = static_cast<char>((value >> (8 * i)) & 0xFF);
}

qsizetype RoundUp(qsizetype size) {
    return (size + kVppBlock - 1) / kVppBlock * kVppBlock;
}

} // namespace

VppDirectory ReadVppDirectory(const QString& archivePath) {
    VppDirectory result;
    QFile file(archivePath);
    if (!file.open(QIODevice::ReadOnly)) {
        result.error = QStringLiteral("Cannot open %1: %2").arg(archivePath, file.errorString());
        return result;
    }
    if (!file.seek(kVppBlock) || file.size() <= kVppBlock) {
        result.error = QStringLiteral("%1 ends before its directory").arg(archivePath);
        return result;
    }
    for (;;) {
        const QByteArray record = file.read(kVppEntrySize);
        if (record.size() < kVppEntrySize) {
            result.error = QStringLiteral("%1 ends inside its directory").arg(archivePath);
            return result;
        }
        if (record[0] == 0)
            break;
        result.names.append(EntryName(record));
    }
    result.ok = true;
    return result;
}

QByteArray BuildVppArchive(const QList<VppEntry>& entries) {
    // The directory always ends with an all-zero entry that closes it for readers that
    // stop there, so a full block gets one more (also the only block of an empty archive).
    const qsizetype directorySize = RoundUp((entries.size() + 1) * kVppEntrySize);
    qsizetype total = kVppBlock + directorySize;
    for (const VppEntry& entry : entries)
        total += RoundUp(entry.data.size());

    QByteArray out(total, '\0');
    PutWord(out, 0, kVppSignature);
    PutWord(out, 4, 1);
    PutWord(out, 8, static_cast<quint32>(entries.size()));
    PutWord(out, 12, static_cast<quint32>(total));

    qsizetype record = kVppBlock;
    qsizetype data = kVppBlock + directorySize;
    for (const VppEntry& entry : entries) {
        const QByteArray name = ToAnsi(entry.name).left(kNameSize - 1);
        out.replace(record, name.size(), name);
        PutWord(out, record + kNameSize, static_cast<quint32>(entry.data.size()));
        out.replace(data, entry.data.size(), entry.data);
        record += kVppEntrySize;
        data += RoundUp(entry.data.size());
    }
    return out;
}

bool WriteVppArchive(const QString& archivePath, const QList<VppEntry>& entries, QString* error) {
    QSaveFile file(archivePath);
    const QByteArray bytes = BuildVppArchive(entries);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        if (error)
            *error = QStringLiteral("Cannot write %1: %2").arg(archivePath, file.errorString());
        return false;
    }
    return true;
}
