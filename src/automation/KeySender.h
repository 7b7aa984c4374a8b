#pragma once

#include <QString>

#include <stdexcept>

// Raised when a key cannot be sent; the typing step takes it for a lost server.
class KeySendError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Types a text written in the key-sequence language into the focused window.
class KeySender {
public:
    virtual ~KeySender() = default;
    virtual void PushKeys(const QString& keys) = 0;
};
