#pragma once

#include "FakeWindowServices.h"
#include "MemorySettingsStore.h"
#include "Recorders.h"
#include "RecordingKeyboard.h"
#include "RecordingLauncher.h"
#include "ScriptedMessageBoxes.h"

#include "platform/Services.h"
#include "server/AppState.h"
#include "settings/ProjectInfo.h"

// Every service as a double, bundled the way the program's entry bundles the real ones.
struct TestServices {
    MemorySettingsStore store;
    ScriptedMessageBoxes messages;
    BeepRecorder beeper;
    EndRecorder end;
    ScriptedRandom random;
    RecordingLauncher launcher;
    FakeWindowServices windows;
    RecordingKeyboard keyboard;
    FakeClock clock;
    Services services{store, messages, beeper, end, random, launcher, windows, keyboard, clock};

    QString Get(const QString& section, const QString& key) {
        return store.GetSetting(kAppName, section, key);
    }
    void Put(const QString& section, const QString& key, const QString& value) {
        store.SaveSetting(kAppName, section, key, value);
    }
};
