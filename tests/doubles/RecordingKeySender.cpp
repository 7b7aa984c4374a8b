#include "RecordingKeySender.h"

void RecordingKeySender::PushKeys(const QString& keys) {
    ++calls;
    if (calls == failOnCall)
        throw KeySendError("no key for " + keys.toStdString());
    if (thrower)
        thrower(keys);
    pushed.append(keys);
}
