#pragma once

#include <cstdint>

// The keyboard translations of a US PC keyboard: what the sender's vocabulary of virtual-key
// and scan codes means for each character. Characters are Windows-1252 bytes.
namespace UsLayout {

// Low byte: the virtual key that types the character; high byte: the shift state it needs
// (1 = Shift). -1 when no key types it.
std::int16_t VkKeyScan(std::uint8_t ch);

// Windows-1252 to code page 437; a character that page lacks becomes "?".
std::uint8_t CharToOem(std::uint8_t ch);

// Low word: the scan code of the key that types the code page 437 character; high word: the
// shift state. 0xFFFFFFFF when no key types it.
std::uint32_t OemKeyScan(std::uint8_t oem);

// The scan code of a virtual key; 0 when the keyboard has no such key.
std::uint32_t MapVirtualKey(std::uint32_t vk);

} // namespace UsLayout
