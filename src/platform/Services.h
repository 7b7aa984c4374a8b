#pragma once

class SettingsStore;
class MessageBoxes;
class Beeper;
class ProcessEnd;
class RandomSource;
class ProcessLauncher;
class WindowServices;
class Keyboard;
class Clock;

// The operating-system services the program uses, one interface each. The program's
// entry wires the real backends; tests wire doubles.
struct Services {
    SettingsStore& store;
    MessageBoxes& messages;
    Beeper& beeper;
    ProcessEnd& end;
    RandomSource& random;
    ProcessLauncher& launcher;
    WindowServices& windows;
    Keyboard& keyboard;
    Clock& clock;
};
