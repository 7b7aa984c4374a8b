#pragma once

#include <stdexcept>

// Raised when a key cannot be sent; the typing step takes it for a lost server.
class KeySendError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};
