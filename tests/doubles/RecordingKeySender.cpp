#include "RecordingKeySender.h"

void RecordingKeySender::PushKeys(const QString& keys) {
    if (fail)
        fail();
    pushed.append(keys);
}
