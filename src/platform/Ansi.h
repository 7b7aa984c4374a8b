#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>

// Windows-1252, the game's ANSI code page: one byte per character; a character the
// code page cannot hold becomes "?".
std::uint8_t ToAnsi(char32_t ch);
QByteArray ToAnsi(const QString& text);
char32_t FromAnsi(std::uint8_t byte);
