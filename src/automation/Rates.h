#pragma once

#include <QString>

#include <cstdint>

// Ranges and defaults of the two rates of the automatic messages.
constexpr std::int16_t kMinMessageRate = 3;
constexpr std::int16_t kMaxMessageRate = 15;
constexpr std::int16_t kDefaultMessageRate = 3;
constexpr int kMinTextRate = 10;
constexpr int kMaxTextRate = 210;
constexpr int kDefaultTextRate = 110;

// Turns the stored "Startup"/"MsgRate" text into minutes between message batches.
// Empty or non-numeric text gives the default; a number outside the range is clamped
// into it, so a hand-edited store can neither stop the countdown nor overflow it.
std::int16_t ClampMessageRate(const QString& stored);

// Turns the stored "Startup"/"TextRate" text into milliseconds between typed characters,
// with the same rules.
int ClampTextRate(const QString& stored);
